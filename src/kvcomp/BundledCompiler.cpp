#include "kvcomp/BundledCompiler.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <limits>
#include <vector>

#include "kvcomp/ModuleText.h"
#include "kvcomp/OutputFile.h"
#include "kvcomp/ProjectFile.h"
#include "kvcomp/SymbolMapWriter.h"

namespace {

namespace fs = std::filesystem;

bool ReadFile(const fs::path& File, std::string& Bytes) {
    std::error_code Code;
    if (!fs::is_regular_file(File, Code)) {
        return false;
    }
    std::ifstream Stream(File, std::ios::binary);
    if (!Stream) {
        return false;
    }
    Bytes.assign(std::istreambuf_iterator<char>(Stream), std::istreambuf_iterator<char>());
    return !Stream.bad();
}

// A name that crossed the interface; "\" as the other platform wrote it.
fs::path LocalPath(const std::u16string& Name) {
    std::string Local = ModuleText::ToUtf8(Name);
    std::replace(Local.begin(), Local.end(), '\\', '/');
    return fs::path(Local);
}

bool ReadLibrary(const fs::path& File, KavlinCompiler::LibraryDeclarations& Library) {
    std::string Text;
    std::string Error;
    return ReadFile(File, Text) && KavlinCompiler::ParseLibrary(Text, Library, Error);
}

int16_t Int16(int Value) {
    return static_cast<int16_t>(std::clamp<int>(Value, std::numeric_limits<int16_t>::min(),
                                                std::numeric_limits<int16_t>::max()));
}

// First and last address inside the 16-bit address space, the first not
// above the last; another range leaves the previous one.
bool SetRange(int32_t Low, int32_t High, int32_t& StoredLow, int32_t& StoredHigh) {
    if (Low < 0 || Low > High || High > 65535) {
        return false;
    }
    StoredLow = Low;
    StoredHigh = High;
    return true;
}

BundledCompiler::Outcome Failure(int32_t Number, const std::string& Message,
                                 int16_t ModuleNumber = 0) {
    BundledCompiler::Outcome Result;
    Result.ModuleNumber = ModuleNumber;
    Result.ErrorNumber = Number;
    Result.ErrorDescription = ModuleText::FromUtf8(Message);
    return Result;
}

std::u16string WarningLines(const std::vector<KavlinCompiler::Diagnostic>& Warnings,
                            const std::vector<ProjectFile::ModuleName>& Modules) {
    std::string Text;
    for (const KavlinCompiler::Diagnostic& Warning : Warnings) {
        if (!Text.empty()) {
            Text += "\r\n";
        }
        if (Warning.ModuleIndex >= 0 && static_cast<size_t>(Warning.ModuleIndex) < Modules.size()) {
            Text += Modules[Warning.ModuleIndex].Line + '(' + std::to_string(Warning.Line) + ',' +
                    std::to_string(Warning.Column) + "): ";
        }
        Text += Warning.Message;
    }
    return ModuleText::FromUtf8(Text);
}

// An object file's name stays inside Temp whatever the compiler calls it.
fs::path ObjectPath(const fs::path& Temp, const std::string& Name) {
    const fs::path Leaf = fs::path(Name).filename();
    return Temp / (Leaf.empty() ? fs::path("module.kvo") : Leaf);
}

// Where the object files go. A Temp shared by every user of a system-wide
// installation is sticky and writable by all, like /tmp: there each user
// gets a folder of his own in it, since nobody may replace another's files
// of the same module names.
fs::path ObjectDirectory(const fs::path& Temp) {
    struct stat Status {};
    if (::stat(Temp.c_str(), &Status) != 0 || (Status.st_mode & S_ISVTX) == 0) {
        return Temp;
    }
    const fs::path Own = Temp / ("user-" + std::to_string(::getuid()));
    ::mkdir(Own.c_str(), 0700);
    return Own;
}
}  // namespace

bool BundledCompiler::SetLibraryPath(const std::u16string& Path) {
    Library.reset();
    Libraries Found;
    Found.InstallPath = LocalPath(Path);
    if (Found.InstallPath.empty() ||
        !ReadLibrary(Found.InstallPath / "BinKV10" / "SymbolKV10.sym", Found.KV10) ||
        !ReadLibrary(Found.InstallPath / "BinKV20" / "SymbolKV20.sym", Found.KV20)) {
        return false;
    }
    Library = std::move(Found);
    return true;
}

bool BundledCompiler::SetStringSize(int16_t Size) {
    if (Size < 1 || Size > 64) {
        return false;
    }
    Settings.StringSize = Size;
    return true;
}

bool BundledCompiler::SetRamBoundaries(int32_t Low, int32_t High) {
    return SetRange(Low, High, Settings.RamLow, Settings.RamHigh);
}

