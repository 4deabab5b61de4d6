#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QVector>
#include <array>
#include <cstdint>

#include "chip/ChipPackageDrawing.h"
#include "chip/FileStatusTypes.h"
#include "chip/PinStateTypes.h"

// The start-up state of the KV-30's 40 pins. Unlike the other chip dialogs it
// makes its 160 boxes at run time, reads and writes only the pin records, all
// through the file executive, and holds the project's preference file open
// from its load until it closes.
class frmChipDialogKV30 : public QDialog {
    Q_OBJECT
  public:
    frmChipDialogKV30();
    ~frmChipDialogKV30() override;

    void PutPinState(int32_t PinNumber, PinStateTypes PinState);
    void GetPinState(int32_t PinNumber, PinStateTypes& PinState);
    // The box of a pin's state: 4 x PinNumber - 3 + its right offset.
    static void ToIndex(int32_t PinNumber, int32_t PinState, int32_t& Index);
    static void ToPin(int32_t Index, int32_t& PinNumber);

    QGroupBox* Frame1;
    ChipPackageDrawing* bmpChip;
    // The column heads of both pin columns in one caption; the grid shows
    // them as a head over each column (lblColumnHead), so this stays hidden.
    QLabel* Label1;
    QVector<QLabel*> lblColumnHead;
    // chkPin[0] is the hidden pattern; 1 to 160 are the pins' boxes.
    QVector<QCheckBox*> chkPin;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

    FileStatusTypes FileStatus = fstUndefined;

  public slots:
    void cmdOK_Click();
    void cmdCancel_Click();
    void chkPin_Click(int Index);

  protected:
    // Escape and the window's close button cancel too: the file must not
    // stay held by a dialog that is gone.
    void reject() override;

  private:
    void Form_Load();
    void SetDefaults();
    void BuildBoxes();
    void DisableFixedPins();
    // The grid cell of box Index: pins 1 to 20 down the left, 40 to 21 down
    // the right, beside their stubs on the drawing.
    void PlaceBox(int Index);
    void ReleaseFile();

    std::array<PinStateTypes, 41> SavedPinStates{};
    // The file executive's one file is this dialog's, from the load to the close.
    bool HoldsFile = false;
    class QGridLayout* PinLayout = nullptr;
};
