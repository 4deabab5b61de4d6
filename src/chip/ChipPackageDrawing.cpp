#include "chip/ChipPackageDrawing.h"

#include <QPainter>
#include <QPainterPath>

namespace {
// The stubs stand out of the body by this share of the body's width.
constexpr double StubShare = 0.16;
}  // namespace

ChipPackageDrawing::ChipPackageDrawing(int PinCount, const QString& Caption, QWidget* Parent)
    : QWidget(Parent), Pins(PinCount < 2 ? 2 : PinCount & ~1), Caption(Caption) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    setAccessibleName(Caption);
}

QSize ChipPackageDrawing::sizeHint() const {
    const int Line = fontMetrics().height();
    return {Line * 5, Line * PinsPerSide()};
}

QSize ChipPackageDrawing::minimumSizeHint() const {
    const int Line = fontMetrics().height();
    return {Line * 5, Line * PinsPerSide() * 3 / 4};
}

double ChipPackageDrawing::PinPitch() const {
    return static_cast<double>(height()) / PinsPerSide();
}

QRectF ChipPackageDrawing::BodyRect() const {
    const double Stub = width() * StubShare;
    return {Stub, 1.0, width() - 2 * Stub, height() - 2.0};
}

QPoint ChipPackageDrawing::PinPosition(int Pin) const {
    const QRectF Body = BodyRect();
    const int Side = PinsPerSide();
    if (Pin < 1 || Pin > Pins) {
        return {};
    }
    const bool Left = Pin <= Side;
    const int Row = Left ? Pin - 1 : Pins - Pin;
    const double Y = (Row + 0.5) * PinPitch();
    const double X = Left ? Body.left() : Body.right();
    return QPointF(X, Y).toPoint();
}

void ChipPackageDrawing::paintEvent(QPaintEvent*) {
    QPainter Painter(this);
    Painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& Colours = palette();
    const QRectF Body = BodyRect();
    const double Pitch = PinPitch();
    const double StubLength = Body.left() - 1.0;
    const double StubThickness = qMax(2.0, Pitch * 0.35);

    // The stubs first, so that the body covers their inner ends.
    Painter.setPen(QPen(Colours.color(QPalette::WindowText), 1.0));
    Painter.setBrush(QColor(0xB8, 0xB8, 0xB8));
    for (int Pin = 1; Pin <= Pins; ++Pin) {
        const QPointF At = PinPosition(Pin);
        const bool Left = Pin <= PinsPerSide();
        const double X = Left ? At.x() - StubLength : At.x();
        Painter.drawRect(QRectF(X, At.y() - StubThickness / 2, StubLength, StubThickness));
    }

    Painter.setBrush(QColor(0x30, 0x30, 0x34));
    Painter.drawRoundedRect(Body, 3.0, 3.0);

    // The notch marks the end with pin 1.
    const double NotchRadius = qMin(Body.width() / 6, Pitch * 0.6);
    QPainterPath Notch;
    Notch.arcMoveTo(QRectF(Body.center().x() - NotchRadius, Body.top() - NotchRadius,
                           2 * NotchRadius, 2 * NotchRadius),
                    180);
    Notch.arcTo(QRectF(Body.center().x() - NotchRadius, Body.top() - NotchRadius, 2 * NotchRadius,
                       2 * NotchRadius),
                180, 180);
    Painter.setBrush(Colours.color(QPalette::Window));
    Painter.drawPath(Notch);

    // Pin numbers inside the body, beside their stubs, and the chip's name
    // written along the body.
    QFont Small = font();
    Small.setPointSizeF(Small.pointSizeF() * 0.75);
    Painter.setFont(Small);
    Painter.setPen(Qt::white);
    const double Inset = Body.width() * 0.06;
    for (int Pin = 1; Pin <= Pins; ++Pin) {
        const QPointF At = PinPosition(Pin);
        const bool Left = Pin <= PinsPerSide();
        const QRectF Cell(Left ? Body.left() + Inset : Body.center().x(), At.y() - Pitch / 2,
                          Body.width() / 2 - Inset, Pitch);
        Painter.drawText(Cell, (Left ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter,
                         QString::number(Pin));
    }
    Painter.save();
    Painter.translate(Body.center());
    Painter.rotate(90);
    QFont Name = font();
    Name.setBold(true);
    Painter.setFont(Name);
    Painter.drawText(QRectF(-Body.height() / 2, -Body.width() / 2, Body.height(), Body.width()),
                     Qt::AlignCenter, Caption);
    Painter.restore();
}
