#pragma once

#include <QString>
#include <cstdint>
#include <functional>

class EditBoxModel;

// The search dialog's controls, as its logic reads and sets them: the texts
// to find and to put in place, the two options, the choice between the active
// module and the whole project, and the redrawing of the mode and the buttons.
class SearchAndReplaceControls {
  public:
    virtual ~SearchAndReplaceControls() = default;
    virtual QString FindText() const = 0;
    virtual void SetFindText(const QString& Text) = 0;
    virtual QString ReplaceText() const = 0;
    virtual bool MatchCase() const = 0;
    virtual void SetMatchCase(bool On) = 0;
    virtual bool MatchWholeWordOnly() const = 0;
    // optCurrentModule on, or else optCurrentProject.
    virtual bool CurrentModule() const = 0;
    virtual void SetCurrentModule(bool On) = 0;
    virtual void UpdateControls() = 0;
};

// What frmSearchAndReplace does, apart from its window. It has no text
// engine of its own: it finds with the Find of the active module's control,
// replaces through the clipboard and the edit box's EditReplace, and moves
// through the project's modules by making the next one active. Its window
// and the tests give it the controls and the active edit box.
class SearchAndReplaceModel {
  public:
    explicit SearchAndReplaceModel(SearchAndReplaceControls& Controls);

    // The last find succeeded: the selection in the active module is the match.
    bool MatchIsSelected = false;
    // Where the next find begins.
    int32_t SearchPosition = 0;
    // False for the find mode, true for the replace mode.
    bool ReplaceMode = false;

    // The edit box of the main window's active module window; none without one.
    std::function<EditBoxModel*()> ActiveForm;

    void Form_Load();
    void cmdFindNext_Click();
    void cmdReplaceOnce_Click();
    void cmdReplaceAll_Click();

    void FindNext(bool& Found);
    void ReplaceAll(bool& Found);
    void ReplaceSelection();
    void FindInActiveModule(bool& Found);

  private:
    // Every match of the active module from SearchPosition on is replaced, as
    // one step of undo; Found is set once one is.
    void ReplaceInActiveModule(bool& Found);
    // After the next module was made active: its caret at 0, where the search goes on.
    void StartAtTopOfActiveModule();
    void ReportNotFound();
    EditBoxModel* Active() const;

    SearchAndReplaceControls& Controls_;
};
