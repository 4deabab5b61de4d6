#include "link/frmDownloadPortSerial.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "link/DownloadPortExecutive.h"
#include "platform/SerialDevices.h"

namespace {
// The numbers a user has always been offered; more appear when the machine
// has more devices.
constexpr int16_t ListedPorts = 16;
}  // namespace

frmDownloadPortSerial::frmDownloadPortSerial() {
    setObjectName(QStringLiteral("frmDownloadPortSerial"));
    setWindowTitle(QStringLiteral("Download Port"));
    setModal(true);

    fraSerialPort = new QGroupBox(QStringLiteral("Serial Port"), this);
    fraSerialPort->setObjectName(QStringLiteral("fraSerialPort"));
    lblSerialPortNumber = new QLabel(QStringLiteral("Port Number:"), fraSerialPort);
    lblSerialPortNumber->setObjectName(QStringLiteral("lblSerialPortNumber"));
    cboSerialPortNumber = new QComboBox(fraSerialPort);
    cboSerialPortNumber->setObjectName(QStringLiteral("cboSerialPortNumber"));
    cboSerialPortNumber->setToolTip(QStringLiteral("Choose the port number here"));
    for (const SerialDevices::PortEntry& Entry : SerialDevices::PortList(ListedPorts)) {
        cboSerialPortNumber->addItem(Entry.Text, QVariant::fromValue<int>(Entry.Number));
    }
    auto* SerialLayout = new QHBoxLayout(fraSerialPort);
    SerialLayout->addWidget(lblSerialPortNumber);
    SerialLayout->addWidget(cboSerialPortNumber, 1);

    fraPortStatus = new DownloadPortStatusFrame(this);
    cmdOpenPort = fraPortStatus->cmdOpenPort;
    cmdClosePort = fraPortStatus->cmdClosePort;
    lblStatus = fraPortStatus->lblStatus;
    cmdOK = new QPushButton(QStringLiteral("&OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));

    auto* Right = new QVBoxLayout;
    Right->addWidget(fraPortStatus);
    Right->addStretch(1);
    Right->addWidget(cmdOK);
    auto* Layout = new QHBoxLayout(this);
    Layout->addWidget(fraSerialPort, 1, Qt::AlignTop);
    Layout->addLayout(Right);

    // Only a user's choice is a change: filling the list from code is not.
    connect(cboSerialPortNumber, &QComboBox::activated, this,
            &frmDownloadPortSerial::cboSerialPortNumber_Click);
    connect(cmdOpenPort, &QPushButton::clicked, this, &frmDownloadPortSerial::cmdOpenPort_Click);
    connect(cmdClosePort, &QPushButton::clicked, this, &frmDownloadPortSerial::cmdClosePort_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmDownloadPortSerial::cmdOK_Click);
    Form_Load();
}

void frmDownloadPortSerial::Form_Load() {
    ControlsAreLive = false;
    cboSerialPortNumber->setCurrentIndex(0);
    DownloadPortExecutive::GetDownloadPortInfo(LocalPort);
    FillControls();
    ControlsAreLive = true;
}

void frmDownloadPortSerial::FillControls() {
    const int Index =
        cboSerialPortNumber->findData(QVariant::fromValue<int>(LocalPort.PortNumber()));
    // A number below 1, or one the list does not hold, shows the first entry.
    cboSerialPortNumber->setCurrentIndex(LocalPort.PortNumber() < 1 || Index < 0 ? 0 : Index);
    ShowStatus();
}

void frmDownloadPortSerial::ShowStatus() {
    fraPortStatus->ShowStatus(DownloadPortExecutive::DownloadPortIsOpen() &&
                              !DownloadPortExecutive::DownloadPortIsParallel());
}

void frmDownloadPortSerial::ReadControls() {
    LocalPort.SetIsParallel(false);
    LocalPort.SetPortNumber(static_cast<int16_t>(cboSerialPortNumber->currentData().toInt()));
}

void frmDownloadPortSerial::ApplyChanges(bool& Success) {
    ReadControls();
    Success = DownloadPortStatusFrame::ApplyAndReport(LocalPort, QStringLiteral("Com"), QString());
}

void frmDownloadPortSerial::cmdOpenPort_Click() {
    ControlsAreLive = false;
    ApplyWithPortDefined(true);
    ControlsAreLive = true;
}

void frmDownloadPortSerial::cmdClosePort_Click() {
    ControlsAreLive = false;
    ApplyWithPortDefined(false);
    ControlsAreLive = true;
}

void frmDownloadPortSerial::cboSerialPortNumber_Click() {
    // A port number is never changed under an open port.
    if (ControlsAreLive) {
        ApplyWithPortDefined(false);
    }
}

void frmDownloadPortSerial::ApplyWithPortDefined(bool Defined) {
    LocalPort.SetIsDefined(Defined);
    bool Success = false;
    ApplyChanges(Success);
    ShowStatus();
}

void frmDownloadPortSerial::cmdOK_Click() {
    // What is applied was applied by the buttons and the controls.
    accept();
}
