#pragma once

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QApplication>
#include <QFile>
#include <QList>
#include <memory>

#include "BenchSettings.h"
#include "platform/ClipboardService.h"
#include "platform/HeadlessMessageBoxService.h"

// What the benchmarks of the windows share: their memory as the kernel
// counts it, and a main() that runs them offscreen with no box waiting and
// none of the user's settings touched.
namespace WindowBench {

inline long ResidentKilobytes() {
    QFile Statm(QStringLiteral("/proc/self/statm"));
    if (!Statm.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QList<QByteArray> Fields = Statm.readAll().split(' ');
    return Fields.size() > 1 ? Fields[1].toLong() * (sysconf(_SC_PAGESIZE) / 1024) : 0;
}

inline int RunBenchmarks(int argc, char** argv) {
    const BenchSettings Settings;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication Application(argc, argv);
    MessageBoxService::Install(std::make_unique<HeadlessMessageBoxService>(nullptr));
    ClipboardService::Install(std::make_unique<MemoryClipboardService>());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace WindowBench
