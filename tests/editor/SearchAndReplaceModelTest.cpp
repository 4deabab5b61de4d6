#include "editor/SearchAndReplaceModel.h"

#include "platform/ClipboardService.h"
#include "support/ModelProjectFixture.h"
#include "support/QtPrinters.h"

namespace {

// The dialog's controls as plain values.
class PlainControls : public SearchAndReplaceControls {
  public:
    QString FindText() const override { return Find; }
    void SetFindText(const QString& Text) override { Find = Text; }
    QString ReplaceText() const override { return Replace; }
    bool MatchCase() const override { return Case; }
    void SetMatchCase(bool On) override { Case = On; }
    bool MatchWholeWordOnly() const override { return WholeWord; }
    bool CurrentModule() const override { return Module; }
    void SetCurrentModule(bool On) override { Module = On; }
    void UpdateControls() override { ++Updates; }
    QString Find;
    QString Replace;
    bool Case = false;
    bool WholeWord = false;
    bool Module = true;
    int Updates = 0;
};

class SearchAndReplaceModelTest : public ModelProjectFixture {
  protected:
    void SetUp() override {
        ModelProjectFixture::SetUp();
        ClipboardService::Install(std::make_unique<MemoryClipboardService>());
        Search.ActiveForm = [this]() -> EditBoxModel* {
            return Editor.Active >= 1 ? &WindowOf(Editor.Active)->Model : nullptr;
        };
    }
    // A project of the given modules, module Active in front with its caret at Caret.
    void Open(const QStringList& Texts, int16_t Active = 1, int32_t Caret = 0) {
        QByteArray List;
        for (int Index = 0; Index < Texts.size(); ++Index) {
            const QString Name = QStringLiteral("m%1.bas").arg(Index + 1);
            List += Name.toUtf8() + "\r\n";
            WriteFile(Name, Texts[Index].toUtf8());
        }
        WriteFile(QStringLiteral("p.kvp"), List);
        WriteFile(QStringLiteral("p.prf"), QByteArray(8610, '\0'));
        Project().OpenProject(TempPath(), QStringLiteral("p"), QStringLiteral("kvp"), false);
        ASSERT_EQ(Project().ModuleCount(), Texts.size());
        Editor.Active = Active;
        Box(Active).SetSelStart(Caret);
        Editor.Activated.clear();
    }
    MemoryRichTextBox& Box(int16_t Number) { return WindowOf(Number)->Box; }
    QString Selected(int16_t Number) { return Box(Number).SelText(); }
    QStringList Messages() const {
        QStringList List;
        for (const auto& Shown : Boxes->Boxes) {
            List << Shown.Title + QLatin1Char('|') + Shown.Text;
        }
        return List;
    }

