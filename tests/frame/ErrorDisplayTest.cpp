#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "FrameTestSupport.h"
#include "frame/CommandLineInterpreter.h"
#include "frame/DirectoryCentral.h"
#include "frame/ErrorDisplay.h"
#include "support/FrameFixture.h"

namespace {

class ErrorDisplayTest : public FrameFixture {
  protected:
    // Puts the frame into batch mode the way the program does: a command
    // line of two words. "/x" is refused at once, so nothing else happens;
    // the flags are then cleared and the log file removed for the test.
    void EnterBatch() {
        CommandLineInterpreter::SetCommandLine(QStringLiteral("name /x"));
        CommandLineInterpreter::Run();
        ASSERT_TRUE(CommandLineInterpreter::GetCommandLineMode());
        ASSERT_FALSE(ErrorDisplay::GetLogFileIsOpen());
        ErrorDisplay::InitializeErrorDisplay();
        ASSERT_TRUE(QFile::remove(ErrorDisplay::LogFilename()));
        ASSERT_TRUE(Boxes->Boxes.isEmpty());
    }
};

TEST_F(ErrorDisplayTest, LogFileIsKavlinErrInTheWorkPath) {
    EXPECT_EQ(ErrorDisplay::LogFilename(), TempPath() + QStringLiteral("/Kavlin.err"));
    DirectoryCentral::SetWorkPath(QStringLiteral("C:\\work"));
    EXPECT_EQ(ErrorDisplay::LogFilename(), QStringLiteral("C:\\work\\Kavlin.err"));
}

TEST_F(ErrorDisplayTest, InitializeClearsBothFlags) {
    ErrorDisplay::LogError(QStringLiteral("x"));
    ASSERT_TRUE(ErrorDisplay::GetErrorWasLogged());
    ErrorDisplay::InitializeErrorDisplay();
    EXPECT_FALSE(ErrorDisplay::GetErrorWasLogged());
    EXPECT_FALSE(ErrorDisplay::GetLogFileIsOpen());
}

TEST_F(ErrorDisplayTest, OutsideABatchShowErrorMessageIsABoxWithItsTitle) {
    ASSERT_FALSE(CommandLineInterpreter::GetCommandLineMode());
    ErrorDisplay::ShowErrorMessage(QStringLiteral("Something failed"), QStringLiteral("My Title"));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Something failed"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("My Title"));
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::OKOnly);
    EXPECT_FALSE(ErrorDisplay::GetErrorWasLogged());
    EXPECT_FALSE(LogFileExists());
}

TEST_F(ErrorDisplayTest, OutsideABatchAnOpenLogStillGetsNothingFromAMessage) {
    ErrorDisplay::OpenLogFile();
    ErrorDisplay::ShowErrorMessage(QStringLiteral("Boxed"), QStringLiteral("T"));
    ErrorDisplay::CloseLogFile();
    EXPECT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_TRUE(ReadLogBytes().isEmpty());
    EXPECT_FALSE(ErrorDisplay::GetErrorWasLogged());
}

TEST_F(ErrorDisplayTest, ShowWarningMessageIsABoxOutsideABatch) {
    ErrorDisplay::ShowWarningMessage(QStringLiteral("Careful"), QStringLiteral("Warning Title"));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Careful"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Warning Title"));
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::OKOnly);
}

TEST_F(ErrorDisplayTest, InABatchShowErrorMessageWritesALogLineAndDropsTheTitle) {
    EnterBatch();
    ErrorDisplay::OpenLogFile();
    ASSERT_TRUE(ErrorDisplay::GetLogFileIsOpen());
    ErrorDisplay::ShowErrorMessage(QStringLiteral("Disk full"), QStringLiteral("Some Title"));
    ErrorDisplay::CloseLogFile();
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_TRUE(ErrorDisplay::GetErrorWasLogged());
    EXPECT_EQ(ReadLogBytes(), QByteArray("Disk full\r\n"));
}

