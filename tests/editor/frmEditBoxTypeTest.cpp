#include <QApplication>
#include <QKeyEvent>
#include <QMdiSubWindow>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include "EditorTestHost.h"
#include "editor/frmEditBoxType.h"
#include "editor/frmPopupMenu.h"
#include "platform/ClipboardService.h"
#include "platform/Global.h"
#include "support/FrameFixture.h"
#include "support/QtPrinters.h"

namespace {

constexpr uint32_t Code = 0x000080;
constexpr uint32_t String = 0x808080;
constexpr uint32_t Comment = 0x008000;

// Records the keys that reach the widget it watches.
class KeySpy : public QObject {
  public:
    bool eventFilter(QObject* Watched, QEvent* Event) override {
        if (Event->type() == QEvent::KeyPress) {
            Pressed << static_cast<QKeyEvent*>(Event)->key();
        }
        return QObject::eventFilter(Watched, Event);
    }
    QList<int> Pressed;
};

class EditBoxWindowTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        ClipboardService::Install(std::make_unique<MemoryClipboardService>());
        Host = std::make_unique<EditorTestHost>();
        Host->show();
        Host->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Host.get(), 2000));
    }
    void TearDown() override {
        Host.reset();
        Global<frmPopupMenu>::Unload();
        FrameFixture::TearDown();
    }
    frmEditBoxType* Open(const QString& Name, int16_t Module, const QString& Source) {
        auto* Box = new frmEditBoxType;
        QMdiSubWindow* Sub = Host->Area->addSubWindow(Box);
        Box->Initialize(Name, Module, Source);
        Sub->show();
        Host->Area->setActiveSubWindow(Sub);
        Box->rtfEditBox->setFocus();
        Settle();
        return Box;
    }
    static void Settle() { QCoreApplication::processEvents(); }
    static void Type(frmEditBoxType* Box, const QString& Keys) {
        QTest::keyClicks(Box->rtfEditBox, Keys);
        Settle();
    }
    static void Key(frmEditBoxType* Box, Qt::Key K, Qt::KeyboardModifiers M = Qt::NoModifier) {
        QTest::keyClick(Box->rtfEditBox, K, M);
        Settle();
    }
    // Colours as letters: C code, S string, M comment; "||" for a break.
    static QString Map(frmEditBoxType* Box) {
        QString Result;
        const QString Text = Box->Text();
        for (int32_t Index = 0; Index < Text.size(); ++Index) {
            if (Text[Index] == QLatin1Char('\r') || Text[Index] == QLatin1Char('\n')) {
                Result += QLatin1Char('|');
                continue;
            }
            const uint32_t Color = Box->RichText().ColorAt(Index);
            Result += Color == Code      ? QLatin1Char('C')
                      : Color == String  ? QLatin1Char('S')
                      : Color == Comment ? QLatin1Char('M')
                                         : QLatin1Char('?');
        }
        return Result;
    }
    static void CaretTo(frmEditBoxType* Box, int32_t Position) {
        Box->RichText().SetSelStart(Position);
        Settle();
    }

    std::unique_ptr<EditorTestHost> Host;
};

TEST_F(EditBoxWindowTest, OpeningColoursTheModuleAndShowsTheCaret) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("x = \"s\" ' c\r\ny = 2"));
    EXPECT_EQ(Box->windowTitle(), QStringLiteral("main"));
    EXPECT_EQ(Map(Box), QStringLiteral("CCCCSSSCMMM||CCCCC"));
    EXPECT_FALSE(Box->HasChanged());
    EXPECT_EQ(Host->Position->text(), QStringLiteral("Ln 1, Col 1"));
    EXPECT_EQ(Host->Mode->text(), QStringLiteral("INS"));
}

TEST_F(EditBoxWindowTest, TypingMarksTheModuleChangedKeepsTheLineNeutralAndMovesTheCaretDisplay) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("a\r\nb"));
    CaretTo(Box, 1);
    Type(Box, QStringLiteral(" = \"s\" ' c"));
    EXPECT_TRUE(Box->HasChanged());
    EXPECT_EQ(Host->Position->text(), QStringLiteral("Ln 1, Col 12"));
    EXPECT_EQ(Map(Box), QStringLiteral("CCCCCCCCCCC||C")) << "neutral while typed";
    Key(Box, Qt::Key_Down);
    EXPECT_EQ(Map(Box), QStringLiteral("CCCCSSSCMMM||C")) << "coloured once left";
    EXPECT_EQ(Host->Position->text(), QStringLiteral("Ln 2, Col 2"));
}

