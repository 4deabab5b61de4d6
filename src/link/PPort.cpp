#include "link/PPort.h"

#include <memory>

#include "frame/ErrorDisplay.h"
#include "platform/ParallelDevices.h"
#include "platform/ParallelPort.h"

namespace PPort {

namespace {
int16_t PortNumber = 1;
std::shared_ptr<ParallelPort> Reserved;
int ReservedHandle = 0;
int NextHandle = 1;

// The port of the transfer under way and where its registers start.
std::shared_ptr<ParallelPort> Active;
uint16_t ActiveBase = 0;
bool ActiveIsOwn = false;
int Depth = 0;

enum Register { DataRegister = 0, StatusRegister = 1, ControlRegister = 2 };

// The register of the active port that Port names; -1 for none.
int RegisterOf(int16_t Port) {
    if (!Active) {
        return -1;
    }
    const int Offset = static_cast<uint16_t>(Port) - ActiveBase;
    return Offset >= DataRegister && Offset <= ControlRegister ? Offset : -1;
}
}  // namespace

void DlPortWritePortUchar(int16_t Port, uint8_t Value) {
    switch (RegisterOf(Port)) {
        case DataRegister:
            Active->WriteData(Value);
            break;
        case ControlRegister:
            Active->WriteControl(Value);
            break;
        case StatusRegister:
            break;  // read only
        default:
            ErrorDisplay::ProbeError(QStringLiteral("Error_1 in PPort.DlPortWritePortUchar"));
            break;
    }
}

uint8_t DlPortReadPortUchar(int16_t Port) {
    switch (RegisterOf(Port)) {
        case DataRegister:
            return Active->ReadData();
        case StatusRegister:
            return Active->ReadStatus();
        case ControlRegister:
            return Active->ReadControl();
        default:
            ErrorDisplay::ProbeError(QStringLiteral("Error_1 in PPort.DlPortReadPortUchar"));
            return 0xFF;
    }
}

void SetPortNumber(int16_t Number) { PortNumber = Number; }

int16_t GetPortNumber() { return PortNumber; }

int Reserve(const QString& Device) {
    std::shared_ptr<ParallelPort> Port = ParallelDevices::PortOfDevice(Device);
    Port->Claim();
    if (Reserved && Reserved != Port) {
        Reserved->Release();
    }
    Reserved = std::move(Port);
    ReservedHandle = NextHandle++;
    return ReservedHandle;
}

void Unreserve(int Handle) {
    if (!Reserved || Handle != ReservedHandle) {
        return;
    }
    // A transfer under way keeps the port until it ends.
    if (Reserved != Active) {
        Reserved->Release();
    } else {
        ActiveIsOwn = true;
    }
    Reserved.reset();
    ReservedHandle = 0;
}

bool IsReserved() { return Reserved != nullptr; }

Transfer::Transfer(int16_t Base) {
    if (Depth > 0) {
        ++Depth;
        return;
    }
    std::shared_ptr<ParallelPort> Port = ParallelDevices::PortAt(PortNumber, Base);
    const bool IsReservedPort = Reserved && Reserved->DeviceName() == Port->DeviceName();
    if (IsReservedPort) {
        Port = Reserved;
    }
    // Claimed again in case a reserved port was let go under it.
    Port->Claim();
    Active = std::move(Port);
    ActiveBase = static_cast<uint16_t>(Base);
    ActiveIsOwn = !IsReservedPort;
    Depth = 1;
}

Transfer::~Transfer() {
    if (--Depth > 0) {
        return;
    }
    if (ActiveIsOwn) {
        Active->Release();
    }
    Active.reset();
}

}  // namespace PPort
