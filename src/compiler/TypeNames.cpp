#include "compiler/TypeNames.h"

#include <array>

namespace KavlinCompiler::TypeNames {

namespace {

struct TypeInfo {
    const char* Name;
    const char* Upper;
    int Size;
    int SymbolCode;
};

constexpr std::array<TypeInfo, 8> Types = {{
    {"Byte", "BYTE", 1, 18},
    {"Integer", "INTEGER", 2, 19},
    {"UnsignedInteger", "UNSIGNEDINTEGER", 2, 17},
    {"Long", "LONG", 4, 20},
    {"UnsignedLong", "UNSIGNEDLONG", 4, 21},
    {"Single", "SINGLE", 4, 32},
    {"Boolean", "BOOLEAN", 1, 50},
    {"String", "STRING", 1, 61},
}};

}  // namespace

bool Find(const std::string& Upper, ValueKind& Kind) {
    for (size_t I = 0; I < Types.size(); ++I) {
        if (Upper == Types[I].Upper) {
            Kind = static_cast<ValueKind>(I);
            return true;
        }
    }
    return false;
}

std::string Name(ValueKind Kind) {
    const size_t I = static_cast<size_t>(Kind);
    return I < Types.size() ? Types[I].Name : "nothing";
}

int Size(ValueKind Kind, int StringSize) {
    if (Kind == ValueKind::String) {
        return 1 + StringSize;
    }
    const size_t I = static_cast<size_t>(Kind);
    return I < Types.size() ? Types[I].Size : 0;
}

int SymbolCode(ValueKind Kind) {
    const size_t I = static_cast<size_t>(Kind);
    return I < Types.size() ? Types[I].SymbolCode : 0;
}

bool IsWhole(ValueKind Kind) {
    return Kind == ValueKind::Byte || Kind == ValueKind::Integer ||
           Kind == ValueKind::UnsignedInteger || Kind == ValueKind::Long ||
           Kind == ValueKind::UnsignedLong;
}

bool IsNumeric(ValueKind Kind) { return IsWhole(Kind) || Kind == ValueKind::Single; }

bool IsSigned(ValueKind Kind) {
    return Kind == ValueKind::Integer || Kind == ValueKind::Long || Kind == ValueKind::Single;
}

void Range(ValueKind Kind, int64_t& Low, int64_t& High) {
    switch (Kind) {
        case ValueKind::Byte:
            Low = 0, High = 255;
            return;
        case ValueKind::Integer:
            Low = -32768, High = 32767;
            return;
        case ValueKind::UnsignedInteger:
            Low = 0, High = 65535;
            return;
        case ValueKind::Long:
            Low = -2147483648LL, High = 2147483647LL;
            return;
        case ValueKind::UnsignedLong:
            Low = 0, High = 4294967295LL;
            return;
        case ValueKind::Boolean:
            Low = -1, High = 0;
            return;
        default:
            Low = 0, High = 0;
            return;
    }
}

}  // namespace KavlinCompiler::TypeNames
