// kavlin-asm SOURCE [-o IMAGE]: assembles bytecode text into a program image.
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "kvasm/BytecodeAssembler.h"

int main(int argc, char** argv) {
    std::string Source;
    std::string Output;
    for (int Index = 1; Index < argc; ++Index) {
        const std::string Argument = argv[Index];
        if (Argument == "-o" && Index + 1 < argc) {
            Output = argv[++Index];
        } else if (Source.empty() && !Argument.empty() && Argument[0] != '-') {
            Source = Argument;
        } else {
            Source.clear();
            break;
        }
    }
    if (Source.empty()) {
        std::cerr << "usage: kavlin-asm SOURCE.kva [-o IMAGE.kvb]\n";
        return 2;
    }
    if (Output.empty()) {
        const size_t Dot = Source.find_last_of('.');
        const size_t Slash = Source.find_last_of('/');
        Output = (Dot != std::string::npos && (Slash == std::string::npos || Dot > Slash)
                      ? Source.substr(0, Dot)
                      : Source) +
                 ".kvb";
    }
    std::ifstream In(Source, std::ios::binary);
    if (!In) {
        std::cerr << "kavlin-asm: cannot read " << Source << "\n";
        return 1;
    }
    const std::string Text((std::istreambuf_iterator<char>(In)), std::istreambuf_iterator<char>());
    const BytecodeAssembler::Result Result = BytecodeAssembler::Assemble(Text);
    if (!Result.Ok) {
        std::cerr << Source << ": " << Result.Error << "\n";
        return 1;
    }
    std::ofstream Out(Output, std::ios::binary | std::ios::trunc);
    Out.write(reinterpret_cast<const char*>(Result.Image.data()),
              static_cast<std::streamsize>(Result.Image.size()));
    Out.close();
    if (!Out) {
        std::cerr << "kavlin-asm: cannot write " << Output << "\n";
        return 1;
    }
    return 0;
}
