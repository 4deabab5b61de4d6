// The monitor window under a chip that prints without pause at 115200 baud,
// with a capture running: ten minutes in virtual time and sixty seconds
// paced in real time. Reported: bytes missing or changed in the capture
// file, the window's largest length, the CPU the poll takes, the resident
// memory as it goes, and (in real time) how late a keystroke in an open
// module window is handled meanwhile. A bare QPlainTextEdit fed the same
// text, untrimmed, runs beside the window for comparison.

#include <benchmark/benchmark.h>
#include <time.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <memory>
#include <vector>

#include "WindowBench.h"
#include "editor/frmEditBoxType.h"
#include "link/frmDownloader.h"
#include "monitor/MonitorCapture.h"
#include "monitor/MonitorPortExecutive.h"
#include "platform/ClockService.h"
#include "platform/Global.h"
#include "platform/SerialDevices.h"
#include "sim/SimulatedSerialLine.h"

namespace {

double CpuSeconds(clockid_t Clock) {
    timespec Now{};
    clock_gettime(Clock, &Now);
    return static_cast<double>(Now.tv_sec) + static_cast<double>(Now.tv_nsec) / 1e9;
}

using WindowBench::ResidentKilobytes;

// Time that moves only when told, with Qt's events run on request.
class BenchVirtualClock : public ClockService {
  public:
    void Sleep(uint32_t Milliseconds) override { NowUs += int64_t{Milliseconds} * 1000; }
    int64_t TickCount() override { return NowUs / 1000; }
    double Timer() override { return static_cast<double>(NowUs % 86'400'000'000) / 1e6; }
    void DoEvents() override { QCoreApplication::processEvents(); }
    int64_t MicroTicks() override { return NowUs; }
    void SleepMicroseconds(int64_t Microseconds) override { NowUs += Microseconds; }
    int64_t NowUs = 0;
};

// The chip's program: numbered lines of measurements, printed so that the
// line is never idle.
class PrintingProgram {
  public:
    explicit PrintingProgram(SimulatedSerialLine& Line) : Line_(Line) {}
    void KeepBusy(int64_t ElapsedUs) {
        while (Printed_.size() * SimulatedSerialLine::ByteNs / 1000 < ElapsedUs + 100'000) {
            const QByteArray Text = QByteArray("Line ") + QByteArray::number(Number_) +
                                    ": t=21.5 C\tcount " + QByteArray::number(Number_ * 7) +
                                    (Number_ % 3 == 0 ? "\r\n" : "\r");
            ++Number_;
            Line_.ProgramPrints(Text);
            Printed_ += Text;
        }
    }
    const QByteArray& Printed() const { return Printed_; }

  private:
    SimulatedSerialLine& Line_;
    QByteArray Printed_;
    int64_t Number_ = 0;
};

// The window under test, its port open on the simulated chip at 115200 baud
// and a capture running; a bare edit beside it reads what the capture got.
struct MonitorRig {
    QTemporaryDir Folder;
    std::shared_ptr<SimulatedSerialLine> Line = std::make_shared<SimulatedSerialLine>();
    frmDownloader* Window = nullptr;
    QPlainTextEdit Bare;
    QFile CaptureReader;
    double BareCpu = 0;
    double PollCpu = 0;
    int MaxWindowLength = 0;
    bool Ready = false;
    bool WithBare = false;

    explicit MonitorRig(bool FeedBare) : WithBare(FeedBare) {
        SerialDevices::SetDeviceLister([] { return QStringList(); });
        SimulatedSerialLine::InstallAsSimulatedChip(Line);
        Window = &Global<frmDownloader>::Get();
        Window->resize(800, 600);
        Window->show();
        if (WithBare) {
            Bare.resize(800, 600);
            Bare.show();
        }
        MonitorPortInfoType Info;
        Info.IsDefined = true;
        Info.SetPortNumber(SerialDevices::SimulatedChipPort);
        Info.BaudRate = 115200;
        MonitorPortExecutive::SetMonitorPortInfo(Info);
        bool Success = false;
        const QString Name = Folder.path() + QStringLiteral("/bench.cap");
        MonitorCapture::OpenCaptureFile(Name, Success);
        CaptureReader.setFileName(Name);
        Ready = Success && MonitorPortExecutive::IsMonitorPortOpen() &&
                CaptureReader.open(QIODevice::ReadOnly);
    }
    ~MonitorRig() {
        MonitorCapture::CloseCaptureFile();
        Global<frmDownloader>::Unload();
        SimulatedSerialLine::UninstallSimulatedChip();
        SerialDevices::SetDeviceLister(nullptr);
    }
    void Poll() {
        const double Start = CpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        Window->tmrSerialInputPoller_Timer();
        PollCpu += CpuSeconds(CLOCK_THREAD_CPUTIME_ID) - Start;
        MaxWindowLength = std::max<int>(MaxWindowLength, Window->DebugWindowText().size());
        if (!WithBare) {
            return;
        }
        const QByteArray New = CaptureReader.readAll();
        if (!New.isEmpty()) {
            const QString Text = MonitorPortExecutive::FilterForDisplay(New);
            const double BareStart = CpuSeconds(CLOCK_THREAD_CPUTIME_ID);
            QTextCursor End(Bare.document());
            End.movePosition(QTextCursor::End);
            End.insertText(Text);
            Bare.moveCursor(QTextCursor::End);
            QCoreApplication::processEvents();
            BareCpu += CpuSeconds(CLOCK_THREAD_CPUTIME_ID) - BareStart;
        }
    }
    // Bytes of the capture file that differ from what the chip printed, and
    // the bytes printed that the file lacks.
    void Compare(const QByteArray& Printed, benchmark::State& State) {
        QFile File(Folder.path() + QStringLiteral("/bench.cap"));
        File.open(QIODevice::ReadOnly);
        const QByteArray Captured = File.readAll();
        int64_t Changed = 0;
        for (qsizetype Index = 0; Index < std::min(Captured.size(), Printed.size()); ++Index) {
            Changed += Captured[Index] != Printed[Index] ? 1 : 0;
        }
        State.counters["captured_bytes"] = static_cast<double>(Captured.size());
        State.counters["missing_bytes"] = static_cast<double>(Printed.size() - Captured.size());
        State.counters["changed_bytes"] = static_cast<double>(Changed);
        State.counters["window_max_chars"] = MaxWindowLength;
        State.counters["bare_chars"] = static_cast<double>(Bare.document()->characterCount());
    }
};

void MonitorVirtualTenMinutes(benchmark::State& State) {
    auto Owned = std::make_unique<BenchVirtualClock>();
    BenchVirtualClock& Clock = *Owned;
    ClockService::Install(std::move(Owned));
    MonitorRig Rig(State.range(0) != 0);
    if (!Rig.Ready) {
        State.SkipWithError("the monitor port or the capture did not open");
        return;
    }
    PrintingProgram Program(*Rig.Line);
    const int64_t Polls = 10 * 60 * 20;
    long RssAfterOneMinute = 0;
    qsizetype PrintedAfterOneMinute = 0;
    for (auto _ : State) {
        for (int64_t Poll = 1; Poll <= Polls; ++Poll) {
            Program.KeepBusy(Clock.NowUs);
            Clock.NowUs += 50'000;
            Rig.Poll();
            if (Poll == 20 * 60) {
                RssAfterOneMinute = ResidentKilobytes();
                PrintedAfterOneMinute = Program.Printed().size();
            }
        }
    }
    // The line runs dry: what is still on its way arrives, the chip stops.
    Clock.NowUs += 200'000;
    Rig.Poll();
    const int64_t Delivered = Clock.NowUs * 1000 / SimulatedSerialLine::ByteNs;
    Rig.Compare(Program.Printed().left(std::min<int64_t>(Delivered, Program.Printed().size())),
                State);
    State.counters["printed_bytes"] = static_cast<double>(Program.Printed().size());
    State.counters["poll_cpu_s"] = Rig.PollCpu;
    State.counters["poll_cpu_pct_of_core"] = 100.0 * Rig.PollCpu / 600.0;
    State.counters["bare_cpu_s"] = Rig.BareCpu;
    // The bench's own copy of everything printed grows by design; it is left out.
    State.counters["rss_growth_after_1min_kB"] =
        static_cast<double>(ResidentKilobytes() - RssAfterOneMinute -
                            (Program.Printed().size() - PrintedAfterOneMinute) / 1024);
}
// Arg 1 feeds the bare edit beside the window; its memory and time then
// count in the process's figures, so arg 0 gives the window's alone.
BENCHMARK(MonitorVirtualTenMinutes)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

void MonitorRealTimeSixtySeconds(benchmark::State& State) {
    ClockService::Install(std::make_unique<RealClockService>());
    // Arg 1: the bare edit beside the window; arg 2: nobody types, so the
    // process's figure is the monitor's and the simulated chip's alone.
    MonitorRig Rig(State.range(0) == 1);
    const bool Typing = State.range(0) != 2;
    if (!Rig.Ready) {
        State.SkipWithError("the monitor port or the capture did not open");
        return;
    }
    // The window's own 50 ms timer drives the poll; it is timed through here.
    QObject::disconnect(Rig.Window->tmrSerialInputPoller, &QTimer::timeout, Rig.Window,
                        &frmDownloader::tmrSerialInputPoller_Timer);
    QObject::connect(Rig.Window->tmrSerialInputPoller, &QTimer::timeout, [&Rig] { Rig.Poll(); });
    PrintingProgram Program(*Rig.Line);
    frmEditBoxType Module;
    Module.resize(800, 600);
    Module.show();
    QString Text;
    for (int Line = 0; Line < 2000; ++Line) {
        Text += QStringLiteral("x%1 = \"text %1\" ' note %1\r\n").arg(Line);
    }
    Module.Initialize(QStringLiteral("bench"), 1, Text);
    Module.rtfEditBox->setFocus();
    QElapsedTimer Since;
    Since.start();
    const int64_t StartUs = ClockService::Instance().MicroTicks();
    QTimer Feeder;
    Feeder.setTimerType(Qt::PreciseTimer);
    QObject::connect(&Feeder, &QTimer::timeout,
                     [&] { Program.KeepBusy(ClockService::Instance().MicroTicks() - StartUs); });
    // A keystroke every 37 ms: how late it is handled after it was due, and
    // how long its handling takes.
    std::vector<double> LatencyMs;
    int64_t Keys = 0;
    QTimer Typist;
    Typist.setTimerType(Qt::PreciseTimer);
    QObject::connect(&Typist, &QTimer::timeout, [&] {
        ++Keys;
        const double DueMs = static_cast<double>(Keys) * 37.0;
        QTest::keyClick(Module.rtfEditBox, Keys % 40 == 0 ? Qt::Key_Return : Qt::Key_A);
        LatencyMs.push_back(static_cast<double>(Since.nsecsElapsed()) / 1e6 - DueMs);
    });
    Program.KeepBusy(0);
    Feeder.start(10);
    if (Typing) {
        Typist.start(37);
    }
    const long RssStart = ResidentKilobytes();
    const double CpuStart = CpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
    long RssHalf = 0;
    qsizetype PrintedHalf = 0;
    for (auto _ : State) {
        QEventLoop Loop;
        QTimer::singleShot(30'000, [&] {
            RssHalf = ResidentKilobytes();
            PrintedHalf = Program.Printed().size();
        });
        QTimer::singleShot(60'000, &Loop, &QEventLoop::quit);
        Loop.exec();
    }
    const double Cpu = CpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - CpuStart;
    Feeder.stop();
    Typist.stop();
    QTest::qWait(300);
    Rig.Poll();
    const int64_t Delivered =
        (ClockService::Instance().MicroTicks() - StartUs) * 1000 / SimulatedSerialLine::ByteNs;
    Rig.Compare(Program.Printed().left(std::min<int64_t>(Delivered, Program.Printed().size())),
                State);
    std::sort(LatencyMs.begin(), LatencyMs.end());
    auto Percentile = [&](double P) {
        return LatencyMs.empty()
                   ? 0.0
                   : LatencyMs[std::min<size_t>(
                         LatencyMs.size() - 1,
                         static_cast<size_t>(P * static_cast<double>(LatencyMs.size())))];
    };
    State.counters["process_cpu_pct_of_core"] = 100.0 * Cpu / 60.0;
    State.counters["poll_cpu_pct_of_core"] = 100.0 * Rig.PollCpu / 60.0;
    State.counters["bare_cpu_pct_of_core"] = 100.0 * Rig.BareCpu / 60.0;
    State.counters["rss_start_kB"] = static_cast<double>(RssStart);
    State.counters["rss_growth_2nd_half_kB"] = static_cast<double>(
        ResidentKilobytes() - RssHalf - (Program.Printed().size() - PrintedHalf) / 1024);
    State.counters["keys"] = static_cast<double>(LatencyMs.size());
    State.counters["key_p50_ms"] = Percentile(0.50);
    State.counters["key_p99_ms"] = Percentile(0.99);
    State.counters["key_max_ms"] = LatencyMs.empty() ? 0.0 : LatencyMs.back();
}
BENCHMARK(MonitorRealTimeSixtySeconds)
    ->Arg(0)
    ->Arg(1)
    ->Arg(2)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) { return WindowBench::RunBenchmarks(argc, argv); }
