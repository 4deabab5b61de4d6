// The whole loop with no hardware: a KV-20 project compiled by the bundled
// component on F5, downloaded to the simulated chip on port 99 and started;
// its output read through the monitor port into the downloader's window,
// its counter watched, the chip stopped and reset from the downloader, and
// what the user types echoed by the program. Virtual time throughout.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QListWidget>
#include <QRegularExpression>
#include <QTest>
#include <QToolBar>

#include "compile/CompilerCentral.h"
#include "editor/EditBoxModuleWindow.h"
#include "editor/frmSourceEditor.h"
#include "frame/DirectoryCentral.h"
#include "frame/GlobalData.h"
#include "frame/frmSplash.h"
#include "link/DownloadPortFixture.h"
#include "link/XSerialDownloader.h"
#include "link/frmDownloader.h"
#include "monitor/MonitorPortExecutive.h"
#include "monitor/frmWatchWindow.h"
#include "platform/ClipboardService.h"
#include "platform/Global.h"
#include "project/ModuleEditWindow.h"
#include "project/ProjectType.h"
#include "support/SourceEditorFixture.h"

namespace {

// Counts its starts in the internal EEPROM, then counts and blinks for ever,
// printing each count and echoing what it is sent.
const QByteArray CounterProgram =
    "Option Explicit\r\n"
    "Persistent Starts As Byte\r\n"
    "Dim Counter As Integer\r\n"
    "\r\n"
    "Sub Main()\r\n"
    "    Dim Typed As Integer\r\n"
    "    If Starts = 255 Then Starts = 0\r\n"
    "    Starts = Starts + 1\r\n"
    "    Debug.Print \"start\"; Starts\r\n"
    "    Do\r\n"
    "        Counter = Counter + 1\r\n"
    "        PutLed 1, Counter Mod 2 = 0\r\n"
    "        Debug.Print \"count\"; Counter\r\n"
    "        Typed = TryGetByte()\r\n"
    "        If Typed >= 0 Then Debug.Print \"echo \"; Chr(CByte(Typed))\r\n"
    "        Sleep 200\r\n"
    "    Loop\r\n"
    "End Sub\r\n";

class LoopAcceptanceTest : public DownloadPortFixture {
  protected:
    void SetUp() override {
        DownloadPortFixture::SetUp();
        StoreSimulatedChipForBothPorts();
        // The install directory with the real system library; the bundled
        // component beside the program.
        for (const QString& Library :
             {QStringLiteral("BinKV10/SymbolKV10.sym"), QStringLiteral("BinKV20/SymbolKV20.sym")}) {
            const QString Target = TempFile(QStringLiteral("inst/") + Library);
            QFile::remove(Target);
            ASSERT_TRUE(QFile::copy(QStringLiteral(KAVLIN_SYMBOL_FILES "/") + Library, Target));
        }
        const QString Program = TempFile(QStringLiteral("bin"));
        ASSERT_TRUE(QDir().mkpath(Program));
        ASSERT_TRUE(QFile::link(QStringLiteral(KVCOMP_BUNDLED),
                                Program + QStringLiteral("/libKvComp141.so")));
        DirectoryCentral::SetApplicationPath(Program);
        DirectoryCentral::InitializeDirectories();
        CompilerCentral::ReleaseComponent();
        CompilerCentral::RegisterWithFrame();
        ClipboardService::Install(std::make_unique<MemoryClipboardService>());
        ModuleEditWindow::SetFactory([] { return std::make_unique<EditBoxModuleWindow>(); });
        XSerialDownloader::ResetState();
        frmDownloader::ResetProcessEnded();
        WriteFile(QStringLiteral("counter.kvp"), "main.bas\r\n");
        WriteFile(QStringLiteral("main.bas"), CounterProgram);
    }
    void TearDown() override {
        Global<frmWatchWindow>::Unload();
        Global<frmSplash>::Unload();
        UnloadEditorWindows();
        ModuleEditWindow::SetFactory(nullptr);
        CompilerCentral::ReleaseComponent();
        XSerialDownloader::ResetState();
        frmDownloader::ResetProcessEnded();
        GlobalData::ProjectFilename.clear();
        GlobalData::DownloadFilename.clear();
        DownloadPortFixture::TearDown();
    }

