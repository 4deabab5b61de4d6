#include "editor/PlainTextEditRichTextBox.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTimer>
#include <algorithm>

namespace {
constexpr QChar ParagraphSeparator(0x2029);

QString ToDocumentText(QString Text) {
    Text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return Text;
}

QString FromSelectedText(QString Text) {
    Text.replace(ParagraphSeparator, QStringLiteral("\r\n"));
    return Text;
}

// Whether inserting the text makes a new block: the characters that do.
bool StartsALine(const QString& Text) {
    return std::any_of(Text.begin(), Text.end(), [](QChar Character) {
        return Character == QLatin1Char('\n') || Character == QLatin1Char('\r') ||
               Character == ParagraphSeparator || Character == QChar(0xFDD0) ||
               Character == QChar(0xFDD1);
    });
}

uint32_t RgbOf(const QTextCharFormat& Format) {
    return static_cast<uint32_t>(Format.foreground().color().rgb()) & 0xFFFFFFu;
}
}  // namespace

PlainTextEditRichTextBox::PlainTextEditRichTextBox(QPlainTextEdit* Editor)
    : QObject(Editor), Editor_(Editor) {
    Editor_->setLineWrapMode(QPlainTextEdit::NoWrap);
    Editor_->setUndoRedoEnabled(true);
    connect(Editor_->document(), &QTextDocument::contentsChange, this,
            &PlainTextEditRichTextBox::OnContentsChange);
    connect(Editor_, &QPlainTextEdit::cursorPositionChanged, this,
            &PlainTextEditRichTextBox::OnSelectionMoved);
    connect(Editor_, &QPlainTextEdit::selectionChanged, this,
            &PlainTextEditRichTextBox::OnSelectionMoved);
}

// ---- Positions -------------------------------------------------------------

PlainTextEditRichTextBox::Location PlainTextEditRichTextBox::RememberLine(const QTextBlock& Block,
                                                                          int32_t CrlfStart,
                                                                          int Number) const {
    if (Cache_[0].Valid && Cache_[0].At.Block != Block) {
        Cache_[1] = Cache_[0];
    }
    CachedLine& Line = Cache_[0];
    const bool IsLast = !Block.next().isValid();
    Line.At =
        Location{Block, CrlfStart, Number >= 0 ? Number : Block.blockNumber(), Block.length()};
    Line.CrlfEnd = CrlfStart + Line.At.Length + (IsLast ? 0 : 1);
    Line.IsLast = IsLast;
    Line.Valid = true;
    LastBlock_ = Block;
    return Line.At;
}

PlainTextEditRichTextBox::Location PlainTextEditRichTextBox::BlockAt(int32_t Crlf) const {
    for (const CachedLine& Line : Cache_) {
        if (Line.HoldsCrlf(Crlf)) {
            return Line.At;
        }
    }
    // Most questions are about the line of the last one, or a neighbour.
    auto Holds = [Crlf](const QTextBlock& Block, int32_t& Start) {
        if (!Block.isValid()) {
            return false;
        }
        Start = Block.position() + Block.blockNumber();
        const int32_t End = Start + Block.length() + (Block.next().isValid() ? 1 : 0);
        return Crlf >= Start && (Crlf < End || !Block.next().isValid());
    };
    int32_t Start = 0;
    for (const QTextBlock& Near :
         {LastBlock_, LastBlock_.isValid() ? LastBlock_.previous() : QTextBlock(),
          LastBlock_.isValid() ? LastBlock_.next() : QTextBlock()}) {
        if (Holds(Near, Start)) {
            return RememberLine(Near, Start);
        }
    }
    const QTextDocument* Doc = Editor_->document();
    int Low = 0;
    int High = Doc->blockCount() - 1;
    // The last block whose CR LF start is at or before the position.
    while (Low < High) {
        const int Middle = (Low + High + 1) / 2;
        const QTextBlock Block = Doc->findBlockByNumber(Middle);
        if (Block.position() + Middle <= Crlf) {
            Low = Middle;
        } else {
            High = Middle - 1;
        }
    }
    const QTextBlock Found = Doc->findBlockByNumber(Low);
    return RememberLine(Found, Found.position() + Low, Low);
}

