// The simulated KV-20/KV-30 runs the program image in its external EEPROM
// once the host lets it go with a reset, and the host meets that program on
// the line: its prints, its reads, its pins, its halts.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "SimulatedChipFixture.h"
#include "sim/SimulatedChipStore.h"

namespace {

// Prints "tick N" every 100 ms of chip time, N counting in RAM from 1.
constexpr const char* Ticker = R"(
.var Count 4
Main:
    enter 0
Again:
    ldg.w Count
    pushw 1
    add.l
    stg.w Count
    pushs "tick "
    sys PrintString
    ldg.w Count
    str Long
    sys PrintString
    sys PrintNewLine
    pushw 100
    sys WaitMilliseconds
    jmp Again
)";

class SimulatedChipProgramTest : public SimulatedChipFixture {
  protected:
    void Halt() {
        Line->SetDTREnable(true);
        Line->SetDTREnable(false);
        ASSERT_TRUE(Chip().InMonitor());
    }
    // The downloader's Execute: halt, then the reset bytes.
    void Execute() {
        Halt();
        Line->Output(QByteArray::fromHex("10D600"));
        Line->WaitForOutputDrain(1'000'000);
        Wait(1);
        ASSERT_FALSE(Chip().InMonitor());
    }
    void Continue() {
        Line->Output(QByteArray::fromHex("1000"));
        Line->WaitForOutputDrain(1'000'000);
        Wait(1);
    }
    void Wait(int64_t Milliseconds) {
        Clock->SleepMicroseconds(Milliseconds * 1000);
        Line->CatchUp();
    }
    QByteArray Read() { return Line->Input(); }
    int32_t RamLong(int64_t Address) {
        int32_t Value = 0;
        for (int Byte = 3; Byte >= 0; --Byte) {
            Value = (Value << 8) | Chip().Ram[Address + Byte];
        }
        return Value;
    }
};

TEST_F(SimulatedChipProgramTest, AfterTheResetBytesTheImageRunsAndItsPrintsReachTheHost) {
    Flash(Ticker);
    DefaultBlock();
    Execute();
    EXPECT_TRUE(Chip().ProgramRunning());
    Wait(250);
    EXPECT_EQ(Read(), QByteArray("tick 1\r\ntick 2\r\ntick 3\r\n"));
    EXPECT_EQ(RamLong(Symbols.at("Count")), 3);
}

TEST_F(SimulatedChipProgramTest, TheProgramStartsOnceTheStartUpCodeIsDone) {
    Flash(Ticker);
    Halt();
    Line->Output(QByteArray::fromHex("10D600"));
    Line->WaitForOutputDrain(1'000'000);
    const int64_t ResetEndsUs = (Line->LastByteEndsNs() + 999) / 1000;
    Clock->SleepMicroseconds(ResetEndsUs + Chip().StartupCodeNs / 1000 - Clock->MicroTicks() - 10);
    Line->CatchUp();
    EXPECT_EQ(RamLong(Symbols.at("Count")), 0) << "the start-up code still runs";
    Wait(2);
    EXPECT_EQ(RamLong(Symbols.at("Count")), 1);
    EXPECT_EQ(Chip().StartupCodeNs, 2'000'000);
}

TEST_F(SimulatedChipProgramTest, NothingRunsBeforeTheHostLetsTheChipGo) {
    Flash(Ticker);
    Wait(1000);
    EXPECT_FALSE(Chip().ProgramRunning());
    EXPECT_EQ(Read(), QByteArray());
}

