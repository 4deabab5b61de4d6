#include "link/KavlinControl.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "chip/UtilitiesKGUI.h"
#include "platform/ClockService.h"
#include "platform/ErrObject.h"
#include "platform/SerialPortObject.h"

namespace {
constexpr uint8_t ReadRamCommand = 0x20;
constexpr uint8_t ReadInternalEEpromCommand = 0x40;
constexpr uint8_t WriteRamCommand = 0x24;
constexpr uint8_t WriteInternalEEpromCommand = 0x44;
constexpr int32_t EEpromPage = 64;
constexpr int32_t ReadBlockSize = 128;
// The longest a wait goes without giving the user interface a turn.
constexpr int64_t YieldSliceUs = 20'000;

ClockService& Clock() { return ClockService::Instance(); }

QByteArray Bytes(std::initializer_list<uint8_t> List) {
    QByteArray Result;
    for (const uint8_t Byte : List) {
        Result.append(static_cast<char>(Byte));
    }
    return Result;
}

const QByteArray& WriteEnableFrame() {
    static const QByteArray Frame = Bytes({0x80, 0x01, 0x06, 0x00});
    return Frame;
}

const QByteArray& ClearProtectFrame() {
    static const QByteArray Frame = Bytes({0x80, 0x02, 0x01, 0x00, 0x00});
    return Frame;
}

const QByteArray& SetProtectFrame() {
    static const QByteArray Frame = Bytes({0x80, 0x02, 0x01, 0x0C, 0x00});
    return Frame;
}

// The SPI device wants its address high byte first.
QByteArray BeginReadFrame(int32_t Address) {
    return Bytes(
        {0x80, 0x03, 0x03, static_cast<uint8_t>(Address >> 8), static_cast<uint8_t>(Address)});
}

QByteArray PageWriteFrame(int32_t Address, const QByteArray& Data) {
    QByteArray Frame = Bytes({0x80, static_cast<uint8_t>(Data.size() + 3), 0x02,
                              static_cast<uint8_t>(Address >> 8), static_cast<uint8_t>(Address)});
    Frame.append(Data);
    Frame.append('\0');
    return Frame;
}

const QByteArray& ReadBlockFrame() {
    static const QByteArray Frame = Bytes({0x80, 0x80}) + QByteArray(ReadBlockSize, '\0');
    return Frame;
}

QByteArray ReadTailFrame(int32_t Count) {
    return Bytes({0x80, static_cast<uint8_t>(Count)}) + QByteArray(Count, '\0') +
           QByteArray(2, '\0');
}

// A byte of a reply that may not be there: taking a missing one is a
// run-time error, as indexing past the end of a string is.
uint8_t ReplyByte(const QByteArray& Reply, int Index) {
    if (Index < 0 || Index >= Reply.size()) {
        throw std::out_of_range("reply too short");
    }
    return static_cast<uint8_t>(Reply.at(Index));
}

// The progress bar's values are single precision.
int Single(double Value) { return static_cast<int>(static_cast<float>(Value)); }
}  // namespace

KavlinControl::KavlinControl(QWidget* Parent)
    : QWidget(Parent), Port(std::make_unique<SerialPortObject>()) {
    txtStatus = new QLineEdit(this);
    txtStatus->setObjectName(QStringLiteral("txtStatus"));
    txtStatus->setReadOnly(true);
    PBar = new QProgressBar(this);
    PBar->setObjectName(QStringLiteral("PBar"));
    PBar->setTextVisible(false);
    PBar->hide();
    txtStatus->setText(QStringLiteral("Chip Status Window"));
    // The line is fixed: nothing but the port number ever changes.
    Port->SetSettings(QStringLiteral("115200,N,8,1"));
    Port->SetHandshaking(0);
    Port->SetInBufferSize(4096);
    Port->SetOutBufferSize(4096);
    Port->SetInputLen(0);
    Port->SetParityReplace(QStringLiteral("?"));
    Port->SetDTREnable(false);
}

KavlinControl::~KavlinControl() {
    txtStatus->clear();
    try {
        Port->SetPortOpen(false);
    } catch (...) {
        // Going away: a port that will not close has nobody left to tell.
    }
}

void KavlinControl::resizeEvent(QResizeEvent* Event) {
    QWidget::resizeEvent(Event);
    txtStatus->setGeometry(rect());
    PBar->setGeometry(rect());
}

void KavlinControl::PCLink(bool Value) { PCLinkActive_ = Value; }

void KavlinControl::Text(const QString& NewText) { txtStatus->setText(NewText); }

