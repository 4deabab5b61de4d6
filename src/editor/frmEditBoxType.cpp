#include "editor/frmEditBoxType.h"

#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMouseEvent>

#include "editor/VirtualKeys.h"
#include "editor/frmPopupMenu.h"
#include "platform/Global.h"

EditBoxControl::EditBoxControl(frmEditBoxType* Owner) : QPlainTextEdit(Owner), Owner_(Owner) {
    setObjectName(QStringLiteral("rtfEditBox"));
    setFont(QFont(QStringLiteral("Courier New")));
}

void EditBoxControl::keyPressEvent(QKeyEvent* Event) {
    if (Owner_->rtfEditBox_KeyDown(Event)) {
        Event->accept();
        return;
    }
    QPlainTextEdit::keyPressEvent(Event);
    Owner_->RichText().EditEnded();
}

void EditBoxControl::mousePressEvent(QMouseEvent* Event) {
    if (Event->button() == Qt::RightButton) {
        Owner_->rtfEditBox_MouseDown(2, Event->globalPosition().toPoint());
        Event->accept();
        return;
    }
    QPlainTextEdit::mousePressEvent(Event);
}

void EditBoxControl::contextMenuEvent(QContextMenuEvent* Event) {
    // The edit box's own menu comes up on the right button instead.
    Event->accept();
}

void EditBoxControl::focusInEvent(QFocusEvent* Event) {
    QPlainTextEdit::focusInEvent(Event);
    Owner_->Model().rtfEditBox_GotFocus();
}

frmEditBoxType::frmEditBoxType() {
    setObjectName(QStringLiteral("frmEditBoxType"));
    rtfEditBox = new EditBoxControl(this);
    rtfEditBox->move(0, 0);
    // Outside an area a window opens at a readable size.
    resize(480, 320);
    RichText_ = new PlainTextEditRichTextBox(rtfEditBox);
    Model_ = std::make_unique<EditBoxModel>(RichText_);
    Model_->SetCaption = [this](const QString& Caption) { setWindowTitle(Caption); };
    Model_->InnerSize = [this](int32_t& Width, int32_t& Height) {
        Width = width();
        Height = height();
    };
    Model_->SetFocus = [this] { rtfEditBox->setFocus(); };
}

frmEditBoxType::~frmEditBoxType() { Model_->Form_Unload(); }

void frmEditBoxType::SetInsertMode(bool Mode) {
    Model_->SetInsertMode(Mode);
    rtfEditBox->setOverwriteMode(!Mode);
}

bool frmEditBoxType::rtfEditBox_KeyDown(QKeyEvent* Event) {
    const int32_t KeyCodeIn = VirtualKeys::Of(Event->key(), Event->modifiers());
    int32_t KeyCode = KeyCodeIn;
    int32_t Shift = VirtualKeys::ShiftOf(Event->modifiers());
    const bool WasInsertKey = KeyCode == VirtualKeys::Insert && Shift == 0;
    Model_->rtfEditBox_KeyDown(KeyCode, Shift);
    if (WasInsertKey) {
        // The control's own overtype mode follows the edit box's.
        rtfEditBox->setOverwriteMode(!Model_->InsertMode());
    }
    // The table marks a key it acted on by clearing its code; no key comes in as 0.
    return KeyCodeIn != 0 && KeyCode == 0;
}

void frmEditBoxType::rtfEditBox_MouseDown(int32_t Button, const QPoint& GlobalPosition) {
    if (Button == 2) {
        Global<frmPopupMenu>::Get().mnuEdit->popup(GlobalPosition);
    }
}

void frmEditBoxType::closeEvent(QCloseEvent* Event) {
    int32_t Cancel = 0;
    Model_->Form_QueryUnload(Cancel, 0);
    if (Cancel != 0) {
        Event->ignore();
        return;
    }
    Event->accept();
}

void frmEditBoxType::Form_Resize() { Model_->Resize(width(), height()); }

void frmEditBoxType::resizeEvent(QResizeEvent* Event) {
    QWidget::resizeEvent(Event);
    Form_Resize();
}

void frmEditBoxType::showEvent(QShowEvent* Event) {
    QWidget::showEvent(Event);
    WatchSubWindow();
}

void frmEditBoxType::WatchSubWindow() {
    auto* Sub = qobject_cast<QMdiSubWindow*>(parentWidget());
    if (Sub == nullptr || Sub == SubWindow_ || Sub->mdiArea() == nullptr) {
        return;
    }
    SubWindow_ = Sub;
    // The child window's activation, as the multi-document area tells it.
    connect(Sub->mdiArea(), &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow* Window) {
        const bool IsActive = Window != nullptr && Window == SubWindow_;
        if (IsActive && !Active_) {
            Active_ = true;
            Model_->Form_Activate();
        } else if (!IsActive && Active_) {
            Active_ = false;
            Model_->Form_Deactivate();
        }
    });
    if (Sub->mdiArea()->activeSubWindow() == Sub && !Active_) {
        Active_ = true;
        Model_->Form_Activate();
    }
}

void frmEditBoxType::changeEvent(QEvent* Event) {
    QWidget::changeEvent(Event);
    // A top-level edit box (outside a multi-document area) follows its own activation.
    if (Event->type() == QEvent::ActivationChange && SubWindow_ == nullptr && isWindow()) {
        if (isActiveWindow() && !Active_) {
            Active_ = true;
            Model_->Form_Activate();
        } else if (!isActiveWindow() && Active_) {
            Active_ = false;
            Model_->Form_Deactivate();
        }
    }
}
