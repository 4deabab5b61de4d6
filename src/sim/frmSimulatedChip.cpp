#include "sim/frmSimulatedChip.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>

#include "sim/SimulatedChipDrawing.h"
#include "sim/SimulatedLed.h"
#include "sim/SimulatedSerialLine.h"

namespace {

std::weak_ptr<SimulatedSerialLine>& AttachedLine() {
    static std::weak_ptr<SimulatedSerialLine> Line;
    return Line;
}

// The pins each model brings out on its ports, as its programs may use them.
QList<int> PortPins(int ChipType) {
    QList<int> Pins;
    const auto Range = [&Pins](int First, int Last) {
        for (int Pin = First; Pin <= Last; ++Pin) {
            Pins << Pin;
        }
    };
    if (ChipType == 3) {
        Range(1, 8);
        Range(14, 29);
        Range(33, 40);
    } else {
        Range(5, 20);
        Range(25, 27);
    }
    return Pins;
}

// The window repaints at this pace; the chip's program runs on the clock.
constexpr int RefreshMilliseconds = 50;

}  // namespace

frmSimulatedChip::frmSimulatedChip() {
    setWindowTitle(QStringLiteral("Simulated Chip"));
    setObjectName(QStringLiteral("frmSimulatedChip"));
    auto* Layout = new QHBoxLayout(this);

    auto* ChipFrame = new QGroupBox(QStringLiteral("Pins"), this);
    ChipFrame->setObjectName(QStringLiteral("fraPins"));
    ChipLayout = new QGridLayout(ChipFrame);
    Layout->addWidget(ChipFrame);

    auto* Side = new QVBoxLayout();
    Layout->addLayout(Side);
    auto* LedFrame = new QGroupBox(QStringLiteral("LEDs"), this);
    LedFrame->setObjectName(QStringLiteral("fraLeds"));
    auto* LedLayout = new QGridLayout(LedFrame);
    ledRed = new SimulatedLed(QColor(0xFF, 0x20, 0x20), QStringLiteral("ledRed"), LedFrame);
    ledGreen = new SimulatedLed(QColor(0x20, 0xF0, 0x40), QStringLiteral("ledGreen"), LedFrame);
    LedLayout->addWidget(ledRed, 0, 0, Qt::AlignHCenter);
    LedLayout->addWidget(ledGreen, 0, 1, Qt::AlignHCenter);
    LedLayout->addWidget(new QLabel(QStringLiteral("Red"), LedFrame), 1, 0, Qt::AlignHCenter);
    LedLayout->addWidget(new QLabel(QStringLiteral("Green"), LedFrame), 1, 1, Qt::AlignHCenter);
    Side->addWidget(LedFrame);

    auto* DriveFrame = new QGroupBox(QStringLiteral("Drive a Pin"), this);
    DriveFrame->setObjectName(QStringLiteral("fraDrive"));
    auto* DriveLayout = new QVBoxLayout(DriveFrame);
    cboPin = new QComboBox(DriveFrame);
    cboPin->setObjectName(QStringLiteral("cboPin"));
    cboPin->setToolTip(QStringLiteral("The pin a switch outside the chip is wired to"));
    optNotDriven = new QRadioButton(QStringLiteral("&Not driven"), DriveFrame);
    optNotDriven->setObjectName(QStringLiteral("optNotDriven"));
    optDriveHigh = new QRadioButton(QStringLiteral("Driven &high"), DriveFrame);
    optDriveHigh->setObjectName(QStringLiteral("optDriveHigh"));
    optDriveLow = new QRadioButton(QStringLiteral("Driven &low"), DriveFrame);
    optDriveLow->setObjectName(QStringLiteral("optDriveLow"));
    DriveLayout->addWidget(cboPin);
    DriveLayout->addWidget(optNotDriven);
    DriveLayout->addWidget(optDriveHigh);
    DriveLayout->addWidget(optDriveLow);
    Side->addWidget(DriveFrame);

    auto* ProgramFrame = new QGroupBox(QStringLiteral("Program"), this);
    ProgramFrame->setObjectName(QStringLiteral("fraProgram"));
    auto* ProgramLayout = new QVBoxLayout(ProgramFrame);
    lblProgram = new QLabel(ProgramFrame);
    lblProgram->setObjectName(QStringLiteral("lblProgram"));
    lblProgram->setWordWrap(true);
    ProgramLayout->addWidget(lblProgram);
    Side->addWidget(ProgramFrame);
    Side->addStretch();

    // Only a person's choice drives a pin; the window setting the buttons to
    // show a pin's drive does not.
    connect(cboPin, &QComboBox::currentIndexChanged, this, [this] { ShowDriveOfChosenPin(); });
    for (QRadioButton* Option : {optNotDriven, optDriveHigh, optDriveLow}) {
        connect(Option, &QRadioButton::clicked, this, [this] { DriveChosenPin(); });
    }

    tmrRefresh = new QTimer(this);
    tmrRefresh->setObjectName(QStringLiteral("tmrRefresh"));
    tmrRefresh->setInterval(RefreshMilliseconds);
    connect(tmrRefresh, &QTimer::timeout, this, [this] { Refresh(); });
    Refresh();
}

