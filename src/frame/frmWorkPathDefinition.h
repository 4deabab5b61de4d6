#pragma once

#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

// A directory list in the manner of a drive-and-directory chooser: the
// parent entry "..", then the subdirectories of Path(). A click selects an
// entry, a double click opens it and changes Path().
class DirectoryList : public QListWidget {
    Q_OBJECT
  public:
    explicit DirectoryList(QWidget* Parent = nullptr);
    QString Path() const { return Path_; }
    void SetPath(const QString& Path);
    // The full path of an entry.
    QString EntryPath(const QListWidgetItem* Item) const;

  signals:
    void Change();

  private:
    QString Path_;
};

// Sets the work path, where projects are looked for.
class frmWorkPathDefinition : public QDialog {
    Q_OBJECT
  public:
    frmWorkPathDefinition();

    QLineEdit* txtWorkPath;
    QComboBox* drvWorkPath;
    DirectoryList* dirWorkPath;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

  public slots:
    void drvWorkPath_Change();
    void dirWorkPath_Change();
    void dirWorkPath_Click(QListWidgetItem* Item);
    void cmdOK_Click();
    void cmdCancel_Click();
};
