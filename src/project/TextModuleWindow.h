#pragma once

#include "project/ModuleEditWindow.h"

// A module's text in a batch, where nobody sees a window: held as it was
// read, never laid out or coloured, so that a large module costs a batch no
// more than its text.
class TextModuleWindow : public ModuleEditWindow {
  public:
    void Initialize(const QString& Name, int16_t Number, const QString& SourceCode) override;
    QString Text() const override { return Text_; }
    bool HasChanged() const override { return HasChanged_; }
    void SetHasChanged(bool Changed) override { HasChanged_ = Changed; }
    void SetCaption(const QString& Caption) override { Caption_ = Caption; }
    void SetAllowRemoval(bool) override {}
    int32_t WindowState() const override { return State_; }
    void SetWindowState(int32_t State) override { State_ = State; }
    void FocusEditControl() override {}
    int32_t TextLength() const override { return static_cast<int32_t>(Text_.size()); }
    void Select(int32_t, int32_t) override {}
    void SetEditorFont() override {}
    void SetEditorColors() override {}
    void SetTabWidth() override {}

  private:
    QString Caption_;
    QString Text_;
    bool HasChanged_ = false;
    int32_t State_ = 0;
};
