#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QScrollBar>
#include <QSerialPort>
#include <QSignalSpy>
#include <QTest>

#include "frame/GlobalData.h"
#include "frame/frmSplash.h"
#include "link/frmDownloader.h"
#include "monitor/MonitorCapture.h"
#include "monitor/MonitorPortExecutive.h"
#include "monitor/frmMonitorCapture.h"
#include "monitor/frmMonitorPort.h"
#include "platform/Global.h"
#include "platform/SerialDevices.h"
#include "project/ProjectType.h"
#include "sim/SimulatedSerialLine.h"
#include "support/FaultyDisk.h"
#include "support/FrameFixture.h"
#include "support/PseudoTerminal.h"
#include "support/ScriptedFileDialogService.h"

namespace {

const QString P(QChar(129));

// The downloader window started as at a program's start, with the simulated
// chip on port 99 and the monitor port stored as open on it.
class MonitorWindowTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        MakeGoodInstallation();
        SetSetting(QStringLiteral("KV20port_Number"), QStringLiteral(" 99, 115200,N,8,10"));
        auto Dialogs = std::make_unique<ScriptedFileDialogService>();
        FileDialogs = Dialogs.get();
        FileDialogService::Install(std::move(Dialogs));
        Line = std::make_shared<SimulatedSerialLine>();
        SimulatedSerialLine::InstallAsSimulatedChip(Line);
        frmDownloader::ResetProcessEnded();
    }
    void TearDown() override {
        Global<frmMonitorPort>::Unload();
        Global<frmMonitorCapture>::Unload();
        Global<frmSplash>::Unload();
        Global<frmDownloader>::Unload();
        Global<ProjectType>::Unload();
        MonitorCapture::CloseCaptureFile();
        SimulatedSerialLine::UninstallSimulatedChip();
        FileDialogService::Install(std::make_unique<CancellingFileDialogService>());
        frmDownloader::ResetProcessEnded();
        FrameFixture::TearDown();
    }
    frmDownloader& Load() {
        frmDownloader& Window = Global<frmDownloader>::Get();
        Window.Form_Load();
        Window.show();
        return Window;
    }
    // The chip's program prints; the line brings the bytes in virtual time.
    void ChipPrints(const QByteArray& Text) {
        Line->ProgramPrints(Text);
        Clock->NowMs += (Text.size() * SimulatedSerialLine::ByteNs) / 1'000'000 + 1;
    }
    // One tick of the window's 50 ms poll.
    static void Tick(frmDownloader& Window) {
        ASSERT_TRUE(QMetaObject::invokeMethod(Window.tmrSerialInputPoller, "timeout"));
    }
    // Lets the real timers run until the value is what is expected, 3 s at most.
    template <class Get>
    static QString WaitFor(Get Value, const QString& Expected) {
        QElapsedTimer Timer;
        Timer.start();
        while (Value() != Expected && Timer.elapsed() < 3000) {
            QTest::qWait(10);
        }
        return Value();
    }
    static QString Shown(frmDownloader& Window) { return Window.txtDebugWindow->toPlainText(); }
    static QByteArray Read(const QString& Name) {
        QFile File(Name);
        return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray("<unreadable>");
    }

    std::shared_ptr<SimulatedSerialLine> Line;
    ScriptedFileDialogService* FileDialogs = nullptr;
};

