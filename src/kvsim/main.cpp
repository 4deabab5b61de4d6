// kavlin-sim IMAGE.kvb: runs a program image without the IDE (see SimOptions.h).
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "kvsim/SimInput.h"
#include "kvsim/SimOptions.h"
#include "kvsim/SimRunner.h"

int main(int argc, char** argv) {
    const std::vector<std::string> Arguments(argv + 1, argv + argc);
    if (Arguments.size() == 1 && (Arguments[0] == "--help" || Arguments[0] == "-h")) {
        std::fputs(SimUsageText, stdout);
        return SimEnded;
    }
    SimOptions Options;
    std::string Error;
    if (!SimOptions::Parse(Arguments, Options, Error)) {
        std::fprintf(stderr, "kavlin-sim: %s\n%s", Error.c_str(), SimUsageText);
        return SimUsage;
    }
    SimInput Input(STDIN_FILENO);
    SimRunner Runner(Options, Input, stdout, stderr);
    const int Code = Runner.Run();
    std::fflush(stdout);
    std::fflush(stderr);
    // The input's reader may still sit in a read of a terminal.
    std::_Exit(Code);
}
