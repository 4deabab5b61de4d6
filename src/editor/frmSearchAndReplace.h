#pragma once

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "editor/SearchAndReplaceModel.h"
#include "frame/UnloadingDialog.h"

// The dialog that finds and replaces text in the active module or through
// all modules of the project, in a find mode and a replace mode. It loads
// when it is made (from the active module's selection) and unloads when it
// closes; the editor's main window shows it, owned and not modal.
class frmSearchAndReplace : public UnloadingDialog<frmSearchAndReplace>,
                            public SearchAndReplaceControls {
    Q_OBJECT
  public:
    frmSearchAndReplace();
    ~frmSearchAndReplace() override;

    QCheckBox* chkMatchWholeWordOnly;
    QCheckBox* chkMatchCase;
    QPushButton* cmdReplaceAll;
    QPushButton* cmdReplaceOnce;
    QGroupBox* Frame1;
    QRadioButton* optCurrentProject;
    QRadioButton* optCurrentModule;
    QLineEdit* txtFindText;
    QLineEdit* txtReplaceText;
    QPushButton* cmdFindNext;
    QPushButton* cmdCancel;
    QLabel* Label1;
    QLabel* lblReplaceWith;

    SearchAndReplaceModel& Model() { return Model_; }

    // SearchAndReplaceControls.
    QString FindText() const override;
    void SetFindText(const QString& Text) override;
    QString ReplaceText() const override;
    bool MatchCase() const override;
    void SetMatchCase(bool On) override;
    bool MatchWholeWordOnly() const override;
    bool CurrentModule() const override;
    void SetCurrentModule(bool On) override;
    void UpdateControls() override;

  public slots:
    void cmdCancel_Click();
    void cmdFindNext_Click();
    void cmdReplaceOnce_Click();
    void cmdReplaceAll_Click();
    void txtFindText_Change();

  protected:
    bool eventFilter(QObject* Watched, QEvent* Event) override;

  private:
    void Form_Load();
    // The Enter key in the find text is Find Next.
    bool txtFindText_KeyDown(int KeyCode);

    SearchAndReplaceModel Model_;
};
