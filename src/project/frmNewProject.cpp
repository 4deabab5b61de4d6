#include "project/frmNewProject.h"

#include <QGridLayout>
#include <QHBoxLayout>

#include "frame/DirectoryCentral.h"
#include "frame/frmWorkPathDefinition.h"
#include "platform/Global.h"
#include "project/ProjectType.h"

namespace {
const QString DefaultModuleName = QStringLiteral("Module1");
}  // namespace

frmNewProject::frmNewProject() {
    setObjectName(QStringLiteral("frmNewProject"));
    setWindowTitle(QStringLiteral("New Project"));
    auto* lblProjectDirectory = new QLabel(QStringLiteral("Directory"), this);
    txtProjectDirectory = new QLineEdit(this);
    txtProjectDirectory->setObjectName(QStringLiteral("txtProjectDirectory"));
    cmdChangeDirectory = new QPushButton(QStringLiteral("Change &Directory..."), this);
    cmdChangeDirectory->setObjectName(QStringLiteral("cmdChangeDirectory"));
    auto* lblNewProjectName = new QLabel(QStringLiteral("Project name"), this);
    txtNewProjectName = new QLineEdit(this);
    txtNewProjectName->setObjectName(QStringLiteral("txtNewProjectName"));
    chkIncludeModule = new QCheckBox(QStringLiteral("&Include a first module"), this);
    chkIncludeModule->setObjectName(QStringLiteral("chkIncludeModule"));
    lblModuleName = new QLabel(QStringLiteral("Module name"), this);
    lblModuleName->setObjectName(QStringLiteral("lblModuleName"));
    txtModuleName = new QLineEdit(this);
    txtModuleName->setObjectName(QStringLiteral("txtModuleName"));
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setAutoDefault(false);
    cmdChangeDirectory->setAutoDefault(false);

    auto* Grid = new QGridLayout(this);
    Grid->addWidget(lblProjectDirectory, 0, 0);
    Grid->addWidget(txtProjectDirectory, 0, 1);
    Grid->addWidget(cmdChangeDirectory, 0, 2);
    Grid->addWidget(lblNewProjectName, 1, 0);
    Grid->addWidget(txtNewProjectName, 1, 1, 1, 2);
    Grid->addWidget(chkIncludeModule, 2, 0, 1, 3);
    Grid->addWidget(lblModuleName, 3, 0);
    Grid->addWidget(txtModuleName, 3, 1, 1, 2);
    auto* Buttons = new QHBoxLayout();
    Buttons->addStretch(1);
    Buttons->addWidget(cmdOK);
    Buttons->addWidget(cmdCancel);
    Grid->addLayout(Buttons, 4, 0, 1, 3);
    Grid->setColumnStretch(1, 1);
    txtProjectDirectory->setMinimumWidth(260);

    OpenProject = [](const QString& Path, const QString& Name, const QString& Extension,
                     bool IsNewProject) {
        Global<ProjectType>::Unload();
        Project().OpenProject(Path, Name, Extension, IsNewProject);
    };
    connect(chkIncludeModule, &QCheckBox::clicked, this, &frmNewProject::chkIncludeModule_Click);
    connect(cmdChangeDirectory, &QPushButton::clicked, this,
            &frmNewProject::cmdChangeDirectory_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmNewProject::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmNewProject::cmdCancel_Click);
    Form_Load();
}

frmNewProject::~frmNewProject() {
    // Deleted with its owner, the editor: the next use makes a fresh one.
    Global<frmNewProject>::Forget(this);
}

void frmNewProject::Form_Load() {
    txtNewProjectName->setText(QStringLiteral("Project1"));
    txtModuleName->setText(DefaultModuleName);
    chkIncludeModule->setChecked(true);
    txtProjectDirectory->setText(DirectoryCentral::GetWorkPath());
}

void frmNewProject::chkIncludeModule_Click() {
    const bool Include = chkIncludeModule->isChecked();
    lblModuleName->setEnabled(Include);
    txtModuleName->setEnabled(Include);
    txtModuleName->setText(Include ? DefaultModuleName : QString());
}

void frmNewProject::cmdChangeDirectory_Click() {
    // The directory chosen here becomes the work path itself.
    Global<frmWorkPathDefinition>::Get().exec();
    Global<frmWorkPathDefinition>::Unload();
    txtProjectDirectory->setText(DirectoryCentral::GetWorkPath());
}

void frmNewProject::cmdOK_Click() {
    NewProjectModel::NewProjectRequest Request;
    Request.Directory = txtProjectDirectory->text();
    Request.ProjectName = txtNewProjectName->text();
    Request.IncludeModule = chkIncludeModule->isChecked();
    Request.ModuleName = txtModuleName->text();
    const auto Outcome = NewProjectModel::CreateProject(Request, OpenProject);
    switch (Outcome) {
        case NewProjectModel::NewProjectOutcome::Created:
            Unload();
            break;
        case NewProjectModel::NewProjectOutcome::FixProjectName:
            txtNewProjectName->setFocus();
            break;
        case NewProjectModel::NewProjectOutcome::FixModuleName:
            txtModuleName->setFocus();
            break;
        case NewProjectModel::NewProjectOutcome::Stay:
            break;
    }
}

void frmNewProject::cmdCancel_Click() { Unload(); }
