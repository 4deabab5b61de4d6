#include "platform/PpdevParallelPort.h"

#include <fcntl.h>
#include <linux/ppdev.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <cstring>

#include "platform/ErrObject.h"

namespace {
// Numbers of the old run time: device unavailable, permission denied,
// device I/O error.
constexpr int32_t DeviceUnavailable = 68;
constexpr int32_t PermissionDenied = 70;
constexpr int32_t DeviceIOError = 57;

int32_t ErrorNumberOf(int Errno) {
    return Errno == EACCES || Errno == EPERM || Errno == EBUSY || Errno == EINTR
               ? PermissionDenied
               : DeviceUnavailable;
}
}  // namespace

PpdevParallelPort::PpdevParallelPort(int Index, PpdevCalls& Calls) : Index_(Index), Calls_(Calls) {}

PpdevParallelPort::~PpdevParallelPort() {
    Release();
    if (FileDescriptor_ >= 0) {
        Calls_.Close(FileDescriptor_);
    }
}

QString PpdevParallelPort::DeviceOf(int Index) {
    return QStringLiteral("/dev/parport") + QString::number(Index);
}

QString PpdevParallelPort::CauseOf(int Errno, const QString& Device) {
    switch (Errno) {
        case ENOENT:
        case ENODEV:
        case ENXIO:
            return QStringLiteral("No such device: ") + Device;
        case EACCES:
        case EPERM:
            return QStringLiteral("Permission denied: ") + Device +
                   QStringLiteral("; add the user to the lp group");
        case EBUSY:
        case EINTR:
            return QStringLiteral("In use by another driver: ") + Device;
        default:
            return Device + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(Errno));
    }
}

void PpdevParallelPort::Fail(int Errno) {
    RaiseError(ErrorNumberOf(Errno), CauseOf(Errno, DeviceName()));
}

void PpdevParallelPort::Claim() {
    if (Claimed_) {
        return;
    }
    // A claim of a port that another driver holds would wait until that
    // driver lets go: the user is told instead.
    const QString Holder =
        QString::fromLocal8Bit(Calls_
                                   .ReadProc(QStringLiteral("parport") + QString::number(Index_) +
                                             QStringLiteral("/devices/active"))
                                   .trimmed());
    if (!Holder.isEmpty() && Holder != QStringLiteral("none")) {
        RaiseError(PermissionDenied, QStringLiteral("In use by another driver: ") + DeviceName() +
                                         QStringLiteral(" (held by ") + Holder + QLatin1Char(')'));
    }
    if (FileDescriptor_ < 0) {
        const int Opened = Calls_.Open(DeviceName().toLocal8Bit(), O_RDWR | O_CLOEXEC);
        if (Opened < 0) {
            Fail(-Opened);
        }
        FileDescriptor_ = Opened;
    }
    const int Result = Calls_.Ioctl(FileDescriptor_, PPCLAIM, nullptr);
    if (Result < 0) {
        Calls_.Close(FileDescriptor_);
        FileDescriptor_ = -1;
        Fail(-Result);
    }
    Claimed_ = true;
    // Another driver may have left the data lines turned round for input.
    int Forward = 0;
    Calls_.Ioctl(FileDescriptor_, PPDATADIR, &Forward);
}

void PpdevParallelPort::Release() {
    if (!Claimed_) {
        return;
    }
    Claimed_ = false;
    Calls_.Ioctl(FileDescriptor_, PPRELEASE, nullptr);
}

void PpdevParallelPort::Access(unsigned long Request, uint8_t& Value) {
    const int Result = Calls_.Ioctl(FileDescriptor_, Request, &Value);
    if (Result < 0) {
        // The device went away under a claimed port.
        RaiseError(DeviceIOError, DeviceName() + QStringLiteral(": ") +
                                      QString::fromLocal8Bit(std::strerror(-Result)));
    }
}

void PpdevParallelPort::Write(unsigned long Request, uint8_t Value) {
    if (Claimed_) {
        Access(Request, Value);
    }
}

uint8_t PpdevParallelPort::Read(unsigned long Request) {
    uint8_t Value = 0xFF;
    if (Claimed_) {
        Access(Request, Value);
    }
    return Value;
}

void PpdevParallelPort::WriteData(uint8_t Value) { Write(PPWDATA, Value); }
uint8_t PpdevParallelPort::ReadData() { return Read(PPRDATA); }
uint8_t PpdevParallelPort::ReadStatus() { return Read(PPRSTATUS); }
void PpdevParallelPort::WriteControl(uint8_t Value) { Write(PPWCONTROL, Value); }
uint8_t PpdevParallelPort::ReadControl() { return Read(PPRCONTROL); }
