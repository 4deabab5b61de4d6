#pragma once

#include <string>

#include "compiler/Compiler.h"

// The language's names of its types and what the machine and the symbol map
// call them.
namespace KavlinCompiler::TypeNames {

// Upper-case name ("BYTE", "UNSIGNEDLONG") to its kind.
bool Find(const std::string& Upper, ValueKind& Kind);
// "Byte", "UnsignedLong", ...
std::string Name(ValueKind Kind);
// Bytes in memory; a String takes its length byte and StringSize bytes.
int Size(ValueKind Kind, int StringSize);
// The symbol map's type code.
int SymbolCode(ValueKind Kind);
bool IsWhole(ValueKind Kind);
bool IsNumeric(ValueKind Kind);
bool IsSigned(ValueKind Kind);
// The range of a whole type; for Boolean -1 to 0.
void Range(ValueKind Kind, int64_t& Low, int64_t& High);

}  // namespace KavlinCompiler::TypeNames
