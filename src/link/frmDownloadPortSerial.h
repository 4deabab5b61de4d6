#pragma once

#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

#include "frame/DownloadPortInfoType.h"
#include "link/DownloadPortStatusFrame.h"

// Sets up the serial download port of a KV-20 or KV-30, and opens or closes
// it. What the buttons and controls change is applied and saved at once.
class frmDownloadPortSerial : public QDialog {
    Q_OBJECT
  public:
    frmDownloadPortSerial();

    void Form_Load();
    void ApplyChanges(bool& Success);

    QGroupBox* fraSerialPort;
    QLabel* lblSerialPortNumber;
    // The entries hold their port numbers as data: the simulated chip's 99
    // stands at the end, not at its position.
    QComboBox* cboSerialPortNumber;
    DownloadPortStatusFrame* fraPortStatus;
    QPushButton* cmdOpenPort;
    QPushButton* cmdClosePort;
    QLabel* lblStatus;
    QPushButton* cmdOK;

  public slots:
    void cmdOpenPort_Click();
    void cmdClosePort_Click();
    void cmdOK_Click();
    void cboSerialPortNumber_Click();

  private:
    void FillControls();
    void ReadControls();
    void ShowStatus();
    // The open or close of the buttons and of a changed control.
    void ApplyWithPortDefined(bool Defined);

    DownloadPortInfoType LocalPort;
    // False while code fills the controls, so that their events do nothing.
    bool ControlsAreLive = false;
};
