#pragma once

#include <QList>
#include <QString>
#include <vector>

#include "editor/RichTextBox.h"

// A rich-text control in memory, for tests: the text with CR LF breaks, the
// selection, and the colour of every character. It raises Change and
// SelChange on every write, as the real control does, and keeps a log of its
// colour writes so that a test can count paints.
class MemoryRichTextBox : public RichTextBox {
  public:
    struct ColorWrite {
        int32_t Start;
        int32_t Length;
        uint32_t Color;
        // The length asked for, before the control clipped it to the text.
        int32_t Requested;
    };

    QString Text() const override { return Text_; }
    void SetText(const QString& Text) override;
    int32_t TextLength() const override { return static_cast<int32_t>(Text_.size()); }
    QString TextMid(int32_t Start, int32_t Count) const override;
    int32_t SelStart() const override { return SelStart_; }
    void SetSelStart(int32_t Start) override;
    int32_t SelLength() const override { return SelLength_; }
    void SetSelLength(int32_t Length) override;
    void SetSelColor(uint32_t Rgb) override;
    QString SelText() const override { return Text_.mid(SelStart_, SelLength_); }
    void SetSelText(const QString& Text) override;
    void SetBackColor(uint32_t Rgb) override { BackColor = Rgb; }
    int32_t GetLineFromChar(int32_t Position) const override;
    int32_t Find(const QString& String, int32_t Start, int32_t End, int32_t Options) override;
    void SetVisible(bool IsVisible) override;
    // A group's text writes count as one step of undo.
    void BeginEditGroup() override;
    void EndEditGroup() override;
    void SetMousePointer(int32_t Pointer) override {
        MousePointer = Pointer;
        Pointers.push_back(Pointer);
    }
    void SetSelFontName(const QString& Name) override { FontName = Name; }
    void SetSelFontSize(int32_t Size) override { FontSize = Size; }
    void SetSelTabCount(int32_t Count) override;
    int32_t SelTabCount() const override { return static_cast<int32_t>(Tabs.size()); }
    void SetSelTabs(int32_t Index, int32_t Position) override;
    int32_t Width() const override { return Width_; }
    int32_t Height() const override { return Height_; }
    void Resize(int32_t NewWidth, int32_t NewHeight) override {
        Width_ = NewWidth;
        Height_ = NewHeight;
    }

    // Types Text at the caret as a user would: over the selection, in the
    // colour last set for an empty selection.
    void Type(const QString& Text);
    // The colour of every character, as text: one letter per character, from
    // Names (colour -> letter); '?' for a colour without a name. CR and LF
    // show as '|'.
    QString ColorMap(const QList<QPair<uint32_t, QChar>>& Names) const;
    uint32_t ColorAt(int32_t Position) const { return Colors_[Position]; }

    uint32_t BackColor = 0;
    uint32_t TypingColor = 0;
    bool Visible = true;
    int32_t VisibleChanges = 0;
    int32_t MousePointer = 0;
    // Every pointer set, in order.
    std::vector<int32_t> Pointers;
    // Colours of text written while the wait pointer showed.
    int32_t ColorWritesUnderWaitPointer = 0;
    QString FontName;
    int32_t FontSize = 0;
    std::vector<int32_t> Tabs;
    std::vector<ColorWrite> ColorWrites;
    int32_t ChangeEvents = 0;
    int32_t HideCount = 0;
    mutable int32_t LineQueries = 0;
    int32_t SelChangeEvents = 0;
    // Steps of undo the text writes since the last SetText would take; the
    // depth of the open group.
    int32_t UndoSteps = 0;
    int32_t GroupDepth = 0;

  private:
    void Select(int32_t Start, int32_t Length);
    void Replace(int32_t Start, int32_t Length, const QString& Text, uint32_t Color);

    QString Text_;
    std::vector<uint32_t> Colors_;
    int32_t SelStart_ = 0;
    int32_t SelLength_ = 0;
    int32_t RequestedLength_ = 0;
    int32_t Width_ = 0;
    int32_t Height_ = 0;
    bool GroupHasEdit_ = false;
};
