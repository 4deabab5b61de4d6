// The KV-10's programmer on the simulated board with the real clock: how
// fast port writes go through PPort, and what a 32 KB download takes, set
// against what its port accesses and its own sleeps need. From the counts a
// real port's time follows: about a microsecond an access on the ISA bus,
// the sleeps, and the EEPROM's write cycles (5 ms each for a 25LC256-class
// part) during which the host only polls.

#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>
#include <memory>

#include "WindowBench.h"
#include "WireBench.h"
#include "chip/PrfImageBuilder.h"
#include "frame/ErrorDisplay.h"
#include "frame/GlobalData.h"
#include "link/PPort.h"
#include "link/ParallelDownloader.h"
#include "platform/ClockService.h"
#include "platform/MessageBoxService.h"
#include "platform/ParallelDevices.h"
#include "sim/SimulatedParallelPort.h"

namespace {

// A real port takes about this long for one register access.
constexpr double RealAccessSeconds = 1e-6;
// A real SPI EEPROM's write cycle, for a page or the status register.
constexpr double RealWriteCycleSeconds = 5e-3;

// Counts the boxes: a download that shows one has gone wrong.
class CountingBoxes : public MessageBoxService {
  public:
    int Show(const QString&, const QString&, MsgBoxButtons Buttons, MsgBoxIcon) override {
        ++Count;
        return DefaultAnswer(Buttons);
    }
    int Count = 0;
};

// The simulated board as LPT 99 and the programmer at the first port's
// registers, on the real clock, for as long as it lives.
class Bench {
  public:
    Bench() {
        ClockService::Install(std::make_unique<RealClockService>());
        auto Counting = std::make_unique<CountingBoxes>();
        Boxes = Counting.get();
        MessageBoxService::Install(std::move(Counting));
        Port = std::make_shared<SimulatedParallelPort>();
        SimulatedParallelPort::InstallAsSimulatedBoard(Port);
        ParallelDownloader::Initialize();
        PPort::SetPortNumber(ParallelDevices::SimulatedBoardPort);
    }
    ~Bench() {
        SimulatedParallelPort::UninstallSimulatedBoard();
        MessageBoxService::Install(nullptr);
    }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    std::shared_ptr<SimulatedParallelPort> Port;
    CountingBoxes* Boxes = nullptr;
};

// Writes to the data register as fast as they go, the board decoding each:
// the clock line toggled with the board powered and the EEPROM deselected.
void PortWrites(benchmark::State& State) {
    Bench Board;
    PPort::Transfer Claimed(ParallelDownloader::GetDataPort());
    const int16_t DataPort = ParallelDownloader::GetDataPort();
    constexpr int64_t Writes = 4'000'000;
    double Wall = 0;
    for (auto _ : State) {
        const int64_t Start = ClockService::Instance().MicroTicks();
        for (int64_t Write = 0; Write < Writes; ++Write) {
            PPort::DlPortWritePortUchar(DataPort, (Write & 1) != 0 ? 0xAF : 0x8F);
        }
        Wall = static_cast<double>(ClockService::Instance().MicroTicks() - Start) / 1e6;
        State.SetIterationTime(Wall);
    }
    State.counters["Writes_per_s"] = static_cast<double>(Writes) / Wall;
    State.counters["ns_per_write"] = Wall * 1e9 / static_cast<double>(Writes);
}

// Bytes clocked into the selected EEPROM and read back, as a page's
// read-back does: three writes and one read a bit.
void SpiExchange(benchmark::State& State) {
    Bench Board;
    PPort::Transfer Claimed(ParallelDownloader::GetDataPort());
    ParallelDownloader::WriteDataPort(0x8F);
    ParallelDownloader::ClearDataBits(0x80);
    ParallelDownloader::SendByte(0x03);
    ParallelDownloader::SendByte(0x00);
    ParallelDownloader::SendByte(0x00);
    constexpr int64_t Bytes = 200'000;
    double Wall = 0;
    for (auto _ : State) {
        const int64_t AccessesBefore = Board.Port->Writes + Board.Port->Reads;
        const int64_t Start = ClockService::Instance().MicroTicks();
        for (int64_t Byte = 0; Byte < Bytes; ++Byte) {
            benchmark::DoNotOptimize(ParallelDownloader::ExchangeByte(0x00));
        }
        Wall = static_cast<double>(ClockService::Instance().MicroTicks() - Start) / 1e6;
        State.SetIterationTime(Wall);
        const auto Accesses =
            static_cast<double>(Board.Port->Writes + Board.Port->Reads - AccessesBefore);
        State.counters["Accesses_per_s"] = Accesses / Wall;
        State.counters["ns_per_access"] = Wall * 1e9 / Accesses;
    }
    ParallelDownloader::SetDataBits(0x80);
    State.counters["Bytes_per_s"] = static_cast<double>(Bytes) / Wall;
}

// A whole download of Arg(0) bytes into the SPI EEPROM and the block into the
// internal one. Arg(1) is the simulated EEPROM's write cycle in
// microseconds: 0 leaves the host's own time alone, 5000 is a real part's.
void Download(benchmark::State& State) {
    const auto Size = static_cast<int32_t>(State.range(0));
    const int64_t WriteCycleUs = State.range(1);
    QTemporaryDir Folder;
    Bench Board;
    Board.Port->Board().SpiEeprom.WriteCycleNs = WriteCycleUs * 1000;
    const QString Stem = Folder.path() + QStringLiteral("/blink.");
    PrfImageBuilder().AllPins(kvInputTristate).DefaultValues(1).Save(Stem + QStringLiteral("prf"));
    QByteArray Image(Size, '\0');
    for (int32_t Address = 0; Address < Size; ++Address) {
        Image[Address] = static_cast<char>(Address * 13 + 5);
    }
    QFile File(Stem + QStringLiteral("kvb"));
    File.open(QIODevice::ReadWrite);
    File.write(Image);
    ParallelDownloader::ReadProgramString(File, Size);
    GlobalData::ProjectFilename = Stem + QStringLiteral("kvp");
    double Wall = 0, Cpu = 0;
    int64_t Accesses = 0, Writes = 0, Cycles = 0;
    bool Success = false;
    for (auto _ : State) {
        const SimulatedParallelPort& Port = *Board.Port;
        const int64_t WritesBefore = Port.Writes, ReadsBefore = Port.Reads;
        const int CyclesBefore = Board.Port->Board().SpiEeprom.CompletedWrites;
        const double CpuStart = ProcessCpuSeconds();
        const int64_t Start = ClockService::Instance().MicroTicks();
        ParallelDownloader::ParallelDownload(Size, Success);
        Wall = static_cast<double>(ClockService::Instance().MicroTicks() - Start) / 1e6;
        Cpu = ProcessCpuSeconds() - CpuStart;
        State.SetIterationTime(Wall);
        Writes = Port.Writes - WritesBefore;
        Accesses = Writes + Port.Reads - ReadsBefore;
        Cycles = Board.Port->Board().SpiEeprom.CompletedWrites - CyclesBefore;
    }
    const QByteArray Written(
        reinterpret_cast<const char*>(Board.Port->Board().SpiEeprom.Memory.data()), Size);
    if (!Success || Board.Boxes->Count != 0 || Written != Image) {
        State.SkipWithError("the download did not put the image on the board");
    }
    // The programming entry's eleven pauses of 20 ms and two of 4 ms after
    // each of the block's 20 bytes.
    const double Sleeps = 11 * 0.020 + 20 * 0.008;
    const double CycleSeconds = static_cast<double>(WriteCycleUs) / 1e6;
    const double Waits = static_cast<double>(Cycles) * CycleSeconds;
    State.counters["Wall_s"] = Wall;
    State.counters["Cpu_s"] = Cpu;
    State.counters["Sleeps_s"] = Sleeps;
    State.counters["WriteCycles"] = static_cast<double>(Cycles);
    State.counters["PortWrites"] = static_cast<double>(Writes);
    State.counters["PortAccesses"] = static_cast<double>(Accesses);
    // What is left beside the sleeps and the EEPROM's write cycles: the
    // accesses, and the yields of the waits.
    State.counters["HostBeyondSleepsAndCycles_s"] = Wall - Sleeps - Waits;
    if (WriteCycleUs == 0) {
        // Each wait is then the one poll that finds the part ready. On a real
        // port every access takes a microsecond and each wait lasts a write
        // cycle, while the host polls.
        State.counters["ns_per_access_beyond_sleeps"] =
            (Wall - Sleeps) * 1e9 / static_cast<double>(Accesses);
        State.counters["RealPortAccesses_s"] = static_cast<double>(Accesses) * RealAccessSeconds;
        State.counters["RealPort_s"] = static_cast<double>(Accesses) * RealAccessSeconds + Sleeps +
                                       static_cast<double>(Cycles) * RealWriteCycleSeconds;
    }
}

BENCHMARK(PortWrites)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(SpiExchange)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Download)
    ->Args({32768, 0})
    ->Args({1000, 0})
    ->Args({32768, 5000})
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

// Run as the window benchmarks run: the downloads count their own boxes.
int main(int argc, char** argv) { return WindowBench::RunBenchmarks(argc, argv); }
