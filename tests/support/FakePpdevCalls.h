#pragma once

#include <linux/ppdev.h>
#include <sys/ioctl.h>

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <cerrno>
#include <cstdint>

#include "platform/PpdevCalls.h"

// A fake of Linux's ppdev for tests: /dev/parportN devices that exist or
// not, that the user may open or not, whose PPCLAIM succeeds or fails with a
// chosen errno, and the /proc/sys/dev/parport files the kernel would show.
// It records every call; no device of the machine is touched.
class FakePpdevCalls : public PpdevCalls {
  public:
    struct Device {
        int OpenErrno = 0;   // what open gives, 0 success
        int ClaimErrno = 0;  // what PPCLAIM gives
        int WriteErrno = 0;  // what a register write gives once claimed
        uint8_t Data = 0;
        uint8_t Control = 0;
        uint8_t Status = 0x7F;
        bool Claimed = false;
    };
    struct Call {
        QString Device;
        QString What;  // "open", "close", "PPCLAIM", "PPWDATA" ...
        int Value = -1;
    };

    // A device that opens and claims, with its base address in /proc.
    Device& AddDevice(int Index, int32_t Base) {
        Procs[QStringLiteral("parport%1/base-addr").arg(Index)] =
            QByteArray::number(Base) + "\t" + QByteArray::number(Base + 0x400) + "\n";
        Procs[QStringLiteral("parport%1/devices/active").arg(Index)] = "none\n";
        return Devices[Index];
    }

    int Open(const QByteArray& Path, int) override {
        const QString Name = QString::fromLocal8Bit(Path);
        Calls << Call{Name, QStringLiteral("open")};
        const int Index = IndexOf(Name);
        if (Index < 0 || !Devices.contains(Index)) {
            return -ENOENT;
        }
        if (Devices[Index].OpenErrno != 0) {
            return -Devices[Index].OpenErrno;
        }
        const int FileDescriptor = NextFileDescriptor++;
        Open_[FileDescriptor] = Index;
        return FileDescriptor;
    }

    int Ioctl(int FileDescriptor, unsigned long Request, void* Argument) override {
        if (!Open_.contains(FileDescriptor)) {
            return -EBADF;
        }
        Device& Port = Devices[Open_[FileDescriptor]];
        const QString Name = QStringLiteral("/dev/parport%1").arg(Open_[FileDescriptor]);
        auto* Byte = static_cast<uint8_t*>(Argument);
        switch (Request) {
            case PPCLAIM:
                Calls << Call{Name, QStringLiteral("PPCLAIM")};
                if (Port.ClaimErrno != 0) {
                    return -Port.ClaimErrno;
                }
                Port.Claimed = true;
                return 0;
            case PPRELEASE:
                Calls << Call{Name, QStringLiteral("PPRELEASE")};
                Port.Claimed = false;
                return 0;
            case PPDATADIR:
                Calls << Call{Name, QStringLiteral("PPDATADIR"), *static_cast<int*>(Argument)};
                return 0;
            case PPWDATA:
            case PPWCONTROL: {
                const bool IsData = Request == PPWDATA;
                Calls << Call{
                    Name, IsData ? QStringLiteral("PPWDATA") : QStringLiteral("PPWCONTROL"), *Byte};
                // The kernel refuses register access to an unclaimed port.
                if (!Port.Claimed) {
                    return -EINVAL;
                }
                if (Port.WriteErrno != 0) {
                    return -Port.WriteErrno;
                }
                (IsData ? Port.Data : Port.Control) = *Byte;
                return 0;
            }
            case PPRSTATUS:
            case PPRDATA:
            case PPRCONTROL:
                Calls << Call{Name, Request == PPRSTATUS ? QStringLiteral("PPRSTATUS")
                                    : Request == PPRDATA ? QStringLiteral("PPRDATA")
                                                         : QStringLiteral("PPRCONTROL")};
                if (!Port.Claimed) {
                    return -EINVAL;
                }
                *Byte = Request == PPRSTATUS ? Port.Status
                        : Request == PPRDATA ? Port.Data
                                             : Port.Control;
                return 0;
            default:
                return -ENOTTY;
        }
    }

    void Close(int FileDescriptor) override {
        if (Open_.contains(FileDescriptor)) {
            Calls << Call{QStringLiteral("/dev/parport%1").arg(Open_[FileDescriptor]),
                          QStringLiteral("close")};
            Open_.remove(FileDescriptor);
        }
    }

    QStringList ProcPorts() override {
        QStringList Names;
        for (auto It = Procs.cbegin(); It != Procs.cend(); ++It) {
            const QString Folder = It.key().section(QLatin1Char('/'), 0, 0);
            if (!Names.contains(Folder)) {
                Names << Folder;
            }
        }
        return Names;
    }

    QByteArray ReadProc(const QString& RelativePath) override {
        return Procs.contains(RelativePath) ? Procs.value(RelativePath) : QByteArray();
    }

    // The calls of one kind ("PPWDATA"), with their values.
    QList<int> ValuesOf(const QString& What) const {
        QList<int> Values;
        for (const Call& Made : Calls) {
            if (Made.What == What) {
                Values << Made.Value;
            }
        }
        return Values;
    }
    QStringList Kinds() const {
        QStringList Names;
        for (const Call& Made : Calls) {
            Names << Made.What;
        }
        return Names;
    }
    int OpenDescriptors() const { return static_cast<int>(Open_.size()); }

    QMap<int, Device> Devices;
    QMap<QString, QByteArray> Procs;
    QList<Call> Calls;

  private:
    static int IndexOf(const QString& Name) {
        bool IsNumber = false;
        const int Index = Name.mid(QStringLiteral("/dev/parport").size()).toInt(&IsNumber);
        return Name.startsWith(QStringLiteral("/dev/parport")) && IsNumber ? Index : -1;
    }

    QMap<int, int> Open_;
    int NextFileDescriptor = 40;
};
