#include "editor/EditBoxModel.h"

#include "editor/SourceEditorHost.h"
#include "editor/VirtualKeys.h"
#include "frame/ErrorDisplay.h"
#include "frame/RegistryCentral.h"
#include "platform/ClipboardService.h"

namespace {
constexpr int32_t ShiftKey = 1;
constexpr int32_t ControlKey = 2;
constexpr int32_t AltKey = 4;
}  // namespace

EditBoxModel::EditBoxModel(RichTextBox* Control) : Control_(Control) {
    Control_->Change = [this] { rtfEditBox_Change(); };
    Control_->SelChange = [this] { rtfEditBox_SelChange(); };
    Control_->LinesInserted = [this](int32_t First, int32_t Last) {
        rtfEditBox_LinesInserted(First, Last);
    };
}

EditBoxModel::~EditBoxModel() {
    Control_->Change = nullptr;
    Control_->SelChange = nullptr;
    Control_->LinesInserted = nullptr;
}

void EditBoxModel::Disarm() {
    SelChangeArmed = false;
    ChangeArmed_ = false;
    DisplayCursorArmed_ = false;
}

void EditBoxModel::Rearm() {
    DisplayCursorArmed_ = true;
    ChangeArmed_ = true;
    SelChangeArmed = true;
}

void EditBoxModel::SetInsertMode(bool NewInsertMode) {
    InsertMode_ = NewInsertMode;
    if (SourceEditorHost* Host = SourceEditorHost::Instance()) {
        Host->InsertMode(InsertMode_);
    }
}

// ---- Life ------------------------------------------------------------------

void EditBoxModel::Initialize(const QString& Name, int16_t NewModuleNumber,
                              const QString& SourceCode) {
    DisplayCursorArmed_ = true;
    SelChangeArmed = false;
    ChangeArmed_ = false;
    AllowRemoval = false;
    if (!Loaded_) {
        Loaded_ = true;
        Form_Load();
    }
    if (SetCaption) {
        SetCaption(Name);
    }
    SyntaxHighlighter_ = std::make_unique<SyntaxHighlighterType>();
    SyntaxHighlighter_->Connect(Control_);
    SyntaxHighlighter_->SetEditorColors(CodeColor_, StringLiteralColor_, CommentColor_,
                                        BackgroundColor_);
    SetText(SourceCode);
    ModuleNumber_ = NewModuleNumber;
    ChangeArmed_ = true;
    SelChangeArmed = true;
}

void EditBoxModel::Form_Load() {
    SetEditorFont();
    SetTabWidth();
    // No highlighter exists yet: this stops short of the recolouring, and the
    // colours it stored are what counts.
    SetEditorColors();
    SelChangeArmed = false;
    SelChange = false;
    ChangeArmed_ = false;
    HasChanged = false;
    FindText.clear();
    SetInsertMode(true);
    CurrentLine_ = 1;
    ModFirst_ = 0;
    ModLast_ = 0;
    int32_t Width = 0;
    int32_t Height = 0;
    if (InnerSize) {
        InnerSize(Width, Height);
        Resize(Width, Height);
    }
}

void EditBoxModel::Form_Activate() {
    if (SourceEditorHost* Host = SourceEditorHost::Instance()) {
        Host->InsertMode(InsertMode_);
        Host->ActivateTab(ModuleNumber_);
    }
}

void EditBoxModel::Form_Deactivate() {
    if (!SyntaxHighlighter_) {
        return;
    }
    Disarm();
    SyntaxHighlighter_->CancelNeutralLine();
    Rearm();
}

void EditBoxModel::Form_QueryUnload(int32_t& Cancel, int32_t /*UnloadMode*/) {
    if (!AllowRemoval) {
        Cancel = 1;
    }
}

void EditBoxModel::Form_Unload() { SyntaxHighlighter_.reset(); }

// ---- Settings --------------------------------------------------------------

