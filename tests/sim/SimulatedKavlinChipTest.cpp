#include <gtest/gtest.h>

#include "sim/SimulatedKavlinChip.h"

namespace {

class SimulatedKavlinChipTest : public ::testing::Test {
  protected:
    void SetUp() override {
        Chip.SetReplySink([this](const QByteArray& Bytes, int64_t StartNs) {
            Replies.push_back(Bytes);
            Starts.push_back(StartNs);
        });
    }
    void Send(const QByteArray& Bytes) {
        for (const char Byte : Bytes) {
            Now += 1000;
            Chip.Receive(static_cast<uint8_t>(Byte), Now);
        }
    }
    void Catch() {
        Chip.SetAtn(true, Now);
        Chip.SetAtn(false, Now);
        ASSERT_TRUE(Chip.InMonitor());
        Replies.clear();
    }
    static QByteArray Hex(const char* Text) { return QByteArray::fromHex(Text); }

    SimulatedKavlinChip Chip;
    std::vector<QByteArray> Replies;
    std::vector<int64_t> Starts;
    int64_t Now = 0;
};

TEST_F(SimulatedKavlinChipTest, RunningProgramTakesTheSyncByteAsItsOwnInput) {
    Send(Hex("01"));
    EXPECT_TRUE(Replies.empty());
    EXPECT_EQ(Chip.ProgramInput, Hex("01"));
}

TEST_F(SimulatedKavlinChipTest, AtnCatchesTheMonitorWhichAnswersSyncWith6C) {
    Catch();
    Send(Hex("01"));
    ASSERT_EQ(Replies.size(), 1u);
    EXPECT_EQ(Replies[0], Hex("6c"));
    EXPECT_EQ(Starts[0], Now + Chip.ReplyLatencyNs);
}

TEST_F(SimulatedKavlinChipTest, PcLinkProgramAnswersSyncWithoutAtn) {
    Chip.PcLinkProgram = true;
    Send(Hex("01"));
    EXPECT_TRUE(Chip.InMonitor());
    ASSERT_EQ(Replies.size(), 1u);
    EXPECT_EQ(Replies[0], Hex("6c"));
}

TEST_F(SimulatedKavlinChipTest, ProgramHoldingOffAtnIsCaughtOnlyWhileStartingUp) {
    Chip.ProgramHoldsOffAtn = true;
    Chip.SetAtn(true, Now);
    Chip.SetAtn(false, Now);
    EXPECT_FALSE(Chip.InMonitor());
    Chip.PressReset(Now);
    Chip.SetAtn(true, Now + Chip.StartupWindowNs + 1);
    Chip.SetAtn(false, Now + Chip.StartupWindowNs + 2);
    EXPECT_FALSE(Chip.InMonitor());
    Now += Chip.StartupWindowNs + 10;
    Chip.PressReset(Now);
    Chip.SetAtn(true, Now + 1000);
    EXPECT_TRUE(Chip.InMonitor());
}

TEST_F(SimulatedKavlinChipTest, BlockReadRepliesDataAndAChecksumThatSumsToZero) {
    Catch();
    Chip.Ram[0x0302] = 0x80;
    Chip.Ram[0x0303] = 0x7F;
    Chip.Ram[0x0304] = 0x05;
    Send(Hex("2003000203"));
    ASSERT_EQ(Replies.size(), 1u);
    EXPECT_EQ(Replies[0], Hex("807f05fc"));
}

TEST_F(SimulatedKavlinChipTest, InternalEepromReadWrapsAt512Bytes) {
    Catch();
    Chip.InternalEeprom[511] = 0x01;
    Chip.InternalEeprom[0] = 0x02;
    Send(Hex("400200ff01"));
    ASSERT_EQ(Replies.size(), 1u);
    EXPECT_EQ(Replies[0], Hex("0102fd"));
}

TEST_F(SimulatedKavlinChipTest, RamWriteAnswersTheNegatedSum) {
    Catch();
    Send(Hex("2402001000") + Hex("f00f"));
    ASSERT_EQ(Replies.size(), 1u);
    EXPECT_EQ(Replies[0], Hex("01"));
    EXPECT_EQ(Chip.Ram[0x10], 0xF0);
    EXPECT_EQ(Chip.Ram[0x11], 0x0F);
}

TEST_F(SimulatedKavlinChipTest, InternalEepromWriteAcknowledgesEachByteAndEndsWithTheChecksum) {
    Catch();
    Send(Hex("4403000000") + Hex("010203"));
    ASSERT_EQ(Replies.size(), 3u);
    EXPECT_EQ(Replies[0].size(), 1);
    EXPECT_EQ(Replies[1].size(), 1);
    EXPECT_EQ(Replies[2], Hex("03fa"));
    EXPECT_EQ(Chip.InternalEeprom[2], 0x03);
}

TEST_F(SimulatedKavlinChipTest, ExternalFramesPassThroughToTheSpiEeprom) {
    Catch();
    Send(Hex("80010600") + Hex("8006020040a1a2a3") + Hex("00"));
    EXPECT_EQ(Chip.ExternalEeprom.Memory[0x40], 0xA1);
    EXPECT_EQ(Chip.ExternalEeprom.Memory[0x42], 0xA3);
    Replies.clear();
    Now += Chip.ExternalEeprom.WriteCycleNs;
    // The read stays open across frames; only the bytes after the address are data.
    Send(Hex("8003030040") + Hex("80020000") + Hex("80010000"));
    ASSERT_EQ(Replies.size(), 6u);
    EXPECT_EQ(Replies[3], Hex("a1"));
    EXPECT_EQ(Replies[4], Hex("a2"));
    EXPECT_EQ(Replies[5], Hex("a3"));
    EXPECT_FALSE(Chip.ExternalEeprom.Selected());
}

TEST_F(SimulatedKavlinChipTest, LeaveBytesContinueAndResetBytesRestart) {
    Catch();
    Send(Hex("1000"));
    EXPECT_FALSE(Chip.InMonitor());
    EXPECT_EQ(Chip.ContinueCount, 1);
    Catch();
    Send(Hex("10d600"));
    EXPECT_FALSE(Chip.InMonitor());
    EXPECT_EQ(Chip.ResetCount, 1);
}

TEST_F(SimulatedKavlinChipTest, FaultSwitchesBendTheReplies) {
    Catch();
    Chip.Ram[0] = 0x10;
    const QByteArray Read = Hex("2001000000");
    Chip.Faults.WrongChecksum = 1;
    Send(Read);
    Chip.Faults.ShortReply = 1;
    Send(Read);
    Chip.Faults.DroppedByte = 1;
    Send(Read);
    Chip.Faults.ExtraByte = 1;
    Send(Read);
    Send(Read);
    ASSERT_EQ(Replies.size(), 5u);
    EXPECT_EQ(Replies[0], Hex("10f1"));
    EXPECT_EQ(Replies[1], Hex("10"));
    EXPECT_EQ(Replies[2], Hex("f0"));
    EXPECT_EQ(Replies[3], Hex("10f055"));
    EXPECT_EQ(Replies[4], Hex("10f0"));
    Chip.Faults.LateNs = 5'000'000;
    Send(Read);
    EXPECT_EQ(Starts.back(), Now + Chip.ReplyLatencyNs + 5'000'000);
    Chip.Faults.Silent = true;
    Send(Read);
    EXPECT_EQ(Replies.size(), 6u);
}

}  // namespace
