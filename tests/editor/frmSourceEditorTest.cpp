#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMdiSubWindow>
#include <QTest>

#include "editor/EditBoxModuleWindow.h"
#include "editor/frmEditBoxType.h"
#include "editor/frmSourceEditor.h"
#include "frame/GlobalData.h"
#include "frame/TwipsConversion.h"
#include "link/frmDownloader.h"
#include "platform/ClipboardService.h"
#include "platform/Global.h"
#include "project/ProjectType.h"
#include "project/RecentProjects.h"
#include "support/FaultyDisk.h"
#include "support/FrameFixture.h"
#include "support/QtPrinters.h"
#include "support/ScriptedFileDialogService.h"
#include "support/SourceEditorFixture.h"

namespace {

class SourceEditorTest : public SourceEditorFixture {
  protected:
    void SetUp() override {
        SourceEditorFixture::SetUp();
        WriteFile(QStringLiteral("blink.kvp"), "main.bas\r\nled.bas\r\n");
        WriteFile(QStringLiteral("main.bas"), "Option Explicit\r\n");
        WriteFile(QStringLiteral("led.bas"), "x = \"on\"");
        WriteFile(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
    }
    QString File(const QString& Name) const { return TempPath() + QLatin1Char('/') + Name; }
    void OpenBlink() {
        Dialogs->Answers.push_back(File(QStringLiteral("blink.kvp")));
        Editor->mnuOpenProject->trigger();
        Settle();
    }
    QStringList Tabs() const {
        QStringList List;
        for (int Index = 0; Index < Editor->tabEditTabStrip->count(); ++Index) {
            List << Editor->tabEditTabStrip->tabText(Index);
        }
        return List;
    }
};

TEST_F(SourceEditorTest, WithoutAProjectOnlyOpeningNewAndExitAreReachable) {
    EXPECT_TRUE(GlobalData::GetEditorIsOpen());
    EXPECT_EQ(Editor->windowTitle(), QStringLiteral("Kavlin Editor"));
    EXPECT_FALSE(Editor->mnuSaveProject->isEnabled());
    EXPECT_FALSE(Editor->mnuSaveModule->isEnabled());
    EXPECT_FALSE(Editor->mnuCompile->isEnabled());
    EXPECT_TRUE(Editor->mnuOpenProject->isEnabled());
    EXPECT_TRUE(Editor->mnuNewProject->isEnabled());
    EXPECT_TRUE(Editor->mnuExit->isEnabled());
    EXPECT_TRUE(Editor->ToolBarButton(QStringLiteral("NewProject"))->isEnabled());
    EXPECT_FALSE(Editor->ToolBarButton(QStringLiteral("SaveProject"))->isEnabled());
    EXPECT_EQ(Editor->sbrStatus[0]->text(), QStringLiteral("Line: 1, Col: 1"));
    EXPECT_EQ(Editor->sbrStatus[1]->text(), QStringLiteral("INS"));
}

TEST_F(SourceEditorTest, OpenProjectShowsEveryModuleInItsWindowWithATab) {
    OpenBlink();
    ASSERT_EQ(Dialogs->Requests.size(), 1);
    EXPECT_EQ(Dialogs->Requests[0].Title, QStringLiteral("Open Project"));
    EXPECT_EQ(Dialogs->Requests[0].Filter, QStringLiteral("Kavlin Studio Projects (*.kvp)|*.kvp"));
    EXPECT_EQ(Dialogs->Requests[0].InitDir, TempPath());
    EXPECT_EQ(Editor->windowTitle(), QStringLiteral("Kavlin Editor - blink"));
    EXPECT_EQ(Editor->mdiArea->subWindowList().size(), 2);
    EXPECT_EQ(Tabs(), (QStringList{QStringLiteral("main"), QStringLiteral("led")}));
    ASSERT_NE(Module(2), nullptr);
    EXPECT_EQ(Module(2)->Text(), QStringLiteral("x = \"on\""));
    EXPECT_TRUE(Editor->mnuSaveProject->isEnabled());
    EXPECT_TRUE(Editor->ToolBarButton(QStringLiteral("ProjectFiles"))->isEnabled());
}

TEST_F(SourceEditorTest, TypingANewNameIntoOpenProjectMakesAnEmptyProjectWithAPreferenceFile) {
    Dialogs->Answers.push_back(File(QStringLiteral("fresh.kvp")));
    Editor->mnuOpenProject->trigger();
    EXPECT_TRUE(Project().IsDefined());
    EXPECT_EQ(Project().ModuleCount(), 0);
    EXPECT_TRUE(QFile::exists(File(QStringLiteral("fresh.kvp"))));
    EXPECT_EQ(QFileInfo(File(QStringLiteral("fresh.prf"))).size(), 8610);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(SourceEditorTest, RecentEntryWhoseFileHasGoneIsReportedAndStays) {
    const QString Gone = File(QStringLiteral("gone.kvp"));
    SetSetting(QStringLiteral("Last_Project_1"), Gone);
    Editor->InitializeRecentProjectList();
    ASSERT_TRUE(Editor->mnuOpenRecentProject[0]->isVisible());
    Editor->mnuOpenRecentProject[0]->trigger();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Can't find project ") + Gone);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Project Missing"));
    EXPECT_EQ(RecentProjects::GetProject(1), Gone);
}

TEST_F(SourceEditorTest, LongProjectNameIsCutInTheRecentList) {
    const QString Name = QStringLiteral("abcdefghijklmnopqrstuvwxyz0123");
    ASSERT_EQ(Name.size(), 30);
    SetSetting(QStringLiteral("Last_Project_1"), File(Name + QStringLiteral(".kvp")));
    SetSetting(QStringLiteral("Last_Project_2"), File(QStringLiteral("blink.kvp")));
    Editor->InitializeRecentProjectList();
    EXPECT_EQ(Editor->mnuOpenRecentProject[0]->text(),
              QStringLiteral("&1 ..\\abcdefghijklmnopqrstuv..."));
    EXPECT_EQ(Editor->mnuOpenRecentProject[1]->text(), QStringLiteral("&2 ..\\blink"));
    EXPECT_FALSE(Editor->mnuOpenRecentProject[2]->isVisible());
    EXPECT_TRUE(Editor->mnuLine4->isVisible());
}

TEST_F(SourceEditorTest, SaveModuleWithNoActiveChildSaysNoModuleOpen) {
    OpenBlink();
    Editor->mdiArea->setActiveSubWindow(nullptr);
    for (QMdiSubWindow* Sub : Editor->mdiArea->subWindowList()) {
        Sub->showMinimized();
    }
    Editor->mdiArea->setActiveSubWindow(nullptr);
    if (Editor->ActiveModuleNumber() != 0) {
        GTEST_SKIP() << "the area keeps a child active on this platform";
    }
    Editor->mnuSaveModule->trigger();
    ASSERT_FALSE(Boxes->Boxes.isEmpty());
    EXPECT_EQ(Boxes->Boxes.back().Text, QStringLiteral("No module open"));
    EXPECT_EQ(Boxes->Boxes.back().Title, QStringLiteral("No Module Open"));
}

TEST_F(SourceEditorTest, SaveModuleWritesTheActiveOne) {
    OpenBlink();
    frmEditBoxType* Led = Module(2);
    ASSERT_NE(Led, nullptr);
    Editor->mdiArea->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(Led->parentWidget()));
    Led->RichText().SetSelStart(0);
    QTest::keyClicks(Led->rtfEditBox, QStringLiteral("' "));
    Settle();
    ASSERT_TRUE(Led->HasChanged());
    Editor->mnuSaveModule->trigger();
    EXPECT_FALSE(Led->HasChanged());
    QFile Saved(File(QStringLiteral("led.bas")));
    ASSERT_TRUE(Saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(Saved.readAll(), QByteArray("' x = \"on\""));
}

TEST_F(SourceEditorTest, CompileAndRunWithAClosedPortAndNoCompilesNothing) {
    OpenBlink();
    Module(1)->SetHasChanged(true);
    Boxes->QueueAnswer(7);
    Editor->mnuCompileAndRun->trigger();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Download port is closed\nOpen port now?"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Download port closed"));
    EXPECT_TRUE(Module(1)->HasChanged()) << "nothing was saved for a compile";
}

TEST_F(SourceEditorTest, ToolBarStaysAtLeast4410TwipsWide) {
    const int Least = TwipsConversion::TwipsToPixelsX(4410);
    Editor->resize(Least + 200, 300);
    Settle();
    ASSERT_EQ(Editor->barEditorToolbar->width(), Editor->width()) << "the bar spans the window";
    // Without the bar's minimum, the window's other parts would let it go narrower than the bar.
    Editor->resize(Least / 3, 300);
    Settle();
    EXPECT_GE(Editor->barEditorToolbar->width(), Least);
    EXPECT_GE(Editor->width(), Least);
}

TEST_F(SourceEditorTest, CloseProjectAsksForChangedModulesAndCancelKeepsItOpen) {
    OpenBlink();
    Module(1)->SetHasChanged(true);
    Boxes->QueueAnswer(2);
    Editor->mnuCloseProject->trigger();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Save changes to main?"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Save Module"));
    EXPECT_TRUE(Project().IsDefined());
    EXPECT_EQ(Editor->mdiArea->subWindowList().size(), 2);

    Boxes->QueueAnswer(6);
    Editor->mnuCloseProject->trigger();
    EXPECT_FALSE(Project().IsDefined());
    EXPECT_TRUE(Editor->mdiArea->subWindowList().isEmpty());
    EXPECT_TRUE(Tabs().isEmpty());
    EXPECT_EQ(Editor->windowTitle(), QStringLiteral("Kavlin Editor"));
    EXPECT_FALSE(Editor->mnuSaveProject->isEnabled());
}

