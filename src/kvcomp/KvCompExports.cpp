// The C face of the bundled component: the table of the sixteen operations
// and KvCompCreate, the one symbol the library exports. Nothing may throw
// across this boundary, so every operation catches all and answers False
// (or, for the compile, an error with the reason).

#include <exception>
#include <new>
#include <string>

#include "compile/KvCompInterface.h"
#include "kvcomp/BundledCompiler.h"
#include "kvcomp/ModuleText.h"

namespace {

struct ComponentObject : KvCompiler {
    BundledCompiler Compiler;
    // The texts handed out by the last compile; they live until the next one.
    std::u16string ErrorText;
    std::u16string WarningText;
};

BundledCompiler& Of(KvCompiler* Self) { return static_cast<ComponentObject*>(Self)->Compiler; }

KvBool ToKvBool(bool Value) { return Value ? KVCOMP_TRUE : KVCOMP_FALSE; }

bool FromKvBool(KvBool Value) { return Value != KVCOMP_FALSE; }

std::u16string FromKvText(const KvChar* Text) {
    return Text == nullptr ? std::u16string()
                           : std::u16string(reinterpret_cast<const char16_t*>(Text));
}

const KvChar* ToKvText(const std::u16string& Text) {
    return reinterpret_cast<const KvChar*>(Text.c_str());
}

// Runs an operation that answers Success; a failure inside answers False.
template <typename Operation>
void Answer(KvBool* Success, Operation&& Run) {
    bool Result = false;
    try {
        Result = Run();
    } catch (...) {
        Result = false;
    }
    if (Success != nullptr) {
        *Success = ToKvBool(Result);
    }
}

template <typename Operation>
void Quietly(Operation&& Run) {
    try {
        Run();
    } catch (...) {
    }
}

void SetLibraryPath(KvCompiler* Self, const KvChar* Path, KvBool* Success) {
    Answer(Success, [&] { return Of(Self).SetLibraryPath(FromKvText(Path)); });
}

void GetVersion(KvCompiler*, int16_t* Major, int16_t* Minor, int16_t* Revision) {
    if (Major != nullptr) {
        *Major = BundledCompiler::Major;
    }
    if (Minor != nullptr) {
        *Minor = BundledCompiler::Minor;
    }
    if (Revision != nullptr) {
        *Revision = BundledCompiler::Revision;
    }
}

void SetStringSize(KvCompiler* Self, int16_t Size, KvBool* Success) {
    Answer(Success, [&] { return Of(Self).SetStringSize(Size); });
}

void SetChipFamilyFlag(KvCompiler* Self, KvBool Value) {
    Quietly([&] { Of(Self).SetChipFamilyFlag(FromKvBool(Value)); });
}

void SetStrictSyntax(KvCompiler* Self, KvBool Value) {
    Quietly([&] { Of(Self).SetStrictSyntax(FromKvBool(Value)); });
}

// The component opens no window of its own.
void SetWindowCenter(KvCompiler*, KvBool, int32_t, int32_t) {}

void SetChipType(KvCompiler* Self, int16_t ChipType) {
    Quietly([&] { Of(Self).SetChipType(ChipType); });
}

void SetOptimize(KvCompiler* Self, KvBool Value) {
    Quietly([&] { Of(Self).SetOptimize(FromKvBool(Value)); });
}

void GetRamSize(KvCompiler* Self, int32_t* Size) {
    if (Size != nullptr) {
        *Size = Of(Self).RamSize();
    }
}

void GetCodeSize(KvCompiler* Self, int32_t* Size) {
    if (Size != nullptr) {
        *Size = Of(Self).CodeSize();
    }
}

void GetPersistentSize(KvCompiler* Self, int32_t* Size) {
    if (Size != nullptr) {
        *Size = Of(Self).PersistentSize();
    }
}

void SetRamBoundaries(KvCompiler* Self, int32_t Low, int32_t High, KvBool* Success) {
    Answer(Success, [&] { return Of(Self).SetRamBoundaries(Low, High); });
}

void SetCodeBoundaries(KvCompiler* Self, int32_t Low, int32_t High, KvBool* Success) {
    Answer(Success, [&] { return Of(Self).SetCodeBoundaries(Low, High); });
}

void SetPersistentBoundaries(KvCompiler* Self, int32_t Low, int32_t High, KvBool* Success) {
    Answer(Success, [&] { return Of(Self).SetPersistentBoundaries(Low, High); });
}

template <typename T>
void Put(T* Out, T Value) {
    if (Out != nullptr) {
        *Out = Value;
    }
}

void RunCompile(KvCompiler* Self, const KvChar* ProjectFilename, KvBool* Success,
                int16_t* ModuleNumber, int16_t* LineNumber, int16_t* ColumnNumber,
                int32_t* EndPosition, int32_t* StartPosition, int32_t* ErrorNumber,
                const KvChar** ErrorDescription, const KvChar** WarningDescription) {
    ComponentObject& Object = *static_cast<ComponentObject*>(Self);
    BundledCompiler::Outcome Result;
    try {
        Result = Object.Compiler.RunCompile(FromKvText(ProjectFilename));
    } catch (const std::bad_alloc&) {
        Result = {};
        Result.ErrorNumber = BundledCompiler::CompilerFailed;
        Result.ErrorDescription = u"The compiler ran out of memory";
    } catch (const std::exception& Error) {
        Result = {};
        Result.ErrorNumber = BundledCompiler::CompilerFailed;
        Result.ErrorDescription = u"The compiler failed: " + ModuleText::FromUtf8(Error.what());
    } catch (...) {
        Result = {};
        Result.ErrorNumber = BundledCompiler::CompilerFailed;
        Result.ErrorDescription = u"The compiler failed";
    }
    Object.ErrorText = std::move(Result.ErrorDescription);
    Object.WarningText = std::move(Result.WarningDescription);
    Put(Success, ToKvBool(Result.Success));
    Put(ModuleNumber, Result.ModuleNumber);
    Put(LineNumber, Result.LineNumber);
    Put(ColumnNumber, Result.ColumnNumber);
    Put(EndPosition, Result.EndPosition);
    Put(StartPosition, Result.StartPosition);
    Put(ErrorNumber, Result.ErrorNumber);
    Put(ErrorDescription, ToKvText(Object.ErrorText));
    Put(WarningDescription, ToKvText(Object.WarningText));
}

const KvCompilerOps Operations = {
    SetLibraryPath,    GetVersion,  SetStringSize,    SetChipFamilyFlag, SetStrictSyntax,
    SetWindowCenter,   SetChipType, SetOptimize,      GetRamSize,        GetCodeSize,
    GetPersistentSize, nullptr,     SetRamBoundaries, SetCodeBoundaries, SetPersistentBoundaries,
    RunCompile,
};

}  // namespace

KvCompiler* KvCompCreate(void) {
    try {
        auto* Object = new (std::nothrow) ComponentObject();
        if (Object != nullptr) {
            Object->Ops = &Operations;
        }
        return Object;
    } catch (...) {
        return nullptr;
    }
}
