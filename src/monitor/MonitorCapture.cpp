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
    // No capture file can be open yet: the capture window that opens one is still to be built.
    CaptureFileIsOpen = false;
    CaptureFilename.clear();
}

bool GetCaptureFileIsOpen() { return CaptureFileIsOpen; }

QString GetCaptureFilename() { return CaptureFilename; }

}  // namespace MonitorCapture
