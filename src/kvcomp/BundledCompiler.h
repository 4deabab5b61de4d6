#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "compiler/Compiler.h"

// The project's own compiler component behind the component interface, in
// this system's types: the settings of one compile, the system libraries of
// the install directory, and the compile from the project file on disk to
// the image, the symbol map and the object files.
class BundledCompiler {
  public:
    static constexpr int16_t Major = 2;
    static constexpr int16_t Minor = 0;
    static constexpr int16_t Revision = 24;

    // The component's own error numbers, for what goes wrong around the compiler.
    static constexpr int32_t FileNotFound = 53;
    static constexpr int32_t CannotWriteFile = 75;
    static constexpr int32_t NoSystemLibrary = 48;
    static constexpr int32_t CompilerFailed = 51;

    // Reads BinKV10/SymbolKV10.sym and BinKV20/SymbolKV20.sym under the
    // install directory. False, and no library, when either is missing or
    // can't be read.
    bool SetLibraryPath(const std::u16string& Path);
    // 1 to 64; another size is refused and the previous one stays.
    bool SetStringSize(int16_t Size);
    void SetChipFamilyFlag(bool Value) { Settings.ChipFamilyFlag = Value; }
    void SetStrictSyntax(bool Value) { Settings.StrictSyntax = Value; }
    void SetChipType(int16_t ChipType) { Settings.ChipType = ChipType; }
    void SetOptimize(bool Value) { Settings.Optimize = Value; }
    // First and last address, 0 to 65535, the first not above the last; others
    // are refused and the previous ones stay.
    bool SetRamBoundaries(int32_t Low, int32_t High);
    bool SetCodeBoundaries(int32_t Low, int32_t High);
    bool SetPersistentBoundaries(int32_t Low, int32_t High);

    // The sizes of the last good compile.
    int32_t RamSize() const { return RamSize_; }
    int32_t CodeSize() const { return CodeSize_; }
    int32_t PersistentSize() const { return PersistentSize_; }

    // What RunCompile gives back through the interface. ModuleNumber counts
    // from 1 in the project file's order, 0 for an error in no module.
    struct Outcome {
        bool Success = false;
        int16_t ModuleNumber = 0;
        int16_t LineNumber = 0;
        int16_t ColumnNumber = 0;
        int32_t EndPosition = 0;
        int32_t StartPosition = 0;
        int32_t ErrorNumber = 0;
        std::u16string ErrorDescription;
        // One warning a line, CR LF between them: "main.bas(12,5): ...".
        std::u16string WarningDescription;
    };
    // Compiles the project file. The settings are used up: the next compile
    // starts from the defaults again, as the system makes every setting anew.
    Outcome RunCompile(const std::u16string& ProjectFilename);

  private:
    struct Libraries {
        std::filesystem::path InstallPath;
        KavlinCompiler::LibraryDeclarations KV10;
        KavlinCompiler::LibraryDeclarations KV20;
    };
    Outcome Compile(const std::filesystem::path& ProjectFilename);

    KavlinCompiler::CompileOptions Settings;
    std::optional<Libraries> Library;
    int32_t RamSize_ = 0;
    int32_t CodeSize_ = 0;
    int32_t PersistentSize_ = 0;
};
