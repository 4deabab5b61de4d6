#pragma once

#include <QString>
#include <cstdint>

// What frmEnvironmentOptions shows and keeps, apart from its window: the
// environment's settings and the open project's compiler options, read when
// the dialog loads and stored when it is accepted.
namespace EnvironmentOptionsModel {

// The dialog's values as its controls hold them.
struct EnvironmentOptionsValues {
    // optSaveChanges; optPromptToSaveChanges is its opposite.
    bool SaveChanges = true;
    // The defaults for new projects.
    bool StrictSyntaxRules = true;
    bool OptimizeEnable = true;
    QString MaxVstr;
    // cboTabWidth's ListIndex: tab width 2 is 0.
    int TabWidthIndex = 2;
    // The pickers' items from 1: item n is colour index n - 1.
    int CodeColorItem = 2;
    int CommentColorItem = 3;
    int StringLiteralColorItem = 9;
    int BackgroundColorItem = 16;
    QString EditorFontName;
    int16_t EditorFontSize = 9;
    // "This Project": enabled only with a project open, empty without one.
    bool CurrentProjectEnabled = false;
    bool StrictSyntaxRulesCUR = false;
    bool OptimizeEnableCUR = false;
    QString MaxVstrCUR;
};

// The largest string length that either check lets through.
constexpr int MaxVstrLimit = 64;

// Form_Load: the settings, and the open project's options from its
// preference file.
EnvironmentOptionsValues Load();

enum class AcceptOutcome {
    // Everything is stored: the dialog unloads.
    Accepted,
    // The default string length is out of range: the focus goes to txtMaxVstr.
    RejectedMaxVstr,
    // The project's string length is out of range: the focus goes to txtMaxVstrCUR.
    RejectedMaxVstrCUR,
};

// cmdOK_Click: stores the settings, brings the open module windows to them,
// and writes the project's options into its preference file. The save
// option and the two compiler defaults are stored before any check, and
// stay stored when a check fails.
AcceptOutcome Accept(const EnvironmentOptionsValues& Values);

}  // namespace EnvironmentOptionsModel
