#include <gtest/gtest.h>

#include "PlatformTestSupport.h"
#include "platform/ErrObject.h"
#include "platform/ParallelDevices.h"
#include "support/FakePpdevCalls.h"

namespace {

// A port that stands behind LPT 99 in these tests.
class NamedPort : public ParallelPort {
  public:
    QString DeviceName() const override { return QStringLiteral("stand-in"); }
    void Claim() override {}
    void Release() override {}
    bool Claimed() const override { return false; }
    void WriteData(uint8_t) override {}
    uint8_t ReadData() override { return 0; }
    uint8_t ReadStatus() override { return 0; }
    void WriteControl(uint8_t) override {}
    uint8_t ReadControl() override { return 0; }
};

class ParallelDevicesTest : public ::testing::Test {
  protected:
    void SetUp() override { ParallelDevices::SetPpdevCalls(&Kernel); }
    void TearDown() override {
        ParallelDevices::SetPpdevCalls(nullptr);
        ParallelDevices::SetSimulatedDevice(nullptr);
    }
    static QString ErrorOf(int16_t PortNumber, int16_t Base) {
        try {
            ParallelDevices::PortAt(PortNumber, Base);
        } catch (const RuntimeError& Error) {
            return Error.Description();
        }
        return QString();
    }

    FakePpdevCalls Kernel;
};

TEST_F(ParallelDevicesTest, LptNumbersNameTheDevicesFromParport0AndLpt99TheSimulatedBoard) {
    EXPECT_EQ(ParallelDevices::DeviceForLpt(1), QStringLiteral("/dev/parport0"));
    EXPECT_EQ(ParallelDevices::DeviceForLpt(3), QStringLiteral("/dev/parport2"));
    EXPECT_EQ(ParallelDevices::DeviceForLpt(99), QStringLiteral("simulated board"));
}

TEST_F(ParallelDevicesTest, TheBaseAddressIsTheOneTheKernelReports) {
    // A PCI card's port as the second device, at an address of its own.
    Kernel.AddDevice(0, 0x378);
    Kernel.AddDevice(1, 0xD010);
    EXPECT_EQ(ParallelDevices::BaseOf(1), 0xD010);
    EXPECT_EQ(ParallelDevices::IndexForBase(0xD010), 1);
    // The register numbers are 16-bit signed: the card's base is negative there.
    EXPECT_EQ(ParallelDevices::IndexForBase(static_cast<int16_t>(0xD010)), 1);
    EXPECT_EQ(ParallelDevices::PortAt(1, static_cast<int16_t>(0xD010))->DeviceName(),
              QStringLiteral("/dev/parport1"));
}

TEST_F(ParallelDevicesTest, AReportedAddressWinsOverTheStandardOne) {
    Kernel.AddDevice(0, 0x278);
    // parport1, without a file, keeps its standard &H278 too: the first
    // device with the address is taken.
    EXPECT_EQ(ParallelDevices::IndexForBase(0x278), 0);
    EXPECT_EQ(ParallelDevices::IndexForBase(0x378), -1)
        << "parport0 is not at its standard address";
}

TEST_F(ParallelDevicesTest, WithoutTheKernelsFilesTheFirstThreeHaveThePcsStandardAddresses) {
    EXPECT_EQ(ParallelDevices::IndexForBase(0x378), 0);
    EXPECT_EQ(ParallelDevices::IndexForBase(0x278), 1);
    EXPECT_EQ(ParallelDevices::IndexForBase(0x3BC), 2);
    EXPECT_EQ(ParallelDevices::IndexForBase(0x268), -1);
    EXPECT_EQ(ParallelDevices::BaseOf(3), -1);
}

TEST_F(ParallelDevicesTest, ABaseNoDeviceHasIsARunTimeErrorNamingTheAddress) {
    EXPECT_EQ(ErrorOf(1, 0x268), QStringLiteral("No parallel port at address &H268"));
}

TEST_F(ParallelDevicesTest, Lpt99IsTheSimulatedBoardAtAnyBase) {
    EXPECT_EQ(ErrorOf(99, 0x378), QStringLiteral("The simulated board is not installed"));
    EXPECT_FALSE(ParallelDevices::SimulatedDeviceInstalled());
    const auto Board = std::make_shared<NamedPort>();
    ParallelDevices::SetSimulatedDevice([Board] { return Board; });
    EXPECT_TRUE(ParallelDevices::SimulatedDeviceInstalled());
    EXPECT_EQ(ParallelDevices::PortAt(99, 0x268), Board);
    EXPECT_EQ(ParallelDevices::PortOfDevice(QStringLiteral("simulated board")), Board);
}

TEST_F(ParallelDevicesTest, ADeviceNameThatIsNoParportIsRefused) {
    try {
        ParallelDevices::PortOfDevice(QStringLiteral("/dev/lp0"));
        FAIL() << "no error";
    } catch (const RuntimeError& Error) {
        EXPECT_EQ(Error.Description(), QStringLiteral("No such device: /dev/lp0"));
    }
}

}  // namespace
