#include "machine/MachineBoard.h"

MachineBoard::MachineBoard() {
    // A chip comes out of reset with every pin an input.
    Pins.fill(MachinePinState::InputTristate);
    Driven.fill(-1);
}

void MachineBoard::Write(std::span<const uint8_t> Bytes, int64_t) {
    Output.append(reinterpret_cast<const char*>(Bytes.data()), Bytes.size());
}

bool MachineBoard::Available(int64_t) { return !Input.empty(); }

std::optional<uint8_t> MachineBoard::Read(int64_t Ns) {
    if (Input.empty()) {
        return std::nullopt;
    }
    const uint8_t Byte = Input.front();
    Input.pop_front();
    ReadTimes.push_back(Ns);
    return Byte;
}

void MachineBoard::SetPinState(int Pin, MachinePinState State, int64_t Ns) {
    if (Pin < 1 || Pin > PinCount) {
        return;
    }
    Pins[Pin] = State;
    PinChanges.push_back({Pin, State, Ns});
}

bool MachineBoard::PinLevel(int Pin, int64_t) {
    if (Pin < 1 || Pin > PinCount) {
        return false;
    }
    switch (Pins[Pin]) {
        case MachinePinState::OutputLow:
            return false;
        case MachinePinState::OutputHigh:
            return true;
        case MachinePinState::InputPullup:
            return Driven[Pin] < 0 ? true : Driven[Pin] == 1;
        case MachinePinState::InputTristate:
            return Driven[Pin] == 1;
    }
    return false;
}

void MachineBoard::SetLed(int Led, bool On, int64_t Ns) {
    if (Led < 1 || Led > 2) {
        return;
    }
    Leds[Led] = On;
    LedChanges.push_back({Led, On, Ns});
}

void MachineBoard::Type(std::string_view Text) {
    for (const char Character : Text) {
        Input.push_back(static_cast<uint8_t>(Character));
    }
}

void MachineBoard::Drive(int Pin, bool High) {
    if (Pin >= 1 && Pin <= PinCount) {
        Driven[Pin] = High ? 1 : 0;
    }
}

void MachineBoard::Release(int Pin) {
    if (Pin >= 1 && Pin <= PinCount) {
        Driven[Pin] = -1;
    }
}
