// The whole loop in real time, with the bundled compiler component and the
// simulated chip on port 99 paced in real time, the monitor port stored open
// on the same line as a user who works with it has it.
//
// F5ToFirstLine: from the press of F5 in the editor (save, compile with the
// real component, download, start) to the first line of the blink program's
// output shown in the downloader's window. Set against the compile's own time
// plus the least time the protocol needs on the wire for the image: the host
// may add at most 10% of that.
//
// BlinkCpu: the chip runs blink (a print and an LED toggle every half
// second), the downloader's monitor poll running and the Simulated Chip
// window shown; the process's CPU over the run's wall time, in percent of
// one core.

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QPlainTextEdit>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "ProgramRig.h"
#include "WindowBench.h"
#include "WireBench.h"
#include "chip/ConfigurationBytes.h"
#include "compile/CompilerCentral.h"
#include "editor/EditBoxModuleWindow.h"
#include "editor/frmSourceEditor.h"
#include "frame/DirectoryCentral.h"
#include "link/DownloadPortExecutive.h"
#include "link/frmDownloader.h"
#include "monitor/MonitorPortExecutive.h"
#include "platform/ClockService.h"
#include "platform/Global.h"
#include "platform/SerialDevices.h"
#include "platform/SettingsStore.h"
#include "project/ProjectType.h"
#include "sim/SimulatedSerialLine.h"
#include "sim/frmSimulatedChip.h"

namespace {

using ProgramRig::RecordingMessageBoxService;
using ProgramRig::Setting;

const QByteArray BlinkProgram =
    "Option Explicit\r\n"
    "Dim Count As Integer\r\n"
    "\r\n"
    "Sub Main()\r\n"
    "    Do\r\n"
    "        Count = Count + 1\r\n"
    "        PutLed 1, Count Mod 2 = 0\r\n"
    "        Debug.Print \"blink\"; Count\r\n"
    "        Sleep 500\r\n"
    "    Loop\r\n"
    "End Sub\r\n";

// An installation with the real system library, the bundled component beside
// the program, the blink project with its preference file; started as the
// program starts, the Simulated Chip window shown.
class LoopRig {
  public:
    LoopRig() {
        Boxes = ProgramRig::InstallServices(Line);
        frmSimulatedChip::Attach(Line);
        SavedCurrentDirectory = QDir::currentPath();
        Ready = MakeInstallation();
        if (!Ready) {
            return;
        }
        Setting(QStringLiteral("KV20port_Number"), QStringLiteral(" 99, 115200,N,8,10"));
        Editor = &ProgramRig::StartProgram(Work);
        Downloader = &Global<frmDownloader>::Get();
        Global<frmSimulatedChip>::Get().show();
        QCoreApplication::processEvents();
        Ready = DownloadPortExecutive::DownloadPortIsOpen() &&
                MonitorPortExecutive::IsMonitorPortOpen() && Project().IsDefined() &&
                Boxes->Shown.isEmpty();
    }
    ~LoopRig() {
        Global<frmSimulatedChip>::Unload();
        ProgramRig::StopProgram();
        QDir::setCurrent(SavedCurrentDirectory);
    }
    LoopRig(const LoopRig&) = delete;
    LoopRig& operator=(const LoopRig&) = delete;

    QString Shown() const { return Downloader->txtDebugWindow->toPlainText(); }
    int64_t ImageBytes() const { return QFileInfo(Work + QStringLiteral("/blink.kvb")).size(); }
    // Lets the windows' timers run for the given time.
    static void RunEvents(int Milliseconds) { QTest::qWait(Milliseconds); }

    std::shared_ptr<SimulatedSerialLine> Line = std::make_shared<SimulatedSerialLine>();
    RecordingMessageBoxService* Boxes = nullptr;
    frmDownloader* Downloader = nullptr;
    frmSourceEditor* Editor = nullptr;
    bool Ready = false;

