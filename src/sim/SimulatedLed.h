#pragma once

#include <QColor>
#include <QWidget>

// One LED of the board, drawn as a lamp that glows in its colour when lit.
class SimulatedLed : public QWidget {
  public:
    SimulatedLed(QColor Colour, const QString& Name, QWidget* Parent = nullptr);

    void SetLit(bool Lit);
    bool Lit() const { return Lit_; }
    // The colour at the lamp's centre as it is drawn now.
    QColor ShownColour() const;

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* Event) override;

  private:
    QColor Colour;
    bool Lit_ = false;
};
