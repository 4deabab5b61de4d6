#include "editor/SearchAndReplaceModel.h"

#include "editor/EditBoxModel.h"
#include "frame/ErrorDisplay.h"
#include "platform/ClipboardService.h"
#include "project/ProjectType.h"

SearchAndReplaceModel::SearchAndReplaceModel(SearchAndReplaceControls& Controls)
    : Controls_(Controls) {}

EditBoxModel* SearchAndReplaceModel::Active() const { return ActiveForm ? ActiveForm() : nullptr; }

void SearchAndReplaceModel::Form_Load() {
    EditBoxModel* Box = Active();
    ReplaceMode = false;
    MatchIsSelected = false;
    Controls_.SetMatchCase(false);
    Controls_.SetCurrentModule(true);
    if (Box == nullptr) {
        Controls_.UpdateControls();
        return;
    }
    const RichTextBox& Control = Box->rtfEditBox();
    SearchPosition = Control.SelStart();
    if (Control.SelLength() > 0) {
        // The selection is what the user wants found; the first find begins behind it.
        const QString Selected = Control.SelText();
        Controls_.SetFindText(Selected);
        Box->FindText = Selected;
        SearchPosition = Control.SelStart() + Control.SelLength();
    } else {
        Controls_.SetFindText(Box->FindText);
    }
    Controls_.UpdateControls();
    Box->SelChange = false;
}

void SearchAndReplaceModel::FindInActiveModule(bool& Found) {
    Found = false;
    if (!Project().IsDefined()) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("No active file"),
                                       QStringLiteral("No Active File"));
        return;
    }
    const QString Text = Controls_.FindText();
    if (Text.isEmpty()) {
        return;
    }
    EditBoxModel* Box = Active();
    if (Box == nullptr) {
        return;
    }
    Box->FindText = Text;
    int32_t Options = 0;
    if (Controls_.MatchCase()) {
        Options += rtfMatchCase;
    }
    if (Controls_.MatchWholeWordOnly()) {
        Options += rtfWholeWord;
    }
    // The control shows its selection without the focus as well, in the
    // colours of an inactive window: the match shows while the dialog has
    // the focus, as HideSelection off would have it.
    RichTextBox& Control = Box->rtfEditBox();
    if (Box->SelChange) {
        // The user moved the caret since the last find: the search goes on from there.
        SearchPosition = Control.SelStart();
        Box->SelChange = false;
    }
    Box->SelChangeArmed = false;
    Control.SetSelLength(0);
    const int32_t Result = Control.Find(Text, SearchPosition, Control.TextLength(), Options);
    Box->SelChangeArmed = true;
    if (Result != -1) {
        SearchPosition = Result + Control.SelLength();
        Found = true;
    }
    if (Box->SetFocus) {
        Box->SetFocus();
    }
}

void SearchAndReplaceModel::StartAtTopOfActiveModule() {
    EditBoxModel* Box = Active();
    if (Box == nullptr) {
        return;
    }
    Box->SelChangeArmed = false;
    Box->rtfEditBox().SetSelStart(0);
    SearchPosition = Box->rtfEditBox().SelStart();
    Box->SelChangeArmed = true;
}

void SearchAndReplaceModel::FindNext(bool& Found) {
    if (Controls_.CurrentModule()) {
        FindInActiveModule(Found);
        return;
    }
    // Once through each module from the active one on, in the project's
    // order and wrapping at its end; a module is never searched twice.
    const int16_t Count = Project().ModuleCount();
    for (int16_t Round = 0; Round < Count; ++Round) {
        FindInActiveModule(Found);
        if (Found) {
            return;
        }
        Project().IncrementActiveModule();
        StartAtTopOfActiveModule();
    }
}

void SearchAndReplaceModel::ReplaceSelection() {
    // The replacement goes through the clipboard, which keeps it afterwards.
    ClipboardService& Clipboard = ClipboardService::Instance();
    Clipboard.Clear();
    Clipboard.SetText(Controls_.ReplaceText());
    EditBoxModel* Box = Active();
    if (Box == nullptr) {
        return;
    }
    Box->EditReplace();
    SearchPosition = Box->rtfEditBox().SelStart();
    MatchIsSelected = false;
}

void SearchAndReplaceModel::ReplaceInActiveModule(bool& Found) {
    EditBoxModel* Box = Active();
    if (Box != nullptr) {
        Box->rtfEditBox().BeginEditGroup();
    }
    // Each find begins behind the last replacement, so a replacement that
    // holds the text it replaces doesn't loop.
    bool Matched = false;
    FindInActiveModule(Matched);
    while (Matched) {
        ReplaceSelection();
        Found = true;
        FindInActiveModule(Matched);
    }
    if (Box != nullptr) {
        // The view takes up the group's selection: no move of the user's.
        Box->SelChangeArmed = false;
        Box->rtfEditBox().EndEditGroup();
        Box->SelChangeArmed = true;
    }
}

void SearchAndReplaceModel::ReplaceAll(bool& Found) {
    if (EditBoxModel* Box = Active()) {
        Box->SelChange = false;
    }
    Found = false;
    SearchPosition = 0;
    if (Controls_.CurrentModule()) {
        ReplaceInActiveModule(Found);
        return;
    }
    const int16_t Count = Project().ModuleCount();
    for (int16_t Round = 0; Round < Count; ++Round) {
        ReplaceInActiveModule(Found);
        Project().IncrementActiveModule();
        StartAtTopOfActiveModule();
    }
}

void SearchAndReplaceModel::ReportNotFound() {
    ErrorDisplay::ShowErrorMessage(QStringLiteral("String not found: ") + Controls_.FindText(),
                                   QStringLiteral("String Not Found"));
}

void SearchAndReplaceModel::cmdFindNext_Click() {
    bool Found = false;
    FindNext(Found);
    MatchIsSelected = Found;
    if (!Found) {
        ReportNotFound();
    }
}

void SearchAndReplaceModel::cmdReplaceOnce_Click() {
    if (!ReplaceMode) {
        // The first click only opens the replace mode.
        ReplaceMode = true;
        Controls_.UpdateControls();
        return;
    }
    if (MatchIsSelected) {
        ReplaceSelection();
    }
    cmdFindNext_Click();
}

void SearchAndReplaceModel::cmdReplaceAll_Click() {
    bool Found = false;
    ReplaceAll(Found);
    if (!Found) {
        ReportNotFound();
    }
}
