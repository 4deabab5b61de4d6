#include "frame/WindowGeometry.h"

#include <QWidget>

#include "frame/TwipsConversion.h"

void WindowGeometry::Restore(QWidget& Window, FormGeometry Geometry) {
    using namespace TwipsConversion;
    Geometry.ClampNegative();
    Geometry.ClampToScreen(ScreenWidthTwips(), ScreenHeightTwips());
    Window.move(TwipsToPixelsX(Geometry.Left), TwipsToPixelsY(Geometry.Top));
    Window.resize(TwipsToPixelsX(Geometry.Width), TwipsToPixelsY(Geometry.Height));
    Restored = Geometry;
    Pixels = QRect(Window.pos(), Window.size());
}

FormGeometry WindowGeometry::Current(const QWidget& Window) const {
    using namespace TwipsConversion;
    const QPoint Position = Window.pos();
    FormGeometry Geometry;
    Geometry.Top = Position.y() == Pixels.y() ? Restored.Top : PixelsToTwipsY(Position.y());
    Geometry.Left = Position.x() == Pixels.x() ? Restored.Left : PixelsToTwipsX(Position.x());
    Geometry.Width =
        Window.width() == Pixels.width() ? Restored.Width : PixelsToTwipsX(Window.width());
    Geometry.Height =
        Window.height() == Pixels.height() ? Restored.Height : PixelsToTwipsY(Window.height());
    return Geometry;
}
