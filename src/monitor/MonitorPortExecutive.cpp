#include "monitor/MonitorPortExecutive.h"

#include "chip/UtilitiesKGUI.h"
#include "frame/RegistryCentral.h"
#include "platform/ErrObject.h"
#include "platform/SerialPort.h"

namespace MonitorPortExecutive {

namespace {
MonitorPortInfoType MonitorPortInfo;
bool MonitorPortIsOpen = false;
SerialPort* comMonitorPort = nullptr;
QString OpenFailure;
}  // namespace

void SetPortObject(SerialPort* Port) {
    comMonitorPort = Port;
    if (Port == nullptr) {
        MonitorPortIsOpen = false;
    }
}

SerialPort* PortObject() { return comMonitorPort; }

bool IsMonitorPortOpen() { return MonitorPortIsOpen; }

void InitializeMonitorPort() {
    MonitorPortIsOpen = false;
    MonitorPortInfo = MonitorPortInfoType();
    RegistryCentral::RegistryGetMonitorPort(MonitorPortInfo);
    UpdateMonitorPort();
}

void GetMonitorPortInfo(MonitorPortInfoType& Info) { Info.Copy(MonitorPortInfo); }

void SetMonitorPortInfo(const MonitorPortInfoType& Info) {
    MonitorPortInfo.Copy(Info);
    RegistryCentral::RegistrySaveMonitorPort(MonitorPortInfo);
    UpdateMonitorPort();
}

void UpdateMonitorPort() {
    if (MonitorPortInfo.IsDefined) {
        OpenMonitorPort();
    } else {
        CloseMonitorPort();
    }
}

void OpenMonitorPort() {
    OpenFailure.clear();
    try {
        CloseMonitorPort();
        if (comMonitorPort == nullptr) {
            OpenFailure = QStringLiteral("No port object");
            return;
        }
        comMonitorPort->SetCommPort(MonitorPortInfo.PortNumber());
        comMonitorPort->SetSettings(UtilitiesKGUI::SynthesizeMSCommString(MonitorPortInfo));
        // An input takes all that is there.
        comMonitorPort->SetInputLen(0);
        comMonitorPort->SetPortOpen(true);
        MonitorPortIsOpen = true;
    } catch (const RuntimeError& Error) {
        OpenFailure = Error.Description();
        CloseMonitorPort();
    } catch (...) {
        // A port that cannot open (held by the download link, missing, not
        // permitted) stays closed; the dialog tells the user.
        CloseMonitorPort();
    }
}

void CloseMonitorPort() {
    try {
        if (comMonitorPort != nullptr && comMonitorPort->PortOpen()) {
            comMonitorPort->SetPortOpen(false);
        }
    } catch (...) {
        // A port that refuses to close is no longer ours to use either.
    }
    MonitorPortIsOpen = false;
}

int32_t GetAtnState() {
    if (comMonitorPort == nullptr || !comMonitorPort->PortOpen()) {
        return 0;
    }
    return comMonitorPort->DTREnable() ? 1 : 2;
}

void SetAtnState(bool Value, bool& PortIsOpen) {
    PortIsOpen = false;
    try {
        PortIsOpen = comMonitorPort != nullptr && comMonitorPort->PortOpen();
        if (PortIsOpen) {
            comMonitorPort->SetDTREnable(Value);
        }
    } catch (...) {
        // The diagnostic window reads the state back; a failure shows there.
    }
}

QString FilterForDisplay(const QByteArray& Bytes) {
    QString Text;
    Text.reserve(Bytes.size() + Bytes.size() / 8);
    for (const char Byte : Bytes) {
        const auto Code = static_cast<uint8_t>(Byte);
        if (Code == 13) {
            Text += QStringLiteral("\r\n");
        } else if (Code == 10) {
            // The CR before it has made the line break already.
        } else if (Code < 32 || Code == 127) {
            Text += QChar(DisplayPlaceholder);
        } else {
            Text += QChar(Code);
        }
    }
    return Text;
}

QString LastOpenFailure() { return OpenFailure; }

void PortWasLost() { CloseMonitorPort(); }

bool GetMonitorPortIsOpen() { return MonitorPortIsOpen; }

const MonitorPortInfoType& GetMonitorPortInfo() { return MonitorPortInfo; }

}  // namespace MonitorPortExecutive
