#include "sim/SimulatedChipBoard.h"

namespace {

// The chip pin wired to each bit of ports A to D; 0 where no pin is.
using PortWiring = std::array<std::array<uint8_t, 8>, 4>;

constexpr PortWiring KV20Wiring{{
    {20, 19, 18, 17, 16, 15, 14, 13},
    {0, 0, 0, 0, 0, 0, 0, 0},
    {12, 11, 10, 9, 8, 7, 6, 5},
    {0, 0, 0, 0, 27, 26, 0, 25},
}};

constexpr PortWiring KV30Wiring{{
    {40, 39, 38, 37, 36, 35, 34, 33},
    {1, 2, 3, 4, 5, 6, 7, 8},
    {22, 23, 24, 25, 26, 27, 28, 29},
    {14, 15, 16, 17, 18, 19, 20, 21},
}};

// Where each port's direction byte lies in the block; its data byte follows.
constexpr std::array<int, 4> DirectionAddress{9, 6, 3, 0};

MachinePinState StateOf(bool Output, bool Data) {
    if (Output) {
        return Data ? MachinePinState::OutputHigh : MachinePinState::OutputLow;
    }
    return Data ? MachinePinState::InputPullup : MachinePinState::InputTristate;
}

}  // namespace

SimulatedChipBoard::SimulatedChipBoard() { Clear(); }

void SimulatedChipBoard::Clear() {
    Pins_.fill(MachinePinState::InputTristate);
    Outside_.fill(-1);
    Leds_.fill(false);
    ++Changes_;
}

void SimulatedChipBoard::LoadConfigurationBlock(int ChipType, std::span<const uint8_t> Block) {
    ChipType_ = ChipType;
    Pins_.fill(MachinePinState::InputTristate);
    Leds_.fill(false);
    if (Block.size() >= 11 && (ChipType == 2 || ChipType == 3)) {
        const PortWiring& Wiring = ChipType == 2 ? KV20Wiring : KV30Wiring;
        for (int Port = 0; Port < 4; ++Port) {
            const uint8_t Direction = Block[DirectionAddress[Port]];
            const uint8_t Data = Block[DirectionAddress[Port] + 1];
            for (int Bit = 0; Bit < 8; ++Bit) {
                if (const int Pin = Wiring[Port][Bit]; Pin != 0) {
                    Pins_[Pin] = StateOf((Direction >> Bit) & 1, (Data >> Bit) & 1);
                }
            }
        }
    }
    ++Changes_;
}

void SimulatedChipBoard::SetPinState(int Pin, MachinePinState State, int64_t) {
    if (Pin < 1 || Pin > PinCount) {
        return;
    }
    Pins_[Pin] = State;
    ++Changes_;
}

bool SimulatedChipBoard::PinLevel(int Pin, int64_t) { return Level(Pin); }

bool SimulatedChipBoard::Level(int Pin) const {
    if (Pin < 1 || Pin > PinCount) {
        return false;
    }
    switch (Pins_[Pin]) {
        case MachinePinState::OutputLow:
            return false;
        case MachinePinState::OutputHigh:
            return true;
        case MachinePinState::InputPullup:
            return Outside_[Pin] != 0;
        case MachinePinState::InputTristate:
            return Outside_[Pin] == 1;
    }
    return false;
}

void SimulatedChipBoard::SetLed(int Led, bool On, int64_t Ns) {
    if (Led < 1 || Led > 2) {
        return;
    }
    if (ChipType_ == 2) {
        // On the KV-20 board an LED is its pin pulled low.
        SetPinState(Led == 1 ? RedLedPin : GreenLedPin,
                    On ? MachinePinState::OutputLow : MachinePinState::OutputHigh, Ns);
        return;
    }
    Leds_[Led] = On;
    ++Changes_;
}

MachinePinState SimulatedChipBoard::PinState(int Pin) const {
    return Pin >= 1 && Pin <= PinCount ? Pins_[Pin] : MachinePinState::InputTristate;
}

bool SimulatedChipBoard::LedOn(int Led) const {
    if (Led < 1 || Led > 2) {
        return false;
    }
    if (ChipType_ == 2) {
        return Pins_[Led == 1 ? RedLedPin : GreenLedPin] == MachinePinState::OutputLow;
    }
    return Leds_[Led];
}

void SimulatedChipBoard::Drive(int Pin, bool High) {
    if (Pin >= 1 && Pin <= PinCount) {
        Outside_[Pin] = High ? 1 : 0;
        ++Changes_;
    }
}

void SimulatedChipBoard::Release(int Pin) {
    if (Pin >= 1 && Pin <= PinCount) {
        Outside_[Pin] = -1;
        ++Changes_;
    }
}

bool SimulatedChipBoard::Driven(int Pin) const {
    return Pin >= 1 && Pin <= PinCount && Outside_[Pin] >= 0;
}
