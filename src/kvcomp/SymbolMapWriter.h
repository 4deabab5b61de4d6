#pragma once

#include <string>
#include <vector>

#include "compiler/Compiler.h"

// The symbol map file (kvm) that the watch window reads: one record of 21
// items a line, "Count",210,19,#FALSE#,0 and sixteen bounds, CR LF.
namespace SymbolMapWriter {

// The watch window holds this many entries; a record past them would make
// it refuse the whole file.
constexpr size_t MaxRecords = 255;
constexpr size_t MaxNameLength = 64;

// The file's text: the entries a user can watch first, in the compiler's
// order, then the others (locals, strings) while there is room.
std::string Text(const std::vector<KavlinCompiler::SymbolEntry>& Symbols);

}  // namespace SymbolMapWriter