PlainTextEditRichTextBox::Location PlainTextEditRichTextBox::BlockOfQt(int Qt) const {
    for (const CachedLine& Line : Cache_) {
        if (Line.HoldsQt(Qt)) {
            return Line.At;
        }
    }
    const QTextBlock Block = Editor_->document()->findBlock(Qt);
    if (!Block.isValid()) {
        return Location{};
    }
    const int Number = Block.blockNumber();
    return RememberLine(Block, Block.position() + Number, Number);
}

int PlainTextEditRichTextBox::QtPosition(int32_t Crlf) const {
    if (Crlf <= 0) {
        return 0;
    }
    const Location At = BlockAt(Crlf);
    const int TextLength = At.Length - 1;
    const int Offset = Crlf - At.CrlfStart;
    if (Offset <= TextLength) {
        return At.QtStart() + Offset;
    }
    // The LF of a break, or beyond the text: the start of the next line.
    const int End = Editor_->document()->characterCount() - 1;
    return std::min(At.QtStart() + TextLength + 1, End);
}

int32_t PlainTextEditRichTextBox::CrlfPosition(int Qt) const {
    return Qt + std::max(0, BlockOfQt(Qt).Number);
}

int32_t PlainTextEditRichTextBox::TextLength() const {
    const QTextDocument* Doc = Editor_->document();
    return Doc->characterCount() - 1 + (Doc->blockCount() - 1);
}

QString PlainTextEditRichTextBox::Text() const { return TextMid(0, TextLength()); }

QString PlainTextEditRichTextBox::TextMid(int32_t Start, int32_t Count) const {
    QString Result;
    if (Start < 0 || Count <= 0) {
        return Result;
    }
    Result.reserve(Count);
    Location At = BlockAt(Start);
    int Skip = Start - At.CrlfStart;
    for (QTextBlock Block = At.Block; Block.isValid() && Result.size() < Count;
         Block = Block.next()) {
        QString Line = Block.text();
        if (Block.next().isValid()) {
            Line += QStringLiteral("\r\n");
        }
        if (Skip > 0) {
            Line.remove(0, std::min<qsizetype>(Skip, Line.size()));
            Skip = 0;
        }
        Result += Line.left(Count - Result.size());
    }
    return Result;
}

int32_t PlainTextEditRichTextBox::GetLineFromChar(int32_t Position) const {
    return BlockAt(std::max(0, Position)).Number;
}

// ---- Text and selection ----------------------------------------------------

void PlainTextEditRichTextBox::SetText(const QString& Text) {
    ForgetCachedLine();
    OwnWrite_ = true;
    Editor_->setPlainText(ToDocumentText(Text));
    OwnWrite_ = false;
    QTextCursor Cursor = Editor_->textCursor();
    Cursor.setPosition(0);
    Editor_->setTextCursor(Cursor);
    RaisePending();
}

PlainTextEditRichTextBox::Selection PlainTextEditRichTextBox::CurrentSelection() const {
    if (ShadowInForce()) {
        return Shadow_;
    }
    const QTextCursor Cursor = Editor_->textCursor();
    return Selection{Cursor.anchor(), Cursor.position()};
}

QTextCursor PlainTextEditRichTextBox::CursorOf(Selection Of) const {
    QTextCursor Cursor(Editor_->document());
    Cursor.setPosition(Of.Anchor);
    Cursor.setPosition(Of.Position, QTextCursor::KeepAnchor);
    return Cursor;
}

void PlainTextEditRichTextBox::SetCurrentSelection(Selection NewSelection) {
    if (!ShadowInForce()) {
        Editor_->setTextCursor(CursorOf(NewSelection));
        return;
    }
    const bool Moved =
        NewSelection.Anchor != Shadow_.Anchor || NewSelection.Position != Shadow_.Position;
    Shadow_ = NewSelection;
    if (Moved) {
        RaiseSelChange();
    }
}

