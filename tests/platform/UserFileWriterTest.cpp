#include <gtest/gtest.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "PlatformTestSupport.h"
#include "platform/UserFileWriter.h"
#include "support/FaultyDisk.h"

namespace {

class UserFileWriterTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(Folder.isValid()); }
    QString Path(const QString& Name) const { return Folder.filePath(Name); }
    QByteArray Bytes(const QString& Name) const {
        QFile File(Path(Name));
        return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray("<none>");
    }
    void Put(const QString& Name, const QByteArray& Content) const {
        QFile File(Path(Name));
        ASSERT_TRUE(File.open(QIODevice::WriteOnly));
        ASSERT_EQ(File.write(Content), Content.size());
    }
    // Whatever else lies in the folder: a writer must leave no stray file.
    QStringList Entries() const {
        return QDir(Folder.path())
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    }
    QTemporaryDir Folder;
    const QByteArray Old = QByteArray(8610, 'o');
    const QByteArray New = QByteArray(20000, 'n');
};

TEST_F(UserFileWriterTest, NewBytesTakeTheOldFilesPlace) {
    Put(QStringLiteral("Main.bas"), Old);
    UserFileFailure Failure;
    ASSERT_TRUE(UserFile::Write(Path(QStringLiteral("Main.bas")), New, Failure));
    EXPECT_EQ(Bytes(QStringLiteral("Main.bas")), New);
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("Main.bas")});
}

TEST_F(UserFileWriterTest, LinkToTheFileStaysALinkAndTheFileBehindItGetsTheBytes) {
    ASSERT_TRUE(QDir(Folder.path()).mkdir(QStringLiteral("shared")));
    Put(QStringLiteral("shared/Main.bas"), Old);
    ASSERT_TRUE(
        QFile::link(Path(QStringLiteral("shared/Main.bas")), Path(QStringLiteral("Main.bas"))));
    UserFileFailure Failure;
    ASSERT_TRUE(UserFile::Write(Path(QStringLiteral("Main.bas")), New, Failure));
    EXPECT_TRUE(QFileInfo(Path(QStringLiteral("Main.bas"))).isSymLink());
    EXPECT_EQ(Bytes(QStringLiteral("shared/Main.bas")), New);
}

TEST_F(UserFileWriterTest, FileKeepsItsPermissions) {
    Put(QStringLiteral("Main.bas"), Old);
    const QFileDevice::Permissions Mode =
        QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup;
    ASSERT_TRUE(QFile::setPermissions(Path(QStringLiteral("Main.bas")), Mode));
    UserFileFailure Failure;
    ASSERT_TRUE(UserFile::Write(Path(QStringLiteral("Main.bas")), New, Failure));
    EXPECT_EQ(QFile::permissions(Path(QStringLiteral("Main.bas"))) & 0x7077, Mode & 0x7077);
}

TEST_F(UserFileWriterTest, ReadOnlyFileIsRefusedEvenForRootAndKeepsItsBytesAndMode) {
    Put(QStringLiteral("Main.bas"), Old);
    const QFileDevice::Permissions Mode =
        QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther;
    ASSERT_TRUE(QFile::setPermissions(Path(QStringLiteral("Main.bas")), Mode));
    UserFileFailure Failure;
    EXPECT_FALSE(UserFile::Write(Path(QStringLiteral("Main.bas")), New, Failure));
    EXPECT_EQ(Failure.Number, 70);
    EXPECT_EQ(Failure.Description, QStringLiteral("Permission denied (the file is read-only)"));
    EXPECT_EQ(UserFile::ErrorLine(Failure),
              QStringLiteral("Error 70, Permission denied (the file is read-only)"));
    EXPECT_EQ(Bytes(QStringLiteral("Main.bas")), Old);
    EXPECT_EQ(QFile::permissions(Path(QStringLiteral("Main.bas"))) & 0x7077, Mode & 0x7077);
}

TEST_F(UserFileWriterTest, FolderInTheNamesPlaceIsRefused) {
    ASSERT_TRUE(QDir(Folder.path()).mkdir(QStringLiteral("Main.bas")));
    UserFileFailure Failure;
    EXPECT_FALSE(UserFile::Write(Path(QStringLiteral("Main.bas")), New, Failure));
    EXPECT_EQ(Failure.Number, 75);
    EXPECT_EQ(Failure.Description,
              QStringLiteral("Path/File access error (a folder has that name)"));
    EXPECT_TRUE(QFileInfo(Path(QStringLiteral("Main.bas"))).isDir());
}

TEST_F(UserFileWriterTest, MissingFolderIsPathNotFound) {
    UserFileFailure Failure;
    EXPECT_FALSE(UserFile::Write(Path(QStringLiteral("nowhere/Main.bas")), New, Failure));
    EXPECT_EQ(UserFile::ErrorLine(Failure), QStringLiteral("Error 76, Path not found"));
    EXPECT_TRUE(Entries().isEmpty());
}

