#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QPlainTextEdit>
#include <QTest>
#include <QTextBlock>
#include <random>

#include "editor/PlainTextEditRichTextBox.h"
#include "editor/SyntaxHighlighterType.h"
#include "support/QtPrinters.h"

namespace {

constexpr uint32_t Code = 0x000080;
constexpr uint32_t String = 0x808080;

class AdapterTest : public ::testing::Test {
  protected:
    void SetUp() override {
        Editor.resize(400, 300);
        Editor.show();
        Box = new PlainTextEditRichTextBox(&Editor);
        Box->Change = [this] { Events += QLatin1Char('C'); };
        Box->SelChange = [this] { Events += QLatin1Char('S'); };
        Box->LinesInserted = [this](int32_t First, int32_t Last) {
            Inserted.append({First, Last});
        };
    }
    void Settle() { QCoreApplication::processEvents(); }

    QPlainTextEdit Editor;
    PlainTextEditRichTextBox* Box = nullptr;
    QString Events;
    QList<QPair<int32_t, int32_t>> Inserted;
};

TEST_F(AdapterTest, PositionsCountABreakAsCrLf) {
    Box->SetText(QStringLiteral("ab\r\ncd\r\n\r\ne"));
    EXPECT_EQ(Box->TextLength(), 11);
    EXPECT_EQ(Box->Text(), QStringLiteral("ab\r\ncd\r\n\r\ne"));
    EXPECT_EQ(Box->TextMid(3, 4), QStringLiteral("\ncd\r"));
    EXPECT_EQ(Box->TextMid(9, 50), QStringLiteral("\ne"));
    const int32_t Lines[] = {0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 3};
    for (int32_t Position = 0; Position < 11; ++Position) {
        EXPECT_EQ(Box->GetLineFromChar(Position), Lines[Position]) << Position;
    }
    EXPECT_EQ(Box->GetLineFromChar(500), 3);
}

TEST_F(AdapterTest, TextWithLoneLineFeedsReadsBackWithCrLf) {
    Box->SetText(QStringLiteral("a\nb"));
    EXPECT_EQ(Box->Text(), QStringLiteral("a\r\nb"));
}

TEST_F(AdapterTest, SelectionIsInCrLfPositions) {
    Box->SetText(QStringLiteral("ab\r\ncd\r\nef"));
    Box->SetSelStart(5);
    EXPECT_EQ(Box->SelStart(), 5);
    EXPECT_EQ(Editor.textCursor().position(), 4);
    Box->SetSelStart(1);
    Box->SetSelLength(5);
    EXPECT_EQ(Box->SelText(), QStringLiteral("b\r\ncd"));
    EXPECT_EQ(Box->SelLength(), 5);
    Box->SetSelStart(3);
    EXPECT_EQ(Box->SelStart(), 4) << "the LF of a break is the start of the next line";
}

TEST_F(AdapterTest, SelTextReplacesTheSelectionWithCrLfText) {
    Box->SetText(QStringLiteral("abc"));
    Box->SetSelStart(1);
    Box->SetSelLength(1);
    Box->SetSelText(QStringLiteral("x\r\ny"));
    EXPECT_EQ(Box->Text(), QStringLiteral("ax\r\nyc"));
    EXPECT_EQ(Box->SelStart(), 5);
    EXPECT_TRUE(Inserted.isEmpty()) << "the writer colours what it wrote";
}

TEST_F(AdapterTest, FindOfTheLineEndUsesTheBlocks) {
    Box->SetText(QStringLiteral("ab\r\ncd\r\nef"));
    EXPECT_EQ(Box->Find(QStringLiteral("\r"), 0, 9, rtfNoHighlight), 2);
    EXPECT_EQ(Box->Find(QStringLiteral("\r"), 2, 9, rtfNoHighlight), 2);
    EXPECT_EQ(Box->Find(QStringLiteral("\r"), 3, 9, rtfNoHighlight), 6);
    EXPECT_EQ(Box->Find(QStringLiteral("\r"), 7, 9, rtfNoHighlight), -1);
    EXPECT_EQ(Box->Find(QStringLiteral("\r"), 3, 5, rtfNoHighlight), -1);
    EXPECT_EQ(Box->Find(QStringLiteral("\r"), 5, 5, rtfNoHighlight), -1) << "empty range";
    EXPECT_EQ(Box->Find(QStringLiteral("\r"), 6, 2, rtfNoHighlight), -1) << "inverted range";
    EXPECT_EQ(Box->SelStart(), 0);
}

TEST_F(AdapterTest, FindOfTextSelectsItUnlessTold) {
    Box->SetText(QStringLiteral("ab\r\nCD cd"));
    EXPECT_EQ(Box->Find(QStringLiteral("cd"), 0, 8, rtfNoHighlight), 4);
    EXPECT_EQ(Box->SelLength(), 0);
    EXPECT_EQ(Box->Find(QStringLiteral("cd"), 0, 8, rtfMatchCase), 7);
    EXPECT_EQ(Box->SelStart(), 7);
    EXPECT_EQ(Box->SelLength(), 2);
}

TEST_F(AdapterTest, FindOfAWholeWordLooksAtItsNeighboursInTheText) {
    Box->SetText(QStringLiteral("abcd cd\r\ncd cdx"));
    EXPECT_EQ(Box->Find(QStringLiteral("cd"), 2, 16, rtfWholeWord | rtfNoHighlight), 5)
        << "the search begins inside a word: that is no word's start";
    EXPECT_EQ(Box->Find(QStringLiteral("cd"), 6, 16, rtfWholeWord | rtfNoHighlight), 9)
        << "a line break ends a word";
    EXPECT_EQ(Box->Find(QStringLiteral("cd"), 10, 15, rtfWholeWord | rtfNoHighlight), -1)
        << "the range ends where the text goes on with the word";
    EXPECT_EQ(Box->Find(QStringLiteral("cd"), 10, 15, rtfNoHighlight), 12);
}

TEST_F(AdapterTest, FindOfTextEndsWithinTheRangeAndMayCrossALineBreak) {
    Box->SetText(QStringLiteral("ab\r\ncd\r\nab"));
    EXPECT_EQ(Box->Find(QStringLiteral("AB"), 1, 9, rtfNoHighlight), 8);
    EXPECT_EQ(Box->Find(QStringLiteral("ab"), 1, 8, rtfNoHighlight), -1);
    EXPECT_EQ(Box->Find(QStringLiteral("b\r\nc"), 0, 9, rtfNoHighlight), 1);
    EXPECT_EQ(Box->Find(QStringLiteral("d\r\nA"), 0, 9, rtfMatchCase | rtfNoHighlight), -1);
    EXPECT_EQ(Box->Find(QStringLiteral("x"), 0, 9, rtfNoHighlight), -1);
}

TEST_F(AdapterTest, AGroupOfEditsIsOneUndoStepAndTheViewTakesItUpAtItsEnd) {
    Box->SetText(QStringLiteral("a a\r\na"));
    const QTextCursor Before = Editor.textCursor();
    Events.clear();
    Box->BeginEditGroup();
    for (const int32_t At : {0, 3, 7}) {
        Box->SetSelStart(At);
        Box->SetSelLength(1);
        Box->SetSelText(QStringLiteral("bb"));
    }
    EXPECT_EQ(Box->Text(), QStringLiteral("bb bb\r\nbb"));
    EXPECT_EQ(Box->SelStart(), 9);
    EXPECT_EQ(Editor.textCursor().position(), Before.position()) << "the view waits";
    EXPECT_EQ(Events.count(QLatin1Char('C')), 3) << "each edit is a change of the control";
    Box->EndEditGroup();
    Settle();
    EXPECT_EQ(Editor.textCursor().position(), 8);
    EXPECT_EQ(Events.count(QLatin1Char('C')), 3) << "the group's end is no edit of its own";
    Editor.undo();
    EXPECT_EQ(Box->Text(), QStringLiteral("a a\r\na"));
    EXPECT_FALSE(Editor.document()->isUndoAvailable());
}

TEST_F(AdapterTest, LinesAndPositionsStayRightThroughEditsInsideAndAcrossLines) {
    // The control keeps the lines it was last asked about, and an edit inside
    // one of them adjusts them; after every edit each answer must still be the
    // text's own: the line of a position, and where the caret lands when put there.
    Box->SetText(QStringLiteral("ab\r\ncd ef\r\n\r\nghi\r\njk"));
    std::mt19937 Random(18);
    const QStringList Pieces = {QStringLiteral("x"), QStringLiteral("yz "), QString(),
                                QStringLiteral("\r\n"), QStringLiteral("q\r\nr")};
    auto Any = [&Random](int32_t Limit) {
        return static_cast<int32_t>(Random() % static_cast<uint32_t>(Limit + 1));
    };
    auto Probe = [this](const QString& Text, int32_t At, int Step) {
        const auto Length = static_cast<int32_t>(Text.size());
        EXPECT_EQ(Box->GetLineFromChar(At), Text.left(std::max(0, At)).count('\n'))
            << "step " << Step << " at " << At;
        // The LF of a break puts the caret at the start of the next line.
        int32_t Landing = std::clamp(At, 0, Length);
        if (Landing < Length && Text[Landing] == QLatin1Char('\n')) {
            ++Landing;
        }
        Box->SetSelStart(At);
        EXPECT_EQ(Box->SelStart(), Landing) << "step " << Step << " at " << At;
    };
    for (int Step = 0; Step < 400 && !HasFailure(); ++Step) {
        const QString Text = Box->Text();
        const auto Length = static_cast<int32_t>(Text.size());
        const int32_t Asked = Any(Length);
        Probe(Text, Any(Length), Step);
        Probe(Text, Asked, Step);
        const int32_t Start = Any(Length);
        Box->SetSelStart(Start);
        Box->SetSelLength(Any(std::min(3, Length - Start)));
        const int32_t SelStart = Box->SelStart();
        const QString Selected = Box->SelText();
        ASSERT_EQ(Selected, Text.mid(SelStart, Selected.size())) << "step " << Step;
        if (Step % 2 != 0) {
            continue;
        }
        const QString Piece = Pieces[static_cast<int>(Random() % Pieces.size())];
        Box->SetSelText(Piece);
        const QString Edited = Text.left(SelStart) + Piece + Text.mid(SelStart + Selected.size());
        const auto Caret = static_cast<int32_t>(SelStart + Piece.size());
        ASSERT_EQ(Box->SelStart(), Caret) << "step " << Step;
        // First the line asked about before the edit, which may have moved with it,
        // then the edited line, which may have grown or shrunk.
        const int32_t Moved = Asked < SelStart + Selected.size()
                                  ? Asked
                                  : Asked + static_cast<int32_t>(Piece.size() - Selected.size());
        const auto LineStart = static_cast<int32_t>(Edited.lastIndexOf('\n', Moved - 1) + 1);
        const auto LineEnd = static_cast<int32_t>(Edited.indexOf('\r', Moved));
        for (int32_t At = LineStart - 3; At <= (LineEnd < 0 ? Moved : LineEnd) + 3; ++At) {
            Probe(Edited, At, Step);
        }
        for (int32_t At = SelStart - 8; At <= Caret + 8; ++At) {
            Probe(Edited, At, Step);
        }
        ASSERT_EQ(Box->Text(), Edited) << "step " << Step;
    }
}

TEST_F(AdapterTest, CharactersAbove255RoundTrip) {
    const QString Text = QStringLiteral("\u00E9\u0122\u4E2D\r\n\u0127");
    Box->SetText(Text);
    EXPECT_EQ(Box->Text(), Text);
    EXPECT_EQ(Box->TextLength(), 6);
}

TEST_F(AdapterTest, ColouringIsNotAnEditAndCannotBeUndone) {
    Box->SetText(QStringLiteral("x = \"s\""));
    const int UndoSteps = Editor.document()->availableUndoSteps();
    SyntaxHighlighterType Highlighter;
    Highlighter.Connect(Box);
    Events.clear();
    Highlighter.HighlightEntireFile();
    Settle();
    EXPECT_EQ(Editor.document()->availableUndoSteps(), UndoSteps);
    EXPECT_FALSE(Events.contains(QLatin1Char('C'))) << "no text change";
    EXPECT_EQ(Box->ColorAt(5), String);
}

TEST_F(AdapterTest, TypedTextTakesTheTypingColourAndColoursAfterItMove) {
    Box->SetText(QStringLiteral("a \"s\""));
    SyntaxHighlighterType Highlighter;
    Highlighter.Connect(Box);
    Highlighter.HighlightEntireFile();
    Box->SetSelStart(1);
    Box->SetSelColor(0x123456);
    QTest::keyClicks(Editor.viewport(), QStringLiteral("zz"));
    Settle();
    EXPECT_EQ(Box->Text(), QStringLiteral("azz \"s\""));
    EXPECT_EQ(Box->ColorAt(0), Code);
    EXPECT_EQ(Box->ColorAt(1), 0x123456u);
    EXPECT_EQ(Box->ColorAt(2), 0x123456u);
    EXPECT_EQ(Box->ColorAt(3), Code);
    for (int32_t Position = 4; Position <= 6; ++Position) {
        EXPECT_EQ(Box->ColorAt(Position), String) << Position;
    }
}

TEST_F(AdapterTest, DeletingInsideAColouredLineKeepsTheRestInPlace) {
    Box->SetText(QStringLiteral("ab \"s\""));
    SyntaxHighlighterType Highlighter;
    Highlighter.Connect(Box);
    Highlighter.HighlightEntireFile();
    Box->SetSelStart(0);
    QTest::keyClick(Editor.viewport(), Qt::Key_Delete);
    Settle();
    EXPECT_EQ(Box->Text(), QStringLiteral("b \"s\""));
    EXPECT_EQ(Box->ColorAt(1), Code);
    EXPECT_EQ(Box->ColorAt(2), String);
    EXPECT_EQ(Box->ColorAt(4), String);
}

TEST_F(AdapterTest, TypingRaisesTheCaretsMoveBeforeTheChange) {
    Box->SetText(QStringLiteral("ab"));
    Box->SetSelStart(2);
    Settle();
    Events.clear();
    QTest::keyClick(Editor.viewport(), Qt::Key_X);
    Settle();
    EXPECT_EQ(Events, QStringLiteral("SC"));
    Box->SetSelStart(0);
    Settle();
    Events.clear();
    QTest::keyClick(Editor.viewport(), Qt::Key_Delete);
    Settle();
    EXPECT_EQ(Events, QStringLiteral("C")) << "a forward delete does not move the caret";
}

TEST_F(AdapterTest, CaretMoveAloneRaisesOneSelChange) {
    Box->SetText(QStringLiteral("ab\r\ncd"));
    Settle();
    Events.clear();
    QTest::keyClick(Editor.viewport(), Qt::Key_Down);
    Settle();
    EXPECT_EQ(Events, QStringLiteral("S"));
}

TEST_F(AdapterTest, LineBreakTypedInReportsTheInsertedLines) {
    Box->SetText(QStringLiteral("ab\r\ncd"));
    Box->SetSelStart(1);
    Settle();
    QTest::keyClick(Editor.viewport(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(Box->Text(), QStringLiteral("a\r\nb\r\ncd"));
    ASSERT_EQ(Inserted.size(), 1);
    EXPECT_EQ(Inserted[0].first, 1);
    EXPECT_EQ(Inserted[0].second, 3) << "the start of the line after the break";
}

TEST_F(AdapterTest, RecolouringALineOftenKeepsItsRangesFew) {
    Box->SetText(QStringLiteral("x = \"abc\" ' note\r\ny"));
    SyntaxHighlighterType Highlighter;
    Highlighter.Connect(Box);
    Highlighter.HighlightEntireFile();
    // Code, string, code, comment.
    ASSERT_EQ(Editor.document()->firstBlock().layout()->formats().size(), 4);
    for (int Round = 0; Round < 2000; ++Round) {
        Box->SetSelStart(3);
        Highlighter.NeutralizeLine(1);
        Highlighter.CancelNeutralLine();
    }
    EXPECT_EQ(Editor.document()->firstBlock().layout()->formats().size(), 4);
}

TEST_F(AdapterTest, TypingKeepsOneRangePerColourRun) {
    Box->SetText(QStringLiteral("abc"));
    SyntaxHighlighterType Highlighter;
    Highlighter.Connect(Box);
    Highlighter.HighlightEntireFile();
    Box->SetSelStart(3);
    Settle();
    QTest::keyClicks(Editor.viewport(), QStringLiteral("defghij"));
    Settle();
    ASSERT_EQ(Box->Text(), QStringLiteral("abcdefghij"));
    EXPECT_EQ(Editor.document()->firstBlock().layout()->formats().size(), 1);
}

TEST_F(AdapterTest, EmptySelectionColourIsTheTextColour) {
    Box->SetText(QStringLiteral("a"));
    Box->SetSelStart(1);
    Box->SetSelColor(0x00FF00);
    EXPECT_EQ(Editor.palette().color(QPalette::Text).rgb() & 0xFFFFFFu, 0x00FF00u);
    Box->SetBackColor(0x000080);
    EXPECT_EQ(Editor.palette().color(QPalette::Base).rgb() & 0xFFFFFFu, 0x000080u);
}

TEST_F(AdapterTest, HidingHoldsBackRepaintsWithoutTakingTheFocus) {
    Editor.setFocus();
    Box->SetVisible(false);
    EXPECT_FALSE(Editor.viewport()->updatesEnabled());
    EXPECT_TRUE(Editor.isVisible());
    Box->SetVisible(true);
    EXPECT_TRUE(Editor.viewport()->updatesEnabled());
}

TEST_F(AdapterTest, WaitPointerAndBack) {
    Box->SetMousePointer(11);
    EXPECT_EQ(Editor.viewport()->cursor().shape(), Qt::WaitCursor);
    Box->SetMousePointer(0);
    EXPECT_EQ(Editor.viewport()->cursor().shape(), Qt::IBeamCursor);
}

TEST_F(AdapterTest, TabStopsAreTabWidthCharactersApart) {
    Box->SetSelTabCount(20);
    EXPECT_EQ(Box->SelTabCount(), 20);
    for (int32_t Index = 0; Index < 20; ++Index) {
        Box->SetSelTabs(Index, 6 * Index);
    }
    const qreal Space = Editor.fontMetrics().horizontalAdvance(QLatin1Char(' '));
    EXPECT_DOUBLE_EQ(Editor.tabStopDistance(), 6 * Space);
}

TEST_F(AdapterTest, LinesAreNotWrapped) {
    EXPECT_EQ(Editor.lineWrapMode(), QPlainTextEdit::NoWrap);
    Box->SetText(QString(2000, QLatin1Char('x')));
    EXPECT_EQ(Box->GetLineFromChar(1999), 0);
}

}  // namespace