int32_t PlainTextEditRichTextBox::SelStart() const {
    return CrlfPosition(CurrentSelection().Start());
}

int32_t PlainTextEditRichTextBox::SelLength() const {
    const Selection Current = CurrentSelection();
    return CrlfPosition(Current.End()) - CrlfPosition(Current.Start());
}

void PlainTextEditRichTextBox::SetSelStart(int32_t Start) {
    const int Position = QtPosition(std::max(0, Start));
    SetCurrentSelection(Selection{Position, Position});
    RaisePending();
}

void PlainTextEditRichTextBox::SetSelLength(int32_t Length) {
    const int Start = CurrentSelection().Start();
    const int End = QtPosition(CrlfPosition(Start) + std::max(0, Length));
    SetCurrentSelection(Selection{Start, End});
    RaisePending();
}

QString PlainTextEditRichTextBox::SelText() const {
    return FromSelectedText(CursorOf(CurrentSelection()).selectedText());
}

void PlainTextEditRichTextBox::SetSelText(const QString& Text) {
    const Selection Replaced = CurrentSelection();
    QTextCursor Cursor = CursorOf(Replaced);
    const QString Inserted = ToDocumentText(Text);
    // An edit inside the line last asked about, with no break in what comes
    // in, leaves that line where it was, only longer or shorter.
    int Edited = -1;
    for (int Index = 0; Index < 2; ++Index) {
        if (Cache_[Index].HoldsQt(Replaced.Start()) &&
            Replaced.End() < Cache_[Index].At.QtStart() + Cache_[Index].At.Length &&
            !StartsALine(Inserted)) {
            Edited = Index;
        }
    }
    CachedLine Lines[2] = {Cache_[0], Cache_[1]};
    OwnWrite_ = true;
    Cursor.insertText(Inserted);
    OwnWrite_ = false;
    ForgetCachedLine();
    if (Edited >= 0) {
        // The edited line grows or shrinks; a line behind it moves with it.
        const int Change = static_cast<int>(Inserted.size()) - (Replaced.End() - Replaced.Start());
        const int32_t EditedStart = Lines[Edited].At.CrlfStart;
        for (CachedLine& Line : Lines) {
            if (!Line.Valid) {
                continue;
            }
            if (Line.At.CrlfStart == EditedStart) {
                Line.At.Length += Change;
            } else if (Line.At.CrlfStart > EditedStart) {
                Line.At.CrlfStart += Change;
            }
            if (Line.At.CrlfStart >= EditedStart) {
                Line.CrlfEnd += Change;
            }
        }
        Cache_[0] = Lines[0];
        Cache_[1] = Lines[1];
    }
    if (Group_ > 0) {
        // The document tells of a group's edits only at its end; the
        // control's Change is raised for each, as it would be without.
        ChangePending_ = true;
    }
    SetCurrentSelection(Selection{Cursor.anchor(), Cursor.position()});
    RaisePending();
}

// ---- Colour ----------------------------------------------------------------

const QTextCharFormat& PlainTextEditRichTextBox::FormatOf(uint32_t Rgb) {
    auto Found = Formats_.find(Rgb);
    if (Found == Formats_.end()) {
        QTextCharFormat Format;
        Format.setForeground(QColor::fromRgb(Rgb));
        Found = Formats_.insert(Rgb, Format);
    }
    return Found.value();
}

