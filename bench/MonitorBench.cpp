// The monitor window under a chip that prints without pause at 115200 baud,
// with a capture running: ten minutes in virtual time and sixty seconds
// paced in real time. Reported: bytes missing or changed in the capture
// file, the window's largest length, the CPU the poll takes, the resident
// memory as it goes, and (in real time) how late a keystroke in an open
// module window is handled meanwhile. A bare QPlainTextEdit fed the same
// text, untrimmed, runs beside the window for comparison. In real time the
// chip is either the simulated chip inside the process, or a child process
// that prints into a pseudo-terminal the window opens as a real serial
// device: then the process's CPU is the program's alone.

#include <benchmark/benchmark.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
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
    // Without a line the text is only made, for a chip elsewhere to print.
    explicit PrintingProgram(SimulatedSerialLine* Line) : Line_(Line) {}
    void KeepBusy(int64_t ElapsedUs) {
        while (Printed_.size() * SimulatedSerialLine::ByteNs / 1000 < ElapsedUs + 100'000) {
            const QByteArray Text = QByteArray("Line ") + QByteArray::number(Number_) +
                                    ": t=21.5 C\tcount " + QByteArray::number(Number_ * 7) +
                                    (Number_ % 3 == 0 ? "\r\n" : "\r");
            ++Number_;
            if (Line_ != nullptr) {
                Line_->ProgramPrints(Text);
            }
            Printed_ += Text;
        }
    }
    const QByteArray& Printed() const { return Printed_; }

  private:
    SimulatedSerialLine* Line_;
    QByteArray Printed_;
    int64_t Number_ = 0;
};

// A chip in another process: it prints a given text into a pseudo-terminal
// at the wire's pace, 10 bits a byte at 115200 baud, from the moment it is
// told to go, for the given time, and then says how many bytes it wrote.
class PrintingChildProcess {
  public:
    PrintingChildProcess(const QByteArray& Text, int64_t DurationUs) {
        int Slave = -1;
        char Name[128] = {};
        if (::openpty(&Master_, &Slave, Name, nullptr, nullptr) != 0) {
            return;
        }
        // Raw before anyone opens it, so that no echo or CR translation
        // touches what the child writes before the window sets the line up.
        termios Raw{};
        ::tcgetattr(Slave, &Raw);
        ::cfmakeraw(&Raw);
        ::tcsetattr(Slave, TCSANOW, &Raw);
        ::close(Slave);
        Device_ = QString::fromLocal8Bit(Name);
        int Go[2];
        int Report[2];
        if (::pipe(Go) != 0 || ::pipe(Report) != 0) {
            return;
        }
        Child_ = ::fork();
        if (Child_ == 0) {
            // Only system calls here: the parent's other threads may hold
            // locks the child would inherit.
            ::close(Go[1]);
            ::close(Report[0]);
            char Byte = 0;
            if (::read(Go[0], &Byte, 1) != 1) {
                ::_exit(1);
            }
            timespec Start{};
            ::clock_gettime(CLOCK_MONOTONIC, &Start);
            int64_t Written = 0;
            const int64_t Total =
                std::min<int64_t>(Text.size(), DurationUs * 1000 / SimulatedSerialLine::ByteNs);
            while (Written < Total) {
                timespec Now{};
                ::clock_gettime(CLOCK_MONOTONIC, &Now);
                const int64_t ElapsedNs =
                    (Now.tv_sec - Start.tv_sec) * 1'000'000'000 + (Now.tv_nsec - Start.tv_nsec);
                const int64_t Due =
                    std::min<int64_t>(Total, ElapsedNs / SimulatedSerialLine::ByteNs);
                while (Written < Due) {
                    const ssize_t Done = ::write(Master_, Text.constData() + Written,
                                                 static_cast<size_t>(Due - Written));
                    if (Done <= 0) {
                        ::_exit(2);
                    }
                    Written += Done;
                }
                // A USB serial adapter hands its bytes over every few milliseconds.
                const timespec Pause{0, 4'000'000};
                ::nanosleep(&Pause, nullptr);
            }
            (void)!::write(Report[1], &Written, sizeof Written);
            // The master stays open until the parent is done with the port.
            ::pause();
            ::_exit(0);
        }
        ::close(Go[0]);
        ::close(Report[1]);
        GoHandle_ = Go[1];
        ReportHandle_ = Report[0];
    }
    ~PrintingChildProcess() {
        if (Child_ > 0) {
            ::kill(Child_, SIGKILL);
            ::waitpid(Child_, nullptr, 0);
        }
        for (const int Handle : {Master_, GoHandle_, ReportHandle_}) {
            if (Handle >= 0) {
                ::close(Handle);
            }
        }
    }
    bool Ready() const { return Child_ > 0 && !Device_.isEmpty(); }
    const QString& Device() const { return Device_; }
    void Go() { (void)!::write(GoHandle_, "g", 1); }
    // The bytes the child wrote, once it has finished; -1 before.
    int64_t WrittenBytes(int WaitMilliseconds) {
        pollfd Poll{ReportHandle_, POLLIN, 0};
        int64_t Written = -1;
        if (::poll(&Poll, 1, WaitMilliseconds) > 0 &&
            ::read(ReportHandle_, &Written, sizeof Written) != sizeof Written) {
            Written = -1;
        }
        return Written;
    }

