#pragma once

#include <QAction>
#include <QFile>
#include <QFrame>
#include <QLabel>
#include <QMainWindow>
#include <QMap>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QToolBar>
#include <QVector>
#include <functional>
#include <memory>

#include "chip/ProcessorOptionsHost.h"
#include "frame/CommandLineInterpreter.h"
#include "frame/FormGeometry.h"
#include "frame/WindowGeometry.h"
#include "link/KavlinControl.h"
#include "link/ParallelDownloader.h"
#include "platform/SerialPortObject.h"

// How the downloader reaches an open editor at shutdown without loading one.
class EditorShutdownHandler {
  public:
    virtual ~EditorShutdownHandler() = default;
    // Asks to save changed modules; CancelUnload True keeps everything open.
    virtual void ProcessExit(bool& CancelUnload) = 0;
    virtual void UnloadEditor() = 0;
};

// The system's first window: its Form_Load is the entry of the process and
// owns the order of start-up; closing it ends the process.
class frmDownloader : public QMainWindow,
                      public CommandLineInterpreter::CommandLineHost,
                      public ProcessorOptionsHost {
    Q_OBJECT
  public:
    frmDownloader();
    ~frmDownloader() override;

    void Form_Load();
    // Returns with Cancel True when the editor's prompt was cancelled.
    void Form_Unload(bool& Cancel);
    void InitializeForm();
    void RestoreGeometry();
    void InitializeChipType();
    void SaveGeometry();
    void ClearComError() override;
    // Shows or hides the line error frame, touching it only when that changes.
    void UpdateComErrorIndicator();
    // Adds the text at the end of the monitor window, which is kept within
    // 16000 characters by dropping its first 4096 at a time.
    void AppendToDebugWindow(const QString& NewText);
    // A character typed into the monitor window goes to the chip.
    void txtDebugWindow_KeyPress(uint8_t KeyAscii);
    // A line event of the monitor port (CommEvents).
    void comMonitorPort_OnComm(int32_t CommEvent);
    // The monitor window's text as it stands, a line break counting as CR LF.
    const QString& DebugWindowText() const { return DebugText; }
    // Replaces the monitor window's text.
    void SetDebugWindowText(const QString& Text);
    bool ComErrorIsLatched() const { return ComErrorLatched; }
    // Panel 5 shows the image's file name.
    void DisplayKVBfilename(const QString& Filename);
    // The window's geometry in twips.
    FormGeometry CurrentGeometry() const;

    // The process is over: the window was unloaded. The event loop, if it
    // runs, is told to quit; main() looks at this before it starts one.
    static bool ProcessHasEnded();
    static void ResetProcessEnded();
    static void SetEditorShutdownHandler(EditorShutdownHandler* Handler);
    // The I/O Ports menu offers the simulated chip's window when the program
    // has one to show; nothing here knows the window itself.
    static void SetSimulatedChipWindow(std::function<void()> Show);

    // CommandLineHost
    void ShowEditorAndOpenProject(const QString& Path, const QString& Name,
                                  const QString& Extension) override;
    void OpenProject(const QString& Path, const QString& Name, const QString& Extension) override;
    void CompileAll() override;
    void OpenKVBfile(const QString& Filename) override;
    // Loads the image (the file dialog when Filename is empty) and shows its
    // size and name; FileSizeKVB 0 when nothing was loaded.
    void OpenKVBfile(const QString& Filename, int32_t& FileSizeKVB);
    // Download, and on success start the chip.
    void DownloadAndExecute();
    // The enable rule: Stop, Run, Reset and Download follow Enable; the
    // pointer is the hourglass while they are off.
    void SetDownloaderEnabled(bool Enable);
    bool OpenDownloadPort() override;
    void DownloadProgram(bool& Success) override;
    void ExecuteProgram() override;
    void UnloadDownloader() override;

    // ProcessorOptionsHost
    void EnableChipMenus(bool Enabled) override;
    void CheckPortMatchesChip() override;

    QMenu* mnuFile;
    QAction* mnuOpenDownload;
    QAction* mnuSetWorkingDirectory;
    QAction* mnuCaptureToFile;
    QAction* mnuExit;
    QAction* mnuProcessorOptions;
    QMenu* mnuDownloadPort;
    QAction* mnuDownloadPortSetup;
    QAction* mnuMonitorPortSetup;
    QAction* mnuSimulatedChip;
    QMenu* mnuDiagnostics;
    QAction* mnuRescue;
    QAction* mnuDiagnosticATN;
    QAction* mnuAbout;

    QToolBar* ToolBar;
    // The tool bar's buttons by position from 1, separators included.
    QVector<QAction*> ToolBarButtons;
    QAction* ToolBarButton(const QString& Key) const;

    QPlainTextEdit* txtDebugWindow;
    // The serial chip link, with its status box and progress bar.
    KavlinControl* KavlinControl1;
    QVector<QLabel*> StatusBarPanels;
    QProgressBar* ProgressBar1;
    // Access keys Alt+D, Alt+E, Alt+S, Alt+R, Alt+C.
    QAction* cmdDownload;
    QAction* cmdExecute;
    QAction* cmdPowerDown;
    QAction* cmdResetCPU;
    QAction* cmdClearWindow;

    // The monitor port and its poll.
    SerialPortObject* comMonitorPort;
    QTimer* tmrSerialInputPoller;
    // The watchdog of the KV-10 download's EEPROM waits; off at design.
    QTimer* tmrEEPROMtimeout;
    QFrame* fraComDataError;
    QLabel* picComErrorIndicator;
    QLabel* lblComStatus;
    QPushButton* cmdClearComError;

  public slots:
    void ToolBar_ButtonClick(const QString& Key);
    void mnuOpenDownload_Click();
    void mnuSetWorkingDirectory_Click();
    void mnuCaptureToFile_Click();
    void mnuExit_Click();
    void mnuProcessorOptions_Click();
    void mnuDownloadPortSetup_Click();
    void mnuMonitorPortSetup_Click();
    void mnuSimulatedChip_Click();
    void mnuRescue_Click();
    void mnuDiagnosticATN_Click();
    void mnuAbout_Click();
    void cmdDownload_Click();
    void cmdExecute_Click();
    void cmdPowerDown_Click();
    void cmdResetCPU_Click();
    void cmdClearWindow_Click();
    void cmdClearComError_Click();
    void tmrSerialInputPoller_Timer();
    void tmrEEPROMtimeout_Timer();

  protected:
    void closeEvent(QCloseEvent* Event) override;
    bool eventFilter(QObject* Watched, QEvent* Event) override;

  private:
    // Every command on the chip asks first: a port of the wrong kind is
    // closed, and a closed port is told. False: do nothing more.
    bool PortGuard();
    void ShowRunState(const QString& Power, const QString& Run);
    void ShowImageSize(int32_t FileSizeKVB);
    // Holds the image as the chip model wants it.
    void LoadImage(QFile& File, int32_t FileSizeKVB);
    // A KV-10 line state; a port that cannot be had is told in a box.
    void RunKV10LineState(void (*LineState)());
    void BuildMenus();
    void BuildToolBar();
    void BuildStatusBar();
    void OpenEditor();
    class frmSourceEditor& ShowEditor();
    void EndProcess();

    bool ComErrorLatched = false;
    bool ComErrorShownOnce = false;
    bool ComErrorShown = false;
    bool Unloaded = false;
    // The poll is running: a tick under its own box or event pump waits.
    bool Polling = false;
    QString DebugText;
    WindowGeometry Placement;
    // tmrEEPROMtimeout as the KV-10 programmer's watchdog.
    std::unique_ptr<ParallelDownloader::EEPROMTimer> EEPROMWatchdog;
};