TEST_F(SourceEditorTest, TabAndWindowFollowEachOther) {
    OpenBlink();
    Editor->tabEditTabStrip->setCurrentIndex(0);
    Settle();
    EXPECT_EQ(Editor->ActiveModuleNumber(), 1);
    Editor->mdiArea->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(Module(2)->parentWidget()));
    Settle();
    EXPECT_EQ(Editor->tabEditTabStrip->currentIndex(), 1);
}

TEST_F(SourceEditorTest, SaveGeometryKeepsSizeMaximisedStateAndRecentList) {
    OpenBlink();
    Editor->SaveGeometry();
    EXPECT_FALSE(Setting(QStringLiteral("Editor_Width")).isEmpty());
    EXPECT_EQ(Setting(QStringLiteral("Child_Windows_Maximized")), QStringLiteral("False"));
    EXPECT_EQ(Setting(QStringLiteral("Last_Project_1")), File(QStringLiteral("blink.kvp")));
}

TEST_F(SourceEditorTest, ClosingTheDownloaderWithAChangedModuleAndCancelKeepsBothWindows) {
    frmDownloader& Downloader = Global<frmDownloader>::Get();
    OpenBlink();
    Module(1)->SetHasChanged(true);
    Boxes->QueueAnswer(2);
    bool Cancel = false;
    Downloader.Form_Unload(Cancel);
    EXPECT_TRUE(Cancel);
    EXPECT_TRUE(Global<frmSourceEditor>::IsLoaded());
    EXPECT_TRUE(Project().IsDefined());
    EXPECT_FALSE(frmDownloader::ProcessHasEnded());
    EXPECT_TRUE(Setting(QStringLiteral("Main_Top")).isEmpty()) << "no geometry stored";
}

