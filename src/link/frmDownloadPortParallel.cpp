#include "link/frmDownloadPortParallel.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "link/DownloadPortExecutive.h"
#include "platform/ParallelDevices.h"
#include "platform/Val.h"

namespace {
QRadioButton* AddressButton(const QString& Name, const QString& Caption, QWidget* Parent) {
    auto* Button = new QRadioButton(Caption, Parent);
    Button->setObjectName(Name);
    return Button;
}
}  // namespace

frmDownloadPortParallel::frmDownloadPortParallel() {
    setObjectName(QStringLiteral("frmDownloadPortParallel"));
    setWindowTitle(QStringLiteral("Download Port"));
    setModal(true);

    fraParallelPort = new QGroupBox(QStringLiteral("Parallel Port"), this);
    fraParallelPort->setObjectName(QStringLiteral("fraParallelPort"));
    chkPortReserve = new QCheckBox(QStringLiteral("&Reserve Port"), fraParallelPort);
    chkPortReserve->setObjectName(QStringLiteral("chkPortReserve"));
    lblParallelPortNumber = new QLabel(QStringLiteral("Port Number"), fraParallelPort);
    lblParallelPortNumber->setObjectName(QStringLiteral("lblParallelPortNumber"));
    cboParallelPortNumber = new QComboBox(fraParallelPort);
    cboParallelPortNumber->setObjectName(QStringLiteral("cboParallelPortNumber"));
    cboParallelPortNumber->setToolTip(QStringLiteral("Choose the LPT number here"));
    for (int Number = 1; Number <= 16; ++Number) {
        cboParallelPortNumber->addItem(QString::number(Number));
    }
    // The port's number leads its text, so that reading the number back
    // takes the text's numeric value as for the others.
    if (ParallelDevices::SimulatedDeviceInstalled()) {
        cboParallelPortNumber->addItem(QString::number(ParallelDevices::SimulatedBoardPort) +
                                       QStringLiteral(" - ") +
                                       ParallelDevices::SimulatedBoardEntry());
    }
    auto* PortLayout = new QGridLayout(fraParallelPort);
    PortLayout->addWidget(lblParallelPortNumber, 0, 0);
    PortLayout->addWidget(cboParallelPortNumber, 0, 1);
    PortLayout->addWidget(chkPortReserve, 1, 0, 1, 2);

    fraParallelPortAddress = new QGroupBox(QStringLiteral("Port Address"), this);
    fraParallelPortAddress->setObjectName(QStringLiteral("fraParallelPortAddress"));
    optH378 =
        AddressButton(QStringLiteral("optH378"), QStringLiteral("&H378"), fraParallelPortAddress);
    optH278 =
        AddressButton(QStringLiteral("optH278"), QStringLiteral("&H278"), fraParallelPortAddress);
    optH3BC =
        AddressButton(QStringLiteral("optH3BC"), QStringLiteral("&H3BC"), fraParallelPortAddress);
    optH268 =
        AddressButton(QStringLiteral("optH268"), QStringLiteral("&H268"), fraParallelPortAddress);
    optFreeFormat =
        AddressButton(QStringLiteral("optFreeFormat"), QString(), fraParallelPortAddress);
    lblFreeFormat = new QLabel(QStringLiteral("User-defined"), fraParallelPortAddress);
    lblFreeFormat->setObjectName(QStringLiteral("lblFreeFormat"));
    txtFreeFormat = new QLineEdit(fraParallelPortAddress);
    txtFreeFormat->setObjectName(QStringLiteral("txtFreeFormat"));
    txtFreeFormat->setToolTip(QStringLiteral("User-defined port address"));
    auto* AddressLayout = new QGridLayout(fraParallelPortAddress);
    AddressLayout->addWidget(optH378, 0, 0, 1, 3);
    AddressLayout->addWidget(optH278, 1, 0, 1, 3);
    AddressLayout->addWidget(optH3BC, 2, 0, 1, 3);
    AddressLayout->addWidget(optH268, 3, 0, 1, 3);
    AddressLayout->addWidget(optFreeFormat, 4, 0);
    AddressLayout->addWidget(lblFreeFormat, 4, 1);
    AddressLayout->addWidget(txtFreeFormat, 4, 2);

    fraPortStatus = new DownloadPortStatusFrame(this);
    cmdOpenPort = fraPortStatus->cmdOpenPort;
    cmdClosePort = fraPortStatus->cmdClosePort;
    lblStatus = fraPortStatus->lblStatus;
    cmdOK = new QPushButton(QStringLiteral("&OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));

    auto* Left = new QVBoxLayout;
    Left->addWidget(fraParallelPort);
    Left->addWidget(fraParallelPortAddress);
    auto* Right = new QVBoxLayout;
    Right->addWidget(fraPortStatus);
    Right->addStretch(1);
    Right->addWidget(cmdOK);
    auto* Layout = new QHBoxLayout(this);
    Layout->addLayout(Left, 1);
    Layout->addLayout(Right);

    // Only a user's change is a change: the signals below are not raised when
    // code fills the controls.
    connect(cboParallelPortNumber, &QComboBox::activated, this,
            &frmDownloadPortParallel::Control_Change);
    connect(chkPortReserve, &QCheckBox::clicked, this, &frmDownloadPortParallel::Control_Change);
    for (QRadioButton* Option : {optH378, optH278, optH3BC, optH268, optFreeFormat}) {
        connect(Option, &QRadioButton::clicked, this, &frmDownloadPortParallel::Control_Change);
    }
    connect(txtFreeFormat, &QLineEdit::textEdited, this,
            &frmDownloadPortParallel::txtFreeFormat_Change);
    connect(cmdOpenPort, &QPushButton::clicked, this, &frmDownloadPortParallel::cmdOpenPort_Click);
    connect(cmdClosePort, &QPushButton::clicked, this,
            &frmDownloadPortParallel::cmdClosePort_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmDownloadPortParallel::cmdOK_Click);
    Form_Load();
}

int16_t frmDownloadPortParallel::AddressOf(const QString& Text) {
    return static_cast<int16_t>(ValToLong(Text));
}

void frmDownloadPortParallel::Form_Load() {
    ControlsAreLive = false;
    cboParallelPortNumber->setCurrentIndex(0);
    DownloadPortExecutive::GetDownloadPortInfo(LocalPort);
    FillControls();
    ControlsAreLive = true;
}

void frmDownloadPortParallel::FillControls() {
    switch (LocalPort.Address()) {
        case 0x378:
            optH378->setChecked(true);
            break;
        case 0x278:
            optH278->setChecked(true);
            break;
        case 0x3BC:
            optH3BC->setChecked(true);
            break;
        case 0x268:
            optH268->setChecked(true);
            break;
        default:
            optFreeFormat->setChecked(true);
            txtFreeFormat->setText(
                QStringLiteral("&H") +
                QString::number(static_cast<uint16_t>(LocalPort.Address()), 16).toUpper());
            break;
    }
    const int16_t Number = LocalPort.PortNumber();
    int Index = 0;
    for (int Entry = 0; Entry < cboParallelPortNumber->count(); ++Entry) {
        if (ValToLong(cboParallelPortNumber->itemText(Entry)) == Number) {
            Index = Entry;
        }
    }
    cboParallelPortNumber->setCurrentIndex(Index);
    chkPortReserve->setChecked(LocalPort.Reserve());
    ShowStatus();
}

void frmDownloadPortParallel::ShowStatus() {
    fraPortStatus->ShowStatus(DownloadPortExecutive::DownloadPortIsOpen() &&
                              DownloadPortExecutive::DownloadPortIsParallel());
}

void frmDownloadPortParallel::ReadControls() {
    LocalPort.SetIsParallel(true);
    QString AddressText;
    if (optH378->isChecked()) {
        AddressText = QStringLiteral("&H378");
    } else if (optH278->isChecked()) {
        AddressText = QStringLiteral("&H278");
    } else if (optH3BC->isChecked()) {
        AddressText = QStringLiteral("&H3BC");
    } else if (optH268->isChecked()) {
        AddressText = QStringLiteral("&H268");
    } else {
        AddressText = txtFreeFormat->text();
    }
    LocalPort.SetAddress(AddressOf(AddressText));
    LocalPort.SetPortNumber(static_cast<int16_t>(ValToLong(cboParallelPortNumber->currentText())));
    LocalPort.SetReserve(chkPortReserve->isChecked());
}

void frmDownloadPortParallel::ApplyChanges(bool& Success) {
    ReadControls();
    Success = DownloadPortStatusFrame::ApplyAndReport(LocalPort, QStringLiteral("LPT"),
                                                      QStringLiteral(":"));
}

void frmDownloadPortParallel::cmdOpenPort_Click() {
    ControlsAreLive = false;
    ApplyWithPortDefined(true);
    ControlsAreLive = true;
}

void frmDownloadPortParallel::cmdClosePort_Click() {
    ControlsAreLive = false;
    ApplyWithPortDefined(false);
    ControlsAreLive = true;
}

void frmDownloadPortParallel::Control_Change() {
    // An address, a number or the reserve tick is never changed under an open port.
    if (ControlsAreLive) {
        ApplyWithPortDefined(false);
    }
}

void frmDownloadPortParallel::txtFreeFormat_Change() {
    Control_Change();
    // Typing an address chooses it; the radio group clears the fixed four.
    optFreeFormat->setChecked(true);
}

void frmDownloadPortParallel::ApplyWithPortDefined(bool Defined) {
    LocalPort.SetIsDefined(Defined);
    bool Success = false;
    ApplyChanges(Success);
    ShowStatus();
}

void frmDownloadPortParallel::cmdOK_Click() {
    // What is applied was applied by the buttons and the controls.
    accept();
}
