#include "link/ParallelDownloader.h"

#include "chip/ConfigurationBytes.h"
#include "frame/ErrorDisplay.h"
#include "frame/GlobalData.h"
#include "link/PPort.h"
#include "platform/ClockService.h"
#include "platform/ErrObject.h"

namespace ParallelDownloader {

namespace {
int16_t DataPort = 888;
int16_t StatusPort = 889;
int16_t ControlPort = 890;
uint8_t DataShadow = 0;
std::array<uint8_t, 8> BitMask{};
QByteArray ProgramString;
QByteArray PageBuffer;
bool EEPROMTimedOut = false;

constexpr int32_t PageSize = 32;
constexpr uint8_t SelectLine = 0x80;
constexpr uint8_t DataOutLine = 0x40;
constexpr uint8_t ClockLine = 0x20;
constexpr uint8_t DataInLine = 0x20;
constexpr uint8_t EEPROMBusy = 0x01;
constexpr uint8_t ProgrammingEcho = 0x47;
constexpr uint8_t InternalWrite = 0x96;
// The last address of the block that the programmer writes from the
// configuration, and the one it always ends with.
constexpr int32_t LastConfigurationAddress = 18;
constexpr int32_t BlockEndAddress = 31;

// A timer on the clock service, for a process without the downloader window:
// it fires at the first yield after its interval has passed.
class ClockEEPROMTimer : public EEPROMTimer {
  public:
    void SetInterval(int32_t Milliseconds) override { Interval_ = Milliseconds; }
    void Start() override {
        Running = true;
        DueMs = ClockService::Instance().TickCount() + Interval_;
    }
    void Stop() override { Running = false; }
    bool IsRunning() const override { return Running; }
    int32_t Interval() const override { return Interval_; }
    void Poll() override {
        if (Running && ClockService::Instance().TickCount() >= DueMs) {
            tmrEEPROMtimeout_Timer();
        }
    }

  private:
    int32_t Interval_ = 0;
    bool Running = false;
    int64_t DueMs = 0;
};

ClockEEPROMTimer OwnTimer;
EEPROMTimer* AttachedTimer = nullptr;
std::function<void(const QString&)> AppendText;
std::function<void(int32_t)> Progress;

void AppendToDebugWindow(const QString& Text) {
    if (AppendText) {
        AppendText(Text);
    }
}

void SetProgress(int32_t Value) {
    if (Progress) {
        Progress(Value);
    }
}

// The old run time's Str$: a blank stands where a minus sign would.
QString Str(int32_t Value) {
    return (Value >= 0 ? QStringLiteral(" ") : QString()) + QString::number(Value);
}

// The programming entry's pause.
void Wait() { ClockService::Instance().Sleep(20); }

void YieldToUserInterface() {
    ClockService::Instance().DoEvents();
    Timer().Poll();
}

void StartWatchdog(int32_t Milliseconds) {
    Timer().SetInterval(Milliseconds);
    EEPROMTimedOut = false;
    Timer().Start();
}

// Waits, yielding, until the EEPROM's busy bit is clear; False when the
// watchdog fired first.
bool WaitWhileEEPROMBusy() {
    for (;;) {
        YieldToUserInterface();
        if (EEPROMTimedOut) {
            return false;
        }
        if ((ReadEEPROMStatus() & EEPROMBusy) == 0) {
            return true;
        }
    }
}

// One frame of the EEPROM: select low around the bytes.
template <class Frame>
void EEPROMFrame(Frame&& Bytes) {
    ClearDataBits(SelectLine);
    Bytes();
    SetDataBits(SelectLine);
}

// One byte on the SPI lines, most significant bit first; with ReadBack the
// device's bit is read while the clock is high.
uint8_t ClockByte(uint8_t Value, bool ReadBack) {
    uint8_t Result = 0;
    for (int Bit = 7; Bit >= 0; --Bit) {
        if ((Value & BitMask[Bit]) != 0) {
            SetDataBits(DataOutLine);
        } else {
            ClearDataBits(DataOutLine);
        }
        SetDataBits(ClockLine);
        if (ReadBack && (PPort::DlPortReadPortUchar(StatusPort) & DataInLine) != 0) {
            Result = static_cast<uint8_t>(Result + BitMask[Bit]);
        }
        ClearDataBits(ClockLine);
    }
    return Result;
}

void SendAddress(int32_t Address) {
    SendByte(static_cast<uint8_t>((Address >> 8) & 0xFF));
    SendByte(static_cast<uint8_t>(Address & 0xFF));
}

// The line states, with the port claimed for them.
void LineState(uint8_t Data, uint8_t Control) {
    PPort::Transfer Claimed(DataPort);
    WriteDataPort(Data);
    WriteControlPort(Control);
}

void WriteExternal(int32_t FileSizeKVB) {
    for (int32_t Position = 1; Position <= FileSizeKVB; Position += PageSize) {
        SetProgress(Position);
        // A short last page is padded with blanks, and they are written too.
        PageBuffer = ProgramString.mid(Position - 1, PageSize).leftJustified(PageSize, ' ');
        bool OK = false;
        WriteAndVerifyPage(Position - 1, PageBuffer, OK);
        if (!OK) {
            ErrorDisplay::ShowErrorMessage(QStringLiteral("Bad verify at ") + Str(Position - 1),
                                           QStringLiteral("Bad Verify"));
            // The rest of the image is left; the configuration still goes.
            LockEEPROM();
            return;
        }
    }
    LockEEPROM();
}

// False when the code does not fit: the chip stays in its programming mode.
bool WriteInternal(int32_t FileSizeKVB) {
    AppendToDebugWindow(QStringLiteral("\r\n*** Downloading to internal 512 file\r\n"));
    if (GlobalData::CodeSize + 32 + GlobalData::PersistentSize >= 513) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Code larger than 512 bytes"),
                                       QStringLiteral("Code Size Error"));
        return false;
    }
    // The code starts behind the block and the persistent memory; the
    // address is kept in a byte.
    const int32_t Start = GlobalData::PersistentSize + 31;
    if (Start < 0 || Start > 255) {
        RaiseError(6, QStringLiteral("Overflow"));
    }
    const auto Base = static_cast<uint8_t>(Start);
    for (int32_t Position = 1; Position <= FileSizeKVB; ++Position) {
        SetProgress(Position);
        if (Position > ProgramString.size()) {
            RaiseError(5, QStringLiteral("Invalid procedure call or argument"));
        }
        WriteInternalByte(Base + Position, static_cast<uint8_t>(ProgramString.at(Position - 1)));
    }
    return true;
}
}  // namespace

