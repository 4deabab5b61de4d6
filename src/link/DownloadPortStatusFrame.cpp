#include "link/DownloadPortStatusFrame.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "link/DownloadPortExecutive.h"
#include "platform/MessageBoxService.h"

DownloadPortStatusFrame::DownloadPortStatusFrame(QWidget* Parent)
    : QGroupBox(QStringLiteral("Port Status"), Parent) {
    setObjectName(QStringLiteral("fraPortStatus"));
    cmdOpenPort = new QPushButton(QStringLiteral("Open Port"), this);
    cmdOpenPort->setObjectName(QStringLiteral("cmdOpenPort"));
    cmdClosePort = new QPushButton(QStringLiteral("Close Port"), this);
    cmdClosePort->setObjectName(QStringLiteral("cmdClosePort"));
    lblStatusCaption = new QLabel(QStringLiteral("Status:"), this);
    lblStatusCaption->setObjectName(QStringLiteral("lblStatusCaption"));
    lblStatus = new QLabel(this);
    lblStatus->setObjectName(QStringLiteral("lblStatus"));
    lblStatus->setAutoFillBackground(true);
    lblStatus->setMinimumWidth(
        lblStatus->fontMetrics().horizontalAdvance(QStringLiteral("WClosedW")));

    auto* Status = new QHBoxLayout;
    Status->addWidget(lblStatusCaption);
    Status->addWidget(lblStatus, 1);
    auto* Layout = new QVBoxLayout(this);
    Layout->addWidget(cmdOpenPort);
    Layout->addWidget(cmdClosePort);
    Layout->addLayout(Status);
    ShowStatus(false);
}

void DownloadPortStatusFrame::ShowStatus(bool IsOpen) {
    QPalette Colours = palette();
    if (IsOpen) {
        lblStatus->setText(QStringLiteral("  Open"));
        Colours.setColor(QPalette::Window, Qt::white);
        // The frame's own text colour: the normal one.
    } else {
        lblStatus->setText(QStringLiteral(" Closed"));
        Colours.setColor(QPalette::Window, Qt::red);
        Colours.setColor(QPalette::WindowText, Qt::white);
    }
    lblStatus->setPalette(Colours);
}

bool DownloadPortStatusFrame::ApplyAndReport(const DownloadPortInfoType& Port, const QString& Kind,
                                             const QString& Suffix) {
    DownloadPortExecutive::SetDownloadPortInfo(Port);
    if (Port.IsDefined() == DownloadPortExecutive::DownloadPortIsOpen()) {
        return true;
    }
    QString Text =
        (DownloadPortExecutive::DownloadPortIsOpen() ? QStringLiteral("Unable to close ")
                                                     : QStringLiteral("Unable to open ")) +
        Kind + QString::number(Port.PortNumber()) + Suffix;
    const QString Cause = DownloadPortExecutive::LastFailureCause();
    if (!Cause.isEmpty()) {
        Text += QLatin1Char('\n') + Cause;
    }
    MessageBoxService::Instance().Show(Text, QStringLiteral("Download Port Error"),
                                       MsgBoxButtons::OKOnly, MsgBoxIcon::Exclamation);
    return false;
}
