#pragma once

#include <QString>
#include <cstdint>
#include <memory>

#include "chip/PRFfileType.h"
#include "platform/Global.h"
#include "project/ModuleListType.h"

// The one open project: its modules and its chip preference file, named
// from the project file. An empty, undefined project stands for "no project
// open".
class ProjectType {
  public:
    // Module numbers are 16-bit: one more module would wrap the count.
    static constexpr int16_t MaxModuleCount = INT16_MAX;

    ~ProjectType();

    // The preference file's mirror, created at its first use.
    PRFfileType& PRFfile();

    bool IsDefined() const { return IsDefined_; }
    void SetIsDefined(bool Value);
    bool HasChanged(int16_t ModuleNumber) const;
    const QString& Path() const { return Path_; }
    const QString& Name() const { return Name_; }
    const QString& Extension() const { return Extension_; }
    int16_t ModuleCount() const;
    // Writes the project file: one line per module.
    void SaveFileKVP();
    void SaveModule(int16_t ModuleNumber);
    ModuleType* GetNamedModule(const QString& Name);
    void SaveModuleAs(int16_t ModuleNumber, const QString& NewFilename);
    void SaveAll();
    void HighlightText(int16_t ModuleNumber, int32_t StartPosition, int32_t EndPosition);
    void GetModuleName(int16_t ModuleNumber, QString& ModulePath, QString& ModuleName,
                       QString& ModuleExtension);
    void SaveProjectAs(const QString& NewPath, const QString& NewName, const QString& NewExtension);
    void OpenProject(const QString& NewPath, const QString& NewName, const QString& NewExtension,
                     bool IsNewProject);
    void AddExistingModule(const QString& DefaultPath, const QString& LongModuleName,
                           bool& Success);
    void RemoveModule(int16_t ModuleNumber);
    void IncrementActiveModule();
    void ActivateModule(int16_t ModuleNumber);
    void AreWindowsMaximized(bool& Result);
    void SetEditorFont();
    void SetEditorColors();
    void SetTabWidth();

    // A module's line of the project file: its name alone in the project's
    // directory, else its full name.
    QString ModuleFileLine(int16_t ModuleNumber);
    // The project file's lines as SaveFileKVP writes them.
    QStringList ProjectFileLines();
    ModuleListType& ModuleList();

  private:
    void SaveModuleFile(int16_t ModuleNumber);
    void SetFilenames();

    std::unique_ptr<PRFfileType> PRFfile_;
    QString Path_;
    QString Name_;
    QString Extension_;
    bool IsDefined_ = false;
    std::unique_ptr<ModuleListType> ModuleList_;
    // The project file's lines from the one that failed to load on: written
    // back after the modules, so a save never drops them.
    QStringList UnreadLines_;
};

// GlobalData's Project: created empty at its first use; Global<ProjectType>::Unload()
// sets it to nothing.
inline ProjectType& Project() { return Global<ProjectType>::Get(); }

namespace ProjectModel {
// Tells the error report the open project's name (empty for none), and the
// preference file where the project lies.
void RegisterWithFrame();
}  // namespace ProjectModel