TEST_F(SourceEditorTest, ClosingTheDownloaderSavesWhatTheUserWantsAndUnloadsTheEditor) {
    frmDownloader& Downloader = Global<frmDownloader>::Get();
    OpenBlink();
    Module(2)->SetHasChanged(true);
    Boxes->QueueAnswer(6);
    bool Cancel = true;
    Downloader.Form_Unload(Cancel);
    EXPECT_FALSE(Cancel);
    EXPECT_FALSE(Global<frmSourceEditor>::IsLoaded());
    EXPECT_FALSE(GlobalData::GetEditorIsOpen());
    EXPECT_FALSE(Project().IsDefined());
    EXPECT_TRUE(frmDownloader::ProcessHasEnded());
    EXPECT_FALSE(Setting(QStringLiteral("Editor_Top")).isEmpty());
    EXPECT_FALSE(Setting(QStringLiteral("Main_Top")).isEmpty());
    Global<frmDownloader>::Unload();
}

TEST_F(SourceEditorTest, ExitWithNoChangesClosesTheEditorAndReleasesTheProject) {
    OpenBlink();
    Editor->mnuExit->trigger();
    Settle();
    EXPECT_FALSE(GlobalData::GetEditorIsOpen());
    EXPECT_FALSE(Project().IsDefined());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(Global<frmSourceEditor>::IsLoaded());
}

