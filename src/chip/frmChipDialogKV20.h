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

// The start-up state of the KV-20's pins, its two LEDs and the PCLink
// option, read from and written to the project's preference file record by
// record. The editor saves the project's mirror of the file before and
// reloads it after.
class frmChipDialogKV20 : public QDialog {
    Q_OBJECT
  public:
    frmChipDialogKV20();

    // Pin row n, 1 to 27.
    PinBoxGroup* Pin(int PinNumber) const { return frmKV20pin[PinNumber]; }

    QGroupBox* frmKVframe1;
    QGroupBox* Frame2;
    ChipPackageDrawing* picChipPackage;
    // frmKV20pin[1] to frmKV20pin[27]; element 0 is unused.
    std::array<PinBoxGroup*, 28> frmKV20pin{};
    QLabel* auxLab1;
    QLabel* auxLab2;
    QLabel* auxLab3;
    QGroupBox* KV20leds;
    QCheckBox* KV20redLed;
    QCheckBox* KV20grnLed;
    QCheckBox* chkPCLink;
    // Never seen: the network values are carried through a save.
    QGroupBox* Frame3;
    QLineEdit* frmKV20nodeAddress;
    QLineEdit* frmKV20GroupAddress;
    QLineEdit* frmKV20netBaud;
    QPushButton* cmdOK;
    QPushButton* kv20cancel;

  public slots:
    void Form_Load();
    void cmdOK_Click();
    void kv20cancel_Click();
    void KV20redLed_Click();
    void KV20grnLed_Click();
    void chkPCLink_Click();
    void frmKV20pin_Click(int PinNumber, int Index);
    // Escape and the window's close button are a Cancel.
    void reject() override;

  protected:
    void showEvent(QShowEvent* Event) override;

  private:
    void InitializeDialog();
    void Unload(int Result);
    std::vector<PinBoxGroup*> PinRows() const;
    // A LED's box follows its row's "0".
    void ShowLed(QCheckBox* Led, int PinNumber);
    void Led_Click(QCheckBox* Led, int PinNumber);
};
