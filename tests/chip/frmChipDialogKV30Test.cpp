#include <QApplication>
#include <QFile>
#include <QTest>

#include "PrfImageBuilder.h"
#include "chip/FileExecutivePRF.h"
#include "chip/frmChipDialogKV30.h"
#include "frame/GlobalData.h"
#include "platform/Global.h"
#include "support/FaultyDisk.h"
#include "support/FrameFixture.h"
#include "support/QtPrinters.h"

namespace {

constexpr int In = 0;
constexpr int Pullup = 1;
constexpr int Low = 2;
constexpr int High = 3;

// The dialog on the project "blink" in the test's folder, as the editor
// opens it after writing the preference file.
class ChipDialogKV30Test : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        GlobalData::ProjectFilename = TempPath() + QStringLiteral("/blink.kvp");
    }
    void TearDown() override {
        Global<frmChipDialogKV30>::Unload();
        Global<FileExecutivePRF>::Unload();
        QFile::setPermissions(PrfName(), QFile::ReadOwner | QFile::WriteOwner);
        FrameFixture::TearDown();
    }
    QString PrfName() const { return TempPath() + QStringLiteral("/blink.prf"); }
    QByteArray FileBytes() const {
        QFile File(PrfName());
        return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray("<none>");
    }
    // A file as a KV-20 project leaves it: every pin "IN" and the default values.
    static PrfImageBuilder DefaultFile() {
        PrfImageBuilder File;
        File.AllPins(kvInputTristate).DefaultValues(2);
        return File;
    }
    frmChipDialogKV30& Open() {
        frmChipDialogKV30& Dialog = Global<frmChipDialogKV30>::Get();
        Dialog.show();
        return Dialog;
    }
    static QCheckBox* Box(frmChipDialogKV30& Dialog, int Pin, int Column) {
        return Dialog.chkPin[4 * Pin - 3 + Column];
    }
    // The column whose box is set, or -1 when none is; "several" for more.
    static int Shown(frmChipDialogKV30& Dialog, int Pin) {
        int Set = -1;
        for (int Column = 0; Column < 4; ++Column) {
            if (Box(Dialog, Pin, Column)->isChecked()) {
                if (Set >= 0) {
                    return 99;
                }
                Set = Column;
            }
        }
        return Set;
    }
    static void Click(QAbstractButton* Button) { QTest::mouseClick(Button, Qt::LeftButton); }
    QStringList BoxTexts() const { return Boxes->Texts(); }
};

TEST_F(ChipDialogKV30Test, BoxIndexesRunFourToAPinInTheFileFlagOrder) {
    int32_t Index = 0;
    frmChipDialogKV30::ToIndex(1, kvInputTristate, Index);
    EXPECT_EQ(Index, 1);
    frmChipDialogKV30::ToIndex(40, kvOutputHigh, Index);
    EXPECT_EQ(Index, 160);
    frmChipDialogKV30::ToIndex(2, kvInputPullup, Index);
    EXPECT_EQ(Index, 6);
    frmChipDialogKV30::ToIndex(2, kvOutputLow, Index);
    EXPECT_EQ(Index, 7);
    int32_t Pin = 0;
    frmChipDialogKV30::ToPin(160, Pin);
    EXPECT_EQ(Pin, 40);
    frmChipDialogKV30::ToPin(4, Pin);
    EXPECT_EQ(Pin, 1);
    frmChipDialogKV30::ToPin(5, Pin);
    EXPECT_EQ(Pin, 2);
    EXPECT_EQ(ProbeErrors, QStringList());
}

TEST_F(ChipDialogKV30Test, AStateOutsideTheFourIsReportedAndTakesTheInBox) {
    int32_t Index = 0;
    frmChipDialogKV30::ToIndex(3, 7, Index);
    EXPECT_EQ(Index, 9);
    EXPECT_EQ(ProbeErrors, QStringList{QStringLiteral("Error_1 in frmChipDialogKV30.ToIndex")});
}

