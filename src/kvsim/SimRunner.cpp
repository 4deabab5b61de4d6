#include "kvsim/SimRunner.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <limits>
#include <thread>

#include "machine/BytecodeMachine.h"

namespace {

constexpr size_t ImageLimit = 32768;
constexpr size_t EepromSize = 512;
// Chip time run between two looks at the output, the input and the clock.
constexpr int64_t SliceNs = 10'000'000;
constexpr int64_t RealTimeSliceNs = 1'000'000;

}  // namespace

SimRunner::SimRunner(const SimOptions& Options, SimInput& Input, std::FILE* Output,
                     std::FILE* Messages)
    : Options(Options),
      Input(Input),
      Output(Output),
      Messages(Messages),
      Ram(65536, 0),
      InternalEeprom(EepromSize, 0xFF) {
    for (const std::string& Text : Options.ExpectTexts) {
        TailLength = std::max(TailLength, Text.size());
    }
    for (const std::string& Text : Options.FailTexts) {
        TailLength = std::max(TailLength, Text.size());
    }
}

void SimRunner::Write(std::span<const uint8_t> Bytes, int64_t) {
    for (const uint8_t Byte : Bytes) {
        if (Matched >= 0) {
            return;
        }
        std::fputc(Byte, Output);
        if (TailLength == 0) {
            continue;
        }
        Tail.push_back(static_cast<char>(Byte));
        if (Tail.size() > TailLength) {
            Tail.erase(0, Tail.size() - TailLength);
        }
        // A failure seen at the same byte as a success counts as a failure.
        for (const std::string& Text : Options.FailTexts) {
            if (Tail.ends_with(Text)) {
                Matched = SimFailed;
                MatchedText = Text;
                return;
            }
        }
        for (const std::string& Text : Options.ExpectTexts) {
            if (Tail.ends_with(Text)) {
                Matched = SimEnded;
                MatchedText = Text;
                return;
            }
        }
    }
}

bool SimRunner::Available(int64_t) { return Input.Available(); }

std::optional<uint8_t> SimRunner::Read(int64_t) { return Input.Read(); }

bool SimRunner::LoadImage(std::vector<uint8_t>& Image) {
    std::ifstream File(Options.ImagePath, std::ios::binary);
    if (!File) {
        std::fprintf(Messages, "kavlin-sim: cannot read %s\n", Options.ImagePath.c_str());
        return false;
    }
    Image.assign(std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>());
    if (Image.size() > ImageLimit) {
        std::fprintf(Messages,
                     "kavlin-sim: %s: the image is %zu bytes, more than the 32768 bytes of the "
                     "chip's external EEPROM\n",
                     Options.ImagePath.c_str(), Image.size());
        return false;
    }
    return true;
}

void SimRunner::LoadEeprom() {
    if (Options.EepromPath.empty()) {
        return;
    }
    std::ifstream File(Options.EepromPath, std::ios::binary);
    if (File) {
        File.read(reinterpret_cast<char*>(InternalEeprom.data()),
                  static_cast<std::streamsize>(InternalEeprom.size()));
    }
}

void SimRunner::SaveEeprom() {
    if (Options.EepromPath.empty()) {
        return;
    }
    std::ofstream File(Options.EepromPath, std::ios::binary | std::ios::trunc);
    File.write(reinterpret_cast<const char*>(InternalEeprom.data()),
               static_cast<std::streamsize>(InternalEeprom.size()));
    if (!File) {
        std::fprintf(Messages, "kavlin-sim: cannot write %s\n", Options.EepromPath.c_str());
    }
}

int SimRunner::Finish(int Code) {
    std::fflush(Output);
    SaveEeprom();
    return Code;
}

int SimRunner::Run() {
    std::vector<uint8_t> Image;
    if (!LoadImage(Image)) {
        return SimUsage;
    }
    LoadEeprom();
    BytecodeMachine Machine({Ram, InternalEeprom, Image}, *this, Pins);
    if (!Machine.Start(0)) {
        std::fprintf(Messages, "kavlin-sim: %s: %s\n", Options.ImagePath.c_str(),
                     Machine.RefusalReason().c_str());
        return SimUsage;
    }
    const int64_t Deadline = Options.Seconds ? static_cast<int64_t>(*Options.Seconds * 1e9)
                                             : std::numeric_limits<int64_t>::max();
    const auto WallStart = std::chrono::steady_clock::now();
    while (true) {
        if (Matched == SimEnded) {
            return Finish(SimEnded);
        }
        if (Matched == SimFailed) {
            std::fflush(Output);
            std::fprintf(Messages, "kavlin-sim: the program printed \"%s\"\n", MatchedText.c_str());
            return Finish(SimFailed);
        }
        switch (Machine.CurrentState()) {
            case BytecodeMachine::State::Ended:
                if (!Options.ExpectTexts.empty()) {
                    std::fflush(Output);
                    std::fprintf(Messages,
                                 "kavlin-sim: the program ended without printing \"%s\"\n",
                                 Options.ExpectTexts.front().c_str());
                    return Finish(SimFailed);
                }
                return Finish(SimEnded);
            case BytecodeMachine::State::Failed:
                std::fflush(Output);
                std::fprintf(Messages, "kavlin-sim: %s\n", Machine.ErrorMessage().c_str());
                return Finish(SimRunTimeError);
            default:
                break;
        }
        // Chip time runs out, or is too short for one more instruction.
        const bool Running = Machine.CurrentState() == BytecodeMachine::State::Running;
        if (Machine.Now() >= Deadline ||
            (Running && Deadline - Machine.Now() < std::max<int64_t>(Machine.InstructionNs, 1))) {
            std::fflush(Output);
            std::fprintf(Messages, "kavlin-sim: time-out after %g s of chip time\n",
                         static_cast<double>(Deadline) / 1e9);
            return Finish(SimTimeOut);
        }
        const bool WaitsForInput =
            Machine.CurrentState() == BytecodeMachine::State::WaitingForInput && !Input.Available();
        if (WaitsForInput && Input.Exhausted()) {
            std::fflush(Output);
            std::fprintf(Messages,
                         "kavlin-sim: the program waits for input after standard input ended\n");
            return Finish(SimTimeOut);
        }
        int64_t Until = 0;
        if (Options.RealTime) {
            std::fflush(Output);
            // The chip's clock follows the wall clock: wait for it, or for
            // a byte the program is waiting for.
            Until = std::min(Deadline, Machine.Now() + RealTimeSliceNs);
            const auto Due = WallStart + std::chrono::nanoseconds(Until);
            const auto Now = std::chrono::steady_clock::now();
            if (Due > Now) {
                if (WaitsForInput) {
                    Input.WaitFor(Due - Now);
                } else {
                    std::this_thread::sleep_until(Due);
                }
            }
        } else if (WaitsForInput) {
            // Fast time stands still until the byte comes.
            std::fflush(Output);
            Input.WaitFor(std::chrono::milliseconds(100));
            continue;
        } else if (Machine.CurrentState() == BytecodeMachine::State::Sleeping) {
            Until = std::min(Deadline, std::max(Machine.WakeNs(), Machine.Now() + SliceNs));
        } else {
            Until = Deadline - Machine.Now() < SliceNs ? Deadline : Machine.Now() + SliceNs;
        }
        Machine.RunUntil(Until);
        // What a long run prints shows as it comes, not when a buffer fills.
        std::fflush(Output);
    }
}
