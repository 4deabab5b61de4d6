#include "compile/CompilerComponent.h"

#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <cstddef>

#include "platform/ErrObject.h"

namespace {

[[noreturn]] void CannotCreate(const QString& File, const QString& Reason) {
    RaiseError(CompilerComponent::CannotCreateObject,
               QStringLiteral("Can't find compiler DLL:  ") + File + QStringLiteral("\n") + Reason);
}

// The table's slots are function pointers in a fixed order: a component built
// against another layout would be called in the wrong slots.
using Slot = void (*)(void);
static_assert(offsetof(KvCompilerOps, SetLibraryPath) == 0 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, GetVersion) == 1 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, SetStringSize) == 2 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, SetChipFamilyFlag) == 3 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, SetStrictSyntax) == 4 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, SetWindowCenter) == 5 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, SetChipType) == 6 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, SetOptimize) == 7 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, GetRamSize) == 8 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, GetCodeSize) == 9 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, GetPersistentSize) == 10 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, Reserved12) == 11 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, SetRamBoundaries) == 12 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, SetCodeBoundaries) == 13 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, SetPersistentBoundaries) == 14 * sizeof(Slot));
static_assert(offsetof(KvCompilerOps, RunCompile) == 15 * sizeof(Slot));
static_assert(sizeof(KvCompilerOps) == 16 * sizeof(Slot));
static_assert(sizeof(KvBool) == 2 && sizeof(KvChar) == sizeof(char16_t));

// A library that fails once loaded is unloaded, so that the next attempt
// reads the file afresh instead of getting the broken one back by its name.
[[noreturn]] void Refuse(QLibrary& Library, const QString& Reason) {
    Library.unload();
    CannotCreate(Library.fileName(), Reason);
}

KvBool ToKvBool(bool Value) { return Value ? KVCOMP_TRUE : KVCOMP_FALSE; }

// Any value but 0 counts as True, as it did for the component's first users.
bool FromKvBool(KvBool Value) { return Value != KVCOMP_FALSE; }

QString FromKvText(const KvChar* Text) {
    return Text == nullptr ? QString()
                           : QString::fromUtf16(reinterpret_cast<const char16_t*>(Text));
}

const KvChar* ToKvText(const QString& Text) {
    return reinterpret_cast<const KvChar*>(Text.utf16());
}

bool TableIsComplete(const KvCompilerOps* Ops) {
    return Ops != nullptr && Ops->SetLibraryPath && Ops->GetVersion && Ops->SetStringSize &&
           Ops->SetChipFamilyFlag && Ops->SetStrictSyntax && Ops->SetWindowCenter &&
           Ops->SetChipType && Ops->SetOptimize && Ops->GetRamSize && Ops->GetCodeSize &&
           Ops->GetPersistentSize && Ops->SetRamBoundaries && Ops->SetCodeBoundaries &&
           Ops->SetPersistentBoundaries && Ops->RunCompile;
}

}  // namespace

CompilerComponent::CompilerComponent(std::unique_ptr<QLibrary> Library, KvCompiler* Object,
                                     QString Filename)
    : Library_(std::move(Library)), Object_(Object), Filename_(std::move(Filename)) {}

// QLibrary leaves the library loaded when it goes: the object it made is
// never destroyed and still points into it.
CompilerComponent::~CompilerComponent() = default;

std::unique_ptr<CompilerComponent> CompilerComponent::Load(const QStringList& Directories) {
    const QString LibraryName = QString::fromLatin1(KVCOMP_LIBRARY_NAME);
    QString Filename;
    for (const QString& Directory : Directories) {
        if (Directory.trimmed().isEmpty()) {
            continue;
        }
        const QFileInfo Candidate(QDir(Directory), LibraryName);
        if (Candidate.isFile()) {
            Filename = Candidate.absoluteFilePath();
            break;
        }
    }
    if (Filename.isEmpty()) {
        QStringList Searched;
        for (const QString& Directory : Directories) {
            if (!Directory.trimmed().isEmpty()) {
                Searched << Directory;
            }
        }
        CannotCreate(LibraryName, Searched.isEmpty()
                                      ? QStringLiteral("No directory to look in.")
                                      : QStringLiteral("Not found in ") +
                                            Searched.join(QStringLiteral(" nor in ")) +
                                            QStringLiteral("."));
    }
    auto Library = std::make_unique<QLibrary>(Filename);
    if (!Library->load()) {
        CannotCreate(Filename, Library->errorString());
    }
    const auto Create =
        reinterpret_cast<KvCompCreateFunction>(Library->resolve(KVCOMP_CREATE_FUNCTION));
    if (Create == nullptr) {
        Refuse(*Library, QStringLiteral("The library has no function ") +
                             QString::fromLatin1(KVCOMP_CREATE_FUNCTION) + QStringLiteral("."));
    }
    KvCompiler* Object = Create();
    if (Object == nullptr) {
        Refuse(*Library, QStringLiteral("The component made no compiler object."));
    }
    if (!TableIsComplete(Object->Ops)) {
        // The object is left as it is: nothing in the table says how to free it.
        Refuse(*Library, QStringLiteral("The compiler object lacks operations."));
    }
    return std::unique_ptr<CompilerComponent>(
        new CompilerComponent(std::move(Library), Object, Filename));
}

