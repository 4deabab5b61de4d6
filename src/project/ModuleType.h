#pragma once

#include <QString>
#include <cstdint>
#include <memory>

#include "project/ModuleEditWindow.h"
#include "project/ModuleFile.h"

// One module of the project: its file name and the edit window that holds
// its text. A module without a window has no text.
class ModuleType {
  public:
    ~ModuleType();

    bool IsDefined = false;

    int16_t Number() const { return Number_; }
    // The window takes the number as well: it is how the editor knows which
    // module is active.
    void SetNumber(int16_t NewNumber);
    void SetEditorFont();
    void SetTabWidth();
    void SetEditorColors();
    QString SourceCode() const;
    // Opens the edit window with the text.
    void SetSourceCode(const QString& NewSourceCode);
    bool HasChanged() const;
    void SetHasChanged(bool Changed);
    bool IsWindowMaximized() const;
    // Selects at least three characters, unless the text ends first.
    void HighlightText(int32_t StartPosition, int32_t EndPosition);
    void Activate();
    const QString& Path() const { return Path_; }
    const QString& Name() const { return Name_; }
    const QString& Extension() const { return Extension_; }
    // The separator the project file's line put before the name; none when
    // the line had no directory or the module was renamed.
    QChar PathSeparator() const { return PathSeparator_; }
    void Rename(const QString& NewPath, const QString& NewName, const QString& NewExtension);
    void LoadExistingModule(const QString& DefaultPath, const QString& LongModuleName,
                            int16_t NewNumber, bool& ModuleFileExists);

    // How the file came, so that it is written back the same way.
    ModuleFileFormat Format;
    bool HasEditBox() const { return HasEditBox_; }
    ModuleEditWindow* EditWindow() const { return EditWindow_.get(); }

  private:
    QString Path_;
    QString Name_;
    QString Extension_;
    QChar PathSeparator_;
    int16_t Number_ = 0;
    std::unique_ptr<ModuleEditWindow> EditWindow_;
    bool HasEditBox_ = false;
};
