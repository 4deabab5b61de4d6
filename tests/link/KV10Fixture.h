#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>
#include <memory>

#include "chip/ConfigurationBytes.h"
#include "chip/PrfImageBuilder.h"
#include "frame/GlobalData.h"
#include "link/PPort.h"
#include "link/ParallelDownloader.h"
#include "platform/ParallelDevices.h"
#include "sim/SimulatedParallelPort.h"
#include "support/FrameFixture.h"

// The KV-10's programmer in a test: the simulated board as LPT 99 at the
// first port's address, settings in memory, virtual time in which every
// yield of a wait takes 100 us, and the texts and progress values the
// programmer reports, kept here. The programmer's watchdog is its own, on
// the virtual clock.
class KV10Fixture : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        Clock->DoEventsMicroseconds = 100;
        Port = std::make_shared<SimulatedParallelPort>();
        SimulatedParallelPort::InstallAsSimulatedBoard(Port);
        GlobalData::ChipType = 1;
        ParallelDownloader::Initialize();
        PPort::SetPortNumber(ParallelDevices::SimulatedBoardPort);
        ParallelDownloader::Attach([this](const QString& Text) { DebugText += Text; },
                                   [this](int32_t Value) { ProgressValues << Value; }, nullptr);
    }
    void TearDown() override {
        ParallelDownloader::Detach();
        ParallelDownloader::Timer().Stop();
        PPort::SetPortNumber(1);
        SimulatedParallelPort::UninstallSimulatedBoard();
        Port.reset();
        GlobalData::ProjectFilename.clear();
        GlobalData::ChipType = 2;
        FrameFixture::TearDown();
    }

    SimulatedKV10Board& Board() { return Port->Board(); }

    // An image of Size bytes, byte n being n * 7 + 3, with a KV-10 preference
    // file beside it whose record 609 holds CodeLocation, and the project's
    // name that leads to it. The programmer holds the image.
    QByteArray Program(int32_t Size, int32_t CodeLocation = 0,
                       const QString& Name = QStringLiteral("blink")) {
        QByteArray Image(Size, '\0');
        for (int32_t Address = 0; Address < Size; ++Address) {
            Image[Address] = static_cast<char>(Address * 7 + 3);
        }
        PrfImageBuilder Prf;
        Prf.AllPins(kvInputTristate).DefaultValues(1).Value(609, CodeLocation);
        Prf.Pin(39, kvOutputHigh).Pin(1, kvOutputLow).Pin(21, kvInputPullup);
        EXPECT_TRUE(Prf.Save(TempPath() + QLatin1Char('/') + Name + QStringLiteral(".prf")));
        const QString Kvb = WriteFile(Name + QStringLiteral(".kvb"), Image);
        GlobalData::ProjectFilename = Kvb.left(Kvb.size() - 3) + QStringLiteral("kvp");
        QFile File(Kvb);
        EXPECT_TRUE(File.open(QIODevice::ReadOnly));
        ParallelDownloader::ReadProgramString(File, Size);
        return Image;
    }

    // The block the board must hold for the preference file of the project.
    ConfigurationBytes::ConfigurationBlock ExpectedBlock() const {
        ConfigurationBytes::RegisterArray Registers{};
        ConfigurationBytes::ConfigureKV10(Registers);
        return ConfigurationBytes::BlockKV10(Registers, GlobalData::PersistentSize);
    }
    // Addresses 0 to 18 and 31 of the internal EEPROM: what the programmer writes.
    QByteArray WrittenBlock() const {
        const auto& Memory = Port->Board().InternalEeprom;
        return QByteArray(reinterpret_cast<const char*>(Memory.data()), 19) +
               static_cast<char>(Memory[31]);
    }
    QByteArray ExpectedWrittenBlock() const {
        const ConfigurationBytes::ConfigurationBlock Block = ExpectedBlock();
        return QByteArray(reinterpret_cast<const char*>(Block.data()), 19) +
               static_cast<char>(Block[31]);
    }
    QByteArray Spi(int From, int Size) const {
        return QByteArray(
            reinterpret_cast<const char*>(Port->Board().SpiEeprom.Memory.data()) + From, Size);
    }
    QByteArray Internal(int From, int Size) const {
        return QByteArray(reinterpret_cast<const char*>(Port->Board().InternalEeprom.data()) + From,
                          Size);
    }
    QStringList BoxTexts() const {
        QStringList Texts;
        for (const auto& Box : Boxes->Boxes) {
            Texts << Box.Text + QStringLiteral(" | ") + Box.Title;
        }
        return Texts;
    }

    std::shared_ptr<SimulatedParallelPort> Port;
    QString DebugText;
    QList<int32_t> ProgressValues;
};
