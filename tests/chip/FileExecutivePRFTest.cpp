#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "PrfImageBuilder.h"
#include "chip/FileExecutivePRF.h"
#include "platform/Global.h"
#include "support/FrameFixture.h"

namespace {

class FileExecutiveTest : public FrameFixture {
  protected:
    void TearDown() override {
        Global<FileExecutivePRF>::Unload();
        FrameFixture::TearDown();
    }
    QString PrfName(const QString& Name = QStringLiteral("blink")) const {
        return TempPath() + QLatin1Char('/') + Name + QStringLiteral(".prf");
    }
    FileStatusTypes Initialize(const QString& Name = QStringLiteral("blink")) {
        FileStatusTypes Status = fstUndefined;
        FileExecutive().Initialize(TempPath(), Name, Status);
        return Status;
    }
    QByteArray FileBytes(const QString& Name = QStringLiteral("blink")) const {
        QFile File(PrfName(Name));
        return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray("<none>");
    }
};

TEST_F(FileExecutiveTest, MissingFileIsNonexistant) {
    EXPECT_EQ(Initialize(), fstNonexistant);
    EXPECT_EQ(FileExecutive().FullFilename(), PrfName());
}

TEST_F(FileExecutiveTest, CompleteFileIsOk) {
    ASSERT_TRUE(PrfImageBuilder().Save(PrfName()));
    EXPECT_EQ(Initialize(), fstOK);
    EXPECT_EQ(FileExecutive().FileLength(), 8610);
    EXPECT_EQ(FileExecutive().RecordCount(), 615);
}

TEST_F(FileExecutiveTest, FileOf8554BytesHas611RecordsAndIsOk) {
    ASSERT_TRUE(PrfImageBuilder(611).Save(PrfName()));
    EXPECT_EQ(Initialize(), fstOK);
    EXPECT_EQ(FileExecutive().RecordCount(), 611);
}

TEST_F(FileExecutiveTest, FileOf8553BytesHasTheWrongSize) {
    PrfImageBuilder Short(611);
    Short.Image.chop(1);
    ASSERT_TRUE(Short.Save(PrfName()));
    EXPECT_EQ(Initialize(), fstWrongSize);
    EXPECT_EQ(FileExecutive().RecordCount(), 610);
}

TEST_F(FileExecutiveTest, EmptyFileHasTheWrongSize) {
    ASSERT_TRUE(PrfImageBuilder(0).Save(PrfName()));
    EXPECT_EQ(Initialize(), fstWrongSize);
}

TEST_F(FileExecutiveTest, StrayBytesAfterTheLastRecordAreIgnored) {
    PrfImageBuilder Long;
    Long.Image.append(QByteArray(13, '\x7F'));
    ASSERT_TRUE(Long.Save(PrfName()));
    EXPECT_EQ(Initialize(), fstOK);
    EXPECT_EQ(FileExecutive().RecordCount(), 615);
}

TEST_F(FileExecutiveTest, FileWithoutWritePermissionIsReadOnlyButOpensAndReads) {
    ASSERT_TRUE(PrfImageBuilder().Value(600, 1234).Save(PrfName()));
    QFile::setPermissions(PrfName(), QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    EXPECT_EQ(Initialize(), fstReadOnly);
    FileExecutive().OpenFile();
    ASSERT_TRUE(FileExecutive().IsOpen());
    int32_t Value = 0;
    FileExecutive().ReadRecord(600, Value);
    EXPECT_EQ(Value, 1234);
    FileExecutive().WriteRecord(600, 99);
    FileExecutive().WritePinState(1, kvOutputHigh);
    FileExecutive().ReadRecord(600, Value);
    EXPECT_EQ(Value, 1234) << "a read-only file takes no write";
    EXPECT_TRUE(FileExecutive().CloseFile());
    EXPECT_EQ(FileBytes(), PrfImageBuilder().Value(600, 1234).Image);
}

TEST_F(FileExecutiveTest, DirectoryInPlaceOfTheFileIsNonexistantAndDoesNotOpen) {
    ASSERT_TRUE(QDir().mkpath(PrfName()));
    EXPECT_EQ(Initialize(), fstNonexistant);
    FileExecutive().OpenFile();
    EXPECT_FALSE(FileExecutive().IsOpen());
    EXPECT_EQ(FileExecutive().Status(), fstUndefined);
}

TEST_F(FileExecutiveTest, ShortFileRuleAppliesToAClosedFile) {
    const int32_t Expected[][2] = {{611, 32768}, {612, 1}, {613, 2}, {614, 1}, {615, 64},
                                   {610, 0},     {1, 0},   {600, 0}, {616, 0}};
    for (const auto& Pair : Expected) {
        int32_t Value = -7;
        FileExecutive().ReadRecord(Pair[0], Value);
        EXPECT_EQ(Value, Pair[1]) << "record " << Pair[0];
    }
}

TEST_F(FileExecutiveTest, ShortFileRuleGivesItsValuesForRecordsTheFileLacks) {
    ASSERT_TRUE(PrfImageBuilder(611).Value(611, 8192).Value(610, 19200).Save(PrfName()));
    ASSERT_EQ(Initialize(), fstOK);
    FileExecutive().OpenFile();
    int32_t Value = 0;
    FileExecutive().ReadRecord(611, Value);
    EXPECT_EQ(Value, 8192) << "record 611 is in the file";
    FileExecutive().ReadRecord(610, Value);
    EXPECT_EQ(Value, 19200);
    FileExecutive().ReadRecord(612, Value);
    EXPECT_EQ(Value, 1);
    FileExecutive().ReadRecord(615, Value);
    EXPECT_EQ(Value, 64);
}

TEST_F(FileExecutiveTest, PinOnAClosedFileReadsOutputLow) {
    PinStateTypes State = kvInputTristate;
    FileExecutive().ReadPinState(1, State);
    EXPECT_EQ(State, kvOutputLow);
}

TEST_F(FileExecutiveTest, PinRecordReadsTheFirstNonZeroFlag) {
    ASSERT_TRUE(PrfImageBuilder()
                    .PinFlags(1, 0, 0, 0, 0)
                    .PinFlags(2, 0, 1, 1, 0)
                    .PinFlags(3, 0, 0, 0, -5)
                    .PinFlags(4, 0, 0, 7, 1)
                    .PinFlags(5, 1, 1, 1, 1)
                    .Save(PrfName()));
    ASSERT_EQ(Initialize(), fstOK);
    FileExecutive().OpenFile();
    const PinStateTypes Expected[] = {kvInputTristate, kvInputPullup, kvOutputHigh, kvOutputLow,
                                      kvInputTristate};
    for (int32_t Pin = 1; Pin <= 5; ++Pin) {
        PinStateTypes State = kvOutputLow;
        FileExecutive().ReadPinState(Pin, State);
        EXPECT_EQ(State, Expected[Pin - 1]) << "pin " << Pin;
    }
}

TEST_F(FileExecutiveTest, WritePinStateSetsExactlyOneFlag) {
    ASSERT_TRUE(PrfImageBuilder().Value(7, 99).PinFlags(7, 1, 1, 1, 1).Save(PrfName()));
    ASSERT_EQ(Initialize(), fstOK);
    FileExecutive().OpenFile();
    FileExecutive().WritePinState(7, kvOutputLow);
    ASSERT_TRUE(FileExecutive().CloseFile());
    const QByteArray Record = FileBytes().mid(6 * 14, 14);
    const char Expected[14] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0};
    EXPECT_EQ(Record, QByteArray(Expected, 14));
}

TEST_F(FileExecutiveTest, WriteRecordClearsTheFlagsOfThatRecord) {
    ASSERT_TRUE(PrfImageBuilder().PinFlags(600, 1, 2, 3, 4).Save(PrfName()));
    ASSERT_EQ(Initialize(), fstOK);
    FileExecutive().OpenFile();
    FileExecutive().WriteRecord(600, -2);
    ASSERT_TRUE(FileExecutive().CloseFile());
    const char Expected[14] = {'\xFE', '\xFF', '\xFF', '\xFF', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(FileBytes().mid(599 * 14, 14), QByteArray(Expected, 14));
}

TEST_F(FileExecutiveTest, WritesOnAClosedFileDoNothing) {
    ASSERT_TRUE(PrfImageBuilder().Save(PrfName()));
    ASSERT_EQ(Initialize(), fstOK);
    FileExecutive().WriteRecord(600, 5);
    FileExecutive().WritePinState(1, kvOutputHigh);
    EXPECT_EQ(FileBytes(), PrfImageBuilder().Image);
}

TEST_F(FileExecutiveTest, CloseWithoutChangeLeavesTheFileUntouched) {
    ASSERT_TRUE(PrfImageBuilder().Save(PrfName()));
    const QDateTime Before = QFileInfo(PrfName()).lastModified();
    ASSERT_EQ(Initialize(), fstOK);
    FileExecutive().OpenFile();
    int32_t Value = 0;
    FileExecutive().ReadRecord(613, Value);
    EXPECT_TRUE(FileExecutive().CloseFile());
    EXPECT_EQ(QFileInfo(PrfName()).lastModified(), Before);
    EXPECT_EQ(FileExecutive().Status(), fstUndefined);
    EXPECT_FALSE(FileExecutive().IsOpen());
}

TEST_F(FileExecutiveTest, FileThatVanishesBetweenLookAndOpenIsNotMadeByReading) {
    ASSERT_TRUE(PrfImageBuilder().Save(PrfName()));
    ASSERT_EQ(Initialize(), fstOK);
    QFile::remove(PrfName());
    FileExecutive().OpenFile();
    EXPECT_TRUE(FileExecutive().OpenedWithoutFile());
    int32_t Value = -1;
    FileExecutive().ReadRecord(600, Value);
    EXPECT_EQ(Value, 0);
    EXPECT_TRUE(FileExecutive().CloseFile());
    EXPECT_FALSE(QFile::exists(PrfName()));
}

TEST_F(FileExecutiveTest, FileInAMissingFolderDoesNotOpen) {
    FileStatusTypes Status = fstUndefined;
    FileExecutive().Initialize(TempPath() + QStringLiteral("/no/such"), QStringLiteral("x"),
                               Status);
    EXPECT_EQ(Status, fstNonexistant);
    FileExecutive().OpenFile();
    EXPECT_FALSE(FileExecutive().IsOpen());
}

}  // namespace
