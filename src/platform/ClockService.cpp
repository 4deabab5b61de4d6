#include "platform/ClockService.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QThread>
#include <QTime>

#include "platform/ServiceSlot.h"

ClockService& ClockService::Instance() {
    return ServiceSlot<ClockService, RealClockService>::Instance();
}

std::unique_ptr<ClockService> ClockService::Install(std::unique_ptr<ClockService> Service) {
    return ServiceSlot<ClockService, RealClockService>::Install(std::move(Service));
}

void RealClockService::Sleep(uint32_t Milliseconds) { QThread::msleep(Milliseconds); }

int64_t RealClockService::TickCount() { return QDateTime::currentMSecsSinceEpoch(); }

double RealClockService::Timer() { return QTime::currentTime().msecsSinceStartOfDay() / 1000.0; }

void RealClockService::DoEvents() {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::processEvents();
    }
}
