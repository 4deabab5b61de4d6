#include "link/DownloadPortExecutive.h"

#include "frame/GlobalData.h"
#include "frame/RegistryCentral.h"
#include "link/PPort.h"
#include "link/ParallelDownloader.h"
#include "monitor/MonitorPortExecutive.h"
#include "platform/ErrObject.h"
#include "platform/ParallelDevices.h"
#include "platform/SerialDevices.h"
#include "platform/SerialPortObject.h"

namespace DownloadPortExecutive {

namespace {
DownloadPortInfoType DownloadPort;
bool PortIsOpen = false;
bool PortIsParallel = false;
bool ReserveFileIsOpen = false;
int ReserveFileNumber = 0;
QString FailureCause;

// A process without the downloader window (a test, a tool) tries the port
// on a port object of its own, set up as the chip link sets up its own.
class OwnSerialLink : public SerialLink {
  public:
    OwnSerialLink() {
        Port.SetSettings(QStringLiteral("115200,N,8,1"));
        Port.SetInBufferSize(4096);
        Port.SetOutBufferSize(4096);
        Port.SetDTREnable(false);
    }
    void SetCommPort(int16_t PortNumber) override { Port.SetCommPort(PortNumber); }
    void OpenPort(bool OpenThePort, DownloaderStatusTypes& Status) override {
        try {
            Port.SetPortOpen(OpenThePort);
            Status = dlOK;
        } catch (...) {
            TakeCurrentException();
            Status = OpenThePort ? dlCannotOpenPort : dlCannotClosePort;
        }
    }

  private:
    SerialPortObject Port;
};

// The device is opened and claimed, and held so between transfers: no other
// program or driver can take the port meanwhile, and the transfers use it as
// it stands.
class SystemLptReservation : public LptReservation {
  public:
    int Open(const QString& Device) override { return PPort::Reserve(Device); }
    void Close(int FileNumber) override { PPort::Unreserve(FileNumber); }
};

SerialLink* InstalledSerialLink = nullptr;
LptReservation* InstalledReservation = nullptr;

SerialLink& Link() {
    if (InstalledSerialLink != nullptr) {
        return *InstalledSerialLink;
    }
    static OwnSerialLink Own;
    return Own;
}

LptReservation& Reservation() {
    if (InstalledReservation != nullptr) {
        return *InstalledReservation;
    }
    static SystemLptReservation System;
    return System;
}

void CloseSerialPort() {
    DownloaderStatusTypes Status = dlOK;
    Link().OpenPort(false, Status);
    PortIsOpen = false;
}

void CloseParallelPort() {
    try {
        if (ReserveFileIsOpen) {
            Reservation().Close(ReserveFileNumber);
        }
        ReserveFileIsOpen = false;
        PortIsOpen = false;
    } catch (...) {
        TakeCurrentException();
        ReserveFileIsOpen = false;
        PortIsOpen = false;
    }
}

// The serial port is only tried here: each transfer opens it for real.
void OpenSerialPort() {
    // The monitor shares the chip's one line; it takes its own state back below.
    MonitorPortExecutive::CloseMonitorPort();
    try {
        ClosePorts();
        Link().SetCommPort(DownloadPort.PortNumber());
        DownloaderStatusTypes Status = dlOK;
        Link().OpenPort(true, Status);
        if (Status == dlOK) {
            PortIsOpen = true;
            PortIsParallel = false;
        } else {
            FailureCause = SerialDevices::OpenFailureCause(DownloadPort.PortNumber(), Err().Number);
        }
        Link().OpenPort(false, Status);
    } catch (...) {
        TakeCurrentException();
        PortIsOpen = false;
        FailureCause = Err().Description;
        return;
    }
    MonitorPortExecutive::UpdateMonitorPort();
}

void OpenParallelPort() {
    try {
        ClosePorts();
        ParallelDownloader::SetPortBase(DownloadPort.Address());
        PPort::SetPortNumber(DownloadPort.PortNumber());
        if (DownloadPort.Reserve()) {
            ReserveFileNumber = Reservation().Open(LptDevice(DownloadPort.PortNumber()));
            ReserveFileIsOpen = true;
        }
        PortIsOpen = true;
        PortIsParallel = true;
    } catch (...) {
        TakeCurrentException();
        PortIsOpen = false;
        FailureCause = Err().Description;
    }
}

void ApplyDownloadPort() {
    FailureCause.clear();
    if (!DownloadPort.IsDefined()) {
        ClosePorts();
    } else if (DownloadPort.IsParallel()) {
        OpenParallelPort();
    } else {
        OpenSerialPort();
    }
}
}  // namespace

void SetSerialLink(SerialLink* NewLink) { InstalledSerialLink = NewLink; }

SerialLink* GetSerialLink() { return InstalledSerialLink; }

void SetLptReservation(LptReservation* NewReservation) { InstalledReservation = NewReservation; }

QString LptDevice(int16_t PortNumber) { return ParallelDevices::DeviceForLpt(PortNumber); }

void Initialize() {
    PortIsOpen = false;
    PortIsParallel = false;
    ReserveFileIsOpen = false;
    ReserveFileNumber = 0;
    DownloadPort = DownloadPortInfoType();
    RegistryCentral::RegistryGetDownloadPort(DownloadPort);
    ApplyDownloadPort();
}

bool DownloadPortIsOpen() { return PortIsOpen; }

bool DownloadPortIsParallel() { return PortIsParallel; }

void CheckPortMatchesChip() {
    const bool WantsParallel = GlobalData::ChipType == 1;
    if (WantsParallel != PortIsParallel) {
        ClosePorts();
    }
}

void GetDownloadPortInfo(DownloadPortInfoType& Info) { Info.Copy(DownloadPort); }

void SetDownloadPortInfo(const DownloadPortInfoType& Info) {
    DownloadPort.Copy(Info);
    RegistryCentral::RegistrySaveDownloadPort(DownloadPort);
    ApplyDownloadPort();
}

void ClosePorts() {
    CloseSerialPort();
    CloseParallelPort();
}

QString LastFailureCause() { return FailureCause; }

}  // namespace DownloadPortExecutive
