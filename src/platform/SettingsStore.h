#pragma once

#include <QMap>
#include <QString>
#include <memory>

// The per-user settings store: text values under an application name, a
// section and a key. An absent key reads as an empty text.
class SettingsStore {
  public:
    virtual ~SettingsStore() = default;
    virtual QString GetSetting(const QString& AppName, const QString& Section,
                               const QString& Key) = 0;
    virtual void SaveSetting(const QString& AppName, const QString& Section, const QString& Key,
                             const QString& Value) = 0;

    static SettingsStore& Instance();
    static std::unique_ptr<SettingsStore> Install(std::unique_ptr<SettingsStore> Store);
};

// QSettings in its native format, which on this platform is INI text, user scope: the application
// name is both the organisation and the application, the section is the group. For "Kavlin" the
// file is $XDG_CONFIG_HOME/Kavlin/Kavlin.conf.
class QSettingsStore : public SettingsStore {
  public:
    QString GetSetting(const QString& AppName, const QString& Section, const QString& Key) override;
    void SaveSetting(const QString& AppName, const QString& Section, const QString& Key,
                     const QString& Value) override;
};

// A store in memory, for tests and for code that must not touch the user's file.
class MemorySettingsStore : public SettingsStore {
  public:
    QString GetSetting(const QString& AppName, const QString& Section, const QString& Key) override;
    void SaveSetting(const QString& AppName, const QString& Section, const QString& Key,
                     const QString& Value) override;
    // Every stored value, keyed "AppName/Section/Key".
    const QMap<QString, QString>& Values() const { return Values_; }

  private:
    QMap<QString, QString> Values_;
};