TEST_F(SourceEditorTest, CloseBoxWithAChangedModuleAsksAndCancelKeepsEverything) {
    OpenBlink();
    Module(2)->SetHasChanged(true);
    Boxes->QueueAnswer(2);
    EXPECT_FALSE(Editor->close());
    EXPECT_TRUE(Editor->isVisible());
    EXPECT_TRUE(GlobalData::GetEditorIsOpen());
    EXPECT_TRUE(Project().IsDefined());
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Save changes to led?"));
}

TEST_F(SourceEditorTest, GeometryComesFromTheEditorsOwnKeys) {
    Global<frmSourceEditor>::Unload();
    SetSetting(QStringLiteral("Editor_Top"), QStringLiteral("-20"));
    SetSetting(QStringLiteral("Editor_Left"), QStringLiteral("720"));
    SetSetting(QStringLiteral("Editor_Width"), QStringLiteral("9000"));
    SetSetting(QStringLiteral("Editor_Height"), QStringLiteral("7000"));
    Editor = &Global<frmSourceEditor>::Get();
    const FormGeometry Geometry = Editor->CurrentGeometry();
    EXPECT_EQ(Geometry.Top, 0);
    EXPECT_EQ(Geometry.Left, 720);
    EXPECT_EQ(Geometry.Width, 9000);
    EXPECT_EQ(Geometry.Height, 7000);
}

// The module windows' frames in creation order, in the area's coordinates.
class TileTest : public SourceEditorTest {
  protected:
    void SetUp() override {
        SourceEditorTest::SetUp();
        WriteFile(QStringLiteral("three.kvp"), "main.bas\r\nled.bas\r\nkey.bas\r\n");
        WriteFile(QStringLiteral("three.prf"), QByteArray(8610, '\0'));
        WriteFile(QStringLiteral("key.bas"), "k = 1");
        Editor->resize(900, 700);
        Dialogs->Answers.push_back(File(QStringLiteral("three.kvp")));
        Editor->mnuOpenProject->trigger();
        Settle();
        ASSERT_EQ(Editor->mdiArea->subWindowList().size(), 3);
    }
    QList<QRect> Frames() const {
        QList<QRect> Result;
        for (QMdiSubWindow* Sub : Editor->mdiArea->subWindowList(QMdiArea::CreationOrder)) {
            Result << Sub->geometry();
        }
        return Result;
    }
    QRect Area() const { return Editor->mdiArea->viewport()->rect(); }
};

TEST_F(TileTest, TileHorizontalStacksTheWindowsTopToBottomEachTheFullWidth) {
    Editor->mnuWindowTileHorizontal->trigger();
    Settle();
    const QRect Whole = Area();
    const QList<QRect> Tiles = Frames();
    ASSERT_EQ(Tiles.size(), 3);
    int Top = Whole.top();
    for (const QRect& Tile : Tiles) {
        EXPECT_EQ(Tile.left(), Whole.left());
        EXPECT_EQ(Tile.width(), Whole.width());
        EXPECT_EQ(Tile.top(), Top) << "each below the one before, no gap";
        EXPECT_NEAR(Tile.height(), Whole.height() / 3, 1);
        Top = Tile.bottom() + 1;
    }
    EXPECT_EQ(Tiles.back().bottom(), Whole.bottom()) << "the last reaches the area's foot";
}

