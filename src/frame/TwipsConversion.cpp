#include "frame/TwipsConversion.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>

namespace TwipsConversion {

namespace {
constexpr double TwipsPerInch = 1440.0;

double DpiX() {
    const QScreen* Screen = QGuiApplication::primaryScreen();
    return Screen != nullptr ? Screen->logicalDotsPerInchX() : 96.0;
}

double DpiY() {
    const QScreen* Screen = QGuiApplication::primaryScreen();
    return Screen != nullptr ? Screen->logicalDotsPerInchY() : 96.0;
}
}  // namespace

int TwipsToPixelsX(int32_t Twips) {
    return static_cast<int>(std::lround(Twips * DpiX() / TwipsPerInch));
}
int TwipsToPixelsY(int32_t Twips) {
    return static_cast<int>(std::lround(Twips * DpiY() / TwipsPerInch));
}
int32_t PixelsToTwipsX(int Pixels) {
    return static_cast<int32_t>(std::lround(Pixels * TwipsPerInch / DpiX()));
}
int32_t PixelsToTwipsY(int Pixels) {
    return static_cast<int32_t>(std::lround(Pixels * TwipsPerInch / DpiY()));
}

int32_t ScreenWidthTwips() {
    const QScreen* Screen = QGuiApplication::primaryScreen();
    return Screen != nullptr ? PixelsToTwipsX(Screen->geometry().width()) : 0;
}

int32_t ScreenHeightTwips() {
    const QScreen* Screen = QGuiApplication::primaryScreen();
    return Screen != nullptr ? PixelsToTwipsY(Screen->geometry().height()) : 0;
}

}  // namespace TwipsConversion
