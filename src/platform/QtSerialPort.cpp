#include "platform/QtSerialPort.h"

#include <linux/serial.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QStringList>
#include <QThread>
#include <algorithm>

#include "platform/ErrObject.h"

QtSerialPort::QtSerialPort(const QString& DeviceName) : DeviceName_(DeviceName) {}

QtSerialPort::~QtSerialPort() {
    if (Port.isOpen()) {
        Port.close();
    }
}

bool QtSerialPort::PortOpen() const { return Port.isOpen(); }

void QtSerialPort::SetPortOpen(bool Value) {
    if (!Value) {
        if (Port.isOpen()) {
            Port.close();
        }
        return;
    }
    if (Port.isOpen()) {
        SerialPortErrors::RaisePortAlreadyOpen();
    }
    if (!QFileInfo::exists(DeviceName_)) {
        SerialPortErrors::RaiseInvalidPortNumber();
    }
    Port.setPortName(DeviceName_);
    if (!Port.open(QIODevice::ReadWrite)) {
        const QSerialPort::SerialPortError Cause = Port.error();
        Port.clearError();
        if (Cause == QSerialPort::DeviceNotFoundError) {
            SerialPortErrors::RaiseInvalidPortNumber();
        }
        if (Cause == QSerialPort::PermissionError) {
            // Held by another program, or not ours to open.
            RaiseError(SerialPortErrors::PortAlreadyOpen,
                       QStringLiteral("Port already open or not permitted: ") + DeviceName_);
        }
        SerialPortErrors::RaisePortAlreadyOpen();
    }
    ApplySettings();
    Events.clear();
    TakeLineCounts(true);
    // Opening raises DTR, and DTR is the chip's ATN line: it goes straight
    // back to what the object holds, False unless told otherwise.
    SetDTREnable(DTREnable_);
}

void QtSerialPort::ApplySettings() {
    const QStringList Parts = Settings_.split(QLatin1Char(','));
    const qint32 Baud = Parts.value(0).trimmed().toInt();
    Port.setBaudRate(Baud > 0 ? Baud : 9600);
    const QString Parity = Parts.value(1).trimmed().toUpper();
    Port.setParity(Parity == QStringLiteral("E")   ? QSerialPort::EvenParity
                   : Parity == QStringLiteral("O") ? QSerialPort::OddParity
                   : Parity == QStringLiteral("S") ? QSerialPort::SpaceParity
                   : Parity == QStringLiteral("M") ? QSerialPort::MarkParity
                                                   : QSerialPort::NoParity);
    const int Bits = Parts.value(2).trimmed().toInt();
    Port.setDataBits(Bits == 5   ? QSerialPort::Data5
                     : Bits == 6 ? QSerialPort::Data6
                     : Bits == 7 ? QSerialPort::Data7
                                 : QSerialPort::Data8);
    const QString Stop = Parts.value(3).trimmed();
    Port.setStopBits(Stop == QStringLiteral("2")     ? QSerialPort::TwoStop
                     : Stop == QStringLiteral("1.5") ? QSerialPort::OneAndHalfStop
                                                     : QSerialPort::OneStop);
    Port.setFlowControl(Handshaking_ == 1   ? QSerialPort::SoftwareControl
                        : Handshaking_ >= 2 ? QSerialPort::HardwareControl
                                            : QSerialPort::NoFlowControl);
    Port.setReadBufferSize(InBufferSize_ > 0 ? InBufferSize_ : 0);
    Port.clearError();
}

void QtSerialPort::Pump() {
    if (!Port.isOpen()) {
        return;
    }
    Port.flush();
    // A zero wait reads what the device holds without blocking.
    Port.waitForReadyRead(0);
    CheckLine();
}

void QtSerialPort::CheckLine() {
    if (Port.error() == QSerialPort::ResourceError) {
        // The device is gone: the port is closed once, so nothing polls a
        // dead device again.
        Port.close();
        Events << CommEvents::DeviceLost;
    }
    Port.clearError();
    if (Port.isOpen()) {
        TakeLineCounts(false);
    }
}

void QtSerialPort::TakeLineCounts(bool Baseline) {
    serial_icounter_struct Counts{};
    if (Port.handle() < 0 || ::ioctl(Port.handle(), TIOCGICOUNT, &Counts) != 0) {
        HasLineCounts = false;
        return;
    }
    if (!Baseline && HasLineCounts) {
        if (Counts.brk != LastBreaks) Events << CommEvents::Break;
        if (Counts.frame != LastFramings) Events << CommEvents::Framing;
        if (Counts.overrun != LastOverruns) Events << CommEvents::Overrun;
        if (Counts.buf_overrun != LastOverflows) Events << CommEvents::ReceiveOverflow;
        if (Counts.parity != LastParities) Events << CommEvents::Parity;
    }
    HasLineCounts = true;
    LastBreaks = Counts.brk;
    LastFramings = Counts.frame;
    LastOverruns = Counts.overrun;
    LastOverflows = Counts.buf_overrun;
    LastParities = Counts.parity;
}

