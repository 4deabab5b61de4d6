#include "chip/frmChipDialogKV30.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "chip/FileExecutivePRF.h"
#include "chip/UtilitiesKGUI.h"
#include "frame/ErrorDisplay.h"
#include "frame/GlobalData.h"
#include "frame/UtilitiesFilename.h"
#include "platform/UserFileWriter.h"

namespace {
constexpr int PinCount = 40;
constexpr int PinsPerSide = PinCount / 2;
constexpr int BoxCount = 4 * PinCount;
// The grid: a pin number, four boxes, the drawing, four boxes, a pin number.
constexpr int DrawingColumn = 5;
constexpr const char* ColumnHeads[] = {"IN", "P", "0", "1"};

bool IsFixedPin(int32_t PinNumber) {
    return PinNumber == 2 || (PinNumber >= 5 && PinNumber <= 15) ||
           (PinNumber >= 30 && PinNumber <= 32);
}

// The grid row of a pin: 1 to 20 top-down on the left, 40 down to 21 on the
// right, so that pin 40 stands level with pin 1 as on the package.
int RowOf(int32_t PinNumber) {
    return PinNumber <= PinsPerSide ? PinNumber : PinCount - PinNumber + 1;
}
bool OnTheLeft(int32_t PinNumber) { return PinNumber <= PinsPerSide; }
}  // namespace