    PlainControls Controls;
    SearchAndReplaceModel Search{Controls};
};

TEST_F(SearchAndReplaceModelTest, ProjectSearchGoesOnInTheNextModulesInProjectOrderAndWraps) {
    Open({QStringLiteral("led = 1\r\n"), QStringLiteral("x = 2\r\n"),
          QStringLiteral("y = 3\r\nled = 4\r\n")},
         2);
    Search.Form_Load();
    Controls.Find = QStringLiteral("led");
    Controls.Module = false;
    Search.cmdFindNext_Click();
    EXPECT_EQ(Editor.Active, 3) << "module 3 comes before module 1";
    EXPECT_EQ(Box(3).SelStart(), 7);
    EXPECT_EQ(Selected(3), QStringLiteral("led"));
    Search.cmdFindNext_Click();
    EXPECT_EQ(Editor.Activated, (QList<int16_t>{3, 1})) << "past the last module, the first";
    EXPECT_EQ(Box(1).SelStart(), 0);
    EXPECT_EQ(Selected(1), QStringLiteral("led"));
    EXPECT_TRUE(Search.MatchIsSelected);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(SearchAndReplaceModelTest, ProjectSearchLooksOnceThroughEachModuleAndNotBeforeTheCaret) {
    // The only match lies before the caret in the module where the search begins.
    Open({QStringLiteral("a = 1\r\n"), QStringLiteral("led = 1\r\nb = 2\r\n")}, 2, 10);
    Search.Form_Load();
    Controls.Find = QStringLiteral("led");
    Controls.Module = false;
    Search.cmdFindNext_Click();
    EXPECT_EQ(Messages(), QStringList{QStringLiteral("String Not Found|String not found: led")});
    EXPECT_EQ(Editor.Activated, (QList<int16_t>{1, 2})) << "each module once, then back";
    EXPECT_EQ(Box(2).SelStart(), 0);
    EXPECT_EQ(Box(2).SelLength(), 0);
    EXPECT_FALSE(Search.MatchIsSelected);
}

TEST_F(SearchAndReplaceModelTest, ModuleSearchStopsAtTheModulesEndWithoutWrapping) {
    Open({QStringLiteral("led = 1\r\nx = led\r\n")}, 1, 12);
    Search.Form_Load();
    Controls.Find = QStringLiteral("led");
    Search.cmdFindNext_Click();
    EXPECT_EQ(Box(1).SelStart(), 13);
    Search.cmdFindNext_Click();
    EXPECT_EQ(Messages(), QStringList{QStringLiteral("String Not Found|String not found: led")});
    EXPECT_EQ(Box(1).SelStart(), 13) << "the caret stays where the last match began";
    EXPECT_EQ(Box(1).SelLength(), 0);
}

TEST_F(SearchAndReplaceModelTest, MatchCaseAndWholeWordNarrowTheSearch) {
    Open({QStringLiteral("LedOn = Led\r\nled = 1\r\n")});
    Search.Form_Load();
    Controls.Find = QStringLiteral("led");
    Search.cmdFindNext_Click();
    EXPECT_EQ(Box(1).SelStart(), 0) << "without options: any case, inside a word";
    Search.SearchPosition = 0;
    Controls.WholeWord = true;
    Search.cmdFindNext_Click();
    EXPECT_EQ(Box(1).SelStart(), 8) << "a whole word of any case";
    Search.SearchPosition = 0;
    Controls.Case = true;
    Search.cmdFindNext_Click();
    EXPECT_EQ(Box(1).SelStart(), 13) << "a whole word of this case";
    Search.SearchPosition = 0;
    Controls.WholeWord = false;
    Controls.Find = QStringLiteral("Led");
    Search.cmdFindNext_Click();
    EXPECT_EQ(Box(1).SelStart(), 0);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(SearchAndReplaceModelTest, AReplacementHoldingTheTextReplacesEachOccurrenceOnce) {
    Open({QStringLiteral("a = a + 1\r\n")});
    Search.Form_Load();
    Controls.Find = QStringLiteral("a");
    Controls.Replace = QStringLiteral("aa");
    Search.cmdReplaceAll_Click();
    EXPECT_EQ(WindowOf(1)->Text(), QStringLiteral("aa = aa + 1\r\n"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(SearchAndReplaceModelTest, ProjectReplaceAllIsOneUndoStepPerModuleAndEndsWhereItBegan) {
    Open({QStringLiteral("led = led\r\n"), QStringLiteral("x = 1\r\n"),
          QStringLiteral("led\r\nled\r\nled\r\n")},
         2, 3);
    Search.Form_Load();
    Controls.Find = QStringLiteral("led");
    Controls.Replace = QStringLiteral("lamp");
    Controls.Module = false;
    Search.cmdReplaceAll_Click();
    EXPECT_EQ(WindowOf(1)->Text(), QStringLiteral("lamp = lamp\r\n"));
    EXPECT_EQ(WindowOf(3)->Text(), QStringLiteral("lamp\r\nlamp\r\nlamp\r\n"));
    EXPECT_EQ(Box(1).UndoSteps, 1);
    EXPECT_EQ(Box(2).UndoSteps, 0);
    EXPECT_EQ(Box(3).UndoSteps, 1);
    EXPECT_EQ(Box(3).GroupDepth, 0);
    EXPECT_EQ(Editor.Active, 2);
    EXPECT_EQ(Editor.Activated, (QList<int16_t>{3, 1, 2}));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(SearchAndReplaceModelTest, ModuleReplaceAllBeginsAtTheTopWhereverTheCaretIs) {
    Open({QStringLiteral("led\r\nled\r\n")}, 1, 7);
    Search.Form_Load();
    Controls.Find = QStringLiteral("led");
    Controls.Replace = QStringLiteral("x");
    Search.cmdReplaceAll_Click();
    EXPECT_EQ(WindowOf(1)->Text(), QStringLiteral("x\r\nx\r\n"));
}

TEST_F(SearchAndReplaceModelTest, WithoutAProjectAFindSaysThereIsNoActiveFile) {
    Search.Form_Load();
    Controls.Find = QStringLiteral("led");
    Search.cmdFindNext_Click();
    EXPECT_EQ(Messages(), (QStringList{QStringLiteral("No Active File|No active file"),
                                       QStringLiteral("String Not Found|String not found: led")}));
}

TEST_F(SearchAndReplaceModelTest, EachModuleRemembersItsOwnLastSearch) {
    Open({QStringLiteral("led\r\n"), QStringLiteral("lamp\r\n")}, 1);
    Search.Form_Load();
    Controls.Find = QStringLiteral("led");
    Search.cmdFindNext_Click();
    Editor.Active = 2;
    Search.Form_Load();
    EXPECT_EQ(Controls.Find, QString()) << "module 2 has not been searched";
    Controls.Find = QStringLiteral("lamp");
    Search.cmdFindNext_Click();
    Editor.Active = 1;
    Box(1).SetSelStart(0);
    Search.Form_Load();
    EXPECT_EQ(Controls.Find, QStringLiteral("led"));
    EXPECT_EQ(WindowOf(2)->Model.FindText, QStringLiteral("lamp"));
}

}  // namespace