TEST_F(MonitorWindowTest, StoredOpenPortOpensAtStartAndThePollRunsEvery50Ms) {
    frmDownloader& Window = Load();
    EXPECT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_TRUE(Line->PortOpen());
    EXPECT_EQ(Window.tmrSerialInputPoller->interval(), 50);
    EXPECT_TRUE(Window.tmrSerialInputPoller->isActive());
    EXPECT_EQ(Window.txtDebugWindow->font().family(), QStringLiteral("Courier New"));
    EXPECT_TRUE(Window.txtDebugWindow->isReadOnly());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(MonitorWindowTest, WhatTheChipPrintsReachesTheWindowThroughTheRunningTimer) {
    frmDownloader& Window = Load();
    ChipPrints("Hello\r\n");
    EXPECT_EQ(WaitFor([&] { return Shown(Window); }, QStringLiteral("Hello\n")),
              QStringLiteral("Hello\n"));
}

TEST_F(MonitorWindowTest, CrLfFromTheChipIsOneLineBreakAndALoneLfIsNothing) {
    frmDownloader& Window = Load();
    ChipPrints("AB\r\nCD\nEF\r");
    Tick(Window);
    EXPECT_EQ(Window.DebugWindowText(), QStringLiteral("AB\r\nCDEF\r\n"));
    EXPECT_EQ(Shown(Window), QStringLiteral("AB\nCDEF\n"));
    EXPECT_EQ(Window.txtDebugWindow->blockCount(), 3);
}

TEST_F(MonitorWindowTest, TabAndDelShowAsThePlaceholder) {
    frmDownloader& Window = Load();
    ChipPrints(
        QByteArray("a\tb\x7f"
                   "c\x1b",
                   6));
    Tick(Window);
    EXPECT_EQ(Shown(Window),
              QStringLiteral("a") + P + QStringLiteral("b") + P + QStringLiteral("c") + P);
}

TEST_F(MonitorWindowTest, BytesFrom128To255ShowAsTheirOwnCodes) {
    frmDownloader& Window = Load();
    QByteArray High;
    QString Expected;
    for (int Code = 128; Code < 256; ++Code) {
        High.append(static_cast<char>(Code));
        Expected.append(QChar(Code));
    }
    ChipPrints(High);
    Tick(Window);
    EXPECT_EQ(Window.DebugWindowText(), Expected);
    // The document holds them as they are (its plain text would show 160 as a blank).
    EXPECT_EQ(Window.txtDebugWindow->document()->toRawText(), Expected);
}

TEST_F(MonitorWindowTest, With16001CharactersTheNextInputFirstCutsTheWindowTo11905) {
    frmDownloader& Window = Load();
    QByteArray Fill;
    for (int Index = 0; Index < 16001; ++Index) {
        Fill.append(static_cast<char>('a' + Index % 26));
    }
    ChipPrints(Fill);
    Tick(Window);
    ASSERT_EQ(Window.DebugWindowText().size(), 16001);
    ChipPrints("!");
    Tick(Window);
    EXPECT_EQ(Window.DebugWindowText().size(), 11905 + 1);
    EXPECT_EQ(Window.DebugWindowText(), QString::fromLatin1(Fill.mid(4096)) + QLatin1Char('!'));
    EXPECT_EQ(Shown(Window), Window.DebugWindowText());
    // The window stays at its end.
    EXPECT_EQ(Window.txtDebugWindow->textCursor().position(), 11906);
}

TEST_F(MonitorWindowTest, CutWindowShowsExactlyItsTextWithLineBreaksAnywhere) {
    frmDownloader& Window = Load();
    for (int Poll = 0; Poll < 40; ++Poll) {
        QByteArray Piece;
        for (int Index = 0; Index < 1500; ++Index) {
            Piece.append((Index * 7 + Poll) % 13 == 0 ? '\r' : static_cast<char>('a' + Index % 26));
        }
        ChipPrints(Piece);
        Tick(Window);
        QString Expected = Window.DebugWindowText();
        Expected.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        ASSERT_EQ(Shown(Window), Expected) << "after poll " << Poll;
    }
    // Nothing the chip printed is kept for an undo: the window's memory stays flat.
    EXPECT_EQ(Window.txtDebugWindow->document()->availableUndoSteps(), 0);
}

TEST_F(MonitorWindowTest, CutBetweenCrAndLfLeavesTheLfAsALineBreak) {
    frmDownloader& Window = Load();
    ChipPrints(QByteArray(4095, 'x') + "\r" + QByteArray(12000, 'y'));
    Tick(Window);
    ASSERT_EQ(Window.DebugWindowText().size(), 16097);
    ChipPrints("z");
    Tick(Window);
    EXPECT_EQ(Window.DebugWindowText(),
              QStringLiteral("\n") + QString(12000, QLatin1Char('y')) + QLatin1Char('z'));
    EXPECT_EQ(Shown(Window), Window.DebugWindowText());
}

TEST_F(MonitorWindowTest, With16000CharactersTheNextInputIsAddedUncut) {
    frmDownloader& Window = Load();
    ChipPrints(QByteArray(16000, 'x'));
    Tick(Window);
    ChipPrints("y");
    Tick(Window);
    EXPECT_EQ(Window.DebugWindowText().size(), 16001);
}

TEST_F(MonitorWindowTest, ErrorFrameComesUpOnceStaysWhenTheLineIsCleanAndGoesOnlyThroughClear) {
    frmDownloader& Window = Load();
    EXPECT_TRUE(Window.fraComDataError->isHidden());
    EXPECT_EQ(Window.lblComStatus->text(), QStringLiteral("Serial Data Error "));
    EXPECT_EQ(Window.cmdClearComError->text(), QStringLiteral("Clear"));
    Line->LineEvent(CommEvents::Framing);
    Tick(Window);
    EXPECT_FALSE(Window.fraComDataError->isHidden());
    ChipPrints("clean\r");
    Tick(Window);
    Tick(Window);
    EXPECT_FALSE(Window.fraComDataError->isHidden()) << "latched until cleared";
    QTest::mouseClick(Window.cmdClearComError, Qt::LeftButton);
    EXPECT_TRUE(Window.fraComDataError->isHidden());
    Tick(Window);
    EXPECT_TRUE(Window.fraComDataError->isHidden());
}

TEST_F(MonitorWindowTest, BreakOverrunOverflowAndControlBlockLatchButParityDoesNot) {
    frmDownloader& Window = Load();
    Line->LineEvent(CommEvents::Parity);
    Line->LineEvent(CommEvents::TransmitFull);
    Tick(Window);
    EXPECT_TRUE(Window.fraComDataError->isHidden());
    for (const int32_t Event : {CommEvents::Break, CommEvents::Overrun, CommEvents::ReceiveOverflow,
                                CommEvents::ControlBlock}) {
        Line->LineEvent(Event);
        Tick(Window);
        EXPECT_FALSE(Window.fraComDataError->isHidden()) << Event;
        QTest::mouseClick(Window.cmdClearComError, Qt::LeftButton);
        EXPECT_TRUE(Window.fraComDataError->isHidden()) << Event;
    }
}

TEST_F(MonitorWindowTest, KeyWithThePortClosedGivesTheMessageAndSendsNothing) {
    SetSetting(QStringLiteral("KV20port_Number"), QString());
    frmDownloader& Window = Load();
    ASSERT_FALSE(MonitorPortExecutive::IsMonitorPortOpen());
    QTest::keyClicks(Window.txtDebugWindow, QStringLiteral("k"));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Monitor port must be open"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Monitor Port Error"));
    EXPECT_TRUE(Line->SentBytes().isEmpty());
    EXPECT_TRUE(Line->Chip().ProgramInput.isEmpty());
    EXPECT_EQ(Shown(Window), QString());
}