TEST_F(TileTest, TileVerticalSetsTheWindowsSideBySideEachTheFullHeight) {
    Editor->mnuWindowTileVertical->trigger();
    Settle();
    const QRect Whole = Area();
    const QList<QRect> Tiles = Frames();
    ASSERT_EQ(Tiles.size(), 3);
    int Left = Whole.left();
    for (const QRect& Tile : Tiles) {
        EXPECT_EQ(Tile.top(), Whole.top());
        EXPECT_EQ(Tile.height(), Whole.height());
        EXPECT_EQ(Tile.left(), Left) << "each right of the one before, no gap";
        EXPECT_NEAR(Tile.width(), Whole.width() / 3, 1);
        Left = Tile.right() + 1;
    }
    EXPECT_EQ(Tiles.back().right(), Whole.right()) << "the last reaches the area's right edge";
}

TEST_F(TileTest, TilingBringsAMaximizedWindowBackAndLeavesAMinimizedOneAlone) {
    QList<QMdiSubWindow*> Windows = Editor->mdiArea->subWindowList(QMdiArea::CreationOrder);
    Windows[2]->showMinimized();
    Windows[0]->showMaximized();
    Settle();
    Editor->mnuWindowTileHorizontal->trigger();
    Settle();
    const QRect Whole = Area();
    EXPECT_FALSE(Windows[0]->isMaximized());
    EXPECT_TRUE(Windows[2]->isMinimized());
    EXPECT_EQ(Windows[0]->geometry(), QRect(Whole.left(), Whole.top(), Whole.width(),
                                            Windows[1]->geometry().top() - Whole.top()));
    EXPECT_EQ(Windows[1]->geometry().bottom(), Whole.bottom());
    EXPECT_NEAR(Windows[0]->height(), Whole.height() / 2, 1);
}

TEST_F(TileTest, CascadeOverlapsTheWindowsEachOffsetFromTheLast) {
    Editor->mnuWindowTileVertical->trigger();
    Settle();
    Editor->mnuWindowCascade->trigger();
    Settle();
    const QList<QRect> Tiles = Frames();
    ASSERT_EQ(Tiles.size(), 3);
    EXPECT_NE(Tiles[0].topLeft(), Tiles[1].topLeft());
    EXPECT_TRUE(Tiles[0].intersects(Tiles[1]));
    EXPECT_TRUE(Tiles[1].intersects(Tiles[2]));
}

TEST_F(SourceEditorTest, OpeningAProjectTellsTheImageNameToTheDownloader) {
    QString Shown;
    Editor->DisplayKvbHook = [&Shown](const QString& Name) { Shown = Name; };
    OpenBlink();
    EXPECT_EQ(Shown, File(QStringLiteral("blink.kvb")));
    Editor->mnuCloseProject->trigger();
    EXPECT_TRUE(Shown.isEmpty());
    Editor->DisplayKvbHook = nullptr;
}

TEST_F(SourceEditorTest, SaveProjectAsAsksForTheNewNameAndMovesTheCaption) {
    OpenBlink();
    QDir().mkpath(File(QStringLiteral("copy")));
    Dialogs->Answers.push_back(File(QStringLiteral("copy/lamp.kvp")));
    Editor->mnuSaveProjectAs->trigger();
    ASSERT_EQ(Dialogs->Requests.size(), 2);
    EXPECT_EQ(Dialogs->Requests[1].Title, QStringLiteral("Save Project As"));
    EXPECT_EQ(Dialogs->Requests[1].FileName, QStringLiteral("blink.kvp"));
    EXPECT_EQ(Dialogs->Requests[1].Filter, QStringLiteral("Kavlin Studio Project (*.kvp)|*.kvp"));
    EXPECT_TRUE(Dialogs->Requests[1].Save);
    EXPECT_EQ(Editor->windowTitle(), QStringLiteral("Kavlin Editor - lamp"));
    EXPECT_TRUE(QFile::exists(File(QStringLiteral("copy/lamp.kvp"))));
}

