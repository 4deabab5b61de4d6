// Wall time and CPU time of the editor's Compile and Run (F5) on a KV-20,
// from the press to the chip running the new program: the compile through
// the compiler component, then the downloader's download of the
// configuration and the program image and the start of the chip, against the
// simulated chip with its line paced in real time. Set against the least
// time the protocol needs on the wire at 115200 baud for the whole sequence.
//
// The compiler component is the scriptable test double of the compiler
// (built for this benchmark in a folder of its own), told to write an image
// of the size under test. An image of a whole number of 128-byte read blocks
// meets the read-back's known gap: the last block is not waited for, the
// user sees "Verify error, external EEPROM" and "Download error:", and the
// chip is not started. Such a case is measured to the end of the command.

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>
#include <memory>
#include <string>

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
#include "platform/ClockService.h"
#include "platform/Global.h"
#include "platform/SerialDevices.h"
#include "platform/SettingsStore.h"
#include "project/ProjectType.h"
#include "sim/SimulatedSerialLine.h"

namespace {

using ProgramRig::RecordingMessageBoxService;
using ProgramRig::Setting;

const QString VerifyBox = QStringLiteral("Verify Error|Verify error, external EEPROM");
const QString DownloadErrorBox = QStringLiteral("Download Error|Download error:\n");

// A good installation with the compiler double, a KV-20 project of one
// module with its preference file, the simulated chip as the download port;
// started as the program starts: the downloader first, then the editor from
// its tool bar, which opens the project.
class CompileAndRunRig {
  public:
    explicit CompileAndRunRig(int32_t ImageBytes) {
        Boxes = ProgramRig::InstallServices(Line);
        SavedCurrentDirectory = QDir::currentPath();
        Ready = MakeInstallation(ImageBytes);
        if (!Ready) {
            return;
        }
        Editor = &ProgramRig::StartProgram(Work);
        QCoreApplication::processEvents();
        Ready = DownloadPortExecutive::DownloadPortIsOpen() && Project().IsDefined() &&
                Boxes->Shown.isEmpty();
    }
    ~CompileAndRunRig() {
        ProgramRig::StopProgram();
        DirectoryCentral::SetCompilerVersionCheck(nullptr);
        qunsetenv("KVCOMP_TEST_SCRIPT");
        QDir::setCurrent(SavedCurrentDirectory);
    }
    CompileAndRunRig(const CompileAndRunRig&) = delete;
    CompileAndRunRig& operator=(const CompileAndRunRig&) = delete;

    QByteArray WorkFile(const QString& Name) const {
        QFile File(Work + QLatin1Char('/') + Name);
        return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray();
    }

    std::shared_ptr<SimulatedSerialLine> Line = std::make_shared<SimulatedSerialLine>();
    RecordingMessageBoxService* Boxes = nullptr;
    frmSourceEditor* Editor = nullptr;
    bool Ready = false;

  private:
    bool WriteFile(const QString& Name, const QByteArray& Content) const {
        return ProgramRig::WriteFile(Folder.path() + QLatin1Char('/') + Name, Content);
    }
    bool MakeInstallation(int32_t ImageBytes) {
        const QString Install = Folder.path() + QStringLiteral("/install");
        Work = Folder.path() + QStringLiteral("/work");
        if (!Folder.isValid() || !ProgramRig::MakeFolders(Install, {Work})) {
            return false;
        }
        Setting(QStringLiteral("Run_Dir"), Install);
        Setting(QStringLiteral("Work_Dir"), Work);
        // A good compile writes an image of the size under test.
        const QString Script = Folder.path() + QStringLiteral("/script.txt");
        qputenv("KVCOMP_TEST_SCRIPT", Script.toUtf8());
        return WriteFile(QStringLiteral("install/BinKV10/SymbolKV10.sym"), "x") &&
               WriteFile(QStringLiteral("install/BinKV20/SymbolKV20.sym"), "x") &&
               QFile::link(QStringLiteral(KVCOMP_TEST_DOUBLE),
                           Install + QStringLiteral("/libKvComp141.so")) &&
               WriteFile(QStringLiteral("script.txt"),
                         "sizes=" + QByteArray::number(ImageBytes) + ",16,0\n") &&
               ProgramRig::WriteBlinkProject(Work,
                                             "Option Explicit\r\n"
                                             "Dim Count As Integer\r\n"
                                             "Public Sub Main()\r\n"
                                             "  Do\r\n"
                                             "    Count = Count + 1\r\n"
                                             "    Call Delay(0.5)\r\n"
                                             "  Loop\r\n"
                                             "End Sub\r\n");
    }

