#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "FrameTestSupport.h"
#include "frame/CommandLineInterpreter.h"
#include "frame/DumpManager.h"
#include "frame/ExceptionTypes.h"
#include "platform/ErrObject.h"
#include "support/FrameFixture.h"

namespace {

class DumpManagerTest : public FrameFixture {
  protected:
    void TearDown() override {
        DumpManager::SetProjectNameSource(nullptr);
        Err().Clear();
        FrameFixture::TearDown();
    }

    // The report split into its lines; every line must end in CR LF.
    static QStringList ReportLines(const QString& Report) {
        EXPECT_TRUE(Report.endsWith(QStringLiteral("\r\n")));
        QStringList Lines = Report.split(QStringLiteral("\r\n"));
        if (!Lines.isEmpty() && Lines.back().isEmpty()) {
            Lines.removeLast();
        }
        return Lines;
    }
};

// ---- Error location ---------------------------------------------------------

struct LocationCase {
    int16_t Major;
    int16_t Minor;
    int16_t KeptMajor;
    int16_t KeptMinor;
    int32_t Code;
};

std::ostream& operator<<(std::ostream& Stream, const LocationCase& Case) {
    return Stream << '(' << Case.Major << ", " << Case.Minor << ") -> " << Case.Code;
}

class SetErrorLocationGives : public ::testing::TestWithParam<LocationCase> {};

TEST_P(SetErrorLocationGives, TheLimitedNumbersAndTheCode) {
    const LocationCase& Case = GetParam();
    DumpManager::SetErrorLocation(Case.Major, Case.Minor);
    EXPECT_EQ(DumpManager::GetErrorMajor(), Case.KeptMajor);
    EXPECT_EQ(DumpManager::GetErrorMinor(), Case.KeptMinor);
    EXPECT_EQ(DumpManager::GetErrorCode(), Case.Code);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SetErrorLocationGives,
    ::testing::Values(LocationCase{123, 5, 99, 5, 9905}, LocationCase{-1, 5, 0, 5, 5},
                      LocationCase{6, 1, 6, 1, 601}, LocationCase{6, 6, 6, 6, 606},
                      LocationCase{5, 200, 5, 99, 599}, LocationCase{7, -3, 7, 0, 700},
                      LocationCase{99, 99, 99, 99, 9999}, LocationCase{0, 0, 0, 0, 0},
                      LocationCase{-32768, 32767, 0, 99, 99}));

TEST(DumpManager, InitializeClearsTheLocation) {
    DumpManager::SetErrorLocation(6, 3);
    DumpManager::InitializeDumpManager();
    EXPECT_EQ(DumpManager::GetErrorMajor(), 0);
    EXPECT_EQ(DumpManager::GetErrorMinor(), 0);
    EXPECT_EQ(DumpManager::GetErrorCode(), 0);
}

// ---- The report -------------------------------------------------------------

TEST_F(DumpManagerTest, ReportOfAnErrorWithoutTextReadsLineByLine) {
    Err().Clear();
    DumpManager::SetErrorLocation(6, 1);
    const QStringList Lines = ReportLines(DumpManager::BuildErrorReport());
    ASSERT_GE(Lines.size(), 11);
    EXPECT_EQ(Lines[0], QStringLiteral("An unexpected error has occurred in this application:"));
    EXPECT_EQ(Lines[1], QString());
    EXPECT_EQ(Lines[2], QStringLiteral("    Error code:  601"));
    EXPECT_EQ(Lines[3], QStringLiteral("    Description:  Unknown exception"));
    EXPECT_EQ(Lines[4], QStringLiteral("    Project name:  <none>"));
    EXPECT_EQ(Lines[5], QStringLiteral("    Software version:  2.0.24"));
    EXPECT_EQ(Lines[6], QString());
    EXPECT_EQ(Lines[7], QStringLiteral("We apologize for this inconvenience, and we'd like"));
    EXPECT_EQ(Lines[8], QStringLiteral("to provide a fix for this error. Please contact us:"));
    EXPECT_EQ(Lines[9], QString());
}

TEST_F(DumpManagerTest, ReportEndsInAContactBlockIndentedByFourBlanks) {
    DumpManager::SetErrorLocation(6, 1);
    const QStringList Lines = ReportLines(DumpManager::BuildErrorReport());
    // Name and address (three lines), empty, telephone, empty, address.
    ASSERT_EQ(Lines.size(), 17);
    for (int Index : {10, 11, 12, 14, 16}) {
        EXPECT_TRUE(Lines[Index].startsWith(QStringLiteral("    "))) << Index;
        EXPECT_GT(Lines[Index].trimmed().size(), 0) << Index;
    }
    EXPECT_EQ(Lines[13], QString());
    EXPECT_EQ(Lines[15], QString());
}

TEST_F(DumpManagerTest, ReportHasNoBareLineFeedOrCarriageReturn) {
    const QString Report = DumpManager::BuildErrorReport();
    EXPECT_EQ(Report.count(QStringLiteral("\r\n")), Report.count(QLatin1Char('\n')));
    EXPECT_EQ(Report.count(QStringLiteral("\r\n")), Report.count(QLatin1Char('\r')));
}

TEST_F(DumpManagerTest, ReportNamesTheErrorTextAndNumber) {
    Err().Number = 5;
    Err().Description = QStringLiteral("Invalid procedure call or argument");
    DumpManager::SetErrorLocation(6, 4);
    const QStringList Lines = ReportLines(DumpManager::BuildErrorReport());
    ASSERT_GE(Lines.size(), 4);
    EXPECT_EQ(Lines[2], QStringLiteral("    Error code:  604"));
    EXPECT_EQ(Lines[3], QStringLiteral("    Description:  Invalid procedure call or argument (5)"));
}

TEST_F(DumpManagerTest, ReportOfOutOfMemory) {
    try {
        throw std::bad_alloc();
    } catch (...) {
        TakeCurrentException();
    }
    DumpManager::SetErrorLocation(6, 6);
    const QStringList Lines = ReportLines(DumpManager::BuildErrorReport());
    ASSERT_GE(Lines.size(), 4);
    EXPECT_EQ(Lines[2], QStringLiteral("    Error code:  606"));
    EXPECT_EQ(Lines[3], QStringLiteral("    Description:  Out of memory (7)"));
}

TEST_F(DumpManagerTest, ReportNamesTheDefinedProject) {
    DumpManager::SetProjectNameSource([] { return QStringLiteral("blink"); });
    const QStringList Lines = ReportLines(DumpManager::BuildErrorReport());
    ASSERT_GE(Lines.size(), 5);
    EXPECT_EQ(Lines[4], QStringLiteral("    Project name:  blink"));
}

TEST_F(DumpManagerTest, ReportOfAProjectWithAnEmptyNameSaysNone) {
    DumpManager::SetProjectNameSource([] { return QString(); });
    const QStringList Lines = ReportLines(DumpManager::BuildErrorReport());
    ASSERT_GE(Lines.size(), 5);
    EXPECT_EQ(Lines[4], QStringLiteral("    Project name:  <none>"));
}

TEST_F(DumpManagerTest, ReportCodeOfALimitedLocation) {
    DumpManager::SetErrorLocation(123, 5);
    const QStringList Lines = ReportLines(DumpManager::BuildErrorReport());
    ASSERT_GE(Lines.size(), 3);
    EXPECT_EQ(Lines[2], QStringLiteral("    Error code:  9905"));
}

// ---- ProcessException -------------------------------------------------------

TEST_F(DumpManagerTest, ProcessExceptionShowsTheReportInABox) {
    try {
        RaiseError(5, QStringLiteral("Bad call"));
    } catch (...) {
        ExceptionTypes::ProcessException(6, 1);
    }
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Unexpected Error"));
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::OKOnly);
    const QString& Text = Boxes->Boxes[0].Text;
    EXPECT_TRUE(Text.contains(QStringLiteral("    Description:  Bad call (5)\r\n")))
        << Text.toStdString();
    EXPECT_TRUE(Text.startsWith(
        QStringLiteral("An unexpected error has occurred in this application:\r\n\r\n"
                       "    Error code:  601\r\n")))
        << Text.toStdString();
    EXPECT_EQ(DumpManager::GetErrorCode(), 601);
}

