#include <gtest/gtest.h>

#include "chip/PrfRecordType.h"

namespace {

QByteArray Bytes(std::initializer_list<int> Values) {
    QByteArray Result;
    for (int Value : Values) {
        Result.append(static_cast<char>(Value));
    }
    return Result;
}

TEST(PrfRecord, EncodesValueAndFlagsLittleEndian) {
    PrfRecordType Record;
    Record.Value = 0x01020304;
    Record.Flags = {0, 1, -2, 0x0102, 0};
    QByteArray Image;
    Record.Encode(Image, 0);
    EXPECT_EQ(Image, Bytes({4, 3, 2, 1, 0, 0, 1, 0, 0xFE, 0xFF, 2, 1, 0, 0}));
}

TEST(PrfRecord, NegativeValueIsTwosComplement) {
    PrfRecordType Record;
    Record.Value = -1;
    QByteArray Image;
    Record.Encode(Image, 0);
    EXPECT_EQ(Image, Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(PrfRecordType::Decode(Image, 0).Value, -1);
}

TEST(PrfRecord, EncodingPastTheEndGrowsTheImageWithZeros) {
    QByteArray Image;
    PrfRecordType Record;
    Record.Value = 2;
    Record.Encode(Image, PrfRecordType::OffsetOf(613));
    EXPECT_EQ(Image.size(), 613 * 14);
    EXPECT_EQ(PrfRecordType::OffsetOf(613), 8568);
    EXPECT_EQ(Image.mid(8568, 4), Bytes({2, 0, 0, 0}));
    EXPECT_EQ(Image.left(8568), QByteArray(8568, '\0'));
}

TEST(PrfRecord, DecodingPastTheEndReadsZeros) {
    const QByteArray Image = Bytes({7, 0, 0, 0, 0, 0, 1});
    const PrfRecordType Record = PrfRecordType::Decode(Image, 0);
    EXPECT_EQ(Record.Value, 7);
    EXPECT_EQ(Record.Flags[1], 1);
    EXPECT_EQ(Record.Flags[2], 0);
    EXPECT_EQ(PrfRecordType::Decode(Image, 14).Value, 0);
}

}  // namespace
