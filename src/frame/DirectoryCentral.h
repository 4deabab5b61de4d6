#pragma once

#include <QString>
#include <functional>

// The program's directory, the install directory (setting Run_Dir) and the
// work path where the user keeps projects; and the check of an installation.
namespace DirectoryCentral {

QString GetApplicationPath();
QString GetInstallPath();
QString GetWorkPath();
// Sets the work path, with no other effect.
void SetWorkPath(const QString& Path);
// Sets the program's directory, with no other effect: a test puts the
// program somewhere else, with or without a component beside it.
void SetApplicationPath(const QString& Path);

void InitializeDirectories();
void InitializeWorkPath();

// Runs all three checks, whatever the earlier ones found: the object file
// directory, the compiler component's version, the library symbol files.
void CheckInstallation(bool& Success);
void CheckObjectDirectory(bool& Success);
void CheckLibraryFiles(bool& Success);
void CreateDirectory(const QString& Path, bool& Success);

// The compile subsystem registers its version check here; until it does, the
// component is not looked at and this step passes.
void SetCompilerVersionCheck(std::function<void(bool& Success)> Check);

}  // namespace DirectoryCentral
