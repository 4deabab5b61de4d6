#pragma once

#include <QSerialPort>

#include "platform/SerialPort.h"

// A real serial device through QSerialPort. It works without the event
// loop: every count and every wait pumps the device itself.
class QtSerialPort : public SerialPort {
  public:
    explicit QtSerialPort(const QString& DeviceName);
    ~QtSerialPort() override;

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
    // Line errors the driver counted (break, framing, overrun, parity, buffer
    // overflow), and DeviceLost once when the device went away.
    QList<int32_t> TakeCommEvents() override;

    const QString& DeviceName() const { return DeviceName_; }
    // False when the device refused the last change of DTR (a pseudo-terminal
    // has no modem lines).
    bool DTRAccepted() const { return DTRAccepted_; }
    // DTR as the device reports it.
    bool DTRLine();

  private:
    void ApplySettings();
    void Pump();
    // Takes the driver's error counts into events; a device that went away
    // closes the port.
    void CheckLine();
    void TakeLineCounts(bool Baseline);
    int32_t KernelOutputQueue() const;
    int64_t MicrosecondsPerByte() const;

    QString DeviceName_;
    QSerialPort Port;
    bool DTRAccepted_ = true;
    QList<int32_t> Events;
    // The driver's counts at the last look; a device without them (a
    // pseudo-terminal) has no line errors to tell.
    bool HasLineCounts = false;
    int LastBreaks = 0, LastFramings = 0, LastOverruns = 0, LastParities = 0, LastOverflows = 0;
};
