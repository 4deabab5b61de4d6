#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <memory>

class SerialPort;

// How a port number becomes a device. Port n is the n-th entry of a stable
// list of the machine's serial devices (/dev/ttyS*, then /dev/ttyUSB*, then
// /dev/ttyACM*, each by number); one entry behind them, "simulated chip",
// stands for the simulated KV-20/KV-30 when a simulated device is installed.
namespace SerialDevices {

// The entry's text in the port lists.
QString SimulatedChipEntry();

// The devices of the machine in the stable order.
QStringList DeviceNames();
// Orders device names as DeviceNames does; names of other kinds are left out.
QStringList StableOrder(const QStringList& Names);
// The port lists' entries from port 1: the devices, then "simulated chip".
QStringList PortEntries();
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

// Where the simulated chip's line comes from; nothing installed means the
// "simulated chip" entry cannot be opened.
void SetSimulatedDevice(std::function<std::shared_ptr<SerialPort>()> Maker);
std::shared_ptr<SerialPort> OpenSimulatedDevice();

}  // namespace SerialDevices
