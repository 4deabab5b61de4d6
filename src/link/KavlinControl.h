#pragma once

#include <QLineEdit>
#include <QProgressBar>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "link/DownloaderStatusTypes.h"
#include "platform/SerialPort.h"

// The one object that talks to a KV-20 or KV-30 over the download port: it
// catches the chip's monitor with the ATN line, frames the requests, checks
// the checksums, paces the external EEPROM's writes and rescues a chip that
// no longer answers. A status box and a progress bar lie on top of each
// other and fill the control.
class KavlinControl : public QWidget {
    Q_OBJECT
  public:
    // Indexed by chip address: the byte for address A is element A.
    using ByteBlock = std::vector<uint8_t>;
    // Replaces the whole text of the downloader's debug window.
    using TextSink = std::function<void(const QString& Text)>;

    static constexpr int32_t NoCommunicationsError = 4301;
    static constexpr int32_t WriteChecksumError = 4302;
    // A link error is raised as its code plus this.
    static constexpr uint32_t ErrorBase = 0x80040000u;

    explicit KavlinControl(QWidget* Parent = nullptr);
    ~KavlinControl() override;

    void PCLink(bool Value);
    void Text(const QString& NewText);
    int16_t CommPort() const;
    void SetCommPort(int16_t NewCommPort);
    bool PortOpen() const;
    void OpenPort(bool OpenThePort, DownloaderStatusTypes& Status);

    void ReadRam(int32_t StartingAddress, int32_t Length, ByteBlock& Block);
    void ReadInternalEEprom(int32_t StartingAddress, int32_t Length, ByteBlock& Block);
    void ReadExternalEEprom(int32_t StartingAddress, int32_t Length, ByteBlock& Block);
    // Link errors reach the caller as run-time errors.
    void WriteRam(int32_t StartingAddress, int32_t Length, ByteBlock& Block);
    void WriteInternalEEprom(int32_t StartingAddress, int32_t Length, ByteBlock& Block,
                             DownloaderStatusTypes& Status);
    void WriteExternalEEprom(int32_t StartingAddress, int32_t Length, ByteBlock& Block,
                             DownloaderStatusTypes& Status);

    void HaltKavlin(DownloaderStatusTypes& Status);
    void ResetKavlin(DownloaderStatusTypes& Status);
    void ContinueKavlin(DownloaderStatusTypes& Status);
    void Rescue(DownloaderStatusTypes& Status);

    // Where Rescue writes its instructions: frmDownloader's txtDebugWindow.
    void SetDebugWindow(TextSink Sink) { DebugWindow = std::move(Sink); }

    bool ChipIsHalted() const { return ChipIsHalted_; }
    int32_t LastErrorCode() const { return LastErrorCode_; }
    int32_t AckCount() const { return AckCount_; }
    bool PCLinkActive() const { return PCLinkActive_; }
    SerialPort& comSerialDownloadPort() { return *Port; }

    QLineEdit* txtStatus;
    QProgressBar* PBar;

  signals:
    // A persistent property changed ("CommPort").
    void PropertyChanged(const QString& Key);

  protected:
    void resizeEvent(QResizeEvent* Event) override;

  private:
    // The external EEPROM's read stream, a whole block at a time while one is
    // left; Remaining comes back as what the last, shorter block must take.
    QByteArray ReadWholeBlocks(int32_t StartingAddress, int32_t& Remaining);
    // Reset and continue: the monitor lets go of a halted chip.
    void ReleaseChip(const QByteArray& Request, DownloaderStatusTypes& Status);
    void StopChip();
    void ReadBlock(uint8_t Command, int32_t StartingAddress, int32_t Length, ByteBlock& Block);
    void WriteBlock(uint8_t Command, int32_t StartingAddress, int32_t Length, ByteBlock& Block);
    void SendSyncBytes();
    void SendFiller();
    // The 5 ms twin of SendFiller; nothing calls it, the 10 ms one is in use.
    void SendShortFiller();
    void PulseATN();
    void PulseATNThrice();
    void WaitForOutputDrain();
    void ClearInput();
    bool PollForInput(int32_t Count, int64_t StartMs, int64_t LimitMs);
    [[noreturn]] void RaiseLinkError(int32_t Code);
    void ShowATNCount(int32_t Count);
    void ShowRetryCount(int32_t Count);
    void SetUpProgressBar(int32_t StartingAddress, int32_t Length);
    void SetDebugText(const QString& Text);
    static QByteArray BlockFrame(uint8_t Command, int32_t StartingAddress, int32_t Length);

    std::unique_ptr<SerialPort> Port;
    TextSink DebugWindow;
    bool ChipIsHalted_ = false;
    int32_t LastErrorCode_ = 0;
    int32_t AckCount_ = 0;
    bool PCLinkActive_ = false;
};
