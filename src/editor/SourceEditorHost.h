#pragma once

#include <cstdint>

// What an edit box asks of the editor's main window: show the insert mode
// and the caret's line and column, bring a module's tab forward, and run the
// edit commands of its context menu on the active module. The main window
// installs itself; until then nothing is shown.
class SourceEditorHost {
  public:
    virtual ~SourceEditorHost() = default;
    virtual void InsertMode(bool IsInsertMode) = 0;
    virtual void ActivateTab(int16_t ModuleNumber) = 0;
    virtual void DisplayCursor(int32_t LineNumber, int32_t ColumnNumber) = 0;
    virtual void mnuEditCut_Click() = 0;
    virtual void mnuEditCopy_Click() = 0;
    virtual void mnuEditPaste_Click() = 0;
    virtual void mnuEditDelete_Click() = 0;

    // The installed host, or none.
    static SourceEditorHost* Instance();
    static void Install(SourceEditorHost* Host);
};
