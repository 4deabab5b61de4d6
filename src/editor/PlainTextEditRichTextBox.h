#pragma once

#include <QHash>
#include <QObject>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextLayout>
#include <algorithm>
#include <vector>

#include "editor/RichTextBox.h"

// The rich-text control over a QPlainTextEdit. Lines are not wrapped, so a
// display line is a source line; positions are mapped to CR LF counting
// through the document's blocks (a block's CR LF start is its position plus
// its number), never by a scan of the text. Colour is presentation, not an
// edit: it is kept as format ranges on each block's layout, the way Qt's own
// syntax highlighting does, so it never lands on the undo stack and memory
// stays flat however often a line is recoloured.
class PlainTextEditRichTextBox : public QObject, public RichTextBox {
    Q_OBJECT
  public:
    // Works on Editor, which it does not own.
    explicit PlainTextEditRichTextBox(QPlainTextEdit* Editor);

    QString Text() const override;
    void SetText(const QString& Text) override;
    int32_t TextLength() const override;
    QString TextMid(int32_t Start, int32_t Count) const override;
    int32_t SelStart() const override;
    void SetSelStart(int32_t Start) override;
    int32_t SelLength() const override;
    void SetSelLength(int32_t Length) override;
    void SetSelColor(uint32_t Rgb) override;
    QString SelText() const override;
    void SetSelText(const QString& Text) override;
    void SetBackColor(uint32_t Rgb) override;
    int32_t GetLineFromChar(int32_t Position) const override;
    int32_t Find(const QString& String, int32_t Start, int32_t End, int32_t Options) override;
    void SetVisible(bool Visible) override;
    void BeginEditGroup() override;
    void EndEditGroup() override;
    void SetMousePointer(int32_t Pointer) override;
    void SetSelFontName(const QString& Name) override;
    void SetSelFontSize(int32_t Size) override;
    void SetSelTabCount(int32_t Count) override;
    int32_t SelTabCount() const override { return static_cast<int32_t>(Tabs_.size()); }
    void SetSelTabs(int32_t Index, int32_t Position) override;
    int32_t Width() const override;
    int32_t Height() const override;
    void Resize(int32_t Width, int32_t Height) override;

    // The colour shown for the character at a CR LF position.
    uint32_t ColorAt(int32_t Position) const;
    // Tells the control's events that an edit of the editor's own (a key, a
    // drop, undo) has ended; the owner of the widget calls it after each
    // event the widget handled.
    void EditEnded();
    QPlainTextEdit* Editor() const { return Editor_; }

  private:
    // A line: its block, where it starts in CR LF positions, its number, and
    // its length in the document with the break.
    struct Location {
        QTextBlock Block;
        int32_t CrlfStart = 0;
        int Number = -1;
        int Length = 0;
        int QtStart() const { return CrlfStart - Number; }
    };
    Location BlockAt(int32_t CrlfPosition) const;
    // The line of a position in the document.
    Location BlockOfQt(int QtPosition) const;
    // Keeps a line as the one last asked about; its number found if not given.
    Location RememberLine(const QTextBlock& Block, int32_t CrlfStart, int Number = -1) const;
    // The two lines last asked about, with their CR LF spans, until the text
    // changes: the highlighter and the caret's column ask about one line a
    // character at a time, and step onto the line before it at its start.
    struct CachedLine {
        Location At;
        int32_t CrlfEnd = 0;
        bool IsLast = false;
        bool Valid = false;
        bool HoldsCrlf(int32_t Crlf) const {
            return Valid && Crlf >= At.CrlfStart && (Crlf < CrlfEnd || IsLast);
        }
        bool HoldsQt(int Qt) const {
            return Valid && Qt >= At.QtStart() && Qt < At.QtStart() + At.Length;
        }
    };
    void ForgetCachedLine() const {
        Cache_[0].Valid = false;
        Cache_[1].Valid = false;
    }
    // The first match at or behind Start that ends by End, line by line.
    int32_t FindInLines(const QString& String, int32_t Start, int32_t End, int32_t Options) const;
    int QtPosition(int32_t CrlfPosition) const;
    int32_t CrlfPosition(int QtPosition) const;
    void ApplyColor(const QTextBlock& Block, int BlockStart, int From, int To, uint32_t Rgb);
    const QTextCharFormat& FormatOf(uint32_t Rgb);
    void MarkDirty(int From, int To);
    void FlushDirty();
    void OnContentsChange(int Position, int Removed, int Added);
    void OnSelectionMoved();
    void RaisePending();
    // The selection in force, in the document's positions: the editor's own,
    // or while the control is hidden, one kept here as two numbers, so that a
    // recolouring's many selection writes neither move (and scroll) the
    // editor's caret nor lay out the lines they pass.
    struct Selection {
        int Anchor = 0;
        int Position = 0;
        int Start() const { return std::min(Anchor, Position); }
        int End() const { return std::max(Anchor, Position); }
    };
    Selection CurrentSelection() const;
    void SetCurrentSelection(Selection NewSelection);
    QTextCursor CursorOf(Selection Of) const;
    // While the control is hidden or a group of edits is open, the selection
    // is the one kept here and the view waits.
    bool ShadowInForce() const { return Hidden_ || Group_ > 0; }
    void HoldView();
    void ShowView();

    QPlainTextEdit* Editor_;
    mutable QTextBlock LastBlock_;
    mutable CachedLine Cache_[2];
    QHash<uint32_t, QTextCharFormat> Formats_;
    uint32_t TypingColor_ = 0;
    bool Hidden_ = false;
    Selection Shadow_;
    int DirtyFrom_ = -1;
    int DirtyTo_ = -1;
    int32_t Pointer_ = 0;
    int32_t ShownPointer_ = 0;
    void ShowPointer();
    std::vector<int32_t> Tabs_;
    // The selection as last told, to raise SelChange once per real move.
    int LastAnchor_ = 0;
    int LastPosition_ = 0;
    // Raising the control's events is held back until an edit has ended.
    bool ChangePending_ = false;
    bool SelChangePending_ = false;
    bool OwnWrite_ = false;
    bool RaiseScheduled_ = false;
    int InsertedFrom_ = -1;
    int InsertedTo_ = -1;
    // An open group of edits: its depth, and the cursor of its edit block.
    int Group_ = 0;
    QTextCursor GroupCursor_;
    bool EndingGroup_ = false;
};
