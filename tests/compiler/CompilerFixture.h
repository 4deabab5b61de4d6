#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "compiler/Compiler.h"
#include "machine/BytecodeMachine.h"
#include "machine/MachineBoard.h"

// Compiles modules with the system library of the symbol files and runs the
// image on the bytecode machine with a plain board, as a KV-20 would.
class CompilerFixture : public ::testing::Test {
  protected:
    CompilerFixture();

    // Compiles one module (or several); the result stays in Result.
    const KavlinCompiler::CompileResult& Build(const std::string& Source);
    const KavlinCompiler::CompileResult& Build(const std::vector<std::string>& Sources);
    // Compiles and runs for up to Seconds of chip time; the serial output, or
    // the compile error's message in brackets.
    std::string Run(const std::string& Source, double Seconds = 10.0);
    // Starts the last image on the machine; false if it refused it.
    bool Start();
    BytecodeMachine::State RunFor(double Seconds);
    // The last compile failed with this error number, on this line, in these words.
    void ExpectError(int Number, int Line, const std::string& Message) const;

    KavlinCompiler::CompileOptions Options;
    KavlinCompiler::LibraryDeclarations Library;
    KavlinCompiler::CompileResult Result;
    std::vector<uint8_t> Ram;
    std::vector<uint8_t> InternalEeprom;
    MachineBoard Board;
    std::unique_ptr<BytecodeMachine> Machine;
};

// The symbol file's text, from the source tree.
std::string ReadSymbolFile(const std::string& RelativeName);
