#include <QCheckBox>
#include <QFile>
#include <QTest>
#include <QtEndian>

#include "chip/PrfRecordType.h"
#include "chip/frmChipDialogKV30.h"
#include "chip/frmProcessorOptions.h"
#include "frame/GlobalData.h"
#include "platform/Global.h"
#include "project/ProjectType.h"
#include "support/ModalDialogWatcher.h"
#include "support/QtPrinters.h"
#include "support/SourceEditorFixture.h"

namespace {

// The editor's chip commands on the project "blink", whose preference file
// was last saved for another chip model.
class SourceEditorChipTest : public SourceEditorFixture {
  protected:
    void SetUp() override {
        ClearPendingQuit();
        SourceEditorFixture::SetUp();
        WriteFile(QStringLiteral("blink.kvp"), "main.bas\r\n");
        WriteFile(QStringLiteral("main.bas"), "Option Explicit\r\n");
        WriteFile(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
        Dialogs->Answers.push_back(TempPath() + QStringLiteral("/blink.kvp"));
        Editor->mnuOpenProject->trigger();
        Settle();
        // A module window's first activation comes before it has its number;
        // that report is the opening's, not the chip commands'.
        ProbeErrors.clear();
    }
    QByteArray PrfBytes() const {
        QFile File(TempPath() + QStringLiteral("/blink.prf"));
        return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray();
    }
    // A record's Value as the file holds it now.
    int32_t RecordValue(int32_t RecordNumber) const {
        const QByteArray Bytes = PrfBytes();
        const int Offset = PrfRecordType::OffsetOf(RecordNumber);
        return Bytes.size() < Offset + 4 ? -1
                                         : qFromLittleEndian<int32_t>(Bytes.constData() + Offset);
    }
    static void Click(QWidget& Dialog, const QString& Name) {
        auto* Button = Dialog.findChild<QAbstractButton*>(Name);
        ASSERT_NE(Button, nullptr) << Name.toStdString();
        QTest::mouseClick(Button, Qt::LeftButton);
    }
};

TEST_F(SourceEditorChipTest, TheChipMenuSavesTheMirrorShowsTheKv30DialogAndTakesBackWhatItWrote) {
    GlobalData::ChipType = 3;
    ASSERT_EQ(Project().PRFfile().Processor(), 0);
    // A change the file does not hold yet: the dialog must find it there.
    Project().PRFfile().SetPinState(33, kvOutputLow);
    int32_t ProcessorOnDisk = -1;
    bool Owned = false;
    bool Modal = false;
    bool Pin33Low = false;
    ModalDialogWatcher Person([&](QWidget& Dialog) {
        ProcessorOnDisk = RecordValue(613);
        Owned = Dialog.parentWidget() == Editor;
        Modal = Dialog.isModal();
        auto& Chip = static_cast<frmChipDialogKV30&>(Dialog);
        Pin33Low = Chip.chkPin[4 * 33 - 3 + 2]->isChecked();
        Click(Dialog, QStringLiteral("chkPin4"));
        Click(Dialog, QStringLiteral("cmdOK"));
    });
    Editor->mnuChipDialog->trigger();
    EXPECT_EQ(Person.Seen, QStringList{QStringLiteral("frmChipDialogKV30")});
    EXPECT_EQ(ProcessorOnDisk, 3) << "the chip model in use reached the file first";
    EXPECT_TRUE(Owned);
    EXPECT_TRUE(Modal);
    EXPECT_TRUE(Pin33Low);
    EXPECT_FALSE(Global<frmChipDialogKV30>::IsLoaded());
    EXPECT_EQ(Project().PRFfile().GetPinState(1), kvOutputHigh) << "the mirror read the file back";
    EXPECT_EQ(Project().PRFfile().GetPinState(33), kvOutputLow);
    EXPECT_EQ(Project().PRFfile().Processor(), 3);
    EXPECT_EQ(ProbeErrors, QStringList());
}

TEST_F(SourceEditorChipTest, TheToolBarsChipButtonOpensTheDialogAndCancelStillEndsTheDisagreement) {
    GlobalData::ChipType = 3;
    ModalDialogWatcher Person([&](QWidget& Dialog) {
        Click(Dialog, QStringLiteral("chkPin4"));
        Click(Dialog, QStringLiteral("cmdCancel"));
    });
    QWidget* Button = Editor->barEditorToolbar->widgetForAction(
        Editor->ToolBarButton(QStringLiteral("ChipDialog")));
    ASSERT_NE(Button, nullptr);
    QTest::mouseClick(Button, Qt::LeftButton);
    EXPECT_EQ(Person.Seen, QStringList{QStringLiteral("frmChipDialogKV30")});
    EXPECT_EQ(RecordValue(613), 3);
    EXPECT_EQ(Project().PRFfile().Processor(), 3);
    EXPECT_EQ(Project().PRFfile().GetPinState(1), kvInputTristate) << "Cancel wrote no pin";
}

TEST_F(SourceEditorChipTest, EachChipModelOpensItsOwnDialogOwnedByTheEditor) {
    const QList<QPair<int, QString>> Models = {{1, QStringLiteral("frmChipDialogKV10")},
                                               {2, QStringLiteral("frmChipDialogKV20")},
                                               {3, QStringLiteral("frmChipDialogKV30")}};
    for (const auto& [Chip, Dialog] : Models) {
        GlobalData::ChipType = Chip;
        bool Owned = false;
        ModalDialogWatcher Person([&](QWidget& Shown) {
            Owned = Shown.parentWidget() == Editor;
            QTest::keyClick(&Shown, Qt::Key_Escape);
        });
        Editor->mnuChipDialog->trigger();
        EXPECT_EQ(Person.Seen, QStringList{Dialog});
        EXPECT_TRUE(Owned) << Chip;
        EXPECT_EQ(RecordValue(613), Chip);
    }
    EXPECT_EQ(ProbeErrors, QStringList());
}

TEST_F(SourceEditorChipTest, TheChipDialogWithChipType9InMemoryOpensTheKv20DialogWithItsReport) {
    GlobalData::ChipType = 9;
    ModalDialogWatcher Person([&](QWidget& Shown) {
        // Row 5 to "0", saved: the KV-20 dialog writes its own records.
        auto* Low = Shown.findChild<QCheckBox*>(QStringLiteral("frmKV20pin5_3"));
        ASSERT_NE(Low, nullptr);
        QTest::mouseClick(Low, Qt::LeftButton, {}, QPoint(6, Low->height() / 2));
        Click(Shown, QStringLiteral("cmdOK"));
    });
    Editor->mnuChipDialog->trigger();
    EXPECT_EQ(Person.Seen, QStringList{QStringLiteral("frmChipDialogKV20")});
    EXPECT_EQ(ProbeErrors,
              QStringList{QStringLiteral("Error_1 in frmSourceEditor.mnuChipDialog_Click")});
    EXPECT_EQ(Project().PRFfile().GetPinState(5), kvOutputLow);
    EXPECT_EQ(RecordValue(613), 2) << "the KV-20 dialog's own mark of its model";
}

TEST_F(SourceEditorChipTest, TheProcessorMenuShowsTheDialogOwnedByTheEditor) {
    GlobalData::ChipType = 2;
    bool Owned = false;
    ModalDialogWatcher Person([&](QWidget& Dialog) {
        Owned = Dialog.parentWidget() == Editor;
        Click(Dialog, QStringLiteral("optKV30"));
        Click(Dialog, QStringLiteral("cmdOK"));
    });
    Editor->mnuProcessorOptions->trigger();
    EXPECT_EQ(Person.Seen, QStringList{QStringLiteral("frmProcessorOptions")});
    EXPECT_TRUE(Owned);
    EXPECT_EQ(GlobalData::ChipType, 3);
    EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV30"));
    EXPECT_FALSE(Global<frmProcessorOptions>::IsLoaded());
}

}  // namespace
