#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>

#include "chip/PrfImageBuilder.h"
#include "support/FaultyDisk.h"

namespace {

// A user's machine in a temporary folder: its own settings and data folders,
// a work path with projects, an install directory. The program runs as a
// process with no display.
class BatchAcceptance : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(Root.isValid());
        Work = Root.filePath(QStringLiteral("work"));
        Install = Root.filePath(QStringLiteral("install"));
        Config = Root.filePath(QStringLiteral("config"));
        Runtime = Root.filePath(QStringLiteral("runtime"));
        Data = Root.filePath(QStringLiteral("data"));
        for (const QString& Dir :
             {Work, Install + QStringLiteral("/Temp"), Install + QStringLiteral("/BinKV10"),
              Install + QStringLiteral("/BinKV20"), Config + QStringLiteral("/Kavlin"), Runtime}) {
            ASSERT_TRUE(QDir().mkpath(Dir));
        }
        QFile::setPermissions(Runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        Touch(Install + QStringLiteral("/BinKV10/SymbolKV10.sym"));
        Touch(Install + QStringLiteral("/BinKV20/SymbolKV20.sym"));
        Touch(Work + QStringLiteral("/blink.kvp"), "blink.bas\r\n");
        Touch(Work + QStringLiteral("/blink.bas"), "Option Explicit\r\n");
        ASSERT_TRUE(PrfImageBuilder().DefaultValues(2).Save(Work + QStringLiteral("/blink.prf")));
        // The test double of the compiler component, where an installation has it.
        ASSERT_TRUE(QFile::link(QStringLiteral(KVCOMP_TEST_DOUBLE),
                                Install + QStringLiteral("/libKvComp141.so")));
        WriteSettings(Install);
    }

    void WriteSettings(const QString& RunDir, const QByteArray& More = QByteArray()) {
        QFile Conf(Config + QStringLiteral("/Kavlin/Kavlin.conf"));
        ASSERT_TRUE(Conf.open(QIODevice::WriteOnly | QIODevice::Truncate));
        Conf.write("[Config]\nWork_Dir=" + Work.toUtf8() + "\nRun_Dir=" + RunDir.toUtf8() + "\n" +
                   More);
    }

    // The project's files go to another folder, which becomes the work path.
    void MoveWorkTo(const QString& Folder) {
        for (const QString& Name : {QStringLiteral("blink.kvp"), QStringLiteral("blink.bas"),
                                    QStringLiteral("blink.prf")}) {
            ASSERT_TRUE(
                QFile::copy(Work + QLatin1Char('/') + Name, Folder + QLatin1Char('/') + Name));
        }
        Work = Folder;
        WriteSettings(Install);
    }

    static void Touch(const QString& Name, const QByteArray& Content = QByteArray()) {
        QFile File(Name);
        ASSERT_TRUE(File.open(QIODevice::WriteOnly));
        File.write(Content);
    }

