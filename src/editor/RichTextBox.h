#pragma once

#include <QString>
#include <cstdint>
#include <functional>

// The rich-text control the highlighter and the edit box work through.
// Positions are 0-based with a line break counted as CR LF; colours are RGB
// values 0xRRGGBB. Writing the selection, its colour or its text raises the
// control's own events (Change, SelChange), as a real control does, so its
// clients keep arming flags around their writes.
class RichTextBox {
  public:
    virtual ~RichTextBox() = default;

    // The whole text with CR LF line breaks, and its length.
    virtual QString Text() const = 0;
    virtual void SetText(const QString& Text) = 0;
    virtual int32_t TextLength() const = 0;
    // Count characters of Text from Start; shorter at the end of the text.
    virtual QString TextMid(int32_t Start, int32_t Count) const = 0;

    virtual int32_t SelStart() const = 0;
    // Collapses the selection.
    virtual void SetSelStart(int32_t Start) = 0;
    virtual int32_t SelLength() const = 0;
    virtual void SetSelLength(int32_t Length) = 0;
    // The colour of the selection; with an empty selection, of what is inserted next.
    virtual void SetSelColor(uint32_t Rgb) = 0;
    virtual QString SelText() const = 0;
    virtual void SetSelText(const QString& Text) = 0;
    virtual void SetBackColor(uint32_t Rgb) = 0;

    // 0-based line of a position.
    virtual int32_t GetLineFromChar(int32_t Position) const = 0;
    // First position of String within Start to End, or -1; an empty or
    // inverted range gives -1. Option 8 leaves the selection alone; without
    // it a find selects what it found. Option 4 matches case, 2 whole words.
    virtual int32_t Find(const QString& String, int32_t Start, int32_t End, int32_t Options) = 0;

    virtual void SetVisible(bool Visible) = 0;

    // The text writes between the two are one step of the user's undo, and
    // the view takes up their result once, at the end: a Replace All of a
    // module is undone at one stroke, and its many selection writes neither
    // scroll nor lay out the lines they pass. Groups nest; the outermost counts.
    virtual void BeginEditGroup() = 0;
    virtual void EndEditGroup() = 0;
    // 11 the wait cursor, 0 the default one.
    virtual void SetMousePointer(int32_t Pointer) = 0;

    virtual void SetSelFontName(const QString& Name) = 0;
    virtual void SetSelFontSize(int32_t Size) = 0;
    virtual void SetSelTabCount(int32_t Count) = 0;
    virtual int32_t SelTabCount() const = 0;
    virtual void SetSelTabs(int32_t Index, int32_t Position) = 0;

    virtual int32_t Width() const = 0;
    virtual int32_t Height() const = 0;
    virtual void Resize(int32_t Width, int32_t Height) = 0;

    // The control's events. An edit that moves the caret raises SelChange
    // before Change, so that a line the caret leaves is coloured before the
    // line it comes to turns neutral.
    std::function<void()> Change;
    std::function<void()> SelChange;
    // Raised after Change when an edit the control made by itself (typing a
    // line break, undo, redo, a drop) inserted lines: First to Last is the
    // span of the inserted text, which still has to be coloured.
    std::function<void(int32_t First, int32_t Last)> LinesInserted;

  protected:
    void RaiseChange() {
        if (Change) {
            Change();
        }
    }
    void RaiseSelChange() {
        if (SelChange) {
            SelChange();
        }
    }
};

// Mouse pointers.
constexpr int32_t rtfDefaultPointer = 0;
constexpr int32_t rtfWaitPointer = 11;

// Options of Find.
constexpr int32_t rtfWholeWord = 2;
constexpr int32_t rtfMatchCase = 4;
constexpr int32_t rtfNoHighlight = 8;
