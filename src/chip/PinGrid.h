#pragma once

#include <QGridLayout>
#include <QWidget>

#include "chip/ChipPackageDrawing.h"
#include "chip/PinBoxGroup.h"

// The pin rows of a chip dialog laid out beside the package's drawing: a
// row of the left column stands level with the left pin it stands for, a
// row of the right column with the right one. The drawing spans exactly the
// side rows, which are all of one height with no gap between them, so that
// its evenly spread pins meet their rows' middles.
class PinGrid {
  public:
    // Lays out Frame, the parent of the rows' boxes, with the heads "IN",
    // "P", "0", "1" above each column and Drawing between the columns.
    PinGrid(QWidget* Frame, ChipPackageDrawing* Drawing, int SidePins);

    // Row 1 is the top side row; rows past SidePins lie below the drawing.
    void AddLeft(int Row, PinBoxGroup* Pin);
    void AddRight(int Row, PinBoxGroup* Pin);
    // An empty row of half a line's height.
    void AddGap(int Row);

  private:
    QGridLayout* Layout;
};