TEST_F(UserFileWriterTest, DiskFullHalfWayKeepsTheOldBytes) {
    Put(QStringLiteral("Main.bas"), Old);
    FaultyDisk Disk({.Room = 4096});
    UserFileFailure Failure;
    EXPECT_FALSE(UserFile::Write(Path(QStringLiteral("Main.bas")), New, Failure));
    EXPECT_EQ(UserFile::ErrorLine(Failure), QStringLiteral("Error 61, Disk full"));
    EXPECT_EQ(Disk.Commits, 0);
    EXPECT_EQ(Bytes(QStringLiteral("Main.bas")), Old);
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("Main.bas")});
}

TEST_F(UserFileWriterTest, BufferedWriteThatFailsAtTheFlushIsNeverCommitted) {
    Put(QStringLiteral("Main.bas"), Old);
    FaultyDisk Disk({.Room = 4096, .FailAtFlush = true});
    UserFileFailure Failure;
    EXPECT_FALSE(UserFile::Write(Path(QStringLiteral("Main.bas")), New, Failure));
    EXPECT_EQ(UserFile::ErrorLine(Failure), QStringLiteral("Error 61, Disk full"));
    EXPECT_EQ(Disk.Commits, 0);
    EXPECT_EQ(Bytes(QStringLiteral("Main.bas")), Old);
}

TEST_F(UserFileWriterTest, FailedSyncKeepsTheOldBytes) {
    Put(QStringLiteral("Main.bas"), Old);
    FaultyDisk Disk({.SyncErrno = EIO});
    UserFileFailure Failure;
    EXPECT_FALSE(UserFile::Write(Path(QStringLiteral("Main.bas")), New, Failure));
    EXPECT_EQ(UserFile::ErrorLine(Failure), QStringLiteral("Error 57, Device I/O error"));
    EXPECT_EQ(Disk.Commits, 0);
    EXPECT_EQ(Bytes(QStringLiteral("Main.bas")), Old);
}

TEST_F(UserFileWriterTest, ReadOnlyFileSystemIsNotADiskFull) {
    FaultyDisk Disk({.OpenErrno = EROFS});
    UserFileFailure Failure;
    EXPECT_FALSE(UserFile::Write(Path(QStringLiteral("Main.bas")), New, Failure));
    EXPECT_EQ(UserFile::ErrorLine(Failure),
              QStringLiteral("Error 70, Permission denied (read-only file system)"));
}

TEST_F(UserFileWriterTest, CopyRestPutsTheSourcesRemainderBehindTheNewBytes) {
    Put(QStringLiteral("Chip.prf"), Old);
    QByteArray Tail(3 * (1 << 20) + 5, '\0');
    for (qsizetype Index = 0; Index < Tail.size(); ++Index) {
        Tail[Index] = static_cast<char>(Index * 7);
    }
    QBuffer Source(&Tail);
    ASSERT_TRUE(Source.open(QIODevice::ReadOnly));
    ASSERT_TRUE(Source.seek(5));
    UserFileWriter Writer(Path(QStringLiteral("Chip.prf")));
    EXPECT_TRUE(Writer.Open());
    EXPECT_TRUE(Writer.Write(New));
    EXPECT_TRUE(Writer.CopyRest(Source));
    EXPECT_TRUE(Writer.Commit());
    EXPECT_EQ(Bytes(QStringLiteral("Chip.prf")), New + Tail.mid(5));
}

TEST_F(UserFileWriterTest, WriterDroppedBeforeItsCommitLeavesTheOldFile) {
    Put(QStringLiteral("Main.bas"), Old);
    {
        UserFileWriter Writer(Path(QStringLiteral("Main.bas")));
        ASSERT_TRUE(Writer.Open());
        ASSERT_TRUE(Writer.Write(New));
    }
    EXPECT_EQ(Bytes(QStringLiteral("Main.bas")), Old);
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("Main.bas")});
}

// The real thing: a file system that is full, where QSaveFile alone would
// put a short file in the old one's place.
TEST_F(UserFileWriterTest, OnAFullFileSystemTheOldFileSurvivesByteForByte) {
    const QString Mount = Path(QStringLiteral("disk"));
    SmallTmpfs Disk(Mount, 256 * 1024);
    if (!Disk.Mounted()) {
        GTEST_SKIP() << "this machine lets no test mount a file system";
    }
    const QString Target = Mount + QStringLiteral("/Main.bas");
    {
        QFile File(Target);
        ASSERT_TRUE(File.open(QIODevice::WriteOnly));
        ASSERT_EQ(File.write(Old), Old.size());
    }
    // No room at all, and new bytes that a buffered file would hold back
    // until its flush: the case in which QSaveFile::commit() alone fails.
    Disk.FillUpTo(0);
    UserFileFailure Failure;
    EXPECT_FALSE(UserFile::Write(Target, QByteArray(12 * 1024, 'n'), Failure));
    EXPECT_EQ(UserFile::ErrorLine(Failure), QStringLiteral("Error 61, Disk full"));
    QFile File(Target);
    ASSERT_TRUE(File.open(QIODevice::ReadOnly));
    EXPECT_EQ(File.readAll(), Old);
    EXPECT_EQ(QDir(Mount).entryList(QDir::Files | QDir::Hidden, QDir::Name | QDir::IgnoreCase),
              (QStringList{QStringLiteral("filler"), QStringLiteral("Main.bas")}));
}

}  // namespace