void PlainTextEditRichTextBox::ApplyColor(const QTextBlock& Block, int BlockStart, int From, int To,
                                          uint32_t Rgb) {
    QTextLayout* Layout = Block.layout();
    const QList<QTextLayout::FormatRange> Old = Layout->formats();
    QList<QTextLayout::FormatRange> New;
    New.reserve(Old.size() + 2);
    auto Append = [&New](int Start, int Length, const QTextCharFormat& Format) {
        if (Length <= 0) {
            return;
        }
        if (!New.isEmpty() && New.back().start + New.back().length == Start &&
            New.back().format == Format) {
            New.back().length += Length;
            return;
        }
        New.append(QTextLayout::FormatRange{Start, Length, Format});
    };
    bool Placed = false;
    // Ranges past the line's end were left by edits made in a group, whose
    // lines are coloured whole after each edit: they colour nothing.
    const int TextEnd = Block.length() - 1;
    for (const QTextLayout::FormatRange& Range : Old) {
        if (Range.start >= TextEnd) {
            continue;
        }
        const int RangeEnd = std::min(Range.start + Range.length, TextEnd);
        if (RangeEnd <= From) {
            Append(Range.start, RangeEnd - Range.start, Range.format);
            continue;
        }
        if (!Placed && Range.start >= From) {
            Append(From, To - From, FormatOf(Rgb));
            Placed = true;
        }
        if (Range.start < From) {
            Append(Range.start, From - Range.start, Range.format);
            Append(From, To - From, FormatOf(Rgb));
            Placed = true;
        }
        if (RangeEnd > To) {
            const int Start = std::max(Range.start, To);
            Append(Start, RangeEnd - Start, Range.format);
        }
    }
    if (!Placed) {
        Append(From, To - From, FormatOf(Rgb));
    }
    Layout->setFormats(New);
    MarkDirty(BlockStart, BlockStart + Block.length());
}

void PlainTextEditRichTextBox::SetSelColor(uint32_t Rgb) {
    const Selection Current = CurrentSelection();
    if (Current.Start() == Current.End()) {
        // What is typed next: text that carries no range shows the text colour.
        // A palette change repaints the whole editor: only when the colour differs.
        TypingColor_ = Rgb;
        const QColor Color = QColor::fromRgb(Rgb);
        if (Editor_->palette().color(QPalette::Text) != Color) {
            QPalette Palette = Editor_->palette();
            Palette.setColor(QPalette::Text, Color);
            Editor_->setPalette(Palette);
        }
        return;
    }
    const int Start = Current.Start();
    const int End = Current.End();
    const Location First = BlockOfQt(Start);
    int BlockStart = First.QtStart();
    for (QTextBlock Block = First.Block; Block.isValid() && BlockStart < End;
         Block = Block.next()) {
        const int Length = Block.length();
        const int From = std::max(0, Start - BlockStart);
        const int To = std::min(Length - 1, End - BlockStart);
        if (To > From) {
            ApplyColor(Block, BlockStart, From, To, Rgb);
        }
        BlockStart += Length;
    }
    if (!ShadowInForce()) {
        FlushDirty();
    }
}

uint32_t PlainTextEditRichTextBox::ColorAt(int32_t Position) const {
    const int Qt = QtPosition(Position);
    const Location At = BlockOfQt(Qt);
    const QTextBlock& Block = At.Block;
    const int Offset = Qt - At.QtStart();
    for (const QTextLayout::FormatRange& Range : Block.layout()->formats()) {
        if (Offset >= Range.start && Offset < Range.start + Range.length) {
            return RgbOf(Range.format);
        }
    }
    return static_cast<uint32_t>(Editor_->palette().color(QPalette::Text).rgb()) & 0xFFFFFFu;
}

void PlainTextEditRichTextBox::MarkDirty(int From, int To) {
    DirtyFrom_ = DirtyFrom_ < 0 ? From : std::min(DirtyFrom_, From);
    DirtyTo_ = std::max(DirtyTo_, To);
}

void PlainTextEditRichTextBox::FlushDirty() {
    if (DirtyFrom_ < 0) {
        return;
    }
    QTextDocument* Doc = Editor_->document();
    const int End = std::min(DirtyTo_, Doc->characterCount());
    Doc->markContentsDirty(DirtyFrom_, std::max(0, End - DirtyFrom_));
    DirtyFrom_ = -1;
    DirtyTo_ = -1;
}

void PlainTextEditRichTextBox::SetBackColor(uint32_t Rgb) {
    QPalette Palette = Editor_->palette();
    Palette.setColor(QPalette::Base, QColor::fromRgb(Rgb));
    Editor_->setPalette(Palette);
}