TEST_F(EditBoxWindowTest, EnterColoursTheLineItEndsAndLeavesTheNewOneNeutral) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QString());
    Type(Box, QStringLiteral("a = \"s\""));
    Key(Box, Qt::Key_Return);
    Type(Box, QStringLiteral("' c"));
    EXPECT_EQ(Box->Text(), QStringLiteral("a = \"s\"\r\n' c"));
    EXPECT_EQ(Map(Box), QStringLiteral("CCCCSSS||CCC"));
    Key(Box, Qt::Key_Up);
    EXPECT_EQ(Map(Box), QStringLiteral("CCCCSSS||MMM"));
}

TEST_F(EditBoxWindowTest, UndoAndRedoOfTypingLeaveEveryCharacterInItsColour) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("a = 1\r\nb"));
    CaretTo(Box, 5);
    Type(Box, QStringLiteral(" ' note"));
    Key(Box, Qt::Key_Down);
    ASSERT_EQ(Map(Box), QStringLiteral("CCCCCCMMMMMM||C"));
    const int UndoSteps = Box->rtfEditBox->document()->availableUndoSteps();
    Key(Box, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Box->Text(), QStringLiteral("a = 1\r\nb")) << "the typing is undone";
    EXPECT_EQ(Map(Box), QStringLiteral("CCCCC||C"));
    EXPECT_LT(Box->rtfEditBox->document()->availableUndoSteps(), UndoSteps);
    Key(Box, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Box->Text(), QStringLiteral("a = 1 ' note\r\nb"));
    Key(Box, Qt::Key_Down);
    Key(Box, Qt::Key_Down);
    EXPECT_EQ(Map(Box), QStringLiteral("CCCCCCMMMMMM||C"));
}

TEST_F(EditBoxWindowTest, RedoOfAPastedBlockColoursItsLines) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("x\r\ny"));
    ClipboardService::Instance().SetText(QStringLiteral("\"a\"\r\n' b\r\n"));
    CaretTo(Box, 0);
    Key(Box, Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(Box->Text(), QStringLiteral("\"a\"\r\n' b\r\nx\r\ny"));
    EXPECT_EQ(Map(Box), QStringLiteral("SSS||MMM||C||C"));
    Key(Box, Qt::Key_Z, Qt::ControlModifier);
    ASSERT_EQ(Box->Text(), QStringLiteral("x\r\ny"));
    Key(Box, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(Box->Text(), QStringLiteral("\"a\"\r\n' b\r\nx\r\ny"));
    CaretTo(Box, 14);
    EXPECT_EQ(Map(Box), QStringLiteral("SSS||MMM||C||C"));
}

TEST_F(EditBoxWindowTest, InsertKeyTogglesOvertypeAndItsDisplay) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("abc"));
    Key(Box, Qt::Key_Insert);
    EXPECT_FALSE(Box->InsertMode());
    EXPECT_TRUE(Box->rtfEditBox->overwriteMode());
    EXPECT_EQ(Host->Mode->text(), QStringLiteral("OVR"));
    Type(Box, QStringLiteral("x"));
    EXPECT_EQ(Box->Text(), QStringLiteral("xbc"));
    Key(Box, Qt::Key_Insert);
    EXPECT_TRUE(Box->InsertMode());
    EXPECT_EQ(Host->Mode->text(), QStringLiteral("INS"));
}

TEST_F(EditBoxWindowTest, ActivatedWindowShowsItsOwnModeAndBringsItsTab) {
    frmEditBoxType* First = Open(QStringLiteral("one"), 1, QStringLiteral("a"));
    Key(First, Qt::Key_Insert);
    frmEditBoxType* Second = Open(QStringLiteral("two"), 2, QStringLiteral("b"));
    ASSERT_FALSE(Host->Tabs.isEmpty());
    EXPECT_EQ(Host->Tabs.back(), 2);
    EXPECT_EQ(Host->Mode->text(), QStringLiteral("INS"));
    Host->Area->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(First->parentWidget()));
    Settle();
    ASSERT_FALSE(Host->Tabs.isEmpty());
    EXPECT_EQ(Host->Tabs.back(), 1);
    EXPECT_EQ(Host->Mode->text(), QStringLiteral("OVR"));
    (void)Second;
}

