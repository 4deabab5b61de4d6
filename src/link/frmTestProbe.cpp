#include "link/frmTestProbe.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "platform/MessageBoxService.h"

frmTestProbe::frmTestProbe() {
    setObjectName(QStringLiteral("frmTestProbe"));
    setWindowTitle(QStringLiteral("Test Probe"));
    lstMessageLog = new QListWidget(this);
    lstMessageLog->setObjectName(QStringLiteral("lstMessageLog"));
    cmdClear = new QPushButton(QStringLiteral("&Clear"), this);
    cmdClear->setObjectName(QStringLiteral("cmdClear"));
    cmdTest = new QPushButton(QStringLiteral("&Test"), this);
    cmdTest->setObjectName(QStringLiteral("cmdTest"));
    auto* Buttons = new QHBoxLayout;
    Buttons->addStretch(1);
    Buttons->addWidget(cmdClear);
    Buttons->addWidget(cmdTest);
    auto* Layout = new QVBoxLayout(this);
    Layout->addWidget(lstMessageLog, 1);
    Layout->addLayout(Buttons);
    connect(cmdClear, &QPushButton::clicked, this, &frmTestProbe::cmdClear_Click);
    connect(cmdTest, &QPushButton::clicked, this, &frmTestProbe::cmdTest_Click);
    Form_Load();
}

void frmTestProbe::Form_Load() { CancelErrorBoxes = false; }

void frmTestProbe::Message(const QString& Text) { lstMessageLog->addItem(Text); }

void frmTestProbe::ErrorMessage(const QString& Text) {
    Message(Text);
    if (CancelErrorBoxes) {
        return;
    }
    const int Answer = MessageBoxService::Instance().Show(
        Text + QStringLiteral("\n\nCancel future error message boxes?"),
        QStringLiteral("Internal Error Detected"), MsgBoxButtons::YesNo, MsgBoxIcon::Critical);
    CancelErrorBoxes = Answer == vbYes;
}

void frmTestProbe::Pass(int32_t Number) {
    Message(QStringLiteral("pass ") + QString::number(Number));
}

void frmTestProbe::Fail(int32_t Number) {
    Message(QStringLiteral("*** FAIL *** ") + QString::number(Number));
}

void frmTestProbe::cmdClear_Click() { lstMessageLog->clear(); }

void frmTestProbe::cmdTest_Click() {}
