#include "sim/SimulatedKavlinChip.h"

#include <algorithm>
#include <cstring>

#include "machine/BytecodeMachine.h"

namespace {
// Takes one use of a fault count; -1 never runs out.
bool Take(int& Count) {
    if (Count == 0) {
        return false;
    }
    if (Count > 0) {
        --Count;
    }
    return true;
}

uint8_t Checksum(uint8_t Sum) { return static_cast<uint8_t>(-Sum); }

// Persistent variables lie behind the 32 bytes of the configuration block.
constexpr size_t PersistentStart = 32;
}  // namespace

// The program's serial line: what it prints goes out on the chip's line,
// what the host sent waits in the UART's receive buffer.
class SimulatedKavlinChip::ProgramSerial : public MachineSerialLine {
  public:
    explicit ProgramSerial(SimulatedKavlinChip& Chip) : Chip(Chip) {}
    void Write(std::span<const uint8_t> Bytes, int64_t Ns) override {
        Chip.ProgramWrites(Bytes.data(), Bytes.size(), Ns);
    }
    bool Available(int64_t) override { return !Chip.ReceiveBuffer_.empty(); }
    std::optional<uint8_t> Read(int64_t) override {
        if (Chip.ReceiveBuffer_.empty()) {
            return std::nullopt;
        }
        const uint8_t Byte = Chip.ReceiveBuffer_.front();
        Chip.ReceiveBuffer_.pop_front();
        return Byte;
    }

  private:
    SimulatedKavlinChip& Chip;
};

SimulatedKavlinChip::SimulatedKavlinChip()
    : Ram(RamSize, 0),
      InternalEeprom(InternalEepromSize, 0xFF),
      ProgramSerial_(std::make_unique<ProgramSerial>(*this)) {}

SimulatedKavlinChip::~SimulatedKavlinChip() {
    // No later save follows, so the time of a retry does not matter.
    SaveEeproms(0);
}

void SimulatedKavlinChip::KeepEepromsIn(std::unique_ptr<SimulatedChipStore> Store) {
    Store_ = std::move(Store);
    const QByteArray Internal = Store_->Load(SimulatedChipStore::Internal);
    std::copy(Internal.begin(), Internal.end(), InternalEeprom.begin());
    const QByteArray External = Store_->Load(SimulatedChipStore::External);
    std::copy(External.begin(), External.end(), ExternalEeprom.Memory.begin());
}

void SimulatedKavlinChip::Changed(SimulatedChipStore::Eeprom Which, int64_t Ns) {
    if (Store_) {
        Store_->Changed(Which, Ns);
    }
}

void SimulatedKavlinChip::LineTimeIs(int64_t Ns) {
    RunProgram(Ns);
    if (Store_ && Store_->SaveDue(Ns)) {
        SaveEeproms(Ns);
    }
}

void SimulatedKavlinChip::SaveEeproms(int64_t Ns) {
    if (!Store_) {
        return;
    }
    Store_->Save(SimulatedChipStore::Internal,
                 QByteArrayView(InternalEeprom.data(), InternalEeprom.size()), Ns);
    Store_->Save(SimulatedChipStore::External,
                 QByteArrayView(ExternalEeprom.Memory.data(), ExternalEeprom.Memory.size()), Ns);
}

void SimulatedKavlinChip::DeselectExternalEeprom(int64_t Ns) {
    // A page write lands when chip select rises.
    const int Before = ExternalEeprom.ChangingWrites;
    ExternalEeprom.Deselect(Ns);
    if (ExternalEeprom.ChangingWrites != Before) {
        Changed(SimulatedChipStore::External, Ns);
    }
}

