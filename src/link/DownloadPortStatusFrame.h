#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

#include "frame/DownloadPortInfoType.h"

// The "Port Status" frame both download port windows share: the two buttons
// and the status that says whether the port stands ready.
class DownloadPortStatusFrame : public QGroupBox {
    Q_OBJECT
  public:
    explicit DownloadPortStatusFrame(QWidget* Parent = nullptr);

    // "  Open" in the normal colours on white, or " Closed" in white on red.
    void ShowStatus(bool IsOpen);
    // Hands Port to the executive. When the port did not come out open or
    // closed as Port asks, says so in the "Download Port Error" box
    // ("Unable to open " + Kind + number + Suffix, then the cause) and
    // returns False.
    static bool ApplyAndReport(const DownloadPortInfoType& Port, const QString& Kind,
                               const QString& Suffix);

    QPushButton* cmdOpenPort;
    QPushButton* cmdClosePort;
    QLabel* lblStatusCaption;
    QLabel* lblStatus;
};
