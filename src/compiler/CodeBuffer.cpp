#include "compiler/CodeBuffer.h"

int CodeBuffer::NewLabel() {
    Labels_.push_back(-1);
    return static_cast<int>(Labels_.size()) - 1;
}

void CodeBuffer::Place(int Label) { Labels_[static_cast<size_t>(Label)] = Here(); }

void CodeBuffer::Jump(Opcodes::Opcode Opcode, int Label) {
    Op(Opcode);
    Fixups_.push_back({Bytes.size(), Label});
    U16(0);
}

void CodeBuffer::U16(uint32_t Value) {
    Bytes.push_back(static_cast<uint8_t>(Value));
    Bytes.push_back(static_cast<uint8_t>(Value >> 8));
}

void CodeBuffer::W32(uint32_t Value) {
    U16(Value);
    U16(Value >> 16);
}

uint32_t CodeBuffer::LabelAddress(int Label) const {
    return static_cast<uint32_t>(Labels_[static_cast<size_t>(Label)]);
}

void CodeBuffer::PatchU16(size_t Offset, uint32_t Value) {
    Bytes[Offset] = static_cast<uint8_t>(Value);
    Bytes[Offset + 1] = static_cast<uint8_t>(Value >> 8);
}

bool CodeBuffer::Resolve() {
    for (const Fixup& Each : Fixups_) {
        const int64_t Address = Labels_[static_cast<size_t>(Each.Label)];
        if (Address < 0) {
            return false;
        }
        PatchU16(Each.Offset, static_cast<uint32_t>(Address));
    }
    return true;
}
