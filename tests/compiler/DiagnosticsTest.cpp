// Errors and warnings: where they point (line, column, positions with a line
// break counted as two whatever the file has), their numbers and words.
#include "CompilerFixture.h"

using namespace KavlinCompiler;

namespace {

class DiagnosticsTest : public CompilerFixture {
  protected:
    struct ErrorCase {
        const char* Source;
        int Line, Column, Start, End, Number;
        const char* Message;
    };
    void Check(const std::vector<ErrorCase>& Cases) {
        for (const ErrorCase& Each : Cases) {
            SCOPED_TRACE(Each.Source);
            Build(Each.Source);
            ASSERT_FALSE(Result.Success);
            EXPECT_EQ(Result.Error.ModuleIndex, 0);
            EXPECT_EQ(Result.Error.Line, Each.Line);
            EXPECT_EQ(Result.Error.Column, Each.Column);
            EXPECT_EQ(Result.Error.StartPosition, Each.Start);
            EXPECT_EQ(Result.Error.EndPosition, Each.End);
            EXPECT_EQ(Result.Error.Number, Each.Number);
            EXPECT_EQ(Result.Error.Message, Each.Message);
        }
    }
};

constexpr const char* Head = "Option Explicit\r\nSub Main()\r\n";  // 29 positions

TEST_F(DiagnosticsTest, ErrorsPointAtWhatIsWrong) {
    (void)Head;
    Check({
        {"Option Explicit\r\nSub Main()\r\n    Dim X As Intger\r\nEnd Sub\r\n", 3, 14, 42, 48, 204,
         "Expected a type (Byte, Integer, UnsignedInteger, Long, UnsignedLong, Single, Boolean "
         "or String), found 'Intger'"},
        {"Option Explicit\r\nSub Main()\r\n    Debug.Print \"open\r\nEnd Sub\r\n", 3, 17, 45, 50,
         105, "This text has no closing double quote: expected \" before the end of the line"},
        {"Option Explicit\r\nSub Main()\r\n    X = 1\r\nEnd Sub\r\n", 3, 5, 33, 34, 303,
         "The name X is not declared: expected a variable, constant or procedure of that name; "
         "declare variables with Dim"},
        {"Option Explicit\r\nSub Main()\r\n    Dim S As String\r\n    S = 5 + \"a\"\r\nEnd Sub\r\n",
         4, 9, 58, 65, 404,
         "The operator + does not join an Integer and a String: join texts with '&', turn "
         "numbers into text with CStr"},
        {"Option Explicit\r\nSub Main()\r\n    For I = 1 To 2\r\n    Next\r\nEnd Sub\r\n", 3, 9, 37,
         38, 303,
         "The name I is not declared: expected a variable, constant or procedure of that name; "
         "declare variables with Dim"},
        {"Option Explicit\r\nSub Main()\r\n    Dim I As Byte\r\n    For I = 1 To 2\r\nEnd Sub\r\n",
         5, 1, 68, 71, 201, "Expected Next to close the For, found 'End'"},
        {"Option Explicit\r\nSub Main()\r\n    Exit For\r\nEnd Sub\r\n", 3, 5, 33, 37, 311,
         "Exit For must be inside a For loop"},
        {"Option Explicit\r\nSub Main()\r\n    Debug.Print 1 @ 2\r\nEnd Sub\r\n", 3, 19, 47, 48,
         101,
         "Unexpected character '@': expected a name, a number, a text in double quotes or an "
         "operator"},
        {"Option Explicit\r\nDim A(1 To 3) As Byte\r\nSub Main()\r\n    A = 1\r\nEnd Sub\r\n", 4, 5,
         56, 57, 310, "A is an array: assign to one element at a time, as A(1) = ..."},
        {"Option Explicit\r\nSub P(X As Integer)\r\nEnd Sub\r\nSub Main()\r\n    Dim L As "
         "Long\r\n    P L\r\nEnd Sub\r\n",
         6, 7, 84, 85, 405,
         "ByRef argument type mismatch: L is a Long, but P takes its parameter ByRef as an "
         "Integer; pass a variable of that type"},
        {"Option Explicit\r\nSub Main()\r\n    Debug.Print Len(\"a\", \"b\")\r\nEnd Sub\r\n", 3, 17,
         45, 58, 312, "Len takes 1 argument, found 2"},
    });
}

TEST_F(DiagnosticsTest, PositionsCountEveryLineBreakAsTwo) {
    for (const char* Break : {"\r\n", "\n", "\r"}) {
        SCOPED_TRACE(static_cast<int>(Break[0]));
        const std::string B = Break;
        Build("Option Explicit" + B + "Sub Main()" + B + B + "    Debug.Print Nothing" + B +
              "End Sub" + B);
        ASSERT_FALSE(Result.Success);
        EXPECT_EQ(Result.Error.Line, 4);
        EXPECT_EQ(Result.Error.Column, 17);
        EXPECT_EQ(Result.Error.StartPosition, 17 + 12 + 2 + 16);
        EXPECT_EQ(Result.Error.EndPosition, 17 + 12 + 2 + 16 + 7);
    }
}

TEST_F(DiagnosticsTest, AnErrorInTheSecondModuleNamesIt) {
    Build(std::vector<std::string>{"Option Explicit\r\nSub Main()\r\nEnd Sub\r\n",
                                   "Option Explicit\r\nSub Other()\r\n    Oops\r\nEnd Sub\r\n"});
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.ModuleIndex, 1);
    EXPECT_EQ(Result.Error.Line, 3);
    EXPECT_EQ(Result.Error.Number, 303);
}

