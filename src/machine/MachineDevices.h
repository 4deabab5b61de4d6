#pragma once

#include <cstdint>
#include <optional>
#include <span>

// What the machine reaches outside its memories. The host stands behind
// these: the simulated chip, kavlin-sim, a test. Times are nanoseconds of chip
// time since the program started.

// The chip's serial line: what the program prints and what it is sent.
class MachineSerialLine {
  public:
    virtual ~MachineSerialLine() = default;
    virtual void Write(std::span<const uint8_t> Bytes, int64_t Ns) = 0;
    // Whether a byte has come in and waits to be read.
    virtual bool Available(int64_t Ns) = 0;
    // The next byte that came in, if one waits.
    virtual std::optional<uint8_t> Read(int64_t Ns) = 0;
};

// The states a pin can be set to, as the chip's preferences number them.
enum class MachinePinState : uint8_t {
    OutputLow = 0,
    OutputHigh = 1,
    InputTristate = 2,
    InputPullup = 3,
};

// The chip's pins and the board's two LEDs. Pin numbers are the chip's
// (1 to 40); the machine has refused the ones the chip does not have.
class MachinePins {
  public:
    virtual ~MachinePins() = default;
    virtual void SetPinState(int Pin, MachinePinState State, int64_t Ns) = 0;
    // The level the pin is at: true for high.
    virtual bool PinLevel(int Pin, int64_t Ns) = 0;
    // Led is 1 or 2.
    virtual void SetLed(int Led, bool On, int64_t Ns) = 0;
};
