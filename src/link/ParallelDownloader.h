#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <array>
#include <cstdint>
#include <functional>

// The KV-10's programmer on a PC parallel port. The port's lines power the
// board, hold or release the chip's reset, and bit-bang two SPI devices: the
// 32 KB EEPROM that holds the program and the chip's own programming
// interface to its internal EEPROM. There is no protocol and no retry: all
// timing comes from repeated port writes and a few sleeps.
//
// Pins: data bit 7 selects the EEPROM (low active) and is the line the
// programming entry toggles, bit 6 is the SPI data out, bit 5 the SPI clock,
// bit 4 the chip's reset (0 holds it), bits 0 to 3 the board's power; status
// bit 5 is the SPI data in. The control register is 4 while powered, 11 off.
namespace ParallelDownloader {

// The watchdog of the EEPROM waits (the downloader window's
// tmrEEPROMtimeout). When it fires it calls tmrEEPROMtimeout_Timer.
class EEPROMTimer {
  public:
    virtual ~EEPROMTimer() = default;
    virtual void SetInterval(int32_t Milliseconds) = 0;
    // Starts the interval afresh, also when the timer runs already.
    virtual void Start() = 0;
    virtual void Stop() = 0;
    virtual bool IsRunning() const = 0;
    virtual int32_t Interval() const = 0;
    // Called at every yield of a wait: a timer that the event loop does not
    // drive looks at its clock here.
    virtual void Poll() {}
};

// Fills the bit masks and sets the register numbers of the first port.
void Initialize();
void SetPortBase(int16_t Address);
int16_t GetDataPort();
int16_t GetStatusPort();
int16_t GetControlPort();
// BitMask(i) = 2 to the power i.
const std::array<uint8_t, 8>& GetBitMask();
// The last value written to the data register, which cannot be read back.
uint8_t GetDataShadow();

// What a download reports to: the downloader window's text box, the value
// of its progress bar, and its watchdog timer. Without a window the texts go
// nowhere and a timer of the clock service's watches the waits.
void Attach(std::function<void(const QString& Text)> AppendToDebugWindow,
            std::function<void(int32_t Value)> SetProgress, EEPROMTimer* Timer);
void Detach();
EEPROMTimer& Timer();

// Loads the image: FileSizeKVB bytes from the open file's start.
void ReadProgramString(QFile& File, int32_t FileSizeKVB);
const QByteArray& GetProgramString();

// The download: the image into the SPI EEPROM page by page, each verified at
// once (or, with Config(13) = 1, into the internal EEPROM), then the
// configuration block into the internal EEPROM. The chip is left in reset
// with its power on. Its failures are told in boxes; a run-time error (a
// port that cannot be had, an address that does not fit) goes to the
// caller.
void ParallelDownload(int32_t FileSizeKVB, bool& Success);

// The line states, each in a transfer of its own: power on with the chip in
// reset; power on and running; everything off.
void ResetKV10();
void ExecuteKV10();
void PowerDownKV10();

// The timer's event: the wait it watches has run out.
void tmrEEPROMtimeout_Timer();
bool GetEEPROMTimedOut();

// The primitives, on a port held by a PPort::Transfer.
// Six writes in a row: the settling time of the cable and the board.
void WriteDataPort(uint8_t Value);
void WriteControlPort(uint8_t Value);
void SetDataBits(uint8_t Mask);
void ClearDataBits(uint8_t Mask);
// Most significant bit first, clocked on the rising edge.
void SendByte(uint8_t Value);
// As SendByte, reading the device's bit while the clock is high.
uint8_t ExchangeByte(uint8_t Value);

void EEPROMWriteEnable();
void EEPROMClearProtect();
void EEPROMSetProtect();
uint8_t ReadEEPROMStatus();
void WriteEEPROMPage(int32_t Address, const QByteArray& Page);
QByteArray ReadEEPROMPage(int32_t Address);

void PrepareEEPROM(bool& Success);
void WriteAndVerifyPage(int32_t Address, const QByteArray& Page, bool& Success);
void LockEEPROM();
void EnterProgramming(bool& Success);
void WriteInternalByte(int32_t Address, uint8_t Value);

}  // namespace ParallelDownloader
