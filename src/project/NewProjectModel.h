#pragma once

#include <QString>
#include <functional>

// What frmNewProject does apart from its window: it checks the two names,
// asks before a project file is replaced, has the editor open the new
// project and gives it its first module.
namespace NewProjectModel {

// The dialog's controls as OK reads them.
struct NewProjectRequest {
    QString Directory;
    QString ProjectName;
    bool IncludeModule = true;
    QString ModuleName;
};

// What the window does after OK.
enum class NewProjectOutcome {
    // The project is open and written: the window unloads.
    Created,
    // The window stays, with the focus on the project name.
    FixProjectName,
    // The window stays, with the focus on the module name.
    FixModuleName,
    // The window stays as it is.
    Stay,
};

// The editor's OpenProject: the global project replaced by a new one.
using OpenProjectFunction = std::function<void(const QString& Path, const QString& Name,
                                               const QString& Extension, bool IsNewProject)>;

NewProjectOutcome CreateProject(const NewProjectRequest& Request,
                                const OpenProjectFunction& OpenProject);

// A new module's text: "Option Explicit" and an empty line, and for a
// project's first module an empty Main.
QString NewModuleText(bool IsFirstModule);

// Writes a new module file with its default text; a failure is told with
// its cause, and nothing is left behind.
bool CreateModuleFile(const QString& Filename, bool IsFirstModule);

// Creates the file if IsNewFile (an existing one is taken as it is), then
// adds it to the open project.
void AddNewModule(const QString& Path, const QString& Name, const QString& Extension,
                  bool IsNewFile, bool IsFirstModule, bool& Success);

}  // namespace NewProjectModel
