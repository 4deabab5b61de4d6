#include "sim/SimulatedKV10Board.h"

#include <algorithm>

namespace {
// The port's status inputs that the board leaves alone float high; the
// port reads its bit 7 (BUSY) inverted.
constexpr uint8_t UnusedStatusInputs = 0x5F;
}  // namespace

SimulatedKV10Board::SimulatedKV10Board()
    : SpiEeprom(SpiPageSize), InternalEeprom(InternalEepromSize, 0xFF) {}

SimulatedKV10Board::~SimulatedKV10Board() {
    // No later save follows, so the time of a retry does not matter.
    SaveEeproms(0);
}

void SimulatedKV10Board::KeepEepromsIn(std::unique_ptr<SimulatedChipStore> Store) {
    Store_ = std::move(Store);
    const QByteArray Internal = Store_->Load(SimulatedChipStore::Internal);
    std::copy(Internal.begin(), Internal.end(), InternalEeprom.begin());
    const QByteArray External = Store_->Load(SimulatedChipStore::External);
    std::copy(External.begin(), External.end(), SpiEeprom.Memory.begin());
}

void SimulatedKV10Board::SaveEeproms(int64_t Ns) {
    if (!Store_) {
        return;
    }
    Store_->Save(SimulatedChipStore::Internal,
                 QByteArrayView(InternalEeprom.data(), InternalEeprom.size()), Ns);
    Store_->Save(SimulatedChipStore::External,
                 QByteArrayView(SpiEeprom.Memory.data(), SpiEeprom.Memory.size()), Ns);
}

void SimulatedKV10Board::ChangedEeprom(SimulatedChipStore::Eeprom Which, int64_t Ns) {
    if (!Store_) {
        return;
    }
    Store_->Changed(Which, Ns);
    if (Store_->SaveDue(Ns)) {
        SaveEeproms(Ns);
    }
}

void SimulatedKV10Board::ControlLines(uint8_t Value, int64_t) { Control = Value; }

void SimulatedKV10Board::DataLines(uint8_t Value, int64_t Ns) {
    uint8_t Old = Data;
    Data = Value;
    if ((Value & PowerLines) != PowerLines) {
        if (State != ChipState::Off) {
            ++PowerDowns;
            SpiEeprom.PowerLost();
            State = ChipState::Off;
            EepromDrives = false;
            EepromBits = 0;
            ChipBits = 0;
            CommandBytes = 0;
        }
        return;
    }
    if (State == ChipState::Off) {
        // Every other line comes up from low with the power.
        ++PowerUps;
        State = ChipState::InReset;
        Old = PowerLines;
    }
    const uint8_t Changed = Old ^ Value;
    const bool SelectLow = (Value & SelectLine) == 0;
    if ((Changed & SelectLine) != 0) {
        SelectChanged(SelectLow, Ns);
    }
    if ((Changed & ResetLine) != 0) {
        ResetChanged((Value & ResetLine) != 0, SelectLow, Ns);
    } else if ((Changed & SelectLine) != 0) {
        EntrySelectChanged(SelectLow, Ns);
    }
    if ((Changed & ClockLine) != 0) {
        Clock((Value & ClockLine) != 0, Ns);
    }
}

void SimulatedKV10Board::SelectChanged(bool SelectLow, int64_t Ns) {
    EepromBits = 0;
    EepromIn = 0;
    EepromOut = -1;
    EepromDrives = false;
    if (SelectLow) {
        SpiEeprom.Select(Ns);
        return;
    }
    const int PagesBefore = SpiEeprom.CompletedPageWrites;
    const int ChangesBefore = SpiEeprom.ChangingWrites;
    SpiEeprom.Deselect(Ns);
    if (SpiEeprom.CompletedPageWrites == PagesBefore) {
        return;
    }
    PageWrites.push_back(SpiEeprom.LastWriteAddress);
    bool Changed = SpiEeprom.ChangingWrites != ChangesBefore;
    if (Faults.WornCell >= 0 && Faults.WornCell < SimulatedSpiEeprom::Size &&
        SpiEeprom.Memory[Faults.WornCell] != 0) {
        SpiEeprom.Memory[Faults.WornCell] = 0;
        Changed = true;
    }
    if (Changed) {
        ChangedEeprom(SimulatedChipStore::External, Ns);
    }
}

