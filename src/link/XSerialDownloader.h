#pragma once

#include <QFile>
#include <QProgressBar>
#include <QString>
#include <cstdint>
#include <functional>

#include "link/KavlinControl.h"

class SerialPort;

// What the user asks of a KV-20 or KV-30 made out of the chip link's single
// operations: download a program, start, stop or rescue the chip, read RAM
// for the watch window. The download port and the monitor port are two port
// objects on the one serial line; this module hands the line from one to the
// other and back.
namespace XSerialDownloader {

// The chip commands of RunChipCommand.
enum ChipCommand : int16_t {
    PowerDownCommand = 1,
    ResetCommand = 2,
    ExecuteCommand = 3,
    RescueCommand = 4,
};

// The program image's capacity: a larger file fails the download as the
// chip's address space runs out.
constexpr int32_t ProgramImageSize = 131071;

// What the transfers work on: the downloader window's chip link, its monitor
// port object, the text box that the end of a download is written to, and
// its progress bar, set back when a download ends.
void Attach(KavlinControl* Control, SerialPort* MonitorPort,
            std::function<void(const QString& Text)> AppendToDebugWindow,
            QProgressBar* ProgressBar);
void Detach();
bool IsAttached();

void AcquireDownloadPort();
void ReleaseDownloadPort();
void RunChipCommand(int16_t Command);
void PowerDownChip();
void ResetChip();
void ExecuteChip();
void RescueChip();

// Reads the open file from its start into the program image; bytes behind a
// shorter file keep what they held.
void ReadProgramImage(QFile& File);
const KavlinControl::ByteBlock& ProgramImage();

void DownloadKV20(int32_t FileSizeKVB, bool& Success);
void DownloadKV30(int32_t FileSizeKVB, bool& Success);

// Reads chip RAM for the watch window; does nothing while a transfer holds
// the line (the monitor port was taken and not yet given back). A read the
// link refuses reaches the caller as a run-time error, after the chip was
// let go on and the line given back.
void ReadChipRam(int32_t StartingAddress, int32_t Length, KavlinControl::ByteBlock& ByteBlock);

// True from AcquireDownloadPort closing the monitor port until
// ReleaseDownloadPort opens it again.
bool GetMonitorWasOpen();
// Forgets the state of an earlier transfer (a new window, a new test).
void ResetState();

}  // namespace XSerialDownloader
