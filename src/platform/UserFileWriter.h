#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>

// Why a write of a user's file failed: an error number of the classic
// run-time error table (61 Disk full, 70 Permission denied, ...) and a text
// that tells the cause as it is.
struct UserFileFailure {
    int32_t Number = 0;
    QString Description;
};

// The steps of replacing a file by a new one beside it. The real device is a
// QSaveFile; a test puts a faulty disk in its place. Each step returns False
// on failure and leaves errno (or Error()) telling why.
class SaveFileDevice {
  public:
    virtual ~SaveFileDevice() = default;
    virtual bool Open() = 0;
    // The count written, -1 on failure.
    virtual int64_t Write(const char* Data, int64_t Size) = 0;
    virtual bool Flush() = 0;
    // The new bytes reach the disk.
    virtual bool Sync() = 0;
    // The new file takes the old one's place.
    virtual bool Commit() = 0;
    // Drops the new file; the old one stays.
    virtual void Cancel() = 0;
    // The device's own word, when errno has none.
    virtual QString ErrorText() const = 0;

    using Factory = std::function<std::unique_ptr<SaveFileDevice>(const QString& LocalFilename)>;
    // Test seam: an empty factory puts the real device back.
    static void SetFactory(Factory NewFactory);
    static std::unique_ptr<SaveFileDevice> Create(const QString& LocalFilename);
};

// Every write of a user's file (module, project file, preference file,
// settings, capture) goes through here: the new content is written beside the
// file, flushed and synced with every step checked, and only then takes the
// old file's place. On any failure the old file stays byte for byte and
// Failure() tells the real cause. (QSaveFile::commit alone is not enough: in
// Qt 6.4 it renames a short file over the original after a buffered write
// failed on a full disk; hence the writer's own checked flush() and sync.)
class UserFileWriter {
  public:
    // The name as the local file system takes it.
    explicit UserFileWriter(const QString& LocalFilename);
    ~UserFileWriter();
    UserFileWriter(const UserFileWriter&) = delete;
    UserFileWriter& operator=(const UserFileWriter&) = delete;

    // Refuses a read-only file (no write permission for its owner, also for
    // root), a folder or another non-regular file in the name's place.
    bool Open();
    bool Write(const QByteArray& Bytes);
    // What is left of Source, in pieces.
    bool CopyRest(QIODevice& Source);
    // Flush, sync, and the new file in the old one's place.
    bool Commit();
    bool Failed() const { return Failed_; }
    const UserFileFailure& Failure() const { return Failure_; }

  private:
    bool Fail(int Errno, const QString& Fallback);

    QString Filename_;
    std::unique_ptr<SaveFileDevice> Device_;
    bool Opened_ = false;
    bool Failed_ = false;
    bool Committed_ = false;
    UserFileFailure Failure_;
};

namespace UserFile {
// The whole file in one step.
bool Write(const QString& LocalFilename, const QByteArray& Bytes, UserFileFailure& Failure);
// The failure of an errno, as the user reads it.
UserFileFailure FailureOfErrno(int Errno);
// "Error 61, Disk full": the second line of a write error message.
QString ErrorLine(const UserFileFailure& Failure);
}  // namespace UserFile
