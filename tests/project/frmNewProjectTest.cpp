#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include "frame/frmWorkPathDefinition.h"
#include "project/frmNewProject.h"
#include "support/QtPrinters.h"
#include "support/SourceEditorFixture.h"
#include "support/UserActions.h"

namespace {

using namespace UserActions;

const QByteArray FirstModuleText = "Option Explicit\r\n\r\nPublic Sub Main()\r\n\r\nEnd Sub\r\n";

class NewProjectWindowTest : public SourceEditorFixture {
  protected:
    // File, New Project: the dialog, if it came.
    frmNewProject* ChooseNewProject() {
        Editor->mnuNewProject->trigger();
        Settle();
        return Dialog();
    }
    static frmNewProject* Dialog() {
        return Global<frmNewProject>::IsLoaded() ? &Global<frmNewProject>::Get() : nullptr;
    }
};

TEST_F(NewProjectWindowTest, NewProjectShowsTheDialogWithItsDefaultsNotModally) {
    frmNewProject* New = ChooseNewProject();
    ASSERT_NE(New, nullptr);
    EXPECT_TRUE(New->isVisible());
    EXPECT_FALSE(New->isModal());
    EXPECT_EQ(New->parentWidget(), Editor);
    EXPECT_EQ(New->txtNewProjectName->text(), QStringLiteral("Project1"));
    EXPECT_EQ(New->txtModuleName->text(), QStringLiteral("Module1"));
    EXPECT_TRUE(New->chkIncludeModule->isChecked());
    EXPECT_EQ(New->txtProjectDirectory->text(), TempPath());
}

TEST_F(NewProjectWindowTest,
       ClearingIncludeModuleDisablesAndEmptiesTheNameAndCheckingBringsModule1) {
    frmNewProject* New = ChooseNewProject();
    ASSERT_NE(New, nullptr);
    TypeOver(New->txtModuleName, QStringLiteral("Motor"));
    Click(New->chkIncludeModule);
    EXPECT_FALSE(New->chkIncludeModule->isChecked());
    EXPECT_FALSE(New->txtModuleName->isEnabled());
    EXPECT_FALSE(New->lblModuleName->isEnabled());
    EXPECT_TRUE(New->txtModuleName->text().isEmpty());
    Click(New->chkIncludeModule);
    EXPECT_TRUE(New->txtModuleName->isEnabled());
    EXPECT_TRUE(New->lblModuleName->isEnabled());
    EXPECT_EQ(New->txtModuleName->text(), QStringLiteral("Module1"));
}

TEST_F(NewProjectWindowTest, OkMakesTheProjectWithItsFirstModuleAndTheDialogGoes) {
    frmNewProject* New = ChooseNewProject();
    ASSERT_NE(New, nullptr);
    TypeOver(New->txtNewProjectName, QStringLiteral("blink"));
    TypeOver(New->txtModuleName, QStringLiteral("Main"));
    Click(New->cmdOK);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(Global<frmNewProject>::IsLoaded());
    EXPECT_TRUE(Boxes->Boxes.isEmpty()) << BoxMessages().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(Editor->windowTitle(), QStringLiteral("Kavlin Editor - blink"));
    EXPECT_EQ(TabTexts(), QStringList{QStringLiteral("Main")});
    ASSERT_NE(Module(1), nullptr);
    EXPECT_EQ(Module(1)->Text(), QString::fromLatin1(FirstModuleText));
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")), QByteArray("Main.bas\r\n"));
    EXPECT_EQ(TempFileBytes(QStringLiteral("Main.bas")), FirstModuleText);
    EXPECT_EQ(QFileInfo(TempFile(QStringLiteral("blink.prf"))).size(), 8610);
    EXPECT_TRUE(Editor->mnuSaveProject->isEnabled());
    EXPECT_EQ(Editor->mnuOpenRecentProject[0]->text(), QStringLiteral("&1 ..\\blink"));
}

TEST_F(NewProjectWindowTest, IllegalProjectNameKeepsTheDialogWithTheFocusOnTheName) {
    frmNewProject* New = ChooseNewProject();
    ASSERT_NE(New, nullptr);
    TypeOver(New->txtNewProjectName, QStringLiteral("my project"));
    QTest::mouseClick(New->txtModuleName, Qt::LeftButton);  // the focus elsewhere
    ASSERT_EQ(New->focusWidget(), New->txtModuleName);
    Click(New->cmdOK);
    EXPECT_EQ(BoxMessages(),
              QStringList{QStringLiteral("Illegal Project Name|Illegal project name: "
                                         "my project\nMust be legal Basic identifier")});
    EXPECT_TRUE(New->isVisible());
    EXPECT_EQ(New->focusWidget(), New->txtNewProjectName);
    EXPECT_FALSE(Project().IsDefined());
    EXPECT_TRUE(QDir(TempPath()).entryList({QStringLiteral("*.kvp")}).isEmpty());
}

TEST_F(NewProjectWindowTest, IllegalModuleNameKeepsTheDialogWithTheFocusOnTheModuleName) {
    frmNewProject* New = ChooseNewProject();
    ASSERT_NE(New, nullptr);
    TypeOver(New->txtModuleName, QStringLiteral("2nd"));
    Click(New->cmdOK);
    EXPECT_EQ(BoxMessages(), QStringList{QStringLiteral("Illegal Module Name|Illegal module name: "
                                                        "2nd\nMust be legal Basic identifier")});
    EXPECT_TRUE(New->isVisible());
    EXPECT_EQ(New->focusWidget(), New->txtModuleName);
    EXPECT_FALSE(Project().IsDefined());
}

TEST_F(NewProjectWindowTest, ANewProjectOverAnExistingFileAsksThenReplacesIt) {
    WriteFile(QStringLiteral("Project1.kvp"), "old.bas\r\n");
    frmNewProject* New = ChooseNewProject();
    ASSERT_NE(New, nullptr);
    Boxes->QueueAnswer(7);
    Click(New->cmdOK);
    EXPECT_EQ(
        BoxMessages(),
        QStringList{QStringLiteral("Replace File|") + TempFile(QStringLiteral("Project1.kvp")) +
                    QStringLiteral(" already exists.\nDo you want to replace it?")});
    EXPECT_TRUE(New->isVisible());
    EXPECT_EQ(TempFileBytes(QStringLiteral("Project1.kvp")), QByteArray("old.bas\r\n"));
    Boxes->QueueAnswer(6);
    Click(New->cmdOK);
    EXPECT_EQ(Boxes->Boxes.size(), 2);
    EXPECT_EQ(TempFileBytes(QStringLiteral("Project1.kvp")), QByteArray("Module1.bas\r\n"));
    EXPECT_EQ(TempFileBytes(QStringLiteral("Module1.bas")), FirstModuleText);
    EXPECT_EQ(Editor->windowTitle(), QStringLiteral("Kavlin Editor - Project1"));
}

TEST_F(NewProjectWindowTest, ANewProjectWithNoModuleIsOpenAndEmpty) {
    frmNewProject* New = ChooseNewProject();
    ASSERT_NE(New, nullptr);
    Click(New->chkIncludeModule);
    Click(New->cmdOK);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_TRUE(Project().IsDefined());
    EXPECT_EQ(Project().ModuleCount(), 0);
    EXPECT_EQ(Editor->tabEditTabStrip->count(), 0);
    EXPECT_EQ(TempFileBytes(QStringLiteral("Project1.kvp")), QByteArray("\r\n"));
    EXPECT_FALSE(QFile::exists(TempFile(QStringLiteral("Module1.bas"))));
}

TEST_F(NewProjectWindowTest, AModuleFileThatIsThereAlreadyIsAddedWithItsText) {
    WriteFile(QStringLiteral("Module1.bas"), "x = 1\r\n");
    frmNewProject* New = ChooseNewProject();
    ASSERT_NE(New, nullptr);
    Click(New->cmdOK);
    ASSERT_NE(Module(1), nullptr);
    EXPECT_EQ(Module(1)->Text(), QStringLiteral("x = 1\r\n"));
    EXPECT_EQ(TempFileBytes(QStringLiteral("Module1.bas")), QByteArray("x = 1\r\n"));
}

TEST_F(NewProjectWindowTest, CancelMakesNothing) {
    frmNewProject* New = ChooseNewProject();
    ASSERT_NE(New, nullptr);
    Click(New->cmdCancel);
    EXPECT_FALSE(Global<frmNewProject>::IsLoaded());
    EXPECT_FALSE(Project().IsDefined());
    EXPECT_TRUE(QDir(TempPath()).entryList(QDir::Files).isEmpty());
}

TEST_F(NewProjectWindowTest, ChangeDirectorySetsTheWorkPathAndShowsIt) {
    const QString Projects = TempFile(QStringLiteral("projects"));
    QDir().mkpath(Projects);
    frmNewProject* New = ChooseNewProject();
    ASSERT_NE(New, nullptr);
    bool Shown = false;
    QTimer::singleShot(0, New, [&Shown, Projects] {
        auto* Path = qobject_cast<frmWorkPathDefinition*>(QApplication::activeModalWidget());
        if (Path == nullptr) {
            return;
        }
        Shown = true;
        TypeOver(Path->txtWorkPath, Projects);
        Click(Path->cmdOK);
        if (Path->isVisible()) {
            Path->reject();
        }
    });
    Click(New->cmdChangeDirectory);
    EXPECT_TRUE(Shown);
    EXPECT_EQ(New->txtProjectDirectory->text(), Projects);
    EXPECT_EQ(Setting(QStringLiteral("Work_Dir")), Projects);
    Click(New->cmdOK);
    EXPECT_TRUE(QFile::exists(Projects + QStringLiteral("/Project1.kvp")));
    EXPECT_TRUE(QFile::exists(Projects + QStringLiteral("/Module1.bas")));
}

TEST_F(NewProjectWindowTest, CancellingTheSaveQuestionShowsNoDialog) {
    WriteFile(QStringLiteral("blink.kvp"), "main.bas\r\n");
    WriteFile(QStringLiteral("main.bas"), "a");
    WriteFile(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
    Dialogs->Answers.push_back(TempFile(QStringLiteral("blink.kvp")));
    Editor->mnuOpenProject->trigger();
    Settle();
    ASSERT_NE(Module(1), nullptr);
    QTest::keyClicks(Module(1)->rtfEditBox, QStringLiteral("b"));
    Settle();
    Boxes->QueueAnswer(2);
    EXPECT_EQ(ChooseNewProject(), nullptr);
    EXPECT_EQ(BoxMessages(), QStringList{QStringLiteral("Save Module|Save changes to main?")});
}

}  // namespace
