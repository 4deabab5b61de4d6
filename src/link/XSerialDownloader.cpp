#include "link/XSerialDownloader.h"

#include <QPointer>
#include <algorithm>
#include <exception>

#include "chip/ConfigurationBytes.h"
#include "frame/ErrorDisplay.h"
#include "platform/ErrObject.h"
#include "platform/SerialPort.h"

namespace XSerialDownloader {

namespace {
QPointer<KavlinControl> Control;
SerialPort* MonitorPort = nullptr;
std::function<void(const QString&)> AppendText;
QPointer<QProgressBar> ProgressBar;
bool MonitorWasOpen = false;
KavlinControl::ByteBlock Image(ProgramImageSize, 0);

KavlinControl& Link() {
    if (Control.isNull()) {
        RaiseError(91, QStringLiteral("Object variable or With block variable not set"));
    }
    return *Control;
}

void PortError(const QString& Text) { ErrorDisplay::ShowErrorMessage(Text, QStringLiteral("Port Error")); }

void HaltError() {
    ErrorDisplay::ShowErrorMessage(QStringLiteral("Error halting processor"),
                                   QStringLiteral("Halt Error"));
}

using BlockBuilder = ConfigurationBytes::ConfigurationBlock (*)(const ConfigurationBytes::RegisterArray&);
using Configurer = void (*)(ConfigurationBytes::RegisterArray&);

void Download(Configurer Configure, BlockBuilder Build, int32_t FileSizeKVB, bool& Success) {
    Success = false;
    // The preference file tells its own trouble and leaves the array empty;
    // the download goes on with that.
    ConfigurationBytes::RegisterArray Registers{};
    Configure(Registers);
    const ConfigurationBytes::ConfigurationBlock Built = Build(Registers);
    KavlinControl::ByteBlock Block(Built.begin(), Built.end());
    try {
        AcquireDownloadPort();
        DownloaderStatusTypes Status = dlOK;
        Link().HaltKavlin(Status);
        if (Status != dlOK) {
            HaltError();
            return;
        }
        // The configuration first: a chip whose program write fails has the
        // new configuration and the old program.
        Link().WriteInternalEEprom(0, static_cast<int32_t>(Block.size()), Block, Status);
        if (Status != dlOK) {
            if (Status == dlNoCommunications) {
                ErrorDisplay::ShowErrorMessage(QStringLiteral("No communications"),
                                               QStringLiteral("Communications Error"));
            } else if (Status == dlChecksumFailed) {
                ErrorDisplay::ShowErrorMessage(QStringLiteral("RAM write error"),
                                               QStringLiteral("RAM Write Error"));
            } else {
                ErrorDisplay::ShowErrorMessage(
                    QStringLiteral("Error downloading to internal EEPROM"),
                    QStringLiteral("Download Error"));
            }
            return;
        }
        Link().WriteExternalEEprom(0, FileSizeKVB, Image, Status);
        if (Status != dlOK) {
            if (Status == dlVerifyFailed) {
                ErrorDisplay::ShowErrorMessage(QStringLiteral("Verify error, external EEPROM"),
                                               QStringLiteral("Verify Error"));
            } else {
                ErrorDisplay::ShowErrorMessage(
                    QStringLiteral("Error downloading to external EEPROM"),
                    QStringLiteral("Download Error"));
            }
            return;
        }
        ReleaseDownloadPort();
        if (AppendText) {
            AppendText(QStringLiteral("*** Finished Downloading\r\n"));
        }
        if (!ProgressBar.isNull()) {
            ProgressBar->setValue(0);
        }
        Success = true;
    } catch (...) {
        TakeCurrentException();
        Success = false;
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Download error ") + Err().Description,
                                       QStringLiteral("Download Error"));
    }
}
}  // namespace

void Attach(KavlinControl* NewControl, SerialPort* NewMonitorPort,
            std::function<void(const QString& Text)> AppendToDebugWindow,
            QProgressBar* NewProgressBar) {
    Control = NewControl;
    MonitorPort = NewMonitorPort;
    AppendText = std::move(AppendToDebugWindow);
    ProgressBar = NewProgressBar;
}

void Detach() {
    Control = nullptr;
    MonitorPort = nullptr;
    AppendText = nullptr;
    ProgressBar = nullptr;
}

bool IsAttached() { return !Control.isNull(); }

void ResetState() {
    MonitorWasOpen = false;
    std::fill(Image.begin(), Image.end(), 0);
}

bool GetMonitorWasOpen() { return MonitorWasOpen; }

