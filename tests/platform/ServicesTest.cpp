#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>
#include <string>

#include "PlatformTestSupport.h"
#include "platform/HeadlessMessageBoxService.h"
#include "platform/IniSettingsStore.h"
#include "platform/MessageBoxService.h"
#include "platform/SettingsStore.h"
#include "support/FaultyDisk.h"
#include "support/ScriptedMessageBoxService.h"

namespace {

TEST(MessageBoxService, DefaultAnswerIsOkForOneButtonAndNoForQuestions) {
    EXPECT_EQ(DefaultAnswer(MsgBoxButtons::OKOnly), vbOK);
    EXPECT_EQ(DefaultAnswer(MsgBoxButtons::YesNo), vbNo);
    EXPECT_EQ(DefaultAnswer(MsgBoxButtons::YesNoCancel), vbNo);
}

TEST(MessageBoxService, AnswerNumbersAreTheOnesTheSystemComparesAgainst) {
    EXPECT_EQ(vbOK, 1);
    EXPECT_EQ(vbCancel, 2);
    EXPECT_EQ(vbYes, 6);
    EXPECT_EQ(vbNo, 7);
}

TEST(MessageBoxService, InstallReturnsThePreviousServiceAndRoutesBoxes) {
    auto First = std::make_unique<ScriptedMessageBoxService>();
    ScriptedMessageBoxService* FirstRaw = First.get();
    auto Saved = MessageBoxService::Install(std::move(First));
    FirstRaw->QueueAnswer(vbYes);
    EXPECT_EQ(MessageBoxService::Instance().Show(QStringLiteral("Text"), QStringLiteral("Title"),
                                                 MsgBoxButtons::YesNo, MsgBoxIcon::Exclamation),
              vbYes);
    ASSERT_EQ(FirstRaw->Boxes.size(), 1);
    EXPECT_EQ(FirstRaw->Boxes[0].Text, QStringLiteral("Text"));
    EXPECT_EQ(FirstRaw->Boxes[0].Title, QStringLiteral("Title"));

    auto Back = MessageBoxService::Install(std::move(Saved));
    EXPECT_EQ(Back.get(), FirstRaw);
}

std::string ReadAll(std::FILE* Stream) {
    std::rewind(Stream);
    std::string Text;
    char Buffer[256];
    size_t Count = 0;
    while ((Count = std::fread(Buffer, 1, sizeof Buffer, Stream)) > 0) {
        Text.append(Buffer, Count);
    }
    return Text;
}

TEST(HeadlessMessageBoxService, AnswersAtOnceAndWritesTitleAndText) {
    std::FILE* Stream = std::tmpfile();
    ASSERT_NE(Stream, nullptr);
    HeadlessMessageBoxService Service(Stream);
    EXPECT_EQ(
        Service.Show(QStringLiteral("Create directory?"), QStringLiteral("Installation Error"),
                     MsgBoxButtons::YesNo, MsgBoxIcon::Exclamation),
        vbNo);
    EXPECT_EQ(Service.Show(QStringLiteral("Done"), QStringLiteral("Info"), MsgBoxButtons::OKOnly,
                           MsgBoxIcon::Information),
              vbOK);
    EXPECT_EQ(ReadAll(Stream),
              "[Installation Error] Create directory? (answered No)\n"
              "[Info] Done (answered OK)\n");
    std::fclose(Stream);
}

TEST(MemorySettingsStore, AnAbsentKeyReadsEmpty) {
    MemorySettingsStore Store;
    EXPECT_TRUE(Store
                    .GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                                QStringLiteral("Tab_Width"))
                    .isEmpty());
    EXPECT_TRUE(Store.Values().isEmpty());
}

TEST(MemorySettingsStore, KeepsValuesApartByApplicationSectionAndKey) {
    MemorySettingsStore Store;
    Store.SaveSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"), QStringLiteral("Key"),
                      QStringLiteral("one"));
    Store.SaveSetting(QStringLiteral("Kavlin"), QStringLiteral("Other"), QStringLiteral("Key"),
                      QStringLiteral("two"));
    Store.SaveSetting(QStringLiteral("Else"), QStringLiteral("Config"), QStringLiteral("Key"),
                      QStringLiteral("three"));
    EXPECT_EQ(
        Store.GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"), QStringLiteral("Key")),
        QStringLiteral("one"));
    EXPECT_EQ(
        Store.GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Other"), QStringLiteral("Key")),
        QStringLiteral("two"));
    EXPECT_EQ(
        Store.GetSetting(QStringLiteral("Else"), QStringLiteral("Config"), QStringLiteral("Key")),
        QStringLiteral("three"));
    EXPECT_EQ(Store.Values().value(QStringLiteral("Kavlin/Config/Key")), QStringLiteral("one"));

    Store.SaveSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"), QStringLiteral("Key"),
                      QStringLiteral("four"));
    EXPECT_EQ(
        Store.GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"), QStringLiteral("Key")),
        QStringLiteral("four"));
}

}  // namespace

