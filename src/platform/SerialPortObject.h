#pragma once

#include <memory>

#include "platform/SerialPort.h"

// The serial port object a window owns. It keeps the properties while the
// port is closed and, when opened, reaches the device of its port number
// (see SerialDevices): a real serial device, or the simulated chip.
class SerialPortObject : public SerialPort {
  public:
    ~SerialPortObject() override;

    void SetCommPort(int16_t Value) override;
    bool PortOpen() const override;
    void SetPortOpen(bool Value) override;
    void Output(const QByteArray& Bytes) override;
    QByteArray Input() override;
    int32_t InBufferCount() override;
    void SetInBufferCount(int32_t Value) override;
    int32_t OutBufferCount() override;
    void SetDTREnable(bool Value) override;
    void WaitForInput(int32_t Count, int64_t MaxMicroseconds) override;
    void WaitForOutputDrain(int64_t MaxMicroseconds) override;
    // Also after the device closed itself, so that its loss is told.
    QList<int32_t> TakeCommEvents() override;

    // The device behind an open port; nothing while closed.
    SerialPort* Device() const { return Device_.get(); }

  private:
    SerialPort& OpenDevice();
    std::shared_ptr<SerialPort> Device_;
};
