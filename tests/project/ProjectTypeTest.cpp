#include <QDir>
#include <QFile>

#include "chip/FileExecutivePRF.h"
#include "frame/CommandLineInterpreter.h"
#include "frame/GlobalData.h"
#include "project/ProjectEditorHost.h"
#include "project/ProjectType.h"
#include "project/RecentProjects.h"
#include "support/FaultyDisk.h"
#include "support/FrameFixture.h"
#include "support/ModelEditWindow.h"
#include "support/ModelProjectFixture.h"
#include "support/QtPrinters.h"

namespace {

class ProjectTest : public ModelProjectFixture {
  protected:
    void SetUp() override {
        ModelProjectFixture::SetUp();
        RecentProjects::LoadList();
        Dir = TempPath();
    }
    QString File(const QString& Name) const { return Dir + QLatin1Char('/') + Name; }
    QByteArray Bytes(const QString& Name) const {
        QFile F(File(Name));
        return F.open(QIODevice::ReadOnly) ? F.readAll() : QByteArray("<none>");
    }
    ProjectType& Open(const QString& Name = QStringLiteral("blink")) {
        Global<ProjectType>::Unload();
        Project().OpenProject(Dir, Name, QStringLiteral("kvp"), false);
        return Project();
    }
    QStringList Texts() const {
        QStringList List;
        for (const auto& Box : Boxes->Boxes) {
            List << Box.Text;
        }
        return List;
    }

