#pragma once

#include <gtest/gtest.h>

#include <QStringList>
#include <QTemporaryDir>

#include "platform/SettingsStore.h"
#include "support/FakePpdevCalls.h"
#include "support/ScriptedMessageBoxService.h"
#include "support/VirtualClockService.h"

// A fresh frame for each test: settings in memory, scripted boxes, virtual
// time, a temporary work path, a fake kernel in place of the machine's
// parallel ports, and the frame's state as at start-up.
class FrameFixture : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Stores a setting under "Kavlin"/"Config".
    void SetSetting(const QString& Key, const QString& Value);
    QString Setting(const QString& Key);
    // Writes a file under the temporary directory; returns its full name.
    QString WriteFile(const QString& RelativeName, const QByteArray& Content = QByteArray());
    QString TempPath() const { return Temp.path(); }
    // The full name of a file under the temporary directory.
    QString TempFile(const QString& RelativeName) const;
    // Its bytes; "<none>" when it can't be read.
    QByteArray TempFileBytes(const QString& RelativeName) const;
    // Every box shown so far, as "Title|Text".
    QStringList BoxMessages() const;
    // A good installation in "inst" and the work path here, so that the
    // downloader's start-up shows no box of its own.
    void MakeGoodInstallation();

    QTemporaryDir Temp;
    // The parallel ports the test's machine has: none, unless the test adds them.
    FakePpdevCalls Kernel;
    MemorySettingsStore* Settings = nullptr;
    ScriptedMessageBoxService* Boxes = nullptr;
    VirtualClockService* Clock = nullptr;
    QString SavedCurrentDirectory;
    // The internal reports ("Error_1 in ...") made during the test.
    QStringList ProbeErrors;
};