void SimulatedKV10Board::ResetChanged(bool Released, bool SelectLow, int64_t Ns) {
    ChipBits = 0;
    CommandBytes = 0;
    if (!Released) {
        State = ChipState::InReset;
        return;
    }
    // The start-up code looks at the select line: low asks for programming.
    if (SelectLow && !Faults.NoProgrammingMode) {
        State = ChipState::EntryLow;
        PhaseSinceNs = Ns;
        return;
    }
    State = ChipState::Running;
    ++ProgramStarts;
}

void SimulatedKV10Board::EntrySelectChanged(bool SelectLow, int64_t Ns) {
    const auto Next = [this, Ns](ChipState To, int64_t LeastNs) {
        if (Ns - PhaseSinceNs >= LeastNs) {
            State = To;
            PhaseSinceNs = Ns;
        } else {
            // Too short: the start-up code has gone on to the program.
            State = ChipState::Running;
            ++ProgramStarts;
        }
    };
    if (State == ChipState::EntryLow && !SelectLow) {
        Next(ChipState::EntryHigh, EntryLowNs);
    } else if (State == ChipState::EntryHigh && SelectLow) {
        Next(ChipState::EntryLowAgain, EntryHighNs);
    } else if ((State == ChipState::EntryLowAgain || State == ChipState::Programming) &&
               !SelectLow) {
        // The select line rising ends the programming mode.
        State = ChipState::Running;
        ++ProgramStarts;
    }
}

void SimulatedKV10Board::Clock(bool Rising, int64_t Ns) {
    const bool BitIn = (Data & DataToBoardLine) != 0;
    if (SpiEeprom.Selected()) {
        if (Rising) {
            EepromIn = static_cast<uint8_t>((EepromIn << 1) | (BitIn ? 1 : 0));
            if (++EepromBits == 8) {
                SpiEeprom.Exchange(EepromIn, Ns);
                EepromBits = 0;
                EepromIn = 0;
                // What the device sends while the next byte comes in.
                EepromOut = SpiEeprom.Pending(Ns);
            }
        } else {
            // The device moves its output on the falling edge, for the host
            // to read after the next rising one.
            EepromDrives = EepromOut >= 0;
            EepromBit = EepromDrives && ((EepromOut >> (7 - EepromBits)) & 1) != 0;
        }
    }
    if (!Rising) {
        return;
    }
    if (State == ChipState::EntryLowAgain) {
        if (Ns - PhaseSinceNs < ListenAfterNs) {
            return;  // not yet listening: the bit is lost
        }
        State = ChipState::Programming;
        ++ProgrammingEntries;
        ChipBits = 0;
        CommandBytes = 0;
    }
    if (State != ChipState::Programming) {
        return;
    }
    ChipBit = BitIn;
    ChipIn = static_cast<uint8_t>((ChipIn << 1) | (BitIn ? 1 : 0));
    if (++ChipBits == 8) {
        ChipBits = 0;
        ChipByte(ChipIn, Ns);
    }
}

void SimulatedKV10Board::ChipByte(uint8_t Byte, int64_t Ns) {
    if (CommandBytes == 0) {
        // The set-up byte (0x47) and anything else but a write is only echoed.
        if (Byte == InternalWriteCommand) {
            CommandBytes = 1;
        }
        return;
    }
    Command[CommandBytes - 1] = Byte;
    if (++CommandBytes < 4) {
        return;
    }
    CommandBytes = 0;
    const auto Address =
        static_cast<uint16_t>((Command[0] | (Command[1] << 8)) % InternalEepromSize);
    if (Ns < InternalBusyUntilNs) {
        ++InternalWritesLost;
        return;
    }
    InternalBusyUntilNs = Ns + InternalWriteNs;
    InternalWrites.emplace_back(Address, Command[2]);
    if (InternalEeprom[Address] != Command[2]) {
        InternalEeprom[Address] = Command[2];
        ChangedEeprom(SimulatedChipStore::Internal, Ns);
    }
}

uint8_t SimulatedKV10Board::StatusLines(int64_t) const {
    bool Line = true;
    if (State != ChipState::Off) {
        if (EepromDrives && SpiEeprom.Selected()) {
            Line = Line && EepromBit;
        }
        if (State == ChipState::Programming) {
            Line = Line && ChipBit;
        }
    }
    return static_cast<uint8_t>(UnusedStatusInputs | (Line ? DataFromBoardLine : 0));
}
