#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <functional>

#include "CompileFixture.h"
#include "chip/frmChipDialogKV30.h"
#include "compile/CompilerCentral.h"
#include "compile/frmCompileStatus.h"
#include "editor/EditBoxModuleWindow.h"
#include "editor/frmEditBoxType.h"
#include "editor/frmSourceEditor.h"
#include "frame/DirectoryCentral.h"
#include "frame/FrameTestSupport.h"
#include "frame/GlobalData.h"
#include "frame/TwipsConversion.h"
#include "link/DownloadPortExecutive.h"
#include "link/frmDownloader.h"
#include "monitor/frmWatchWindow.h"
#include "platform/ClipboardService.h"
#include "platform/Global.h"
#include "platform/SerialDevices.h"
#include "project/ProjectType.h"
#include "sim/SimulatedSerialLine.h"
#include "support/ModalDialogWatcher.h"
#include "support/QtPrinters.h"
#include "support/SourceEditorFixture.h"

namespace {

class CompileWindowsTest : public CompileFixture {
  protected:
    void SetUp() override {
        CompileFixture::SetUp();
        ClipboardService::Install(std::make_unique<MemoryClipboardService>());
        ModuleEditWindow::SetFactory([] { return std::make_unique<EditBoxModuleWindow>(); });
        // As the program does: the installation check asks the component.
        CompilerCentral::RegisterWithFrame();
        Editor = &Global<frmSourceEditor>::Get();
        Editor->show();
        Settle();
    }
    void TearDown() override {
        UnloadEditorWindows();
        DirectoryCentral::SetCompilerVersionCheck(nullptr);
        CompileFixture::TearDown();
    }
    static void Settle() { QCoreApplication::processEvents(); }
    void OpenBlink() {
        MakeProject(QStringLiteral("blink"),
                    {{QStringLiteral("main"), "Option Explicit\r\nDim x As Integer\r\n"},
                     {QStringLiteral("led"), "Sub Led()\r\n  x = 1\r\nEnd Sub\r\n"}});
        // The preference file now exists, so the editor opens without a question.
        Project().PRFfile().WriteNewFile();
        Global<ProjectType>::Unload();
        Boxes->Boxes.clear();
        Editor->OpenProject(Work, QStringLiteral("blink"), QStringLiteral("kvp"), false);
        Settle();
    }
    frmEditBoxType* Module(int Number) { return ModuleWindow(*Editor, Number); }
    QString Selected(int Number) { return Module(Number)->rtfEditBox->textCursor().selectedText(); }
    QString Panel(int Number) const { return Editor->sbrStatus[Number - 1]->text(); }
    // Runs Inspect on the status window once it is up, then presses its OK.
    void WhenStatusWindowOpens(std::function<void(frmCompileStatus&)> Inspect) {
        auto* Poll = new QTimer(Editor);
        Poll->setInterval(5);
        QObject::connect(Poll, &QTimer::timeout, Poll, [this, Poll, Inspect] {
            auto* Status = qobject_cast<frmCompileStatus*>(QApplication::activeModalWidget());
            if (Status == nullptr) {
                return;
            }
            Poll->stop();
            Poll->deleteLater();
            ++StatusWindowsSeen;
            Inspect(*Status);
            QTest::mouseClick(Status->cmdOK, Qt::LeftButton);
        });
        Poll->start();
    }

