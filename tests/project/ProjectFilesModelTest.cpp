#include <QDir>
#include <QFile>

#include "project/ProjectFilesModel.h"
#include "project/ProjectType.h"
#include "support/FrameFixture.h"
#include "support/ModelProjectFixture.h"
#include "support/QtPrinters.h"

namespace {

using namespace ProjectFilesModel;

class ProjectFilesModelTest : public ModelProjectFixture {
  protected:
    void SetUp() override {
        ModelProjectFixture::SetUp();
        QDir().mkpath(TempFile(QStringLiteral("other")));
        WriteFile(QStringLiteral("blink.kvp"),
                  "main.bas\r\n" + TempFile(QStringLiteral("other/util.bas")).toUtf8() +
                      "\r\nled.bas\r\n");
        WriteFile(QStringLiteral("main.bas"), "Option Explicit\r\n");
        WriteFile(QStringLiteral("other/util.bas"), "u = 1");
        WriteFile(QStringLiteral("led.bas"), "x = 2");
        WriteFile(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
        Project().OpenProject(TempPath(), QStringLiteral("blink"), QStringLiteral("kvp"), false);
        ASSERT_EQ(Project().ModuleCount(), 3);
    }
};

TEST_F(ProjectFilesModelTest, ListHoldsTheProjectFilesLinesInModuleOrder) {
    EXPECT_EQ(ModuleLines(),
              (QStringList{QStringLiteral("main.bas"), TempFile(QStringLiteral("other/util.bas")),
                           QStringLiteral("led.bas")}));
}

TEST_F(ProjectFilesModelTest, AddDialogOpensInTheProjectsDirectoryForModules) {
    const FileDialogRequest Request = AddModuleRequest();
    EXPECT_EQ(Request.InitDir, TempPath());
    EXPECT_EQ(Request.Filter, QStringLiteral("Kavlin Studio Files (*.bas)|*.bas"));
    EXPECT_EQ(Request.FilterIndex, 2);
    EXPECT_FALSE(Request.Save);
    EXPECT_TRUE(Request.FileName.isEmpty());
}

TEST_F(ProjectFilesModelTest, AddingANewFileCreatesItWithOptionExplicitAndWritesTheProjectFile) {
    EXPECT_TRUE(AddModule(TempFile(QStringLiteral("motor.bas"))));
    EXPECT_EQ(TempFileBytes(QStringLiteral("motor.bas")), QByteArray("Option Explicit\r\n\r\n"));
    ASSERT_EQ(Project().ModuleCount(), 4);
    EXPECT_EQ(Editor.Tabs.back(), QStringLiteral("motor"));
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")),
              "main.bas\r\n" + TempFile(QStringLiteral("other/util.bas")).toUtf8() +
                  "\r\nled.bas\r\nmotor.bas\r\n");
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ProjectFilesModelTest, AddingAnExistingFileTakesItsText) {
    WriteFile(QStringLiteral("other/motor.bas"), "m = 3");
    EXPECT_TRUE(AddModule(TempFile(QStringLiteral("other/motor.bas"))));
    EXPECT_EQ(Project().ModuleList().GetModule(4)->SourceCode(), QStringLiteral("m = 3"));
    EXPECT_EQ(TempFileBytes(QStringLiteral("other/motor.bas")), QByteArray("m = 3"));
}

TEST_F(ProjectFilesModelTest, AddingAModuleWithTheNameOfOneInTheProjectSaysBothMessages) {
    WriteFile(QStringLiteral("other/LED.bas"), "y = 1");
    const QByteArray Before = TempFileBytes(QStringLiteral("blink.kvp"));
    EXPECT_FALSE(AddModule(TempFile(QStringLiteral("other/LED.bas"))));
    EXPECT_EQ(BoxMessages(),
              (QStringList{QStringLiteral("Duplicate Module|Error -- duplicate module LED"),
                           QStringLiteral("Error Adding Module|Unable to add module ") +
                               TempFile(QStringLiteral("other/LED.bas"))}));
    EXPECT_EQ(Project().ModuleCount(), 3);
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")), Before);
}

TEST_F(ProjectFilesModelTest, RemovingTheFirstModuleRenumbersTheOthersAndItsTabGoes) {
    EXPECT_EQ(RemoveModule(3, 1), RemoveOutcome::Removed);
    ASSERT_EQ(Project().ModuleCount(), 2);
    EXPECT_EQ(Project().ModuleList().GetModule(1)->Name(), QStringLiteral("util"));
    EXPECT_EQ(Project().ModuleList().GetModule(1)->Number(), 1);
    EXPECT_EQ(Project().ModuleList().GetModule(2)->Number(), 2);
    EXPECT_EQ(WindowOf(1)->Model.ModuleNumber(), 1) << "the windows follow their modules";
    EXPECT_EQ(WindowOf(2)->Model.ModuleNumber(), 2);
    EXPECT_EQ(Editor.Tabs, (QStringList{QStringLiteral("util"), QStringLiteral("led")}));
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")),
              TempFile(QStringLiteral("other/util.bas")).toUtf8() + "\r\nled.bas\r\n");
    EXPECT_EQ(TempFileBytes(QStringLiteral("main.bas")), QByteArray("Option Explicit\r\n"))
        << "the module's file stays on disk";
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ProjectFilesModelTest, RemovingAChangedModuleAsksAndYesSavesItFirst) {
    WindowOf(3)->Box.SetText(QStringLiteral("x = 5"));
    WindowOf(3)->SetHasChanged(true);
    Boxes->QueueAnswer(6);
    EXPECT_EQ(RemoveModule(3, 3), RemoveOutcome::Removed);
    ASSERT_EQ(BoxMessages(), QStringList{QStringLiteral("Remove Module|Save changes to led?")});
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::YesNoCancel);
    EXPECT_EQ(TempFileBytes(QStringLiteral("led.bas")), QByteArray("x = 5"));
    EXPECT_EQ(Project().ModuleCount(), 2);
}

