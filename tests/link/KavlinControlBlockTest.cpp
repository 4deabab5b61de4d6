#include "LinkFixture.h"

namespace {

class KavlinControlBlock : public LinkFixture {
  protected:
    void FillRam(int Address, const QByteArray& Bytes) {
        for (int Index = 0; Index < Bytes.size(); ++Index) {
            Line->Chip().Ram[Address + Index] = static_cast<uint8_t>(Bytes[Index]);
        }
    }
};

TEST_F(KavlinControlBlock, ReadRamSendsItsFrameLowByteFirstAndFillsTheBlockByChipAddress) {
    OpenAndHalt();
    FillRam(0x1234, Hex("0a0b0c0d"));
    KavlinControl::ByteBlock Block(0x1234 + 4 + 2, 0xEE);
    Control->ReadRam(0x1234, 4, Block);
    EXPECT_EQ(Line->Outputs(), QList<QByteArray>({Hex("2004003412")}));
    EXPECT_EQ(Block[0x1233], 0xEE);
    EXPECT_EQ(Block[0x1234], 0x0A);
    EXPECT_EQ(Block[0x1237], 0x0D);
    EXPECT_EQ(Block[0x1238], 0xEE);
    EXPECT_TRUE(Control->ChipIsHalted());
}

TEST_F(KavlinControlBlock, LengthInBlockFramesIsLowByteFirstToo) {
    OpenAndHalt();
    KavlinControl::ByteBlock Block(0x0102 + 0x10, 0);
    Control->ReadInternalEEprom(0x10, 0x0102, Block);
    EXPECT_EQ(Line->Outputs(), QList<QByteArray>({Hex("4002011000")}));
}

TEST_F(KavlinControlBlock, ReadTimingOutFourTimesShowsStringMismatchThenBadRead) {
    OpenAndHalt();
    Line->Chip().Faults.Silent = true;
    KavlinControl::ByteBlock Block(16, 0x77);
    const int64_t Start = Clock->NowMs;
    Control->ReadRam(8, 8, Block);
    EXPECT_EQ(ShownTexts(),
              QStringList({QStringLiteral("String Mismatch"), QStringLiteral("Bad Read")}));
    EXPECT_EQ(Block, KavlinControl::ByteBlock(16, 0x77));
    EXPECT_TRUE(Control->ChipIsHalted());
    EXPECT_EQ(Line->Outputs().size(), 4);
    const int64_t Elapsed = Clock->NowMs - Start;
    EXPECT_GE(Elapsed, 4 * 2000);
    EXPECT_LE(Elapsed, 4 * 2010);
}

TEST_F(KavlinControlBlock, ShortReplyTimesOutLikeSilence) {
    OpenAndHalt();
    Line->Chip().Faults.ShortReply = -1;
    KavlinControl::ByteBlock Block(4, 0x77);
    Control->ReadRam(0, 4, Block);
    EXPECT_EQ(ShownTexts(),
              QStringList({QStringLiteral("String Mismatch"), QStringLiteral("Bad Read")}));
    EXPECT_EQ(Line->Outputs().size(), 4);
    EXPECT_EQ(Block, KavlinControl::ByteBlock(4, 0x77));
}

TEST_F(KavlinControlBlock, WrongReadChecksumIsRetriedWithoutBound) {
    OpenAndHalt();
    FillRam(0, Hex("01020304"));
    Line->Chip().Faults.WrongChecksum = 9;
    KavlinControl::ByteBlock Block(4, 0);
    Control->ReadRam(0, 4, Block);
    EXPECT_EQ(ShownTexts(), QStringList({QStringLiteral("Checksum Bad")}));
    EXPECT_EQ(Line->Outputs().size(), 10);
    EXPECT_EQ(Block, KavlinControl::ByteBlock({1, 2, 3, 4}));
}

TEST_F(KavlinControlBlock, ChecksumFailuresCountTowardsTheTimeOutLimit) {
    OpenAndHalt();
    Line->Chip().Faults.WrongChecksum = -1;
    // After the third wrong answer the chip falls silent.
    Clock->OnSleep = [this](int64_t) {
        if (Line->Outputs().size() >= 3) {
            Line->Chip().Faults.Silent = true;
        }
    };
    KavlinControl::ByteBlock Block(4, 0x55);
    Control->ReadRam(0, 4, Block);
    Clock->OnSleep = nullptr;
    EXPECT_EQ(ShownTexts(),
              QStringList({QStringLiteral("Checksum Bad"), QStringLiteral("String Mismatch"),
                           QStringLiteral("Bad Read")}));
    EXPECT_EQ(Line->Outputs().size(), 4);
    EXPECT_EQ(Block, KavlinControl::ByteBlock(4, 0x55));
}

TEST_F(KavlinControlBlock, ExtraByteBehindAReadReplyIsIgnored) {
    OpenAndHalt();
    FillRam(40, Hex("a1a2"));
    Line->Chip().Faults.ExtraByte = 1;
    KavlinControl::ByteBlock Block(42, 0);
    Control->ReadRam(40, 2, Block);
    EXPECT_EQ(Block[40], 0xA1);
    EXPECT_EQ(Block[41], 0xA2);
    EXPECT_TRUE(ShownTexts().isEmpty());
}

TEST_F(KavlinControlBlock, LateReplyOfOneTryIsTakenByTheNext) {
    OpenAndHalt();
    FillRam(0, Hex("05"));
    Line->Chip().Faults.LateNs = 2'500'000'000;
    KavlinControl::ByteBlock Block(1, 0);
    Control->ReadRam(0, 1, Block);
    EXPECT_EQ(ShownTexts(), QStringList({QStringLiteral("String Mismatch")}));
    EXPECT_EQ(Block[0], 0x05);
}

TEST_F(KavlinControlBlock, WriteRamSendsFrameAndDataInOneString) {
    OpenAndHalt();
    KavlinControl::ByteBlock Block = {0, 0, 0x10, 0x20, 0x30};
    Control->WriteRam(2, 3, Block);
    EXPECT_EQ(Line->Outputs(), QList<QByteArray>({Hex("2403000200"), Hex("102030")}));
    EXPECT_EQ(Line->Chip().Ram[2], 0x10);
    EXPECT_EQ(Line->Chip().Ram[4], 0x30);
}

TEST_F(KavlinControlBlock, WriteRamWithWrongChecksumRaisesTheLinkError) {
    OpenAndHalt();
    Line->Chip().Faults.WrongChecksum = 1;
    KavlinControl::ByteBlock Block = {1, 2};
    try {
        Control->WriteRam(0, 2, Block);
        FAIL() << "no error raised";
    } catch (const RuntimeError& Error) {
        EXPECT_EQ(Error.Number(), static_cast<int32_t>(0x80040000u + 4302u));
    }
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("RAM Write Chksum Bad"));
    EXPECT_EQ(Control->LastErrorCode(), 4302);
    EXPECT_TRUE(Control->ChipIsHalted());
}

