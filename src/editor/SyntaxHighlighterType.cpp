#include "editor/SyntaxHighlighterType.h"

#include <QByteArray>
#include <stdexcept>

#include "frame/ErrorDisplay.h"

namespace {
constexpr char CR = 13;
constexpr char DoubleQuote = 34;
constexpr char Apostrophe = 39;

const uint32_t ColorTable[16] = {0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080,
                                 0x808000, 0xC0C0C0, 0x808080, 0x0000FF, 0x00FF00, 0x00FFFF,
                                 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
}  // namespace

int64_t SyntaxHighlighterType::ColorFromIndex(int32_t Index) {
    return Index >= 0 && Index <= 15 ? static_cast<int64_t>(ColorTable[Index]) : int64_t{-1};
}

void SyntaxHighlighterType::Connect(RichTextBox* NewEditBox) {
    EditBox_ = NewEditBox;
    EditBox_->SetBackColor(BackgroundColor_);
    SetNeutralSelectionColor();
}

void SyntaxHighlighterType::SetEditorColors(int32_t NewCodeColor, int32_t NewStringLiteralColor,
                                            int32_t NewCommentColor, int32_t NewBackgroundColor) {
    const int64_t Code = ColorFromIndex(NewCodeColor);
    const int64_t String = ColorFromIndex(NewStringLiteralColor);
    const int64_t Comment = ColorFromIndex(NewCommentColor);
    const int64_t Background = ColorFromIndex(NewBackgroundColor);
    // A bad index fails the conversion; the colours stay as they were.
    if (Code < 0 || String < 0 || Comment < 0 || Background < 0) {
        return;
    }
    CodeColor_ = static_cast<uint32_t>(Code);
    StringLiteralColor_ = static_cast<uint32_t>(String);
    CommentColor_ = static_cast<uint32_t>(Comment);
    BackgroundColor_ = static_cast<uint32_t>(Background);
    NeutralColor_ = CodeColor_;
    if (EditBox_ != nullptr) {
        EditBox_->SetBackColor(BackgroundColor_);
    }
    SetNeutralSelectionColor();
}

void SyntaxHighlighterType::SetNeutralSelectionColor() {
    if (EditBox_ != nullptr) {
        EditBox_->SetSelColor(NeutralColor_);
    }
}

void SyntaxHighlighterType::HighlightEntireFile() {
    HighlightSyntax(0, EditBox_->TextLength() - 1);
    EditBox_->SetVisible(true);
}

void SyntaxHighlighterType::ClearNeutralLine() {
    NeutralLineIsSet_ = false;
    NeutralLine_ = 0;
    NeutralPosition_ = 0;
}

void SyntaxHighlighterType::CancelNeutralLine() {
    if (!NeutralLineIsSet_) {
        return;
    }
    RepaintLine(NeutralPosition_, NeutralLine_, true);
    ClearNeutralLine();
}

void SyntaxHighlighterType::NeutralizeLine(int16_t CurrentLineNumber) {
    const int32_t Position = EditBox_->SelStart();
    if (CurrentLineNumber != CurrentLine_ || !NeutralLineIsSet_ ||
        CurrentLineNumber != NeutralLine_) {
        RepaintLine(Position, CurrentLineNumber, false);
    }
    NeutralLine_ = CurrentLineNumber;
    NeutralPosition_ = Position;
    NeutralLineIsSet_ = true;
    CurrentLine_ = CurrentLineNumber;
    SetNeutralSelectionColor();
}

void SyntaxHighlighterType::DeneutralizeOldLine(int16_t CurrentLineNumber) {
    if (CurrentLineNumber != CurrentLine_ && NeutralLineIsSet_ && CurrentLine_ == NeutralLine_) {
        CancelNeutralLine();
    }
    CurrentLine_ = CurrentLineNumber;
}

void SyntaxHighlighterType::AdjustColors(int32_t ModFirst, int32_t ModLast) {
    if (ModFirst > ModLast) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in SyntaxHighlighter.AdjustColors"));
        return;
    }
    const int32_t Caret = EditBox_->SelStart();
    const int32_t Length = EditBox_->TextLength();
    if (Length < 1) {
        return;
    }
    int32_t LeftMargin = 0;
    GetLeftMargin(ModFirst, LeftMargin);
    int32_t End = EditBox_->Find(QString(QChar(CR)), ModLast, Length - 1, rtfNoHighlight);
    if (End == -1) {
        End = Length - 1;
    }
    HighlightSyntax(LeftMargin, End);
    EditBox_->SetSelStart(Caret);
    EditBox_->SetVisible(true);
}

