#include "link/DownloadPortExecutive.h"

#include "frame/RegistryCentral.h"

namespace DownloadPortExecutive {

namespace {
DownloadPortInfoType DownloadPort;
bool PortIsOpen = false;
bool PortIsParallel = false;
bool ReserveFileIsOpen = false;
int ReserveFileNumber = 0;

void ApplyDownloadPort() {
    // Not yet: no port opens before the serial chip link and the parallel programmer are built.
}

void CloseSerialPort() {
    // Not yet: no serial port is opened before the serial chip link is built; only the flag drops.
    PortIsOpen = false;
}

void CloseParallelPort() {
    // Not yet: no parallel port or LPT device is held before the programmer is built.
    ReserveFileIsOpen = false;
    PortIsOpen = false;
}
}  // namespace

void Initialize() {
    PortIsOpen = false;
    PortIsParallel = false;
    ReserveFileIsOpen = false;
    ReserveFileNumber = 0;
    DownloadPort = DownloadPortInfoType();
    RegistryCentral::RegistryGetDownloadPort(DownloadPort);
    ApplyDownloadPort();
}

bool DownloadPortIsOpen() { return PortIsOpen; }

bool DownloadPortIsParallel() { return PortIsParallel; }

void GetDownloadPortInfo(DownloadPortInfoType& Info) { Info.Copy(DownloadPort); }

void ClosePorts() {
    CloseSerialPort();
    CloseParallelPort();
}

}  // namespace DownloadPortExecutive
