#pragma once

#include <QGroupBox>
#include <QListWidget>
#include <QPushButton>

#include "frame/UnloadingDialog.h"

// The open project's module files: adds a module (made if it is new) and
// removes one. Each change is in the project and its file at once, so
// Cancel undoes nothing. Shown not modally by the editor, which owns it.
class frmProjectFiles : public UnloadingDialog<frmProjectFiles> {
    Q_OBJECT
  public:
    frmProjectFiles();
    ~frmProjectFiles() override;

    QGroupBox* fraProjectFiles;
    QListWidget* lstProjectFiles;
    QPushButton* cmdAddPrjFile;
    QPushButton* cmdRemovePrjFile;
    QPushButton* cmdPrjFilesOk;
    QPushButton* cmdPrjFilesCancel;

    // The list from the project's modules.
    void RefreshList();

  public slots:
    void cmdAddPrjFile_Click();
    void cmdRemovePrjFile_Click();
    void cmdPrjFilesOk_Click();
    void cmdPrjFilesCancel_Click();

  private:
    void Form_Load();
};
