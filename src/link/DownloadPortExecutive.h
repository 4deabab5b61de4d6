#pragma once

#include "frame/DownloadPortInfoType.h"

// What the user has set up as the download port, and what of it is open.
namespace DownloadPortExecutive {

// Clears the flags, reads the set-up from the store, then applies it.
void Initialize();
bool DownloadPortIsOpen();
bool DownloadPortIsParallel();
void GetDownloadPortInfo(DownloadPortInfoType& Info);
// The serial side, then the parallel side.
void ClosePorts();

}  // namespace DownloadPortExecutive
