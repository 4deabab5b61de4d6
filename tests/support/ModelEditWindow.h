#pragma once

#include <memory>

#include "editor/EditBoxModel.h"
#include "project/ModuleEditWindow.h"
#include "support/MemoryRichTextBox.h"

// A module's edit window for tests: the edit box's behaviour over a control
// in memory, with the window's state kept as plain fields.
class ModelEditWindow : public ModuleEditWindow {
  public:
    ModelEditWindow() : Model(&Box) {
        Model.SetCaption = [this](const QString& NewCaption) { Caption = NewCaption; };
        ++Open;
    }
    ~ModelEditWindow() override { --Open; }

    void Initialize(const QString& Name, int16_t Number, const QString& SourceCode) override {
        Model.Initialize(Name, Number, SourceCode);
    }
    QString Text() const override { return Model.Text(); }
    bool HasChanged() const override { return Model.HasChanged; }
    void SetHasChanged(bool Changed) override { Model.HasChanged = Changed; }
    void SetCaption(const QString& NewCaption) override { Caption = NewCaption; }
    void SetAllowRemoval(bool Allow) override { Model.AllowRemoval = Allow; }
    int32_t WindowState() const override { return State; }
    void SetWindowState(int32_t NewState) override { State = NewState; }
    void FocusEditControl() override { ++Focused; }
    int32_t TextLength() const override { return Box.TextLength(); }
    void Select(int32_t Start, int32_t Length) override {
        Box.SetSelStart(Start);
        Box.SetSelLength(Length);
    }
    void SetEditorFont() override { Model.SetEditorFont(); }
    void SetEditorColors() override { Model.SetEditorColors(); }
    void SetTabWidth() override { Model.SetTabWidth(); }
    void SetModuleNumber(int16_t Number) override { Model.SetModuleNumber(Number); }

    // Windows alive now, across all instances.
    static inline int Open = 0;

    MemoryRichTextBox Box;
    EditBoxModel Model;
    QString Caption;
    int32_t State = 0;
    int Focused = 0;
};
