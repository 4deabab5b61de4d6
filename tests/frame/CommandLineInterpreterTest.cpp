#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <functional>
#include <ostream>

#include "FrameTestSupport.h"
#include "frame/CommandLineInterpreter.h"
#include "frame/DirectoryCentral.h"
#include "frame/ErrorDisplay.h"
#include "support/FrameFixture.h"

using namespace CommandLineInterpreter;

namespace {

// ---- ParseCommandLine -------------------------------------------------------

struct ParseCase {
    QString CommandLine;
    int MaxArguments;
    QStringList Expected;
};

std::ostream& operator<<(std::ostream& Stream, const ParseCase& Case) {
    Stream << '"' << Case.CommandLine.toStdString() << "\" max " << Case.MaxArguments << " ->";
    for (const QString& Argument : Case.Expected) {
        Stream << " [" << Argument.toStdString() << ']';
    }
    return Stream;
}

class ParseCommandLineSplits : public ::testing::TestWithParam<ParseCase> {};

TEST_P(ParseCommandLineSplits, AtBlanksAndTabs) {
    const ParseCase& Case = GetParam();
    int16_t ArgumentCount = -5;
    const QStringList Arguments =
        ParseCommandLine(Case.CommandLine, Case.MaxArguments, ArgumentCount);
    EXPECT_EQ(Arguments, Case.Expected);
    EXPECT_EQ(ArgumentCount, Case.Expected.size());
}

INSTANTIATE_TEST_SUITE_P(
    Separators, ParseCommandLineSplits,
    ::testing::Values(
        ParseCase{QString(), 10, {}}, ParseCase{QStringLiteral("   "), 10, {}},
        ParseCase{QStringLiteral("\t \t"), 10, {}},
        ParseCase{QStringLiteral("name"), 10, {QStringLiteral("name")}},
        ParseCase{QStringLiteral("name /c /d"),
                  10,
                  {QStringLiteral("name"), QStringLiteral("/c"), QStringLiteral("/d")}},
        ParseCase{
            QStringLiteral("  name   /c  "), 10, {QStringLiteral("name"), QStringLiteral("/c")}},
        ParseCase{QStringLiteral("name\t/c"), 10, {QStringLiteral("name"), QStringLiteral("/c")}},
        ParseCase{
            QStringLiteral("\tname \t \t/C\t"), 10, {QStringLiteral("name"), QStringLiteral("/C")}},
        ParseCase{QStringLiteral("a\nb"), 10, {QStringLiteral("a\nb")}},
        ParseCase{
            QStringLiteral("a\r\nb c"), 10, {QStringLiteral("a\r\nb"), QStringLiteral("c")}}));

INSTANTIATE_TEST_SUITE_P(
    QuotesMeanNothing, ParseCommandLineSplits,
    ::testing::Values(
        ParseCase{QStringLiteral("\"C:\\my dir\\a.kvp\""),
                  10,
                  {QStringLiteral("\"C:\\my"), QStringLiteral("dir\\a.kvp\"")}},
        ParseCase{QStringLiteral("\"C:\\dir\\a.kvp\""), 10, {QStringLiteral("\"C:\\dir\\a.kvp\"")}},
        ParseCase{QStringLiteral("\"a b\" /c"),
                  10,
                  {QStringLiteral("\"a"), QStringLiteral("b\""), QStringLiteral("/c")}},
        ParseCase{QStringLiteral("\"\""), 10, {QStringLiteral("\"\"")}}));

INSTANTIATE_TEST_SUITE_P(
    MaxArguments, ParseCommandLineSplits,
    ::testing::Values(
        ParseCase{QStringLiteral("1 2 3 4 5 6 7 8 9 10"), 10,
                  QStringLiteral("1 2 3 4 5 6 7 8 9 10").split(QLatin1Char(' '))},
        ParseCase{QStringLiteral("1 2 3 4 5 6 7 8 9 10 11"), 10,
                  QStringLiteral("1 2 3 4 5 6 7 8 9 10").split(QLatin1Char(' '))},
        ParseCase{QStringLiteral("1 2 3 4 5 6 7 8 9 10 11 12 13"), 10,
                  QStringLiteral("1 2 3 4 5 6 7 8 9 10").split(QLatin1Char(' '))},
        ParseCase{QStringLiteral("a b c"), 2, {QStringLiteral("a"), QStringLiteral("b")}},
        ParseCase{QStringLiteral("a b   "), 2, {QStringLiteral("a"), QStringLiteral("b")}},
        ParseCase{QStringLiteral("a"), 0, {}}));

TEST(ParseCommandLine, MaxArgumentsIsTen) { EXPECT_EQ(MaxArguments, 10); }

// ---- JoinArguments ----------------------------------------------------------

TEST(JoinArguments, JoinsByBlanksAndQuotesAnArgumentWithABlankOrTab) {
    EXPECT_EQ(JoinArguments({}), QString());
    EXPECT_EQ(JoinArguments({QStringLiteral("name"), QStringLiteral("/c"), QStringLiteral("/d")}),
              QStringLiteral("name /c /d"));
    EXPECT_EQ(JoinArguments({QStringLiteral("C:\\my dir\\a.kvp")}),
              QStringLiteral("\"C:\\my dir\\a.kvp\""));
    EXPECT_EQ(JoinArguments({QStringLiteral("a\tb"), QStringLiteral("/c")}),
              QStringLiteral("\"a\tb\" /c"));
    EXPECT_EQ(JoinArguments({QStringLiteral("/tmp/dir/a.kvp")}), QStringLiteral("/tmp/dir/a.kvp"));
}

TEST(JoinArguments, LeavesAnArgumentThatAlreadyStandsInQuotes) {
    EXPECT_EQ(JoinArguments({QStringLiteral("\"C:\\my dir\\a.kvp\"")}),
              QStringLiteral("\"C:\\my dir\\a.kvp\""));
    EXPECT_EQ(JoinArguments({QStringLiteral("\"a b"), QStringLiteral("/c")}),
              QStringLiteral("\"\"a b\" /c"));
}

// ---- Run --------------------------------------------------------------------

// A host that records what the interpreter asks of it.
class RecordingHost : public CommandLineHost {
  public:
    void ClearComError() override { Calls << QStringLiteral("ClearComError"); }
    void ShowEditorAndOpenProject(const QString& Path, const QString& Name,
                                  const QString& Extension) override {
        Calls << QStringLiteral("ShowEditorAndOpenProject(%1|%2|%3)").arg(Path, Name, Extension);
    }
    void OpenProject(const QString& Path, const QString& Name, const QString& Extension) override {
        Calls << QStringLiteral("OpenProject(%1|%2|%3)").arg(Path, Name, Extension);
    }
    void CompileAll() override {
        Calls << QStringLiteral("CompileAll");
        if (OnCompile) {
            OnCompile();
        }
    }
    void OpenKVBfile(const QString& Filename) override {
        Calls << QStringLiteral("OpenKVBfile(%1)").arg(Filename);
    }
    bool OpenDownloadPort() override {
        Calls << QStringLiteral("OpenDownloadPort");
        return PortOpens;
    }
    void DownloadProgram(bool& Success) override {
        Calls << QStringLiteral("DownloadProgram");
        Success = DownloadSucceeds;
    }
    void ExecuteProgram() override {
        Calls << QStringLiteral("ExecuteProgram");
        LogAtExecute = ReadLogLines();
    }
    void UnloadDownloader() override {
        Calls << QStringLiteral("UnloadDownloader");
        LogOpenAtUnload = ErrorDisplay::GetLogFileIsOpen();
    }