TEST_F(MonitorWindowTest, TypedCharactersGoToTheChipAndItsEchoIsShown) {
    frmDownloader& Window = Load();
    Line->Chip().ProgramEchoes = true;
    QTest::keyClicks(Window.txtDebugWindow, QStringLiteral("run"));
    QTest::keyClick(Window.txtDebugWindow, Qt::Key_Return);
    EXPECT_EQ(Line->SentBytes(), QByteArray("run\r"));
    EXPECT_EQ(Shown(Window), QString()) << "the window is read-only: only the echo shows";
    Clock->NowMs += 10;
    Tick(Window);
    EXPECT_EQ(Line->Chip().ProgramInput, QByteArray("run\r"));
    EXPECT_EQ(Window.DebugWindowText(), QStringLiteral("run\r\n"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(MonitorWindowTest, ClearWindowEmptiesTheMonitorWindow) {
    frmDownloader& Window = Load();
    ChipPrints("old text\r");
    Tick(Window);
    ASSERT_FALSE(Shown(Window).isEmpty());
    Window.cmdClearWindow->trigger();
    EXPECT_EQ(Shown(Window), QString());
    EXPECT_EQ(Window.DebugWindowText(), QString());
    ChipPrints("new");
    Tick(Window);
    EXPECT_EQ(Window.DebugWindowText(), QStringLiteral("new"));
}

TEST_F(MonitorWindowTest, NothingIsReadWhileTheDownloadLinkHoldsTheLine) {
    SetSetting(QStringLiteral("KV20port_Number"), QString());
    frmDownloader& Window = Load();
    SerialPortObject Download;
    Download.SetCommPort(SerialDevices::SimulatedChipPort);
    // At the link's rate the twelve bytes are in within the 5 ms.
    Download.SetSettings(QStringLiteral("115200,N,8,1"));
    Download.SetPortOpen(true);
    Line->ProgramPrints("for the link");
    Clock->NowMs += 5;
    Tick(Window);
    EXPECT_EQ(Shown(Window), QString());
    EXPECT_EQ(Download.InBufferCount(), 12) << "the poll took nothing from the link";
}

// Counts the paint events a widget receives.
class PaintCounter : public QObject {
  public:
    explicit PaintCounter(QWidget* Watched) { Watched->installEventFilter(this); }
    int Paints = 0;

  protected:
    bool eventFilter(QObject* Watched, QEvent* Event) override {
        Paints += Event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(Watched, Event);
    }
};

TEST_F(MonitorWindowTest, LinesArrivingRepaintTheVerticalScrollBarButNotTheHorizontalOne) {
    frmDownloader& Window = Load();
    Window.resize(600, 400);
    QTest::qWait(20);
    PaintCounter Horizontal(Window.txtDebugWindow->horizontalScrollBar());
    PaintCounter Vertical(Window.txtDebugWindow->verticalScrollBar());
    for (int Poll = 0; Poll < 10; ++Poll) {
        ChipPrints(QByteArray("short line\r").repeated(20));
        Tick(Window);
        QCoreApplication::processEvents();
    }
    EXPECT_GE(Vertical.Paints, 5) << "the vertical bar follows the text";
    EXPECT_LE(Horizontal.Paints, 1) << "nothing about the horizontal bar changed";
    // A line wider than the window still gives the horizontal bar its range.
    ChipPrints(QByteArray(300, 'W') + "\r");
    Tick(Window);
    QCoreApplication::processEvents();
    EXPECT_GT(Window.txtDebugWindow->horizontalScrollBar()->maximum(), 0);
    EXPECT_TRUE(Window.txtDebugWindow->horizontalScrollBar()->isVisible());
    EXPECT_TRUE(Window.txtDebugWindow->verticalScrollBar()->isVisible());
    // A resize still lays the bars out along the window's new size.
    const int Width = Window.txtDebugWindow->horizontalScrollBar()->width();
    Window.resize(800, 400);
    QTest::qWait(20);
    EXPECT_EQ(Window.txtDebugWindow->horizontalScrollBar()->width(), Width + 200);
}

// The monitor port dialog.
class MonitorPortDialogTest : public MonitorWindowTest {
  protected:
    frmMonitorPort& Dialog() { return Global<frmMonitorPort>::Get(); }
};

TEST_F(MonitorPortDialogTest, ShowsItsCaptionListsLabelsAndToolTips) {
    Load();
    frmMonitorPort& D = Dialog();
    EXPECT_EQ(D.windowTitle(), QStringLiteral("Monitor Port"));
    auto Items = [](QComboBox* Box) {
        QStringList List;
        for (int Index = 0; Index < Box->count(); ++Index) {
            List << Box->itemText(Index);
        }
        return List;
    };
    ASSERT_EQ(D.cboPortNumber->count(), 17);
    for (int Number = 1; Number <= 16; ++Number) {
        EXPECT_EQ(D.cboPortNumber->itemText(Number - 1), QString::number(Number));
        EXPECT_EQ(D.cboPortNumber->itemData(Number - 1).toInt(), Number);
    }
    EXPECT_EQ(D.cboPortNumber->itemText(16), QStringLiteral("99 - simulated chip"));
    EXPECT_EQ(Items(D.cboBaudRate),
              QStringList({"300", "600", "1200", "2400", "4800", "7200", "9600", "14400", "19200",
                           "28800", "38400", "57600", "115200"}));
    EXPECT_EQ(Items(D.cboParity), QStringList({"None", "Even", "Odd", "Space", "Mark"}));
    EXPECT_EQ(Items(D.cboDataBits), QStringList({"4", "5", "6", "7", "8"}));
    EXPECT_EQ(Items(D.cboStopBits), QStringList({"1", "1.5", "2"}));
    EXPECT_EQ(D.cboPortNumber->toolTip(), QStringLiteral("Choose the port number here"));
    EXPECT_EQ(D.cboBaudRate->toolTip(), QStringLiteral("Choose the baud rate here"));
    EXPECT_EQ(D.cboParity->toolTip(), QStringLiteral("Choose the parity here"));
    EXPECT_EQ(D.cboDataBits->toolTip(),
              QStringLiteral("Choose the number of bits per character here"));
    EXPECT_EQ(D.cboStopBits->toolTip(),
              QStringLiteral("Choose the number of stop bits per character here"));
    EXPECT_EQ(D.lblPortNumber->text(), QStringLiteral("Com Port"));
    EXPECT_EQ(D.lblBaudRate->text(), QStringLiteral("Baud"));
    EXPECT_EQ(D.lblParity->text(), QStringLiteral("Parity"));
    EXPECT_EQ(D.lblDataBits->text(), QStringLiteral("Data Bits"));
    EXPECT_EQ(D.lblStopBits->text(), QStringLiteral("Stop Bits"));
    EXPECT_EQ(D.Frame2->title(), QStringLiteral("Port Status"));
    EXPECT_EQ(D.cmdOpenPort->text(), QStringLiteral("Open Port"));
    EXPECT_EQ(D.cmdClosePort->text(), QStringLiteral("Close Port"));
    EXPECT_EQ(D.lblStatusCaption->text(), QStringLiteral("Status:"));
}

TEST_F(MonitorPortDialogTest, ListedDevicesShowTheirNameBesideTheNumber) {
    SerialDevices::SetDeviceLister([] { return QStringList({QStringLiteral("/dev/ttyUSB0")}); });
    SetSetting(QStringLiteral("KV20port_Number"), QString());
    Load();
    EXPECT_TRUE(Dialog().cboPortNumber->itemText(0).startsWith(QStringLiteral("1 - ttyUSB0")));
    EXPECT_EQ(Dialog().cboPortNumber->itemText(1), QStringLiteral("2"));
}

TEST_F(MonitorPortDialogTest, ShowsTheStoredSettingsAndTheOpenPortInItsColours) {
    SetSetting(QStringLiteral("KV20port_Number"), QStringLiteral(" 99,  57600,O,7,15"));
    Load();
    frmMonitorPort& D = Dialog();
    EXPECT_EQ(D.cboPortNumber->currentText(), QStringLiteral("99 - simulated chip"));
    EXPECT_EQ(D.cboBaudRate->currentText(), QStringLiteral("57600"));
    EXPECT_EQ(D.cboParity->currentText(), QStringLiteral("Odd"));
    EXPECT_EQ(D.cboDataBits->currentText(), QStringLiteral("7"));
    EXPECT_EQ(D.cboStopBits->currentText(), QStringLiteral("1.5"));
    EXPECT_EQ(D.lblStatus->text(), QStringLiteral("  Open"));
    EXPECT_EQ(D.lblStatus->palette().color(QPalette::Window), QColor(Qt::white));
    EXPECT_EQ(D.lblStatus->palette().color(QPalette::WindowText),
              D.palette().color(QPalette::ButtonText));
}

TEST_F(MonitorPortDialogTest, ClosePortButtonClosesAndShowsClosedInWhiteOnRed) {
    frmDownloader& Window = Load();
    frmMonitorPort& D = Dialog();
    D.show();
    QTest::mouseClick(D.cmdClosePort, Qt::LeftButton);
    EXPECT_FALSE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_FALSE(Line->PortOpen());
    EXPECT_EQ(D.lblStatus->text(), QStringLiteral(" Closed"));
    EXPECT_EQ(D.lblStatus->palette().color(QPalette::Window), QColor(0xFF, 0x00, 0x00));
    EXPECT_EQ(D.lblStatus->palette().color(QPalette::WindowText), QColor(Qt::white));
    EXPECT_EQ(Setting(QStringLiteral("KV20port_Number")), QString());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    ChipPrints("unheard");
    Tick(Window);
    EXPECT_EQ(Shown(Window), QString());
}

TEST_F(MonitorPortDialogTest, UsersChoiceInAListClosesThePortAndOpenSavesTheNewSetting) {
    Load();
    frmMonitorPort& D = Dialog();
    D.show();
    ASSERT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
    // The user steps the baud rate list down from 115200 with the keyboard.
    D.cboBaudRate->setFocus();
    QTest::keyClick(D.cboBaudRate, Qt::Key_Up);
    EXPECT_EQ(D.cboBaudRate->currentText(), QStringLiteral("57600"));
    EXPECT_FALSE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_EQ(D.lblStatus->text(), QStringLiteral(" Closed"));
    QTest::mouseClick(D.cmdOpenPort, Qt::LeftButton);
    EXPECT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_EQ(D.lblStatus->text(), QStringLiteral("  Open"));
    EXPECT_EQ(Setting(QStringLiteral("KV20port_Number")), QStringLiteral(" 99,  57600,N,8,10"));
    EXPECT_EQ(MonitorPortExecutive::PortObject()->Settings(), QStringLiteral("57600,N,8,1"));
}

TEST_F(MonitorPortDialogTest, ShowingTheSettingsClosesNothing) {
    Load();
    frmMonitorPort& D = Dialog();
    D.ShowSettings();
    D.cboParity->setCurrentIndex(2);
    EXPECT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
}

TEST_F(MonitorPortDialogTest, BaudRate1000ShowsAs115200AndStaysUntilTheNextApply) {
    SetSetting(QStringLiteral("KV20port_Number"), QStringLiteral(" 99,   1000,N,8,10"));
    Load();
    frmMonitorPort& D = Dialog();
    EXPECT_EQ(D.cboBaudRate->currentText(), QStringLiteral("115200"));
    EXPECT_EQ(MonitorPortExecutive::GetMonitorPortInfo().BaudRate, 1000);
    EXPECT_EQ(D.DialogInfo().BaudRate, 1000);
    D.show();
    QTest::mouseClick(D.cmdOK, Qt::LeftButton);
    EXPECT_EQ(MonitorPortExecutive::GetMonitorPortInfo().BaudRate, 1000);
    EXPECT_EQ(Setting(QStringLiteral("KV20port_Number")), QStringLiteral(" 99,   1000,N,8,10"));
    Global<frmMonitorPort>::Unload();
    frmMonitorPort& Again = Dialog();
    Again.show();
    QTest::mouseClick(Again.cmdOpenPort, Qt::LeftButton);
    EXPECT_EQ(MonitorPortExecutive::GetMonitorPortInfo().BaudRate, 115200);
}

TEST_F(MonitorPortDialogTest, PortThatCannotOpenIsToldWithItsNumberAndCause) {
    SetSetting(QStringLiteral("KV20port_Number"), QString());
    Load();
    SerialPortObject Download;
    Download.SetCommPort(SerialDevices::SimulatedChipPort);
    Download.SetPortOpen(true);
    frmMonitorPort& D = Dialog();
    D.show();
    D.cboPortNumber->setFocus();
    QTest::keyClick(D.cboPortNumber, Qt::Key_End);
    ASSERT_EQ(D.cboPortNumber->currentData().toInt(), 99);
    QTest::mouseClick(D.cmdOpenPort, Qt::LeftButton);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Unable to open Com99\nPort already open"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Monitor Port Error"));
    EXPECT_EQ(D.lblStatus->text(), QStringLiteral(" Closed"));
    EXPECT_TRUE(Download.PortOpen());
}

TEST_F(MonitorPortDialogTest, MenuOpensTheDialogModallyAndTheSetupSurvivesARestart) {
    SetSetting(QStringLiteral("KV20port_Number"), QString());
    frmDownloader& Window = Load();
    bool Seen = false;
    QTimer::singleShot(0, [&] {
        ASSERT_TRUE(Global<frmMonitorPort>::IsLoaded());
        frmMonitorPort& D = Dialog();
        Seen = D.isVisible() && D.isModal();
        D.cboPortNumber->setFocus();
        QTest::keyClick(D.cboPortNumber, Qt::Key_End);
        D.cboDataBits->setFocus();
        QTest::keyClick(D.cboDataBits, Qt::Key_Up);
        QTest::mouseClick(D.cmdOpenPort, Qt::LeftButton);
        QTest::mouseClick(D.cmdOK, Qt::LeftButton);
    });
    Window.mnuMonitorPortSetup->trigger();
    EXPECT_TRUE(Seen);
    EXPECT_FALSE(Global<frmMonitorPort>::IsLoaded());
    EXPECT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
    Global<frmDownloader>::Unload();
    EXPECT_FALSE(Line->PortOpen());
    Load();
    EXPECT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_EQ(MonitorPortExecutive::GetMonitorPortInfo().DataBits(), 7);
    EXPECT_EQ(MonitorPortExecutive::GetMonitorPortInfo().PortNumber(), 99);
}

// The capture dialog.
class CaptureDialogTest : public MonitorWindowTest {
  protected:
    frmMonitorCapture& OpenDialog(frmDownloader& Window) {
        Window.mnuCaptureToFile->trigger();
        EXPECT_TRUE(Global<frmMonitorCapture>::IsLoaded());
        return Global<frmMonitorCapture>::Get();
    }
    QString Name(const char* File) const { return TempPath() + QLatin1Char('/') + File; }
};

TEST_F(CaptureDialogTest, OpensNonModalOnceWithItsCaptionAndClosedState) {
    frmDownloader& Window = Load();
    frmMonitorCapture& D = OpenDialog(Window);
    EXPECT_TRUE(D.isVisible());
    EXPECT_FALSE(D.isModal());
    EXPECT_EQ(D.parentWidget(), &Window);
    EXPECT_EQ(D.windowTitle(), QStringLiteral("Capture to File"));
    EXPECT_EQ(D.Frame1->title(), QStringLiteral("Capture monitor port input"));
    EXPECT_EQ(D.cmdCreateCaptureFile->text(), QStringLiteral("Create File"));
    EXPECT_EQ(D.cmdCloseFile->text(), QStringLiteral("Close File"));
    EXPECT_EQ(D.lblFilename->text(), QStringLiteral("Filename:"));
    EXPECT_EQ(D.lblFileSize->text(), QStringLiteral("File Size:  "));
    EXPECT_EQ(D.lblStatus->text(), QStringLiteral("Status:  Closed"));
    EXPECT_TRUE(D.cmdCreateCaptureFile->isEnabled());
    EXPECT_FALSE(D.cmdCloseFile->isEnabled());
    EXPECT_FALSE(D.txtFilename->isEnabled());
    EXPECT_EQ(D.tmrFileSizeMonitor->interval(), 500);
    EXPECT_FALSE(D.tmrFileSizeMonitor->isActive());
    Window.mnuCaptureToFile->trigger();
    EXPECT_EQ(&Global<frmMonitorCapture>::Get(), &D) << "only one capture dialog";
}

TEST_F(CaptureDialogTest, CancelledFileDialogLeavesTheClosedStateWithNoMessage) {
    frmDownloader& Window = Load();
    frmMonitorCapture& D = OpenDialog(Window);
    QTest::mouseClick(D.cmdCreateCaptureFile, Qt::LeftButton);
    ASSERT_EQ(FileDialogs->Requests.size(), 1);
    EXPECT_EQ(FileDialogs->Requests[0].Title, QStringLiteral("Open Capture File"));
    EXPECT_EQ(FileDialogs->Requests[0].InitDir, TempPath());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_EQ(D.lblStatus->text(), QStringLiteral("Status:  Closed"));
    EXPECT_TRUE(D.cmdCreateCaptureFile->isEnabled());
    EXPECT_FALSE(D.cmdCloseFile->isEnabled());
    EXPECT_FALSE(MonitorCapture::IsCaptureFileOpen());
}

TEST_F(CaptureDialogTest, NoToAlreadyExistsLeavesTheOldFileAsItWas) {
    frmDownloader& Window = Load();
    const QString Old = WriteFile(QStringLiteral("old.cap"), "keep me\r\n");
    frmMonitorCapture& D = OpenDialog(Window);
    FileDialogs->Answers.push_back(Old);
    Boxes->QueueAnswer(7);
    QTest::mouseClick(D.cmdCreateCaptureFile, Qt::LeftButton);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("File ") + Old + QStringLiteral(" already exists. Replace?"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("File Exists"));
    EXPECT_FALSE(MonitorCapture::IsCaptureFileOpen());
    EXPECT_EQ(D.lblStatus->text(), QStringLiteral("Status:  Closed"));
    ChipPrints("new bytes");
    Tick(Window);
    EXPECT_EQ(Read(Old), QByteArray("keep me\r\n"));
}

TEST_F(CaptureDialogTest, YesToAlreadyExistsReplacesTheFile) {
    frmDownloader& Window = Load();
    const QString Old = WriteFile(QStringLiteral("old.cap"), "old content");
    frmMonitorCapture& D = OpenDialog(Window);
    FileDialogs->Answers.push_back(Old);
    Boxes->QueueAnswer(6);
    QTest::mouseClick(D.cmdCreateCaptureFile, Qt::LeftButton);
    EXPECT_TRUE(MonitorCapture::IsCaptureFileOpen());
    ChipPrints("new");
    Tick(Window);
    EXPECT_EQ(Read(Old), QByteArray("new"));
}

TEST_F(CaptureDialogTest, FileSizeReads1024BytesDuringACaptureAndIsEmptyBeforeAndAfter) {
    frmDownloader& Window = Load();
    frmMonitorCapture& D = OpenDialog(Window);
    EXPECT_EQ(D.lblFileSize->text(), QStringLiteral("File Size:  "));
    FileDialogs->Answers.push_back(Name("size.cap"));
    QTest::mouseClick(D.cmdCreateCaptureFile, Qt::LeftButton);
    EXPECT_EQ(D.lblStatus->text(), QStringLiteral("Status:  Recording"));
    EXPECT_EQ(D.txtFilename->text(), Name("size.cap"));
    EXPECT_TRUE(D.txtFilename->isEnabled());
    EXPECT_FALSE(D.cmdCreateCaptureFile->isEnabled());
    EXPECT_TRUE(D.cmdCloseFile->isEnabled());
    EXPECT_TRUE(D.tmrFileSizeMonitor->isActive());
    EXPECT_EQ(D.lblFileSize->text(), QStringLiteral("File Size:  "));
    ChipPrints(QByteArray(1024, 'z'));
    Tick(Window);
    // The size monitor's own timer, running in real time.
    EXPECT_EQ(
        WaitFor([&] { return D.lblFileSize->text(); }, QStringLiteral("File Size:  1024 bytes")),
        QStringLiteral("File Size:  1024 bytes"));
    QTest::mouseClick(D.cmdCloseFile, Qt::LeftButton);
    EXPECT_EQ(D.lblFileSize->text(), QStringLiteral("File Size:  "));
    EXPECT_EQ(D.lblStatus->text(), QStringLiteral("Status:  Closed"));
    EXPECT_EQ(D.txtFilename->text(), QString());
    EXPECT_FALSE(D.tmrFileSizeMonitor->isActive());
    EXPECT_EQ(Read(Name("size.cap")), QByteArray(1024, 'z'));
}

TEST_F(CaptureDialogTest, ClosingTheDialogDuringACaptureAndReopeningShowsRecordingAndTheName) {
    frmDownloader& Window = Load();
    frmMonitorCapture* D = &OpenDialog(Window);
    FileDialogs->Answers.push_back(Name("long.cap"));
    QTest::mouseClick(D->cmdCreateCaptureFile, Qt::LeftButton);
    QTest::mouseClick(D->cmdOK, Qt::LeftButton);
    EXPECT_FALSE(Global<frmMonitorCapture>::IsLoaded());
    EXPECT_FALSE(MonitorCapture::CaptureWindowIsOpen());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ChipPrints("while closed\r");
    Tick(Window);
    EXPECT_EQ(Read(Name("long.cap")), QByteArray("while closed\r"));
    D = &OpenDialog(Window);
    EXPECT_EQ(D->lblStatus->text(), QStringLiteral("Status:  Recording"));
    EXPECT_EQ(D->txtFilename->text(), Name("long.cap"));
    EXPECT_FALSE(D->cmdCreateCaptureFile->isEnabled());
    EXPECT_TRUE(D->cmdCloseFile->isEnabled());
}

TEST_F(CaptureDialogTest, CaptureFileHasCrAloneWhileTheWindowShowsCrLf) {
    frmDownloader& Window = Load();
    frmMonitorCapture& D = OpenDialog(Window);
    FileDialogs->Answers.push_back(Name("raw.cap"));
    QTest::mouseClick(D.cmdCreateCaptureFile, Qt::LeftButton);
    const QByteArray Raw("one\rtwo\r\nthree\n\t\x7f\xe9", 18);
    ChipPrints(Raw);
    Tick(Window);
    EXPECT_EQ(Read(Name("raw.cap")), Raw);
    EXPECT_EQ(Window.DebugWindowText(),
              QStringLiteral("one\r\ntwo\r\nthree") + P + P + QChar(0xE9));
}

TEST_F(CaptureDialogTest, TrimmingTheWindowNeverTouchesTheFile) {
    frmDownloader& Window = Load();
    frmMonitorCapture& D = OpenDialog(Window);
    FileDialogs->Answers.push_back(Name("all.cap"));
    QTest::mouseClick(D.cmdCreateCaptureFile, Qt::LeftButton);
    QByteArray All;
    for (int Round = 0; Round < 20; ++Round) {
        const QByteArray Piece = QByteArray::number(Round % 10).repeated(2000) + "\r\n";
        All += Piece;
        ChipPrints(Piece);
        Tick(Window);
        EXPECT_LE(Window.DebugWindowText().size(), 16000 + 2002);
    }
    EXPECT_LT(Window.DebugWindowText().size(), All.size()) << "the window was cut";
    EXPECT_EQ(Read(Name("all.cap")), All);
}

TEST_F(CaptureDialogTest, FullDiskEndsTheCaptureWithOneMessageWhileTheWindowGoesOn) {
    const QString Folder = TempPath() + QStringLiteral("/small");
    SmallTmpfs Disk(Folder, 256 * 1024);
    if (!Disk.Mounted()) {
        GTEST_SKIP() << "mounting a small tmpfs is not allowed here";
    }
    Disk.FillUpTo(8 * 1024);
    frmDownloader& Window = Load();
    frmMonitorCapture& D = OpenDialog(Window);
    FileDialogs->Answers.push_back(Folder + QStringLiteral("/full.cap"));
    QTest::mouseClick(D.cmdCreateCaptureFile, Qt::LeftButton);
    ASSERT_TRUE(MonitorCapture::IsCaptureFileOpen());
    QByteArray Printed;
    for (int Round = 0; Round < 10; ++Round) {
        const QByteArray Piece = QByteArray::number(Round).repeated(3000) + "\r";
        Printed += Piece;
        ChipPrints(Piece);
        Tick(Window);
    }
    EXPECT_FALSE(MonitorCapture::IsCaptureFileOpen());
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("File Write Error"));
    EXPECT_TRUE(Boxes->Boxes[0].Text.contains(QStringLiteral("Error 61, Disk full")));
    const QByteArray Kept = Read(Folder + QStringLiteral("/full.cap"));
    EXPECT_GT(Kept.size(), 0);
    EXPECT_LT(Kept.size(), Printed.size());
    EXPECT_EQ(Kept, Printed.left(Kept.size()));
    EXPECT_TRUE(Window.DebugWindowText().endsWith(QStringLiteral("9\r\n")))
        << "the window still shows what comes";
    // The dialog's size monitor finds the capture ended.
    EXPECT_EQ(WaitFor([&] { return D.lblStatus->text(); }, QStringLiteral("Status:  Closed")),
              QStringLiteral("Status:  Closed"));
    EXPECT_TRUE(D.cmdCreateCaptureFile->isEnabled());
}

