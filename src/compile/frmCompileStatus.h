#pragma once

#include <QDialog>
#include <QPlainTextEdit>
#include <QPushButton>
#include <cstdint>

// The whole result of the last compile: its one-line status and the warnings.
class frmCompileStatus : public QDialog {
    Q_OBJECT
  public:
    frmCompileStatus();

    QPlainTextEdit* txtCompileStatus;
    QPushButton* cmdOK;

    // The text box and the button follow the window's inner size, in twips,
    // but only above a minimum size.
    void Resize(int32_t FormWidth, int32_t FormHeight);

    // The controls' places in twips, as Resize last left them.
    int32_t TextWidth = 5980;
    int32_t TextHeight = 2500;
    int32_t ButtonTop = 2600;

  public slots:
    void cmdOK_Click();

  protected:
    void resizeEvent(QResizeEvent* Event) override;

  private:
    void PlaceControls();
};
