#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <memory>

class SerialPort;

// How a port number becomes a device. Port n is the n-th entry of a stable
// list: the device paths named in KAVLIN_SERIAL_PORTS (colon-separated) as
// given, then the machine's serial devices (/dev/ttyS*, then /dev/ttyUSB*,
// then /dev/ttyACM*, each by number, then any other kind Qt finds, by name
// and number); one entry behind them, "simulated chip", stands for the
// simulated KV-20/KV-30 when a simulated device is installed.
namespace SerialDevices {

// What the system knows of a device, as QSerialPortInfo tells it.
struct DeviceInfo {
    QString Location;
    QString Description;
    QString Manufacturer;
    QString SerialNumber;
};

// A port list's entry: the number the settings hold and the text a user reads.
struct PortEntry {
    int16_t Number;
    QString Text;
};

// The entry's text in the port lists.
QString SimulatedChipEntry();

// The devices of the machine in the stable order.
QStringList DeviceNames();
// Orders device names as DeviceNames does; a name that is not a device
// directly under /dev (a pseudo-terminal's /dev/pts/3) is left out.
QStringList StableOrder(const QStringList& Names);
// The paths of KAVLIN_SERIAL_PORTS, empty parts left out.
QStringList EnvironmentDevices();
// The port lists' entries from port 1: the devices, then "simulated chip".
QStringList PortEntries();
// Ports 1 to at least Count, each "n - device what-it-is" where a device
// stands behind n and the bare number where none does, then the simulated chip
// as "99 - simulated chip".
QList<PortEntry> PortList(int16_t Count);
// One entry's text from what is known of its device.
QString EntryText(int16_t Number, const DeviceInfo& Info);
// One line of why port n would not open, from the run-time error its opening
// raised: the device missing, not the user's to open, or held by another
// program.
QString OpenFailureCause(int16_t PortNumber, int32_t ErrorNumber);
// The same from what was found out: errno of an access check (0 allowed).
QString CauseOfOpenFailure(int32_t ErrorNumber, const QString& Device, int AccessError);

// The device for a port number; empty when there is none.
QString DeviceForPort(int16_t PortNumber);
// The "simulated chip" entry has a number of its own that no device count can
// reach or shift, so a stored port never turns from the simulation into real
// hardware when an adapter is plugged in or out.
constexpr int16_t SimulatedChipPort = 99;
int16_t SimulatedChipPortNumber();

// A test or a sandbox names the devices itself; an empty function restores
// the machine's own list.
void SetDeviceLister(std::function<QStringList()> Lister);
// Where the descriptions come from; an empty function restores QSerialPortInfo.
void SetDeviceInfoSource(std::function<QList<DeviceInfo>()> Source);

// Where the simulated chip's line comes from; nothing installed means the
// "simulated chip" entry cannot be opened.
void SetSimulatedDevice(std::function<std::shared_ptr<SerialPort>()> Maker);
std::shared_ptr<SerialPort> OpenSimulatedDevice();

}  // namespace SerialDevices
