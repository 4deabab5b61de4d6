#include "platform/ClockService.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QThread>
#include <QTime>
#include <chrono>
#include <thread>

#include "platform/ServiceSlot.h"

ClockService& ClockService::Instance() {
    return ServiceSlot<ClockService, RealClockService>::Instance();
}

std::unique_ptr<ClockService> ClockService::Install(std::unique_ptr<ClockService> Service) {
    return ServiceSlot<ClockService, RealClockService>::Install(std::move(Service));
}

void RealClockService::Sleep(uint32_t Milliseconds) { QThread::msleep(Milliseconds); }

int64_t RealClockService::TickCount() {
    // A steady clock: a change of the system time must not stretch or cut a time limit.
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

double RealClockService::Timer() { return QTime::currentTime().msecsSinceStartOfDay() / 1000.0; }

void RealClockService::DoEvents() {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::processEvents();
    }
}

int64_t RealClockService::MicroTicks() {
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void RealClockService::SleepMicroseconds(int64_t Microseconds) {
    if (Microseconds > 0) {
        std::this_thread::sleep_for(std::chrono::microseconds(Microseconds));
    }
}
