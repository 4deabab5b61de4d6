#include <QDir>
#include <QFile>

#include "project/frmProjectFiles.h"
#include "support/QtPrinters.h"
#include "support/SourceEditorFixture.h"
#include "support/UserActions.h"

namespace {

using namespace UserActions;

class ProjectFilesWindowTest : public SourceEditorFixture {
  protected:
    void SetUp() override {
        SourceEditorFixture::SetUp();
        WriteFile(QStringLiteral("blink.kvp"), "main.bas\r\nled.bas\r\nwait.bas\r\n");
        WriteFile(QStringLiteral("main.bas"), "Option Explicit\r\n");
        WriteFile(QStringLiteral("led.bas"), "x = 2");
        WriteFile(QStringLiteral("wait.bas"), "w = 3");
        WriteFile(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
        Dialogs->Answers.push_back(TempFile(QStringLiteral("blink.kvp")));
        Editor->mnuOpenProject->trigger();
        Settle();
        ASSERT_EQ(Project().ModuleCount(), 3);
    }
    // Project, Files: the dialog, if it came.
    frmProjectFiles* ChooseProjectFiles() {
        Editor->mnuProjectFiles->trigger();
        Settle();
        return Global<frmProjectFiles>::IsLoaded() ? &Global<frmProjectFiles>::Get() : nullptr;
    }
    static QStringList Lines(const frmProjectFiles& Dialog) {
        QStringList List;
        for (int Row = 0; Row < Dialog.lstProjectFiles->count(); ++Row) {
            List << Dialog.lstProjectFiles->item(Row)->text();
        }
        return List;
    }
};

TEST_F(ProjectFilesWindowTest, FilesShowsTheModulesUnderTheProjectsName) {
    frmProjectFiles* Files = ChooseProjectFiles();
    ASSERT_NE(Files, nullptr);
    EXPECT_TRUE(Files->isVisible());
    EXPECT_FALSE(Files->isModal());
    EXPECT_EQ(Files->parentWidget(), Editor);
    EXPECT_EQ(Files->windowTitle(), QStringLiteral("blink"));
    EXPECT_EQ(Lines(*Files), (QStringList{QStringLiteral("main.bas"), QStringLiteral("led.bas"),
                                          QStringLiteral("wait.bas")}));
}

TEST_F(ProjectFilesWindowTest, TheToolBarsProjectFilesButtonShowsTheDialog) {
    QAction* Button = Editor->ToolBarButton(QStringLiteral("ProjectFiles"));
    ASSERT_NE(Button, nullptr);
    Button->trigger();
    Settle();
    ASSERT_TRUE(Global<frmProjectFiles>::IsLoaded());
    EXPECT_TRUE(Global<frmProjectFiles>::Get().isVisible());
}

TEST_F(ProjectFilesWindowTest, AddingANewFileCreatesItListsItAndWritesTheProjectFile) {
    frmProjectFiles* Files = ChooseProjectFiles();
    ASSERT_NE(Files, nullptr);
    QDir().mkpath(TempFile(QStringLiteral("lib")));
    Dialogs->Answers.push_back(TempFile(QStringLiteral("lib/motor.bas")));
    Click(Files->cmdAddPrjFile);
    ASSERT_EQ(Dialogs->Requests.size(), 2);
    EXPECT_EQ(Dialogs->Requests[1].InitDir, TempPath());
    EXPECT_EQ(Dialogs->Requests[1].Filter, QStringLiteral("Kavlin Studio Files (*.bas)|*.bas"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty()) << BoxMessages().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(TempFileBytes(QStringLiteral("lib/motor.bas")),
              QByteArray("Option Explicit\r\n\r\n"));
    EXPECT_EQ(Lines(*Files).back(), TempFile(QStringLiteral("lib/motor.bas")));
    EXPECT_EQ(TabTexts().back(), QStringLiteral("motor"));
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")),
              "main.bas\r\nled.bas\r\nwait.bas\r\n" +
                  TempFile(QStringLiteral("lib/motor.bas")).toUtf8() + "\r\n");
}

TEST_F(ProjectFilesWindowTest, CancellingTheFileDialogAddsNothing) {
    frmProjectFiles* Files = ChooseProjectFiles();
    ASSERT_NE(Files, nullptr);
    Click(Files->cmdAddPrjFile);
    EXPECT_EQ(Lines(*Files).size(), 3);
    EXPECT_EQ(Project().ModuleCount(), 3);
}

TEST_F(ProjectFilesWindowTest, AddingAModuleWithTheNameOfOneInTheProjectSaysBothMessages) {
    WriteFile(QStringLiteral("lib/Led.bas"), "y = 1");
    frmProjectFiles* Files = ChooseProjectFiles();
    ASSERT_NE(Files, nullptr);
    Dialogs->Answers.push_back(TempFile(QStringLiteral("lib/Led.bas")));
    Click(Files->cmdAddPrjFile);
    EXPECT_EQ(BoxMessages(),
              (QStringList{QStringLiteral("Duplicate Module|Error -- duplicate module Led"),
                           QStringLiteral("Error Adding Module|Unable to add module ") +
                               TempFile(QStringLiteral("lib/Led.bas"))}));
    EXPECT_EQ(Lines(*Files).size(), 3);
    EXPECT_EQ(TabTexts().size(), 3);
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")),
              QByteArray("main.bas\r\nled.bas\r\nwait.bas\r\n"));
}

TEST_F(ProjectFilesWindowTest, RemovingTheFirstModuleRenumbersTheOthersAndItsTabGoes) {
    frmProjectFiles* Files = ChooseProjectFiles();
    ASSERT_NE(Files, nullptr);
    Click(Files->lstProjectFiles, 0);
    Click(Files->cmdRemovePrjFile);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_EQ(Lines(*Files), (QStringList{QStringLiteral("led.bas"), QStringLiteral("wait.bas")}));
    EXPECT_EQ(TabTexts(), (QStringList{QStringLiteral("led"), QStringLiteral("wait")}));
    EXPECT_EQ(Editor->mdiArea->subWindowList().size(), 2);
    ASSERT_NE(Module(1), nullptr);
    EXPECT_EQ(Module(1)->Text(), QStringLiteral("x = 2"));
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")), QByteArray("led.bas\r\nwait.bas\r\n"));
    EXPECT_TRUE(QFile::exists(TempFile(QStringLiteral("main.bas")))) << "its file stays";
}

TEST_F(ProjectFilesWindowTest, RemovingAChangedModuleAsksAndCancelKeepsIt) {
    QTest::keyClicks(Module(2)->rtfEditBox, QStringLiteral("z"));
    Settle();
    frmProjectFiles* Files = ChooseProjectFiles();
    ASSERT_NE(Files, nullptr);
    Click(Files->lstProjectFiles, 1);
    Boxes->QueueAnswer(2);
    Click(Files->cmdRemovePrjFile);
    EXPECT_EQ(BoxMessages(), QStringList{QStringLiteral("Remove Module|Save changes to led?")});
    EXPECT_EQ(Lines(*Files).size(), 3);
    EXPECT_EQ(Project().ModuleCount(), 3);
    Boxes->QueueAnswer(6);
    Click(Files->cmdRemovePrjFile);
    EXPECT_EQ(TempFileBytes(QStringLiteral("led.bas")), QByteArray("zx = 2"));
    EXPECT_EQ(Lines(*Files), (QStringList{QStringLiteral("main.bas"), QStringLiteral("wait.bas")}));
}

TEST_F(ProjectFilesWindowTest, RemoveWithNothingSelectedRemovesNothingAndRewritesTheFile) {
    frmProjectFiles* Files = ChooseProjectFiles();
    ASSERT_NE(Files, nullptr);
    QFile::remove(TempFile(QStringLiteral("blink.kvp")));
    Click(Files->cmdRemovePrjFile);
    EXPECT_EQ(Lines(*Files).size(), 3);
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")),
              QByteArray("main.bas\r\nled.bas\r\nwait.bas\r\n"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ProjectFilesWindowTest, OkWritesTheProjectFileAndCancelUndoesNothing) {
    frmProjectFiles* Files = ChooseProjectFiles();
    ASSERT_NE(Files, nullptr);
    Click(Files->lstProjectFiles, 2);
    Click(Files->cmdRemovePrjFile);
    Click(Files->cmdPrjFilesCancel);
    EXPECT_FALSE(Global<frmProjectFiles>::IsLoaded());
    EXPECT_EQ(Project().ModuleCount(), 2);
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")), QByteArray("main.bas\r\nled.bas\r\n"));
    QFile::remove(TempFile(QStringLiteral("blink.kvp")));
    Files = ChooseProjectFiles();
    ASSERT_NE(Files, nullptr);
    Click(Files->cmdPrjFilesOk);
    EXPECT_FALSE(Global<frmProjectFiles>::IsLoaded());
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")), QByteArray("main.bas\r\nled.bas\r\n"));
}

}  // namespace
