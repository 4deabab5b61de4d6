#include "editor/EditBoxModuleWindow.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <algorithm>

#include "editor/frmSourceEditor.h"
#include "platform/Global.h"

EditBoxModuleWindow::EditBoxModuleWindow() : Window_(new frmEditBoxType) {}

EditBoxModuleWindow::~EditBoxModuleWindow() {
    if (!Window_) {
        return;
    }
    Window_->SetAllowRemoval(true);
    // In the editor's area the child window goes with its frame.
    if (auto* Sub = qobject_cast<QMdiSubWindow*>(Window_->parentWidget())) {
        delete Sub;
        return;
    }
    Window_->close();
    delete Window_;
}

void EditBoxModuleWindow::Initialize(const QString& Name, int16_t Number,
                                     const QString& SourceCode) {
    Window_->Initialize(Name, Number, SourceCode);
    // The editor's area holds the module windows; without the editor a
    // window stands alone (a batch's project).
    if (Global<frmSourceEditor>::IsLoaded()) {
        QMdiArea* Area = Global<frmSourceEditor>::Get().mdiArea;
        QMdiSubWindow* Sub = Area->addSubWindow(Window_);
        // A new window takes two thirds of the area, as a cascade would.
        Sub->resize(std::max(320, Area->width() * 2 / 3), std::max(200, Area->height() * 2 / 3));
        Sub->show();
        Global<frmSourceEditor>::Get().mdiArea->setActiveSubWindow(Sub);
        return;
    }
    Window_->show();
}

QString EditBoxModuleWindow::Text() const { return Window_->Text(); }
bool EditBoxModuleWindow::HasChanged() const { return Window_->HasChanged(); }
void EditBoxModuleWindow::SetHasChanged(bool Changed) { Window_->SetHasChanged(Changed); }
void EditBoxModuleWindow::SetCaption(const QString& Caption) { Window_->setWindowTitle(Caption); }
void EditBoxModuleWindow::SetAllowRemoval(bool Allow) { Window_->SetAllowRemoval(Allow); }

QWidget* EditBoxModuleWindow::Frame() const {
    // In the editor's area the state is the sub-window's, else the window's own.
    return Window_->parentWidget() != nullptr ? Window_->parentWidget() : Window_.data();
}

int32_t EditBoxModuleWindow::WindowState() const {
    const Qt::WindowStates State = Frame()->windowState();
    if (State & Qt::WindowMinimized) {
        return 1;
    }
    return (State & Qt::WindowMaximized) ? 2 : 0;
}

void EditBoxModuleWindow::SetWindowState(int32_t State) {
    Frame()->setWindowState(State == 1   ? Qt::WindowMinimized
                            : State == 2 ? Qt::WindowMaximized
                                         : Qt::WindowNoState);
}

void EditBoxModuleWindow::FocusEditControl() {
    if (auto* Sub = qobject_cast<QMdiSubWindow*>(Window_->parentWidget())) {
        if (QMdiArea* Area = Sub->mdiArea()) {
            Area->setActiveSubWindow(Sub);
        }
    }
    Window_->rtfEditBox->setFocus();
}
int32_t EditBoxModuleWindow::TextLength() const { return Window_->RichText().TextLength(); }

void EditBoxModuleWindow::Select(int32_t Start, int32_t Length) {
    Window_->RichText().SetSelStart(Start);
    Window_->RichText().SetSelLength(Length);
}

void EditBoxModuleWindow::SetEditorFont() { Window_->Model().SetEditorFont(); }
void EditBoxModuleWindow::SetEditorColors() { Window_->Model().SetEditorColors(); }
void EditBoxModuleWindow::SetTabWidth() { Window_->Model().SetTabWidth(); }
void EditBoxModuleWindow::SetModuleNumber(int16_t Number) {
    Window_->Model().SetModuleNumber(Number);
}
