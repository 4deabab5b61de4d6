#include "chip/PortBitXRef.h"

#include "frame/ErrorDisplay.h"

uint8_t PortBitXRef::Value(int32_t Bit) const {
    if (Bit < 0 || Bit > 7) {
        ErrorDisplay::ProbeError(QStringLiteral("Error1 in PortBitXRef.Value/Get"));
        Bit = 0;
    }
    return Pins_[Bit];
}

void PortBitXRef::SetValue(int32_t Bit, uint8_t PinNumber) {
    if (Bit < 0 || Bit > 7) {
        ErrorDisplay::ProbeError(QStringLiteral("Error1 in PortBitXRef.Value/Let"));
        Bit = 0;
    }
    Pins_[Bit] = PinNumber;
}
