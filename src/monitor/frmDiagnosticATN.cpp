#include "monitor/frmDiagnosticATN.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "frame/ErrorDisplay.h"
#include "frame/GlobalData.h"
#include "monitor/MonitorPortExecutive.h"

frmDiagnosticATN::frmDiagnosticATN() {
    setObjectName(QStringLiteral("frmDiagnosticATN"));
    setWindowTitle(QStringLiteral("ATN Diagnostic"));
    setModal(true);

    picKV20 = new ChipPackageDrawing(24, QStringLiteral("KV-20"), this);
    picKV20->setObjectName(QStringLiteral("picKV20"));
    picKV30 = new ChipPackageDrawing(40, QStringLiteral("KV-30"), this);
    picKV30->setObjectName(QStringLiteral("picKV30"));
    lblProcedure = new QLabel(this);
    lblProcedure->setObjectName(QStringLiteral("lblProcedure"));
    lblProcedure->setTextFormat(Qt::PlainText);
    lblStateATN = new QLabel(this);
    lblStateATN->setObjectName(QStringLiteral("lblStateATN"));
    lblStateATN->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    lblStateATN->setAlignment(Qt::AlignCenter);
    // Room for "High" and "Low" whether or not one is shown.
    lblStateATN->setMinimumWidth(
        lblStateATN->fontMetrics().horizontalAdvance(QStringLiteral("High")) * 2);
    cmdRaiseATN = new QPushButton(QStringLiteral("&Raise"), this);
    cmdRaiseATN->setObjectName(QStringLiteral("cmdRaiseATN"));
    cmdLowerATN = new QPushButton(QStringLiteral("&Lower"), this);
    cmdLowerATN->setObjectName(QStringLiteral("cmdLowerATN"));
    cmdOK = new QPushButton(QStringLiteral("&OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);

    // Both pictures share one place; the chip model's is shown.
    auto* Pictures = new QGridLayout;
    Pictures->addWidget(picKV20, 0, 0, Qt::AlignHCenter);
    Pictures->addWidget(picKV30, 0, 0, Qt::AlignHCenter);
    auto* State = new QHBoxLayout;
    State->addWidget(new QLabel(QStringLiteral("ATN:"), this));
    State->addWidget(lblStateATN);
    State->addStretch(1);
    State->addWidget(cmdRaiseATN);
    State->addWidget(cmdLowerATN);
    auto* Right = new QVBoxLayout;
    Right->addWidget(lblProcedure);
    Right->addStretch(1);
    Right->addLayout(State);
    auto* Top = new QHBoxLayout;
    Top->addLayout(Pictures);
    Top->addLayout(Right, 1);
    auto* Bottom = new QHBoxLayout;
    Bottom->addStretch(1);
    Bottom->addWidget(cmdOK);
    auto* Layout = new QVBoxLayout(this);
    Layout->addLayout(Top, 1);
    Layout->addLayout(Bottom);

    connect(cmdRaiseATN, &QPushButton::clicked, this, &frmDiagnosticATN::cmdRaiseATN_Click);
    connect(cmdLowerATN, &QPushButton::clicked, this, &frmDiagnosticATN::cmdLowerATN_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmDiagnosticATN::cmdOK_Click);
    // However the window goes, the line goes low.
    connect(this, &QDialog::finished, this, [this] { Form_Unload(); });
    Form_Load();
}

frmDiagnosticATN::~frmDiagnosticATN() { Form_Unload(); }

void frmDiagnosticATN::Form_Load() {
    picKV20->hide();
    picKV30->hide();
    switch (GlobalData::ChipType) {
        case 2:
            picKV20->show();
            break;
        case 3:
            picKV30->show();
            break;
        default:
            ErrorDisplay::ProbeError(QStringLiteral("Error_1 in frmDiagnosticATN.Form_Load"));
            break;
    }
    lblProcedure->setText(
        QStringLiteral("1.  Verify monitor port is open, and is the same\n"
                       "      as the downloader port.\n"
                       "2.  Connect voltmeter between ATN and ground.\n"
                       "3.  Set ATN high (see below).\n"
                       "4.  Verify voltage is +3 V to +15 V.\n"
                       "5.  Set ATN low (see below).\n"
                       "6.  Verify voltage is 0 V to -15 V."));
    ShowState();
}

void frmDiagnosticATN::Form_Unload() {
    // A closed port is no error here, and a second lowering does no harm.
    bool PortIsOpen = false;
    MonitorPortExecutive::SetAtnState(false, PortIsOpen);
}

void frmDiagnosticATN::SetAtn(bool Value) {
    bool PortIsOpen = false;
    MonitorPortExecutive::SetAtnState(Value, PortIsOpen);
    if (!PortIsOpen) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Monitor port must be open"),
                                       QStringLiteral("Port Error"));
    }
    ShowState();
}

void frmDiagnosticATN::cmdRaiseATN_Click() { SetAtn(true); }

void frmDiagnosticATN::cmdLowerATN_Click() { SetAtn(false); }

void frmDiagnosticATN::ShowState() {
    switch (MonitorPortExecutive::GetAtnState()) {
        case 1:
            lblStateATN->setText(QStringLiteral("High"));
            break;
        case 2:
            lblStateATN->setText(QStringLiteral("Low"));
            break;
        default:
            lblStateATN->clear();
            break;
    }
}

void frmDiagnosticATN::cmdOK_Click() { accept(); }
