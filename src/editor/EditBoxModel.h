#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>

#include "editor/RichTextBox.h"
#include "editor/SyntaxHighlighterType.h"

// What an edit box does, apart from its window: the change flag, the caret's
// line and column, the insert mode, the clipboard commands, the key table,
// and the three arming flags that keep the highlighter's own selection writes
// from calling it again. frmEditBoxType is its window; tests drive it over a
// control in memory.
class EditBoxModel {
  public:
    // Works on Control, which it does not own.
    explicit EditBoxModel(RichTextBox* Control);
    ~EditBoxModel();

    // Public variables of the edit box.
    bool SelChange = false;
    bool SelChangeArmed = false;
    QString FindText;
    bool HasChanged = false;
    bool AllowRemoval = false;

    void SetInsertMode(bool NewInsertMode);
    bool InsertMode() const { return InsertMode_; }
    int16_t ModuleNumber() const { return ModuleNumber_; }
    void SetModuleNumber(int16_t NewModuleNumber) { ModuleNumber_ = NewModuleNumber; }

    // Brings a new edit box to life; SetCaption gives the window its name
    // (and, the first time, loads it).
    void Initialize(const QString& Name, int16_t NewModuleNumber, const QString& SourceCode);
    void SetEditorFont();
    void SetEditorColors();
    void SetTabWidth();
    QString Text() const;
    void SetText(const QString& SourceCode);
    void EditCut();
    void EditCopy();
    void EditPaste();
    void EditReplace();
    void EditDelete();
    void EditSelectAll();
    // Width and height of at least 5 go to the control; less is a minimised window.
    void Resize(int32_t FormWidth, int32_t FormHeight);

    // Events of the window and its control.
    void Form_Load();
    void Form_Activate();
    void Form_Deactivate();
    // Cancel becomes 1 while the module has not allowed the window to go.
    void Form_QueryUnload(int32_t& Cancel, int32_t UnloadMode);
    void Form_Unload();
    void rtfEditBox_GotFocus();
    void rtfEditBox_Change();
    void rtfEditBox_SelChange();
    // Shift holds 1 shift, 2 control, 4 alt; a key handled here comes back as 0, 0.
    void rtfEditBox_KeyDown(int32_t& KeyCode, int32_t& Shift);
    // Lines the control inserted by itself (a line break, undo, redo, a drop)
    // are coloured as a paste's are.
    void rtfEditBox_LinesInserted(int32_t First, int32_t Last);

    // The window's hooks: its caption, its inner size, and whether it exists yet.
    std::function<void(const QString& Caption)> SetCaption;
    std::function<void(int32_t& Width, int32_t& Height)> InnerSize;
    // Gives the control the focus (SetFocus); the search dialog calls it.
    std::function<void()> SetFocus;

    // The control, rtfEditBox, as the search dialog works on it.
    RichTextBox& rtfEditBox() const { return *Control_; }

    int16_t CurrentLine() const { return CurrentLine_; }
    bool ChangeArmed() const { return ChangeArmed_; }
    bool DisplayCursorArmed() const { return DisplayCursorArmed_; }
    int32_t ModFirst() const { return ModFirst_; }
    int32_t ModLast() const { return ModLast_; }
    SyntaxHighlighterType* SyntaxHighlighter() const { return SyntaxHighlighter_.get(); }
    int32_t CodeColor() const { return CodeColor_; }
    int32_t StringLiteralColor() const { return StringLiteralColor_; }
    int32_t CommentColor() const { return CommentColor_; }
    int32_t BackgroundColor() const { return BackgroundColor_; }

  private:
    void GetCurrentLine(int16_t& LineNumber) const;
    void DisplayCursor();
    void Disarm();
    void Rearm();
    // Paste and replace; a paste leaves the caret's line neutral.
    void InsertClipboard(bool LeaveLineNeutral);
    void ColourInsertedSpan(bool LeaveLineNeutral);

    RichTextBox* Control_;
    bool Loaded_ = false;
    bool ChangeArmed_ = false;
    int16_t ModuleNumber_ = 0;
    bool DisplayCursorArmed_ = false;
    bool InsertMode_ = true;
    int16_t CurrentLine_ = 1;
    std::unique_ptr<SyntaxHighlighterType> SyntaxHighlighter_;
    int32_t CodeColor_ = 1;
    int32_t StringLiteralColor_ = 8;
    int32_t CommentColor_ = 2;
    int32_t BackgroundColor_ = 15;
    int32_t ModFirst_ = 0;
    int32_t ModLast_ = 0;
};