    frmSourceEditor* Editor = nullptr;
    int StatusWindowsSeen = 0;
};

TEST_F(CompileWindowsTest, CompileAsksToSaveAChangedModuleThenCompilesWhatIsOnDisk) {
    SetSetting(QStringLiteral("Save_File"), QStringLiteral("False"));
    OpenBlink();
    QTest::keyClicks(Module(2)->rtfEditBox, QStringLiteral("' "));
    Boxes->QueueAnswer(6);
    Editor->mnuCompile->trigger();
    ASSERT_EQ(BoxTexts(), QStringList{QStringLiteral("Save Module|Save changes to led?")});
    EXPECT_TRUE(WorkFile(QStringLiteral("led.bas")).startsWith("' Sub Led()"));
    EXPECT_EQ(CompileCalls().filter(QStringLiteral("RunCompile")).size(), 1);
    EXPECT_EQ(Panel(3), QStringLiteral("Ok"));
    EXPECT_TRUE(Panel(4).startsWith(QStringLiteral("Compiled OK, Code: ")));
    EXPECT_EQ(Editor->CompileStatus, Panel(4));
}

TEST_F(CompileWindowsTest, AnyAnswerButYesCancelsTheCompile) {
    SetSetting(QStringLiteral("Save_File"), QStringLiteral("False"));
    OpenBlink();
    for (const int Answer : {7, 2}) {
        QTest::keyClicks(Module(2)->rtfEditBox, QStringLiteral("'"));
        Boxes->Boxes.clear();
        Boxes->QueueAnswer(Answer);
        Editor->mnuCompile->trigger();
        EXPECT_EQ(BoxTexts(), (QStringList{QStringLiteral("Save Module|Save changes to led?"),
                                           QStringLiteral("Compile Cancelled|Compile cancelled")}));
    }
    EXPECT_EQ(Calls(), QStringList()) << "neither the installation nor the compile was looked at";
    EXPECT_TRUE(WorkFile(QStringLiteral("led.bas")).startsWith("Sub Led()"));
}

TEST_F(CompileWindowsTest, WithAutomaticSavingEveryModuleIsSavedWithoutAQuestion) {
    OpenBlink();
    QTest::keyClicks(Module(1)->rtfEditBox, QStringLiteral("' "));
    QTest::keyClicks(Module(2)->rtfEditBox, QStringLiteral("' "));
    Editor->mnuCompile->trigger();
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_TRUE(WorkFile(QStringLiteral("main.bas")).startsWith("' Option"));
    EXPECT_TRUE(WorkFile(QStringLiteral("led.bas")).startsWith("' Sub"));
    EXPECT_EQ(CompileCalls().filter(QStringLiteral("RunCompile")).size(), 1);
}

TEST_F(CompileWindowsTest, ABrokenInstallationStopsTheCompile) {
    OpenBlink();
    Script("version=2.0.23\n");
    Editor->mnuCompile->trigger();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Installation Error"));
    EXPECT_EQ(Calls().filter(QStringLiteral("GetVersion")).size(), 1);
    EXPECT_EQ(Calls().filter(QStringLiteral("RunCompile")), QStringList());
    Script("");
    Boxes->Boxes.clear();
    Editor->mnuCompile->trigger();
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(Calls().filter(QStringLiteral("GetVersion")).size(), 2)
        << "checked before every compile";
    EXPECT_EQ(Calls().filter(QStringLiteral("RunCompile")).size(), 1);
}

TEST_F(CompileWindowsTest, F4Compiles) {
    OpenBlink();
    Editor->activateWindow();
    QTest::keyClick(Editor, Qt::Key_F4);
    EXPECT_EQ(Calls().filter(QStringLiteral("RunCompile")).size(), 1);
}

TEST_F(CompileWindowsTest,
       PreferencesOfAnotherChipAreToldThenTheChipDialogOpensAndNothingCompiles) {
    OpenBlink();
    GlobalData::ChipType = 3;
    QStringList BoxesBeforeTheDialog;
    ModalDialogWatcher Person([&](QWidget& Dialog) {
        BoxesBeforeTheDialog = BoxTexts();
        QTest::mouseClick(Dialog.findChild<QPushButton*>(QStringLiteral("cmdCancel")),
                          Qt::LeftButton);
    });
    Editor->mnuCompile->trigger();
    EXPECT_EQ(BoxesBeforeTheDialog,
              QStringList{QStringLiteral("Chip Preferences|Chip preferences have not been set")});
    EXPECT_EQ(Person.Seen, QStringList{QStringLiteral("frmChipDialogKV30")});
    EXPECT_EQ(CompileCalls(), QStringList());
    // The dialog's command saved the chip model in use: the next compile goes on.
    Boxes->Boxes.clear();
    Editor->mnuCompile->trigger();
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(Person.Seen.size(), 1);
    EXPECT_EQ(CompileCalls().filter(QStringLiteral("SetChipType(3)")).size(), 1);
    EXPECT_EQ(CompileCalls().filter(QStringLiteral("RunCompile")).size(), 1);
}

TEST_F(CompileWindowsTest, ChangingFromKv10ToKv20StopsTheNextCompileAndOpensTheKv20Dialog) {
    GlobalData::ChipType = 1;
    OpenBlink();
    ASSERT_EQ(Project().PRFfile().Processor(), 1);
    ModalDialogWatcher Person([](QWidget& Dialog) {
        if (Dialog.objectName() == QStringLiteral("frmProcessorOptions")) {
            QTest::mouseClick(Dialog.findChild<QRadioButton*>(QStringLiteral("optKV20")),
                              Qt::LeftButton);
            QTest::mouseClick(Dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")),
                              Qt::LeftButton);
        } else {
            QTest::keyClick(&Dialog, Qt::Key_Escape);
        }
    });
    Editor->mnuProcessorOptions->trigger();
    ASSERT_EQ(GlobalData::ChipType, 2);
    Editor->mnuCompile->trigger();
    EXPECT_EQ(BoxTexts(),
              QStringList{QStringLiteral("Chip Preferences|Chip preferences have not been set")});
    EXPECT_EQ(Person.Seen, (QStringList{QStringLiteral("frmProcessorOptions"),
                                        QStringLiteral("frmChipDialogKV20")}));
    EXPECT_EQ(CompileCalls(), QStringList());
}

TEST_F(CompileWindowsTest, AKv10WithoutEepromSizeShowsTheErrorThenTheKv10Dialog) {
    GlobalData::ChipType = 1;
    OpenBlink();
    Project().PRFfile().SpiSize = 0;
    QStringList BoxesBeforeTheDialog;
    int32_t SizeShown = -1;
    ModalDialogWatcher Person([&](QWidget& Dialog) {
        BoxesBeforeTheDialog = BoxTexts();
        if (auto* Size = Dialog.findChild<QLineEdit*>(QStringLiteral("txtSpiSize"))) {
            SizeShown = Size->text().toInt();
        }
        QTest::keyClick(&Dialog, Qt::Key_Escape);
    });
    Editor->mnuCompile->trigger();
    EXPECT_EQ(BoxesBeforeTheDialog,
              QStringList{QStringLiteral(
                  "EEPROM Memory Size Error|Error -- EEPROM memory size is zero or negative")});
    EXPECT_EQ(Person.Seen, QStringList{QStringLiteral("frmChipDialogKV10")});
    EXPECT_EQ(SizeShown, 0) << "the dialog shows the size the compile refused";
    EXPECT_EQ(CompileCalls().filter(QStringLiteral("RunCompile")), QStringList());
}

TEST_F(CompileWindowsTest, InABatchPreferencesOfAnotherChipAreLoggedAndNoDialogOpens) {
    OpenBlink();
    const QByteArray Preferences = WorkFile(QStringLiteral("blink.prf"));
    GlobalData::ChipType = 3;
    Global<ProjectType>::Unload();
    ModalDialogWatcher Person([](QWidget& Dialog) { Dialog.close(); });
    BatchCompileHost Batch;
    CommandLineInterpreter::SetHost(&Batch);
    CommandLineInterpreter::SetCommandLine(QStringLiteral("blink /c"));
    CommandLineInterpreter::Run();
    EXPECT_EQ(Batch.Results, QList<bool>{false});
    EXPECT_TRUE(ReadLogLines().contains(QStringLiteral("Chip preferences have not been set")));
    EXPECT_EQ(Person.Seen, QStringList());
    EXPECT_FALSE(Global<frmChipDialogKV30>::IsLoaded());
    EXPECT_EQ(WorkFile(QStringLiteral("blink.prf")), Preferences) << "nothing was saved for it";
    EXPECT_EQ(CompileCalls(), QStringList());
}

TEST_F(CompileWindowsTest, CompileAndRunWithAClosedPortAndNoCompilesNothing) {
    OpenBlink();
    Boxes->QueueAnswer(7);
    Editor->mnuCompileAndRun->trigger();
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral(
                              "Download port closed|Download port is closed\nOpen port now?")});
    EXPECT_EQ(Calls(), QStringList()) << "neither the installation nor the compile was looked at";
}