    bool Called(const QString& Prefix) const {
        for (const QString& Call : Calls) {
            if (Call.startsWith(Prefix)) {
                return true;
            }
        }
        return false;
    }

    QStringList Calls;
    bool PortOpens = true;
    bool DownloadSucceeds = true;
    bool LogOpenAtUnload = true;
    // The log as it stood when the chip was started (lines are flushed one by one).
    QStringList LogAtExecute;
    std::function<void()> OnCompile;
};

class CommandLineInterpreterTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        SetHost(&Host);
    }
    void TearDown() override {
        SetHost(nullptr);
        FrameFixture::TearDown();
    }

    void RunWith(const QString& CommandLine) {
        SetCommandLine(CommandLine);
        CommandLineInterpreter::Run();
    }

    // The three project files of "name" in the work path.
    void WriteProject(bool Project, bool Pref, bool Image) {
        if (Project) {
            WriteFile(QStringLiteral("name.kvp"), "project");
        }
        if (Pref) {
            WriteFile(QStringLiteral("name.prf"), "preferences");
        }
        if (Image) {
            WriteFile(QStringLiteral("name.kvb"), "image");
        }
    }

    QString Work(const QString& Name) const { return TempPath() + QLatin1Char('/') + Name; }

    // Every batch ends alike: the log closed, then the downloader unloaded,
    // and never a box.
    void ExpectBatchEnded() {
        EXPECT_TRUE(GetCommandLineMode());
        EXPECT_FALSE(ErrorDisplay::GetLogFileIsOpen());
        ASSERT_FALSE(Host.Calls.isEmpty());
        EXPECT_EQ(Host.Calls.back(), QStringLiteral("UnloadDownloader"));
        EXPECT_EQ(Host.Calls.count(QStringLiteral("UnloadDownloader")), 1);
        EXPECT_FALSE(Host.LogOpenAtUnload) << "the log must be closed before the unload";
        EXPECT_TRUE(Boxes->Boxes.isEmpty());
    }

    RecordingHost Host;
};

