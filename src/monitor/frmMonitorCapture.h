#pragma once

#include <QColor>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

// Starts and stops the capture of the monitor port to a file and shows its
// size. The capture itself (MonitorCapture) goes on when this closes, and
// opening the dialog again finds it.
class frmMonitorCapture : public QDialog {
    Q_OBJECT
  public:
    frmMonitorCapture();
    ~frmMonitorCapture() override;

    void Form_Load();
    void SetFilenameDisplay(const QString& Filename);
    void ShowCaptureState();
    void ResetCaptureDisplay();

    QGroupBox* Frame1;
    QPushButton* cmdCreateCaptureFile;
    QPushButton* cmdCloseFile;
    QLabel* lblFilename;
    QLineEdit* txtFilename;
    QLabel* lblFileSize;
    QLabel* lblStatus;
    QTimer* tmrFileSizeMonitor;
    QPushButton* cmdOK;

  public slots:
    void cmdCreateCaptureFile_Click();
    void cmdCloseFile_Click();
    void tmrFileSizeMonitor_Timer();
    void cmdOK_Click();

  protected:
    void closeEvent(QCloseEvent* Event) override;

  private:
    // The dialog is unloaded; it is deleted once its own event has ended.
    void Unload();
    void ShowRecording();

    QColor FilenameBackground;
    QColor FormBackground;
};
