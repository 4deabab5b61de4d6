#include "sim/SimulatedChipDrawing.h"

#include <QPainter>

#include "sim/SimulatedChipBoard.h"

SimulatedChipDrawing::SimulatedChipDrawing(const SimulatedChipBoard& Board, int PinCount,
                                           const QString& Caption, QWidget* Parent)
    : ChipPackageDrawing(PinCount, Caption, Parent), Board(Board) {}

QColor SimulatedChipDrawing::StateColour(const SimulatedChipBoard& Board, int Pin) {
    switch (Board.PinState(Pin)) {
        case MachinePinState::OutputHigh:
            return QColor(0xE0, 0x20, 0x20);
        case MachinePinState::OutputLow:
            return QColor(0x20, 0x30, 0xA0);
        case MachinePinState::InputPullup:
            return QColor(0xA0, 0xE0, 0xA0);
        case MachinePinState::InputTristate:
            break;
    }
    return QColor(Qt::white);
}

void SimulatedChipDrawing::paintEvent(QPaintEvent* Event) {
    ChipPackageDrawing::paintEvent(Event);
    QPainter Painter(this);
    Painter.setRenderHint(QPainter::Antialiasing);
    const int Pitch = height() / qMax(1, PinsPerSide());
    const double Radius = qMax(3.0, qMin(Pitch * 0.3, width() * 0.06));
    for (int Pin = 1; Pin <= PinCount(); ++Pin) {
        const QPoint At = PinPosition(Pin);
        const bool Left = Pin <= PinsPerSide();
        const QPointF Centre(Left ? At.x() - Radius - 2 : At.x() + Radius + 2, At.y());
        Painter.setPen(QPen(Qt::black, 1.0));
        if (Board.Driven(Pin)) {
            // The ring shows the level the user drives the pin to.
            const bool High = Board.Level(Pin);
            Painter.setPen(QPen(High ? QColor(0xFF, 0x90, 0x00) : Qt::black, 2.5));
        }
        Painter.setBrush(StateColour(Board, Pin));
        Painter.drawEllipse(Centre, Radius, Radius);
    }
}