// The settings file of the program, in a temporary folder.
class IniSettingsStoreFile : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(Folder.isValid()); }
    QString FileText() const {
        QFile File(Folder.filePath(QStringLiteral("Kavlin/Kavlin.conf")));
        return File.open(QIODevice::ReadOnly) ? QString::fromUtf8(File.readAll()) : QString();
    }
    QTemporaryDir Folder;
};

TEST_F(IniSettingsStoreFile, WritesTheConfigGroupOfKavlinConf) {
    IniSettingsStore Store(Folder.path());
    Store.SaveSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                      QStringLiteral("Chip_Type"), QStringLiteral("KV30"));
    const QString Text = FileText();
    EXPECT_TRUE(Text.contains(QStringLiteral("[Config]"))) << Text.toStdString();
    EXPECT_TRUE(Text.contains(QStringLiteral("Chip_Type=KV30"))) << Text.toStdString();
    EXPECT_EQ(Store.GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                               QStringLiteral("Chip_Type")),
              QStringLiteral("KV30"));
}

TEST_F(IniSettingsStoreFile, AbsentKeyReadsEmpty) {
    IniSettingsStore Store(Folder.path());
    EXPECT_TRUE(Store
                    .GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                                QStringLiteral("Work_Dir"))
                    .isEmpty());
}

TEST_F(IniSettingsStoreFile, KeepsTheMonitorRecordWithItsBlanksAndCommas) {
    IniSettingsStore Store(Folder.path());
    const QString Record = QStringLiteral("  1,  19200,N,8,10");
    Store.SaveSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                      QStringLiteral("KV20port_Number"), Record);
    EXPECT_EQ(Store.GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                               QStringLiteral("KV20port_Number")),
              Record);
}

TEST_F(IniSettingsStoreFile, ReadsAValueWrittenByHandWithCommas) {
    QDir().mkpath(Folder.filePath(QStringLiteral("Kavlin")));
    QFile File(Folder.filePath(QStringLiteral("Kavlin/Kavlin.conf")));
    ASSERT_TRUE(File.open(QIODevice::WriteOnly));
    File.write("[Config]\nPort_Address=&H378\nKV20port_Number=\"  2,   9600,E,7,20\"\n");
    File.close();
    IniSettingsStore Store(Folder.path());
    EXPECT_EQ(Store.GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                               QStringLiteral("Port_Address")),
              QStringLiteral("&H378"));
    EXPECT_EQ(Store.GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                               QStringLiteral("KV20port_Number")),
              QStringLiteral("  2,   9600,E,7,20"));
}

namespace {

const QString Kavlin = QStringLiteral("Kavlin");
const QString Config = QStringLiteral("Config");

// Texts that need each of the file's escapes.
const QStringList AwkwardValues = {
    QStringLiteral("  1,  19200,N,8,10"),
    QStringLiteral("C:\\Kavlin\\Work"),
    QStringLiteral("/home/ann/Projekte/Grüße"),
    QStringLiteral("a=b;c"),
    QStringLiteral("say \"hi\""),
    QStringLiteral("@home"),
    QStringLiteral("trailing "),
    QStringLiteral("tab\there"),
    QStringLiteral("line\nbreak"),
    QStringLiteral("\x01"
                   "0beef"),
    QString::fromUtf8("emoji \xF0\x9F\x98\x80"),
};

}  // namespace

TEST_F(IniSettingsStoreFile, QSettingsReadsEveryValueTheStoreWrote) {
    IniSettingsStore Store(Folder.path());
    for (qsizetype Index = 0; Index < AwkwardValues.size(); ++Index) {
        ASSERT_TRUE(Store.SaveSetting(Kavlin, Config, QStringLiteral("Key%1").arg(Index),
                                      AwkwardValues[Index]));
    }
    QSettings Reader(Store.Filename(Kavlin), QSettings::IniFormat);
    Reader.beginGroup(Config);
    for (qsizetype Index = 0; Index < AwkwardValues.size(); ++Index) {
        EXPECT_EQ(Reader.value(QStringLiteral("Key%1").arg(Index)).toString(), AwkwardValues[Index])
            << FileText().toStdString();
    }
}