TEST_F(CaptureDialogTest, CreateWhileRecordingSaysFileAlreadyOpen) {
    frmDownloader& Window = Load();
    frmMonitorCapture& D = OpenDialog(Window);
    FileDialogs->Answers.push_back(Name("a.cap"));
    QTest::mouseClick(D.cmdCreateCaptureFile, Qt::LeftButton);
    D.cmdCreateCaptureFile_Click();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("File already open"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("File Open Error"));
    EXPECT_TRUE(MonitorCapture::IsCaptureFileOpen());
}

TEST_F(CaptureDialogTest, FileThatCannotBeOpenedIsToldAndTheDialogIsClosed) {
    frmDownloader& Window = Load();
    frmMonitorCapture& D = OpenDialog(Window);
    FileDialogs->Answers.push_back(Name("missing/folder/x.cap"));
    QTest::mouseClick(D.cmdCreateCaptureFile, Qt::LeftButton);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Error opening file ") +
                                        Name("missing/folder/x.cap") +
                                        QStringLiteral("\nError 76, Path not found"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("File Open Error"));
    EXPECT_EQ(D.lblStatus->text(), QStringLiteral("Status:  Closed"));
    EXPECT_EQ(D.txtFilename->text(), QString());
}

TEST_F(CaptureDialogTest, ClosingTheDownloaderClosesTheCaptureFile) {
    frmDownloader& Window = Load();
    frmMonitorCapture& D = OpenDialog(Window);
    FileDialogs->Answers.push_back(Name("end.cap"));
    QTest::mouseClick(D.cmdCreateCaptureFile, Qt::LeftButton);
    ChipPrints("last");
    Tick(Window);
    Window.close();
    EXPECT_FALSE(MonitorCapture::IsCaptureFileOpen());
    EXPECT_EQ(Read(Name("end.cap")), QByteArray("last"));
}

