#include <pty.h>
#include <unistd.h>

#include <QSerialPort>

#include "link/DownloadPortExecutive.h"
#include "link/DownloadPortFixture.h"
#include "link/PPort.h"
#include "link/ParallelDownloader.h"
#include "monitor/MonitorPortExecutive.h"
#include "platform/SerialPortObject.h"

namespace {

// Records what the executive asks of the serial link, and can refuse to open.
class RecordingSerialLink : public DownloadPortExecutive::SerialLink {
  public:
    void SetCommPort(int16_t PortNumber) override {
        Calls << QStringLiteral("CommPort %1").arg(PortNumber);
    }
    void OpenPort(bool OpenThePort, DownloaderStatusTypes& Status) override {
        Calls << (OpenThePort ? QStringLiteral("Open") : QStringLiteral("Close"));
        Status = OpenThePort && Refuse ? dlCannotOpenPort : dlOK;
    }
    QStringList Calls;
    bool Refuse = false;
};

class DownloadPortExecutiveTest : public DownloadPortFixture {
  protected:
    // Opens LPT PortNumber, reserved, with the reservation the program makes
    // (on the fixture's fake kernel).
    void OpenReservedWithTheSystemsReservation(int16_t PortNumber, const QString& Address) {
        DownloadPortExecutive::SetLptReservation(nullptr);
        StoreParallelPort(PortNumber, Address, true);
        DownloadPortExecutive::Initialize();
    }

    // Outlives the fixture's closing of the ports.
    RecordingSerialLink Link;
};

DownloadPortInfoType Info() {
    DownloadPortInfoType Port;
    DownloadPortExecutive::GetDownloadPortInfo(Port);
    return Port;
}

TEST_F(DownloadPortExecutiveTest, StartUpFindsTheStoredSimulatedChipUsableAndLeavesItsLineClosed) {
    StoreSerialPort(SerialDevices::SimulatedChipPort);
    DownloadPortExecutive::Initialize();
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsParallel());
    EXPECT_FALSE(Line->PortOpen()) << "the port is only tried; a transfer opens it";
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(DownloadPortExecutiveTest, StartUpWithAMissingSerialDeviceLeavesThePortClosedWithoutABox) {
    StoreSerialPort(3);
    DownloadPortExecutive::Initialize();
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_TRUE(Info().IsDefined()) << "the user's wish stays as it was";
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_EQ(DownloadPortExecutive::LastFailureCause(),
              QStringLiteral("No serial device has this number"));
}

TEST_F(DownloadPortExecutiveTest, SerialPortIsTriedThroughTheLinkAndLeftClosed) {
    DownloadPortExecutive::SetSerialLink(&Link);
    StoreSerialPort(5);
    DownloadPortExecutive::Initialize();
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    // ClosePorts first, then the number, the trial, and the closing.
    EXPECT_EQ(Link.Calls, QStringList({QStringLiteral("Close"), QStringLiteral("CommPort 5"),
                                       QStringLiteral("Open"), QStringLiteral("Close")}));
}

TEST_F(DownloadPortExecutiveTest, SerialPortThatWillNotOpenIsNotOpen) {
    Link.Refuse = true;
    DownloadPortExecutive::SetSerialLink(&Link);
    StoreSerialPort(5);
    DownloadPortExecutive::Initialize();
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Link.Calls.last(), QStringLiteral("Close"));
}

TEST_F(DownloadPortExecutiveTest, StartUpOpensTheStoredParallelPortAtItsAddressAndHoldsItsDevice) {
    ParallelDownloader::Initialize();
    StoreParallelPort(2, QStringLiteral("632"), true);
    DownloadPortExecutive::Initialize();
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsParallel());
    EXPECT_EQ(ParallelDownloader::GetDataPort(), 0x278);
    EXPECT_EQ(ParallelDownloader::GetControlPort(), 0x27A);
    EXPECT_EQ(Reservation.Opened, QStringList({QStringLiteral("/dev/parport1")}));
}

TEST_F(DownloadPortExecutiveTest, ParallelPortWithoutReserveHoldsNoDevice) {
    StoreParallelPort(1, QStringLiteral("888"), false);
    DownloadPortExecutive::Initialize();
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_TRUE(Reservation.Opened.isEmpty());
}