TEST_F(ChipDialogKV30Test, TheDialogHasItsCaptionsAnd160BoxesMadeAtRunTime) {
    ASSERT_TRUE(DefaultFile().Save(PrfName()));
    frmChipDialogKV30& Dialog = Open();
    EXPECT_EQ(Dialog.windowTitle(), QStringLiteral("KV-30"));
    EXPECT_TRUE(Dialog.isModal());
    EXPECT_EQ(Dialog.Frame1->title(), QStringLiteral("I/O Pins at Startup"));
    EXPECT_EQ(Dialog.cmdOK->text(), QStringLiteral("&OK"));
    EXPECT_EQ(Dialog.cmdCancel->text(), QStringLiteral("Cancel"));
    EXPECT_EQ(Dialog.Label1->text(),
              QStringLiteral("    IN  P   0   1                                         "
                             "IN  P    0   1"));
    ASSERT_EQ(Dialog.chkPin.size(), 161);
    EXPECT_FALSE(Dialog.chkPin[0]->isVisible()) << "the pattern stays hidden";
    for (int Index = 1; Index <= 160; ++Index) {
        EXPECT_TRUE(Dialog.chkPin[Index]->isVisible()) << Index;
        EXPECT_EQ(Dialog.findChild<QCheckBox*>(QStringLiteral("chkPin%1").arg(Index)),
                  Dialog.chkPin[Index]);
    }
    QStringList Heads;
    for (QLabel* Head : Dialog.lblColumnHead) {
        Heads << Head->text();
    }
    EXPECT_EQ(Heads.join(QLatin1Char(' ')), QStringLiteral("IN P 0 1 IN P 0 1"));
}

TEST_F(ChipDialogKV30Test, EachPinRowStandsLevelWithItsPinOnTheDrawing) {
    frmChipDialogKV30& Dialog = Open();
    Dialog.adjustSize();
    QApplication::processEvents();
    ChipPackageDrawing* Drawing = Dialog.bmpChip;
    const int Pitch = Drawing->height() / 20;
    ASSERT_GT(Pitch, 0);
    for (int Pin = 1; Pin <= 40; ++Pin) {
        const int PinY = Drawing->mapTo(&Dialog, Drawing->PinPosition(Pin)).y();
        QCheckBox* First = Box(Dialog, Pin, In);
        const int RowY = First->mapTo(&Dialog, First->rect().center()).y();
        EXPECT_LE(std::abs(PinY - RowY), Pitch / 4) << "pin " << Pin;
        // Pins 1 to 20 stand left of the package, 21 to 40 right of it.
        const int DrawingX = Drawing->mapTo(&Dialog, QPoint(Drawing->width() / 2, 0)).x();
        const int BoxX = First->mapTo(&Dialog, First->rect().center()).x();
        EXPECT_EQ(BoxX < DrawingX, Pin <= 20) << "pin " << Pin;
    }
}

TEST_F(ChipDialogKV30Test, LoadShowsThePinsOfTheFileAndKeepsItOpenUntilTheDialogCloses) {
    ASSERT_TRUE(DefaultFile()
                    .Pin(1, kvOutputLow)
                    .Pin(3, kvInputPullup)
                    .Pin(40, kvOutputHigh)
                    .PinFlags(16, 0, 0, 0, 0)
                    .PinFlags(17, 0, 1, 1, 0)
                    .Save(PrfName()));
    frmChipDialogKV30& Dialog = Open();
    EXPECT_EQ(Shown(Dialog, 1), Low);
    EXPECT_EQ(Shown(Dialog, 3), Pullup);
    EXPECT_EQ(Shown(Dialog, 40), High);
    EXPECT_EQ(Shown(Dialog, 16), In) << "no flag set reads as IN";
    EXPECT_EQ(Shown(Dialog, 17), Pullup) << "the lowest of several flags";
    EXPECT_EQ(Shown(Dialog, 4), In);
    EXPECT_EQ(Dialog.FileStatus, fstOK);
    EXPECT_TRUE(FileExecutive().IsOpen());
    Click(Dialog.cmdCancel);
    EXPECT_FALSE(FileExecutive().IsOpen());
    EXPECT_EQ(ProbeErrors, QStringList());
}

TEST_F(ChipDialogKV30Test, OKWritesEveryPinRecordWithOneFlagAndNothingElse) {
    PrfImageBuilder Before = DefaultFile();
    Before.Value(41, 77).Value(599, -3).PinFlags(17, 0, 1, 1, 0).PinFlags(20, 0, 0, 0, 0);
    Before.Image.append("tail", 4);
    ASSERT_TRUE(Before.Save(PrfName()));
    frmChipDialogKV30& Dialog = Open();
    Click(Box(Dialog, 1, Low));
    Click(Box(Dialog, 22, High));
    Click(Box(Dialog, 40, Pullup));
    EXPECT_EQ(Shown(Dialog, 1), Low);
    EXPECT_EQ(Shown(Dialog, 22), High);
    EXPECT_EQ(Shown(Dialog, 40), Pullup);
    Click(Dialog.cmdOK);
    EXPECT_FALSE(Dialog.isVisible());
    EXPECT_FALSE(FileExecutive().IsOpen());

    PrfImageBuilder After = Before;
    After.Pin(1, kvOutputLow).Pin(22, kvOutputHigh).Pin(40, kvInputPullup);
    // The records that held several flags or none are written as they read.
    After.Pin(17, kvInputPullup).Pin(20, kvInputTristate);
    EXPECT_EQ(FileBytes(), After.Image);
    EXPECT_EQ(BoxTexts(), QStringList());
}

