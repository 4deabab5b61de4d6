#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>
#include <QStringList>
#include <memory>

#include "chip/ConfigurationBytes.h"
#include "chip/PrfImageBuilder.h"
#include "frame/GlobalData.h"
#include "link/PPort.h"
#include "link/ParallelDownloader.h"
#include "platform/ParallelDevices.h"
#include "sim/SimulatedParallelPort.h"
#include "support/FrameFixture.h"

// What a test reads of the simulated board after a download, and of the
// boxes shown (text and title), for the programmer's tests and the window's.
namespace KV10Check {

inline QByteArray Spi(const SimulatedKV10Board& Board, int From, int Size) {
    return QByteArray(reinterpret_cast<const char*>(Board.SpiEeprom.Memory.data()) + From, Size);
}

inline QByteArray Internal(const SimulatedKV10Board& Board, int From, int Size) {
    return QByteArray(reinterpret_cast<const char*>(Board.InternalEeprom.data()) + From, Size);
}

// Addresses 0 to 18 and 31 of the internal EEPROM: what the programmer writes.
inline QByteArray WrittenBlock(const SimulatedKV10Board& Board) {
    return Internal(Board, 0, 19) + static_cast<char>(Board.InternalEeprom[31]);
}

// The same addresses of the block that the preference file of the project
// (ProjectFilename) gives.
inline QByteArray ExpectedWrittenBlock() {
    ConfigurationBytes::RegisterArray Registers{};
    ConfigurationBytes::ConfigureKV10(Registers);
    const ConfigurationBytes::ConfigurationBlock Block =
        ConfigurationBytes::BlockKV10(Registers, GlobalData::PersistentSize);
    return QByteArray(reinterpret_cast<const char*>(Block.data()), 19) +
           static_cast<char>(Block[31]);
}

inline QStringList BoxTexts(const ScriptedMessageBoxService& Boxes) {
    QStringList Texts;
    for (const auto& Box : Boxes.Boxes) {
        Texts << Box.Text + QStringLiteral(" | ") + Box.Title;
    }
    return Texts;
}

}  // namespace KV10Check

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

    QByteArray ExpectedWrittenBlock() const { return KV10Check::ExpectedWrittenBlock(); }
    QByteArray WrittenBlock() const { return KV10Check::WrittenBlock(Port->Board()); }
    QByteArray Spi(int From, int Size) const { return KV10Check::Spi(Port->Board(), From, Size); }
    QByteArray Internal(int From, int Size) const {
        return KV10Check::Internal(Port->Board(), From, Size);
    }
    QStringList BoxTexts() const { return KV10Check::BoxTexts(*Boxes); }

    std::shared_ptr<SimulatedParallelPort> Port;
    QString DebugText;
    QList<int32_t> ProgressValues;
};
