#include "editor/frmEnvironmentOptions.h"

#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <QPixmap>
#include <QVBoxLayout>

#include "editor/SyntaxHighlighterType.h"
#include "platform/FontDialogService.h"
#include "platform/Global.h"

using EnvironmentOptionsModel::AcceptOutcome;
using EnvironmentOptionsModel::EnvironmentOptionsValues;

const char* const frmEnvironmentOptions::ColorKeys[16] = {
    "Black",    "Blue",         "Green",       "Cyan",       "Red",        "Magenta",
    "Yellow",   "White",        "Gray",        "LightBlue",  "LightGreen", "LightCyan",
    "LightRed", "LightMagenta", "LightYellow", "BrightWhite"};

namespace {
template <class Control>
Control* Named(Control* Made, const char* Name) {
    Made->setObjectName(QString::fromLatin1(Name));
    return Made;
}

QLabel* Label(const char* Caption, QWidget* Parent) {
    return new QLabel(QString::fromLatin1(Caption), Parent);
}

// The colour picker's row: its label and the picker.
void AddPicker(QFormLayout* Form, const char* Caption, QComboBox* Picker) {
    Picker->setIconSize(QSize(48, 14));
    Picker->setMinimumWidth(90);
    Form->addRow(QString::fromLatin1(Caption), Picker);
}

// A control to be made: where it goes and its name.
template <class Control>
struct ControlSlot {
    Control** Member;
    const char* Name;
};

// The three compiler options of a group: the defaults for new projects and
// the open project's own look the same.
void AddCompilerOptions(QGroupBox* Group, ControlSlot<QCheckBox> Strict,
                        ControlSlot<QCheckBox> Optimize, ControlSlot<QLabel> MaxVstrLabel,
                        ControlSlot<QLineEdit> MaxVstr) {
    *Strict.Member =
        Named(new QCheckBox(QStringLiteral("Use &Strict Syntax Rules"), Group), Strict.Name);
    *Optimize.Member =
        Named(new QCheckBox(QStringLiteral("Code Optimi&zer"), Group), Optimize.Name);
    *MaxVstrLabel.Member =
        Named(Label("Maximum string lengh (characters)", Group), MaxVstrLabel.Name);
    *MaxVstr.Member = Named(new QLineEdit(Group), MaxVstr.Name);
    auto* Grid = new QGridLayout(Group);
    Grid->addWidget(*Strict.Member, 0, 0, 1, 2);
    Grid->addWidget(*Optimize.Member, 1, 0, 1, 2);
    Grid->addWidget(*MaxVstrLabel.Member, 2, 0);
    Grid->addWidget(*MaxVstr.Member, 2, 1);
}
}  // namespace

