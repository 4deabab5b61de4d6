#pragma once

#include <cstdint>

// The set-up of the monitor port. Kept with the settings store that reads
// and writes it, since the store stands below the monitor subsystem.
class MonitorPortInfoType {
  public:
    bool IsDefined = false;
    int32_t BaudRate = 19200;
    // 0 none, 1 even, 2 odd, 3 space, 4 mark.
    int32_t Parity = 0;

    uint8_t PortNumber() const { return PortNumber_; }
    void SetPortNumber(uint8_t Value) { PortNumber_ = Value; }
    uint8_t DataBits() const { return DataBits_; }
    void SetDataBits(uint8_t Value) { DataBits_ = Value; }
    // 0 one, 1 one and a half, 2 two stop bits.
    int32_t StopBits() const { return StopBits_; }
    void SetStopBits(int32_t Value) { StopBits_ = Value; }

    void Copy(const MonitorPortInfoType& Source);

  private:
    uint8_t PortNumber_ = 1;
    uint8_t DataBits_ = 8;
    int32_t StopBits_ = 0;
};
