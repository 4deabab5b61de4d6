#include "project/ProjectType.h"

#include <QFile>

#include "frame/CommandLineInterpreter.h"
#include "frame/DumpManager.h"
#include "frame/ErrorDisplay.h"
#include "frame/GlobalData.h"
#include "frame/UtilitiesFilename.h"
#include "platform/ErrObject.h"
#include "project/ProjectEditorHost.h"
#include "project/RecentProjects.h"

namespace {
ProjectEditorHost* Host() { return ProjectEditorHost::Instance(); }

// The whole project file in one step; a failure is told with its number.
void WriteProjectFile(const QString& Filename, const QByteArray& Bytes) {
    UserFileFailure Failure;
    if (!ModuleFile::WriteBytes(Filename, Bytes, Failure)) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Error writing project file ") + Filename +
                                           QLatin1Char('\n') + UserFile::ErrorLine(Failure),
                                       QStringLiteral("Project Write Error"));
    }
}

void DisplayKVBfilename(const QString& Filename) {
    if (ProjectEditorHost* Editor = Host()) {
        Editor->DisplayKVBfilename(Filename);
    }
}
}  // namespace

namespace ProjectModel {

void RegisterWithFrame() {
    DumpManager::SetProjectNameSource([] {
        const ProjectType& Current = Project();
        return Current.IsDefined() ? Current.Name() : QString();
    });
}

}  // namespace ProjectModel

ProjectType::~ProjectType() {
    // Closing every module window goes with the list.
    ModuleList_.reset();
    Path_.clear();
    Name_.clear();
    Extension_.clear();
    SetIsDefined(false);
    GlobalData::DownloadFilename.clear();
    DisplayKVBfilename(QString());
}

PRFfileType& ProjectType::PRFfile() {
    if (!PRFfile_) {
        PRFfile_ = std::make_unique<PRFfileType>();
    }
    return *PRFfile_;
}

ModuleListType& ProjectType::ModuleList() {
    if (!ModuleList_) {
        ModuleList_ = std::make_unique<ModuleListType>();
    }
    return *ModuleList_;
}

void ProjectType::SetIsDefined(bool Value) {
    IsDefined_ = Value;
    if (!CommandLineInterpreter::GetCommandLineMode() && GlobalData::GetEditorIsOpen()) {
        if (ProjectEditorHost* Editor = Host()) {
            Editor->ConfigureMenus(Value);
        }
    }
}

bool ProjectType::HasChanged(int16_t ModuleNumber) const {
    const ModuleType* Module = ModuleList_ ? ModuleList_->GetModule(ModuleNumber) : nullptr;
    return Module != nullptr && Module->HasChanged();
}

int16_t ProjectType::ModuleCount() const { return ModuleList_ ? ModuleList_->Count() : 0; }

QString ProjectType::ModuleFileLine(int16_t ModuleNumber) {
    const ModuleType* Module = ModuleList().GetModule(ModuleNumber);
    if (Module == nullptr) {
        return QString();
    }
    // The module's directory is the project's only when it is the same text exactly.
    if (Module->Path() == Path_) {
        return UtilitiesFilename::MakeFilename(QString(), Module->Name(), Module->Extension());
    }
    return UtilitiesFilename::MakeFilename(Module->Path(), Module->Name(), Module->Extension(),
                                           Module->PathSeparator());
}

QStringList ProjectType::ProjectFileLines() {
    QStringList Lines;
    for (int16_t Number = 1; Number <= ModuleCount(); ++Number) {
        Lines << ModuleFileLine(Number);
    }
    // Modules the open could not load are still the project's: the user did
    // not remove them.
    Lines << UnreadLines_;
    if (Lines.isEmpty()) {
        Lines << QString();
    }
    return Lines;
}

void ProjectType::SaveFileKVP() {
    if (!IsDefined_) {
        return;
    }
    QByteArray Bytes;
    for (const QString& Line : ProjectFileLines()) {
        Bytes += Line.toUtf8() + "\r\n";
    }
    WriteProjectFile(UtilitiesFilename::MakeFilename(Path_, Name_, Extension_), Bytes);
}