// -- Nothing to do

TEST_F(CommandLineInterpreterTest, EmptyCommandLineDoesNothing) {
    RunWith(QString());
    EXPECT_FALSE(GetCommandLineMode());
    EXPECT_TRUE(Host.Calls.isEmpty());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_FALSE(LogFileExists());
}

TEST_F(CommandLineInterpreterTest, BlankCommandLineDoesNothing) {
    RunWith(QStringLiteral(" \t  "));
    EXPECT_FALSE(GetCommandLineMode());
    EXPECT_TRUE(Host.Calls.isEmpty());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_FALSE(LogFileExists());
}

TEST_F(CommandLineInterpreterTest, InitializeClearsTheMode) {
    RunWith(QStringLiteral("name /x"));
    ASSERT_TRUE(GetCommandLineMode());
    Initialize();
    EXPECT_FALSE(GetCommandLineMode());
}

TEST_F(CommandLineInterpreterTest, RunStartsOutsideBatchMode) {
    WriteProject(true, false, false);
    RunWith(QStringLiteral("name /x"));
    ASSERT_TRUE(GetCommandLineMode());
    Host.Calls.clear();
    RunWith(QStringLiteral("name"));
    EXPECT_FALSE(GetCommandLineMode());
    EXPECT_TRUE(Host.Called(QStringLiteral("ShowEditorAndOpenProject")));
}

TEST_F(CommandLineInterpreterTest, GetCommandLineReturnsTheLineAsSet) {
    SetCommandLine(QStringLiteral("  name  /c "));
    EXPECT_EQ(GetCommandLine(), QStringLiteral("  name  /c "));
}

// -- One argument: interactive opening

TEST_F(CommandLineInterpreterTest, NameAloneWithTheProjectPresentOpensItInTheEditor) {
    WriteProject(true, false, false);
    RunWith(QStringLiteral("name"));
    EXPECT_EQ(
        Host.Calls,
        (QStringList{QStringLiteral("ClearComError"),
                     QStringLiteral("ShowEditorAndOpenProject(%1|name|kvp)").arg(TempPath())}));
    EXPECT_EQ(Clock->DoEventsCalls, 1);
    EXPECT_FALSE(GetCommandLineMode());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_FALSE(LogFileExists());
    EXPECT_FALSE(ErrorDisplay::GetLogFileIsOpen());
}

TEST_F(CommandLineInterpreterTest, NameAloneWithTheProjectMissingShowsABoxAndUnloads) {
    RunWith(QStringLiteral("name"));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Project not found:  ") + Work("name.kvp"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Project Not Found"));
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::OKOnly);
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    EXPECT_FALSE(GetCommandLineMode());
    EXPECT_FALSE(LogFileExists());
    EXPECT_FALSE(ErrorDisplay::GetErrorWasLogged());
}

TEST_F(CommandLineInterpreterTest, NameAloneIsLookedForWithKvpAddedEvenIfItHasAnExtension) {
    WriteFile(QStringLiteral("name.kvp"), "project");
    RunWith(QStringLiteral("name.kvp"));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Project not found:  ") + Work("name.kvp.kvp"));
    EXPECT_FALSE(Host.Called(QStringLiteral("ShowEditorAndOpenProject")));
}

