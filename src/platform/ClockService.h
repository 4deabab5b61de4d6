#pragma once

#include <cstdint>
#include <memory>

// Sleeping, the two clocks and the event pump. All waits of the system go
// through here: the program's service really sleeps and pumps Qt's events,
// a test's service advances virtual time, so a ten-second wait takes no time.
class ClockService {
  public:
    virtual ~ClockService() = default;
    // Blocks the thread for the given milliseconds.
    virtual void Sleep(uint32_t Milliseconds) = 0;
    // A wall clock in milliseconds (the tick count).
    virtual int64_t TickCount() = 0;
    // The time of day in seconds since midnight, with fractions.
    virtual double Timer() = 0;
    // Lets pending window events run once.
    virtual void DoEvents() = 0;

    static ClockService& Instance();
    static std::unique_ptr<ClockService> Install(std::unique_ptr<ClockService> Service);
};

class RealClockService : public ClockService {
  public:
    void Sleep(uint32_t Milliseconds) override;
    int64_t TickCount() override;
    double Timer() override;
    void DoEvents() override;
};
