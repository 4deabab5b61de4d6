#include "project/ModuleType.h"

#include "frame/ErrorDisplay.h"
#include "frame/RegistryCentral.h"
#include "frame/UtilitiesCommon.h"
#include "frame/UtilitiesFilename.h"
#include "project/ProjectEditorHost.h"

ModuleType::~ModuleType() {
    // The only way an edit window closes: the module lets it go.
    if (HasEditBox_ && EditWindow_) {
        EditWindow_->SetAllowRemoval(true);
    }
    EditWindow_.reset();
}

void ModuleType::SetNumber(int16_t NewNumber) {
    Number_ = NewNumber;
    if (HasEditBox_) {
        EditWindow_->SetModuleNumber(NewNumber);
    }
}

void ModuleType::SetEditorFont() {
    if (HasEditBox_) {
        EditWindow_->SetEditorFont();
    }
}

void ModuleType::SetTabWidth() {
    if (HasEditBox_) {
        EditWindow_->SetTabWidth();
    }
}

void ModuleType::SetEditorColors() {
    if (HasEditBox_) {
        EditWindow_->SetEditorColors();
    }
}

QString ModuleType::SourceCode() const {
    if (!HasEditBox_) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in ModuleType.SourceCode/Get"));
        return QString();
    }
    return EditWindow_->Text();
}

void ModuleType::SetSourceCode(const QString& NewSourceCode) {
    std::unique_ptr<ModuleEditWindow> Window = ModuleEditWindow::Create();
    if (!Window) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in ModuleType.SourceCode/Let, Err = 91"));
        return;
    }
    Window->Initialize(Name_, Number_, NewSourceCode);
    EditWindow_ = std::move(Window);
    HasEditBox_ = true;
    if (RegistryCentral::RegistryGetChildWindowsMaximized()) {
        EditWindow_->SetWindowState(2);
    }
}

bool ModuleType::HasChanged() const { return HasEditBox_ && EditWindow_->HasChanged(); }

void ModuleType::SetHasChanged(bool Changed) {
    if (HasEditBox_) {
        EditWindow_->SetHasChanged(Changed);
    }
}

bool ModuleType::IsWindowMaximized() const {
    return HasEditBox_ && EditWindow_->WindowState() == 2;
}

void ModuleType::Activate() {
    if (HasEditBox_) {
        EditWindow_->FocusEditControl();
    }
    if (ProjectEditorHost* Host = ProjectEditorHost::Instance()) {
        Host->ActivateTab(Number_);
    }
}

void ModuleType::HighlightText(int32_t StartPosition, int32_t EndPosition) {
    Activate();
    if (!HasEditBox_) {
        return;
    }
    int32_t Length = EndPosition - StartPosition;
    const int32_t Limit = EditWindow_->TextLength() - 1 - StartPosition;
    if (Length < 3) {
        Length = 3;
    }
    if (Length > Limit) {
        Length = Limit;
    }
    EditWindow_->Select(StartPosition, std::max(0, Length));
    if (EditWindow_->WindowState() == 1) {
        EditWindow_->SetWindowState(0);
    }
    EditWindow_->FocusEditControl();
}

void ModuleType::Rename(const QString& NewPath, const QString& NewName,
                        const QString& NewExtension) {
    Path_ = NewPath;
    Name_ = NewName;
    Extension_ = NewExtension;
    PathSeparator_ = QChar();
    if (HasEditBox_) {
        EditWindow_->SetCaption(NewName);
    }
}

void ModuleType::LoadExistingModule(const QString& DefaultPath, const QString& LongModuleName,
                                    int16_t NewNumber, bool& ModuleFileExists) {
    ModuleFileExists = false;
    IsDefined = false;
    Number_ = NewNumber;
    QString SplitPath;
    UtilitiesFilename::SplitFilename(LongModuleName, SplitPath, Name_, Extension_);
    Path_ = SplitPath.isEmpty() ? DefaultPath : SplitPath;
    PathSeparator_ =
        SplitPath.isEmpty()
            ? QChar()
            : UtilitiesFilename::LastSeparatorOf(UtilitiesFilename::TrimBlanks(LongModuleName));
    if (!UtilitiesCommon::IsLegalIdentifier(Name_)) {
        ErrorDisplay::ShowErrorMessage(
            QStringLiteral("Module name ") + Name_ + QStringLiteral(" not legal identifier"),
            QStringLiteral("Illegal Identifier"));
        return;
    }
    const QString Filename = UtilitiesFilename::MakeFilename(Path_, Name_, Extension_);
    QString Text;
    if (!UtilitiesFilename::FileExists(Filename) || !ModuleFile::Read(Filename, Text, Format)) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Can't find file ") + Filename,
                                       QStringLiteral("Nonexistant Module"));
        return;
    }
    SetSourceCode(Text);
    ModuleFileExists = true;
    IsDefined = true;
}
