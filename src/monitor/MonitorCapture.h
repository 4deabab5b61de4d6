#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

// Capture of the monitor port's raw bytes to a file. It needs no window: the
// capture dialog only starts it, stops it and shows its size, and a capture
// goes on with the dialog closed.
namespace MonitorCapture {

// Both flags false, the file name empty.
void InitializeCapture();
// Closes an open capture file; empties the file name in any case.
void CloseCaptureFile();
QString GetCaptureFilename();
// Opens the file for writing, empty; Success is left alone on a failure.
void OpenCaptureFile(const QString& Filename, bool& Success);
bool IsCaptureFileOpen();
// Writes the bytes as they came. A capture is a live file held open, so every
// write goes straight to the system and is checked: a failure (disk full)
// ends the capture, keeps every byte written before it, and is told once.
void WriteCaptureBytes(const QByteArray& Bytes);
// The open file's length in bytes; 0 when none is open or on any error.
int64_t GetCaptureFileSize();

bool CaptureWindowIsOpen();
void SetCaptureWindowIsOpen(bool Value);

// Why the open failed, as the second line of its message; empty when it did not.
QString LastOpenFailure();

bool GetCaptureFileIsOpen();

}  // namespace MonitorCapture