void EditBoxModel::SetEditorFont() {
    SelChangeArmed = false;
    ChangeArmed_ = false;
    QString FontName;
    int32_t FontSize = 0;
    RegistryCentral::RegistryGetEditorFont(FontName, FontSize);
    Control_->SetSelStart(0);
    Control_->SetSelLength(Control_->TextLength());
    Control_->SetSelFontSize(FontSize);
    Control_->SetSelFontName(FontName);
    Control_->SetSelLength(0);
    ChangeArmed_ = true;
    SelChangeArmed = true;
}

void EditBoxModel::SetTabWidth() {
    SelChangeArmed = false;
    ChangeArmed_ = false;
    const int32_t TabWidth = RegistryCentral::RegistryGetTabWidth();
    Control_->SetSelTabCount(20);
    const int32_t Count = Control_->SelTabCount();
    for (int32_t Index = 0; Index < Count; ++Index) {
        Control_->SetSelTabs(Index, static_cast<int16_t>(TabWidth * Index));
    }
    ChangeArmed_ = true;
    SelChangeArmed = true;
}

void EditBoxModel::SetEditorColors() {
    RegistryCentral::RegistryGetEditorColors(CodeColor_, StringLiteralColor_, CommentColor_,
                                             BackgroundColor_);
    Disarm();
    Control_->SetMousePointer(rtfWaitPointer);
    if (SyntaxHighlighter_) {
        SyntaxHighlighter_->SetEditorColors(CodeColor_, StringLiteralColor_, CommentColor_,
                                            BackgroundColor_);
        SyntaxHighlighter_->HighlightEntireFile();
    }
    Control_->SetMousePointer(rtfDefaultPointer);
    Rearm();
    DisplayCursor();
}

// ---- Text ------------------------------------------------------------------

QString EditBoxModel::Text() const { return Control_->Text(); }

void EditBoxModel::SetText(const QString& SourceCode) {
    DisplayCursorArmed_ = false;
    Control_->SetMousePointer(rtfWaitPointer);
    Control_->SetText(SourceCode);
    if (SyntaxHighlighter_) {
        SyntaxHighlighter_->HighlightEntireFile();
    }
    Control_->SetMousePointer(rtfDefaultPointer);
    DisplayCursorArmed_ = true;
    DisplayCursor();
}

// ---- Caret -----------------------------------------------------------------

void EditBoxModel::GetCurrentLine(int16_t& LineNumber) const {
    LineNumber = static_cast<int16_t>(Control_->GetLineFromChar(Control_->SelStart()) + 1);
}

void EditBoxModel::DisplayCursor() {
    if (!DisplayCursorArmed_) {
        return;
    }
    const int32_t Position = Control_->SelStart();
    const int32_t Line = Control_->GetLineFromChar(Position);
    int32_t Column = 0;
    for (int32_t Index = Position; Index >= 1; --Index) {
        if (Control_->GetLineFromChar(Index) != Line) {
            break;
        }
        ++Column;
    }
    if (Line == 0) {
        ++Column;
    }
    if (SourceEditorHost* Host = SourceEditorHost::Instance()) {
        Host->DisplayCursor(Line + 1, Column);
    }
    // A 16-bit line, as it always was.
    CurrentLine_ = static_cast<int16_t>(Line + 1);
}

// ---- Events of the control -------------------------------------------------

void EditBoxModel::rtfEditBox_GotFocus() { DisplayCursor(); }

void EditBoxModel::rtfEditBox_Change() {
    if (!ChangeArmed_) {
        return;
    }
    HasChanged = true;
    if (ModuleNumber_ < 1) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in frmEditBoxType.rtfEditBox_Change"));
    }
    Disarm();
    if (SyntaxHighlighter_) {
        SyntaxHighlighter_->NeutralizeLine(CurrentLine_);
    }
    Rearm();
}