TEST_F(CommandLineInterpreterTest, UnquotedFullPathIsLookedForInTheWorkPath) {
    WriteFile(QStringLiteral("dir/a.kvp"), "project");
    const QString Full = Work(QStringLiteral("dir/a.kvp"));
    RunWith(Full);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Project not found:  ") + TempPath() +
                                        QLatin1Char('/') + Full + QStringLiteral(".kvp"));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
}

TEST_F(CommandLineInterpreterTest, QuotedPathWithoutBlanksOpensThatFileWhateverTheWorkPath) {
    WriteFile(QStringLiteral("dir/a.kvp"), "project");
    ASSERT_TRUE(QDir().mkpath(Work(QStringLiteral("elsewhere"))));
    DirectoryCentral::SetWorkPath(Work(QStringLiteral("elsewhere")));
    RunWith(QLatin1Char('"') + Work(QStringLiteral("dir/a.kvp")) + QLatin1Char('"'));
    EXPECT_EQ(Host.Calls, (QStringList{QStringLiteral("ClearComError"),
                                       QStringLiteral("ShowEditorAndOpenProject(%1|a|kvp)")
                                           .arg(Work(QStringLiteral("dir")))}));
    EXPECT_FALSE(GetCommandLineMode());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(CommandLineInterpreterTest, QuotedPathKeepsTheExtensionItHas) {
    WriteFile(QStringLiteral("dir/b.xyz"), "project");
    RunWith(QLatin1Char('"') + Work(QStringLiteral("dir/b.xyz")) + QLatin1Char('"'));
    EXPECT_EQ(Host.Calls, (QStringList{QStringLiteral("ClearComError"),
                                       QStringLiteral("ShowEditorAndOpenProject(%1|b|xyz)")
                                           .arg(Work(QStringLiteral("dir")))}));
}

TEST_F(CommandLineInterpreterTest, QuotedPathThatIsMissingNamesItInTheBox) {
    RunWith(QStringLiteral("\"C:\\dir\\a.kvp\""));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Project not found:  C:\\dir\\a.kvp"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Project Not Found"));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
}

TEST_F(CommandLineInterpreterTest, TwoQuotesAloneAreNotAQuotedPath) {
    // Fewer than three characters: the argument is taken as a base name.
    RunWith(QStringLiteral("\"\""));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("Project not found:  ") + Work(QStringLiteral("\"\".kvp")));
}

// -- Batch: checking of the commands

TEST_F(CommandLineInterpreterTest, QuotedPathWithBlanksSplitsAndItsSecondPartIsRefused) {
    RunWith(QStringLiteral("\"C:\\my dir\\a.kvp\""));
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  \"C:\\my dir\\a.kvp\""), QString(),
                           QStringLiteral("Error -- illegal command:  dir\\a.kvp\"")}));
    EXPECT_FALSE(Host.Called(QStringLiteral("ShowEditorAndOpenProject")));
    EXPECT_FALSE(Host.Called(QStringLiteral("OpenProject")));
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, CommandsAreCaseBlind) {
    WriteProject(true, true, true);
    RunWith(QStringLiteral("name /C /D"));
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  name /C /D"), QString(),
                           QStringLiteral("Compile:  ") + Work("name.kvp"),
                           QStringLiteral("Download: ") + Work("name.kvb"),
                           QStringLiteral("Program downloaded OK"), QStringLiteral("Done.")}));
    EXPECT_TRUE(Host.Called(QStringLiteral("CompileAll")));
    EXPECT_TRUE(Host.Called(QStringLiteral("ExecuteProgram")));
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, DownloadBeforeCompileIsRefusedAtTheFirstCommand) {
    WriteProject(true, true, true);
    RunWith(QStringLiteral("name /d /c"));
    EXPECT_EQ(ReadLogLines(), (QStringList{QStringLiteral("Command line:  name /d /c"), QString(),
                                           QStringLiteral("Error -- illegal command:  /d")}));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, ThreeCommandsAreTooMany) {
    WriteProject(true, true, true);
    RunWith(QStringLiteral("name /c /d /c"));
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  name /c /d /c"), QString(),
                           QStringLiteral("Error -- too many commands")}));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, UnknownCommandIsRefused) {
    WriteProject(true, true, true);
    RunWith(QStringLiteral("name /x"));
    EXPECT_EQ(ReadLogLines(), (QStringList{QStringLiteral("Command line:  name /x"), QString(),
                                           QStringLiteral("Error -- illegal command:  /x")}));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    EXPECT_TRUE(ErrorDisplay::GetErrorWasLogged());
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, RefusedCommandIsNamedInLowerCase) {
    RunWith(QStringLiteral("name /X"));
    EXPECT_EQ(ReadLogLines(), (QStringList{QStringLiteral("Command line:  name /X"), QString(),
                                           QStringLiteral("Error -- illegal command:  /x")}));
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, CompileTwiceIsRefusedAtTheThirdArgument) {
    WriteProject(true, true, true);
    RunWith(QStringLiteral("name /c /c"));
    EXPECT_EQ(ReadLogLines(), (QStringList{QStringLiteral("Command line:  name /c /c"), QString(),
                                           QStringLiteral("Error -- illegal command:  /c")}));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, DownloadTwiceIsRefusedAtTheSecondArgument) {
    WriteProject(true, true, true);
    RunWith(QStringLiteral("name /d /d"));
    EXPECT_EQ(ReadLogLines(), (QStringList{QStringLiteral("Command line:  name /d /d"), QString(),
                                           QStringLiteral("Error -- illegal command:  /d")}));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, ThreeArgumentsNameTheFirstBadCommand) {
    WriteProject(true, true, true);
    RunWith(QStringLiteral("name /c /x"));
    EXPECT_EQ(ReadLogLines().value(2), QStringLiteral("Error -- illegal command:  /x"));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    Host.Calls.clear();
    RunWith(QStringLiteral("name /y /d"));
    EXPECT_EQ(ReadLogLines().value(2), QStringLiteral("Error -- illegal command:  /y"));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
}

