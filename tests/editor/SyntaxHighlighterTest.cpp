#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QPlainTextEdit>

#include "HighlighterControls.h"
#include "editor/PlainTextEditRichTextBox.h"
#include "editor/SyntaxHighlighterType.h"
#include "support/MemoryRichTextBox.h"
#include "support/QtPrinters.h"

namespace {

constexpr uint32_t Code = 0x000080;
constexpr uint32_t String = 0x808080;
constexpr uint32_t Comment = 0x008000;

HighlighterControl MemoryControl() {
    auto Box = std::make_shared<MemoryRichTextBox>();
    MemoryRichTextBox* Raw = Box.get();
    HighlighterControl Control;
    Control.Box = Raw;
    Control.Owner = Box;
    Control.ColorAt = [Raw](int32_t Position) { return Raw->ColorAt(Position); };
    return Control;
}

// The colour of every character as a letter: C code, S string literal,
// M comment, ? anything else; the CR LF of a break as "||".
QString Map(const HighlighterControl& Control) {
    QString Result;
    const QString Text = Control.Box->Text();
    for (int32_t Index = 0; Index < Text.size(); ++Index) {
        if (Text[Index] == QLatin1Char('\r') || Text[Index] == QLatin1Char('\n')) {
            Result += QLatin1Char('|');
            continue;
        }
        const uint32_t Color = Control.ColorAt(Index);
        Result += Color == Code      ? QLatin1Char('C')
                  : Color == String  ? QLatin1Char('S')
                  : Color == Comment ? QLatin1Char('M')
                                     : QLatin1Char('?');
    }
    return Result;
}

class HighlighterRules : public ::testing::TestWithParam<HighlighterControlFactory> {
  protected:
    void SetUp() override {
        Control = GetParam()();
        Highlighter.Connect(Control.Box);
        Highlighter.SetEditorColors(1, 8, 2, 15);
    }
    QString Colour(const QString& Text) {
        Control.Box->SetText(Text);
        Highlighter.HighlightEntireFile();
        Control.Settle();
        return Map(Control);
    }
    HighlighterControl Control;
    SyntaxHighlighterType Highlighter;
};

TEST_P(HighlighterRules, ApostropheInsideAStringIsText) {
    EXPECT_EQ(Colour(QStringLiteral("x = \"it's\"")), QStringLiteral("CCCCSSSSSS"));
}

TEST_P(HighlighterRules, QuoteInsideACommentIsText) {
    EXPECT_EQ(Colour(QStringLiteral("' say \"hi")), QStringLiteral("MMMMMMMMM"));
}

TEST_P(HighlighterRules, UnclosedStringEndsBeforeTheCrAndTheNextLineIsCode) {
    EXPECT_EQ(Colour(QStringLiteral("a = \"open\r\nb = 1")), QStringLiteral("CCCCSSSSS||CCCCC"));
}

TEST_P(HighlighterRules, DoubledQuoteGivesOneStretchOfString) {
    EXPECT_EQ(Colour(QStringLiteral("a = \"b\"\"c\"")), QStringLiteral("CCCCSSSSSS"));
}

TEST_P(HighlighterRules, CommentOnTheLastLineWithoutCrIsColouredThroughItsLastCharacter) {
    EXPECT_EQ(Colour(QStringLiteral("x\r\ny ' c")), QStringLiteral("C||CCMMM"));
}

TEST_P(HighlighterRules, CodeStringAndCommentOnOneLine) {
    EXPECT_EQ(Colour(QStringLiteral("print \"a\" ' done\r\n  x = 1 'y\r\n\"z\"")),
              QStringLiteral("CCCCCCSSSCMMMMMM||CCCCCCCCMM||SSS"));
}

TEST_P(HighlighterRules, NoStateIsCarriedFromOneLineToTheNext) {
    EXPECT_EQ(Colour(QStringLiteral("' a\r\nb\r\n\"c\r\nd")), QStringLiteral("MMM||C||SS||C"));
}

TEST_P(HighlighterRules, CharacterAbove255IsTakenByItsLowByte) {
    // U+0122 has the low byte of a double quote, U+0127 of an apostrophe.
    const QString Text = QStringLiteral("a \u0122b\u0122 c \u0127d");
    EXPECT_EQ(Colour(Text), QStringLiteral("CCSSSCCCMM"));
}

TEST_P(HighlighterRules, CharacterWhoseLowByteIsCrEndsAStringLikeACr) {
    // U+010D has the low byte 13.
    const QString Text = QStringLiteral("\"ab\u010Dcd");
    EXPECT_EQ(Colour(Text), QStringLiteral("SSSCCC"));
}

TEST_P(HighlighterRules, AccentedLettersAreCode) {
    EXPECT_EQ(Colour(QStringLiteral("caf\u00E9 = \"\u00E9t\u00E9\"")),
              QStringLiteral("CCCCCCCSSSSS"));
}

TEST_P(HighlighterRules, EntireFileLeavesTheCaretAtTheStart) {
    Control.Box->SetText(QStringLiteral("abc\r\ndef"));
    Control.Box->SetSelStart(6);
    Highlighter.HighlightEntireFile();
    EXPECT_EQ(Control.Box->SelStart(), 0);
    EXPECT_EQ(Control.Box->SelLength(), 0);
}

TEST_P(HighlighterRules, AdjustColorsRecoloursWholeLinesAndPutsTheCaretBack) {
    Colour(QStringLiteral("a\r\nb\r\nc"));
    // A change made behind the highlighter's back on the middle line.
    Control.Box->SetSelStart(3);
    Control.Box->SetSelLength(1);
    Control.Box->SetSelText(QStringLiteral("'x \"y\""));
    Control.Box->SetSelStart(5);
    Highlighter.AdjustColors(4, 5);
    Control.Settle();
    EXPECT_EQ(Map(Control), QStringLiteral("C||MMMMMM||C"));
    EXPECT_EQ(Control.Box->SelStart(), 5);
}

TEST_P(HighlighterRules, RepaintOfALineGivesTheCaretBack) {
    Colour(QStringLiteral("ab\r\ncd 'e\r\nf"));
    Control.Box->SetSelStart(6);
    Highlighter.NeutralizeLine(2);
    Control.Settle();
    EXPECT_EQ(Map(Control), QStringLiteral("CC||CCCCC||C"));
    EXPECT_EQ(Control.Box->SelStart(), 6);
    Control.Box->SetSelStart(11);
    Highlighter.DeneutralizeOldLine(3);
    Control.Settle();
    EXPECT_EQ(Map(Control), QStringLiteral("CC||CCCMM||C"));
    EXPECT_EQ(Control.Box->SelStart(), 11);
}

TEST_P(HighlighterRules, SelectionOntoAnotherLineCollapsesToItsStartAfterTheRepaint) {
    Colour(QStringLiteral("ab\r\ncd\r\nef"));
    Control.Box->SetSelStart(1);
    Highlighter.NeutralizeLine(1);
    Control.Box->SetSelStart(1);
    Control.Box->SetSelLength(5);
    Highlighter.DeneutralizeOldLine(2);
    EXPECT_EQ(Control.Box->SelStart(), 1);
    EXPECT_EQ(Control.Box->SelLength(), 0);
}

TEST_P(HighlighterRules, NeutralLineTakesTheCodeColourThroughout) {
    Colour(QStringLiteral("x = \"s\" ' c\r\ny"));
    Control.Box->SetSelStart(3);
    Highlighter.NeutralizeLine(1);
    Control.Settle();
    EXPECT_EQ(Map(Control), QStringLiteral("CCCCCCCCCCC||C"));
    Highlighter.CancelNeutralLine();
    Control.Settle();
    EXPECT_EQ(Map(Control), QStringLiteral("CCCCSSSCMMM||C"));
    EXPECT_FALSE(Highlighter.NeutralLineIsSet());
}

TEST_P(HighlighterRules, ClearNeutralLineForgetsWithoutPainting) {
    Colour(QStringLiteral("x ' c"));
    Highlighter.NeutralizeLine(1);
    Highlighter.ClearNeutralLine();
    Highlighter.CancelNeutralLine();
    Control.Settle();
    EXPECT_EQ(Map(Control), QStringLiteral("CCCCC")) << "the line stays as it was painted";
    EXPECT_EQ(Highlighter.NeutralLine(), 0);
    EXPECT_EQ(Highlighter.NeutralPosition(), 0);
}

HighlighterControl WindowControl() {
    auto Editor = std::make_shared<QPlainTextEdit>();
    auto* Adapter = new PlainTextEditRichTextBox(Editor.get());
    Editor->resize(400, 300);
    Editor->show();
    HighlighterControl Control;
    Control.Box = Adapter;
    Control.Owner = Editor;
    Control.ColorAt = [Adapter](int32_t Position) { return Adapter->ColorAt(Position); };
    Control.Settle = [] { QCoreApplication::processEvents(); };
    return Control;
}

INSTANTIATE_TEST_SUITE_P(MemoryControl, HighlighterRules, ::testing::Values(&MemoryControl));
INSTANTIATE_TEST_SUITE_P(PlainTextEditControl, HighlighterRules, ::testing::Values(&WindowControl));

// ---- What only the recording control can tell --------------------------------

class HighlighterCalls : public ::testing::Test {
  protected:
    void SetUp() override {
        Highlighter.Connect(&Box);
        Highlighter.SetEditorColors(1, 8, 2, 15);
    }
    void Load(const QString& Text) {
        Box.SetText(Text);
        Highlighter.HighlightEntireFile();
        Box.ColorWrites.clear();
        Box.HideCount = 0;
        Box.VisibleChanges = 0;
    }
    MemoryRichTextBox Box;
    SyntaxHighlighterType Highlighter;
};

TEST_F(HighlighterCalls, ConnectSetsBackgroundAndTheNeutralTypingColour) {
    MemoryRichTextBox Fresh;
    SyntaxHighlighterType Other;
    Other.Connect(&Fresh);
    EXPECT_EQ(Fresh.BackColor, 0xFFFFFFu);
    ASSERT_EQ(Fresh.ColorWrites.size(), 1u);
    EXPECT_EQ(Fresh.ColorWrites[0].Color, Code);
    EXPECT_EQ(Fresh.ColorWrites[0].Length, 0);
}

TEST_F(HighlighterCalls, SetEditorColorsConvertsTheIndicesAndRecoloursNothing) {
    Load(QStringLiteral("x"));
    Highlighter.SetEditorColors(4, 12, 10, 0);
    EXPECT_EQ(Highlighter.CodeColor(), 0x800000u);
    EXPECT_EQ(Highlighter.StringLiteralColor(), 0xFF0000u);
    EXPECT_EQ(Highlighter.CommentColor(), 0x00FF00u);
    EXPECT_EQ(Highlighter.BackgroundColor(), 0x000000u);
    EXPECT_EQ(Highlighter.NeutralColor(), 0x800000u);
    EXPECT_EQ(Box.BackColor, 0u);
    EXPECT_EQ(Box.ColorAt(0), Code) << "no text is recoloured";
    EXPECT_EQ(Box.TypingColor, 0x800000u);
}

TEST_F(HighlighterCalls, ColourIndexOutsideTheTableChangesNothing) {
    Highlighter.SetEditorColors(4, 16, 10, 0);
    EXPECT_EQ(Highlighter.CodeColor(), Code);
    Highlighter.SetEditorColors(-1, 8, 2, 15);
    EXPECT_EQ(Highlighter.CodeColor(), Code);
}

TEST_F(HighlighterCalls, TheSixteenColours) {
    const uint32_t Expected[16] = {0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080,
                                   0x808000, 0xC0C0C0, 0x808080, 0x0000FF, 0x00FF00, 0x00FFFF,
                                   0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
    for (int32_t Index = 0; Index < 16; ++Index) {
        EXPECT_EQ(SyntaxHighlighterType::ColorFromIndex(Index), Expected[Index]);
    }
}

TEST_F(HighlighterCalls, EmptyTextIsOnlyHiddenAndShown) {
    Load(QString());
    Highlighter.HighlightEntireFile();
    EXPECT_EQ(Box.HideCount, 1);
    EXPECT_TRUE(Box.Visible);
    EXPECT_TRUE(Box.ColorWrites.empty());
}

TEST_F(HighlighterCalls, AdjustColorsOnAnEmptyTextChangesNothing) {
    Load(QString());
    Highlighter.AdjustColors(0, 0);
    EXPECT_EQ(Box.HideCount, 0);
    EXPECT_TRUE(Box.ColorWrites.empty());
}

TEST_F(HighlighterCalls, RepaintOfAnEmptyTextOnlySetsTheNeutralColour) {
    Load(QString());
    Highlighter.NeutralizeLine(1);
    EXPECT_EQ(Box.HideCount, 0);
    ASSERT_GE(Box.ColorWrites.size(), 1u);
    for (const auto& Write : Box.ColorWrites) {
        EXPECT_EQ(Write.Length, 0);
        EXPECT_EQ(Write.Color, Code);
    }
}

TEST_F(HighlighterCalls, AdjustColorsWithInvertedSpanDoesNothing) {
    Load(QStringLiteral("abc"));
    Highlighter.AdjustColors(2, 1);
    EXPECT_TRUE(Box.ColorWrites.empty());
}

TEST_F(HighlighterCalls, CaretOnTheFirstLineFindsItsMarginWithoutWalking) {
    Load(QStringLiteral("abcdef\r\nx"));
    Box.SetSelStart(5);
    Box.LineQueries = 0;
    Highlighter.NeutralizeLine(1);
    EXPECT_EQ(Box.LineQueries, 1);
}

TEST_F(HighlighterCalls, MarginOfALaterLineIsFoundWalkingTheLine) {
    Load(QStringLiteral("ab\r\ncdef"));
    Box.SetSelStart(7);
    Box.LineQueries = 0;
    Highlighter.NeutralizeLine(2);
    // The caret's line, then one query per position down to the LF before it.
    EXPECT_EQ(Box.LineQueries, 1 + 5);
}

TEST_F(HighlighterCalls, TypingOnTheNeutralLineRepaintsNothing) {
    Load(QStringLiteral("abc\r\ndef"));
    Box.SetSelStart(1);
    Highlighter.NeutralizeLine(1);
    EXPECT_EQ(Box.HideCount, 1);
    Box.Type(QStringLiteral("x"));
    Box.ColorWrites.clear();
    Highlighter.NeutralizeLine(1);
    EXPECT_EQ(Box.HideCount, 1) << "no second paint";
    ASSERT_EQ(Box.ColorWrites.size(), 1u);
    EXPECT_EQ(Box.ColorWrites[0].Length, 0) << "only the typing colour";
    EXPECT_EQ(Highlighter.NeutralPosition(), 2) << "the position follows the caret";
}

TEST_F(HighlighterCalls, TwoCharactersThenTheCaretDownIsOneNeutralAndOneSyntaxPaint) {
    Load(QStringLiteral("a = 1 ' c\r\nb"));
    Box.SetSelStart(1);
    Box.Type(QStringLiteral("x"));
    Highlighter.NeutralizeLine(1);
    Box.Type(QStringLiteral("y"));
    Highlighter.NeutralizeLine(1);
    Box.SetSelStart(12);
    Highlighter.DeneutralizeOldLine(2);
    EXPECT_EQ(Box.HideCount, 2);
    EXPECT_FALSE(Highlighter.NeutralLineIsSet());
    EXPECT_EQ(Highlighter.CurrentLine(), 2);
}

TEST_F(HighlighterCalls, NeutralizingAnotherLineDoesNotRepaintTheOlderOne) {
    Load(QStringLiteral("' a\r\n' b"));
    Box.SetSelStart(1);
    Highlighter.NeutralizeLine(1);
    Box.SetSelStart(6);
    Highlighter.NeutralizeLine(2);
    EXPECT_EQ(Box.HideCount, 2);
    EXPECT_EQ(Box.ColorAt(2), Code) << "the first line stays neutral";
    EXPECT_EQ(Highlighter.NeutralLine(), 2);
}

TEST_F(HighlighterCalls, DeneutralizeOnTheSameLineKeepsTheNeutralLine) {
    Load(QStringLiteral("' a\r\nb"));
    Highlighter.NeutralizeLine(1);
    Highlighter.DeneutralizeOldLine(1);
    EXPECT_TRUE(Highlighter.NeutralLineIsSet());
    EXPECT_EQ(Box.HideCount, 1);
}

TEST_F(HighlighterCalls, StringOpenAtTheEndOfTheTextAsksOnePositionMoreThanAComment) {
    Load(QStringLiteral("a \"bc"));
    Highlighter.HighlightEntireFile();
    const auto& LastString = Box.ColorWrites[Box.ColorWrites.size() - 2];
    EXPECT_EQ(LastString.Color, String);
    EXPECT_EQ(LastString.Start, 2);
    EXPECT_EQ(LastString.Requested, 4);
    EXPECT_EQ(LastString.Length, 3) << "clipped at the end of the text";

    Load(QStringLiteral("a 'bc"));
    Highlighter.HighlightEntireFile();
    const auto& LastComment = Box.ColorWrites[Box.ColorWrites.size() - 2];
    EXPECT_EQ(LastComment.Color, Comment);
    EXPECT_EQ(LastComment.Requested, 3);
}

TEST_F(HighlighterCalls, WholeFilePassIsOneWriteForTheRangeAndOnePerStringOrComment) {
    Load(QStringLiteral("a \"s\" 'c\r\nb \"t\"\r\nc"));
    Highlighter.HighlightEntireFile();
    int32_t Painted = 0;
    for (const auto& Write : Box.ColorWrites) {
        Painted += Write.Length > 0 ? 1 : 0;
    }
    EXPECT_EQ(Painted, 1 + 3);
    EXPECT_EQ(Box.MousePointer, 0);
    EXPECT_EQ(Box.TypingColor, Code);
}

}  // namespace
