#include "monitor/frmMonitorPort.h"

#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QSerialPortInfo>
#include <QVBoxLayout>

#include "frame/ErrorDisplay.h"
#include "monitor/MonitorPortExecutive.h"
#include "platform/SerialDevices.h"

namespace {

// "3 - ttyUSB0 FT232R USB UART": the number the settings keep, and what the
// system knows of the device it stands for.
QString PortEntryText(int Number) {
    if (Number == SerialDevices::SimulatedChipPort) {
        return QString::number(Number) + QStringLiteral(" - ") +
               SerialDevices::SimulatedChipEntry();
    }
    const QString Device = SerialDevices::DeviceForPort(static_cast<int16_t>(Number));
    if (Device.isEmpty()) {
        return QString::number(Number);
    }
    const QSerialPortInfo Info(Device);
    // A device the system does not list (named by the user) still has its name.
    QString Text = QString::number(Number) + QStringLiteral(" - ") + QFileInfo(Device).fileName();
    for (const QString& Part : {Info.description(), Info.manufacturer(), Info.serialNumber()}) {
        if (!Part.isEmpty()) {
            Text += QLatin1Char(' ') + Part;
        }
    }
    return Text;
}

QComboBox* MakeList(QWidget* Parent, const char* Name, const QStringList& Entries,
                    const char* ToolTip) {
    auto* Box = new QComboBox(Parent);
    Box->setObjectName(QString::fromLatin1(Name));
    Box->addItems(Entries);
    Box->setToolTip(QString::fromLatin1(ToolTip));
    return Box;
}

QLabel* MakeLabel(QWidget* Parent, const char* Name, const char* Caption) {
    auto* Label = new QLabel(QString::fromLatin1(Caption), Parent);
    Label->setObjectName(QString::fromLatin1(Name));
    return Label;
}

}  // namespace

frmMonitorPort::frmMonitorPort() {
    setObjectName(QStringLiteral("frmMonitorPort"));
    setWindowTitle(QStringLiteral("Monitor Port"));

    cboPortNumber = MakeList(this, "cboPortNumber", {}, "Choose the port number here");
    const int Count = std::max<int>(16, static_cast<int>(SerialDevices::DeviceNames().size()));
    for (int Number = 1; Number <= Count && Number < SerialDevices::SimulatedChipPort; ++Number) {
        cboPortNumber->addItem(PortEntryText(Number), Number);
    }
    cboPortNumber->addItem(PortEntryText(SerialDevices::SimulatedChipPort),
                           static_cast<int>(SerialDevices::SimulatedChipPort));
    cboBaudRate = MakeList(this, "cboBaudRate",
                           {"300", "600", "1200", "2400", "4800", "7200", "9600", "14400", "19200",
                            "28800", "38400", "57600", "115200"},
                           "Choose the baud rate here");
    cboParity = MakeList(this, "cboParity", {"None", "Even", "Odd", "Space", "Mark"},
                         "Choose the parity here");
    cboDataBits = MakeList(this, "cboDataBits", {"4", "5", "6", "7", "8"},
                           "Choose the number of bits per character here");
    cboStopBits = MakeList(this, "cboStopBits", {"1", "1.5", "2"},
                           "Choose the number of stop bits per character here");
    lblPortNumber = MakeLabel(this, "lblPortNumber", "Com Port");
    lblBaudRate = MakeLabel(this, "lblBaudRate", "Baud");
    lblParity = MakeLabel(this, "lblParity", "Parity");
    lblDataBits = MakeLabel(this, "lblDataBits", "Data Bits");
    lblStopBits = MakeLabel(this, "lblStopBits", "Stop Bits");

    Frame2 = new QGroupBox(QStringLiteral("Port Status"), this);
    Frame2->setObjectName(QStringLiteral("Frame2"));
    cmdOpenPort = new QPushButton(QStringLiteral("Open Port"), Frame2);
    cmdOpenPort->setObjectName(QStringLiteral("cmdOpenPort"));
    cmdClosePort = new QPushButton(QStringLiteral("Close Port"), Frame2);
    cmdClosePort->setObjectName(QStringLiteral("cmdClosePort"));
    lblStatusCaption = MakeLabel(Frame2, "lblStatusCaption", "Status:");
    lblStatus = MakeLabel(Frame2, "lblStatus", "");
    lblStatus->setAutoFillBackground(true);
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));

    auto* Settings = new QGridLayout();
    const QList<QPair<QLabel*, QComboBox*>> Rows = {{lblPortNumber, cboPortNumber},
                                                    {lblBaudRate, cboBaudRate},
                                                    {lblParity, cboParity},
                                                    {lblDataBits, cboDataBits},
                                                    {lblStopBits, cboStopBits}};
    for (int Row = 0; Row < Rows.size(); ++Row) {
        Settings->addWidget(Rows[Row].first, Row, 0);
        Settings->addWidget(Rows[Row].second, Row, 1);
    }
    auto* StatusLayout = new QGridLayout(Frame2);
    StatusLayout->addWidget(cmdOpenPort, 0, 0);
    StatusLayout->addWidget(cmdClosePort, 0, 1);
    StatusLayout->addWidget(lblStatusCaption, 1, 0);
    StatusLayout->addWidget(lblStatus, 1, 1);
    auto* Layout = new QVBoxLayout(this);
    Layout->addLayout(Settings);
    Layout->addWidget(Frame2);
    auto* Buttons = new QHBoxLayout();
    Buttons->addStretch(1);
    Buttons->addWidget(cmdOK);
    Layout->addLayout(Buttons);

    connect(cmdOpenPort, &QPushButton::clicked, this, &frmMonitorPort::cmdOpenPort_Click);
    connect(cmdClosePort, &QPushButton::clicked, this, &frmMonitorPort::cmdClosePort_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmMonitorPort::cmdOK_Click);
    // Only a choice the user makes (activated) closes the port; the dialog's
    // own setting of the lists (currentIndexChanged) does not.
    for (QComboBox* Box : {cboPortNumber, cboBaudRate, cboParity, cboDataBits, cboStopBits}) {
        connect(Box, &QComboBox::activated, this, &frmMonitorPort::cboSetting_Click);
    }
    Form_Load();
}

