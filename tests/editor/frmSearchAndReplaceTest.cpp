#include <QMdiSubWindow>
#include <QStyleOptionButton>
#include <QTest>
#include <QToolButton>

#include "editor/EditBoxModuleWindow.h"
#include "editor/SyntaxHighlighterType.h"
#include "editor/frmEditBoxType.h"
#include "editor/frmSearchAndReplace.h"
#include "editor/frmSourceEditor.h"
#include "link/frmDownloader.h"
#include "platform/ClipboardService.h"
#include "platform/Global.h"
#include "project/ProjectType.h"
#include "support/FrameFixture.h"
#include "support/MemoryRichTextBox.h"
#include "support/QtPrinters.h"
#include "support/SourceEditorFixture.h"

namespace {

// Counts the times a search dialog is shown, whichever one it is.
class ShowSpy : public QObject {
  public:
    bool eventFilter(QObject* Watched, QEvent* Event) override {
        if (Event->type() == QEvent::Show && qobject_cast<frmSearchAndReplace*>(Watched)) {
            ++Shown;
        }
        return QObject::eventFilter(Watched, Event);
    }
    int Shown = 0;
};

// main: "led" at 4, 20, 31 (a comment) and 44 (a string).
const char* const MainText = "Dim led As Integer\r\nled = 1\r\n' led on\r\nx = \"led\"\r\n";
const char* const LedText = "Sub Blink()\r\n  led = 0\r\nEnd Sub\r\n";
const char* const WaitText = "Sub Wait()\r\nEnd Sub\r\n";

class SearchAndReplaceWindowTest : public SourceEditorFixture {
  protected:
    void SetUp() override {
        SourceEditorFixture::SetUp();
        Editor->resize(900, 700);
        ActivateEditor();
    }
    void ActivateEditor() {
        Editor->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Editor, 2000));
        // The focus follows the activation in events of its own.
        Settle();
    }
    // Opens a project of these modules through File, Open Project, and
    // brings module 1 to the front with a click on its tab.
    void OpenProject(const QList<QByteArray>& Texts) {
        QByteArray List;
        for (int Index = 0; Index < Texts.size(); ++Index) {
            const QString Name = QStringLiteral("m%1.bas").arg(Index + 1);
            List += Name.toUtf8() + "\r\n";
            WriteFile(Name, Texts[Index]);
        }
        WriteFile(QStringLiteral("blink.kvp"), List);
        WriteFile(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
        Dialogs->Answers.push_back(TempPath() + QStringLiteral("/blink.kvp"));
        Editor->mnuOpenProject->trigger();
        Settle();
        ClickTab(1);
    }
    void OpenBlink() { OpenProject({MainText, LedText, WaitText}); }
    void ClickTab(int Number) {
        QTest::mouseClick(Editor->tabEditTabStrip, Qt::LeftButton, Qt::NoModifier,
                          Editor->tabEditTabStrip->tabRect(Number - 1).center());
        Settle();
    }
    int ActiveModule() const { return Editor->ActiveModuleNumber(); }
    // Keys pressed in a module's text.
    void Key(int Number, Qt::Key Pressed, Qt::KeyboardModifiers Modifiers = Qt::NoModifier,
             int Times = 1) {
        for (int Count = 0; Count < Times; ++Count) {
            QTest::keyClick(Module(Number)->rtfEditBox, Pressed, Modifiers);
        }
        Settle();
    }
    // The caret at a place of module 1's text, put there with the keys.
    void CaretTo(int Number, int Line, int Column) {
        Key(Number, Qt::Key_Home, Qt::ControlModifier);
        Key(Number, Qt::Key_Down, Qt::NoModifier, Line - 1);
        Key(Number, Qt::Key_Right, Qt::NoModifier, Column - 1);
    }
    int32_t SelStart(int Number) { return Module(Number)->RichText().SelStart(); }
    QString SelText(int Number) { return Module(Number)->RichText().SelText(); }
    // Ctrl+F or Ctrl+H in a module: the search dialog, if it came.
    frmSearchAndReplace* PressForSearch(int Number, Qt::Key Pressed) {
        Key(Number, Pressed, Qt::ControlModifier);
        return Dialog();
    }
    frmSearchAndReplace* Dialog() {
        return Global<frmSearchAndReplace>::IsLoaded() ? &Global<frmSearchAndReplace>::Get()
                                                       : nullptr;
    }
    void Click(QAbstractButton* Button) {
        QPoint At = Button->rect().center();
        if (qobject_cast<QCheckBox*>(Button) || qobject_cast<QRadioButton*>(Button)) {
            // On the box or the circle itself.
            QStyleOptionButton Option;
            Option.initFrom(Button);
            At = Button->style()
                     ->subElementRect(qobject_cast<QCheckBox*>(Button)
                                          ? QStyle::SE_CheckBoxIndicator
                                          : QStyle::SE_RadioButtonIndicator,
                                      &Option, Button)
                     .center();
        }
        QTest::mouseClick(Button, Qt::LeftButton, Qt::NoModifier, At);
        Settle();
    }
    void Type(QLineEdit* Box, const QString& Text) {
        QTest::keyClicks(Box, Text);
        Settle();
    }
    void ClearText(QLineEdit* Box) {
        QTest::keyClick(Box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(Box, Qt::Key_Backspace);
        Settle();
    }
    QStringList Messages() const {
        QStringList List;
        for (const auto& Shown : Boxes->Boxes) {
            List << Shown.Title + QLatin1Char('|') + Shown.Text;
        }
        return List;
    }
    // Every character of a module in the colour that a fresh highlighting of
    // the same text gives it; the first that differs, else an empty text.
    QString FirstWrongColour(frmEditBoxType* Box) {
        const QString Text = Box->Text();
        MemoryRichTextBox Fresh;
        SyntaxHighlighterType Highlighter;
        Highlighter.Connect(&Fresh);
        const EditBoxModel& Model = Box->Model();
        Highlighter.SetEditorColors(Model.CodeColor(), Model.StringLiteralColor(),
                                    Model.CommentColor(), Model.BackgroundColor());
        Fresh.SetText(Text);
        Highlighter.HighlightEntireFile();
        for (int32_t At = 0; At < Text.size(); ++At) {
            if (Text[At] == QLatin1Char('\r') || Text[At] == QLatin1Char('\n')) {
                continue;
            }
            if (Box->RichText().ColorAt(At) != Fresh.ColorAt(At)) {
                return QStringLiteral("module %1 at %2 of line \"%3\"")
                    .arg(Box->Model().ModuleNumber())
                    .arg(At)
                    .arg(Text.mid(Text.lastIndexOf(QLatin1Char('\n'), At) + 1)
                             .section(QLatin1Char('\r'), 0, 0));
            }
        }
        return QString();
    }
};

TEST_F(SearchAndReplaceWindowTest, WithASelectionTheDialogOpensWithItAndTheFirstFindIsBehindIt) {
    OpenBlink();
    CaretTo(1, 1, 5);
    Key(1, Qt::Key_Right, Qt::ShiftModifier, 3);
    ASSERT_EQ(SelText(1), QStringLiteral("led"));
    ASSERT_NE(PressForSearch(1, Qt::Key_F), nullptr);
    EXPECT_TRUE(Dialog()->isVisible());
    EXPECT_EQ(Dialog()->txtFindText->text(), QStringLiteral("led"));
    EXPECT_EQ(Dialog()->windowTitle(), QStringLiteral("Find"));
    Click(Dialog()->cmdFindNext);
    EXPECT_EQ(SelStart(1), 20);
    EXPECT_EQ(SelText(1), QStringLiteral("led"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(SearchAndReplaceWindowTest, AnEmptyFindTextDisablesTheThreeButtons) {
    OpenBlink();
    frmSearchAndReplace* Search = PressForSearch(1, Qt::Key_H);
    ASSERT_NE(Search, nullptr);
    ASSERT_EQ(Search->txtFindText->text(), QString()) << "nothing searched in this module yet";
    EXPECT_FALSE(Search->cmdFindNext->isEnabled());
    EXPECT_FALSE(Search->cmdReplaceOnce->isEnabled());
    EXPECT_FALSE(Search->cmdReplaceAll->isEnabled());
    Type(Search->txtFindText, QStringLiteral("x"));
    EXPECT_TRUE(Search->cmdFindNext->isEnabled());
    EXPECT_TRUE(Search->cmdReplaceOnce->isEnabled());
    EXPECT_TRUE(Search->cmdReplaceAll->isEnabled());
    ClearText(Search->txtFindText);
    EXPECT_FALSE(Search->cmdFindNext->isEnabled());
    EXPECT_FALSE(Search->cmdReplaceOnce->isEnabled());
    EXPECT_FALSE(Search->cmdReplaceAll->isEnabled());
}

TEST_F(SearchAndReplaceWindowTest, MovingTheCaretBetweenTwoFindsRestartsTheSearchAtTheCaret) {
    OpenBlink();
    ASSERT_NE(PressForSearch(1, Qt::Key_F), nullptr);
    Type(Dialog()->txtFindText, QStringLiteral("led"));
    Click(Dialog()->cmdFindNext);
    ASSERT_EQ(SelStart(1), 4);
    CaretTo(1, 4, 1);
    Click(Dialog()->cmdFindNext);
    EXPECT_EQ(SelStart(1), 44) << "the match in line 4, not the one after the last";
    EXPECT_EQ(SelText(1), QStringLiteral("led"));
}

TEST_F(SearchAndReplaceWindowTest, WithoutAMatchInTheModuleTheMessageNamesTheTextAndTheCaretStays) {
    OpenBlink();
    CaretTo(1, 2, 3);
    ASSERT_NE(PressForSearch(1, Qt::Key_F), nullptr);
    Type(Dialog()->txtFindText, QStringLiteral("Blink"));
    Click(Dialog()->optCurrentModule);
    Click(Dialog()->cmdFindNext);
    EXPECT_EQ(Messages(), QStringList{QStringLiteral("String Not Found|String not found: Blink")});
    EXPECT_EQ(ActiveModule(), 1) << "module 2 has it, but only this module was searched";
    EXPECT_EQ(SelStart(1), 22);
    EXPECT_EQ(SelText(1), QString());
}

TEST_F(SearchAndReplaceWindowTest, ReplaceWithNoMatchSelectedFindsFirstAndTheNextClickReplaces) {
    OpenBlink();
    frmSearchAndReplace* Search = PressForSearch(1, Qt::Key_H);
    ASSERT_NE(Search, nullptr);
    EXPECT_EQ(Search->windowTitle(), QStringLiteral("Replace"));
    Type(Search->txtFindText, QStringLiteral("led"));
    Type(Search->txtReplaceText, QStringLiteral("lamp"));
    Click(Search->cmdReplaceOnce);
    EXPECT_EQ(Module(1)->Text(), QString::fromLatin1(MainText)) << "nothing replaced yet";
    EXPECT_EQ(SelStart(1), 4);
    EXPECT_EQ(SelText(1), QStringLiteral("led"));
    Click(Search->cmdReplaceOnce);
    EXPECT_TRUE(Module(1)->Text().startsWith(QStringLiteral("Dim lamp As Integer\r\nled = 1")));
    EXPECT_EQ(SelStart(1), 21) << "and the next match is selected";
    EXPECT_EQ(SelText(1), QStringLiteral("led"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(SearchAndReplaceWindowTest, ReplaceAllSaysStringNotFoundOnlyWhenThereIsNoOccurrence) {
    OpenBlink();
    frmSearchAndReplace* Search = PressForSearch(1, Qt::Key_H);
    ASSERT_NE(Search, nullptr);
    Type(Search->txtFindText, QStringLiteral("Blink"));
    Type(Search->txtReplaceText, QStringLiteral("Flash"));
    Click(Search->cmdReplaceAll);
    EXPECT_EQ(Messages(), QStringList{QStringLiteral("String Not Found|String not found: Blink")});
    EXPECT_EQ(Module(1)->Text(), QString::fromLatin1(MainText));
    Boxes->Boxes.clear();
    ClearText(Search->txtFindText);
    Type(Search->txtFindText, QStringLiteral("Integer"));
    Click(Search->cmdReplaceAll);
    EXPECT_EQ(Messages(), QStringList()) << "no count and no message on success";
    EXPECT_TRUE(Module(1)->Text().startsWith(QStringLiteral("Dim led As Flash\r\n")));
}

TEST_F(SearchAndReplaceWindowTest, AfterAnyReplaceTheClipboardHoldsTheReplacementText) {
    OpenBlink();
    ClipboardService::Instance().SetText(QStringLiteral("the user's own"));
    frmSearchAndReplace* Search = PressForSearch(1, Qt::Key_H);
    ASSERT_NE(Search, nullptr);
    Type(Search->txtFindText, QStringLiteral("led"));
    Type(Search->txtReplaceText, QStringLiteral("lamp"));
    Click(Search->cmdReplaceOnce);
    EXPECT_EQ(ClipboardService::Instance().GetText(), QStringLiteral("the user's own"))
        << "a find alone leaves the clipboard";
    Click(Search->cmdReplaceOnce);
    EXPECT_EQ(ClipboardService::Instance().GetText(), QStringLiteral("lamp"));
    ClipboardService::Instance().SetText(QStringLiteral("the user's own"));
    ClearText(Search->txtReplaceText);
    Type(Search->txtReplaceText, QStringLiteral("bulb"));
    Click(Search->cmdReplaceAll);
    EXPECT_EQ(ClipboardService::Instance().GetText(), QStringLiteral("bulb"));
}

TEST_F(SearchAndReplaceWindowTest, AReplaceDoesNotMarkTheModuleChangedByItself) {
    OpenBlink();
    frmSearchAndReplace* Search = PressForSearch(1, Qt::Key_H);
    ASSERT_NE(Search, nullptr);
    Type(Search->txtFindText, QStringLiteral("led"));
    Type(Search->txtReplaceText, QStringLiteral("lamp"));
    Click(Search->cmdReplaceOnce);
    Click(Search->cmdReplaceOnce);
    Click(Search->cmdReplaceAll);
    EXPECT_EQ(Module(1)->Text().count(QStringLiteral("lamp")), 4);
    EXPECT_FALSE(Module(1)->HasChanged());
    EXPECT_FALSE(Project().HasChanged(1));
}

TEST_F(SearchAndReplaceWindowTest, FindNextWithTheSearchWindowClosedSearchesOnceWithoutShowingIt) {
    OpenBlink();
    ASSERT_NE(PressForSearch(1, Qt::Key_F), nullptr);
    Type(Dialog()->txtFindText, QStringLiteral("led"));
    Click(Dialog()->cmdFindNext);
    ASSERT_EQ(SelStart(1), 4);
    Click(Dialog()->cmdCancel);
    Settle();
    ASSERT_EQ(Dialog(), nullptr);
    ActivateEditor();
    ShowSpy Spy;
    qApp->installEventFilter(&Spy);
    Key(1, Qt::Key_F3);
    EXPECT_EQ(SelStart(1), 20) << "the module's last search, once";
    EXPECT_EQ(SelText(1), QStringLiteral("led"));
    EXPECT_EQ(Dialog(), nullptr) << "unloaded again";
    Key(1, Qt::Key_F3);
    EXPECT_EQ(SelStart(1), 31);
    qApp->removeEventFilter(&Spy);
    EXPECT_EQ(Spy.Shown, 0);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(SearchAndReplaceWindowTest, FindNextWithTheSearchWindowOpenIsItsFindNext) {
    OpenBlink();
    ASSERT_NE(PressForSearch(1, Qt::Key_F), nullptr);
    Type(Dialog()->txtFindText, QStringLiteral("led"));
    ActivateEditor();
    Key(1, Qt::Key_F3);
    Key(1, Qt::Key_F3);
    EXPECT_EQ(SelStart(1), 20);
    ASSERT_NE(Dialog(), nullptr);
    EXPECT_TRUE(Dialog()->isVisible());
}

TEST_F(SearchAndReplaceWindowTest, EnterInTheFindTextIsFindNext) {
    OpenBlink();
    ASSERT_NE(PressForSearch(1, Qt::Key_F), nullptr);
    Type(Dialog()->txtFindText, QStringLiteral("led"));
    QTest::keyClick(Dialog()->txtFindText, Qt::Key_Return);
    Settle();
    EXPECT_EQ(SelStart(1), 4) << "one find, not two";
    QTest::keyClick(Dialog()->txtFindText, Qt::Key_Return);
    Settle();
    EXPECT_EQ(SelStart(1), 20);
    ASSERT_NE(Dialog(), nullptr);
    EXPECT_TRUE(Dialog()->isVisible());
}

TEST_F(SearchAndReplaceWindowTest, TheFindModeKeepsTheReplaceControlsBackUntilReplaceIsClicked) {
    OpenBlink();
    Click(qobject_cast<QToolButton*>(
        Editor->barEditorToolbar->widgetForAction(Editor->ToolBarButton(QStringLiteral("Find")))));
    frmSearchAndReplace* Search = Dialog();
    ASSERT_NE(Search, nullptr);
    ASSERT_TRUE(Search->isVisible());
    Type(Search->txtFindText, QStringLiteral("led"));
    EXPECT_EQ(Search->windowTitle(), QStringLiteral("Find"));
    EXPECT_EQ(Search->cmdReplaceOnce->text(), QStringLiteral("Replace..."));
    EXPECT_FALSE(Search->cmdReplaceAll->isVisible());
    EXPECT_FALSE(Search->cmdReplaceAll->isEnabled());
    EXPECT_FALSE(Search->lblReplaceWith->isVisible());
    EXPECT_TRUE(Search->txtReplaceText->isVisible());
    EXPECT_EQ(Search->txtReplaceText->palette().color(QPalette::Base),
              Search->palette().color(QPalette::Window));
    Click(Search->cmdReplaceOnce);
    EXPECT_EQ(Module(1)->Text(), QString::fromLatin1(MainText));
    EXPECT_EQ(SelText(1), QString()) << "the first click only opens the replace mode";
    EXPECT_EQ(Search->windowTitle(), QStringLiteral("Replace"));
    EXPECT_EQ(Search->cmdReplaceOnce->text(), QStringLiteral("Replace"));
    EXPECT_TRUE(Search->cmdReplaceAll->isVisible());
    EXPECT_TRUE(Search->cmdReplaceAll->isEnabled());
    EXPECT_TRUE(Search->lblReplaceWith->isVisible());
    EXPECT_EQ(Search->txtReplaceText->palette().color(QPalette::Base), QColor(Qt::white));
}

TEST_F(SearchAndReplaceWindowTest, CancelUnloadsAndTheNextFindStartsFromTheNewSelection) {
    OpenBlink();
    ASSERT_NE(PressForSearch(1, Qt::Key_H), nullptr);
    Type(Dialog()->txtFindText, QStringLiteral("led"));
    Click(Dialog()->chkMatchCase);
    Click(Dialog()->cmdCancel);
    Settle();
    EXPECT_EQ(Dialog(), nullptr);
    ActivateEditor();
    CaretTo(1, 1, 12);
    Key(1, Qt::Key_Right, Qt::ShiftModifier, 7);
    ASSERT_NE(PressForSearch(1, Qt::Key_F), nullptr);
    EXPECT_EQ(Dialog()->txtFindText->text(), QStringLiteral("Integer"));
    EXPECT_EQ(Dialog()->windowTitle(), QStringLiteral("Find")) << "loaded afresh, in the find mode";
    EXPECT_FALSE(Dialog()->chkMatchCase->isChecked());
    EXPECT_TRUE(Dialog()->optCurrentModule->isChecked());
    EXPECT_FALSE(Dialog()->optCurrentProject->isChecked());
}

TEST_F(SearchAndReplaceWindowTest, ProjectFindGoesOnInTheNextModulesAndBringsTheMatchForward) {
    OpenBlink();
    ClickTab(2);
    frmSearchAndReplace* Search = PressForSearch(2, Qt::Key_F);
    ASSERT_NE(Search, nullptr);
    Type(Search->txtFindText, QStringLiteral("led"));
    Click(Search->chkMatchWholeWordOnly);
    Click(Search->optCurrentProject);
    Click(Search->cmdFindNext);
    EXPECT_EQ(ActiveModule(), 2);
    EXPECT_EQ(SelStart(2), 15);
    Click(Search->cmdFindNext);
    EXPECT_EQ(ActiveModule(), 1) << "past module 3, which has none, to the first";
    EXPECT_EQ(Editor->tabEditTabStrip->currentIndex(), 0);
    EXPECT_EQ(SelStart(1), 4);
    EXPECT_EQ(SelText(1), QStringLiteral("led"));
    EXPECT_EQ(SelStart(3), 0) << "the module passed through was searched from its top";
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

// Lines of code, strings and comments; "q" stands where a replacement will
// put a quote or an apostrophe and so change the colours of the rest of its line.
QByteArray ColourfulModule(int Module, int Lines) {
    QByteArray Text;
    for (int Line = 0; Line < Lines; ++Line) {
        switch (Line % 5) {
            case 0:
                Text +=
                    QStringLiteral("x%1 = \"q%2\" + y ' note q\r\n").arg(Line).arg(Module).toUtf8();
                break;
            case 1:
                Text += QStringLiteral("q = q + %1 ' it's q \"here\"\r\n").arg(Line).toUtf8();
                break;
            case 2:
                Text += QStringLiteral("Print \"a\"\"q\" : q\r\n").toUtf8();
                break;
            case 3:
                Text += QStringLiteral("' q \"open\r\n").toUtf8();
                break;
            default:
                Text += QStringLiteral("  z = q%1\r\n").arg(Line).toUtf8();
                break;
        }
    }
    return Text;
}

TEST_F(SearchAndReplaceWindowTest, ProjectReplaceAllColoursEveryChangedLineAsAFreshHighlighting) {
    OpenProject({ColourfulModule(1, 200), ColourfulModule(2, 200), ColourfulModule(3, 200)});
    ClickTab(2);
    CaretTo(2, 7, 3);
    const QString Original[] = {Module(1)->Text(), Module(2)->Text(), Module(3)->Text()};
    frmSearchAndReplace* Search = PressForSearch(2, Qt::Key_H);
    ASSERT_NE(Search, nullptr);
    Click(Search->optCurrentProject);
    // A quote in the place of each q: strings open and close anew on every line.
    Type(Search->txtFindText, QStringLiteral("q"));
    Type(Search->txtReplaceText, QStringLiteral("\"q"));
    Click(Search->cmdReplaceAll);
    ASSERT_EQ(Messages(), QStringList());
    EXPECT_EQ(ActiveModule(), 2) << "once round the project, back where it began";
    QString Replaced[3];
    for (int Number = 1; Number <= 3; ++Number) {
        Replaced[Number - 1] = Module(Number)->Text();
        EXPECT_EQ(
            Replaced[Number - 1],
            QString(Original[Number - 1]).replace(QStringLiteral("q"), QStringLiteral("\"q")));
        EXPECT_EQ(FirstWrongColour(Module(Number)), QString());
    }
    // And an apostrophe before each of them: comments begin in the midst of lines.
    ClearText(Search->txtFindText);
    Type(Search->txtFindText, QStringLiteral("\"q"));
    ClearText(Search->txtReplaceText);
    Type(Search->txtReplaceText, QStringLiteral("'\"q"));
    Click(Search->cmdReplaceAll);
    for (int Number = 1; Number <= 3; ++Number) {
        EXPECT_EQ(FirstWrongColour(Module(Number)), QString());
        EXPECT_FALSE(Module(Number)->HasChanged());
    }
    // Each Replace All is one step of the user's undo in each module.
    Click(Search->cmdCancel);
    ActivateEditor();
    for (int Number = 1; Number <= 3; ++Number) {
        ClickTab(Number);
        Key(Number, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(Module(Number)->Text(), Replaced[Number - 1]);
        Key(Number, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(Module(Number)->Text(), Original[Number - 1]);
        EXPECT_FALSE(Module(Number)->rtfEditBox->document()->isUndoAvailable());
    }
}

}  // namespace