    // Runs the program; returns its exit code, with standard error kept.
    int Run(const QStringList& Arguments) {
        QProcess Program;
        QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
        Environment.remove(QStringLiteral("DISPLAY"));
        Environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        Environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        Environment.insert(QStringLiteral("XDG_CONFIG_HOME"), Config);
        Environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), Runtime);
        // The simulated chip keeps its memories under the user's data folder.
        Environment.insert(QStringLiteral("XDG_DATA_HOME"), Data);
        for (auto It = ExtraEnvironment.cbegin(); It != ExtraEnvironment.cend(); ++It) {
            Environment.insert(It.key(), It.value());
        }
        Environment.insert(QStringLiteral("KVCOMP_TEST_SCRIPT"),
                           Root.filePath(QStringLiteral("script.txt")));
        Environment.insert(QStringLiteral("KVCOMP_TEST_RECORD"),
                           Root.filePath(QStringLiteral("record.txt")));
        Program.setProcessEnvironment(Environment);
        Program.setWorkingDirectory(Root.path());
        Program.start(ProgramFile, Arguments);
        EXPECT_TRUE(Program.waitForStarted(10000));
        const bool Finished = Program.waitForFinished(30000);
        EXPECT_TRUE(Finished) << "the batch did not end by itself";
        if (!Finished) {
            Program.kill();
            Program.waitForFinished();
        }
        StandardError = QString::fromUtf8(Program.readAllStandardError());
        return Program.exitCode();
    }

    // What the test double of the compiler is to answer.
    void Script(const QByteArray& Lines) {
        Touch(Root.filePath(QStringLiteral("script.txt")), Lines);
    }
    // The calls the test double received.
    QStringList ComponentCalls() const {
        QFile Record(Root.filePath(QStringLiteral("record.txt")));
        if (!Record.open(QIODevice::ReadOnly)) {
            return {};
        }
        return QString::fromUtf8(Record.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    // A memory file that a simulated device keeps in the user's data folder.
    QByteArray KeptFile(const QString& RelativeName) const {
        QFile File(Data + QStringLiteral("/Kavlin/") + RelativeName);
        EXPECT_TRUE(File.open(QIODevice::ReadOnly)) << RelativeName.toStdString();
        return File.readAll();
    }

    QStringList LogLines() const {
        QFile Log(Work + QStringLiteral("/Kavlin.err"));
        if (!Log.open(QIODevice::ReadOnly)) {
            return {QStringLiteral("<no log>")};
        }
        const QString Text = QString::fromUtf8(Log.readAll());
        QStringList Lines = Text.split(QStringLiteral("\r\n"));
        EXPECT_EQ(Lines.takeLast(), QString()) << "every line ends in CR LF";
        return Lines;
    }

    // Put the real component and the system libraries into the install
    // directory, in the test double's place.
    void InstallBundledComponent() {
        QFile::remove(Install + QStringLiteral("/libKvComp141.so"));
        ASSERT_TRUE(QFile::copy(QStringLiteral(KVCOMP_BUNDLED),
                                Install + QStringLiteral("/libKvComp141.so")));
        InstallSymbolFiles();
    }
    void InstallSymbolFiles() {
        for (const QString& Library :
             {QStringLiteral("BinKV10/SymbolKV10.sym"), QStringLiteral("BinKV20/SymbolKV20.sym")}) {
            QFile::remove(Install + QLatin1Char('/') + Library);
            ASSERT_TRUE(QFile::copy(QStringLiteral(KAVLIN_SYMBOL_FILES "/") + Library,
                                    Install + QLatin1Char('/') + Library));
        }
    }
    // kavlin-sim runs the image as a build script would; its exit code.
    int RunOnSim(const QStringList& Arguments) {
        QProcess Sim;
        Sim.start(QStringLiteral(KAVLIN_SIM), Arguments);
        EXPECT_TRUE(Sim.waitForStarted(10000));
        Sim.closeWriteChannel();
        EXPECT_TRUE(Sim.waitForFinished(60000));
        SimOutput = Sim.readAllStandardOutput();
        SimErrors = Sim.readAllStandardError();
        return Sim.exitStatus() == QProcess::NormalExit ? Sim.exitCode() : -1;
    }

    // The program that runs: the one built, beside its bundled component.
    QString ProgramFile = QStringLiteral(KAVLIN_PROGRAM);
    QByteArray SimOutput;
    QByteArray SimErrors;
    QMap<QString, QString> ExtraEnvironment;
    QTemporaryDir Root;
    QString Work;
    QString Install;
    QString Config;
    QString Runtime;
    QString Data;
    QString StandardError;
};

TEST_F(BatchAcceptance, IllegalCommandIsLoggedAndTheBatchEnds) {
    EXPECT_EQ(Run({QStringLiteral("blink"), QStringLiteral("/x")}), 0);
    EXPECT_EQ(LogLines(), (QStringList{QStringLiteral("Command line:  blink /x"), QString(),
                                       QStringLiteral("Error -- illegal command:  /x")}));
    EXPECT_FALSE(StandardError.contains(QStringLiteral("Installation Error")));
}

TEST_F(BatchAcceptance, DownloadBeforeCompileIsRefusedAtTheFirstCommand) {
    Run({QStringLiteral("blink"), QStringLiteral("/d"), QStringLiteral("/c")});
    EXPECT_EQ(LogLines(), (QStringList{QStringLiteral("Command line:  blink /d /c"), QString(),
                                       QStringLiteral("Error -- illegal command:  /d")}));
}

TEST_F(BatchAcceptance, FourWordsAreTooManyCommands) {
    Run({QStringLiteral("blink"), QStringLiteral("/c"), QStringLiteral("/d"),
         QStringLiteral("/c")});
    EXPECT_EQ(LogLines(), (QStringList{QStringLiteral("Command line:  blink /c /d /c"), QString(),
                                       QStringLiteral("Error -- too many commands")}));
}

TEST_F(BatchAcceptance, CompileOfAProjectInTheWorkPathLogsItsFullNameAndDone) {
    Run({QStringLiteral("blink"), QStringLiteral("/C")});
    EXPECT_EQ(LogLines(),
              (QStringList{QStringLiteral("Command line:  blink /C"), QString(),
                           QStringLiteral("Compile:  ") + Work + QStringLiteral("/blink.kvp"),
                           QStringLiteral("Done.")}));
}

TEST_F(BatchAcceptance, CompileLoadsTheProjectAndLogsAModuleThatWontOpen) {
    Touch(Work + QStringLiteral("/bad.kvp"), "blink.bas\r\n1abc.bas\r\n");
    ASSERT_TRUE(PrfImageBuilder().DefaultValues(2).Save(Work + QStringLiteral("/bad.prf")));
    Touch(Work + QStringLiteral("/1abc.bas"), "x");
    Touch(Work + QStringLiteral("/bad.kvb"), QByteArray(10, '\0'));
    Run({QStringLiteral("bad"), QStringLiteral("/c"), QStringLiteral("/d")});
    EXPECT_EQ(LogLines(),
              (QStringList{QStringLiteral("Command line:  bad /c /d"), QString(),
                           QStringLiteral("Module name 1abc not legal identifier"),
                           QStringLiteral("Unable to open module: 1abc.bas"),
                           QStringLiteral("Compile:  ") + Work + QStringLiteral("/bad.kvp"),
                           QStringLiteral("Done.")}))
        << "the logged error stops the download";
}

TEST_F(BatchAcceptance, MissingProjectIsLoggedWithoutDone) {
    Run({QStringLiteral("nosuch"), QStringLiteral("/c"), QStringLiteral("/d")});
    EXPECT_EQ(LogLines(), (QStringList{QStringLiteral("Command line:  nosuch /c /d"), QString(),
                                       QStringLiteral("Project not found:  ") + Work +
                                           QStringLiteral("/nosuch.kvp")}));
}

TEST_F(BatchAcceptance, MissingImageIsLoggedWithoutDone) {
    Run({QStringLiteral("blink"), QStringLiteral("/d")});
    EXPECT_EQ(LogLines(), (QStringList{QStringLiteral("Command line:  blink /d"), QString(),
                                       QStringLiteral("KVB file not found:  ") + Work +
                                           QStringLiteral("/blink.kvb")}));
}

TEST_F(BatchAcceptance, DownloadWithNoPortSetUpReportsItAndEndsWithDone) {
    Touch(Work + QStringLiteral("/blink.kvb"), QByteArray(100, '\x55'));
    Run({QStringLiteral("blink"), QStringLiteral("/d")});
    EXPECT_EQ(LogLines(),
              (QStringList{QStringLiteral("Command line:  blink /d"), QString(),
                           QStringLiteral("Download: ") + Work + QStringLiteral("/blink.kvb"),
                           QStringLiteral("Error -- unable to open download port"),
                           QStringLiteral("Done.")}));
}

TEST_F(BatchAcceptance, QuotedPathWithBlankFallsApartIntoAnIllegalCommand) {
    Run({QStringLiteral("\"") + Root.path() + QStringLiteral("/my dir/a.kvp\"")});
    const QStringList Lines = LogLines();
    ASSERT_EQ(Lines.size(), 3);
    EXPECT_EQ(Lines[0], QStringLiteral("Command line:  \"") + Root.path() +
                            QStringLiteral("/my dir/a.kvp\""));
    EXPECT_EQ(Lines[2], QStringLiteral("Error -- illegal command:  dir/a.kvp\""));
}

TEST_F(BatchAcceptance, QuotedFullPathIsLookedForWhereItPointsNotInTheWorkPath) {
    // A single argument opens the project interactively; missing, it is
    // reported and the program ends. Without a display the box goes to
    // standard error, answered by itself.
    const QString Elsewhere = Root.filePath(QStringLiteral("elsewhere/blink.kvp"));
    EXPECT_EQ(Run({QStringLiteral("\"") + Elsewhere + QStringLiteral("\"")}), 0);
    EXPECT_TRUE(StandardError.contains(QStringLiteral("[Project Not Found] Project not found:  ") +
                                       Elsewhere))
        << StandardError.toStdString();
    EXPECT_FALSE(QFile::exists(Work + QStringLiteral("/Kavlin.err")));
}

TEST_F(BatchAcceptance, OpeningAProjectWithoutADisplayEndsWithAClearMessage) {
    EXPECT_EQ(Run({QStringLiteral("blink")}), 1);
    EXPECT_TRUE(StandardError.contains(QStringLiteral("no display")));
    EXPECT_FALSE(QFile::exists(Work + QStringLiteral("/Kavlin.err")));
}

TEST_F(BatchAcceptance, RelativeWorkDirFindsTheProjectAndKeepsTheLogThere) {
    QFile Conf(Config + QStringLiteral("/Kavlin/Kavlin.conf"));
    ASSERT_TRUE(Conf.open(QIODevice::WriteOnly | QIODevice::Truncate));
    Conf.write("[Config]\nWork_Dir=work\nRun_Dir=" + Install.toUtf8() + "\n");
    Conf.close();
    Run({QStringLiteral("blink"), QStringLiteral("/c")});
    EXPECT_EQ(LogLines(),
              (QStringList{QStringLiteral("Command line:  blink /c"), QString(),
                           QStringLiteral("Compile:  ") + Work + QStringLiteral("/blink.kvp"),
                           QStringLiteral("Done.")}));
}

TEST_F(BatchAcceptance, SecondBatchReplacesTheFirstLog) {
    Run({QStringLiteral("blink"), QStringLiteral("/x")});
    Run({QStringLiteral("blink"), QStringLiteral("/c")});
    const QStringList Lines = LogLines();
    EXPECT_EQ(Lines.first(), QStringLiteral("Command line:  blink /c"));
    EXPECT_FALSE(Lines.contains(QStringLiteral("Error -- illegal command:  /x")));
    EXPECT_EQ(Lines.last(), QStringLiteral("Done."));
}

TEST_F(BatchAcceptance, BrokenInstallationIsReportedOnStandardErrorAndTheBatchStillRuns) {
    WriteSettings(Root.filePath(QStringLiteral("no-install")));
    Run({QStringLiteral("blink"), QStringLiteral("/c")});
    EXPECT_TRUE(StandardError.contains(
        QStringLiteral("[Installation Error] Can't find program directory ") +
        Root.filePath(QStringLiteral("no-install"))))
        << StandardError.toStdString();
    EXPECT_EQ(LogLines().last(), QStringLiteral("Done."));
}

TEST_F(BatchAcceptance, MissingTemporaryDirectoryIsNotCreatedWhenNobodyCanAnswer) {
    QDir(Install + QStringLiteral("/Temp")).removeRecursively();
    Run({QStringLiteral("blink"), QStringLiteral("/c")});
    EXPECT_TRUE(StandardError.contains(QStringLiteral("Can't find temporary directory: ")));
    EXPECT_FALSE(QDir(Install + QStringLiteral("/Temp")).exists());
    EXPECT_EQ(LogLines().last(), QStringLiteral("Done."));
}

TEST_F(BatchAcceptance, BatchKeepsStoredSettingsAndStoresTheWindowGeometry) {
    QFile Conf(Config + QStringLiteral("/Kavlin/Kavlin.conf"));
    ASSERT_TRUE(Conf.open(QIODevice::Append));
    Conf.write("Chip_Type=KV30\n");
    Conf.close();
    Run({QStringLiteral("blink"), QStringLiteral("/c")});
    ASSERT_TRUE(Conf.open(QIODevice::ReadOnly));
    const QString Text = QString::fromUtf8(Conf.readAll());
    EXPECT_TRUE(Text.contains(QStringLiteral("Chip_Type=KV30")));
    EXPECT_TRUE(Text.contains(QStringLiteral("Main_Top=200")));
    EXPECT_TRUE(Text.contains(QStringLiteral("Main_Width=6950")));
}

TEST_F(BatchAcceptance, AGoodCompileLeavesTheImageAndCompileAndDoneInTheLog) {
    Touch(Work + QStringLiteral("/blink.bas"), "Option Explicit\r\nDim x As Integer\r\n");
    Script("sizes=1024,40,0\n");
    Run({QStringLiteral("blink"), QStringLiteral("/c")});
    EXPECT_EQ(LogLines(),
              (QStringList{QStringLiteral("Command line:  blink /c"), QString(),
                           QStringLiteral("Compile:  ") + Work + QStringLiteral("/blink.kvp"),
                           QStringLiteral("Done.")}));
    EXPECT_EQ(QFileInfo(Work + QStringLiteral("/blink.kvb")).size(), 1024);
    EXPECT_TRUE(QFile::exists(Work + QStringLiteral("/blink.kvm")));
    const QStringList Calls = ComponentCalls();
    // The version is asked at start-up only; a batch compile does not check the installation again.
    EXPECT_EQ(Calls.filter(QStringLiteral("GetVersion")).size(), 1);
    EXPECT_TRUE(
        Calls.contains(QStringLiteral("RunCompile(") + Work + QStringLiteral("/blink.kvp)")));
    EXPECT_FALSE(StandardError.contains(QStringLiteral("Installation Error")))
        << StandardError.toStdString();
}

TEST_F(BatchAcceptance, ACompileErrorLeavesTheErrorBlockAndNoDownload) {
    Touch(Work + QStringLiteral("/blink.kvp"), "blink.bas\r\nled.bas\r\n");
    Touch(Work + QStringLiteral("/led.bas"), "Sub Led()\r\n  x = 1\r\nEnd Sub\r\n");
    Script("fail_at=x = 1\ndescription=Variable not defined\n");
    Run({QStringLiteral("blink"), QStringLiteral("/c"), QStringLiteral("/d")});
    EXPECT_EQ(
        LogLines(),
        (QStringList{QStringLiteral("Command line:  blink /c /d"), QString(),
                     QStringLiteral("Compile:  ") + Work + QStringLiteral("/blink.kvp"), QString(),
                     QStringLiteral("Error in module ") + Work + QStringLiteral("/led.bas"),
                     QString(), QStringLiteral("Variable not defined"),
                     QStringLiteral("Column 3 :"), QString(), QStringLiteral("Done.")}));
    EXPECT_FALSE(QFile::exists(Work + QStringLiteral("/blink.kvb")));
}

TEST_F(BatchAcceptance, AMissingComponentIsReportedAtStartUpAndTheCompileLogsTheError) {
    QFile::remove(Install + QStringLiteral("/libKvComp141.so"));
    // A copy of the program with no component beside it.
    ProgramFile = Root.filePath(QStringLiteral("bin/kavlin"));
    ASSERT_TRUE(QDir().mkpath(Root.filePath(QStringLiteral("bin"))));
    ASSERT_TRUE(QFile::copy(QStringLiteral(KAVLIN_PROGRAM), ProgramFile));
    Run({QStringLiteral("blink"), QStringLiteral("/c")});
    EXPECT_TRUE(StandardError.contains(
        QStringLiteral("[Installation Error] Can't find compiler DLL:  libKvComp141.so")))
        << StandardError.toStdString();
    const QStringList Lines = LogLines();
    ASSERT_GE(Lines.size(), 5);
    EXPECT_EQ(Lines[2], QStringLiteral("Compile:  ") + Work + QStringLiteral("/blink.kvp"));
    const QString Report = Lines.mid(3, Lines.size() - 4).join(QLatin1Char('\n'));
    EXPECT_TRUE(Report.contains(QStringLiteral("606"))) << Report.toStdString();
    EXPECT_TRUE(
        Report.contains(QStringLiteral("Can't find compiler DLL:  libKvComp141.so\nNot found in ")))
        << Report.toStdString();
    EXPECT_EQ(Lines.last(), QStringLiteral("Done."));
    EXPECT_FALSE(QFile::exists(Work + QStringLiteral("/blink.kvb")));
}

const QByteArray HelloProgram =
    "Option Explicit\r\nSub Main()\r\n    Debug.Print \"ready\"\r\nEnd Sub\r\n";

// The log of a good "blink /c".
QStringList GoodCompileLog(const QString& Work) {
    return {QStringLiteral("Command line:  blink /c"), QString(),
            QStringLiteral("Compile:  ") + Work + QStringLiteral("/blink.kvp"),
            QStringLiteral("Done.")};
}

TEST_F(BatchAcceptance, TheRealComponentInTheInstallDirectoryMakesAnImageThatKavlinSimRuns) {
    InstallBundledComponent();
    Touch(Work + QStringLiteral("/blink.bas"), HelloProgram);
    EXPECT_EQ(Run({QStringLiteral("blink"), QStringLiteral("/c")}), 0);
    EXPECT_EQ(LogLines(), GoodCompileLog(Work));
    EXPECT_FALSE(StandardError.contains(QStringLiteral("Installation Error")))
        << StandardError.toStdString();
    EXPECT_EQ(ComponentCalls(), QStringList()) << "the test double was not the one loaded";
    EXPECT_EQ(RunOnSim({Work + QStringLiteral("/blink.kvb"), QStringLiteral("--seconds"),
                        QStringLiteral("5"), QStringLiteral("--expect"), QStringLiteral("ready")}),
              0)
        << SimErrors.toStdString();
    EXPECT_EQ(SimOutput, QByteArray("ready"));
    EXPECT_TRUE(QFile::exists(Work + QStringLiteral("/blink.kvm")));
}

TEST_F(BatchAcceptance, WithoutAComponentInTheInstallDirectoryTheOneBesideTheProgramCompiles) {
    QFile::remove(Install + QStringLiteral("/libKvComp141.so"));
    InstallSymbolFiles();
    Touch(Work + QStringLiteral("/blink.bas"), HelloProgram);
    Run({QStringLiteral("blink"), QStringLiteral("/c")});
    EXPECT_EQ(LogLines(), GoodCompileLog(Work));
    EXPECT_FALSE(StandardError.contains(QStringLiteral("Installation Error")))
        << StandardError.toStdString();
    EXPECT_EQ(RunOnSim({Work + QStringLiteral("/blink.kvb"), QStringLiteral("--expect"),
                        QStringLiteral("ready")}),
              0)
        << SimErrors.toStdString();
}

TEST_F(BatchAcceptance, AnErrorFoundByTheRealComponentLeavesTheErrorBlock) {
    InstallBundledComponent();
    Touch(Work + QStringLiteral("/blink.kvp"), "blink.bas\r\nled.bas\r\n");
    Touch(Work + QStringLiteral("/blink.bas"), HelloProgram);
    Touch(Work + QStringLiteral("/led.bas"), "Option Explicit\nSub Led()\n    `\nEnd Sub\n");
    Run({QStringLiteral("blink"), QStringLiteral("/c")});
    const QStringList Lines = LogLines();
    ASSERT_EQ(Lines.size(), 10) << Lines.join(QLatin1Char('|')).toStdString();
    EXPECT_EQ(Lines[4], QStringLiteral("Error in module ") + Work + QStringLiteral("/led.bas"));
    EXPECT_TRUE(Lines[6].contains(QStringLiteral("'`'"))) << Lines[6].toStdString();
    EXPECT_EQ(Lines[7], QStringLiteral("Column 5 :"));
    EXPECT_EQ(Lines[9], QStringLiteral("Done."));
    EXPECT_FALSE(QFile::exists(Work + QStringLiteral("/blink.kvb")));
}

TEST_F(BatchAcceptance, AnotherComponentVersionIsReportedAtStartUpOnly) {
    Script("version=2.0.23\n");
    Run({QStringLiteral("blink"), QStringLiteral("/c")});
    EXPECT_TRUE(StandardError.contains(
        QStringLiteral("[Installation Error] Compiler DLL version mismatch:")))
        << StandardError.toStdString();
    EXPECT_TRUE(StandardError.contains(QStringLiteral("Actual version:  2.0.23")));
    EXPECT_EQ(LogLines().last(), QStringLiteral("Done."));
}

}  // namespace

