#pragma once

#include <QByteArray>
#include <QTemporaryDir>
#include <cstdlib>
#include <memory>

#include "platform/SettingsStore.h"

// A benchmark never writes the user's settings. Made first thing in main(),
// before the application object and before anything reads a setting: the
// program's settings store is in memory, and whatever still reaches
// $XDG_CONFIG_HOME lands in a folder of this run, removed when it ends.
class BenchSettings {
  public:
    BenchSettings() {
        if (!Folder_.isValid()) {
            std::abort();
        }
        qputenv("XDG_CONFIG_HOME", Folder_.path().toUtf8());
        SettingsStore::Install(std::make_unique<MemorySettingsStore>());
    }
    BenchSettings(const BenchSettings&) = delete;
    BenchSettings& operator=(const BenchSettings&) = delete;

  private:
    QTemporaryDir Folder_;
};
