#pragma once

#include <QString>
#include <QWidget>

// The picture of a chip in its dual-in-line package, drawn here so that it
// stays sharp at any scaling: pins 1 to N/2 run down the left side, the rest
// up the right side, with the notch at the top. The pins are spread evenly
// over the widget's height, so a dialog that lays this widget beside its pin
// rows, spanning exactly those rows of equal height, gets every pin stub
// level with its row.
class ChipPackageDrawing : public QWidget {
  public:
    ChipPackageDrawing(int PinCount, const QString& Caption, QWidget* Parent = nullptr);

    int PinCount() const { return Pins; }
    int PinsPerSide() const { return Pins / 2; }
    // Where pin Pin's stub meets the package, in widget coordinates; the test
    // of a dialog uses it to check that a pin row stands beside its pin.
    QPoint PinPosition(int Pin) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* Event) override;

  private:
    QRectF BodyRect() const;
    double PinPitch() const;

    int Pins;
    QString Caption;
};