void PlainTextEditRichTextBox::SetVisible(bool Visible) {
    // Hiding would take the focus away; holding back the repaint is what
    // keeps a recolouring from flickering.
    if (Visible == !Hidden_) {
        return;
    }
    if (!Visible) {
        HoldView();
        Hidden_ = true;
        return;
    }
    Hidden_ = false;
    if (Group_ == 0) {
        ShowView();
    }
}

void PlainTextEditRichTextBox::HoldView() {
    if (ShadowInForce()) {
        return;
    }
    Shadow_ = CurrentSelection();
    Editor_->viewport()->setUpdatesEnabled(false);
}

void PlainTextEditRichTextBox::ShowView() {
    FlushDirty();
    // The selection the hidden work left goes to the editor now, once.
    const QTextCursor Current = Editor_->textCursor();
    if (Shadow_.Anchor != Current.anchor() || Shadow_.Position != Current.position()) {
        Editor_->setTextCursor(CursorOf(Shadow_));
    }
    Editor_->viewport()->setUpdatesEnabled(true);
}

void PlainTextEditRichTextBox::BeginEditGroup() {
    if (Group_++ > 0) {
        return;
    }
    HoldView();
    // One edit block: one step of undo, and the document tells its layout
    // and its listeners of the whole once, when the block ends.
    GroupCursor_ = QTextCursor(Editor_->document());
    GroupCursor_.beginEditBlock();
}

void PlainTextEditRichTextBox::EndEditGroup() {
    if (Group_ == 0 || --Group_ > 0) {
        return;
    }
    // The edits were coloured as they were made; what the document tells
    // now of them all at once is no edit of the user's.
    EndingGroup_ = true;
    OwnWrite_ = true;
    GroupCursor_.endEditBlock();
    OwnWrite_ = false;
    EndingGroup_ = false;
    GroupCursor_ = QTextCursor();
    ForgetCachedLine();
    if (!Hidden_) {
        ShowView();
    }
    ShowPointer();
    RaisePending();
}

void PlainTextEditRichTextBox::SetMousePointer(int32_t Pointer) {
    Pointer_ = Pointer;
    // A group's many short waits show as none: the pointer is set at its end.
    if (Group_ == 0) {
        ShowPointer();
    }
}

void PlainTextEditRichTextBox::ShowPointer() {
    if (Pointer_ == ShownPointer_) {
        return;
    }
    ShownPointer_ = Pointer_;
    if (Pointer_ == rtfWaitPointer) {
        Editor_->viewport()->setCursor(Qt::WaitCursor);
    } else {
        Editor_->viewport()->setCursor(Qt::IBeamCursor);
    }
}

// ---- Edits the editor made by itself ---------------------------------------

