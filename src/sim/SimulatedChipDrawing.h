#pragma once

#include "chip/ChipPackageDrawing.h"

class SimulatedChipBoard;

// The package of the simulated chip with each pin's state on its stub:
// an output high red, an output low dark blue, an input hollow (green with
// its pull-up), and a pin that the user drives from outside ringed in the
// level it is driven to.
class SimulatedChipDrawing : public ChipPackageDrawing {
  public:
    SimulatedChipDrawing(const SimulatedChipBoard& Board, int PinCount, const QString& Caption,
                         QWidget* Parent = nullptr);

    // The colour a pin's marker is filled with.
    static QColor StateColour(const SimulatedChipBoard& Board, int Pin);

  protected:
    void paintEvent(QPaintEvent* Event) override;

  private:
    const SimulatedChipBoard& Board;
};
