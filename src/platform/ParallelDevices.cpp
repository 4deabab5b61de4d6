#include "platform/ParallelDevices.h"

#include <set>

#include "platform/ErrObject.h"
#include "platform/PpdevParallelPort.h"

namespace ParallelDevices {

namespace {
constexpr int32_t DeviceUnavailable = 68;
constexpr int32_t StandardBases[] = {0x378, 0x278, 0x3BC};

PpdevCalls* InstalledCalls = nullptr;

std::function<std::shared_ptr<ParallelPort>()>& SimulatedMaker() {
    static std::function<std::shared_ptr<ParallelPort>()> Maker;
    return Maker;
}

std::shared_ptr<ParallelPort> SimulatedPort() {
    std::shared_ptr<ParallelPort> Port = SimulatedMaker() ? SimulatedMaker()() : nullptr;
    if (!Port) {
        RaiseError(DeviceUnavailable, QStringLiteral("The simulated board is not installed"));
    }
    return Port;
}

QString DevicePrefix() { return QStringLiteral("/dev/parport"); }
}  // namespace

QString SimulatedBoardEntry() { return QStringLiteral("simulated board"); }

QString DeviceForLpt(int16_t PortNumber) {
    if (PortNumber == SimulatedBoardPort) {
        return SimulatedBoardEntry();
    }
    return PpdevParallelPort::DeviceOf(PortNumber - 1);
}

int32_t BaseOf(int Index) {
    const QByteArray Content = Calls().ReadProc(QStringLiteral("parport") + QString::number(Index) +
                                                QStringLiteral("/base-addr"));
    if (Content.isNull()) {
        return Index >= 0 && Index < 3 ? StandardBases[Index] : -1;
    }
    // "888\t1912": the base, then the extended registers' base.
    bool IsNumber = false;
    const int32_t Base = Content.simplified().split(' ').value(0).toInt(&IsNumber);
    return IsNumber ? Base : -1;
}

int IndexForBase(int32_t Base) {
    const int32_t Wanted = Base & 0xFFFF;
    std::set<int> Indexes{0, 1, 2};
    for (const QString& Name : Calls().ProcPorts()) {
        bool IsNumber = false;
        const int Index = Name.mid(7).toInt(&IsNumber);
        if (Name.startsWith(QStringLiteral("parport")) && IsNumber && Index >= 0) {
            Indexes.insert(Index);
        }
    }
    for (const int Index : Indexes) {
        if (BaseOf(Index) == Wanted) {
            return Index;
        }
    }
    return -1;
}

QString AddressText(int32_t Base) {
    return QStringLiteral("&H") + QString::number(Base & 0xFFFF, 16).toUpper();
}

std::shared_ptr<ParallelPort> PortOfDevice(const QString& Device) {
    if (Device == SimulatedBoardEntry()) {
        return SimulatedPort();
    }
    bool IsNumber = false;
    const int Index = Device.mid(DevicePrefix().size()).toInt(&IsNumber);
    if (!Device.startsWith(DevicePrefix()) || !IsNumber || Index < 0) {
        RaiseError(DeviceUnavailable, QStringLiteral("No such device: ") + Device);
    }
    return std::make_shared<PpdevParallelPort>(Index, Calls());
}

std::shared_ptr<ParallelPort> PortAt(int16_t PortNumber, int16_t Base) {
    if (PortNumber == SimulatedBoardPort) {
        return SimulatedPort();
    }
    const int Index = IndexForBase(Base);
    if (Index < 0) {
        RaiseError(DeviceUnavailable,
                   QStringLiteral("No parallel port at address ") + AddressText(Base));
    }
    return std::make_shared<PpdevParallelPort>(Index, Calls());
}

void SetPpdevCalls(PpdevCalls* NewCalls) { InstalledCalls = NewCalls; }

PpdevCalls& Calls() { return InstalledCalls != nullptr ? *InstalledCalls : PpdevCalls::System(); }

void SetSimulatedDevice(std::function<std::shared_ptr<ParallelPort>()> Maker) {
    SimulatedMaker() = std::move(Maker);
}

bool SimulatedDeviceInstalled() { return SimulatedMaker() && SimulatedMaker()() != nullptr; }

}  // namespace ParallelDevices