void ProjectType::SaveModuleFile(int16_t ModuleNumber) {
    ModuleType* Module = ModuleList().GetModule(ModuleNumber);
    if (Module == nullptr) {
        return;
    }
    const QString Filename =
        UtilitiesFilename::MakeFilename(Module->Path(), Module->Name(), Module->Extension());
    UserFileFailure Failure;
    if (!ModuleFile::Write(Filename, Module->SourceCode(), Module->Format, Failure)) {
        // The change flag stays as it was: nothing was saved.
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Error writing module ") + Module->Name() +
                                           QLatin1Char('\n') + UserFile::ErrorLine(Failure),
                                       QStringLiteral("Module Write Error"));
        return;
    }
    Module->SetHasChanged(false);
}

void ProjectType::SaveModule(int16_t ModuleNumber) {
    if (IsDefined_) {
        SaveModuleFile(ModuleNumber);
    }
}

ModuleType* ProjectType::GetNamedModule(const QString& ModuleName) {
    return ModuleList().GetNamedModule(ModuleName);
}

void ProjectType::SaveModuleAs(int16_t ModuleNumber, const QString& NewFilename) {
    if (!IsDefined_) {
        return;
    }
    bool Success = false;
    ModuleList().Rename(ModuleNumber, NewFilename, Success);
    if (Success) {
        SaveModuleFile(ModuleNumber);
        SaveFileKVP();
    }
}

void ProjectType::SaveAll() {
    if (!IsDefined_) {
        return;
    }
    for (int Number = 1; Number <= ModuleCount(); ++Number) {
        SaveModuleFile(Number);
    }
    SaveFileKVP();
    PRFfile().WriteFile();
}

void ProjectType::HighlightText(int16_t ModuleNumber, int32_t StartPosition, int32_t EndPosition) {
    ModuleType* Module = ModuleList().GetModule(ModuleNumber);
    if (Module == nullptr) {
        return;
    }
    if (Module->Number() != ModuleNumber) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in ProjectType.HighlightText"));
    }
    Module->HighlightText(StartPosition, EndPosition);
}

void ProjectType::GetModuleName(int16_t ModuleNumber, QString& ModulePath, QString& ModuleName,
                                QString& ModuleExtension) {
    const ModuleType* Module = ModuleList().GetModule(ModuleNumber);
    if (Module == nullptr) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_2 in ProjectType.GetModuleName"));
        return;
    }
    if (Module->Number() != ModuleNumber) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in ProjectType.GetModuleName"));
    }
    ModulePath = Module->Path();
    ModuleName = Module->Name();
    ModuleExtension = Module->Extension();
}

void ProjectType::SetFilenames() {
    GlobalData::ProjectFilename = UtilitiesFilename::MakeFilename(Path_, Name_, Extension_);
    GlobalData::DownloadFilename =
        UtilitiesFilename::MakeFilename(Path_, Name_, QStringLiteral("kvb"));
    DisplayKVBfilename(GlobalData::DownloadFilename);
}

void ProjectType::SaveProjectAs(const QString& NewPath, const QString& NewName,
                                const QString& NewExtension) {
    Path_ = NewPath;
    Name_ = NewName;
    Extension_ = NewExtension;
    SaveFileKVP();
    SetFilenames();
    PRFfile().Path = NewPath;
    PRFfile().Name = NewName;
    PRFfile().WriteNewFile();
    RecentProjects::AddProject(GlobalData::ProjectFilename);
    RecentProjects::SaveList();
    if (ProjectEditorHost* Editor = Host()) {
        Editor->InitializeRecentProjectList();
    }
}

