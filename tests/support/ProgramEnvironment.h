#pragma once

#include <QProcessEnvironment>
#include <QString>

// The environment of the built or installed program started as a process by
// a test: no display, so that it runs as a build script's batch does, and a
// user's settings and data folders of the test's own.
inline QProcessEnvironment NoDisplayEnvironment(const QString& ConfigFolder,
                                                const QString& DataFolder) {
    QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
    Environment.remove(QStringLiteral("DISPLAY"));
    Environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    Environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    Environment.insert(QStringLiteral("XDG_CONFIG_HOME"), ConfigFolder);
    Environment.insert(QStringLiteral("XDG_DATA_HOME"), DataFolder);
    return Environment;
}
