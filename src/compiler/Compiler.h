#pragma once
#include <cstdint>
#include <string>
#include <vector>

// The compiler of the project's BASIC dialect (docs/language.md): modules in,
// a bytecode image (docs/bytecode.md), its symbol map and the diagnostics out.
// Standard C++ only; the component wraps it for the IDE. Compile never throws
// and never runs away on any input.
namespace KavlinCompiler {

struct CompileOptions {
    int ChipType = 2;  // 1 KV-10, 2 KV-20, 3 KV-30
    bool ChipFamilyFlag = true;
    int StringSize = 20;  // 1 to 64: the most bytes a String holds
    bool StrictSyntax = true;
    bool Optimize = false;
    int32_t RamLow = 207, RamHigh = 607;
    int32_t CodeLow = 0, CodeHigh = 32767;
    int32_t PersistentLow = 32, PersistentHigh = 511;
};

struct SourceModule {
    std::string Filename;  // the module's file name as the project names it, for messages
    std::u16string Text;   // the decoded text, line breaks as in the file (CR LF, LF or CR)
};

// The value types of the language; the numbers are the machine's where it has one.
enum class ValueKind : uint8_t {
    Byte = 0,
    Integer = 1,
    UnsignedInteger = 2,
    Long = 3,
    UnsignedLong = 4,
    Single = 5,
    Boolean = 6,
    String = 7,
    None = 8,  // what a Sub gives back
};

struct LibraryParameter {
    std::string Name;
    ValueKind Type = ValueKind::Integer;
};

// One procedure of the system library: a call of the machine's library
// (LibraryCalls.h), its parameters always ByVal.
struct LibraryProcedure {
    std::string Name;
    std::vector<LibraryParameter> Parameters;
    ValueKind Result = ValueKind::None;
    uint8_t Call = 0;
};

struct LibraryConstant {
    std::string Name;
    ValueKind Type = ValueKind::Integer;
    int64_t Value = 0;
};

// The system library's declarations, as a symbol file holds them.
struct LibraryDeclarations {
    std::vector<LibraryProcedure> Procedures;
    std::vector<LibraryConstant> Constants;
};
bool ParseLibrary(const std::string& Text, LibraryDeclarations& Library, std::string& Error);

struct Diagnostic {
    int ModuleIndex = -1;       // 0-based in the project's order; -1 for an error in no module
    int Line = 0;               // 1-based
    int Column = 0;             // 1-based, in UTF-16 units of the line
    int32_t StartPosition = 0;  // characters of the module's text from 0, a line break counting
    int32_t EndPosition = 0;    // as 2 (CR LF) whatever the file has; end is exclusive
    int Number = 0;             // the compiler's own error or warning number
    std::string Message;        // UTF-8; tells a newcomer what was expected and what was found
};

struct SymbolEntry {  // one record of the kvm symbol map
    std::string Name;
    int32_t Address = 0;
    int TypeCode =
        0;  // 17 UInt16, 18 byte, 19 Int16, 20 Int32, 21 UInt32, 32 single, 50 Boolean, 61 string
    bool Excluded = false;  // locals, strings
    int Dimensions = 0;
    int32_t Bounds[16] = {};  // eight pairs of lower and upper bounds
};

struct ObjectFile {    // what one module compiled to before linking, written to Temp
    std::string Name;  // e.g. "Main.kvo"
    std::vector<uint8_t> Bytes;
};

struct CompileResult {
    bool Success = false;
    Diagnostic Error;                  // when !Success
    std::vector<Diagnostic> Warnings;  // on success and on failure
    std::vector<uint8_t> Image;        // the kvb file's bytes; never a whole multiple of 128 long
    std::vector<SymbolEntry> Symbols;  // module-level variables a user will want first
    std::vector<ObjectFile> Objects;
    int32_t RamSize = 0, CodeSize = 0, PersistentSize = 0;
};

CompileResult Compile(const std::vector<SourceModule>& Modules, const LibraryDeclarations& Library,
                      const CompileOptions& Options);

}  // namespace KavlinCompiler
