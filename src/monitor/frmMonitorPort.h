#pragma once

#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

#include "frame/MonitorPortInfoType.h"

// The monitor port's set-up: port, baud rate, parity, data bits and stop
// bits, and the buttons that open and close it. A change of any setting
// closes the port; opening it again applies and saves the new settings.
class frmMonitorPort : public QDialog {
    Q_OBJECT
  public:
    frmMonitorPort();

    void Form_Load();
    void ShowSettings();
    void ReadSettings();
    void ApplySettings(bool& Success);
    void ClosePortFromDialog();
    void DisplayPortStatus(bool IsOpen);

    QLabel* lblPortNumber;
    QLabel* lblBaudRate;
    QLabel* lblParity;
    QLabel* lblDataBits;
    QLabel* lblStopBits;
    QComboBox* cboPortNumber;
    QComboBox* cboBaudRate;
    QComboBox* cboParity;
    QComboBox* cboDataBits;
    QComboBox* cboStopBits;
    QGroupBox* Frame2;
    QPushButton* cmdOpenPort;
    QPushButton* cmdClosePort;
    QLabel* lblStatusCaption;
    QLabel* lblStatus;
    QPushButton* cmdOK;

    const MonitorPortInfoType& DialogInfo() const { return Info; }

  public slots:
    void cmdOpenPort_Click();
    void cmdClosePort_Click();
    void cmdOK_Click();
    // Any of the five lists clicked by the user.
    void cboSetting_Click();

  private:
    MonitorPortInfoType Info;
    bool ControlsArmed = false;
};
