#include <QKeyEvent>
#include <QSignalSpy>
#include <stdexcept>

#include "editor/EditBoxModuleWindow.h"
#include "editor/frmSourceEditor.h"
#include "frame/DirectoryCentral.h"
#include "frame/DumpManager.h"
#include "frame/GlobalData.h"
#include "frame/RegistryCentral.h"
#include "frame/TwipsConversion.h"
#include "frame/frmSplash.h"
#include "link/DownloadPortExecutive.h"
#include "link/DownloadPortFixture.h"
#include "link/ParallelDownloader.h"
#include "link/frmDownloader.h"
#include "monitor/MonitorPortExecutive.h"
#include "platform/Global.h"
#include "project/ProjectType.h"
#include "support/FrameFixture.h"

namespace {

class FakeEditor : public EditorShutdownHandler {
  public:
    void ProcessExit(bool& CancelUnload) override {
        ++Prompts;
        CancelUnload = AnswerCancel;
    }
    void UnloadEditor() override {
        ++Unloads;
        GlobalData::SetEditorIsOpen(false);
    }
    bool AnswerCancel = false;
    int Prompts = 0;
    int Unloads = 0;
};

class DownloaderTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        MakeGoodInstallation();
        frmDownloader::ResetProcessEnded();
    }
    void TearDown() override {
        frmDownloader::SetEditorShutdownHandler(nullptr);
        GlobalData::SetEditorIsOpen(false);
        Global<frmSplash>::Unload();
        Global<ProjectType>::Unload();
        Global<frmSourceEditor>::Unload();
        Global<frmDownloader>::Unload();
        Global<ProjectType>::Unload();
        frmDownloader::ResetProcessEnded();
        FrameFixture::TearDown();
    }
    frmDownloader& Load() {
        frmDownloader& Window = Global<frmDownloader>::Get();
        Window.Form_Load();
        return Window;
    }
};

