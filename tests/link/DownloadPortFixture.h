#pragma once

#include <QStringList>
#include <memory>

#include "frame/GlobalData.h"
#include "link/DownloadPortExecutive.h"
#include "platform/ErrObject.h"
#include "platform/SerialDevices.h"
#include "sim/SimulatedSerialLine.h"
#include "support/FrameFixture.h"

// Holds an LPT device the way a test may: nothing of the system is opened.
class FakeLptReservation : public DownloadPortExecutive::LptReservation {
  public:
    int Open(const QString& Device) override {
        if (!FailWith.isEmpty()) {
            RaiseError(70, FailWith);
        }
        Opened << Device;
        Held = NextFileNumber;
        return NextFileNumber;
    }
    void Close(int FileNumber) override {
        Closed << FileNumber;
        if (FileNumber == Held) {
            Held = 0;
        }
    }
    QString FailWith;
    QStringList Opened;
    QList<int> Closed;
    int NextFileNumber = 7;
    int Held = 0;
};

// The download port in a test: settings in memory, the simulated chip as
// port 99, no device of the machine listed, and LPT devices held by a fake.
class DownloadPortFixture : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        SerialDevices::SetDeviceLister([] { return QStringList(); });
        SerialDevices::SetDeviceInfoSource([] { return QList<SerialDevices::DeviceInfo>(); });
        Line = std::make_shared<SimulatedSerialLine>();
        SimulatedSerialLine::InstallAsSimulatedChip(Line);
        DownloadPortExecutive::SetLptReservation(&Reservation);
        GlobalData::ChipType = 2;
        // Nothing stored: the executive starts as in a fresh process.
        DownloadPortExecutive::Initialize();
    }
    void TearDown() override {
        DownloadPortExecutive::ClosePorts();
        DownloadPortExecutive::SetSerialLink(nullptr);
        DownloadPortExecutive::SetLptReservation(nullptr);
        SimulatedSerialLine::UninstallSimulatedChip();
        SerialDevices::SetDeviceLister(nullptr);
        SerialDevices::SetDeviceInfoSource(nullptr);
        Line.reset();
        FrameFixture::TearDown();
    }
    void StoreSerialPort(int Number) {
        SetSetting(QStringLiteral("Port_Number"), QString::number(Number));
        SetSetting(QStringLiteral("Port_Mode"), QStringLiteral("Serial"));
        SetSetting(QStringLiteral("Port_Address"), QStringLiteral("0"));
        SetSetting(QStringLiteral("Port_Reserve"), QStringLiteral("False"));
    }
    // The simulated chip's one line as both the download port and the open
    // monitor port, and a good installation, as a user who works with it has
    // them stored.
    void StoreSimulatedChipForBothPorts() {
        MakeGoodInstallation();
        StoreSerialPort(SerialDevices::SimulatedChipPort);
        SetSetting(QStringLiteral("KV20port_Number"), QStringLiteral(" 99, 115200,N,8,10"));
    }
    void StoreParallelPort(int Number, const QString& Address, bool Reserve) {
        SetSetting(QStringLiteral("Port_Number"), QString::number(Number));
        SetSetting(QStringLiteral("Port_Mode"), QStringLiteral("Parallel"));
        SetSetting(QStringLiteral("Port_Address"), Address);
        SetSetting(QStringLiteral("Port_Reserve"),
                   Reserve ? QStringLiteral("True") : QStringLiteral("False"));
    }

    std::shared_ptr<SimulatedSerialLine> Line;
    FakeLptReservation Reservation;
};
