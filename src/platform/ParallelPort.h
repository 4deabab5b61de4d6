#pragma once

#include <QString>
#include <cstdint>

// One parallel port as the KV-10's programmer reaches it: its three
// registers, and the claim that makes them this process's to write. A port
// writes nothing that it has not claimed: a write or read before Claim, or
// after Release, is dropped (a read gives 0xFF).
class ParallelPort {
  public:
    virtual ~ParallelPort() = default;

    // The name a message gives the port: "/dev/parport0", "simulated board".
    virtual QString DeviceName() const = 0;
    // Opens the device if need be and claims the port. A failure raises a
    // run-time error whose description names the device and the cause.
    virtual void Claim() = 0;
    // Gives the port back to the system; the device may stay open.
    virtual void Release() = 0;
    virtual bool Claimed() const = 0;

    virtual void WriteData(uint8_t Value) = 0;
    virtual uint8_t ReadData() = 0;
    virtual uint8_t ReadStatus() = 0;
    virtual void WriteControl(uint8_t Value) = 0;
    virtual uint8_t ReadControl() = 0;
};
