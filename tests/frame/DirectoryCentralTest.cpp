#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "FrameTestSupport.h"
#include "frame/CommandLineInterpreter.h"
#include "frame/DirectoryCentral.h"
#include "support/FrameFixture.h"

using namespace DirectoryCentral;

namespace {

class DirectoryCentralTest : public FrameFixture {
  protected:
    void TearDown() override {
        SetCompilerVersionCheck(nullptr);
        FrameFixture::TearDown();
    }

    // An install directory under the temporary directory, with what asked.
    QString MakeInstall(bool WithTemp, bool WithKV10, bool WithKV20) {
        const QString Install = TempPath() + QStringLiteral("/install");
        EXPECT_TRUE(QDir().mkpath(Install));
        if (WithTemp) {
            EXPECT_TRUE(QDir().mkpath(Install + QStringLiteral("/Temp")));
        }
        if (WithKV10) {
            WriteFile(QStringLiteral("install/BinKV10/SymbolKV10.sym"), "symbols");
        }
        if (WithKV20) {
            WriteFile(QStringLiteral("install/BinKV20/SymbolKV20.sym"), "symbols");
        }
        SetSetting(QStringLiteral("Run_Dir"), Install);
        return Install;
    }

    static QString Canonical(const QString& Path) { return QFileInfo(Path).canonicalFilePath(); }
};

// ---- Work path --------------------------------------------------------------

TEST_F(DirectoryCentralTest, SetWorkPathOnlySetsIt) {
    const QString Before = QDir::currentPath();
    SetWorkPath(QStringLiteral("/no/such/dir"));
    EXPECT_EQ(GetWorkPath(), QStringLiteral("/no/such/dir"));
    EXPECT_EQ(QDir::currentPath(), Before);
    EXPECT_TRUE(Setting(QStringLiteral("Work_Dir")).isEmpty());
}

TEST_F(DirectoryCentralTest, InitializeDirectoriesTakesTheStoredPaths) {
    const QString Work = TempPath() + QStringLiteral("/work");
    ASSERT_TRUE(QDir().mkpath(Work));
    SetSetting(QStringLiteral("Work_Dir"), Work);
    SetSetting(QStringLiteral("Run_Dir"), QStringLiteral("/opt/kavlin"));
    InitializeDirectories();
    EXPECT_EQ(GetApplicationPath(), QCoreApplication::applicationDirPath());
    EXPECT_EQ(GetInstallPath(), QStringLiteral("/opt/kavlin"));
    EXPECT_EQ(GetWorkPath(), Work);
    EXPECT_EQ(Canonical(QDir::currentPath()), Canonical(Work));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(DirectoryCentralTest, WorkDirThatHasGoneGivesTheApplicationPathWithoutAMessage) {
    SetSetting(QStringLiteral("Work_Dir"), TempPath() + QStringLiteral("/gone"));
    InitializeDirectories();
    EXPECT_EQ(GetWorkPath(), QCoreApplication::applicationDirPath());
    EXPECT_EQ(Canonical(QDir::currentPath()), Canonical(QCoreApplication::applicationDirPath()));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_EQ(Setting(QStringLiteral("Work_Dir")), TempPath() + QStringLiteral("/gone"));
}

TEST_F(DirectoryCentralTest, EmptyWorkDirGivesTheApplicationPath) {
    InitializeDirectories();
    EXPECT_EQ(GetWorkPath(), QCoreApplication::applicationDirPath());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(DirectoryCentralTest, InitializeWorkPathReadsTheSettingAnew) {
    InitializeDirectories();
    const QString Work = TempPath() + QStringLiteral("/later");
    ASSERT_TRUE(QDir().mkpath(Work));
    SetSetting(QStringLiteral("Work_Dir"), Work);
    InitializeWorkPath();
    EXPECT_EQ(GetWorkPath(), Work);
    EXPECT_EQ(Canonical(QDir::currentPath()), Canonical(Work));
}

TEST_F(DirectoryCentralTest, RelativeWorkDirBecomesAbsoluteBeforeTheChangeOfDirectory) {
    ASSERT_TRUE(QDir().mkpath(TempPath() + QStringLiteral("/rel/work")));
    QDir::setCurrent(TempPath() + QStringLiteral("/rel"));
    SetSetting(QStringLiteral("Work_Dir"), QStringLiteral("work"));
    InitializeDirectories();
    EXPECT_EQ(GetWorkPath(), TempPath() + QStringLiteral("/rel/work"));
    EXPECT_EQ(Canonical(QDir::currentPath()), Canonical(TempPath() + QStringLiteral("/rel/work")));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

// ---- CreateDirectory --------------------------------------------------------

TEST_F(DirectoryCentralTest, CreateDirectoryMakesOneDirectory) {
    bool Success = false;
    CreateDirectory(TempPath() + QStringLiteral("/made"), Success);
    EXPECT_TRUE(Success);
    EXPECT_TRUE(QFileInfo(TempPath() + QStringLiteral("/made")).isDir());
}

TEST_F(DirectoryCentralTest, CreateDirectoryFailsForAMissingParentAnExistingOneOrAFile) {
    bool Success = true;
    CreateDirectory(TempPath() + QStringLiteral("/no/parent"), Success);
    EXPECT_FALSE(Success);
    EXPECT_FALSE(QFileInfo(TempPath() + QStringLiteral("/no")).exists());

    ASSERT_TRUE(QDir().mkpath(TempPath() + QStringLiteral("/there")));
    Success = true;
    CreateDirectory(TempPath() + QStringLiteral("/there"), Success);
    EXPECT_FALSE(Success);

    WriteFile(QStringLiteral("file"));
    Success = true;
    CreateDirectory(TempPath() + QStringLiteral("/file"), Success);
    EXPECT_FALSE(Success);

    Success = true;
    CreateDirectory(QString(), Success);
    EXPECT_FALSE(Success);
}

// ---- CheckInstallation ------------------------------------------------------

TEST_F(DirectoryCentralTest, CompleteInstallationPassesWithoutAMessage) {
    const QString Install = MakeInstall(true, true, true);
    bool Success = false;
    CheckInstallation(Success);
    EXPECT_TRUE(Success);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_EQ(GetInstallPath(), Install);
}

TEST_F(DirectoryCentralTest, MissingProgramDirectoryIsReportedAndAllChecksStillRun) {
    const QString Install = TempPath() + QStringLiteral("/missing");
    SetSetting(QStringLiteral("Run_Dir"), Install);
    int CompilerChecks = 0;
    SetCompilerVersionCheck([&CompilerChecks](bool& Success) {
        ++CompilerChecks;
        Success = true;
    });
    bool Success = true;
    CheckInstallation(Success);
    EXPECT_FALSE(Success);
    EXPECT_EQ(CompilerChecks, 1);
    ASSERT_EQ(Boxes->Boxes.size(), 2);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Can't find program directory ") + Install);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Installation Error"));
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::OKOnly);
    EXPECT_EQ(Boxes->Boxes[1].Text, QStringLiteral("Can't find library file: ") + Install +
                                        QStringLiteral("/BinKV10/SymbolKV10.sym"));
    EXPECT_EQ(Boxes->Boxes[1].Title, QStringLiteral("Installation Error"));
    EXPECT_EQ(Boxes->Boxes[1].Buttons, MsgBoxButtons::OKOnly);
}

TEST_F(DirectoryCentralTest, EmptyRunDirNamesNothingAndTheLibraryFileRelativeToNothing) {
    // The current directory holds no library folder, so the relative name is
    // not found there either.
    ASSERT_TRUE(QDir::setCurrent(TempPath()));
    bool Success = true;
    CheckInstallation(Success);
    EXPECT_FALSE(Success);
    ASSERT_EQ(Boxes->Boxes.size(), 2);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Can't find program directory "));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Installation Error"));
    EXPECT_EQ(Boxes->Boxes[1].Text,
              QStringLiteral("Can't find library file: BinKV10/SymbolKV10.sym"));
    EXPECT_EQ(Boxes->Boxes[1].Title, QStringLiteral("Installation Error"));
    EXPECT_TRUE(GetInstallPath().isEmpty());
}

TEST_F(DirectoryCentralTest, MissingTempAnsweredYesIsCreated) {
    const QString Install = MakeInstall(false, true, true);
    Boxes->QueueAnswer(vbYes);
    bool Success = false;
    CheckInstallation(Success);
    EXPECT_TRUE(Success);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Can't find temporary directory: ") + Install +
                                        QStringLiteral("/Temp\nCreate directory?"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Installation Error"));
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::YesNo);
    EXPECT_TRUE(QFileInfo(Install + QStringLiteral("/Temp")).isDir());
}

TEST_F(DirectoryCentralTest, MissingTempAnsweredNoFails) {
    const QString Install = MakeInstall(false, true, true);
    Boxes->QueueAnswer(vbNo);
    bool Success = true;
    CheckInstallation(Success);
    EXPECT_FALSE(Success);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::YesNo);
    EXPECT_FALSE(QFileInfo(Install + QStringLiteral("/Temp")).exists());
}

TEST_F(DirectoryCentralTest, MissingTempIsAskedEvenInABatch) {
    // The question has no batch form: it is a box in every case.
    const QString Install = MakeInstall(false, true, true);
    CommandLineInterpreter::SetCommandLine(QStringLiteral("name /x"));
    CommandLineInterpreter::Run();
    ASSERT_TRUE(CommandLineInterpreter::GetCommandLineMode());
    ASSERT_TRUE(Boxes->Boxes.isEmpty());
    Boxes->QueueAnswer(vbYes);
    bool Success = false;
    CheckObjectDirectory(Success);
    EXPECT_TRUE(Success);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::YesNo);
    EXPECT_TRUE(QFileInfo(Install + QStringLiteral("/Temp")).isDir());
}

TEST_F(DirectoryCentralTest, TempThatCannotBeCreatedIsReported) {
    const QString Install = MakeInstall(false, true, true);
    // A file in the way of the directory.
    WriteFile(QStringLiteral("install/Temp"), "not a directory");
    Boxes->QueueAnswer(vbYes);
    bool Success = true;
    CheckInstallation(Success);
    EXPECT_FALSE(Success);
    ASSERT_EQ(Boxes->Boxes.size(), 2);
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::YesNo);
    EXPECT_EQ(Boxes->Boxes[1].Text, QStringLiteral("Error creating object file directory ") +
                                        Install + QStringLiteral("/Temp"));
    EXPECT_EQ(Boxes->Boxes[1].Title, QStringLiteral("Installation Error"));
    EXPECT_EQ(Boxes->Boxes[1].Buttons, MsgBoxButtons::OKOnly);
}

