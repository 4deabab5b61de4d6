#pragma once

#include "frame/MonitorPortInfoType.h"

// The monitor port's settings and whether it is open.
namespace MonitorPortExecutive {

// Port-open flag False, the settings read from the store, then applied.
void InitializeMonitorPort();
// Closes the port if it is open; the flag goes False.
void CloseMonitorPort();
// Opens the port if its settings say it is meant to be open, else closes it.
void UpdateMonitorPort();
bool GetMonitorPortIsOpen();
const MonitorPortInfoType& GetMonitorPortInfo();

}  // namespace MonitorPortExecutive