// The simulated chip on port 99 as the download port, the downloader window
// started as the program starts it.
class CompileAndRunTest : public CompileWindowsTest {
  protected:
    void SetUp() override {
        CompileWindowsTest::SetUp();
        SerialDevices::SetDeviceLister([] { return QStringList(); });
        Line = std::make_shared<SimulatedSerialLine>();
        SimulatedSerialLine::InstallAsSimulatedChip(Line);
    }
    void TearDown() override {
        DownloadPortExecutive::ClosePorts();
        CompileWindowsTest::TearDown();
        SimulatedSerialLine::UninstallSimulatedChip();
        SerialDevices::SetDeviceLister(nullptr);
    }
    // As the program starts: the downloader first, then the editor from it.
    frmDownloader& StartDownloader() {
        Global<frmSourceEditor>::Unload();
        frmDownloader& Downloader = Global<frmDownloader>::Get();
        Downloader.Form_Load();
        Downloader.show();
        Downloader.ToolBarButton(QStringLiteral("Editor"))->trigger();
        Editor = &Global<frmSourceEditor>::Get();
        Settle();
        return Downloader;
    }
    std::shared_ptr<SimulatedSerialLine> Line;
};

TEST_F(CompileAndRunTest, F5CompilesThenDownloadsAndStartsTheChip) {
    SetSetting(QStringLiteral("Port_Number"), QStringLiteral("99"));
    SetSetting(QStringLiteral("Port_Mode"), QStringLiteral("Serial"));
    frmDownloader& Downloader = StartDownloader();
    ASSERT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    Script("sizes=1000,16,0\n");
    OpenBlink();
    Editor->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Editor));
    QTest::keyClick(Editor, Qt::Key_F5);
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(Calls().filter(QStringLiteral("RunCompile")).size(), 1);
    const QByteArray Image = WorkFile(QStringLiteral("blink.kvb"));
    ASSERT_EQ(Image.size(), 1000);
    const auto& Memory = Line->Chip().ExternalEeprom.Memory;
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(Memory.data()), 1000), Image);
    EXPECT_FALSE(Line->Chip().InMonitor()) << "the chip runs the new program";
    EXPECT_EQ(Downloader.StatusBarPanels[1]->text(), QStringLiteral("RUNNING"));
    EXPECT_TRUE(Downloader.DebugWindowText().contains(QStringLiteral("*** Finished Downloading")));
}

