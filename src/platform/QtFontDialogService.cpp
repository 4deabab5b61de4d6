#include "platform/QtFontDialogService.h"

#include <QApplication>
#include <QFontDialog>
#include <algorithm>

bool QtFontDialogService::Show(const FontDialogRequest& Request, QString& FontName, int& FontSize) {
    QFont Initial(Request.FontName, Request.FontSize);
    bool Chosen = false;
    const QFont Font = QFontDialog::getFont(&Chosen, Initial, QApplication::activeWindow());
    if (!Chosen) {
        return false;
    }
    FontName = Font.family();
    FontSize = std::clamp(Font.pointSize() > 0 ? Font.pointSize() : Request.FontSize,
                          Request.MinSize, Request.MaxSize);
    return true;
}