frmEnvironmentOptions::frmEnvironmentOptions() {
    setObjectName(QStringLiteral("frmEnvironmentOptions"));
    setWindowTitle(QStringLiteral("Environment"));
    SSTab1 = Named(new QTabWidget(this), "SSTab1");

    // "Project Options".
    auto* ProjectPage = new QWidget(SSTab1);
    Frame1 = Named(new QGroupBox(QStringLiteral("When  Compiling"), ProjectPage), "Frame1");
    optPromptToSaveChanges =
        Named(new QRadioButton(QStringLiteral("&Prompt to Save Changes"), Frame1),
              "optPromptToSaveChanges");
    optSaveChanges =
        Named(new QRadioButton(QStringLiteral("Save &Changes"), Frame1), "optSaveChanges");
    auto* WhenCompiling = new QVBoxLayout(Frame1);
    WhenCompiling->addWidget(optPromptToSaveChanges);
    WhenCompiling->addWidget(optSaveChanges);

    fraProjectOptions =
        Named(new QGroupBox(QStringLiteral("When Creating New Project"), ProjectPage),
              "fraProjectOptions");
    AddCompilerOptions(fraProjectOptions, {&chkStrictSyntaxRules, "chkStrictSyntaxRules"},
                       {&chkOptimizeEnable, "chkOptimizeEnable"}, {&Label1, "Label1"},
                       {&txtMaxVstr, "txtMaxVstr"});
    fraProjectOptionsCUR =
        Named(new QGroupBox(QStringLiteral("This Project"), ProjectPage), "fraProjectOptionsCUR");
    AddCompilerOptions(fraProjectOptionsCUR, {&chkStrictSyntaxRulesCUR, "chkStrictSyntaxRulesCUR"},
                       {&chkOptimizeEnableCUR, "chkOptimizeEnableCUR"},
                       {&lblMaxVstrCUR, "lblMaxVstrCUR"}, {&txtMaxVstrCUR, "txtMaxVstrCUR"});

    auto* ProjectLayout = new QVBoxLayout(ProjectPage);
    ProjectLayout->addWidget(Frame1);
    ProjectLayout->addWidget(fraProjectOptions);
    ProjectLayout->addWidget(fraProjectOptionsCUR);
    ProjectLayout->addStretch(1);
    SSTab1->addTab(ProjectPage, QStringLiteral("Project Options"));

    // "Editor Options".
    auto* EditorPage = new QWidget(SSTab1);
    fraEditorSettings =
        Named(new QGroupBox(QStringLiteral("Editor Colors"), EditorPage), "fraEditorSettings");
    icbCodeColor = Named(new QComboBox(fraEditorSettings), "icbCodeColor");
    icbCommentColor = Named(new QComboBox(fraEditorSettings), "icbCommentColor");
    icbStringLiteralColor = Named(new QComboBox(fraEditorSettings), "icbStringLiteralColor");
    icbBackgroundColor = Named(new QComboBox(fraEditorSettings), "icbBackgroundColor");
    auto* Colors = new QFormLayout(fraEditorSettings);
    AddPicker(Colors, "Code", icbCodeColor);
    AddPicker(Colors, "Comment", icbCommentColor);
    AddPicker(Colors, "String Literal", icbStringLiteralColor);
    AddPicker(Colors, "Background", icbBackgroundColor);

    Frame3 = Named(new QGroupBox(QStringLiteral("Text"), EditorPage), "Frame3");
    txtEditorFontName = Named(new QLineEdit(Frame3), "txtEditorFontName");
    txtEditorFontName->setReadOnly(true);
    txtEditorFontSize = Named(new QLineEdit(Frame3), "txtEditorFontSize");
    txtEditorFontSize->setReadOnly(true);
    cmdChangeFont = Named(new QPushButton(QStringLiteral("Change &Font"), Frame3), "cmdChangeFont");
    cmdChangeFont->setAutoDefault(false);
    cboTabWidth = Named(new QComboBox(Frame3), "cboTabWidth");
    for (int Width = 2; Width <= 8; ++Width) {
        cboTabWidth->addItem(QString::number(Width));
    }
    auto* Text = new QFormLayout(Frame3);
    Text->addRow(QStringLiteral("Font"), txtEditorFontName);
    Text->addRow(QStringLiteral("Font size"), txtEditorFontSize);
    Text->addRow(QString(), cmdChangeFont);
    Text->addRow(QStringLiteral("Tab width"), cboTabWidth);

    auto* EditorLayout = new QHBoxLayout(EditorPage);
    EditorLayout->addWidget(fraEditorSettings, 0, Qt::AlignTop);
    EditorLayout->addWidget(Frame3, 1, Qt::AlignTop);
    SSTab1->addTab(EditorPage, QStringLiteral("Editor Options"));

    cmdOK = Named(new QPushButton(QStringLiteral("OK"), this), "cmdOK");
    cmdOK->setDefault(true);
    cmdCancel = Named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel");
    cmdCancel->setAutoDefault(false);
    auto* Buttons = new QHBoxLayout();
    Buttons->addStretch(1);
    Buttons->addWidget(cmdOK);
    Buttons->addWidget(cmdCancel);
    auto* Layout = new QVBoxLayout(this);
    Layout->addWidget(SSTab1, 1);
    Layout->addLayout(Buttons);

    connect(cmdOK, &QPushButton::clicked, this, &frmEnvironmentOptions::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmEnvironmentOptions::cmdCancel_Click);
    connect(cmdChangeFont, &QPushButton::clicked, this,
            &frmEnvironmentOptions::cmdChangeFont_Click);
    Form_Load();
}

frmEnvironmentOptions::~frmEnvironmentOptions() {
    // Deleted with its owner, the editor: the next use makes a fresh one.
    Global<frmEnvironmentOptions>::Forget(this);
}

void frmEnvironmentOptions::InitializeColors() {
    for (int Index = 0; Index < 16; ++Index) {
        QPixmap Swatch(48, 14);
        Swatch.fill(
            QColor::fromRgb(static_cast<QRgb>(SyntaxHighlighterType::ColorFromIndex(Index))));
        // Outlined, so that white shows on a white list.
        QPainter Outline(&Swatch);
        Outline.setPen(QColor(0x80, 0x80, 0x80));
        Outline.drawRect(0, 0, Swatch.width() - 1, Swatch.height() - 1);
        Outline.end();
        // A swatch and no text; the key names the colour to a screen reader.
        for (QComboBox* Picker :
             {icbCodeColor, icbCommentColor, icbStringLiteralColor, icbBackgroundColor}) {
            Picker->addItem(QIcon(Swatch), QString(), QString::fromLatin1(ColorKeys[Index]));
            Picker->setItemData(Index, QString::fromLatin1(ColorKeys[Index]),
                                Qt::AccessibleTextRole);
            Picker->setItemData(Index, QString::fromLatin1(ColorKeys[Index]), Qt::ToolTipRole);
        }
    }
    icbCodeColor->setCurrentIndex(1);
    icbCommentColor->setCurrentIndex(2);
    icbStringLiteralColor->setCurrentIndex(8);
    icbBackgroundColor->setCurrentIndex(15);
}