    QTemporaryDir Folder;
    QString Work;
    QString SavedCurrentDirectory;
};

void CompileAndRun(benchmark::State& State) {
    const int32_t Length = static_cast<int32_t>(State.range(0));
    CompileAndRunRig Rig(Length);
    if (!Rig.Ready) {
        const std::string Problem =
            "the installation, the project or the download port is not ready; boxes: " +
            Rig.Boxes->Shown.join(QStringLiteral(" / ")).toStdString();
        State.SkipWithError(Problem.c_str());
        return;
    }
    SimulatedSerialLine& Line = *Rig.Line;
    ClockService& Clock = ClockService::Instance();
    double Wall = 0, Cpu = 0;
    int64_t StartUs = 0;
    for (auto _ : State) {
        Line.ForgetHostEvents();
        const double CpuStart = ProcessCpuSeconds();
        StartUs = Clock.MicroTicks();
        Rig.Editor->mnuCompileAndRun->trigger();
        const int64_t ReturnUs = Clock.MicroTicks();
        Cpu = ProcessCpuSeconds() - CpuStart;
        // The command may return with the last bytes still in the transmit
        // FIFO: it is over when the line is.
        const int64_t EndUs = std::max(ReturnUs, Line.LastByteEndsNs() / 1000);
        Wall = static_cast<double>(EndUs - StartUs) / 1e6;
        State.SetIterationTime(Wall);
    }

    // What the user saw: no box at all, or the read-back's two.
    const QStringList& Shown = Rig.Boxes->Shown;
    const bool Verified = !Shown.contains(VerifyBox);
    const QStringList Expected =
        Verified ? QStringList() : QStringList{VerifyBox, DownloadErrorBox};
    const bool Running = !Line.Chip().InMonitor();
    const QByteArray Image = Rig.WorkFile(QStringLiteral("blink.kvb"));
    const auto& Memory = Line.Chip().ExternalEeprom.Memory;
    const bool ImageInChip =
        Image.size() == Length &&
        std::equal(Image.begin(), Image.end(), Memory.begin(),
                   [](char Byte, uint8_t Stored) { return static_cast<uint8_t>(Byte) == Stored; });

    // The sequence the command went through: halt, the configuration, the
    // image with its read-back and, when it verified, the start. Letting the
    // port go after the download and taking it again for the start costs the
    // wire nothing (the line is idle then); the chip is halted once more and
    // reset.
    WireMinimum Minimum(Line.TransmitFifoBytes, Line.Chip().ReplyLatencyNs);
    Minimum.Halt();
    Minimum.WriteInternalEEprom(
        static_cast<int64_t>(ConfigurationBytes::ConfigurationBlock{}.size()));
    Minimum.WriteExternalEEprom(Length);
    if (Verified) {
        Minimum.Halt();
        Minimum.Reset();
    }

    // The compile's share: until the download's first touch of the line (the
    // port's opening, before the ATN pulses) and until its first byte.
    int64_t FirstEventNs = -1, FirstByteNs = -1;
    for (const SimulatedSerialLine::HostEvent& Event : Line.HostEvents()) {
        if (FirstEventNs < 0) {
            FirstEventNs = Event.Ns;
        }
        if (Event.What == SimulatedSerialLine::HostEvent::Output) {
            FirstByteNs = Event.Ns;
            break;
        }
    }

    const std::string Unexpected =
        "unexpected boxes: " + Shown.join(QStringLiteral(" / ")).toStdString();
    if (Shown != Expected) {
        State.SkipWithError(Unexpected.c_str());
    } else if (!ImageInChip) {
        State.SkipWithError("the chip's external EEPROM does not hold the compiled image");
    } else if (Verified && !Running) {
        State.SkipWithError("the download verified, yet the chip stayed in its monitor");
    } else if (Line.SentBytes().size() != Minimum.Bytes()) {
        State.SkipWithError("the bytes on the wire differ from the protocol's count");
    }
    State.counters["Verified"] = Verified ? 1 : 0;
    State.counters["ChipRunning"] = Running ? 1 : 0;
    State.counters["Boxes"] = static_cast<double>(Shown.size());
    State.counters["WireBytes"] = static_cast<double>(Line.SentBytes().size());
    State.counters["WireMinimum_s"] = Minimum.Seconds();
    State.counters["Wall_s"] = Wall;
    State.counters["HostAdds_pct"] = 100.0 * (Wall - Minimum.Seconds()) / Minimum.Seconds();
    State.counters["Cpu_s"] = Cpu;
    State.counters["CpuOfMinimum_pct"] = 100.0 * Cpu / Minimum.Seconds();
    State.counters["Compile_s"] =
        FirstEventNs < 0 ? 0.0 : static_cast<double>(FirstEventNs / 1000 - StartUs) / 1e6;
    State.counters["FirstByte_s"] =
        FirstByteNs < 0 ? 0.0 : static_cast<double>(FirstByteNs / 1000 - StartUs) / 1e6;
}

// 1024 and 32768 bytes end on a whole read block and meet the read-back's
// gap; 1000 and 32767 bytes verify and start the chip.
BENCHMARK(CompileAndRun)
    ->Arg(1000)
    ->Arg(1024)
    ->Arg(32767)
    ->Arg(32768)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) { return WindowBench::RunBenchmarks(argc, argv); }
