#include "link/DownloadPortStatusFrame.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

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
