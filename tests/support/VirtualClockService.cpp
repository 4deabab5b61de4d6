#include "support/VirtualClockService.h"

#include <QCoreApplication>

void VirtualClockService::Sleep(uint32_t Milliseconds) {
    NowMs += Milliseconds;
    ++SleepCalls;
    if (OnSleep) {
        OnSleep(NowMs);
    }
}

void VirtualClockService::DoEvents() {
    ++DoEventsCalls;
    QCoreApplication::processEvents();
}
