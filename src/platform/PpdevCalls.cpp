#include "platform/PpdevCalls.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <cerrno>

namespace {
const QString ProcFolder = QStringLiteral("/proc/sys/dev/parport");

class SystemPpdevCalls : public PpdevCalls {
  public:
    int Open(const QByteArray& Path, int Flags) override {
        const int FileDescriptor = ::open(Path.constData(), Flags);
        return FileDescriptor >= 0 ? FileDescriptor : -errno;
    }
    int Ioctl(int FileDescriptor, unsigned long Request, void* Argument) override {
        int Result = 0;
        // A signal may break off a claim that waits; the call is then simply made again.
        do {
            Result = ::ioctl(FileDescriptor, Request, Argument);
        } while (Result < 0 && errno == EINTR);
        return Result < 0 ? -errno : 0;
    }
    void Close(int FileDescriptor) override { ::close(FileDescriptor); }
    QStringList ProcPorts() override {
        return QDir(ProcFolder)
            .entryList({QStringLiteral("parport*")}, QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    }
    QByteArray ReadProc(const QString& RelativePath) override {
        QFile File(ProcFolder + QLatin1Char('/') + RelativePath);
        if (!File.open(QIODevice::ReadOnly)) {
            return QByteArray();
        }
        // A file of /proc reports no size: read until it ends.
        QByteArray Content = File.readAll();
        if (Content.isNull()) {
            Content = QByteArray("");
        }
        return Content;
    }
};
}  // namespace

PpdevCalls& PpdevCalls::System() {
    static SystemPpdevCalls Calls;
    return Calls;
}
