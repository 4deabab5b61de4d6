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
    // False when the value could not be stored; FailureText() tells where and why.
    virtual bool SaveSetting(const QString& AppName, const QString& Section, const QString& Key,
                             const QString& Value) = 0;
    virtual QString FailureText() const { return QString(); }

    static SettingsStore& Instance();
    static std::unique_ptr<SettingsStore> Install(std::unique_ptr<SettingsStore> Store);
};

// A store in memory, for tests and for code that must not touch the user's file.
class MemorySettingsStore : public SettingsStore {
  public:
    QString GetSetting(const QString& AppName, const QString& Section, const QString& Key) override;
    bool SaveSetting(const QString& AppName, const QString& Section, const QString& Key,
                     const QString& Value) override;
    // Every stored value, keyed "AppName/Section/Key".
    const QMap<QString, QString>& Values() const { return Values_; }

  private:
    QMap<QString, QString> Values_;
};
