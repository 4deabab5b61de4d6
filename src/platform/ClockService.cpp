#include "platform/ClockService.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QThread>
#include <QTime>

namespace {
std::unique_ptr<ClockService>& Current() {
    static std::unique_ptr<ClockService> Service;
    return Service;
}
}  // namespace

ClockService& ClockService::Instance() {
    auto& Service = Current();
    if (!Service) {
        Service = std::make_unique<RealClockService>();
    }
    return *Service;
}

std::unique_ptr<ClockService> ClockService::Install(std::unique_ptr<ClockService> Service) {
    auto Old = std::move(Current());
    Current() = std::move(Service);
    return Old;
}

void RealClockService::Sleep(uint32_t Milliseconds) { QThread::msleep(Milliseconds); }

int64_t RealClockService::TickCount() { return QDateTime::currentMSecsSinceEpoch(); }

double RealClockService::Timer() { return QTime::currentTime().msecsSinceStartOfDay() / 1000.0; }

void RealClockService::DoEvents() {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::processEvents();
    }
}
