#pragma once

#include <QString>

// Capture of the monitor port's raw bytes to a file.
namespace MonitorCapture {

// Both flags false, the file name empty.
void InitializeCapture();
// Closes an open capture file; empties the file name in any case.
void CloseCaptureFile();
bool GetCaptureFileIsOpen();
QString GetCaptureFilename();

}  // namespace MonitorCapture