void frmMonitorPort::Form_Load() {
    ControlsArmed = false;
    MonitorPortExecutive::GetMonitorPortInfo(Info);
    ShowSettings();
    ControlsArmed = true;
}

void frmMonitorPort::ShowSettings() {
    DisplayPortStatus(MonitorPortExecutive::IsMonitorPortOpen());
    const int PortIndex = cboPortNumber->findData(static_cast<int>(Info.PortNumber()));
    cboPortNumber->setCurrentIndex(PortIndex >= 0 ? PortIndex : 0);
    // A rate that is not in the list leaves the last entry selected.
    int BaudIndex = 0;
    for (BaudIndex = 0; BaudIndex < cboBaudRate->count() - 1; ++BaudIndex) {
        if (cboBaudRate->itemText(BaudIndex).toInt() == Info.BaudRate) {
            break;
        }
    }
    cboBaudRate->setCurrentIndex(BaudIndex);
    cboParity->setCurrentIndex(Info.Parity);
    cboDataBits->setCurrentIndex(Info.DataBits() - 4);
    cboStopBits->setCurrentIndex(Info.StopBits());
}

void frmMonitorPort::ReadSettings() {
    Info.SetPortNumber(static_cast<uint8_t>(cboPortNumber->currentData().toInt()));
    Info.BaudRate = cboBaudRate->currentText().toInt();
    Info.Parity = cboParity->currentIndex();
    Info.SetDataBits(static_cast<uint8_t>(cboDataBits->currentIndex() + 4));
    Info.SetStopBits(cboStopBits->currentIndex());
}

void frmMonitorPort::ApplySettings(bool& Success) {
    ReadSettings();
    MonitorPortExecutive::SetMonitorPortInfo(Info);
    if (!MonitorPortExecutive::IsMonitorPortOpen() && Info.IsDefined) {
        QString Text = QStringLiteral("Unable to open Com") + QString::number(Info.PortNumber());
        const QString Cause = MonitorPortExecutive::LastOpenFailure();
        if (!Cause.isEmpty()) {
            Text += QLatin1Char('\n') + Cause;
        }
        ErrorDisplay::ShowErrorMessage(Text, QStringLiteral("Monitor Port Error"));
        Success = false;
    } else {
        Success = true;
    }
}

void frmMonitorPort::cmdOpenPort_Click() {
    ControlsArmed = false;
    Info.IsDefined = true;
    bool Success = false;
    ApplySettings(Success);
    DisplayPortStatus(MonitorPortExecutive::IsMonitorPortOpen());
    ControlsArmed = true;
}

void frmMonitorPort::ClosePortFromDialog() {
    const bool WasArmed = ControlsArmed;
    ControlsArmed = false;
    Info.IsDefined = false;
    bool Success = false;
    ApplySettings(Success);
    DisplayPortStatus(MonitorPortExecutive::IsMonitorPortOpen());
    ControlsArmed = WasArmed;
}

void frmMonitorPort::cmdClosePort_Click() { ClosePortFromDialog(); }

void frmMonitorPort::cboSetting_Click() {
    if (ControlsArmed) {
        ClosePortFromDialog();
    }
}

void frmMonitorPort::DisplayPortStatus(bool IsOpen) {
    QPalette Colours = lblStatus->palette();
    if (IsOpen) {
        lblStatus->setText(QStringLiteral("  Open"));
        Colours.setColor(QPalette::WindowText, palette().color(QPalette::ButtonText));
        Colours.setColor(QPalette::Window, Qt::white);
    } else {
        lblStatus->setText(QStringLiteral(" Closed"));
        Colours.setColor(QPalette::WindowText, Qt::white);
        Colours.setColor(QPalette::Window, QColor(0xFF, 0x00, 0x00));
    }
    lblStatus->setPalette(Colours);
}

void frmMonitorPort::cmdOK_Click() { accept(); }
