#include "chip/UtilitiesKGUI.h"

#include "frame/ErrorDisplay.h"
#include "platform/ClockService.h"

namespace UtilitiesKGUI {

int32_t ToRightOffset(int32_t PinState) {
    switch (PinState) {
        case kvOutputLow:
            return 2;
        case kvOutputHigh:
            return 3;
        case kvInputTristate:
            return 0;
        case kvInputPullup:
            return 1;
        default:
            ErrorDisplay::ProbeError(QStringLiteral("Error_1 in UtilitiesKGUI.ToRightOffset"));
            return 0;
    }
}

PinStateTypes ToPinState(int32_t Offset) {
    switch (Offset) {
        case 0:
            return kvInputTristate;
        case 1:
            return kvInputPullup;
        case 2:
            return kvOutputLow;
        case 3:
            return kvOutputHigh;
        default:
            ErrorDisplay::ProbeError(QStringLiteral("Error_1 in UtilitiesKGUI.ToPinState"));
            return kvInputTristate;
    }
}

QString CStrPinState(int32_t PinState) {
    switch (PinState) {
        case kvOutputLow:
            return QStringLiteral("kvOutputLow");
        case kvOutputHigh:
            return QStringLiteral("kvOutputHigh");
        case kvInputTristate:
            return QStringLiteral("kvInputTristate");
        case kvInputPullup:
            return QStringLiteral("kvInputPullup");
        default:
            ErrorDisplay::ProbeError(QStringLiteral("Error_1 in UtilitiesKGUI.CStrPinState"));
            return QStringLiteral("Illegal_Type");
    }
}

void Sleep(uint32_t Milliseconds) { ClockService::Instance().Sleep(Milliseconds); }

bool IntegerToBoolean(int16_t Value) { return Value != 0; }

QString SynthesizeMSCommString(const MonitorPortInfoType& Info) {
    static const char* const ParityLetters[] = {"N", "E", "O", "S", "M"};
    static const char* const StopTexts[] = {"1", "1.5", "2"};
    QString Parity = QStringLiteral("N");
    if (Info.Parity >= 0 && Info.Parity <= 4) {
        Parity = QLatin1String(ParityLetters[Info.Parity]);
    } else {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in UtilitiesKGUI.SynthesizeMSCommString"));
    }
    QString Stop = QStringLiteral("1");
    if (Info.StopBits() >= 0 && Info.StopBits() <= 2) {
        Stop = QLatin1String(StopTexts[Info.StopBits()]);
    } else {
        ErrorDisplay::ProbeError(QStringLiteral("Error_2 in UtilitiesKGUI.SynthesizeMSCommString"));
    }
    return QString::number(Info.BaudRate) + QLatin1Char(',') + Parity + QLatin1Char(',') +
           QString::number(Info.DataBits()) + QLatin1Char(',') + Stop;
}

}  // namespace UtilitiesKGUI
