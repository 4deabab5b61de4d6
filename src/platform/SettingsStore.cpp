#include "platform/SettingsStore.h"

#include "platform/IniSettingsStore.h"
#include "platform/ServiceSlot.h"

namespace {
QString StoreKey(const QString& AppName, const QString& Section, const QString& Key) {
    return AppName + QLatin1Char('/') + Section + QLatin1Char('/') + Key;
}
}  // namespace

SettingsStore& SettingsStore::Instance() {
    return ServiceSlot<SettingsStore, IniSettingsStore>::Instance();
}

std::unique_ptr<SettingsStore> SettingsStore::Install(std::unique_ptr<SettingsStore> Service) {
    return ServiceSlot<SettingsStore, IniSettingsStore>::Install(std::move(Service));
}

QString MemorySettingsStore::GetSetting(const QString& AppName, const QString& Section,
                                        const QString& Key) {
    return Values_.value(StoreKey(AppName, Section, Key));
}

bool MemorySettingsStore::SaveSetting(const QString& AppName, const QString& Section,
                                      const QString& Key, const QString& Value) {
    Values_.insert(StoreKey(AppName, Section, Key), Value);
    return true;
}