    QString Dir;
};

TEST_F(ProjectTest, OpeningLoadsEveryModuleIntoItsWindowAndNamesTheFiles) {
    WriteFile(QStringLiteral("blink.kvp"), "main.bas\r\nled.bas\r\n");
    WriteFile(QStringLiteral("main.bas"), "Option Explicit\r\n");
    WriteFile(QStringLiteral("led.bas"), "x = 1");
    ProjectType& P = Open();
    EXPECT_TRUE(P.IsDefined());
    ASSERT_EQ(P.ModuleCount(), 2);
    EXPECT_EQ(P.ModuleList().GetModule(1)->SourceCode(), QStringLiteral("Option Explicit\r\n"));
    EXPECT_EQ(P.ModuleList().GetModule(2)->Name(), QStringLiteral("led"));
    EXPECT_EQ(Editor.Tabs, (QStringList{QStringLiteral("main"), QStringLiteral("led")}));
    EXPECT_EQ(GlobalData::ProjectFilename, File(QStringLiteral("blink.kvp")));
    EXPECT_EQ(GlobalData::DownloadFilename, File(QStringLiteral("blink.kvb")));
    EXPECT_EQ(Editor.Kvb, File(QStringLiteral("blink.kvb")));
    EXPECT_EQ(RecentProjects::GetProject(1), File(QStringLiteral("blink.kvp")));
    EXPECT_EQ(Editor.RecentRefreshes, 1);
    EXPECT_FALSE(P.HasChanged(1));
    // The missing preference file was offered (and, answered No, not made).
    EXPECT_EQ(Texts().size(), 1);
}

TEST_F(ProjectTest, ProjectFileOfTheOtherPlatformOpens) {
    QDir().mkpath(File(QStringLiteral("sub")));
    WriteFile(QStringLiteral("blink.kvp"),
              "  main.bas  \r\n" + File(QStringLiteral("sub")).toUtf8().replace('/', '\\') +
                  "\\util.bas\n");
    WriteFile(QStringLiteral("main.bas"), "a");
    WriteFile(QStringLiteral("sub/util.bas"), "b");
    ProjectType& P = Open();
    ASSERT_EQ(P.ModuleCount(), 2) << Texts().join(QLatin1Char('|')).toStdString();
    EXPECT_EQ(P.ModuleList().GetModule(2)->SourceCode(), QStringLiteral("b"));
}

TEST_F(ProjectTest, ModulesElsewhereAreWrittenInFullInListOrder) {
    QDir().mkpath(File(QStringLiteral("other")));
    WriteFile(QStringLiteral("blink.kvp"),
              "main.bas\r\n" + File(QStringLiteral("other/lib.bas")).toUtf8() + "\r\nled.bas\r\n");
    WriteFile(QStringLiteral("main.bas"), "a");
    WriteFile(QStringLiteral("led.bas"), "b");
    WriteFile(QStringLiteral("other/lib.bas"), "c");
    Open().SaveFileKVP();
    EXPECT_EQ(Bytes(QStringLiteral("blink.kvp")),
              "main.bas\r\n" + File(QStringLiteral("other/lib.bas")).toUtf8() + "\r\nled.bas\r\n");
}

TEST_F(ProjectTest, SamePathInAnotherCaseIsWrittenInFull) {
    // Two folders whose names differ in case alone.
    ASSERT_TRUE(QDir().mkpath(File(QStringLiteral("Src"))));
    ASSERT_TRUE(QDir().mkpath(File(QStringLiteral("src"))));
    WriteFile(QStringLiteral("Src/blink.kvp"), "");
    WriteFile(QStringLiteral("Src/blink.prf"), QByteArray(8610, '\0'));
    WriteFile(QStringLiteral("src/main.bas"), "a");
    Project().OpenProject(File(QStringLiteral("Src")), QStringLiteral("blink"),
                          QStringLiteral("kvp"), false);
    bool Success = false;
    Project().AddExistingModule(File(QStringLiteral("src")), QStringLiteral("main.bas"), Success);
    ASSERT_TRUE(Success);
    Project().SaveFileKVP();
    EXPECT_TRUE(Boxes->Boxes.isEmpty()) << Texts().join(QLatin1Char('|')).toStdString();
    EXPECT_EQ(Bytes(QStringLiteral("Src/blink.kvp")),
              File(QStringLiteral("src/main.bas")).toUtf8() + "\r\n");
}

TEST_F(ProjectTest, LoneCarriageReturnsEndTheProjectFilesLines) {
    WriteFile(QStringLiteral("blink.kvp"), "main.bas\rled.bas\r");
    WriteFile(QStringLiteral("main.bas"), "a");
    WriteFile(QStringLiteral("led.bas"), "b");
    WriteFile(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
    ProjectType& P = Open();
    ASSERT_EQ(P.ModuleCount(), 2) << Texts().join(QLatin1Char('|')).toStdString();
    P.SaveFileKVP();
    EXPECT_EQ(Bytes(QStringLiteral("blink.kvp")), QByteArray("main.bas\r\nled.bas\r\n"));
}

TEST_F(ProjectTest, ModuleLineKeepsItsSeparatorWhenWrittenBack) {
    // A project shared with the other platform names a module in a folder
    // beside the project, with its separator.
    QDir().mkpath(File(QStringLiteral("lib")));
    WriteFile(QStringLiteral("lib/Latin.bas"), "a");
    WriteFile(QStringLiteral("lib/Greek.bas"), "b");
    WriteFile(QStringLiteral("main.bas"), "c");
    WriteFile(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
    const QByteArray Lines = "main.bas\r\nlib\\Latin.bas\r\nlib/Greek.bas\r\n";
    WriteFile(QStringLiteral("blink.kvp"), Lines);
    const QString Before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(Dir));
    ProjectType& P = Open();
    const int Count = P.ModuleCount();
    P.SaveFileKVP();
    QDir::setCurrent(Before);
    ASSERT_EQ(Count, 3) << Texts().join(QLatin1Char('|')).toStdString();
    EXPECT_EQ(Bytes(QStringLiteral("blink.kvp")), Lines);
}

TEST_F(ProjectTest, ModulesTheOpenCouldNotLoadStayInTheSavedProjectFile) {
    WriteFile(QStringLiteral("blink.kvp"), "main.bas\r\ngone.bas\r\nled.bas\r\n\r\n");
    WriteFile(QStringLiteral("main.bas"), "a");
    WriteFile(QStringLiteral("led.bas"), "b");
    WriteFile(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
    ProjectType& P = Open();
    ASSERT_EQ(P.ModuleCount(), 1);
    EXPECT_EQ(Texts().back(), QStringLiteral("Unable to open module: gone.bas"));
    P.SaveAll();
    EXPECT_EQ(Bytes(QStringLiteral("blink.kvp")),
              QByteArray("main.bas\r\ngone.bas\r\nled.bas\r\n"));
}

TEST_F(ProjectTest, MoreModulesThanTheCountHoldsAreRefused) {
    // One more than a 16-bit count holds; each module a file of its own.
    QByteArray Lines;
    for (int Number = 1; Number <= ProjectType::MaxModuleCount + 1; ++Number) {
        const QString Name = QStringLiteral("m%1.bas").arg(Number);
        WriteFile(Name, "x");
        Lines += Name.toUtf8() + "\r\n";
    }
    WriteFile(QStringLiteral("blink.kvp"), Lines);
    WriteFile(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
    ProjectType& P = Open();
    EXPECT_EQ(P.ModuleCount(), ProjectType::MaxModuleCount);
    ASSERT_GE(Boxes->Boxes.size(), 2);
    EXPECT_EQ(Boxes->Boxes[Boxes->Boxes.size() - 2].Text,
              QStringLiteral("Too many modules: a project holds at most 32767, and m32768.bas "
                             "would be one more"));
    EXPECT_EQ(Boxes->Boxes[Boxes->Boxes.size() - 2].Title, QStringLiteral("Too Many Modules"));
    // Every loop over the modules ends.
    bool Maximized = true;
    P.AreWindowsMaximized(Maximized);
    EXPECT_FALSE(Maximized);
}

TEST_F(ProjectTest, IllegalModuleNamesRefuseToLoad) {
    for (const char* Name : {"1abc", "a b", "a-b"}) {
        WriteFile(QString::fromLatin1(Name) + QStringLiteral(".bas"), "x");
        WriteFile(QStringLiteral("blink.kvp"), QByteArray(Name) + ".bas\r\n");
        Boxes->Boxes.clear();
        Open();
        ASSERT_GE(Boxes->Boxes.size(), 2);
        EXPECT_EQ(Boxes->Boxes[Boxes->Boxes.size() - 2].Text,
                  QStringLiteral("Module name ") + QString::fromLatin1(Name) +
                      QStringLiteral(" not legal identifier"));
        EXPECT_EQ(Boxes->Boxes[Boxes->Boxes.size() - 2].Title,
                  QStringLiteral("Illegal Identifier"));
        EXPECT_EQ(Boxes->Boxes.back().Title, QStringLiteral("Module Open Error"));
        EXPECT_EQ(Project().ModuleCount(), 0);
    }
}

TEST_F(ProjectTest, DuplicateModuleStopsTheLoadingThere) {
    QDir().mkpath(File(QStringLiteral("other")));
    const QString Second = File(QStringLiteral("other/main.bas"));
    WriteFile(QStringLiteral("blink.kvp"), "Main.bas\r\n" + Second.toUtf8() + "\r\nled.bas\r\n");
    WriteFile(QStringLiteral("Main.bas"), "a");
    WriteFile(QStringLiteral("other/main.bas"), "b");
    WriteFile(QStringLiteral("led.bas"), "c");
    WriteFile(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
    ProjectType& P = Open();
    EXPECT_EQ(Texts(), (QStringList{QStringLiteral("Error -- duplicate module main"),
                                    QStringLiteral("Unable to open module: ") + Second}));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Duplicate Module"));
    EXPECT_EQ(P.ModuleCount(), 1);
    EXPECT_TRUE(P.IsDefined());
    EXPECT_EQ(ModelEditWindow::Open, 1) << "the duplicate's window closed with it";
    EXPECT_EQ(RecentProjects::ProjectCount(), 0) << "the recent list is not touched";
}

TEST_F(ProjectTest, ProjectWithoutModulesWritesOneEmptyLineAndReportsItWhenOpened) {
    Project().OpenProject(Dir, QStringLiteral("empty"), QStringLiteral("kvp"), true);
    EXPECT_EQ(Bytes(QStringLiteral("empty.kvp")), QByteArray("\r\n"));
    EXPECT_EQ(Bytes(QStringLiteral("empty.prf")).size(), 8610);
    Project().SaveFileKVP();
    EXPECT_EQ(Bytes(QStringLiteral("empty.kvp")), QByteArray("\r\n"));
    Boxes->Boxes.clear();
    ProjectType& P = Open(QStringLiteral("empty"));
    EXPECT_EQ(Texts(), QStringList{QStringLiteral("Unable to open module: ")});
    EXPECT_TRUE(P.IsDefined());
    EXPECT_EQ(P.ModuleCount(), 0);
}

class ProjectWithModules : public ProjectTest {
  protected:
    void SetUp() override {
        ProjectTest::SetUp();
        WriteFile(QStringLiteral("blink.kvp"), "main.bas\r\nled.bas\r\nlast.bas\r\n");
        WriteFile(QStringLiteral("main.bas"),
                  "Option Explicit\r\n\r\nPublic Sub Main()\r\n\r\nEnd Sub");
        WriteFile(QStringLiteral("led.bas"), "x = 1");
        WriteFile(QStringLiteral("last.bas"), "y = 2");
        WriteFile(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
        Open();
        ASSERT_EQ(Project().ModuleCount(), 3);
        Boxes->Boxes.clear();
    }
};

TEST_F(ProjectWithModules, SaveAsTheNameOfAnotherModuleIsRefusedAndNothingIsSaved) {
    WindowOf(2)->Box.Type(QStringLiteral("z"));
    ASSERT_TRUE(Project().HasChanged(2));
    Project().SaveModuleAs(2, File(QStringLiteral("Main.bas")));
    EXPECT_EQ(Texts(), QStringList{QStringLiteral(
                           "Unable to rename module as Main\nName duplicates an existing name")});
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Duplicate Name"));
    EXPECT_EQ(Project().ModuleList().GetModule(2)->Name(), QStringLiteral("led"));
    EXPECT_TRUE(Project().HasChanged(2));
    EXPECT_EQ(Bytes(QStringLiteral("led.bas")), QByteArray("x = 1"));
}

TEST_F(ProjectWithModules, SaveAsAnIllegalNameIsRefused) {
    Project().SaveModuleAs(2, File(QStringLiteral("2led.bas")));
    EXPECT_EQ(Texts(), QStringList{QStringLiteral("New name 2led is not a legal identifier")});
    EXPECT_EQ(Project().ModuleList().GetModule(2)->Name(), QStringLiteral("led"));
}

TEST_F(ProjectWithModules, SaveAsTheSameNameInOtherCaseChangesTabAndKeyButNotTheNumber) {
    Project().SaveModuleAs(2, File(QStringLiteral("LED.bas")));
    EXPECT_TRUE(Texts().isEmpty());
    ModuleType* Module = Project().ModuleList().GetModule(2);
    EXPECT_EQ(Module->Name(), QStringLiteral("LED"));
    EXPECT_EQ(Module->Number(), 2);
    EXPECT_EQ(Editor.Tabs,
              (QStringList{QStringLiteral("main"), QStringLiteral("LED"), QStringLiteral("last")}));
    EXPECT_EQ(Project().GetNamedModule(QStringLiteral("led")), Module);
    EXPECT_EQ(static_cast<ModelEditWindow*>(Module->EditWindow())->Caption, QStringLiteral("LED"));
    EXPECT_EQ(Bytes(QStringLiteral("LED.bas")), QByteArray("x = 1"));
    EXPECT_EQ(Bytes(QStringLiteral("blink.kvp")),
              QByteArray("main.bas\r\nLED.bas\r\nlast.bas\r\n"));
}

TEST_F(ProjectWithModules, RenamingTheLastModuleAppendsItWithItsNumber) {
    Project().SaveModuleAs(3, File(QStringLiteral("final.bas")));
    ModuleType* Module = Project().ModuleList().GetModule(3);
    ASSERT_NE(Module, nullptr);
    EXPECT_EQ(Module->Name(), QStringLiteral("final"));
    EXPECT_EQ(Module->Number(), 3);
    EXPECT_EQ(Module->SourceCode(), QStringLiteral("y = 2"));
    EXPECT_FALSE(Module->HasChanged());
    EXPECT_EQ(ModelEditWindow::Open, 3) << "the old window closed, the new one opened";
    EXPECT_EQ(Bytes(QStringLiteral("final.bas")), QByteArray("y = 2"));
    EXPECT_EQ(Bytes(QStringLiteral("last.bas")), QByteArray("y = 2")) << "the old file stays";
}

TEST_F(ProjectWithModules, HighlightTextSelectsAtLeastThreeCharactersUnlessTheTextEnds) {
    ModelEditWindow* Window = WindowOf(1);
    const int32_t Length = Window->TextLength();
    Project().HighlightText(1, 10, 10);
    EXPECT_EQ(Window->Box.SelStart(), 10);
    EXPECT_EQ(Window->Box.SelLength(), 3);
    Project().HighlightText(1, Length - 2, Length);
    EXPECT_EQ(Window->Box.SelLength(), 1) << "what is left after the start, less one";
    Project().HighlightText(1, Length - 1, Length - 1);
    EXPECT_EQ(Window->Box.SelLength(), 0);
    Project().HighlightText(1, Length, Length);
    EXPECT_EQ(Window->Box.SelLength(), 0);
    EXPECT_EQ(Editor.Activated.back(), 1);
}

TEST_F(ProjectWithModules, HighlightRestoresAMinimisedWindow) {
    WindowOf(2)->State = 1;
    Project().HighlightText(2, 0, 1);
    EXPECT_EQ(WindowOf(2)->State, 0);
}

TEST_F(ProjectWithModules, UneditedModulesSaveByteForByte) {
    WriteFile(QStringLiteral("led.bas"), "\xEF\xBB\xBFx = \"\xC3\xA9t\xC3\xA9\"\r\n");
    WriteFile(QStringLiteral("last.bas"), "y = \"caf\xE9 \x80\"\ny");
    WriteFile(QStringLiteral("blink.kvp"), "main.bas\r\nled.bas\r\nlast.bas\r\n");
    Open();
    const QByteArray Main = Bytes(QStringLiteral("main.bas"));
    const QByteArray Led = Bytes(QStringLiteral("led.bas"));
    const QByteArray Last = Bytes(QStringLiteral("last.bas"));
    EXPECT_EQ(Project().ModuleList().GetModule(3)->SourceCode(),
              QStringLiteral("y = \"caf\u00E9 \u20AC\"\r\ny"));
    Project().SaveAll();
    EXPECT_EQ(Bytes(QStringLiteral("main.bas")), Main);
    EXPECT_EQ(Bytes(QStringLiteral("led.bas")), Led);
    EXPECT_EQ(Bytes(QStringLiteral("last.bas")), Last);
}

TEST_F(ProjectWithModules, SaveAllWritesModulesProjectAndPreferences) {
    WindowOf(1)->Box.SetSelStart(0);
    WindowOf(1)->Box.Type(QStringLiteral("' top\r\n"));
    ASSERT_TRUE(Project().HasChanged(1));
    Project().SaveAll();
    EXPECT_FALSE(Project().HasChanged(1));
    EXPECT_TRUE(Bytes(QStringLiteral("main.bas")).startsWith("' top\r\nOption Explicit"));
    EXPECT_EQ(Bytes(QStringLiteral("blink.kvp")),
              QByteArray("main.bas\r\nled.bas\r\nlast.bas\r\n"));
    // The mirror went back to the file: a MaxVstr of 0 read as 16 is written as 16.
    EXPECT_EQ(Bytes(QStringLiteral("blink.prf")).mid(614 * 14, 4),
              QByteArray("\x10\x00\x00\x00", 4));
}

TEST_F(ProjectWithModules, FailedModuleSaveKeepsTheModuleChangedAndTheFileAsItWas) {
    WindowOf(2)->Box.Type(QStringLiteral("z"));
    QFile::remove(File(QStringLiteral("led.bas")));
    QDir().mkpath(File(QStringLiteral("led.bas")));
    Project().SaveModule(2);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("Error writing module led\nError 75, Path/File access error (a folder "
                             "has that name)"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Module Write Error"));
    EXPECT_TRUE(Project().HasChanged(2));
}

TEST_F(ProjectWithModules, SaveAllOnAFullDiskLeavesEveryFileAndTellsWhy) {
    WindowOf(1)->Box.Type(QStringLiteral("' new\r\n"));
    const QByteArray Main = Bytes(QStringLiteral("main.bas"));
    const QByteArray Kvp = Bytes(QStringLiteral("blink.kvp"));
    const QByteArray Prf = Bytes(QStringLiteral("blink.prf"));
    {
        FaultyDisk Disk({.Room = 0});
        Project().SaveAll();
        EXPECT_EQ(Disk.Commits, 0);
    }
    EXPECT_EQ(Bytes(QStringLiteral("main.bas")), Main);
    EXPECT_EQ(Bytes(QStringLiteral("blink.kvp")), Kvp);
    EXPECT_EQ(Bytes(QStringLiteral("blink.prf")), Prf);
    EXPECT_TRUE(Project().HasChanged(1));
    EXPECT_EQ(Texts(),
              (QStringList{
                  QStringLiteral("Error writing module main\nError 61, Disk full"),
                  QStringLiteral("Error writing module led\nError 61, Disk full"),
                  QStringLiteral("Error writing module last\nError 61, Disk full"),
                  QStringLiteral("Error writing project file ") +
                      File(QStringLiteral("blink.kvp")) + QStringLiteral("\nError 61, Disk full"),
                  QStringLiteral("Unable to write PRF file ") + File(QStringLiteral("blink.prf")) +
                      QStringLiteral("\nError 61, Disk full")}));
}

TEST_F(ProjectWithModules, ReadOnlyModuleIsRefusedWithItsCauseAndStaysReadOnly) {
    WindowOf(2)->Box.Type(QStringLiteral("z"));
    const QFileDevice::Permissions ReadOnly =
        QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther;
    ASSERT_TRUE(QFile::setPermissions(File(QStringLiteral("led.bas")), ReadOnly));
    Project().SaveModule(2);
    EXPECT_EQ(Texts(), QStringList{QStringLiteral(
                           "Error writing module led\nError 70, Permission denied (the file is "
                           "read-only)")});
    EXPECT_EQ(Bytes(QStringLiteral("led.bas")), QByteArray("x = 1"));
    EXPECT_EQ(QFile::permissions(File(QStringLiteral("led.bas"))) & 0x7077, ReadOnly & 0x7077);
    EXPECT_TRUE(Project().HasChanged(2));
}

TEST_F(ProjectWithModules, RemovingTheFirstModuleRenumbersTheOthersAndTheirTabs) {
    Project().RemoveModule(1);
    EXPECT_EQ(Project().ModuleCount(), 2);
    EXPECT_EQ(Project().ModuleList().GetModule(1)->Name(), QStringLiteral("led"));
    EXPECT_EQ(Project().ModuleList().GetModule(1)->Number(), 1);
    EXPECT_EQ(Editor.Tabs, (QStringList{QStringLiteral("led"), QStringLiteral("last")}));
    EXPECT_EQ(ModelEditWindow::Open, 2);
    EXPECT_TRUE(QFile::exists(File(QStringLiteral("main.bas")))) << "no file is touched";
}

TEST_F(ProjectWithModules, IncrementActiveModuleWrapsToTheFirst) {
    Editor.Active = 3;
    Project().IncrementActiveModule();
    EXPECT_EQ(Editor.Activated.back(), 1);
    Editor.Active = 1;
    Project().IncrementActiveModule();
    EXPECT_EQ(Editor.Activated.back(), 2);
}

TEST_F(ProjectWithModules, ReleasingTheProjectClosesItsWindowsAndEmptiesTheImageName) {
    EXPECT_EQ(ModelEditWindow::Open, 3);
    Global<ProjectType>::Unload();
    EXPECT_EQ(ModelEditWindow::Open, 0);
    EXPECT_TRUE(GlobalData::DownloadFilename.isEmpty());
    EXPECT_TRUE(Editor.Kvb.isEmpty());
    EXPECT_FALSE(Project().IsDefined());
}

TEST_F(ProjectWithModules, SaveProjectAsWritesTheNewFilesAndLeavesTheOld) {
    QDir().mkpath(File(QStringLiteral("copy")));
    Project().SaveProjectAs(File(QStringLiteral("copy")), QStringLiteral("lamp"),
                            QStringLiteral("kvp"));
    EXPECT_EQ(Bytes(QStringLiteral("copy/lamp.kvp")),
              (File(QStringLiteral("main.bas")) + QStringLiteral("\r\n") +
               File(QStringLiteral("led.bas")) + QStringLiteral("\r\n") +
               File(QStringLiteral("last.bas")) + QStringLiteral("\r\n"))
                  .toUtf8());
    EXPECT_EQ(Bytes(QStringLiteral("copy/lamp.prf")).size(), 8610);
    EXPECT_EQ(GlobalData::ProjectFilename, File(QStringLiteral("copy/lamp.kvp")));
    EXPECT_TRUE(QFile::exists(File(QStringLiteral("blink.kvp"))));
    EXPECT_EQ(RecentProjects::GetProject(1), File(QStringLiteral("copy/lamp.kvp")));
}

TEST_F(ProjectWithModules, ReadingAnUndefinedProjectSavesNothing) {
    Global<ProjectType>::Unload();
    Project().SaveAll();
    Project().SaveFileKVP();
    EXPECT_FALSE(QFile::exists(File(QStringLiteral(".kvp"))));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

}  // namespace
