#pragma once

#include <sys/mount.h>
#include <unistd.h>

#include <QDir>
#include <QSaveFile>
#include <QString>
#include <cerrno>
#include <memory>

#include "platform/UserFileWriter.h"

// A disk that fills up, behind the writer of the user's files. It writes
// through a real QSaveFile, so a short file really lands on disk if the
// writer commits one.
class FaultyDiskDevice : public SaveFileDevice {
  public:
    struct Plan {
        // Bytes the disk takes before it is full; negative: no limit.
        int64_t Room = -1;
        // As a buffered file: writes seem to succeed and the flush fails.
        bool FailAtFlush = false;
        // The errno of a failed sync (0: it succeeds).
        int SyncErrno = 0;
        int OpenErrno = 0;
    };

    FaultyDiskDevice(const QString& Filename, const Plan& Faults, int* Commits)
        : File_(Filename), Faults_(Faults), Commits_(Commits) {}
    bool Open() override {
        if (Faults_.OpenErrno != 0) {
            errno = Faults_.OpenErrno;
            return false;
        }
        return File_.open(QIODevice::WriteOnly);
    }
    int64_t Write(const char* Data, int64_t Size) override {
        int64_t Fits = Size;
        if (Faults_.Room >= 0) {
            Fits = std::min<int64_t>(Size, std::max<int64_t>(0, Faults_.Room - Written_));
        }
        if (Fits > 0) {
            File_.write(Data, Fits);
            Written_ += Fits;
        }
        if (Fits < Size) {
            Overflowed_ = true;
            if (Faults_.FailAtFlush) {
                return Size;
            }
            if (Fits == 0) {
                errno = ENOSPC;
                return -1;
            }
        }
        return Fits;
    }
    bool Flush() override {
        if (Faults_.FailAtFlush && Overflowed_) {
            errno = ENOSPC;
            return false;
        }
        return File_.flush();
    }
    bool Sync() override {
        if (Faults_.SyncErrno != 0) {
            errno = Faults_.SyncErrno;
            return false;
        }
        return true;
    }
    bool Commit() override {
        if (Commits_ != nullptr) {
            ++*Commits_;
        }
        return File_.commit();
    }
    void Cancel() override { File_.cancelWriting(); }
    QString ErrorText() const override { return File_.errorString(); }

  private:
    QSaveFile File_;
    Plan Faults_;
    int* Commits_;
    int64_t Written_ = 0;
    bool Overflowed_ = false;
};

// Puts the faulty disk behind every write of a user's file while it lives.
class FaultyDisk {
  public:
    explicit FaultyDisk(FaultyDiskDevice::Plan Faults) {
        SaveFileDevice::SetFactory([Faults, this](const QString& Filename) {
            return std::make_unique<FaultyDiskDevice>(Filename, Faults, &Commits);
        });
    }
    ~FaultyDisk() { SaveFileDevice::SetFactory(nullptr); }
    FaultyDisk(const FaultyDisk&) = delete;
    FaultyDisk& operator=(const FaultyDisk&) = delete;
    int Commits = 0;
};

// A small real file system in memory, mounted at a folder for the life of
// the object; Mounted() is False where this machine lets no test mount.
class SmallTmpfs {
  public:
    SmallTmpfs(const QString& Folder, int64_t Bytes) : Folder_(Folder) {
        QDir().mkpath(Folder);
        const QByteArray Options = "size=" + QByteArray::number(Bytes);
        Mounted_ = ::mount("tmpfs", QFile::encodeName(Folder).constData(), "tmpfs", 0,
                           Options.constData()) == 0;
    }
    ~SmallTmpfs() {
        if (Mounted_) {
            ::umount2(QFile::encodeName(Folder_).constData(), MNT_DETACH);
        }
    }
    SmallTmpfs(const SmallTmpfs&) = delete;
    SmallTmpfs& operator=(const SmallTmpfs&) = delete;
    bool Mounted() const { return Mounted_; }
    // From now on nothing on it can be written.
    bool MakeReadOnly() const {
        return ::mount("tmpfs", QFile::encodeName(Folder_).constData(), "tmpfs",
                       MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }
    // Takes all the room but Spare bytes with a file of its own.
    void FillUpTo(int64_t Spare) const {
        QFile Filler(Folder_ + QStringLiteral("/filler"));
        if (!Filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
            return;
        }
        const QByteArray Block(4096, 'F');
        while (Filler.write(Block) == Block.size()) {
        }
        Filler.close();
        Filler.resize(std::max<int64_t>(0, Filler.size() - Spare));
    }

  private:
    QString Folder_;
    bool Mounted_ = false;
};