void SimulatedKavlinChip::Reply(QByteArray Bytes, int64_t Ns, bool HasChecksum) {
    if (Faults.Silent) {
        return;
    }
    if (HasChecksum && !Bytes.isEmpty() && Take(Faults.WrongChecksum)) {
        Bytes[Bytes.size() - 1] = static_cast<char>(static_cast<uint8_t>(Bytes.back()) + 1);
    }
    if (!Bytes.isEmpty() && Take(Faults.ShortReply)) {
        Bytes.chop(1);
    }
    if (!Bytes.isEmpty() && Take(Faults.DroppedByte)) {
        Bytes.remove(0, 1);
    }
    if (Take(Faults.ExtraByte)) {
        Bytes.append(static_cast<char>(0x55));
    }
    if (!Bytes.isEmpty() && Sink_) {
        Sink_(Bytes, Ns + ReplyLatencyNs + Faults.LateNs);
    }
}

void SimulatedKavlinChip::Print(const QByteArray& Text, int64_t Ns) {
    if (InMonitor_ || !Sink_) {
        return;
    }
    // Byte by byte, so that a long text reaches the host as the line brings it.
    for (const char Byte : Text) {
        Sink_(QByteArray(1, Byte), Ns);
        TransmitFreeNs_ = std::max(TransmitFreeNs_, Ns) + TransmitByteNs;
    }
}

void SimulatedKavlinChip::ProgramWrites(const uint8_t* Bytes, size_t Count, int64_t ProgramNs) {
    Print(QByteArray(reinterpret_cast<const char*>(Bytes), static_cast<qsizetype>(Count)),
          ProgramNs + HeldNs_);
}

void SimulatedKavlinChip::EnterMonitor(int64_t Ns) {
    if (!InMonitor_) {
        InMonitor_ = true;
        HaltedAtNs_ = Ns;
        ++CatchCount;
    }
    State = Expect::Command;
}

void SimulatedKavlinChip::LeaveMonitor(int64_t Ns) {
    InMonitor_ = false;
    State = Expect::Command;
    // The host has let the chip go: what it wrote is kept now.
    SaveEeproms(Ns);
}

void SimulatedKavlinChip::StartProgram(int64_t Ns) {
    ReceiveBuffer_.clear();
    const std::span<const uint8_t> Image(ExternalEeprom.Memory.data(),
                                         ExternalEeprom.Memory.size());
    // The block tells the pins of the model the image was made for; an image
    // the machine refuses leaves the pins as the block says all the same.
    const int ChipType = Image.size() > 5 && Image[0] == 'K' && Image[1] == 'V' ? Image[5] : 2;
    Board.LoadConfigurationBlock(ChipType, std::span<const uint8_t>(InternalEeprom.data(), 32));
    Machine_ = std::make_unique<BytecodeMachine>(
        BytecodeMachine::Memories{Ram, InternalEeprom, Image}, *ProgramSerial_, Board);
    // The program's time starts once the start-up code is done.
    HeldNs_ = Ns + StartupCodeNs;
    TransmitFreeNs_ = HeldNs_;
    PersistentSeen_.assign(InternalEeprom.begin() + PersistentStart, InternalEeprom.end());
    Machine_->Start(0);
}

void SimulatedKavlinChip::ResumeProgram(int64_t Ns) {
    if (!Machine_) {
        // Caught before any program ran: letting it go starts the program.
        StartProgram(Ns);
        return;
    }
    HeldNs_ += std::max<int64_t>(0, Ns - HaltedAtNs_);
}

bool SimulatedKavlinChip::ProgramRunning() const { return Machine_ && !Machine_->Stopped(); }

bool SimulatedKavlinChip::ProgramEnded() const {
    return Machine_ && Machine_->CurrentState() == BytecodeMachine::State::Ended;
}

std::string SimulatedKavlinChip::ProgramTrouble() const {
    if (!Machine_) {
        return std::string();
    }
    if (Machine_->CurrentState() == BytecodeMachine::State::Failed) {
        return Machine_->ErrorMessage();
    }
    return Machine_->RefusalReason();
}

