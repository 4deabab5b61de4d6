#include "link/frmDownloader.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFont>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenuBar>
#include <QScrollBar>
#include <QStatusBar>
#include <QStyle>
#include <QTextCursor>
#include <QVBoxLayout>

#include "chip/XFileExecutivePRF.h"
#include "chip/frmProcessorOptions.h"
#include "compile/CompilerCentral.h"
#include "editor/frmSourceEditor.h"
#include "frame/DirectoryCentral.h"
#include "frame/DumpManager.h"
#include "frame/ErrorDisplay.h"
#include "frame/ExceptionTypes.h"
#include "frame/GlobalData.h"
#include "frame/KeyedToolBar.h"
#include "frame/RegistryCentral.h"
#include "frame/TwipsConversion.h"
#include "frame/UtilitiesFilename.h"
#include "frame/frmAbout.h"
#include "frame/frmSplash.h"
#include "frame/frmWorkPathDefinition.h"
#include "link/DownloadPortExecutive.h"
#include "link/KavlinControlSerialLink.h"
#include "link/ParallelDownloader.h"
#include "link/XSerialDownloader.h"
#include "link/frmDownloadPortParallel.h"
#include "link/frmDownloadPortSerial.h"
#include "monitor/MonitorCapture.h"
#include "monitor/MonitorPortExecutive.h"
#include "monitor/frmDiagnosticATN.h"
#include "monitor/frmMonitorCapture.h"
#include "monitor/frmMonitorPort.h"
#include "platform/ClockService.h"
#include "platform/ErrObject.h"
#include "platform/FileDialogService.h"
#include "platform/Global.h"
#include "project/ProjectType.h"

namespace {
bool ProcessEnded = false;

// The editor's own shutdown, as the downloader's close asks it.
class SourceEditorShutdown : public EditorShutdownHandler {
  public:
    void ProcessExit(bool& CancelUnload) override {
        CancelUnload = false;
        if (Global<frmSourceEditor>::IsLoaded()) {
            Global<frmSourceEditor>::Get().ProcessExit(CancelUnload);
        }
    }
    void UnloadEditor() override { Global<frmSourceEditor>::Unload(); }
};

SourceEditorShutdown TheSourceEditorShutdown;
EditorShutdownHandler* EditorShutdown = &TheSourceEditorShutdown;
std::function<void()> ShowSimulatedChipWindow;

// The window's timer as the KV-10 programmer sees it; its event loop fires
// it inside the yields of the programmer's waits.
class WindowEEPROMTimer : public ParallelDownloader::EEPROMTimer {
  public:
    explicit WindowEEPROMTimer(QTimer& Timer) : Timer_(Timer) {}
    void SetInterval(int32_t Milliseconds) override { Timer_.setInterval(Milliseconds); }
    void Start() override { Timer_.start(); }
    void Stop() override { Timer_.stop(); }
    bool IsRunning() const override { return Timer_.isActive(); }
    int32_t Interval() const override { return Timer_.interval(); }

  private:
    QTimer& Timer_;
};

}  // namespace

