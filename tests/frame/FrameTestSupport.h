#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>
#include <ostream>

#include "frame/ErrorDisplay.h"
#include "frame/UtilitiesFilename.h"
#include "support/QtPrinters.h"

// The raw bytes of the log file Kavlin.err in the current work path; empty
// when the file does not exist.
inline QByteArray ReadLogBytes() {
    QFile File(UtilitiesFilename::LocalFilename(ErrorDisplay::LogFilename()));
    if (!File.open(QIODevice::ReadOnly)) {
        return QByteArray();
    }
    return File.readAll();
}

inline bool LogFileExists() {
    return QFile::exists(UtilitiesFilename::LocalFilename(ErrorDisplay::LogFilename()));
}

// The lines of the log, split on CR LF. Every line is ended by CR LF, so the
// text after the last one is empty and is not a line. A log whose last line
// lacks its CR LF gets a marker line behind it, so that a comparison fails.
inline QStringList ReadLogLines() {
    const QString Text = QString::fromUtf8(ReadLogBytes());
    if (Text.isEmpty()) {
        return QStringList();
    }
    QStringList Lines = Text.split(QStringLiteral("\r\n"));
    if (Lines.back().isEmpty()) {
        Lines.removeLast();
    } else {
        Lines.append(QStringLiteral("<last line not ended by CR LF>"));
    }
    return Lines;
}