TEST_F(IniSettingsStoreFile, StoreReadsEveryValueQSettingsWrote) {
    IniSettingsStore Store(Folder.path());
    {
        QSettings Writer(Store.Filename(Kavlin), QSettings::IniFormat);
        Writer.beginGroup(Config);
        for (qsizetype Index = 0; Index < AwkwardValues.size(); ++Index) {
            Writer.setValue(QStringLiteral("Key%1").arg(Index), AwkwardValues[Index]);
        }
    }
    for (qsizetype Index = 0; Index < AwkwardValues.size(); ++Index) {
        EXPECT_EQ(Store.GetSetting(Kavlin, Config, QStringLiteral("Key%1").arg(Index)),
                  AwkwardValues[Index])
            << FileText().toStdString();
    }
}

TEST_F(IniSettingsStoreFile, SavingOneKeyKeepsEveryOtherByteOfTheFile) {
    QDir().mkpath(Folder.filePath(QStringLiteral("Kavlin")));
    // A work folder whose name is not valid UTF-8, lines ended by CR LF, a
    // comment, another section and an odd spacing: none of it is the store's to change.
    const QByteArray Before =
        "; kept\r\n[Other]\r\nMain_Top=1\r\n\r\n[Config]\r\nWork_Dir=/home/ann/Caf\xE9/work\r\n"
        "Main_Top = 200\r\nRun_Dir=/opt/kavlin\r\n";
    {
        QFile File(Folder.filePath(QStringLiteral("Kavlin/Kavlin.conf")));
        ASSERT_TRUE(File.open(QIODevice::WriteOnly));
        File.write(Before);
    }
    IniSettingsStore Store(Folder.path());
    ASSERT_TRUE(
        Store.SaveSetting(Kavlin, Config, QStringLiteral("Main_Top"), QStringLiteral("345")));
    ASSERT_TRUE(
        Store.SaveSetting(Kavlin, Config, QStringLiteral("Main_Left"), QStringLiteral("12")));
    QFile File(Store.Filename(Kavlin));
    ASSERT_TRUE(File.open(QIODevice::ReadOnly));
    EXPECT_EQ(
        File.readAll(),
        QByteArray("; kept\r\n[Other]\r\nMain_Top=1\r\n\r\n[Config]\r\n"
                   "Work_Dir=/home/ann/Caf\xE9/work\r\nMain_Top=345\r\nRun_Dir=/opt/kavlin\r\n"
                   "Main_Left=12\r\n"));
}

TEST_F(IniSettingsStoreFile, SavingTheValueThatIsStoredWritesNothing) {
    QDir().mkpath(Folder.filePath(QStringLiteral("Kavlin")));
    const QByteArray Before = "[Config]\nWork_Dir=/home/ann/Caf\xE9/work\nMain_Top=  200\n";
    const QString Name = Folder.filePath(QStringLiteral("Kavlin/Kavlin.conf"));
    {
        QFile File(Name);
        ASSERT_TRUE(File.open(QIODevice::WriteOnly));
        File.write(Before);
    }
    // Read-only, so that any write at all would fail and say so.
    ASSERT_TRUE(QFile::setPermissions(Name, QFileDevice::ReadOwner));
    IniSettingsStore Store(Folder.path());
    const QString WorkDir = Store.GetSetting(Kavlin, Config, QStringLiteral("Work_Dir"));
    EXPECT_TRUE(Store.SaveSetting(Kavlin, Config, QStringLiteral("Work_Dir"), WorkDir));
    EXPECT_TRUE(
        Store.SaveSetting(Kavlin, Config, QStringLiteral("Main_Top"), QStringLiteral("200")));
    EXPECT_TRUE(Store.SaveSetting(Kavlin, Config, QStringLiteral("Absent"), QString()));
    QFile File(Name);
    ASSERT_TRUE(File.open(QIODevice::ReadOnly));
    EXPECT_EQ(File.readAll(), Before);
}

TEST_F(IniSettingsStoreFile, SaveOnAFullDiskKeepsTheFileAndTellsWhy) {
    IniSettingsStore Store(Folder.path());
    ASSERT_TRUE(Store.SaveSetting(Kavlin, Config, QStringLiteral("Work_Dir"),
                                  QStringLiteral("/home/ann/work")));
    const QString Before = FileText();
    {
        FaultyDisk Disk({.Room = 0});
        EXPECT_FALSE(Store.SaveSetting(Kavlin, Config, QStringLiteral("Work_Dir"),
                                       QStringLiteral("/home/ann/other")));
        EXPECT_EQ(Disk.Commits, 0);
    }
    EXPECT_EQ(Store.FailureText(),
              Store.Filename(Kavlin) + QStringLiteral("\nError 61, Disk full"));
    EXPECT_EQ(FileText(), Before);
    // This run goes on with the value it was given.
    EXPECT_EQ(Store.GetSetting(Kavlin, Config, QStringLiteral("Work_Dir")),
              QStringLiteral("/home/ann/other"));
}