frmDownloader::frmDownloader() {
    setObjectName(QStringLiteral("frmDownloader"));
    txtDebugWindow = new QPlainTextEdit(this);
    txtDebugWindow->setObjectName(QStringLiteral("txtDebugWindow"));
    txtDebugWindow->setReadOnly(true);
    // What the chip prints is never undone: no undo history to grow.
    txtDebugWindow->setUndoRedoEnabled(false);
    txtDebugWindow->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtDebugWindow->setFont(QFont(QStringLiteral("Courier New")));
    KavlinControl1 = new KavlinControl(this);
    KavlinControl1->setObjectName(QStringLiteral("KavlinControl1"));
    txtDebugWindow->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    txtDebugWindow->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    // The scroll area lays its children out again after every change of a
    // scroll bar's range, to show or hide a bar as needed; that repaints the
    // horizontal bar each time a poll adds lines, a quarter of the window's
    // CPU while a chip prints. Both bars are always shown here, so there is
    // nothing to show or hide: a resize still lays the children out. Where
    // the toolkit names this connection otherwise, nothing is disconnected.
    for (QScrollBar* Bar :
         {txtDebugWindow->horizontalScrollBar(), txtDebugWindow->verticalScrollBar()}) {
        QObject::disconnect(Bar, SIGNAL(rangeChanged(int, int)), txtDebugWindow,
                            SLOT(_q_showOrHideScrollBars()));
    }
    txtDebugWindow->installEventFilter(this);
    KavlinControl1->SetDebugWindow([this](const QString& Text) { SetDebugWindowText(Text); });
    KavlinControlSerialLink::Install(*KavlinControl1);
    ProcessorOptionsHost::Install(this);

    comMonitorPort = new SerialPortObject();
    // Room for more than a second at 115200 baud, so that a busy moment of
    // the window loses nothing between two polls.
    comMonitorPort->SetInBufferSize(16384);
    MonitorPortExecutive::SetPortObject(comMonitorPort);
    tmrSerialInputPoller = new QTimer(this);
    tmrSerialInputPoller->setObjectName(QStringLiteral("tmrSerialInputPoller"));
    tmrSerialInputPoller->setInterval(50);
    connect(tmrSerialInputPoller, &QTimer::timeout, this,
            &frmDownloader::tmrSerialInputPoller_Timer);
    tmrSerialInputPoller->start();
    tmrEEPROMtimeout = new QTimer(this);
    tmrEEPROMtimeout->setObjectName(QStringLiteral("tmrEEPROMtimeout"));
    connect(tmrEEPROMtimeout, &QTimer::timeout, this, &frmDownloader::tmrEEPROMtimeout_Timer);
    EEPROMWatchdog = std::make_unique<WindowEEPROMTimer>(*tmrEEPROMtimeout);

    fraComDataError = new QFrame(this);
    fraComDataError->setObjectName(QStringLiteral("fraComDataError"));
    fraComDataError->setFrameStyle(QFrame::Box | QFrame::Plain);
    auto* ErrorLayout = new QHBoxLayout(fraComDataError);
    ErrorLayout->setContentsMargins(4, 2, 4, 2);
    picComErrorIndicator = new QLabel(fraComDataError);
    picComErrorIndicator->setObjectName(QStringLiteral("picComErrorIndicator"));
    picComErrorIndicator->setFixedSize(14, 14);
    picComErrorIndicator->setStyleSheet(QStringLiteral("background-color: #FF0000;"));
    lblComStatus = new QLabel(QStringLiteral("Serial Data Error "), fraComDataError);
    lblComStatus->setObjectName(QStringLiteral("lblComStatus"));
    cmdClearComError = new QPushButton(QStringLiteral("Clear"), fraComDataError);
    cmdClearComError->setObjectName(QStringLiteral("cmdClearComError"));
    connect(cmdClearComError, &QPushButton::clicked, this, &frmDownloader::cmdClearComError_Click);
    ErrorLayout->addWidget(picComErrorIndicator);
    ErrorLayout->addWidget(lblComStatus);
    ErrorLayout->addWidget(cmdClearComError);
    ErrorLayout->addStretch(1);
    fraComDataError->setVisible(false);

    auto* Central = new QWidget(this);
    auto* Layout = new QVBoxLayout(Central);
    Layout->setContentsMargins(0, 0, 0, 0);
    Layout->addWidget(txtDebugWindow, 1);
    Layout->addWidget(fraComDataError);
    Layout->addWidget(KavlinControl1);
    setCentralWidget(Central);
    // The text box follows the window down to an inner area of 4000 by 4000
    // twips; the window goes no smaller, so the box is never left behind at
    // a size the window no longer has.
    Central->setMinimumSize(TwipsConversion::TwipsToPixelsX(4000),
                            TwipsConversion::TwipsToPixelsY(4000));
    BuildMenus();
    BuildToolBar();
    BuildStatusBar();
    GlobalData::SetEditorButtonHandler([this](bool Enabled) {
        if (QAction* Editor = ToolBarButton(QStringLiteral("Editor"))) {
            Editor->setEnabled(Enabled);
        }
    });
    XSerialDownloader::Attach(
        KavlinControl1, comMonitorPort, [this](const QString& Text) { AppendToDebugWindow(Text); },
        ProgressBar1);
    ParallelDownloader::Attach([this](const QString& Text) { AppendToDebugWindow(Text); },
                               [this](int32_t Value) { ProgressBar1->setValue(Value); },
                               EEPROMWatchdog.get());
}

frmDownloader::~frmDownloader() {
    ProcessorOptionsHost::Uninstall(this);
    tmrSerialInputPoller->stop();
    // The capture dialog is this window's child: it goes first, and with it
    // its global slot.
    Global<frmMonitorCapture>::Unload();
    if (MonitorPortExecutive::PortObject() == comMonitorPort) {
        MonitorPortExecutive::CloseMonitorPort();
        MonitorPortExecutive::SetPortObject(nullptr);
    }
    XSerialDownloader::Detach();
    ParallelDownloader::Detach();
    tmrEEPROMtimeout->stop();
    delete comMonitorPort;
    GlobalData::SetEditorButtonHandler({});
    if (Global<frmSourceEditor>::IsLoaded()) {
        Global<frmSourceEditor>::Get().DisplayKvbHook = nullptr;
    }
    CommandLineInterpreter::SetHost(nullptr);
}