// The real serial port class over a pseudo-terminal pair: the monitor port
// opens the slave as port 1, the test plays the chip on the master.
class MonitorPtyTest : public MonitorWindowTest {
  protected:
    void SetUp() override {
        MonitorWindowTest::SetUp();
        char Name[256] = {};
        if (::openpty(&Master, &Slave, Name, nullptr, nullptr) != 0) {
            Master = -1;
            GTEST_SKIP() << "no pseudo-terminals on this machine (openpty failed)";
        }
        SlaveName = QString::fromLocal8Bit(Name);
        SerialDevices::SetDeviceLister([this] { return QStringList({SlaveName}); });
        SetSetting(QStringLiteral("KV20port_Number"), QStringLiteral("  1, 115200,N,8,10"));
    }
    void TearDown() override {
        Global<frmDownloader>::Unload();
        if (Master >= 0) {
            ::close(Master);
        }
        if (Slave >= 0) {
            ::close(Slave);
        }
        MonitorWindowTest::TearDown();
    }
    QByteArray ReadMaster(int Count) const { return ReadFromTerminal(Master, Count); }
    // Polls as the timer does until the window shows the text, 3 s at most.
    bool PollUntilShown(frmDownloader& Window, const QString& Text) {
        QElapsedTimer Timer;
        Timer.start();
        while (Timer.elapsed() < 3000) {
            Tick(Window);
            if (Shown(Window) == Text) {
                return true;
            }
            QTest::qWait(10);
        }
        return false;
    }

