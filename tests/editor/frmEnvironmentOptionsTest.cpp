#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTimer>
#include <functional>

#include "chip/PrfRecordType.h"
#include "editor/SyntaxHighlighterType.h"
#include "editor/frmEnvironmentOptions.h"
#include "support/QtPrinters.h"
#include "support/ScriptedFontDialogService.h"
#include "support/SourceEditorFixture.h"
#include "support/UserActions.h"

namespace {

using namespace UserActions;

class EnvironmentOptionsWindowTest : public SourceEditorFixture {
  protected:
    void SetUp() override {
        // A downloader closed by an earlier case asked the application to quit
        // while no loop ran, and the dialog's loop would end at once; the
        // application's own loop, run once, takes that request.
        QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
        QCoreApplication::exec();
        SourceEditorFixture::SetUp();
        auto Scripted = std::make_unique<ScriptedFontDialogService>();
        Fonts = Scripted.get();
        FontDialogService::Install(std::move(Scripted));
    }
    void TearDown() override {
        FontDialogService::Install(std::make_unique<CancellingFontDialogService>());
        SourceEditorFixture::TearDown();
    }
    int32_t PrfRecord(int32_t Number) const {
        return PrfRecordType::Decode(TempFileBytes(QStringLiteral("blink.prf")),
                                     PrfRecordType::OffsetOf(Number))
            .Value;
    }
    void OpenBlink() {
        WriteFile(QStringLiteral("blink.kvp"), "main.bas\r\nled.bas\r\n");
        WriteFile(QStringLiteral("main.bas"), "x = \"on\" ' lit\r\n");
        WriteFile(QStringLiteral("led.bas"), "' off\r\ny = 1");
        Dialogs->Answers.push_back(TempFile(QStringLiteral("fresh.kvp")));
        Editor->mnuOpenProject->trigger();  // a new project writes a preference file
        QFile::rename(TempFile(QStringLiteral("fresh.prf")), TempFile(QStringLiteral("blink.prf")));
        Dialogs->Answers.push_back(TempFile(QStringLiteral("blink.kvp")));
        Editor->mnuOpenProject->trigger();
        Settle();
        ASSERT_EQ(Project().ModuleCount(), 2);
    }
    // Options, Environment from the menu; Steps act on the dialog while it is
    // up. A dialog still up after them is noted and left by Cancel.
    void WithOptions(const std::function<void(frmEnvironmentOptions&)>& Steps) {
        Shown = false;
        StillOpen = false;
        QTimer::singleShot(0, Editor, [this, Steps] {
            auto* Dialog = qobject_cast<frmEnvironmentOptions*>(QApplication::activeModalWidget());
            if (Dialog == nullptr) {
                return;
            }
            Shown = true;
            Steps(*Dialog);
            StillOpen = Dialog->isVisible();
            if (StillOpen) {
                Click(Dialog->cmdCancel);
            }
        });
        Editor->mnuEnvironmentOptions->trigger();
        Settle();
    }
    static uint32_t Color(int Index) {
        return static_cast<uint32_t>(SyntaxHighlighterType::ColorFromIndex(Index));
    }

