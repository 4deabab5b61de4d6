#pragma once

#include <QList>
#include <deque>
#include <memory>

#include "platform/SerialPort.h"
#include "sim/SimulatedKavlinChip.h"

// The serial line between the host and a simulated chip, as a serial port
// object. It is paced as the wire is, at the rate and framing the host set
// on the port when it opened it (both ways: the chip's UART runs at the same
// rate), on the clock of the clock-and-pump service: in a test that is
// virtual time, in the program real time. A byte reaches the chip when its
// stop bit ends; a reply of the chip reaches the host's input buffer whole,
// once its last byte is in, as a serial adapter hands over what came in one
// go.
class SimulatedSerialLine : public SerialPort {
  public:
    // 10 bits at 115200 baud, in nanoseconds: the download link's rate.
    static constexpr int64_t ByteNs = 86'806;
    // One byte on the wire with the port's settings ("19200,E,7,2"): a start
    // bit, the data bits, a parity bit unless N, the stop bits, read as a
    // hardware port reads them (a rate that is no number is 9600).
    static int64_t ByteNsFor(const QString& Settings);
    // The byte time the line runs at, taken up when the port opens.
    int64_t LineByteNs() const { return ByteNs_; }

    explicit SimulatedSerialLine(
        std::shared_ptr<SimulatedKavlinChip> Chip = std::make_shared<SimulatedKavlinChip>());

    // Makes this line the device of the "simulated chip" port entry.
    static void InstallAsSimulatedChip(const std::shared_ptr<SimulatedSerialLine>& Line);
    static void UninstallSimulatedChip();

    bool PortOpen() const override { return Open; }
    void SetPortOpen(bool Value) override;
    void Output(const QByteArray& Bytes) override;
    QByteArray Input() override;
    int32_t InBufferCount() override;
    void SetInBufferCount(int32_t Value) override;
    int32_t OutBufferCount() override;
    void SetDTREnable(bool Value) override;
    void WaitForInput(int32_t Count, int64_t MaxMicroseconds) override;
    void WaitForOutputDrain(int64_t MaxMicroseconds) override;
    QList<int32_t> TakeCommEvents() override;

    SimulatedKavlinChip& Chip() { return *Chip_; }
    // The user presses the board's reset button now.
    void PressResetButton();
    // The chip's running program prints the text now; it reaches the host's
    // input buffer at the line's pace.
    void ProgramPrints(const QByteArray& Text);
    // Brings the line and the chip's program up to the clock's time, for a
    // window that shows the chip while nobody reads the port.
    void CatchUp();
    // The line suffers an event (CommEvents: a break, a framing error, ...)
    // that an open port reports.
    void LineEvent(int32_t Event);

    // What the host did on the line, for a test to read back.
    struct HostEvent {
        enum Kind { Output, DtrHigh, DtrLow, ClearInput, Open, Close };
        Kind What;
        int64_t Ns;
        QByteArray Bytes;
    };
    const std::vector<HostEvent>& HostEvents() const { return Events; }
    // Every byte the host sent, in order.
    const QByteArray& SentBytes() const { return Sent; }
    // The bytes of each Output, in order.
    QList<QByteArray> Outputs() const;
    void ForgetHostEvents();
    // When the last byte the host queued has left, on the service's clock in
    // nanoseconds.
    int64_t LastByteEndsNs() const { return HostLineFreeNs; }

    // The last bytes to go out wait in the UART's transmit FIFO, 16 deep as
    // in a 16550, and no longer count in OutBufferCount: a host that drains
    // the buffer finds the line still busy for up to 16 byte times.
    int32_t TransmitFifoBytes = 16;

    // The port itself fails to open or to close.
    bool RefuseOpen = false;
    bool RefuseClose = false;

  private:
    struct Reply {
        QByteArray Bytes;
        int64_t ArrivesNs;
    };
    struct Outgoing {
        uint8_t Byte;
        int64_t EndsNs;
    };

    int64_t NowNs() const;
    void Record(HostEvent::Kind What, const QByteArray& Bytes = QByteArray());
    bool NextEvent(int64_t& Ns) const;
    void ProcessNextEvent();
    void AdvanceTo(int64_t Ns);
    void SleepUntil(int64_t Ns);
    void ScheduleReply(const QByteArray& Bytes, int64_t StartNs);
    void DriveAtn(bool Level, int64_t Ns);

    std::shared_ptr<SimulatedKavlinChip> Chip_;
    bool Open = false;
    bool AtnDriven = false;
    std::deque<Outgoing> ToChip;
    std::deque<Reply> ToHost;
    QByteArray InBuffer;
    int64_t LineNs = 0;
    int64_t ByteNs_ = ByteNs;
    int64_t HostLineFreeNs = 0;
    int64_t ChipLineFreeNs = 0;
    std::vector<HostEvent> Events;
    QList<int32_t> CommEvents_;
    QByteArray Sent;
};