void frmDownloader::BuildMenus() {
    auto Entry = [this](QMenu* Menu, QAction*& Action, const char* Name, const char* Caption,
                        void (frmDownloader::*Slot)()) {
        Action = Menu != nullptr ? Menu->addAction(QString::fromLatin1(Caption))
                                 : menuBar()->addAction(QString::fromLatin1(Caption));
        Action->setObjectName(QString::fromLatin1(Name));
        connect(Action, &QAction::triggered, this, Slot);
    };
    mnuFile = menuBar()->addMenu(QStringLiteral("&File"));
    mnuFile->setObjectName(QStringLiteral("mnuFile"));
    Entry(mnuFile, mnuOpenDownload, "mnuOpenDownload", "&Open Download",
          &frmDownloader::mnuOpenDownload_Click);
    Entry(mnuFile, mnuSetWorkingDirectory, "mnuSetWorkingDirectory", "Set Starting &Directory",
          &frmDownloader::mnuSetWorkingDirectory_Click);
    Entry(mnuFile, mnuCaptureToFile, "mnuCaptureToFile", "&Capture to File...",
          &frmDownloader::mnuCaptureToFile_Click);
    mnuFile->addSeparator();
    Entry(mnuFile, mnuExit, "mnuExit", "E&xit", &frmDownloader::mnuExit_Click);
    Entry(nullptr, mnuProcessorOptions, "mnuProcessorOptions", "&Processor",
          &frmDownloader::mnuProcessorOptions_Click);
    mnuDownloadPort = menuBar()->addMenu(QStringLiteral("&I/O Ports"));
    mnuDownloadPort->setObjectName(QStringLiteral("mnuDownloadPort"));
    Entry(mnuDownloadPort, mnuDownloadPortSetup, "mnuDownloadPortSetup", "&Download Port",
          &frmDownloader::mnuDownloadPortSetup_Click);
    Entry(mnuDownloadPort, mnuMonitorPortSetup, "mnuMonitorPortSetup", "&Monitor Port",
          &frmDownloader::mnuMonitorPortSetup_Click);
    Entry(mnuDownloadPort, mnuSimulatedChip, "mnuSimulatedChip", "&Simulated Chip",
          &frmDownloader::mnuSimulatedChip_Click);
    mnuSimulatedChip->setVisible(static_cast<bool>(ShowSimulatedChipWindow));
    mnuDiagnostics = menuBar()->addMenu(QStringLiteral("Dia&gnostics"));
    mnuDiagnostics->setObjectName(QStringLiteral("mnuDiagnostics"));
    Entry(mnuDiagnostics, mnuRescue, "mnuRescue", "&Rescue", &frmDownloader::mnuRescue_Click);
    Entry(mnuDiagnostics, mnuDiagnosticATN, "mnuDiagnosticATN", "&ATN Diagnostic",
          &frmDownloader::mnuDiagnosticATN_Click);
    Entry(nullptr, mnuAbout, "mnuAbout", "&About", &frmDownloader::mnuAbout_Click);

    // Buttons that exist only to carry the access keys.
    auto Key = [this](QAction*& Action, const char* Name, const char* Shortcut,
                      void (frmDownloader::*Slot)()) {
        Action = new QAction(this);
        Action->setObjectName(QString::fromLatin1(Name));
        Action->setShortcut(QKeySequence(QString::fromLatin1(Shortcut)));
        addAction(Action);
        connect(Action, &QAction::triggered, this, Slot);
    };
    Key(cmdDownload, "cmdDownload", "Alt+D", &frmDownloader::cmdDownload_Click);
    Key(cmdExecute, "cmdExecute", "Alt+E", &frmDownloader::cmdExecute_Click);
    Key(cmdPowerDown, "cmdPowerDown", "Alt+S", &frmDownloader::cmdPowerDown_Click);
    Key(cmdResetCPU, "cmdResetCPU", "Alt+R", &frmDownloader::cmdResetCPU_Click);
    Key(cmdClearWindow, "cmdClearWindow", "Alt+C", &frmDownloader::cmdClearWindow_Click);
}

void frmDownloader::BuildToolBar() {
    ToolBar = addToolBar(QStringLiteral("ToolBar"));
    ToolBar->setObjectName(QStringLiteral("ToolBar"));
    ToolBar->setMovable(false);
    ToolBarButtons = KeyedToolBar::AddButtons(
        *ToolBar,
        {
            {"Open", "Open Download File", "document-open", QStyle::SP_DialogOpenButton},
            {"Editor", "Open Editor", "accessories-text-editor", QStyle::SP_FileDialogDetailedView},
            {nullptr, nullptr, nullptr, QStyle::SP_CustomBase},
            {nullptr, nullptr, nullptr, QStyle::SP_CustomBase},
            {nullptr, nullptr, nullptr, QStyle::SP_CustomBase},
            {"Stop", "Stop Processor  (Alt+S)", "media-playback-stop", QStyle::SP_MediaStop},
            {"Run", "Execute  (Alt+E)", "media-playback-start", QStyle::SP_MediaPlay},
            {"Reset", "Reset Processor  (Alt+R)", "view-refresh", QStyle::SP_BrowserReload},
            {"Download", "Download Program  (Alt+D)", "go-down", QStyle::SP_ArrowDown},
            {nullptr, nullptr, nullptr, QStyle::SP_CustomBase},
            {"ClearSerial", "Clear Serial Window  (Alt+C)", "edit-clear",
             QStyle::SP_DialogResetButton},
        },
        QStringLiteral("ToolBar_"), [this](const QString& Key) { ToolBar_ButtonClick(Key); });
}

QAction* frmDownloader::ToolBarButton(const QString& Key) const {
    return KeyedToolBar::Find(ToolBarButtons, Key);
}

