// What a compiled program is made of: its variables' addresses and the
// symbol map, the memory it needs and the limits it must keep, persistent
// variables across starts, and the chips' libraries.
#include "CompilerFixture.h"
#include "machine/BytecodeImage.h"

using namespace KavlinCompiler;

namespace {

class ProgramTest : public CompilerFixture {};

TEST_F(ProgramTest, SymbolsGiveEveryModuleVariableItsAddressTypeAndBounds) {
    Build(std::vector<std::string>{
        "Option Explicit\r\nPublic Count As Byte\r\nDim Grid(1 To 3, -2 To 2) As Integer\r\n"
        "Dim Name As String\r\nPersistent Boots As Long\r\n"
        "Sub Main()\r\n    Dim Local As Single\r\n    Local = 1: Count = 1: Grid(1, 1) = 1\r\n"
        "    Name = \"a\": Boots = 1: Ratio = Local\r\nEnd Sub\r\n",
        "Option Explicit\r\nPublic Ratio As Single\r\n"});
    ASSERT_TRUE(Result.Success) << Result.Error.Message;
    ASSERT_EQ(Result.Symbols.size(), 5u);
    const SymbolEntry& Count = Result.Symbols[0];
    EXPECT_EQ(Count.Name, "Count");
    EXPECT_EQ(Count.Address, 207);
    EXPECT_EQ(Count.TypeCode, 18);
    EXPECT_FALSE(Count.Excluded);
    const SymbolEntry& Grid = Result.Symbols[1];
    EXPECT_EQ(Grid.Name, "Grid");
    EXPECT_EQ(Grid.Address, 208);
    EXPECT_EQ(Grid.TypeCode, 19);
    EXPECT_EQ(Grid.Dimensions, 2);
    EXPECT_EQ(Grid.Bounds[0], 1);
    EXPECT_EQ(Grid.Bounds[1], 3);
    EXPECT_EQ(Grid.Bounds[2], -2);
    EXPECT_EQ(Grid.Bounds[3], 2);
    const SymbolEntry& Name = Result.Symbols[2];
    EXPECT_EQ(Name.Address, 208 + 30);
    EXPECT_EQ(Name.TypeCode, 61);
    EXPECT_TRUE(Name.Excluded);
    const SymbolEntry& Ratio = Result.Symbols[3];
    EXPECT_EQ(Ratio.Name, "Ratio");
    EXPECT_EQ(Ratio.Address, 238 + 21);
    EXPECT_EQ(Ratio.TypeCode, 32);
    const SymbolEntry& Local = Result.Symbols[4];
    EXPECT_EQ(Local.Name, "Local");
    EXPECT_TRUE(Local.Excluded);
    EXPECT_EQ(Result.RamSize, 1 + 30 + 21 + 4);
    EXPECT_EQ(Result.PersistentSize, 4);
    EXPECT_EQ(Result.CodeSize + 0u, Result.Image.size() - (Result.Image.size() % 128 == 1));

    // The addresses are the ones the program uses.
    ASSERT_TRUE(Start());
    RunFor(1);
    EXPECT_EQ(Ram[207], 1);
    EXPECT_EQ(Ram[208 + 2 * (0 * 5 + 3)], 1);
    EXPECT_EQ(InternalEeprom[32], 1);
}

TEST_F(ProgramTest, AKv20HoldsFourHundredAndOneBytesOfVariables) {
    EXPECT_TRUE(Build("Option Explicit\r\nDim A(1 To 401) As Byte\r\nSub Main()\r\n"
                      "    A(401) = 7\r\n    Debug.Print A(401)\r\nEnd Sub\r\n")
                    .Success);
    EXPECT_EQ(Result.RamSize, 401);
    Build(
        "Option Explicit\r\nDim A(1 To 401) As Byte\r\nDim B As Byte\r\nSub Main()\r\n"
        "    A(1) = B\r\nEnd Sub\r\n");
    ExpectError(501, 3,
                "Not enough RAM for B: the module-level variables need 402 bytes, but the chip "
                "has 401 bytes of RAM for them (207 to 607)");
}

TEST_F(ProgramTest, LocalsThatCannotFitBehindTheModuleVariablesAreRefused) {
    const std::string Declarations = "Option Explicit\r\nDim A(1 To 301) As Byte\r\n";
    EXPECT_TRUE(Build(Declarations +
                      "Sub Main()\r\n    Dim B(1 To 100) As Byte\r\n    B(1) = 1: A(1) = B(1)\r\n"
                      "End Sub\r\n")
                    .Success)
        << Result.Error.Message;
    Build(Declarations +
          "Sub Fill()\r\n    Dim B(1 To 97) As Byte\r\n    B(1) = 1: A(1) = B(1)\r\nEnd Sub\r\n"
          "Sub Main()\r\n    Fill\r\nEnd Sub\r\n");
    ExpectError(501, 3,
                "Not enough RAM for the local variables of Fill: a call of it needs 101 bytes, "
                "but only 100 are left behind the module-level variables");
}

TEST_F(ProgramTest, AProgramLargerThanTheCodeMemoryIsRefused) {
    Options.CodeHigh = 99;
    const std::string Source =
        "Option Explicit\r\nSub Main()\r\n    Debug.Print \"a\"\r\n    Debug.Print \"b\"\r\n"
        "    Debug.Print \"c\"\r\n    Debug.Print \"d\"\r\n    Debug.Print \"e\"\r\n"
        "    Debug.Print \"f\"\r\n    Debug.Print \"g\"\r\n    Debug.Print \"h\"\r\nEnd Sub\r\n";
    Build(Source);
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, 502);
    EXPECT_EQ(Result.Error.ModuleIndex, -1);
    EXPECT_EQ(Result.Error.Message,
              "The program does not fit into the chip's code memory: it takes 108 bytes, but "
              "there are 100; make it smaller, or turn the optimiser on");
    Options.Optimize = true;
    Build(Source);
    EXPECT_EQ(Result.Error.Message,
              "The program does not fit into the chip's code memory: it takes 108 bytes, but "
              "there are 100; make it smaller");
}

