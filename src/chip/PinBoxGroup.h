#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QObject>
#include <array>
#include <cstdint>

#include "chip/PrfRecordType.h"

// One chip pin in a chip dialog: a row of four check boxes with the indexes
// 1 to 4, the columns "IN", "P", "0" and "1", which are also the Flags(1) to
// Flags(4) of the pin's record, and a label with the pin's number. The
// dialog places the boxes in its own grid, so that the columns line up.
//
// The click rule lives here: a user's click on a box clears the other three,
// and a row the user has cleared falls back to "IN". It runs on the boxes'
// clicked signal only, so that the program setting a box (SetValue, the
// claims of the options) never acts as a click.
class PinBoxGroup : public QObject {
    Q_OBJECT
  public:
    // The boxes are named Name_1 to Name_4.
    PinBoxGroup(const QString& Name, int32_t PinNumber, QWidget* Parent);

    int32_t PinNumber() const { return Pin; }
    QLabel* NumberLabel() const { return Number; }
    // Index 1 to 4.
    QCheckBox* Box(int Index) const { return Boxes[Index - 1]; }

    // A box's Value as CheckBoxValue tells it.
    int16_t Value(int Index) const;
    void SetValue(int Index, int16_t NewValue);
    bool IsEnabled(int Index) const { return Box(Index)->isEnabled(); }

    // The steps the option handlers take on a row.
    void ClearAndDisable();
    void ClearAndEnable();
    void EnableAll();

    // The record's four flags into the boxes, and the boxes into the flags.
    void ShowFlags(const PrfRecordType& Record);
    void TakeFlags(PrfRecordType& Record) const;

  signals:
    // A user's click on box Index, after the click rule.
    void Clicked(int Index);

  private:
    void Box_Click(int Index);

    int32_t Pin;
    QLabel* Number;
    std::array<QCheckBox*, 4> Boxes{};
};
