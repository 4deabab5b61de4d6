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
    // Not yet: the serial chip link and the parallel programmer are still to be built, so no port
    // opens.
}

void CloseSerialPort() { PortIsOpen = false; }

void CloseParallelPort() {
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
