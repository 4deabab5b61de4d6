#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <initializer_list>

#include "sim/SimulatedKV10Board.h"
#include "support/QtPrinters.h"

namespace {

constexpr int64_t Ms = 1'000'000;

// Drives the board's lines by hand, as a parallel port would, a microsecond
// a write.
class BoardLines {
  public:
    explicit BoardLines(SimulatedKV10Board& Board) : Board_(Board) {}

    void Data(uint8_t Value) {
        Ns += 1000;
        Level = Value;
        Board_.DataLines(Value, Ns);
    }
    void Wait(int64_t Milliseconds) { Ns += Milliseconds * Ms; }
    // One byte, most significant bit first, the board's bit read while the
    // clock is high.
    uint8_t Byte(uint8_t Out) {
        uint8_t In = 0;
        for (int Bit = 7; Bit >= 0; --Bit) {
            Data(static_cast<uint8_t>(((Out >> Bit) & 1) != 0 ? Level | 0x40 : Level & ~0x40));
            Data(Level | 0x20);
            if ((Board_.StatusLines(Ns) & 0x20) != 0) {
                In = static_cast<uint8_t>(In | (1 << Bit));
            }
            Data(Level & ~0x20);
        }
        return In;
    }
    // A frame of the SPI EEPROM; the bytes read during it.
    QByteArray Frame(std::initializer_list<uint8_t> Bytes, int ReadCount = 0) {
        QByteArray In;
        Data(Level & ~0x80);
        for (const uint8_t Out : Bytes) {
            In.append(static_cast<char>(Byte(Out)));
        }
        for (int Index = 0; Index < ReadCount; ++Index) {
            In.append(static_cast<char>(Byte(0)));
        }
        Data(Level | 0x80);
        return In;
    }
    uint8_t Status() { return static_cast<uint8_t>(Frame({0x05}, 1).at(1)); }
    void WritePage(uint16_t Address, const QByteArray& Bytes) {
        Data(Level & ~0x80);
        for (const uint8_t Out :
             {uint8_t{0x02}, static_cast<uint8_t>(Address >> 8), static_cast<uint8_t>(Address)}) {
            Byte(Out);
        }
        for (const char Out : Bytes) {
            Byte(static_cast<uint8_t>(Out));
        }
        Data(Level | 0x80);
    }
    QByteArray ReadPage(uint16_t Address, int Count) {
        return Frame({0x03, static_cast<uint8_t>(Address >> 8), static_cast<uint8_t>(Address)},
                     Count)
            .mid(3);
    }
    // The programming entry with the host's pauses.
    void EnterProgramming(int64_t FirstLow = 100, int64_t High = 20, int64_t LastLow = 80) {
        Data(0x8F);
        Wait(20);
        Data(0x1F);
        Wait(FirstLow);
        Data(0x9F);
        Wait(High);
        Data(0x1F);
        Wait(LastLow);
    }
    void WriteInternal(uint16_t Address, uint8_t Value) {
        for (const uint8_t Out : {uint8_t{0x96}, static_cast<uint8_t>(Address & 0xFF),
                                  static_cast<uint8_t>(Address >> 8), Value}) {
            Byte(Out);
        }
    }

    int64_t Ns = 0;
    uint8_t Level = 0;

