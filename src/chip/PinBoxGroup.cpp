#include "chip/PinBoxGroup.h"

#include "chip/CheckBoxValue.h"

PinBoxGroup::PinBoxGroup(const QString& Name, int32_t PinNumber, QWidget* Parent)
    : QObject(Parent), Pin(PinNumber) {
    setObjectName(Name);
    Number = new QLabel(QString::number(PinNumber), Parent);
    Number->setObjectName(Name + QStringLiteral("_Number"));
    Number->setAlignment(Qt::AlignCenter);
    static const char* const Columns[] = {"IN", "P", "0", "1"};
    for (int Index = 1; Index <= 4; ++Index) {
        auto* Box = new QCheckBox(Parent);
        Box->setObjectName(Name + QStringLiteral("_") + QString::number(Index));
        // The box has no text of its own; its column and pin name it for a screen reader.
        Box->setAccessibleName(QStringLiteral("Pin ") + QString::number(PinNumber) +
                               QStringLiteral(" ") + QLatin1String(Columns[Index - 1]));
        Boxes[Index - 1] = Box;
        connect(Box, &QCheckBox::clicked, this, [this, Index] { Box_Click(Index); });
    }
}

int16_t PinBoxGroup::Value(int Index) const { return CheckBoxValue::Get(Box(Index)); }

void PinBoxGroup::SetValue(int Index, int16_t NewValue) {
    CheckBoxValue::Set(Box(Index), NewValue);
}

void PinBoxGroup::ClearAndDisable() {
    for (int Index = 1; Index <= 4; ++Index) {
        SetValue(Index, 0);
        Box(Index)->setEnabled(false);
    }
}

void PinBoxGroup::ClearAndEnable() {
    for (int Index = 1; Index <= 4; ++Index) {
        SetValue(Index, 0);
        Box(Index)->setEnabled(true);
    }
}

void PinBoxGroup::EnableAll() {
    for (QCheckBox* Target : Boxes) {
        Target->setEnabled(true);
    }
}

void PinBoxGroup::ShowFlags(const PrfRecordType& Record) {
    for (int Index = 1; Index <= 4; ++Index) {
        SetValue(Index, Record.Flags[Index]);
    }
}

void PinBoxGroup::TakeFlags(PrfRecordType& Record) const {
    for (int Index = 1; Index <= 4; ++Index) {
        Record.Flags[Index] = Value(Index);
    }
}

void PinBoxGroup::Box_Click(int Index) {
    // A grey box the user clicked is a plain one from now on.
    Box(Index)->setTristate(false);
    for (int Other = 1; Other <= 4; ++Other) {
        if (Other != Index) {
            SetValue(Other, 0);
        }
    }
    bool AllClear = true;
    for (int Other = 1; Other <= 4; ++Other) {
        AllClear = AllClear && Value(Other) == 0;
    }
    // A row falls back to "IN", never to nothing.
    if (AllClear) {
        SetValue(1, 1);
    }
    emit Clicked(Index);
}
