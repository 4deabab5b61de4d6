#include <QFile>
#include <QFileInfo>

#include "project/NewProjectModel.h"
#include "project/ProjectType.h"
#include "project/RecentProjects.h"
#include "support/FrameFixture.h"
#include "support/ModelProjectFixture.h"
#include "support/QtPrinters.h"

namespace {

using namespace NewProjectModel;

const QByteArray FirstModuleText = "Option Explicit\r\n\r\nPublic Sub Main()\r\n\r\nEnd Sub\r\n";

class NewProjectModelTest : public ModelProjectFixture {
  protected:
    void SetUp() override {
        ModelProjectFixture::SetUp();
        RecentProjects::LoadList();
    }
    NewProjectRequest Request(const QString& ProjectName, bool IncludeModule = true,
                              const QString& ModuleName = QStringLiteral("Module1")) const {
        NewProjectRequest Made;
        Made.Directory = TempPath();
        Made.ProjectName = ProjectName;
        Made.IncludeModule = IncludeModule;
        Made.ModuleName = IncludeModule ? ModuleName : QString();
        return Made;
    }
    // The editor's OpenProject, counted.
    NewProjectOutcome Create(const NewProjectRequest& Made) {
        return CreateProject(Made, [this](const QString& Path, const QString& Name,
                                          const QString& Extension, bool IsNewProject) {
            ++Opened;
            Global<ProjectType>::Unload();
            Project().OpenProject(Path, Name, Extension, IsNewProject);
        });
    }
    int Opened = 0;
};

TEST_F(NewProjectModelTest, NewProjectHasItsFirstModuleProjectFileAndPreferenceFile) {
    EXPECT_EQ(Create(Request(QStringLiteral("blink"), true, QStringLiteral("Main"))),
              NewProjectOutcome::Created);
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")), QByteArray("Main.bas\r\n"));
    EXPECT_EQ(TempFileBytes(QStringLiteral("Main.bas")), FirstModuleText);
    EXPECT_EQ(QFileInfo(TempFile(QStringLiteral("blink.prf"))).size(), 8610);
    ASSERT_EQ(Project().ModuleCount(), 1);
    EXPECT_TRUE(Project().IsDefined());
    EXPECT_EQ(Project().ModuleList().GetModule(1)->SourceCode(),
              QString::fromLatin1(FirstModuleText));
    EXPECT_EQ(Editor.Tabs, QStringList{QStringLiteral("Main")});
    EXPECT_EQ(RecentProjects::GetProject(1), TempFile(QStringLiteral("blink.kvp")));
    EXPECT_TRUE(Boxes->Boxes.isEmpty()) << BoxMessages().join(QLatin1Char('\n')).toStdString();
}

TEST_F(NewProjectModelTest, IllegalProjectNameIsRefusedAndNothingIsMade) {
    EXPECT_EQ(Create(Request(QStringLiteral("1abc"))), NewProjectOutcome::FixProjectName);
    EXPECT_EQ(BoxMessages(), QStringList{QStringLiteral(
                                 "Illegal Project Name|Illegal project name: 1abc\nMust be legal "
                                 "Basic identifier")});
    EXPECT_EQ(Opened, 0);
    EXPECT_FALSE(QFile::exists(TempFile(QStringLiteral("1abc.kvp"))));
    EXPECT_FALSE(QFile::exists(TempFile(QStringLiteral("Module1.bas"))));
}

TEST_F(NewProjectModelTest, IllegalModuleNameIsRefusedAfterTheProjectNamePasses) {
    EXPECT_EQ(Create(Request(QStringLiteral("blink"), true, QStringLiteral("my-module"))),
              NewProjectOutcome::FixModuleName);
    EXPECT_EQ(BoxMessages(),
              QStringList{QStringLiteral(
                  "Illegal Module Name|Illegal module name: my-module\nMust be legal "
                  "Basic identifier")});
    EXPECT_EQ(Opened, 0);
    EXPECT_FALSE(QFile::exists(TempFile(QStringLiteral("blink.kvp"))));
}

TEST_F(NewProjectModelTest, WithoutAModuleItsNameIsNotChecked) {
    EXPECT_EQ(Create(Request(QStringLiteral("blink"), false)), NewProjectOutcome::Created);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(NewProjectModelTest, ExistingProjectFileAsksAndNoLeavesItAsItWas) {
    WriteFile(QStringLiteral("blink.kvp"), "old.bas\r\n");
    Boxes->QueueAnswer(7);
    EXPECT_EQ(Create(Request(QStringLiteral("blink"))), NewProjectOutcome::Stay);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Replace File"));
    EXPECT_EQ(Boxes->Boxes[0].Text,
              TempFile(QStringLiteral("blink.kvp")) +
                  QStringLiteral(" already exists.\nDo you want to replace it?"));
    EXPECT_EQ(Opened, 0);
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")), QByteArray("old.bas\r\n"));
}

TEST_F(NewProjectModelTest, ExistingProjectFileAnsweredYesIsReplacedByTheNewProject) {
    WriteFile(QStringLiteral("blink.kvp"), "old.bas\r\n");
    Boxes->QueueAnswer(6);
    EXPECT_EQ(Create(Request(QStringLiteral("blink"))), NewProjectOutcome::Created);
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")), QByteArray("Module1.bas\r\n"));
    EXPECT_EQ(TempFileBytes(QStringLiteral("Module1.bas")), FirstModuleText);
}

TEST_F(NewProjectModelTest,
       NewProjectWithNoModuleIsOpenAndEmptyAndReportsTheEmptyLineWhenReopened) {
    EXPECT_EQ(Create(Request(QStringLiteral("blink"), false)), NewProjectOutcome::Created);
    EXPECT_TRUE(Project().IsDefined());
    EXPECT_EQ(Project().ModuleCount(), 0);
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.kvp")), QByteArray("\r\n"));
    Global<ProjectType>::Unload();
    Project().OpenProject(TempPath(), QStringLiteral("blink"), QStringLiteral("kvp"), false);
    EXPECT_TRUE(Project().IsDefined());
    EXPECT_EQ(Project().ModuleCount(), 0);
    EXPECT_EQ(BoxMessages(),
              QStringList{QStringLiteral("Module Open Error|Unable to open module: ")});
}

TEST_F(NewProjectModelTest, ExistingModuleFileIsTakenWithItsTextAndNotOverwritten) {
    WriteFile(QStringLiteral("Module1.bas"), "x = 1");
    EXPECT_EQ(Create(Request(QStringLiteral("blink"))), NewProjectOutcome::Created);
    EXPECT_EQ(TempFileBytes(QStringLiteral("Module1.bas")), QByteArray("x = 1"));
    ASSERT_EQ(Project().ModuleCount(), 1);
    EXPECT_EQ(Project().ModuleList().GetModule(1)->SourceCode(), QStringLiteral("x = 1"));
}

TEST_F(NewProjectModelTest, ModuleThatFailsToLoadKeepsTheWindowWithTheProjectOpen) {
    // A folder in the module file's place can be neither written nor read.
    WriteFile(QStringLiteral("Module1.bas/.keep"));
    EXPECT_EQ(Create(Request(QStringLiteral("blink"))), NewProjectOutcome::Stay);
    ASSERT_FALSE(Boxes->Boxes.isEmpty());
    EXPECT_EQ(BoxMessages().back(),
              QStringLiteral("New Project Error|Unable to open module: Module1"));
    EXPECT_TRUE(Project().IsDefined());
    EXPECT_EQ(Project().ModuleCount(), 0);
}

TEST_F(NewProjectModelTest, NewModuleTextHasMainOnlyForTheFirstModule) {
    EXPECT_EQ(NewModuleText(true), QString::fromLatin1(FirstModuleText));
    EXPECT_EQ(NewModuleText(false), QStringLiteral("Option Explicit\r\n\r\n"));
}

}  // namespace