frmSimulatedChip::~frmSimulatedChip() = default;

void frmSimulatedChip::Attach(std::weak_ptr<SimulatedSerialLine> Line) {
    AttachedLine() = std::move(Line);
}

void frmSimulatedChip::showEvent(QShowEvent* Event) {
    QWidget::showEvent(Event);
    Refresh();
    tmrRefresh->start();
}

void frmSimulatedChip::hideEvent(QHideEvent* Event) {
    tmrRefresh->stop();
    QWidget::hideEvent(Event);
}

void frmSimulatedChip::BuildDrawing(int ChipType) {
    const std::shared_ptr<SimulatedSerialLine> Line = AttachedLine().lock();
    if (!Line) {
        return;
    }
    delete picChip;
    const bool KV30 = ChipType == 3;
    picChip = new SimulatedChipDrawing(Line->Chip().Board, KV30 ? 40 : 24,
                                       KV30 ? QStringLiteral("KV-30") : QStringLiteral("KV-20"));
    picChip->setObjectName(QStringLiteral("picChip"));
    ChipLayout->addWidget(picChip, 0, 0, Qt::AlignHCenter);
    ShownChipType = ChipType;
    ListPins(ChipType);
}

void frmSimulatedChip::ListPins(int ChipType) {
    const QVariant Chosen = cboPin->currentData();
    cboPin->clear();
    for (const int Pin : PortPins(ChipType)) {
        cboPin->addItem(QStringLiteral("Pin %1").arg(Pin), Pin);
    }
    const int Again = cboPin->findData(Chosen);
    cboPin->setCurrentIndex(Again >= 0 ? Again : 0);
    ShowDriveOfChosenPin();
}

void frmSimulatedChip::ShowDriveOfChosenPin() {
    const std::shared_ptr<SimulatedSerialLine> Line = AttachedLine().lock();
    if (!Line || cboPin->currentIndex() < 0) {
        return;
    }
    const SimulatedChipBoard& Board = Line->Chip().Board;
    const int Pin = cboPin->currentData().toInt();
    QRadioButton* Shown = optNotDriven;
    if (Board.Driven(Pin)) {
        Shown = Board.Level(Pin) ? optDriveHigh : optDriveLow;
    }
    Shown->setChecked(true);
}

void frmSimulatedChip::DriveChosenPin() {
    const std::shared_ptr<SimulatedSerialLine> Line = AttachedLine().lock();
    if (!Line || cboPin->currentIndex() < 0) {
        return;
    }
    SimulatedChipBoard& Board = Line->Chip().Board;
    const int Pin = cboPin->currentData().toInt();
    if (optDriveHigh->isChecked()) {
        Board.Drive(Pin, true);
    } else if (optDriveLow->isChecked()) {
        Board.Drive(Pin, false);
    } else {
        Board.Release(Pin);
    }
    Refresh();
}

void frmSimulatedChip::Refresh() {
    const std::shared_ptr<SimulatedSerialLine> Line = AttachedLine().lock();
    if (!Line) {
        lblProgram->setText(QStringLiteral("No simulated chip"));
        return;
    }
    Line->CatchUp();
    SimulatedKavlinChip& Chip = Line->Chip();
    const int ChipType = Chip.Board.ChipType() == 3 ? 3 : 2;
    if (ChipType != ShownChipType) {
        BuildDrawing(ChipType);
    }
    QString Status;
    if (Chip.InMonitor()) {
        Status = QStringLiteral("Stopped: the monitor has the chip");
    } else if (Chip.ProgramRunning()) {
        Status = QStringLiteral("Running");
    } else if (Chip.ProgramEnded()) {
        Status = QStringLiteral("The program has ended");
    } else if (!Chip.ProgramTrouble().empty()) {
        Status = QString::fromStdString(Chip.ProgramTrouble());
    } else {
        Status = QStringLiteral("No program running: download one and run it");
    }
    lblProgram->setText(Status);
    if (Chip.Board.Changes() != ShownChanges) {
        ShownChanges = Chip.Board.Changes();
        ledRed->SetLit(Chip.Board.LedOn(1));
        ledGreen->SetLit(Chip.Board.LedOn(2));
        picChip->update();
    }
}