void frmDownloader::BuildStatusBar() {
    statusBar()->setObjectName(QStringLiteral("StatusBar1"));
    for (int Index = 1; Index <= 5; ++Index) {
        auto* Panel = new QLabel(this);
        Panel->setObjectName(QStringLiteral("StatusBar1_Panel%1").arg(Index));
        Panel->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        Panel->setMinimumWidth(60);
        statusBar()->addWidget(Panel, Index == 5 ? 1 : 0);
        StatusBarPanels << Panel;
    }
    ProgressBar1 = new QProgressBar(this);
    ProgressBar1->setObjectName(QStringLiteral("ProgressBar1"));
    ProgressBar1->setMaximumWidth(120);
    statusBar()->addPermanentWidget(ProgressBar1);
}

void frmDownloader::Form_Load() {
    try {
        DumpManager::InitializeDumpManager();
        ErrorDisplay::InitializeErrorDisplay();
        ErrorDisplay::ProbeDebug(QStringLiteral("This should appear only if ProbeDebugIsOn."));
        const bool NoCommandLine = CommandLineInterpreter::GetCommandLine().isEmpty();
        if (NoCommandLine) {
            frmSplash& Splash = Global<frmSplash>::Get();
            Splash.show();
            Splash.repaint();
        }
        GlobalData::InitializeGlobalData();
        DirectoryCentral::InitializeDirectories();
        bool InstallationIsGood = false;
        DirectoryCentral::CheckInstallation(InstallationIsGood);  // only the compile refuses
        ParallelDownloader::Initialize();
        CommandLineInterpreter::Initialize();
        InitializeForm();
        MonitorPortExecutive::InitializeMonitorPort();
        DownloadPortExecutive::Initialize();
        InitializeChipType();
        MonitorCapture::InitializeCapture();
        if (NoCommandLine) {
            ClockService& Clock = ClockService::Instance();
            Clock.DoEvents();
            // The splash's second, in slices so that a key on the splash ends it early.
            for (int Slice = 0; Slice < 10 && Global<frmSplash>::IsLoaded(); ++Slice) {
                Clock.Sleep(100);
                Clock.DoEvents();
            }
            if (Global<frmSplash>::IsLoaded()) {
                Global<frmSplash>::Unload();
            }
            ClearComError();
        } else {
            CommandLineInterpreter::SetHost(this);
            CommandLineInterpreter::Run();
        }
    } catch (...) {
        ExceptionTypes::ProcessException(6, 1);
    }
}

void frmDownloader::InitializeForm() {
    RestoreGeometry();
    setWindowTitle(GlobalData::ApplicationCaption());
    ComErrorLatched = false;
    ComErrorShownOnce = false;
    ComErrorShown = false;
}

void frmDownloader::RestoreGeometry() {
    FormGeometry Geometry;
    RegistryCentral::RegistryGetMainGeometry(Geometry);
    Placement.Restore(*this, Geometry);
}

FormGeometry frmDownloader::CurrentGeometry() const { return Placement.Current(*this); }

void frmDownloader::SaveGeometry() { RegistryCentral::RegistrySaveMainGeometry(CurrentGeometry()); }

void frmDownloader::InitializeChipType() {
    GlobalData::ChipType = RegistryCentral::RegistryGetChipType();
    switch (GlobalData::ChipType) {
        case 1:
            EnableChipMenus(false);
            break;
        case 2:
        case 3:
            EnableChipMenus(true);
            break;
        default:
            ErrorDisplay::ProbeError(QStringLiteral("Error_1 in frmDownloader.InitializeChipType"));
            break;
    }
}

void frmDownloader::ClearComError() {
    ComErrorLatched = false;
    UpdateComErrorIndicator();
}

void frmDownloader::cmdClearComError_Click() { ClearComError(); }

void frmDownloader::UpdateComErrorIndicator() {
    if (ComErrorShownOnce && ComErrorLatched == ComErrorShown) {
        return;
    }
    fraComDataError->setVisible(ComErrorLatched);
    ComErrorShownOnce = true;
    ComErrorShown = ComErrorLatched;
}

void frmDownloader::comMonitorPort_OnComm(int32_t CommEvent) {
    switch (CommEvent) {
        case CommEvents::Break:
        case CommEvents::Framing:
        case CommEvents::Overrun:
        case CommEvents::ReceiveOverflow:
        case CommEvents::ControlBlock:
        case CommEvents::DeviceLost:
            ComErrorLatched = true;
            break;
        default:
            // Parity errors, a full transmit buffer and the plain events
            // change nothing.
            break;
    }
}

