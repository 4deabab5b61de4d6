#include "compile/CompilerCentral.h"

#include <cmath>
#include <memory>

#include "compile/CompilerComponent.h"
#include "compile/CompilerHost.h"
#include "frame/CommandLineInterpreter.h"
#include "frame/DirectoryCentral.h"
#include "frame/ErrorDisplay.h"
#include "frame/ExceptionTypes.h"
#include "frame/GlobalData.h"
#include "frame/UtilitiesFilename.h"
#include "platform/ErrObject.h"
#include "project/ProjectType.h"

namespace CompilerCentral {

namespace {

std::unique_ptr<CompilerComponent> Held;
std::function<void()> KvmFileHandler;

const QString InstallationError = QStringLiteral("Installation Error");

// The run-time error number of a failed allocation.
constexpr int32_t OutOfMemory = 7;

QString VersionText(int Major, int Minor, int Revision) {
    return QStringLiteral("%1.%2.%3").arg(Major).arg(Minor).arg(Revision);
}

// The middle of a window edge to edge, rounded half to even like every
// conversion of a fraction to a whole number here.
int32_t Middle(int32_t Start, int32_t Size) {
    return static_cast<int32_t>(std::nearbyint(Start + Size / 2.0));
}

void ShowEepromSizeError() {
    ErrorDisplay::ShowErrorMessage(
        QStringLiteral("Error -- EEPROM memory size is zero or negative"),
        QStringLiteral("EEPROM Memory Size Error"));
}

// The chip dialog lets the user mend the preferences; a batch has nobody to.
void OfferChipDialog(CompilerHost& Host) {
    if (!CommandLineInterpreter::GetCommandLineMode()) {
        Host.mnuChipDialog_Click();
    }
}

void RunSequence(bool& Success) {
    ProjectType& Project = ::Project();
    if (!Project.IsDefined() || Project.ModuleCount() < 1) {
        return;
    }
    CompilerHost& Host = CompilerHost::Instance();
    Host.ShowStatusPanel(3, QStringLiteral("Compiling..."));
    PRFfileType& Preferences = Project.PRFfile();
    const int32_t ChipType = GlobalData::ChipType;

    if (Preferences.Processor() != ChipType) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Chip preferences have not been set"),
                                       QStringLiteral("Chip Preferences"));
        OfferChipDialog(Host);
        return;
    }
    if (ChipType == 1 && Preferences.SpiSize < 1) {
        ShowEepromSizeError();
        OfferChipDialog(Host);
        return;
    }
    // The KV-20 and KV-30 always have 32 KB of code store, whatever the file says.
    GlobalData::MemorySize = (ChipType == 2 || ChipType == 3) ? 32768 : Preferences.SpiSize;

    CompilerComponent& Compiler = Component();
    bool Ok = false;
    Compiler.SetCodeBoundaries(0, GlobalData::MemorySize - 1, Ok);
    if (!Ok) {
        ShowEepromSizeError();
        return;
    }

