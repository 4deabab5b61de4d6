// Fixed arrays of one and two dimensions with Low To High bounds: element
// addresses, bounds checks, and arrays in frames and in persistent memory.
#include "MachineFixture.h"

namespace {

class ArrayTest : public MachineFixture {};

TEST_F(ArrayTest, OneDimensionWithNegativeLowBoundLaysElementsInOrder) {
    // Dim B(-5 To 5) As Integer: B(I) = I * 3 for every I.
    ASSERT_TRUE(Load(R"(
.var B 22
.var I 4
Main:
    enter 0
    pushw -5
    stg.w I
Fill:
    addrg B
    ldg.w I
    aref1 -5, 5, 2
    ldg.w I
    pushw 3
    mul.l
    sti.h
    incg.l I, 1
    ldg.w I
    pushw 5
    jle.l Fill
    addrg B
    pushi 4
    aref1 -5, 5, 2
    ldi.i
    end
)"));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended) << Machine->ErrorMessage();
    EXPECT_EQ(Stack(), std::vector<int64_t>{12});
    EXPECT_EQ(HalfWord(207), -15);
    EXPECT_EQ(HalfWord(207 + 10), 0);
    EXPECT_EQ(HalfWord(207 + 20), 15);
}

TEST_F(ArrayTest, IndexOutsideTheBoundsStopsTheProgram) {
    for (const char* Index : {"0", "11", "-1", "65536"}) {
        SCOPED_TRACE(Index);
        ASSERT_TRUE(Load(Program(std::string("addrg A\npushw ") + Index + "\naref1 1, 10, 1\nldi.b",
                                 ".var A 10")));
        ExpectError(RunTimeError::IndexOutOfBounds);
    }
}

TEST_F(ArrayTest, TwoDimensionsRunTheSecondIndexFastest) {
    // Dim M(0 To 2, 1 To 2) As Long: M(2, 1) = 7.
    ASSERT_TRUE(Load(Program(R"(
        addrg M
        pushb 2
        pushb 1
        aref2 0, 2, 1, 2, 4
        pushw 7
        sti.w
        addrg M
        pushb 0
        pushb 2
        aref2 0, 2, 1, 2, 4
        pushw 9
        sti.w
    )",
                             ".var M 24")));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended) << Machine->ErrorMessage();
    EXPECT_EQ(Word(207 + 16), 7);
    EXPECT_EQ(Word(207 + 4), 9);
}

TEST_F(ArrayTest, EitherIndexOfTwoDimensionsIsChecked) {
    for (const char* Indexes : {"pushb 3\npushb 1", "pushb 0\npushb 3", "pushb 0\npushb 0"}) {
        SCOPED_TRACE(Indexes);
        ASSERT_TRUE(Load(Program(
            std::string("addrg M\n") + Indexes + "\naref2 0, 2, 1, 2, 4\nldi.w", ".var M 24")));
        ExpectError(RunTimeError::IndexOutOfBounds);
    }
}

TEST_F(ArrayTest, ElementBeyondTheProgramRamIsRefused) {
    // An array whose declared size runs past the program's RAM.
    ASSERT_TRUE(Load(Program("pushw 600\npushb 9\naref1 0, 9, 4\nldi.w")));
    ExpectError(RunTimeError::AddressOutOfRange);
}

TEST_F(ArrayTest, ElementAddressPastTheAddressSpaceIsRefused) {
    ASSERT_TRUE(Load(Program("pushw 600\npushi 30000\naref1 0, 30000, 4\nldi.w")));
    ExpectError(RunTimeError::AddressOutOfRange);
}

TEST_F(ArrayTest, LocalAndPersistentArraysWork) {
    ASSERT_TRUE(Load(R"(
.persistent Log 4
Main:
    enter 8
    addrl 0
    pushb 3
    aref1 0, 3, 2
    pushi 300
    sti.h
    addrp Log
    pushb 2
    aref1 1, 4, 1
    addrl 0
    pushb 3
    aref1 0, 3, 2
    ldi.i
    pushi 255
    and
    sti.b
    end
)"));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended) << Machine->ErrorMessage();
    EXPECT_EQ(InternalEeprom[33], 300 & 255);
    EXPECT_EQ(InternalEeprom[32], 0xFF);
}

}  // namespace
