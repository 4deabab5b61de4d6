#include <gtest/gtest.h>

#include <QApplication>
#include <QStandardPaths>

#include "platform/SettingsStore.h"
#include "support/ScriptedMessageBoxService.h"
#include "support/VirtualClockService.h"

int main(int argc, char** argv) {
    // Belt and braces: even code that reaches for QSettings directly lands in
    // a test location, never in the user's own settings.
    QStandardPaths::setTestModeEnabled(true);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication Application(argc, argv);
    SettingsStore::Install(std::make_unique<MemorySettingsStore>());
    MessageBoxService::Install(std::make_unique<ScriptedMessageBoxService>());
    ClockService::Install(std::make_unique<VirtualClockService>());
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
