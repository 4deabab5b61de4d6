#include "support/VirtualClockService.h"

#include <QCoreApplication>

void VirtualClockService::Sleep(uint32_t Milliseconds) {
    NowMs += Milliseconds;
    ++SleepCalls;
    if (OnSleep) {
        OnSleep(NowMs);
    }
}

void VirtualClockService::Advance(int64_t Microseconds) {
    const int64_t Total = NowSubMs + Microseconds;
    NowMs += Total / 1000;
    NowSubMs = Total % 1000;
}

void VirtualClockService::SleepMicroseconds(int64_t Microseconds) {
    if (Microseconds <= 0) {
        return;
    }
    Advance(Microseconds);
    ++MicroSleepCalls;
    if (OnSleep) {
        OnSleep(NowMs);
    }
}

void VirtualClockService::DoEvents() {
    ++DoEventsCalls;
    QCoreApplication::processEvents();
    if (DoEventsMicroseconds > 0) {
        Advance(DoEventsMicroseconds);
    }
}
