#include "machine/Opcodes.h"

namespace Opcodes {

namespace {

constexpr OpcodeInfo Make(std::string_view Mnemonic, uint8_t AccessSize,
                          std::initializer_list<OperandKind> Operands) {
    OpcodeInfo Result;
    Result.Mnemonic = Mnemonic;
    Result.AccessSize = AccessSize;
    for (const OperandKind Kind : Operands) {
        Result.Operands[Result.OperandCount++] = Kind;
        Result.Length = static_cast<uint8_t>(Result.Length + OperandLength(Kind));
    }
    return Result;
}

struct Table {
    std::array<OpcodeInfo, 256> Entries{};
    std::array<bool, 256> Known{};
    constexpr Table() {
#define KV_OPCODE_ENTRY(NAME, VALUE, MNEMONIC, SIZE, ...) \
    Entries[VALUE] = Make(MNEMONIC, SIZE, {__VA_ARGS__}); \
    Known[VALUE] = true;
        KV_OPCODES(KV_OPCODE_ENTRY)
#undef KV_OPCODE_ENTRY
    }
};

constexpr Table Instructions;

}  // namespace

const OpcodeInfo* Info(uint8_t Opcode) {
    return Instructions.Known[Opcode] ? &Instructions.Entries[Opcode] : nullptr;
}

std::optional<uint8_t> FindMnemonic(std::string_view Mnemonic) {
    for (int Opcode = 0; Opcode < 256; ++Opcode) {
        if (Instructions.Known[Opcode] && Instructions.Entries[Opcode].Mnemonic == Mnemonic) {
            return static_cast<uint8_t>(Opcode);
        }
    }
    return std::nullopt;
}

}  // namespace Opcodes
