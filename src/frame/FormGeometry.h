#pragma once

#include <cstdint>

// A window's position and size in twips.
class FormGeometry {
  public:
    int32_t Top = 0;
    int32_t Left = 0;
    int32_t Width = 0;
    int32_t Height = 0;

    // The first half of a restore: a negative Top becomes 0; only when Top was
    // not negative is a negative Left made 0 (a window with both negative
    // keeps its Left).
    void ClampNegative();
    // The second half, once the window has taken the values: a Top beyond
    // the screen height less 567 twips, or a Left beyond its width less 567,
    // comes back to 0, so a window stored on a larger screen stays reachable.
    void ClampToScreen(int32_t ScreenWidthTwips, int32_t ScreenHeightTwips);
};
