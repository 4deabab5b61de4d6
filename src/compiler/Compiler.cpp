#include "compiler/Compiler.h"

#include "compiler/CodeGenerator.h"
#include "compiler/Lexer.h"
#include "compiler/SyntaxTree.h"
#include "machine/BytecodeImage.h"

namespace KavlinCompiler {

namespace {

Diagnostic Nowhere(int Number, const std::string& Message) {
    return MakeDiagnostic(-1, Span{0, 0, 0, 0}, Number, Message);
}

bool CheckOptions(const CompileOptions& Options, Diagnostic& Error) {
    if (Options.StringSize < 1 || Options.StringSize > ImageHeader::MaxStringSize) {
        Error = Nowhere(510, "The string size must be 1 to 64 bytes, found " +
                                 std::to_string(Options.StringSize));
        return false;
    }
    if (Options.ChipType < 1 || Options.ChipType > 3) {
        Error = Nowhere(510, "The chip type must be 1 (KV-10), 2 (KV-20) or 3 (KV-30), found " +
                                 std::to_string(Options.ChipType));
        return false;
    }
    if (Options.RamLow < 0 || Options.RamLow > Options.RamHigh || Options.RamHigh > 65535) {
        Error =
            Nowhere(510, "The RAM boundaries " + std::to_string(Options.RamLow) + " to " +
                             std::to_string(Options.RamHigh) + " are no range of the chip's 64 KB");
        return false;
    }
    if (Options.CodeLow < 0 || Options.CodeLow > Options.CodeHigh) {
        Error = Nowhere(510, "The code boundaries " + std::to_string(Options.CodeLow) + " to " +
                                 std::to_string(Options.CodeHigh) + " are no range");
        return false;
    }
    if (Options.PersistentHigh < ImageHeader::PersistentBase - 1 || Options.PersistentHigh > 511) {
        Error = Nowhere(510, "The persistent memory must end inside the chip's 512 bytes, found " +
                                 std::to_string(Options.PersistentHigh));
        return false;
    }
    return true;
}

// What one module compiled to, for the Temp folder: "KVO1", the module's
// first code address and length (16 bits each), and its code.
ObjectFile MakeObject(const std::string& Filename, const std::vector<uint8_t>& Code, size_t From,
                      size_t To) {
    std::string Name = Filename;
    const size_t Slash = Name.find_last_of("/\\");
    if (Slash != std::string::npos) {
        Name = Name.substr(Slash + 1);
    }
    const size_t Dot = Name.find_last_of('.');
    if (Dot != std::string::npos) {
        Name = Name.substr(0, Dot);
    }
    ObjectFile Object;
    Object.Name = (Name.empty() ? std::string("Module") : Name) + ".kvo";
    Object.Bytes = {'K', 'V', 'O', '1'};
    const uint32_t Address = CodeBuffer::CodeStart + static_cast<uint32_t>(From);
    const uint32_t Length = static_cast<uint32_t>(To - From);
    for (const uint32_t Value : {Address, Length}) {
        Object.Bytes.push_back(static_cast<uint8_t>(Value));
        Object.Bytes.push_back(static_cast<uint8_t>(Value >> 8));
    }
    Object.Bytes.insert(Object.Bytes.end(), Code.begin() + static_cast<long>(From),
                        Code.begin() + static_cast<long>(To));
    return Object;
}

CompileResult CompileModules(const std::vector<SourceModule>& Modules,
                             const LibraryDeclarations& Library, const CompileOptions& Options) {
    CompileResult Result;
    if (!CheckOptions(Options, Result.Error)) {
        return Result;
    }
    std::vector<ModuleTree> Trees(Modules.size());
    for (size_t M = 0; M < Modules.size(); ++M) {
        const int Index = static_cast<int>(M);
        LexError Lex;
        const std::vector<Token> Tokens = Tokenize(Modules[M].Text, Lex);
        if (Lex.Failed) {
            Result.Error =
                MakeDiagnostic(Index, Span{Lex.At.Line, Lex.At.Column, Lex.At.Start, Lex.At.End},
                               Lex.Number, Lex.Message);
            return Result;
        }
        SyntaxError Syntax;
        if (!ParseModule(Tokens, Trees[M], Syntax)) {
            Result.Error = MakeDiagnostic(Index, Syntax.At, Syntax.Number, Syntax.Message);
            return Result;
        }
    }
    GeneratedProgram Program;
    const bool Generated = GenerateProgram(Trees, Library, Options, Program, Result.Error);
    Result.Warnings = Program.Warnings;
    if (!Generated) {
        return Result;
    }
    const std::vector<uint8_t>& Code = Program.Code.Bytes;
    const size_t Length = ImageHeader::Size + Code.size() + Program.Data.size();
    const int64_t CodeRoom = static_cast<int64_t>(Options.CodeHigh) - Options.CodeLow + 1;
    if (static_cast<int64_t>(Length) > CodeRoom || Length > 65535) {
        Result.Error = Nowhere(
            502,
            "The program does not fit into the chip's code memory: it takes " +
                std::to_string(Length) + " bytes, but there are " +
                std::to_string(std::min<int64_t>(CodeRoom, 65535)) + "; make it smaller" +
                (Options.Optimize ? std::string() : std::string(", or turn the optimiser on")));
        return Result;
    }
    ImageHeader Header;
    Header.ChipType = static_cast<uint8_t>(Options.ChipType);
    Header.StringSize = static_cast<uint8_t>(Options.StringSize);
    Header.Length = static_cast<uint16_t>(Length);
    Header.CodeSize = static_cast<uint16_t>(Code.size());
    Header.DataSize = static_cast<uint16_t>(Program.Data.size());
    Header.Entry = static_cast<uint16_t>(Program.Entry);
    Header.RamLow = static_cast<uint16_t>(Options.RamLow);
    Header.RamHigh = static_cast<uint16_t>(Options.RamHigh);
    Header.GlobalsEnd = static_cast<uint16_t>(Program.GlobalsEnd);
    Header.PersistentSize = static_cast<uint16_t>(Program.PersistentSize);
    std::vector<uint8_t> Image(ImageHeader::Size);
    Image.insert(Image.end(), Code.begin(), Code.end());
    Image.insert(Image.end(), Program.Data.begin(), Program.Data.end());
    Header.Write(Image);
    BytecodeImage::Seal(Image);
    Image.resize(BytecodeImage::PaddedLength(Image.size()), 0);

    for (size_t M = 0; M < Modules.size() && M < Program.ModuleCode.size(); ++M) {
        Result.Objects.push_back(MakeObject(Modules[M].Filename, Code, Program.ModuleCode[M].first,
                                            Program.ModuleCode[M].second));
    }
    Result.Image = std::move(Image);
    Result.Symbols = std::move(Program.Symbols);
    Result.RamSize = static_cast<int32_t>(Program.GlobalsEnd) - Options.RamLow;
    Result.CodeSize = static_cast<int32_t>(Length);
    Result.PersistentSize = Program.PersistentSize;
    Result.Success = true;
    return Result;
}

}  // namespace

CompileResult Compile(const std::vector<SourceModule>& Modules, const LibraryDeclarations& Library,
                      const CompileOptions& Options) {
    try {
        return CompileModules(Modules, Library, Options);
    } catch (...) {
        // Out of memory is the one failure left: say so rather than crash.
        CompileResult Result;
        Result.Error = Nowhere(599, "The compiler ran out of memory");
        return Result;
    }
}

}  // namespace KavlinCompiler