void frmDownloader::tmrSerialInputPoller_Timer() {
    // A box or an event pump inside the poll lets the timer fire again; that
    // tick has nothing to do that the running one will not do.
    if (Polling) {
        return;
    }
    Polling = true;
    struct Lower {
        bool& Flag;
        ~Lower() { Flag = false; }
    } LowerPolling{Polling};

    // The events first: a device that went away has closed the port, and
    // that must still be noticed.
    bool DeviceLost = false;
    for (const int32_t Event : comMonitorPort->TakeCommEvents()) {
        comMonitorPort_OnComm(Event);
        DeviceLost = DeviceLost || Event == CommEvents::DeviceLost;
    }
    if (DeviceLost) {
        const int Number = comMonitorPort->CommPort();
        MonitorPortExecutive::PortWasLost();
        UpdateComErrorIndicator();
        ErrorDisplay::ShowErrorMessage(
            QStringLiteral("Monitor port Com") + QString::number(Number) +
                QStringLiteral(" was lost and is closed") +
                QStringLiteral("\nThe device went away (a USB adapter unplugged?)"),
            QStringLiteral("Monitor Port Error"));
        return;
    }
    if (!comMonitorPort->PortOpen()) {
        return;
    }
    UpdateComErrorIndicator();
    if (comMonitorPort->InBufferCount() < 1) {
        return;
    }
    const QByteArray Bytes = comMonitorPort->Input();
    // The capture takes the bytes as they came; the filter is for the eye.
    MonitorCapture::WriteCaptureBytes(Bytes);
    AppendToDebugWindow(MonitorPortExecutive::FilterForDisplay(Bytes));
}

void frmDownloader::SetDebugWindowText(const QString& Text) {
    DebugText = Text;
    QString Shown = Text;
    Shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    txtDebugWindow->setPlainText(Shown);
    txtDebugWindow->moveCursor(QTextCursor::End);
}

void frmDownloader::AppendToDebugWindow(const QString& NewText) {
    try {
        if (DebugText.size() > 16000) {
            // Cut by 4096 at a time, so that the window changes rarely. The
            // document holds a CR LF as one line break: the cut there is
            // 4096 less the pairs before it, and a pair cut in two leaves
            // its LF as a line break.
            qsizetype DocumentCut = 4096 - DebugText.left(4096).count(QStringLiteral("\r\n"));
            if (DebugText.at(4095) == QLatin1Char('\r') &&
                DebugText.at(4096) == QLatin1Char('\n')) {
                --DocumentCut;
            }
            DebugText.remove(0, 4096);
            QTextCursor Cut(txtDebugWindow->document());
            Cut.setPosition(static_cast<int>(DocumentCut), QTextCursor::KeepAnchor);
            Cut.removeSelectedText();
            ClockService::Instance().DoEvents();
        }
        QString Shown = NewText;
        Shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        DebugText += NewText;
        QTextCursor End(txtDebugWindow->document());
        End.movePosition(QTextCursor::End);
        End.insertText(Shown);
        // The window stays scrolled to the end.
        txtDebugWindow->moveCursor(QTextCursor::End);
        txtDebugWindow->ensureCursorVisible();
        ClockService::Instance().DoEvents();
    } catch (...) {
        // The input is then simply not shown.
    }
}

void frmDownloader::txtDebugWindow_KeyPress(uint8_t KeyAscii) {
    try {
        if (MonitorPortExecutive::IsMonitorPortOpen() && comMonitorPort->PortOpen()) {
            comMonitorPort->Output(QByteArray(1, static_cast<char>(KeyAscii)));
        } else {
            ErrorDisplay::ShowErrorMessage(QStringLiteral("Monitor port must be open"),
                                           QStringLiteral("Monitor Port Error"));
        }
    } catch (...) {
        ExceptionTypes::ProcessException(6, 20);
    }
}

bool frmDownloader::eventFilter(QObject* Watched, QEvent* Event) {
    if (Watched == txtDebugWindow && Event->type() == QEvent::KeyPress) {
        const auto* Key = static_cast<QKeyEvent*>(Event);
        const QString Text = Key->text();
        // A key that makes a character, as the old KeyPress saw it; keys that
        // only move or scroll stay with the window.
        if (Text.size() == 1 && Text.at(0).unicode() < 256 &&
            (Key->modifiers() & (Qt::AltModifier | Qt::MetaModifier)) == 0) {
            txtDebugWindow_KeyPress(static_cast<uint8_t>(Text.at(0).unicode()));
            return true;
        }
    }
    return QMainWindow::eventFilter(Watched, Event);
}

void frmDownloader::Form_Unload(bool& Cancel) {
    Cancel = false;
    if (GlobalData::GetEditorIsOpen() && EditorShutdown != nullptr) {
        bool CancelUnload = false;
        EditorShutdown->ProcessExit(CancelUnload);
        if (CancelUnload) {
            Cancel = true;
            return;
        }
        EditorShutdown->UnloadEditor();
    }
    SaveGeometry();
    MonitorCapture::CloseCaptureFile();
    DownloadPortExecutive::ClosePorts();
    MonitorPortExecutive::CloseMonitorPort();
    EndProcess();
}

void frmDownloader::EndProcess() {
    Unloaded = true;
    ProcessEnded = true;
    QCoreApplication::exit(0);
}

bool frmDownloader::ProcessHasEnded() { return ProcessEnded; }
void frmDownloader::ResetProcessEnded() { ProcessEnded = false; }

void frmDownloader::SetSimulatedChipWindow(std::function<void()> Show) {
    ShowSimulatedChipWindow = std::move(Show);
}