    int Master = -1;
    int Slave = -1;
    QString SlaveName;
};

TEST_F(MonitorPtyTest, BytesGoBothWaysThroughARealSerialDevice) {
    frmDownloader& Window = Load();
    ASSERT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
    const QByteArray Printed("x = 5\r\nover\xff");
    ASSERT_EQ(::write(Master, Printed.constData(), Printed.size()), Printed.size());
    EXPECT_TRUE(PollUntilShown(Window, QStringLiteral("x = 5\nover") + QChar(0xFF)))
        << Shown(Window).toStdString();
    QTest::keyClicks(Window.txtDebugWindow, QStringLiteral("go"));
    QTest::keyClick(Window.txtDebugWindow, Qt::Key_Return);
    EXPECT_EQ(ReadMaster(3), QByteArray("go\r"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(MonitorPtyTest, UnpluggedDeviceClosesThePortLatchesTheErrorAndTellsTheUserOnce) {
    frmDownloader& Window = Load();
    ASSERT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
    ASSERT_EQ(::write(Master, "before\r", 7), 7);
    ASSERT_TRUE(PollUntilShown(Window, QStringLiteral("before\n")));
    // The adapter goes: its far end disappears.
    ::close(Master);
    Master = -1;
    ::close(Slave);
    Slave = -1;
    QElapsedTimer Timer;
    Timer.start();
    while (MonitorPortExecutive::IsMonitorPortOpen() && Timer.elapsed() < 3000) {
        Tick(Window);
        QTest::qWait(10);
    }
    EXPECT_FALSE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_FALSE(Window.comMonitorPort->PortOpen());
    EXPECT_FALSE(Window.fraComDataError->isHidden());
    for (int Again = 0; Again < 5; ++Again) {
        Tick(Window);
    }
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Monitor Port Error"));
    EXPECT_TRUE(Boxes->Boxes[0].Text.startsWith(QStringLiteral("Monitor port Com1 was lost")))
        << Boxes->Boxes[0].Text.toStdString();
    EXPECT_EQ(Shown(Window), QStringLiteral("before\n"));
    QTest::keyClicks(Window.txtDebugWindow, QStringLiteral("k"));
    ASSERT_EQ(Boxes->Boxes.size(), 2);
    EXPECT_EQ(Boxes->Boxes[1].Text, QStringLiteral("Monitor port must be open"));
}

TEST_F(MonitorPtyTest, PortHeldByAnotherProgramIsToldWithTheCause) {
    SetSetting(QStringLiteral("KV20port_Number"), QString());
    Load();
    QSerialPort Other(SlaveName);
    if (!Other.open(QIODevice::ReadWrite)) {
        GTEST_SKIP() << "the device cannot be held here";
    }
    frmMonitorPort& D = Global<frmMonitorPort>::Get();
    D.show();
    QTest::mouseClick(D.cmdOpenPort, Qt::LeftButton);
    EXPECT_FALSE(MonitorPortExecutive::IsMonitorPortOpen());
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Monitor Port Error"));
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Unable to open Com1\nPort already open or not "
                                                   "permitted: ") +
                                        SlaveName);
    EXPECT_EQ(D.lblStatus->text(), QStringLiteral(" Closed"));
}

}  // namespace
