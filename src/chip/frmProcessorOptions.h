#pragma once

#include <QButtonGroup>
#include <QDialog>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>

// The choice of chip model, for all projects: ChipType, kept in the settings.
class frmProcessorOptions : public QDialog {
    Q_OBJECT
  public:
    frmProcessorOptions();

    QGroupBox* Frame1;
    QRadioButton* optKV10;
    QRadioButton* optKV20;
    QRadioButton* optKV30;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

  public slots:
    void cmdOK_Click();
    void cmdCancel_Click();

  private:
    void Form_Load();
    void UnloadForm(bool Accepted);

    QButtonGroup* Options;
};