void EditBoxModel::rtfEditBox_SelChange() {
    DisplayCursor();
    if (!SelChangeArmed) {
        return;
    }
    DisplayCursorArmed_ = false;
    SelChange = true;
    SelChangeArmed = false;
    ChangeArmed_ = false;
    if (SyntaxHighlighter_) {
        SyntaxHighlighter_->DeneutralizeOldLine(CurrentLine_);
    }
    ChangeArmed_ = true;
    SelChangeArmed = true;
    DisplayCursorArmed_ = true;
}

void EditBoxModel::rtfEditBox_KeyDown(int32_t& KeyCode, int32_t& Shift) {
    auto Handled = [&KeyCode, &Shift] {
        KeyCode = 0;
        Shift = 0;
    };
    if ((Shift & AltKey) != 0) {
        return;
    }
    if ((Shift & ControlKey) != 0 && (Shift & ShiftKey) != 0) {
        return;
    }
    if ((Shift & ControlKey) != 0) {
        switch (KeyCode) {
            case VirtualKeys::A:
                EditSelectAll();
                Handled();
                break;
            case VirtualKeys::C:
                EditCopy();
                Handled();
                break;
            case VirtualKeys::V:
                EditPaste();
                Handled();
                break;
            case VirtualKeys::X:
                EditCut();
                Handled();
                break;
            default:
                break;
        }
        return;
    }
    if ((Shift & ShiftKey) != 0) {
        if (KeyCode == VirtualKeys::Insert) {
            EditPaste();
            Handled();
        } else if (KeyCode == VirtualKeys::Delete) {
            EditCut();
            Handled();
        }
        return;
    }
    if (KeyCode == VirtualKeys::Insert) {
        // Left to the control too, whose own overtype mode this mirrors.
        SetInsertMode(!InsertMode_);
    }
}

void EditBoxModel::rtfEditBox_LinesInserted(int32_t First, int32_t Last) {
    if (!SyntaxHighlighter_ || !ChangeArmed_) {
        return;
    }
    Disarm();
    ModFirst_ = First;
    ModLast_ = Last;
    ColourInsertedSpan(true);
}

// ---- Clipboard -------------------------------------------------------------

void EditBoxModel::EditCut() {
    ClipboardService& Clipboard = ClipboardService::Instance();
    Clipboard.Clear();
    Clipboard.SetText(Control_->SelText());
    Control_->SetSelText(QString());
}

void EditBoxModel::EditCopy() {
    ClipboardService& Clipboard = ClipboardService::Instance();
    Clipboard.Clear();
    Clipboard.SetText(Control_->SelText());
}

void EditBoxModel::EditDelete() { Control_->SetSelText(QString()); }

void EditBoxModel::EditSelectAll() {
    Control_->SetSelStart(0);
    Control_->SetSelLength(Control_->TextLength());
}

void EditBoxModel::EditPaste() { InsertClipboard(true); }

void EditBoxModel::EditReplace() { InsertClipboard(false); }

void EditBoxModel::InsertClipboard(bool LeaveLineNeutral) {
    Disarm();
    ModFirst_ = Control_->SelStart();
    Control_->SetSelText(ClipboardService::Instance().GetText());
    ModLast_ = Control_->SelStart();
    if (!SyntaxHighlighter_) {
        // The operation simply ends, with the flags left lowered.
        return;
    }
    ColourInsertedSpan(LeaveLineNeutral);
}

void EditBoxModel::ColourInsertedSpan(bool LeaveLineNeutral) {
    SyntaxHighlighter_->ClearNeutralLine();
    SyntaxHighlighter_->AdjustColors(ModFirst_, ModLast_);
    if (LeaveLineNeutral) {
        GetCurrentLine(CurrentLine_);
        SyntaxHighlighter_->NeutralizeLine(CurrentLine_);
    }
    Rearm();
    DisplayCursor();
}

void EditBoxModel::Resize(int32_t FormWidth, int32_t FormHeight) {
    if (FormWidth >= 5 && FormHeight >= 5) {
        Control_->Resize(FormWidth, FormHeight);
    }
}