TEST_F(EditBoxWindowTest, SwitchingWindowsColoursTheNeutralLine) {
    frmEditBoxType* First = Open(QStringLiteral("one"), 1, QStringLiteral("a"));
    CaretTo(First, 1);
    Type(First, QStringLiteral(" ' c"));
    ASSERT_EQ(Map(First), QStringLiteral("CCCCC"));
    Open(QStringLiteral("two"), 2, QStringLiteral("b"));
    EXPECT_EQ(Map(First), QStringLiteral("CCMMM"));
}

TEST_F(EditBoxWindowTest, CloseBoxDoesNothingUntilTheModuleAllowsIt) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("a"));
    auto* Sub = qobject_cast<QMdiSubWindow*>(Box->parentWidget());
    ASSERT_NE(Sub, nullptr);
    Sub->close();
    Settle();
    EXPECT_TRUE(Sub->isVisible());
    EXPECT_EQ(Host->Area->subWindowList().size(), 1);
    Box->SetAllowRemoval(true);
    EXPECT_TRUE(Sub->close());
}

TEST_F(EditBoxWindowTest, ShiftInsertPastesAndControlInsertIsTheControls) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("abc"));
    ClipboardService::Instance().SetText(QStringLiteral("Z"));
    CaretTo(Box, 1);
    Key(Box, Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(Box->Text(), QStringLiteral("aZbc"));
    EXPECT_TRUE(Box->InsertMode()) << "shift + Insert is no mode switch";
    Key(Box, Qt::Key_Insert, Qt::ControlModifier);
    EXPECT_TRUE(Box->InsertMode());
    EXPECT_EQ(Box->Text(), QStringLiteral("aZbc"));
}

TEST_F(EditBoxWindowTest, ControlKeysOfTheTable) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("abc"));
    Key(Box, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Box->RichText().SelLength(), 3);
    Key(Box, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(ClipboardService::Instance().GetText(), QStringLiteral("abc"));
    Key(Box, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(Box->Text(), QString());
    EXPECT_TRUE(Box->HasChanged());
}

TEST_F(EditBoxWindowTest, RightButtonPopsUpTheEditMenuWhoseEntriesRunTheMainWindowsCommands) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("abc"));
    QMenu* Menu = Global<frmPopupMenu>::Get().mnuEdit;
    QTimer::singleShot(0, [Menu] {
        EXPECT_TRUE(Menu->isVisible());
        Menu->close();
    });
    QTest::mouseClick(Box->rtfEditBox->viewport(), Qt::RightButton);
    Settle();
    Global<frmPopupMenu>::Get().mnuCopy->trigger();
    Global<frmPopupMenu>::Get().mnuDelete->trigger();
    EXPECT_EQ(Host->Commands, (QStringList{QStringLiteral("Copy"), QStringLiteral("Delete")}));
    QStringList Captions;
    for (QAction* Action : Menu->actions()) {
        Captions << Action->text();
    }
    EXPECT_EQ(Captions, (QStringList{QStringLiteral("Cut"), QStringLiteral("Copy"),
                                     QStringLiteral("Paste"), QStringLiteral("Delete")}));
}

TEST_F(EditBoxWindowTest, WindowSmallerThanFiveKeepsTheControlsLastSize) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("abc"));
    Box->resize(300, 200);
    Settle();
    const QSize Before = Box->rtfEditBox->size();
    EXPECT_EQ(Before, QSize(300, 200));
    Box->resize(3, 3);
    Settle();
    EXPECT_EQ(Box->rtfEditBox->size(), Before);
}

TEST_F(EditBoxWindowTest, PunctuationAndDigitsAreTypedInInsertMode) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("rest"));
    const QString Line = QStringLiteral("x = a - b.c ' (1+2) \"s\" 0123456789");
    Type(Box, Line);
    EXPECT_EQ(Box->Text(), Line + QStringLiteral("rest")) << "nothing overwritten";
    EXPECT_TRUE(Box->InsertMode());
    EXPECT_FALSE(Box->rtfEditBox->overwriteMode());
    EXPECT_EQ(Host->Mode->text(), QStringLiteral("INS"));
}