void frmEnvironmentOptions::Form_Load() {
    InitializeColors();
    ShowValues(EnvironmentOptionsModel::Load());
}

void frmEnvironmentOptions::ShowValues(const EnvironmentOptionsValues& Shown) {
    optSaveChanges->setChecked(Shown.SaveChanges);
    optPromptToSaveChanges->setChecked(!Shown.SaveChanges);
    chkStrictSyntaxRules->setChecked(Shown.StrictSyntaxRules);
    chkOptimizeEnable->setChecked(Shown.OptimizeEnable);
    txtMaxVstr->setText(Shown.MaxVstr);
    cboTabWidth->setCurrentIndex(Shown.TabWidthIndex);
    icbCodeColor->setCurrentIndex(Shown.CodeColorItem - 1);
    icbCommentColor->setCurrentIndex(Shown.CommentColorItem - 1);
    icbStringLiteralColor->setCurrentIndex(Shown.StringLiteralColorItem - 1);
    icbBackgroundColor->setCurrentIndex(Shown.BackgroundColorItem - 1);
    EditorFontName = Shown.EditorFontName;
    EditorFontSize = Shown.EditorFontSize;
    ShowFont();
    // EnableCurrentProjectOptions.
    const bool Enabled = Shown.CurrentProjectEnabled;
    for (QWidget* Control :
         std::initializer_list<QWidget*>{fraProjectOptionsCUR, chkStrictSyntaxRulesCUR,
                                         chkOptimizeEnableCUR, txtMaxVstrCUR, lblMaxVstrCUR}) {
        Control->setEnabled(Enabled);
    }
    chkStrictSyntaxRulesCUR->setChecked(Shown.StrictSyntaxRulesCUR);
    chkOptimizeEnableCUR->setChecked(Shown.OptimizeEnableCUR);
    txtMaxVstrCUR->setText(Shown.MaxVstrCUR);
}

EnvironmentOptionsValues frmEnvironmentOptions::Values() const {
    EnvironmentOptionsValues Read;
    Read.SaveChanges = optSaveChanges->isChecked();
    Read.StrictSyntaxRules = chkStrictSyntaxRules->isChecked();
    Read.OptimizeEnable = chkOptimizeEnable->isChecked();
    Read.MaxVstr = txtMaxVstr->text();
    Read.TabWidthIndex = cboTabWidth->currentIndex();
    Read.CodeColorItem = icbCodeColor->currentIndex() + 1;
    Read.CommentColorItem = icbCommentColor->currentIndex() + 1;
    Read.StringLiteralColorItem = icbStringLiteralColor->currentIndex() + 1;
    Read.BackgroundColorItem = icbBackgroundColor->currentIndex() + 1;
    Read.EditorFontName = EditorFontName;
    Read.EditorFontSize = EditorFontSize;
    Read.CurrentProjectEnabled = fraProjectOptionsCUR->isEnabled();
    Read.StrictSyntaxRulesCUR = chkStrictSyntaxRulesCUR->isChecked();
    Read.OptimizeEnableCUR = chkOptimizeEnableCUR->isChecked();
    Read.MaxVstrCUR = txtMaxVstrCUR->text();
    return Read;
}

void frmEnvironmentOptions::ShowFont() {
    txtEditorFontName->setText(EditorFontName);
    txtEditorFontSize->setText(QString::number(EditorFontSize));
}

void frmEnvironmentOptions::cmdChangeFont_Click() {
    FontDialogRequest Request;
    Request.FontName = EditorFontName;
    Request.FontSize = EditorFontSize;
    Request.MinSize = 8;
    Request.MaxSize = 20;
    QString FontName;
    int FontSize = 0;
    if (!FontDialogService::Instance().Show(Request, FontName, FontSize)) {
        return;
    }
    EditorFontName = FontName;
    EditorFontSize = static_cast<int16_t>(FontSize);
    ShowFont();
}

void frmEnvironmentOptions::cmdOK_Click() {
    switch (EnvironmentOptionsModel::Accept(Values())) {
        case AcceptOutcome::Accepted:
            accept();
            break;
        case AcceptOutcome::RejectedMaxVstr:
            SSTab1->setCurrentIndex(0);
            txtMaxVstr->setFocus();
            break;
        case AcceptOutcome::RejectedMaxVstrCUR:
            SSTab1->setCurrentIndex(0);
            txtMaxVstrCUR->setFocus();
            break;
    }
}

void frmEnvironmentOptions::cmdCancel_Click() { reject(); }
