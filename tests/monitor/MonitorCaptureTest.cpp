#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "monitor/MonitorCapture.h"
#include "support/FaultyDisk.h"
#include "support/FrameFixture.h"

namespace {

class MonitorCaptureTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        MonitorCapture::InitializeCapture();
    }
    void TearDown() override {
        MonitorCapture::CloseCaptureFile();
        FrameFixture::TearDown();
    }
    static QByteArray Read(const QString& Name) {
        QFile File(Name);
        return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray("<unreadable>");
    }
};

TEST_F(MonitorCaptureTest, StartsClosedWithNoName) {
    EXPECT_FALSE(MonitorCapture::IsCaptureFileOpen());
    EXPECT_EQ(MonitorCapture::GetCaptureFilename(), QString());
    EXPECT_EQ(MonitorCapture::GetCaptureFileSize(), 0);
    MonitorCapture::WriteCaptureBytes("lost");  // nothing open: nothing happens
}

TEST_F(MonitorCaptureTest, BytesLandAsTheyCameAndAreOnDiskBeforeTheClose) {
    const QString Name = TempPath() + QStringLiteral("/run.cap");
    bool Success = false;
    MonitorCapture::OpenCaptureFile(Name, Success);
    ASSERT_TRUE(Success);
    EXPECT_TRUE(MonitorCapture::IsCaptureFileOpen());
    EXPECT_EQ(MonitorCapture::GetCaptureFilename(), Name);
    QByteArray All;
    for (int Code = 0; Code < 256; ++Code) {
        All.append(static_cast<char>(Code));
    }
    MonitorCapture::WriteCaptureBytes("A\r\nB\r");
    MonitorCapture::WriteCaptureBytes(All);
    // Read by another handle while the capture is still open: nothing waits
    // in a buffer of the program's.
    EXPECT_EQ(Read(Name), QByteArray("A\r\nB\r") + All);
    EXPECT_EQ(MonitorCapture::GetCaptureFileSize(), 5 + 256);
    MonitorCapture::CloseCaptureFile();
    EXPECT_FALSE(MonitorCapture::IsCaptureFileOpen());
    EXPECT_EQ(MonitorCapture::GetCaptureFilename(), QString());
    EXPECT_EQ(MonitorCapture::GetCaptureFileSize(), 0);
    EXPECT_EQ(Read(Name), QByteArray("A\r\nB\r") + All);
}

TEST_F(MonitorCaptureTest, OpeningAgainClosesTheFirstFile) {
    bool Success = false;
    MonitorCapture::OpenCaptureFile(TempPath() + QStringLiteral("/one.cap"), Success);
    MonitorCapture::WriteCaptureBytes("1");
    Success = false;
    MonitorCapture::OpenCaptureFile(TempPath() + QStringLiteral("/two.cap"), Success);
    ASSERT_TRUE(Success);
    MonitorCapture::WriteCaptureBytes("2");
    EXPECT_EQ(Read(TempPath() + QStringLiteral("/one.cap")), QByteArray("1"));
    EXPECT_EQ(Read(TempPath() + QStringLiteral("/two.cap")), QByteArray("2"));
}

TEST_F(MonitorCaptureTest, FileThatCannotBeMadeLeavesSuccessAsTheCallerSetIt) {
    bool Success = false;
    MonitorCapture::OpenCaptureFile(TempPath() + QStringLiteral("/no/such/folder/x.cap"), Success);
    EXPECT_FALSE(Success);
    EXPECT_FALSE(MonitorCapture::IsCaptureFileOpen());
    EXPECT_EQ(MonitorCapture::LastOpenFailure(), QStringLiteral("Error 76, Path not found"));
}

TEST_F(MonitorCaptureTest, FullDiskEndsTheCaptureOnceAndKeepsEveryByteWrittenBeforeIt) {
    const QString Folder = TempPath() + QStringLiteral("/small");
    SmallTmpfs Disk(Folder, 256 * 1024);
    if (!Disk.Mounted()) {
        GTEST_SKIP() << "mounting a small tmpfs is not allowed here";
    }
    Disk.FillUpTo(40 * 1024);
    const QString Name = Folder + QStringLiteral("/run.cap");
    bool Success = false;
    MonitorCapture::OpenCaptureFile(Name, Success);
    ASSERT_TRUE(Success);
    QByteArray Sent;
    int Block = 0;
    // Numbered blocks of uneven length, so that a lost or repeated piece shows.
    while (MonitorCapture::IsCaptureFileOpen() && Block < 10000) {
        QByteArray Bytes = QByteArray::number(Block++).repeated(97);
        Sent += Bytes;
        MonitorCapture::WriteCaptureBytes(Bytes);
    }
    ASSERT_FALSE(MonitorCapture::IsCaptureFileOpen()) << "the disk never filled";
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("File Write Error"));
    EXPECT_TRUE(Boxes->Boxes[0].Text.contains(QStringLiteral("Error 61, Disk full")))
        << Boxes->Boxes[0].Text.toStdString();
    EXPECT_TRUE(Boxes->Boxes[0].Text.contains(Name));
    const QByteArray Kept = Read(Name);
    EXPECT_GT(Kept.size(), 20 * 1024);
    EXPECT_LT(Kept.size(), Sent.size());
    EXPECT_EQ(Kept, Sent.left(Kept.size())) << "every byte before the failure is kept";
    MonitorCapture::WriteCaptureBytes("more");
    EXPECT_EQ(Boxes->Boxes.size(), 1) << "the failure is told once";
}

}  // namespace
