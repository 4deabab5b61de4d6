#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <array>
#include <vector>

#include "chip/ChipPackageDrawing.h"
#include "chip/PinBoxGroup.h"

// The KV-10's pins and its peripheral options, read from and written to the
// project's preference file record by record. Each option claims pins for
// itself; its handler takes the rows away from the user and gives them back.
class frmChipDialogKV10 : public QDialog {
    Q_OBJECT
  public:
    frmChipDialogKV10();

    // Pin row n, 1 to 40.
    PinBoxGroup* Pin(int PinNumber) const { return Pins[PinNumber]; }

    QGroupBox* Frame2;
    ChipPackageDrawing* bmpChip;
    // Pin1 to Pin40 as Pins[1] to Pins[40]; element 0 is unused.
    std::array<PinBoxGroup*, 41> Pins{};
    QGroupBox* Frame5;
    QCheckBox* Com1Enable;
    QCheckBox* Com2Enable;
    QGroupBox* Frame3;
    QCheckBox* NetEnable;
    QLabel* lblNetBaud;
    QLineEdit* NetBaud;
    QLabel* lblNodeAddress;
    QLineEdit* NodeAddress;
    QLabel* lblGroupAddress;
    QLineEdit* GroupAddress;
    QGroupBox* Frame1;
    QCheckBox* RamEnable;
    QCheckBox* extendedIO;
    QCheckBox* codeCache;
    QGroupBox* Frame4;
    QCheckBox* chkUseInternalEEPROM;
    QLineEdit* txtSpiSize;
    QLabel* lblSpiSize;
    QPushButton* cmdOK;
    QPushButton* cmdPrjCancel;

  public slots:
    void Form_Load();
    void cmdOK_Click();
    void cmdPrjCancel_Click();
    void Com1Enable_Click();
    void Com2Enable_Click();
    void NetEnable_Click();
    void chkUseInternalEEPROM_Click();
    void RamEnable_Click();
    void extendedIO_Click();
    // Escape and the window's close button are a Cancel.
    void reject() override;

  protected:
    void showEvent(QShowEvent* Event) override;

  private:
    using Handler = void (frmChipDialogKV10::*)();
    void InitializeDialog();
    void Unload(int Result);
    std::vector<PinBoxGroup*> PinRows() const;
    // The load sets an option as a click would: a changed Value runs its handler.
    void LoadOption(QCheckBox* Option, int32_t Value, Handler OnChange);
    // The claim of RamEnable and extendedIO on the bus pins (and pin 3).
    void ClaimPins(const std::vector<int>& Numbers);
    void FreePins(const std::vector<int>& Numbers);
    // The first range check that fails tells the user and takes the focus.
    bool NetworkValuesAreLegal();
};
