#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "machine/MachineDevices.h"

// A plain board around the machine, for a host that needs no more: it keeps
// what the program printed, hands it the bytes put into its input, and
// remembers every pin and LED. A pin nobody drives reads low as an input
// without pull-up and high with one; an output reads back its own level.
class MachineBoard : public MachineSerialLine, public MachinePins {
  public:
    static constexpr int PinCount = 40;

    struct PinChange {
        int Pin = 0;
        MachinePinState State = MachinePinState::InputTristate;
        int64_t Ns = 0;
    };
    struct LedChange {
        int Led = 0;
        bool On = false;
        int64_t Ns = 0;
    };

    MachineBoard();

    void Write(std::span<const uint8_t> Bytes, int64_t Ns) override;
    bool Available(int64_t Ns) override;
    std::optional<uint8_t> Read(int64_t Ns) override;

    void SetPinState(int Pin, MachinePinState State, int64_t Ns) override;
    bool PinLevel(int Pin, int64_t Ns) override;
    void SetLed(int Led, bool On, int64_t Ns) override;

    // The program's serial input gets these bytes, in this order.
    void Type(std::string_view Text);
    // Outside, the pin is pulled to this level (an input reads it).
    void Drive(int Pin, bool High);
    void Release(int Pin);

    std::string Output;
    std::deque<uint8_t> Input;
    std::array<MachinePinState, PinCount + 1> Pins{};
    std::array<bool, 3> Leds{};
    std::vector<PinChange> PinChanges;
    std::vector<LedChange> LedChanges;
    // The chip time of each Read that returned a byte.
    std::vector<int64_t> ReadTimes;

  private:
    // -1 where nothing outside drives the pin, else its level.
    std::array<int8_t, PinCount + 1> Driven{};
};