TEST_F(DownloadPortExecutiveTest, ADeviceThatCannotBeHeldLeavesTheParallelPortClosedWithItsCause) {
    Reservation.FailWith = QStringLiteral("Permission denied: add the user to the lp group");
    StoreParallelPort(1, QStringLiteral("888"), true);
    DownloadPortExecutive::Initialize();
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(DownloadPortExecutive::LastFailureCause(), Reservation.FailWith);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(DownloadPortExecutiveTest, ClosingTheParallelPortLetsGoOfItsDevice) {
    StoreParallelPort(1, QStringLiteral("888"), true);
    DownloadPortExecutive::Initialize();
    ASSERT_EQ(Reservation.Held, 7);
    DownloadPortExecutive::ClosePorts();
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Reservation.Closed, QList<int>({7}));
    DownloadPortExecutive::ClosePorts();
    EXPECT_EQ(Reservation.Closed, QList<int>({7})) << "a device is let go of once";
}

TEST_F(DownloadPortExecutiveTest, SystemReservationOfAMissingDeviceFailsWithItsCause) {
    Kernel.AddDevice(0, 0x378);
    OpenReservedWithTheSystemsReservation(3, QStringLiteral("888"));
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(DownloadPortExecutive::LastFailureCause(),
              QStringLiteral("No such device: /dev/parport2"));
}

TEST_F(DownloadPortExecutiveTest, SystemReservationHoldsTheDeviceClaimedUntilThePortCloses) {
    Kernel.AddDevice(0, 0x378);
    GlobalData::ChipType = 1;
    OpenReservedWithTheSystemsReservation(1, QStringLiteral("888"));
    ASSERT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_TRUE(Kernel.Devices[0].Claimed);
    EXPECT_TRUE(PPort::IsReserved());
    DownloadPortExecutive::ClosePorts();
    EXPECT_FALSE(Kernel.Devices[0].Claimed);
    EXPECT_EQ(Kernel.OpenDescriptors(), 0);
}

TEST_F(DownloadPortExecutiveTest, SystemReservationOfADeviceTheUserMayNotOpenAsksForTheLpGroup) {
    Kernel.AddDevice(1, 0x278).OpenErrno = EACCES;
    OpenReservedWithTheSystemsReservation(2, QStringLiteral("632"));
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(DownloadPortExecutive::LastFailureCause(),
              QStringLiteral("Permission denied: /dev/parport1; add the user to the lp group"));
}

TEST_F(DownloadPortExecutiveTest, OpeningTheParallelPortTellsItsLptNumberAndBaseToTheProgrammer) {
    StoreParallelPort(99, QStringLiteral("632"), false);
    DownloadPortExecutive::Initialize();
    EXPECT_EQ(PPort::GetPortNumber(), 99);
    EXPECT_EQ(ParallelDownloader::GetDataPort(), 632);
    PPort::SetPortNumber(1);
    ParallelDownloader::SetPortBase(888);
}

TEST_F(DownloadPortExecutiveTest, WrongKindOfPortAfterAChipChangeIsClosedAndStaysSaved) {
    StoreParallelPort(1, QStringLiteral("888"), true);
    GlobalData::ChipType = 1;
    DownloadPortExecutive::Initialize();
    ASSERT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    GlobalData::ChipType = 2;
    DownloadPortExecutive::CheckPortMatchesChip();
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Reservation.Closed, QList<int>({7}));
    EXPECT_TRUE(Info().IsDefined());
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("1"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Mode")), QStringLiteral("Parallel"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Reserve")), QStringLiteral("True"));
}

TEST_F(DownloadPortExecutiveTest, SerialPortIsClosedWhenTheChipBecomesAKv10) {
    StoreSerialPort(SerialDevices::SimulatedChipPort);
    DownloadPortExecutive::Initialize();
    ASSERT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    GlobalData::ChipType = 1;
    DownloadPortExecutive::CheckPortMatchesChip();
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("99"));
}

TEST_F(DownloadPortExecutiveTest, PortOfTheRightKindStaysOpenWhenTheChipIsChecked) {
    StoreSerialPort(SerialDevices::SimulatedChipPort);
    DownloadPortExecutive::Initialize();
    GlobalData::ChipType = 3;
    DownloadPortExecutive::CheckPortMatchesChip();
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    StoreParallelPort(1, QStringLiteral("888"), false);
    DownloadPortExecutive::Initialize();
    GlobalData::ChipType = 1;
    DownloadPortExecutive::CheckPortMatchesChip();
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
}

