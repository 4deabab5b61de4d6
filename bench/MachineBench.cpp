// Host time of the bytecode machine on a loop of 10,000,000 iterations of a
// Long addition, run to its end in fast chip time. Arg 0 is the loop as a
// For/Next compiles with the loop instructions (incg.l, jle.l); arg 1 the same
// loop out of plain loads, stores, a comparison and a conditional jump.

#include <benchmark/benchmark.h>

#include <chrono>
#include <string>
#include <vector>

#include "kvasm/BytecodeAssembler.h"
#include "machine/BytecodeMachine.h"
#include "machine/MachineBoard.h"

namespace {

constexpr int64_t Iterations = 10'000'000;

// Dim I As Long, Total As Long
// For I = 1 To 10000000: Total = Total + 3: Next
const std::string LoopStart = R"(
.var I 4
.var Total 4
Main:
    enter 0
    pushw 1
    stg.w I
Top:
    ldg.w Total
    pushw 3
    add.l
    stg.w Total
)";

const std::string ForNext = LoopStart + R"(
    incg.l I, 1
    ldg.w I
    pushw 10000000
    jle.l Top
    end
)";

const std::string PlainLoop = LoopStart + R"(
    ldg.w I
    pushw 1
    add.l
    stg.w I
    ldg.w I
    pushw 10000000
    le.l
    jt Top
    end
)";

void LongAdditionLoop(benchmark::State& State) {
    const BytecodeAssembler::Result Program =
        BytecodeAssembler::Assemble(State.range(0) == 0 ? ForNext : PlainLoop);
    if (!Program.Ok) {
        State.SkipWithError(Program.Error.c_str());
        return;
    }
    std::vector<uint8_t> Ram(65536);
    std::vector<uint8_t> Eeprom(512, 0xFF);
    MachineBoard Board;
    BytecodeMachine Machine({Ram, Eeprom, Program.Image}, Board, Board, 2);
    uint64_t Instructions = 0;
    double Seconds = 0;
    for (auto _ : State) {
        if (!Machine.Start(0)) {
            State.SkipWithError(Machine.RefusalReason().c_str());
            return;
        }
        const auto Start = std::chrono::steady_clock::now();
        const BytecodeMachine::State End = Machine.RunUntil(INT64_MAX / 2);
        const double Elapsed =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count();
        State.SetIterationTime(Elapsed);
        Seconds += Elapsed;
        Instructions += Machine.Executed();
        const int32_t Total = static_cast<int32_t>(Ram[211] | (Ram[212] << 8) | (Ram[213] << 16) |
                                                   (static_cast<uint32_t>(Ram[214]) << 24));
        if (End != BytecodeMachine::State::Ended || Total != 3 * Iterations) {
            State.SkipWithError("the loop did not run to its end with the right total");
            return;
        }
    }
    State.counters["instructions"] =
        static_cast<double>(Instructions) / static_cast<double>(State.iterations());
    State.counters["ns_per_instruction"] = Seconds * 1e9 / static_cast<double>(Instructions);
    State.counters["ns_per_iteration"] =
        Seconds * 1e9 / static_cast<double>(Iterations * State.iterations());
}

BENCHMARK(LongAdditionLoop)
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
