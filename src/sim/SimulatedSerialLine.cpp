#include "sim/SimulatedSerialLine.h"

#include <QStringList>
#include <algorithm>

#include "platform/ClockService.h"
#include "platform/ErrObject.h"
#include "platform/SerialDevices.h"

SimulatedSerialLine::SimulatedSerialLine(std::shared_ptr<SimulatedKavlinChip> Chip)
    : Chip_(std::move(Chip)) {
    Chip_->SetReplySink(
        [this](const QByteArray& Bytes, int64_t StartNs) { ScheduleReply(Bytes, StartNs); });
}

void SimulatedSerialLine::InstallAsSimulatedChip(const std::shared_ptr<SimulatedSerialLine>& Line) {
    std::weak_ptr<SimulatedSerialLine> Weak = Line;
    SerialDevices::SetSimulatedDevice(
        [Weak]() -> std::shared_ptr<SerialPort> { return Weak.lock(); });
}

void SimulatedSerialLine::UninstallSimulatedChip() { SerialDevices::SetSimulatedDevice(nullptr); }

int64_t SimulatedSerialLine::ByteNsFor(const QString& Settings) {
    const QStringList Parts = Settings.split(QLatin1Char(','));
    int64_t Baud = Parts.value(0).trimmed().toInt();
    if (Baud <= 0) {
        Baud = 9600;
    }
    const int Data = Parts.value(2).trimmed().toInt();
    const int DataBits = Data >= 5 && Data <= 7 ? Data : 8;
    const QString Parity = Parts.value(1).trimmed().toUpper();
    const int ParityBits = QStringList{QStringLiteral("E"), QStringLiteral("O"),
                                       QStringLiteral("S"), QStringLiteral("M")}
                                   .contains(Parity)
                               ? 1
                               : 0;
    const QString Stop = Parts.value(3).trimmed();
    const int StopHalfBits = Stop == QStringLiteral("2")     ? 4
                             : Stop == QStringLiteral("1.5") ? 3
                                                             : 2;
    // Counted in half bits, for 1.5 stop bits.
    const int64_t HalfBits = 2 * (1 + DataBits + ParityBits) + StopHalfBits;
    return (HalfBits * 1'000'000'000 + Baud) / (2 * Baud);
}

int64_t SimulatedSerialLine::NowNs() const {
    // The line never runs backwards, even if the clock is set back.
    return std::max(ClockService::Instance().MicroTicks() * 1000, LineNs);
}

void SimulatedSerialLine::Record(HostEvent::Kind What, const QByteArray& Bytes) {
    Events.push_back({What, LineNs, Bytes});
}

QList<QByteArray> SimulatedSerialLine::Outputs() const {
    QList<QByteArray> List;
    for (const HostEvent& Event : Events) {
        if (Event.What == HostEvent::Output) {
            List << Event.Bytes;
        }
    }
    return List;
}

void SimulatedSerialLine::ForgetHostEvents() {
    Events.clear();
    Sent.clear();
}

void SimulatedSerialLine::ScheduleReply(const QByteArray& Bytes, int64_t StartNs) {
    const int64_t Start = std::max(StartNs, ChipLineFreeNs);
    ChipLineFreeNs = Start + ByteNs_ * Bytes.size();
    ToHost.push_back({Bytes, ChipLineFreeNs});
}

bool SimulatedSerialLine::NextEvent(int64_t& Ns) const {
    if (ToChip.empty() && ToHost.empty()) {
        return false;
    }
    if (ToHost.empty() || (!ToChip.empty() && ToChip.front().EndsNs <= ToHost.front().ArrivesNs)) {
        Ns = ToChip.front().EndsNs;
    } else {
        Ns = ToHost.front().ArrivesNs;
    }
    return true;
}

void SimulatedSerialLine::ProcessNextEvent() {
    if (!ToChip.empty() && (ToHost.empty() || ToChip.front().EndsNs <= ToHost.front().ArrivesNs)) {
        const Outgoing Byte = ToChip.front();
        ToChip.pop_front();
        LineNs = std::max(LineNs, Byte.EndsNs);
        Chip_->Receive(Byte.Byte, Byte.EndsNs);
        return;
    }
    const Reply Arrived = std::move(ToHost.front());
    ToHost.pop_front();
    LineNs = std::max(LineNs, Arrived.ArrivesNs);
    if (!Open) {
        // A closed port receives nothing.
        return;
    }
    // Beyond the input buffer the bytes are lost, as in an overrun.
    const int32_t Room = std::max<int32_t>(0, InBufferSize_ - InBuffer.size());
    InBuffer.append(Arrived.Bytes.left(Room));
    if (Arrived.Bytes.size() > Room) {
        CommEvents_ << CommEvents::ReceiveOverflow;
    }
}

void SimulatedSerialLine::AdvanceTo(int64_t Ns) {
    // The chip's program runs up to each event first, so that what it reads
    // falls in line with the bytes on the wire, and what it prints meanwhile
    // is on the wire by the time Ns comes.
    while (true) {
        int64_t Next = 0;
        const bool Pending = NextEvent(Next) && Next <= Ns;
        Chip_->RunProgram(Pending ? Next : Ns);
        if (!NextEvent(Next) || Next > Ns) {
            break;
        }
        ProcessNextEvent();
    }
    LineNs = std::max(LineNs, Ns);
    Chip_->LineTimeIs(LineNs);
}

void SimulatedSerialLine::SleepUntil(int64_t Ns) {
    const int64_t Now = ClockService::Instance().MicroTicks() * 1000;
    if (Ns > Now) {
        ClockService::Instance().SleepMicroseconds((Ns - Now + 999) / 1000);
    }
}

void SimulatedSerialLine::DriveAtn(bool Level, int64_t Ns) {
    if (Level != AtnDriven) {
        AtnDriven = Level;
        Chip_->SetAtn(Level, Ns);
    }
}

void SimulatedSerialLine::SetPortOpen(bool Value) {
    AdvanceTo(NowNs());
    if (Value) {
        if (Open) {
            SerialPortErrors::RaisePortAlreadyOpen();
        }
        if (RefuseOpen) {
            SerialPortErrors::RaisePortAlreadyOpen();
        }
        Open = true;
        // The line and the chip's UART take up the rate the host asked for.
        ByteNs_ = ByteNsFor(Settings_);
        Chip_->TransmitByteNs = ByteNs_;
        HostLineFreeNs = LineNs;
        Record(HostEvent::Open);
        DriveAtn(DTREnable_, LineNs);
        return;
    }
    if (!Open) {
        return;
    }
    if (RefuseClose) {
        RaiseError(SerialPortErrors::PortNotOpen, QStringLiteral("The port could not be closed"));
    }
    // Closing waits until what the host sent has left the wire, as the
    // system's close of a serial device does; it then drops what it had
    // received and lowers DTR. A closed port receives nothing, but the chip
    // goes on sending: what comes in after the port is opened again is
    // received, as the program's first print after a start that the host
    // hands over from the download link to the monitor.
    SleepUntil(HostLineFreeNs);
    AdvanceTo(std::max(NowNs(), HostLineFreeNs));
    ToChip.clear();
    InBuffer.clear();
    CommEvents_.clear();
    Open = false;
    Record(HostEvent::Close);
    DriveAtn(false, LineNs);
    // The host is done with the chip for now: its EEPROMs are kept.
    Chip_->SaveEeproms(LineNs);
}

void SimulatedSerialLine::Output(const QByteArray& Bytes) {
    if (!Open) {
        SerialPortErrors::RaisePortNotOpen();
    }
    AdvanceTo(NowNs());
    for (const char Byte : Bytes) {
        HostLineFreeNs = std::max(HostLineFreeNs, LineNs) + ByteNs_;
        ToChip.push_back({static_cast<uint8_t>(Byte), HostLineFreeNs});
    }
    Sent.append(Bytes);
    Record(HostEvent::Output, Bytes);
}

QByteArray SimulatedSerialLine::Input() {
    if (!Open) {
        SerialPortErrors::RaisePortNotOpen();
    }
    AdvanceTo(NowNs());
    QByteArray Taken;
    if (InputLen_ > 0) {
        Taken = InBuffer.left(InputLen_);
        InBuffer.remove(0, Taken.size());
    } else {
        Taken.swap(InBuffer);
    }
    return Taken;
}

int32_t SimulatedSerialLine::InBufferCount() {
    if (!Open) {
        SerialPortErrors::RaisePortNotOpen();
    }
    AdvanceTo(NowNs());
    return InBuffer.size();
}

void SimulatedSerialLine::SetInBufferCount(int32_t Value) {
    if (!Open) {
        SerialPortErrors::RaisePortNotOpen();
    }
    AdvanceTo(NowNs());
    if (Value == 0) {
        InBuffer.clear();
        Record(HostEvent::ClearInput);
    }
}

int32_t SimulatedSerialLine::OutBufferCount() {
    if (!Open) {
        SerialPortErrors::RaisePortNotOpen();
    }
    AdvanceTo(NowNs());
    return std::max<int32_t>(0, static_cast<int32_t>(ToChip.size()) - TransmitFifoBytes);
}

void SimulatedSerialLine::SetDTREnable(bool Value) {
    DTREnable_ = Value;
    if (!Open) {
        return;
    }
    AdvanceTo(NowNs());
    Record(Value ? HostEvent::DtrHigh : HostEvent::DtrLow);
    DriveAtn(Value, LineNs);
}

void SimulatedSerialLine::WaitForInput(int32_t Count, int64_t MaxMicroseconds) {
    if (!Open) {
        SerialPortErrors::RaisePortNotOpen();
    }
    const int64_t Now = NowNs();
    AdvanceTo(Now);
    if (InBuffer.size() >= Count || MaxMicroseconds <= 0) {
        return;
    }
    // Runs the line ahead event by event to the moment the bytes are in, then
    // sleeps until then; nothing else can happen on the line meanwhile.
    const int64_t Limit = Now + MaxMicroseconds * 1000;
    int64_t Reached = Limit;
    int64_t Next = 0;
    while (NextEvent(Next) && Next <= Limit) {
        ProcessNextEvent();
        if (InBuffer.size() >= Count) {
            Reached = Next;
            break;
        }
    }
    LineNs = std::max(LineNs, Reached);
    Chip_->LineTimeIs(LineNs);
    SleepUntil(Reached);
}

void SimulatedSerialLine::WaitForOutputDrain(int64_t MaxMicroseconds) {
    if (!Open) {
        SerialPortErrors::RaisePortNotOpen();
    }
    const int64_t Now = NowNs();
    AdvanceTo(Now);
    const int32_t Fifo = std::max<int32_t>(0, TransmitFifoBytes);
    if (static_cast<int32_t>(ToChip.size()) <= Fifo || MaxMicroseconds <= 0) {
        return;
    }
    // Drained when what is left fits the transmit FIFO.
    const int64_t Drained = ToChip[ToChip.size() - 1 - Fifo].EndsNs;
    const int64_t Until = std::min(Drained, Now + MaxMicroseconds * 1000);
    AdvanceTo(Until);
    SleepUntil(Until);
}

void SimulatedSerialLine::PressResetButton() {
    AdvanceTo(NowNs());
    Chip_->PressReset(LineNs);
}

void SimulatedSerialLine::ProgramPrints(const QByteArray& Text) {
    AdvanceTo(NowNs());
    Chip_->Print(Text, LineNs);
}

void SimulatedSerialLine::LineEvent(int32_t Event) {
    if (Open) {
        CommEvents_ << Event;
    }
}

QList<int32_t> SimulatedSerialLine::TakeCommEvents() {
    QList<int32_t> Taken;
    Taken.swap(CommEvents_);
    return Taken;
}

void SimulatedSerialLine::CatchUp() { AdvanceTo(NowNs()); }
