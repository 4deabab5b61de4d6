#include "project/frmProjectFiles.h"

#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "platform/FileDialogService.h"
#include "platform/Global.h"
#include "project/ProjectFilesModel.h"
#include "project/ProjectType.h"

namespace {
QPushButton* Button(QWidget* Parent, const char* Name, const char* Caption) {
    auto* Made = new QPushButton(QString::fromLatin1(Caption), Parent);
    Made->setObjectName(QString::fromLatin1(Name));
    Made->setAutoDefault(false);
    return Made;
}
}  // namespace

frmProjectFiles::frmProjectFiles() {
    setObjectName(QStringLiteral("frmProjectFiles"));
    fraProjectFiles = new QGroupBox(QStringLiteral("Modules"), this);
    fraProjectFiles->setObjectName(QStringLiteral("fraProjectFiles"));
    lstProjectFiles = new QListWidget(fraProjectFiles);
    lstProjectFiles->setObjectName(QStringLiteral("lstProjectFiles"));
    cmdAddPrjFile = Button(fraProjectFiles, "cmdAddPrjFile", "&Add...");
    cmdRemovePrjFile = Button(fraProjectFiles, "cmdRemovePrjFile", "&Remove");
    cmdPrjFilesOk = Button(this, "cmdPrjFilesOk", "OK");
    cmdPrjFilesCancel = Button(this, "cmdPrjFilesCancel", "Cancel");

    auto* Frame = new QVBoxLayout(fraProjectFiles);
    Frame->addWidget(lstProjectFiles, 1);
    auto* FrameButtons = new QHBoxLayout();
    FrameButtons->addWidget(cmdAddPrjFile);
    FrameButtons->addWidget(cmdRemovePrjFile);
    FrameButtons->addStretch(1);
    Frame->addLayout(FrameButtons);
    auto* Layout = new QVBoxLayout(this);
    Layout->addWidget(fraProjectFiles, 1);
    auto* Buttons = new QHBoxLayout();
    Buttons->addStretch(1);
    Buttons->addWidget(cmdPrjFilesOk);
    Buttons->addWidget(cmdPrjFilesCancel);
    Layout->addLayout(Buttons);
    // Room for a module's full name.
    lstProjectFiles->setMinimumWidth(360);

    connect(cmdAddPrjFile, &QPushButton::clicked, this, &frmProjectFiles::cmdAddPrjFile_Click);
    connect(cmdRemovePrjFile, &QPushButton::clicked, this,
            &frmProjectFiles::cmdRemovePrjFile_Click);
    connect(cmdPrjFilesOk, &QPushButton::clicked, this, &frmProjectFiles::cmdPrjFilesOk_Click);
    connect(cmdPrjFilesCancel, &QPushButton::clicked, this,
            &frmProjectFiles::cmdPrjFilesCancel_Click);
    Form_Load();
}

frmProjectFiles::~frmProjectFiles() {
    // Deleted with its owner, the editor: the next use makes a fresh one.
    Global<frmProjectFiles>::Forget(this);
}

void frmProjectFiles::Form_Load() {
    setWindowTitle(Project().Name());
    RefreshList();
}

void frmProjectFiles::RefreshList() {
    lstProjectFiles->clear();
    lstProjectFiles->addItems(ProjectFilesModel::ModuleLines());
}

void frmProjectFiles::cmdAddPrjFile_Click() {
    QString Filename;
    if (!FileDialogService::Instance().Show(ProjectFilesModel::AddModuleRequest(), Filename)) {
        return;
    }
    if (ProjectFilesModel::AddModule(Filename)) {
        RefreshList();
    }
}

void frmProjectFiles::cmdRemovePrjFile_Click() {
    // The selected line, counted from 1; none is 0.
    const QList<QListWidgetItem*> Selected = lstProjectFiles->selectedItems();
    const int Number = Selected.isEmpty() ? 0 : lstProjectFiles->row(Selected.first()) + 1;
    switch (ProjectFilesModel::RemoveModule(lstProjectFiles->count(), Number)) {
        case ProjectFilesModel::RemoveOutcome::NothingToRemove:
        case ProjectFilesModel::RemoveOutcome::Cancelled:
            break;
        case ProjectFilesModel::RemoveOutcome::NoSelection:
            QApplication::beep();
            RefreshList();
            break;
        case ProjectFilesModel::RemoveOutcome::Removed:
            delete lstProjectFiles->takeItem(Number - 1);
            RefreshList();
            break;
    }
}

void frmProjectFiles::cmdPrjFilesOk_Click() {
    Project().SaveFileKVP();
    Unload();
}

// The changes are in the project and its file already: nothing to undo.
void frmProjectFiles::cmdPrjFilesCancel_Click() { Unload(); }