TEST_F(CompileAndRunTest, AGoodCompileGivesAnOpenWatchWindowTheNewSymbolMap) {
    StartDownloader();
    Script("symbol=Count,256,19,0,0\n");
    OpenBlink();
    Editor->mnuCompile->trigger();
    Editor->mnuWatchWindow->trigger();
    frmWatchWindow& Watch = Global<frmWatchWindow>::Get();
    Watch.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Watch));
    ASSERT_EQ(Watch.lstWatchList->count(), 1);
    EXPECT_EQ(Watch.lstWatchList->item(0)->text(), QStringLiteral("Count.Integer"));
    // The program gains a variable; the compile's new map is in the list at once.
    Script("symbol=Count,256,19,0,0\nsymbol=Ratio,260,32,0,0\n");
    Editor->mnuCompile->trigger();
    ASSERT_EQ(Watch.lstWatchList->count(), 2);
    EXPECT_EQ(Watch.lstWatchList->item(1)->text(), QStringLiteral("Ratio.Single"));
    Global<frmWatchWindow>::Unload();
    // Without a watch window a compile reads no map and makes no window.
    Editor->mnuCompile->trigger();
    EXPECT_FALSE(Global<frmWatchWindow>::IsLoaded());
}

TEST_F(CompileAndRunTest, AFailedCompileDownloadsNothing) {
    SetSetting(QStringLiteral("Port_Number"), QStringLiteral("99"));
    SetSetting(QStringLiteral("Port_Mode"), QStringLiteral("Serial"));
    StartDownloader();
    Script("error=2,1,1,3,5,101\ndescription=Syntax error\n");
    OpenBlink();
    Line->ForgetHostEvents();
    Editor->mnuCompileAndRun->trigger();
    EXPECT_EQ(Calls().filter(QStringLiteral("RunCompile")).size(), 1);
    EXPECT_EQ(Line->SentBytes(), QByteArray()) << "the chip was not touched";
}

