#include "editor/EditBoxModuleWindow.h"

EditBoxModuleWindow::EditBoxModuleWindow() : Window_(new frmEditBoxType) {}

EditBoxModuleWindow::~EditBoxModuleWindow() {
    if (Window_) {
        Window_->SetAllowRemoval(true);
        Window_->close();
        delete Window_;
    }
}

void EditBoxModuleWindow::Initialize(const QString& Name, int16_t Number,
                                     const QString& SourceCode) {
    Window_->Initialize(Name, Number, SourceCode);
    Window_->show();
}

QString EditBoxModuleWindow::Text() const { return Window_->Text(); }
bool EditBoxModuleWindow::HasChanged() const { return Window_->HasChanged(); }
void EditBoxModuleWindow::SetHasChanged(bool Changed) { Window_->SetHasChanged(Changed); }
void EditBoxModuleWindow::SetCaption(const QString& Caption) { Window_->setWindowTitle(Caption); }
void EditBoxModuleWindow::SetAllowRemoval(bool Allow) { Window_->SetAllowRemoval(Allow); }

int32_t EditBoxModuleWindow::WindowState() const {
    const Qt::WindowStates State = Window_->windowState();
    if (State & Qt::WindowMinimized) {
        return 1;
    }
    return (State & Qt::WindowMaximized) ? 2 : 0;
}

void EditBoxModuleWindow::SetWindowState(int32_t State) {
    Window_->setWindowState(State == 1   ? Qt::WindowMinimized
                            : State == 2 ? Qt::WindowMaximized
                                         : Qt::WindowNoState);
}

void EditBoxModuleWindow::FocusEditControl() { Window_->rtfEditBox->setFocus(); }
int32_t EditBoxModuleWindow::TextLength() const { return Window_->RichText().TextLength(); }

void EditBoxModuleWindow::Select(int32_t Start, int32_t Length) {
    Window_->RichText().SetSelStart(Start);
    Window_->RichText().SetSelLength(Length);
}

void EditBoxModuleWindow::SetEditorFont() { Window_->Model().SetEditorFont(); }
void EditBoxModuleWindow::SetEditorColors() { Window_->Model().SetEditorColors(); }
void EditBoxModuleWindow::SetTabWidth() { Window_->Model().SetTabWidth(); }
