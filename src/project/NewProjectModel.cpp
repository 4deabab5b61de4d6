#include "project/NewProjectModel.h"

#include "frame/ErrorDisplay.h"
#include "frame/ExceptionTypes.h"
#include "frame/UtilitiesCommon.h"
#include "frame/UtilitiesFilename.h"
#include "project/ModuleFile.h"
#include "project/ProjectType.h"

namespace NewProjectModel {

namespace {
const QString ProjectExtension = QStringLiteral("kvp");
const QString ModuleExtension = QStringLiteral("bas");
const QString ErrorTitle = QStringLiteral("New Project Error");

// "Illegal project name: NAME", "Must be legal Basic identifier".
bool CheckName(const QString& Name, const char* What, const char* Title) {
    if (UtilitiesCommon::IsLegalIdentifier(Name)) {
        return true;
    }
    ErrorDisplay::ShowErrorMessage(QStringLiteral("Illegal ") + QString::fromLatin1(What) +
                                       QStringLiteral(" name: ") + Name +
                                       QStringLiteral("\nMust be legal Basic identifier"),
                                   QString::fromLatin1(Title));
    return false;
}

NewProjectOutcome Create(const NewProjectRequest& Request, const OpenProjectFunction& OpenProject) {
    if (!CheckName(Request.ProjectName, "project", "Illegal Project Name")) {
        return NewProjectOutcome::FixProjectName;
    }
    if (Request.IncludeModule && !CheckName(Request.ModuleName, "module", "Illegal Module Name")) {
        return NewProjectOutcome::FixModuleName;
    }
    const QString ProjectFilename =
        UtilitiesFilename::MakeFilename(Request.Directory, Request.ProjectName, ProjectExtension);
    if (UtilitiesFilename::FileExists(ProjectFilename) &&
        ErrorDisplay::AskYesNo(
            ProjectFilename + QStringLiteral(" already exists.\nDo you want to replace it?"),
            QStringLiteral("Replace File")) != 6) {
        return NewProjectOutcome::Stay;
    }
    try {
        OpenProject(Request.Directory, Request.ProjectName, ProjectExtension, true);
    } catch (...) {
        ErrorDisplay::ShowErrorMessage(
            QStringLiteral("Unable to open project: ") + Request.ProjectName, ErrorTitle);
        return NewProjectOutcome::Stay;
    }
    if (Request.IncludeModule) {
        // A module file that is there already is taken with its text.
        const bool IsNewFile = !UtilitiesFilename::FileExists(UtilitiesFilename::MakeFilename(
            Request.Directory, Request.ModuleName, ModuleExtension));
        bool Success = false;
        AddNewModule(Request.Directory, Request.ModuleName, ModuleExtension, IsNewFile, true,
                     Success);
        if (!Success) {
            ErrorDisplay::ShowErrorMessage(
                QStringLiteral("Unable to open module: ") + Request.ModuleName, ErrorTitle);
            return NewProjectOutcome::Stay;
        }
    }
    Project().SaveFileKVP();
    return NewProjectOutcome::Created;
}
}  // namespace

NewProjectOutcome CreateProject(const NewProjectRequest& Request,
                                const OpenProjectFunction& OpenProject) {
    try {
        return Create(Request, OpenProject);
    } catch (...) {
        ExceptionTypes::ProcessException(6, 2);
        return NewProjectOutcome::Stay;
    }
}

QString NewModuleText(bool IsFirstModule) {
    QString Text = QStringLiteral("Option Explicit\r\n\r\n");
    if (IsFirstModule) {
        Text += QStringLiteral("Public Sub Main()\r\n\r\nEnd Sub\r\n");
    }
    return Text;
}

bool CreateModuleFile(const QString& Filename, bool IsFirstModule) {
    UserFileFailure Failure;
    if (ModuleFile::Write(Filename, NewModuleText(IsFirstModule), ModuleFileFormat(), Failure)) {
        return true;
    }
    ErrorDisplay::ShowErrorMessage(QStringLiteral("Error writing module ") + Filename +
                                       QLatin1Char('\n') + UserFile::ErrorLine(Failure),
                                   QStringLiteral("Module Write Error"));
    return false;
}

void AddNewModule(const QString& Path, const QString& Name, const QString& Extension,
                  bool IsNewFile, bool IsFirstModule, bool& Success) {
    Success = false;
    const QString Filename = UtilitiesFilename::MakeFilename(Path, Name, Extension);
    if (IsNewFile && !CreateModuleFile(Filename, IsFirstModule)) {
        return;
    }
    Project().AddExistingModule(Project().Path(), Filename, Success);
}

}  // namespace NewProjectModel