    ScriptedFontDialogService* Fonts = nullptr;
    bool Shown = false;
    bool StillOpen = false;
};

TEST_F(EnvironmentOptionsWindowTest, MenuShowsTheDialogModallyWithTheStoredSettings) {
    SetSetting(QStringLiteral("Save_File"), QStringLiteral("False"));
    SetSetting(QStringLiteral("Tab_Width"), QStringLiteral("6"));
    SetSetting(QStringLiteral("Comment_Color"), QStringLiteral("12"));
    WithOptions([](frmEnvironmentOptions& Dialog) {
        EXPECT_TRUE(Dialog.isModal());
        EXPECT_EQ(Dialog.windowTitle(), QStringLiteral("Environment"));
        EXPECT_EQ(Dialog.SSTab1->tabText(0), QStringLiteral("Project Options"));
        EXPECT_EQ(Dialog.SSTab1->tabText(1), QStringLiteral("Editor Options"));
        EXPECT_EQ(Dialog.Frame1->title(), QStringLiteral("When  Compiling"));
        EXPECT_TRUE(Dialog.optPromptToSaveChanges->isChecked());
        EXPECT_FALSE(Dialog.optSaveChanges->isChecked());
        EXPECT_TRUE(Dialog.chkStrictSyntaxRules->isChecked());
        EXPECT_TRUE(Dialog.chkOptimizeEnable->isChecked());
        EXPECT_EQ(Dialog.txtMaxVstr->text(), QStringLiteral("16"));
        EXPECT_EQ(Dialog.cboTabWidth->currentText(), QStringLiteral("6"));
        EXPECT_EQ(Dialog.cboTabWidth->count(), 7);
        EXPECT_EQ(Dialog.icbCodeColor->currentData().toString(), QStringLiteral("Blue"));
        EXPECT_EQ(Dialog.icbCommentColor->currentData().toString(), QStringLiteral("LightRed"));
        EXPECT_EQ(Dialog.icbStringLiteralColor->currentData().toString(), QStringLiteral("Gray"));
        EXPECT_EQ(Dialog.icbBackgroundColor->currentData().toString(),
                  QStringLiteral("BrightWhite"));
        EXPECT_EQ(Dialog.icbCodeColor->count(), 16);
        EXPECT_TRUE(Dialog.icbCodeColor->currentText().isEmpty()) << "a swatch and no text";
        EXPECT_EQ(Dialog.txtEditorFontName->text(), QStringLiteral("Courier New"));
        EXPECT_EQ(Dialog.txtEditorFontSize->text(), QStringLiteral("9"));
    });
    EXPECT_TRUE(Shown);
    EXPECT_FALSE(Global<frmEnvironmentOptions>::IsLoaded()) << "unloaded when it closes";
}

TEST_F(EnvironmentOptionsWindowTest, WithNoProjectThisProjectIsDisabledEmptyAndOkTouchesNoProject) {
    WithOptions([](frmEnvironmentOptions& Dialog) {
        EXPECT_FALSE(Dialog.fraProjectOptionsCUR->isEnabled());
        EXPECT_FALSE(Dialog.chkStrictSyntaxRulesCUR->isEnabled());
        EXPECT_FALSE(Dialog.chkOptimizeEnableCUR->isEnabled());
        EXPECT_FALSE(Dialog.txtMaxVstrCUR->isEnabled());
        EXPECT_FALSE(Dialog.lblMaxVstrCUR->isEnabled());
        EXPECT_FALSE(Dialog.chkStrictSyntaxRulesCUR->isChecked());
        EXPECT_FALSE(Dialog.chkOptimizeEnableCUR->isChecked());
        EXPECT_TRUE(Dialog.txtMaxVstrCUR->text().isEmpty());
        Click(Dialog.cmdOK);
    });
    EXPECT_FALSE(StillOpen);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_FALSE(Project().IsDefined());
    EXPECT_TRUE(QDir(TempPath()).entryList({QStringLiteral("*.prf")}).isEmpty());
    EXPECT_EQ(Setting(QStringLiteral("Save_File")), QStringLiteral("True"));
}

TEST_F(EnvironmentOptionsWindowTest, WhatTheUserSetsIsStoredOnOk) {
    WithOptions([](frmEnvironmentOptions& Dialog) {
        Click(Dialog.optPromptToSaveChanges);
        Click(Dialog.chkStrictSyntaxRules);
        TypeOver(Dialog.txtMaxVstr, QStringLiteral("40"));
        Click(Dialog.cmdOK);
    });
    EXPECT_FALSE(StillOpen);
    EXPECT_TRUE(Boxes->Boxes.isEmpty()) << BoxMessages().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(Setting(QStringLiteral("Save_File")), QStringLiteral("False"));
    EXPECT_EQ(Setting(QStringLiteral("Strict_Syntax_Rules")), QStringLiteral("False"));
    EXPECT_EQ(Setting(QStringLiteral("Optimize_Enable")), QStringLiteral("True"));
    EXPECT_EQ(Setting(QStringLiteral("MaxVstr")), QStringLiteral("40"));
    EXPECT_EQ(Setting(QStringLiteral("Tab_Width")), QStringLiteral("4"));
    EXPECT_EQ(Setting(QStringLiteral("Text_Color")), QStringLiteral("1"));
    EXPECT_EQ(Setting(QStringLiteral("String_Literal_Color")), QStringLiteral("8"));
    EXPECT_EQ(Setting(QStringLiteral("Comment_Color")), QStringLiteral("2"));
    EXPECT_EQ(Setting(QStringLiteral("Background_Color")), QStringLiteral("15"));
    EXPECT_EQ(Setting(QStringLiteral("Editor_Font_Name")), QStringLiteral("Courier New"));
    EXPECT_EQ(Setting(QStringLiteral("Editor_Font_Size")), QStringLiteral("9"));
}

TEST_F(EnvironmentOptionsWindowTest, TabWidthAndColoursChosenFromTheListsAreStored) {
    WithOptions([](frmEnvironmentOptions& Dialog) {
        Click(Dialog.SSTab1->tabBar(), 1);
        Choose(Dialog.cboTabWidth, 6);
        Choose(Dialog.icbCodeColor, 4);
        Choose(Dialog.icbCommentColor, 0);
        Choose(Dialog.icbStringLiteralColor, 13);
        Choose(Dialog.icbBackgroundColor, 7);
        Click(Dialog.cmdOK);
    });
    EXPECT_FALSE(StillOpen);
    EXPECT_EQ(Setting(QStringLiteral("Tab_Width")), QStringLiteral("8"));
    EXPECT_EQ(Setting(QStringLiteral("Text_Color")), QStringLiteral("4"));
    EXPECT_EQ(Setting(QStringLiteral("Comment_Color")), QStringLiteral("0"));
    EXPECT_EQ(Setting(QStringLiteral("String_Literal_Color")), QStringLiteral("13"));
    EXPECT_EQ(Setting(QStringLiteral("Background_Color")), QStringLiteral("7"));
}

TEST_F(EnvironmentOptionsWindowTest,
       LengthOutOfRangeIsRefusedTheDialogStaysAndTheSaveOptionIsKept) {
    WithOptions([this](frmEnvironmentOptions& Dialog) {
        Click(Dialog.optPromptToSaveChanges);
        Click(Dialog.chkOptimizeEnable);
        TypeOver(Dialog.txtMaxVstr, QStringLiteral("65"));
        Click(Dialog.cmdOK);
        EXPECT_TRUE(Dialog.isVisible());
        EXPECT_EQ(QApplication::focusWidget(), Dialog.txtMaxVstr);
        EXPECT_EQ(BoxMessages(),
                  QStringList{QStringLiteral("String Length Overflow|Variable length string size "
                                             "65 is out of range\nRange is 1 to 64 characters")});
    });
    EXPECT_TRUE(StillOpen);
    EXPECT_EQ(Setting(QStringLiteral("Save_File")), QStringLiteral("False"));
    EXPECT_EQ(Setting(QStringLiteral("Optimize_Enable")), QStringLiteral("False"));
    EXPECT_TRUE(Setting(QStringLiteral("MaxVstr")).isEmpty());
}

TEST_F(EnvironmentOptionsWindowTest, ChangeFontShowsTheChosenFontAndCancelStoresNothing) {
    Fonts->Answers.push_back({QStringLiteral("DejaVu Sans Mono"), 12});
    const QMap<QString, QString> Before = Settings->Values();
    WithOptions([](frmEnvironmentOptions& Dialog) {
        Click(Dialog.SSTab1->tabBar(), 1);
        Click(Dialog.cmdChangeFont);
        EXPECT_EQ(Dialog.txtEditorFontName->text(), QStringLiteral("DejaVu Sans Mono"));
        EXPECT_EQ(Dialog.txtEditorFontSize->text(), QStringLiteral("12"));
        Click(Dialog.cmdCancel);
    });
    EXPECT_FALSE(StillOpen);
    ASSERT_EQ(Fonts->Requests.size(), 1);
    EXPECT_EQ(Fonts->Requests[0].FontName, QStringLiteral("Courier New"));
    EXPECT_EQ(Fonts->Requests[0].FontSize, 9);
    EXPECT_EQ(Fonts->Requests[0].MinSize, 8);
    EXPECT_EQ(Fonts->Requests[0].MaxSize, 20);
    EXPECT_EQ(Settings->Values(), Before);
}

TEST_F(EnvironmentOptionsWindowTest, ChangeFontCancelledKeepsTheFontShown) {
    WithOptions([](frmEnvironmentOptions& Dialog) {
        Click(Dialog.SSTab1->tabBar(), 1);
        Click(Dialog.cmdChangeFont);
        EXPECT_EQ(Dialog.txtEditorFontName->text(), QStringLiteral("Courier New"));
        Click(Dialog.cmdOK);
    });
    EXPECT_EQ(Setting(QStringLiteral("Editor_Font_Name")), QStringLiteral("Courier New"));
    EXPECT_EQ(Setting(QStringLiteral("Editor_Font_Size")), QStringLiteral("9"));
}

TEST_F(EnvironmentOptionsWindowTest, NewColoursRecolourEveryOpenModuleAtOnce) {
    OpenBlink();
    WithOptions([](frmEnvironmentOptions& Dialog) {
        Click(Dialog.SSTab1->tabBar(), 1);
        Choose(Dialog.icbCodeColor, 4);
        Choose(Dialog.icbCommentColor, 10);
        Choose(Dialog.icbBackgroundColor, 0);
        Click(Dialog.cmdOK);
    });
    EXPECT_FALSE(StillOpen);
    PlainTextEditRichTextBox& Main = Module(1)->RichText();
    EXPECT_EQ(Main.ColorAt(0), Color(4));
    EXPECT_EQ(Main.ColorAt(10), Color(10));
    PlainTextEditRichTextBox& Led = Module(2)->RichText();
    EXPECT_EQ(Led.ColorAt(0), Color(10));
    EXPECT_EQ(Led.ColorAt(7), Color(4));
    for (int Number : {1, 2}) {
        EXPECT_EQ(Module(Number)->rtfEditBox->palette().color(QPalette::Base).rgb() & 0xFFFFFFu,
                  Color(0))
            << "module " << Number;
    }
}

TEST_F(EnvironmentOptionsWindowTest, ThisProjectsOptionsGoIntoItsPreferenceFile) {
    OpenBlink();
    ASSERT_EQ(PrfRecord(612), 1);
    WithOptions([](frmEnvironmentOptions& Dialog) {
        EXPECT_TRUE(Dialog.fraProjectOptionsCUR->isEnabled());
        EXPECT_TRUE(Dialog.chkStrictSyntaxRulesCUR->isChecked());
        EXPECT_EQ(Dialog.txtMaxVstrCUR->text(), QStringLiteral("16"));
        Click(Dialog.chkStrictSyntaxRulesCUR);
        TypeOver(Dialog.txtMaxVstrCUR, QStringLiteral("64"));
        Click(Dialog.cmdOK);
    });
    EXPECT_FALSE(StillOpen);
    EXPECT_EQ(PrfRecord(612), 0);
    EXPECT_EQ(PrfRecord(607), 1);
    EXPECT_EQ(PrfRecord(615), 64);
    EXPECT_EQ(Setting(QStringLiteral("Strict_Syntax_Rules")), QStringLiteral("True"));
}

TEST_F(EnvironmentOptionsWindowTest, ProjectLengthOutOfRangePutsTheFocusOnItAndWritesNoFile) {
    OpenBlink();
    const QByteArray Before = TempFileBytes(QStringLiteral("blink.prf"));
    WithOptions([](frmEnvironmentOptions& Dialog) {
        TypeOver(Dialog.txtMaxVstrCUR, QStringLiteral("x"));
        Click(Dialog.cmdOK);
        EXPECT_TRUE(Dialog.isVisible());
        EXPECT_EQ(QApplication::focusWidget(), Dialog.txtMaxVstrCUR);
    });
    EXPECT_TRUE(StillOpen);
    EXPECT_EQ(BoxMessages(),
              QStringList{QStringLiteral("String Length Overflow|Variable length string size x "
                                         "is out of range\nRange is 1 to 64 characters")});
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.prf")), Before);
}

}  // namespace
