#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/ParallelPort.h"
#include "platform/PpdevCalls.h"

// Which device stands behind a parallel port of the set-up. LPT n is
// /dev/parport<n-1>; LPT 99 is the simulated KV-10 board. The registers at a
// base address are those of the /dev/parportN whose base address is that
// base, as the kernel reports it in /proc/sys/dev/parport/parportN/base-addr;
// where that file is missing, parport0 to parport2 have the PC's standard
// addresses &H378, &H278 and &H3BC.
namespace ParallelDevices {

// The "simulated board" entry has a number of its own, as the serial ports'
// "simulated chip" has.
constexpr int16_t SimulatedBoardPort = 99;
QString SimulatedBoardEntry();

// The device LPT PortNumber stands for: "/dev/parport<n-1>", or the
// simulated board's entry for 99.
QString DeviceForLpt(int16_t PortNumber);
// The base address of /dev/parport<Index>; -1 when it is not known.
int32_t BaseOf(int Index);
// The index of the device whose base address is Base; -1 when none has it.
int IndexForBase(int32_t Base);
// "&H378": an address as the port dialog writes it.
QString AddressText(int32_t Base);

// The port object of a device named as DeviceForLpt names it. Nothing is
// opened yet. An unknown name raises a run-time error.
std::shared_ptr<ParallelPort> PortOfDevice(const QString& Device);
// The port whose registers start at Base, for the set-up's LPT number: the
// simulated board for LPT 99 (at any base), else the device with that base.
// A base that no device has raises a run-time error naming it.
std::shared_ptr<ParallelPort> PortAt(int16_t PortNumber, int16_t Base);

// The kernel's calls; nullptr restores the system's.
void SetPpdevCalls(PpdevCalls* Calls);
PpdevCalls& Calls();

// What stands behind LPT 99; an empty function leaves it unset, and the
// entry then cannot be had.
void SetSimulatedDevice(std::function<std::shared_ptr<ParallelPort>()> Maker);
bool SimulatedDeviceInstalled();

}  // namespace ParallelDevices
