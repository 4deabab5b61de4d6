#include <gtest/gtest.h>

#include "chip/UtilitiesKGUI.h"
#include "monitor/MonitorPortExecutive.h"
#include "platform/SerialDevices.h"
#include "platform/SerialPortObject.h"
#include "sim/SimulatedSerialLine.h"
#include "support/FrameFixture.h"

namespace {

// The executive over a port object of its own, with the simulated chip as
// port 99.
class MonitorPortExecutiveTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        Line = std::make_shared<SimulatedSerialLine>();
        SimulatedSerialLine::InstallAsSimulatedChip(Line);
        MonitorPortExecutive::SetPortObject(&Port);
        MonitorPortExecutive::InitializeMonitorPort();
    }
    void TearDown() override {
        MonitorPortExecutive::CloseMonitorPort();
        MonitorPortExecutive::SetPortObject(nullptr);
        SimulatedSerialLine::UninstallSimulatedChip();
        FrameFixture::TearDown();
    }
    static MonitorPortInfoType SimulatedChipAt(int32_t Baud) {
        MonitorPortInfoType Info;
        Info.IsDefined = true;
        Info.SetPortNumber(SerialDevices::SimulatedChipPort);
        Info.BaudRate = Baud;
        return Info;
    }

    std::shared_ptr<SimulatedSerialLine> Line;
    SerialPortObject Port;
};

TEST(SynthesizeMSCommString, FreshMonitorPortInfoGives19200N81) {
    EXPECT_EQ(UtilitiesKGUI::SynthesizeMSCommString(MonitorPortInfoType()),
              QStringLiteral("19200,N,8,1"));
}

TEST(SynthesizeMSCommString, EveryParityLetterAndStopText) {
    MonitorPortInfoType Info;
    Info.BaudRate = 300;
    Info.SetDataBits(7);
    const char* Letters[] = {"N", "E", "O", "S", "M"};
    for (int Parity = 0; Parity < 5; ++Parity) {
        Info.Parity = Parity;
        EXPECT_EQ(UtilitiesKGUI::SynthesizeMSCommString(Info),
                  QStringLiteral("300,%1,7,1").arg(QLatin1String(Letters[Parity])));
    }
    Info.Parity = 0;
    Info.SetStopBits(1);
    EXPECT_EQ(UtilitiesKGUI::SynthesizeMSCommString(Info), QStringLiteral("300,N,7,1.5"));
    Info.SetStopBits(2);
    EXPECT_EQ(UtilitiesKGUI::SynthesizeMSCommString(Info), QStringLiteral("300,N,7,2"));
}

TEST(SynthesizeMSCommString, UnknownParityAndStopCodesFallBackToNAnd1) {
    MonitorPortInfoType Info;
    Info.Parity = 5;
    Info.SetStopBits(3);
    EXPECT_EQ(UtilitiesKGUI::SynthesizeMSCommString(Info), QStringLiteral("19200,N,8,1"));
    Info.Parity = -1;
    Info.SetStopBits(-1);
    EXPECT_EQ(UtilitiesKGUI::SynthesizeMSCommString(Info), QStringLiteral("19200,N,8,1"));
}

TEST_F(MonitorPortExecutiveTest, DefinedSettingsOpenThePortWithTheirSettingsText) {
    MonitorPortExecutive::SetMonitorPortInfo(SimulatedChipAt(115200));
    EXPECT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_TRUE(Line->PortOpen());
    EXPECT_EQ(Port.CommPort(), SerialDevices::SimulatedChipPort);
    EXPECT_EQ(Port.Settings(), QStringLiteral("115200,N,8,1"));
    EXPECT_EQ(Port.InputLen(), 0);
}

TEST_F(MonitorPortExecutiveTest, SettingsAreSavedAndReadBackAtTheNextStart) {
    MonitorPortInfoType Info = SimulatedChipAt(57600);
    Info.Parity = 2;
    Info.SetDataBits(7);
    Info.SetStopBits(2);
    MonitorPortExecutive::SetMonitorPortInfo(Info);
    EXPECT_EQ(Setting(QStringLiteral("KV20port_Number")), QStringLiteral(" 99,  57600,O,7,20"));
    MonitorPortExecutive::CloseMonitorPort();
    MonitorPortExecutive::InitializeMonitorPort();
    MonitorPortInfoType Read;
    MonitorPortExecutive::GetMonitorPortInfo(Read);
    EXPECT_TRUE(Read.IsDefined);
    EXPECT_EQ(Read.PortNumber(), SerialDevices::SimulatedChipPort);
    EXPECT_EQ(Read.BaudRate, 57600);
    EXPECT_EQ(Read.Parity, 2);
    EXPECT_EQ(Read.DataBits(), 7);
    EXPECT_EQ(Read.StopBits(), 2);
    EXPECT_TRUE(MonitorPortExecutive::IsMonitorPortOpen()) << "a defined port opens at start-up";
}

