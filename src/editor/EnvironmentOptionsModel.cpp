#include "editor/EnvironmentOptionsModel.h"

#include "frame/ErrorDisplay.h"
#include "frame/RegistryCentral.h"
#include "platform/Val.h"
#include "project/ProjectType.h"

namespace EnvironmentOptionsModel {

namespace {
// "Variable length string size TEXT is out of range", "Range is 1 to 64 characters".
bool CheckMaxVstr(const QString& Text) {
    const double Value = Val(Text);
    if (Value >= 1 && Value <= MaxVstrLimit) {
        return true;
    }
    ErrorDisplay::ShowErrorMessage(QStringLiteral("Variable length string size ") + Text +
                                       QStringLiteral(" is out of range\nRange is 1 to ") +
                                       QString::number(MaxVstrLimit) +
                                       QStringLiteral(" characters"),
                                   QStringLiteral("String Length Overflow"));
    return false;
}

void ShowCurrentProjectOptions(bool IsEnabled, EnvironmentOptionsValues& Values) {
    Values.CurrentProjectEnabled = IsEnabled;
    if (IsEnabled) {
        const PRFfileType& Preferences = Project().PRFfile();
        Values.StrictSyntaxRulesCUR = Preferences.StrictSyntaxRules;
        Values.OptimizeEnableCUR = Preferences.OptimizeEnable;
        Values.MaxVstrCUR = QString::number(Preferences.MaxVstr);
    } else {
        Values.StrictSyntaxRulesCUR = false;
        Values.OptimizeEnableCUR = false;
        Values.MaxVstrCUR.clear();
    }
}

// The project's options into its preference file; False when its string
// length is out of range (the two flags are in the mirror by then).
bool ApplyCurrentProjectOptions(const EnvironmentOptionsValues& Values) {
    ProjectType& Current = Project();
    if (!Current.IsDefined()) {
        return true;
    }
    PRFfileType& Preferences = Current.PRFfile();
    Preferences.StrictSyntaxRules = Values.StrictSyntaxRulesCUR;
    Preferences.OptimizeEnable = Values.OptimizeEnableCUR;
    if (!CheckMaxVstr(Values.MaxVstrCUR)) {
        return false;
    }
    Preferences.MaxVstr = static_cast<uint8_t>(ValToLong(Values.MaxVstrCUR));
    Preferences.WriteFile();
    return true;
}
}  // namespace

EnvironmentOptionsValues Load() {
    EnvironmentOptionsValues Values;
    Values.SaveChanges = RegistryCentral::RegistryGetSaveFile();
    Values.StrictSyntaxRules = RegistryCentral::RegistryGetStrictSyntaxRules();
    Values.OptimizeEnable = RegistryCentral::RegistryGetOptimizeEnable();
    Values.MaxVstr = QString::number(RegistryCentral::RegistryGetMaxVstr());
    Values.TabWidthIndex = RegistryCentral::RegistryGetTabWidth() - 2;
    int32_t Code = 0;
    int32_t StringLiteral = 0;
    int32_t Comment = 0;
    int32_t Background = 0;
    RegistryCentral::RegistryGetEditorColors(Code, StringLiteral, Comment, Background);
    Values.CodeColorItem = Code + 1;
    Values.CommentColorItem = Comment + 1;
    Values.StringLiteralColorItem = StringLiteral + 1;
    Values.BackgroundColorItem = Background + 1;
    int32_t FontSize = 0;
    RegistryCentral::RegistryGetEditorFont(Values.EditorFontName, FontSize);
    Values.EditorFontSize = static_cast<int16_t>(FontSize);
    ShowCurrentProjectOptions(Project().IsDefined(), Values);
    return Values;
}

AcceptOutcome Accept(const EnvironmentOptionsValues& Values) {
    RegistryCentral::RegistrySaveSaveFile(Values.SaveChanges);
    RegistryCentral::RegistrySaveStrictSyntaxRules(Values.StrictSyntaxRules);
    RegistryCentral::RegistrySaveOptimizeEnable(Values.OptimizeEnable);
    if (!CheckMaxVstr(Values.MaxVstr)) {
        return AcceptOutcome::RejectedMaxVstr;
    }
    RegistryCentral::RegistrySaveMaxVstr(ValToLong(Values.MaxVstr));
    RegistryCentral::RegistrySaveTabWidth(Values.TabWidthIndex + 2);
    RegistryCentral::RegistrySaveEditorColors(
        Values.CodeColorItem - 1, Values.StringLiteralColorItem - 1, Values.CommentColorItem - 1,
        Values.BackgroundColorItem - 1);
    RegistryCentral::RegistrySaveEditorFont(Values.EditorFontName, Values.EditorFontSize);
    ProjectType& Current = Project();
    if (Current.IsDefined()) {
        // The open module windows take the new settings.
        Current.SetEditorColors();
        Current.SetTabWidth();
        Current.SetEditorFont();
    }
    return ApplyCurrentProjectOptions(Values) ? AcceptOutcome::Accepted
                                              : AcceptOutcome::RejectedMaxVstrCUR;
}

}  // namespace EnvironmentOptionsModel
