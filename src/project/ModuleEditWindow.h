#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>

// What a module needs of its edit window. The editor provides the real one
// (an edit box in the main window's area); tests put an edit box over a
// control in memory in its place.
class ModuleEditWindow {
  public:
    virtual ~ModuleEditWindow() = default;
    virtual void Initialize(const QString& Name, int16_t Number, const QString& SourceCode) = 0;
    virtual QString Text() const = 0;
    virtual bool HasChanged() const = 0;
    virtual void SetHasChanged(bool Changed) = 0;
    virtual void SetCaption(const QString& Caption) = 0;
    virtual void SetAllowRemoval(bool Allow) = 0;
    // 0 normal, 1 minimised, 2 maximised.
    virtual int32_t WindowState() const = 0;
    virtual void SetWindowState(int32_t State) = 0;
    virtual void FocusEditControl() = 0;
    virtual int32_t TextLength() const = 0;
    virtual void Select(int32_t Start, int32_t Length) = 0;
    virtual void SetEditorFont() = 0;
    virtual void SetEditorColors() = 0;
    virtual void SetTabWidth() = 0;
    // The module's new place after the list was renumbered, so that the
    // active window names the module it shows.
    virtual void SetModuleNumber(int16_t /*Number*/) {}

    // Makes the edit windows; none installed, a module gets no window.
    using Factory = std::function<std::unique_ptr<ModuleEditWindow>()>;
    static void SetFactory(Factory NewFactory);
    static std::unique_ptr<ModuleEditWindow> Create();
};