  private:
    int Master_ = -1;
    int GoHandle_ = -1;
    int ReportHandle_ = -1;
    pid_t Child_ = -1;
    QString Device_;
};

// The window under test, its port open at 115200 baud on the simulated chip
// or on a named device, and a capture running; a bare edit beside it reads
// what the capture got.
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

    explicit MonitorRig(bool FeedBare, const QString& Device = QString()) : WithBare(FeedBare) {
        SerialDevices::SetDeviceLister([] { return QStringList(); });
        SimulatedSerialLine::InstallAsSimulatedChip(Line);
        if (!Device.isEmpty()) {
            qputenv("KAVLIN_SERIAL_PORTS", Device.toLocal8Bit());
        }
        Window = &Global<frmDownloader>::Get();
        Window->resize(800, 600);
        Window->show();
        if (WithBare) {
            Bare.resize(800, 600);
            Bare.show();
        }
        MonitorPortInfoType Info;
        Info.IsDefined = true;
        Info.SetPortNumber(Device.isEmpty() ? SerialDevices::SimulatedChipPort : int16_t{1});
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
        qunsetenv("KAVLIN_SERIAL_PORTS");
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
    PrintingProgram Program(Rig.Line.get());
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
    // Args 3 and 4: the chip is a child process behind a pseudo-terminal, so
    // the process's figure is the program's alone; 4 without typing.
    const int64_t Arg = State.range(0);
    const bool Typing = Arg != 2 && Arg != 4;
    const int64_t DurationUs = 60'000'000;
    std::unique_ptr<PrintingChildProcess> Child;
    PrintingProgram Program(nullptr);
    if (Arg >= 3) {
        Program.KeepBusy(DurationUs);
        Child = std::make_unique<PrintingChildProcess>(Program.Printed(), DurationUs);
        if (!Child->Ready()) {
            State.SkipWithError("no pseudo-terminal for the chip's process");
            return;
        }
    }
    MonitorRig Rig(Arg == 1, Child ? Child->Device() : QString());
    if (!Rig.Ready) {
        State.SkipWithError("the monitor port or the capture did not open");
        return;
    }
    if (!Child) {
        Program = PrintingProgram(Rig.Line.get());
    }
    // The window's own 50 ms timer drives the poll; it is timed through here.
    QObject::disconnect(Rig.Window->tmrSerialInputPoller, &QTimer::timeout, Rig.Window,
                        &frmDownloader::tmrSerialInputPoller_Timer);
    QObject::connect(Rig.Window->tmrSerialInputPoller, &QTimer::timeout, [&Rig] { Rig.Poll(); });
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
    // how long its handling takes. It is due 37 ms after the one before it
    // fired, so a single hold-up of the event loop counts once, for the key
    // it held up, and not again for every key after it.
    std::vector<double> LatencyMs;
    int64_t Keys = 0;
    double LastFiredMs = -1;
    QTimer Typist;
    Typist.setTimerType(Qt::PreciseTimer);
    QObject::connect(&Typist, &QTimer::timeout, [&] {
        ++Keys;
        const double FiredMs = static_cast<double>(Since.nsecsElapsed()) / 1e6;
        const double DueMs = LastFiredMs < 0 ? FiredMs : LastFiredMs + 37.0;
        LastFiredMs = FiredMs;
        QTest::keyClick(Module.rtfEditBox, Keys % 40 == 0 ? Qt::Key_Return : Qt::Key_A);
        LatencyMs.push_back(std::max(0.0, static_cast<double>(Since.nsecsElapsed()) / 1e6 - DueMs));
    });
    if (Child) {
        Child->Go();
    } else {
        Program.KeepBusy(0);
        Feeder.start(10);
    }
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
        QTimer::singleShot(static_cast<int>(DurationUs / 1000), &Loop, &QEventLoop::quit);
        Loop.exec();
    }
    const double Cpu = CpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - CpuStart;
    Feeder.stop();
    Typist.stop();
    // The chip stops; what is still on its way arrives.
    const int64_t Written = Child ? Child->WrittenBytes(2000) : 0;
    QTest::qWait(300);
    Rig.Poll();
    const int64_t Delivered = Child ? Written
                                    : (ClockService::Instance().MicroTicks() - StartUs) * 1000 /
                                          SimulatedSerialLine::ByteNs;
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
    ->Arg(3)
    ->Arg(4)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) { return WindowBench::RunBenchmarks(argc, argv); }
