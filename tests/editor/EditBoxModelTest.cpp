#include <algorithm>

#include "editor/EditBoxModel.h"
#include "editor/SourceEditorHost.h"
#include "platform/ClipboardService.h"
#include "support/FrameFixture.h"
#include "support/MemoryRichTextBox.h"
#include "support/QtPrinters.h"

namespace {

constexpr uint32_t Code = 0x000080;
constexpr uint32_t String = 0x808080;

class RecordingHost : public SourceEditorHost {
  public:
    void InsertMode(bool IsInsertMode) override { Modes.append(IsInsertMode); }
    void ActivateTab(int16_t ModuleNumber) override { Tabs.append(ModuleNumber); }
    void DisplayCursor(int32_t LineNumber, int32_t ColumnNumber) override {
        Cursor = {LineNumber, ColumnNumber};
        ++CursorCalls;
    }
    void mnuEditCut_Click() override {}
    void mnuEditCopy_Click() override {}
    void mnuEditPaste_Click() override {}
    void mnuEditDelete_Click() override {}
    QList<bool> Modes;
    QList<int16_t> Tabs;
    QPair<int32_t, int32_t> Cursor{0, 0};
    int CursorCalls = 0;
};

class EditBoxTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        SourceEditorHost::Install(&Host);
        ClipboardService::Install(std::make_unique<MemoryClipboardService>());
        Model = std::make_unique<EditBoxModel>(&Box);
        Model->SetCaption = [this](const QString& Caption) { this->Caption = Caption; };
        Model->InnerSize = [](int32_t& Width, int32_t& Height) {
            Width = 300;
            Height = 200;
        };
    }
    void TearDown() override {
        Model.reset();
        SourceEditorHost::Install(nullptr);
        FrameFixture::TearDown();
    }
    void Open(const QString& Source, int16_t Module = 1) {
        Model->Initialize(QStringLiteral("main"), Module, Source);
    }
    void Press(int32_t KeyCode, int32_t Shift, int32_t ExpectedKey, int32_t ExpectedShift) {
        int32_t Key = KeyCode;
        int32_t Modifiers = Shift;
        Model->rtfEditBox_KeyDown(Key, Modifiers);
        EXPECT_EQ(Key, ExpectedKey) << KeyCode << "/" << Shift;
        EXPECT_EQ(Modifiers, ExpectedShift) << KeyCode << "/" << Shift;
    }

    MemoryRichTextBox Box;
    RecordingHost Host;
    std::unique_ptr<EditBoxModel> Model;
    QString Caption;
};

TEST_F(EditBoxTest, InitializeLoadsNamesColoursAndArms) {
    Open(QStringLiteral("x = \"s\""), 3);
    EXPECT_EQ(Caption, QStringLiteral("main"));
    EXPECT_EQ(Model->ModuleNumber(), 3);
    EXPECT_FALSE(Model->HasChanged);
    EXPECT_FALSE(Model->AllowRemoval);
    EXPECT_TRUE(Model->SelChangeArmed);
    EXPECT_TRUE(Model->ChangeArmed());
    EXPECT_TRUE(Model->DisplayCursorArmed());
    EXPECT_EQ(Box.ColorAt(0), Code);
    EXPECT_EQ(Box.ColorAt(5), String);
    EXPECT_EQ(Box.Width(), 300) << "the load sized the control to the window";
    ASSERT_FALSE(Host.Modes.isEmpty());
    EXPECT_TRUE(Host.Modes.first()) << "insert mode at load";
}

TEST_F(EditBoxTest, LoadTakesFontTabsAndColoursFromTheSettings) {
    SetSetting(QStringLiteral("Editor_Font_Name"), QStringLiteral("  Mono  "));
    SetSetting(QStringLiteral("Editor_Font_Size"), QStringLiteral("30"));
    SetSetting(QStringLiteral("Tab_Width"), QStringLiteral("3"));
    SetSetting(QStringLiteral("Text_Color"), QStringLiteral("4"));
    SetSetting(QStringLiteral("String_Literal_Color"), QStringLiteral("12"));
    Open(QStringLiteral("a \"b\""));
    EXPECT_EQ(Box.FontName, QStringLiteral("Mono"));
    EXPECT_EQ(Box.FontSize, 20);
    ASSERT_EQ(Box.Tabs.size(), 20u);
    for (int32_t Index = 0; Index < 20; ++Index) {
        EXPECT_EQ(Box.Tabs[Index], 3 * Index);
    }
    EXPECT_EQ(Model->CodeColor(), 4);
    EXPECT_EQ(Box.ColorAt(0), 0x800000u);
    EXPECT_EQ(Box.ColorAt(3), 0xFF0000u);
}

