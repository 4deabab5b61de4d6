#include "platform/QtFileDialogService.h"

#include <QApplication>
#include <QFileDialog>
#include <QStringList>

bool QtFileDialogService::Show(const FileDialogRequest& Request, QString& Filename) {
    // "Text|pattern|Text|pattern" becomes Qt's "Text (pattern)" list.
    const QStringList Parts = Request.Filter.split(QLatin1Char('|'));
    QStringList Filters;
    for (int Index = 0; Index + 1 < Parts.size(); Index += 2) {
        Filters << Parts[Index].trimmed();
    }
    QFileDialog Dialog(QApplication::activeWindow(), Request.Title, Request.InitDir);
    Dialog.setNameFilters(Filters);
    if (Request.FilterIndex >= 1 && Request.FilterIndex <= Filters.size()) {
        Dialog.selectNameFilter(Filters[Request.FilterIndex - 1]);
    }
    Dialog.setAcceptMode(Request.Save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    // Opening may name a file that doesn't exist yet: that makes a new one.
    Dialog.setFileMode(QFileDialog::AnyFile);
    if (!Request.FileName.isEmpty()) {
        Dialog.selectFile(Request.FileName);
    }
    if (Dialog.exec() != QDialog::Accepted || Dialog.selectedFiles().isEmpty()) {
        return false;
    }
    Filename = Dialog.selectedFiles().first();
    return true;
}