TEST_F(DirectoryCentralTest, OnlyTheFirstMissingLibraryFileIsReported) {
    const QString Install = MakeInstall(true, false, false);
    bool Success = true;
    CheckInstallation(Success);
    EXPECT_FALSE(Success);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Can't find library file: ") + Install +
                                        QStringLiteral("/BinKV10/SymbolKV10.sym"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Installation Error"));
}

TEST_F(DirectoryCentralTest, MissingSecondLibraryFileIsReported) {
    const QString Install = MakeInstall(true, true, false);
    bool Success = true;
    CheckInstallation(Success);
    EXPECT_FALSE(Success);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Can't find library file: ") + Install +
                                        QStringLiteral("/BinKV20/SymbolKV20.sym"));
}

TEST_F(DirectoryCentralTest, NoLibraryFileIsAskedForTheKV30) {
    const QString Install = MakeInstall(true, true, true);
    ASSERT_FALSE(QFileInfo::exists(Install + QStringLiteral("/BinKV30")));
    bool Success = false;
    // The library check works on the install path that the directory check read.
    CheckObjectDirectory(Success);
    ASSERT_TRUE(Success);
    Success = false;
    CheckLibraryFiles(Success);
    EXPECT_TRUE(Success);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(DirectoryCentralTest, RunDirWithBackslashSeparatorsIsFound) {
    MakeInstall(true, true, true);
    QString Windows = TempPath() + QStringLiteral("/install");
    Windows.replace(QLatin1Char('/'), QLatin1Char('\\'));
    SetSetting(QStringLiteral("Run_Dir"), Windows);
    bool Success = false;
    CheckInstallation(Success);
    EXPECT_TRUE(Success);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(DirectoryCentralTest, CompilerVersionCheckCountsInTheResult) {
    MakeInstall(true, true, true);
    int CompilerChecks = 0;
    SetCompilerVersionCheck([&CompilerChecks](bool& Success) {
        ++CompilerChecks;
        Success = false;
    });
    bool Success = true;
    CheckInstallation(Success);
    EXPECT_FALSE(Success);
    EXPECT_EQ(CompilerChecks, 1);

    SetCompilerVersionCheck([&CompilerChecks](bool& Success) {
        ++CompilerChecks;
        Success = true;
    });
    CheckInstallation(Success);
    EXPECT_TRUE(Success);
    EXPECT_EQ(CompilerChecks, 2);
}

TEST_F(DirectoryCentralTest, CompilerVersionCheckRunsAfterTheDirectoryAndBeforeTheLibraries) {
    // Run_Dir missing: the directory box comes first, the library box last,
    // and the compiler check sees exactly the first one.
    SetSetting(QStringLiteral("Run_Dir"), TempPath() + QStringLiteral("/missing"));
    qsizetype BoxesSeenByCompilerCheck = -1;
    SetCompilerVersionCheck([this, &BoxesSeenByCompilerCheck](bool& Success) {
        BoxesSeenByCompilerCheck = Boxes->Boxes.size();
        Success = false;
    });
    bool Success = true;
    CheckInstallation(Success);
    EXPECT_FALSE(Success);
    EXPECT_EQ(BoxesSeenByCompilerCheck, 1);
    EXPECT_EQ(Boxes->Boxes.size(), 2);
}

TEST_F(DirectoryCentralTest, InstallPathIsReadAnewAtEveryCheck) {
    const QString Install = MakeInstall(true, true, true);
    bool Success = false;
    CheckInstallation(Success);
    EXPECT_EQ(GetInstallPath(), Install);
    SetSetting(QStringLiteral("Run_Dir"), TempPath() + QStringLiteral("/other"));
    CheckInstallation(Success);
    EXPECT_FALSE(Success);
    EXPECT_EQ(GetInstallPath(), TempPath() + QStringLiteral("/other"));
}

}  // namespace
