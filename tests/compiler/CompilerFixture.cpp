#include "CompilerFixture.h"

#include <fstream>
#include <sstream>

#include "compiler/Lexer.h"

using namespace KavlinCompiler;

std::string ReadSymbolFile(const std::string& RelativeName) {
    std::ifstream File(std::string(KAVLIN_COMPILER_LIBRARY) + "/" + RelativeName, std::ios::binary);
    std::stringstream Text;
    Text << File.rdbuf();
    return Text.str();
}

CompilerFixture::CompilerFixture() : Ram(65536, 0xA5), InternalEeprom(512, 0xFF) {
    std::string Error;
    EXPECT_TRUE(ParseLibrary(ReadSymbolFile("BinKV20/SymbolKV20.sym"), Library, Error)) << Error;
}

const CompileResult& CompilerFixture::Build(const std::string& Source) {
    return Build(std::vector<std::string>{Source});
}

const CompileResult& CompilerFixture::Build(const std::vector<std::string>& Sources) {
    std::vector<SourceModule> Modules;
    for (size_t I = 0; I < Sources.size(); ++I) {
        Modules.push_back({"Module" + std::to_string(I + 1) + ".bas", Widen(Sources[I])});
    }
    Result = Compile(Modules, Library, Options);
    return Result;
}

bool CompilerFixture::Start() {
    Machine = std::make_unique<BytecodeMachine>(
        BytecodeMachine::Memories{Ram, InternalEeprom, Result.Image}, Board, Board,
        Options.ChipType);
    return Machine->Start(0);
}

BytecodeMachine::State CompilerFixture::RunFor(double Seconds) {
    return Machine->RunUntil(Machine->Now() + static_cast<int64_t>(Seconds * 1e9));
}

void CompilerFixture::ExpectError(int Number, int Line, const std::string& Message) const {
    ASSERT_FALSE(Result.Success);
    EXPECT_EQ(Result.Error.Number, Number);
    EXPECT_EQ(Result.Error.Line, Line);
    EXPECT_EQ(Result.Error.Message, Message);
}

std::string CompilerFixture::Run(const std::string& Source, double Seconds) {
    Build(Source);
    if (!Result.Success) {
        return "[" + std::to_string(Result.Error.Line) + ":" + std::to_string(Result.Error.Column) +
               " " + std::to_string(Result.Error.Number) + " " + Result.Error.Message + "]";
    }
    if (!Start()) {
        return "[refused: " + Machine->RefusalReason() + "]";
    }
    RunFor(Seconds);
    return Board.Output;
}