TEST_F(DownloaderTest, EmptySettingsStartAsKv20WithDefaultGeometryAndBothChipMenus) {
    frmDownloader& Window = Load();
    EXPECT_EQ(GlobalData::ChipType, 2);
    EXPECT_TRUE(Window.mnuRescue->isEnabled());
    EXPECT_TRUE(Window.mnuDiagnosticATN->isEnabled());
    const FormGeometry Geometry = Window.CurrentGeometry();
    EXPECT_EQ(Geometry.Top, 200);
    EXPECT_EQ(Geometry.Left, 200);
    EXPECT_EQ(Geometry.Width, 6950);
    EXPECT_EQ(Geometry.Height, 6500);
    EXPECT_EQ(Window.windowTitle(), QStringLiteral("Kavlin Development System V2.0.24"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_FALSE(frmDownloader::ProcessHasEnded());
}

TEST_F(DownloaderTest, StartWithoutCommandLineShowsSplashForOneSecond) {
    bool SplashSeenWhileWaiting = false;
    Clock->OnSleep = [&](int64_t) {
        SplashSeenWhileWaiting = SplashSeenWhileWaiting || Global<frmSplash>::IsLoaded();
    };
    Load();
    EXPECT_TRUE(SplashSeenWhileWaiting);
    EXPECT_EQ(Clock->NowMs, 1000);
    EXPECT_FALSE(Global<frmSplash>::IsLoaded());
}

TEST_F(DownloaderTest, KeyOnSplashUnloadsItEarlyAndStartUpEnds) {
    Clock->OnSleep = [&](int64_t Now) {
        if (Now == 300 && Global<frmSplash>::IsLoaded()) {
            QKeyEvent Key(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
            QCoreApplication::sendEvent(&Global<frmSplash>::Get(), &Key);
        }
    };
    frmDownloader& Window = Load();
    EXPECT_FALSE(Global<frmSplash>::IsLoaded());
    EXPECT_LT(Clock->NowMs, 1000);
    EXPECT_EQ(Window.windowTitle(), GlobalData::ApplicationCaption());
    EXPECT_FALSE(frmDownloader::ProcessHasEnded());
}

TEST_F(DownloaderTest, CommandLineStartShowsNoSplash) {
    WriteFile(QStringLiteral("blink.kvp"));
    CommandLineInterpreter::SetCommandLine(QStringLiteral("blink"));
    Load();
    EXPECT_FALSE(Global<frmSplash>::IsLoaded());
    EXPECT_EQ(Clock->SleepCalls, 0) << "no splash second with a command line";
    EXPECT_EQ(Clock->NowMs, 0);
}

TEST_F(DownloaderTest, ProjectNameOnTheCommandLineOpensTheEditorWithItsModules) {
    WriteFile(QStringLiteral("lamp.kvp"), "main.bas\r\nled.bas\r\n");
    WriteFile(QStringLiteral("main.bas"), "Option Explicit\r\n");
    WriteFile(QStringLiteral("led.bas"), "x = 1");
    WriteFile(QStringLiteral("lamp.prf"), QByteArray(8610, '\0'));
    ModuleEditWindow::SetFactory([] { return std::make_unique<EditBoxModuleWindow>(); });
    CommandLineInterpreter::SetCommandLine(QStringLiteral("lamp"));
    frmDownloader& Window = Load();
    ASSERT_TRUE(Global<frmSourceEditor>::IsLoaded());
    frmSourceEditor& Editor = Global<frmSourceEditor>::Get();
    EXPECT_TRUE(Editor.isVisible());
    EXPECT_EQ(Editor.windowTitle(), QStringLiteral("Kavlin Editor - lamp"));
    EXPECT_EQ(Editor.mdiArea->subWindowList().size(), 2);
    EXPECT_EQ(Editor.tabEditTabStrip->count(), 2);
    EXPECT_FALSE(frmDownloader::ProcessHasEnded());
    EXPECT_FALSE(Window.ToolBarButton(QStringLiteral("Editor"))->isEnabled());
    EXPECT_EQ(Window.StatusBarPanels[4]->text(), TempPath() + QStringLiteral("/lamp.kvb"));
    ModuleEditWindow::SetFactory(nullptr);
}

TEST_F(DownloaderTest, StoredKv10DisablesRescueAndAtnDiagnostic) {
    SetSetting(QStringLiteral("Chip_Type"), QStringLiteral("KV10"));
    frmDownloader& Window = Load();
    EXPECT_EQ(GlobalData::ChipType, 1);
    EXPECT_FALSE(Window.mnuRescue->isEnabled());
    EXPECT_FALSE(Window.mnuDiagnosticATN->isEnabled());
}

TEST_F(DownloaderTest, StoredKv30EnablesRescueAndAtnDiagnostic) {
    SetSetting(QStringLiteral("Chip_Type"), QStringLiteral("KV30"));
    frmDownloader& Window = Load();
    EXPECT_EQ(GlobalData::ChipType, 3);
    EXPECT_TRUE(Window.mnuRescue->isEnabled());
    EXPECT_TRUE(Window.mnuDiagnosticATN->isEnabled());
}

TEST_F(DownloaderTest, UnknownStoredChipTypeYieldsKv20WithoutMessage) {
    SetSetting(QStringLiteral("Chip_Type"), QStringLiteral("KV99"));
    Load();
    EXPECT_EQ(GlobalData::ChipType, 2);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(DownloaderTest, NegativeTopAndLeftGiveTopZeroAndKeepLeft) {
    SetSetting(QStringLiteral("Main_Top"), QStringLiteral("-10"));
    SetSetting(QStringLiteral("Main_Left"), QStringLiteral("-10"));
    SetSetting(QStringLiteral("Main_Width"), QStringLiteral("6000"));
    SetSetting(QStringLiteral("Main_Height"), QStringLiteral("5000"));
    frmDownloader& Window = Load();
    const FormGeometry Geometry = Window.CurrentGeometry();
    EXPECT_EQ(Geometry.Top, 0);
    EXPECT_EQ(Geometry.Left, -10);
    EXPECT_EQ(Geometry.Width, 6000);
    EXPECT_EQ(Geometry.Height, 5000);
}

TEST_F(DownloaderTest, WindowBeyondTheScreenComesBackToTheEdge) {
    const int32_t ScreenHeight = TwipsConversion::ScreenHeightTwips();
    const int32_t ScreenWidth = TwipsConversion::ScreenWidthTwips();
    ASSERT_GT(ScreenHeight, 567);
    SetSetting(QStringLiteral("Main_Top"), QString::number(ScreenHeight * 3));
    SetSetting(QStringLiteral("Main_Left"), QString::number(ScreenWidth * 3));
    SetSetting(QStringLiteral("Main_Width"), QStringLiteral("6000"));
    SetSetting(QStringLiteral("Main_Height"), QStringLiteral("5000"));
    const FormGeometry Geometry = Load().CurrentGeometry();
    EXPECT_EQ(Geometry.Top, 0);
    EXPECT_EQ(Geometry.Left, 0);
}

TEST_F(DownloaderTest, TopAndLeftExactlyAtTheScreenLimitStay) {
    const int32_t TopLimit = TwipsConversion::ScreenHeightTwips() - 567;
    const int32_t LeftLimit = TwipsConversion::ScreenWidthTwips() - 567;
    SetSetting(QStringLiteral("Main_Top"), QString::number(TopLimit));
    SetSetting(QStringLiteral("Main_Left"), QString::number(LeftLimit));
    SetSetting(QStringLiteral("Main_Width"), QStringLiteral("6000"));
    SetSetting(QStringLiteral("Main_Height"), QStringLiteral("5000"));
    const FormGeometry AtLimit = Load().CurrentGeometry();
    EXPECT_EQ(AtLimit.Top, TopLimit);
    EXPECT_EQ(AtLimit.Left, LeftLimit);
}

TEST_F(DownloaderTest, TopOneTwipBeyondTheScreenLimitComesBackToZero) {
    SetSetting(QStringLiteral("Main_Top"),
               QString::number(TwipsConversion::ScreenHeightTwips() - 566));
    SetSetting(QStringLiteral("Main_Left"), QStringLiteral("300"));
    SetSetting(QStringLiteral("Main_Width"), QStringLiteral("6000"));
    SetSetting(QStringLiteral("Main_Height"), QStringLiteral("5000"));
    const FormGeometry Geometry = Load().CurrentGeometry();
    EXPECT_EQ(Geometry.Top, 0);
    EXPECT_EQ(Geometry.Left, 300);
}

TEST_F(DownloaderTest, StartUpSetsTheParallelRegistersAndReadsBothPortSetUps) {
    FakeLptReservation Reservation;
    DownloadPortExecutive::SetLptReservation(&Reservation);
    ParallelDownloader::SetPortBase(0x278);
    SetSetting(QStringLiteral("Port_Number"), QStringLiteral("2"));
    SetSetting(QStringLiteral("Port_Mode"), QStringLiteral("Parallel"));
    SetSetting(QStringLiteral("Port_Address"), QStringLiteral("&H3BC"));
    SetSetting(QStringLiteral("Port_Reserve"), QStringLiteral("True"));
    SetSetting(QStringLiteral("KV20port_Number"), QStringLiteral("  3,  57600,E,7,20"));
    Load();
    // The stored parallel port is opened at its own address.
    EXPECT_EQ(ParallelDownloader::GetDataPort(), 956);
    EXPECT_EQ(ParallelDownloader::GetStatusPort(), 957);
    EXPECT_EQ(ParallelDownloader::GetControlPort(), 958);
    for (int Bit = 0; Bit < 8; ++Bit) {
        EXPECT_EQ(ParallelDownloader::GetBitMask()[Bit], 1 << Bit);
    }
    DownloadPortInfoType Download;
    DownloadPortExecutive::GetDownloadPortInfo(Download);
    EXPECT_TRUE(Download.IsDefined());
    EXPECT_TRUE(Download.IsParallel());
    EXPECT_EQ(Download.PortNumber(), 2);
    EXPECT_EQ(Download.Address(), 0x3BC);
    EXPECT_TRUE(Download.Reserve());
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsParallel());
    EXPECT_EQ(Reservation.Opened, QStringList({QStringLiteral("/dev/parport1")}));
    DownloadPortExecutive::ClosePorts();
    DownloadPortExecutive::SetLptReservation(nullptr);
    const MonitorPortInfoType& Monitor = MonitorPortExecutive::GetMonitorPortInfo();
    EXPECT_TRUE(Monitor.IsDefined);
    EXPECT_EQ(Monitor.PortNumber(), 3);
    EXPECT_EQ(Monitor.BaudRate, 57600);
    EXPECT_EQ(Monitor.Parity, 1);
    EXPECT_EQ(Monitor.DataBits(), 7);
    EXPECT_EQ(Monitor.StopBits(), 2);
    EXPECT_FALSE(MonitorPortExecutive::GetMonitorPortIsOpen());
}

TEST_F(DownloaderTest, StartUpWithNoDownloadPortStoredLeavesItUndefinedWithAddressZero) {
    Load();
    DownloadPortInfoType Download;
    DownloadPortExecutive::GetDownloadPortInfo(Download);
    EXPECT_FALSE(Download.IsDefined());
    EXPECT_EQ(Download.PortNumber(), 0);
    EXPECT_EQ(Download.Address(), 0);
    EXPECT_FALSE(MonitorPortExecutive::GetMonitorPortInfo().IsDefined);
}

TEST_F(DownloaderTest, ErrorReportNamesNoProjectWhenNoneIsDefined) {
    ProjectModel::RegisterWithFrame();
    Global<ProjectType>::Unload();
    const QStringList Lines = DumpManager::BuildErrorReport().split(QStringLiteral("\r\n"));
    ASSERT_GT(Lines.size(), 5);
    EXPECT_EQ(Lines[4], QStringLiteral("    Project name:  <none>"));
    DumpManager::SetProjectNameSource({});
}

TEST_F(DownloaderTest, GeometryAndChipTypeSurviveARestart) {
    SetSetting(QStringLiteral("Chip_Type"), QStringLiteral("KV30"));
    frmDownloader& First = Load();
    First.move(TwipsConversion::TwipsToPixelsX(1500), TwipsConversion::TwipsToPixelsY(900));
    First.resize(TwipsConversion::TwipsToPixelsX(7200), TwipsConversion::TwipsToPixelsY(5760));
    bool Cancel = true;
    First.Form_Unload(Cancel);
    EXPECT_FALSE(Cancel);
    EXPECT_TRUE(frmDownloader::ProcessHasEnded());
    const FormGeometry Saved = First.CurrentGeometry();
    Global<frmDownloader>::Unload();
    frmDownloader::ResetProcessEnded();

    frmDownloader& Second = Load();
    EXPECT_EQ(GlobalData::ChipType, 3);
    const FormGeometry Restored = Second.CurrentGeometry();
    EXPECT_EQ(Restored.Top, Saved.Top);
    EXPECT_EQ(Restored.Left, Saved.Left);
    EXPECT_EQ(Restored.Width, Saved.Width);
    EXPECT_EQ(Restored.Height, Saved.Height);
    EXPECT_EQ(Setting(QStringLiteral("Main_Width")), QString::number(Saved.Width));
}

TEST_F(DownloaderTest, UnmovedWindowStoresExactlyTheTwipsItWasRestoredFrom) {
    SetSetting(QStringLiteral("Main_Top"), QStringLiteral("200"));
    SetSetting(QStringLiteral("Main_Left"), QStringLiteral("215"));
    SetSetting(QStringLiteral("Main_Width"), QStringLiteral("6953"));
    SetSetting(QStringLiteral("Main_Height"), QStringLiteral("6501"));
    frmDownloader& Window = Load();
    bool Cancel = true;
    Window.Form_Unload(Cancel);
    EXPECT_EQ(Setting(QStringLiteral("Main_Top")), QStringLiteral("200"));
    EXPECT_EQ(Setting(QStringLiteral("Main_Left")), QStringLiteral("215"));
    EXPECT_EQ(Setting(QStringLiteral("Main_Width")), QStringLiteral("6953"));
    EXPECT_EQ(Setting(QStringLiteral("Main_Height")), QStringLiteral("6501"));
}

TEST_F(DownloaderTest, CancelInEditorPromptKeepsBothWindowsAndStoresNothing) {
    frmDownloader& Window = Load();
    FakeEditor Editor;
    Editor.AnswerCancel = true;
    frmDownloader::SetEditorShutdownHandler(&Editor);
    GlobalData::SetEditorIsOpen(true);
    const auto Before = Settings->Values();

    bool Cancel = false;
    Window.Form_Unload(Cancel);
    EXPECT_TRUE(Cancel);
    EXPECT_EQ(Editor.Prompts, 1);
    EXPECT_EQ(Editor.Unloads, 0);
    EXPECT_TRUE(GlobalData::GetEditorIsOpen());
    EXPECT_FALSE(frmDownloader::ProcessHasEnded());
    EXPECT_EQ(Settings->Values(), Before);
}

TEST_F(DownloaderTest, ClosingWithOpenEditorUnloadsItThenStoresGeometryAndEnds) {
    frmDownloader& Window = Load();
    FakeEditor Editor;
    frmDownloader::SetEditorShutdownHandler(&Editor);
    GlobalData::SetEditorIsOpen(true);
    bool Cancel = true;
    Window.Form_Unload(Cancel);
    EXPECT_FALSE(Cancel);
    EXPECT_EQ(Editor.Prompts, 1);
    EXPECT_EQ(Editor.Unloads, 1);
    EXPECT_FALSE(Setting(QStringLiteral("Main_Top")).isEmpty());
    EXPECT_TRUE(frmDownloader::ProcessHasEnded());
}

TEST_F(DownloaderTest, ClosingWithoutEditorDoesNotPrompt) {
    frmDownloader& Window = Load();
    FakeEditor Editor;
    frmDownloader::SetEditorShutdownHandler(&Editor);
    bool Cancel = true;
    Window.Form_Unload(Cancel);
    EXPECT_FALSE(Cancel);
    EXPECT_EQ(Editor.Prompts, 0);
}

TEST_F(DownloaderTest, EditorButtonIsDisabledWhileTheEditorIsOpen) {
    frmDownloader& Window = Load();
    QAction* Editor = Window.ToolBarButton(QStringLiteral("Editor"));
    ASSERT_NE(Editor, nullptr);
    EXPECT_TRUE(Editor->isEnabled());
    GlobalData::SetEditorIsOpen(true);
    EXPECT_TRUE(GlobalData::GetEditorIsOpen());
    EXPECT_FALSE(Editor->isEnabled());
    GlobalData::SetEditorIsOpen(false);
    EXPECT_TRUE(Editor->isEnabled());
}

TEST_F(DownloaderTest, ToolBarHoldsItsButtonsByPosition) {
    frmDownloader& Window = Load();
    ASSERT_GE(Window.ToolBarButtons.size(), 10);
    const char* Keys[] = {"Open", "Editor", nullptr, nullptr,   nullptr,
                          "Stop", "Run",    "Reset", "Download"};
    for (int Position = 1; Position <= 9; ++Position) {
        QAction* Button = Window.ToolBarButtons[Position - 1];
        if (Keys[Position - 1] == nullptr) {
            EXPECT_TRUE(Button->isSeparator()) << Position;
        } else {
            EXPECT_EQ(Button->data().toString(), QString::fromLatin1(Keys[Position - 1]))
                << Position;
        }
    }
    EXPECT_EQ(Window.ToolBarButtons.back()->data().toString(), QStringLiteral("ClearSerial"));
    EXPECT_EQ(Window.ToolBarButton(QStringLiteral("Download"))->toolTip(),
              QStringLiteral("Download Program  (Alt+D)"));
    EXPECT_EQ(Window.findChild<QAction*>(QStringLiteral("mnuSetWorkingDirectory"))->text(),
              QStringLiteral("Set Starting &Directory"));
}

TEST_F(DownloaderTest, HoldsTheChipLinkAndClearWindowEmptiesItAndTheDebugWindow) {
    frmDownloader& Window = Load();
    auto* Link = Window.findChild<KavlinControl*>(QStringLiteral("KavlinControl1"));
    ASSERT_NE(Link, nullptr);
    Link->Text(QStringLiteral("Chip halted"));
    Window.txtDebugWindow->setPlainText(QStringLiteral("hello"));
    Window.ToolBar_ButtonClick(QStringLiteral("ClearSerial"));
    EXPECT_TRUE(Link->txtStatus->text().isEmpty());
    EXPECT_TRUE(Window.txtDebugWindow->toPlainText().isEmpty());
}

TEST_F(DownloaderTest, EditorButtonReleasesTheProjectAndEmptiesTheImageName) {
    frmDownloader& Window = Load();
    GlobalData::DownloadFilename = QStringLiteral("/x/blink.kvb");
    Window.StatusBarPanels[4]->setText(GlobalData::DownloadFilename);
    Global<ProjectType>::Unload();
    Window.ToolBar_ButtonClick(QStringLiteral("Editor"));
    EXPECT_TRUE(GlobalData::DownloadFilename.isEmpty());
    EXPECT_TRUE(Window.StatusBarPanels[4]->text().isEmpty());
    EXPECT_TRUE(Global<ProjectType>::IsLoaded()) << "a new project is made";
}

TEST_F(DownloaderTest, NoProjectReadsUndefinedAndCreatesAnEmptyOneWithoutMessage) {
    Load();
    Global<ProjectType>::Unload();
    EXPECT_FALSE(Global<ProjectType>::IsLoaded());
    EXPECT_FALSE(Project().IsDefined());
    EXPECT_TRUE(Global<ProjectType>::IsLoaded());
    EXPECT_TRUE(Project().Name().isEmpty());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

// Throws from the first box it is asked for, and records the rest.
class ThrowingOnceBoxes : public ScriptedMessageBoxService {
  public:
    int Show(const QString& Text, const QString& Title, MsgBoxButtons Buttons,
             MsgBoxIcon Icon) override {
        if (!Thrown) {
            Thrown = true;
            throw std::runtime_error("box failed");
        }
        return ScriptedMessageBoxService::Show(Text, Title, Buttons, Icon);
    }
    bool Thrown = false;
};

TEST_F(DownloaderTest, ErrorDuringStartUpGivesReport601AndStopsTheLoad) {
    SetSetting(QStringLiteral("Run_Dir"), TempPath() + QStringLiteral("/missing"));
    auto Throwing = std::make_unique<ThrowingOnceBoxes>();
    ThrowingOnceBoxes* Recorder = Throwing.get();
    MessageBoxService::Install(std::move(Throwing));
    SetSetting(QStringLiteral("Chip_Type"), QStringLiteral("KV10"));
    frmDownloader& Window = Load();
    ASSERT_EQ(Recorder->Boxes.size(), 1);
    EXPECT_EQ(Recorder->Boxes[0].Title, QStringLiteral("Unexpected Error"));
    EXPECT_TRUE(Recorder->Boxes[0].Text.contains(QStringLiteral("    Error code:  601\r\n")));
    EXPECT_TRUE(
        Recorder->Boxes[0].Text.contains(QStringLiteral("    Description:  box failed (51)")));
    // The load went no further: the chip type was never read from the store.
    EXPECT_EQ(GlobalData::ChipType, 2);
    EXPECT_TRUE(Window.mnuRescue->isEnabled());
}

}  // namespace
