#pragma once

#include <cstdint>

class QWidget;

// Window positions are kept in twips (1440 to the inch) and converted at the
// window with the screen's logical resolution.
namespace TwipsConversion {

int TwipsToPixelsX(int32_t Twips);
int TwipsToPixelsY(int32_t Twips);
int32_t PixelsToTwipsX(int Pixels);
int32_t PixelsToTwipsY(int Pixels);
// The primary screen's size in twips.
int32_t ScreenWidthTwips();
int32_t ScreenHeightTwips();

}  // namespace TwipsConversion
