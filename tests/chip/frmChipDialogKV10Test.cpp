#include <QApplication>
#include <QFile>

#include "chip/ChipDialogFixture.h"
#include "chip/ConfigurationBytes.h"
#include "chip/frmChipDialogKV10.h"

namespace {

// The pins that external RAM and extended I/O claim.
const int BusPins[] = {2, 16, 17, 21, 22, 23, 24, 25, 26, 27, 28, 32, 33, 34, 35, 36, 37, 38, 39};
const int FixedPins[] = {5, 9, 18, 19, 20, 29, 30, 31, 40};

class ChipDialogKV10Test : public ChipDialogFixture<frmChipDialogKV10> {
  protected:
    // A new KV-10 project's file as the editor writes it before the dialog.
    static PrfImageBuilder DefaultFile() {
        PrfImageBuilder Builder;
        Builder.DefaultValues(1).AllPins(kvInputTristate);
        return Builder;
    }
    static void TypeOver(QLineEdit* Box, const QString& Text) {
        Box->setFocus();
        QTest::keyClick(Box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(Box, Text);
    }
    // With the network on, a rate typed into NetBaud, then OK.
    void SaveWithNetBaud(const QString& Rate) {
        frmChipDialogKV10& Window = Open();
        Click(Window.NetEnable);
        TypeOver(Window.NetBaud, Rate);
        Press(Window.cmdOK);
    }
};

TEST_F(ChipDialogKV10Test, DialogHasItsCaptionsAndControls) {
    frmChipDialogKV10& Window = Open();
    EXPECT_EQ(Window.windowTitle(), QStringLiteral("KV-10"));
    EXPECT_TRUE(Window.isModal());
    EXPECT_EQ(Window.Frame2->title(), QStringLiteral("I/O Pins at Startup"));
    EXPECT_EQ(Window.Frame5->title(), QStringLiteral("Serial Ports"));
    EXPECT_EQ(Window.Frame3->title(), QStringLiteral("Network Settings"));
    EXPECT_EQ(Window.Frame4->title(), QStringLiteral("SPI code storage"));
    EXPECT_EQ(Window.Com1Enable->text(), QStringLiteral("COM&1"));
    EXPECT_EQ(Window.Com2Enable->text(), QStringLiteral("COM&2"));
    EXPECT_EQ(Window.NetEnable->text(), QStringLiteral("&Network Enable"));
    EXPECT_EQ(Window.lblNetBaud->text(), QStringLiteral("Baud Rate"));
    EXPECT_EQ(Window.lblNodeAddress->text(), QStringLiteral("Node Address"));
    EXPECT_EQ(Window.lblGroupAddress->text(), QStringLiteral("Group Address"));
    EXPECT_EQ(Window.RamEnable->text(), QStringLiteral("External &RAM"));
    EXPECT_EQ(Window.extendedIO->text(), QStringLiteral("&Extended I/O and RAM"));
    EXPECT_EQ(Window.codeCache->text(), QStringLiteral("&Cache"));
    EXPECT_EQ(Window.chkUseInternalEEPROM->text(), QStringLiteral("Internal EE&PROM"));
    EXPECT_EQ(Window.lblSpiSize->text(), QStringLiteral("Bytes"));
    EXPECT_EQ(Window.cmdOK->text(), QStringLiteral("&OK"));
    EXPECT_EQ(Window.cmdPrjCancel->text(), QStringLiteral("Cancel"));
    EXPECT_EQ(Window.findChild<QCheckBox*>(QStringLiteral("Pin40_2")), Window.Pin(40)->Box(2));
}

TEST_F(ChipDialogKV10Test, OpenedModallyItShowsTheFileAndOkEndsItAccepted) {
    SavePrf(DefaultFile().Pin(33, kvInputPullup));
    Row4 Shown{};
    const int Result = OpenModal([&](frmChipDialogKV10& Window) {
        Shown = Row(Window.Pin(33));
        Click(Window.Com2Enable);
        Press(Window.cmdOK);
    });
    EXPECT_EQ(Result, QDialog::Accepted);
    EXPECT_EQ(Shown, RowP);
    EXPECT_EQ(Record(606).Value, 1);
    EXPECT_EQ(Flags(Record(33)), RowP);
}

TEST_F(ChipDialogKV10Test, NewProjectOpensWithInternalEepromClearPins6To8DisabledAnd32768) {
    SavePrf(DefaultFile());
    frmChipDialogKV10& Window = Open();
    EXPECT_FALSE(Window.chkUseInternalEEPROM->isChecked());
    for (int Pin : {6, 7, 8}) {
        EXPECT_TRUE(RowDisabled(Window.Pin(Pin))) << "pin " << Pin;
        EXPECT_EQ(Row(Window.Pin(Pin)), RowNone) << "pin " << Pin;
    }
    EXPECT_EQ(Window.txtSpiSize->text(), QStringLiteral("32768"));
    for (int Pin : FixedPins) {
        EXPECT_TRUE(RowDisabled(Window.Pin(Pin))) << "pin " << Pin;
    }
    for (int Pin : {1, 2, 3, 4, 10, 17, 21, 28, 32, 39}) {
        EXPECT_TRUE(RowEnabled(Window.Pin(Pin))) << "pin " << Pin;
        EXPECT_EQ(Row(Window.Pin(Pin)), RowIN) << "pin " << Pin;
    }
    EXPECT_FALSE(Window.codeCache->isEnabled());
    EXPECT_FALSE(Window.NetBaud->isEnabled());
    EXPECT_EQ(Window.NetBaud->text(), QStringLiteral("460800"));
    EXPECT_EQ(Window.NodeAddress->text(), QStringLiteral("65279"));
    EXPECT_EQ(Window.GroupAddress->text(), QStringLiteral("254"));
}

TEST_F(ChipDialogKV10Test, WithNoProjectTheDialogShowsItsDefaults) {
    GlobalData::ProjectFilename.clear();
    frmChipDialogKV10& Window = Open();
    EXPECT_EQ(Window.txtSpiSize->text(), QStringLiteral("32768"));
    EXPECT_EQ(Row(Window.Pin(1)), RowIN);
    EXPECT_TRUE(RowDisabled(Window.Pin(6)));
}

TEST_F(ChipDialogKV10Test, SettingInternalEepromShows512AndClearingShows32768) {
    SavePrf(DefaultFile());
    frmChipDialogKV10& Window = Open();
    Click(Window.chkUseInternalEEPROM);
    EXPECT_EQ(Window.txtSpiSize->text(), QStringLiteral("512"));
    EXPECT_EQ(GlobalData::MemorySize, 512);
    for (int Pin : {6, 7, 8}) {
        EXPECT_TRUE(RowEnabled(Window.Pin(Pin))) << "pin " << Pin;
        EXPECT_EQ(Row(Window.Pin(Pin)), RowIN) << "pin " << Pin;
    }
    Click(Window.chkUseInternalEEPROM);
    EXPECT_EQ(Window.txtSpiSize->text(), QStringLiteral("32768"));
    EXPECT_EQ(GlobalData::MemorySize, 32768);
    EXPECT_TRUE(RowDisabled(Window.Pin(6)));
}

TEST_F(ChipDialogKV10Test, ClearingInternalEepromWithAnotherMemorySizeLeavesThatValueInTheBox) {
    // A grey box from the file: the load runs its handler, which leaves
    // MemorySize alone, and a click clears the box.
    GlobalData::MemorySize = 8192;
    SavePrf(DefaultFile().Value(609, 2).Value(611, 1000));
    frmChipDialogKV10& Window = Open();
    EXPECT_EQ(Window.chkUseInternalEEPROM->checkState(), Qt::PartiallyChecked);
    EXPECT_EQ(Window.txtSpiSize->text(), QStringLiteral("1000"));
    Click(Window.chkUseInternalEEPROM);
    EXPECT_EQ(Window.chkUseInternalEEPROM->checkState(), Qt::Unchecked);
    EXPECT_EQ(Window.txtSpiSize->text(), QStringLiteral("8192"));
    EXPECT_EQ(GlobalData::MemorySize, 8192);
}

TEST_F(ChipDialogKV10Test, InternalEepromSavesSpiSize512AndCancelKeepsMemorySize) {
    SavePrf(DefaultFile());
    const QByteArray Before = PrfBytes();
    frmChipDialogKV10& Window = Open();
    Click(Window.chkUseInternalEEPROM);
    Press(Window.cmdPrjCancel);
    EXPECT_EQ(PrfBytes(), Before);
    EXPECT_EQ(GlobalData::MemorySize, 512) << "the box's handler set it";

    frmChipDialogKV10& Again = Open();
    Click(Again.chkUseInternalEEPROM);
    TypeOver(Again.txtSpiSize, QStringLiteral("4096"));
    Press(Again.cmdOK);
    EXPECT_EQ(Record(609).Value, 1);
    EXPECT_EQ(Record(611).Value, 512);
}

TEST_F(ChipDialogKV10Test, ExtendedIOIsNotKeptAndItsRowsComeBackAsCopiesOfTheLastEnabledPin) {
    SavePrf(DefaultFile());
    frmChipDialogKV10& Window = Open();
    Click(Window.Pin(1)->Box(2));
    Click(Window.Pin(15)->Box(4));
    Click(Window.extendedIO);
    EXPECT_TRUE(RowDisabled(Window.Pin(3)));
    EXPECT_FALSE(Window.RamEnable->isEnabled());
    Press(Window.cmdOK);

    frmChipDialogKV10& Again = Open();
    EXPECT_FALSE(Again.extendedIO->isChecked());
    EXPECT_TRUE(Again.RamEnable->isEnabled());
    EXPECT_TRUE(RowEnabled(Again.Pin(3)));
    EXPECT_EQ(Row(Again.Pin(2)), RowP) << "pin 1 is the last enabled before it";
    EXPECT_EQ(Row(Again.Pin(3)), RowP);
    EXPECT_EQ(Row(Again.Pin(4)), RowIN);
    for (int Pin : BusPins) {
        if (Pin == 2) {
            continue;
        }
        EXPECT_TRUE(RowEnabled(Again.Pin(Pin))) << "pin " << Pin;
        EXPECT_EQ(Row(Again.Pin(Pin)), RowHigh) << "pin " << Pin << " copies pin 15";
    }
}

TEST_F(ChipDialogKV10Test, ClearingRamEnableSetsTheBusRowsToINNotToWhatTheyWere) {
    SavePrf(DefaultFile().Pin(21, kvOutputHigh).Pin(39, kvInputPullup).Pin(2, kvOutputLow));
    frmChipDialogKV10& Window = Open();
    Click(Window.RamEnable);
    EXPECT_TRUE(Window.codeCache->isEnabled());
    EXPECT_FALSE(Window.extendedIO->isEnabled());
    for (int Pin : BusPins) {
        EXPECT_TRUE(RowDisabled(Window.Pin(Pin))) << "pin " << Pin;
    }
    EXPECT_TRUE(RowEnabled(Window.Pin(3))) << "pin 3 is extended I/O's alone";
    Click(Window.codeCache);
    Click(Window.RamEnable);
    for (int Pin : BusPins) {
        EXPECT_TRUE(RowEnabled(Window.Pin(Pin))) << "pin " << Pin;
        EXPECT_EQ(Row(Window.Pin(Pin)), RowIN) << "pin " << Pin;
    }
    EXPECT_FALSE(Window.codeCache->isChecked());
    EXPECT_FALSE(Window.codeCache->isEnabled());
    EXPECT_TRUE(Window.extendedIO->isEnabled());
}

TEST_F(ChipDialogKV10Test, Com1AndNetEnableCantBeSetTogether) {
    SavePrf(DefaultFile());
    frmChipDialogKV10& Window = Open();
    Click(Window.Com1Enable);
    EXPECT_FALSE(Window.NetEnable->isEnabled());
    EXPECT_TRUE(RowDisabled(Window.Pin(10)));
    EXPECT_TRUE(RowDisabled(Window.Pin(11)));
    Click(Window.NetEnable);
    EXPECT_FALSE(Window.NetEnable->isChecked());
    Click(Window.Com1Enable);
    EXPECT_TRUE(Window.NetEnable->isEnabled());
    EXPECT_EQ(Row(Window.Pin(10)), RowIN);
    Click(Window.NetEnable);
    EXPECT_TRUE(Window.NetEnable->isChecked());
    EXPECT_FALSE(Window.Com1Enable->isChecked());
    EXPECT_FALSE(Window.Com1Enable->isEnabled());
    EXPECT_TRUE(Window.NetBaud->isEnabled());
    EXPECT_TRUE(RowDisabled(Window.Pin(14)));
    Click(Window.Com1Enable);
    EXPECT_FALSE(Window.Com1Enable->isChecked());
    Click(Window.NetEnable);
    EXPECT_TRUE(Window.Com1Enable->isEnabled());
    EXPECT_FALSE(Window.NetBaud->isEnabled());
    EXPECT_EQ(Row(Window.Pin(14)), RowIN);
}

TEST_F(ChipDialogKV10Test, WithCom2OnTurningCom1OffLeavesPin11Disabled) {
    SavePrf(DefaultFile());
    frmChipDialogKV10& Window = Open();
    Click(Window.Com2Enable);
    EXPECT_TRUE(RowDisabled(Window.Pin(1)));
    EXPECT_TRUE(RowDisabled(Window.Pin(12)));
    Click(Window.Com1Enable);
    Click(Window.Com1Enable);
    EXPECT_EQ(Row(Window.Pin(10)), RowIN);
    EXPECT_TRUE(RowDisabled(Window.Pin(11)));
    // The network's handler gives it back whatever COM2 says, with no box set.
    Click(Window.NetEnable);
    Click(Window.NetEnable);
    EXPECT_TRUE(RowEnabled(Window.Pin(11)));
    EXPECT_EQ(Row(Window.Pin(11)), RowNone);
}

TEST_F(ChipDialogKV10Test, WithNetEnableSetARateOf9599IsRefused) {
    SavePrf(DefaultFile());
    const QByteArray Before = PrfBytes();
    SaveWithNetBaud(QStringLiteral("9599"));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("Network baud rate out of range\nLegal range is 9600 to 460800"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Network baud rate out of range"));
    ASSERT_TRUE(Global<frmChipDialogKV10>::IsLoaded()) << "the dialog stays open";
    frmChipDialogKV10& Window = Global<frmChipDialogKV10>::Get();
    EXPECT_TRUE(Window.isVisible());
    EXPECT_EQ(QApplication::focusWidget(), Window.NetBaud);
    EXPECT_EQ(PrfBytes(), Before);
}

TEST_F(ChipDialogKV10Test, WithNetEnableSetARateOf9600IsAccepted) {
    SavePrf(DefaultFile());
    SaveWithNetBaud(QStringLiteral("9600"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_FALSE(Global<frmChipDialogKV10>::IsLoaded());
    EXPECT_EQ(Record(610).Value, 9600);
    EXPECT_EQ(Record(602).Value, 1);
}

TEST_F(ChipDialogKV10Test, WithNetEnableSetARateOf460801IsRefused) {
    SavePrf(DefaultFile());
    const QByteArray Before = PrfBytes();
    SaveWithNetBaud(QStringLiteral("460801"));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Network baud rate out of range"));
    EXPECT_EQ(PrfBytes(), Before);
}

TEST_F(ChipDialogKV10Test, WithNetEnableSetTheAddressesAreCheckedInTurn) {
    SavePrf(DefaultFile());
    frmChipDialogKV10& Window = Open();
    Click(Window.NetEnable);
    TypeOver(Window.NodeAddress, QStringLiteral("65280"));
    TypeOver(Window.GroupAddress, QStringLiteral("255"));
    Press(Window.cmdOK);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("Node address out of range\nLegal range is 0 to 65279"));
    EXPECT_EQ(QApplication::focusWidget(), Window.NodeAddress);
    TypeOver(Window.NodeAddress, QStringLiteral("65279"));
    Press(Window.cmdOK);
    ASSERT_EQ(Boxes->Boxes.size(), 2);
    EXPECT_EQ(Boxes->Boxes[1].Text,
              QStringLiteral("Group address out of range\nLegal range is 0 to 254"));
    EXPECT_EQ(Boxes->Boxes[1].Title, QStringLiteral("Group address out of range"));
    EXPECT_EQ(QApplication::focusWidget(), Window.GroupAddress);
    TypeOver(Window.GroupAddress, QStringLiteral("7"));
    Press(Window.cmdOK);
    EXPECT_EQ(Boxes->Boxes.size(), 2);
    EXPECT_EQ(Record(600).Value, 65279);
    EXPECT_EQ(Record(601).Value, 7);
}

TEST_F(ChipDialogKV10Test, WithNetEnableClearAnythingInTheThreeBoxesIsSavedWithoutACheck) {
    SavePrf(DefaultFile());
    frmChipDialogKV10& Window = Open();
    Click(Window.NetEnable);
    TypeOver(Window.NetBaud, QStringLiteral("5"));
    TypeOver(Window.NodeAddress, QStringLiteral("70000"));
    TypeOver(Window.GroupAddress, QStringLiteral("-3"));
    Click(Window.NetEnable);
    EXPECT_FALSE(Window.NetBaud->isEnabled());
    Press(Window.cmdOK);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_EQ(Record(610).Value, 5);
    EXPECT_EQ(Record(600).Value, 70000);
    EXPECT_EQ(Record(601).Value, -3);
    EXPECT_EQ(Record(602).Value, 0);
}

TEST_F(ChipDialogKV10Test, TextThatIsNoNumberKeepsTheRecordBuffersValue) {
    SavePrf(DefaultFile());
    frmChipDialogKV10& Window = Open();
    Click(Window.NetEnable);
    TypeOver(Window.NodeAddress, QStringLiteral("1234"));
    TypeOver(Window.GroupAddress, QStringLiteral("12x"));
    Click(Window.NetEnable);
    Press(Window.cmdOK);
    EXPECT_EQ(Record(601).Value, 1234) << "the value of the record before";
}

TEST_F(ChipDialogKV10Test, Pin1ClearedByCom2AndSavedHasAllFlagsZero) {
    SavePrf(DefaultFile().Pin(1, kvOutputHigh));
    frmChipDialogKV10& Window = Open();
    Click(Window.Com2Enable);
    Press(Window.cmdOK);
    EXPECT_EQ(Flags(Record(1)), RowNone);
    EXPECT_EQ(Flags(Record(12)), RowIN) << "pin 12 copies pin 11";
    EXPECT_EQ(Record(606).Value, 1);
}

TEST_F(ChipDialogKV10Test, ThePinsAfterAFreePinStartAsItDoesOnTheChip) {
    SavePrf(DefaultFile());
    frmChipDialogKV10& Window = Open();
    Click(Window.Pin(4)->Box(4));
    Click(Window.Com1Enable);
    // A fixed row takes no click.
    Click(Window.Pin(9)->Box(1));
    EXPECT_EQ(Row(Window.Pin(9)), RowNone);
    Press(Window.cmdOK);
    ConfigurationBytes::RegisterArray Registers{};
    ConfigurationBytes::ConfigureKV10(Registers);
    // Port B is pins 1 to 8, bit 0 up: pin 4 and the fixed 5 to 8 after it
    // are outputs driven high.
    EXPECT_EQ(Registers[2], 0xF8) << "port B data";
    EXPECT_EQ(Registers[3], 0xF8) << "port B direction";
    // Port D is pins 10 to 17: COM1's 10 and 11 copy pin 9's record, which
    // copies pin 4.
    EXPECT_EQ(Registers[6], 0x03) << "port D data";
    EXPECT_EQ(Registers[7], 0x03) << "port D direction";
}

TEST_F(ChipDialogKV10Test, OptionsOnLoadClaimTheirRowsAndDropTheFilesFlags) {
    SavePrf(DefaultFile()
                .Pin(10, kvOutputHigh)
                .Pin(12, kvOutputHigh)
                .Pin(21, kvOutputLow)
                .Value(602, 1)
                .Value(603, 1)
                .Value(604, 1)
                .Value(606, 1));
    frmChipDialogKV10& Window = Open();
    EXPECT_TRUE(Window.NetEnable->isChecked());
    EXPECT_TRUE(Window.NetBaud->isEnabled());
    EXPECT_FALSE(Window.Com1Enable->isEnabled());
    EXPECT_TRUE(Window.RamEnable->isChecked());
    EXPECT_TRUE(Window.codeCache->isChecked());
    EXPECT_TRUE(Window.codeCache->isEnabled());
    EXPECT_FALSE(Window.extendedIO->isEnabled());
    for (int Pin : {10, 11, 14, 12, 1, 21, 39}) {
        EXPECT_TRUE(RowDisabled(Window.Pin(Pin))) << "pin " << Pin;
        EXPECT_EQ(Row(Window.Pin(Pin)), RowNone) << "pin " << Pin;
    }
}

TEST_F(ChipDialogKV10Test, OkWritesEveryRecordOfTheDialogAndKeepsTheRest) {
    PrfImageBuilder Before = DefaultFile();
    Before.Value(100, 9).Value(607, 0).Value(612, 0).Value(614, 1).Value(615, 40).Value(608, 3);
    SavePrf(Before);
    frmChipDialogKV10& Window = Open();
    Click(Window.Pin(4)->Box(4));
    Click(Window.Pin(39)->Box(3));
    Click(Window.Com1Enable);
    Click(Window.Com2Enable);
    Click(Window.RamEnable);
    Click(Window.codeCache);
    Press(Window.cmdOK);
    EXPECT_FALSE(Global<frmChipDialogKV10>::IsLoaded());

    const QByteArray After = PrfBytes();
    ASSERT_EQ(After.size(), Before.Image.size());
    EXPECT_EQ(Flags(Record(4)), RowHigh);
    for (int Pin = 5; Pin <= 9; ++Pin) {
        EXPECT_EQ(Flags(Record(Pin)), RowHigh) << "record " << Pin << " copies pin 4";
    }
    EXPECT_EQ(Flags(Record(10)), RowHigh) << "claimed by COM1";
    EXPECT_EQ(Flags(Record(39)), RowIN) << "claimed by RAM: a copy of pin 15";
    EXPECT_EQ(Flags(Record(40)), RowIN);
    EXPECT_EQ(Record(100).Value, 0);
    EXPECT_EQ(Record(600).Value, 65279);
    EXPECT_EQ(Record(601).Value, 254);
    EXPECT_EQ(Record(602).Value, 0);
    EXPECT_EQ(Record(603).Value, 1);
    EXPECT_EQ(Record(604).Value, 1);
    EXPECT_EQ(Record(605).Value, 1);
    EXPECT_EQ(Record(606).Value, 1);
    EXPECT_EQ(Record(609).Value, 0);
    EXPECT_EQ(Record(610).Value, 460800);
    EXPECT_EQ(Record(611).Value, 32768);
    EXPECT_EQ(Record(613).Value, 1);
    EXPECT_EQ(Flags(Record(613)), RowIN) << "the value records carry pin 40's flags";
    for (int32_t Kept : {607, 608, 612, 614, 615}) {
        EXPECT_EQ(After.mid(PrfRecordType::OffsetOf(Kept), 14),
                  Before.Image.mid(PrfRecordType::OffsetOf(Kept), 14))
            << "record " << Kept;
    }
}

TEST_F(ChipDialogKV10Test, CancelLeavesEveryByte) {
    SavePrf(DefaultFile().Value(100, 5).Pin(3, kvInputPullup));
    const QByteArray Before = PrfBytes();
    frmChipDialogKV10& Window = Open();
    Click(Window.Pin(3)->Box(4));
    Click(Window.RamEnable);
    Click(Window.NetEnable);
    TypeOver(Window.NetBaud, QStringLiteral("1"));
    Press(Window.cmdPrjCancel);
    EXPECT_FALSE(Global<frmChipDialogKV10>::IsLoaded());
    EXPECT_EQ(PrfBytes(), Before);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ChipDialogKV10Test, ReadOnlyFileIsLeftAloneWithNoMessage) {
    SavePrf(DefaultFile());
    const QByteArray Before = PrfBytes();
    QFile(PrfFilename).setPermissions(QFileDevice::ReadOwner);
    frmChipDialogKV10& Window = Open();
    Click(Window.Com2Enable);
    Press(Window.cmdOK);
    EXPECT_FALSE(Global<frmChipDialogKV10>::IsLoaded());
    EXPECT_EQ(PrfBytes(), Before);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ChipDialogKV10Test, EachPinRowStandsBesideItsPin) {
    SavePrf(DefaultFile());
    frmChipDialogKV10& Window = Open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&Window));
    const int Tolerance = Window.Pin(1)->Box(1)->height() / 4;
    for (int Pin = 1; Pin <= 40; ++Pin) {
        EXPECT_LE(RowOffsetFromPin(Window.Pin(Pin), Window.bmpChip, &Window), Tolerance)
            << "pin " << Pin;
    }
    EXPECT_LT(Window.Pin(40)->Box(1)->mapTo(&Window, QPoint()).y(),
              Window.Pin(21)->Box(1)->mapTo(&Window, QPoint()).y());
}

}  // namespace
