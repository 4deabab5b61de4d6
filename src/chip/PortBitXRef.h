#pragma once

#include <array>
#include <cstdint>

// The chip pin wired to each bit, 0 to 7, of one port.
class PortBitXRef {
  public:
    // A bit outside 0 to 7 reads bit 0.
    uint8_t Value(int32_t Bit) const;
    // A bit outside 0 to 7 writes bit 0.
    void SetValue(int32_t Bit, uint8_t PinNumber);

  private:
    std::array<uint8_t, 8> Pins_{};
};
