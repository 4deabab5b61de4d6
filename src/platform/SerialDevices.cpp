#include "platform/SerialDevices.h"

#include <QRegularExpression>
#include <QSerialPortInfo>
#include <algorithm>

#include "platform/SerialPort.h"

namespace SerialDevices {

namespace {
std::function<QStringList()>& Lister() {
    static std::function<QStringList()> Current;
    return Current;
}

std::function<std::shared_ptr<SerialPort>()>& SimulatedMaker() {
    static std::function<std::shared_ptr<SerialPort>()> Current;
    return Current;
}

QStringList MachineDevices() {
    QStringList Names;
    for (const QSerialPortInfo& Info : QSerialPortInfo::availablePorts()) {
        Names << Info.systemLocation();
    }
    return Names;
}
}  // namespace

QString SimulatedChipEntry() { return QStringLiteral("simulated chip"); }

QStringList StableOrder(const QStringList& Names) {
    static const QRegularExpression Pattern(QStringLiteral("^/dev/tty(S|USB|ACM)([0-9]+)$"));
    struct Device {
        int Kind;
        long Number;
        QString Name;
    };
    std::vector<Device> Devices;
    for (const QString& Name : Names) {
        const auto Match = Pattern.match(Name);
        if (!Match.hasMatch()) {
            continue;
        }
        const QString Kind = Match.captured(1);
        const int KindOrder = Kind == QStringLiteral("S")     ? 0
                              : Kind == QStringLiteral("USB") ? 1
                                                              : 2;
        Devices.push_back({KindOrder, Match.captured(2).toLong(), Name});
    }
    // The number compares as a number, so that ttyS10 comes after ttyS9.
    std::sort(Devices.begin(), Devices.end(), [](const Device& A, const Device& B) {
        return A.Kind != B.Kind ? A.Kind < B.Kind : A.Number < B.Number;
    });
    QStringList Ordered;
    for (const Device& D : Devices) {
        if (!Ordered.contains(D.Name)) {
            Ordered << D.Name;
        }
    }
    return Ordered;
}

QStringList DeviceNames() {
    if (Lister()) {
        return Lister()();
    }
    return StableOrder(MachineDevices());
}

QStringList PortEntries() {
    QStringList Entries = DeviceNames();
    Entries << SimulatedChipEntry();
    return Entries;
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
