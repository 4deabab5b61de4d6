#include "monitor/MonitorCapture.h"

namespace MonitorCapture {

namespace {
bool CaptureFileIsOpen = false;
bool CaptureIsRunning = false;
QString CaptureFilename;
}  // namespace

void InitializeCapture() {
    CaptureFileIsOpen = false;
    CaptureIsRunning = false;
    CaptureFilename.clear();
}

void CloseCaptureFile() {
    // Not yet: no capture file is opened before the capture window is built.
    CaptureFileIsOpen = false;
    CaptureFilename.clear();
}

bool GetCaptureFileIsOpen() { return CaptureFileIsOpen; }

QString GetCaptureFilename() { return CaptureFilename; }

}  // namespace MonitorCapture