TEST_F(SourceEditorTest, SaveModuleAsOffersTheModulesFullName) {
    OpenBlink();
    Editor->mdiArea->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(Module(1)->parentWidget()));
    Dialogs->Answers.push_back(File(QStringLiteral("start.bas")));
    Editor->mnuSaveModuleAs->trigger();
    ASSERT_EQ(Dialogs->Requests.size(), 2);
    EXPECT_EQ(Dialogs->Requests[1].Title, QStringLiteral("Save Module As"));
    EXPECT_EQ(Dialogs->Requests[1].FileName, File(QStringLiteral("main.bas")));
    EXPECT_EQ(Dialogs->Requests[1].Filter, QStringLiteral("Kavlin Studio Module (*.bas)|*.bas"));
    EXPECT_TRUE(QFile::exists(File(QStringLiteral("start.bas"))));
    EXPECT_EQ(Tabs(), (QStringList{QStringLiteral("start"), QStringLiteral("led")}));
}

TEST_F(SourceEditorTest, SaveProjectAsWithoutAProjectSaysSo) {
    Editor->mnuSaveProjectAs->setEnabled(true);
    Editor->mnuSaveProjectAs->trigger();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("No project open"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("No Project Open"));
}

}  // namespace

namespace {

TEST_F(SourceEditorTest, SaveProjectOnAFullDiskKeepsEveryFileShowsTheCauseAndExitStillAsks) {
    const QString Disk = File(QStringLiteral("disk"));
    SmallTmpfs Tmpfs(Disk, 256 * 1024);
    if (!Tmpfs.Mounted()) {
        GTEST_SKIP() << "this machine lets no test mount a file system";
    }
    const QStringList Names = {QStringLiteral("blink.kvp"), QStringLiteral("main.bas"),
                               QStringLiteral("led.bas"), QStringLiteral("blink.prf")};
    for (const QString& Name : Names) {
        ASSERT_TRUE(QFile::copy(File(Name), Disk + QLatin1Char('/') + Name));
    }
    Dialogs->Answers.push_back(Disk + QStringLiteral("/blink.kvp"));
    Editor->mnuOpenProject->trigger();
    Settle();
    frmEditBoxType* Main = Module(1);
    ASSERT_NE(Main, nullptr);
    Editor->mdiArea->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(Main->parentWidget()));
    Main->RichText().SetSelStart(0);
    QTest::keyClicks(Main->rtfEditBox, QStringLiteral("' a - b.c"));
    Settle();
    ASSERT_TRUE(Main->HasChanged());
    QMap<QString, QByteArray> Before;
    for (const QString& Name : Names) {
        QFile Old(Disk + QLatin1Char('/') + Name);
        ASSERT_TRUE(Old.open(QIODevice::ReadOnly));
        Before.insert(Name, Old.readAll());
    }
    Tmpfs.FillUpTo(0);
    Boxes->Boxes.clear();

    Editor->mnuSaveProject->trigger();
    Settle();
    for (const QString& Name : Names) {
        QFile After(Disk + QLatin1Char('/') + Name);
        ASSERT_TRUE(After.open(QIODevice::ReadOnly));
        EXPECT_EQ(After.readAll(), Before.value(Name)) << Name.toStdString();
    }
    ASSERT_FALSE(Boxes->Boxes.isEmpty());
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("Error writing module main\nError 61, Disk full"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Module Write Error"));
    for (const auto& Box : Boxes->Boxes) {
        EXPECT_TRUE(Box.Text.endsWith(QStringLiteral("\nError 61, Disk full")))
            << Box.Text.toStdString();
    }
    EXPECT_TRUE(Main->HasChanged());

    // Nothing was saved, so leaving asks.
    Boxes->Boxes.clear();
    Boxes->QueueAnswer(2);
    Editor->mnuExit->trigger();
    Settle();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Save changes to main?"));
    EXPECT_TRUE(GlobalData::GetEditorIsOpen());
}

}  // namespace
