#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include "platform/SettingsStore.h"

// The per-user settings file, INI text as QSettings writes it, at
// <folder>/<AppName>/<AppName>.conf (for "Kavlin": $XDG_CONFIG_HOME/Kavlin/Kavlin.conf);
// the section is the INI group. Reading takes the values as QSettings does
// (quotes, escapes, a list joined by commas). Saving changes the one line of
// its key and keeps every other byte of the file as it was, so a value the
// program did not change is never rewritten; a value that is already stored
// writes nothing. The file is replaced through UserFileWriter, so a failed
// save leaves it whole.
class IniSettingsStore : public SettingsStore {
  public:
    // Folder empty: the user's configuration folder.
    explicit IniSettingsStore(const QString& Folder = QString());

    QString GetSetting(const QString& AppName, const QString& Section, const QString& Key) override;
    bool SaveSetting(const QString& AppName, const QString& Section, const QString& Key,
                     const QString& Value) override;
    QString FailureText() const override { return FailureText_; }

    QString Filename(const QString& AppName) const;

    // The text of a value as QSettings reads it from the right of "=".
    static QString UnescapeValue(const QByteArray& Raw);
    // The bytes QSettings would write for a text value.
    static QByteArray EscapeValue(const QString& Value);

  private:
    QString Folder_;
    // Values whose save failed: this run still sees them.
    QMap<QString, QString> Unsaved_;
    QString FailureText_;
};
