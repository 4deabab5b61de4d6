#pragma once

#include <QString>
#include <cstdint>

#include "chip/PinStateTypes.h"
#include "frame/MonitorPortInfoType.h"

// Conversions of the pin state to and from the flag order of the
// preference file (IN, P, 0, 1).
namespace UtilitiesKGUI {

// kvInputTristate 0, kvInputPullup 1, kvOutputLow 2, kvOutputHigh 3; any other value 0.
int32_t ToRightOffset(int32_t PinState);
// The inverse; any other offset gives kvInputTristate.
PinStateTypes ToPinState(int32_t Offset);
// "kvOutputLow" and so on; "Illegal_Type" for any other value.
QString CStrPinState(int32_t PinState);

// The system's sleep in milliseconds, through the clock-and-pump service.
void Sleep(uint32_t Milliseconds);
// The serial port's settings text of a monitor port set-up: "19200,N,8,1".
// An unknown parity gives "N", an unknown stop code "1", each after a probe.
QString SynthesizeMSCommString(const MonitorPortInfoType& Info);
// A 16-bit number as a boolean: anything but 0 is True.
bool IntegerToBoolean(int16_t Value);

}  // namespace UtilitiesKGUI
