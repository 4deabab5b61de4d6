#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>

#include "platform/Val.h"

namespace {

struct ValCase {
    const char* Text;
    double Expected;
};

std::ostream& operator<<(std::ostream& Stream, const ValCase& Case) {
    return Stream << '"' << Case.Text << "\" -> " << Case.Expected;
}

class ValReadsText : public ::testing::TestWithParam<ValCase> {};

TEST_P(ValReadsText, GivesTheLeadingNumber) {
    const ValCase& Case = GetParam();
    EXPECT_DOUBLE_EQ(Val(QString::fromUtf8(Case.Text)), Case.Expected) << Case.Text;
}

INSTANTIATE_TEST_SUITE_P(Decimal, ValReadsText,
                         ::testing::Values(ValCase{"0", 0}, ValCase{"42", 42}, ValCase{"-42", -42},
                                           ValCase{"+7", 7}, ValCase{"007", 7},
                                           ValCase{"3.25", 3.25}, ValCase{"-0.5", -0.5},
                                           ValCase{".5", 0.5}, ValCase{"5.", 5},
                                           ValCase{"1.2.3", 1.2}, ValCase{"1,5", 1},
                                           ValCase{"3.7kg", 3.7}));

INSTANTIATE_TEST_SUITE_P(Exponent, ValReadsText,
                         ::testing::Values(ValCase{"1.5E2", 150}, ValCase{"1.5e+2", 150},
                                           ValCase{"25e-2", 0.25}, ValCase{"1D3", 1000},
                                           ValCase{"1d-1", 0.1}, ValCase{"2e", 2},
                                           ValCase{"2e+", 2}, ValCase{"2ex", 2},
                                           ValCase{"-1.5E1", -15}));

INSTANTIATE_TEST_SUITE_P(Hexadecimal, ValReadsText,
                         ::testing::Values(ValCase{"&H378", 888}, ValCase{"&h378", 888},
                                           ValCase{"&HFF", 255}, ValCase{"&Hff", 255},
                                           ValCase{"&HFFFF", -1}, ValCase{"&H7FFF", 32767},
                                           ValCase{"&H8000", -32768}, ValCase{"&H10000", 65536},
                                           ValCase{"&HFFFFFFFF", -1},
                                           ValCase{"&H7FFFFFFF", 2147483647}, ValCase{"&H1G", 1},
                                           ValCase{"&HG", 0}, ValCase{"&H", 0}));

INSTANTIATE_TEST_SUITE_P(Octal, ValReadsText,
                         ::testing::Values(ValCase{"&O17", 15}, ValCase{"&o17", 15},
                                           ValCase{"&O777", 511}, ValCase{"&O8", 0},
                                           ValCase{"&O178", 15}));

INSTANTIATE_TEST_SUITE_P(BlanksSkipped, ValReadsText,
                         ::testing::Values(ValCase{" 1 2 3", 123}, ValCase{"\t12\n", 12},
                                           ValCase{"1 000", 1000}, ValCase{"- 5", -5},
                                           ValCase{"  3 . 5", 3.5}, ValCase{"&H 37 8", 888},
                                           ValCase{"& H378", 888}, ValCase{"1 e 2", 100}));

INSTANTIATE_TEST_SUITE_P(NoNumber, ValReadsText,
                         ::testing::Values(ValCase{"", 0}, ValCase{"   ", 0}, ValCase{"abc", 0},
                                           ValCase{"-", 0}, ValCase{".", 0}, ValCase{"+.", 0},
                                           ValCase{"e5", 0}, ValCase{"x12", 0},
                                           ValCase{"12abc", 12}));

TEST(Val, NonAsciiDigitsEndTheNumber) {
    // Arabic-Indic digit one after "12": not a digit of this number.
    EXPECT_DOUBLE_EQ(Val(QStringLiteral("12") + QChar(0x0661)), 12);
    EXPECT_DOUBLE_EQ(Val(QString(QChar(0x0661))), 0);
}

struct LongCase {
    const char* Text;
    int32_t Expected;
};

std::ostream& operator<<(std::ostream& Stream, const LongCase& Case) {
    return Stream << '"' << Case.Text << "\" -> " << Case.Expected;
}

class ValToLongReadsText : public ::testing::TestWithParam<LongCase> {};

TEST_P(ValToLongReadsText, RoundsHalfToEvenAndClamps) {
    const LongCase& Case = GetParam();
    EXPECT_EQ(ValToLong(QString::fromUtf8(Case.Text)), Case.Expected) << Case.Text;
}

INSTANTIATE_TEST_SUITE_P(HalfToEven, ValToLongReadsText,
                         ::testing::Values(LongCase{"0.5", 0}, LongCase{"1.5", 2},
                                           LongCase{"2.5", 2}, LongCase{"3.5", 4},
                                           LongCase{"-0.5", 0}, LongCase{"-1.5", -2},
                                           LongCase{"-2.5", -2}, LongCase{"-3.5", -4},
                                           LongCase{"2.4999", 2}, LongCase{"2.51", 3},
                                           LongCase{"-2.51", -3}, LongCase{"7", 7}));

INSTANTIATE_TEST_SUITE_P(
    Clamping, ValToLongReadsText,
    ::testing::Values(LongCase{"2147483647", std::numeric_limits<int32_t>::max()},
                      LongCase{"2147483648", std::numeric_limits<int32_t>::max()},
                      LongCase{"1e10", std::numeric_limits<int32_t>::max()},
                      LongCase{"-2147483648", std::numeric_limits<int32_t>::min()},
                      LongCase{"-2147483649", std::numeric_limits<int32_t>::min()},
                      LongCase{"-1e10", std::numeric_limits<int32_t>::min()}));

INSTANTIATE_TEST_SUITE_P(Forms, ValToLongReadsText,
                         ::testing::Values(LongCase{"&H378", 888}, LongCase{"&HFFFF", -1},
                                           LongCase{"&O17", 15}, LongCase{"abc", 0},
                                           LongCase{"", 0}, LongCase{"12abc", 12},
                                           LongCase{" 1 9 2 0 0", 19200}));

struct StrictCase {
    const char* Text;
    bool Converts;
    int32_t Expected;
};

std::ostream& operator<<(std::ostream& Stream, const StrictCase& Case) {
    return Stream << '"' << Case.Text << "\" -> " << Case.Converts << ' ' << Case.Expected;
}

class TextToLongConverts : public ::testing::TestWithParam<StrictCase> {};

TEST_P(TextToLongConverts, GivesTheNumberOrLeavesTheValue) {
    const StrictCase& Case = GetParam();
    int32_t Value = -777;
    EXPECT_EQ(TextToLong(QString::fromUtf8(Case.Text), Value), Case.Converts) << Case.Text;
    EXPECT_EQ(Value, Case.Converts ? Case.Expected : -777) << Case.Text;
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, TextToLongConverts,
    ::testing::Values(StrictCase{"460800", true, 460800}, StrictCase{"460,800", true, 460800},
                      StrictCase{"1,234,567", true, 1234567}, StrictCase{" 254 ", true, 254},
                      StrictCase{"-5", true, -5}, StrictCase{"+7", true, 7},
                      StrictCase{"2.5", true, 2}, StrictCase{"3.5", true, 4},
                      StrictCase{".5", true, 0}, StrictCase{"70000", true, 70000},
                      StrictCase{"2147483647", true, 2147483647}));

INSTANTIATE_TEST_SUITE_P(
    Refusals, TextToLongConverts,
    ::testing::Values(StrictCase{"", false, 0}, StrictCase{"  ", false, 0},
                      StrictCase{"abc", false, 0}, StrictCase{"12abc", false, 0},
                      StrictCase{",460", false, 0}, StrictCase{"460,", false, 0},
                      StrictCase{"4,,600", false, 0}, StrictCase{"-", false, 0},
                      StrictCase{"2147483648", false, 0}, StrictCase{"1 2", false, 0}));

}  // namespace
