#pragma once

#include <QDialog>
#include <QListWidget>
#include <QPushButton>

// A log of internal checks and errors. No command opens it: it is where the
// trace hooks lead when a debug build fills them in.
class frmTestProbe : public QDialog {
    Q_OBJECT
  public:
    frmTestProbe();

    void Message(const QString& Text);
    // Logs the text and, until the user declines them, asks in a box.
    void ErrorMessage(const QString& Text);
    void Pass(int32_t Number);
    void Fail(int32_t Number);

    QListWidget* lstMessageLog;
    QPushButton* cmdClear;
    QPushButton* cmdTest;
    bool CancelErrorBoxes = false;

  public slots:
    void cmdClear_Click();
    void cmdTest_Click();

  private:
    void Form_Load();
};
