#include "chip/frmProcessorOptions.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "chip/ProcessorOptionsHost.h"
#include "frame/ErrorDisplay.h"
#include "frame/GlobalData.h"
#include "frame/RegistryCentral.h"

frmProcessorOptions::frmProcessorOptions() {
    setObjectName(QStringLiteral("frmProcessorOptions"));
    setWindowTitle(QStringLiteral("Processor Type"));
    setModal(true);

    Frame1 = new QGroupBox(QStringLiteral("Processor Type"), this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    auto Option = [this](const char* Name, const char* Caption) {
        auto* Button = new QRadioButton(QString::fromLatin1(Caption), Frame1);
        Button->setObjectName(QString::fromLatin1(Name));
        return Button;
    };
    optKV10 = Option("optKV10", "KV-&10");
    optKV20 = Option("optKV20", "KV-&20");
    optKV30 = Option("optKV30", "KV-&30");
    Options = new QButtonGroup(this);
    for (QRadioButton* Button : {optKV10, optKV20, optKV30}) {
        Options->addButton(Button);
    }
    auto* Choices = new QVBoxLayout(Frame1);
    Choices->addWidget(optKV10);
    Choices->addWidget(optKV20);
    Choices->addWidget(optKV30);

    cmdOK = new QPushButton(QStringLiteral("&OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    auto* Buttons = new QVBoxLayout;
    Buttons->addWidget(cmdOK);
    Buttons->addWidget(cmdCancel);
    Buttons->addStretch(1);
    auto* Layout = new QHBoxLayout(this);
    Layout->addWidget(Frame1, 1);
    Layout->addLayout(Buttons);

    connect(cmdOK, &QPushButton::clicked, this, &frmProcessorOptions::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmProcessorOptions::cmdCancel_Click);
    Form_Load();
}

void frmProcessorOptions::Form_Load() {
    // All three off first: the group lets none be off while it is exclusive.
    Options->setExclusive(false);
    for (QAbstractButton* Button : Options->buttons()) {
        Button->setChecked(false);
    }
    switch (GlobalData::ChipType) {
        case 1:
            optKV10->setChecked(true);
            break;
        case 2:
            optKV20->setChecked(true);
            break;
        case 3:
            optKV30->setChecked(true);
            break;
        default:
            optKV20->setChecked(true);
            ErrorDisplay::ProbeError(QStringLiteral("Error_1 in frmProcessorOptions.Form_Load"));
            break;
    }
    Options->setExclusive(true);
}

void frmProcessorOptions::cmdOK_Click() {
    bool SerialChip = true;
    if (optKV10->isChecked()) {
        GlobalData::ChipType = 1;
        SerialChip = false;
    } else if (optKV20->isChecked()) {
        GlobalData::ChipType = 2;
    } else if (optKV30->isChecked()) {
        GlobalData::ChipType = 3;
    } else {
        GlobalData::ChipType = 2;
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in frmProcessorOptions.cmdOK_Click"));
    }
    ProcessorOptionsHost* Host = ProcessorOptionsHost::Instance();
    if (Host != nullptr) {
        Host->EnableChipMenus(SerialChip);
    }
    RegistryCentral::RegistrySaveChipType(GlobalData::ChipType);
    // A KV-10 is programmed through the parallel port, the others through a serial one.
    if (Host != nullptr) {
        Host->CheckPortMatchesChip();
    }
    UnloadForm(true);
}

void frmProcessorOptions::cmdCancel_Click() { UnloadForm(false); }

void frmProcessorOptions::UnloadForm(bool Accepted) {
    if (Accepted) {
        accept();
    } else {
        reject();
    }
}
