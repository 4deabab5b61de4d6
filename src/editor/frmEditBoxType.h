#pragma once

#include <QPlainTextEdit>
#include <QPointer>
#include <QWidget>
#include <memory>

#include "editor/EditBoxModel.h"
#include "editor/PlainTextEditRichTextBox.h"

class frmEditBoxType;
class QMdiSubWindow;

// The edit box's text control: a QPlainTextEdit that hands its keys, its
// right button and its focus to the edit box first.
class EditBoxControl : public QPlainTextEdit {
    Q_OBJECT
  public:
    explicit EditBoxControl(frmEditBoxType* Owner);

  protected:
    void keyPressEvent(QKeyEvent* Event) override;
    void mousePressEvent(QMouseEvent* Event) override;
    void focusInEvent(QFocusEvent* Event) override;
    void contextMenuEvent(QContextMenuEvent* Event) override;

  private:
    frmEditBoxType* Owner_;
};

// The child window in which one module's source text is edited.
class frmEditBoxType : public QWidget {
    Q_OBJECT
  public:
    frmEditBoxType();
    ~frmEditBoxType() override;

    EditBoxModel& Model() { return *Model_; }
    PlainTextEditRichTextBox& RichText() { return *RichText_; }

    // The edit box's public face, as the module and the main window use it.
    void Initialize(const QString& Name, int16_t NewModuleNumber, const QString& SourceCode) {
        Model_->Initialize(Name, NewModuleNumber, SourceCode);
    }
    QString Text() const { return Model_->Text(); }
    void SetText(const QString& SourceCode) { Model_->SetText(SourceCode); }
    bool HasChanged() const { return Model_->HasChanged; }
    void SetHasChanged(bool Changed) { Model_->HasChanged = Changed; }
    bool InsertMode() const { return Model_->InsertMode(); }
    void SetInsertMode(bool Mode);
    void SetAllowRemoval(bool Allow) { Model_->AllowRemoval = Allow; }

    EditBoxControl* rtfEditBox;

    void rtfEditBox_MouseDown(int32_t Button, const QPoint& GlobalPosition);
    // The key as the edit box's table knows it; True when it was handled here.
    bool rtfEditBox_KeyDown(QKeyEvent* Event);

  protected:
    void closeEvent(QCloseEvent* Event) override;
    void resizeEvent(QResizeEvent* Event) override;
    void showEvent(QShowEvent* Event) override;
    void changeEvent(QEvent* Event) override;

  private:
    void Form_Resize();
    void WatchSubWindow();

    PlainTextEditRichTextBox* RichText_;
    std::unique_ptr<EditBoxModel> Model_;
    QPointer<QMdiSubWindow> SubWindow_;
    bool Active_ = false;
};