namespace {

// A user's settings file and a system-wide one behind it, as a package installs it.
class SystemWideSettings : public IniSettingsStoreFile {
  protected:
    void SetUp() override {
        IniSettingsStoreFile::SetUp();
        ASSERT_TRUE(System.isValid());
        ASSERT_TRUE(QDir().mkpath(System.filePath(QStringLiteral("Kavlin"))));
        QFile File(SystemFile());
        ASSERT_TRUE(File.open(QIODevice::WriteOnly));
        File.write("[Config]\nRun_Dir=/var/lib/kavlin\nWork_Dir=/srv/projects\n");
    }
    QString SystemFile() const { return System.filePath(QStringLiteral("Kavlin/Kavlin.conf")); }
    void WriteUserFile(const QByteArray& Bytes) {
        ASSERT_TRUE(QDir().mkpath(Folder.filePath(QStringLiteral("Kavlin"))));
        QFile File(Folder.filePath(QStringLiteral("Kavlin/Kavlin.conf")));
        ASSERT_TRUE(File.open(QIODevice::WriteOnly));
        File.write(Bytes);
    }
    QTemporaryDir System;
};

TEST_F(SystemWideSettings, AKeyTheUserHasNotSetIsReadFromTheSystemWideFile) {
    IniSettingsStore Store(Folder.path(), {System.path()});
    EXPECT_EQ(Store.GetSetting(Kavlin, Config, QStringLiteral("Run_Dir")),
              QStringLiteral("/var/lib/kavlin"));
    EXPECT_FALSE(Store.UserFileHolds(Kavlin, Config, QStringLiteral("Run_Dir")));
    EXPECT_TRUE(Store.GetSetting(Kavlin, Config, QStringLiteral("Chip_Type")).isEmpty());
}

TEST_F(SystemWideSettings, TheUsersOwnValueHidesTheSystemWideOneEvenWhenEmpty) {
    WriteUserFile("[Config]\nRun_Dir=/home/ann/.local/share/kavlin\nWork_Dir=\n");
    IniSettingsStore Store(Folder.path(), {System.path()});
    EXPECT_EQ(Store.GetSetting(Kavlin, Config, QStringLiteral("Run_Dir")),
              QStringLiteral("/home/ann/.local/share/kavlin"));
    EXPECT_EQ(Store.GetSetting(Kavlin, Config, QStringLiteral("Work_Dir")), QString());
    EXPECT_TRUE(Store.UserFileHolds(Kavlin, Config, QStringLiteral("Work_Dir")));
}

TEST_F(SystemWideSettings, SavingWritesTheUsersFileOnlyAndAnEmptyValueHidesTheSystemOne) {
    IniSettingsStore Store(Folder.path(), {System.path()});
    ASSERT_TRUE(Store.SaveSetting(Kavlin, Config, QStringLiteral("Work_Dir"), QString()));
    ASSERT_TRUE(Store.SaveSetting(Kavlin, Config, QStringLiteral("Run_Dir"),
                                  QStringLiteral("/var/lib/kavlin")));
    EXPECT_EQ(FileText(), QStringLiteral("[Config]\nWork_Dir=\nRun_Dir=/var/lib/kavlin\n"));
    EXPECT_EQ(Store.GetSetting(Kavlin, Config, QStringLiteral("Work_Dir")), QString());
    QFile File(SystemFile());
    ASSERT_TRUE(File.open(QIODevice::ReadOnly));
    EXPECT_EQ(File.readAll(),
              QByteArray("[Config]\nRun_Dir=/var/lib/kavlin\nWork_Dir=/srv/projects\n"));
}

TEST_F(SystemWideSettings, TheProgramsStoreReadsXdgConfigDirsBehindTheUsersFolder) {
    const QByteArray OldHome = qgetenv("XDG_CONFIG_HOME");
    const QByteArray OldDirs = qgetenv("XDG_CONFIG_DIRS");
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(Folder.path()));
    qputenv("XDG_CONFIG_DIRS", QFile::encodeName(System.path()));
    WriteUserFile("[Config]\nWork_Dir=/home/ann/work\n");
    IniSettingsStore Store;
    const QString RunDir = Store.GetSetting(Kavlin, Config, QStringLiteral("Run_Dir"));
    const QString WorkDir = Store.GetSetting(Kavlin, Config, QStringLiteral("Work_Dir"));
    qputenv("XDG_CONFIG_HOME", OldHome);
    qputenv("XDG_CONFIG_DIRS", OldDirs);
    EXPECT_EQ(RunDir, QStringLiteral("/var/lib/kavlin"));
    EXPECT_EQ(WorkDir, QStringLiteral("/home/ann/work"));
}

}  // namespace
