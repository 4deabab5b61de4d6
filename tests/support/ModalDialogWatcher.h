#pragma once

#include <QApplication>
#include <QList>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>
#include <functional>

// A downloader closed by an earlier case asked the application to quit
// while no loop ran, and every dialog's loop would end at once; the
// application's own loop, run once before the case loads its windows,
// clears that.
inline void ClearPendingQuit() {
    QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();
}

// A person at a modal dialog: while a command waits in a dialog's own loop,
// each modal dialog that comes up is noted by name and handed to Act once,
// which looks at it and presses its buttons as a user would.
class ModalDialogWatcher {
  public:
    explicit ModalDialogWatcher(std::function<void(QWidget&)> Act) : Act(std::move(Act)) {
        Poll.setInterval(5);
        QObject::connect(&Poll, &QTimer::timeout, [this] { Look(); });
        Poll.start();
    }

    // The objectName of every dialog handed over, in order.
    QStringList Seen;

  private:
    void Look() {
        QWidget* Shown = QApplication::activeModalWidget();
        if (Shown == nullptr || !Shown->isVisible()) {
            return;
        }
        for (const QPointer<QWidget>& Done : Handled) {
            if (Done == Shown) {
                return;
            }
        }
        Handled << Shown;
        Seen << Shown->objectName();
        Act(*Shown);
    }

    std::function<void(QWidget&)> Act;
    QTimer Poll;
    QList<QPointer<QWidget>> Handled;
};