frmChipDialogKV30::frmChipDialogKV30() {
    setObjectName(QStringLiteral("frmChipDialogKV30"));
    setWindowTitle(QStringLiteral("KV-30"));
    setModal(true);

    Frame1 = new QGroupBox(QStringLiteral("I/O Pins at Startup"), this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    PinLayout = new QGridLayout(Frame1);
    // Rows without gaps, so that the drawing's even pitch is the rows' own.
    PinLayout->setVerticalSpacing(0);
    Label1 = new QLabel(QStringLiteral("    IN  P   0   1                                         "
                                       "IN  P    0   1"),
                        Frame1);
    Label1->setObjectName(QStringLiteral("Label1"));
    Label1->hide();
    for (int Side = 0; Side < 2; ++Side) {
        for (int Column = 0; Column < 4; ++Column) {
            auto* Head = new QLabel(QString::fromLatin1(ColumnHeads[Column]), Frame1);
            Head->setObjectName(QStringLiteral("lblColumnHead%1").arg(Side * 4 + Column + 1));
            Head->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
            PinLayout->addWidget(Head, 0, Side == 0 ? 1 + Column : DrawingColumn + 1 + Column);
            lblColumnHead << Head;
        }
    }
    bmpChip = new ChipPackageDrawing(PinCount, QStringLiteral("KV-30"), Frame1);
    bmpChip->setObjectName(QStringLiteral("bmpChip"));
    PinLayout->addWidget(bmpChip, 1, DrawingColumn, PinsPerSide, 1);
    PinLayout->setColumnMinimumWidth(DrawingColumn, bmpChip->sizeHint().width());
    for (int32_t Pin = 1; Pin <= PinCount; ++Pin) {
        auto* Number = new QLabel(QString::number(Pin), Frame1);
        Number->setObjectName(QStringLiteral("lblPin%1").arg(Pin));
        Number->setAlignment((OnTheLeft(Pin) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
        PinLayout->addWidget(Number, RowOf(Pin), OnTheLeft(Pin) ? 0 : DrawingColumn + 5);
    }
    for (int Row = 1; Row <= PinsPerSide; ++Row) {
        PinLayout->setRowStretch(Row, 1);
    }

    // The pattern of the boxes made at run time.
    auto* Pattern = new QCheckBox(Frame1);
    Pattern->setObjectName(QStringLiteral("chkPin0"));
    Pattern->hide();
    chkPin << Pattern;

    cmdOK = new QPushButton(QStringLiteral("&OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    auto* Buttons = new QHBoxLayout;
    Buttons->addStretch(1);
    Buttons->addWidget(cmdOK);
    Buttons->addWidget(cmdCancel);
    auto* Layout = new QVBoxLayout(this);
    Layout->addWidget(Frame1, 1);
    Layout->addLayout(Buttons);

    connect(cmdOK, &QPushButton::clicked, this, &frmChipDialogKV30::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmChipDialogKV30::cmdCancel_Click);
    Form_Load();
}

frmChipDialogKV30::~frmChipDialogKV30() { ReleaseFile(); }

void frmChipDialogKV30::ToIndex(int32_t PinNumber, int32_t PinState, int32_t& Index) {
    int32_t Offset = 0;
    switch (PinState) {
        case kvInputTristate:
        case kvInputPullup:
        case kvOutputLow:
        case kvOutputHigh:
            Offset = UtilitiesKGUI::ToRightOffset(PinState);
            break;
        default:
            ErrorDisplay::ProbeError(QStringLiteral("Error_1 in frmChipDialogKV30.ToIndex"));
            break;
    }
    Index = 4 * PinNumber - 3 + Offset;
}

void frmChipDialogKV30::ToPin(int32_t Index, int32_t& PinNumber) {
    PinNumber = (Index - 1) / 4 + 1;
}

void frmChipDialogKV30::PlaceBox(int Index) {
    int32_t Pin = 0;
    ToPin(Index, Pin);
    const int Offset = (Index - 1) % 4;
    const int Column = OnTheLeft(Pin) ? 1 + Offset : DrawingColumn + 1 + Offset;
    PinLayout->addWidget(chkPin[Index], RowOf(Pin), Column, Qt::AlignHCenter);
}

void frmChipDialogKV30::BuildBoxes() {
    chkPin[0]->hide();
    for (int Index = 1; Index <= BoxCount; ++Index) {
        auto* Box = new QCheckBox(Frame1);
        Box->setObjectName(QStringLiteral("chkPin%1").arg(Index));
        int32_t Pin = 0;
        ToPin(Index, Pin);
        Box->setAccessibleName(QStringLiteral("Pin %1 %2")
                                   .arg(Pin)
                                   .arg(QString::fromLatin1(ColumnHeads[(Index - 1) % 4])));
        Box->setChecked(false);
        chkPin << Box;
        PlaceBox(Index);
        // Only a user's click acts: PutPinState's changes don't raise it.
        connect(Box, &QCheckBox::clicked, this, [this, Index] { chkPin_Click(Index); });
    }
    DisableFixedPins();
}

void frmChipDialogKV30::DisableFixedPins() {
    for (int32_t Pin = 1; Pin <= PinCount; ++Pin) {
        if (!IsFixedPin(Pin)) {
            continue;
        }
        for (int Offset = 0; Offset < 4; ++Offset) {
            chkPin[4 * Pin - 3 + Offset]->setEnabled(false);
        }
    }
}

void frmChipDialogKV30::SetDefaults() {
    for (int32_t Pin = 1; Pin <= PinCount; ++Pin) {
        PutPinState(Pin, kvInputTristate);
    }
}

void frmChipDialogKV30::PutPinState(int32_t PinNumber, PinStateTypes PinState) {
    for (int Offset = 0; Offset < 4; ++Offset) {
        chkPin[4 * PinNumber - 3 + Offset]->setChecked(false);
    }
    int32_t Index = 0;
    ToIndex(PinNumber, PinState, Index);
    chkPin[Index]->setChecked(true);
}

void frmChipDialogKV30::GetPinState(int32_t PinNumber, PinStateTypes& PinState) {
    int32_t Offset = 0;
    while (Offset < 4 && !chkPin[4 * PinNumber - 3 + Offset]->isChecked()) {
        ++Offset;
    }
    if (Offset == 4) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in frmChipDialogKV30.GetPinState"));
    }
    PinState = UtilitiesKGUI::ToPinState(Offset);
}

void frmChipDialogKV30::Form_Load() {
    BuildBoxes();
    SetDefaults();
    // The open project's directory and base name.
    QString Path;
    QString Name;
    QString Extension;
    UtilitiesFilename::SplitFilename(GlobalData::ProjectFilename, Path, Name, Extension);
    FileExecutivePRF& File = FileExecutive();
    File.Initialize(Path, Name, FileStatus);
    if (FileStatus != fstOK && FileStatus != fstReadOnly) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_2 in frmChipDialogKV30.Form_Load"));
    } else {
        File.OpenFile();
        HoldsFile = File.IsOpen();
        if (!HoldsFile) {
            ErrorDisplay::ProbeError(QStringLiteral("Error_1 in frmChipDialogKV30.Form_Load"));
        } else {
            for (int32_t Pin = 1; Pin <= PinCount; ++Pin) {
                PinStateTypes State = kvInputTristate;
                File.ReadPinState(Pin, State);
                PutPinState(Pin, State);
            }
        }
    }
    for (int32_t Pin = 1; Pin <= PinCount; ++Pin) {
        GetPinState(Pin, SavedPinStates[Pin]);
    }
}

void frmChipDialogKV30::chkPin_Click(int Index) {
    int32_t Pin = 0;
    ToPin(Index, Pin);
    if (FileStatus != fstReadOnly) {
        // A click always selects its box's state, also on the box already set.
        PutPinState(Pin, UtilitiesKGUI::ToPinState((Index - 1) & 3));
        return;
    }
    PutPinState(Pin, SavedPinStates[Pin]);
    ErrorDisplay::ShowErrorMessage(QStringLiteral("PRF file is read-only"),
                                   QStringLiteral("Read-Only File"));
}

void frmChipDialogKV30::cmdOK_Click() {
    FileExecutivePRF& File = FileExecutive();
    if (HoldsFile && File.IsOpen()) {
        HoldsFile = false;
        if (FileStatus != fstReadOnly) {
            for (int32_t Pin = 1; Pin <= PinCount; ++Pin) {
                PinStateTypes State = kvInputTristate;
                GetPinState(Pin, State);
                File.WritePinState(Pin, State);
            }
        }
        const QString Filename = File.FullFilename();
        if (!File.CloseFile()) {
            // The file on disk is as it was; the user reads why.
            ErrorDisplay::ShowErrorMessage(QStringLiteral("Unable to write PRF file ") + Filename +
                                               QLatin1Char('\n') +
                                               UserFile::ErrorLine(File.LastFailure()),
                                           QStringLiteral("Error Writing to PRF File"));
        }
    } else {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in frmChipDialogKV30.cmdOk_Click"));
    }
    accept();
}

void frmChipDialogKV30::cmdCancel_Click() {
    ReleaseFile();
    QDialog::reject();
}

void frmChipDialogKV30::reject() { cmdCancel_Click(); }

void frmChipDialogKV30::ReleaseFile() {
    if (HoldsFile) {
        HoldsFile = false;
        FileExecutive().CloseFile();
    }
}
