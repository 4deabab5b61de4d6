#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "platform/ErrObject.h"
#include "platform/ParallelDevices.h"
#include "sim/SimulatedParallelPort.h"
#include "support/QtPrinters.h"
#include "support/VirtualClockService.h"

namespace {

class SimulatedParallelPortTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto Virtual = std::make_unique<VirtualClockService>();
        Clock = Virtual.get();
        Saved = ClockService::Install(std::move(Virtual));
    }
    void TearDown() override {
        SimulatedParallelPort::UninstallSimulatedBoard();
        ClockService::Install(std::move(Saved));
    }

    VirtualClockService* Clock = nullptr;
    std::unique_ptr<ClockService> Saved;
    SimulatedParallelPort Port;
};

TEST_F(SimulatedParallelPortTest, NothingReachesTheBoardBeforeTheClaim) {
    Port.WriteData(0x8F);
    EXPECT_EQ(Port.ReadStatus(), 0xFF);
    EXPECT_FALSE(Port.Board().Powered());
    EXPECT_EQ(Port.DroppedAccesses, 2);
    Port.Claim();
    Port.WriteData(0x8F);
    EXPECT_TRUE(Port.Board().Powered());
    Port.Release();
    Port.WriteData(0);
    EXPECT_TRUE(Port.Board().Powered()) << "a released port writes nothing";
    EXPECT_EQ(Port.Writes, 1);
}

TEST_F(SimulatedParallelPortTest, RegistersReadBackAsWrittenAndTheStatusComesFromTheBoard) {
    Port.Claim();
    Port.WriteData(0x9F);
    Port.WriteControl(4);
    EXPECT_EQ(Port.ReadData(), 0x9F);
    EXPECT_EQ(Port.ReadControl(), 4);
    EXPECT_EQ(Port.Board().ControlValue(), 4);
    EXPECT_EQ(Port.ReadStatus(), 0x7F);
    EXPECT_EQ(Port.Writes, 2);
    EXPECT_EQ(Port.Reads, 3);
}

TEST_F(SimulatedParallelPortTest, TheBoardsTimeIsTheClockServicesAsTheHostsIs) {
    Port.Claim();
    const int64_t Start = Port.NowNs();
    Port.WriteData(1);
    Port.ReadStatus();
    EXPECT_EQ(Port.NowNs(), Start) << "an access takes no time of its own";
    Clock->Sleep(3);
    Clock->SleepMicroseconds(250);
    EXPECT_EQ(Port.NowNs() - Start, 3'250'000);
}

TEST_F(SimulatedParallelPortTest, AClaimCanBeRefusedAsWhenAnotherDriverHoldsThePort) {
    Port.RefuseClaim = QStringLiteral("In use by another driver: simulated board");
    try {
        Port.Claim();
        FAIL() << "claimed";
    } catch (const RuntimeError& Error) {
        EXPECT_EQ(Error.Description(), Port.RefuseClaim);
    }
    EXPECT_FALSE(Port.Claimed());
}

TEST_F(SimulatedParallelPortTest, LettingThePortGoWritesTheBoardsFiles) {
    QTemporaryDir Folder;
    ASSERT_TRUE(Folder.isValid());
    Port.Board().KeepEepromsIn(SimulatedChipStore::ForBoard(Folder.path()));
    Port.Claim();
    // Write enable, then a one-byte page write of 0x5A at address 0, on the
    // data register's select, data and clock lines.
    uint8_t Lines = 0x8F;
    const auto Byte = [&](uint8_t Value) {
        for (int Bit = 7; Bit >= 0; --Bit) {
            Lines = static_cast<uint8_t>(((Value >> Bit) & 1) != 0 ? Lines | 0x40 : Lines & ~0x40);
            Port.WriteData(Lines);
            Port.WriteData(Lines | 0x20);
            Port.WriteData(Lines);
        }
    };
    const auto Frame = [&](std::initializer_list<uint8_t> Bytes) {
        Lines &= 0x7F;
        Port.WriteData(Lines);
        for (const uint8_t Value : Bytes) {
            Byte(Value);
        }
        Lines |= 0x80;
        Port.WriteData(Lines);
    };
    Port.WriteData(Lines);
    Frame({0x06});
    Frame({0x02, 0x00, 0x00, 0x5A});
    QFile Spi(Folder.filePath(QStringLiteral("spi-eeprom.bin")));
    ASSERT_TRUE(Spi.open(QIODevice::ReadOnly));
    EXPECT_EQ(Spi.readAll().at(0), '\xFF') << "kept in memory while the port is held";
    Spi.close();
    Port.Release();
    ASSERT_TRUE(Spi.open(QIODevice::ReadOnly));
    EXPECT_EQ(Spi.readAll().at(0), '\x5A');
    EXPECT_EQ(Port.Releases, 1);
}

TEST_F(SimulatedParallelPortTest, InstalledItIsTheDeviceOfLpt99) {
    auto Shared = std::make_shared<SimulatedParallelPort>();
    SimulatedParallelPort::InstallAsSimulatedBoard(Shared);
    EXPECT_EQ(ParallelDevices::PortAt(99, 0x378), Shared);
    EXPECT_EQ(Shared->DeviceName(), QStringLiteral("simulated board"));
    SimulatedParallelPort::UninstallSimulatedBoard();
    EXPECT_FALSE(ParallelDevices::SimulatedDeviceInstalled());
}

}  // namespace