int16_t KavlinControl::CommPort() const { return Port->CommPort(); }

void KavlinControl::SetCommPort(int16_t NewCommPort) {
    Port->SetCommPort(NewCommPort);
    emit PropertyChanged(QStringLiteral("CommPort"));
}

bool KavlinControl::PortOpen() const { return Port->PortOpen(); }

void KavlinControl::OpenPort(bool OpenThePort, DownloaderStatusTypes& Status) {
    try {
        Port->SetPortOpen(OpenThePort);
        Status = dlOK;
    } catch (...) {
        TakeCurrentException();
        Status = OpenThePort ? dlCannotOpenPort : dlCannotClosePort;
    }
}

// ---- Primitives ----

void KavlinControl::WaitForOutputDrain() {
    while (Port->OutBufferCount() > 0) {
        Clock().DoEvents();
        Port->WaitForOutputDrain(YieldSliceUs);
    }
}

void KavlinControl::ClearInput() { Port->SetInBufferCount(0); }

bool KavlinControl::PollForInput(int32_t Count, int64_t StartMs, int64_t LimitMs) {
    for (;;) {
        if (Port->InBufferCount() >= Count) {
            return true;
        }
        if (Clock().TickCount() > StartMs + LimitMs) {
            return false;
        }
        Clock().DoEvents();
        const int64_t LeftMs = StartMs + LimitMs + 1 - Clock().TickCount();
        Port->WaitForInput(Count, std::clamp<int64_t>(LeftMs * 1000, 1000, YieldSliceUs));
    }
}

void KavlinControl::PulseATN() {
    Port->SetDTREnable(true);
    UtilitiesKGUI::Sleep(4);
    Port->SetDTREnable(false);
    UtilitiesKGUI::Sleep(4);
}

void KavlinControl::PulseATNThrice() {
    PulseATN();
    PulseATN();
    PulseATN();
}

void KavlinControl::SendSyncBytes() {
    Port->Output(Bytes({0x01}));
    WaitForOutputDrain();
    UtilitiesKGUI::Sleep(4);
    ClearInput();
    // The second sync byte is not waited for: its answer is what Halt polls.
    Port->Output(Bytes({0x01}));
}

void KavlinControl::SendFiller() {
    // 116 bytes keep the line busy for about 10 ms, the external EEPROM's
    // write cycle; the monitor passes over 0x00 in command position.
    Port->Output(QByteArray(116, '\0'));
    WaitForOutputDrain();
}

void KavlinControl::SendShortFiller() {
    Port->Output(QByteArray(58, '\0'));
    WaitForOutputDrain();
}

void KavlinControl::RaiseLinkError(int32_t Code) {
    LastErrorCode_ = Code;
    QString Description;
    if (Code == NoCommunicationsError) {
        Description = QStringLiteral("No Communications");
        Text(Description);
    } else if (Code == WriteChecksumError) {
        Description = QStringLiteral("RAM Write Chksum Bad");
        Text(Description);
    }
    RaiseError(static_cast<int32_t>(ErrorBase + static_cast<uint32_t>(Code)), Description);
}

void KavlinControl::ShowATNCount(int32_t Count) {
    Text(QStringLiteral("ATN ") + QString::number(Count));
}

void KavlinControl::ShowRetryCount(int32_t Count) {
    Text(QStringLiteral("Retry ") + QString::number(Count));
}

void KavlinControl::SetDebugText(const QString& NewText) {
    if (DebugWindow) {
        DebugWindow(NewText);
    }
}

QByteArray KavlinControl::BlockFrame(uint8_t Command, int32_t StartingAddress, int32_t Length) {
    // Length and address go low byte first in the monitor's own frames.
    return Bytes({Command, static_cast<uint8_t>(Length), static_cast<uint8_t>(Length >> 8),
                  static_cast<uint8_t>(StartingAddress),
                  static_cast<uint8_t>(StartingAddress >> 8)});
}

// ---- Halt, continue, reset ----