TEST_F(EditBoxTest, TypingTheFirstCharacterMarksTheTextChangedAndTheLineNeutral) {
    Open(QStringLiteral("x = \"s\"\r\ny"));
    Box.SetSelStart(7);
    Box.Type(QStringLiteral("z"));
    EXPECT_TRUE(Model->HasChanged);
    ASSERT_NE(Model->SyntaxHighlighter(), nullptr);
    EXPECT_TRUE(Model->SyntaxHighlighter()->NeutralLineIsSet());
    EXPECT_EQ(Box.ColorAt(5), Code) << "the line is neutral";
    EXPECT_EQ(Host.Cursor, (QPair<int32_t, int32_t>{1, 9}));
}

TEST_F(EditBoxTest, LeavingTheTypedLineGivesItItsColours) {
    Open(QStringLiteral("x = 1\r\ny"));
    Box.SetSelStart(5);
    Box.Type(QStringLiteral(" ' c"));
    EXPECT_EQ(Box.ColorAt(7), Code);
    Box.SetSelStart(11);
    EXPECT_EQ(Box.ColorAt(7), 0x008000u) << "the comment is coloured once the caret left";
    EXPECT_FALSE(Model->SyntaxHighlighter()->NeutralLineIsSet());
    EXPECT_EQ(Model->CurrentLine(), 2);
}

TEST_F(EditBoxTest, LineBreakTypedLeavesTheOldLineColouredAndTheNewOneNeutral) {
    Open(QStringLiteral("x"));
    Box.SetSelStart(1);
    Box.Type(QStringLiteral(" = \"s\""));
    Box.Type(QStringLiteral("\r\n"));
    EXPECT_EQ(Box.ColorAt(5), String) << "the line the caret left";
    EXPECT_EQ(Model->CurrentLine(), 2);
    EXPECT_EQ(Model->SyntaxHighlighter()->NeutralLine(), 2);
}

TEST_F(EditBoxTest, SelChangeWhileDisarmedLeavesTheFlagAlone) {
    Open(QStringLiteral("ab\r\ncd"));
    Model->SelChange = false;
    Model->SelChangeArmed = false;
    Box.SetSelStart(4);
    EXPECT_FALSE(Model->SelChange);
    Model->SelChangeArmed = true;
    Box.SetSelStart(1);
    EXPECT_TRUE(Model->SelChange);
}

TEST_F(EditBoxTest, CaretAtTheStartIsLineOneColumnOne) {
    Open(QStringLiteral("abc\r\nde"));
    Box.SetSelStart(1);
    Box.SetSelStart(0);
    EXPECT_EQ(Host.Cursor, (QPair<int32_t, int32_t>{1, 1}));
}

TEST_F(EditBoxTest, CaretAtTheEndOfALineIsColumnNPlusOne) {
    Open(QStringLiteral("abc\r\nde"));
    Box.SetSelStart(3);
    EXPECT_EQ(Host.Cursor, (QPair<int32_t, int32_t>{1, 4}));
    Box.SetSelStart(7);
    EXPECT_EQ(Host.Cursor, (QPair<int32_t, int32_t>{2, 3}));
    Box.SetSelStart(5);
    EXPECT_EQ(Host.Cursor, (QPair<int32_t, int32_t>{2, 1}));
}

TEST_F(EditBoxTest, CloseBoxDoesNothingUntilTheModuleAllowsIt) {
    Open(QStringLiteral("a"));
    int32_t Cancel = 0;
    Model->Form_QueryUnload(Cancel, 0);
    EXPECT_EQ(Cancel, 1);
    Model->AllowRemoval = true;
    Cancel = 0;
    Model->Form_QueryUnload(Cancel, 1);
    EXPECT_EQ(Cancel, 0);
}

TEST_F(EditBoxTest, KeyTable) {
    Open(QStringLiteral("abc"));
    Press(65, 4, 65, 4);  // alt: nothing
    Press(65, 6, 65, 6);  // alt with control: nothing
    Press(86, 3, 86, 3);  // control and shift: nothing
    Press(90, 2, 90, 2);  // control + Z: left to the control
    Press(45, 2, 45, 2);  // control + Insert: left to the control
    Press(65, 2, 0, 0);   // control + A
    EXPECT_EQ(Box.SelLength(), 3);
    Press(67, 2, 0, 0);  // control + C
    EXPECT_EQ(ClipboardService::Instance().GetText(), QStringLiteral("abc"));
    Press(37, 0, 37, 0);  // an arrow: nothing
    Press(46, 0, 46, 0);  // Delete alone: the control's
}

