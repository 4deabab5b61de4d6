#include "editor/frmSearchAndReplace.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "editor/frmEditBoxType.h"
#include "editor/frmSourceEditor.h"
#include "platform/Global.h"

namespace {
constexpr int EnterKey = 13;

QPushButton* Button(QWidget* Parent, const char* Name, const char* Caption) {
    auto* Made = new QPushButton(QString::fromLatin1(Caption), Parent);
    Made->setObjectName(QString::fromLatin1(Name));
    // No button takes Enter for itself: in the find text it is Find Next.
    Made->setAutoDefault(false);
    return Made;
}
}  // namespace

frmSearchAndReplace::frmSearchAndReplace() : Model_(*this) {
    setObjectName(QStringLiteral("frmSearchAndReplace"));
    setWindowTitle(QStringLiteral("Replace"));
    Label1 = new QLabel(QStringLiteral("Find What:"), this);
    Label1->setObjectName(QStringLiteral("Label1"));
    txtFindText = new QLineEdit(this);
    txtFindText->setObjectName(QStringLiteral("txtFindText"));
    lblReplaceWith = new QLabel(QStringLiteral("Replace With:"), this);
    lblReplaceWith->setObjectName(QStringLiteral("lblReplaceWith"));
    txtReplaceText = new QLineEdit(this);
    txtReplaceText->setObjectName(QStringLiteral("txtReplaceText"));
    cmdFindNext = Button(this, "cmdFindNext", "Find &Next");
    cmdReplaceOnce = Button(this, "cmdReplaceOnce", "&Replace");
    cmdReplaceAll = Button(this, "cmdReplaceAll", "Replace &All");
    cmdCancel = Button(this, "cmdCancel", "Cancel");
    chkMatchWholeWordOnly = new QCheckBox(QStringLiteral("Match Whole Word &Only"), this);
    chkMatchWholeWordOnly->setObjectName(QStringLiteral("chkMatchWholeWordOnly"));
    chkMatchCase = new QCheckBox(QStringLiteral("Match Ca&se"), this);
    chkMatchCase->setObjectName(QStringLiteral("chkMatchCase"));
    Frame1 = new QGroupBox(QStringLiteral("Where:"), this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    optCurrentProject = new QRadioButton(QStringLiteral("&Current Project"), Frame1);
    optCurrentProject->setObjectName(QStringLiteral("optCurrentProject"));
    optCurrentModule = new QRadioButton(QStringLiteral("Current &Module"), Frame1);
    optCurrentModule->setObjectName(QStringLiteral("optCurrentModule"));
    auto* Where = new QVBoxLayout(Frame1);
    Where->addWidget(optCurrentProject);
    Where->addWidget(optCurrentModule);

    auto* Grid = new QGridLayout(this);
    Grid->addWidget(Label1, 0, 0);
    Grid->addWidget(txtFindText, 0, 1, 1, 2);
    Grid->addWidget(cmdFindNext, 0, 3);
    Grid->addWidget(lblReplaceWith, 1, 0);
    Grid->addWidget(txtReplaceText, 1, 1, 1, 2);
    Grid->addWidget(cmdReplaceOnce, 1, 3);
    Grid->addWidget(cmdReplaceAll, 2, 3);
    Grid->addWidget(chkMatchWholeWordOnly, 3, 0, 1, 2);
    Grid->addWidget(chkMatchCase, 4, 0, 1, 2);
    Grid->addWidget(Frame1, 3, 2, 2, 1);
    Grid->addWidget(cmdCancel, 3, 3);
    Grid->setColumnStretch(1, 1);

    connect(cmdCancel, &QPushButton::clicked, this, &frmSearchAndReplace::cmdCancel_Click);
    connect(cmdFindNext, &QPushButton::clicked, this, &frmSearchAndReplace::cmdFindNext_Click);
    connect(cmdReplaceOnce, &QPushButton::clicked, this,
            &frmSearchAndReplace::cmdReplaceOnce_Click);
    connect(cmdReplaceAll, &QPushButton::clicked, this, &frmSearchAndReplace::cmdReplaceAll_Click);
    connect(txtFindText, &QLineEdit::textChanged, this, &frmSearchAndReplace::txtFindText_Change);
    txtFindText->installEventFilter(this);

    // The active module window of the editor, reached through the main window.
    Model_.ActiveForm = []() -> EditBoxModel* {
        if (!Global<frmSourceEditor>::IsLoaded()) {
            return nullptr;
        }
        frmEditBoxType* Box = Global<frmSourceEditor>::Get().ActiveForm();
        return Box != nullptr ? &Box->Model() : nullptr;
    };
    Form_Load();
}

frmSearchAndReplace::~frmSearchAndReplace() {
    // Deleted with its owner, the main window: the next use makes a fresh one.
    Global<frmSearchAndReplace>::Forget(this);
}

void frmSearchAndReplace::Form_Load() { Model_.Form_Load(); }

// ---- The controls as the search reads them ------------------------------------

QString frmSearchAndReplace::FindText() const { return txtFindText->text(); }
void frmSearchAndReplace::SetFindText(const QString& Text) { txtFindText->setText(Text); }
QString frmSearchAndReplace::ReplaceText() const { return txtReplaceText->text(); }
bool frmSearchAndReplace::MatchCase() const { return chkMatchCase->isChecked(); }
void frmSearchAndReplace::SetMatchCase(bool On) { chkMatchCase->setChecked(On); }
bool frmSearchAndReplace::MatchWholeWordOnly() const { return chkMatchWholeWordOnly->isChecked(); }
bool frmSearchAndReplace::CurrentModule() const { return optCurrentModule->isChecked(); }

void frmSearchAndReplace::SetCurrentModule(bool On) {
    optCurrentModule->setChecked(On);
    optCurrentProject->setChecked(!On);
}

void frmSearchAndReplace::UpdateControls() {
    const bool HasText = !txtFindText->text().isEmpty();
    cmdFindNext->setEnabled(HasText);
    cmdReplaceOnce->setEnabled(HasText);
    cmdReplaceAll->setEnabled(HasText);
    QPalette Palette = txtReplaceText->palette();
    if (Model_.ReplaceMode) {
        setWindowTitle(QStringLiteral("Replace"));
        cmdReplaceOnce->setText(QStringLiteral("Replace"));
        cmdReplaceAll->setVisible(true);
        lblReplaceWith->setVisible(true);
        Palette.setColor(QPalette::Base, QColor(0xFF, 0xFF, 0xFF));
    } else {
        setWindowTitle(QStringLiteral("Find"));
        cmdReplaceOnce->setText(QStringLiteral("Replace..."));
        cmdReplaceAll->setEnabled(false);
        cmdReplaceAll->setVisible(false);
        lblReplaceWith->setVisible(false);
        // In the find mode the replace text takes the form's colour, so that
        // it doesn't stand out.
        Palette.setColor(QPalette::Base, palette().color(QPalette::Window));
    }
    txtReplaceText->setPalette(Palette);
}

// ---- Events -------------------------------------------------------------------

void frmSearchAndReplace::txtFindText_Change() { UpdateControls(); }

bool frmSearchAndReplace::txtFindText_KeyDown(int KeyCode) {
    if (KeyCode != EnterKey) {
        return false;
    }
    if (cmdFindNext->isEnabled()) {
        cmdFindNext_Click();
    }
    return true;
}

bool frmSearchAndReplace::eventFilter(QObject* Watched, QEvent* Event) {
    if (Watched == txtFindText && Event->type() == QEvent::KeyPress) {
        const int Key = static_cast<QKeyEvent*>(Event)->key();
        if ((Key == Qt::Key_Return || Key == Qt::Key_Enter) && txtFindText_KeyDown(EnterKey)) {
            return true;
        }
    }
    return QDialog::eventFilter(Watched, Event);
}

void frmSearchAndReplace::cmdFindNext_Click() { Model_.cmdFindNext_Click(); }
void frmSearchAndReplace::cmdReplaceOnce_Click() { Model_.cmdReplaceOnce_Click(); }
void frmSearchAndReplace::cmdReplaceAll_Click() { Model_.cmdReplaceAll_Click(); }

void frmSearchAndReplace::cmdCancel_Click() { Unload(); }