TEST_F(ErrorDisplayTest, InABatchShowWarningMessageWritesALogLine) {
    EnterBatch();
    ErrorDisplay::OpenLogFile();
    ErrorDisplay::ShowWarningMessage(QStringLiteral("Watch out"), QStringLiteral("T"));
    ErrorDisplay::CloseLogFile();
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_TRUE(ErrorDisplay::GetErrorWasLogged());
    EXPECT_EQ(ReadLogBytes(), QByteArray("Watch out\r\n"));
}

TEST_F(ErrorDisplayTest, InABatchAMultiLineMessageIsOneEntry) {
    EnterBatch();
    ErrorDisplay::OpenLogFile();
    ErrorDisplay::ShowErrorMessage(QStringLiteral("first\r\nsecond"), QString());
    ErrorDisplay::LogMessage(QStringLiteral("after"));
    ErrorDisplay::CloseLogFile();
    EXPECT_EQ(ReadLogBytes(), QByteArray("first\r\nsecond\r\nafter\r\n"));
}

TEST_F(ErrorDisplayTest, InABatchABoxTextsLineBreaksBecomeTheLogsCarriageReturnAndLineFeed) {
    EnterBatch();
    ErrorDisplay::OpenLogFile();
    ErrorDisplay::ShowErrorMessage(QStringLiteral("first\n\nthird\r\nfourth"), QString());
    ErrorDisplay::CloseLogFile();
    EXPECT_EQ(ReadLogBytes(), QByteArray("first\r\n\r\nthird\r\nfourth\r\n"));
}

TEST_F(ErrorDisplayTest, InABatchWithTheLogClosedAMessageStillSetsErrorWasLogged) {
    EnterBatch();
    ErrorDisplay::ShowErrorMessage(QStringLiteral("Lost"), QStringLiteral("T"));
    EXPECT_TRUE(ErrorDisplay::GetErrorWasLogged());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_FALSE(LogFileExists());
}

TEST_F(ErrorDisplayTest, AskYesNoIsABoxEvenInABatch) {
    EnterBatch();
    Boxes->QueueAnswer(vbYes);
    EXPECT_EQ(ErrorDisplay::AskYesNo(QStringLiteral("Create?"), QStringLiteral("Question")), 6);
    Boxes->QueueAnswer(vbNo);
    EXPECT_EQ(ErrorDisplay::AskYesNo(QStringLiteral("Again?"), QStringLiteral("Question")), 7);
    ASSERT_EQ(Boxes->Boxes.size(), 2);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Create?"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Question"));
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::YesNo);
    EXPECT_FALSE(ErrorDisplay::GetErrorWasLogged());
}

TEST_F(ErrorDisplayTest, AskYesNoCancelIsABoxEvenInABatch) {
    EnterBatch();
    Boxes->QueueAnswer(vbCancel);
    EXPECT_EQ(ErrorDisplay::AskYesNoCancel(QStringLiteral("Save?"), QStringLiteral("Q")), 2);
    Boxes->QueueAnswer(vbYes);
    EXPECT_EQ(ErrorDisplay::AskYesNoCancel(QStringLiteral("Save?"), QStringLiteral("Q")), 6);
    Boxes->QueueAnswer(vbNo);
    EXPECT_EQ(ErrorDisplay::AskYesNoCancel(QStringLiteral("Save?"), QStringLiteral("Q")), 7);
    ASSERT_EQ(Boxes->Boxes.size(), 3);
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::YesNoCancel);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Save?"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Q"));
}

TEST_F(ErrorDisplayTest, AskYesNoOutsideABatchReturnsTheAnswer) {
    Boxes->QueueAnswer(vbYes);
    EXPECT_EQ(ErrorDisplay::AskYesNo(QStringLiteral("Sure?"), QStringLiteral("T")), vbYes);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::YesNo);
}

TEST_F(ErrorDisplayTest, LogMessageWithNoOpenLogDoesNothing) {
    ASSERT_FALSE(ErrorDisplay::GetLogFileIsOpen());
    ErrorDisplay::LogMessage(QStringLiteral("nowhere"));
    EXPECT_FALSE(LogFileExists());
    EXPECT_FALSE(ErrorDisplay::GetErrorWasLogged());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ErrorDisplayTest, LogErrorWithNoOpenLogSetsOnlyTheFlag) {
    ErrorDisplay::LogError(QStringLiteral("nowhere"));
    EXPECT_TRUE(ErrorDisplay::GetErrorWasLogged());
    EXPECT_FALSE(LogFileExists());
}

