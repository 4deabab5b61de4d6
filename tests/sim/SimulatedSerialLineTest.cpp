#include <gtest/gtest.h>

#include "platform/ErrObject.h"
#include "platform/SerialDevices.h"
#include "platform/SerialPortObject.h"
#include "sim/SimulatedSerialLine.h"
#include "support/VirtualClockService.h"

namespace {

class SimulatedSerialLineTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto Virtual = std::make_unique<VirtualClockService>();
        Clock = Virtual.get();
        ClockService::Install(std::move(Virtual));
        Line = std::make_shared<SimulatedSerialLine>();
        Line->SetInBufferSize(4096);
        // The host opens the line at the link's rate.
        Line->SetSettings(QStringLiteral("115200,N,8,1"));
        Line->SetPortOpen(true);
    }
    void TearDown() override { ClockService::Install(std::make_unique<VirtualClockService>()); }

    void Catch() {
        Line->SetDTREnable(true);
        Line->SetDTREnable(false);
        ASSERT_TRUE(Line->Chip().InMonitor());
    }
    static QByteArray Hex(const char* Text) { return QByteArray::fromHex(Text); }

    VirtualClockService* Clock = nullptr;
    std::shared_ptr<SimulatedSerialLine> Line;
};

TEST_F(SimulatedSerialLineTest, BytesLeaveAtTenBitsEachAt115200Baud) {
    Line->TransmitFifoBytes = 0;
    Line->Output(QByteArray(116, '\0'));
    EXPECT_EQ(Line->OutBufferCount(), 116);
    Clock->SleepMicroseconds(87);
    EXPECT_EQ(Line->OutBufferCount(), 115);
    Line->WaitForOutputDrain(1'000'000);
    EXPECT_EQ(Line->OutBufferCount(), 0);
    // 116 bytes of 10 bits at 115200 baud: 10.07 ms.
    EXPECT_EQ(Clock->MicroTicks(), (116 * SimulatedSerialLine::ByteNs + 999) / 1000);
}

TEST_F(SimulatedSerialLineTest, LastSixteenBytesWaitInTheTransmitFifoUncounted) {
    Line->Output(QByteArray(116, '\0'));
    EXPECT_EQ(Line->OutBufferCount(), 100);
    Line->WaitForOutputDrain(1'000'000);
    EXPECT_EQ(Line->OutBufferCount(), 0);
    EXPECT_EQ(Clock->MicroTicks(), (100 * SimulatedSerialLine::ByteNs + 999) / 1000);
    // The chip has the filler's last byte 16 byte times later.
    Clock->SleepMicroseconds(16 * SimulatedSerialLine::ByteNs / 1000 - 2);
    Line->OutBufferCount();
    EXPECT_EQ(Line->Chip().ProgramInput.size(), 115);
    Clock->SleepMicroseconds(3);
    Line->OutBufferCount();
    EXPECT_EQ(Line->Chip().ProgramInput.size(), 116);
}

TEST_F(SimulatedSerialLineTest, DrainWaitStopsAtItsLimit) {
    Line->TransmitFifoBytes = 0;
    Line->Output(QByteArray(116, '\0'));
    Line->WaitForOutputDrain(1000);
    EXPECT_EQ(Clock->MicroTicks(), 1000);
    EXPECT_GT(Line->OutBufferCount(), 0);
}