void KavlinControl::StopChip() {
    Text(QStringLiteral("Stopping Kavlin"));
    txtStatus->repaint();
    Clock().DoEvents();
    for (int32_t Attempt = 1; Attempt <= 20; ++Attempt) {
        const double T0 = Clock().Timer();
        if (!PCLinkActive_) {
            PulseATNThrice();
        }
        SendSyncBytes();
        // The pulses and the sync bytes count inside the 0.195 seconds.
        bool Replied = false;
        for (;;) {
            if (Port->InBufferCount() >= 1) {
                Replied = true;
                break;
            }
            const double Elapsed = std::fabs(Clock().Timer() - T0);
            if (Elapsed > 0.195) {
                break;
            }
            Clock().DoEvents();
            const double LeftSeconds = 0.195 - Elapsed;
            Port->WaitForInput(
                1, std::clamp<int64_t>(static_cast<int64_t>(LeftSeconds * 1e6) + 1000, 1000,
                                       YieldSliceUs));
        }
        if (Replied) {
            const QByteArray Reply = Port->Input();
            if (Reply.size() == 1 && static_cast<uint8_t>(Reply.at(0)) == 0x6C) {
                ++AckCount_;
                Text(QStringLiteral("ACK Received ") + QString::number(AckCount_));
                return;
            }
            // Anything else, even 0x6C with more behind it, is a failed try.
            UtilitiesKGUI::Sleep(150);
        }
        ClearInput();
        ShowRetryCount(Attempt);
    }
    ChipIsHalted_ = true;
    RaiseLinkError(NoCommunicationsError);
}

void KavlinControl::HaltKavlin(DownloaderStatusTypes& Status) {
    try {
        StopChip();
        ChipIsHalted_ = true;
        Status = dlOK;
    } catch (...) {
        TakeCurrentException();
        Status = dlNoCommunications;
    }
}

void KavlinControl::ResetKavlin(DownloaderStatusTypes& Status) {
    ReleaseChip(Bytes({0x10, 0xD6, 0x00}), Status);
}

void KavlinControl::ContinueKavlin(DownloaderStatusTypes& Status) {
    ReleaseChip(Bytes({0x10, 0x00}), Status);
}

void KavlinControl::ReleaseChip(const QByteArray& Request, DownloaderStatusTypes& Status) {
    if (!ChipIsHalted_) {
        Status = dlNotHalted;
        return;
    }
    try {
        Port->Output(Request);
        WaitForOutputDrain();
        ClearInput();
        ChipIsHalted_ = false;
        Status = dlOK;
    } catch (...) {
        TakeCurrentException();
        Status = dlResetFailed;
    }
}

// ---- RAM and internal EEPROM ----

void KavlinControl::ReadBlock(uint8_t Command, int32_t StartingAddress, int32_t Length,
                              ByteBlock& Block) {
    if (Length < INT16_MIN || Length > INT16_MAX) {
        RaiseError(6, QStringLiteral("Overflow"));
    }
    int32_t Failures = 0;
    for (;;) {
        ClearInput();
        Port->Output(BlockFrame(Command, StartingAddress, Length));
        const int64_t T0 = Clock().TickCount();
        if (PollForInput(Length + 1, T0, 2000)) {
            const QByteArray Reply = Port->Input();
            uint8_t Sum = 0;
            for (int32_t Index = 0; Index < Length + 1; ++Index) {
                Sum = static_cast<uint8_t>(Sum + ReplyByte(Reply, Index));
            }
            if (Sum == 0) {
                for (int32_t Index = 0; Index < Length; ++Index) {
                    Block.at(StartingAddress + Index) = ReplyByte(Reply, Index);
                }
                return;
            }
            // Only silence ends a read: a wrong sum is tried again without
            // bound, and Failures is not looked at here.
            ++Failures;
            Text(QStringLiteral("Checksum Bad"));
            continue;
        }
        Text(QStringLiteral("String Mismatch"));
        ++Failures;
        Clock().DoEvents();
        if (Failures > 3) {
            break;
        }
    }
    Err().Clear();
    Text(QStringLiteral("Bad Read"));
    ChipIsHalted_ = true;
}

void KavlinControl::WriteBlock(uint8_t Command, int32_t StartingAddress, int32_t Length,
                               ByteBlock& Block) {
    const auto TimedOut = [this]() {
        Err().Clear();
        Text(QStringLiteral("4301"));
        ChipIsHalted_ = true;
        RaiseLinkError(NoCommunicationsError);
    };
    uint8_t Sum = 0;
    QByteArray Data;
    ClearInput();
    Port->Output(BlockFrame(Command, StartingAddress, Length));
    for (int32_t Address = StartingAddress; Address < StartingAddress + Length; ++Address) {
        const uint8_t Byte = Block.at(Address);
        Sum = static_cast<uint8_t>(Sum + Byte);
        Data.append(static_cast<char>(Byte));
        if ((Command & 0x40) != 0) {
            // One byte at a time; its acknowledgement stays in the buffer
            // until the next one is sent.
            ClearInput();
            Port->Output(QByteArray(1, static_cast<char>(Byte)));
            if (!PollForInput(1, Clock().TickCount(), 2000)) {
                TimedOut();
            }
        }
    }
    if ((Command & 0x20) != 0) {
        Port->Output(Data);
    }
    WaitForOutputDrain();
    if (!PollForInput(1, Clock().TickCount(), 2000)) {
        TimedOut();
    }
    // Taken as it stands: on the EEPROM path the first byte is the last
    // acknowledgement and the checksum must already be behind it.
    const QByteArray Reply = Port->Input();
    const uint8_t Checksum = ReplyByte(Reply, (Command & 0x40) != 0 ? 1 : 0);
    if (Checksum == static_cast<uint8_t>(-Sum)) {
        return;
    }
    Err().Clear();
    ChipIsHalted_ = true;
    RaiseLinkError(WriteChecksumError);
}