TEST_F(ErrorDisplayTest, LogLinesAreEndedByCarriageReturnAndLineFeed) {
    ErrorDisplay::OpenLogFile();
    ErrorDisplay::LogMessage(QStringLiteral("one"));
    ErrorDisplay::LogMessage(QString());
    ErrorDisplay::LogError(QStringLiteral("three"));
    ErrorDisplay::CloseLogFile();
    EXPECT_EQ(ReadLogBytes(), QByteArray("one\r\n\r\nthree\r\n"));
    EXPECT_TRUE(ErrorDisplay::GetErrorWasLogged());
}

TEST_F(ErrorDisplayTest, LogMessageAfterCloseWritesNothing) {
    ErrorDisplay::OpenLogFile();
    ErrorDisplay::LogMessage(QStringLiteral("kept"));
    ErrorDisplay::CloseLogFile();
    EXPECT_FALSE(ErrorDisplay::GetLogFileIsOpen());
    ErrorDisplay::LogMessage(QStringLiteral("dropped"));
    EXPECT_EQ(ReadLogBytes(), QByteArray("kept\r\n"));
}

TEST_F(ErrorDisplayTest, OpenLogFileWhenOpenKeepsTheLog) {
    ErrorDisplay::OpenLogFile();
    ErrorDisplay::LogMessage(QStringLiteral("a"));
    ErrorDisplay::OpenLogFile();
    ErrorDisplay::LogMessage(QStringLiteral("b"));
    ErrorDisplay::CloseLogFile();
    EXPECT_EQ(ReadLogBytes(), QByteArray("a\r\nb\r\n"));
}

TEST_F(ErrorDisplayTest, OpenLogFileReplacesTheLogOfAnEarlierRun) {
    WriteFile(QStringLiteral("Kavlin.err"), "old line 1\r\nold line 2\r\n");
    ErrorDisplay::OpenLogFile();
    ErrorDisplay::LogMessage(QStringLiteral("new"));
    ErrorDisplay::CloseLogFile();
    EXPECT_EQ(ReadLogBytes(), QByteArray("new\r\n"));
}

TEST_F(ErrorDisplayTest, ASecondBatchReplacesTheLogOfTheFirst) {
    CommandLineInterpreter::SetCommandLine(QStringLiteral("first /x /y /z"));
    CommandLineInterpreter::Run();
    ASSERT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  first /x /y /z"), QString(),
                           QStringLiteral("Error -- too many commands")}));
    ErrorDisplay::InitializeErrorDisplay();
    CommandLineInterpreter::SetCommandLine(QStringLiteral("second /q"));
    CommandLineInterpreter::Run();
    EXPECT_EQ(ReadLogLines(), (QStringList{QStringLiteral("Command line:  second /q"), QString(),
                                           QStringLiteral("Error -- illegal command:  /q")}));
}

TEST_F(ErrorDisplayTest, LogThatCannotBeOpenedIsSwallowed) {
    DirectoryCentral::SetWorkPath(TempPath() + QStringLiteral("/no/such/dir"));
    ErrorDisplay::OpenLogFile();
    EXPECT_FALSE(ErrorDisplay::GetLogFileIsOpen());
    ErrorDisplay::LogMessage(QStringLiteral("nowhere"));
    ErrorDisplay::CloseLogFile();
    EXPECT_FALSE(QDir(TempPath() + QStringLiteral("/no")).exists());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ErrorDisplayTest, ProbeHooksDoNothing) {
    ErrorDisplay::ProbeError(QStringLiteral("Error_1 in Somewhere"));
    ErrorDisplay::ProbeDebug(QStringLiteral("Error_1 in Somewhere"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_FALSE(ErrorDisplay::GetErrorWasLogged());
    EXPECT_FALSE(LogFileExists());
    EXPECT_FALSE(ErrorDisplay::ProbeDebugIsOn);
}

}  // namespace