TEST_F(SimulatedChipProgramTest, AtnStopsTheProgramWithItsVariablesKeptAndContinueResumesIt) {
    // Timed from the reset to the tick: no start-up code in between.
    Chip().StartupCodeNs = 0;
    Flash(Ticker);
    Execute();
    Wait(150);
    Halt();
    EXPECT_EQ(Read(), QByteArray("tick 1\r\ntick 2\r\n"));
    const int64_t Count = Symbols.at("Count");
    EXPECT_EQ(RamLong(Count), 2);
    // Halted, the program neither prints nor counts, however long.
    Wait(5000);
    EXPECT_EQ(Read(), QByteArray());
    EXPECT_EQ(RamLong(Count), 2);
    // It goes on where it stood, not from the start: its wait had 50 ms left.
    Continue();
    Wait(48);
    EXPECT_EQ(Read(), QByteArray());
    Wait(3);
    EXPECT_EQ(Read(), QByteArray("tick 3\r\n"));
}

TEST_F(SimulatedChipProgramTest, TheSyncByteAloneHaltsARunningProgramAndContinueResumesIt) {
    Flash(Ticker);
    Execute();
    Wait(150);
    EXPECT_EQ(Read(), QByteArray("tick 1\r\ntick 2\r\n"));
    const int CatchesBefore = Chip().CatchCount;
    // No ATN: the PC link's sync byte, answered by the monitor.
    Line->Output(QByteArray::fromHex("01"));
    Wait(1);
    EXPECT_TRUE(Chip().InMonitor());
    EXPECT_EQ(Chip().CatchCount, CatchesBefore + 1);
    EXPECT_EQ(Read(), QByteArray(1, static_cast<char>(SimulatedKavlinChip::Acknowledge)));
    EXPECT_EQ(Chip().ProgramInput, QByteArray()) << "the program never saw the sync byte";
    Wait(1000);
    EXPECT_EQ(RamLong(Symbols.at("Count")), 2);
    Continue();
    Wait(100);
    EXPECT_EQ(Read(), QByteArray("tick 3\r\n"));
}

TEST_F(SimulatedChipProgramTest, ResetStartsTheProgramAgainWithRamCleared) {
    Flash(Ticker);
    Execute();
    Wait(350);
    Read();
    Execute();
    Wait(50);
    EXPECT_EQ(Read(), QByteArray("tick 1\r\n"));
    Line->PressResetButton();
    Wait(50);
    EXPECT_EQ(Read(), QByteArray("tick 1\r\n"));
}

TEST_F(SimulatedChipProgramTest, TheProgramReadsWhatTheHostTypes) {
    Flash(R"(
Main:
    enter 0
Again:
    sys SerialRead
    dup
    pushb 'a'
    sub.l
    pushb 'A'
    add.l
    sys PrintByte
    drop
    jmp Again
)");
    Execute();
    Line->Output("abc");
    Wait(10);
    EXPECT_EQ(Read(), QByteArray("ABC"));
    EXPECT_EQ(Chip().ProgramInput, QByteArray("abc"));
}