void frmDownloader::mnuSimulatedChip_Click() {
    if (ShowSimulatedChipWindow) {
        ShowSimulatedChipWindow();
    }
}

void frmDownloader::SetEditorShutdownHandler(EditorShutdownHandler* Handler) {
    EditorShutdown = Handler != nullptr ? Handler : &TheSourceEditorShutdown;
}

void frmDownloader::closeEvent(QCloseEvent* Event) {
    if (Unloaded) {
        Event->accept();
        return;
    }
    bool Cancel = false;
    Form_Unload(Cancel);
    if (Cancel) {
        Event->ignore();
    } else {
        Event->accept();
    }
}

void frmDownloader::ToolBar_ButtonClick(const QString& Key) {
    try {
        if (Key == QStringLiteral("Open")) {
            mnuOpenDownload_Click();
        } else if (Key == QStringLiteral("Editor")) {
            OpenEditor();
        } else if (Key == QStringLiteral("Stop")) {
            cmdPowerDown_Click();
        } else if (Key == QStringLiteral("Run")) {
            cmdExecute_Click();
        } else if (Key == QStringLiteral("Reset")) {
            cmdResetCPU_Click();
        } else if (Key == QStringLiteral("Download")) {
            cmdDownload_Click();
        } else if (Key == QStringLiteral("ClearSerial")) {
            cmdClearWindow_Click();
        } else {
            ErrorDisplay::ProbeError(
                QStringLiteral("Error_1 in frmDownloader.ToolBar_ButtonClick"));
        }
    } catch (...) {
        ExceptionTypes::ProcessException(6, 3);
    }
}

void frmDownloader::OpenEditor() {
    if (GlobalData::GetEditorIsOpen()) {
        return;
    }
    GlobalData::DownloadFilename.clear();
    StatusBarPanels[4]->clear();
    Global<ProjectType>::Unload();
    Project();
    ShowEditor();
}

frmSourceEditor& frmDownloader::ShowEditor() {
    frmSourceEditor& Editor = Global<frmSourceEditor>::Get();
    Editor.DisplayKvbHook = [this](const QString& Filename) { DisplayKVBfilename(Filename); };
    Editor.show();
    return Editor;
}

void frmDownloader::DisplayKVBfilename(const QString& Filename) {
    StatusBarPanels[4]->setText(Filename);
}

void frmDownloader::mnuSetWorkingDirectory_Click() {
    Global<frmWorkPathDefinition>::Get().exec();
    Global<frmWorkPathDefinition>::Unload();
}

void frmDownloader::mnuAbout_Click() {
    Global<frmAbout>::Get().exec();
    Global<frmAbout>::Unload();
}

void frmDownloader::mnuExit_Click() { close(); }

void frmDownloader::cmdClearWindow_Click() {
    KavlinControl1->Text(QString());
    SetDebugWindowText(QString());
}

void frmDownloader::mnuOpenDownload_Click() {
    int32_t FileSizeKVB = 0;
    OpenKVBfile(QString(), FileSizeKVB);
}

void frmDownloader::mnuCaptureToFile_Click() {
    if (MonitorCapture::CaptureWindowIsOpen()) {
        return;
    }
    // Not modal: the capture is watched while the chip runs.
    frmMonitorCapture& Dialog = Global<frmMonitorCapture>::Get();
    Dialog.setParent(this, Qt::Dialog);
    Dialog.show();
}

void frmDownloader::mnuProcessorOptions_Click() {
    frmProcessorOptions& Dialog = Global<frmProcessorOptions>::Get();
    Dialog.setParent(this, Dialog.windowFlags());
    Dialog.exec();
    Global<frmProcessorOptions>::Unload();
}

void frmDownloader::EnableChipMenus(bool Enabled) {
    // The rescue and the ATN diagnostic speak to a serial chip's monitor.
    mnuRescue->setEnabled(Enabled);
    mnuDiagnosticATN->setEnabled(Enabled);
}

void frmDownloader::CheckPortMatchesChip() { DownloadPortExecutive::CheckPortMatchesChip(); }

void frmDownloader::mnuDownloadPortSetup_Click() {
    // The chip model alone decides which port it is.
    if (GlobalData::ChipType == 1) {
        Global<frmDownloadPortParallel>::Get().exec();
        Global<frmDownloadPortParallel>::Unload();
    } else {
        Global<frmDownloadPortSerial>::Get().exec();
        Global<frmDownloadPortSerial>::Unload();
    }
}

void frmDownloader::mnuMonitorPortSetup_Click() {
    frmMonitorPort& Dialog = Global<frmMonitorPort>::Get();
    Dialog.exec();
    Global<frmMonitorPort>::Unload();
}

void frmDownloader::mnuRescue_Click() {
    if (!PortGuard()) {
        return;
    }
    SetDownloaderEnabled(false);
    XSerialDownloader::RescueChip();
    SetDownloaderEnabled(true);
}

