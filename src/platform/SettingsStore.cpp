#include "platform/SettingsStore.h"

#include <QSettings>

#include "platform/ServiceSlot.h"

namespace {
QString StoreKey(const QString& AppName, const QString& Section, const QString& Key) {
    return AppName + QLatin1Char('/') + Section + QLatin1Char('/') + Key;
}
}  // namespace

SettingsStore& SettingsStore::Instance() {
    return ServiceSlot<SettingsStore, QSettingsStore>::Instance();
}

std::unique_ptr<SettingsStore> SettingsStore::Install(std::unique_ptr<SettingsStore> Service) {
    return ServiceSlot<SettingsStore, QSettingsStore>::Install(std::move(Service));
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