void AcquireDownloadPort() {
    try {
        if (MonitorPort != nullptr && MonitorPort->PortOpen()) {
            MonitorPort->SetPortOpen(false);
            MonitorWasOpen = true;
        }
        if (!Link().PortOpen()) {
            DownloaderStatusTypes Status = dlOK;
            Link().OpenPort(true, Status);
            if (Status != dlOK) {
                PortError(QStringLiteral("Error opening download port"));
            }
        }
    } catch (...) {
        TakeCurrentException();
        PortError(QStringLiteral("Error opening download port"));
    }
}

void ReleaseDownloadPort() {
    try {
        if (Link().PortOpen()) {
            DownloaderStatusTypes Status = dlOK;
            Link().OpenPort(false, Status);
            if (Status != dlOK) {
                PortError(QStringLiteral("Error closing download port"));
                return;
            }
        }
        if (MonitorWasOpen && MonitorPort != nullptr && !MonitorPort->PortOpen()) {
            MonitorPort->SetPortOpen(true);
            MonitorWasOpen = false;
        }
    } catch (...) {
        TakeCurrentException();
        PortError(QStringLiteral("Error closing download port"));
    }
}

void RunChipCommand(int16_t Command) {
    try {
        if (!Link().PortOpen()) {
            return;
        }
        DownloaderStatusTypes Status = dlOK;
        switch (Command) {
            case PowerDownCommand:
            case ResetCommand:
                // No power or reset line reaches the host: both halt the chip.
                Link().HaltKavlin(Status);
                if (Status != dlOK) {
                    HaltError();
                }
                break;
            case ExecuteCommand:
                Link().HaltKavlin(Status);
                if (Status != dlOK) {
                    HaltError();
                    break;
                }
                Link().ResetKavlin(Status);
                if (Status != dlOK) {
                    ErrorDisplay::ShowErrorMessage(QStringLiteral("Error resetting processor"),
                                                   QStringLiteral("Reset Error"));
                }
                break;
            case RescueCommand:
                Link().Rescue(Status);
                if (Status != dlOK) {
                    ErrorDisplay::ShowErrorMessage(QStringLiteral("Error -- no communications"),
                                                   QStringLiteral("No Communications"));
                }
                break;
            default:
                break;
        }
    } catch (...) {
        TakeCurrentException();
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Error -- no communications"),
                                       QStringLiteral("No Communications"));
    }
}

namespace {
void AroundCommand(int16_t Command) {
    AcquireDownloadPort();
    RunChipCommand(Command);
    ReleaseDownloadPort();
}
}  // namespace

void PowerDownChip() { AroundCommand(PowerDownCommand); }
void ResetChip() { AroundCommand(ResetCommand); }
void ExecuteChip() { AroundCommand(ExecuteCommand); }
void RescueChip() { AroundCommand(RescueCommand); }

void ReadProgramImage(QFile& File) {
    File.seek(0);
    const QByteArray Bytes = File.read(ProgramImageSize);
    std::copy(Bytes.begin(), Bytes.end(), Image.begin());
}

const KavlinControl::ByteBlock& ProgramImage() { return Image; }

void DownloadKV20(int32_t FileSizeKVB, bool& Success) {
    Download(&ConfigurationBytes::ConfigureKV20, &ConfigurationBytes::BlockKV20, FileSizeKVB,
             Success);
}

void DownloadKV30(int32_t FileSizeKVB, bool& Success) {
    Download(&ConfigurationBytes::ConfigureKV30, &ConfigurationBytes::BlockKV30, FileSizeKVB,
             Success);
}

void ReadChipRam(int32_t StartingAddress, int32_t Length, KavlinControl::ByteBlock& ByteBlock) {
    // A transfer under way holds the line: a sample must not cut into it.
    if (Length < 0 || MonitorWasOpen) {
        return;
    }
    AcquireDownloadPort();
    DownloaderStatusTypes Status = dlOK;
    std::exception_ptr ReadFailure;
    try {
        Link().HaltKavlin(Status);
        try {
            Link().ReadRam(StartingAddress, Length, ByteBlock);
        } catch (...) {
            // A read the link refuses (longer than one exchange can carry)
            // or a block too small for it: the sample fails, but the
            // program must go on and the line be given back first.
            ReadFailure = std::current_exception();
        }
        Link().ContinueKavlin(Status);
    } catch (...) {
        TakeCurrentException();
    }
    ReleaseDownloadPort();
    if (ReadFailure) {
        std::rethrow_exception(ReadFailure);
    }
}

}  // namespace XSerialDownloader
