#pragma once

#include <QString>
#include <cstdint>

#include "frame/DownloadPortInfoType.h"
#include "link/DownloaderStatusTypes.h"

// What the user has set up as the download port, and what of it is open.
namespace DownloadPortExecutive {

// The serial chip link the download port is tried through. In the program it
// is frmDownloader's KavlinControl, whose port number every transfer uses.
class SerialLink {
  public:
    virtual ~SerialLink() = default;
    virtual void SetCommPort(int16_t PortNumber) = 0;
    // Status dlOK when the port opened (or closed); a failure leaves its
    // cause in Err().
    virtual void OpenPort(bool OpenThePort, DownloaderStatusTypes& Status) = 0;
};

// Holds the system's LPT device so that other programs keep off the port.
class LptReservation {
  public:
    virtual ~LptReservation() = default;
    // Opens and claims the device and returns its number; a failure raises a
    // run-time error that names the device and the cause.
    virtual int Open(const QString& Device) = 0;
    virtual void Close(int FileNumber) = 0;
};

// Nothing installed: the executive's own serial port object and the
// system's devices.
void SetSerialLink(SerialLink* Link);
SerialLink* GetSerialLink();
void SetLptReservation(LptReservation* Reservation);

// The device that LPT PortNumber stands for: /dev/parport<n-1>, or the
// simulated board for LPT 99.
QString LptDevice(int16_t PortNumber);

// Clears the flags, reads the set-up from the store, then applies it.
void Initialize();
bool DownloadPortIsOpen();
bool DownloadPortIsParallel();
// An open port of the kind the chip model cannot use is closed; the saved
// set-up stays as it is.
void CheckPortMatchesChip();
void GetDownloadPortInfo(DownloadPortInfoType& Info);
// Takes the set-up, saves it and applies it.
void SetDownloadPortInfo(const DownloadPortInfoType& Info);
// The serial side, then the parallel side.
void ClosePorts();
// One line of why the last opening failed ("in use by another program");
// empty when it did not fail or nothing more is known.
QString LastFailureCause();

}  // namespace DownloadPortExecutive
