#pragma once

#include <cstdint>

#include "editor/RichTextBox.h"

// Colours one edit box's text in three classes, code, string literal and
// comment, in a single pass that looks only at CR, the double quote and the
// apostrophe. The line being typed on stays neutral (all code colour) until
// the caret leaves it, so a keystroke there costs nothing. Colour reaches the
// control only through its selection.
class SyntaxHighlighterType {
  public:
    void Connect(RichTextBox* NewEditBox);
    // Colour indices 0 to 15; recolours no text.
    void SetEditorColors(int32_t NewCodeColor, int32_t NewStringLiteralColor,
                         int32_t NewCommentColor, int32_t NewBackgroundColor);
    void HighlightEntireFile();
    void ClearNeutralLine();
    void CancelNeutralLine();
    void NeutralizeLine(int16_t CurrentLineNumber);
    void DeneutralizeOldLine(int16_t CurrentLineNumber);
    void AdjustColors(int32_t ModFirst, int32_t ModLast);

    // The 16-colour table of the settings' indices; -1 for an index outside it.
    static int64_t ColorFromIndex(int32_t Index);

    int16_t CurrentLine() const { return CurrentLine_; }
    bool NeutralLineIsSet() const { return NeutralLineIsSet_; }
    int16_t NeutralLine() const { return NeutralLine_; }
    int32_t NeutralPosition() const { return NeutralPosition_; }
    uint32_t CodeColor() const { return CodeColor_; }
    uint32_t StringLiteralColor() const { return StringLiteralColor_; }
    uint32_t CommentColor() const { return CommentColor_; }
    uint32_t BackgroundColor() const { return BackgroundColor_; }
    uint32_t NeutralColor() const { return NeutralColor_; }

  private:
    void SetNeutralSelectionColor();
    void RepaintLine(int32_t CharacterNumber, int16_t LineNumber, bool WithSyntaxColors);
    void HighlightLine(int32_t TextLength, int32_t LineStart, int32_t& LineEnd);
    void GetLeftMargin(int32_t CharacterNumber, int32_t& LeftMargin);
    void HighlightSyntax(int32_t ModFirst, int32_t ModLast);
    void Paint(int32_t Start, int32_t Length, uint32_t Color);

    int16_t CurrentLine_ = 0;
    bool NeutralLineIsSet_ = false;
    int16_t NeutralLine_ = 0;
    int32_t NeutralPosition_ = 0;
    RichTextBox* EditBox_ = nullptr;
    uint32_t CodeColor_ = 0x000080;
    uint32_t StringLiteralColor_ = 0x808080;
    uint32_t CommentColor_ = 0x008000;
    uint32_t BackgroundColor_ = 0xFFFFFF;
    uint32_t NeutralColor_ = 0x000080;
};
