// Every run-time error stops the program with its number, its text and the
// code address of the instruction on the serial line.
#include "MachineFixture.h"

namespace {

struct Case {
    const char* Body;
    const char* Message;
};

class RunTimeErrorTest : public MachineFixture {};

TEST_F(RunTimeErrorTest, EachErrorStopsTheProgramWithItsMessage) {
    // Main's code begins at 32 with "enter 0" (3 bytes), so a failing
    // instruction after one push of N bytes stands at 35 + N.
    const std::vector<Case> Cases = {
        {"pushb 1\npushb 0\ndiv.b", "Run-time error 1: Division by zero (code address 39)"},
        {"pushi 32767\npushi 1\nadd.i", "Run-time error 2: Overflow (code address 41)"},
        {"addrg A\npushb 3\naref1 0, 2, 1",
         "Run-time error 3: Index out of bounds (code address 40)"},
        {"Again:\npushb 1\njmp Again", "Run-time error 4: Stack overflow (code address 35)"},
        {"drop", "Run-time error 5: Stack underflow (code address 35)"},
        {"pushw 100\nldi.b", "Run-time error 6: Address out of range (code address 40)"},
        {"pushb 1\npushb 1\nsys PinSet", "Run-time error 7: Invalid pin (code address 39)"},
        {"pushb 0\npushb 1\nsys LedSet", "Run-time error 8: Invalid LED (code address 39)"},
        {"pushf -2\nsys WaitSeconds", "Run-time error 9: Invalid argument (code address 40)"},
    };
    for (const Case& Each : Cases) {
        SCOPED_TRACE(Each.Body);
        Board.Output.clear();
        ASSERT_TRUE(Load(
            Program(std::string(Each.Body) + "\npushs \"after\"\nsys PrintString", ".var A 3")));
        EXPECT_EQ(RunFor(), BytecodeMachine::State::Failed);
        EXPECT_EQ(Board.Output, std::string("\r\n") + Each.Message + "\r\n");
        EXPECT_EQ(Machine->ErrorMessage(), Each.Message);
        // Stopped for good: more time runs nothing.
        const uint64_t Executed = Machine->Executed();
        EXPECT_EQ(RunFor(), BytecodeMachine::State::Failed);
        EXPECT_EQ(Machine->Executed(), Executed);
    }
}

TEST_F(RunTimeErrorTest, AReferenceToNoMemoryIsRefused) {
    for (const char* Reference : {"0x20000", "0x10000", "0x100CF", "206", "608", "0xFFFFFFFF"}) {
        SCOPED_TRACE(Reference);
        ASSERT_TRUE(Load(
            Program(std::string("pushw ") + Reference + "\npushb 1\nsti.b", ".persistent P 1")));
        ExpectError(RunTimeError::AddressOutOfRange);
    }
}

TEST_F(RunTimeErrorTest, ProgramOutputBeforeTheErrorStays) {
    EXPECT_EQ(Run(Program("pushs \"one\"\nsys PrintString\ndrop")),
              "one\r\nRun-time error 5: Stack underflow (code address 40)\r\n");
}

}  // namespace
