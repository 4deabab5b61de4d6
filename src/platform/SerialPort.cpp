#include "platform/SerialPort.h"

#include "platform/ErrObject.h"

namespace SerialPortErrors {

void RaiseInvalidPortNumber() {
    RaiseError(InvalidPortNumber, QStringLiteral("Invalid port number"));
}

void RaisePortAlreadyOpen() { RaiseError(PortAlreadyOpen, QStringLiteral("Port already open")); }

void RaisePortNotOpen() {
    RaiseError(PortNotOpen, QStringLiteral("Operation valid only when the port is open"));
}

}  // namespace SerialPortErrors
