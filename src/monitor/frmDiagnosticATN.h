#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>

#include "chip/ChipPackageDrawing.h"

// Lets the user watch the ATN line of the serial cable move with a
// voltmeter. It works on the monitor port, the one left open between
// transfers, and never leaves the line high when it closes.
class frmDiagnosticATN : public QDialog {
    Q_OBJECT
  public:
    frmDiagnosticATN();
    ~frmDiagnosticATN() override;

    ChipPackageDrawing* picKV20;
    ChipPackageDrawing* picKV30;
    QLabel* lblProcedure;
    QLabel* lblStateATN;
    QPushButton* cmdRaiseATN;
    QPushButton* cmdLowerATN;
    QPushButton* cmdOK;

  public slots:
    void cmdRaiseATN_Click();
    void cmdLowerATN_Click();
    void cmdOK_Click();

  private:
    void Form_Load();
    void Form_Unload();
    void SetAtn(bool Value);
    void ShowState();
};
