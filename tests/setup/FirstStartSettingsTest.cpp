#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <memory>

#include "frame/DownloadPortInfoType.h"
#include "frame/MonitorPortInfoType.h"
#include "frame/RegistryCentral.h"
#include "platform/IniSettingsStore.h"
#include "platform/SettingsStore.h"
#include "setup/FirstStartSettings.h"

namespace {

// A user's settings file in a temporary folder, with a system-wide file
// behind it, as the program's own store reads them.
class FirstStartSettingsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(User.isValid());
        ASSERT_TRUE(System.isValid());
        Previous = SettingsStore::Install(
            std::make_unique<IniSettingsStore>(User.path(), QStringList{System.path()}));
    }
    void TearDown() override { SettingsStore::Install(std::move(Previous)); }

    static void Write(const QString& Name, const QByteArray& Bytes) {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(Name).absolutePath()));
        QFile File(Name);
        ASSERT_TRUE(File.open(QIODevice::WriteOnly));
        File.write(Bytes);
    }
    QString UserFile() const { return User.filePath(QStringLiteral("Kavlin/Kavlin.conf")); }
    QByteArray UserBytes() const {
        QFile File(UserFile());
        return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray("<none>");
    }

    QStringList WriteAll() {
        FirstStartSettings::Choices What;
        What.RunDir = QStringLiteral("/home/ann/.local/share/kavlin");
        What.WorkDir = QStringLiteral("/home/ann/Kavlin");
        What.SimulatedChip = true;
        bool Success = false;
        const QStringList Written = FirstStartSettings::WriteMissing(What, Success);
        EXPECT_TRUE(Success);
        return Written;
    }

    QTemporaryDir User;
    QTemporaryDir System;
    std::unique_ptr<SettingsStore> Previous;
};

TEST_F(FirstStartSettingsTest, AFreshUserGetsTheInstallWorkPathAndTheSimulatedChipOnBothPorts) {
    EXPECT_EQ(WriteAll(), (QStringList{"Run_Dir", "Work_Dir", "Port_Number", "Port_Mode",
                                       "Port_Address", "Port_Reserve", "KV20port_Number"}));
    EXPECT_EQ(UserBytes(), QByteArray("[Config]\n"
                                      "Run_Dir=/home/ann/.local/share/kavlin\n"
                                      "Work_Dir=/home/ann/Kavlin\n"
                                      "Port_Number=99\n"
                                      "Port_Mode=Serial\n"
                                      "Port_Address=0\n"
                                      "Port_Reserve=False\n"
                                      "KV20port_Number=\" 99, 115200,N,8,10\"\n"));
    // The program reads them back as the port dialogs would have stored them.
    DownloadPortInfoType Download;
    RegistryCentral::RegistryGetDownloadPort(Download);
    EXPECT_TRUE(Download.IsDefined());
    EXPECT_FALSE(Download.IsParallel());
    EXPECT_EQ(Download.PortNumber(), 99);
    MonitorPortInfoType Monitor;
    RegistryCentral::RegistryGetMonitorPort(Monitor);
    EXPECT_TRUE(Monitor.IsDefined);
    EXPECT_EQ(Monitor.PortNumber(), 99);
    EXPECT_EQ(Monitor.BaudRate, 115200);
    EXPECT_EQ(RegistryCentral::RegistryGetInstallDir(),
              QStringLiteral("/home/ann/.local/share/kavlin"));
}

TEST_F(FirstStartSettingsTest, EveryValueTheUserHasSetStaysByteForByte) {
    const QByteArray Before =
        "; mine\r\n[Config]\r\nRun_Dir=/opt/kavlin\r\nWork_Dir = /home/ann/work\r\n"
        "Port_Number=3\r\nPort_Mode=Serial\r\nKV20port_Number=\"  2,   9600,E,7,20\"\r\n";
    Write(UserFile(), Before);
    EXPECT_EQ(WriteAll(), QStringList());
    EXPECT_EQ(UserBytes(), Before);
}

TEST_F(FirstStartSettingsTest, PortsTheUserClosedStayClosed) {
    // What closing both ports in their dialogs leaves.
    const QByteArray Before =
        "[Config]\nPort_Number=\nPort_Mode=Serial\nPort_Address=&H378\nPort_Reserve=False\n"
        "KV20port_Number=\n";
    Write(UserFile(), Before);
    EXPECT_EQ(WriteAll(), (QStringList{"Run_Dir", "Work_Dir"}));
    EXPECT_TRUE(UserBytes().startsWith(Before)) << UserBytes().toStdString();
    DownloadPortInfoType Download;
    RegistryCentral::RegistryGetDownloadPort(Download);
    EXPECT_FALSE(Download.IsDefined());
}

TEST_F(FirstStartSettingsTest, ASecondRunWritesNothing) {
    WriteAll();
    const QByteArray After = UserBytes();
    ASSERT_TRUE(QFile::setPermissions(UserFile(), QFileDevice::ReadOwner));
    EXPECT_EQ(WriteAll(), QStringList());
    EXPECT_EQ(UserBytes(), After);
}

TEST_F(FirstStartSettingsTest, AnEmptyPathIsNoChoiceAndIsWrittenOver) {
    Write(UserFile(), "[Config]\nRun_Dir=\nWork_Dir=/home/ann/work\n");
    EXPECT_EQ(WriteAll().first(), QStringLiteral("Run_Dir"));
    EXPECT_TRUE(UserBytes().startsWith(
        "[Config]\nRun_Dir=/home/ann/.local/share/kavlin\nWork_Dir=/home/ann/work\n"))
        << UserBytes().toStdString();
}

TEST_F(FirstStartSettingsTest, ASystemWideDefaultIsNotTheUsersChoice) {
    // A package's default install directory: this user's own installation
    // gets its own, so that its component and its symbol files go together.
    Write(System.filePath(QStringLiteral("Kavlin/Kavlin.conf")),
          "[Config]\nRun_Dir=/var/lib/kavlin\n");
    EXPECT_EQ(RegistryCentral::RegistryGetInstallDir(), QStringLiteral("/var/lib/kavlin"));
    EXPECT_EQ(WriteAll().first(), QStringLiteral("Run_Dir"));
    EXPECT_EQ(RegistryCentral::RegistryGetInstallDir(),
              QStringLiteral("/home/ann/.local/share/kavlin"));
}

TEST_F(FirstStartSettingsTest, NothingAskedForIsNothingWritten) {
    bool Success = false;
    EXPECT_EQ(FirstStartSettings::WriteMissing({}, Success), QStringList());
    EXPECT_TRUE(Success);
    EXPECT_FALSE(QFile::exists(UserFile()));
}

}  // namespace
