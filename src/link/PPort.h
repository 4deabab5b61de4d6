#pragma once

#include <QString>
#include <cstdint>

// The thin layer between the KV-10's programmer and the parallel port's
// registers. Register numbers are the PC's I/O addresses: base + 0 is the
// data register, base + 1 the status and base + 2 the control register of
// the port whose registers start at base (see ParallelDevices). A register is
// reached only inside a Transfer, which holds the port claimed; outside one,
// or at a number that is none of the three, nothing is written and a read
// gives 0xFF.
namespace PPort {

void DlPortWritePortUchar(int16_t Port, uint8_t Value);
uint8_t DlPortReadPortUchar(int16_t Port);

// The LPT number of the set-up, which chooses the device with the base:
// LPT 99 is the simulated board, at whatever base.
void SetPortNumber(int16_t PortNumber);
int16_t GetPortNumber();

// Opens and claims the device of an LPT (as ParallelDevices::DeviceForLpt
// names it) and holds it claimed between transfers until Unreserve. A
// failure raises a run-time error naming the device and the cause. Returns
// the number by which it is let go.
int Reserve(const QString& Device);
void Unreserve(int Handle);
bool IsReserved();

// The port at Base claimed for as long as the object lives: the reserved
// device when it is that port, else the port is opened and claimed here and
// released and closed at the end. A transfer inside another shares its
// claim. A port that cannot be had raises a run-time error naming the device
// and the cause, and nothing is written.
class Transfer {
  public:
    explicit Transfer(int16_t Base);
    ~Transfer();
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
};

}  // namespace PPort
