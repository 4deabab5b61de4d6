#include "platform/QtClipboardService.h"

#include <QClipboard>
#include <QGuiApplication>

void QtClipboardService::Clear() { QGuiApplication::clipboard()->clear(); }

void QtClipboardService::SetText(const QString& Text) {
    QString Plain = Text;
    Plain.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    QGuiApplication::clipboard()->setText(Plain);
}

QString QtClipboardService::GetText() {
    QString Text = QGuiApplication::clipboard()->text();
    Text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    Text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    return Text;
}