TEST_F(ProgramTest, PersistentVariablesOutOfRoomAreRefused) {
    Options.PersistentHigh = 40;
    Build(
        "Option Explicit\r\nPersistent A As Long\r\nPersistent B As Long\r\n"
        "Persistent C As Long\r\nSub Main()\r\n    A = B + C\r\nEnd Sub\r\n");
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, 503);
    EXPECT_EQ(Result.Error.Line, 4);
}

TEST_F(ProgramTest, PersistentVariablesKeepTheirValueAcrossStarts) {
    const std::string Source =
        "Option Explicit\r\nPersistent Runs As Integer\r\nPersistent Last As String\r\n"
        "Sub Main()\r\n    If Runs < 0 Then Runs = 0: Last = \"\"\r\n    Runs = Runs + 1\r\n"
        "    Debug.Print Runs; Last\r\n    Last = \"run\" & CStr(Runs)\r\nEnd Sub\r\n";
    EXPECT_EQ(Run(Source), " 1\r\n");
    Board = MachineBoard();
    ASSERT_TRUE(Start());
    RunFor(1);
    EXPECT_EQ(Board.Output, " 2run1\r\n");
    // The RAM is cleared at each start; the EEPROM is not.
    EXPECT_EQ(InternalEeprom[32], 2);
}

TEST_F(ProgramTest, TheKv10LibraryHasNoLeds) {
    std::string Error;
    ASSERT_TRUE(ParseLibrary(ReadSymbolFile("BinKV10/SymbolKV10.sym"), Library, Error));
    Options.ChipType = 1;
    Options.RamLow = 350;
    Options.RamHigh = 600;
    Build("Option Explicit\r\nSub Main()\r\n    PutLed 1, True\r\nEnd Sub\r\n");
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, 303);
    EXPECT_EQ(
        Run("Option Explicit\r\nDim X As Byte\r\nSub Main()\r\n    PutPin 10, kvOutputHigh\r\n"
            "    X = GetPin(10)\r\n    Debug.Print X\r\nEnd Sub\r\n"),
        " 1\r\n");
    EXPECT_EQ(Result.Symbols[0].Address, 350);
}

