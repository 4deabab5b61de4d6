// CONV between the value types, range-checked, and STR, the text of a value.
#include <bit>

#include "MachineFixture.h"
#include "machine/NumberText.h"

namespace {

class ConversionTest : public MachineFixture {};

uint32_t SingleSlot(float Value) { return std::bit_cast<uint32_t>(Value); }

TEST_F(ConversionTest, WholeNumbersConvertWhenTheyFitTheTargetType) {
    CheckSlots({
        {"pushw 255\nconv Long Byte", 255},
        {"pushw 256\nconv Long Byte", 0, RunTimeError::Overflow},
        {"pushw -1\nconv Long Byte", 0, RunTimeError::Overflow},
        {"pushw 32767\nconv Long Integer", 32767},
        {"pushw 32768\nconv Long Integer", 0, RunTimeError::Overflow},
        {"pushi -1\nconv Integer UnsignedInteger", 0, RunTimeError::Overflow},
        {"pushw 65535\nconv UnsignedInteger Integer", 0, RunTimeError::Overflow},
        {"pushw 65535\nconv UnsignedInteger Long", 65535},
        {"pushw 4294967295\nconv UnsignedLong Long", 0, RunTimeError::Overflow},
        {"pushw -1\nconv Long UnsignedLong", 0, RunTimeError::Overflow},
        {"pushi -300\nconv Integer Long", static_cast<uint32_t>(-300)},
        {"pushb 200\nconv Byte Integer", 200},
    });
}

TEST_F(ConversionTest, SinglesRoundToTheNearestAndHalvesToEven) {
    CheckSlots({
        {"pushf 2.5\nconv Single Integer", 2},
        {"pushf 3.5\nconv Single Integer", 4},
        {"pushf -2.5\nconv Single Long", static_cast<uint32_t>(-2)},
        {"pushf 2.4999\nconv Single Byte", 2},
        {"pushf 255.5\nconv Single Byte", 0, RunTimeError::Overflow},
        {"pushf 255.49\nconv Single Byte", 255},
        {"pushf -0.4\nconv Single UnsignedInteger", 0},
        {"pushf 3e9\nconv Single Long", 0, RunTimeError::Overflow},
        {"pushf 3e9\nconv Single UnsignedLong", 3000000000u},
        {"pushw 0xFFFFFFFF\nconv Single Long", 0, RunTimeError::Overflow},
        {"pushw 16777217\nconv Long Single", SingleSlot(16777216.0f)},
        {"pushi -3\nconv Integer Single", SingleSlot(-3.0f)},
        {"pushw 4294967295\nconv UnsignedLong Single", SingleSlot(4294967296.0f)},
    });
}

TEST_F(ConversionTest, BooleansAreMinusOneAndZero) {
    CheckSlots({
        {"pushb 7\nconv Byte Boolean", 0xFFFFFFFFu},
        {"pushb 0\nconv Byte Boolean", 0},
        {"pushf 0.1\nconv Single Boolean", 0xFFFFFFFFu},
        {"pushi -1\nconv Boolean Integer", 0xFFFFFFFFu},
        {"pushi -1\nconv Boolean Single", SingleSlot(-1.0f)},
        {"pushi -1\nconv Boolean Byte", 0, RunTimeError::Overflow},
    });
}

TEST_F(ConversionTest, StrGivesTheTextOfEachType) {
    const std::string Output = Run(Program(R"(
        pushb 255
        str Byte
        sys PrintString
        sys PrintNewLine
        pushi -32768
        str Integer
        sys PrintString
        sys PrintNewLine
        pushw 65535
        str UnsignedInteger
        sys PrintString
        sys PrintNewLine
        pushw -2147483648
        str Long
        sys PrintString
        sys PrintNewLine
        pushw 4294967295
        str UnsignedLong
        sys PrintString
        sys PrintNewLine
        pushf 0.5
        str Single
        sys PrintString
        sys PrintNewLine
        pushi -1
        str Boolean
        sys PrintString
        sys PrintNewLine
        pushi 0
        str Boolean
        sys PrintString
    )",
                                           ""));
    EXPECT_EQ(Output, "255\r\n-32768\r\n65535\r\n-2147483648\r\n4294967295\r\n.5\r\nTrue\r\nFalse");
}

TEST_F(ConversionTest, SingleTextHasSevenSignificantDigitsAndNoZeroBeforeThePoint) {
    EXPECT_EQ(NumberText::Single(0.1f), ".1");
    EXPECT_EQ(NumberText::Single(-0.25f), "-.25");
    EXPECT_EQ(NumberText::Single(1234567.0f), "1234567");
    EXPECT_EQ(NumberText::Single(1e7f), "1E+07");
    EXPECT_EQ(NumberText::Single(16777216.0f), "1.677722E+07");
    EXPECT_EQ(NumberText::Single(0.0001f), ".0001");
    EXPECT_EQ(NumberText::Single(0.00001f), "1E-05");
    EXPECT_EQ(NumberText::Single(3.14159274f), "3.141593");
    EXPECT_EQ(NumberText::Single(-0.0f), "0");
    EXPECT_EQ(NumberText::Single(100.0f), "100");
}

}  // namespace