void Initialize() {
    for (int Index = 0; Index < 8; ++Index) {
        BitMask[Index] = static_cast<uint8_t>(1u << Index);
    }
    SetPortBase(888);
}

void SetPortBase(int16_t Address) {
    DataPort = Address;
    StatusPort = static_cast<int16_t>(Address + 1);
    ControlPort = static_cast<int16_t>(Address + 2);
}

int16_t GetDataPort() { return DataPort; }
int16_t GetStatusPort() { return StatusPort; }
int16_t GetControlPort() { return ControlPort; }
const std::array<uint8_t, 8>& GetBitMask() { return BitMask; }
uint8_t GetDataShadow() { return DataShadow; }

void Attach(std::function<void(const QString&)> AppendToDebugWindow,
            std::function<void(int32_t)> SetProgress, EEPROMTimer* NewTimer) {
    AppendText = std::move(AppendToDebugWindow);
    Progress = std::move(SetProgress);
    AttachedTimer = NewTimer;
}

void Detach() {
    AppendText = nullptr;
    Progress = nullptr;
    AttachedTimer = nullptr;
}

EEPROMTimer& Timer() { return AttachedTimer != nullptr ? *AttachedTimer : OwnTimer; }

void ReadProgramString(QFile& File, int32_t FileSizeKVB) {
    File.seek(0);
    ProgramString = File.read(FileSizeKVB);
}

const QByteArray& GetProgramString() { return ProgramString; }

void tmrEEPROMtimeout_Timer() {
    EEPROMTimedOut = true;
    Timer().Stop();
}

bool GetEEPROMTimedOut() { return EEPROMTimedOut; }

void WriteDataPort(uint8_t Value) {
    for (int Write = 0; Write < 6; ++Write) {
        PPort::DlPortWritePortUchar(DataPort, Value);
    }
    DataShadow = Value;
}

void WriteControlPort(uint8_t Value) {
    for (int Write = 0; Write < 6; ++Write) {
        PPort::DlPortWritePortUchar(ControlPort, Value);
    }
}

void SetDataBits(uint8_t Mask) {
    DataShadow = static_cast<uint8_t>(DataShadow | Mask);
    PPort::DlPortWritePortUchar(DataPort, DataShadow);
}

void ClearDataBits(uint8_t Mask) {
    DataShadow = static_cast<uint8_t>(DataShadow & ~Mask);
    PPort::DlPortWritePortUchar(DataPort, DataShadow);
}

void SendByte(uint8_t Value) { ClockByte(Value, false); }

uint8_t ExchangeByte(uint8_t Value) { return ClockByte(Value, true); }

void EEPROMWriteEnable() {
    EEPROMFrame([] { SendByte(0x06); });
}

void EEPROMClearProtect() {
    EEPROMFrame([] {
        SendByte(0x01);
        SendByte(0x00);
    });
}

void EEPROMSetProtect() {
    EEPROMFrame([] {
        SendByte(0x01);
        SendByte(0x0C);
    });
}

uint8_t ReadEEPROMStatus() {
    uint8_t Status = 0;
    EEPROMFrame([&Status] {
        SendByte(0x05);
        Status = ExchangeByte(0x00);
    });
    return Status;
}

