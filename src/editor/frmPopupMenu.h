#pragma once

#include <QAction>
#include <QMenu>
#include <QObject>

// Carries the edit boxes' context menu; never shown itself.
class frmPopupMenu : public QObject {
    Q_OBJECT
  public:
    frmPopupMenu();
    ~frmPopupMenu() override;

    QMenu* mnuEdit;
    QAction* mnuCut;
    QAction* mnuCopy;
    QAction* mnuPaste;
    QAction* mnuDelete;
};