TEST_F(CommandLineInterpreterTest, ElevenWordsAreTooManyCommands) {
    WriteProject(true, true, true);
    const QString Line = QStringLiteral("name /c /d a b c d e f g h");
    int16_t ArgumentCount = 0;
    ParseCommandLine(Line, MaxArguments, ArgumentCount);
    ASSERT_EQ(ArgumentCount, 10);
    RunWith(Line);
    EXPECT_EQ(ReadLogLines(), (QStringList{QStringLiteral("Command line:  ") + Line, QString(),
                                           QStringLiteral("Error -- too many commands")}));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, RefusedBatchWritesNoDone) {
    // Every file is there: a batch that went on would compile, download and end with Done.
    WriteProject(true, true, true);
    RunWith(QStringLiteral("name /c /d /c"));
    ASSERT_TRUE(LogFileExists()) << "the refusal is logged";
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  name /c /d /c"), QString(),
                           QStringLiteral("Error -- too many commands")}));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    ExpectBatchEnded();
}

// -- Batch: a good run

TEST_F(CommandLineInterpreterTest, GoodCompileAndDownloadRunLogsSixLines) {
    WriteProject(true, true, true);
    RunWith(QStringLiteral("name /c /d"));
    EXPECT_EQ(ReadLogBytes(),
              (QStringLiteral("Command line:  name /c /d\r\n"
                              "\r\n"
                              "Compile:  ") +
               Work("name.kvp") + QStringLiteral("\r\nDownload: ") + Work("name.kvb") +
               QStringLiteral("\r\nProgram downloaded OK\r\nDone.\r\n"))
                  .toUtf8());
    EXPECT_EQ(Host.Calls,
              (QStringList{QStringLiteral("OpenProject(%1|name|kvp)").arg(TempPath()),
                           QStringLiteral("CompileAll"),
                           QStringLiteral("OpenKVBfile(%1)").arg(Work("name.kvb")),
                           QStringLiteral("OpenDownloadPort"), QStringLiteral("DownloadProgram"),
                           QStringLiteral("ExecuteProgram"), QStringLiteral("UnloadDownloader")}));
    EXPECT_FALSE(ErrorDisplay::GetErrorWasLogged());
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, CommandLineIsLoggedAsItWasWritten) {
    WriteProject(true, true, true);
    RunWith(QStringLiteral("  name\t/c   /d "));
    ASSERT_FALSE(ReadLogLines().isEmpty());
    EXPECT_EQ(ReadLogLines().front(), QStringLiteral("Command line:    name\t/c   /d "));
    EXPECT_EQ(ReadLogLines().back(), QStringLiteral("Done."));
}

