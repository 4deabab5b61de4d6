#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// The calls of Linux's user-space parallel port driver (ppdev) and the files
// in which the kernel describes its ports, so that a test can stand a fake
// device behind them. Failures come back as a negative errno, as the kernel
// gives them.
class PpdevCalls {
  public:
    virtual ~PpdevCalls() = default;

    // A file descriptor, or -errno.
    virtual int Open(const QByteArray& Path, int Flags) = 0;
    // 0, or -errno. Argument points at the request's value.
    virtual int Ioctl(int FileDescriptor, unsigned long Request, void* Argument) = 0;
    virtual void Close(int FileDescriptor) = 0;

    // The names of the port folders of /proc/sys/dev/parport ("parport0").
    virtual QStringList ProcPorts() = 0;
    // A file under /proc/sys/dev/parport ("parport0/base-addr"); a null
    // array when it is missing.
    virtual QByteArray ReadProc(const QString& RelativePath) = 0;

    // The calls of the running system.
    static PpdevCalls& System();
};
