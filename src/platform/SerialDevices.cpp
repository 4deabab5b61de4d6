#include "platform/SerialDevices.h"

#include <unistd.h>

#include <QFileInfo>
#include <QRegularExpression>
#include <QSerialPortInfo>
#include <algorithm>
#include <cerrno>

#include "platform/SerialPort.h"

namespace SerialDevices {

namespace {
std::function<QStringList()>& Lister() {
    static std::function<QStringList()> Current;
    return Current;
}

std::function<QList<DeviceInfo>()>& InfoSource() {
    static std::function<QList<DeviceInfo>()> Current;
    return Current;
}

QList<DeviceInfo> MachineInfo() {
    if (InfoSource()) {
        return InfoSource()();
    }
    QList<DeviceInfo> Infos;
    for (const QSerialPortInfo& Info : QSerialPortInfo::availablePorts()) {
        Infos.append(
            {Info.systemLocation(), Info.description(), Info.manufacturer(), Info.serialNumber()});
    }
    return Infos;
}

std::function<std::shared_ptr<SerialPort>()>& SimulatedMaker() {
    static std::function<std::shared_ptr<SerialPort>()> Current;
    return Current;
}

QStringList MachineDevices() {
    QStringList Names;
    for (const DeviceInfo& Info : MachineInfo()) {
        Names << Info.Location;
    }
    return Names;
}
}  // namespace

QString SimulatedChipEntry() { return QStringLiteral("simulated chip"); }

QStringList StableOrder(const QStringList& Names) {
    static const QRegularExpression Pattern(QStringLiteral("^/dev/([A-Za-z_-]+)([0-9]*)$"));
    struct Device {
        int Kind;
        QString Prefix;
        long Number;
        QString Name;
    };
    std::vector<Device> Devices;
    for (const QString& Name : Names) {
        const auto Match = Pattern.match(Name);
        if (!Match.hasMatch()) {
            continue;
        }
        const QString Prefix = Match.captured(1);
        // The kinds a KV chip is usually wired to come first, so their numbers
        // stay what they always were; any other kind Qt finds follows.
        const int KindOrder = Prefix == QStringLiteral("ttyS")     ? 0
                              : Prefix == QStringLiteral("ttyUSB") ? 1
                              : Prefix == QStringLiteral("ttyACM") ? 2
                                                                   : 3;
        Devices.push_back(
            {KindOrder, KindOrder == 3 ? Prefix : QString(), Match.captured(2).toLong(), Name});
    }
    // The number compares as a number, so that ttyS10 comes after ttyS9.
    std::sort(Devices.begin(), Devices.end(), [](const Device& A, const Device& B) {
        if (A.Kind != B.Kind) {
            return A.Kind < B.Kind;
        }
        if (A.Prefix != B.Prefix) {
            return A.Prefix < B.Prefix;
        }
        return A.Number != B.Number ? A.Number < B.Number : A.Name < B.Name;
    });
    QStringList Ordered;
    for (const Device& D : Devices) {
        if (!Ordered.contains(D.Name)) {
            Ordered << D.Name;
        }
    }
    return Ordered;
}

QStringList EnvironmentDevices() {
    QStringList Devices;
    const QString Named = qEnvironmentVariable("KAVLIN_SERIAL_PORTS");
    for (const QString& Path : Named.split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
        if (!Devices.contains(Path)) {
            Devices << Path;
        }
    }
    return Devices;
}

QStringList DeviceNames() {
    QStringList Devices = EnvironmentDevices();
    const QStringList Machine = Lister() ? Lister()() : StableOrder(MachineDevices());
    for (const QString& Device : Machine) {
        // A device named first keeps its first number only.
        if (!Devices.contains(Device)) {
            Devices << Device;
        }
    }
    return Devices;
}

QStringList PortEntries() {
    QStringList Entries = DeviceNames();
    Entries << SimulatedChipEntry();
    return Entries;
}

QString EntryText(int16_t Number, const DeviceInfo& Info) {
    QString Text = QString::number(Number);
    if (Info.Location.isEmpty()) {
        return Text;
    }
    // A device of /dev is known by its short name; one elsewhere by its path.
    const QString Name =
        Info.Location.startsWith(QStringLiteral("/dev/")) ? Info.Location.mid(5) : Info.Location;
    Text += QStringLiteral(" - ") + Name;
    if (!Info.Description.isEmpty()) {
        Text += QLatin1Char(' ') + Info.Description;
    }
    QStringList More;
    if (!Info.Manufacturer.isEmpty()) {
        More << Info.Manufacturer;
    }
    if (!Info.SerialNumber.isEmpty()) {
        More << QStringLiteral("serial ") + Info.SerialNumber;
    }
    if (!More.isEmpty()) {
        Text += QStringLiteral(" (") + More.join(QStringLiteral(", ")) + QLatin1Char(')');
    }
    return Text;
}

QList<PortEntry> PortList(int16_t Count) {
    const QStringList Devices = DeviceNames();
    // Without devices there is nothing to describe, and no scan is made.
    const QList<DeviceInfo> Known = Devices.isEmpty() ? QList<DeviceInfo>() : MachineInfo();
    QList<PortEntry> Entries;
    const int Last = std::max<int>(Count, static_cast<int>(Devices.size()));
    for (int Number = 1; Number <= Last; ++Number) {
        if (Number == SimulatedChipPort) {
            continue;
        }
        DeviceInfo Info;
        if (Number <= Devices.size()) {
            Info.Location = Devices.at(Number - 1);
            for (const DeviceInfo& Candidate : Known) {
                if (Candidate.Location == Info.Location) {
                    Info = Candidate;
                    break;
                }
            }
        }
        Entries.append(
            {static_cast<int16_t>(Number), EntryText(static_cast<int16_t>(Number), Info)});
    }
    Entries.append({SimulatedChipPort, QString::number(SimulatedChipPort) + QStringLiteral(" - ") +
                                           SimulatedChipEntry()});
    return Entries;
}

QString CauseOfOpenFailure(int32_t ErrorNumber, const QString& Device, int AccessError) {
    if (ErrorNumber == SerialPortErrors::InvalidPortNumber) {
        if (Device.isEmpty()) {
            return QStringLiteral("No serial device has this number");
        }
        return QStringLiteral("No such device: ") + Device;
    }
    if (ErrorNumber == SerialPortErrors::PortAlreadyOpen) {
        if (AccessError == EACCES || AccessError == EPERM) {
            return QStringLiteral("Permission denied: add the user to the dialout group");
        }
        return QStringLiteral("In use by another program");
    }
    return QString();
}

QString OpenFailureCause(int16_t PortNumber, int32_t ErrorNumber) {
    if (PortNumber == SimulatedChipPort) {
        if (ErrorNumber == SerialPortErrors::InvalidPortNumber) {
            return QStringLiteral("The simulated chip is not installed");
        }
        if (ErrorNumber == SerialPortErrors::PortAlreadyOpen) {
            return QStringLiteral("The simulated chip's line is in use");
        }
        return QString();
    }
    const QString Device = DeviceForPort(PortNumber);
    int AccessError = 0;
    // Asked of the file, not by opening it: opening a serial device raises
    // DTR, which is the chip's ATN line.
    if (!Device.isEmpty() &&
        ::access(QFileInfo(Device).absoluteFilePath().toLocal8Bit().constData(), R_OK | W_OK) !=
            0) {
        AccessError = errno;
    }
    return CauseOfOpenFailure(ErrorNumber, Device, AccessError);
}

QString DeviceForPort(int16_t PortNumber) {
    const QStringList Devices = DeviceNames();
    // The simulated chip's number never names a device, however many there are.
    if (PortNumber < 1 || PortNumber > Devices.size() || PortNumber == SimulatedChipPort) {
        return QString();
    }
    return Devices.at(PortNumber - 1);
}

int16_t SimulatedChipPortNumber() { return SimulatedChipPort; }

void SetDeviceLister(std::function<QStringList()> NewLister) { Lister() = std::move(NewLister); }

void SetDeviceInfoSource(std::function<QList<DeviceInfo>()> Source) {
    InfoSource() = std::move(Source);
}

void SetSimulatedDevice(std::function<std::shared_ptr<SerialPort>()> Maker) {
    SimulatedMaker() = std::move(Maker);
}

std::shared_ptr<SerialPort> OpenSimulatedDevice() {
    if (!SimulatedMaker()) {
        return nullptr;
    }
    return SimulatedMaker()();
}

}  // namespace SerialDevices