void SyntaxHighlighterType::RepaintLine(int32_t CharacterNumber, int16_t /*LineNumber*/,
                                        bool WithSyntaxColors) {
    const int32_t Length = EditBox_->TextLength();
    int32_t LeftMargin = 0;
    GetLeftMargin(CharacterNumber, LeftMargin);
    int32_t LineEnd = 0;
    if (WithSyntaxColors) {
        HighlightLine(Length, LeftMargin, LineEnd);
        return;
    }
    // A neutral line is the ordinary scan with one colour for all three classes.
    const uint32_t SavedCode = CodeColor_;
    const uint32_t SavedString = StringLiteralColor_;
    const uint32_t SavedComment = CommentColor_;
    CodeColor_ = NeutralColor_;
    StringLiteralColor_ = NeutralColor_;
    CommentColor_ = NeutralColor_;
    HighlightLine(Length, LeftMargin, LineEnd);
    CodeColor_ = SavedCode;
    StringLiteralColor_ = SavedString;
    CommentColor_ = SavedComment;
}

void SyntaxHighlighterType::HighlightLine(int32_t TextLength, int32_t LineStart, int32_t& LineEnd) {
    if (TextLength < 1) {
        LineEnd = LineStart;
        SetNeutralSelectionColor();
        return;
    }
    const int32_t Last = TextLength - 1;
    const int32_t Start = LineStart > Last ? Last : LineStart;
    const int32_t Caret = EditBox_->SelStart();
    LineEnd = EditBox_->Find(QString(QChar(CR)), Start, Last, rtfNoHighlight);
    if (LineEnd == -1) {
        LineEnd = Last;
    }
    if (LineEnd >= Start) {
        HighlightSyntax(Start, LineEnd);
    }
    EditBox_->SetSelStart(Caret);
    EditBox_->SetVisible(true);
}

void SyntaxHighlighterType::GetLeftMargin(int32_t CharacterNumber, int32_t& LeftMargin) {
    const int32_t Line = EditBox_->GetLineFromChar(CharacterNumber);
    if (Line == 0) {
        LeftMargin = 0;
        return;
    }
    // One position at a time: the cost grows with the line, not the text.
    for (int32_t Index = CharacterNumber; Index >= 0; --Index) {
        if (EditBox_->GetLineFromChar(Index) != Line) {
            LeftMargin = Index + 1;
            return;
        }
    }
    ErrorDisplay::ProbeError(QStringLiteral("Error_1 in SyntaxHighlighterType.GetLeftMargin"));
    LeftMargin = 0;
}

void SyntaxHighlighterType::Paint(int32_t Start, int32_t Length, uint32_t Color) {
    EditBox_->SetSelStart(Start);
    EditBox_->SetSelLength(Length);
    EditBox_->SetSelColor(Color);
}

void SyntaxHighlighterType::HighlightSyntax(int32_t ModFirst, int32_t ModLast) {
    EditBox_->SetVisible(false);
    const int32_t Count = ModLast - ModFirst + 1;
    if (Count < 1) {
        return;
    }
    try {
        const QString Range = EditBox_->TextMid(ModFirst, Count);
        if (Range.size() < Count) {
            throw std::out_of_range("range beyond the text");
        }
        // Only the low byte of each character is looked at.
        QByteArray Bytes(Count, '\0');
        for (int32_t Index = 0; Index < Count; ++Index) {
            Bytes[Index] = static_cast<char>(Range[Index].unicode() & 0xFF);
        }
        Paint(ModFirst, Count, CodeColor_);
        EditBox_->SetSelStart(ModFirst);
        EditBox_->SetSelLength(0);

        bool InString = false;
        bool InComment = false;
        int32_t StartOfClass = 0;
        int32_t Position = ModFirst;
        for (; Position <= ModLast; ++Position) {
            EditBox_->SetMousePointer(rtfWaitPointer);
            const char Byte = Bytes[Position - ModFirst];
            if (Byte == CR) {
                if (InComment) {
                    Paint(StartOfClass, Position - StartOfClass, CommentColor_);
                } else if (InString) {
                    Paint(StartOfClass, Position - StartOfClass, StringLiteralColor_);
                }
                InString = false;
                InComment = false;
            } else if (Byte == DoubleQuote) {
                if (!InComment) {
                    InString = !InString;
                    if (InString) {
                        StartOfClass = Position;
                    } else {
                        Paint(StartOfClass, Position - StartOfClass + 1, StringLiteralColor_);
                    }
                }
            } else if (Byte == Apostrophe) {
                if (!InString && !InComment) {
                    InComment = true;
                    StartOfClass = Position;
                }
            }
        }
        // A string left open at the end of the range takes one position more
        // than a comment would; the control clips it at the end of the text.
        if (InComment) {
            Paint(StartOfClass, Position - StartOfClass, CommentColor_);
        } else if (InString) {
            Paint(StartOfClass, Position - StartOfClass + 1, StringLiteralColor_);
        }
    } catch (...) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in SyntaxHighlighter.HighlightSyntax"));
    }
    EditBox_->SetSelStart(ModFirst);
    EditBox_->SetSelLength(0);
    SetNeutralSelectionColor();
    EditBox_->SetMousePointer(rtfDefaultPointer);
}
