// The constructs where they meet each other: references passed on, loops
// left from inside others, texts through functions, Select on texts and
// Booleans, one-line Ifs with several statements.
#include "CompilerFixture.h"

using namespace KavlinCompiler;

namespace {

class ConstructTest : public CompilerFixture {
  protected:
    std::string Main(const std::string& Declarations, const std::string& Body) {
        Board = MachineBoard();
        return Run("Option Explicit\r\n" + Declarations + "\r\nSub Main()\r\n" + Body +
                   "\r\nEnd Sub\r\n");
    }
};

TEST_F(ConstructTest, ReferencesReachTheCallersVariablesOfEveryKind) {
    const std::string Procedures =
        "Dim G(1 To 3) As Long\r\nPersistent P As Long\r\nDim T As String\r\n"
        "Sub Twice(X As Long)\r\n    X = X * 2\r\n    Again X\r\nEnd Sub\r\n"
        "Sub Again(Y As Long)\r\n    Y = Y + 1\r\nEnd Sub\r\n"
        "Sub Grow(S As String)\r\n    S = S & \"+\"\r\nEnd Sub\r\n";
    EXPECT_EQ(Main(Procedures,
                   "    Dim L As Long, Words(1) As String\r\n    L = 5: G(2) = 7: P = 1\r\n"
                   "    Twice L: Twice G(2): Twice P\r\n    Twice 100\r\n"
                   "    T = \"a\": Grow T: Grow Words(1): Grow Words(1)\r\n"
                   "    Debug.Print L; G(2); P; T; Words(1)"),
              " 11 15 3a+++\r\n");
}

TEST_F(ConstructTest, FunctionsGiveTextsAndCallEachOther) {
    const std::string Procedures =
        "Function Stars(ByVal N As Integer) As String\r\n"
        "    If N <= 0 Then Exit Function\r\n    Stars = \"*\" & Stars(N - 1)\r\nEnd Function\r\n"
        "Function Frame(ByVal S As String) As String\r\n    Frame = \"[\" & S & \"]\"\r\n"
        "End Function\r\n";
    EXPECT_EQ(Main(Procedures, "    Debug.Print Frame(Stars(3)); Frame(\"\"); Len(Stars(5))"),
              "[***][] 5\r\n");
}

TEST_F(ConstructTest, ExitLeavesTheInnermostLoopOfItsKind) {
    EXPECT_EQ(
        Main("",
             "    Dim I As Integer, J As Integer\r\n    For I = 1 To 3\r\n"
             "        Do\r\n            J = J + 1\r\n            If J Mod 2 = 0 Then Exit Do\r\n"
             "        Loop\r\n        If I = 2 Then Exit For\r\n    Next\r\n"
             "    Debug.Print I; J"),
        " 2 4\r\n");
}

TEST_F(ConstructTest, SelectWorksOnTextsBooleansAndSingles) {
    EXPECT_EQ(Main("",
                   "    Dim S As String, B As Boolean, X As Single\r\n    S = \"m\": X = 2.5\r\n"
                   "    Select Case S\r\n        Case \"a\" To \"k\": Debug.Print \"low\"\r\n"
                   "        Case Is > \"k\": Debug.Print \"high\"\r\n    End Select\r\n"
                   "    Select Case B\r\n        Case True: Debug.Print \"yes\"\r\n"
                   "        Case Else: Debug.Print \"no\"\r\n    End Select\r\n"
                   "    Select Case X\r\n        Case 1 To 2: Debug.Print \"one\"\r\n"
                   "        Case 2.5, 3: Debug.Print \"two and a half\"\r\n    End Select"),
              "high\r\nno\r\ntwo and a half\r\n");
}

TEST_F(ConstructTest, OneLineIfTakesSeveralStatementsOnEachSide) {
    EXPECT_EQ(Main("",
                   "    Dim N As Integer\r\n"
                   "    If N = 0 Then Debug.Print \"a\"; : Debug.Print \"b\" Else Debug.Print "
                   "\"c\": Debug.Print \"d\"\r\n"
                   "    N = 1\r\n"
                   "    If N = 0 Then Debug.Print \"a\"; : Debug.Print \"b\" Else Debug.Print "
                   "\"c\"; : Debug.Print \"d\""),
              "ab\r\ncd\r\n");
}

TEST_F(ConstructTest, ForLoopsRunOnReferencesElementsAndRuntimeSteps) {
    const std::string Procedures =
        "Dim A(1 To 2) As Integer\r\nSub Count(C As Integer)\r\n"
        "    For C = 1 To 3: Debug.Print C;: Next\r\nEnd Sub\r\n";
    EXPECT_EQ(Main(Procedures,
                   "    Dim K As Integer, S As Integer\r\n    Count K\r\n    Debug.Print K;\r\n"
                   "    For A(2) = 10 To 12: Next\r\n    Debug.Print A(2);\r\n"
                   "    S = -2\r\n    For K = 5 To 1 Step S: Debug.Print K;: Next\r\n"
                   "    S = 2\r\n    For K = 1 To 5 Step S: Debug.Print K;: Next\r\n"
                   "    For K = 3 To 1: Debug.Print \"never\": Next\r\n    Debug.Print"),
              " 1 2 3 4 13 5 3 1 1 3 5\r\n");
}

TEST_F(ConstructTest, TextsCompareByteByByte) {
    EXPECT_EQ(Main("",
                   "    Debug.Print \"ab\" < \"abc\"; \"b\" > \"abc\"; \"A\" = \"a\"; "
                   "\"x\" <> \"y\"; \"a\" + \"b\""),
              "TrueTrueFalseTrueab\r\n");
}

TEST_F(ConstructTest, UnsignedArithmeticWrapsAndSignedOverflows) {
    EXPECT_EQ(Main("",
                   "    Dim U As UnsignedLong, I As Integer\r\n    U = 0\r\n    U = U - 1\r\n"
                   "    Debug.Print U\r\n    I = 32767\r\n    I = I + 1"),
              " 4294967295\r\n\r\nRun-time error 2: Overflow (code address 78)\r\n");
    EXPECT_EQ(Machine->Error(), RunTimeError::Overflow);
    EXPECT_EQ(Main("", "    Dim I As Integer\r\n    Debug.Print 7 \\ I"),
              "\r\nRun-time error 1: Division by zero (code address 40)\r\n");
}

TEST_F(ConstructTest, ConstantsThatWouldFailAreLeftToRunInBothModes) {
    for (const bool Optimize : {false, true}) {
        Options.Optimize = Optimize;
        Main("", "    Dim I As Integer\r\n    I = 30000 + 30000");
        EXPECT_EQ(Machine->Error(), RunTimeError::Overflow);
        Main("", "    Debug.Print 1 \\ 0");
        EXPECT_EQ(Machine->Error(), RunTimeError::DivisionByZero);
    }
}

TEST_F(ConstructTest, EndStopsTheProgramAnywhere) {
    EXPECT_EQ(Main("Sub Deep()\r\n    Debug.Print \"in\"\r\n    End\r\nEnd Sub\r\n",
                   "    Deep\r\n    Debug.Print \"never\""),
              "in\r\n");
    EXPECT_EQ(Machine->CurrentState(), BytecodeMachine::State::Ended);
}

TEST_F(ConstructTest, NamesAreCaseBlind) {
    EXPECT_EQ(Main("dim COUNT as BYTE", "    count = 3\r\n    DEBUG.PRINT Count"), " 3\r\n");
}

}  // namespace
