#pragma once

#include <QCloseEvent>
#include <QDialog>

#include "platform/Global.h"

// A dialog, reached as Global<Form>, that unloads itself whichever way it is
// closed (its own button, Escape, the close box): hidden at once, deleted
// once the event is over, so that the next use loads a fresh one.
template <class Form>
class UnloadingDialog : public QDialog {
  protected:
    void Unload() {
        hide();
        Global<Form>::UnloadLater(static_cast<Form*>(this));
    }
    // Escape.
    void reject() override { Unload(); }
    void closeEvent(QCloseEvent* Event) override {
        Event->accept();
        Unload();
    }
};