TEST_F(ChipDialogKV30Test, CancelLeavesTheFileByteForByte) {
    PrfImageBuilder Before = DefaultFile();
    Before.PinFlags(17, 0, 1, 1, 0);
    ASSERT_TRUE(Before.Save(PrfName()));
    frmChipDialogKV30& Dialog = Open();
    Click(Box(Dialog, 1, High));
    Click(Box(Dialog, 33, Low));
    Click(Dialog.cmdCancel);
    EXPECT_FALSE(Dialog.isVisible());
    EXPECT_FALSE(FileExecutive().IsOpen());
    EXPECT_EQ(FileBytes(), Before.Image);
}

TEST_F(ChipDialogKV30Test, EscapeCancelsAndLetsTheFileGo) {
    PrfImageBuilder Before = DefaultFile();
    ASSERT_TRUE(Before.Save(PrfName()));
    frmChipDialogKV30& Dialog = Open();
    Click(Box(Dialog, 1, High));
    QTest::keyClick(&Dialog, Qt::Key_Escape);
    EXPECT_FALSE(Dialog.isVisible());
    EXPECT_FALSE(FileExecutive().IsOpen());
    EXPECT_EQ(FileBytes(), Before.Image);
}

TEST_F(ChipDialogKV30Test, ASecondClickOnTheSetBoxLeavesItSet) {
    ASSERT_TRUE(DefaultFile().Save(PrfName()));
    frmChipDialogKV30& Dialog = Open();
    Click(Box(Dialog, 4, High));
    Click(Box(Dialog, 4, High));
    EXPECT_EQ(Shown(Dialog, 4), High);
    Click(Box(Dialog, 4, In));
    Click(Box(Dialog, 4, In));
    EXPECT_EQ(Shown(Dialog, 4), In);
    Click(Dialog.cmdOK);
    PrfImageBuilder After = DefaultFile();
    EXPECT_EQ(FileBytes(), After.Image);
}

TEST_F(ChipDialogKV30Test, AFixedPinShowsItsStoredStateDisabledAndOKWritesItBackUnchanged) {
    PrfImageBuilder Before = DefaultFile();
    Before.Pin(5, kvOutputHigh).Pin(31, kvOutputLow);
    ASSERT_TRUE(Before.Save(PrfName()));
    frmChipDialogKV30& Dialog = Open();
    EXPECT_EQ(Shown(Dialog, 5), High);
    EXPECT_EQ(Shown(Dialog, 31), Low);
    for (int Pin = 1; Pin <= 40; ++Pin) {
        const bool Fixed = Pin == 2 || (Pin >= 5 && Pin <= 15) || (Pin >= 30 && Pin <= 32);
        for (int Column = 0; Column < 4; ++Column) {
            EXPECT_EQ(Box(Dialog, Pin, Column)->isEnabled(), !Fixed) << Pin << "," << Column;
        }
    }
    // A click on a disabled box does nothing.
    Click(Box(Dialog, 5, In));
    EXPECT_EQ(Shown(Dialog, 5), High);
    Click(Dialog.cmdOK);
    EXPECT_EQ(FileBytes(), Before.Image);
}

TEST_F(ChipDialogKV30Test, OnAReadOnlyFileEveryClickSnapsBackWithTheMessageAndOKWritesNothing) {
    PrfImageBuilder Before = DefaultFile();
    Before.Pin(1, kvOutputLow).PinFlags(17, 0, 1, 1, 0);
    ASSERT_TRUE(Before.Save(PrfName()));
    QFile::setPermissions(PrfName(), QFile::ReadOwner | QFile::ReadGroup);
    frmChipDialogKV30& Dialog = Open();
    EXPECT_EQ(Dialog.FileStatus, fstReadOnly);
    EXPECT_TRUE(FileExecutive().IsOpen()) << "a read-only file opens for reading";
    Click(Box(Dialog, 1, High));
    EXPECT_EQ(Shown(Dialog, 1), Low);
    Click(Box(Dialog, 1, Low));
    EXPECT_EQ(Shown(Dialog, 1), Low) << "also a click on the set box snaps back";
    Click(Box(Dialog, 40, Pullup));
    EXPECT_EQ(Shown(Dialog, 40), In);
    EXPECT_EQ(BoxTexts(), QStringList(3, QStringLiteral("Read-Only File|PRF file is read-only")));
    Click(Dialog.cmdOK);
    EXPECT_FALSE(FileExecutive().IsOpen());
    EXPECT_EQ(FileBytes(), Before.Image);
    EXPECT_EQ(BoxTexts().size(), 3) << "OK says nothing more";
}

