#include "project/ProjectFilesModel.h"

#include "frame/ErrorDisplay.h"
#include "frame/UtilitiesFilename.h"
#include "project/NewProjectModel.h"
#include "project/ProjectType.h"

namespace ProjectFilesModel {

QStringList ModuleLines() {
    QStringList Lines;
    for (int16_t Number = 1; Number <= Project().ModuleCount(); ++Number) {
        Lines << Project().ModuleFileLine(Number);
    }
    return Lines;
}

FileDialogRequest AddModuleRequest() {
    FileDialogRequest Request;
    Request.InitDir = Project().Path();
    Request.Filter = QStringLiteral("Kavlin Studio Files (*.bas)|*.bas");
    Request.FilterIndex = 2;
    Request.Save = false;
    return Request;
}

bool AddModule(const QString& Filename) {
    bool Success = false;
    if (UtilitiesFilename::FileExists(Filename) ||
        NewProjectModel::CreateModuleFile(Filename, false)) {
        Project().AddExistingModule(Project().Path(), Filename, Success);
    }
    if (!Success) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Unable to add module ") + Filename,
                                       QStringLiteral("Error Adding Module"));
        return false;
    }
    Project().SaveFileKVP();
    return true;
}

RemoveOutcome RemoveModule(int ListCount, int SelectedNumber) {
    if (ListCount < 1) {
        return RemoveOutcome::NothingToRemove;
    }
    ProjectType& Current = Project();
    if (SelectedNumber < 1 || SelectedNumber > Current.ModuleCount()) {
        Current.SaveFileKVP();
        return RemoveOutcome::NoSelection;
    }
    const auto Number = static_cast<int16_t>(SelectedNumber);
    if (Current.HasChanged(Number)) {
        QString Path;
        QString Name;
        QString Extension;
        UtilitiesFilename::SplitFilename(Current.ModuleFileLine(Number), Path, Name, Extension);
        const int Answer = ErrorDisplay::AskYesNoCancel(
            QStringLiteral("Save changes to ") + Name + QStringLiteral("?"),
            QStringLiteral("Remove Module"));
        if (Answer == 2) {
            return RemoveOutcome::Cancelled;
        }
        if (Answer == 6) {
            Current.SaveModule(Number);
        }
    }
    Current.RemoveModule(Number);
    Current.SaveFileKVP();
    return RemoveOutcome::Removed;
}

}  // namespace ProjectFilesModel
