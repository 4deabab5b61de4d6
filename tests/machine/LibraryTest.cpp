// The system library: pins, the LEDs, waits in chip time, the timer, and
// the serial line out and in.
#include <bit>
#include <chrono>

#include "MachineFixture.h"

namespace {

class LibraryTest : public MachineFixture {};

TEST_F(LibraryTest, PinSetGivesThePinItsState) {
    ASSERT_TRUE(Load(Program(R"(
        pushb 5
        pushb 1
        sys PinSet
        pushb 27
        pushb 3
        sys PinSet
        pushb 5
        pushb 0
        sys PinSet
    )")));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_EQ(Board.Pins[5], MachinePinState::OutputLow);
    EXPECT_EQ(Board.Pins[27], MachinePinState::InputPullup);
    ASSERT_EQ(Board.PinChanges.size(), 3u);
    EXPECT_EQ(Board.PinChanges[0].State, MachinePinState::OutputHigh);
    EXPECT_LT(Board.PinChanges[0].Ns, Board.PinChanges[2].Ns);
}

TEST_F(LibraryTest, PinsTheChipDoesNotHaveAreRefused) {
    for (const char* Pin : {"1", "4", "21", "28", "0", "41", "261"}) {
        SCOPED_TRACE(Pin);
        ASSERT_TRUE(Load(Program(std::string("pushw ") + Pin + "\npushb 1\nsys PinSet")));
        ExpectError(RunTimeError::InvalidPin);
    }
}

TEST_F(LibraryTest, EachChipHasItsOwnPins) {
    ChipType = 3;
    ASSERT_TRUE(Load(Program("pushb 1\npushb 1\nsys PinSet", ".chip 3")));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    ChipType = 1;
    ASSERT_TRUE(Load(Program("pushb 9\npushb 1\nsys PinSet", ".chip 1")));
    ExpectError(RunTimeError::InvalidPin);
}

TEST_F(LibraryTest, PinStateAboveThreeIsRefused) {
    ASSERT_TRUE(Load(Program("pushb 5\npushb 4\nsys PinSet")));
    ExpectError(RunTimeError::InvalidArgument);
}

TEST_F(LibraryTest, PinReadGivesTheLevel) {
    Board.Drive(6, true);
    ASSERT_TRUE(Load(Program(R"(
        pushb 6
        pushb 2
        sys PinSet
        pushb 6
        sys PinRead
        pushb 7
        pushb 3
        sys PinSet
        pushb 7
        sys PinRead
        pushb 8
        pushb 0
        sys PinSet
        pushb 8
        sys PinRead
        pushb 9
        sys PinRead
    )")));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_EQ(Stack(), (std::vector<int64_t>{1, 1, 0, 0}));
}

TEST_F(LibraryTest, LedsGoOnAndOff) {
    ASSERT_TRUE(Load(Program(R"(
        pushb 1
        pushi -1
        sys LedSet
        pushb 2
        pushi -1
        sys LedSet
        pushb 2
        pushb 0
        sys LedSet
    )")));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_TRUE(Board.Leds[1]);
    EXPECT_FALSE(Board.Leds[2]);
    EXPECT_EQ(Board.LedChanges.size(), 3u);
}

TEST_F(LibraryTest, ThereAreTwoLeds) {
    ASSERT_TRUE(Load(Program("pushb 3\npushb 1\nsys LedSet")));
    ExpectError(RunTimeError::InvalidLed);
}

TEST_F(LibraryTest, WaitMillisecondsSleepsInChipTime) {
    ASSERT_TRUE(Load(Program(R"(
        pushw 250
        sys WaitMilliseconds
        sys TimerMilliseconds
    )")));
    EXPECT_EQ(RunFor(0.1), BytecodeMachine::State::Sleeping);
    EXPECT_EQ(Machine->Now(), 100'000'000);
    EXPECT_EQ(RunFor(0.1), BytecodeMachine::State::Sleeping);
    EXPECT_EQ(RunFor(0.1), BytecodeMachine::State::Ended);
    ASSERT_EQ(Stack().size(), 1u);
    EXPECT_EQ(Stack()[0], 250);
    EXPECT_GE(Machine->WakeNs(), 250'000'000);
}

TEST_F(LibraryTest, WaitSecondsTakesASingle) {
    ASSERT_TRUE(Load(Program(R"(
        pushf 1.5
        sys WaitSeconds
        sys TimerSeconds
    )")));
    EXPECT_EQ(RunFor(1.4), BytecodeMachine::State::Sleeping);
    EXPECT_EQ(RunFor(0.2), BytecodeMachine::State::Ended);
    const float Seconds = std::bit_cast<float>(Machine->Values()[0]);
    EXPECT_NEAR(Seconds, 1.5, 0.0001);
}

TEST_F(LibraryTest, ANegativeWaitIsRefused) {
    ASSERT_TRUE(Load(Program("pushf -1\nsys WaitSeconds")));
    ExpectError(RunTimeError::InvalidArgument);
}

TEST_F(LibraryTest, TenSecondWaitTakesNoHostTime) {
    ASSERT_TRUE(Load(Program(R"(
        pushw 10
        conv Long Single
        sys WaitSeconds
        pushs "done"
        sys PrintString
    )")));
    const auto Before = std::chrono::steady_clock::now();
    EXPECT_EQ(RunFor(11), BytecodeMachine::State::Ended);
    EXPECT_LT(std::chrono::steady_clock::now() - Before, std::chrono::milliseconds(200));
    EXPECT_EQ(Board.Output, "done");
    EXPECT_GE(Machine->Now(), 10'000'000'000);
}

TEST_F(LibraryTest, TimerRunsWithInstructions) {
    ASSERT_TRUE(Load(Program(R"(
        pushw 0
        stg.w N
Again:
        incg.l N, 1
        ldg.w N
        pushw 1000
        jle.l Again
        sys TimerMilliseconds
    )",
                             ".var N 4")));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    // About 4,000 instructions at a microsecond each.
    EXPECT_EQ(Stack(), std::vector<int64_t>{4});
}

TEST_F(LibraryTest, PrintByteSendsOneRawByte) {
    EXPECT_EQ(Run(Program("pushb 7\nsys PrintByte\npushw 0x141\nsys PrintByte")), std::string("\x07"
                                                                                              "A"));
}

TEST_F(LibraryTest, TryReadGivesMinusOneWhenNothingWaits) {
    ASSERT_TRUE(Load(Program("sys SerialAvailable\nsys SerialTryRead")));
    RunFor();
    EXPECT_EQ(Stack(), (std::vector<int64_t>{0, -1}));
    Board.Type("A");
    ASSERT_TRUE(Machine->Start(0));
    RunFor();
    EXPECT_EQ(Stack(), (std::vector<int64_t>{-1, 65}));
}

TEST_F(LibraryTest, SerialReadWaitsForTheByteToCome) {
    ASSERT_TRUE(Load(Program(R"(
Again:
        sys SerialRead
        dup
        sys PrintByte
        pushb 10
        eq.b
        jf Again
    )")));
    EXPECT_EQ(RunFor(1), BytecodeMachine::State::WaitingForInput);
    Board.Type("hi");
    EXPECT_EQ(RunFor(1), BytecodeMachine::State::WaitingForInput);
    EXPECT_EQ(Board.Output, "hi");
    Board.Type("\n");
    EXPECT_EQ(RunFor(1), BytecodeMachine::State::Ended);
    EXPECT_EQ(Board.Output, "hi\n");
    // The last byte came a second of chip time after the first two.
    ASSERT_EQ(Board.ReadTimes.size(), 3u);
    EXPECT_GE(Board.ReadTimes[2] - Board.ReadTimes[0], 900'000'000);
}

}  // namespace
