#include <QFile>

#include "chip/ChipDialogFixture.h"
#include "chip/frmChipDialogKV20.h"

namespace {

class ChipDialogKV20Test : public ChipDialogFixture<frmChipDialogKV20> {
  protected:
    // A KV-20 project's file as the editor writes it before the dialog.
    static PrfImageBuilder DefaultFile() {
        PrfImageBuilder Builder;
        Builder.DefaultValues(2);
        for (int32_t Pin = 1; Pin <= 40; ++Pin) {
            Builder.Pin(Pin, kvInputTristate);
        }
        return Builder;
    }
    void ExpectSettablePinsAtIN(frmChipDialogKV20& Window) {
        for (int Pin = 1; Pin <= 27; ++Pin) {
            SCOPED_TRACE(Pin);
            const bool Fixed = Pin <= 4 || (Pin >= 21 && Pin <= 24);
            EXPECT_EQ(Row(Window.Pin(Pin)), Fixed ? RowNone : RowIN);
            EXPECT_TRUE(Fixed ? RowDisabled(Window.Pin(Pin)) : RowEnabled(Window.Pin(Pin)));
        }
    }
};

TEST_F(ChipDialogKV20Test, DialogHasItsCaptionsAndControls) {
    frmChipDialogKV20& Window = Open();
    EXPECT_EQ(Window.windowTitle(), QStringLiteral("KV-20"));
    EXPECT_TRUE(Window.isModal());
    EXPECT_EQ(Window.Frame2->title(), QStringLiteral("I/O Pins at Startup"));
    EXPECT_EQ(Window.KV20leds->title(), QStringLiteral("LEDS"));
    EXPECT_EQ(Window.KV20redLed->text(), QStringLiteral("&Red"));
    EXPECT_EQ(Window.KV20grnLed->text(), QStringLiteral("&Green"));
    EXPECT_EQ(Window.chkPCLink->text(), QStringLiteral("&PCLink"));
    EXPECT_EQ(Window.cmdOK->text(), QStringLiteral("&OK"));
    EXPECT_EQ(Window.kv20cancel->text(), QStringLiteral("Cancel"));
    EXPECT_EQ(Window.auxLab1->text(), QStringLiteral("25"));
    EXPECT_EQ(Window.auxLab2->text(), QStringLiteral("26"));
    EXPECT_EQ(Window.auxLab3->text(), QStringLiteral("27"));
    EXPECT_EQ(Window.findChild<QCheckBox*>(QStringLiteral("frmKV20pin13_4")),
              Window.Pin(13)->Box(4));
    EXPECT_EQ(Window.findChild<PinBoxGroup*>(QStringLiteral("frmKV20pin27")), Window.Pin(27));
    // The network values are kept, never shown.
    EXPECT_FALSE(Window.Frame3->isVisible());
    EXPECT_FALSE(Window.frmKV20nodeAddress->isEnabled());
    EXPECT_FALSE(Window.frmKV20GroupAddress->isEnabled());
    EXPECT_FALSE(Window.frmKV20netBaud->isEnabled());
}

TEST_F(ChipDialogKV20Test, OpenedModallyItShowsTheFileAndOkEndsItAccepted) {
    SavePrf(DefaultFile().Pin(5, kvOutputHigh));
    Row4 Shown{};
    const int Result = OpenModal([&](frmChipDialogKV20& Window) {
        Shown = Row(Window.Pin(5));
        Click(Window.Pin(5)->Box(3));
        Press(Window.cmdOK);
    });
    EXPECT_EQ(Result, QDialog::Accepted);
    EXPECT_EQ(Shown, RowHigh);
    EXPECT_EQ(Flags(Record(5)), RowLow);
}

TEST_F(ChipDialogKV20Test, OpenedModallyCancelEndsItRejected) {
    SavePrf(DefaultFile());
    const QByteArray Before = PrfBytes();
    const int Result = OpenModal([&](frmChipDialogKV20& Window) {
        Click(Window.Pin(5)->Box(3));
        Press(Window.kv20cancel);
    });
    EXPECT_EQ(Result, QDialog::Rejected);
    EXPECT_EQ(PrfBytes(), Before);
}

TEST_F(ChipDialogKV20Test, WithNoProjectFileNameEverySettablePinShowsIN) {
    GlobalData::ProjectFilename.clear();
    frmChipDialogKV20& Window = Open();
    ExpectSettablePinsAtIN(Window);
    EXPECT_EQ(Window.frmKV20netBaud->text(), QStringLiteral("460,800"));
    Press(Window.cmdOK);
    EXPECT_FALSE(QFile::exists(PrfFilename));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ChipDialogKV20Test, MissingFileShowsTheDefaults) {
    frmChipDialogKV20& Window = Open();
    ExpectSettablePinsAtIN(Window);
    EXPECT_FALSE(Window.KV20redLed->isChecked());
    EXPECT_FALSE(Window.chkPCLink->isChecked());
}

TEST_F(ChipDialogKV20Test, OkOnAMissingFileMakesItWithTheDialogsRecords) {
    frmChipDialogKV20& Window = Open();
    Click(Window.Pin(8)->Box(2));
    Press(Window.cmdOK);
    EXPECT_EQ(PrfBytes().size(), 614 * 14) << "up to record 614, the last written";
    EXPECT_EQ(Flags(Record(8)), RowP);
    EXPECT_EQ(Record(600).Value, 65279);
    EXPECT_EQ(Record(601).Value, 254);
    EXPECT_EQ(Record(610).Value, 460800) << "the box's \"460,800\"";
    EXPECT_EQ(Record(613).Value, 2);
    EXPECT_EQ(Record(614).Value, 0);
    EXPECT_EQ(Record(611).Value, 0) << "no record the dialog doesn't write";
}

TEST_F(ChipDialogKV20Test, EmptyFileShowsTheDefaults) {
    WriteFile(QStringLiteral("Chip.prf"));
    frmChipDialogKV20& Window = Open();
    ExpectSettablePinsAtIN(Window);
    Press(Window.kv20cancel);
    EXPECT_EQ(PrfBytes(), QByteArray());
}

TEST_F(ChipDialogKV20Test, FileFillsTheRowsLedsAndPCLink) {
    SavePrf(DefaultFile()
                .Pin(5, kvOutputHigh)
                .Pin(13, kvInputPullup)
                .Pin(25, kvOutputLow)
                .Pin(26, kvOutputHigh)
                .Pin(2, kvOutputHigh)
                .Value(614, 1));
    frmChipDialogKV20& Window = Open();
    EXPECT_EQ(Row(Window.Pin(5)), RowHigh);
    EXPECT_EQ(Row(Window.Pin(13)), RowP);
    EXPECT_EQ(Row(Window.Pin(25)), RowLow);
    EXPECT_EQ(Row(Window.Pin(26)), RowHigh);
    EXPECT_EQ(Row(Window.Pin(2)), RowNone) << "a fixed pin stays as it is";
    EXPECT_TRUE(Window.KV20redLed->isChecked());
    EXPECT_FALSE(Window.KV20grnLed->isChecked());
    EXPECT_TRUE(Window.chkPCLink->isChecked());
}

TEST_F(ChipDialogKV20Test, LoadingTwoFlagsOfARowShowsBothWithoutTheClickRule) {
    SavePrf(DefaultFile().PinFlags(6, 1, 0, 0, 1));
    frmChipDialogKV20& Window = Open();
    EXPECT_EQ(Row(Window.Pin(6)), (Row4{1, 0, 0, 1}));
}

TEST_F(ChipDialogKV20Test, RowWithAllFlagsZeroShowsNoBoxAndAClickTwiceOnABoxLeavesIN) {
    SavePrf(DefaultFile().PinFlags(7, 0, 0, 0, 0));
    frmChipDialogKV20& Window = Open();
    EXPECT_EQ(Row(Window.Pin(7)), RowNone);
    Click(Window.Pin(7)->Box(3));
    EXPECT_EQ(Row(Window.Pin(7)), RowLow);
    Click(Window.Pin(7)->Box(3));
    EXPECT_EQ(Row(Window.Pin(7)), RowIN);
}

TEST_F(ChipDialogKV20Test, ClickOnABoxClearsTheOtherThree) {
    SavePrf(DefaultFile());
    frmChipDialogKV20& Window = Open();
    Click(Window.Pin(12)->Box(4));
    EXPECT_EQ(Row(Window.Pin(12)), RowHigh);
    Click(Window.Pin(12)->Box(2));
    EXPECT_EQ(Row(Window.Pin(12)), RowP);
    Click(Window.Pin(12)->Box(1));
    EXPECT_EQ(Row(Window.Pin(12)), RowIN);
    EXPECT_EQ(Row(Window.Pin(11)), RowIN) << "the next row is its own";
}

TEST_F(ChipDialogKV20Test, ClickingZeroInRow25LightsTheRedLedAndAnyOtherBoxClearsIt) {
    SavePrf(DefaultFile());
    frmChipDialogKV20& Window = Open();
    Click(Window.Pin(25)->Box(3));
    EXPECT_TRUE(Window.KV20redLed->isChecked());
    EXPECT_FALSE(Window.KV20grnLed->isChecked());
    Click(Window.Pin(25)->Box(4));
    EXPECT_FALSE(Window.KV20redLed->isChecked());
    Click(Window.Pin(25)->Box(3));
    Click(Window.Pin(25)->Box(2));
    EXPECT_FALSE(Window.KV20redLed->isChecked());
    Click(Window.Pin(26)->Box(3));
    EXPECT_TRUE(Window.KV20grnLed->isChecked());
    Click(Window.Pin(26)->Box(1));
    EXPECT_FALSE(Window.KV20grnLed->isChecked());
}

TEST_F(ChipDialogKV20Test, TurningTheRedLedOffMovesRow25ToINEvenIfItWasOne) {
    SavePrf(DefaultFile().Pin(25, kvOutputHigh));
    frmChipDialogKV20& Window = Open();
    Click(Window.KV20redLed);
    EXPECT_EQ(Row(Window.Pin(25)), RowLow);
    Click(Window.KV20redLed);
    EXPECT_FALSE(Window.KV20redLed->isChecked());
    EXPECT_EQ(Row(Window.Pin(25)), RowIN);
}

TEST_F(ChipDialogKV20Test, TheGreenLedDrivesRow26) {
    SavePrf(DefaultFile().Pin(26, kvInputPullup));
    frmChipDialogKV20& Window = Open();
    Click(Window.KV20grnLed);
    EXPECT_EQ(Row(Window.Pin(26)), RowLow);
    EXPECT_EQ(Row(Window.Pin(25)), RowIN);
    Click(Window.KV20grnLed);
    EXPECT_EQ(Row(Window.Pin(26)), RowIN);
}

TEST_F(ChipDialogKV20Test, NetBaudZeroShows460800AndSavingWrites460800) {
    SavePrf(DefaultFile().Value(610, 0));
    frmChipDialogKV20& Window = Open();
    EXPECT_EQ(Window.frmKV20netBaud->text(), QStringLiteral("460800"));
    Press(Window.cmdOK);
    EXPECT_EQ(Record(610).Value, 460800);
}

TEST_F(ChipDialogKV20Test, NodeAddress70000IsSavedAs65279WithNoMessage) {
    SavePrf(DefaultFile().Value(600, 70000).Value(601, 300));
    frmChipDialogKV20& Window = Open();
    EXPECT_EQ(Window.frmKV20nodeAddress->text(), QStringLiteral("70000"));
    Press(Window.cmdOK);
    EXPECT_EQ(Record(600).Value, 65279);
    EXPECT_EQ(Record(601).Value, 254);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ChipDialogKV20Test, NodeAddressMinus5IsSavedAs0WithNoMessage) {
    SavePrf(DefaultFile().Value(600, -5).Value(601, -1));
    Press(Open().cmdOK);
    EXPECT_EQ(Record(600).Value, 0);
    EXPECT_EQ(Record(601).Value, 0);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ChipDialogKV20Test, OkWritesThePinsTheValuesAndKeepsTheOtherRecords) {
    PrfImageBuilder Before = DefaultFile();
    Before.Pin(20, kvOutputHigh)
        .Pin(30, kvOutputLow)
        .Value(602, 1)
        .Value(609, 1)
        .Value(611, 8192)
        .Value(615, 33)
        .Value(100, 77)
        .Value(613, 1)
        .Value(614, 0);
    SavePrf(Before);
    frmChipDialogKV20& Window = Open();
    Click(Window.Pin(27)->Box(2));
    Click(Window.Pin(5)->Box(3));
    Click(Window.chkPCLink);
    Press(Window.cmdOK);
    EXPECT_FALSE(Global<frmChipDialogKV20>::IsLoaded()) << "the dialog unloads itself";

    const QByteArray After = PrfBytes();
    ASSERT_EQ(After.size(), Before.Image.size());
    for (int32_t Pin = 1; Pin <= 4; ++Pin) {
        EXPECT_EQ(Flags(Record(Pin)), RowNone) << "record " << Pin;
    }
    EXPECT_EQ(Flags(Record(5)), RowLow);
    EXPECT_EQ(Flags(Record(6)), RowIN);
    EXPECT_EQ(Flags(Record(20)), RowHigh);
    for (int32_t Pin = 21; Pin <= 24; ++Pin) {
        EXPECT_EQ(Flags(Record(Pin)), RowHigh) << "record " << Pin << " copies record 20";
    }
    EXPECT_EQ(Flags(Record(27)), RowP);
    EXPECT_EQ(Flags(Record(30)), RowLow) << "records 28 to 40 are left as they were";
    EXPECT_EQ(Record(100).Value, 0) << "records 41 to 599 are cleared";
    EXPECT_EQ(Record(600).Value, 65279);
    EXPECT_EQ(Record(601).Value, 254);
    EXPECT_EQ(Record(610).Value, 460800);
    EXPECT_EQ(Record(613).Value, 2);
    EXPECT_EQ(Record(614).Value, 1);
    for (int32_t Value : {600, 601, 610, 613, 614}) {
        EXPECT_EQ(Flags(Record(Value)), RowP) << "record " << Value << " carries pin 27's flags";
    }
    // Untouched records keep their bytes.
    for (int32_t Kept : {602, 603, 604, 605, 606, 607, 608, 609, 611, 612, 615}) {
        EXPECT_EQ(After.mid(PrfRecordType::OffsetOf(Kept), 14),
                  Before.Image.mid(PrfRecordType::OffsetOf(Kept), 14))
            << "record " << Kept;
    }
    EXPECT_EQ(After.mid(PrfRecordType::OffsetOf(28), 13 * 14),
              Before.Image.mid(PrfRecordType::OffsetOf(28), 13 * 14));
}

TEST_F(ChipDialogKV20Test, CancelLeavesEveryByte) {
    SavePrf(DefaultFile().Pin(9, kvOutputLow).Value(100, 5));
    const QByteArray Before = PrfBytes();
    frmChipDialogKV20& Window = Open();
    Click(Window.Pin(9)->Box(4));
    Click(Window.KV20redLed);
    Click(Window.chkPCLink);
    Press(Window.kv20cancel);
    EXPECT_FALSE(Global<frmChipDialogKV20>::IsLoaded());
    EXPECT_EQ(PrfBytes(), Before);
}

TEST_F(ChipDialogKV20Test, EscapeIsACancel) {
    SavePrf(DefaultFile());
    const QByteArray Before = PrfBytes();
    frmChipDialogKV20& Window = Open();
    Click(Window.Pin(9)->Box(4));
    QTest::keyClick(&Window, Qt::Key_Escape);
    EXPECT_FALSE(Global<frmChipDialogKV20>::IsLoaded());
    EXPECT_EQ(PrfBytes(), Before);
}

TEST_F(ChipDialogKV20Test, ReadOnlyFileIsLeftAloneWithNoMessage) {
    SavePrf(DefaultFile());
    const QByteArray Before = PrfBytes();
    QFile(PrfFilename).setPermissions(QFileDevice::ReadOwner | QFileDevice::ReadGroup);
    frmChipDialogKV20& Window = Open();
    Click(Window.Pin(9)->Box(4));
    Press(Window.cmdOK);
    EXPECT_FALSE(Global<frmChipDialogKV20>::IsLoaded()) << "the dialog still closes";
    EXPECT_EQ(PrfBytes(), Before);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ChipDialogKV20Test, BytesPastTheRecordsStayBehindThemOnASave) {
    PrfImageBuilder Builder = DefaultFile();
    Builder.Image.append("tail!", 5);
    SavePrf(Builder);
    Press(Open().cmdOK);
    EXPECT_TRUE(PrfBytes().endsWith("tail!"));
    EXPECT_EQ(PrfBytes().size(), Builder.Image.size());
}

TEST_F(ChipDialogKV20Test, EachPinRowStandsBesideItsPin) {
    SavePrf(DefaultFile());
    frmChipDialogKV20& Window = Open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&Window));
    const QWidget* Box = Window.Pin(1)->Box(1);
    const int Tolerance = Box->height() / 4;
    for (int Pin = 1; Pin <= 24; ++Pin) {
        EXPECT_LE(RowOffsetFromPin(Window.Pin(Pin), Window.picChipPackage, &Window), Tolerance)
            << "pin " << Pin;
    }
    // The left column runs top-down, the right one bottom-up.
    EXPECT_LT(Window.Pin(1)->Box(1)->mapTo(&Window, QPoint()).y(),
              Window.Pin(12)->Box(1)->mapTo(&Window, QPoint()).y());
    EXPECT_LT(Window.Pin(24)->Box(1)->mapTo(&Window, QPoint()).y(),
              Window.Pin(13)->Box(1)->mapTo(&Window, QPoint()).y());
    EXPECT_LT(Window.Pin(1)->Box(1)->mapTo(&Window, QPoint()).x(),
              Window.picChipPackage->mapTo(&Window, QPoint()).x());
    EXPECT_GT(Window.Pin(24)->Box(1)->mapTo(&Window, QPoint()).x(),
              Window.picChipPackage->mapTo(&Window, QPoint()).x());
}

}  // namespace
