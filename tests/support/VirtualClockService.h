#pragma once

#include <functional>

#include "platform/ClockService.h"

// Virtual time for tests: Sleep advances the clock at once. DoEvents lets
// Qt's queued events run, so windows behave as in the program.
class VirtualClockService : public ClockService {
  public:
    void Sleep(uint32_t Milliseconds) override;
    int64_t TickCount() override { return NowMs; }
    double Timer() override { return static_cast<double>(NowMs % 86400000) / 1000.0; }
    void DoEvents() override;
    int64_t MicroTicks() override { return NowMs * 1000 + NowSubMs; }
    // Advances by microseconds; whole milliseconds carry into NowMs.
    void SleepMicroseconds(int64_t Microseconds) override;

    int64_t NowMs = 0;
    // Each DoEvents takes this long: a loop that only yields, as a poll of a
    // device does, then sees time pass.
    int64_t DoEventsMicroseconds = 0;
    // Microseconds past NowMs, 0 to 999.
    int64_t NowSubMs = 0;
    int MicroSleepCalls = 0;
    int SleepCalls = 0;
    int DoEventsCalls = 0;
    // Called after every sleep with the new time: a test's way of acting
    // "while" the code under test waits.
    std::function<void(int64_t NowMs)> OnSleep;

  private:
    void Advance(int64_t Microseconds);
};
