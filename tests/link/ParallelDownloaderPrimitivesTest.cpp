#include <gtest/gtest.h>

#include "link/PPort.h"
#include "link/ParallelDownloader.h"
#include "platform/ParallelDevices.h"
#include "support/FrameFixture.h"
#include "support/QtPrinters.h"
#include "support/RecordingParallelPort.h"

namespace {

using Access = RecordingParallelPort::Access;

// The programmer's primitives on a port that records every access, held
// by a transfer as the commands hold it.
class ParallelDownloaderPrimitivesTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        Port = std::make_shared<RecordingParallelPort>();
        const auto Shared = Port;
        ParallelDevices::SetSimulatedDevice([Shared] { return Shared; });
        PPort::SetPortNumber(ParallelDevices::SimulatedBoardPort);
        ParallelDownloader::Initialize();
        Transfer = std::make_unique<PPort::Transfer>(ParallelDownloader::GetDataPort());
        ParallelDownloader::WriteDataPort(0);
        Port->Accesses.clear();
    }
    void TearDown() override {
        Transfer.reset();
        PPort::SetPortNumber(1);
        ParallelDevices::SetSimulatedDevice(nullptr);
        FrameFixture::TearDown();
    }
    // The data line levels at each rising clock edge: bit 6 as sent.
    QList<int> BitsOnRisingEdges() const {
        QList<int> Bits;
        uint8_t Before = 0;
        for (const uint8_t Value : Port->Written(RecordingParallelPort::Data)) {
            if ((Value & 0x20) != 0 && (Before & 0x20) == 0) {
                Bits << ((Value & 0x40) != 0 ? 1 : 0);
            }
            Before = Value;
        }
        return Bits;
    }

    std::shared_ptr<RecordingParallelPort> Port;
    std::unique_ptr<PPort::Transfer> Transfer;
};

TEST_F(ParallelDownloaderPrimitivesTest, InitializeFillsTheBitMasksAndTheFirstPortsRegisters) {
    const std::array<uint8_t, 8> Expected{1, 2, 4, 8, 16, 32, 64, 128};
    EXPECT_EQ(ParallelDownloader::GetBitMask(), Expected);
    EXPECT_EQ(ParallelDownloader::GetDataPort(), 888);
    EXPECT_EQ(ParallelDownloader::GetStatusPort(), 889);
    EXPECT_EQ(ParallelDownloader::GetControlPort(), 890);
    ParallelDownloader::SetPortBase(0x278);
    EXPECT_EQ(ParallelDownloader::GetStatusPort(), 0x279);
    EXPECT_EQ(ParallelDownloader::GetControlPort(), 0x27A);
    ParallelDownloader::SetPortBase(888);
}

TEST_F(ParallelDownloaderPrimitivesTest, WriteDataPortWritesSixTimesAndKeepsTheValue) {
    ParallelDownloader::WriteDataPort(0x9F);
    EXPECT_EQ(Port->Written(RecordingParallelPort::Data), QList<uint8_t>(6, 0x9F));
    EXPECT_EQ(ParallelDownloader::GetDataShadow(), 0x9F);
}

TEST_F(ParallelDownloaderPrimitivesTest, WriteControlPortWritesSixTimesToTheControlRegister) {
    ParallelDownloader::WriteControlPort(11);
    EXPECT_EQ(Port->Written(RecordingParallelPort::Control), QList<uint8_t>(6, 11));
    EXPECT_TRUE(Port->Written(RecordingParallelPort::Data).isEmpty());
}

TEST_F(ParallelDownloaderPrimitivesTest, SettingAndClearingBitsWritesTheShadowOnceEach) {
    ParallelDownloader::WriteDataPort(0x0F);
    Port->Accesses.clear();
    ParallelDownloader::SetDataBits(0x80);
    ParallelDownloader::ClearDataBits(0x01);
    EXPECT_EQ(Port->Written(RecordingParallelPort::Data), (QList<uint8_t>{0x8F, 0x8E}));
    EXPECT_EQ(ParallelDownloader::GetDataShadow(), 0x8E);
}

TEST_F(ParallelDownloaderPrimitivesTest, SendByteClocksTheMostSignificantBitFirst) {
    ParallelDownloader::SendByte(0xA6);
    EXPECT_EQ(BitsOnRisingEdges(), (QList<int>{1, 0, 1, 0, 0, 1, 1, 0}));
    // Data, clock up, clock down for each bit, and no read.
    EXPECT_EQ(Port->Accesses.size(), 24);
    EXPECT_EQ(Port->Written(RecordingParallelPort::Data).last() & 0x20, 0);
}

TEST_F(ParallelDownloaderPrimitivesTest, ExchangeByteReadsStatusBit5WhileTheClockIsHighAsItReads) {
    // The other status bits are noise; bit 5 is taken without inversion.
    Port->StatusScript = {0xFF, 0xDF, 0x20, 0x00, 0x3F, 0xC0, 0x20, 0x20};
    EXPECT_EQ(ParallelDownloader::ExchangeByte(0x00), 0xAB);
    const QList<Access>& Made = Port->Accesses;
    ASSERT_EQ(Made.size(), 32);
    for (int Bit = 0; Bit < 8; ++Bit) {
        EXPECT_EQ(Made[Bit * 4 + 1].Value & 0x20, 0x20) << "clock high before the read";
        EXPECT_EQ(Made[Bit * 4 + 2].Which, RecordingParallelPort::Status);
        EXPECT_FALSE(Made[Bit * 4 + 2].IsWrite);
        EXPECT_EQ(Made[Bit * 4 + 3].Value & 0x20, 0) << "clock low after it";
    }
}

