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
#include "platform/MessageBoxService.h"
#include "platform/SettingsStore.h"
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

// The settings file of the program, pointed at a temporary folder.
class QSettingsStoreFile : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(Folder.isValid());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, Folder.path());
    }
    void TearDown() override {
        // Back to a folder that outlives this test.
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, Spare.path());
    }
    static inline QTemporaryDir Spare;
    QString FileText() const {
        QFile File(Folder.filePath(QStringLiteral("Kavlin/Kavlin.conf")));
        return File.open(QIODevice::ReadOnly) ? QString::fromUtf8(File.readAll()) : QString();
    }
    QTemporaryDir Folder;
};

TEST_F(QSettingsStoreFile, WritesTheConfigGroupOfKavlinConf) {
    QSettingsStore Store;
    Store.SaveSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                      QStringLiteral("Chip_Type"), QStringLiteral("KV30"));
    const QString Text = FileText();
    EXPECT_TRUE(Text.contains(QStringLiteral("[Config]"))) << Text.toStdString();
    EXPECT_TRUE(Text.contains(QStringLiteral("Chip_Type=KV30"))) << Text.toStdString();
    EXPECT_EQ(Store.GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                               QStringLiteral("Chip_Type")),
              QStringLiteral("KV30"));
}

TEST_F(QSettingsStoreFile, AbsentKeyReadsEmpty) {
    QSettingsStore Store;
    EXPECT_TRUE(Store
                    .GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                                QStringLiteral("Work_Dir"))
                    .isEmpty());
}

TEST_F(QSettingsStoreFile, KeepsTheMonitorRecordWithItsBlanksAndCommas) {
    QSettingsStore Store;
    const QString Record = QStringLiteral("  1,  19200,N,8,10");
    Store.SaveSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                      QStringLiteral("KV20port_Number"), Record);
    EXPECT_EQ(Store.GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                               QStringLiteral("KV20port_Number")),
              Record);
}

TEST_F(QSettingsStoreFile, ReadsAValueWrittenByHandWithCommas) {
    QDir().mkpath(Folder.filePath(QStringLiteral("Kavlin")));
    QFile File(Folder.filePath(QStringLiteral("Kavlin/Kavlin.conf")));
    ASSERT_TRUE(File.open(QIODevice::WriteOnly));
    File.write("[Config]\nPort_Address=&H378\nKV20port_Number=\"  2,   9600,E,7,20\"\n");
    File.close();
    QSettingsStore Store;
    EXPECT_EQ(Store.GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                               QStringLiteral("Port_Address")),
              QStringLiteral("&H378"));
    EXPECT_EQ(Store.GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"),
                               QStringLiteral("KV20port_Number")),
              QStringLiteral("  2,   9600,E,7,20"));
}
