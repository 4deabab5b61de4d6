#pragma once

#include <QWidget>
#include <memory>

class QComboBox;
class QLabel;
class QRadioButton;
class QTimer;
class QGridLayout;
class SimulatedChipDrawing;
class SimulatedLed;
class SimulatedSerialLine;

// The "Simulated Chip" window: the simulated KV-20/KV-30 as a person would
// look at the board, its pins and two LEDs live while its program runs, and a
// switch on any pin so that a program that reads a button can be tried. While
// it is shown it keeps the chip's program going on the clock, whether or not
// a port reads the line.
class frmSimulatedChip : public QWidget {
  public:
    frmSimulatedChip();
    ~frmSimulatedChip() override;

    // The chip that the window shows; the program installs it at start.
    static void Attach(std::weak_ptr<SimulatedSerialLine> Line);

    // Brings the chip up to the clock's time and shows what it does now.
    void Refresh();

    SimulatedChipDrawing* picChip = nullptr;
    SimulatedLed* ledRed = nullptr;
    SimulatedLed* ledGreen = nullptr;
    QLabel* lblProgram = nullptr;
    QComboBox* cboPin = nullptr;
    QRadioButton* optNotDriven = nullptr;
    QRadioButton* optDriveHigh = nullptr;
    QRadioButton* optDriveLow = nullptr;
    QTimer* tmrRefresh = nullptr;

  protected:
    void showEvent(QShowEvent* Event) override;
    void hideEvent(QHideEvent* Event) override;

  private:
    void BuildDrawing(int ChipType);
    void ListPins(int ChipType);
    void ShowDriveOfChosenPin();
    void DriveChosenPin();

    QGridLayout* ChipLayout = nullptr;
    int ShownChipType = 0;
    uint64_t ShownChanges = ~uint64_t{0};
};
