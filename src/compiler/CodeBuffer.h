#pragma once

#include <cstdint>
#include <vector>

#include "machine/Opcodes.h"

// The code being generated: bytes, and labels whose addresses are filled in
// once known. Addresses are the image's, the code starting behind the header.
class CodeBuffer {
  public:
    static constexpr uint32_t CodeStart = 32;

    int NewLabel();
    void Place(int Label);
    // A jump or call to a label (placed now or later).
    void Jump(Opcodes::Opcode Op, int Label);
    void Op(uint8_t Opcode) { Bytes.push_back(Opcode); }
    void U8(uint8_t Value) { Bytes.push_back(Value); }
    void U16(uint32_t Value);
    void W32(uint32_t Value);
    // The address the next byte gets.
    uint32_t Here() const { return CodeStart + static_cast<uint32_t>(Bytes.size()); }
    uint32_t LabelAddress(int Label) const;
    // Writes the labels' addresses into the jumps; false if one was never placed.
    bool Resolve();
    void PatchU16(size_t Offset, uint32_t Value);

    std::vector<uint8_t> Bytes;

  private:
    struct Fixup {
        size_t Offset;
        int Label;
    };
    std::vector<int64_t> Labels_;
    std::vector<Fixup> Fixups_;
};
