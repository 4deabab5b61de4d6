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
    // A monotonic clock in microseconds, for what is paced finer than a
    // millisecond: a serial line at 115200 baud moves a byte every 87 us.
    virtual int64_t MicroTicks() { return TickCount() * 1000; }
    // Sleeps for microseconds; a service without a finer clock rounds up.
    virtual void SleepMicroseconds(int64_t Microseconds) {
        if (Microseconds > 0) {
            Sleep(static_cast<uint32_t>((Microseconds + 999) / 1000));
        }
    }

    static ClockService& Instance();
    static std::unique_ptr<ClockService> Install(std::unique_ptr<ClockService> Service);
};

class RealClockService : public ClockService {
  public:
    void Sleep(uint32_t Milliseconds) override;
    int64_t TickCount() override;
    double Timer() override;
    void DoEvents() override;
    int64_t MicroTicks() override;
    void SleepMicroseconds(int64_t Microseconds) override;
};