TEST_F(KavlinControlBlock, WriteRamToASilentChipRaisesNoCommunications) {
    OpenAndHalt();
    Line->Chip().Faults.Silent = true;
    KavlinControl::ByteBlock Block = {1};
    const int64_t Before = Clock->MicroTicks();
    EXPECT_THROW(Control->WriteRam(0, 1, Block), RuntimeError);
    // It waited its two seconds for the acknowledgement, and no longer.
    const int64_t Waited = Clock->MicroTicks() - Before;
    EXPECT_GE(Waited, 2'000'000);
    EXPECT_LT(Waited, 2'100'000);
    EXPECT_EQ(ShownTexts(),
              QStringList({QStringLiteral("4301"), QStringLiteral("No Communications")}));
    EXPECT_EQ(Control->LastErrorCode(), 4301);
}

TEST_F(KavlinControlBlock, WriteInternalEEpromSendsOneByteAtATimeAndChecksTheSecondReplyByte) {
    OpenAndHalt();
    KavlinControl::ByteBlock Block = {0, 0xAA, 0xBB, 0xCC};
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->WriteInternalEEprom(1, 3, Block, Status);
    EXPECT_EQ(Status, dlOK);
    EXPECT_EQ(Line->Outputs(),
              QList<QByteArray>({Hex("4403000100"), Hex("aa"), Hex("bb"), Hex("cc")}));
    EXPECT_EQ(Line->Chip().InternalEeprom[1], 0xAA);
    EXPECT_EQ(Line->Chip().InternalEeprom[3], 0xCC);

    KavlinControl::ByteBlock Back(4, 0);
    Control->ReadInternalEEprom(1, 3, Back);
    EXPECT_EQ(Back, Block);
}

TEST_F(KavlinControlBlock, WriteInternalEEpromTimeOutGivesTwo) {
    OpenAndHalt();
    Line->Chip().Faults.Silent = true;
    KavlinControl::ByteBlock Block(32, 0x42);
    DownloaderStatusTypes Status = dlOK;
    const int64_t Before = Clock->MicroTicks();
    Control->WriteInternalEEprom(0, 32, Block, Status);
    const int64_t Waited = Clock->MicroTicks() - Before;
    EXPECT_GE(Waited, 2'000'000);
    EXPECT_LT(Waited, 2'100'000);
    EXPECT_EQ(Status, dlNoCommunications);
    EXPECT_EQ(ShownTexts(),
              QStringList({QStringLiteral("4301"), QStringLiteral("No Communications")}));
    EXPECT_TRUE(Control->ChipIsHalted());
    // It gave up on the first byte's acknowledgement.
    EXPECT_EQ(Line->Outputs().size(), 2);
}