TEST_F(EditBoxTest, ShiftInsertPastesAndShiftDeleteCuts) {
    Open(QStringLiteral("abc"));
    ClipboardService::Instance().SetText(QStringLiteral("xy"));
    Box.SetSelStart(1);
    Press(45, 1, 0, 0);
    EXPECT_EQ(Box.Text(), QStringLiteral("axybc"));
    Box.SetSelStart(0);
    Box.SetSelLength(2);
    Press(46, 1, 0, 0);
    EXPECT_EQ(Box.Text(), QStringLiteral("ybc"));
    EXPECT_EQ(ClipboardService::Instance().GetText(), QStringLiteral("ax"));
}

TEST_F(EditBoxTest, InsertKeyTogglesTheModeAndItsDisplay) {
    Open(QStringLiteral("abc"));
    Host.Modes.clear();
    Press(45, 0, 45, 0);
    EXPECT_FALSE(Model->InsertMode());
    EXPECT_EQ(Host.Modes, QList<bool>{false});
    Press(45, 0, 45, 0);
    EXPECT_TRUE(Model->InsertMode());
}

TEST_F(EditBoxTest, ActivatedWindowShowsItsOwnModeAndTab) {
    Open(QStringLiteral("a"), 2);
    MemoryRichTextBox OtherBox;
    EditBoxModel Other(&OtherBox);
    Other.Initialize(QStringLiteral("other"), 5, QStringLiteral("b"));
    int32_t Key = 45;
    int32_t Shift = 0;
    Other.rtfEditBox_KeyDown(Key, Shift);
    Host.Modes.clear();
    Model->Form_Activate();
    EXPECT_EQ(Host.Modes, QList<bool>{true});
    EXPECT_EQ(Host.Tabs.back(), 2);
    Other.Form_Activate();
    EXPECT_EQ(Host.Modes.back(), false);
    EXPECT_EQ(Host.Tabs.back(), 5);
}

TEST_F(EditBoxTest, WindowSmallerThanFiveKeepsTheControlsSize) {
    Open(QStringLiteral("a"));
    Model->Resize(4, 100);
    EXPECT_EQ(Box.Width(), 300);
    Model->Resize(100, 4);
    EXPECT_EQ(Box.Height(), 200);
    Model->Resize(5, 5);
    EXPECT_EQ(Box.Width(), 5);
}

TEST_F(EditBoxTest, PasteWithAnEmptyClipboardRecoloursTheSpan) {
    Open(QStringLiteral("x \"s\"b\r\ncd"));
    ClipboardService::Instance().Clear();
    Box.SetSelStart(5);
    Box.SetSelLength(1);
    Box.ColorWrites.clear();
    Model->EditPaste();
    EXPECT_EQ(Box.Text(), QStringLiteral("x \"s\"\r\ncd"));
    EXPECT_EQ(Model->ModFirst(), 5);
    EXPECT_EQ(Model->ModLast(), 5);
    // The caret's line ends neutral, which paints its string in the code
    // colour; only the span's recolouring paints it in the string colour.
    const auto& Writes = Box.ColorWrites;
    const auto Recoloured = std::find_if(Writes.begin(), Writes.end(), [](const auto& Write) {
        return Write.Start == 2 && Write.Length == 3 && Write.Color == String;
    });
    EXPECT_TRUE(Recoloured != Writes.end()) << "the span's line was coloured by its syntax";
    EXPECT_EQ(Box.ColorAt(2), Code) << "and then left neutral for the caret";
    EXPECT_EQ(Model->SyntaxHighlighter()->NeutralLine(), 1);
}

TEST_F(EditBoxTest, PasteColoursTheInsertedLinesAndLeavesTheCaretLineNeutral) {
    Open(QStringLiteral("a\r\nb"));
    ClipboardService::Instance().SetText(QStringLiteral("\"s\"\r\n' c\r\nx 'y"));
    Box.SetSelStart(1);
    Model->EditPaste();
    EXPECT_EQ(Box.Text(), QStringLiteral("a\"s\"\r\n' c\r\nx 'y\r\nb"));
    EXPECT_EQ(Box.ColorAt(1), String);
    EXPECT_EQ(Box.ColorAt(6), 0x008000u);
    EXPECT_EQ(Box.ColorAt(13), Code) << "the caret's line is neutral";
    EXPECT_EQ(Model->SyntaxHighlighter()->NeutralLine(), 3);
    EXPECT_EQ(Box.SelStart(), 15);
    EXPECT_TRUE(Model->SelChangeArmed && Model->ChangeArmed() && Model->DisplayCursorArmed());
}