void KavlinControl::ReadRam(int32_t StartingAddress, int32_t Length, ByteBlock& Block) {
    ReadBlock(ReadRamCommand, StartingAddress, Length, Block);
}

void KavlinControl::ReadInternalEEprom(int32_t StartingAddress, int32_t Length, ByteBlock& Block) {
    ReadBlock(ReadInternalEEpromCommand, StartingAddress, Length, Block);
}

void KavlinControl::WriteRam(int32_t StartingAddress, int32_t Length, ByteBlock& Block) {
    WriteBlock(WriteRamCommand, StartingAddress, Length, Block);
}

void KavlinControl::WriteInternalEEprom(int32_t StartingAddress, int32_t Length, ByteBlock& Block,
                                        DownloaderStatusTypes& Status) {
    try {
        WriteBlock(WriteInternalEEpromCommand, StartingAddress, Length, Block);
        Status = dlOK;
    } catch (...) {
        TakeCurrentException();
        // By the last link error, which is never cleared: an unrelated error
        // after an earlier link error is reported as that one.
        if (LastErrorCode_ == NoCommunicationsError) {
            Status = dlNoCommunications;
        } else if (LastErrorCode_ == WriteChecksumError) {
            Status = dlChecksumFailed;
        } else {
            Status = dlWriteFailed;
        }
    }
}

// ---- External EEPROM ----

void KavlinControl::SetUpProgressBar(int32_t StartingAddress, int32_t Length) {
    // The large maximum first keeps Min below Max while the range moves.
    PBar->setMinimum(0);
    PBar->setMaximum(100000000);
    PBar->setMinimum(Single(StartingAddress));
    PBar->setMaximum(Single(static_cast<double>(StartingAddress) + Length + 1));
}

QByteArray KavlinControl::ReadWholeBlocks(int32_t StartingAddress, int32_t& Remaining) {
    QByteArray Result;
    int32_t Current = StartingAddress;
    while (Remaining >= ReadBlockSize) {
        Port->Output(ReadBlockFrame());
        WaitForOutputDrain();
        Result.append(Port->Input());
        Remaining -= ReadBlockSize;
        Current += ReadBlockSize;
        PBar->setValue(Single(Current));
    }
    return Result;
}

void KavlinControl::ReadExternalEEprom(int32_t StartingAddress, int32_t Length, ByteBlock& Block) {
    SetUpProgressBar(StartingAddress, Length);
    PBar->setValue(Single(StartingAddress));
    PBar->show();

    Port->Output(BeginReadFrame(StartingAddress));
    WaitForOutputDrain();
    UtilitiesKGUI::Sleep(2);
    // What came back while the read was set up is not data.
    ClearInput();

    int32_t Remaining = Length;
    QByteArray Result = ReadWholeBlocks(StartingAddress, Remaining);
    if (Remaining > 0) {
        Port->Output(ReadTailFrame(Remaining));
        WaitForOutputDrain();
    }
    UtilitiesKGUI::Sleep(50);
    Result.append(Port->Input());

    if (Result.size() >= Length) {
        Text(QStringLiteral("EEprom Read Complete"));
        for (int32_t Index = 0; Index < Length; ++Index) {
            Block.at(StartingAddress + Index) = static_cast<uint8_t>(Result.at(Index));
        }
        PBar->setValue(PBar->minimum());
        // The chip is told to leave the monitor, yet ChipIsHalted stays.
        Port->Output(Bytes({0x10, 0x00}));
        WaitForOutputDrain();
        ClearInput();
    } else {
        Err().Clear();
        ChipIsHalted_ = true;
        Text(QStringLiteral("Read Short"));
    }
    PBar->hide();
}