TEST_F(SimulatedChipProgramTest, APrintFasterThanTheLineIsHeldBackByTheTransmitFifo) {
    Flash(R"(
.var Printed 4
Main:
    enter 0
Again:
    pushs "0123456789"
    sys PrintString
    ldg.w Printed
    pushw 10
    add.l
    stg.w Printed
    jmp Again
)");
    Execute();
    Wait(1000);
    // One second of the line carries 11,520 bytes, and the program has got
    // no further ahead of them than the FIFO and a byte's time of its run:
    // left alone it would have printed over a million.
    const QByteArray Got = Read();
    EXPECT_GE(Got.size(), 11'500);
    EXPECT_LE(Got.size(), 11'530);
    EXPECT_LE(RamLong(Symbols.at("Printed")), Got.size() + 16 + 20);
    EXPECT_TRUE(Got.startsWith("0123456789012"));
    for (qsizetype At = 0; At < Got.size(); ++At) {
        ASSERT_EQ(Got[At], static_cast<char>('0' + At % 10)) << "at byte " << At;
    }
}

TEST_F(SimulatedChipProgramTest, PinsStartAsTheConfigurationBlockSetsThem) {
    Flash("Main:\n    enter 0\nStay:\n    pushw 1000\n    sys WaitMilliseconds\n    jmp Stay\n");
    DefaultBlock();
    // Pin 5 (port C bit 7) an output driven high, pin 25 (port D bit 7) low:
    // the red LED lights.
    Chip().InternalEeprom[3] = 0x80;
    Chip().InternalEeprom[4] = 0x80;
    Chip().InternalEeprom[0] |= 0x80;
    Execute();
    EXPECT_EQ(Chip().Board.PinState(5), MachinePinState::OutputHigh);
    EXPECT_EQ(Chip().Board.PinState(6), MachinePinState::InputTristate);
    EXPECT_EQ(Chip().Board.PinState(25), MachinePinState::OutputLow);
    EXPECT_TRUE(Chip().Board.LedOn(1));
    EXPECT_FALSE(Chip().Board.LedOn(2));
}

TEST_F(SimulatedChipProgramTest, TheProgramLightsTheLedsAndReadsAPinDrivenFromOutside) {
    Flash(R"(
Main:
    enter 0
Again:
    pushb 2
    pushb 10
    sys PinRead
    sys LedSet
    pushw 10
    sys WaitMilliseconds
    jmp Again
)");
    DefaultBlock();
    Execute();
    Wait(20);
    EXPECT_FALSE(Chip().Board.LedOn(2));
    Chip().Board.Drive(10, true);
    Wait(20);
    EXPECT_TRUE(Chip().Board.LedOn(2));
    EXPECT_EQ(Chip().Board.PinState(26), MachinePinState::OutputLow);
    Chip().Board.Drive(10, false);
    Wait(20);
    EXPECT_FALSE(Chip().Board.LedOn(2));
}

TEST_F(SimulatedChipProgramTest, AnErasedChipRunsNothingAndSaysWhy) {
    Execute();
    Wait(100);
    EXPECT_FALSE(Chip().ProgramRunning());
    EXPECT_FALSE(Chip().ProgramTrouble().empty());
    EXPECT_EQ(Read(), QByteArray());
}

TEST_F(SimulatedChipProgramTest, ARunTimeErrorStopsTheProgramWithItsMessageOnTheLine) {
    Flash("Main:\n    enter 0\n    pushw 1\n    pushw 0\n    div.l\n    end\n");
    Execute();
    Wait(100);
    EXPECT_FALSE(Chip().ProgramRunning());
    EXPECT_TRUE(Read().contains("Division by zero"));
    EXPECT_NE(Chip().ProgramTrouble().find("Division by zero"), std::string::npos);
}

TEST_F(SimulatedChipProgramTest, PersistentCountSurvivesResetsAndAFreshChipOnTheSameFiles) {
    QTemporaryDir Folder;
    ASSERT_TRUE(Folder.isValid());
    Chip().KeepEepromsIn(std::make_unique<SimulatedChipStore>(Folder.path()));
    constexpr const char* Counter = R"(
.persistent Boots 2
Main:
    enter 0
    addrp Boots
    addrp Boots
    ldi.u
    pushw 1
    add.u
    sti.h
    end
)";
    Flash(Counter);
    Chip().InternalEeprom[32] = 0;
    Chip().InternalEeprom[33] = 0;
    Execute();
    Wait(10);
    Execute();
    Wait(10);
    EXPECT_EQ(Chip().InternalEeprom[32], 2);
    // The count reaches the file within the store's second, with no host
    // around to let the chip go.
    Wait(1500);
    Line.reset();

    Line = std::make_shared<SimulatedSerialLine>();
    Line->SetInBufferSize(32767);
    Line->SetSettings(QStringLiteral("115200,N,8,1"));
    Line->SetPortOpen(true);
    Chip().KeepEepromsIn(std::make_unique<SimulatedChipStore>(Folder.path()));
    EXPECT_EQ(Chip().InternalEeprom[32], 2);
    // The program goes in as a download would put it; the count stays.
    Flash(Counter);
    Execute();
    Wait(10);
    EXPECT_EQ(Chip().InternalEeprom[32], 3);
}

}  // namespace