TEST_F(ProjectFilesModelTest, RemovingAChangedModuleAnsweredNoDropsTheChange) {
    WindowOf(3)->Box.SetText(QStringLiteral("x = 5"));
    WindowOf(3)->SetHasChanged(true);
    Boxes->QueueAnswer(7);
    EXPECT_EQ(RemoveModule(3, 3), RemoveOutcome::Removed);
    EXPECT_EQ(TempFileBytes(QStringLiteral("led.bas")), QByteArray("x = 2"));
    EXPECT_EQ(Project().ModuleCount(), 2);
}

TEST_F(ProjectFilesModelTest, RemovingAChangedModuleAnsweredCancelKeepsItInPlace) {
    WindowOf(2)->SetHasChanged(true);
    const QByteArray Before = TempFileBytes(QStringLiteral("blink.kvp"));
    Boxes->QueueAnswer(2);
    EXPECT_EQ(RemoveModule(3, 2), RemoveOutcome::Cancelled);
    EXPECT_EQ(BoxMessages(), QStringList{QStringLiteral("Remove Module|Save changes to util?")});
    EXPECT_EQ(Project().ModuleCount(), 3);
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")), Before);
}

TEST_F(ProjectFilesModelTest, RemovingWithNoSelectionRewritesTheProjectFileAndRemovesNothing) {
    QFile::remove(TempFile(QStringLiteral("blink.kvp")));
    EXPECT_EQ(RemoveModule(3, 0), RemoveOutcome::NoSelection);
    EXPECT_EQ(Project().ModuleCount(), 3);
    EXPECT_EQ(
        TempFileBytes(QStringLiteral("blink.kvp")),
        "main.bas\r\n" + TempFile(QStringLiteral("other/util.bas")).toUtf8() + "\r\nled.bas\r\n");
}

TEST_F(ProjectFilesModelTest, RemovingFromAnEmptyListDoesNothing) {
    QFile::remove(TempFile(QStringLiteral("blink.kvp")));
    EXPECT_EQ(RemoveModule(0, 0), RemoveOutcome::NothingToRemove);
    EXPECT_EQ(Project().ModuleCount(), 3);
    EXPECT_FALSE(QFile::exists(TempFile(QStringLiteral("blink.kvp"))));
}

}  // namespace