void KavlinControl::WriteExternalEEprom(int32_t StartingAddress, int32_t Length, ByteBlock& Block,
                                        DownloaderStatusTypes& Status) {
    if (!ChipIsHalted_) {
        Status = dlNotHalted;
        return;
    }
    try {
        SetUpProgressBar(StartingAddress, Length);
        PBar->show();

        int32_t Remaining = Length;
        int32_t Current = StartingAddress;
        QByteArray Expected;
        const auto TakeBytes = [&](int32_t Count) {
            QByteArray Data;
            for (int32_t Index = 0; Index < Count; ++Index) {
                Data.append(static_cast<char>(Block.at(Current + Index)));
            }
            return Data;
        };

        Port->Output(WriteEnableFrame());
        Port->Output(ClearProtectFrame());
        SendFiller();

        // No write frame crosses a 64-byte page.
        if (StartingAddress % EEpromPage != 0) {
            const int32_t Count = std::min(Remaining, EEpromPage - StartingAddress % EEpromPage);
            Port->Output(WriteEnableFrame());
            const QByteArray Data = TakeBytes(Count);
            Port->Output(PageWriteFrame(StartingAddress, Data));
            Expected.append(Data);
            SendFiller();
            ClearInput();
            Remaining -= Count;
            Current += Count;
        }
        while (Remaining >= EEpromPage) {
            Port->Output(WriteEnableFrame());
            const QByteArray Data = TakeBytes(EEpromPage);
            Port->Output(PageWriteFrame(Current, Data));
            Expected.append(Data);
            SendFiller();
            ClearInput();
            Remaining -= EEpromPage;
            Current += EEpromPage;
            PBar->setValue(Single(Current));
        }
        if (Remaining > 0) {
            Port->Output(WriteEnableFrame());
            const QByteArray Data = TakeBytes(Remaining);
            Port->Output(PageWriteFrame(Current, Data));
            Expected.append(Data);
            SendFiller();
            ClearInput();
        }
        Port->Output(WriteEnableFrame());
        Port->Output(SetProtectFrame());
        SendFiller();
        ClearInput();

        SetUpProgressBar(StartingAddress, Length);

        Port->Output(BeginReadFrame(StartingAddress));
        WaitForOutputDrain();
        UtilitiesKGUI::Sleep(200);
        ClearInput();
        Remaining = Length;
        QByteArray ReadBack = ReadWholeBlocks(StartingAddress, Remaining);
        // Unlike the plain read there is no last look when nothing is left:
        // bytes of the last block still on their way fail the comparison.
        if (Remaining > 0) {
            Port->Output(ReadTailFrame(Remaining));
            WaitForOutputDrain();
            UtilitiesKGUI::Sleep(100);
            ReadBack.append(Port->Input());
        }
        PBar->setValue(PBar->minimum());
        PBar->hide();

        // The chip stays in its monitor after a write, whatever the result.
        if (ReadBack != Expected) {
            ChipIsHalted_ = true;
            Text(QStringLiteral("Verify Error"));
            Status = dlVerifyFailed;
        } else {
            Text(QStringLiteral("EEprom Write Successful"));
            Status = dlOK;
        }
    } catch (...) {
        TakeCurrentException();
        Status = dlWriteFailed;
    }
}

// ---- Rescue ----

void KavlinControl::Rescue(DownloaderStatusTypes& Status) {
    // Not one byte is sent: ATN moves while the user resets the chip, so
    // that its start-up code finds ATN moving.
    try {
        const int64_t Deadline = Clock().TickCount() + 10000;
        SetDebugText(
            QStringLiteral("\r\n*** RESCUE ***\r\n\r\nQuickly press and release chip's "
                           "hardware\r\nreset button, then wait for prompt\r\n"));
        const double T0 = Clock().Timer();
        int32_t Count = 10;
        auto WholeSeconds = [&T0]() { return static_cast<int64_t>(Clock().Timer() - T0); };
        int64_t Second = WholeSeconds();
        bool DeadlineReached = false;
        while (!DeadlineReached) {
            ShowATNCount(Count);
            for (;;) {
                Clock().DoEvents();
                PulseATN();
                if (Clock().TickCount() >= Deadline) {
                    DeadlineReached = true;
                    break;
                }
                if (WholeSeconds() != Second) {
                    break;
                }
            }
            if (!DeadlineReached) {
                Second = WholeSeconds();
                --Count;
            }
        }
        ShowATNCount(0);
        SetDebugText(
            QStringLiteral("\r\nPress the download or reset button now.\r\n\r\nIf system "
                           "doesn't respond, try the\r\nrescue process again."));
        Status = dlOK;
    } catch (...) {
        TakeCurrentException();
        Status = dlNoCommunications;
    }
}