bool BundledCompiler::SetCodeBoundaries(int32_t Low, int32_t High) {
    return SetRange(Low, High, Settings.CodeLow, Settings.CodeHigh);
}

bool BundledCompiler::SetPersistentBoundaries(int32_t Low, int32_t High) {
    return SetRange(Low, High, Settings.PersistentLow, Settings.PersistentHigh);
}

BundledCompiler::Outcome BundledCompiler::RunCompile(const std::u16string& ProjectFilename) {
    // However the compile ends, even by an exception, the next one starts
    // from the defaults.
    struct UseUp {
        BundledCompiler& Compiler;
        ~UseUp() {
            Compiler.Settings = KavlinCompiler::CompileOptions();
            Compiler.Library.reset();
        }
    } Guard{*this};
    return Compile(LocalPath(ProjectFilename));
}

BundledCompiler::Outcome BundledCompiler::Compile(const fs::path& ProjectFilename) {
    std::string ProjectBytes;
    if (!ReadFile(ProjectFilename, ProjectBytes)) {
        return Failure(FileNotFound, "Can't open project file " + ProjectFilename.string());
    }
    const std::vector<ProjectFile::ModuleName> Names =
        ProjectFile::ModuleNames(ModuleText::Decode(ProjectBytes), ProjectFilename.parent_path());
    if (Names.empty()) {
        return Failure(FileNotFound,
                       "The project file " + ProjectFilename.string() + " names no module");
    }
    std::vector<KavlinCompiler::SourceModule> Modules;
    Modules.reserve(Names.size());
    for (size_t Index = 0; Index < Names.size(); ++Index) {
        std::string Bytes;
        if (!ReadFile(Names[Index].File, Bytes)) {
            return Failure(FileNotFound, "Can't read module file " + Names[Index].File.string(),
                           Int16(static_cast<int>(Index) + 1));
        }
        Modules.push_back({Names[Index].Line, ModuleText::Decode(Bytes)});
    }
    if (!Library) {
        return Failure(NoSystemLibrary,
                       "The system libraries are not loaded: the install directory must hold "
                       "BinKV10/SymbolKV10.sym and BinKV20/SymbolKV20.sym");
    }

    const KavlinCompiler::CompileResult Compiled = KavlinCompiler::Compile(
        Modules, Settings.ChipFamilyFlag ? Library->KV20 : Library->KV10, Settings);
    const std::u16string Warnings = WarningLines(Compiled.Warnings, Names);

    std::string WriteError;
    std::error_code Code;
    fs::create_directories(Library->InstallPath / "Temp", Code);
    const fs::path Temp = ObjectDirectory(Library->InstallPath / "Temp");
    for (const KavlinCompiler::ObjectFile& Object : Compiled.Objects) {
        const std::string_view Bytes(reinterpret_cast<const char*>(Object.Bytes.data()),
                                     Object.Bytes.size());
        if (!OutputFile::Write(ObjectPath(Temp, Object.Name), Bytes,
                               OutputFile::Durability::Replaced, WriteError)) {
            Outcome Result = Failure(CannotWriteFile, WriteError);
            Result.WarningDescription = Warnings;
            return Result;
        }
    }

    if (!Compiled.Success) {
        const KavlinCompiler::Diagnostic& Error = Compiled.Error;
        Outcome Result;
        Result.ModuleNumber = Error.ModuleIndex < 0 ? 0 : Int16(Error.ModuleIndex + 1);
        Result.LineNumber = Int16(Error.Line);
        Result.ColumnNumber = Int16(Error.Column);
        Result.StartPosition = Error.StartPosition;
        Result.EndPosition = Error.EndPosition;
        Result.ErrorNumber = Error.Number;
        Result.ErrorDescription = ModuleText::FromUtf8(Error.Message);
        Result.WarningDescription = Warnings;
        return Result;
    }

    fs::path Base = ProjectFilename;
    const std::string_view Image(reinterpret_cast<const char*>(Compiled.Image.data()),
                                 Compiled.Image.size());
    const std::string Map = SymbolMapWriter::Text(Compiled.Symbols);
    if (!OutputFile::Write(fs::path(Base).replace_extension(".kvb"), Image,
                           OutputFile::Durability::Synced, WriteError) ||
        !OutputFile::Write(fs::path(Base).replace_extension(".kvm"), Map,
                           OutputFile::Durability::Synced, WriteError)) {
        Outcome Result = Failure(CannotWriteFile, WriteError);
        Result.WarningDescription = Warnings;
        return Result;
    }
    RamSize_ = Compiled.RamSize;
    CodeSize_ = Compiled.CodeSize;
    PersistentSize_ = Compiled.PersistentSize;
    Outcome Result;
    Result.Success = true;
    Result.WarningDescription = Warnings;
    return Result;
}
