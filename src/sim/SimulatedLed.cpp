#include "sim/SimulatedLed.h"

#include <QPainter>
#include <QRadialGradient>

SimulatedLed::SimulatedLed(QColor Colour, const QString& Name, QWidget* Parent)
    : QWidget(Parent), Colour(Colour) {
    setObjectName(Name);
    setAccessibleName(Name);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SimulatedLed::SetLit(bool Lit) {
    if (Lit != Lit_) {
        Lit_ = Lit;
        update();
    }
}

QColor SimulatedLed::ShownColour() const { return Lit_ ? Colour : Colour.darker(400); }

QSize SimulatedLed::sizeHint() const {
    const int Side = fontMetrics().height() * 2;
    return {Side, Side};
}

void SimulatedLed::paintEvent(QPaintEvent*) {
    QPainter Painter(this);
    Painter.setRenderHint(QPainter::Antialiasing);
    const double Radius = qMin(width(), height()) / 2.0 - 2;
    const QPointF Centre = QRectF(rect()).center();
    QRadialGradient Glow(Centre, Radius);
    Glow.setColorAt(0.0, ShownColour());
    Glow.setColorAt(0.7, ShownColour());
    Glow.setColorAt(1.0, ShownColour().darker(Lit_ ? 160 : 120));
    Painter.setPen(QPen(Qt::black, 1.0));
    Painter.setBrush(Glow);
    Painter.drawEllipse(Centre, Radius, Radius);
}
