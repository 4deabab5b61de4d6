#include "chip/PinGrid.h"

#include <QLabel>

namespace {
// Columns: number, IN, P, 0, 1, drawing, IN, P, 0, 1, number.
constexpr int LeftNumber = 0;
constexpr int LeftFirstBox = 1;
constexpr int DrawingColumn = 5;
constexpr int RightFirstBox = 6;
constexpr int RightNumber = 10;
}  // namespace

PinGrid::PinGrid(QWidget* Frame, ChipPackageDrawing* Drawing, int SidePins)
    : Layout(new QGridLayout(Frame)) {
    static const char* const Heads[] = {"IN", "P", "0", "1"};
    for (int Side = 0; Side < 2; ++Side) {
        const int First = Side == 0 ? LeftFirstBox : RightFirstBox;
        for (int Index = 0; Index < 4; ++Index) {
            auto* Head = new QLabel(QLatin1String(Heads[Index]), Frame);
            Head->setObjectName(QStringLiteral("lblHead") +
                                (Side == 0 ? QStringLiteral("Left") : QStringLiteral("Right")) +
                                QString::number(Index + 1));
            Head->setAlignment(Qt::AlignCenter);
            Layout->addWidget(Head, 0, First + Index, Qt::AlignHCenter | Qt::AlignBottom);
        }
    }
    Layout->addWidget(Drawing, 1, DrawingColumn, SidePins, 1);
    Layout->setVerticalSpacing(0);
}

void PinGrid::AddLeft(int Row, PinBoxGroup* Pin) {
    Layout->addWidget(Pin->NumberLabel(), Row, LeftNumber, Qt::AlignRight | Qt::AlignVCenter);
    for (int Index = 1; Index <= 4; ++Index) {
        Layout->addWidget(Pin->Box(Index), Row, LeftFirstBox + Index - 1, Qt::AlignCenter);
    }
}

void PinGrid::AddRight(int Row, PinBoxGroup* Pin) {
    for (int Index = 1; Index <= 4; ++Index) {
        Layout->addWidget(Pin->Box(Index), Row, RightFirstBox + Index - 1, Qt::AlignCenter);
    }
    Layout->addWidget(Pin->NumberLabel(), Row, RightNumber, Qt::AlignLeft | Qt::AlignVCenter);
}

void PinGrid::AddGap(int Row) {
    Layout->setRowMinimumHeight(Row, Layout->parentWidget()->fontMetrics().height() / 2);
}