void WriteEEPROMPage(int32_t Address, const QByteArray& Page) {
    EEPROMFrame([&] {
        SendByte(0x02);
        SendAddress(Address);
        for (int32_t Index = 0; Index < PageSize; ++Index) {
            SendByte(static_cast<uint8_t>(Page.at(Index)));
        }
    });
}

QByteArray ReadEEPROMPage(int32_t Address) {
    QByteArray Page;
    Page.reserve(PageSize);
    EEPROMFrame([&] {
        SendByte(0x03);
        SendAddress(Address);
        for (int32_t Index = 0; Index < PageSize; ++Index) {
            Page.append(static_cast<char>(ExchangeByte(0x00)));
        }
    });
    return Page;
}

void PrepareEEPROM(bool& Success) {
    EEPROMWriteEnable();
    EEPROMClearProtect();
    // Left running when the wait ends: the next user starts it afresh.
    StartWatchdog(1000);
    if (!WaitWhileEEPROMBusy()) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("SPI EEPROM not ready"),
                                       QStringLiteral("EEPROM Error"));
        Success = false;
        return;
    }
    EEPROMWriteEnable();
    Success = true;
}

void WriteAndVerifyPage(int32_t Address, const QByteArray& Page, bool& Success) {
    bool Prepared = false;
    PrepareEEPROM(Prepared);
    if (!Prepared) {
        Success = false;
        return;
    }
    WriteEEPROMPage(Address, Page);
    StartWatchdog(500);
    if (!WaitWhileEEPROMBusy()) {
        Success = false;
        return;
    }
    Timer().Stop();
    Success = ReadEEPROMPage(Address) == Page;
}

void LockEEPROM() {
    EEPROMWriteEnable();
    EEPROMSetProtect();
    StartWatchdog(500);
    if (!WaitWhileEEPROMBusy()) {
        return;
    }
    const uint8_t Status = ReadEEPROMStatus();
    AppendToDebugWindow(QStringLiteral("Locked, Status: ") +
                        QString::number(Status >> 4, 16).toUpper() +
                        QString::number(Status & 0x0F, 16).toUpper() + QStringLiteral("\r\n"));
}

void EnterProgramming(bool& Success) {
    ResetKV10();
    Wait();
    WriteDataPort(0x1F);
    for (int Pause = 0; Pause < 5; ++Pause) {
        Wait();
    }
    WriteDataPort(0x9F);
    Wait();
    WriteDataPort(0x1F);
    for (int Pause = 0; Pause < 4; ++Pause) {
        Wait();
    }
    const uint8_t Echo = ExchangeByte(ProgrammingEcho);
    if (Echo == ProgrammingEcho) {
        Success = true;
        return;
    }
    ErrorDisplay::ShowErrorMessage(QStringLiteral("Setup returned invalid data: ") + Str(Echo),
                                   QStringLiteral("Error Initializing Internal EEPROM"));
    Success = false;
}

void WriteInternalByte(int32_t Address, uint8_t Value) {
    SendByte(InternalWrite);
    SendByte(static_cast<uint8_t>(Address & 0xFF));
    SendByte(static_cast<uint8_t>((Address >> 8) & 0xFF));
    ExchangeByte(Value);
    // The chip programs the byte meanwhile; nothing tells when it is done.
    ClockService::Instance().Sleep(4);
    ClockService::Instance().Sleep(4);
}

void ParallelDownload(int32_t FileSizeKVB, bool& Success) {
    PPort::Transfer Claimed(DataPort);
    ResetKV10();
    ConfigurationBytes::RegisterArray Config{};
    ConfigurationBytes::ConfigureKV10(Config);
    const uint8_t CodeLocation = Config[13];
    if (CodeLocation == 0 || CodeLocation == 255) {
        WriteExternal(FileSizeKVB);
    }
    bool OK = false;
    EnterProgramming(OK);
    // A chip that did not answer has been told of; the run ends as a success.
    if (OK) {
        if (CodeLocation == 1 && !WriteInternal(FileSizeKVB)) {
            Success = false;
            return;
        }
        const ConfigurationBytes::ConfigurationBlock Block =
            ConfigurationBytes::BlockKV10(Config, GlobalData::PersistentSize);
        for (int32_t Address = 0; Address <= LastConfigurationAddress; ++Address) {
            WriteInternalByte(Address, Block[Address]);
        }
        WriteInternalByte(BlockEndAddress, 0xFF);
        ResetKV10();
    }
    AppendToDebugWindow(QStringLiteral("*** Finished Downloading\r\n"));
    SetProgress(0);
    Success = true;
}

void ResetKV10() { LineState(0x8F, 4); }

void ExecuteKV10() { LineState(0x9F, 4); }

void PowerDownKV10() { LineState(0, 11); }

}  // namespace ParallelDownloader
