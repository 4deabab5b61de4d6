#include "compile/CompilerHost.h"

#include "frame/ErrorDisplay.h"
#include "frame/RegistryCentral.h"
#include "frame/UtilitiesFilename.h"
#include "project/ProjectType.h"

namespace {
CompilerHost* Installed = nullptr;
}  // namespace

CompilerHost& CompilerHost::Instance() {
    static HeadlessCompilerHost Headless;
    return Installed != nullptr ? *Installed : Headless;
}

void CompilerHost::Install(CompilerHost* Host) { Installed = Host; }

void CompilerHost::Uninstall(CompilerHost* Host) {
    if (Installed == Host) {
        Installed = nullptr;
    }
}

void CompilerHost::HighlightSourceError(int32_t EndPosition, int32_t StartPosition,
                                        int16_t ModuleNumber, const QString& ErrorDescription) {
    if (!Project().IsDefined() || Project().ModuleCount() < 1) {
        return;
    }
    ShowStatusPanel(3, QStringLiteral("Errors"));
    Project().HighlightText(ModuleNumber, StartPosition, EndPosition);
    ErrorDisplay::ShowErrorMessage(ErrorDescription, QStringLiteral("Compile Error"));
    // The box took the focus and may have moved the caret: select again.
    Project().HighlightText(ModuleNumber, StartPosition, EndPosition);
}

void CompilerHost::DisplayCommandLineError(int16_t ModuleNumber, int16_t, int16_t ColumnNumber,
                                           int32_t, const QString& ErrorDescription) {
    QString Path;
    QString Name;
    QString Extension;
    Project().GetModuleName(ModuleNumber, Path, Name, Extension);
    ErrorDisplay::LogError(QString());
    ErrorDisplay::LogError(QStringLiteral("Error in module ") +
                           UtilitiesFilename::MakeFilename(Path, Name, Extension));
    ErrorDisplay::LogError(QString());
    ErrorDisplay::LogError(ErrorDescription);
    ErrorDisplay::LogError(QStringLiteral("Column ") + QString::number(ColumnNumber) +
                           QStringLiteral(" :"));
    ErrorDisplay::LogError(QString());
}

FormGeometry HeadlessCompilerHost::CurrentGeometry() const {
    FormGeometry Geometry;
    RegistryCentral::RegistryGetEditorGeometry(Geometry);
    return Geometry;
}
