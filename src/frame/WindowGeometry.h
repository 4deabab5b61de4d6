#pragma once

#include <QRect>

#include "frame/FormGeometry.h"

class QWidget;

// Puts a window where its stored geometry says, with the clamps to the
// screen, and reads its geometry back in twips; a field the window has not
// changed keeps the twips it was restored from, so that rounding to pixels
// does not creep a little at every restart.
class WindowGeometry {
  public:
    void Restore(QWidget& Window, FormGeometry Geometry);
    FormGeometry Current(const QWidget& Window) const;

  private:
    FormGeometry Restored;
    QRect Pixels{0, 0, -1, -1};
};
