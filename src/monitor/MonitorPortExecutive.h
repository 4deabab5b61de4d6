#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

#include "frame/MonitorPortInfoType.h"

class SerialPort;

// The monitor port's settings and whether it is open. The port object itself
// belongs to the downloader window (its comMonitorPort); the window hands it
// over here, and a test may hand over its own.
namespace MonitorPortExecutive {

void SetPortObject(SerialPort* Port);
SerialPort* PortObject();

bool IsMonitorPortOpen();
// Port-open flag False, the settings read from the store, then applied.
void InitializeMonitorPort();
void GetMonitorPortInfo(MonitorPortInfoType& Info);
// Takes the settings, saves them and applies them.
void SetMonitorPortInfo(const MonitorPortInfoType& Info);
// Opens the port if its settings say it is meant to be open, else closes it.
void UpdateMonitorPort();
// A port that fails to open stays closed without a word: the caller words it.
void OpenMonitorPort();
// Why the last open failed ("Port already open", ...); empty after a success.
QString LastOpenFailure();
// Closes the port if it is open; the flag goes False.
void CloseMonitorPort();
// 0 closed, 1 DTR (the chip's ATN) raised, 2 lowered.
int32_t GetAtnState();
// Sets DTR when the port is open; PortIsOpen tells whether it was.
void SetAtnState(bool Value, bool& PortIsOpen);

// The text the monitor window shows for bytes from the chip: CR as CR LF, LF
// dropped, DEL and the other control bytes as the placeholder (code 129),
// every other byte as the character of its code.
QString FilterForDisplay(const QByteArray& Bytes);
constexpr char16_t DisplayPlaceholder = 129;

// The port went away under us (an adapter pulled): the flag follows the port.
void PortWasLost();

bool GetMonitorPortIsOpen();
const MonitorPortInfoType& GetMonitorPortInfo();

}  // namespace MonitorPortExecutive
