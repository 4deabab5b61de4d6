#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

// The "Port Status" frame both download port windows share: the two buttons
// and the status that says whether the port stands ready.
class DownloadPortStatusFrame : public QGroupBox {
    Q_OBJECT
  public:
    explicit DownloadPortStatusFrame(QWidget* Parent = nullptr);

    // "  Open" in the normal colours on white, or " Closed" in white on red.
    void ShowStatus(bool IsOpen);

    QPushButton* cmdOpenPort;
    QPushButton* cmdClosePort;
    QLabel* lblStatusCaption;
    QLabel* lblStatus;
};