TEST_F(DownloadPortExecutiveTest, SetUpIsSavedAppliedAndReadBackAtTheNextStart) {
    DownloadPortInfoType Port;
    Port.SetIsDefined(true);
    Port.SetIsParallel(true);
    Port.SetPortNumber(3);
    Port.SetAddress(0x3BC);
    Port.SetReserve(true);
    DownloadPortExecutive::SetDownloadPortInfo(Port);
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Reservation.Opened, QStringList({QStringLiteral("/dev/parport2")}));
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("3"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Mode")), QStringLiteral("Parallel"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Address")), QStringLiteral("956"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Reserve")), QStringLiteral("True"));
    DownloadPortExecutive::ClosePorts();
    DownloadPortExecutive::Initialize();
    const DownloadPortInfoType Again = Info();
    EXPECT_TRUE(Again.IsDefined());
    EXPECT_TRUE(Again.IsParallel());
    EXPECT_EQ(Again.PortNumber(), 3);
    EXPECT_EQ(Again.Address(), 0x3BC);
    EXPECT_TRUE(Again.Reserve());
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
}

TEST_F(DownloadPortExecutiveTest, UndefinedSetUpClosesThePortAndIsSavedAsNone) {
    StoreSerialPort(SerialDevices::SimulatedChipPort);
    DownloadPortExecutive::Initialize();
    DownloadPortInfoType Port = Info();
    Port.SetIsDefined(false);
    DownloadPortExecutive::SetDownloadPortInfo(Port);
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QString());
    DownloadPortExecutive::Initialize();
    EXPECT_FALSE(Info().IsDefined());
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
}

TEST_F(DownloadPortExecutiveTest, SimulatedChipHeldByAnotherPortIsNotOpenAndSaysWhy) {
    SerialPortObject Holder;
    Holder.SetCommPort(SerialDevices::SimulatedChipPort);
    Holder.SetPortOpen(true);
    StoreSerialPort(SerialDevices::SimulatedChipPort);
    DownloadPortExecutive::Initialize();
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(DownloadPortExecutive::LastFailureCause(),
              QStringLiteral("The simulated chip's line is in use"));
    EXPECT_TRUE(Holder.PortOpen()) << "the other port keeps its line";
}

// A pseudo-terminal named in KAVLIN_SERIAL_PORTS stands for the device; a
// serial port object of Qt's holds it as another program would.
TEST_F(DownloadPortExecutiveTest, SerialDeviceHeldByAnotherProgramIsNotOpenAndSaysSo) {
    int Master = -1;
    int Slave = -1;
    char Name[256] = {};
    if (::openpty(&Master, &Slave, Name, nullptr, nullptr) != 0) {
        GTEST_SKIP() << "no pseudo-terminals on this machine (openpty failed)";
    }
    const QByteArray Saved = qgetenv("KAVLIN_SERIAL_PORTS");
    const bool HadSaved = qEnvironmentVariableIsSet("KAVLIN_SERIAL_PORTS");
    qputenv("KAVLIN_SERIAL_PORTS", Name);
    StoreSerialPort(1);
    DownloadPortExecutive::Initialize();
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen()) << "a free device is usable";
    {
        QSerialPort Holder(QString::fromLocal8Bit(Name));
        ASSERT_TRUE(Holder.open(QIODevice::ReadWrite));
        DownloadPortExecutive::Initialize();
        EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
        EXPECT_EQ(DownloadPortExecutive::LastFailureCause(),
                  QStringLiteral("In use by another program"));
    }
    DownloadPortExecutive::ClosePorts();
    if (HadSaved) {
        qputenv("KAVLIN_SERIAL_PORTS", Saved);
    } else {
        qunsetenv("KAVLIN_SERIAL_PORTS");
    }
    ::close(Master);
    ::close(Slave);
}

}  // namespace

namespace {

// The chip has one line: the monitor lets go of it for the trial of the
// download port and takes it back afterwards.
TEST_F(DownloadPortExecutiveTest, TrialOnTheSimulatedLineTakesItFromTheMonitorAndGivesItBack) {
    SerialPortObject Monitor;
    MonitorPortExecutive::SetPortObject(&Monitor);
    MonitorPortInfoType Settings;
    Settings.IsDefined = true;
    Settings.SetPortNumber(static_cast<uint8_t>(SerialDevices::SimulatedChipPort));
    MonitorPortExecutive::SetMonitorPortInfo(Settings);
    ASSERT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());

    StoreSerialPort(SerialDevices::SimulatedChipPort);
    DownloadPortExecutive::Initialize();
    const bool DownloadPortWasFound = DownloadPortExecutive::DownloadPortIsOpen();
    const bool MonitorIsBack = MonitorPortExecutive::IsMonitorPortOpen() && Monitor.PortOpen();
    MonitorPortExecutive::CloseMonitorPort();
    MonitorPortExecutive::SetPortObject(nullptr);
    EXPECT_TRUE(DownloadPortWasFound) << DownloadPortExecutive::LastFailureCause().toStdString();
    EXPECT_TRUE(MonitorIsBack);
}

}  // namespace
