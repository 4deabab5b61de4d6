#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "frame/DownloadPortInfoType.h"
#include "link/DownloadPortStatusFrame.h"

// Sets up the parallel download port of a KV-10: LPT number, base address
// and whether the system's device is held, and opens or closes it. What the
// buttons and controls change is applied and saved at once.
class frmDownloadPortParallel : public QDialog {
    Q_OBJECT
  public:
    frmDownloadPortParallel();

    void Form_Load();
    void ApplyChanges(bool& Success);

    // The address a text stands for: "&H" hexadecimal or a decimal number,
    // no number 0, cut to 16 bits.
    static int16_t AddressOf(const QString& Text);

    QGroupBox* fraParallelPort;
    QCheckBox* chkPortReserve;
    QLabel* lblParallelPortNumber;
    QComboBox* cboParallelPortNumber;
    QGroupBox* fraParallelPortAddress;
    QRadioButton* optH378;
    QRadioButton* optH278;
    QRadioButton* optH3BC;
    QRadioButton* optH268;
    QRadioButton* optFreeFormat;
    QLabel* lblFreeFormat;
    QLineEdit* txtFreeFormat;
    DownloadPortStatusFrame* fraPortStatus;
    QPushButton* cmdOpenPort;
    QPushButton* cmdClosePort;
    QLabel* lblStatus;
    QPushButton* cmdOK;

  public slots:
    void cmdOpenPort_Click();
    void cmdClosePort_Click();
    void cmdOK_Click();
    // Every control's change: the port closes under it.
    void Control_Change();
    void txtFreeFormat_Change();

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
