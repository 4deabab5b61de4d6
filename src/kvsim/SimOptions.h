#pragma once

#include <optional>
#include <string>
#include <vector>

// The command line of kavlin-sim.
struct SimOptions {
    std::string ImagePath;
    // Chip time after which the run ends as a time-out.
    std::optional<double> Seconds;
    std::vector<std::string> ExpectTexts;
    std::vector<std::string> FailTexts;
    bool RealTime = false;
    // A file of 512 bytes that holds the internal EEPROM between runs.
    std::string EepromPath;

    // False with Error set for a command line that can't be run.
    static bool Parse(const std::vector<std::string>& Arguments, SimOptions& Options,
                      std::string& Error);
};

// How kavlin-sim ends.
enum SimExitCode {
    SimEnded = 0,
    SimFailed = 1,
    SimUsage = 2,
    SimRunTimeError = 3,
    SimTimeOut = 4,
};

inline constexpr const char* SimUsageText =
    "usage: kavlin-sim IMAGE.kvb [--seconds N] [--expect TEXT] [--fail TEXT] [--real-time]\n"
    "                  [--eeprom FILE]\n"
    "Runs a program image on the bytecode machine: what it prints goes to standard output,\n"
    "standard input goes to its serial input. Exit codes: 0 the program ended or printed the\n"
    "--expect text, 1 it printed the --fail text or ended without the --expect text, 2 the\n"
    "command line or the image was refused, 3 a run-time error, 4 --seconds of chip time ran\n"
    "out or the program waits for input after standard input ended.\n";
