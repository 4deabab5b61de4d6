#pragma once

#include <QString>
#include <cstdint>

#include "frame/FormGeometry.h"

// What the compile asks of the editor's main window: the two result texts,
// the status bar, the chip dialog, the window's middle, and the two ways an
// error is shown. The editor installs itself while it exists; a batch
// compiles with the headless host, which writes the error block to the log.
class CompilerHost {
  public:
    virtual ~CompilerHost() = default;

    virtual void SetWarningDescription(const QString& Text) = 0;
    virtual void SetCompileStatus(const QString& Text) = 0;
    // Panel 1 to 4 of the status bar.
    virtual void ShowStatusPanel(int Panel, const QString& Text) = 0;
    virtual void mnuChipDialog_Click() = 0;
    // The window's place and size in twips.
    virtual FormGeometry CurrentGeometry() const = 0;

    // Panel 3 "Errors", the module's window to the front with the error's
    // text selected, the message, and the selection again after the box.
    virtual void HighlightSourceError(int32_t EndPosition, int32_t StartPosition,
                                      int16_t ModuleNumber, const QString& ErrorDescription);
    // The error block of a batch in the log file.
    virtual void DisplayCommandLineError(int16_t ModuleNumber, int16_t LineNumber,
                                         int16_t ColumnNumber, int32_t ErrorNumber,
                                         const QString& ErrorDescription);

    // The installed host, or the headless one when none is installed.
    static CompilerHost& Instance();
    static void Install(CompilerHost* Host);
    static void Uninstall(CompilerHost* Host);
};

// The host of a compile without an editor window: nobody reads the result
// texts or sees a status bar there.
class HeadlessCompilerHost : public CompilerHost {
  public:
    void SetWarningDescription(const QString&) override {}
    void SetCompileStatus(const QString&) override {}
    void ShowStatusPanel(int, const QString&) override {}
    void mnuChipDialog_Click() override {}
    // The editor window where it would open: its stored place.
    FormGeometry CurrentGeometry() const override;
};
