#include "platform/QtMessageBoxService.h"

#include <QApplication>
#include <QMessageBox>

int QtMessageBoxService::Show(const QString& Text, const QString& Title, MsgBoxButtons Buttons,
                              MsgBoxIcon Icon) {
    QMessageBox::Icon BoxIcon = QMessageBox::Warning;
    switch (Icon) {
        case MsgBoxIcon::Exclamation:
            BoxIcon = QMessageBox::Warning;
            break;
        case MsgBoxIcon::Information:
            BoxIcon = QMessageBox::Information;
            break;
        case MsgBoxIcon::Critical:
            BoxIcon = QMessageBox::Critical;
            break;
    }
    QMessageBox Box(BoxIcon, Title, Text, QMessageBox::NoButton, QApplication::activeWindow());
    switch (Buttons) {
        case MsgBoxButtons::OKOnly:
            Box.setStandardButtons(QMessageBox::Ok);
            break;
        case MsgBoxButtons::YesNo:
            Box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
            Box.setDefaultButton(QMessageBox::Yes);
            break;
        case MsgBoxButtons::YesNoCancel:
            Box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
            Box.setDefaultButton(QMessageBox::Yes);
            Box.setEscapeButton(QMessageBox::Cancel);
            break;
    }
    switch (Box.exec()) {
        case QMessageBox::Yes:
            return vbYes;
        case QMessageBox::No:
            return vbNo;
        case QMessageBox::Cancel:
            return vbCancel;
        default:
            break;
    }
    // A Yes/No box closed by its title bar counts as No.
    return Buttons == MsgBoxButtons::OKOnly ? vbOK : vbNo;
}
