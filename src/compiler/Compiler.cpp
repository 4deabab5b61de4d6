#include "compiler/Compiler.h"

#include "compiler/Lexer.h"
#include "machine/BytecodeImage.h"
#include "machine/LibraryCalls.h"
#include "machine/Opcodes.h"

namespace KavlinCompiler {

// A first cut: Sub Main with Debug.Print of texts.
CompileResult Compile(const std::vector<SourceModule>& Modules, const LibraryDeclarations&,
                      const CompileOptions& Options) {
    CompileResult Result;
    std::vector<uint8_t> Code = {Opcodes::ENTER, 0, 0};
    std::vector<uint8_t> Data;
    bool HasMain = false;
    for (size_t M = 0; M < Modules.size(); ++M) {
        LexError Error;
        const std::vector<Token> T = Tokenize(Modules[M].Text, Error);
        if (Error.Failed) {
            Result.Error.ModuleIndex = static_cast<int>(M);
            Result.Error.Line = Error.At.Line;
            Result.Error.Column = Error.At.Column;
            Result.Error.StartPosition = Error.At.Start;
            Result.Error.EndPosition = Error.At.End;
            Result.Error.Number = Error.Number;
            Result.Error.Message = Error.Message;
            return Result;
        }
        for (size_t I = 0; I + 1 < T.size(); ++I) {
            if (T[I].Upper == "SUB" && T[I + 1].Upper == "MAIN") {
                HasMain = true;
            }
            if (I + 3 < T.size() && T[I].Upper == "DEBUG" && T[I + 1].Upper == "." &&
                T[I + 2].Upper == "PRINT" && T[I + 3].Kind == TokenKind::Text) {
                const uint16_t Offset = static_cast<uint16_t>(Data.size());
                Data.push_back(static_cast<uint8_t>(T[I + 3].Spelling.size()));
                Data.insert(Data.end(), T[I + 3].Spelling.begin(), T[I + 3].Spelling.end());
                Code.insert(Code.end(),
                            {Opcodes::PUSHS, static_cast<uint8_t>(Offset),
                             static_cast<uint8_t>(Offset >> 8), Opcodes::SYS,
                             LibraryCalls::PrintString, Opcodes::SYS, LibraryCalls::PrintNewLine});
            }
        }
    }
    if (!HasMain) {
        Result.Error.Number = 301;
        Result.Error.Message = "The project has no Sub Main: expected one procedure named Main";
        return Result;
    }
    Code.push_back(Opcodes::RET);
    ImageHeader Header;
    Header.ChipType = static_cast<uint8_t>(Options.ChipType);
    Header.StringSize = static_cast<uint8_t>(Options.StringSize);
    Header.CodeSize = static_cast<uint16_t>(Code.size());
    Header.DataSize = static_cast<uint16_t>(Data.size());
    Header.Length = static_cast<uint16_t>(ImageHeader::Size + Code.size() + Data.size());
    Header.RamLow = static_cast<uint16_t>(Options.RamLow);
    Header.RamHigh = static_cast<uint16_t>(Options.RamHigh);
    Header.GlobalsEnd = Header.RamLow;
    std::vector<uint8_t> Image(ImageHeader::Size);
    Image.insert(Image.end(), Code.begin(), Code.end());
    Image.insert(Image.end(), Data.begin(), Data.end());
    Header.Write(Image);
    BytecodeImage::Seal(Image);
    Image.resize(BytecodeImage::PaddedLength(Image.size()), 0);
    Result.Image = Image;
    Result.CodeSize = static_cast<int32_t>(Header.Length);
    Result.Success = true;
    return Result;
}

}  // namespace KavlinCompiler
