#include "platform/SettingsStore.h"

#include <QSettings>

namespace {
std::unique_ptr<SettingsStore>& Current() {
    static std::unique_ptr<SettingsStore> Store;
    return Store;
}

QString StoreKey(const QString& AppName, const QString& Section, const QString& Key) {
    return AppName + QLatin1Char('/') + Section + QLatin1Char('/') + Key;
}
}  // namespace

SettingsStore& SettingsStore::Instance() {
    auto& Store = Current();
    if (!Store) {
        Store = std::make_unique<QSettingsStore>();
    }
    return *Store;
}

std::unique_ptr<SettingsStore> SettingsStore::Install(std::unique_ptr<SettingsStore> Store) {
    auto Old = std::move(Current());
    Current() = std::move(Store);
    return Old;
}

QString QSettingsStore::GetSetting(const QString& AppName, const QString& Section,
                                   const QString& Key) {
    QSettings Settings(QSettings::NativeFormat, QSettings::UserScope, AppName, AppName);
    Settings.beginGroup(Section);
    const QVariant Value = Settings.value(Key);
    // Several values written by hand with a comma read back as a list.
    if (Value.typeId() == QMetaType::QStringList) {
        return Value.toStringList().join(QLatin1Char(','));
    }
    return Value.toString();
}

void QSettingsStore::SaveSetting(const QString& AppName, const QString& Section, const QString& Key,
                                 const QString& Value) {
    QSettings Settings(QSettings::NativeFormat, QSettings::UserScope, AppName, AppName);
    Settings.beginGroup(Section);
    Settings.setValue(Key, Value);
    Settings.sync();
}

QString MemorySettingsStore::GetSetting(const QString& AppName, const QString& Section,
                                        const QString& Key) {
    return Values_.value(StoreKey(AppName, Section, Key));
}

void MemorySettingsStore::SaveSetting(const QString& AppName, const QString& Section,
                                      const QString& Key, const QString& Value) {
    Values_.insert(StoreKey(AppName, Section, Key), Value);
}