  private:
    bool MakeInstallation() {
        const QString Install = Folder.path() + QStringLiteral("/install");
        const QString Program = Folder.path() + QStringLiteral("/bin");
        Work = Folder.path() + QStringLiteral("/work");
        if (!Folder.isValid() || !ProgramRig::MakeFolders(Install, {Program, Work})) {
            return false;
        }
        Setting(QStringLiteral("Run_Dir"), Install);
        Setting(QStringLiteral("Work_Dir"), Work);
        DirectoryCentral::SetApplicationPath(Program);
        for (const QString& Library :
             {QStringLiteral("BinKV10/SymbolKV10.sym"), QStringLiteral("BinKV20/SymbolKV20.sym")}) {
            if (!QFile::copy(QStringLiteral(KAVLIN_SYMBOL_FILES "/") + Library,
                             Install + QLatin1Char('/') + Library)) {
                return false;
            }
        }
        return QFile::link(QStringLiteral(KVCOMP_BUNDLED),
                           Program + QStringLiteral("/libKvComp141.so")) &&
               ProgramRig::WriteBlinkProject(Work, BlinkProgram);
    }

    QTemporaryDir Folder;
    QString Work;
    QString SavedCurrentDirectory;
};

void Fail(benchmark::State& State, const std::string& Problem) {
    State.SkipWithError(Problem.c_str());
}

void F5ToFirstLine(benchmark::State& State) {
    LoopRig Rig;
    if (!Rig.Ready) {
        Fail(State, "the installation, the project or the ports are not ready; boxes: " +
                        Rig.Boxes->Shown.join(QStringLiteral(" / ")).toStdString());
        return;
    }
    const QString FirstLine = QStringLiteral("\nblink 1\n");
    ClockService& Clock = ClockService::Instance();
    SimulatedSerialLine& Line = *Rig.Line;
    std::vector<double> Walls, Compiles, Shows;
    double Cpu = 0;
    for (auto _ : State) {
        Line.ForgetHostEvents();
        Rig.Downloader->txtDebugWindow->clear();
        Rig.Editor->activateWindow();
        if (!QTest::qWaitForWindowActive(Rig.Editor)) {
            Fail(State, "the editor did not become the active window");
            return;
        }
        const double CpuStart = ProcessCpuSeconds();
        const int64_t StartUs = Clock.MicroTicks();
        QTest::keyClick(Rig.Editor, Qt::Key_F5);
        // The program's first line, through the monitor port's poll.
        while (!Rig.Shown().contains(FirstLine) && Clock.MicroTicks() - StartUs < 10'000'000) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1);
        }
        const int64_t EndUs = Clock.MicroTicks();
        Cpu = std::max(Cpu, ProcessCpuSeconds() - CpuStart);
        Walls.push_back(static_cast<double>(EndUs - StartUs) / 1e6);
        // The compile's share: until the download's first touch of the line.
        const auto& Events = Line.HostEvents();
        Compiles.push_back(
            Events.empty() ? 0.0 : static_cast<double>(Events.front().Ns / 1000 - StartUs) / 1e6);
        // From the line bringing the first line's last byte in to the window
        // showing it: the monitor poll's wait.
        const int64_t StartedNs = Line.LastByteEndsNs() + Line.Chip().StartupCodeNs;
        const int64_t LineInUs =
            (StartedNs + QByteArray("blink 1\r\n").size() * Line.LineByteNs()) / 1000;
        Shows.push_back(static_cast<double>(EndUs - LineInUs) / 1e6);
        State.SetIterationTime(Walls.back());
        if (!Rig.Shown().contains(FirstLine)) {
            Fail(State, "the program's first line never came: " + Rig.Shown().toStdString());
            return;
        }
        // The next press starts from a chip running the old program, at
        // another phase of the monitor poll's 50 ms each time.
        LoopRig::RunEvents(200 + 17 * static_cast<int>(Walls.size()));
    }
    const int64_t Length = Rig.ImageBytes();
    WireMinimum Minimum(Line.TransmitFifoBytes, Line.Chip().ReplyLatencyNs);
    Minimum.Halt();
    Minimum.WriteInternalEEprom(
        static_cast<int64_t>(ConfigurationBytes::ConfigurationBlock{}.size()));
    Minimum.WriteExternalEEprom(Length);
    Minimum.Halt();
    Minimum.Reset();
    // The chip's start-up code, then the program's first line on the wire
    // at the line's rate: the chip's time, not the host's.
    const double ChipSeconds =
        static_cast<double>(Line.Chip().StartupCodeNs +
                            QByteArray("blink 1\r\n").size() * Line.LineByteNs()) /
        1e9;
    const double Least = Minimum.Seconds() + ChipSeconds;
    double WorstAdds = 0;
    int Within = 0;
    for (size_t Index = 0; Index < Walls.size(); ++Index) {
        const double Adds = Walls[Index] - Compiles[Index] - Least;
        WorstAdds = std::max(WorstAdds, Adds);
        Within += Walls[Index] <= Compiles[Index] + 1.1 * Least ? 1 : 0;
    }
    if (!Rig.Boxes->Shown.isEmpty()) {
        Fail(State, "boxes: " + Rig.Boxes->Shown.join(QStringLiteral(" / ")).toStdString());
    }
    State.counters["ImageBytes"] = static_cast<double>(Length);
    State.counters["CompileMax_s"] = *std::max_element(Compiles.begin(), Compiles.end());
    State.counters["Least_s"] = Least;
    State.counters["WallMin_s"] = *std::min_element(Walls.begin(), Walls.end());
    State.counters["WallMax_s"] = *std::max_element(Walls.begin(), Walls.end());
    State.counters["HostAddsMax_pct"] = 100.0 * WorstAdds / Least;
    State.counters["WithinBudget"] = Within;
    State.counters["CpuMax_s"] = Cpu;
    State.counters["ShowMax_s"] = *std::max_element(Shows.begin(), Shows.end());
}

