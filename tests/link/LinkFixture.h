#pragma once

#include <QSignalSpy>
#include <QStringList>
#include <memory>

#include "link/KavlinControl.h"
#include "platform/ErrObject.h"
#include "platform/SerialDevices.h"
#include "sim/SimulatedSerialLine.h"
#include "support/FrameFixture.h"

// A KavlinControl on the "simulated chip" port, in virtual time. The
// machine's own serial devices are never listed, let alone opened.
class LinkFixture : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        SerialDevices::SetDeviceLister([] { return QStringList(); });
        Line = std::make_shared<SimulatedSerialLine>();
        SimulatedSerialLine::InstallAsSimulatedChip(Line);
        Control = std::make_unique<KavlinControl>();
        Control->SetCommPort(SerialDevices::SimulatedChipPortNumber());
        Texts = std::make_unique<QSignalSpy>(Control->txtStatus, &QLineEdit::textChanged);
    }

    void TearDown() override {
        Texts.reset();
        Control.reset();
        SimulatedSerialLine::UninstallSimulatedChip();
        SerialDevices::SetDeviceLister(nullptr);
        Line.reset();
        FrameFixture::TearDown();
    }

    void OpenPort() {
        DownloaderStatusTypes Status = dlWriteFailed;
        Control->OpenPort(true, Status);
        ASSERT_EQ(Status, dlOK);
    }

    // Opens the port and catches the monitor; the wire record starts after.
    void OpenAndHalt() {
        OpenPort();
        DownloaderStatusTypes Status = dlWriteFailed;
        Control->HaltKavlin(Status);
        ASSERT_EQ(Status, dlOK);
        ASSERT_TRUE(Line->Chip().InMonitor());
        Line->ForgetHostEvents();
        Texts->clear();
    }

    // Lets the bytes still in the transmit FIFO reach the chip.
    void LetTheLineSettle() {
        Clock->SleepMicroseconds(10'000);
        Line->OutBufferCount();
    }

    // The texts the status box went through, in order; the box tells only
    // changes, so a text shown twice running counts once.
    QStringList ShownTexts() const {
        QStringList List;
        for (const QList<QVariant>& Signal : *Texts) {
            List << Signal.at(0).toString();
        }
        return List;
    }

    int DtrRises() const {
        int Count = 0;
        for (const auto& Event : Line->HostEvents()) {
            Count += Event.What == SimulatedSerialLine::HostEvent::DtrHigh ? 1 : 0;
        }
        return Count;
    }

    static QByteArray Hex(const char* Text) { return QByteArray::fromHex(Text); }
    static QByteArray Zeros(int Count) { return QByteArray(Count, '\0'); }

    std::shared_ptr<SimulatedSerialLine> Line;
    std::unique_ptr<KavlinControl> Control;
    std::unique_ptr<QSignalSpy> Texts;
};
