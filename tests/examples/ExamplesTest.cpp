#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdlib>

#include "chip/FileExecutivePRF.h"
#include "chip/PRFfileType.h"
#include "platform/Global.h"
#include "support/FrameFixture.h"
#include "support/ProgramEnvironment.h"
#include "support/QtPrinters.h"

namespace {

const QStringList ExampleNames = {QStringLiteral("blink"), QStringLiteral("counter"),
                                  QStringLiteral("echo")};

QByteArray FileBytes(const QString& Name) {
    QFile File(Name);
    return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray("<none>");
}

class ExamplePreferenceFiles : public FrameFixture {
  protected:
    void TearDown() override {
        Global<FileExecutivePRF>::Unload();
        FrameFixture::TearDown();
    }
    // The file the program writes for a new KV-20 project of that name, with
    // the settings of a new user.
    QByteArray NewProjectFile(const QString& Name) {
        PRFfileType Mirror;
        Mirror.Path = TempPath();
        Mirror.Name = Name;
        Mirror.DefaultProfile(2);
        Mirror.WriteNewFile();
        return TempFileBytes(Name + QStringLiteral(".prf"));
    }
};

TEST_F(ExamplePreferenceFiles, AreWhatTheProgramWritesForANewKV20Project) {
    for (const QString& Name : ExampleNames) {
        const QByteArray Written = NewProjectFile(Name);
        ASSERT_EQ(Written.size(), 615 * 14);
        EXPECT_EQ(Written.at(612 * 14), 2) << "record 613: a KV-20";
        EXPECT_EQ(FileBytes(QStringLiteral(KAVLIN_EXAMPLES "/") + Name + QStringLiteral(".prf")),
                  Written)
            << Name.toStdString();
    }
}

// With KAVLIN_REGENERATE_EXAMPLES set, writes the examples' preference files
// anew, after a change of what a new project gets that is meant.
TEST_F(ExamplePreferenceFiles, RegenerateWhenAsked) {
    if (std::getenv("KAVLIN_REGENERATE_EXAMPLES") == nullptr) {
        GTEST_SKIP() << "KAVLIN_REGENERATE_EXAMPLES is not set";
    }
    for (const QString& Name : ExampleNames) {
        QFile File(QStringLiteral(KAVLIN_EXAMPLES "/") + Name + QStringLiteral(".prf"));
        ASSERT_TRUE(File.open(QIODevice::WriteOnly | QIODevice::Truncate));
        File.write(NewProjectFile(Name));
    }
}

// Each example compiled by the program in a batch, with the bundled
// component beside it and an install directory of the test's own, then run
// on kavlin-sim as a build script would.
class ExampleRuns : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(Root.isValid());
        Work = Root.filePath(QStringLiteral("work"));
        Install = Root.filePath(QStringLiteral("install"));
        for (const QString& Dir :
             {Work, Install + QStringLiteral("/Temp"), Install + QStringLiteral("/BinKV10"),
              Install + QStringLiteral("/BinKV20"),
              Root.filePath(QStringLiteral("config/Kavlin"))}) {
            ASSERT_TRUE(QDir().mkpath(Dir));
        }
        for (const QString& Library :
             {QStringLiteral("BinKV10/SymbolKV10.sym"), QStringLiteral("BinKV20/SymbolKV20.sym")}) {
            ASSERT_TRUE(QFile::copy(QStringLiteral(KAVLIN_SYMBOL_FILES "/") + Library,
                                    Install + QLatin1Char('/') + Library));
        }
        const QStringList Files =
            QDir(QStringLiteral(KAVLIN_EXAMPLES)).entryList(QDir::Files | QDir::NoDotAndDotDot);
        for (const QString& File : Files) {
            ASSERT_TRUE(QFile::copy(QStringLiteral(KAVLIN_EXAMPLES "/") + File,
                                    Work + QLatin1Char('/') + File));
        }
        QFile Conf(Root.filePath(QStringLiteral("config/Kavlin/Kavlin.conf")));
        ASSERT_TRUE(Conf.open(QIODevice::WriteOnly));
        Conf.write("[Config]\nWork_Dir=" + Work.toUtf8() + "\nRun_Dir=" + Install.toUtf8() + "\n");
    }

    // The batch's log after "kavlin NAME /c", one line an entry.
    QStringList Compile(const QString& Name) {
        QProcess Program;
        Program.setProcessEnvironment(NoDisplayEnvironment(Root.filePath(QStringLiteral("config")),
                                                           Root.filePath(QStringLiteral("data"))));
        Program.start(QStringLiteral(KAVLIN_PROGRAM), {Name, QStringLiteral("/c")});
        EXPECT_TRUE(Program.waitForFinished(60000));
        EXPECT_EQ(Program.exitCode(), 0);
        const QString Log = QString::fromUtf8(FileBytes(Work + QStringLiteral("/Kavlin.err")));
        return Log.split(QStringLiteral("\r\n"));
    }
    QStringList GoodLog(const QString& Name) const {
        return {
            QStringLiteral("Command line:  ") + Name + QStringLiteral(" /c"), QString(),
            QStringLiteral("Compile:  ") + Work + QLatin1Char('/') + Name + QStringLiteral(".kvp"),
            QStringLiteral("Done."), QString()};
    }

    // kavlin-sim's exit code; what the program printed in SimOutput.
    int RunOnSim(const QStringList& Arguments, const QByteArray& Input = QByteArray()) {
        QProcess Sim;
        Sim.start(QStringLiteral(KAVLIN_SIM), Arguments);
        EXPECT_TRUE(Sim.waitForStarted(10000));
        Sim.write(Input);
        Sim.closeWriteChannel();
        EXPECT_TRUE(Sim.waitForFinished(60000));
        SimOutput = Sim.readAllStandardOutput();
        SimErrors = Sim.readAllStandardError();
        return Sim.exitStatus() == QProcess::NormalExit ? Sim.exitCode() : -1;
    }
    QString Image(const QString& Name) const {
        return Work + QLatin1Char('/') + Name + QStringLiteral(".kvb");
    }

    QTemporaryDir Root;
    QString Work;
    QString Install;
    QByteArray SimOutput;
    QByteArray SimErrors;
};