TEST_F(DiagnosticsTest, AProjectWithoutMainFailsInNoModule) {
    Build("Option Explicit\r\nSub Start()\r\nEnd Sub\r\n");
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.ModuleIndex, -1);
    EXPECT_EQ(Result.Error.Number, 301);
    Build(std::vector<std::string>{"Option Explicit\r\nSub Main()\r\nEnd Sub\r\n",
                                   "Option Explicit\r\nPrivate Sub Main()\r\nEnd Sub\r\n"});
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.ModuleIndex, 1);
    EXPECT_EQ(Result.Error.Number, 304);
}

TEST_F(DiagnosticsTest, StrictSyntaxAsksForOptionExplicit) {
    Build("Sub Main()\r\nEnd Sub\r\n");
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, 305);
    Options.StrictSyntax = false;
    EXPECT_TRUE(Build("Sub Main()\r\nEnd Sub\r\n").Success);
}

TEST_F(DiagnosticsTest, WarningsTellUnusedVariablesAndUnreachableCode) {
    Build(
        "Option Explicit\r\nDim Spare As Byte\r\nSub Main()\r\n    Dim Unused As Integer\r\n"
        "    Exit Sub\r\n    Debug.Print \"never\"\r\nEnd Sub\r\n");
    ASSERT_TRUE(Result.Success) << Result.Error.Message;
    ASSERT_EQ(Result.Warnings.size(), 3u);
    EXPECT_EQ(Result.Warnings[0].Number, 901);
    EXPECT_EQ(Result.Warnings[0].Line, 2);
    EXPECT_EQ(Result.Warnings[0].Message,
              "The variable Spare is declared but never used: remove it or use it");
    EXPECT_EQ(Result.Warnings[1].Number, 901);
    EXPECT_EQ(Result.Warnings[1].Line, 4);
    EXPECT_EQ(Result.Warnings[1].Column, 9);
    EXPECT_EQ(Result.Warnings[2].Number, 903);
    EXPECT_EQ(Result.Warnings[2].Line, 6);
    EXPECT_EQ(Result.Warnings[2].Message,
              "Unreachable code: this statement comes after an Exit or End and never runs");
}

TEST_F(DiagnosticsTest, NarrowingIsAWarningWithStrictSyntaxOffAndOverflowsWhenItRuns) {
    Options.StrictSyntax = false;
    const std::string Source =
        "Sub Main()\r\n    Dim L As Long, B As Byte\r\n    L = 200\r\n    B = L\r\n"
        "    Debug.Print B\r\n    L = 300\r\n    B = L\r\nEnd Sub\r\n";
    const std::string Output = Run(Source);
    ASSERT_TRUE(Result.Success);
    ASSERT_EQ(Result.Warnings.size(), 2u);
    EXPECT_EQ(Result.Warnings[0].Number, 902);
    EXPECT_EQ(Result.Warnings[0].Line, 4);
    EXPECT_EQ(Result.Warnings[0].Message,
              "Converting a Long to a Byte can lose data: write CByte(...) to convert it on "
              "purpose");
    EXPECT_EQ(Output.substr(0, 6), " 200\r\n");
    EXPECT_EQ(Machine->Error(), RunTimeError::Overflow);
    // A number is a condition, a Boolean counts as -1.
    Board = MachineBoard();
    EXPECT_EQ(Run("Sub Main()\r\n    If 2 Then Debug.Print True + 1\r\nEnd Sub\r\n"), " 0\r\n");
}

TEST_F(DiagnosticsTest, WarningsStayWithAFailedCompile) {
    // Those found before the error; whether a variable is used is only known
    // at the end.
    Options.StrictSyntax = false;
    Build("Sub Main()\r\n    Dim B As Byte\r\n    B = 1000 \\ 3\r\n    Oops\r\nEnd Sub\r\n");
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, 303);
    ASSERT_EQ(Result.Warnings.size(), 1u);
    EXPECT_EQ(Result.Warnings[0].Number, 902);
    EXPECT_EQ(Result.Warnings[0].Line, 3);
}

TEST_F(DiagnosticsTest, OptionsOutsideTheirRangeAreRefused) {
    Options.StringSize = 65;
    Build("Option Explicit\r\nSub Main()\r\nEnd Sub\r\n");
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, 510);
    EXPECT_EQ(Result.Error.ModuleIndex, -1);
    EXPECT_EQ(Result.Error.Message, "The string size must be 1 to 64 bytes, found 65");
}

}  // namespace