namespace {

// The lines a batch meant for its log, as they reached standard error.
QStringList LinesOnStandardError(const QString& StandardError) {
    QString Text = StandardError;
    Text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return Text.split(QLatin1Char('\n'));
}

TEST_F(BatchAcceptance, LogThatIsAPipeIsRefusedAtOnceAndItsLinesGoToStandardError) {
    const QString Log = Work + QStringLiteral("/Kavlin.err");
    ASSERT_EQ(::mkfifo(QFile::encodeName(Log).constData(), 0644), 0);
    EXPECT_EQ(Run({QStringLiteral("blink"), QStringLiteral("/c")}), 3);
    const QStringList Lines = LinesOnStandardError(StandardError);
    EXPECT_TRUE(Lines.contains(QStringLiteral("kavlin: the log ") + Log +
                               QStringLiteral(" cannot be written (Path/File access error (not a "
                                              "regular file)); its lines follow here")))
        << StandardError.toStdString();
    EXPECT_TRUE(Lines.contains(QStringLiteral("Command line:  blink /c")));
    EXPECT_TRUE(Lines.contains(QStringLiteral("Compile:  ") + Work + QStringLiteral("/blink.kvp")));
    EXPECT_TRUE(Lines.contains(QStringLiteral("Done.")));
}

TEST_F(BatchAcceptance, LogThatIsAFolderEndsTheRunWithExitCode3AndItsLinesOnStandardError) {
    ASSERT_TRUE(QDir().mkpath(Work + QStringLiteral("/Kavlin.err")));
    EXPECT_EQ(Run({QStringLiteral("blink"), QStringLiteral("/x")}), 3);
    const QStringList Lines = LinesOnStandardError(StandardError);
    EXPECT_TRUE(Lines.contains(QStringLiteral("Error -- illegal command:  /x")))
        << StandardError.toStdString();
    EXPECT_TRUE(QFileInfo(Work + QStringLiteral("/Kavlin.err")).isDir());
}

TEST_F(BatchAcceptance, LogOnAReadOnlyFileSystemLeavesTheOldLogAndSaysSo) {
    SmallTmpfs Disk(Root.filePath(QStringLiteral("mounted")), 1 << 20);
    if (!Disk.Mounted()) {
        GTEST_SKIP() << "this machine lets no test mount a file system";
    }
    MoveWorkTo(Root.filePath(QStringLiteral("mounted")));
    // The log of an earlier, good run: it must not pass for this one's.
    Touch(Work + QStringLiteral("/Kavlin.err"), "Command line:  blink /c\r\n\r\nDone.\r\n");
    ASSERT_TRUE(Disk.MakeReadOnly());
    EXPECT_EQ(Run({QStringLiteral("blink"), QStringLiteral("/c")}), 3);
    EXPECT_TRUE(
        StandardError.contains(QStringLiteral("(Permission denied (read-only file system))")))
        << StandardError.toStdString();
    EXPECT_TRUE(LinesOnStandardError(StandardError).contains(QStringLiteral("Done.")));
}

TEST_F(BatchAcceptance, LogOnAFullFileSystemSendsEveryLineToStandardError) {
    SmallTmpfs Disk(Root.filePath(QStringLiteral("mounted")), 1 << 20);
    if (!Disk.Mounted()) {
        GTEST_SKIP() << "this machine lets no test mount a file system";
    }
    MoveWorkTo(Root.filePath(QStringLiteral("mounted")));
    Disk.FillUpTo(0);
    EXPECT_EQ(Run({QStringLiteral("blink"), QStringLiteral("/c")}), 3);
    const QStringList Lines = LinesOnStandardError(StandardError);
    EXPECT_TRUE(StandardError.contains(QStringLiteral(" cannot be written (Disk full)")))
        << StandardError.toStdString();
    EXPECT_TRUE(Lines.contains(QStringLiteral("Command line:  blink /c")));
    EXPECT_TRUE(Lines.contains(QStringLiteral("Done.")));
}

TEST_F(BatchAcceptance, AGoodLogEndsTheRunWithExitCode0AndNothingOnStandardError) {
    EXPECT_EQ(Run({QStringLiteral("blink"), QStringLiteral("/c")}), 0);
    EXPECT_EQ(LogLines().last(), QStringLiteral("Done."));
    EXPECT_FALSE(StandardError.contains(QStringLiteral("cannot be written")));
}

TEST_F(BatchAcceptance, EmptyProjectNameBeforeTheCommandsIsRefused) {
    EXPECT_EQ(Run({QString(), QStringLiteral("/c")}), 2);
    EXPECT_TRUE(StandardError.contains(
        QStringLiteral("kavlin: the project name is empty; give it before the commands")))
        << StandardError.toStdString();
    EXPECT_FALSE(QFile::exists(Work + QStringLiteral("/Kavlin.err")));
}

TEST_F(BatchAcceptance, NoArgumentsWithoutADisplayEndWithTheClearMessage) {
    EXPECT_EQ(Run({}), 1);
    EXPECT_TRUE(
        StandardError.contains(QStringLiteral("kavlin: no display; the windows cannot be shown")))
        << StandardError.toStdString();
    EXPECT_EQ(Run({QString()}), 1);
    EXPECT_TRUE(
        StandardError.contains(QStringLiteral("kavlin: no display; the windows cannot be shown")))
        << StandardError.toStdString();
}

TEST_F(BatchAcceptance, SettingsTheBatchDidNotChangeKeepTheirBytes) {
    // Names stored in another platform's code page: not valid UTF-8.
    const QByteArray Stored = "[Config]\nWork_Dir=" + Work.toUtf8() +
                              "\nRun_Dir=" + Install.toUtf8() +
                              "\nLast_Project_1=/home/ann/Caf\xE9/blink.kvp\n"
                              "Editor_Font_Name=Courier \xA0New\n";
    Touch(Config + QStringLiteral("/Kavlin/Kavlin.conf"), Stored);
    EXPECT_EQ(Run({QStringLiteral("blink"), QStringLiteral("/c")}), 0);
    QFile Conf(Config + QStringLiteral("/Kavlin/Kavlin.conf"));
    ASSERT_TRUE(Conf.open(QIODevice::ReadOnly));
    const QByteArray After = Conf.readAll();
    // The window geometry was stored, and the rest is as it was.
    EXPECT_TRUE(After.startsWith(Stored)) << After.toStdString();
    EXPECT_TRUE(After.contains("Main_Top=200"));
}

TEST_F(BatchAcceptance, CompileAndDownloadToTheSimulatedChipLogsDownloadedOkAndDone) {
    ASSERT_TRUE(PrfImageBuilder()
                    .AllPins(kvInputTristate)
                    .DefaultValues(2)
                    .Save(Work + QStringLiteral("/blink.prf")));
    WriteSettings(Install, "Port_Number=99\nPort_Mode=Serial\n");
    Script("sizes=1000,40,0\n");
    EXPECT_EQ(Run({QStringLiteral("blink"), QStringLiteral("/c"), QStringLiteral("/d")}), 0);
    EXPECT_EQ(LogLines(),
              (QStringList{QStringLiteral("Command line:  blink /c /d"), QString(),
                           QStringLiteral("Compile:  ") + Work + QStringLiteral("/blink.kvp"),
                           QStringLiteral("Download: ") + Work + QStringLiteral("/blink.kvb"),
                           QStringLiteral("Program downloaded OK"), QStringLiteral("Done.")}));
    // The simulated chip's memories, as it keeps them between runs: the image
    // at address 0 of the external EEPROM, the KV-20 block of a preference
    // file with every pin an input at address 0 of the internal one, the
    // rest erased.
    QFile Image(Work + QStringLiteral("/blink.kvb"));
    ASSERT_TRUE(Image.open(QIODevice::ReadOnly));
    const QByteArray Program = Image.readAll();
    ASSERT_EQ(Program.size(), 1000);
    const QByteArray ExternalBytes = KeptFile(QStringLiteral("SimulatedChip/external-eeprom.bin"));
    ASSERT_EQ(ExternalBytes.size(), 32768);
    EXPECT_EQ(ExternalBytes.left(1000), Program);
    EXPECT_EQ(ExternalBytes.mid(1000), QByteArray(32768 - 1000, '\xFF'));
    const QByteArray InternalBytes = KeptFile(QStringLiteral("SimulatedChip/internal-eeprom.bin"));
    ASSERT_EQ(InternalBytes.size(), 512);
    QByteArray Block(32, '\0');
    Block[0] = 2;
    Block[1] = 6;
    Block[6] = static_cast<char>(176);
    Block[7] = static_cast<char>(176);
    Block[31] = static_cast<char>(255);
    EXPECT_EQ(InternalBytes.left(32), Block);
    EXPECT_EQ(InternalBytes.mid(32), QByteArray(512 - 32, '\xFF'));
}

TEST_F(BatchAcceptance, DownloadToTheSimulatedKV10BoardLeavesTheImageAndTheBlockInItsFiles) {
    // A KV-10 project with its pins at their defaults but pin 39 high.
    ASSERT_TRUE(PrfImageBuilder()
                    .AllPins(kvInputTristate)
                    .DefaultValues(1)
                    .Pin(39, kvOutputHigh)
                    .Save(Work + QStringLiteral("/blink.prf")));
    WriteSettings(Install,
                  "Chip_Type=KV10\nPort_Number=99\nPort_Mode=Parallel\n"
                  "Port_Address=888\nPort_Reserve=False\n");
    QByteArray Program(1000, '\0');
    for (int Address = 0; Address < Program.size(); ++Address) {
        Program[Address] = static_cast<char>(Address * 3 + 11);
    }
    Touch(Work + QStringLiteral("/blink.kvb"), Program);
    EXPECT_EQ(Run({QStringLiteral("blink"), QStringLiteral("/d")}), 0);
    EXPECT_EQ(LogLines(),
              (QStringList{QStringLiteral("Command line:  blink /d"), QString(),
                           QStringLiteral("Download: ") + Work + QStringLiteral("/blink.kvb"),
                           QStringLiteral("Program downloaded OK"), QStringLiteral("Done.")}))
        << StandardError.toStdString();
    // The board's memories, as it keeps them between runs: the image from
    // address 0 of the SPI EEPROM, its last page padded with blanks, and the
    // KV-10 block at addresses 0 to 18 and 31 of the internal EEPROM.
    const QByteArray SpiBytes = KeptFile(QStringLiteral("SimulatedBoard/spi-eeprom.bin"));
    ASSERT_EQ(SpiBytes.size(), 32768);
    EXPECT_EQ(SpiBytes.left(1000), Program);
    EXPECT_EQ(SpiBytes.mid(1000, 24), QByteArray(24, ' '));
    EXPECT_EQ(SpiBytes.mid(1024), QByteArray(32768 - 1024, '\xFF'));
    const QByteArray InternalBytes = KeptFile(QStringLiteral("SimulatedBoard/internal-eeprom.bin"));
    ASSERT_EQ(InternalBytes.size(), 512);
    QByteArray Block(19, '\0');
    Block[1] = 4;                        // port D data, bit 2 always set
    Block[9] = 1;                        // port A direction: pin 39 an output
    Block[10] = 1;                       // port A data: pin 39 high
    Block[11] = static_cast<char>(255);  // node address 65279, low byte
    Block[12] = static_cast<char>(254);  // its high byte
    Block[13] = static_cast<char>(254);  // group address
    EXPECT_EQ(InternalBytes.left(19), Block);
    EXPECT_EQ(InternalBytes.mid(19, 12), QByteArray(12, '\xFF')) << "19 to 30 are not written";
    EXPECT_EQ(InternalBytes.at(31), '\xFF');
    EXPECT_EQ(InternalBytes.mid(32), QByteArray(512 - 32, '\xFF'));
    // The serial chip's files are another device's.
    EXPECT_FALSE(
        QFile::exists(Data + QStringLiteral("/Kavlin/SimulatedBoard/external-eeprom.bin")));
}

TEST_F(BatchAcceptance, DownloadToAPortWithNothingBehindItLogsTheHaltErrorAndDone) {
    // A pseudo-terminal whose far end nobody answers, as a cable with no chip.
    int Master = -1;
    int Slave = -1;
    char Name[128] = {};
    if (::openpty(&Master, &Slave, Name, nullptr, nullptr) != 0) {
        GTEST_SKIP() << "no pseudo-terminals on this machine";
    }
    ::close(Slave);
    ExtraEnvironment.insert(QStringLiteral("KAVLIN_SERIAL_PORTS"), QString::fromLocal8Bit(Name));
    WriteSettings(Install, "Port_Number=1\nPort_Mode=Serial\n");
    Touch(Work + QStringLiteral("/blink.kvb"), QByteArray(100, '\x55'));
    EXPECT_EQ(Run({QStringLiteral("blink"), QStringLiteral("/d")}), 0);
    ::close(Master);
    EXPECT_EQ(LogLines(),
              (QStringList{QStringLiteral("Command line:  blink /d"), QString(),
                           QStringLiteral("Download: ") + Work + QStringLiteral("/blink.kvb"),
                           QStringLiteral("Error halting processor"),
                           QStringLiteral("Download error:"), QString(),
                           QStringLiteral("Error downloading program"), QStringLiteral("Done.")}));
}

}  // namespace
