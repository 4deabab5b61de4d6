#include "platform/UserFileWriter.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>
#include <cstring>

namespace {
// The real device: QSaveFile, unbuffered so that a failed write is seen at
// the write with its errno, not later at a flush that the commit ignores.
class QSaveFileDevice : public SaveFileDevice {
  public:
    explicit QSaveFileDevice(const QString& LocalFilename) : File_(LocalFilename) {}
    bool Open() override { return File_.open(QIODevice::WriteOnly | QIODevice::Unbuffered); }
    int64_t Write(const char* Data, int64_t Size) override { return File_.write(Data, Size); }
    bool Flush() override { return File_.flush(); }
    bool Sync() override { return ::fsync(File_.handle()) == 0; }
    bool Commit() override { return File_.commit(); }
    void Cancel() override { File_.cancelWriting(); }
    QString ErrorText() const override { return File_.errorString(); }

  private:
    QSaveFile File_;
};

SaveFileDevice::Factory& DeviceFactory() {
    static SaveFileDevice::Factory Instance;
    return Instance;
}

// The folder's entry for the new name reaches the disk too.
void SyncFolder(const QString& LocalFilename) {
    const QByteArray Folder = QFile::encodeName(QFileInfo(LocalFilename).absolutePath());
    const int Handle = ::open(Folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (Handle >= 0) {
        ::fsync(Handle);
        ::close(Handle);
    }
}

constexpr int64_t CopyPieceSize = 1 << 20;
}  // namespace

void SaveFileDevice::SetFactory(Factory NewFactory) { DeviceFactory() = std::move(NewFactory); }

std::unique_ptr<SaveFileDevice> SaveFileDevice::Create(const QString& LocalFilename) {
    if (DeviceFactory()) {
        return DeviceFactory()(LocalFilename);
    }
    return std::make_unique<QSaveFileDevice>(LocalFilename);
}

UserFileWriter::UserFileWriter(const QString& LocalFilename) : Filename_(LocalFilename) {}

UserFileWriter::~UserFileWriter() {
    if (Opened_ && !Committed_) {
        Device_->Cancel();
    }
}

bool UserFileWriter::Fail(int Errno, const QString& Fallback) {
    if (Failed_) {
        return false;
    }
    Failed_ = true;
    if (Errno != 0) {
        Failure_ = UserFile::FailureOfErrno(Errno);
    } else {
        Failure_.Number = 75;
        Failure_.Description = QStringLiteral("Path/File access error");
        if (!Fallback.isEmpty()) {
            Failure_.Description += QStringLiteral(" (") + Fallback + QLatin1Char(')');
        }
    }
    if (Opened_) {
        Device_->Cancel();
        Opened_ = false;
    }
    return false;
}

bool UserFileWriter::Open() {
    if (Failed_ || Opened_) {
        return !Failed_;
    }
    const QFileInfo Info(Filename_);
    if (Info.isDir()) {
        Fail(0, QStringLiteral("a folder has that name"));
        return false;
    }
    if (Info.exists()) {
        if (!Info.isFile()) {
            Fail(0, QStringLiteral("not a regular file"));
            return false;
        }
        // Root may write anything; a file without its owner's write
        // permission is read-only all the same.
        if (!Info.permission(QFileDevice::WriteOwner)) {
            Failed_ = true;
            Failure_.Number = 70;
            Failure_.Description = QStringLiteral("Permission denied (the file is read-only)");
            return false;
        }
    }
    Device_ = SaveFileDevice::Create(Filename_);
    errno = 0;
    if (!Device_->Open()) {
        const int Error = errno;
        Fail(Error, Device_->ErrorText());
        return false;
    }
    Opened_ = true;
    return true;
}

bool UserFileWriter::Write(const QByteArray& Bytes) {
    if (!Opened_ && !Failed_) {
        Open();
    }
    if (Failed_) {
        return false;
    }
    int64_t Done = 0;
    while (Done < Bytes.size()) {
        errno = 0;
        const int64_t Count = Device_->Write(Bytes.constData() + Done, Bytes.size() - Done);
        if (Count <= 0) {
            const int Error = errno;
            return Fail(Error, Device_->ErrorText());
        }
        Done += Count;
    }
    return true;
}

bool UserFileWriter::CopyRest(QIODevice& Source) {
    while (!Failed_) {
        const QByteArray Piece = Source.read(CopyPieceSize);
        if (Piece.isEmpty()) {
            if (!Source.atEnd()) {
                return Fail(EIO, Source.errorString());
            }
            return true;
        }
        Write(Piece);
    }
    return false;
}

bool UserFileWriter::Commit() {
    if (!Opened_ && !Failed_) {
        Open();
    }
    if (Failed_) {
        return false;
    }
    errno = 0;
    if (!Device_->Flush()) {
        const int Error = errno;
        return Fail(Error, Device_->ErrorText());
    }
    errno = 0;
    if (!Device_->Sync()) {
        const int Error = errno;
        return Fail(Error, Device_->ErrorText());
    }
    errno = 0;
    if (!Device_->Commit()) {
        const int Error = errno;
        // The device has dropped the new file itself.
        Opened_ = false;
        return Fail(Error, Device_->ErrorText());
    }
    Committed_ = true;
    Opened_ = false;
    SyncFolder(Filename_);
    return true;
}

namespace UserFile {

bool Write(const QString& LocalFilename, const QByteArray& Bytes, UserFileFailure& Failure) {
    UserFileWriter Writer(LocalFilename);
    if (Writer.Open() && Writer.Write(Bytes) && Writer.Commit()) {
        return true;
    }
    Failure = Writer.Failure();
    return false;
}

UserFileFailure FailureOfErrno(int Errno) {
    UserFileFailure Failure;
    switch (Errno) {
        case ENOSPC:
        case EDQUOT:
            Failure.Number = 61;
            Failure.Description = QStringLiteral("Disk full");
            break;
        case EACCES:
        case EPERM:
            Failure.Number = 70;
            Failure.Description = QStringLiteral("Permission denied");
            break;
        case EROFS:
            Failure.Number = 70;
            Failure.Description = QStringLiteral("Permission denied (read-only file system)");
            break;
        case ENOENT:
        case ENOTDIR:
            Failure.Number = 76;
            Failure.Description = QStringLiteral("Path not found");
            break;
        case EIO:
            Failure.Number = 57;
            Failure.Description = QStringLiteral("Device I/O error");
            break;
        default:
            Failure.Number = 75;
            Failure.Description = QStringLiteral("Path/File access error (") +
                                  QString::fromLocal8Bit(std::strerror(Errno)) + QLatin1Char(')');
            break;
    }
    return Failure;
}

QString ErrorLine(const UserFileFailure& Failure) {
    return QStringLiteral("Error ") + QString::number(Failure.Number) + QStringLiteral(", ") +
           Failure.Description;
}

}  // namespace UserFile
