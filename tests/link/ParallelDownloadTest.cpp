#include <gtest/gtest.h>

#include "link/KV10Fixture.h"
#include "platform/ErrObject.h"
#include "support/QtPrinters.h"

namespace {

class ParallelDownloadTest : public KV10Fixture {
  protected:
    bool Download(int32_t FileSizeKVB) {
        bool Success = false;
        ParallelDownloader::ParallelDownload(FileSizeKVB, Success);
        return Success;
    }
    // The page write addresses the board saw.
    std::vector<uint16_t> Pages() const { return Port->Board().PageWrites; }
    static std::vector<uint16_t> PagesUpTo(int Last) {
        std::vector<uint16_t> Addresses;
        for (int Address = 0; Address <= Last; Address += 32) {
            Addresses.push_back(static_cast<uint16_t>(Address));
        }
        return Addresses;
    }
};

TEST_F(ParallelDownloadTest, TheImageGoesToTheSpiEepromAndTheBlockToTheInternalOne) {
    const QByteArray Image = Program(1000);
    ASSERT_TRUE(Download(1000));
    // 1000 bytes are 31 pages and 8 bytes, padded to a 32nd page with blanks.
    EXPECT_EQ(Spi(0, 1000), Image);
    EXPECT_EQ(Spi(1000, 24), QByteArray(24, ' '));
    EXPECT_EQ(Spi(1024, 32768 - 1024), QByteArray(32768 - 1024, '\xFF'));
    EXPECT_EQ(Pages(), PagesUpTo(992));
    EXPECT_EQ(WrittenBlock(), ExpectedWrittenBlock());
    EXPECT_EQ(Internal(19, 12), QByteArray(12, '\xFF')) << "19 to 30 are left as they were";
    EXPECT_EQ(Internal(32, 480), QByteArray(480, '\xFF'));
    EXPECT_TRUE(Boxes->Boxes.isEmpty()) << BoxTexts().join('\n').toStdString();
}

TEST_F(ParallelDownloadTest, TheBlockHoldsTheChipsPinsAndTheKV10Bytes) {
    Program(64);
    ASSERT_TRUE(Download(64));
    const QByteArray Block = WrittenBlock();
    EXPECT_EQ(static_cast<uint8_t>(Block[1]) & 4, 4) << "port D data bit 2";
    EXPECT_EQ(static_cast<uint8_t>(Block[10]), 1) << "pin 39 high: port A bit 0";
    EXPECT_EQ(static_cast<uint8_t>(Block[9]), 1);
    EXPECT_EQ(static_cast<uint8_t>(Block[6]), 1) << "pin 1 low: port B bit 0 an output";
    EXPECT_EQ(static_cast<uint8_t>(Block[7]), 0);
    EXPECT_EQ(static_cast<uint8_t>(Block[4]), 1) << "pin 21 pulled up: port C bit 0";
    EXPECT_EQ(static_cast<uint8_t>(Block[11]), 255);
    EXPECT_EQ(static_cast<uint8_t>(Block[12]), 254);
    EXPECT_EQ(static_cast<uint8_t>(Block[13]), 254);
    EXPECT_EQ(static_cast<uint8_t>(Block[19]), 255) << "address 31";
}

TEST_F(ParallelDownloadTest, TheBlockIsWrittenInAddressOrderWithAddress31Last) {
    Program(40);
    ASSERT_TRUE(Download(40));
    std::vector<uint16_t> Addresses;
    for (const auto& Write : Board().InternalWrites) {
        Addresses.push_back(Write.first);
    }
    std::vector<uint16_t> Expected;
    for (uint16_t Address = 0; Address <= 18; ++Address) {
        Expected.push_back(Address);
    }
    Expected.push_back(31);
    EXPECT_EQ(Addresses, Expected);
    EXPECT_EQ(Board().InternalWritesLost, 0) << "each byte had its time to be programmed";
}

TEST_F(ParallelDownloadTest, TheChipIsLeftInResetWithItsPowerOn) {
    Program(100);
    ASSERT_TRUE(Download(100));
    EXPECT_EQ(Board().Chip(), SimulatedKV10Board::ChipState::InReset);
    EXPECT_EQ(Port->Data(), 0x8F);
    EXPECT_EQ(Port->Control(), 4);
    EXPECT_EQ(Board().ProgramStarts, 0) << "the program is not started";
    EXPECT_EQ(Board().ProgrammingEntries, 1);
}

TEST_F(ParallelDownloadTest, TheEepromIsLockedAtTheEndAndItsStatusShown) {
    Program(100);
    ASSERT_TRUE(Download(100));
    EXPECT_EQ(Board().SpiEeprom.BlockProtect(), 3);
    EXPECT_EQ(DebugText, QStringLiteral("Locked, Status: 0C\r\n*** Finished Downloading\r\n"));
}

TEST_F(ParallelDownloadTest, TheProgressBarFollowsEachPageAndEndsAt0) {
    Program(100);
    ASSERT_TRUE(Download(100));
    EXPECT_EQ(ProgressValues, (QList<int32_t>{1, 33, 65, 97, 0}));
}

TEST_F(ParallelDownloadTest, ALockedEepromFromAnEarlierDownloadIsUnlockedForTheNext) {
    Program(100);
    ASSERT_TRUE(Download(100));
    const QByteArray Second = Program(70, 0, QStringLiteral("second"));
    ASSERT_TRUE(Download(70));
    EXPECT_EQ(Spi(0, 70), Second);
    EXPECT_EQ(Spi(70, 26), QByteArray(26, ' '));
}

TEST_F(ParallelDownloadTest, WithCodeLocation2TheImageGoesNowhereAndOnlyTheConfigurationIsWritten) {
    Program(100, 2);
    ASSERT_TRUE(Download(100));
    EXPECT_EQ(Spi(0, 32768), QByteArray(32768, '\xFF'));
    EXPECT_TRUE(Pages().empty());
    EXPECT_EQ(WrittenBlock(), ExpectedWrittenBlock());
    EXPECT_EQ(static_cast<uint8_t>(WrittenBlock()[17]), 1) << "code location 1";
    EXPECT_EQ(Internal(32, 480), QByteArray(480, '\xFF'));
    EXPECT_EQ(Board().InternalWrites.size(), 20u);
    EXPECT_EQ(DebugText, QStringLiteral("*** Finished Downloading\r\n"));
}

TEST_F(ParallelDownloadTest, CodeLocation255AlsoPutsTheImageIntoTheSpiEeprom) {
    const QByteArray Image = Program(50, 255);
    ASSERT_TRUE(Download(50));
    EXPECT_EQ(Spi(0, 50), Image);
}

TEST_F(ParallelDownloadTest, AnImageOf33BytesWritesTwoPagesTheSecondPaddedWith31Blanks) {
    const QByteArray Image = Program(33);
    ASSERT_TRUE(Download(33));
    EXPECT_EQ(Pages(), (std::vector<uint16_t>{0, 32}));
    EXPECT_EQ(Spi(0, 33), Image);
    EXPECT_EQ(Spi(33, 31), QByteArray(31, ' '));
    EXPECT_EQ(Spi(64, 32768 - 64), QByteArray(32768 - 64, '\xFF'));
}

TEST_F(ParallelDownloadTest, PagesBeginAt0And32And64SoNoWriteCrossesAPageOfTheEeprom) {
    Program(32 * 9 + 5);
    ASSERT_TRUE(Download(32 * 9 + 5));
    EXPECT_EQ(Pages(), PagesUpTo(32 * 9));
    EXPECT_EQ(Board().SpiEeprom.WrappedWrites, 0);
}

TEST_F(ParallelDownloadTest, AWholeEepromOf32768BytesFitsExactly) {
    const QByteArray Image = Program(32768);
    ASSERT_TRUE(Download(32768));
    EXPECT_EQ(Spi(0, 32768), Image);
    EXPECT_EQ(Pages().size(), 1024u);
    EXPECT_EQ(Pages().back(), 32736);
}

TEST_F(ParallelDownloadTest, ASingleBadPageStillEndsInFinishedDownloading) {
    // Page 32 to 63 holds a worn cell: its read-back differs.
    Board().Faults.WornCell = 40;
    const QByteArray Image = Program(200);
    ASSERT_TRUE(Download(200));
    EXPECT_EQ(BoxTexts(), QStringList({QStringLiteral("Bad verify at  32 | Bad Verify")}));
    EXPECT_TRUE(DebugText.endsWith(QStringLiteral("*** Finished Downloading\r\n")))
        << DebugText.toStdString();
    // The pages after the bad one are left; the configuration still goes.
    EXPECT_EQ(Pages(), (std::vector<uint16_t>{0, 32}));
    EXPECT_EQ(Spi(0, 32), Image.left(32));
    EXPECT_EQ(Spi(64, 136), QByteArray(136, '\xFF'));
    EXPECT_EQ(Board().SpiEeprom.BlockProtect(), 3) << "locked after the bad page";
    EXPECT_EQ(WrittenBlock(), ExpectedWrittenBlock());
    EXPECT_EQ(ProgressValues.last(), 0);
}

TEST_F(ParallelDownloadTest, AnEepromBusyFor1000MsBeforeAPageIsNotReadyAndThatPageFails) {
    // Busy from the first status write on, far longer than the watchdog.
    Board().SpiEeprom.WriteCycleNs = 30'000'000'000;
    const int64_t Start = Clock->NowMs;
    Program(100);
    ASSERT_TRUE(Download(100)) << "the run still ends as a success";
    EXPECT_EQ(BoxTexts(), (QStringList{QStringLiteral("SPI EEPROM not ready | EEPROM Error"),
                                       QStringLiteral("Bad verify at  0 | Bad Verify")}));
    EXPECT_TRUE(Pages().empty());
    // 1000 ms before the page, then 500 ms for the lock, which says nothing.
    EXPECT_GE(Clock->NowMs - Start, 1500);
    EXPECT_LT(Clock->NowMs - Start, 1500 + 400);
    EXPECT_FALSE(DebugText.contains(QStringLiteral("Locked")));
    EXPECT_EQ(WrittenBlock(), ExpectedWrittenBlock());
    EXPECT_TRUE(DebugText.endsWith(QStringLiteral("*** Finished Downloading\r\n")));
}

TEST_F(ParallelDownloadTest, AnEepromThatClearsWithin1000MsIsWaitedFor) {
    Board().SpiEeprom.WriteCycleNs = 300'000'000;
    const QByteArray Image = Program(40);
    ASSERT_TRUE(Download(40));
    EXPECT_TRUE(Boxes->Boxes.isEmpty()) << BoxTexts().join('\n').toStdString();
    EXPECT_EQ(Spi(0, 40), Image);
}

TEST_F(ParallelDownloadTest, AWriteBusyFor500MsIsABadVerifyAndTheConfigurationStillGoes) {
    // Ready within the 1000 ms before the page, too slow for the 500 ms after it.
    Board().SpiEeprom.WriteCycleNs = 700'000'000;
    Program(100);
    ASSERT_TRUE(Download(100));
    EXPECT_EQ(BoxTexts(), QStringList({QStringLiteral("Bad verify at  0 | Bad Verify")}));
    EXPECT_EQ(Pages(), (std::vector<uint16_t>{0}));
    EXPECT_EQ(WrittenBlock(), ExpectedWrittenBlock());
    EXPECT_TRUE(DebugText.endsWith(QStringLiteral("*** Finished Downloading\r\n")));
}

TEST_F(ParallelDownloadTest, NoEchoFromTheChipIsInvalidSetupDataAndTheRunStillSucceeds) {
    Board().Faults.NoProgrammingMode = true;
    const QByteArray Image = Program(100);
    ASSERT_TRUE(Download(100));
    EXPECT_EQ(BoxTexts(), QStringList({QStringLiteral(
                              "Setup returned invalid data:  255 | Error Initializing Internal "
                              "EEPROM")}));
    EXPECT_EQ(Spi(0, 100), Image);
    EXPECT_TRUE(Board().InternalWrites.empty());
    EXPECT_EQ(Internal(0, 512), QByteArray(512, '\xFF'));
    EXPECT_TRUE(DebugText.endsWith(QStringLiteral("*** Finished Downloading\r\n")));
    EXPECT_EQ(ProgressValues.last(), 0);
    // The lines stay where the entry left them: power on, reset let go,
    // select low.
    EXPECT_EQ(Port->Data() & 0x9F, 0x1F);
}

TEST_F(ParallelDownloadTest, CodeInTheInternalEepromGoesBehindTheBlockAndThePersistentMemory) {
    GlobalData::PersistentSize = 10;
    GlobalData::CodeSize = 50;
    const QByteArray Image = Program(50, 1);
    ASSERT_TRUE(Download(50));
    EXPECT_EQ(Internal(42, 50), Image) << "from PersistentSize + 32 on";
    EXPECT_EQ(Internal(32, 10), QByteArray(10, '\xFF')) << "the persistent memory is left";
    EXPECT_EQ(Internal(92, 512 - 92), QByteArray(512 - 92, '\xFF'));
    EXPECT_EQ(Spi(0, 32768), QByteArray(32768, '\xFF'));
    EXPECT_EQ(WrittenBlock(), ExpectedWrittenBlock());
    EXPECT_EQ(static_cast<uint8_t>(WrittenBlock()[15]), 42);
    EXPECT_EQ(static_cast<uint8_t>(WrittenBlock()[16]), 0);
    EXPECT_EQ(static_cast<uint8_t>(WrittenBlock()[17]), 255);
    EXPECT_EQ(DebugText, QStringLiteral("\r\n*** Downloading to internal 512 file\r\n"
                                        "*** Finished Downloading\r\n"));
    EXPECT_EQ(ProgressValues.size(), 51);
    EXPECT_EQ(ProgressValues.at(49), 50);
    EXPECT_EQ(Board().InternalWritesLost, 0);
}

TEST_F(ParallelDownloadTest, CodeThatFillsTheInternalEepromTo512BytesIsTaken) {
    GlobalData::PersistentSize = 80;
    GlobalData::CodeSize = 400;
    const QByteArray Image = Program(400, 1);
    ASSERT_TRUE(Download(400));
    EXPECT_EQ(Internal(112, 400), Image);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ParallelDownloadTest, CodeLargerThan512BytesIsRefusedAndTheDownloadFails) {
    GlobalData::PersistentSize = 81;
    GlobalData::CodeSize = 400;
    Program(400, 1);
    EXPECT_FALSE(Download(400));
    EXPECT_EQ(BoxTexts(),
              QStringList({QStringLiteral("Code larger than 512 bytes | Code Size Error")}));
    EXPECT_TRUE(Board().InternalWrites.empty());
    EXPECT_FALSE(DebugText.contains(QStringLiteral("Finished")));
    EXPECT_TRUE(Board().Programming()) << "the chip stays in its programming mode";
}

TEST_F(ParallelDownloadTest,
       CodeInTheInternalEepromWithPersistentSize300IsARunTimeErrorBeforeAnyCode) {
    GlobalData::PersistentSize = 300;
    GlobalData::CodeSize = 100;
    Program(100, 1);
    try {
        Download(100);
        FAIL() << "no run-time error";
    } catch (const RuntimeError& Error) {
        EXPECT_EQ(Error.Number(), 6);
        EXPECT_EQ(Error.Description(), QStringLiteral("Overflow"));
    }
    EXPECT_TRUE(Board().InternalWrites.empty()) << "not one byte of code was written";
    EXPECT_EQ(Internal(0, 512), QByteArray(512, '\xFF'));
    EXPECT_TRUE(Board().Programming());
    EXPECT_FALSE(Port->Claimed()) << "the port is let go on the way out";
}

}  // namespace