void frmDownloader::mnuDiagnosticATN_Click() {
    if (GlobalData::ChipType != 2 && GlobalData::ChipType != 3) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("ATN diagnostic requires KV-20 or KV-30"),
                                       QStringLiteral("Processor Type Error"));
        return;
    }
    frmDiagnosticATN& Dialog = Global<frmDiagnosticATN>::Get();
    Dialog.setParent(this, Dialog.windowFlags());
    Dialog.exec();
    Global<frmDiagnosticATN>::Unload();
}

bool frmDownloader::PortGuard() {
    DownloadPortExecutive::CheckPortMatchesChip();
    if (!DownloadPortExecutive::DownloadPortIsOpen()) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Download port is not open"),
                                       QStringLiteral("Download Port Error"));
        return false;
    }
    return true;
}

void frmDownloader::SetDownloaderEnabled(bool Enable) {
    if (Enable) {
        unsetCursor();
    } else {
        setCursor(Qt::WaitCursor);
    }
    for (int Position = 6; Position <= 9; ++Position) {
        if (QAction* Button = ToolBarButtons.value(Position - 1)) {
            Button->setEnabled(Enable);
        }
    }
    ToolBar->update();
}

void frmDownloader::ShowRunState(const QString& Power, const QString& Run) {
    StatusBarPanels[0]->setText(Power);
    StatusBarPanels[1]->setText(Run);
}

void frmDownloader::tmrEEPROMtimeout_Timer() { ParallelDownloader::tmrEEPROMtimeout_Timer(); }

void frmDownloader::RunKV10LineState(void (*LineState)()) {
    try {
        LineState();
    } catch (...) {
        TakeCurrentException();
        ErrorDisplay::ShowErrorMessage(Err().Description, QStringLiteral("Download Port Error"));
    }
}

void frmDownloader::cmdDownload_Click() {
    if (!PortGuard()) {
        return;
    }
    bool Success = false;
    DownloadProgram(Success);
}

void frmDownloader::DownloadAndExecute() {
    if (!PortGuard()) {
        return;
    }
    bool Success = false;
    DownloadProgram(Success);
    if (Success) {
        ExecuteProgram();
    }
}

void frmDownloader::cmdExecute_Click() {
    if (!PortGuard()) {
        return;
    }
    ExecuteProgram();
}

void frmDownloader::cmdPowerDown_Click() {
    if (!PortGuard()) {
        return;
    }
    SetDownloaderEnabled(false);
    if (GlobalData::ChipType == 1) {
        RunKV10LineState(&ParallelDownloader::PowerDownKV10);
    } else if (GlobalData::ChipType == 2 || GlobalData::ChipType == 3) {
        XSerialDownloader::PowerDownChip();
    }
    SetDownloaderEnabled(true);
    ShowRunState(QStringLiteral("Power is OFF"), QStringLiteral("RESET"));
}

void frmDownloader::cmdResetCPU_Click() {
    if (!PortGuard()) {
        return;
    }
    try {
        SetDownloaderEnabled(false);
        if (GlobalData::ChipType == 1) {
            // A port that cannot be had is told by the trap below.
            ParallelDownloader::ResetKV10();
        } else if (GlobalData::ChipType == 2 || GlobalData::ChipType == 3) {
            XSerialDownloader::ResetChip();
        }
        SetDownloaderEnabled(true);
        ShowRunState(QStringLiteral("Power is ON"), QStringLiteral("RESET"));
    } catch (...) {
        TakeCurrentException();
        SetDownloaderEnabled(true);
        ErrorDisplay::ShowErrorMessage(
            QString::number(Err().Number) + QStringLiteral(", ") + Err().Description,
            QStringLiteral("Reset Error"));
    }
}

void frmDownloader::ShowEditorAndOpenProject(const QString& Path, const QString& Name,
                                             const QString& Extension) {
    ShowEditor().OpenProject(Path, Name, Extension, false);
}

void frmDownloader::OpenProject(const QString& Path, const QString& Name,
                                const QString& Extension) {
    Project().OpenProject(Path, Name, Extension, false);
}

void frmDownloader::CompileAll() {
    // The batch does not look at the result: a compile error is in the log.
    bool Success = false;
    CompilerCentral::CompileAll(Success);
}

void frmDownloader::OpenKVBfile(const QString& Filename) {
    int32_t FileSizeKVB = 0;
    OpenKVBfile(Filename, FileSizeKVB);
}

void frmDownloader::OpenKVBfile(const QString& Filename, int32_t& FileSizeKVB) {
    FileSizeKVB = 0;
    if (!Filename.isEmpty()) {
        GlobalData::DownloadFilename = Filename;
    } else {
        FileDialogRequest Request;
        Request.Title = QStringLiteral("Open Download File");
        Request.Filter = QStringLiteral("Kavlin Studio Binary Files (*.kvb) | *.kvb");
        Request.FilterIndex = 1;
        Request.InitDir = DirectoryCentral::GetWorkPath();
        QString Chosen;
        bool Chose = false;
        try {
            Chose = FileDialogService::Instance().Show(Request, Chosen);
        } catch (...) {
            TakeCurrentException();
        }
        if (!Chose || Chosen.isEmpty()) {
            return;
        }
        GlobalData::DownloadFilename = Chosen;
    }
    QFile File(GlobalData::DownloadFilename);
    if (!UtilitiesFilename::FileExists(GlobalData::DownloadFilename) ||
        !File.open(QIODevice::ReadOnly)) {
        return;
    }
    FileSizeKVB = static_cast<int32_t>(std::min<qint64>(File.size(), INT32_MAX));
    ShowImageSize(FileSizeKVB);
    DisplayKVBfilename(GlobalData::DownloadFilename);
    LoadImage(File, FileSizeKVB);
    File.close();
    SetDebugWindowText(QStringLiteral("\r\n*** Opening file: ") + GlobalData::DownloadFilename +
                       QStringLiteral("\r\n"));
}

