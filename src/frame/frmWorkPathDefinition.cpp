#include "frame/frmWorkPathDefinition.h"

#include <QDir>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QStorageInfo>
#include <QVBoxLayout>

#include "frame/DirectoryCentral.h"
#include "frame/ErrorDisplay.h"
#include "frame/RegistryCentral.h"
#include "frame/TwipsConversion.h"
#include "frame/UtilitiesFilename.h"

DirectoryList::DirectoryList(QWidget* Parent) : QListWidget(Parent) {
    connect(this, &QListWidget::itemDoubleClicked, this,
            [this](QListWidgetItem* Item) { SetPath(EntryPath(Item)); });
}

void DirectoryList::SetPath(const QString& Path) {
    QDir Directory(UtilitiesFilename::LocalFilename(Path));
    if (Path.isEmpty() || !Directory.exists()) {
        Directory = QDir::current();
    }
    Path_ = QDir::cleanPath(Directory.absolutePath());
    clear();
    if (!Directory.isRoot()) {
        addItem(QStringLiteral(".."));
    }
    for (const QString& Entry :
         Directory.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase)) {
        addItem(Entry);
    }
    emit Change();
}

QString DirectoryList::EntryPath(const QListWidgetItem* Item) const {
    if (Item == nullptr) {
        return Path_;
    }
    return QDir::cleanPath(QDir(Path_).absoluteFilePath(Item->text()));
}

frmWorkPathDefinition::frmWorkPathDefinition() {
    setObjectName(QStringLiteral("frmWorkPathDefinition"));
    setWindowTitle(QStringLiteral("Starting Directory"));
    txtWorkPath = new QLineEdit(this);
    txtWorkPath->setObjectName(QStringLiteral("txtWorkPath"));
    // The text box is never narrower than 3135 twips; the layout widens it with the window.
    txtWorkPath->setMinimumWidth(TwipsConversion::TwipsToPixelsX(3135));
    drvWorkPath = new QComboBox(this);
    drvWorkPath->setObjectName(QStringLiteral("drvWorkPath"));
    dirWorkPath = new DirectoryList(this);
    dirWorkPath->setObjectName(QStringLiteral("dirWorkPath"));
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));

    QStringList Roots{QStringLiteral("/")};
    for (const QStorageInfo& Volume : QStorageInfo::mountedVolumes()) {
        if (Volume.isValid() && Volume.isReady() && !Roots.contains(Volume.rootPath())) {
            Roots << Volume.rootPath();
        }
    }
    drvWorkPath->addItems(Roots);

    auto* Buttons = new QHBoxLayout;
    Buttons->addStretch();
    Buttons->addWidget(cmdOK);
    Buttons->addWidget(cmdCancel);
    auto* Layout = new QVBoxLayout(this);
    Layout->addWidget(txtWorkPath);
    Layout->addWidget(drvWorkPath);
    Layout->addWidget(dirWorkPath);
    Layout->addLayout(Buttons);

    // On load: the stored work path, in the text and in both lists.
    txtWorkPath->setText(RegistryCentral::RegistryGetWorkDir());
    dirWorkPath->SetPath(txtWorkPath->text());
    // The drive is the volume whose root is the longest start of the list's path.
    int DriveIndex = 0;
    for (int Index = 0; Index < drvWorkPath->count(); ++Index) {
        const QString Root = drvWorkPath->itemText(Index);
        if (dirWorkPath->Path().startsWith(Root) &&
            Root.size() > drvWorkPath->itemText(DriveIndex).size()) {
            DriveIndex = Index;
        }
    }
    drvWorkPath->setCurrentIndex(DriveIndex);

    connect(drvWorkPath, &QComboBox::currentIndexChanged, this,
            &frmWorkPathDefinition::drvWorkPath_Change);
    connect(dirWorkPath, &DirectoryList::Change, this, &frmWorkPathDefinition::dirWorkPath_Change);
    connect(dirWorkPath, &QListWidget::itemClicked, this,
            &frmWorkPathDefinition::dirWorkPath_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmWorkPathDefinition::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmWorkPathDefinition::cmdCancel_Click);
}

void frmWorkPathDefinition::drvWorkPath_Change() {
    dirWorkPath->SetPath(drvWorkPath->currentText());
}

void frmWorkPathDefinition::dirWorkPath_Change() { txtWorkPath->setText(dirWorkPath->Path()); }

void frmWorkPathDefinition::dirWorkPath_Click(QListWidgetItem* Item) {
    txtWorkPath->setText(dirWorkPath->EntryPath(Item));
}

void frmWorkPathDefinition::cmdOK_Click() {
    const QString Path = UtilitiesFilename::GetAbsolutePath(txtWorkPath->text());
    if (UtilitiesFilename::DirectoryExists(Path)) {
        DirectoryCentral::SetWorkPath(Path);
        RegistryCentral::RegistrySaveWorkDir(DirectoryCentral::GetWorkPath());
        accept();
        return;
    }
    txtWorkPath->setFocus();
    ErrorDisplay::ShowErrorMessage(QStringLiteral("Error -- unable to find path ") + Path,
                                   QStringLiteral("Starting Path Error"));
}

void frmWorkPathDefinition::cmdCancel_Click() { reject(); }
