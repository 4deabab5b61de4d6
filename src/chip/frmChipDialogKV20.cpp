#include "chip/frmChipDialogKV20.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QShowEvent>
#include <QVBoxLayout>

#include "chip/CheckBoxValue.h"
#include "chip/ChipDialogRecords.h"
#include "chip/PinGrid.h"
#include "chip/PrfRecordFile.h"
#include "platform/Global.h"

namespace {
// The pins down each side of the package.
constexpr int SidePins = 12;
// The pins the user can't change: their boxes are disabled, none set.
constexpr int FixedPins[] = {1, 2, 3, 4, 21, 22, 23, 24};
}  // namespace

frmChipDialogKV20::frmChipDialogKV20() {
    setObjectName(QStringLiteral("frmChipDialogKV20"));
    setWindowTitle(QStringLiteral("KV-20"));
    setModal(true);

    frmKVframe1 = new QGroupBox(this);
    frmKVframe1->setObjectName(QStringLiteral("frmKVframe1"));
    Frame2 = new QGroupBox(QStringLiteral("I/O Pins at Startup"), frmKVframe1);
    Frame2->setObjectName(QStringLiteral("Frame2"));
    picChipPackage = new ChipPackageDrawing(24, QStringLiteral("KV-20"), Frame2);
    picChipPackage->setObjectName(QStringLiteral("picChipPackage"));
    for (int Number = 1; Number <= 27; ++Number) {
        frmKV20pin[Number] =
            new PinBoxGroup(QStringLiteral("frmKV20pin") + QString::number(Number), Number, Frame2);
        connect(frmKV20pin[Number], &PinBoxGroup::Clicked, this,
                [this, Number](int Index) { frmKV20pin_Click(Number, Index); });
    }
    auxLab1 = frmKV20pin[25]->NumberLabel();
    auxLab2 = frmKV20pin[26]->NumberLabel();
    auxLab3 = frmKV20pin[27]->NumberLabel();
    auxLab1->setObjectName(QStringLiteral("auxLab1"));
    auxLab2->setObjectName(QStringLiteral("auxLab2"));
    auxLab3->setObjectName(QStringLiteral("auxLab3"));

    // Left column pins 1 to 12 top-down, right column 24 down to 13, as the
    // package has them; 25 to 27 below the right column.
    PinGrid Grid(Frame2, picChipPackage, SidePins);
    for (int Row = 1; Row <= SidePins; ++Row) {
        Grid.AddLeft(Row, frmKV20pin[Row]);
        Grid.AddRight(Row, frmKV20pin[2 * SidePins + 1 - Row]);
    }
    Grid.AddGap(SidePins + 1);
    Grid.AddRight(SidePins + 2, frmKV20pin[25]);
    Grid.AddRight(SidePins + 3, frmKV20pin[26]);
    Grid.AddRight(SidePins + 4, frmKV20pin[27]);

    KV20leds = new QGroupBox(QStringLiteral("LEDS"), frmKVframe1);
    KV20leds->setObjectName(QStringLiteral("KV20leds"));
    KV20redLed = new QCheckBox(QStringLiteral("&Red"), KV20leds);
    KV20redLed->setObjectName(QStringLiteral("KV20redLed"));
    KV20grnLed = new QCheckBox(QStringLiteral("&Green"), KV20leds);
    KV20grnLed->setObjectName(QStringLiteral("KV20grnLed"));
    auto* LedLayout = new QVBoxLayout(KV20leds);
    LedLayout->addWidget(KV20redLed);
    LedLayout->addWidget(KV20grnLed);
    chkPCLink = new QCheckBox(QStringLiteral("&PCLink"), frmKVframe1);
    chkPCLink->setObjectName(QStringLiteral("chkPCLink"));

    auto* Options = new QVBoxLayout;
    Options->addWidget(KV20leds);
    Options->addWidget(chkPCLink);
    Options->addStretch(1);
    auto* FrameLayout = new QHBoxLayout(frmKVframe1);
    FrameLayout->addWidget(Frame2);
    FrameLayout->addLayout(Options);

    // Outside every layout and hidden: the user can't reach these values.
    Frame3 = new QGroupBox(this);
    Frame3->setObjectName(QStringLiteral("Frame3"));
    const auto AddressBox = [this](const QString& Name, const QString& Caption, const QString& Text,
                                   int Row, QGridLayout* Layout) {
        auto* Label = new QLabel(Caption, Frame3);
        auto* Box = new QLineEdit(Text, Frame3);
        Box->setObjectName(Name);
        Layout->addWidget(Label, Row, 0);
        Layout->addWidget(Box, Row, 1);
        return Box;
    };
    auto* NetworkLayout = new QGridLayout(Frame3);
    frmKV20nodeAddress =
        AddressBox(QStringLiteral("frmKV20nodeAddress"), QStringLiteral("Node Address"),
                   QStringLiteral("65279"), 0, NetworkLayout);
    frmKV20GroupAddress =
        AddressBox(QStringLiteral("frmKV20GroupAddress"), QStringLiteral("Group Address"),
                   QStringLiteral(" 254"), 1, NetworkLayout);
    frmKV20netBaud = AddressBox(QStringLiteral("frmKV20netBaud"), QString(),
                                QStringLiteral("460,800"), 2, NetworkLayout);
    Frame3->hide();

    cmdOK = new QPushButton(QStringLiteral("&OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    kv20cancel = new QPushButton(QStringLiteral("Cancel"), this);
    kv20cancel->setObjectName(QStringLiteral("kv20cancel"));
    auto* Buttons = new QHBoxLayout;
    Buttons->addStretch(1);
    Buttons->addWidget(cmdOK);
    Buttons->addWidget(kv20cancel);
    auto* Layout = new QVBoxLayout(this);
    Layout->addWidget(frmKVframe1);
    Layout->addLayout(Buttons);
    Layout->setSizeConstraint(QLayout::SetFixedSize);

    // Only a user's click is a click: the program setting a box raises no clicked.
    connect(KV20redLed, &QCheckBox::clicked, this, &frmChipDialogKV20::KV20redLed_Click);
    connect(KV20grnLed, &QCheckBox::clicked, this, &frmChipDialogKV20::KV20grnLed_Click);
    connect(chkPCLink, &QCheckBox::clicked, this, &frmChipDialogKV20::chkPCLink_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmChipDialogKV20::cmdOK_Click);
    connect(kv20cancel, &QPushButton::clicked, this, &frmChipDialogKV20::kv20cancel_Click);
}

std::vector<PinBoxGroup*> frmChipDialogKV20::PinRows() const {
    return {frmKV20pin.begin() + 1, frmKV20pin.end()};
}

void frmChipDialogKV20::showEvent(QShowEvent* Event) {
    // Each opening shows the file as it is now.
    if (!Event->spontaneous()) {
        Form_Load();
    }
    QDialog::showEvent(Event);
}

void frmChipDialogKV20::InitializeDialog() {
    for (PinBoxGroup* Row : PinRows()) {
        Row->ClearAndEnable();
    }
    for (int Number : FixedPins) {
        frmKV20pin[Number]->ClearAndDisable();
    }
    for (PinBoxGroup* Row : PinRows()) {
        if (Row->IsEnabled(1)) {
            Row->SetValue(1, 1);
        }
    }
    frmKV20nodeAddress->setEnabled(false);
    frmKV20GroupAddress->setEnabled(false);
    frmKV20netBaud->setEnabled(false);
}

void frmChipDialogKV20::Form_Load() {
    InitializeDialog();
    PrfRecordFile File;
    if (!ChipDialogRecords::OpenForLoad(File)) {
        return;
    }
    ChipDialogRecords::LoadPins(File, PinRows());
    KV20redLed->setChecked(frmKV20pin[25]->Value(3) == 1);
    KV20grnLed->setChecked(frmKV20pin[26]->Value(3) == 1);
    frmKV20nodeAddress->setText(QString::number(File.Get(600).Value));
    frmKV20GroupAddress->setText(QString::number(File.Get(601).Value));
    const int32_t NetBaud = File.Get(610).Value;
    frmKV20netBaud->setText(QString::number(NetBaud == 0 ? 460800 : NetBaud));
    CheckBoxValue::Set(chkPCLink, File.Get(614).Value);
    File.Close();
}

void frmChipDialogKV20::frmKV20pin_Click(int PinNumber, int) {
    // The click rule itself is the row's; the LEDs follow their rows.
    if (PinNumber == 25) {
        ShowLed(KV20redLed, 25);
    } else if (PinNumber == 26) {
        ShowLed(KV20grnLed, 26);
    }
}

void frmChipDialogKV20::ShowLed(QCheckBox* Led, int PinNumber) {
    Led->setChecked(frmKV20pin[PinNumber]->Value(3) == 1);
}

void frmChipDialogKV20::Led_Click(QCheckBox* Led, int PinNumber) {
    // A LED is lit by driving its pin low.
    PinBoxGroup* Row = frmKV20pin[PinNumber];
    for (int Index = 1; Index <= 4; ++Index) {
        Row->SetValue(Index, 0);
    }
    Row->SetValue(Led->isChecked() ? 3 : 1, 1);
}

void frmChipDialogKV20::KV20redLed_Click() { Led_Click(KV20redLed, 25); }

void frmChipDialogKV20::KV20grnLed_Click() { Led_Click(KV20grnLed, 26); }

void frmChipDialogKV20::chkPCLink_Click() {
    // Stored and shown only.
}

void frmChipDialogKV20::cmdOK_Click() {
    PrfRecordFile File;
    PrfRecordType Buffer;
    ChipDialogRecords::SavePins(File, PinRows(), Buffer);
    ChipDialogRecords::PutNumber(File, 600, frmKV20nodeAddress->text(), Buffer, 0, 65279);
    ChipDialogRecords::PutNumber(File, 601, frmKV20GroupAddress->text(), Buffer, 0, 254);
    ChipDialogRecords::PutNumber(File, 610, frmKV20netBaud->text(), Buffer);
    ChipDialogRecords::PutValue(File, 613, 2, Buffer);
    ChipDialogRecords::PutValue(File, 614, CheckBoxValue::Get(chkPCLink), Buffer);
    // A read-only file keeps what it holds, and nothing tells the user.
    File.Close();
    Unload(QDialog::Accepted);
}

void frmChipDialogKV20::kv20cancel_Click() { Unload(QDialog::Rejected); }

void frmChipDialogKV20::reject() { kv20cancel_Click(); }

void frmChipDialogKV20::Unload(int Result) {
    done(Result);
    if (Global<frmChipDialogKV20>::IsLoaded() && &Global<frmChipDialogKV20>::Get() == this) {
        Global<frmChipDialogKV20>::Release();
        deleteLater();
    }
}