void PlainTextEditRichTextBox::OnContentsChange(int Position, int Removed, int Added) {
    ForgetCachedLine();
    if (EndingGroup_) {
        return;
    }
    ChangePending_ = true;
    if (!OwnWrite_ && !RaiseScheduled_) {
        // An edit of the editor's own hand (a key, undo, a drop): its events
        // are raised once it has ended, the caret's move first.
        RaiseScheduled_ = true;
        QTimer::singleShot(0, this, [this] {
            RaiseScheduled_ = false;
            RaisePending();
        });
    }
    const QTextDocument* Doc = Editor_->document();
    const QTextBlock First = Doc->findBlock(Position);
    const QTextBlock Last = Doc->findBlock(Position + Added);
    if (First == Last && Added + Removed > 0) {
        // Within one line: the ranges after the edit move with the text and
        // what was inserted takes the typing colour.
        QTextLayout* Layout = First.layout();
        const int Offset = Position - First.position();
        QList<QTextLayout::FormatRange> Moved;
        for (QTextLayout::FormatRange Range : Layout->formats()) {
            const int RangeEnd = Range.start + Range.length;
            if (RangeEnd <= Offset) {
                Moved.append(Range);
                continue;
            }
            if (Range.start < Offset) {
                QTextLayout::FormatRange Head = Range;
                Head.length = Offset - Range.start;
                Moved.append(Head);
            }
            const int TailStart = std::max(Range.start, Offset + Removed);
            if (RangeEnd > TailStart) {
                QTextLayout::FormatRange Tail = Range;
                Tail.start = TailStart - Removed + Added;
                Tail.length = RangeEnd - TailStart;
                Moved.append(Tail);
            }
        }
        if (Added > 0) {
            QTextLayout::FormatRange Inserted{Offset, Added, FormatOf(TypingColor_)};
            auto At = std::find_if(Moved.begin(), Moved.end(),
                                   [Offset](const auto& Range) { return Range.start >= Offset; });
            Moved.insert(At, Inserted);
        }
        // Neighbours of one colour become one range again, so typing never
        // splits a line into more runs than it has colours.
        QList<QTextLayout::FormatRange> Merged;
        Merged.reserve(Moved.size());
        for (const QTextLayout::FormatRange& Range : Moved) {
            if (!Merged.isEmpty() && Merged.back().start + Merged.back().length == Range.start &&
                Merged.back().format == Range.format) {
                Merged.back().length += Range.length;
            } else {
                Merged.append(Range);
            }
        }
        Layout->setFormats(Merged);
    } else if (!OwnWrite_ && Added > 0) {
        // Lines came in by the editor's own hand: they still need colours.
        InsertedFrom_ = InsertedFrom_ < 0 ? Position : std::min(InsertedFrom_, Position);
        InsertedTo_ = std::max(InsertedTo_, Position + Added);
    }
}

void PlainTextEditRichTextBox::OnSelectionMoved() {
    const QTextCursor Cursor = Editor_->textCursor();
    if (Cursor.anchor() == LastAnchor_ && Cursor.position() == LastPosition_) {
        return;
    }
    LastAnchor_ = Cursor.anchor();
    LastPosition_ = Cursor.position();
    SelChangePending_ = true;
    // Inside an edit, the events wait for its end.
    if (!ChangePending_ && !OwnWrite_) {
        RaisePending();
    }
}

void PlainTextEditRichTextBox::RaisePending() {
    // Taken all at once: the handlers write the selection, which raises
    // events of its own, and must not consume what is still to be told.
    const bool SelChangeDue = SelChangePending_;
    const bool ChangeDue = ChangePending_;
    const int From = InsertedFrom_;
    const int To = InsertedTo_;
    SelChangePending_ = false;
    ChangePending_ = false;
    InsertedFrom_ = -1;
    InsertedTo_ = -1;
    if (SelChangeDue) {
        RaiseSelChange();
    }
    if (ChangeDue) {
        RaiseChange();
    }
    if (From >= 0 && LinesInserted) {
        // As a paste tells it: the caret before and after the inserted text.
        LinesInserted(CrlfPosition(From), CrlfPosition(To));
    }
}

void PlainTextEditRichTextBox::EditEnded() { RaisePending(); }

// ---- Find, fonts, tabs, size -----------------------------------------------

int32_t PlainTextEditRichTextBox::Find(const QString& String, int32_t Start, int32_t End,
                                       int32_t Options) {
    if (End <= Start || Start < 0 || String.isEmpty()) {
        return -1;
    }
    int32_t Found = -1;
    if (String == QStringLiteral("\r")) {
        // The end of a line, from the blocks.
        const Location At = BlockAt(Start);
        int32_t LineStart = At.CrlfStart;
        for (QTextBlock Block = At.Block; Block.isValid() && Block.next().isValid();
             Block = Block.next()) {
            const int32_t Cr = LineStart + Block.length() - 1;
            if (Cr >= Start) {
                Found = Cr;
                break;
            }
            LineStart += Block.length() + 1;
        }
        if (Found > End) {
            Found = -1;
        }
    } else {
        Found = FindInLines(String, Start, End, Options);
    }
    if (Found >= 0 && (Options & rtfNoHighlight) == 0) {
        SetSelStart(Found);
        SetSelLength(static_cast<int32_t>(String.size()));
    }
    return Found;
}

