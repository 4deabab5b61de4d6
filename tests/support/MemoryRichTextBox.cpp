#include "support/MemoryRichTextBox.h"

#include <algorithm>

void MemoryRichTextBox::Select(int32_t Start, int32_t Length) {
    const int32_t Size = TextLength();
    Start = std::clamp(Start, 0, Size);
    Length = std::clamp(Length, 0, Size - Start);
    if (Start == SelStart_ && Length == SelLength_) {
        return;
    }
    SelStart_ = Start;
    SelLength_ = Length;
    ++SelChangeEvents;
    RaiseSelChange();
}

void MemoryRichTextBox::Replace(int32_t Start, int32_t Length, const QString& Text,
                                uint32_t Color) {
    Text_.replace(Start, Length, Text);
    Colors_.erase(Colors_.begin() + Start, Colors_.begin() + Start + Length);
    Colors_.insert(Colors_.begin() + Start, Text.size(), Color);
    SelStart_ = Start + static_cast<int32_t>(Text.size());
    SelLength_ = 0;
    // The caret's move is told before the change, so that a line the caret
    // leaves is coloured before the new one turns neutral.
    ++SelChangeEvents;
    RaiseSelChange();
    ++ChangeEvents;
    RaiseChange();
}

void MemoryRichTextBox::SetText(const QString& Text) {
    Text_.clear();
    Colors_.clear();
    SelStart_ = 0;
    SelLength_ = 0;
    Replace(0, 0, Text, TypingColor);
    Select(0, 0);
    SelStart_ = 0;
    UndoSteps = 0;
}

QString MemoryRichTextBox::TextMid(int32_t Start, int32_t Count) const {
    return Start < 0 ? QString() : Text_.mid(Start, Count);
}

void MemoryRichTextBox::SetSelStart(int32_t Start) {
    RequestedLength_ = 0;
    Select(Start, 0);
}

void MemoryRichTextBox::SetSelLength(int32_t Length) {
    RequestedLength_ = Length;
    Select(SelStart_, Length);
}

void MemoryRichTextBox::SetSelColor(uint32_t Rgb) {
    ColorWrites.push_back({SelStart_, SelLength_, Rgb, RequestedLength_});
    if (SelLength_ == 0) {
        TypingColor = Rgb;
        return;
    }
    std::fill(Colors_.begin() + SelStart_, Colors_.begin() + SelStart_ + SelLength_, Rgb);
    if (MousePointer == rtfWaitPointer) {
        ++ColorWritesUnderWaitPointer;
    }
    ++ChangeEvents;
    RaiseChange();
}

void MemoryRichTextBox::SetSelText(const QString& Text) {
    if (GroupDepth == 0 || !GroupHasEdit_) {
        ++UndoSteps;
        GroupHasEdit_ = GroupDepth > 0;
    }
    Replace(SelStart_, SelLength_, Text, TypingColor);
}

void MemoryRichTextBox::BeginEditGroup() {
    if (GroupDepth++ == 0) {
        GroupHasEdit_ = false;
    }
}

void MemoryRichTextBox::EndEditGroup() { GroupDepth = std::max(0, GroupDepth - 1); }

void MemoryRichTextBox::Type(const QString& Text) { SetSelText(Text); }

int32_t MemoryRichTextBox::GetLineFromChar(int32_t Position) const {
    ++LineQueries;
    const int32_t Limit = std::clamp(Position, 0, TextLength());
    int32_t Line = 0;
    for (int32_t Index = 0; Index < Limit; ++Index) {
        if (Text_[Index] == QLatin1Char('\n')) {
            ++Line;
        }
    }
    return Line;
}

int32_t MemoryRichTextBox::Find(const QString& String, int32_t Start, int32_t End,
                                int32_t Options) {
    if (End <= Start || Start < 0 || String.isEmpty()) {
        return -1;
    }
    const Qt::CaseSensitivity Case =
        (Options & rtfMatchCase) != 0 ? Qt::CaseSensitive : Qt::CaseInsensitive;
    qsizetype Found = Text_.indexOf(String, Start, Case);
    while (Found >= 0 && Found + String.size() - 1 <= End) {
        const bool WordStart = Found == 0 || !Text_[Found - 1].isLetterOrNumber();
        const qsizetype After = Found + String.size();
        const bool WordEnd = After >= Text_.size() || !Text_[After].isLetterOrNumber();
        if ((Options & rtfWholeWord) == 0 || (WordStart && WordEnd)) {
            if ((Options & rtfNoHighlight) == 0) {
                Select(static_cast<int32_t>(Found), static_cast<int32_t>(String.size()));
            }
            return static_cast<int32_t>(Found);
        }
        Found = Text_.indexOf(String, Found + 1, Case);
    }
    return -1;
}

void MemoryRichTextBox::SetVisible(bool IsVisible) {
    if (IsVisible != Visible) {
        ++VisibleChanges;
    }
    if (!IsVisible) {
        ++HideCount;
    }
    Visible = IsVisible;
}

void MemoryRichTextBox::SetSelTabCount(int32_t Count) { Tabs.assign(std::max(0, Count), 0); }

void MemoryRichTextBox::SetSelTabs(int32_t Index, int32_t Position) {
    if (Index >= 0 && Index < static_cast<int32_t>(Tabs.size())) {
        Tabs[Index] = Position;
    }
}

QString MemoryRichTextBox::ColorMap(const QList<QPair<uint32_t, QChar>>& Names) const {
    QString Map;
    for (int32_t Index = 0; Index < TextLength(); ++Index) {
        if (Text_[Index] == QLatin1Char('\r') || Text_[Index] == QLatin1Char('\n')) {
            Map += QLatin1Char('|');
            continue;
        }
        QChar Letter = QLatin1Char('?');
        for (const auto& Name : Names) {
            if (Name.first == Colors_[Index]) {
                Letter = Name.second;
                break;
            }
        }
        Map += Letter;
    }
    return Map;
}
