#include "chip/frmChipDialogKV10.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QShowEvent>
#include <QVBoxLayout>

#include "chip/CheckBoxValue.h"
#include "chip/ChipDialogRecords.h"
#include "chip/PinGrid.h"
#include "chip/PrfRecordFile.h"
#include "frame/ErrorDisplay.h"
#include "frame/GlobalData.h"
#include "platform/Global.h"
#include "platform/Val.h"

namespace {
constexpr int SidePins = 20;
constexpr int FixedPins[] = {5, 6, 7, 8, 9, 18, 19, 20, 29, 30, 31, 40};
// The pins of external RAM and extended I/O in the order the handlers walk
// them; 39 stands twice, to no effect.
const std::vector<int> BusPins = {2,  16, 17, 21, 22, 23, 24, 25, 26, 27,
                                  28, 39, 32, 33, 34, 35, 36, 37, 38, 39};
const std::vector<int> BusPinsAndPin3 = [] {
    std::vector<int> Numbers{3};
    Numbers.insert(Numbers.end(), BusPins.begin(), BusPins.end());
    return Numbers;
}();

QCheckBox* Option(const QString& Name, const QString& Caption, QWidget* Parent) {
    auto* Box = new QCheckBox(Caption, Parent);
    Box->setObjectName(Name);
    return Box;
}

QLineEdit* TextBox(const QString& Name, QWidget* Parent) {
    auto* Box = new QLineEdit(Parent);
    Box->setObjectName(Name);
    return Box;
}

QLabel* Caption(const QString& Name, const QString& Text, QWidget* Buddy) {
    auto* Label = new QLabel(Text, Buddy->parentWidget());
    Label->setObjectName(Name);
    Label->setBuddy(Buddy);
    return Label;
}

struct RangeCheck {
    QLineEdit* Box;
    int32_t Lowest;
    int32_t Highest;
    QString FirstLine;
    QString Range;
};
}  // namespace