BENCHMARK(F5ToFirstLine)->Iterations(20)->UseManualTime()->Unit(benchmark::kMillisecond);

// arg: the seconds the chip runs blink.
void BlinkCpu(benchmark::State& State) {
    LoopRig Rig;
    if (!Rig.Ready) {
        Fail(State, "the installation, the project or the ports are not ready; boxes: " +
                        Rig.Boxes->Shown.join(QStringLiteral(" / ")).toStdString());
        return;
    }
    Rig.Editor->mnuCompileAndRun->trigger();
    LoopRig::RunEvents(1000);
    const int64_t Seconds = State.range(0);
    double Percent = 0;
    int Lines = 0;
    for (auto _ : State) {
        const int StartLines = Rig.Downloader->txtDebugWindow->blockCount();
        QElapsedTimer Timer;
        Timer.start();
        const double CpuStart = ProcessCpuSeconds();
        LoopRig::RunEvents(static_cast<int>(Seconds * 1000));
        const double Cpu = ProcessCpuSeconds() - CpuStart;
        const double Wall = static_cast<double>(Timer.nsecsElapsed()) / 1e9;
        Percent = 100.0 * Cpu / Wall;
        Lines = Rig.Downloader->txtDebugWindow->blockCount() - StartLines;
        State.SetIterationTime(Wall);
    }
    if (!Rig.Boxes->Shown.isEmpty()) {
        Fail(State, "boxes: " + Rig.Boxes->Shown.join(QStringLiteral(" / ")).toStdString());
    } else if (!Global<frmSimulatedChip>::Get().isVisible() ||
               !Global<frmSimulatedChip>::Get().tmrRefresh->isActive() ||
               !Rig.Downloader->tmrSerialInputPoller->isActive()) {
        Fail(State, "the Simulated Chip window or the monitor poll was not running");
    } else if (Lines < Seconds * 2 - 2) {
        Fail(State, "the program printed too little: " + std::to_string(Lines) + " lines");
    }
    State.counters["Lines"] = Lines;
    State.counters["Cpu_pct"] = Percent;
}

BENCHMARK(BlinkCpu)->Arg(30)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) { return WindowBench::RunBenchmarks(argc, argv); }