TEST_F(EditBoxWindowTest, EveryPrintableCharacterIsTypedAsItIs) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QString());
    QString Printable;
    for (char16_t Character = 32; Character < 127; ++Character) {
        Printable += QChar(Character);
    }
    ClipboardService::Instance().SetText(QStringLiteral("Z"));
    Type(Box, Printable);
    EXPECT_EQ(Box->Text(), Printable);
    EXPECT_TRUE(Box->InsertMode());
    EXPECT_EQ(ClipboardService::Instance().GetText(), QStringLiteral("Z"));
}

TEST_F(EditBoxWindowTest, EscapeIsLeftToTheWindowsAroundTheControl) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("abc"));
    KeySpy Spy;
    Box->installEventFilter(&Spy);
    Key(Box, Qt::Key_Escape);
    Box->removeEventFilter(&Spy);
    EXPECT_EQ(Spy.Pressed, QList<int>{Qt::Key_Escape}) << "the control did not take it";
    EXPECT_EQ(Box->Text(), QStringLiteral("abc"));
    EXPECT_FALSE(Box->HasChanged());
}

TEST_F(EditBoxWindowTest, PointTypedWithShiftIsAPointAndNoCut) {
    // Layouts that put "." or "-" on a shifted key send them with Shift.
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("abc"));
    ClipboardService::Instance().SetText(QStringLiteral("Z"));
    Box->RichText().SetSelStart(1);
    Box->RichText().SetSelLength(1);
    Key(Box, Qt::Key_Period, Qt::ShiftModifier);
    EXPECT_EQ(Box->Text(), QStringLiteral("a.c"));
    EXPECT_EQ(ClipboardService::Instance().GetText(), QStringLiteral("Z"));
    Key(Box, Qt::Key_Minus, Qt::ShiftModifier);
    EXPECT_EQ(Box->Text(), QStringLiteral("a.-c")) << "no paste";
    EXPECT_TRUE(Box->InsertMode());
}

TEST_F(EditBoxWindowTest, KeypadMinusAndPointAreTypedAndKeypadInsertSwitchesMode) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("ab"));
    CaretTo(Box, 1);
    Key(Box, Qt::Key_Minus, Qt::KeypadModifier);
    Key(Box, Qt::Key_Period, Qt::KeypadModifier);
    Key(Box, Qt::Key_5, Qt::KeypadModifier);
    EXPECT_EQ(Box->Text(), QStringLiteral("a-.5b"));
    EXPECT_TRUE(Box->InsertMode());
    Key(Box, Qt::Key_Insert, Qt::KeypadModifier);
    EXPECT_FALSE(Box->InsertMode());
    EXPECT_TRUE(Box->rtfEditBox->overwriteMode());
}

TEST_F(EditBoxWindowTest, ShiftDeleteCutsAndControlVPastes) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QStringLiteral("abcd"));
    Box->RichText().SetSelStart(1);
    Box->RichText().SetSelLength(2);
    Key(Box, Qt::Key_Delete, Qt::ShiftModifier);
    EXPECT_EQ(Box->Text(), QStringLiteral("ad"));
    EXPECT_EQ(ClipboardService::Instance().GetText(), QStringLiteral("bc"));
    CaretTo(Box, 2);
    Key(Box, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Box->Text(), QStringLiteral("adbc"));
    Key(Box, Qt::Key_Delete);
    EXPECT_EQ(Box->Text(), QStringLiteral("adbc")) << "Delete at the end removes nothing";
    CaretTo(Box, 0);
    Key(Box, Qt::Key_Delete);
    EXPECT_EQ(Box->Text(), QStringLiteral("dbc")) << "Delete alone is the control's";
    EXPECT_EQ(ClipboardService::Instance().GetText(), QStringLiteral("bc"));
}

TEST_F(EditBoxWindowTest, TabIsKeptAsATabCharacter) {
    frmEditBoxType* Box = Open(QStringLiteral("main"), 1, QString());
    Key(Box, Qt::Key_Tab);
    EXPECT_EQ(Box->Text(), QStringLiteral("\t"));
}

}  // namespace