int32_t PlainTextEditRichTextBox::FindInLines(const QString& String, int32_t Start, int32_t End,
                                              int32_t Options) const {
    const Qt::CaseSensitivity Case =
        (Options & rtfMatchCase) != 0 ? Qt::CaseSensitive : Qt::CaseInsensitive;
    const bool WholeWord = (Options & rtfWholeWord) != 0;
    const int32_t Length = static_cast<int32_t>(String.size());
    // A word's neighbours are those in the text, whatever the range.
    auto IsWordCharacter = [](QChar Character) { return Character.isLetterOrNumber(); };
    if (String.contains(QLatin1Char('\r')) || String.contains(QLatin1Char('\n'))) {
        // Across line breaks: in the text itself, which only such a search pays for.
        const QString Text = this->Text();
        qsizetype At = Text.indexOf(String, Start, Case);
        for (; At >= 0 && At + Length - 1 <= End; At = Text.indexOf(String, At + 1, Case)) {
            const bool WordStart = At == 0 || !IsWordCharacter(Text[At - 1]);
            const bool WordEnd = At + Length >= Text.size() || !IsWordCharacter(Text[At + Length]);
            if (!WholeWord || (WordStart && WordEnd)) {
                return static_cast<int32_t>(At);
            }
        }
        return -1;
    }
    // Within each line: a match ends before its line's CR.
    const Location First = BlockAt(Start);
    int32_t LineStart = First.CrlfStart;
    int Number = First.Number;
    for (QTextBlock Block = First.Block; Block.isValid() && LineStart + Length - 1 <= End;
         Block = Block.next()) {
        const QString Line = Block.text();
        qsizetype At = Line.indexOf(String, std::max(0, Start - LineStart), Case);
        for (; At >= 0; At = Line.indexOf(String, At + 1, Case)) {
            if (LineStart + At + Length - 1 > End) {
                return -1;
            }
            const bool WordStart = At == 0 || !IsWordCharacter(Line[At - 1]);
            const bool WordEnd = At + Length >= Line.size() || !IsWordCharacter(Line[At + Length]);
            if (!WholeWord || (WordStart && WordEnd)) {
                // The selection of the match asks about this line next.
                RememberLine(Block, LineStart, Number);
                return LineStart + static_cast<int32_t>(At);
            }
        }
        LineStart += static_cast<int32_t>(Block.length()) + 1;
        ++Number;
    }
    return -1;
}

void PlainTextEditRichTextBox::SetSelFontName(const QString& Name) {
    QFont Font = Editor_->font();
    Font.setFamily(Name);
    Font.setStyleHint(QFont::TypeWriter);
    Editor_->setFont(Font);
}

void PlainTextEditRichTextBox::SetSelFontSize(int32_t Size) {
    QFont Font = Editor_->font();
    Font.setPointSize(Size);
    Editor_->setFont(Font);
}

void PlainTextEditRichTextBox::SetSelTabCount(int32_t Count) {
    Tabs_.assign(std::max(0, Count), 0);
}

void PlainTextEditRichTextBox::SetSelTabs(int32_t Index, int32_t Position) {
    if (Index < 0 || Index >= static_cast<int32_t>(Tabs_.size())) {
        return;
    }
    Tabs_[Index] = Position;
    // The stops are evenly spaced; the width of one is taken in characters.
    if (Index == 1 && Position > 0) {
        const qreal Space = Editor_->fontMetrics().horizontalAdvance(QLatin1Char(' '));
        Editor_->setTabStopDistance(Space * Position);
    }
}

int32_t PlainTextEditRichTextBox::Width() const { return Editor_->width(); }
int32_t PlainTextEditRichTextBox::Height() const { return Editor_->height(); }
void PlainTextEditRichTextBox::Resize(int32_t NewWidth, int32_t NewHeight) {
    Editor_->resize(NewWidth, NewHeight);
}