TEST_F(ProgramTest, DelayWaitsInSecondsOfChipTime) {
    Build(
        "Option Explicit\r\nDim Count As Integer\r\nPublic Sub Main()\r\n  Do\r\n"
        "    Count = Count + 1\r\n    Call Delay(0.5)\r\n  Loop\r\nEnd Sub\r\n");
    ASSERT_TRUE(Result.Success) << Result.Error.Message;
    ASSERT_TRUE(Start());
    RunFor(9.9);
    EXPECT_EQ(Ram[207], 20);
    EXPECT_EQ(Machine->CurrentState(), BytecodeMachine::State::Sleeping);
}

TEST_F(ProgramTest, ReadingTheSerialLineWaitsForTheUser) {
    Board.Type("hi");
    EXPECT_EQ(Run("Option Explicit\r\nSub Main()\r\n    Dim C As Byte\r\n"
                  "    Do While ByteAvailable()\r\n        C = GetByte()\r\n"
                  "        Debug.Print Chr(C);\r\n    Loop\r\n    Debug.Print TryGetByte()\r\n"
                  "End Sub\r\n"),
              "hi-1\r\n");
}

TEST_F(ProgramTest, RecursionRunsAsDeepAsTheRamAllowsThenStops) {
    const std::string Source =
        "Option Explicit\r\nFunction Depth(ByVal N As Long) As Long\r\n"
        "    If N = 0 Then Depth = 0 Else Depth = 1 + Depth(N - 1)\r\nEnd Function\r\n"
        "Sub Main()\r\n    Debug.Print Depth(20)\r\n    Debug.Print Depth(100)\r\nEnd Sub\r\n";
    const std::string Output = Run(Source);
    EXPECT_EQ(Output.substr(0, 5), " 20\r\n");
    EXPECT_EQ(Machine->Error(), RunTimeError::StackOverflow);
}

TEST_F(ProgramTest, EachModuleHasItsObjectFile) {
    Build(std::vector<std::string>{"Option Explicit\r\nSub Main()\r\n    Helper\r\nEnd Sub\r\n",
                                   "Option Explicit\r\nSub Helper()\r\nEnd Sub\r\n"});
    ASSERT_TRUE(Result.Success);
    ASSERT_EQ(Result.Objects.size(), 2u);
    EXPECT_EQ(Result.Objects[0].Name, "Module1.kvo");
    EXPECT_EQ(Result.Objects[1].Name, "Module2.kvo");
    EXPECT_EQ(std::string(Result.Objects[0].Bytes.begin(), Result.Objects[0].Bytes.begin() + 4),
              "KVO1");
    // Together the modules' code is the image's code.
    const size_t CodeBytes = Result.Objects[0].Bytes.size() + Result.Objects[1].Bytes.size() - 16;
    ImageHeader Header;
    ASSERT_TRUE(ImageHeader::Read(Result.Image, Header));
    EXPECT_EQ(CodeBytes, Header.CodeSize);
}

TEST_F(ProgramTest, PublicNamesClashAcrossModules) {
    Build(std::vector<std::string>{
        "Option Explicit\r\nPublic Count As Byte\r\nSub Main()\r\n    Count = 1\r\nEnd Sub\r\n",
        "Option Explicit\r\nPublic Function Count() As Byte\r\nEnd Function\r\n"});
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, 302);
    EXPECT_EQ(Result.Error.Message, "The public name Count is already declared in another module");
    // Private names of two modules stay apart.
    EXPECT_TRUE(Build(std::vector<std::string>{
                          "Option Explicit\r\nDim Count As Byte\r\nSub Main()\r\n    Count = 1\r\n"
                          "End Sub\r\n",
                          "Option Explicit\r\nDim Count As Byte\r\nSub Other()\r\n    Count = 2\r\n"
                          "End Sub\r\n"})
                    .Success);
}

}  // namespace