TEST_F(ParallelDownloaderPrimitivesTest, EepromCommandsHoldSelectLowForTheWholeFrame) {
    ParallelDownloader::WriteDataPort(0x8F);
    Port->Accesses.clear();
    ParallelDownloader::EEPROMClearProtect();
    const QList<uint8_t> Data = Port->Written(RecordingParallelPort::Data);
    EXPECT_EQ(Data.first(), 0x0F);
    EXPECT_EQ(Data.last(), 0x8F);
    for (int Index = 1; Index + 1 < Data.size(); ++Index) {
        EXPECT_EQ(Data[Index] & 0x80, 0) << Index;
    }
    EXPECT_EQ(BitsOnRisingEdges(), (QList<int>{0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(ParallelDownloaderPrimitivesTest, TheEepromCommandsSendTheirOpcodes) {
    const auto BytesOf = [this](void (*Command)()) {
        Port->Accesses.clear();
        Command();
        QList<int> Bits = BitsOnRisingEdges();
        QList<int> Bytes;
        for (int Index = 0; Index + 8 <= Bits.size(); Index += 8) {
            int Byte = 0;
            for (int Bit = 0; Bit < 8; ++Bit) {
                Byte = Byte * 2 + Bits[Index + Bit];
            }
            Bytes << Byte;
        }
        return Bytes;
    };
    EXPECT_EQ(BytesOf(&ParallelDownloader::EEPROMWriteEnable), QList<int>({0x06}));
    EXPECT_EQ(BytesOf(&ParallelDownloader::EEPROMSetProtect), (QList<int>{0x01, 0x0C}));
    EXPECT_EQ(BytesOf([] { ParallelDownloader::ReadEEPROMStatus(); }), (QList<int>{0x05, 0x00}));
    EXPECT_EQ(BytesOf([] { ParallelDownloader::ReadEEPROMPage(0x1234); }).mid(0, 4),
              (QList<int>{0x03, 0x12, 0x34, 0x00}));
    EXPECT_EQ(BytesOf([] { ParallelDownloader::WriteInternalByte(0x1A5, 0x3C); }),
              (QList<int>{0x96, 0xA5, 0x01, 0x3C}));
}

TEST_F(ParallelDownloaderPrimitivesTest, AnInternalByteIsFollowedByTwoSleepsOf4Ms) {
    const int64_t Start = Clock->NowMs;
    const int SleepsBefore = Clock->SleepCalls;
    ParallelDownloader::WriteInternalByte(31, 0xFF);
    EXPECT_EQ(Clock->NowMs - Start, 8);
    EXPECT_EQ(Clock->SleepCalls - SleepsBefore, 2);
    EXPECT_TRUE(Port->Written(RecordingParallelPort::Control).isEmpty());
}

TEST_F(ParallelDownloaderPrimitivesTest, TheProgrammingEntryTogglesSelectWithItsPauses) {
    Port->StatusValue = 0xFF;
    const int64_t Start = Clock->NowMs;
    bool Success = true;
    ParallelDownloader::EnterProgramming(Success);
    EXPECT_FALSE(Success);
    // 20 ms in reset, 100 ms low, 20 ms high, 80 ms low, then the echo.
    EXPECT_EQ(Clock->NowMs - Start, 220);
    QList<uint8_t> Levels;
    for (const uint8_t Value : Port->Written(RecordingParallelPort::Data)) {
        if (Levels.isEmpty() || Levels.last() != Value) {
            Levels << Value;
        }
    }
    EXPECT_EQ(Levels.mid(0, 4), (QList<uint8_t>{0x8F, 0x1F, 0x9F, 0x1F}));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Setup returned invalid data:  255"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Error Initializing Internal EEPROM"));
}

TEST_F(ParallelDownloaderPrimitivesTest, TheLineStatesWriteTheDataAndThenTheControlRegister) {
    const auto LinesOf = [this](void (*State)()) {
        Port->Accesses.clear();
        State();
        return Port->Accesses;
    };
    const auto Expected = [](uint8_t Data, uint8_t Control) {
        QList<Access> Accesses(6, Access{RecordingParallelPort::Data, true, Data});
        Accesses += QList<Access>(6, Access{RecordingParallelPort::Control, true, Control});
        return Accesses;
    };
    EXPECT_EQ(LinesOf(&ParallelDownloader::ResetKV10), Expected(0x8F, 4));
    EXPECT_EQ(LinesOf(&ParallelDownloader::ExecuteKV10), Expected(0x9F, 4));
    EXPECT_EQ(LinesOf(&ParallelDownloader::PowerDownKV10), Expected(0, 11));
}

}  // namespace