    int32_t Low = 0;
    int32_t High = 0;
    if (ChipType == 1) {
        Compiler.SetChipType(1);
        Low = 350;
        High = Preferences.RamEnable ? 65535 : 600;
    } else if (ChipType == 2 || ChipType == 3) {
        Compiler.SetChipType(static_cast<int16_t>(ChipType));
        Low = 207;
        High = 607;
    } else {
        ErrorDisplay::ProbeError(QStringLiteral("Error2 in frmSourceEditor.CompileAll"));
    }
    Compiler.SetRamBoundaries(Low, High, Ok);
    if (!Ok) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Error defining RAM boundaries"),
                                       QStringLiteral("RAM Boundary Error"));
        return;
    }

    Compiler.SetStrictSyntax(Preferences.StrictSyntaxRules);
    Compiler.SetPersistentBoundaries(32, 511, Ok);
    if (!Ok) {
        ErrorDisplay::ShowErrorMessage(
            QStringLiteral("Error defining persistent memory boundaries"),
            QStringLiteral("Persistent Memory"));
        return;
    }
    Compiler.SetOptimize(Preferences.OptimizeEnable);
    Compiler.SetStringSize(static_cast<int16_t>(Preferences.MaxVstr), Ok);
    if (!Ok) {
        // The component keeps its previous size and the compile goes on.
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Error defining variable length string size"),
                                       QStringLiteral("String Length Error"));
    }

    const QString ProjectFilename =
        UtilitiesFilename::MakeFilename(Project.Path(), Project.Name(), Project.Extension());
    Compiler.SetLibraryPath(DirectoryCentral::GetInstallPath(), Ok);
    if (!Ok) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Missing System Libraries"),
                                       QStringLiteral("System Library Error"));
        return;
    }
    Compiler.SetChipFamilyFlag(ChipType == 2 || ChipType == 3);
    const FormGeometry Window = Host.CurrentGeometry();
    Compiler.SetWindowCenter(true, Middle(Window.Top, Window.Height),
                             Middle(Window.Left, Window.Width));

    CompilerComponent::CompileResult Result;
    Compiler.RunCompile(ProjectFilename, Result);

    Host.SetWarningDescription(Result.WarningDescription);
    Host.ShowStatusPanel(
        3, Result.WarningDescription.isEmpty() ? QStringLiteral("Ok") : QStringLiteral("Warnings"));
    if (Result.Success) {
        int32_t CodeSize = 0;
        int32_t RamSize = 0;
        int32_t PersistentSize = 0;
        Compiler.GetCodeSize(CodeSize);
        Compiler.GetRamSize(RamSize);
        Compiler.GetPersistentSize(PersistentSize);
        const QString CompileStatus = QStringLiteral("Compiled OK, Code: ") +
                                      QString::number(CodeSize) + QStringLiteral(" bytes, RAM: ") +
                                      QString::number(RamSize) + QStringLiteral(" bytes, PRS: ") +
                                      QString::number(PersistentSize) + QStringLiteral(" bytes");
        Host.SetCompileStatus(CompileStatus);
        Compiler.GetCodeSize(GlobalData::CodeSize);
        Compiler.GetPersistentSize(GlobalData::PersistentSize);
        Host.ShowStatusPanel(4, CompileStatus);
        Success = true;
        if (KvmFileHandler) {
            KvmFileHandler();
        }
    } else if (CommandLineInterpreter::GetCommandLineMode()) {
        Host.DisplayCommandLineError(Result.ModuleNumber, Result.LineNumber, Result.ColumnNumber,
                                     Result.ErrorNumber, Result.ErrorDescription);
    } else {
        Host.SetCompileStatus(Result.ErrorDescription);
        Host.ShowStatusPanel(4, Result.ErrorDescription);
        Host.HighlightSourceError(Result.EndPosition, Result.StartPosition, Result.ModuleNumber,
                                  Result.ErrorDescription);
    }
}

}  // namespace

QStringList ComponentDirectories() {
    return {DirectoryCentral::GetInstallPath(), DirectoryCentral::GetApplicationPath()};
}

CompilerComponent& Component() {
    if (!Held) {
        Held = CompilerComponent::Load(ComponentDirectories());
    }
    return *Held;
}

void ReleaseComponent() { Held.reset(); }

void CheckCompilerVersion(bool& Success) {
    Success = false;
    try {
        CompilerComponent& Compiler = Component();
        int16_t Major = 0;
        int16_t Minor = 0;
        int16_t Revision = 0;
        Compiler.GetVersion(Major, Minor, Revision);
        if (Major == GlobalData::Major && Minor == GlobalData::Minor &&
            Revision == GlobalData::Revision) {
            Success = true;
            return;
        }
        ErrorDisplay::ShowErrorMessage(
            QStringLiteral("Compiler DLL version mismatch:\n\nExpected version:  ") +
                GlobalData::VersionText() + QStringLiteral("\nActual version:  ") +
                VersionText(Major, Minor, Revision) + QStringLiteral("\nFilename:  ") +
                Compiler.Filename(),
            InstallationError);
    } catch (...) {
        TakeCurrentException();
        // The loader's error already names the file and the reason.
        ErrorDisplay::ShowErrorMessage(Err().Number == CompilerComponent::CannotCreateObject
                                           ? Err().Description
                                           : QStringLiteral("Can't find compiler DLL:  ") +
                                                 QString::fromLatin1(KVCOMP_LIBRARY_NAME) +
                                                 QStringLiteral("\n") + Err().Description,
                                       InstallationError);
    }
}

void CompileAll(bool& Success) {
    Success = false;
    try {
        RunSequence(Success);
    } catch (...) {
        Success = false;
        TakeCurrentException();
        if (Err().Number == OutOfMemory) {
            ErrorDisplay::ShowErrorMessage(QStringLiteral("Kavlin IDE is out of memory"),
                                           QStringLiteral("Out of Memory"));
        } else {
            ExceptionTypes::ProcessException(6, 6);
        }
    }
}

void RegisterWithFrame() { DirectoryCentral::SetCompilerVersionCheck(CheckCompilerVersion); }

void SetKvmFileHandler(std::function<void()> Handler) { KvmFileHandler = std::move(Handler); }

}  // namespace CompilerCentral
