#include "frame/frmAbout.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "frame/GlobalData.h"
#include "frame/frmSplash.h"
#include "platform/MessageBoxService.h"

frmAbout::frmAbout() {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About"));
    lblTitle = new QLabel(QStringLiteral("Kavlin Studio"), this);
    lblTitle->setObjectName(QStringLiteral("lblTitle"));
    QFont TitleFont = lblTitle->font();
    TitleFont.setPointSize(TitleFont.pointSize() + 6);
    TitleFont.setBold(true);
    lblTitle->setFont(TitleFont);
    lblDescription = new QLabel(QStringLiteral("Development System"), this);
    lblDescription->setObjectName(QStringLiteral("lblDescription"));
    lblVersionType = new QLabel(QStringLiteral("Version ") + GlobalData::VersionText(), this);
    lblVersionType->setObjectName(QStringLiteral("lblVersionType"));
    lblCopyrightNotice =
        new QLabel(CopyrightLine() + QStringLiteral("\nAll rights reserved."), this);
    lblCopyrightNotice->setObjectName(QStringLiteral("lblCopyrightNotice"));
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdSysInfo = new QPushButton(QStringLiteral("&System Info..."), this);
    cmdSysInfo->setObjectName(QStringLiteral("cmdSysInfo"));

    auto* Buttons = new QHBoxLayout;
    Buttons->addStretch();
    Buttons->addWidget(cmdOK);
    Buttons->addWidget(cmdSysInfo);
    auto* Layout = new QVBoxLayout(this);
    Layout->addWidget(lblTitle);
    Layout->addWidget(lblDescription);
    Layout->addWidget(lblVersionType);
    Layout->addSpacing(12);
    Layout->addWidget(lblCopyrightNotice);
    Layout->addLayout(Buttons);

    connect(cmdOK, &QPushButton::clicked, this, &frmAbout::cmdOK_Click);
    connect(cmdSysInfo, &QPushButton::clicked, this, &frmAbout::cmdSysInfo_Click);
}

void frmAbout::cmdOK_Click() { accept(); }

void frmAbout::cmdSysInfo_Click() {
    // This platform has no system information tool to start.
    MessageBoxService::Instance().Show(
        QStringLiteral("System Information Is Unavailable At This Time"), QStringLiteral("Kavlin"),
        MsgBoxButtons::OKOnly, MsgBoxIcon::Information);
}
