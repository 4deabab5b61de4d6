#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <ostream>
#include <type_traits>

#include "frame/UtilitiesNumeric.h"
#include "support/QtPrinters.h"

using UtilitiesNumeric::BytesToInteger;
using UtilitiesNumeric::BytesToLong;
using UtilitiesNumeric::BytesToSingle;
using UtilitiesNumeric::NumberToText;

namespace {

// A Single or a Double given by its bits, and its text.
template <typename Floating>
struct NumberCase {
    std::conditional_t<sizeof(Floating) == 4, uint32_t, uint64_t> Bits;
    const char* Text;
    Floating Value() const { return std::bit_cast<Floating>(Bits); }
};

template <typename Floating>
std::ostream& operator<<(std::ostream& Stream, const NumberCase<Floating>& Case) {
    return Stream << "bits 0x" << std::hex << Case.Bits << " -> \"" << Case.Text << '"';
}

using SingleCase = NumberCase<float>;
using DoubleCase = NumberCase<double>;

SingleCase Single(float Value, const char* Text) { return {std::bit_cast<uint32_t>(Value), Text}; }
DoubleCase Double(double Value, const char* Text) { return {std::bit_cast<uint64_t>(Value), Text}; }

class SingleNumberToText : public ::testing::TestWithParam<SingleCase> {};

TEST_P(SingleNumberToText, PrintsAtMostSevenSignificantDigits) {
    EXPECT_EQ(NumberToText(GetParam().Value()), QString::fromLatin1(GetParam().Text));
}

INSTANTIATE_TEST_SUITE_P(Plain, SingleNumberToText,
                         ::testing::Values(Single(1.5f, "1.5"), Single(-1.5f, "-1.5"),
                                           Single(100.0f, "100"), Single(123.456f, "123.456"),
                                           Single(99999.99f, "99999.99"),
                                           Single(1234567.0f, "1234567"),
                                           Single(9999999.0f, "9999999"), Single(1.0000001f, "1")));

INSTANTIATE_TEST_SUITE_P(
    FractionsBelowOneHaveNoLeadingZero, SingleNumberToText,
    ::testing::Values(Single(0.5f, ".5"), Single(-0.5f, "-.5"), Single(0.1f, ".1"),
                      Single(0.15f, ".15"), Single(1.0f / 3.0f, ".3333333"),
                      Single(2.0f / 3.0f, ".6666667"), Single(0.001f, ".001"),
                      // 9.99999974E-05 rounds up to 1E-04, which still prints plain.
                      Single(0.0001f, ".0001"), SingleCase{0x3F7FFFFFu, ".9999999"}));

INSTANTIATE_TEST_SUITE_P(TiesRoundToEven, SingleNumberToText,
                         ::testing::Values(Single(8388607.5f, "8388608"),
                                           Single(1234567.5f, "1234568"),
                                           Single(1234566.5f, "1234566")));

INSTANTIATE_TEST_SUITE_P(
    ExponentForm, SingleNumberToText,
    ::testing::Values(Single(10000000.0f, "1E+07"), Single(16777216.0f, "1.677722E+07"),
                      Single(-16777216.0f, "-1.677722E+07"), Single(0.00001f, "1E-05"),
                      Single(-0.00001f, "-1E-05"),
                      SingleCase{0x7F7FFFFFu, "3.402823E+38"},   // largest
                      SingleCase{0xFF7FFFFFu, "-3.402823E+38"},  // most negative
                      SingleCase{0x00800000u, "1.175494E-38"},   // smallest normal
                      SingleCase{0x00000001u, "1.401298E-45"},   // smallest denormal
                      SingleCase{0x80000001u, "-1.401298E-45"}));

INSTANTIATE_TEST_SUITE_P(
    ZerosInfinitiesAndNaNs, SingleNumberToText,
    ::testing::Values(SingleCase{0x00000000u, "0"}, SingleCase{0x80000000u, "0"},
                      SingleCase{0x7F800000u, "1.#INF"}, SingleCase{0xFF800000u, "-1.#INF"},
                      SingleCase{0xFFC00000u, "-1.#IND"}, SingleCase{0x7FC00000u, "1.#QNAN"},
                      SingleCase{0xFFC00001u, "-1.#QNAN"}, SingleCase{0x7F800001u, "1.#QNAN"},
                      SingleCase{0xFF800001u, "-1.#QNAN"}, SingleCase{0x7FFFFFFFu, "1.#QNAN"}));

class DoubleNumberToText : public ::testing::TestWithParam<DoubleCase> {};

TEST_P(DoubleNumberToText, PrintsAtMostFifteenSignificantDigits) {
    EXPECT_EQ(NumberToText(GetParam().Value()), QString::fromLatin1(GetParam().Text));
}

INSTANTIATE_TEST_SUITE_P(All, DoubleNumberToText,
                         ::testing::Values(Double(1.5, "1.5"), Double(0.1, ".1"),
                                           Double(-0.25, "-.25"), Double(0.1 + 0.2, ".3"),
                                           Double(1.0 / 3.0, ".333333333333333"),
                                           Double(1e14, "100000000000000"), Double(1e15, "1E+15"),
                                           Double(123456789012345678.0, "1.23456789012346E+17"),
                                           Double(1e300, "1E+300"), Double(0.00001, "1E-05"),
                                           DoubleCase{1u, "4.94065645841247E-324"},
                                           DoubleCase{0x8000000000000000ull, "0"},
                                           DoubleCase{0x7FF0000000000000ull, "1.#INF"},
                                           DoubleCase{0xFFF0000000000000ull, "-1.#INF"},
                                           DoubleCase{0xFFF8000000000000ull, "-1.#IND"},
                                           DoubleCase{0x7FF8000000000000ull, "1.#QNAN"},
                                           DoubleCase{0xFFF8000000000001ull, "-1.#QNAN"}));

TEST(NumberToText, WholeNumbersPrintAllTheirDigitsWithNoBlank) {
    EXPECT_EQ(NumberToText(uint8_t{0}), QStringLiteral("0"));
    EXPECT_EQ(NumberToText(uint8_t{255}), QStringLiteral("255"));
    EXPECT_EQ(NumberToText(int16_t{-32768}), QStringLiteral("-32768"));
    EXPECT_EQ(NumberToText(int16_t{32767}), QStringLiteral("32767"));
    EXPECT_EQ(NumberToText(int32_t{-1}), QStringLiteral("-1"));
    EXPECT_EQ(NumberToText(std::numeric_limits<int32_t>::min()), QStringLiteral("-2147483648"));
    EXPECT_EQ(NumberToText(int32_t{12}), QStringLiteral("12"));
    EXPECT_EQ(NumberToText(int64_t{4294967295}), QStringLiteral("4294967295"));
}

// What a Single prints reads back as a Single that prints the same.
TEST(NumberToText, ASinglesTextReadsBackToTheSameText) {
    const float Values[] = {1.5f,           0.1f,        3.4028235e38f, 1.17549435e-38f, 1.4e-45f,
                            -7.654321e-20f, 16777216.0f, 0.0001f,       98765.43f};
    for (float Value : Values) {
        const QString Text = NumberToText(Value);
        QString Readable = Text;
        if (Readable.startsWith(QLatin1Char('.'))) {
            Readable.prepend(QLatin1Char('0'));
        } else if (Readable.startsWith(QLatin1String("-."))) {
            Readable.insert(1, QLatin1Char('0'));
        }
        bool Ok = false;
        const float Again = Readable.toFloat(&Ok);
        ASSERT_TRUE(Ok) << Text.toStdString();
        EXPECT_EQ(NumberToText(Again), Text);
    }
}

TEST(BytesToInteger, TakesTheLowByteFirst) {
    EXPECT_EQ(BytesToInteger(std::array<uint8_t, 2>{0x34, 0x12}), 0x1234);
    EXPECT_EQ(BytesToInteger(std::array<uint8_t, 2>{0xFF, 0xFF}), -1);
    EXPECT_EQ(BytesToInteger(std::array<uint8_t, 2>{0x00, 0x80}), -32768);
    EXPECT_EQ(BytesToInteger(std::array<uint8_t, 2>{0xFF, 0x7F}), 32767);
    EXPECT_EQ(BytesToInteger(std::array<uint8_t, 2>{0x01, 0x00}), 1);
}

TEST(BytesToLong, TakesTheLowByteFirst) {
    EXPECT_EQ(BytesToLong(std::array<uint8_t, 4>{0x78, 0x56, 0x34, 0x12}), 0x12345678);
    EXPECT_EQ(BytesToLong(std::array<uint8_t, 4>{0xFF, 0xFF, 0xFF, 0xFF}), -1);
    EXPECT_EQ(BytesToLong(std::array<uint8_t, 4>{0x00, 0x00, 0x00, 0x80}),
              std::numeric_limits<int32_t>::min());
    EXPECT_EQ(BytesToLong(std::array<uint8_t, 4>{0xFF, 0xFF, 0x00, 0x00}), 65535);
    EXPECT_EQ(BytesToLong(std::array<uint8_t, 4>{0x01, 0x00, 0x00, 0x00}), 1);
}

TEST(BytesToSingle, CopiesTheBitsLowByteFirst) {
    EXPECT_EQ(BytesToSingle(std::array<uint8_t, 4>{0x00, 0x00, 0xC0, 0x3F}), 1.5f);
    EXPECT_EQ(BytesToSingle(std::array<uint8_t, 4>{0x00, 0x00, 0x80, 0xBF}), -1.0f);
    EXPECT_EQ(std::bit_cast<uint32_t>(BytesToSingle(std::array<uint8_t, 4>{0, 0, 0, 0x80})),
              0x80000000u);
    EXPECT_EQ(
        std::bit_cast<uint32_t>(BytesToSingle(std::array<uint8_t, 4>{0x01, 0x00, 0x80, 0x7F})),
        0x7F800001u);
}

TEST(BytesToLong, ReadsFourBytesOutOfALongerBlockFromTheGivenAddress) {
    const std::array<uint8_t, 8> Ram{9, 9, 0x00, 0x00, 0xC0, 0x3F, 9, 9};
    EXPECT_EQ(BytesToLong(std::span<const uint8_t, 4>(Ram.data() + 2, 4)), 0x3FC00000);
    EXPECT_EQ(BytesToSingle(std::span<const uint8_t, 4>(Ram.data() + 2, 4)), 1.5f);
}

}  // namespace