void frmDownloader::ShowImageSize(int32_t FileSizeKVB) {
    StatusBarPanels[3]->setText(QStringLiteral(" ") + QString::number(FileSizeKVB) +
                                QStringLiteral(" bytes"));
}

void frmDownloader::LoadImage(QFile& File, int32_t FileSizeKVB) {
    switch (GlobalData::ChipType) {
        case 1:
            ParallelDownloader::ReadProgramString(File, FileSizeKVB);
            break;
        case 2:
        case 3:
            XSerialDownloader::ReadProgramImage(File);
            break;
        default:
            break;
    }
}

bool frmDownloader::OpenDownloadPort() {
    // The port as the settings have it, tried afresh for this batch.
    DownloadPortExecutive::Initialize();
    return DownloadPortExecutive::DownloadPortIsOpen();
}

void frmDownloader::DownloadProgram(bool& Success) {
    const QString Filename = GlobalData::DownloadFilename;
    if (!Filename.isEmpty() && !UtilitiesFilename::FileExists(Filename)) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Missing download file:  ") + Filename,
                                       QStringLiteral("Missing File"));
        return;
    }
    ClearComError();
    int32_t FileSizeKVB = 0;
    QFile File(Filename);
    const bool FileIsOpen = !Filename.isEmpty() && File.open(QIODevice::ReadOnly);
    if (FileIsOpen) {
        FileSizeKVB = static_cast<int32_t>(std::min<qint64>(File.size(), INT32_MAX));
        ShowImageSize(FileSizeKVB);
        DisplayKVBfilename(Filename);
        LoadImage(File, FileSizeKVB);
        File.close();
    }
    SetDebugWindowText(QStringLiteral("\r\n*** Opening file: ") + Filename +
                       QStringLiteral("\r\n"));
    // Said before the chip is touched, and left standing if the download fails.
    ShowRunState(QStringLiteral("Power is ON"), QStringLiteral("RESET"));
    if (!FileIsOpen) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Download file not open"),
                                       QStringLiteral("File Not Open"));
        return;
    }
    if (Filename.isEmpty()) {
        return;
    }
    try {
        // The configuration sent is always the one beside the image.
        const QString Stem = Filename.left(Filename.size() - 3);
        GlobalData::ProjectFilename = Stem + QStringLiteral("kvp");
        XFileExecutivePRF::PRFfilename = Stem + QStringLiteral("prf");
        if (FileSizeKVB == 0) {
            return;
        }
        ProgressBar1->setMinimum(0);
        ProgressBar1->setMaximum(FileSizeKVB);
        AppendToDebugWindow(QStringLiteral("\r\n*** Downloading File\r\n"));
        SetDownloaderEnabled(false);
        bool Downloaded = false;
        switch (GlobalData::ChipType) {
            case 1:
                ParallelDownloader::ParallelDownload(FileSizeKVB, Downloaded);
                break;
            case 2:
                XSerialDownloader::DownloadKV20(FileSizeKVB, Downloaded);
                break;
            case 3:
                XSerialDownloader::DownloadKV30(FileSizeKVB, Downloaded);
                break;
            default:
                ErrorDisplay::ProbeError(
                    QStringLiteral("Error_1 in frmDownloader.cmdDownload_Click"));
                Downloaded = true;
                break;
        }
        if (Downloaded) {
            SetDownloaderEnabled(true);
            Success = true;
            return;
        }
        // The downloader has told its failure; the box below follows it with
        // no error of its own to describe.
        Err().Clear();
    } catch (...) {
        TakeCurrentException();
    }
    Success = false;
    SetDownloaderEnabled(true);
    ErrorDisplay::ShowErrorMessage(QStringLiteral("Download error:\n") + Err().Description,
                                   QStringLiteral("Download Error"));
}

void frmDownloader::ExecuteProgram() {
    SetDownloaderEnabled(false);
    switch (GlobalData::ChipType) {
        case 1:
            RunKV10LineState(&ParallelDownloader::ExecuteKV10);
            break;
        case 2:
        case 3:
            XSerialDownloader::ExecuteChip();
            break;
        default:
            break;
    }
    SetDownloaderEnabled(true);
    ShowRunState(QStringLiteral("Power is ON"), QStringLiteral("RUNNING"));
}

void frmDownloader::UnloadDownloader() {
    bool Cancel = false;
    Form_Unload(Cancel);
}
