#include "sim/SimulatedSpiEeprom.h"

namespace {
constexpr uint8_t InstructionWriteStatus = 0x01;
constexpr uint8_t InstructionWrite = 0x02;
constexpr uint8_t InstructionRead = 0x03;
constexpr uint8_t InstructionWriteDisable = 0x04;
constexpr uint8_t InstructionReadStatus = 0x05;
constexpr uint8_t InstructionWriteEnable = 0x06;
constexpr uint16_t AddressMask = SimulatedSpiEeprom::Size - 1;
}  // namespace

SimulatedSpiEeprom::SimulatedSpiEeprom(int PageSize)
    : PageSize_(PageSize > 0 && PageSize <= LargestPageSize ? PageSize : LargestPageSize) {
    Memory.fill(0xFF);
}

int SimulatedSpiEeprom::Pending(int64_t Ns) const {
    if (!Selected_ || Clocked == 0 || IgnoredWhileBusy) {
        return -1;
    }
    if (Instruction == InstructionReadStatus) {
        return Status(Ns);
    }
    if (Instruction == InstructionRead && Clocked >= 3) {
        return Memory[Address];
    }
    return -1;
}

void SimulatedSpiEeprom::PowerLost() {
    Selected_ = false;
    WriteEnableLatch_ = false;
}

uint8_t SimulatedSpiEeprom::Status(int64_t Ns) const {
    return static_cast<uint8_t>((Busy(Ns) ? StatusWriteInProgress : 0) |
                                (WriteEnableLatch_ ? StatusWriteEnableLatch : 0) |
                                (BlockProtect_ << 2));
}

bool SimulatedSpiEeprom::Protected(uint16_t Where) const {
    switch (BlockProtect_) {
        case 1:
            return Where >= 0x6000;
        case 2:
            return Where >= 0x4000;
        case 3:
            return true;
        default:
            return false;
    }
}

void SimulatedSpiEeprom::Select(int64_t) {
    Selected_ = true;
    Instruction = -1;
    IgnoredWhileBusy = false;
    Clocked = 0;
    HaveNewStatus = false;
    PageBuffer.fill(-1);
    PageBytes = 0;
}

uint8_t SimulatedSpiEeprom::Exchange(uint8_t Mosi, int64_t Ns) {
    if (!Selected_) {
        return 0xFF;
    }
    ++Clocked;
    if (Clocked == 1) {
        Instruction = Mosi;
        // A device in its write cycle hears nothing but a status read.
        IgnoredWhileBusy = Busy(Ns) && Mosi != InstructionReadStatus;
        return 0xFF;
    }
    if (IgnoredWhileBusy) {
        return 0xFF;
    }
    switch (Instruction) {
        case InstructionReadStatus:
            return Status(Ns);
        case InstructionWriteStatus:
            if (Clocked == 2) {
                NewStatus = Mosi;
                HaveNewStatus = true;
            }
            return 0xFF;
        case InstructionRead:
        case InstructionWrite:
            if (Clocked == 2) {
                Address = static_cast<uint16_t>(Mosi << 8);
                return 0xFF;
            }
            if (Clocked == 3) {
                Address = static_cast<uint16_t>((Address | Mosi) & AddressMask);
                PageBase = static_cast<uint16_t>(Address & ~(PageSize_ - 1));
                WriteStart = Address;
                return 0xFF;
            }
            if (Instruction == InstructionRead) {
                const uint8_t Out = Memory[Address];
                Address = static_cast<uint16_t>((Address + 1) & AddressMask);
                return Out;
            }
            // A page write wraps to the start of its page, as the device does.
            PageBuffer[Address - PageBase] = Mosi;
            ++PageBytes;
            Address = static_cast<uint16_t>(PageBase + ((Address + 1 - PageBase) % PageSize_));
            return 0xFF;
        default:
            return 0xFF;
    }
}

void SimulatedSpiEeprom::Deselect(int64_t Ns) {
    if (!Selected_) {
        return;
    }
    Selected_ = false;
    if (Clocked == 0) {
        return;
    }
    if (IgnoredWhileBusy) {
        if (Instruction == InstructionWrite || Instruction == InstructionWriteStatus) {
            ++RefusedWrites;
        }
        return;
    }
    switch (Instruction) {
        case InstructionWriteEnable:
            if (Clocked == 1) {
                WriteEnableLatch_ = true;
            }
            break;
        case InstructionWriteDisable:
            WriteEnableLatch_ = false;
            break;
        case InstructionWriteStatus:
            if (!HaveNewStatus) {
                break;
            }
            if (!WriteEnableLatch_) {
                ++RefusedWrites;
                break;
            }
            BlockProtect_ = static_cast<uint8_t>((NewStatus >> 2) & 0x03);
            WriteEnableLatch_ = false;
            BusyUntilNs = Ns + WriteCycleNs;
            ++CompletedWrites;
            break;
        case InstructionWrite: {
            if (PageBytes == 0) {
                break;
            }
            if (!WriteEnableLatch_ || Protected(PageBase)) {
                ++RefusedWrites;
                WriteEnableLatch_ = false;
                break;
            }
            bool Changed = false;
            ++CompletedPageWrites;
            WrappedWrites += WriteStart - PageBase + PageBytes > PageSize_ ? 1 : 0;
            LastWriteAddress = WriteStart;
            for (int Offset = 0; Offset < PageSize_; ++Offset) {
                if (PageBuffer[Offset] >= 0) {
                    const auto Value = static_cast<uint8_t>(PageBuffer[Offset]);
                    Changed = Changed || Memory[PageBase + Offset] != Value;
                    Memory[PageBase + Offset] = Value;
                }
            }
            WriteEnableLatch_ = false;
            BusyUntilNs = Ns + WriteCycleNs;
            ++CompletedWrites;
            ChangingWrites += Changed ? 1 : 0;
            break;
        }
        default:
            break;
    }
}