TEST_F(CommandLineInterpreterTest, CompileAloneLogsCompileAndDone) {
    WriteProject(true, true, false);
    RunWith(QStringLiteral("name /c"));
    EXPECT_EQ(ReadLogLines(), (QStringList{QStringLiteral("Command line:  name /c"), QString(),
                                           QStringLiteral("Compile:  ") + Work("name.kvp"),
                                           QStringLiteral("Done.")}));
    EXPECT_EQ(Host.Calls,
              (QStringList{QStringLiteral("OpenProject(%1|name|kvp)").arg(TempPath()),
                           QStringLiteral("CompileAll"), QStringLiteral("UnloadDownloader")}));
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, CompileLineStandsAboveWhatTheCompileLogs) {
    WriteProject(true, true, false);
    Host.OnCompile = [] { ErrorDisplay::LogMessage(QStringLiteral("compiling")); };
    RunWith(QStringLiteral("name /c"));
    EXPECT_EQ(ReadLogLines().value(2), QStringLiteral("Compile:  ") + Work("name.kvp"));
    EXPECT_EQ(ReadLogLines().value(3), QStringLiteral("compiling"));
}

TEST_F(CommandLineInterpreterTest, DownloadAloneStartsTheChip) {
    WriteProject(false, true, true);
    RunWith(QStringLiteral("name /d"));
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  name /d"), QString(),
                           QStringLiteral("Download: ") + Work("name.kvb"),
                           QStringLiteral("Program downloaded OK"), QStringLiteral("Done.")}));
    EXPECT_EQ(Host.Calls,
              (QStringList{QStringLiteral("OpenKVBfile(%1)").arg(Work("name.kvb")),
                           QStringLiteral("OpenDownloadPort"), QStringLiteral("DownloadProgram"),
                           QStringLiteral("ExecuteProgram"), QStringLiteral("UnloadDownloader")}));
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, BatchWithAQuotedFirstArgumentUsesTheWorkPath) {
    // Only a single argument is unquoted and split; in a batch the first word
    // is a base name in the work path, quotes and all.
    WriteProject(true, true, true);
    RunWith(QStringLiteral("\"name\" /c"));
    EXPECT_EQ(ReadLogLines().value(2),
              QStringLiteral("Project not found:  ") + Work(QStringLiteral("\"name\".kvp")));
    ExpectBatchEnded();
}

// -- Batch: missing files

TEST_F(CommandLineInterpreterTest, MissingProjectUnderCompileIsLoggedWithoutDone) {
    WriteProject(false, true, true);
    RunWith(QStringLiteral("name /c /d"));
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  name /c /d"), QString(),
                           QStringLiteral("Project not found:  ") + Work("name.kvp")}));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, MissingPrefFileUnderCompileIsLoggedWithoutDone) {
    WriteProject(true, false, true);
    RunWith(QStringLiteral("name /c"));
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  name /c"), QString(),
                           QStringLiteral("PRF file not found:  ") + Work("name.prf")}));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, MissingImageUnderDownloadIsLoggedWithoutDone) {
    WriteProject(true, true, false);
    RunWith(QStringLiteral("name /d"));
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  name /d"), QString(),
                           QStringLiteral("KVB file not found:  ") + Work("name.kvb")}));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, MissingPrefFileUnderDownloadIsLoggedWithoutDone) {
    WriteProject(true, false, true);
    RunWith(QStringLiteral("name /d"));
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  name /d"), QString(),
                           QStringLiteral("PRF file not found:  ") + Work("name.prf")}));
    EXPECT_EQ(Host.Calls, QStringList{QStringLiteral("UnloadDownloader")});
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, MissingImageAfterAGoodCompileEndsTheBatchWithoutDone) {
    WriteProject(true, true, false);
    RunWith(QStringLiteral("name /c /d"));
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  name /c /d"), QString(),
                           QStringLiteral("Compile:  ") + Work("name.kvp"),
                           QStringLiteral("KVB file not found:  ") + Work("name.kvb")}));
    EXPECT_FALSE(Host.Called(QStringLiteral("OpenKVBfile")));
    ExpectBatchEnded();
}

// -- Batch: failures that still end in "Done."

