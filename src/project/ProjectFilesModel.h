#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>

#include "platform/FileDialogService.h"

// What frmProjectFiles does apart from its window: the list of the open
// project's modules, adding a module file (made if it is new) and removing a
// module. Every change is in the project and its file at once.
namespace ProjectFilesModel {

// One line per module in order, as the project file has it: the name alone
// for a module in the project's directory, else the full name.
QStringList ModuleLines();

// The file dialog of Add.
FileDialogRequest AddModuleRequest();

// The chosen file, created with "Option Explicit" if it doesn't exist, into
// the project; the project file is written when it was taken. False, after
// "Unable to add module", when it wasn't.
bool AddModule(const QString& Filename);

enum class RemoveOutcome {
    // The list is empty.
    NothingToRemove,
    // Nothing selected: the window beeps; the project file was written.
    NoSelection,
    // The user cancelled the save question: the module stays.
    Cancelled,
    // The module left the project and its file; its own file stays on disk.
    Removed,
};

// ListCount the lines in the list, SelectedNumber the selected line's place
// from 1, 0 for none. A changed module is offered to be saved first.
RemoveOutcome RemoveModule(int ListCount, int SelectedNumber);

}  // namespace ProjectFilesModel