TEST_F(DumpManagerTest, ProcessExceptionTakesAStandardException) {
    try {
        throw std::out_of_range("index");
    } catch (...) {
        ExceptionTypes::ProcessException(6, 3);
    }
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_TRUE(Boxes->Boxes[0].Text.contains(
        QStringLiteral("    Description:  Subscript out of range (9)")))
        << Boxes->Boxes[0].Text.toStdString();
    EXPECT_TRUE(Boxes->Boxes[0].Text.contains(QStringLiteral("    Error code:  603")));
}

TEST_F(DumpManagerTest, ProcessExceptionOfAnUnknownExceptionHasNoNumber) {
    try {
        throw 42;
    } catch (...) {
        ExceptionTypes::ProcessException(6, 2);
    }
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_TRUE(
        Boxes->Boxes[0].Text.contains(QStringLiteral("    Description:  Unknown exception\r\n")));
}

TEST_F(DumpManagerTest, ProcessExceptionOutsideACatchUsesTheCurrentError) {
    Err().Number = 91;
    Err().Description = QStringLiteral("Object variable not set");
    ExceptionTypes::ProcessException(6, 5);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_TRUE(Boxes->Boxes[0].Text.contains(
        QStringLiteral("    Description:  Object variable not set (91)\r\n")));
}

TEST_F(DumpManagerTest, ProcessExceptionInABatchLogsTheReportAsOneEntry) {
    CommandLineInterpreter::SetCommandLine(QStringLiteral("name /x"));
    CommandLineInterpreter::Run();
    ASSERT_TRUE(CommandLineInterpreter::GetCommandLineMode());
    ErrorDisplay::InitializeErrorDisplay();
    ErrorDisplay::OpenLogFile();
    try {
        RaiseError(5, QStringLiteral("Bad call"));
    } catch (...) {
        ExceptionTypes::ProcessException(6, 1);
    }
    ErrorDisplay::CloseLogFile();
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_TRUE(ErrorDisplay::GetErrorWasLogged());
    // The report with its own CR LF, and the log's line end behind it.
    EXPECT_EQ(QString::fromUtf8(ReadLogBytes()),
              DumpManager::BuildErrorReport() + QStringLiteral("\r\n"));
    const QStringList Lines = ReadLogLines();
    ASSERT_GE(Lines.size(), 4);
    EXPECT_EQ(Lines[3], QStringLiteral("    Description:  Bad call (5)"));
}

}  // namespace
