#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "kvsim/SimInput.h"
#include "kvsim/SimOptions.h"
#include "machine/MachineBoard.h"
#include "machine/MachineDevices.h"

// One run of kavlin-sim: the machine with a chip's memories, its serial line
// on standard output and input, and the clock run fast or in real time until
// one of the ways of ending that SimExitCode names.
class SimRunner : public MachineSerialLine {
  public:
    SimRunner(const SimOptions& Options, SimInput& Input, std::FILE* Output, std::FILE* Messages);
    int Run();

    void Write(std::span<const uint8_t> Bytes, int64_t Ns) override;
    bool Available(int64_t Ns) override;
    std::optional<uint8_t> Read(int64_t Ns) override;

  private:
    bool LoadImage(std::vector<uint8_t>& Image);
    void LoadEeprom();
    void SaveEeprom();
    int Finish(int Code);

    const SimOptions& Options;
    SimInput& Input;
    std::FILE* Output;
    std::FILE* Messages;
    std::vector<uint8_t> Ram;
    std::vector<uint8_t> InternalEeprom;
    // Nothing is wired to the pins: an input with its pull-up reads high, one
    // without reads low, an output its own level.
    MachineBoard Pins;
    // The end of the output, as long as the longest text looked for.
    std::string Tail;
    size_t TailLength = 0;
    // Set when the output showed an --expect (0) or --fail (1) text.
    int Matched = -1;
    std::string MatchedText;
};
