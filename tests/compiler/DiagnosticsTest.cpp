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

namespace {

// One case per rule: the body of Main (after Option Explicit and a few
// declarations) and the error number and line it gives.
struct RuleCase {
    const char* Body;
    int Number;
    const char* MessageStart;
};

class ErrorRuleTest : public CompilerFixture {};

TEST_F(ErrorRuleTest, EachRuleHasItsNumberAndSaysWhatWasExpected) {
    const std::vector<RuleCase> Cases = {
        {"K = 5", 309, "Expected a variable before '=', found K, a constant"},
        {"Dim For As Integer", 203, "Expected a variable's name, found the keyword 'For'"},
        {"A(1, 2) = 3", 310, "A is an array of 1 dimension: expected 1 index"},
        {"Dim S As String\r\nIf S Then Debug.Print 1", 401, "Expected a condition (a Boolean)"},
        {"Dim S As String\r\nFor S = 1 To 2: Next", 314, "The variable of a For must be a number"},
        {"Exit Function", 311, "Exit Function is inside a Sub: write Exit Sub"},
        {"Dim N As Integer\r\nDim N As Long", 302, "The name N is already declared in Main"},
        {"N", 303, "The name N is not declared"},
        {"Dim N As Integer\r\nN", 313, "Expected a Sub to call, or '=' to assign to N"},
        {"Dim N As Integer\r\nN = Helper()", 313, "Helper is a Sub and gives no value"},
        {"Helper 1", 312, "Helper takes 0 arguments, found 1"},
        {"Dim N As Integer\r\nN = \"1\"", 401, "Expected an Integer value here, found a String"},
        {"Dim S As String\r\nS = 1", 401,
         "Expected a String value here, found an Integer: turn a number into text with CStr"},
        {"Debug.Print True < False", 404, "The operator < does not apply to Booleans"},
        {"Debug.Print 1.5 And 2", 404, "The operator AND works on whole numbers and Booleans"},
        {"Dim B As Boolean\r\nB = 1", 402, "Converting an Integer to a Boolean can lose data"},
        {"Dim Q(3 To 1) As Byte", 308, "The array Q has its lower bound 3 above its upper bound 1"},
        {"Dim N As Integer\r\nDim Q(N) As Byte", 308, "Expected a whole number from -32768"},
        {"Debug.Print \"123456789012345678901\"", 406, "This text has 21 characters"},
        {"Select Case 1\r\nCase Else\r\nCase 2\r\nEnd Select", 209,
         "Case Else must be the last Case of a Select"},
        {"Do While 1 < 2\r\nLoop Until 1 < 2", 208, "A Do loop has one condition"},
        {"Dim I As Integer\r\nFor I = 1 To 2\r\nNext J", 207,
         "Expected Next I to close the For of I, found Next J"},
        {"Dim A(1 To 2, 1 To 2, 1 To 2) As Byte", 206, "An array has one or two dimensions"},
        {"Debug.Print 99999999999", 103, "The number 99999999999 is too large"},
        {"Debug.Print &H", 104, "Expected one to eight hexadecimal digits after &H"},
        {"Debug.Print 12abc", 102, "The number 12 runs into a name"},
    };
    for (const RuleCase& Each : Cases) {
        SCOPED_TRACE(Each.Body);
        Build(
            "Option Explicit\r\nConst K = 1\r\nDim A(1 To 3) As Integer\r\nSub Helper()\r\n"
            "End Sub\r\nSub Main()\r\n" +
            std::string(Each.Body) + "\r\nEnd Sub\r\n");
        ASSERT_FALSE(Result.Success);
        EXPECT_EQ(Result.Error.Number, Each.Number);
        EXPECT_EQ(Result.Error.Message.substr(0, std::string(Each.MessageStart).size()),
                  Each.MessageStart)
            << Result.Error.Message;
        EXPECT_GE(Result.Error.Line, 7);
        EXPECT_LE(Result.Error.StartPosition, Result.Error.EndPosition);
    }
}

TEST_F(ErrorRuleTest, ATextHoldsOnlyCharactersWithAByte) {
    Result = Compile({{"Main.bas",
                       u"Option Explicit\r\nSub Main()\r\n    Debug.Print \"\u00e9\u0120\"\r\n"
                       u"End Sub\r\n"}},
                     Library, Options);
    ExpectError(106, 3,
                "The character '\xC4\xA0' has no byte on the chip: a text holds characters 0 to "
                "255 only");
    EXPECT_EQ(Result.Error.Column, 19);
}

TEST_F(ErrorRuleTest, ModuleLevelStatementsAndMissingEndsAreNamed) {
    Build("Option Explicit\r\nDebug.Print 1\r\n");
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, 201);
    EXPECT_EQ(Result.Error.Message.substr(0, 42), "Expected a declaration at module level (Op");
    Build("Option Explicit\r\nSub Main()\r\n    Debug.Print 1\r\n");
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Message, "Expected End Sub to close Main, found the end of the module");
}

}  // namespace
