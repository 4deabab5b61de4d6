#include "frame/DirectoryCentral.h"

#include <QCoreApplication>
#include <QDir>

#include "frame/ErrorDisplay.h"
#include "frame/RegistryCentral.h"
#include "frame/UtilitiesFilename.h"

namespace DirectoryCentral {

namespace {
QString ApplicationPath;
QString InstallPath;
QString WorkPath;
std::function<void(bool&)> CompilerVersionCheck;

const QString InstallationError = QStringLiteral("Installation Error");
}  // namespace

QString GetApplicationPath() { return ApplicationPath; }
QString GetInstallPath() { return InstallPath; }
QString GetWorkPath() { return WorkPath; }
void SetWorkPath(const QString& Path) { WorkPath = Path; }
void SetApplicationPath(const QString& Path) { ApplicationPath = Path; }

void SetCompilerVersionCheck(std::function<void(bool& Success)> Check) {
    CompilerVersionCheck = std::move(Check);
}

void InitializeDirectories() {
    ApplicationPath = QCoreApplication::instance() != nullptr
                          ? QCoreApplication::applicationDirPath()
                          : QDir::currentPath();
    InstallPath = RegistryCentral::RegistryGetInstallDir();
    InitializeWorkPath();
}

void InitializeWorkPath() {
    WorkPath = RegistryCentral::RegistryGetWorkDir();
    if (!UtilitiesFilename::DirectoryExists(WorkPath)) {
        WorkPath = ApplicationPath;
    }
    // Absolute, so that file names made from it stay right after the change of directory.
    WorkPath = UtilitiesFilename::GetAbsolutePath(WorkPath);
    // There are no drive letters to change to here; a path that names one
    // ("C:\...") cannot be a directory of this file system anyway.
    if (WorkPath.mid(1, 2) != QStringLiteral(":\\")) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in DirectoryCentral.InitializeWorkPath"));
    }
    if (!QDir::setCurrent(UtilitiesFilename::LocalFilename(WorkPath))) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_2 in DirectoryCentral.InitializeWorkPath ") +
                                 QStringLiteral("cannot change to ") + WorkPath);
    }
}

void CreateDirectory(const QString& Path, bool& Success) {
    Success = !Path.isEmpty() && QDir().mkdir(UtilitiesFilename::LocalFilename(Path));
}

void CheckObjectDirectory(bool& Success) {
    Success = false;
    InstallPath = RegistryCentral::RegistryGetInstallDir();
    if (!UtilitiesFilename::DirectoryExists(InstallPath)) {
        ErrorDisplay::ShowWarningMessage(
            QStringLiteral("Can't find program directory ") + InstallPath, InstallationError);
        return;
    }
    const QString TempPath =
        UtilitiesFilename::MakeFilename(InstallPath, QStringLiteral("Temp"), QString());
    if (!UtilitiesFilename::DirectoryExists(TempPath)) {
        const int Answer =
            ErrorDisplay::AskYesNo(QStringLiteral("Can't find temporary directory: ") + TempPath +
                                       QStringLiteral("\nCreate directory?"),
                                   InstallationError);
        if (Answer != 6) {
            return;
        }
        bool Created = false;
        CreateDirectory(TempPath, Created);
        if (!Created) {
            ErrorDisplay::ShowWarningMessage(
                QStringLiteral("Error creating object file directory ") + TempPath,
                InstallationError);
            return;
        }
    }
    Success = true;
}

void CheckLibraryFiles(bool& Success) {
    Success = false;
    const char* const Files[][2] = {{"BinKV10", "SymbolKV10"}, {"BinKV20", "SymbolKV20"}};
    for (const auto& File : Files) {
        const QString Directory =
            UtilitiesFilename::MakeFilename(InstallPath, QString::fromLatin1(File[0]), QString());
        const QString Filename = UtilitiesFilename::MakeFilename(
            Directory, QString::fromLatin1(File[1]), QStringLiteral("sym"));
        if (!UtilitiesFilename::FileExists(Filename)) {
            ErrorDisplay::ShowWarningMessage(QStringLiteral("Can't find library file: ") + Filename,
                                             InstallationError);
            return;
        }
    }
    Success = true;
}

void CheckInstallation(bool& Success) {
    bool ObjectDirectoryOk = false;
    // Not yet: until the compile registers its version check, the component is not looked at.
    bool CompilerOk = true;
    bool LibraryOk = false;
    CheckObjectDirectory(ObjectDirectoryOk);
    if (CompilerVersionCheck) {
        CompilerVersionCheck(CompilerOk);
    }
    CheckLibraryFiles(LibraryOk);
    Success = ObjectDirectoryOk && CompilerOk && LibraryOk;
}

}  // namespace DirectoryCentral