TEST_F(SimulatedSerialLineTest, ReplyReachesTheHostWholeOnceItsLastByteIsIn) {
    Catch();
    Line->Output(Hex("2004000000"));
    Line->WaitForInput(1, 100'000);
    EXPECT_EQ(Line->InBufferCount(), 5);
    // Five bytes out, the chip's latency, five bytes back.
    EXPECT_EQ(Clock->MicroTicks(),
              (10 * SimulatedSerialLine::ByteNs + Line->Chip().ReplyLatencyNs + 999) / 1000);
}

TEST_F(SimulatedSerialLineTest, InputWaitGivesUpAtItsLimitOnASilentChip) {
    Catch();
    Line->Chip().Faults.Silent = true;
    Line->Output(Hex("01"));
    Line->WaitForInput(1, 195'000);
    EXPECT_EQ(Clock->MicroTicks(), 195'000);
    EXPECT_EQ(Line->InBufferCount(), 0);
}

TEST_F(SimulatedSerialLineTest, AllByteValuesPassUnchangedBothWays) {
    Catch();
    QByteArray All;
    uint8_t Sum = 0;
    for (int Value = 0; Value < 256; ++Value) {
        All.append(static_cast<char>(Value));
        Sum = static_cast<uint8_t>(Sum + Value);
    }
    Line->Output(Hex("2400010000") + All);
    Line->WaitForInput(1, 1'000'000);
    EXPECT_EQ(Line->Input(), QByteArray(1, static_cast<char>(-Sum)));
    Line->Output(Hex("2000010000"));
    Line->WaitForInput(257, 1'000'000);
    const QByteArray Back = Line->Input();
    EXPECT_EQ(Back.left(256), All);
    EXPECT_EQ(Line->SentBytes(), Hex("2400010000") + All + Hex("2000010000"));
}

TEST_F(SimulatedSerialLineTest, ClearingInputDropsOnlyWhatHasArrived) {
    Catch();
    Line->Output(Hex("01"));
    Line->WaitForInput(1, 10'000);
    Line->Output(Hex("01"));
    Line->SetInBufferCount(0);
    EXPECT_EQ(Line->InBufferCount(), 0);
    Line->WaitForInput(1, 10'000);
    EXPECT_EQ(Line->Input(), Hex("6c"));
}

TEST_F(SimulatedSerialLineTest, InputBeyondTheBufferIsLost) {
    Catch();
    Line->SetInBufferSize(8);
    Line->Output(Hex("2010000000"));
    Line->WaitForInput(8, 100'000);
    Clock->SleepMicroseconds(10'000);
    EXPECT_EQ(Line->InBufferCount(), 8);
}

TEST_F(SimulatedSerialLineTest, ReplyOnItsWayWhenThePortClosesNeverArrives) {
    Catch();
    Line->Output(Hex("2064000000"));
    Clock->SleepMicroseconds(1000);
    Line->SetPortOpen(false);
    Clock->SleepMicroseconds(20000);
    Line->SetPortOpen(true);
    EXPECT_EQ(Line->InBufferCount(), 0);
    Clock->SleepMicroseconds(20000);
    EXPECT_EQ(Line->InBufferCount(), 0);
}

TEST_F(SimulatedSerialLineTest, ClosedLineRefusesTraffic) {
    Line->SetPortOpen(false);
    EXPECT_THROW(Line->Output(Hex("01")), RuntimeError);
    EXPECT_THROW(Line->InBufferCount(), RuntimeError);
    EXPECT_EQ(Err().Number, 8018);
}

TEST_F(SimulatedSerialLineTest, ResetButtonRestartsTheProgram) {
    Catch();
    Line->PressResetButton();
    EXPECT_FALSE(Line->Chip().InMonitor());
}

TEST(SerialDevices, StableOrderListsSerialThenUsbThenAcmByNumber) {
    const QStringList Ordered =
        SerialDevices::StableOrder({QStringLiteral("/dev/ttyACM0"), QStringLiteral("/dev/ttyS10"),
                                    QStringLiteral("/dev/pts/3"), QStringLiteral("/dev/ttyUSB1"),
                                    QStringLiteral("/dev/ttyS2"), QStringLiteral("/dev/ttyUSB0")});
    EXPECT_EQ(Ordered, QStringList({QStringLiteral("/dev/ttyS2"), QStringLiteral("/dev/ttyS10"),
                                    QStringLiteral("/dev/ttyUSB0"), QStringLiteral("/dev/ttyUSB1"),
                                    QStringLiteral("/dev/ttyACM0")}));
}

TEST(SerialDevices, PortNumberNamesTheNthDeviceAndSimulatedChipComesLast) {
    SerialDevices::SetDeviceLister([] {
        return QStringList({QStringLiteral("/dev/ttyS0"), QStringLiteral("/dev/ttyUSB0")});
    });
    EXPECT_EQ(SerialDevices::DeviceForPort(1), QStringLiteral("/dev/ttyS0"));
    EXPECT_EQ(SerialDevices::DeviceForPort(2), QStringLiteral("/dev/ttyUSB0"));
    EXPECT_TRUE(SerialDevices::DeviceForPort(3).isEmpty());
    EXPECT_TRUE(SerialDevices::DeviceForPort(0).isEmpty());
    EXPECT_EQ(SerialDevices::SimulatedChipPortNumber(), 99);
    EXPECT_EQ(SerialDevices::PortEntries().last(), QStringLiteral("simulated chip"));
    SerialDevices::SetDeviceLister(nullptr);
}

TEST(SerialDeviceList, SimulatedChipKeepsItsNumberHoweverManyDevicesThereAre) {
    QStringList Many;
    for (int Index = 0; Index < 120; ++Index) {
        Many << QStringLiteral("/dev/ttyS%1").arg(Index);
    }
    SerialDevices::SetDeviceLister([] { return QStringList(); });
    const int16_t WithNone = SerialDevices::SimulatedChipPortNumber();
    SerialDevices::SetDeviceLister([Many] { return Many; });
    EXPECT_EQ(SerialDevices::SimulatedChipPortNumber(), WithNone);
    EXPECT_TRUE(SerialDevices::DeviceForPort(WithNone).isEmpty())
        << "the simulated chip's number never opens a device";
    EXPECT_EQ(SerialDevices::DeviceForPort(98), QStringLiteral("/dev/ttyS97"));
    EXPECT_EQ(SerialDevices::DeviceForPort(100), QStringLiteral("/dev/ttyS99"));
    SerialDevices::SetDeviceLister(nullptr);
}

TEST(SerialDevices, SimulatedChipEntryOpensTheInstalledLine) {
    SerialDevices::SetDeviceLister([] { return QStringList(); });
    auto Line = std::make_shared<SimulatedSerialLine>();
    SerialPortObject Port;
    Port.SetCommPort(1);
    EXPECT_THROW(Port.SetPortOpen(true), RuntimeError) << "no device is port 1";
    Port.SetCommPort(SerialDevices::SimulatedChipPortNumber());
    EXPECT_THROW(Port.SetPortOpen(true), RuntimeError) << "no simulated chip is installed";
    SimulatedSerialLine::InstallAsSimulatedChip(Line);
    Port.SetDTREnable(false);
    Port.SetPortOpen(true);
    EXPECT_TRUE(Line->PortOpen());
    EXPECT_EQ(Port.Device(), Line.get());
    EXPECT_THROW(Port.SetCommPort(2), RuntimeError);
    Port.SetPortOpen(false);
    EXPECT_FALSE(Line->PortOpen());
    SimulatedSerialLine::UninstallSimulatedChip();
    SerialDevices::SetDeviceLister(nullptr);
}

TEST_F(SimulatedSerialLineTest, ProgramPrintsReachTheHostAtTheLinesPace) {
    Line->ProgramPrints("Hello\r\n");
    EXPECT_EQ(Line->InBufferCount(), 0);
    Clock->SleepMicroseconds(3 * SimulatedSerialLine::ByteNs / 1000 + 1);
    EXPECT_EQ(Line->Input(), QByteArray("Hel"));
    Clock->SleepMicroseconds(1000);
    EXPECT_EQ(Line->Input(), QByteArray("lo\r\n"));
}

TEST_F(SimulatedSerialLineTest, ResidentMonitorPrintsNothingOfTheProgram) {
    Catch();
    Line->ProgramPrints("lost");
    Clock->SleepMicroseconds(1000);
    EXPECT_EQ(Line->InBufferCount(), 0);
}

TEST_F(SimulatedSerialLineTest, RunningProgramKeepsWhatItIsSentAndCanEchoIt) {
    Line->Chip().ProgramEchoes = true;
    Line->Output("ok\r");
    Clock->SleepMicroseconds(1000);
    EXPECT_EQ(Line->Input(), QByteArray("ok\r"));
    EXPECT_EQ(Line->Chip().ProgramInput, QByteArray("ok\r"));
}

TEST_F(SimulatedSerialLineTest, ClosedPortReceivesNothingOfWhatWasPrinted) {
    Line->ProgramPrints("early");
    Line->SetPortOpen(false);
    Clock->SleepMicroseconds(1000);
    Line->SetPortOpen(true);
    Clock->SleepMicroseconds(1000);
    EXPECT_EQ(Line->InBufferCount(), 0);
}

TEST_F(SimulatedSerialLineTest, APrintUnderWayIsReceivedFromTheMomentThePortIsOpenAgain) {
    // One byte every 86.8 us: "h" and "e" are in at 200 us, "l" comes while
    // the port is closed, "l" and "o" after it is open again.
    Line->ProgramPrints("hello");
    Clock->SleepMicroseconds(200);
    Line->SetPortOpen(false);
    Clock->SleepMicroseconds(100);
    Line->SetPortOpen(true);
    Clock->SleepMicroseconds(1000);
    EXPECT_EQ(Line->Input(), QByteArray("lo"));
    // Closed and opened again at once, as the download link hands the line
    // to the monitor port: nothing of the print is lost.
    Line->ProgramPrints("start");
    Line->SetPortOpen(false);
    Line->SetPortOpen(true);
    Clock->SleepMicroseconds(1000);
    EXPECT_EQ(Line->Input(), QByteArray("start"));
}

TEST_F(SimulatedSerialLineTest, LineEventsAreTakenOnceAndOverflowIsOne) {
    Line->LineEvent(CommEvents::Break);
    EXPECT_EQ(Line->TakeCommEvents(), QList<int32_t>({CommEvents::Break}));
    EXPECT_TRUE(Line->TakeCommEvents().isEmpty());
    Line->SetPortOpen(false);
    Line->SetInBufferSize(4);
    Line->SetPortOpen(true);
    Line->ProgramPrints("123456");
    Clock->SleepMicroseconds(1000);
    EXPECT_EQ(Line->Input(), QByteArray("1234"));
    EXPECT_TRUE(Line->TakeCommEvents().contains(CommEvents::ReceiveOverflow));
}

TEST_F(SimulatedSerialLineTest, AByteTakesItsStartDataParityAndStopBitsAtTheSettingsRate) {
    EXPECT_EQ(SimulatedSerialLine::ByteNsFor(QStringLiteral("115200,N,8,1")),
              SimulatedSerialLine::ByteNs);
    EXPECT_EQ(SimulatedSerialLine::ByteNsFor(QStringLiteral("19200,N,8,1")), 520'833);
    // 1 + 7 + 1 + 2 bits.
    EXPECT_EQ(SimulatedSerialLine::ByteNsFor(QStringLiteral("9600,E,7,2")), 1'145'833);
    EXPECT_EQ(SimulatedSerialLine::ByteNsFor(QStringLiteral("2400,n,8,1.5")), 4'375'000);
    EXPECT_EQ(SimulatedSerialLine::ByteNsFor(QStringLiteral("  1200 , M , 5 , 1")), 6'666'667);
    // A rate that is no number is taken as 9600, as a hardware port takes it.
    EXPECT_EQ(SimulatedSerialLine::ByteNsFor(QStringLiteral("fast,N,8,1")), 1'041'667);
}

// The host reopens the line with the monitor port's settings.
void ReopenAt(SimulatedSerialLine& Line, const QString& Settings) {
    Line.SetPortOpen(false);
    Line.SetSettings(Settings);
    Line.SetPortOpen(true);
}

TEST_F(SimulatedSerialLineTest, At19200BaudTheHostsBytesReachTheChipAtThatRate) {
    ReopenAt(*Line, QStringLiteral("19200,N,8,1"));
    EXPECT_EQ(Line->LineByteNs(), 520'833);
    Line->TransmitFifoBytes = 0;
    const int64_t StartUs = Clock->MicroTicks();
    Line->Output("hello");
    Line->WaitForOutputDrain(1'000'000);
    EXPECT_EQ(Clock->MicroTicks() - StartUs, (5 * 520'833 + 999) / 1000);
    // Four byte times in, the fifth byte is still on the wire.
    ReopenAt(*Line, QStringLiteral("19200,N,8,1"));
    Line->Chip().ProgramInput.clear();
    Line->Output("world");
    Clock->SleepMicroseconds(4 * 520'833 / 1000 + 1);
    Line->OutBufferCount();
    EXPECT_EQ(Line->Chip().ProgramInput, QByteArray("worl"));
}

TEST_F(SimulatedSerialLineTest, At19200BaudWhatTheProgramPrintsReachesTheHostAtThatRate) {
    ReopenAt(*Line, QStringLiteral("19200,N,8,1"));
    const int64_t StartNs = Clock->MicroTicks() * 1000;
    Line->ProgramPrints("0123456789");
    // At 115200 baud all ten bytes would be in after 0.87 ms.
    Clock->SleepMicroseconds(10 * SimulatedSerialLine::ByteNs / 1000 + 10);
    EXPECT_EQ(Line->Input(), QByteArray("0"));
    const int64_t TenBytesUs = (StartNs + 10 * 520'833) / 1000 + 1;
    Clock->SleepMicroseconds(TenBytesUs - Clock->MicroTicks() - 2);
    EXPECT_EQ(Line->Input(), QByteArray("12345678"));
    Clock->SleepMicroseconds(3);
    EXPECT_EQ(Line->Input(), QByteArray("9"));
}

TEST_F(SimulatedSerialLineTest, ReopenedAt115200TheLineRunsAtTheLinkRateAgain) {
    ReopenAt(*Line, QStringLiteral("19200,N,8,1"));
    ReopenAt(*Line, QStringLiteral("115200,N,8,1"));
    EXPECT_EQ(Line->LineByteNs(), SimulatedSerialLine::ByteNs);
    EXPECT_EQ(Line->Chip().TransmitByteNs, SimulatedSerialLine::ByteNs);
    const int64_t StartNs = Clock->MicroTicks() * 1000;
    Line->ProgramPrints("0123456789");
    Clock->SleepMicroseconds((StartNs + 10 * SimulatedSerialLine::ByteNs) / 1000 + 1 -
                             Clock->MicroTicks());
    EXPECT_EQ(Line->Input(), QByteArray("0123456789"));
}

}  // namespace
