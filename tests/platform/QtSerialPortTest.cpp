#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <QElapsedTimer>

#include "platform/ErrObject.h"
#include "platform/QtSerialPort.h"
#include "platform/SerialDevices.h"
#include "platform/SerialPortObject.h"
#include "support/PseudoTerminal.h"

namespace {

// A pseudo-terminal pair stands for the serial device: the port under test
// opens the slave by its name, the test plays the other end on the master.
class QtSerialPortTest : public ::testing::Test {
  protected:
    void SetUp() override {
        char Name[256] = {};
        if (::openpty(&Master, &Slave, Name, nullptr, nullptr) != 0) {
            Master = -1;
            Slave = -1;
            // A sandbox without /dev/pts has no pair to stand for the device.
            GTEST_SKIP() << "no pseudo-terminals on this machine (openpty failed)";
        }
        SlaveName = QString::fromLocal8Bit(Name);
        SerialDevices::SetDeviceLister([this] { return QStringList({SlaveName}); });
        Port.SetCommPort(1);
        Port.SetSettings(QStringLiteral("115200,N,8,1"));
        Port.SetInBufferSize(4096);
        Port.SetOutBufferSize(4096);
        Port.SetPortOpen(true);
        ASSERT_TRUE(Port.PortOpen());
    }

    void TearDown() override {
        if (Master < 0) {
            return;
        }
        Port.SetPortOpen(false);
        SerialDevices::SetDeviceLister(nullptr);
        ::close(Master);
        ::close(Slave);
    }

    QByteArray ReadMaster(int Count) const { return ReadFromTerminal(Master, Count); }

    static QByteArray AllByteValues() {
        QByteArray All;
        for (int Value = 0; Value < 256; ++Value) {
            All.append(static_cast<char>(Value));
        }
        return All;
    }

    int Master = -1;
    int Slave = -1;
    QString SlaveName;
    SerialPortObject Port;
};

TEST_F(QtSerialPortTest, PortNumberOpensTheListedDevice) {
    auto* Device = dynamic_cast<QtSerialPort*>(Port.Device());
    ASSERT_NE(Device, nullptr);
    EXPECT_EQ(Device->DeviceName(), SlaveName);
}

TEST_F(QtSerialPortTest, AllByteValuesGoOutUnchanged) {
    Port.Output(AllByteValues());
    Port.WaitForOutputDrain(2'000'000);
    EXPECT_EQ(ReadMaster(256), AllByteValues());
    EXPECT_EQ(Port.OutBufferCount(), 0);
}

TEST_F(QtSerialPortTest, AllByteValuesComeInUnchanged) {
    const QByteArray All = AllByteValues();
    ASSERT_EQ(::write(Master, All.constData(), All.size()), All.size());
    Port.WaitForInput(256, 2'000'000);
    EXPECT_EQ(Port.InBufferCount(), 256);
    EXPECT_EQ(Port.Input(), All);
    EXPECT_EQ(Port.InBufferCount(), 0);
}

TEST_F(QtSerialPortTest, ClearingInputDiscardsWhatWaits) {
    ASSERT_EQ(::write(Master, "abc", 3), 3);
    Port.WaitForInput(3, 2'000'000);
    ASSERT_EQ(Port.InBufferCount(), 3);
    Port.SetInBufferCount(0);
    EXPECT_EQ(Port.InBufferCount(), 0);
}

TEST_F(QtSerialPortTest, InputWaitReturnsAtItsLimitWhenNothingComes) {
    QElapsedTimer Timer;
    Timer.start();
    Port.WaitForInput(1, 50'000);
    EXPECT_EQ(Port.InBufferCount(), 0);
    EXPECT_GE(Timer.elapsed(), 45);
    EXPECT_LT(Timer.elapsed(), 1000);
}

TEST_F(QtSerialPortTest, DtrFollowsDTREnable) {
    auto* Device = dynamic_cast<QtSerialPort*>(Port.Device());
    ASSERT_NE(Device, nullptr);
    Port.SetDTREnable(true);
    if (!Device->DTRAccepted()) {
        GTEST_SKIP() << "a pseudo-terminal has no modem control lines, so DTR cannot be driven";
    }
    EXPECT_TRUE(Device->DTRLine());
    Port.SetDTREnable(false);
    EXPECT_FALSE(Device->DTRLine());
}

TEST(QtSerialPortDevices, PortWithoutADeviceRaisesInvalidPortNumber) {
    SerialDevices::SetDeviceLister([] { return QStringList(); });
    SerialPortObject Port;
    Port.SetCommPort(1);
    try {
        Port.SetPortOpen(true);
        FAIL() << "opened a port that has no device";
    } catch (const RuntimeError& Error) {
        EXPECT_EQ(Error.Number(), 8002);
    }
    SerialDevices::SetDeviceLister(nullptr);
}

TEST(QtSerialPortDevices, DeviceThatIsGoneCannotBeOpened) {
    QtSerialPort Port(QStringLiteral("/nonexistent/ttyUSB9"));
    EXPECT_THROW(Port.SetPortOpen(true), RuntimeError);
    EXPECT_FALSE(Port.PortOpen());
}

}  // namespace
