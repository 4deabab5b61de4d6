#pragma once

#include <cstdint>

// One set-up of the download port. Kept with the settings store that reads
// and writes it, since the store stands below the link subsystem.
class DownloadPortInfoType {
  public:
    // The user has asked for this port to be open.
    bool IsDefined() const { return IsDefined_; }
    void SetIsDefined(bool Value) { IsDefined_ = Value; }
    bool IsParallel() const { return IsParallel_; }
    void SetIsParallel(bool Value) { IsParallel_ = Value; }
    // COM or LPT number, from 1.
    int16_t PortNumber() const { return PortNumber_; }
    void SetPortNumber(int16_t Value) { PortNumber_ = Value; }
    // The parallel port's base I/O address, 0 for a serial port.
    int16_t Address() const { return Address_; }
    void SetAddress(int16_t Value) { Address_ = Value; }
    // The system's LPT device is held open too.
    bool Reserve() const { return Reserve_; }
    void SetReserve(bool Value) { Reserve_ = Value; }

    void Copy(const DownloadPortInfoType& Source);

  private:
    bool IsDefined_ = false;
    bool IsParallel_ = false;
    int16_t PortNumber_ = 0;
    int16_t Address_ = 0;
    bool Reserve_ = false;
};