TEST_F(ExampleRuns, BlinkTurnsItsLedsAndPrintsALineEachBlink) {
    ASSERT_EQ(Compile(QStringLiteral("blink")), GoodLog(QStringLiteral("blink")));
    EXPECT_EQ(
        RunOnSim({Image(QStringLiteral("blink")), QStringLiteral("--seconds"), QStringLiteral("10"),
                  QStringLiteral("--expect"), QStringLiteral("Blink 3: LED 1 on")}),
        0)
        << SimErrors.toStdString();
    EXPECT_EQ(SimOutput, QByteArray("Blink 1: LED 1 on\r\nBlink 2: LED 1 on\r\nBlink 3: LED 1 on"));
    // A blink a second: two seconds of chip time see only two of them.
    EXPECT_EQ(
        RunOnSim({Image(QStringLiteral("blink")), QStringLiteral("--seconds"), QStringLiteral("2"),
                  QStringLiteral("--expect"), QStringLiteral("Blink 3")}),
        4);
}

TEST_F(ExampleRuns, CounterCountsItsStartsInTheEepromAndCountsUp) {
    ASSERT_EQ(Compile(QStringLiteral("counter")), GoodLog(QStringLiteral("counter")));
    EXPECT_TRUE(QFile::exists(Work + QStringLiteral("/counter.kvm")));
    EXPECT_TRUE(FileBytes(Work + QStringLiteral("/counter.kvm")).contains("Count"))
        << "the watch window lists the counter";
    const QString Eeprom = Root.filePath(QStringLiteral("eeprom.bin"));
    EXPECT_EQ(RunOnSim({Image(QStringLiteral("counter")), QStringLiteral("--eeprom"), Eeprom,
                        QStringLiteral("--seconds"), QStringLiteral("30"),
                        QStringLiteral("--expect"), QStringLiteral("Count 200")}),
              0)
        << SimErrors.toStdString();
    EXPECT_EQ(SimOutput, QByteArray("Start number 1\r\nCount 100\r\nCount 200"));
    EXPECT_EQ(RunOnSim({Image(QStringLiteral("counter")), QStringLiteral("--eeprom"), Eeprom,
                        QStringLiteral("--seconds"), QStringLiteral("5"),
                        QStringLiteral("--expect"), QStringLiteral("Start number 2\r\n")}),
              0)
        << SimOutput.toStdString();
}

TEST_F(ExampleRuns, EchoAnswersEachLineTyped) {
    ASSERT_EQ(Compile(QStringLiteral("echo")), GoodLog(QStringLiteral("echo")));
    EXPECT_EQ(
        RunOnSim({Image(QStringLiteral("echo")), QStringLiteral("--seconds"), QStringLiteral("10"),
                  QStringLiteral("--expect"), QStringLiteral("You typed: again")},
                 "hello\r\nagain\n"),
        0)
        << SimErrors.toStdString();
    EXPECT_EQ(SimOutput, QByteArray("Type a line:\r\n"
                                    "hello\r\nYou typed: hello\r\n"
                                    "again\r\nYou typed: again"));
}

}  // namespace