void CompilerComponent::SetLibraryPath(const QString& Path, bool& Success) {
    KvBool Result = KVCOMP_FALSE;
    Object_->Ops->SetLibraryPath(Object_, ToKvText(Path), &Result);
    Success = FromKvBool(Result);
}

void CompilerComponent::GetVersion(int16_t& Major, int16_t& Minor, int16_t& Revision) {
    Object_->Ops->GetVersion(Object_, &Major, &Minor, &Revision);
}

void CompilerComponent::SetStringSize(int16_t Size, bool& Success) {
    KvBool Result = KVCOMP_FALSE;
    Object_->Ops->SetStringSize(Object_, Size, &Result);
    Success = FromKvBool(Result);
}

void CompilerComponent::SetChipFamilyFlag(bool Value) {
    Object_->Ops->SetChipFamilyFlag(Object_, ToKvBool(Value));
}

void CompilerComponent::SetStrictSyntax(bool Value) {
    Object_->Ops->SetStrictSyntax(Object_, ToKvBool(Value));
}

void CompilerComponent::SetWindowCenter(bool Flag, int32_t CenterY, int32_t CenterX) {
    Object_->Ops->SetWindowCenter(Object_, ToKvBool(Flag), CenterY, CenterX);
}

void CompilerComponent::SetChipType(int16_t ChipType) {
    Object_->Ops->SetChipType(Object_, ChipType);
}

void CompilerComponent::SetOptimize(bool Value) {
    Object_->Ops->SetOptimize(Object_, ToKvBool(Value));
}

void CompilerComponent::GetRamSize(int32_t& Size) { Object_->Ops->GetRamSize(Object_, &Size); }

void CompilerComponent::GetCodeSize(int32_t& Size) { Object_->Ops->GetCodeSize(Object_, &Size); }

void CompilerComponent::GetPersistentSize(int32_t& Size) {
    Object_->Ops->GetPersistentSize(Object_, &Size);
}

void CompilerComponent::SetRamBoundaries(int32_t Low, int32_t High, bool& Success) {
    KvBool Result = KVCOMP_FALSE;
    Object_->Ops->SetRamBoundaries(Object_, Low, High, &Result);
    Success = FromKvBool(Result);
}

void CompilerComponent::SetCodeBoundaries(int32_t Low, int32_t High, bool& Success) {
    KvBool Result = KVCOMP_FALSE;
    Object_->Ops->SetCodeBoundaries(Object_, Low, High, &Result);
    Success = FromKvBool(Result);
}

void CompilerComponent::SetPersistentBoundaries(int32_t Low, int32_t High, bool& Success) {
    KvBool Result = KVCOMP_FALSE;
    Object_->Ops->SetPersistentBoundaries(Object_, Low, High, &Result);
    Success = FromKvBool(Result);
}

void CompilerComponent::RunCompile(const QString& ProjectFilename, CompileResult& Result) {
    KvBool Success = KVCOMP_FALSE;
    const KvChar* Error = nullptr;
    const KvChar* Warnings = nullptr;
    Object_->Ops->RunCompile(Object_, ToKvText(ProjectFilename), &Success, &Result.ModuleNumber,
                             &Result.LineNumber, &Result.ColumnNumber, &Result.EndPosition,
                             &Result.StartPosition, &Result.ErrorNumber, &Error, &Warnings);
    Result.Success = FromKvBool(Success);
    Result.ErrorDescription = FromKvText(Error);
    Result.WarningDescription = FromKvText(Warnings);
}
