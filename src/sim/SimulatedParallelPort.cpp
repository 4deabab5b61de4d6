#include "sim/SimulatedParallelPort.h"

#include "platform/ClockService.h"
#include "platform/ErrObject.h"
#include "platform/ParallelDevices.h"

SimulatedParallelPort::SimulatedParallelPort(std::shared_ptr<SimulatedKV10Board> Board)
    : Board_(std::move(Board)) {}

void SimulatedParallelPort::InstallAsSimulatedBoard(
    const std::shared_ptr<SimulatedParallelPort>& Port) {
    std::weak_ptr<SimulatedParallelPort> Weak = Port;
    ParallelDevices::SetSimulatedDevice(
        [Weak]() -> std::shared_ptr<ParallelPort> { return Weak.lock(); });
}

void SimulatedParallelPort::UninstallSimulatedBoard() {
    ParallelDevices::SetSimulatedDevice(nullptr);
}

QString SimulatedParallelPort::DeviceName() const { return ParallelDevices::SimulatedBoardEntry(); }

int64_t SimulatedParallelPort::NowNs() const {
    return ClockService::Instance().MicroTicks() * 1000;
}

void SimulatedParallelPort::Claim() {
    if (!RefuseClaim.isEmpty()) {
        RaiseError(70, RefuseClaim);
    }
    if (!Claimed_) {
        Claimed_ = true;
        ++Claims;
    }
}

void SimulatedParallelPort::Release() {
    if (!Claimed_) {
        return;
    }
    Claimed_ = false;
    ++Releases;
    Board_->SaveEeproms(NowNs());
}

bool SimulatedParallelPort::Reachable(int64_t& Count) {
    if (!Claimed_) {
        ++DroppedAccesses;
        return false;
    }
    ++Count;
    return true;
}

void SimulatedParallelPort::WriteData(uint8_t Value) {
    if (Reachable(Writes)) {
        Data_ = Value;
        Board_->DataLines(Value, NowNs());
    }
}

uint8_t SimulatedParallelPort::ReadData() { return Reachable(Reads) ? Data_ : 0xFF; }

uint8_t SimulatedParallelPort::ReadStatus() {
    return Reachable(Reads) ? Board_->StatusLines(NowNs()) : 0xFF;
}

void SimulatedParallelPort::WriteControl(uint8_t Value) {
    if (Reachable(Writes)) {
        Control_ = Value;
        Board_->ControlLines(Value, NowNs());
    }
}

uint8_t SimulatedParallelPort::ReadControl() { return Reachable(Reads) ? Control_ : 0xFF; }
