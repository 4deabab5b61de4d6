// The smallest programs, and the symbol files of the system library.
#include "CompilerFixture.h"

using namespace KavlinCompiler;

namespace {

class FirstProgramTest : public CompilerFixture {};

TEST_F(FirstProgramTest, MainPrintsAText) {
    EXPECT_EQ(Run("Option Explicit\r\nSub Main()\r\n    Debug.Print \"Hello\"\r\nEnd Sub\r\n"),
              "Hello\r\n");
    EXPECT_EQ(Machine->CurrentState(), BytecodeMachine::State::Ended);
}

TEST_F(FirstProgramTest, BothSymbolFilesRead) {
    for (const char* Name : {"BinKV20/SymbolKV20.sym", "BinKV10/SymbolKV10.sym"}) {
        SCOPED_TRACE(Name);
        LibraryDeclarations Declarations;
        std::string Error;
        ASSERT_TRUE(ParseLibrary(ReadSymbolFile(Name), Declarations, Error)) << Error;
        EXPECT_GE(Declarations.Procedures.size(), 10u);
        EXPECT_EQ(Declarations.Constants.size(), 4u);
    }
}

TEST_F(FirstProgramTest, ASymbolFileWithAnUnknownCallIsRefused) {
    LibraryDeclarations Declarations;
    std::string Error;
    EXPECT_FALSE(ParseLibrary("Sub Blink(Pin As Byte) = NoSuchCall\r\n", Declarations, Error));
    EXPECT_EQ(Error, "Line 1: the machine has no library call NoSuchCall");
    EXPECT_FALSE(ParseLibrary("Sub Blink(Pin As Byte)\r\n", Declarations, Error));
}

TEST_F(FirstProgramTest, ImageIsNeverAWholeNumberOfBlocks) {
    // Texts of every length move the image's end across a block boundary.
    Options.StringSize = 64;
    for (int Length = 0; Length < 140; ++Length) {
        Build("Option Explicit\r\nSub Main()\r\nDebug.Print \"" + std::string(Length % 60, 'x') +
              "\"\r\nDebug.Print \"" + std::string(Length / 60 * 30, 'y') + "\"\r\nEnd Sub\r\n");
        ASSERT_TRUE(Result.Success) << Result.Error.Message;
        EXPECT_NE(Result.Image.size() % 128, 0u);
    }
}

}  // namespace
