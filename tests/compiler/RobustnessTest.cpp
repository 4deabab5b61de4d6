// No input may crash the compiler or keep it busy: deep nesting, long
// expressions and damaged programs end in an error, and whatever compiles
// makes an image that the machine accepts.
#include <random>

#include "CompilerFixture.h"
#include "machine/BytecodeImage.h"

using namespace KavlinCompiler;

namespace {

class RobustnessTest : public CompilerFixture {};

std::string InMain(const std::string& Body) {
    return "Option Explicit\r\nSub Main()\r\n" + Body + "\r\nEnd Sub\r\n";
}

TEST_F(RobustnessTest, DeepParenthesesEndInAnError) {
    Build(InMain("Debug.Print " + std::string(100000, '(') + "1" + std::string(100000, ')')));
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, 205);
}

TEST_F(RobustnessTest, DeepBlocksEndInAnError) {
    std::string Body;
    for (int I = 0; I < 5000; ++I) {
        Body += "If True Then\r\n";
    }
    Build(InMain(Body));
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, 205);
}

TEST_F(RobustnessTest, LongOperatorChainsEndInAnError) {
    std::string Chain = "1";
    for (int I = 0; I < 50000; ++I) {
        Chain += " + 1";
    }
    Build(InMain("Debug.Print " + Chain));
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, 210);
    std::string Negations(50000, '-');
    Build(InMain("Debug.Print " + Negations + "1"));
    ASSERT_FALSE(Result.Success);
}

TEST_F(RobustnessTest, ConstantsDefinedThroughEachOtherEndInAnError) {
    Build("Option Explicit\r\nConst A = B + 1\r\nConst B = A + 1\r\nSub Main()\r\nEnd Sub\r\n");
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, 307);
}

// Damaged programs: bytes of a working program changed, dropped and doubled
// at random. Each compile must return; each image it makes must pass the
// machine's check and run without harm for a moment.
TEST_F(RobustnessTest, DamagedProgramsNeverCrashTheCompiler) {
    const std::string Program =
        "Option Explicit\r\nDim A(1 To 4) As Integer\r\nConst K = 3\r\n"
        "Function F(ByVal N As Long, S As String) As Long\r\n    F = N * K: S = S & \"x\"\r\n"
        "End Function\r\nSub Main()\r\n    Dim I As Integer, T As String\r\n"
        "    For I = 1 To 4 Step 1\r\n        A(I) = CInt(F(I, T))\r\n    Next\r\n"
        "    Select Case A(2)\r\n        Case 1 To 5, Is > 8: Debug.Print \"a\"; T\r\n"
        "        Case Else: Debug.Print A(1), 2.5\r\n    End Select\r\n"
        "    Do While I > 0: I = I - 1: Loop\r\n    If I = 0 Then Debug.Print Len(T)\r\nEnd "
        "Sub\r\n";
    const std::string Alphabet = "()+-*/\\^&=<>,;.:\"' _\r\nAsDimIfThenEndSubForNextLoop0123456789";
    std::mt19937 Random(20261123);
    int Compiled = 0;
    int Compared = 0;
    for (int Round = 0; Round < 3000; ++Round) {
        std::string Damaged = Program;
        const int Changes = 1 + static_cast<int>(Random() % 4);
        for (int C = 0; C < Changes && !Damaged.empty(); ++C) {
            const size_t At = Random() % Damaged.size();
            switch (Random() % 3) {
                case 0:
                    Damaged[At] = Alphabet[Random() % Alphabet.size()];
                    break;
                case 1:
                    Damaged.erase(At, 1 + Random() % 6);
                    break;
                default:
                    Damaged.insert(At, Damaged.substr(At, Random() % 12));
                    break;
            }
        }
        // Each program both ways: the optimiser must not change whether it
        // compiles, nor what it prints when it runs to its end.
        std::string Outputs[2];
        bool Ended[2] = {false, false};
        int Number[2] = {0, 0};
        for (const bool Optimize : {false, true}) {
            Options.Optimize = Optimize;
            Build(Damaged);
            Number[Optimize] = Result.Success ? 0 : Result.Error.Number;
            if (!Result.Success) {
                EXPECT_FALSE(Result.Error.Message.empty());
                continue;
            }
            ++Compiled;
            const auto Check = BytecodeImage::Check(Result.Image, {});
            ASSERT_TRUE(Check.Accepted) << Check.Reason << "\n" << Damaged;
            ASSERT_NE(Result.Image.size() % 128, 0u);
            Board = MachineBoard();
            InternalEeprom.assign(512, 0xFF);
            ASSERT_TRUE(Start()) << Machine->RefusalReason();
            const BytecodeMachine::State State = RunFor(0.05);
            Ended[Optimize] =
                State == BytecodeMachine::State::Ended || State == BytecodeMachine::State::Failed;
            Outputs[Optimize] = Board.Output.substr(0, Board.Output.find("(code address"));
        }
        EXPECT_EQ(Number[0], Number[1]) << Damaged;
        if (Ended[0] && Ended[1]) {
            EXPECT_EQ(Outputs[0], Outputs[1]) << Damaged;
            ++Compared;
        }
    }
    EXPECT_GT(Compiled, 100);
    EXPECT_GT(Compared, 50);
}

}  // namespace