TEST_F(KavlinControlBlock, WriteInternalEEpromChecksumWrongGivesNine) {
    OpenAndHalt();
    Line->Chip().Faults.WrongChecksum = 1;
    KavlinControl::ByteBlock Block(32, 0x42);
    DownloaderStatusTypes Status = dlOK;
    Control->WriteInternalEEprom(0, 32, Block, Status);
    EXPECT_EQ(Status, dlChecksumFailed);
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("RAM Write Chksum Bad"));
    EXPECT_TRUE(Control->ChipIsHalted());
}

TEST_F(KavlinControlBlock, WriteInternalEEpromWhoseChecksumNeverComesGivesSeven) {
    OpenAndHalt();
    // The last acknowledgement comes alone: taking the checksum behind it fails.
    Line->Chip().Faults.ShortReply = 1;
    KavlinControl::ByteBlock Block = {0x42};
    DownloaderStatusTypes Status = dlOK;
    Control->WriteInternalEEprom(0, 1, Block, Status);
    EXPECT_EQ(Status, dlWriteFailed);
    EXPECT_EQ(Control->LastErrorCode(), 0);
}

TEST_F(KavlinControlBlock, UnrelatedErrorAfterALinkErrorIsReportedAsThatLinkError) {
    OpenAndHalt();
    Line->Chip().Faults.Silent = true;
    KavlinControl::ByteBlock Block(4, 0);
    DownloaderStatusTypes Status = dlOK;
    Control->WriteInternalEEprom(0, 4, Block, Status);
    ASSERT_EQ(Status, dlNoCommunications);
    Line->Chip().Faults.Silent = false;
    // A block too small for the addresses: a subscript error, not a link error.
    KavlinControl::ByteBlock Small(2, 0);
    Control->WriteInternalEEprom(0, 4, Small, Status);
    EXPECT_EQ(Status, dlNoCommunications);
    EXPECT_EQ(Err().Number, 9);
}

TEST_F(KavlinControlBlock, WriteInternalEEpromDoesNotAskWhetherTheChipIsHalted) {
    OpenPort();
    ASSERT_FALSE(Control->ChipIsHalted());
    // A PC-link style chip already in its monitor answers all the same.
    Line->Chip().PcLinkProgram = true;
    Line->Output(Hex("01"));
    Line->WaitForInput(1, 10'000);
    KavlinControl::ByteBlock Block(6, 9);
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->WriteInternalEEprom(5, 1, Block, Status);
    EXPECT_EQ(Status, dlOK) << Err().Number << " " << Err().Description.toStdString();
}

// A chip already in its monitor (PC link) that the control has not halted
// itself: a failed exchange must mark the chip halted all the same.
class KavlinControlFailureMarksHalted : public KavlinControlBlock {
  protected:
    void SetUp() override {
        KavlinControlBlock::SetUp();
        OpenPort();
        Line->Chip().PcLinkProgram = true;
        Line->Output(Hex("01"));
        Line->WaitForInput(1, 10'000);
        Line->Input();
        ASSERT_FALSE(Control->ChipIsHalted());
    }
};

TEST_F(KavlinControlFailureMarksHalted, AfterABadRead) {
    Line->Chip().Faults.Silent = true;
    KavlinControl::ByteBlock Block(16, 0);
    Control->ReadRam(8, 8, Block);
    EXPECT_TRUE(Control->ChipIsHalted());
}

TEST_F(KavlinControlFailureMarksHalted, AfterAnInternalEEpromTimeOut) {
    Line->Chip().Faults.Silent = true;
    KavlinControl::ByteBlock Block(32, 0x42);
    DownloaderStatusTypes Status = dlOK;
    Control->WriteInternalEEprom(0, 32, Block, Status);
    EXPECT_EQ(Status, dlNoCommunications);
    EXPECT_TRUE(Control->ChipIsHalted());
}

TEST_F(KavlinControlFailureMarksHalted, AfterAWrongInternalEEpromChecksum) {
    Line->Chip().Faults.WrongChecksum = 1;
    KavlinControl::ByteBlock Block(32, 0x42);
    DownloaderStatusTypes Status = dlOK;
    Control->WriteInternalEEprom(0, 32, Block, Status);
    EXPECT_EQ(Status, dlChecksumFailed);
    EXPECT_TRUE(Control->ChipIsHalted());
}

}  // namespace
