#pragma once

#include <QComboBox>
#include <QLabel>
#include <QList>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QWidget>
#include <cstdint>
#include <vector>

#include "monitor/KvmFile.h"

// "Watch List": the values of the program's variables, sampled from the
// chip's RAM at the chosen period while the program runs. The serial link is
// the window's while it is open: the monitor port stays closed and its set-up
// menu entry disabled until the window closes.
class frmWatchWindow : public QWidget {
    Q_OBJECT
  public:
    frmWatchWindow();
    ~frmWatchWindow() override;

    void Form_Load();
    void Form_Activate();
    void Form_Deactivate();
    void ProcessKvmFile();
    void RefreshValues();
    void StopWatching();
    void SetWatchTextEnabled(bool IsEnabled);

    bool KvmIsLoaded() const { return KvmIsLoaded_; }
    const QList<KvmEntry>& KvmEntries() const { return KvmEntries_; }
    // The chip's RAM as the last sample left it, indexed by address.
    const std::vector<uint8_t>& RamImage() const { return RamImage_; }

    QLabel* Label1;
    QComboBox* WatchTimeCombo;
    QTimer* WatchTimer;
    QListWidget* lstWatchList;
    QPlainTextEdit* txtWatchText;
    QPushButton* CloseWatch;

  public slots:
    void CloseWatch_Click();
    void WatchTimeCombo_Click(int Index);
    void WatchTimer_Timer();

  protected:
    bool event(QEvent* Event) override;
    void closeEvent(QCloseEvent* Event) override;

  private:
    // The window goes with its global slot, once its own event has ended.
    void Unload();
    void EnableMonitorPortSetup(bool Enable);

    bool KvmIsLoaded_ = false;
    QList<KvmEntry> KvmEntries_;
    std::vector<uint8_t> RamImage_;
    // Closing from code (the close button) has stopped watching already.
    bool ClosingFromCode = false;
};
