#pragma once

#include <QLabel>
#include <QWidget>

// The start-up splash: the logo with the product name and the copyright line
// beneath it. Any key, or a click on the logo or a label, unloads it at once.
class frmSplash : public QWidget {
    Q_OBJECT
  public:
    frmSplash();

    QLabel* imgKavlinlogo;
    QLabel* lblProductName;
    QLabel* lblCopyright;

  protected:
    void keyPressEvent(QKeyEvent* Event) override;
    bool eventFilter(QObject* Watched, QEvent* Event) override;

  private:
    void UnloadSelf();
};

// The owner's copyright line, with the copyright sign as character 169.
QString CopyrightLine();