  private:
    SimulatedKV10Board& Board_;
};

class SimulatedKV10BoardTest : public ::testing::Test {
  protected:
    SimulatedKV10Board Board;
    BoardLines Lines{Board};
};

TEST_F(SimulatedKV10BoardTest, TheFourPowerLinesTogetherPowerTheBoard) {
    EXPECT_FALSE(Board.Powered());
    Lines.Data(0x07);
    EXPECT_FALSE(Board.Powered()) << "three lines are not enough";
    Lines.Data(0x8F);
    EXPECT_TRUE(Board.Powered());
    EXPECT_EQ(Board.Chip(), SimulatedKV10Board::ChipState::InReset);
    Lines.Data(0);
    EXPECT_FALSE(Board.Powered());
    EXPECT_EQ(Board.PowerUps, 1);
    EXPECT_EQ(Board.PowerDowns, 1);
}

TEST_F(SimulatedKV10BoardTest, ReleasingResetWithSelectHighStartsTheProgram) {
    Lines.Data(0x8F);
    Lines.Data(0x9F);
    EXPECT_EQ(Board.Chip(), SimulatedKV10Board::ChipState::Running);
    EXPECT_EQ(Board.ProgramStarts, 1);
    Lines.Data(0x8F);
    EXPECT_EQ(Board.Chip(), SimulatedKV10Board::ChipState::InReset);
}

TEST_F(SimulatedKV10BoardTest, TheControlRegisterIsKeptAsWritten) {
    Board.ControlLines(4, 0);
    EXPECT_EQ(Board.ControlValue(), 4);
    Board.ControlLines(11, 0);
    EXPECT_EQ(Board.ControlValue(), 11);
}

TEST_F(SimulatedKV10BoardTest, UnusedStatusInputsFloatHighAndBusyReadsInverted) {
    EXPECT_EQ(Board.StatusLines(0), 0x7F);
}

TEST_F(SimulatedKV10BoardTest, AnEepromPageIsWrittenAfterWriteEnableAndReadBack) {
    Lines.Data(0x8F);
    Lines.Frame({0x06});
    EXPECT_EQ(Lines.Status() & 0x02, 0x02) << "the write enable latch";
    const QByteArray Page = QByteArray("0123456789abcdefghijklmnopqrstuv");
    Lines.WritePage(64, Page);
    EXPECT_EQ(Lines.Status() & 0x01, 0x01) << "busy in the write cycle";
    Lines.Wait(6);
    EXPECT_EQ(Lines.Status() & 0x01, 0x00);
    EXPECT_EQ(Lines.ReadPage(64, 32), Page);
    EXPECT_EQ(Board.PageWrites, std::vector<uint16_t>({64}));
    EXPECT_EQ(Board.SpiEeprom.WrappedWrites, 0);
}

TEST_F(SimulatedKV10BoardTest, PagesAre32BytesAndAWriteAcrossOneWrapsInsideIt) {
    Lines.Data(0x8F);
    Lines.Frame({0x06});
    Lines.WritePage(16, QByteArray(32, 'x'));
    Lines.Wait(6);
    EXPECT_EQ(Board.SpiEeprom.WrappedWrites, 1);
    EXPECT_EQ(Lines.ReadPage(0, 64), QByteArray(32, 'x') + QByteArray(32, '\xFF'));
}

TEST_F(SimulatedKV10BoardTest, ProtectBitsRefuseAPageWrite) {
    Lines.Data(0x8F);
    Lines.Frame({0x06});
    Lines.Frame({0x01, 0x0C});
    Lines.Wait(6);
    EXPECT_EQ(Lines.Status() & 0x0C, 0x0C);
    Lines.Frame({0x06});
    Lines.WritePage(0, QByteArray(32, 'y'));
    Lines.Wait(6);
    EXPECT_EQ(Board.SpiEeprom.RefusedWrites, 1);
    EXPECT_EQ(Lines.ReadPage(0, 1), QByteArray(1, '\xFF'));
}

TEST_F(SimulatedKV10BoardTest, TheEntrySequenceGetsTheChipToEchoEveryBit) {
    Lines.EnterProgramming();
    EXPECT_EQ(Lines.Byte(0x47), 0x47);
    EXPECT_TRUE(Board.Programming());
    EXPECT_EQ(Lines.Byte(0xA5), 0xA5);
    EXPECT_EQ(Board.ProgrammingEntries, 1);
    EXPECT_EQ(Board.ProgramStarts, 0);
}

TEST_F(SimulatedKV10BoardTest, AnEntryPhaseTooShortStartsTheProgramInstead) {
    Lines.EnterProgramming(100, 2, 80);
    EXPECT_EQ(Board.Chip(), SimulatedKV10Board::ChipState::Running);
    EXPECT_EQ(Lines.Byte(0x47), 0xFF) << "nobody drives the line: it floats high";
}

TEST_F(SimulatedKV10BoardTest, BitsClockedBeforeTheChipListensAreLost) {
    Lines.EnterProgramming(100, 20, 10);
    EXPECT_EQ(Lines.Byte(0x47), 0xFF);
    EXPECT_FALSE(Board.Programming());
}

TEST_F(SimulatedKV10BoardTest, AnInternalWriteLandsAndOneDuringTheLastOnesProgrammingIsLost) {
    Lines.EnterProgramming();
    Lines.Byte(0x47);
    Lines.WriteInternal(0x105, 0x3C);
    Lines.WriteInternal(6, 0x11);
    Lines.Wait(8);
    Lines.WriteInternal(7, 0x22);
    EXPECT_EQ(Board.InternalEeprom[0x105], 0x3C);
    EXPECT_EQ(Board.InternalEeprom[6], 0xFF);
    EXPECT_EQ(Board.InternalEeprom[7], 0x22);
    EXPECT_EQ(Board.InternalWritesLost, 1);
    EXPECT_EQ(Board.InternalWrites.size(), 2u);
}

TEST_F(SimulatedKV10BoardTest, ResetEndsTheProgrammingMode) {
    Lines.EnterProgramming();
    Lines.Byte(0x47);
    Lines.Data(0x8F);
    EXPECT_EQ(Board.Chip(), SimulatedKV10Board::ChipState::InReset);
    Lines.Byte(0x96);
    EXPECT_TRUE(Board.InternalWrites.empty());
}

TEST_F(SimulatedKV10BoardTest, AChipMissingFromItsSocketNeverEchoes) {
    Board.Faults.NoProgrammingMode = true;
    Lines.EnterProgramming();
    EXPECT_EQ(Lines.Byte(0x47), 0xFF);
}

TEST_F(SimulatedKV10BoardTest, AWornCellReadsZeroWhateverIsWritten) {
    Board.Faults.WornCell = 40;
    Lines.Data(0x8F);
    Lines.Frame({0x06});
    Lines.WritePage(32, QByteArray(32, '\x77'));
    Lines.Wait(6);
    const QByteArray Back = Lines.ReadPage(32, 32);
    EXPECT_EQ(Back.at(8), '\0');
    EXPECT_EQ(Back.count('\x77'), 31);
}

TEST_F(SimulatedKV10BoardTest, LosingPowerCutsAFrameWithoutWritingIt) {
    Lines.Data(0x8F);
    Lines.Frame({0x06});
    Lines.Data(0x0F);  // select low
    Lines.Byte(0x02);
    Lines.Byte(0);
    Lines.Byte(0);
    Lines.Byte(0x12);
    Lines.Data(0);
    Lines.Data(0x8F);
    EXPECT_EQ(Board.SpiEeprom.CompletedWrites, 0);
    EXPECT_EQ(Lines.Status() & 0x02, 0) << "the latch went with the power";
}

TEST_F(SimulatedKV10BoardTest, TheBoardKeepsItsEepromsInItsFilesAcrossRuns) {
    QTemporaryDir Folder;
    ASSERT_TRUE(Folder.isValid());
    {
        SimulatedKV10Board First;
        First.KeepEepromsIn(SimulatedChipStore::ForBoard(Folder.path()));
        BoardLines Host(First);
        Host.Data(0x8F);
        Host.Frame({0x06});
        Host.WritePage(0, QByteArray(32, 'k'));
        Host.EnterProgramming();
        Host.Byte(0x47);
        Host.WriteInternal(31, 0x5A);
        First.SaveEeproms(Host.Ns);
    }
    QFile Spi(Folder.filePath(QStringLiteral("spi-eeprom.bin")));
    ASSERT_TRUE(Spi.open(QIODevice::ReadOnly));
    const QByteArray SpiBytes = Spi.readAll();
    ASSERT_EQ(SpiBytes.size(), 32768);
    EXPECT_EQ(SpiBytes.left(33), QByteArray(32, 'k') + '\xFF');
    QFile Internal(Folder.filePath(QStringLiteral("internal-eeprom.bin")));
    ASSERT_TRUE(Internal.open(QIODevice::ReadOnly));
    EXPECT_EQ(Internal.readAll().size(), 512);

    SimulatedKV10Board Second;
    Second.KeepEepromsIn(SimulatedChipStore::ForBoard(Folder.path()));
    EXPECT_EQ(Second.SpiEeprom.Memory[31], 'k');
    EXPECT_EQ(Second.InternalEeprom[31], 0x5A);
    EXPECT_EQ(Second.InternalEeprom[30], 0xFF);
}

}  // namespace