void SimulatedKavlinChip::RunProgram(int64_t Ns) {
    if (InMonitor_ || !Machine_ || Machine_->Stopped()) {
        return;
    }
    const int64_t FifoNs = TransmitByteNs * TransmitFifoBytes;
    while (!Machine_->Stopped()) {
        const int64_t LineNow = Machine_->Now() + HeldNs_;
        if (LineNow >= Ns) {
            break;
        }
        // A print waits while the UART is full; the program's time stands
        // still meanwhile.
        const int64_t RoomAt = TransmitFreeNs_ - FifoNs;
        if (RoomAt > LineNow) {
            HeldNs_ += std::min(RoomAt, Ns) - LineNow;
            continue;
        }
        // A running program goes a byte's time at a time, so that it prints
        // no more than a few bytes before the FIFO holds it back; a wait is
        // skipped to its end, and a read with nothing to read to Ns.
        int64_t Until = std::min(Ns, LineNow + TransmitByteNs);
        if (Machine_->CurrentState() == BytecodeMachine::State::Sleeping) {
            Until = std::min(Ns, std::max(Until, Machine_->WakeNs() + HeldNs_));
        } else if (Machine_->CurrentState() == BytecodeMachine::State::WaitingForInput &&
                   ReceiveBuffer_.empty()) {
            Until = Ns;
        }
        const int64_t Before = Machine_->Now();
        Machine_->RunUntil(Until - HeldNs_);
        if (Machine_->Now() == Before && !Machine_->Stopped()) {
            // Less time left than one instruction takes.
            break;
        }
    }
    KeepPersistentChanges(Ns);
}

void SimulatedKavlinChip::KeepPersistentChanges(int64_t Ns) {
    const uint8_t* Persistent = InternalEeprom.data() + PersistentStart;
    if (std::memcmp(Persistent, PersistentSeen_.data(), PersistentSeen_.size()) != 0) {
        std::memcpy(PersistentSeen_.data(), Persistent, PersistentSeen_.size());
        Changed(SimulatedChipStore::Internal, Ns);
    }
}

void SimulatedKavlinChip::SetAtn(bool Level, int64_t Ns) {
    const bool Rising = Level && !AtnLevel_;
    AtnLevel_ = Level;
    if (!Rising || InMonitor_) {
        return;
    }
    const bool StartingUp = StartupUntilNs >= 0 && Ns <= StartupUntilNs;
    if (!ProgramHoldsOffAtn || StartingUp) {
        RunProgram(Ns);
        EnterMonitor(Ns);
    }
}

void SimulatedKavlinChip::PressReset(int64_t Ns) {
    if (ExternalEeprom.Selected()) {
        DeselectExternalEeprom(Ns);
    }
    LeaveMonitor(Ns);
    StartupUntilNs = Ns + StartupWindowNs;
    StartProgram(Ns);
}

