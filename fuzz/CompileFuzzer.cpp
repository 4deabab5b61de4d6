// Feeds arbitrary bytes to the compiler as the text of a module file, decoded
// as the component decodes modules, and compiles it with the system library
// of the KV-20 or the KV-10. It must end every time, never crash, report an
// error where the text can hold one, and write only images that the machine
// accepts.
//
// The first byte picks the chip and the string size; the rest is the module.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "compiler/Compiler.h"
#include "kvcomp/ModuleText.h"
#include "machine/BytecodeImage.h"

namespace {

void Require(bool Condition) {
    if (!Condition) {
        std::abort();
    }
}

KavlinCompiler::LibraryDeclarations ReadLibrary(const char* File) {
    std::ifstream Stream(File, std::ios::binary);
    Require(static_cast<bool>(Stream));
    const std::string Text((std::istreambuf_iterator<char>(Stream)),
                           std::istreambuf_iterator<char>());
    KavlinCompiler::LibraryDeclarations Library;
    std::string Error;
    Require(KavlinCompiler::ParseLibrary(Text, Library, Error));
    return Library;
}

const KavlinCompiler::LibraryDeclarations& Library(bool Kv20) {
    static const KavlinCompiler::LibraryDeclarations KV20 =
        ReadLibrary(KAVLIN_SYMBOL_FILES "/BinKV20/SymbolKV20.sym");
    static const KavlinCompiler::LibraryDeclarations KV10 =
        ReadLibrary(KAVLIN_SYMBOL_FILES "/BinKV10/SymbolKV10.sym");
    return Kv20 ? KV20 : KV10;
}

// The module's length as the editor counts it: a line break is two characters.
int32_t EditorLength(const std::u16string& Text) {
    int32_t Length = 0;
    for (size_t At = 0; At < Text.size(); ++At) {
        if (Text[At] == u'\r' && At + 1 < Text.size() && Text[At + 1] == u'\n') {
            ++At;
            Length += 2;
        } else {
            Length += (Text[At] == u'\r' || Text[At] == u'\n') ? 2 : 1;
        }
    }
    return Length;
}

void RequirePlace(const KavlinCompiler::Diagnostic& Place, int32_t Length) {
    Require(Place.ModuleIndex == -1 || Place.ModuleIndex == 0);
    Require(Place.StartPosition >= 0 && Place.StartPosition <= Place.EndPosition);
    Require(Place.EndPosition <= Length + 2);
    Require(Place.Line >= 0 && Place.Column >= 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size) {
    if (Size < 1) {
        return 0;
    }
    const uint8_t Choice = Data[0];
    const bool Kv20 = (Choice & 1) == 0;
    KavlinCompiler::CompileOptions Options;
    Options.ChipType = Kv20 ? 2 + ((Choice >> 1) & 1) : 1;
    Options.ChipFamilyFlag = Kv20;
    Options.StringSize = 1 + (Choice >> 2) % 64;
    if (!Kv20) {
        Options.RamLow = 350;
        Options.RamHigh = 600;
    }
    const std::string_view Bytes(reinterpret_cast<const char*>(Data + 1), Size - 1);
    const std::vector<KavlinCompiler::SourceModule> Modules = {
        {"fuzz.bas", ModuleText::Decode(Bytes)}};
    const KavlinCompiler::CompileResult Result =
        KavlinCompiler::Compile(Modules, Library(Kv20), Options);

    const int32_t Length = EditorLength(Modules[0].Text);
    for (const KavlinCompiler::Diagnostic& Warning : Result.Warnings) {
        RequirePlace(Warning, Length);
    }
    if (!Result.Success) {
        RequirePlace(Result.Error, Length);
        Require(!Result.Error.Message.empty());
        return 0;
    }
    // A good compile's image is one the machine runs on the chip it was made
    // for, with the header the options asked for and the chip link's padding.
    const BytecodeImage::CheckResult Check =
        BytecodeImage::Check(Result.Image, BytecodeImage::ChipLimits{Options.ChipType});
    if (!Check.Accepted) {
        std::fprintf(stderr, "compile_fuzzer: the machine refuses the image: %s\n",
                     Check.Reason.c_str());
        std::abort();
    }
    Require(Check.Header.ChipType == Options.ChipType);
    Require(Check.Header.StringSize == Options.StringSize);
    Require(Result.Image.size() == BytecodeImage::PaddedLength(Check.Header.Length));
    return 0;
}
