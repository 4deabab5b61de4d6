#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "machine/MachineDevices.h"

// The pins and the two LEDs of a simulated KV-20/KV-30 as its program drives
// them, and what the world outside drives into its inputs (the user's switch
// in the Simulated Chip window). At each start the pins take the states that
// the configuration block at address 0 of the internal EEPROM gives, as the
// chip's start-up code loads its port registers.
class SimulatedChipBoard : public MachinePins {
  public:
    static constexpr int PinCount = 40;
    // The KV-20's LEDs hang on these pins and light when the pin pulls low.
    static constexpr int RedLedPin = 25;
    static constexpr int GreenLedPin = 26;

    SimulatedChipBoard();

    // Every pin an input, as after a reset with no block, and no LED lit.
    void Clear();
    // Loads the start-up states of the chip model's pins from its block.
    void LoadConfigurationBlock(int ChipType, std::span<const uint8_t> Block);

    void SetPinState(int Pin, MachinePinState State, int64_t Ns) override;
    bool PinLevel(int Pin, int64_t Ns) override;
    void SetLed(int Led, bool On, int64_t Ns) override;

    MachinePinState PinState(int Pin) const;
    // The level a pin is at: what it drives, or what drives it.
    bool Level(int Pin) const;
    // The model whose wiring the last block was read with.
    int ChipType() const { return ChipType_; }
    // Led 1 is the red one, 2 the green one.
    bool LedOn(int Led) const;

    // Outside, the pin is pulled to a level; an input reads it.
    void Drive(int Pin, bool High);
    void Release(int Pin);
    bool Driven(int Pin) const;

    // Counts every change a window would show, so that it repaints only when
    // there is something new.
    uint64_t Changes() const { return Changes_; }

  private:
    int ChipType_ = 2;
    std::array<MachinePinState, PinCount + 1> Pins_{};
    std::array<int8_t, PinCount + 1> Outside_{};
    std::array<bool, 3> Leds_{};
    uint64_t Changes_ = 0;
};