    // As the program starts: the downloader, the editor from its tool bar,
    // the project opened; the preference file the editor offers to make is
    // made.
    void StartProgram() {
        Downloader = &Global<frmDownloader>::Get();
        Downloader->Form_Load();
        Downloader->show();
        QTest::mouseClick(ToolButton(QStringLiteral("Editor")), Qt::LeftButton);
        Editor = &Global<frmSourceEditor>::Get();
        Boxes->QueueAnswer(6);
        Editor->OpenProject(TempPath(), QStringLiteral("counter"), QStringLiteral("kvp"), false);
        QCoreApplication::processEvents();
        ASSERT_TRUE(QFile::exists(TempFile(QStringLiteral("counter.prf"))));
        Boxes->Boxes.clear();
    }
    QWidget* ToolButton(const QString& Key) const {
        return Downloader->ToolBar->widgetForAction(Downloader->ToolBarButton(Key));
    }
    void PressF5() {
        Editor->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Editor));
        QTest::keyClick(Editor, Qt::Key_F5);
        ASSERT_EQ(BoxMessages(), QStringList());
        ASSERT_EQ(Line->Chip().ProgramTrouble(), std::string());
    }
    // Time passes: the virtual clock moves on 50 ms at a time and the
    // downloader's running poll timer fires after each step.
    void Pass(int Milliseconds) {
        for (int Done = 0; Done < Milliseconds; Done += 50) {
            Clock->NowMs += 50;
            if (Downloader->tmrSerialInputPoller->isActive()) {
                ASSERT_TRUE(QMetaObject::invokeMethod(Downloader->tmrSerialInputPoller, "timeout"));
            }
        }
    }
    QString Shown() const { return Downloader->txtDebugWindow->toPlainText(); }
    // The numbers of the lines "<Word> N" shown, in order.
    QList<int> Numbers(const QString& Word) const {
        QList<int> Found;
        const QRegularExpression Pattern(QStringLiteral("^%1 (\\d+)$").arg(Word),
                                         QRegularExpression::MultilineOption);
        auto Matches = Pattern.globalMatch(Shown());
        while (Matches.hasNext()) {
            Found << Matches.next().captured(1).toInt();
        }
        return Found;
    }

    frmDownloader* Downloader = nullptr;
    frmSourceEditor* Editor = nullptr;
};

TEST_F(LoopAcceptanceTest, F5CompilesDownloadsAndTheProgramPrintsIntoTheDebugWindow) {
    StartProgram();
    PressF5();
    EXPECT_TRUE(QFile::exists(TempFile(QStringLiteral("counter.kvb"))));
    EXPECT_TRUE(MonitorPortExecutive::IsMonitorPortOpen()) << "the download gave the line back";
    Pass(1000);
    EXPECT_EQ(Numbers(QStringLiteral("start")), QList<int>{1}) << Shown().toStdString();
    const QList<int> Counts = Numbers(QStringLiteral("count"));
    ASSERT_GE(Counts.size(), 4) << Shown().toStdString();
    for (int Index = 0; Index < Counts.size(); ++Index) {
        EXPECT_EQ(Counts[Index], Index + 1);
    }
    // The red LED is lit on the even counts.
    EXPECT_EQ(Line->Chip().Board.LedOn(1), Counts.last() % 2 == 0);
}

