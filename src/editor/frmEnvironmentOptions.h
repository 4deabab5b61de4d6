#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <cstdint>

#include "editor/EnvironmentOptionsModel.h"

// The settings of the whole environment: what a compile does with unsaved
// changes, the compiler defaults for new projects and the open project's own
// options, the editor's colours, font and tab width. Shown modally by the
// editor; OK stores, Cancel keeps nothing.
class frmEnvironmentOptions : public QDialog {
    Q_OBJECT
  public:
    frmEnvironmentOptions();
    ~frmEnvironmentOptions() override;

    QString EditorFontName;
    int16_t EditorFontSize = 9;

    QTabWidget* SSTab1;
    QGroupBox* Frame1;
    QRadioButton* optPromptToSaveChanges;
    QRadioButton* optSaveChanges;
    QGroupBox* fraProjectOptions;
    QCheckBox* chkStrictSyntaxRules;
    QCheckBox* chkOptimizeEnable;
    QLabel* Label1;
    QLineEdit* txtMaxVstr;
    QGroupBox* fraProjectOptionsCUR;
    QCheckBox* chkStrictSyntaxRulesCUR;
    QCheckBox* chkOptimizeEnableCUR;
    QLabel* lblMaxVstrCUR;
    QLineEdit* txtMaxVstrCUR;
    QGroupBox* fraEditorSettings;
    QComboBox* icbCodeColor;
    QComboBox* icbCommentColor;
    QComboBox* icbStringLiteralColor;
    QComboBox* icbBackgroundColor;
    QGroupBox* Frame3;
    QLineEdit* txtEditorFontName;
    QLineEdit* txtEditorFontSize;
    QPushButton* cmdChangeFont;
    QComboBox* cboTabWidth;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

    // The keys of the sixteen colours, in the order of their indices.
    static const char* const ColorKeys[16];

  public slots:
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdChangeFont_Click();

  private:
    void Form_Load();
    void InitializeColors();
    void ShowValues(const EnvironmentOptionsModel::EnvironmentOptionsValues& Values);
    EnvironmentOptionsModel::EnvironmentOptionsValues Values() const;
    void ShowFont();
};