TEST_F(CompileAndRunTest, YesToTheClosedPortShowsTheSerialPortDialogAndAPortStillClosedEndsIt) {
    StartDownloader();
    ASSERT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    OpenBlink();
    Boxes->QueueAnswer(6);
    QString Shown;
    QTimer::singleShot(0, Editor, [&Shown] {
        if (QWidget* Dialog = QApplication::activeModalWidget()) {
            Shown = Dialog->objectName();
            Dialog->close();
        }
    });
    Editor->mnuCompileAndRun->trigger();
    EXPECT_EQ(Shown, QStringLiteral("frmDownloadPortSerial"));
    EXPECT_EQ(Calls().filter(QStringLiteral("RunCompile")).size(), 0);
}

TEST_F(CompileWindowsTest, AnErrorInTheSecondModuleBringsItsWindowAndTabToTheFront) {
    OpenBlink();
    Editor->ActivateTab(1);
    Project().ActivateModule(1);
    Settle();
    Script("fail_at=x = 1\ndescription=Variable not defined\n");
    QString SelectedDuringBox;
    Boxes->WhileShown = [&](const ScriptedMessageBoxService::Box&) {
        SelectedDuringBox = Selected(2);
        // A click into the text behind the box moves the caret.
        QTextCursor Caret = Module(2)->rtfEditBox->textCursor();
        Caret.setPosition(0);
        Module(2)->rtfEditBox->setTextCursor(Caret);
    };
    Editor->mnuCompile->trigger();
    Settle();
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral("Compile Error|Variable not defined")});
    EXPECT_EQ(SelectedDuringBox, QStringLiteral("x = 1"));
    EXPECT_EQ(Selected(2), QStringLiteral("x = 1"));
    EXPECT_EQ(Editor->mdiArea->activeSubWindow()->widget(), Module(2));
    EXPECT_EQ(Editor->tabEditTabStrip->currentIndex(), 1);
    EXPECT_EQ(Panel(3), QStringLiteral("Errors"));
    EXPECT_EQ(Panel(4), QStringLiteral("Variable not defined"));
}

TEST_F(CompileWindowsTest, AnErrorAtTheVeryEndSelectsWhatIsLeftAndTheBoxStillComesUp) {
    OpenBlink();
    const int32_t Length = Module(1)->Model().Text().size();
    Script(QStringLiteral("error=1,3,1,%1,%2,9\ndescription=End expected\n")
               .arg(Length)
               .arg(Length + 3)
               .toUtf8());
    Editor->mnuCompile->trigger();
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral("Compile Error|End expected")});
    EXPECT_EQ(Selected(1), QString());
    EXPECT_EQ(Module(1)->rtfEditBox->textCursor().position(),
              Module(1)->rtfEditBox->document()->characterCount() - 1);
}