TEST_F(CommandLineInterpreterTest, CompileErrorSkipsTheDownloadAndDoneFollows) {
    WriteProject(true, true, true);
    Host.OnCompile = [] {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Error in line 3 of main"),
                                       QStringLiteral("Compile Error"));
    };
    RunWith(QStringLiteral("name /c /d"));
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  name /c /d"), QString(),
                           QStringLiteral("Compile:  ") + Work("name.kvp"),
                           QStringLiteral("Error in line 3 of main"), QStringLiteral("Done.")}));
    EXPECT_FALSE(Host.Called(QStringLiteral("OpenKVBfile")));
    EXPECT_FALSE(Host.Called(QStringLiteral("OpenDownloadPort")));
    EXPECT_FALSE(Host.Called(QStringLiteral("DownloadProgram")));
    EXPECT_TRUE(ErrorDisplay::GetErrorWasLogged());
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, PortThatDoesNotOpenIsLoggedAndDoneFollows) {
    WriteProject(true, true, true);
    Host.PortOpens = false;
    RunWith(QStringLiteral("name /d"));
    EXPECT_EQ(ReadLogLines(), (QStringList{QStringLiteral("Command line:  name /d"), QString(),
                                           QStringLiteral("Download: ") + Work("name.kvb"),
                                           QStringLiteral("Error -- unable to open download port"),
                                           QStringLiteral("Done.")}));
    EXPECT_FALSE(Host.Called(QStringLiteral("DownloadProgram")));
    EXPECT_FALSE(Host.Called(QStringLiteral("ExecuteProgram")));
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, FailedDownloadIsLoggedAndDoneFollows) {
    WriteProject(true, true, true);
    Host.DownloadSucceeds = false;
    RunWith(QStringLiteral("name /c /d"));
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  name /c /d"), QString(),
                           QStringLiteral("Compile:  ") + Work("name.kvp"),
                           QStringLiteral("Download: ") + Work("name.kvb"),
                           QStringLiteral("Error downloading program"), QStringLiteral("Done.")}));
    EXPECT_TRUE(Host.Called(QStringLiteral("DownloadProgram")));
    EXPECT_FALSE(Host.Called(QStringLiteral("ExecuteProgram")));
    ExpectBatchEnded();
}

TEST_F(CommandLineInterpreterTest, SuccessfulDownloadLogsOkThenStartsTheChip) {
    WriteProject(true, true, true);
    RunWith(QStringLiteral("name /d"));
    const QStringList Lines = ReadLogLines();
    ASSERT_EQ(Lines.size(), 5);
    EXPECT_EQ(Lines[3], QStringLiteral("Program downloaded OK"));
    const qsizetype Download = Host.Calls.indexOf(QStringLiteral("DownloadProgram"));
    const qsizetype Execute = Host.Calls.indexOf(QStringLiteral("ExecuteProgram"));
    ASSERT_GE(Download, 0);
    EXPECT_EQ(Execute, Download + 1);
    ASSERT_FALSE(Host.LogAtExecute.isEmpty());
    EXPECT_EQ(Host.LogAtExecute.back(), QStringLiteral("Program downloaded OK"));
}

// -- RunDownload on its own

TEST_F(CommandLineInterpreterTest, RunDownloadWithoutAHostReportsThePort) {
    SetHost(nullptr);
    RunWith(QStringLiteral("name /x"));  // batch mode
    ErrorDisplay::InitializeErrorDisplay();
    ErrorDisplay::OpenLogFile();
    RunDownload();
    ErrorDisplay::CloseLogFile();
    EXPECT_EQ(ReadLogLines(), QStringList{QStringLiteral("Error -- unable to open download port")});
    EXPECT_TRUE(ErrorDisplay::GetErrorWasLogged());
}

TEST_F(CommandLineInterpreterTest, RunDownloadOutsideABatchShowsBoxesWithEmptyTitles) {
    Host.PortOpens = false;
    RunDownload();
    Host.PortOpens = true;
    Host.DownloadSucceeds = false;
    RunDownload();
    ASSERT_EQ(Boxes->Boxes.size(), 2);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Error -- unable to open download port"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QString());
    EXPECT_EQ(Boxes->Boxes[1].Text, QStringLiteral("Error downloading program"));
    EXPECT_EQ(Boxes->Boxes[1].Title, QString());
}

}  // namespace
