#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "monitor/WatchValues.h"
#include "support/QtPrinters.h"

namespace {

// A RAM image as the window keeps it: indexed by address, 65536 bytes.
class WatchValuesTest : public ::testing::Test {
  protected:
    void Put(int32_t Address, std::initializer_list<uint8_t> Bytes) {
        for (uint8_t Byte : Bytes) {
            Ram.at(Address++) = Byte;
        }
    }
    // The text of one variable of the type at address 100 holding the bytes.
    QString Shown(int32_t VariableType, std::initializer_list<uint8_t> Bytes) {
        Put(100, Bytes);
        return Text({Variable("Count", 100, VariableType)});
    }
    QString Text(const QList<KvmEntry>& Selected) { return WatchValues::WatchText(Selected, Ram); }
    static KvmEntry Variable(const QString& Name, int32_t Address, int32_t VariableType,
                             int16_t DimensionCount = 0) {
        return KvmEntry{Name, Address, VariableType, false, DimensionCount};
    }
    std::vector<uint8_t> Ram = std::vector<uint8_t>(65536, 0xAA);
};

TEST_F(WatchValuesTest, NoRowSelectedGivesAnEmptyTextAndANegativeLength) {
    const WatchValues::RamRange Range = WatchValues::ReadRange({});
    EXPECT_EQ(Range.StartingAddress, 65535);
    EXPECT_EQ(Range.Length, -1 - 65535 + 30);
    EXPECT_TRUE(Range.Fits);
    EXPECT_EQ(Text({}), QString());
}

TEST_F(WatchValuesTest, AVariableAtAddressZeroReadsFromZeroUpToTheHighestAnd30More) {
    const WatchValues::RamRange Alone = WatchValues::ReadRange({Variable("A", 0, 18)});
    EXPECT_EQ(Alone.StartingAddress, 0);
    EXPECT_EQ(Alone.Length, 30);
    const WatchValues::RamRange Range = WatchValues::ReadRange(
        {Variable("B", 300, 20), Variable("A", 0, 18), Variable("C", 7, 19)});
    EXPECT_EQ(Range.StartingAddress, 0);
    EXPECT_EQ(Range.Length, 330);
}

TEST_F(WatchValuesTest, TheRangeRunsFromTheLowestToTheHighestSelectedAddress) {
    const WatchValues::RamRange Range = WatchValues::ReadRange(
        {Variable("A", 512, 18), Variable("B", 2000, 20), Variable("C", 100, 19)});
    EXPECT_EQ(Range.StartingAddress, 100);
    EXPECT_EQ(Range.Length, 2000 - 100 + 30);
    EXPECT_TRUE(Range.Fits);
}

TEST_F(WatchValuesTest, ARangeTooLongFor32BitsReadsNothingAndShowsNothing) {
    const QList<KvmEntry> Selected{Variable("Low", -2147483647 - 1, 18),
                                   Variable("High", 2147483647, 18)};
    EXPECT_FALSE(WatchValues::ReadRange(Selected).Fits);
    EXPECT_EQ(Text(Selected), QString());
    // Just within: 2147483617 - 0 + 30 is the largest length there is.
    EXPECT_TRUE(WatchValues::ReadRange({Variable("A", 0, 99), Variable("B", 2147483617, 99)}).Fits);
    EXPECT_FALSE(
        WatchValues::ReadRange({Variable("A", -1, 99), Variable("B", 2147483617, 99)}).Fits);
}

TEST_F(WatchValuesTest, UnsignedIntegerFFFFShows65535) {
    EXPECT_EQ(Shown(17, {0xFF, 0xFF}), QStringLiteral("Count: 65535\r\n"));
}

TEST_F(WatchValuesTest, IntegerFFFFShowsMinusOne) {
    EXPECT_EQ(Shown(19, {0xFF, 0xFF}), QStringLiteral("Count: -1\r\n"));
}

TEST_F(WatchValuesTest, UnsignedLongFFFFFFFFShows4294967295) {
    EXPECT_EQ(Shown(21, {0xFF, 0xFF, 0xFF, 0xFF}), QStringLiteral("Count: 4294967295\r\n"));
}

TEST_F(WatchValuesTest, LongFFFFFFFFShowsMinusOne) {
    EXPECT_EQ(Shown(20, {0xFF, 0xFF, 0xFF, 0xFF}), QStringLiteral("Count: -1\r\n"));
}

TEST_F(WatchValuesTest, MultiByteValuesAreLittleEndian) {
    EXPECT_EQ(Shown(17, {0x34, 0x12}), QStringLiteral("Count: 4660\r\n"));
    EXPECT_EQ(Shown(19, {0x00, 0x80}), QStringLiteral("Count: -32768\r\n"));
    EXPECT_EQ(Shown(20, {0x78, 0x56, 0x34, 0x12}), QStringLiteral("Count: 305419896\r\n"));
    EXPECT_EQ(Shown(21, {0x00, 0x00, 0x00, 0x80}), QStringLiteral("Count: 2147483648\r\n"));
}

TEST_F(WatchValuesTest, Single0000C03FShows1Point5) {
    EXPECT_EQ(Shown(32, {0x00, 0x00, 0xC0, 0x3F}), QStringLiteral("Count: 1.5\r\n"));
    EXPECT_EQ(Shown(32, {0xCD, 0xCC, 0xCC, 0x3D}), QStringLiteral("Count: .1\r\n"));
    EXPECT_EQ(Shown(32, {0x00, 0x00, 0x00, 0xBF}), QStringLiteral("Count: -.5\r\n"));
}

TEST_F(WatchValuesTest, ByteShowsItsUnsignedValue) {
    EXPECT_EQ(Shown(18, {0xFE}), QStringLiteral("Count: 254\r\n"));
    EXPECT_EQ(Shown(18, {0x00}), QStringLiteral("Count: 0\r\n"));
}

TEST_F(WatchValuesTest, BooleanIsTrueForAnyByteButZero) {
    EXPECT_EQ(Shown(50, {0x01}), QStringLiteral("Count: True\r\n"));
    EXPECT_EQ(Shown(50, {0xFF}), QStringLiteral("Count: True\r\n"));
    EXPECT_EQ(Shown(50, {0x80}), QStringLiteral("Count: True\r\n"));
    EXPECT_EQ(Shown(50, {0x00}), QStringLiteral("Count: False\r\n"));
}

TEST_F(WatchValuesTest, AnIllegalTypeShowsNothingBehindTheColon) {
    EXPECT_EQ(Shown(99, {0x12, 0x34}), QStringLiteral("Count: \r\n"));
}

TEST_F(WatchValuesTest, AnArrayShowsItsElementAtTheAddress) {
    Put(200, {7, 8, 9});
    EXPECT_EQ(Text({Variable("Buffer", 200, 18, 1)}), QStringLiteral("Buffer: 7\r\n"));
}

TEST_F(WatchValuesTest, ShowsOneLinePerSelectedVariableInListOrder) {
    Put(10, {0x05, 0x00});
    Put(20, {0x01});
    Put(30, {0x00, 0x00, 0x20, 0x41});
    EXPECT_EQ(Text({Variable("Count", 10, 19), Variable("Flag", 20, 50), Variable("Odd", 40, 7),
                    Variable("Ratio", 30, 32)}),
              QStringLiteral("Count: 5\r\nFlag: True\r\nOdd: \r\nRatio: 10\r\n"));
}

TEST_F(WatchValuesTest, TheNameIsShownWithoutBlanks) {
    Put(10, {3});
    EXPECT_EQ(Text({Variable("  Count  ", 10, 18)}), QStringLiteral("Count: 3\r\n"));
}

TEST_F(WatchValuesTest, AnAddressAt65536EndsTheTextBehindItsColon) {
    Put(10, {1});
    Put(11, {2});
    EXPECT_EQ(Text({Variable("A", 10, 18), Variable("Far", 65536, 18), Variable("B", 11, 18)}),
              QStringLiteral("A: 1\r\nFar: "));
}

TEST_F(WatchValuesTest, AValueReachingPast65535EndsTheText) {
    Put(65535, {0x2A});
    EXPECT_EQ(Text({Variable("Last", 65535, 18)}), QStringLiteral("Last: 42\r\n"));
    EXPECT_EQ(Text({Variable("Last", 65535, 50)}), QStringLiteral("Last: True\r\n"));
    EXPECT_EQ(Text({Variable("Word", 65535, 17)}), QStringLiteral("Word: "));
    EXPECT_EQ(Text({Variable("Word", 65534, 19)}), QStringLiteral("Word: 10922\r\n"));
    EXPECT_EQ(Text({Variable("Long", 65533, 20)}), QStringLiteral("Long: "));
    EXPECT_EQ(Text({Variable("Long", 65532, 21)}), QStringLiteral("Long: 715827882\r\n"));
    EXPECT_EQ(Text({Variable("Real", 65533, 32)}), QStringLiteral("Real: "));
}

TEST_F(WatchValuesTest, ANegativeAddressEndsTheText) {
    EXPECT_EQ(Text({Variable("Neg", -1, 18)}), QStringLiteral("Neg: "));
    EXPECT_EQ(Text({Variable("Neg", -100000, 20)}), QStringLiteral("Neg: "));
    // The lowest address of all: from it up to the highest (-1 with nothing
    // above) and 30 more is too long for 32 bits, so there is no line at all.
    EXPECT_EQ(Text({Variable("Neg", -2147483647 - 1, 20)}), QString());
}

TEST_F(WatchValuesTest, AnIllegalTypeFarOutsideRamReadsNothingAndGoesOn) {
    Put(5, {9});
    EXPECT_EQ(Text({Variable("Odd", 70000, 99), Variable("B", 5, 18)}),
              QStringLiteral("Odd: \r\nB: 9\r\n"));
}

TEST_F(WatchValuesTest, ValueTextTellsWhetherTheBytesLayInTheImage) {
    QString Text = QStringLiteral("old");
    EXPECT_FALSE(WatchValues::ValueText(Variable("A", 65536, 18), Ram, Text));
    EXPECT_TRUE(WatchValues::ValueText(Variable("A", 65536, 99), Ram, Text));
    EXPECT_EQ(Text, QString());
    Put(4, {0xFF});
    EXPECT_TRUE(WatchValues::ValueText(Variable("A", 4, 18), Ram, Text));
    EXPECT_EQ(Text, QStringLiteral("255"));
    // A shorter image ends where it ends.
    const std::vector<uint8_t> Short(8, 1);
    EXPECT_TRUE(WatchValues::ValueText(Variable("A", 4, 20), Short, Text));
    EXPECT_EQ(Text, QStringLiteral("16843009"));
    EXPECT_FALSE(WatchValues::ValueText(Variable("A", 5, 20), Short, Text));
}

}  // namespace
