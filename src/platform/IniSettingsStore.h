#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include "platform/SettingsStore.h"

// The per-user settings file, INI text as QSettings writes it, at
// <folder>/<AppName>/<AppName>.conf (for "Kavlin": $XDG_CONFIG_HOME/Kavlin/Kavlin.conf);
// the section is the INI group. A key the user's file does not hold is read,
// as QSettings reads it, from the system-wide files of the same name behind it
// (for the user's own folder: those of $XDG_CONFIG_DIRS, by default
// /etc/xdg/Kavlin/Kavlin.conf), where a package keeps its defaults; saving
// only ever writes the user's file. Reading takes the values as QSettings does
// (quotes, escapes, a list joined by commas). Saving changes the one line of
// its key and keeps every other byte of the file as it was, so a value the
// program did not change is never rewritten; a value that is already stored
// writes nothing. The file is replaced through UserFileWriter, so a failed
// save leaves it whole.
class IniSettingsStore : public SettingsStore {
  public:
    // Folder empty: the user's configuration folder, with the system's
    // configuration folders behind it.
    explicit IniSettingsStore(const QString& Folder = QString());
    // A folder of the user's and the system-wide folders read behind it, first to last.
    IniSettingsStore(const QString& Folder, const QStringList& SystemFolders);

    QString GetSetting(const QString& AppName, const QString& Section, const QString& Key) override;
    bool SaveSetting(const QString& AppName, const QString& Section, const QString& Key,
                     const QString& Value) override;
    QString FailureText() const override { return FailureText_; }

    // Whether the user's own file holds the key, even with an empty value
    // (a value of the system-wide files does not count).
    bool UserFileHolds(const QString& AppName, const QString& Section, const QString& Key) const;

    QString Filename(const QString& AppName) const;

    // The text of a value as QSettings reads it from the right of "=".
    static QString UnescapeValue(const QByteArray& Raw);
    // The bytes QSettings would write for a text value.
    static QByteArray EscapeValue(const QString& Value);

  private:
    QString Folder_;
    QStringList SystemFolders_;
    // Values whose save failed: this run still sees them.
    QMap<QString, QString> Unsaved_;
    QString FailureText_;
};