TEST_F(LoopAcceptanceTest, TheWatchWindowShowsTheCounterRisingBetweenSamples) {
    StartProgram();
    PressF5();
    Pass(500);
    // The watch window takes the line from the monitor port.
    Boxes->QueueAnswer(6);
    Editor->mnuWatchWindow->trigger();
    frmWatchWindow& Watch = Global<frmWatchWindow>::Get();
    Watch.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Watch));
    QListWidget* List = Watch.lstWatchList;
    const QList<QListWidgetItem*> Rows =
        List->findItems(QStringLiteral("Counter.Integer"), Qt::MatchExactly);
    ASSERT_EQ(Rows.size(), 1);
    QTest::mouseClick(List->viewport(), Qt::LeftButton, {}, List->visualItemRect(Rows[0]).center());
    QList<int> Samples;
    for (int Sample = 0; Sample < 3; ++Sample) {
        Clock->NowMs += 1000;
        ASSERT_TRUE(Watch.WatchTimer->isActive());
        ASSERT_TRUE(QMetaObject::invokeMethod(Watch.WatchTimer, "timeout"));
        const QString Text = Watch.txtWatchText->toPlainText();
        ASSERT_TRUE(Text.startsWith(QStringLiteral("Counter: "))) << Text.toStdString();
        Samples << Text.mid(9).trimmed().toInt();
    }
    // Sleep 200 a pass: about five counts a second.
    EXPECT_GT(Samples[1], Samples[0]);
    EXPECT_GT(Samples[2], Samples[1]);
    EXPECT_GE(Samples[2] - Samples[1], 4);
    EXPECT_LE(Samples[2] - Samples[1], 6);
    QTest::mouseClick(Watch.CloseWatch, Qt::LeftButton);
    // The monitor port's set-up is the user's again; the stored one still
    // names the simulated chip.
    EXPECT_TRUE(Downloader->mnuMonitorPortSetup->isEnabled());
    EXPECT_EQ(Setting(QStringLiteral("KV20port_Number")).trimmed().left(3), QStringLiteral("99,"));
}

TEST_F(LoopAcceptanceTest, StopHaltsTheProgramAndNothingMoreIsPrinted) {
    StartProgram();
    PressF5();
    Pass(500);
    QTest::mouseClick(ToolButton(QStringLiteral("Stop")), Qt::LeftButton);
    EXPECT_TRUE(Line->Chip().InMonitor());
    Pass(100);
    const QString Before = Shown();
    Pass(2000);
    EXPECT_EQ(Shown(), Before);
    EXPECT_FALSE(Numbers(QStringLiteral("count")).isEmpty());
}

// The downloader's Reset holds the chip, as no reset line reaches the host;
// Run lets it go with the reset bytes, and the program starts from the top.
TEST_F(LoopAcceptanceTest, AfterStopAndResetRunStartsTheProgramAgainAndItsPersistentCountGoesUp) {
    StartProgram();
    PressF5();
    Pass(500);
    QTest::mouseClick(ToolButton(QStringLiteral("Stop")), Qt::LeftButton);
    Pass(100);
    QTest::mouseClick(ToolButton(QStringLiteral("Reset")), Qt::LeftButton);
    EXPECT_EQ(Downloader->StatusBarPanels[1]->text(), QStringLiteral("RESET"));
    const QString Held = Shown();
    Pass(500);
    EXPECT_EQ(Shown(), Held) << "held in reset, the program does nothing";
    QTest::mouseClick(ToolButton(QStringLiteral("Run")), Qt::LeftButton);
    Pass(500);
    EXPECT_EQ(Numbers(QStringLiteral("start")), (QList<int>{1, 2})) << Shown().toStdString();
    // The counter starts again from the program's start: RAM is cleared.
    EXPECT_EQ(Numbers(QStringLiteral("count")).count(1), 2);
    // Run once more, straight from the running program.
    QTest::keyClick(Downloader, Qt::Key_E, Qt::AltModifier);
    Pass(500);
    EXPECT_EQ(Numbers(QStringLiteral("start")), (QList<int>{1, 2, 3}));
    EXPECT_EQ(Line->Chip().InternalEeprom[32], 3) << "the count of starts, kept in the EEPROM";
}

TEST_F(LoopAcceptanceTest, WhatIsTypedIntoTheDebugWindowReachesTheProgramWhichEchoesIt) {
    StartProgram();
    PressF5();
    Pass(300);
    Downloader->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Downloader));
    QTest::keyClicks(Downloader->txtDebugWindow, QStringLiteral("h"));
    Pass(500);
    EXPECT_TRUE(Shown().contains(QStringLiteral("\necho h\n"))) << Shown().toStdString();
    QTest::keyClicks(Downloader->txtDebugWindow, QStringLiteral("i"));
    Pass(500);
    EXPECT_TRUE(Shown().contains(QStringLiteral("\necho i\n"))) << Shown().toStdString();
}

}  // namespace
