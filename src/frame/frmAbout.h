#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>

// The about box of both top-level windows.
class frmAbout : public QDialog {
    Q_OBJECT
  public:
    frmAbout();

    QLabel* lblTitle;
    QLabel* lblDescription;
    QLabel* lblVersionType;
    QLabel* lblCopyrightNotice;
    QPushButton* cmdOK;
    QPushButton* cmdSysInfo;

  public slots:
    void cmdOK_Click();
    void cmdSysInfo_Click();
};
