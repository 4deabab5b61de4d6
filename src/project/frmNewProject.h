#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "frame/UnloadingDialog.h"
#include "project/NewProjectModel.h"

// Makes a new project in a directory, with its first module unless the user
// leaves it out. Shown not modally by the editor, which owns it; it unloads
// when it closes.
class frmNewProject : public UnloadingDialog<frmNewProject> {
    Q_OBJECT
  public:
    frmNewProject();
    ~frmNewProject() override;

    QLineEdit* txtProjectDirectory;
    QPushButton* cmdChangeDirectory;
    QLineEdit* txtNewProjectName;
    QCheckBox* chkIncludeModule;
    QLabel* lblModuleName;
    QLineEdit* txtModuleName;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
    // How the project is opened: the editor's OpenProject, which also shows
    // the name in its caption; by default the global project is replaced.
    NewProjectModel::OpenProjectFunction OpenProject;

  public slots:
    void chkIncludeModule_Click();
    void cmdChangeDirectory_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

  private:
    void Form_Load();
};