void SimulatedKavlinChip::Receive(uint8_t Byte, int64_t Ns) {
    LineTimeIs(Ns);
    if (!InMonitor_) {
        // A running program keeps the PC link (the KV-20 and KV-30 default):
        // the sync byte halts it into the monitor without ATN, as the watch
        // window's samples halt it.
        if ((PcLinkProgram || ProgramRunning()) && Byte == 0x01) {
            EnterMonitor(Ns);
            Reply(QByteArray(1, static_cast<char>(Acknowledge)), Ns, false);
            return;
        }
        ProgramInput.append(static_cast<char>(Byte));
        if (static_cast<int>(ReceiveBuffer_.size()) < ReceiveBufferBytes) {
            ReceiveBuffer_.push_back(Byte);
        }
        if (ProgramEchoes) {
            Print(QByteArray(1, static_cast<char>(Byte)), Ns);
        }
        return;
    }
    switch (State) {
        case Expect::Command:
            CommandByte(Byte, Ns);
            return;
        case Expect::BlockHeader:
            Header.append(static_cast<char>(Byte));
            if (Header.size() == 4) {
                BlockHeaderDone(Ns);
            }
            return;
        case Expect::WriteRamData:
            Ram[Address] = Byte;
            Address = static_cast<uint16_t>(Address + 1);
            Sum = static_cast<uint8_t>(Sum + Byte);
            if (--Remaining == 0) {
                State = Expect::Command;
                Reply(QByteArray(1, static_cast<char>(Checksum(Sum))), Ns, true);
            }
            return;
        case Expect::WriteEepromData: {
            uint8_t& Cell = InternalEeprom[Address % InternalEepromSize];
            if (Cell != Byte) {
                Cell = Byte;
                Changed(SimulatedChipStore::Internal, Ns);
            }
            Address = static_cast<uint16_t>(Address + 1);
            Sum = static_cast<uint8_t>(Sum + Byte);
            // Each byte is acknowledged; the last one's acknowledgement has
            // the checksum right behind it.
            QByteArray Answer(1, static_cast<char>(Byte));
            if (--Remaining == 0) {
                State = Expect::Command;
                Answer.append(static_cast<char>(Checksum(Sum)));
                Reply(Answer, Ns, true);
            } else {
                Reply(Answer, Ns, false);
            }
            return;
        }
        case Expect::SpiCount:
            Remaining = Byte;
            State = Remaining == 0 ? Expect::Command : Expect::SpiData;
            if (!ExternalEeprom.Selected()) {
                ExternalEeprom.Select(Ns);
            }
            return;
        case Expect::SpiData:
            // Every byte clocked through the EEPROM comes back as it is clocked.
            Reply(QByteArray(1, static_cast<char>(ExternalEeprom.Exchange(Byte, Ns))), Ns, false);
            if (--Remaining == 0) {
                State = Expect::Command;
            }
            return;
        case Expect::LeaveCode:
            if (Byte == 0x00) {
                ++ContinueCount;
                LeaveMonitor(Ns);
                ResumeProgram(Ns);
            } else if (Byte == 0xD6) {
                State = Expect::ResetEnd;
            } else {
                State = Expect::Command;
            }
            return;
        case Expect::ResetEnd:
            if (Byte == 0x00) {
                ++ResetCount;
                LeaveMonitor(Ns);
                StartupUntilNs = Ns + StartupWindowNs;
                StartProgram(Ns);
            } else {
                State = Expect::Command;
            }
            return;
    }
}

void SimulatedKavlinChip::CommandByte(uint8_t Byte, int64_t Ns) {
    if (Byte != 0x80 && ExternalEeprom.Selected()) {
        // Any other byte in command position ends an EEPROM transfer.
        DeselectExternalEeprom(Ns);
    }
    switch (Byte) {
        case 0x01:
            Reply(QByteArray(1, static_cast<char>(Acknowledge)), Ns, false);
            return;
        case 0x20:
        case 0x40:
        case 0x24:
        case 0x44:
            Command = Byte;
            Header.clear();
            State = Expect::BlockHeader;
            return;
        case 0x80:
            State = Expect::SpiCount;
            return;
        case 0x10:
            State = Expect::LeaveCode;
            return;
        default:
            // 0x00 and anything unknown are passed over.
            return;
    }
}

void SimulatedKavlinChip::BlockHeaderDone(int64_t Ns) {
    const auto ByteAt = [this](int Index) { return static_cast<uint8_t>(Header.at(Index)); };
    Length = static_cast<uint16_t>(ByteAt(0) | (ByteAt(1) << 8));
    Address = static_cast<uint16_t>(ByteAt(2) | (ByteAt(3) << 8));
    Remaining = Length;
    Sum = 0;
    State = Expect::Command;
    if (Command == 0x20 || Command == 0x40) {
        QByteArray Answer;
        Answer.reserve(Length + 1);
        for (uint16_t Offset = 0; Offset < Length; ++Offset) {
            const uint16_t Where = static_cast<uint16_t>(Address + Offset);
            const uint8_t Value =
                Command == 0x20 ? Ram[Where] : InternalEeprom[Where % InternalEepromSize];
            Sum = static_cast<uint8_t>(Sum + Value);
            Answer.append(static_cast<char>(Value));
        }
        Answer.append(static_cast<char>(Checksum(Sum)));
        Reply(Answer, Ns, true);
        return;
    }
    if (Length == 0) {
        Reply(QByteArray(1, static_cast<char>(0)), Ns, true);
        return;
    }
    State = Command == 0x24 ? Expect::WriteRamData : Expect::WriteEepromData;
}