TEST_F(MonitorPortExecutiveTest, UndefinedSettingsCloseThePortAndAreSavedEmpty) {
    MonitorPortExecutive::SetMonitorPortInfo(SimulatedChipAt(19200));
    ASSERT_TRUE(Line->PortOpen());
    MonitorPortInfoType Info = SimulatedChipAt(19200);
    Info.IsDefined = false;
    MonitorPortExecutive::SetMonitorPortInfo(Info);
    EXPECT_FALSE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_FALSE(Line->PortOpen());
    EXPECT_EQ(Setting(QStringLiteral("KV20port_Number")), QString());
}

TEST_F(MonitorPortExecutiveTest, PortWithoutDeviceStaysClosedWithoutAMessage) {
    MonitorPortInfoType Info = SimulatedChipAt(19200);
    Info.SetPortNumber(3);
    MonitorPortExecutive::SetMonitorPortInfo(Info);
    EXPECT_FALSE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_FALSE(MonitorPortExecutive::LastOpenFailure().isEmpty());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(MonitorPortExecutiveTest, LineHeldByTheDownloadPortCannotOpenAsMonitor) {
    SerialPortObject Download;
    Download.SetCommPort(SerialDevices::SimulatedChipPort);
    Download.SetPortOpen(true);
    MonitorPortExecutive::SetMonitorPortInfo(SimulatedChipAt(19200));
    EXPECT_FALSE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_EQ(MonitorPortExecutive::LastOpenFailure(), QStringLiteral("Port already open"));
    EXPECT_TRUE(Download.PortOpen()) << "the download link keeps its line";
    Download.SetPortOpen(false);
    MonitorPortExecutive::UpdateMonitorPort();
    EXPECT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
}

TEST_F(MonitorPortExecutiveTest, AtnStateFollowsDtrOfTheOpenPort) {
    EXPECT_EQ(MonitorPortExecutive::GetAtnState(), 0);
    bool PortIsOpen = true;
    MonitorPortExecutive::SetAtnState(true, PortIsOpen);
    EXPECT_FALSE(PortIsOpen);
    MonitorPortExecutive::SetMonitorPortInfo(SimulatedChipAt(19200));
    EXPECT_EQ(MonitorPortExecutive::GetAtnState(), 2);
    MonitorPortExecutive::SetAtnState(true, PortIsOpen);
    EXPECT_TRUE(PortIsOpen);
    EXPECT_EQ(MonitorPortExecutive::GetAtnState(), 1);
    EXPECT_TRUE(Line->Chip().AtnLevel());
    MonitorPortExecutive::SetAtnState(false, PortIsOpen);
    EXPECT_EQ(MonitorPortExecutive::GetAtnState(), 2);
    EXPECT_FALSE(Line->Chip().AtnLevel());
}

TEST_F(MonitorPortExecutiveTest, CloseClosesThePortObjectAndKeepsTheSettingsDefined) {
    MonitorPortExecutive::SetMonitorPortInfo(SimulatedChipAt(19200));
    MonitorPortExecutive::CloseMonitorPort();
    EXPECT_FALSE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_FALSE(Port.PortOpen());
    EXPECT_TRUE(MonitorPortExecutive::GetMonitorPortInfo().IsDefined);
    EXPECT_FALSE(Setting(QStringLiteral("KV20port_Number")).isEmpty());
}

TEST(FilterForDisplay, CrBecomesCrLfAndLfIsDropped) {
    EXPECT_EQ(MonitorPortExecutive::FilterForDisplay("A\r\nB\nC\r"), QStringLiteral("A\r\nBC\r\n"));
}

TEST(FilterForDisplay, TabDelAndOtherControlBytesShowAsThePlaceholder) {
    const QString P(QChar(MonitorPortExecutive::DisplayPlaceholder));
    EXPECT_EQ(MonitorPortExecutive::FilterForDisplay(QByteArray("a\tb\x7f", 4)),
              QStringLiteral("a") + P + QStringLiteral("b") + P);
    EXPECT_EQ(MonitorPortExecutive::FilterForDisplay(QByteArray("\x00\x1b\x1f", 3)), P + P + P);
    EXPECT_EQ(MonitorPortExecutive::DisplayPlaceholder, 129);
}

TEST(FilterForDisplay, BytesFrom32To255ShowAsTheirOwnCodes) {
    QByteArray Bytes;
    QString Expected;
    for (int Code = 32; Code < 256; ++Code) {
        if (Code == 127) {
            continue;
        }
        Bytes.append(static_cast<char>(Code));
        Expected.append(QChar(Code));
    }
    EXPECT_EQ(MonitorPortExecutive::FilterForDisplay(Bytes), Expected);
}

}  // namespace