TEST_F(CompileWindowsTest, BeforeAnyCompileTheStatusWindowHoldsOnlyTwoLineBreaks) {
    OpenBlink();
    QString Shown = QStringLiteral("<not shown>");
    WhenStatusWindowOpens(
        [&](frmCompileStatus& Status) { Shown = Status.txtCompileStatus->toPlainText(); });
    Editor->mnuCompileStatus->trigger();
    EXPECT_EQ(Shown, QStringLiteral("\n\n"));
    EXPECT_FALSE(Global<frmCompileStatus>::IsLoaded()) << "OK unloads the window";
}

TEST_F(CompileWindowsTest, TheStatusWindowShowsTheResultAndTheWarningsOwnedByTheEditor) {
    OpenBlink();
    Script("sizes=1024,40,0\nwarnings=x unused\\ny unused\n");
    Editor->mnuCompile->trigger();
    QString Shown;
    bool Owned = false;
    bool Modal = false;
    WhenStatusWindowOpens([&](frmCompileStatus& Status) {
        Shown = Status.txtCompileStatus->toPlainText();
        Owned = Status.parentWidget() == Editor;
        Modal = Status.isModal();
    });
    Editor->mnuCompileStatus->trigger();
    EXPECT_EQ(Shown, QStringLiteral("Compiled OK, Code: 1024 bytes, RAM: 40 bytes, PRS: 0 bytes\n\n"
                                    "x unused\ny unused"));
    EXPECT_TRUE(Owned);
    EXPECT_TRUE(Modal);
}

TEST_F(CompileWindowsTest, AClickOnAnyStatusPanelOpensTheStatusWindow) {
    for (int Number = 1; Number <= 4; ++Number) {
        WhenStatusWindowOpens([](frmCompileStatus&) {});
        QTest::mouseClick(Editor->sbrStatus[Number - 1], Qt::LeftButton);
        EXPECT_EQ(StatusWindowsSeen, Number) << "panel " << Number;
    }
}

TEST_F(CompileWindowsTest, TheStatusWindowFollowsItsSizeOnlyAboveItsMinimum) {
    frmCompileStatus Status;
    Status.Resize(6000, 3000);
    EXPECT_EQ(Status.TextWidth, 5980);
    EXPECT_EQ(Status.TextHeight, 2500);
    EXPECT_EQ(Status.ButtonTop, 2600);
    Status.Resize(4000, 1200);
    EXPECT_EQ(Status.TextWidth, 5980) << "a window narrowed to 4000 twips keeps its last width";
    EXPECT_EQ(Status.TextHeight, 2500);
    EXPECT_EQ(Status.ButtonTop, 2600);
    Status.Resize(4001, 1201);
    EXPECT_EQ(Status.TextWidth, 3981);
    EXPECT_EQ(Status.TextHeight, 701);
    EXPECT_EQ(Status.ButtonTop, 801);
    EXPECT_EQ(Status.txtCompileStatus->width(), TwipsConversion::TwipsToPixelsX(3981));
    EXPECT_EQ(Status.cmdOK->y(), TwipsConversion::TwipsToPixelsY(801));
}

TEST_F(CompileWindowsTest, ResizingTheStatusWindowResizesItsTextBox) {
    frmCompileStatus Status;
    Status.show();
    Status.resize(TwipsConversion::TwipsToPixelsX(8000), TwipsConversion::TwipsToPixelsY(5000));
    Settle();
    EXPECT_EQ(Status.txtCompileStatus->width(),
              Status.width() - TwipsConversion::TwipsToPixelsX(20));
    const int Wide = Status.txtCompileStatus->width();
    Status.resize(TwipsConversion::TwipsToPixelsX(3000), Status.height());
    Settle();
    EXPECT_EQ(Status.txtCompileStatus->width(), Wide);
}

}  // namespace