TEST_F(EditBoxTest, PasteLeavesTheChangeFlagAsItWas) {
    Open(QStringLiteral("ab"));
    ClipboardService::Instance().SetText(QStringLiteral("x"));
    Model->EditPaste();
    EXPECT_FALSE(Model->HasChanged) << "an unchanged text stays unchanged";
    Box.SetSelStart(0);
    Box.Type(QStringLiteral("q"));
    ASSERT_TRUE(Model->HasChanged);
    Model->EditPaste();
    EXPECT_TRUE(Model->HasChanged);
}

TEST_F(EditBoxTest, CutIsAnOrdinaryChange) {
    Open(QStringLiteral("abc"));
    Box.SetSelStart(0);
    Box.SetSelLength(2);
    Model->EditCut();
    EXPECT_EQ(ClipboardService::Instance().GetText(), QStringLiteral("ab"));
    EXPECT_EQ(Box.Text(), QStringLiteral("c"));
    EXPECT_TRUE(Model->HasChanged);
    EXPECT_TRUE(Model->SyntaxHighlighter()->NeutralLineIsSet());
}

TEST_F(EditBoxTest, ReplaceRecoloursWithoutLeavingALineNeutral) {
    Open(QStringLiteral("abc"));
    ClipboardService::Instance().SetText(QStringLiteral("\"q\""));
    Box.SetSelStart(1);
    Box.SetSelLength(1);
    Model->EditReplace();
    EXPECT_EQ(Box.Text(), QStringLiteral("a\"q\"c"));
    EXPECT_EQ(Box.ColorAt(2), String);
    EXPECT_FALSE(Model->SyntaxHighlighter()->NeutralLineIsSet());
}

TEST_F(EditBoxTest, DeleteAndSelectAll) {
    Open(QStringLiteral("abc\r\nd"));
    Model->EditSelectAll();
    EXPECT_EQ(Box.SelStart(), 0);
    EXPECT_EQ(Box.SelLength(), 6);
    Model->EditDelete();
    EXPECT_EQ(Box.Text(), QString());
}

TEST_F(EditBoxTest, DeactivationGivesTheNeutralLineItsColours) {
    Open(QStringLiteral("a 'c"));
    Box.SetSelStart(1);
    Box.Type(QStringLiteral("b"));
    EXPECT_EQ(Box.ColorAt(3), Code);
    Model->Form_Deactivate();
    EXPECT_EQ(Box.ColorAt(3), 0x008000u);
    EXPECT_FALSE(Model->SyntaxHighlighter()->NeutralLineIsSet());
    EXPECT_TRUE(Model->SelChangeArmed && Model->ChangeArmed());
}

TEST_F(EditBoxTest, LinesInsertedByTheControlAreColouredAsAPaste) {
    Open(QStringLiteral("a\r\nb"));
    Box.SetSelStart(1);
    // What the control did by itself; it then tells the span.
    Model->SelChangeArmed = false;
    Box.Type(QStringLiteral("\r\n' x"));
    Model->SelChangeArmed = true;
    Model->rtfEditBox_LinesInserted(1, 7);
    EXPECT_EQ(Box.ColorAt(3 + 2), Code) << "the caret's line is neutral";
    Box.SetSelStart(0);
    EXPECT_EQ(Box.ColorAt(5), 0x008000u);
}

TEST_F(EditBoxTest, SettingTheTextRecoloursItAll) {
    Open(QStringLiteral("a"));
    Model->SetText(QStringLiteral("'x\r\n\"y\""));
    EXPECT_EQ(Box.ColorAt(1), 0x008000u);
    EXPECT_EQ(Box.ColorAt(5), String);
    EXPECT_EQ(Box.MousePointer, 0);
    EXPECT_EQ(Host.Cursor, (QPair<int32_t, int32_t>{1, 1}));
}

TEST_F(EditBoxTest, ChangedColourSettingsRecolourTheText) {
    Open(QStringLiteral("'x"));
    SetSetting(QStringLiteral("Comment_Color"), QStringLiteral("12"));
    Model->SetEditorColors();
    EXPECT_EQ(Box.ColorAt(1), 0xFF0000u);
}

TEST_F(EditBoxTest, UnloadDropsTheHighlighter) {
    Open(QStringLiteral("a"));
    Model->Form_Unload();
    EXPECT_EQ(Model->SyntaxHighlighter(), nullptr);
    Box.Type(QStringLiteral("b"));
    EXPECT_TRUE(Model->HasChanged);
}

}  // namespace
