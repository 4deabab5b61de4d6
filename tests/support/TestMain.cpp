#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>

#include "platform/SettingsStore.h"
#include "support/ScriptedMessageBoxService.h"
#include "support/VirtualClockService.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication Application(argc, argv);
    // Belt and braces: even code that reaches for QSettings directly lands in
    // a folder of this run, never in the user's own settings, however the
    // test program was started.
    QTemporaryDir SettingsFolder;
    if (!SettingsFolder.isValid()) {
        return 2;
    }
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, SettingsFolder.path());
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, SettingsFolder.path());
    SettingsStore::Install(std::make_unique<MemorySettingsStore>());
    MessageBoxService::Install(std::make_unique<ScriptedMessageBoxService>());
    ClockService::Install(std::make_unique<VirtualClockService>());
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
