#include "monitor/MonitorPortExecutive.h"

#include "frame/RegistryCentral.h"

namespace MonitorPortExecutive {

namespace {
MonitorPortInfoType MonitorPortInfo;
bool MonitorPortIsOpen = false;

void ApplyMonitorPort() {
    // Not yet: the port object of the monitor terminal is still to be built, so nothing opens.
}
}  // namespace

void InitializeMonitorPort() {
    MonitorPortIsOpen = false;
    MonitorPortInfo = MonitorPortInfoType();
    RegistryCentral::RegistryGetMonitorPort(MonitorPortInfo);
    ApplyMonitorPort();
}

void CloseMonitorPort() {
    // Not yet: no monitor port is opened before the monitor terminal is built; only the flag drops.
    MonitorPortIsOpen = false;
}

void UpdateMonitorPort() { ApplyMonitorPort(); }

bool GetMonitorPortIsOpen() { return MonitorPortIsOpen; }

const MonitorPortInfoType& GetMonitorPortInfo() { return MonitorPortInfo; }

}  // namespace MonitorPortExecutive
