#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

// The instructions of the bytecode machine: one byte of opcode, then its
// operands, little-endian. docs/bytecode.md tells what each one does; this
// table is what the image check, the machine and the assembler share.
namespace Opcodes {

// The value types of the language, as the typed instructions and the
// conversion operands number them.
enum ValueType : uint8_t {
    TypeByte = 0,
    TypeInteger = 1,
    TypeUnsignedInteger = 2,
    TypeLong = 3,
    TypeUnsignedLong = 4,
    TypeSingle = 5,
    TypeBoolean = 6,
};
inline constexpr int ValueTypeCount = 7;

enum class OperandKind : uint8_t {
    U8,
    I16,
    U16,
    W32,
    // An address in the image where an instruction starts.
    CodeAddress,
    // The offset of a string literal in the image's data.
    DataOffset,
    // A module-level RAM address that the instruction reads or writes
    // AccessSize bytes at (1 for ADDRG).
    RamAddress,
    // An address of the internal EEPROM inside the persistent variables.
    PersistentAddress,
    LibraryCall,
    TypeCode,
    ConversionPair,
    Condition,
};

// Comparisons of SCMP.
enum Condition : uint8_t {
    ConditionEqual = 0,
    ConditionNotEqual = 1,
    ConditionLess = 2,
    ConditionLessOrEqual = 3,
    ConditionGreater = 4,
    ConditionGreaterOrEqual = 5,
};

// X(name, value, mnemonic, access size, operand kinds...)
// The six arithmetic families run in type order Byte, Integer,
// UnsignedInteger, Long, UnsignedLong, Single from their first opcode.
#define KV_ARITH_FAMILY(X, NAME, BASE, TEXT) \
    X(NAME##_B, BASE + 0, TEXT ".b", 0)      \
    X(NAME##_I, BASE + 1, TEXT ".i", 0)      \
    X(NAME##_U, BASE + 2, TEXT ".u", 0)      \
    X(NAME##_L, BASE + 3, TEXT ".l", 0)      \
    X(NAME##_UL, BASE + 4, TEXT ".ul", 0)    \
    X(NAME##_F, BASE + 5, TEXT ".f", 0)

#define KV_OPCODES(X)                                                                \
    X(NOP, 0x00, "nop", 0)                                                           \
    X(END, 0x01, "end", 0)                                                           \
    X(PUSHB, 0x02, "pushb", 0, OperandKind::U8)                                      \
    X(PUSHI, 0x03, "pushi", 0, OperandKind::I16)                                     \
    X(PUSHW, 0x04, "pushw", 0, OperandKind::W32)                                     \
    X(DUP, 0x05, "dup", 0)                                                           \
    X(DROP, 0x06, "drop", 0)                                                         \
    X(SWAP, 0x07, "swap", 0)                                                         \
    X(OVER, 0x08, "over", 0)                                                         \
    X(JMP, 0x09, "jmp", 0, OperandKind::CodeAddress)                                 \
    X(JT, 0x0A, "jt", 0, OperandKind::CodeAddress)                                   \
    X(JF, 0x0B, "jf", 0, OperandKind::CodeAddress)                                   \
    X(CALL, 0x0C, "call", 0, OperandKind::CodeAddress)                               \
    X(ENTER, 0x0D, "enter", 0, OperandKind::U16)                                     \
    X(RET, 0x0E, "ret", 0)                                                           \
    X(SYS, 0x0F, "sys", 0, OperandKind::LibraryCall)                                 \
    X(LDG_B, 0x10, "ldg.b", 1, OperandKind::RamAddress)                              \
    X(LDG_Z, 0x11, "ldg.z", 1, OperandKind::RamAddress)                              \
    X(LDG_I, 0x12, "ldg.i", 2, OperandKind::RamAddress)                              \
    X(LDG_U, 0x13, "ldg.u", 2, OperandKind::RamAddress)                              \
    X(LDG_W, 0x14, "ldg.w", 4, OperandKind::RamAddress)                              \
    X(STG_B, 0x15, "stg.b", 1, OperandKind::RamAddress)                              \
    X(STG_Z, 0x16, "stg.z", 1, OperandKind::RamAddress)                              \
    X(STG_H, 0x17, "stg.h", 2, OperandKind::RamAddress)                              \
    X(STG_W, 0x18, "stg.w", 4, OperandKind::RamAddress)                              \
    X(LDL_B, 0x19, "ldl.b", 1, OperandKind::U16)                                     \
    X(LDL_Z, 0x1A, "ldl.z", 1, OperandKind::U16)                                     \
    X(LDL_I, 0x1B, "ldl.i", 2, OperandKind::U16)                                     \
    X(LDL_U, 0x1C, "ldl.u", 2, OperandKind::U16)                                     \
    X(LDL_W, 0x1D, "ldl.w", 4, OperandKind::U16)                                     \
    X(STL_B, 0x1E, "stl.b", 1, OperandKind::U16)                                     \
    X(STL_Z, 0x1F, "stl.z", 1, OperandKind::U16)                                     \
    X(STL_H, 0x20, "stl.h", 2, OperandKind::U16)                                     \
    X(STL_W, 0x21, "stl.w", 4, OperandKind::U16)                                     \
    X(LDI_B, 0x22, "ldi.b", 1)                                                       \
    X(LDI_Z, 0x23, "ldi.z", 1)                                                       \
    X(LDI_I, 0x24, "ldi.i", 2)                                                       \
    X(LDI_U, 0x25, "ldi.u", 2)                                                       \
    X(LDI_W, 0x26, "ldi.w", 4)                                                       \
    X(STI_B, 0x27, "sti.b", 1)                                                       \
    X(STI_Z, 0x28, "sti.z", 1)                                                       \
    X(STI_H, 0x29, "sti.h", 2)                                                       \
    X(STI_W, 0x2A, "sti.w", 4)                                                       \
    X(ADDRG, 0x2B, "addrg", 1, OperandKind::RamAddress)                              \
    X(ADDRL, 0x2C, "addrl", 0, OperandKind::U16)                                     \
    X(ADDRP, 0x2D, "addrp", 0, OperandKind::PersistentAddress)                       \
    X(AREF1, 0x2E, "aref1", 0, OperandKind::I16, OperandKind::I16, OperandKind::U16) \
    X(AREF2, 0x2F, "aref2", 0, OperandKind::I16, OperandKind::I16, OperandKind::I16, \
      OperandKind::I16, OperandKind::U16)                                            \
    X(PUSHS, 0x30, "pushs", 0, OperandKind::DataOffset)                              \
    X(LDS, 0x31, "lds", 0)                                                           \
    X(STS, 0x32, "sts", 0)                                                           \
    X(CAT, 0x33, "cat", 0)                                                           \
    X(SCMP, 0x34, "scmp", 0, OperandKind::Condition)                                 \
    X(SDROP, 0x35, "sdrop", 0)                                                       \
    X(SDUP, 0x36, "sdup", 0)                                                         \
    X(STR, 0x37, "str", 0, OperandKind::TypeCode)                                    \
    X(CONV, 0x38, "conv", 0, OperandKind::ConversionPair)                            \
    X(AND, 0x39, "and", 0)                                                           \
    X(OR, 0x3A, "or", 0)                                                             \
    X(XOR, 0x3B, "xor", 0)                                                           \
    X(POW_F, 0x3C, "pow.f", 0)                                                       \
    X(INCG_L, 0x3D, "incg.l", 4, OperandKind::RamAddress, OperandKind::I16)          \
    X(JLE_L, 0x3E, "jle.l", 0, OperandKind::CodeAddress)                             \
    X(JGE_L, 0x3F, "jge.l", 0, OperandKind::CodeAddress)                             \
    KV_ARITH_FAMILY(X, ADD, 0x40, "add")                                             \
    KV_ARITH_FAMILY(X, SUB, 0x46, "sub")                                             \
    KV_ARITH_FAMILY(X, MUL, 0x4C, "mul")                                             \
    KV_ARITH_FAMILY(X, DIV, 0x52, "div")                                             \
    X(MOD_B, 0x58, "mod.b", 0)                                                       \
    X(MOD_I, 0x59, "mod.i", 0)                                                       \
    X(MOD_U, 0x5A, "mod.u", 0)                                                       \
    X(MOD_L, 0x5B, "mod.l", 0)                                                       \
    X(MOD_UL, 0x5C, "mod.ul", 0)                                                     \
    KV_ARITH_FAMILY(X, NEG, 0x5E, "neg")                                             \
    X(NOT_B, 0x64, "not.b", 0)                                                       \
    X(NOT_I, 0x65, "not.i", 0)                                                       \
    X(NOT_U, 0x66, "not.u", 0)                                                       \
    X(NOT_L, 0x67, "not.l", 0)                                                       \
    X(NOT_UL, 0x68, "not.ul", 0)                                                     \
    KV_ARITH_FAMILY(X, EQ, 0x70, "eq")                                               \
    KV_ARITH_FAMILY(X, NE, 0x76, "ne")                                               \
    KV_ARITH_FAMILY(X, LT, 0x7C, "lt")                                               \
    KV_ARITH_FAMILY(X, LE, 0x82, "le")                                               \
    KV_ARITH_FAMILY(X, GT, 0x88, "gt")                                               \
    KV_ARITH_FAMILY(X, GE, 0x8E, "ge")

enum Opcode : uint8_t {
#define KV_OPCODE_ENUM(NAME, VALUE, ...) NAME = VALUE,
    KV_OPCODES(KV_OPCODE_ENUM)
#undef KV_OPCODE_ENUM
};

struct OpcodeInfo {
    std::string_view Mnemonic;
    // Bytes that a load or store of this instruction moves, 0 for others.
    uint8_t AccessSize = 0;
    uint8_t OperandCount = 0;
    std::array<OperandKind, 5> Operands{};
    // The opcode byte and its operands.
    uint8_t Length = 1;
};

constexpr int OperandLength(OperandKind Kind) {
    switch (Kind) {
        case OperandKind::U8:
        case OperandKind::LibraryCall:
        case OperandKind::TypeCode:
        case OperandKind::ConversionPair:
        case OperandKind::Condition:
            return 1;
        case OperandKind::W32:
            return 4;
        default:
            return 2;
    }
}
// Null for a byte that is no instruction.
const OpcodeInfo* Info(uint8_t Opcode);
std::optional<uint8_t> FindMnemonic(std::string_view Mnemonic);

}  // namespace Opcodes
