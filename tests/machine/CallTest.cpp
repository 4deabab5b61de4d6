// Sub and Function calls: arguments ByVal and ByRef, frames of locals that
// start at zero, return values, recursion, and the RAM that calls take.
#include "MachineFixture.h"

namespace {

class CallTest : public MachineFixture {};

// Sub Double(ByVal N As Integer): N = N * 2: prints N
// Sub Bump(ByRef N As Integer): N = N + 1
constexpr const char* Subs = R"(
Double:
    enter 2
    stl.h 0
    ldl.i 0
    pushi 2
    mul.i
    stl.h 0
    ldl.i 0
    str Integer
    sys PrintString
    pushs ","
    sys PrintString
    ret
Bump:
    enter 4
    stl.w 0
    ldl.w 0
    ldl.w 0
    ldi.i
    pushi 1
    add.i
    sti.h
    ret
)";

TEST_F(CallTest, ByValChangesTheCopyAndByRefTheVariable) {
    ASSERT_TRUE(Load(std::string(R"(
.var X 2
Main:
    enter 0
    pushi 5
    stg.h X
    ldg.i X
    call Double
    addrg X
    call Bump
    ldg.i X
    str Integer
    sys PrintString
    end
)") + Subs));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_EQ(Board.Output, "10,6");
    EXPECT_EQ(HalfWord(207), 6);
}

TEST_F(CallTest, ByRefReachesLocalsAndPersistentVariables) {
    InternalEeprom[32] = 41;
    InternalEeprom[33] = 0;
    ASSERT_TRUE(Load(std::string(R"(
.persistent Saved 2
Main:
    enter 2
    pushi 9
    stl.h 0
    addrl 0
    call Bump
    addrp Saved
    call Bump
    ldl.i 0
    str Integer
    sys PrintString
    end
)") + Subs));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_EQ(Board.Output, "10");
    EXPECT_EQ(InternalEeprom[32], 42);
}

TEST_F(CallTest, FunctionLeavesItsResultOnTheStack) {
    // Function Square(ByVal N As Long) As Long
    ASSERT_TRUE(Load(R"(
Main:
    enter 0
    pushw 1200
    call Square
    pushw 1
    add.l
    end
Square:
    enter 8
    stl.w 0
    ldl.w 0
    ldl.w 0
    mul.l
    stl.w 4
    ldl.w 4
    ret
)"));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_EQ(Stack(), std::vector<int64_t>{1440001});
}

constexpr const char* Factorial = R"(
Main:
    enter 0
    ldg.w N
    call Factorial
    end
; Function Factorial(ByVal N As Long) As Long
Factorial:
    enter 4
    stl.w 0
    ldl.w 0
    pushw 1
    jle.l One
    ldl.w 0
    ldl.w 0
    pushw 1
    sub.l
    call Factorial
    mul.l
    ret
One:
    pushw 1
    ret
)";

TEST_F(CallTest, RecursionKeepsAFrameForEachCall) {
    ASSERT_TRUE(Load(std::string(".var N 4\n") + Factorial));
    Ram[207] = 12;
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended) << Machine->ErrorMessage();
    EXPECT_EQ(Stack(), std::vector<int64_t>{479001600});
}

TEST_F(CallTest, RecursionOverflowsItsLongResult) {
    ASSERT_TRUE(Load(std::string(".var N 4\n") + Factorial));
    Ram[207] = 13;
    ExpectError(RunTimeError::Overflow);
}

TEST_F(CallTest, EndlessRecursionRunsOutOfRamAsAStackOverflow) {
    ASSERT_TRUE(Load(R"(
Main:
    enter 0
Again:
    enter 8
    call Again
    ret
)"));
    ExpectError(RunTimeError::StackOverflow);
    // 401 bytes of RAM at 12 bytes a call.
    EXPECT_LT(Machine->Executed(), 200u);
}

TEST_F(CallTest, LocalsStartAtZeroInEveryCall) {
    ASSERT_TRUE(Load(R"(
Main:
    enter 0
    call Use
    call Use
    end
Use:
    enter 4
    ldl.w 0
    pushw 77
    stl.w 0
    ret
)"));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_EQ(Stack(), (std::vector<int64_t>{0, 0}));
}

TEST_F(CallTest, ALocalOutsideItsFrameIsRefused) {
    ASSERT_TRUE(Load(Program("ldl.w 0")));
    ExpectError(RunTimeError::AddressOutOfRange);
}

TEST_F(CallTest, ReturnFromMainEndsTheProgram) {
    ASSERT_TRUE(Load("Main:\n    enter 2\n    pushb 3\n    ret\n"));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_EQ(Stack(), std::vector<int64_t>{3});
}

TEST_F(CallTest, JumpsFollowTheirConditions) {
    ASSERT_TRUE(Load(R"(
Main:
    enter 0
    pushb 0
    jt Wrong
    pushb 1
    jf Wrong
    pushw 5
    pushw 4
    jge.l Right
Wrong:
    pushb 99
    end
Right:
    pushw -1
    pushw -2
    jle.l Wrong
    pushb 1
    end
)"));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_EQ(Stack(), std::vector<int64_t>{1});
}

}  // namespace