void ProjectType::OpenProject(const QString& NewPath, const QString& NewName,
                              const QString& NewExtension, bool IsNewProject) {
    Path_ = NewPath;
    Name_ = NewName;
    Extension_ = NewExtension;
    SetFilenames();
    UnreadLines_.clear();
    ModuleList_ = std::make_unique<ModuleListType>();
    PRFfile_ = std::make_unique<PRFfileType>();
    PRFfile_->Path = NewPath;
    PRFfile_->Name = NewName;
    PRFfile_->DefaultProfile(GlobalData::ChipType);

    const QString Filename = GlobalData::ProjectFilename;
    if (IsNewProject) {
        // A project without modules: one empty line.
        WriteProjectFile(Filename, QByteArrayLiteral("\r\n"));
        PRFfile_->WriteNewFile();
    } else {
        QFile File(UtilitiesFilename::LocalFilename(Filename));
        QStringList Lines;
        if (File.open(QIODevice::ReadOnly)) {
            // Lines as either platform wrote them: CR LF or LF alone, UTF-8 or the old code page.
            // A lone CR ends a line as well.
            ModuleFileFormat Format;
            QString Text = ModuleFile::Decode(File.readAll(), Format);
            Text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
            Text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
            Lines = Text.split(QLatin1Char('\n'));
            if (!Lines.isEmpty() && Lines.back().isEmpty()) {
                Lines.removeLast();
            }
        }
        PRFfile_->ReadExistingFile();
        for (qsizetype Index = 0; Index < Lines.size(); ++Index) {
            const QString Line = UtilitiesFilename::TrimBlanks(Lines[Index]);
            bool Success = false;
            AddExistingModule(NewPath, Line, Success);
            if (!Success) {
                for (qsizetype Rest = Index; Rest < Lines.size(); ++Rest) {
                    const QString Unread = UtilitiesFilename::TrimBlanks(Lines[Rest]);
                    if (!Unread.isEmpty()) {
                        UnreadLines_ << Unread;
                    }
                }
                SetIsDefined(true);
                ErrorDisplay::ShowErrorMessage(QStringLiteral("Unable to open module: ") + Line,
                                               QStringLiteral("Module Open Error"));
                return;
            }
        }
    }
    SetIsDefined(true);
    if (!CommandLineInterpreter::GetCommandLineMode()) {
        RecentProjects::AddProject(GlobalData::ProjectFilename);
        RecentProjects::SaveList();
        if (ProjectEditorHost* Editor = Host()) {
            Editor->InitializeRecentProjectList();
        }
    }
}

void ProjectType::AddExistingModule(const QString& DefaultPath, const QString& LongModuleName,
                                    bool& Success) {
    Success = false;
    if (LongModuleName.isEmpty()) {
        return;
    }
    if (ModuleCount() >= MaxModuleCount) {
        ErrorDisplay::ShowErrorMessage(
            QStringLiteral("Too many modules: a project holds at most ") +
                QString::number(MaxModuleCount) + QStringLiteral(", and ") + LongModuleName +
                QStringLiteral(" would be one more"),
            QStringLiteral("Too Many Modules"));
        return;
    }
    auto Module = std::make_unique<ModuleType>();
    bool ModuleFileExists = false;
    Module->LoadExistingModule(DefaultPath, LongModuleName, static_cast<int16_t>(ModuleCount() + 1),
                               ModuleFileExists);
    if (!ModuleFileExists) {
        return;
    }
    bool IsDuplicate = false;
    const QString ModuleName = Module->Name();
    ModuleList().Add(Module, IsDuplicate);
    if (IsDuplicate) {
        // The module is dropped here, and its window with it.
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Error -- duplicate module ") + ModuleName,
                                       QStringLiteral("Duplicate Module"));
        return;
    }
    Success = true;
}

void ProjectType::RemoveModule(int16_t ModuleNumber) { ModuleList().Remove(ModuleNumber); }

void ProjectType::IncrementActiveModule() {
    if (!IsDefined_ || ModuleCount() < 1) {
        return;
    }
    const int16_t Active = Host() != nullptr ? Host()->ActiveModuleNumber() : 0;
    const int16_t Next = Active >= ModuleCount() ? 1 : static_cast<int16_t>(Active + 1);
    ActivateModule(Next);
}

void ProjectType::ActivateModule(int16_t ModuleNumber) {
    ModuleType* Module = ModuleList().GetModule(ModuleNumber);
    if (Module == nullptr) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in ProjectType.ActivateModule"));
        return;
    }
    Module->Activate();
}

void ProjectType::AreWindowsMaximized(bool& Result) {
    Result = false;
    for (int Number = 1; Number <= ModuleCount() && !Result; ++Number) {
        Result = ModuleList().GetModule(Number)->IsWindowMaximized();
    }
}

void ProjectType::SetEditorFont() {
    for (int Number = 1; Number <= ModuleCount(); ++Number) {
        ModuleList().GetModule(Number)->SetEditorFont();
    }
}

void ProjectType::SetEditorColors() {
    for (int Number = 1; Number <= ModuleCount(); ++Number) {
        ModuleList().GetModule(Number)->SetEditorColors();
    }
}

void ProjectType::SetTabWidth() {
    for (int Number = 1; Number <= ModuleCount(); ++Number) {
        ModuleList().GetModule(Number)->SetTabWidth();
    }
}
