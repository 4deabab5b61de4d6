#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "PrfImageBuilder.h"
#include "chip/PrfRecordFile.h"
#include "chip/XFileExecutivePRF.h"

namespace {

class PrfRecordFileTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(Temp.isValid());
        Filename = QDir(Temp.path()).filePath(QStringLiteral("Chip.prf"));
        XFileExecutivePRF::PRFfilename = Filename;
    }
    void TearDown() override { XFileExecutivePRF::PRFfilename.clear(); }
    QByteArray Bytes() const {
        QFile File(Filename);
        return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray();
    }

    QTemporaryDir Temp;
    QString Filename;
};

PrfRecordType PinRecord(int16_t Column) {
    PrfRecordType Record;
    Record.Flags[Column] = 1;
    return Record;
}

TEST_F(PrfRecordFileTest, RecordsAreReadAndWrittenInPlace) {
    ASSERT_TRUE(PrfImageBuilder().Value(600, 1234).Pin(3, kvOutputHigh).Save(Filename));
    PrfRecordFile File;
    ASSERT_TRUE(File.Open());
    EXPECT_EQ(File.Get(600).Value, 1234);
    EXPECT_EQ(File.Get(3).Flags[4], 1);
    File.Put(5, PinRecord(2));
    EXPECT_EQ(Bytes().mid(PrfRecordType::OffsetOf(5) + 8, 2), QByteArray(2, '\0'))
        << "nothing reaches the disk before Close";
    EXPECT_TRUE(File.Close());
    const QByteArray After = Bytes();
    EXPECT_EQ(After.size(), 615 * 14);
    EXPECT_EQ(PrfRecordType::Decode(After, PrfRecordType::OffsetOf(5)).Flags[2], 1);
    EXPECT_EQ(PrfRecordType::Decode(After, PrfRecordType::OffsetOf(600)).Value, 1234);
}

TEST_F(PrfRecordFileTest, MissingFileOpensEmptyAndComesIntoBeingWithTheRecordsWritten) {
    PrfRecordFile File;
    ASSERT_TRUE(File.Open());
    EXPECT_EQ(File.Get(613).Value, 0);
    PrfRecordType Record;
    Record.Value = 2;
    File.Put(613, Record);
    EXPECT_TRUE(File.Close());
    EXPECT_EQ(Bytes().size(), 613 * 14);
    EXPECT_EQ(PrfRecordType::Decode(Bytes(), PrfRecordType::OffsetOf(613)).Value, 2);
}

TEST_F(PrfRecordFileTest, NoNameOrAMissingFolderDoesNotOpenAndWritesNothing) {
    PrfRecordFile File;
    XFileExecutivePRF::PRFfilename.clear();
    EXPECT_FALSE(File.Open());
    XFileExecutivePRF::PRFfilename = QDir(Temp.path()).filePath(QStringLiteral("no/Chip.prf"));
    EXPECT_FALSE(File.Open());
    File.Put(1, PinRecord(1));
    EXPECT_EQ(File.Get(1).Flags[1], 0);
    EXPECT_TRUE(File.Close());
    EXPECT_TRUE(QDir(Temp.path()).isEmpty());
}

TEST_F(PrfRecordFileTest, ReadOnlyFileIsReadAndCloseLeavesItByteForByte) {
    ASSERT_TRUE(PrfImageBuilder().Pin(1, kvInputPullup).Save(Filename));
    const QByteArray Before = Bytes();
    QFile(Filename).setPermissions(QFileDevice::ReadOwner);
    PrfRecordFile File;
    ASSERT_TRUE(File.Open());
    EXPECT_EQ(File.Get(1).Flags[2], 1);
    File.Put(1, PinRecord(4));
    EXPECT_FALSE(File.Close());
    EXPECT_EQ(Bytes(), Before);
}

TEST_F(PrfRecordFileTest, FolderInTheFilesPlaceDoesNotOpen) {
    ASSERT_TRUE(QDir(Temp.path()).mkdir(QStringLiteral("Chip.prf")));
    PrfRecordFile File;
    EXPECT_FALSE(File.Open());
}

}  // namespace
