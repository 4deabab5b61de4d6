#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

// Standard input as the program's serial input: a thread of its own reads it
// as it comes, so that a person typing reaches a running program and a pipe
// that closes is seen as closed.
class SimInput {
  public:
    // Reads the file descriptor until its end.
    explicit SimInput(int Descriptor);
    // The reader may be blocked in a read that never returns: it is left
    // behind, and the process ends around it.
    ~SimInput();
    SimInput(const SimInput&) = delete;
    SimInput& operator=(const SimInput&) = delete;

    bool Available();
    std::optional<uint8_t> Read();
    // No byte waits and none will ever come.
    bool Exhausted();
    // Waits until a byte comes, the input ends, or the time has passed.
    void WaitFor(std::chrono::nanoseconds Time);

  private:
    void ReadAll(int Descriptor);

    std::mutex Lock;
    std::condition_variable Changed;
    std::deque<uint8_t> Bytes;
    bool Ended = false;
    std::thread Reader;
};
