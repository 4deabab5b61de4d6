#include "frame/FormGeometry.h"

void FormGeometry::ClampNegative() {
    if (Top < 0) {
        Top = 0;
    } else if (Left < 0) {
        Left = 0;
    }
}

void FormGeometry::ClampToScreen(int32_t ScreenWidthTwips, int32_t ScreenHeightTwips) {
    if (Top > ScreenHeightTwips - 567) {
        Top = 0;
    }
    if (Left > ScreenWidthTwips - 567) {
        Left = 0;
    }
}
