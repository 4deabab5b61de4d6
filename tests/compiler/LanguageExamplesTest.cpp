// Every example of docs/language.md is a golden test: a program with the
// output it prints, or with the error it is refused with. Each runs twice,
// with the optimiser off and on, and must print the same either way.
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "CompilerFixture.h"

using namespace KavlinCompiler;

namespace {

struct Example {
    int Line = 0;  // in the document
    // One module, or several when basic blocks follow each other.
    std::vector<std::string> Modules;
    std::string Kind;  // "output" or "error"
    std::string Expected;
    // The document's lines (from 1) of the expected text: from, and the
    // closing fence's.
    int ExpectedFrom = 0;
    int ExpectedTo = 0;
};

std::vector<Example> ReadExamples() {
    std::ifstream File(KAVLIN_LANGUAGE_DOC);
    std::vector<Example> Examples;
    std::string Line;
    int Number = 0;
    std::string Block;
    std::string Text;
    int Start = 0;
    while (std::getline(File, Line)) {
        ++Number;
        if (Block.empty()) {
            if (Line == "```basic" || Line == "```output" || Line == "```error") {
                Block = Line.substr(3);
                Text.clear();
                Start = Number;
            }
            continue;
        }
        if (Line != "```") {
            // Programs and outputs alike have CR LF line ends, as on the chip's line.
            Text += Line + "\r\n";
            continue;
        }
        if (Block == "basic" && !Examples.empty() && Examples.back().Kind.empty()) {
            Examples.back().Modules.push_back(Text);
        } else if (Block == "basic") {
            Examples.push_back({Start, {Text}, "", "", 0, 0});
        } else if (!Examples.empty() && Examples.back().Kind.empty()) {
            Examples.back().Kind = Block;
            Examples.back().Expected = Text;
            Examples.back().ExpectedFrom = Start + 1;
            Examples.back().ExpectedTo = Number;
        }
        Block.clear();
    }
    return Examples;
}

std::string WithoutAddress(std::string Text) {
    const size_t At = Text.find("(code address ");
    if (At != std::string::npos) {
        Text.erase(At, Text.find(')', At) - At);
    }
    return Text;
}

class LanguageExamplesTest : public CompilerFixture {
  protected:
    // What the example prints, unoptimised, or the error it is refused with.
    std::string Actual(const Example& Each) {
        Options.Optimize = false;
        Board = MachineBoard();
        InternalEeprom.assign(512, 0xFF);
        Build(Each.Modules);
        if (!Result.Success) {
            const Diagnostic& E = Result.Error;
            return std::to_string(E.Line) + ":" + std::to_string(E.Column) + " " +
                   std::to_string(E.Number) + " " + E.Message + "\r\n";
        }
        if (!Start()) {
            return "(refused) " + Machine->RefusalReason() + "\r\n";
        }
        RunFor(10);
        return Board.Output;
    }
};

TEST_F(LanguageExamplesTest, EveryExamplePrintsWhatTheDocumentSays) {
    const std::vector<Example> Examples = ReadExamples();
    ASSERT_GE(Examples.size(), 20u);
    for (const Example& Each : Examples) {
        SCOPED_TRACE("docs/language.md line " + std::to_string(Each.Line));
        ASSERT_FALSE(Each.Kind.empty()) << "an example without its output or error";
        for (const bool Optimize : {false, true}) {
            SCOPED_TRACE(Optimize ? "optimised" : "not optimised");
            Options.Optimize = Optimize;
            Board = MachineBoard();
            InternalEeprom.assign(512, 0xFF);
            if (Each.Kind == "output") {
                Build(Each.Modules);
                ASSERT_TRUE(Result.Success) << Result.Error.Line << ":" << Result.Error.Column
                                            << " " << Result.Error.Message;
                ASSERT_TRUE(Start()) << Machine->RefusalReason();
                RunFor(10);
                // The optimised code is shorter, so a run-time error names
                // another address.
                EXPECT_EQ(Optimize ? WithoutAddress(Board.Output) : Board.Output,
                          Optimize ? WithoutAddress(Each.Expected) : Each.Expected);
            } else {
                Build(Each.Modules);
                ASSERT_FALSE(Result.Success);
                const Diagnostic& E = Result.Error;
                EXPECT_EQ(std::to_string(E.Line) + ":" + std::to_string(E.Column) + " " +
                              std::to_string(E.Number) + " " + E.Message + "\r\n",
                          Each.Expected);
            }
        }
    }
}

// With KAVLIN_REGENERATE_EXAMPLES set (scripts/regenerate-language-examples.sh),
// writes what each example does now into the document, to be read over in
// the diff before it is committed.
TEST_F(LanguageExamplesTest, RegenerateTheDocumentsOutputsWhenAsked) {
    if (std::getenv("KAVLIN_REGENERATE_EXAMPLES") == nullptr) {
        GTEST_SKIP() << "KAVLIN_REGENERATE_EXAMPLES is not set";
    }
    std::vector<std::string> Lines;
    {
        std::ifstream File(KAVLIN_LANGUAGE_DOC);
        std::string Line;
        while (std::getline(File, Line)) {
            Lines.push_back(Line);
        }
    }
    std::vector<Example> Examples = ReadExamples();
    // From the last, so that earlier line numbers stay right.
    for (auto It = Examples.rbegin(); It != Examples.rend(); ++It) {
        std::string Text = Actual(*It);
        ASSERT_TRUE(Text.size() >= 2 && Text.substr(Text.size() - 2) == "\r\n")
            << "docs/language.md line " << It->Line << ": the output does not end a line";
        std::vector<std::string> NewLines;
        for (size_t From = 0; From < Text.size();) {
            const size_t End = Text.find("\r\n", From);
            NewLines.push_back(Text.substr(From, End - From));
            From = End + 2;
        }
        const std::string Fence = Result.Success ? "```output" : "```error";
        Lines[static_cast<size_t>(It->ExpectedFrom - 2)] = Fence;
        Lines.erase(Lines.begin() + (It->ExpectedFrom - 1), Lines.begin() + (It->ExpectedTo - 1));
        Lines.insert(Lines.begin() + (It->ExpectedFrom - 1), NewLines.begin(), NewLines.end());
    }
    std::ofstream File(KAVLIN_LANGUAGE_DOC, std::ios::binary | std::ios::trunc);
    for (const std::string& Line : Lines) {
        File << Line << "\n";
    }
}

TEST_F(LanguageExamplesTest, TheOptimiserMakesTheExamplesNoLarger) {
    size_t Plain = 0;
    size_t Optimised = 0;
    for (const Example& Each : ReadExamples()) {
        if (Each.Kind != "output") {
            continue;
        }
        Options.Optimize = false;
        Plain += Build(Each.Modules).Image.size();
        Options.Optimize = true;
        Optimised += Build(Each.Modules).Image.size();
    }
    EXPECT_LT(Optimised, Plain);
}

}  // namespace
