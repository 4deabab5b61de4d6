#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "compiler/CodeBuffer.h"
#include "compiler/Compiler.h"
#include "compiler/SyntaxTree.h"

// Checks the parsed modules against each other and the system library, lays
// out their variables and turns their procedures into bytecode.
namespace KavlinCompiler {

struct GeneratedProgram {
    CodeBuffer Code;
    std::vector<uint8_t> Data;  // the string literals: a length byte and the bytes each
    uint32_t Entry = 0;
    uint32_t GlobalsEnd = 0;
    int32_t PersistentSize = 0;
    std::vector<SymbolEntry> Symbols;
    // Each module's code, from and to (exclusive) as offsets of Code.Bytes.
    std::vector<std::pair<size_t, size_t>> ModuleCode;
    std::vector<Diagnostic> Warnings;
};

bool GenerateProgram(const std::vector<ModuleTree>& Modules, const LibraryDeclarations& Library,
                     const CompileOptions& Options, GeneratedProgram& Program, Diagnostic& Error);

}  // namespace KavlinCompiler
