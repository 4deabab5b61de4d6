#include <gtest/gtest.h>

#include <cerrno>

#include "platform/SerialDevices.h"
#include "platform/SerialPort.h"

namespace {

using SerialDevices::DeviceInfo;

// Each case names its own devices and environment, and leaves neither behind.
class SerialDevicesTest : public ::testing::Test {
  protected:
    void SetUp() override {
        Saved = qgetenv("KAVLIN_SERIAL_PORTS");
        HadSaved = qEnvironmentVariableIsSet("KAVLIN_SERIAL_PORTS");
        qunsetenv("KAVLIN_SERIAL_PORTS");
    }
    void TearDown() override {
        SerialDevices::SetDeviceLister(nullptr);
        SerialDevices::SetDeviceInfoSource(nullptr);
        if (HadSaved) {
            qputenv("KAVLIN_SERIAL_PORTS", Saved);
        } else {
            qunsetenv("KAVLIN_SERIAL_PORTS");
        }
    }
    static void MachineHas(const QList<DeviceInfo>& Devices) {
        SerialDevices::SetDeviceInfoSource([Devices] { return Devices; });
    }
    static DeviceInfo Device(const QString& Location) { return {Location, {}, {}, {}}; }
    QByteArray Saved;
    bool HadSaved = false;
};

TEST_F(SerialDevicesTest, MachineDevicesOfOtherKindsFollowSerialUsbAndAcmInAStableOrder) {
    MachineHas({Device(QStringLiteral("/dev/rfcomm1")), Device(QStringLiteral("/dev/ttyAMA10")),
                Device(QStringLiteral("/dev/ttyUSB0")), Device(QStringLiteral("/dev/ttyAMA2")),
                Device(QStringLiteral("/dev/ttyACM0")), Device(QStringLiteral("/dev/ttyS1")),
                Device(QStringLiteral("/dev/rfcomm0")), Device(QStringLiteral("/dev/ttyS0"))});
    EXPECT_EQ(SerialDevices::DeviceNames(),
              QStringList({QStringLiteral("/dev/ttyS0"), QStringLiteral("/dev/ttyS1"),
                           QStringLiteral("/dev/ttyUSB0"), QStringLiteral("/dev/ttyACM0"),
                           QStringLiteral("/dev/rfcomm0"), QStringLiteral("/dev/rfcomm1"),
                           QStringLiteral("/dev/ttyAMA2"), QStringLiteral("/dev/ttyAMA10")}));
}

TEST_F(SerialDevicesTest, DevicesNamedInTheEnvironmentComeFirstNumberedFromOne) {
    MachineHas({Device(QStringLiteral("/dev/ttyUSB0")), Device(QStringLiteral("/dev/ttyS0"))});
    qputenv("KAVLIN_SERIAL_PORTS", "/tmp/bridge/ttyV0::/dev/pts/7:/dev/ttyUSB0:/tmp/bridge/ttyV0");
    EXPECT_EQ(SerialDevices::DeviceNames(),
              QStringList({QStringLiteral("/tmp/bridge/ttyV0"), QStringLiteral("/dev/pts/7"),
                           QStringLiteral("/dev/ttyUSB0"), QStringLiteral("/dev/ttyS0")}));
    EXPECT_EQ(SerialDevices::DeviceForPort(1), QStringLiteral("/tmp/bridge/ttyV0"));
    EXPECT_EQ(SerialDevices::DeviceForPort(2), QStringLiteral("/dev/pts/7"));
    EXPECT_EQ(SerialDevices::DeviceForPort(4), QStringLiteral("/dev/ttyS0"));
}

TEST_F(SerialDevicesTest, EnvironmentDevicesComeBeforeAListedMachine) {
    SerialDevices::SetDeviceLister([] { return QStringList({QStringLiteral("/dev/ttyS0")}); });
    qputenv("KAVLIN_SERIAL_PORTS", "/dev/pts/3");
    EXPECT_EQ(SerialDevices::DeviceNames(),
              QStringList({QStringLiteral("/dev/pts/3"), QStringLiteral("/dev/ttyS0")}));
}

TEST_F(SerialDevicesTest, EntryShowsTheNumberTheDeviceAndWhatTheSystemKnowsOfIt) {
    EXPECT_EQ(SerialDevices::EntryText(
                  3, {QStringLiteral("/dev/ttyUSB0"), QStringLiteral("FT232R USB UART"), {}, {}}),
              QStringLiteral("3 - ttyUSB0 FT232R USB UART"));
    EXPECT_EQ(SerialDevices::EntryText(
                  3, {QStringLiteral("/dev/ttyUSB0"), QStringLiteral("FT232R USB UART"),
                      QStringLiteral("FTDI"), QStringLiteral("A50285BI")}),
              QStringLiteral("3 - ttyUSB0 FT232R USB UART (FTDI, serial A50285BI)"));
    EXPECT_EQ(SerialDevices::EntryText(1, Device(QStringLiteral("/tmp/bridge/ttyV0"))),
              QStringLiteral("1 - /tmp/bridge/ttyV0"));
    EXPECT_EQ(SerialDevices::EntryText(5, Device(QString())), QStringLiteral("5"));
}

TEST_F(SerialDevicesTest, PortListHoldsSixteenNumbersTheDevicesBehindThemAndTheSimulatedChip) {
    MachineHas({{QStringLiteral("/dev/ttyUSB0"), QStringLiteral("FT232R USB UART"),
                 QStringLiteral("FTDI"), QString()},
                Device(QStringLiteral("/dev/ttyS0"))});
    const QList<SerialDevices::PortEntry> Entries = SerialDevices::PortList(16);
    ASSERT_EQ(Entries.size(), 17);
    EXPECT_EQ(Entries[0].Number, 1);
    EXPECT_EQ(Entries[0].Text, QStringLiteral("1 - ttyS0"));
    EXPECT_EQ(Entries[1].Text, QStringLiteral("2 - ttyUSB0 FT232R USB UART (FTDI)"));
    EXPECT_EQ(Entries[2].Text, QStringLiteral("3"));
    EXPECT_EQ(Entries[15].Number, 16);
    EXPECT_EQ(Entries[16].Number, SerialDevices::SimulatedChipPort);
    EXPECT_EQ(Entries[16].Text, QStringLiteral("99 - simulated chip"));
}

TEST_F(SerialDevicesTest, PortListGrowsWithTheDevicesAndNeverGivesAwayNumber99) {
    QStringList Many;
    for (int Index = 0; Index < 120; ++Index) {
        Many << QStringLiteral("/dev/ttyS%1").arg(Index);
    }
    SerialDevices::SetDeviceLister([Many] { return Many; });
    MachineHas({});
    const QList<SerialDevices::PortEntry> Entries = SerialDevices::PortList(16);
    ASSERT_EQ(Entries.size(), 120);
    EXPECT_EQ(Entries[97].Text, QStringLiteral("98 - ttyS97"));
    EXPECT_EQ(Entries[98].Text, QStringLiteral("100 - ttyS99"));
    EXPECT_EQ(Entries.last().Text, QStringLiteral("99 - simulated chip"));
}

TEST_F(SerialDevicesTest, OpenFailureIsExplainedInOneLine) {
    using SerialDevices::CauseOfOpenFailure;
    EXPECT_EQ(CauseOfOpenFailure(SerialPortErrors::PortAlreadyOpen, QStringLiteral("/dev/ttyUSB0"),
                                 EACCES),
              QStringLiteral("Permission denied: add the user to the dialout group"));
    EXPECT_EQ(
        CauseOfOpenFailure(SerialPortErrors::PortAlreadyOpen, QStringLiteral("/dev/ttyUSB0"), 0),
        QStringLiteral("In use by another program"));
    EXPECT_EQ(
        CauseOfOpenFailure(SerialPortErrors::InvalidPortNumber, QStringLiteral("/dev/ttyUSB0"), 0),
        QStringLiteral("No such device: /dev/ttyUSB0"));
    EXPECT_EQ(CauseOfOpenFailure(SerialPortErrors::InvalidPortNumber, QString(), 0),
              QStringLiteral("No serial device has this number"));
    EXPECT_EQ(CauseOfOpenFailure(5, QStringLiteral("/dev/ttyUSB0"), 0), QString());
}

TEST_F(SerialDevicesTest, OpenFailureOfAPortLooksAtItsDevice) {
    SerialDevices::SetDeviceLister([] {
        return QStringList({QStringLiteral("/dev/null"), QStringLiteral("/no/such/tty")});
    });
    // /dev/null may be opened by anyone: what refused it must hold it.
    EXPECT_EQ(SerialDevices::OpenFailureCause(1, SerialPortErrors::PortAlreadyOpen),
              QStringLiteral("In use by another program"));
    EXPECT_EQ(SerialDevices::OpenFailureCause(2, SerialPortErrors::InvalidPortNumber),
              QStringLiteral("No such device: /no/such/tty"));
    EXPECT_EQ(SerialDevices::OpenFailureCause(3, SerialPortErrors::InvalidPortNumber),
              QStringLiteral("No serial device has this number"));
    EXPECT_EQ(SerialDevices::OpenFailureCause(SerialDevices::SimulatedChipPort,
                                              SerialPortErrors::InvalidPortNumber),
              QStringLiteral("The simulated chip is not installed"));
}

}  // namespace