TEST_F(ChipDialogKV30Test, OKOnAFullDiskKeepsTheFileAndTellsTheCause) {
    PrfImageBuilder Before = DefaultFile();
    ASSERT_TRUE(Before.Save(PrfName()));
    frmChipDialogKV30& Dialog = Open();
    Click(Box(Dialog, 1, High));
    {
        FaultyDisk Disk({.Room = 4096});
        Click(Dialog.cmdOK);
        EXPECT_EQ(Disk.Commits, 0);
    }
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral("Error Writing to PRF File|Unable to write "
                                                     "PRF file ") +
                                      PrfName() + QStringLiteral("\nError 61, Disk full")});
    EXPECT_FALSE(Dialog.isVisible());
    EXPECT_FALSE(FileExecutive().IsOpen());
    EXPECT_EQ(FileBytes(), Before.Image);
}

TEST_F(ChipDialogKV30Test, AMissingFileShowsEveryPinAtInAndOKReportsAndMakesNoFile) {
    frmChipDialogKV30& Dialog = Open();
    EXPECT_EQ(Dialog.FileStatus, fstNonexistant);
    for (int Pin = 1; Pin <= 40; ++Pin) {
        EXPECT_EQ(Shown(Dialog, Pin), In) << Pin;
    }
    EXPECT_FALSE(FileExecutive().IsOpen());
    EXPECT_EQ(ProbeErrors, QStringList{QStringLiteral("Error_2 in frmChipDialogKV30.Form_Load")});
    Click(Box(Dialog, 1, High));
    EXPECT_EQ(Shown(Dialog, 1), High);
    Click(Dialog.cmdOK);
    EXPECT_FALSE(Dialog.isVisible());
    EXPECT_EQ(ProbeErrors,
              (QStringList{QStringLiteral("Error_2 in frmChipDialogKV30.Form_Load"),
                           QStringLiteral("Error_1 in frmChipDialogKV30.cmdOk_Click")}));
    EXPECT_FALSE(QFile::exists(PrfName()));
    EXPECT_EQ(BoxTexts(), QStringList());
}

TEST_F(ChipDialogKV30Test, AFileOfTheWrongSizeIsLeftAloneAndShownAsDefaults) {
    PrfImageBuilder Short(610);
    Short.AllPins(kvOutputHigh);
    ASSERT_TRUE(Short.Save(PrfName()));
    frmChipDialogKV30& Dialog = Open();
    EXPECT_EQ(Dialog.FileStatus, fstWrongSize);
    EXPECT_EQ(Shown(Dialog, 1), In);
    Click(Dialog.cmdOK);
    EXPECT_EQ(FileBytes(), Short.Image);
    EXPECT_EQ(ProbeErrors,
              (QStringList{QStringLiteral("Error_2 in frmChipDialogKV30.Form_Load"),
                           QStringLiteral("Error_1 in frmChipDialogKV30.cmdOk_Click")}));
}

TEST_F(ChipDialogKV30Test, WithoutAProjectNameTheDialogShowsItsDefaults) {
    GlobalData::ProjectFilename.clear();
    frmChipDialogKV30& Dialog = Open();
    EXPECT_EQ(Shown(Dialog, 40), In);
    EXPECT_EQ(ProbeErrors, QStringList{QStringLiteral("Error_2 in frmChipDialogKV30.Form_Load")});
}

TEST_F(ChipDialogKV30Test, UnloadingTheDialogAnyOtherWayLetsTheFileGo) {
    ASSERT_TRUE(DefaultFile().Save(PrfName()));
    Open();
    ASSERT_TRUE(FileExecutive().IsOpen());
    Global<frmChipDialogKV30>::Unload();
    EXPECT_FALSE(FileExecutive().IsOpen());
}

}  // namespace