frmChipDialogKV10::frmChipDialogKV10() {
    setObjectName(QStringLiteral("frmChipDialogKV10"));
    setWindowTitle(QStringLiteral("KV-10"));
    setModal(true);

    Frame2 = new QGroupBox(QStringLiteral("I/O Pins at Startup"), this);
    Frame2->setObjectName(QStringLiteral("Frame2"));
    bmpChip = new ChipPackageDrawing(40, QStringLiteral("KV-10"), Frame2);
    bmpChip->setObjectName(QStringLiteral("bmpChip"));
    for (int Number = 1; Number <= 40; ++Number) {
        Pins[Number] =
            new PinBoxGroup(QStringLiteral("Pin") + QString::number(Number), Number, Frame2);
    }
    // Left column pins 1 to 20 top-down, right column 40 down to 21.
    PinGrid Grid(Frame2, bmpChip, SidePins);
    for (int Row = 1; Row <= SidePins; ++Row) {
        Grid.AddLeft(Row, Pins[Row]);
        Grid.AddRight(Row, Pins[2 * SidePins + 1 - Row]);
    }

    Frame5 = new QGroupBox(QStringLiteral("Serial Ports"), this);
    Frame5->setObjectName(QStringLiteral("Frame5"));
    Com1Enable = Option(QStringLiteral("Com1Enable"), QStringLiteral("COM&1"), Frame5);
    Com2Enable = Option(QStringLiteral("Com2Enable"), QStringLiteral("COM&2"), Frame5);
    auto* SerialLayout = new QVBoxLayout(Frame5);
    SerialLayout->addWidget(Com1Enable);
    SerialLayout->addWidget(Com2Enable);

    Frame3 = new QGroupBox(QStringLiteral("Network Settings"), this);
    Frame3->setObjectName(QStringLiteral("Frame3"));
    NetEnable = Option(QStringLiteral("NetEnable"), QStringLiteral("&Network Enable"), Frame3);
    NetBaud = TextBox(QStringLiteral("NetBaud"), Frame3);
    lblNetBaud = Caption(QStringLiteral("lblNetBaud"), QStringLiteral("Baud Rate"), NetBaud);
    NodeAddress = TextBox(QStringLiteral("NodeAddress"), Frame3);
    lblNodeAddress =
        Caption(QStringLiteral("lblNodeAddress"), QStringLiteral("Node Address"), NodeAddress);
    GroupAddress = TextBox(QStringLiteral("GroupAddress"), Frame3);
    lblGroupAddress =
        Caption(QStringLiteral("lblGroupAddress"), QStringLiteral("Group Address"), GroupAddress);
    auto* NetworkLayout = new QGridLayout(Frame3);
    NetworkLayout->addWidget(NetEnable, 0, 0, 1, 2);
    NetworkLayout->addWidget(lblNetBaud, 1, 0);
    NetworkLayout->addWidget(NetBaud, 1, 1);
    NetworkLayout->addWidget(lblNodeAddress, 2, 0);
    NetworkLayout->addWidget(NodeAddress, 2, 1);
    NetworkLayout->addWidget(lblGroupAddress, 3, 0);
    NetworkLayout->addWidget(GroupAddress, 3, 1);

    Frame1 = new QGroupBox(this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    RamEnable = Option(QStringLiteral("RamEnable"), QStringLiteral("External &RAM"), Frame1);
    extendedIO =
        Option(QStringLiteral("extendedIO"), QStringLiteral("&Extended I/O and RAM"), Frame1);
    codeCache = Option(QStringLiteral("codeCache"), QStringLiteral("&Cache"), Frame1);
    auto* MemoryLayout = new QVBoxLayout(Frame1);
    MemoryLayout->addWidget(RamEnable);
    MemoryLayout->addWidget(extendedIO);
    MemoryLayout->addWidget(codeCache);

    Frame4 = new QGroupBox(QStringLiteral("SPI code storage"), this);
    Frame4->setObjectName(QStringLiteral("Frame4"));
    chkUseInternalEEPROM =
        Option(QStringLiteral("chkUseInternalEEPROM"), QStringLiteral("Internal EE&PROM"), Frame4);
    txtSpiSize = TextBox(QStringLiteral("txtSpiSize"), Frame4);
    lblSpiSize = Caption(QStringLiteral("lblSpiSize"), QStringLiteral("Bytes"), txtSpiSize);
    auto* StorageLayout = new QGridLayout(Frame4);
    StorageLayout->addWidget(chkUseInternalEEPROM, 0, 0, 1, 2);
    StorageLayout->addWidget(txtSpiSize, 1, 0);
    StorageLayout->addWidget(lblSpiSize, 1, 1);

    cmdOK = new QPushButton(QStringLiteral("&OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdPrjCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdPrjCancel->setObjectName(QStringLiteral("cmdPrjCancel"));

    auto* Options = new QVBoxLayout;
    Options->addWidget(Frame5);
    Options->addWidget(Frame3);
    Options->addWidget(Frame1);
    Options->addWidget(Frame4);
    Options->addStretch(1);
    auto* Buttons = new QHBoxLayout;
    Buttons->addStretch(1);
    Buttons->addWidget(cmdOK);
    Buttons->addWidget(cmdPrjCancel);
    Options->addLayout(Buttons);
    auto* Layout = new QHBoxLayout(this);
    Layout->addWidget(Frame2);
    Layout->addLayout(Options);
    Layout->setSizeConstraint(QLayout::SetFixedSize);

    // Only a user's click is a click: the program setting a box raises no
    // clicked. codeCache has no handler.
    connect(Com1Enable, &QCheckBox::clicked, this, &frmChipDialogKV10::Com1Enable_Click);
    connect(Com2Enable, &QCheckBox::clicked, this, &frmChipDialogKV10::Com2Enable_Click);
    connect(NetEnable, &QCheckBox::clicked, this, &frmChipDialogKV10::NetEnable_Click);
    connect(chkUseInternalEEPROM, &QCheckBox::clicked, this, [this] {
        // A click on the grey box clears it: the third state is the file's,
        // never the user's.
        if (chkUseInternalEEPROM->isTristate()) {
            CheckBoxValue::Set(chkUseInternalEEPROM, 0);
        }
        chkUseInternalEEPROM_Click();
    });
    connect(RamEnable, &QCheckBox::clicked, this, &frmChipDialogKV10::RamEnable_Click);
    connect(extendedIO, &QCheckBox::clicked, this, &frmChipDialogKV10::extendedIO_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmChipDialogKV10::cmdOK_Click);
    connect(cmdPrjCancel, &QPushButton::clicked, this, &frmChipDialogKV10::cmdPrjCancel_Click);
}

std::vector<PinBoxGroup*> frmChipDialogKV10::PinRows() const {
    return {Pins.begin() + 1, Pins.end()};
}

void frmChipDialogKV10::showEvent(QShowEvent* Event) {
    // Each opening shows the file as it is now.
    if (!Event->spontaneous()) {
        Form_Load();
    }
    QDialog::showEvent(Event);
}

void frmChipDialogKV10::InitializeDialog() {
    for (PinBoxGroup* Row : PinRows()) {
        Row->ClearAndEnable();
    }
    for (int Number : FixedPins) {
        Pins[Number]->ClearAndDisable();
    }
    for (PinBoxGroup* Row : PinRows()) {
        if (Row->IsEnabled(1)) {
            Row->SetValue(1, 1);
        }
    }
    codeCache->setEnabled(false);
    NodeAddress->setEnabled(false);
    NodeAddress->setText(QStringLiteral("65279"));
    GroupAddress->setEnabled(false);
    GroupAddress->setText(QStringLiteral("254"));
    NetBaud->setEnabled(false);
    NetBaud->setText(QStringLiteral("460800"));
    txtSpiSize->setText(QStringLiteral("32768"));
}

void frmChipDialogKV10::LoadOption(QCheckBox* Option, int32_t Value, Handler OnChange) {
    const int16_t Before = CheckBoxValue::Get(Option);
    CheckBoxValue::Set(Option, Value);
    if (OnChange != nullptr && CheckBoxValue::Get(Option) != Before) {
        (this->*OnChange)();
    }
}

void frmChipDialogKV10::Form_Load() {
    InitializeDialog();
    PrfRecordFile File;
    if (!ChipDialogRecords::OpenForLoad(File)) {
        return;
    }
    // The rows first; the options then take away what they claim.
    ChipDialogRecords::LoadPins(File, PinRows());
    NodeAddress->setText(QString::number(File.Get(600).Value));
    GroupAddress->setText(QString::number(File.Get(601).Value));
    LoadOption(NetEnable, File.Get(602).Value, &frmChipDialogKV10::NetEnable_Click);
    LoadOption(RamEnable, File.Get(603).Value, &frmChipDialogKV10::RamEnable_Click);
    LoadOption(codeCache, File.Get(604).Value, nullptr);
    LoadOption(Com1Enable, File.Get(605).Value, &frmChipDialogKV10::Com1Enable_Click);
    LoadOption(Com2Enable, File.Get(606).Value, &frmChipDialogKV10::Com2Enable_Click);
    LoadOption(chkUseInternalEEPROM, File.Get(609).Value,
               &frmChipDialogKV10::chkUseInternalEEPROM_Click);
    const int32_t Rate = File.Get(610).Value;
    NetBaud->setText(QString::number(Rate == 0 ? 460800 : Rate));
    txtSpiSize->setText(QString::number(File.Get(611).Value));
    File.Close();
}

void frmChipDialogKV10::ClaimPins(const std::vector<int>& Numbers) {
    for (int Number : Numbers) {
        Pins[Number]->ClearAndDisable();
    }
}

void frmChipDialogKV10::FreePins(const std::vector<int>& Numbers) {
    for (int Number : Numbers) {
        Pins[Number]->EnableAll();
        Pins[Number]->SetValue(1, 1);
    }
}

void frmChipDialogKV10::Com1Enable_Click() {
    if (Com1Enable->isChecked()) {
        ClaimPins({10, 11});
        NetEnable->setChecked(false);
        NetEnable->setEnabled(false);
        return;
    }
    // Pin 11 comes back here only with COM2 off; the network gives it back
    // whatever COM2 says.
    const bool Com2IsOff = CheckBoxValue::Get(Com2Enable) == 0;
    Pins[10]->EnableAll();
    if (Com2IsOff) {
        Pins[11]->EnableAll();
    }
    Pins[14]->EnableAll();
    Pins[10]->SetValue(1, 1);
    if (Com2IsOff) {
        Pins[11]->SetValue(1, 1);
    }
    Pins[14]->SetValue(1, 1);
    NetEnable->setEnabled(true);
}

void frmChipDialogKV10::Com2Enable_Click() {
    if (Com2Enable->isChecked()) {
        ClaimPins({1, 12});
    } else {
        FreePins({1, 12});
    }
}

void frmChipDialogKV10::NetEnable_Click() {
    const bool On = NetEnable->isChecked();
    if (On) {
        ClaimPins({10, 11, 14});
        Com1Enable->setChecked(false);
        Com1Enable->setEnabled(false);
    } else {
        for (int Number : {10, 11, 14}) {
            Pins[Number]->EnableAll();
        }
        Pins[10]->SetValue(1, 1);
        if (CheckBoxValue::Get(Com2Enable) == 0) {
            Pins[11]->SetValue(1, 1);
        }
        Pins[14]->SetValue(1, 1);
        Com1Enable->setEnabled(true);
    }
    NodeAddress->setEnabled(On);
    GroupAddress->setEnabled(On);
    NetBaud->setEnabled(On);
}

void frmChipDialogKV10::chkUseInternalEEPROM_Click() {
    if (CheckBoxValue::Get(chkUseInternalEEPROM) == 1) {
        GlobalData::MemorySize = 512;
        for (int Number : {6, 7, 8}) {
            Pins[Number]->ClearAndEnable();
            Pins[Number]->SetValue(1, 1);
        }
    } else {
        if (GlobalData::MemorySize == 512) {
            GlobalData::MemorySize = 32768;
        }
        ClaimPins({6, 7, 8});
    }
    txtSpiSize->setText(QString::number(GlobalData::MemorySize));
}

void frmChipDialogKV10::RamEnable_Click() {
    if (RamEnable->isChecked()) {
        ClaimPins(BusPins);
        codeCache->setEnabled(true);
        extendedIO->setChecked(false);
        extendedIO->setEnabled(false);
    } else {
        FreePins(BusPins);
        codeCache->setChecked(false);
        codeCache->setEnabled(false);
        extendedIO->setEnabled(true);
    }
}

void frmChipDialogKV10::extendedIO_Click() {
    if (extendedIO->isChecked()) {
        ClaimPins(BusPinsAndPin3);
        // Its Value stays as it is.
        RamEnable->setEnabled(false);
    } else {
        FreePins(BusPinsAndPin3);
        RamEnable->setEnabled(true);
    }
}

bool frmChipDialogKV10::NetworkValuesAreLegal() {
    const RangeCheck Checks[] = {
        {NetBaud, 9600, 460800, QStringLiteral("Network baud rate out of range"),
         QStringLiteral("Legal range is 9600 to 460800")},
        {NodeAddress, 0, 65279, QStringLiteral("Node address out of range"),
         QStringLiteral("Legal range is 0 to 65279")},
        {GroupAddress, 0, 254, QStringLiteral("Group address out of range"),
         QStringLiteral("Legal range is 0 to 254")},
    };
    for (const RangeCheck& Check : Checks) {
        const double Number = Val(Check.Box->text());
        if (Number < Check.Lowest || Number > Check.Highest) {
            ErrorDisplay::ShowErrorMessage(Check.FirstLine + QStringLiteral("\n") + Check.Range,
                                           Check.FirstLine);
            Check.Box->setFocus();
            return false;
        }
    }
    return true;
}

void frmChipDialogKV10::cmdOK_Click() {
    // With the network off the boxes are saved as they stand.
    if (NetEnable->isChecked() && !NetworkValuesAreLegal()) {
        return;
    }
    PrfRecordFile File;
    PrfRecordType Buffer;
    ChipDialogRecords::SavePins(File, PinRows(), Buffer);
    ChipDialogRecords::PutNumber(File, 600, NodeAddress->text(), Buffer);
    ChipDialogRecords::PutNumber(File, 601, GroupAddress->text(), Buffer);
    const std::pair<int32_t, QCheckBox*> Options[] = {
        {602, NetEnable},  {603, RamEnable},  {604, codeCache},
        {605, Com1Enable}, {606, Com2Enable}, {609, chkUseInternalEEPROM}};
    for (const auto& [RecordNumber, Box] : Options) {
        ChipDialogRecords::PutValue(File, RecordNumber, CheckBoxValue::Get(Box), Buffer);
    }
    ChipDialogRecords::PutNumber(File, 610, NetBaud->text(), Buffer);
    if (CheckBoxValue::Get(chkUseInternalEEPROM) == 1) {
        ChipDialogRecords::PutValue(File, 611, 512, Buffer);
    } else {
        ChipDialogRecords::PutNumber(File, 611, txtSpiSize->text(), Buffer);
    }
    ChipDialogRecords::PutValue(File, 613, 1, Buffer);
    // A read-only file keeps what it holds, and nothing tells the user.
    File.Close();
    Unload(QDialog::Accepted);
}

void frmChipDialogKV10::cmdPrjCancel_Click() {
    // MemorySize stays as the internal EEPROM's box left it.
    Unload(QDialog::Rejected);
}

void frmChipDialogKV10::reject() { cmdPrjCancel_Click(); }

void frmChipDialogKV10::Unload(int Result) {
    done(Result);
    if (Global<frmChipDialogKV10>::IsLoaded() && &Global<frmChipDialogKV10>::Get() == this) {
        Global<frmChipDialogKV10>::Release();
        deleteLater();
    }
}
