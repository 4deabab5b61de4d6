#pragma once

#include <QPointer>

#include "editor/frmEditBoxType.h"
#include "project/ModuleEditWindow.h"

// A module's edit window: an edit box, shown. Until the editor's main window
// holds them in its area, each stands as a window of its own.
class EditBoxModuleWindow : public ModuleEditWindow {
  public:
    EditBoxModuleWindow();
    ~EditBoxModuleWindow() override;

    void Initialize(const QString& Name, int16_t Number, const QString& SourceCode) override;
    QString Text() const override;
    bool HasChanged() const override;
    void SetHasChanged(bool Changed) override;
    void SetCaption(const QString& Caption) override;
    void SetAllowRemoval(bool Allow) override;
    int32_t WindowState() const override;
    void SetWindowState(int32_t State) override;
    void FocusEditControl() override;
    int32_t TextLength() const override;
    void Select(int32_t Start, int32_t Length) override;
    void SetEditorFont() override;
    void SetEditorColors() override;
    void SetTabWidth() override;
    void SetModuleNumber(int16_t Number) override;

    frmEditBoxType* Window() const { return Window_; }

  private:
    QWidget* Frame() const;
    QPointer<frmEditBoxType> Window_;
};