QList<int32_t> QtSerialPort::TakeCommEvents() {
    Pump();
    QList<int32_t> Taken;
    Taken.swap(Events);
    return Taken;
}

void QtSerialPort::Output(const QByteArray& Bytes) {
    if (!Port.isOpen()) {
        SerialPortErrors::RaisePortNotOpen();
    }
    Port.write(Bytes);
    Port.flush();
    Port.clearError();
}

QByteArray QtSerialPort::Input() {
    if (!Port.isOpen()) {
        SerialPortErrors::RaisePortNotOpen();
    }
    Pump();
    return InputLen_ > 0 ? Port.read(InputLen_) : Port.readAll();
}

int32_t QtSerialPort::InBufferCount() {
    if (!Port.isOpen()) {
        SerialPortErrors::RaisePortNotOpen();
    }
    Pump();
    return static_cast<int32_t>(Port.bytesAvailable());
}

void QtSerialPort::SetInBufferCount(int32_t Value) {
    if (!Port.isOpen()) {
        SerialPortErrors::RaisePortNotOpen();
    }
    if (Value == 0) {
        Pump();
        Port.readAll();
        Port.clear(QSerialPort::Input);
        Port.clearError();
    }
}

int32_t QtSerialPort::KernelOutputQueue() const {
    int Queued = 0;
    if (Port.handle() >= 0 && ::ioctl(Port.handle(), TIOCOUTQ, &Queued) == 0) {
        return std::max(Queued, 0);
    }
    return 0;
}

int32_t QtSerialPort::OutBufferCount() {
    if (!Port.isOpen()) {
        SerialPortErrors::RaisePortNotOpen();
    }
    Port.flush();
    Port.clearError();
    // Bytes still in the driver count as not sent: the chip link times the
    // EEPROM's write cycle by the line being busy.
    return static_cast<int32_t>(Port.bytesToWrite()) + KernelOutputQueue();
}

void QtSerialPort::SetDTREnable(bool Value) {
    DTREnable_ = Value;
    if (Port.isOpen()) {
        DTRAccepted_ = Port.setDataTerminalReady(Value);
        Port.clearError();
    }
}

bool QtSerialPort::DTRLine() {
    const bool Line = (Port.pinoutSignals() & QSerialPort::DataTerminalReadySignal) != 0;
    Port.clearError();
    return Line;
}

int64_t QtSerialPort::MicrosecondsPerByte() const {
    const qint32 Baud = std::max<qint32>(Port.baudRate(), 1);
    return std::max<int64_t>(1, 10'000'000 / Baud);
}

void QtSerialPort::WaitForInput(int32_t Count, int64_t MaxMicroseconds) {
    if (!Port.isOpen()) {
        SerialPortErrors::RaisePortNotOpen();
    }
    QElapsedTimer Elapsed;
    Elapsed.start();
    for (;;) {
        Pump();
        if (Port.bytesAvailable() >= Count) {
            return;
        }
        const int64_t LeftUs = MaxMicroseconds - Elapsed.nsecsElapsed() / 1000;
        if (LeftUs <= 0) {
            return;
        }
        Port.waitForReadyRead(static_cast<int>(std::max<int64_t>(1, LeftUs / 1000)));
        Port.clearError();
    }
}

void QtSerialPort::WaitForOutputDrain(int64_t MaxMicroseconds) {
    if (!Port.isOpen()) {
        SerialPortErrors::RaisePortNotOpen();
    }
    QElapsedTimer Elapsed;
    Elapsed.start();
    for (;;) {
        const int64_t LeftUs = MaxMicroseconds - Elapsed.nsecsElapsed() / 1000;
        if (LeftUs <= 0) {
            return;
        }
        Port.flush();
        if (Port.bytesToWrite() > 0) {
            Port.waitForBytesWritten(static_cast<int>(std::max<int64_t>(1, LeftUs / 1000)));
            Port.clearError();
            continue;
        }
        const int32_t Queued = KernelOutputQueue();
        if (Queued == 0) {
            return;
        }
        // The driver tells no one when its queue empties: sleep about as long
        // as the line needs for what is left.
        QThread::usleep(static_cast<unsigned long>(
            std::min<int64_t>(LeftUs, std::max<int64_t>(1, Queued * MicrosecondsPerByte()))));
    }
}
