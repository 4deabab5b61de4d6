#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <cstdint>

// One serial port object, with what the chip link and the monitor port need
// of it: the port number, the line settings, open and close, queueing bytes
// out, taking bytes in, the two buffer counts and the DTR line. Every byte
// value passes unchanged. The settings are plain properties; a port takes
// them up when it opens.
class SerialPort {
  public:
    virtual ~SerialPort() = default;

    int16_t CommPort() const { return CommPort_; }
    virtual void SetCommPort(int16_t Value) { CommPort_ = Value; }
    // "115200,N,8,1": baud rate, parity letter, data bits, stop bits.
    const QString& Settings() const { return Settings_; }
    void SetSettings(const QString& Value) { Settings_ = Value; }
    // 0 none, 1 XON/XOFF, 2 RTS/CTS, 3 both.
    int16_t Handshaking() const { return Handshaking_; }
    void SetHandshaking(int16_t Value) { Handshaking_ = Value; }
    int16_t InBufferSize() const { return InBufferSize_; }
    void SetInBufferSize(int16_t Value) { InBufferSize_ = Value; }
    int16_t OutBufferSize() const { return OutBufferSize_; }
    void SetOutBufferSize(int16_t Value) { OutBufferSize_ = Value; }
    // Bytes that one Input takes; 0 takes all.
    int16_t InputLen() const { return InputLen_; }
    void SetInputLen(int16_t Value) { InputLen_ = Value; }
    const QString& ParityReplace() const { return ParityReplace_; }
    void SetParityReplace(const QString& Value) { ParityReplace_ = Value; }

    virtual bool PortOpen() const = 0;
    // Opens or closes; a failure raises a run-time error.
    virtual void SetPortOpen(bool Value) = 0;
    // Queues bytes for sending and returns at once.
    virtual void Output(const QByteArray& Bytes) = 0;
    // Takes the bytes received so far (InputLen of them at most, 0 all).
    virtual QByteArray Input() = 0;
    virtual int32_t InBufferCount() = 0;
    // Only 0 is meaningful: the bytes waiting are discarded.
    virtual void SetInBufferCount(int32_t Value) = 0;
    // Bytes queued that have not yet left on the line.
    virtual int32_t OutBufferCount() = 0;
    bool DTREnable() const { return DTREnable_; }
    // Raises or lowers DTR at once when the port is open; a closed port keeps
    // the value for its next opening.
    virtual void SetDTREnable(bool Value) = 0;

    // Waits, without spinning, until at least Count bytes are waiting or the
    // time has passed; it may return earlier. A caller polls the counts again.
    virtual void WaitForInput(int32_t Count, int64_t MaxMicroseconds) = 0;
    // Waits the same way until nothing is left to send.
    virtual void WaitForOutputDrain(int64_t MaxMicroseconds) = 0;

    // The line's events (CommEvents) seen since the last call, oldest first.
    // The monitor's poll takes them, as the old control's OnComm gave them;
    // a device without such events has none.
    virtual QList<int32_t> TakeCommEvents() { return {}; }

  protected:
    int16_t CommPort_ = 1;
    QString Settings_ = QStringLiteral("9600,N,8,1");
    int16_t Handshaking_ = 0;
    int16_t InBufferSize_ = 1024;
    int16_t OutBufferSize_ = 512;
    int16_t InputLen_ = 0;
    QString ParityReplace_ = QStringLiteral("?");
    bool DTREnable_ = false;
};

// The line events, with the old communications control's numbers; DeviceLost
// is ours: the device went away under an open port (a USB adapter pulled),
// and the port has closed itself.
namespace CommEvents {
constexpr int32_t Break = 1001;
constexpr int32_t Framing = 1004;
constexpr int32_t Overrun = 1006;
constexpr int32_t ReceiveOverflow = 1008;
constexpr int32_t Parity = 1009;
constexpr int32_t TransmitFull = 1010;
constexpr int32_t ControlBlock = 1011;
constexpr int32_t DeviceLost = 1100;
}  // namespace CommEvents

// The run-time errors of a serial port object, with the numbers the old
// communications control gave them.
namespace SerialPortErrors {
constexpr int32_t InvalidPortNumber = 8002;
constexpr int32_t PortAlreadyOpen = 8005;
constexpr int32_t PortNotOpen = 8018;
[[noreturn]] void RaiseInvalidPortNumber();
[[noreturn]] void RaisePortAlreadyOpen();
[[noreturn]] void RaisePortNotOpen();
}  // namespace SerialPortErrors
