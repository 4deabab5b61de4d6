// Wall time of one compile of a project of 10 modules of 1,000 lines each
// through the bundled compiler component, libKvComp141.so as it is built
// beside the program: loaded through the program's own loader, configured as
// the compile sequence configures it for a KV-20, and RunCompile reading the
// project and module files from disk and writing the object files, the image
// and the symbol map. The aim is under 100 ms.

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <memory>

#include "compile/CompilerComponent.h"

namespace {

constexpr int ModuleCount = 10;
constexpr int LinesPerModule = 1000;

// One module of LinesPerModule lines, written as a program for the chip is:
// a module variable, then functions of twenty lines (a local, arithmetic, a
// decision, a counter, comments and blank lines) until the lines are used up; the first module
// begins with Main, which calls into every module.
QByteArray ModuleText(int Module) {
    const QByteArray M = QByteArray::number(Module);
    QByteArray Text = "Option Explicit\r\n' Module " + M + " of the benchmark's project\r\n" +
                      "Public Calls" + M + " As Integer\r\n\r\n";
    int Lines = 4;
    if (Module == 0) {
        Text += "Sub Main()\r\n";
        for (int Other = 0; Other < ModuleCount; ++Other) {
            Text += "    Debug.Print M" + QByteArray::number(Other) + "F0(3)\r\n";
        }
        Text += "End Sub\r\n";
        Lines += ModuleCount + 2;
    }
    for (int Function = 0; Lines + 20 <= LinesPerModule; ++Function) {
        const QByteArray Name = "M" + M + "F" + QByteArray::number(Function);
        Text += "' " + Name +
                ": a step of the computation\r\n"
                "' It scales X, keeps the result in range and counts the calls.\r\n"
                "Function " +
                Name +
                "(ByVal X As Integer) As Integer\r\n"
                "    Dim Y As Integer\r\n"
                "\r\n"
                "    ' Scale the input\r\n"
                "    Y = X * 3 + " +
                QByteArray::number(Function % 100) +
                "\r\n"
                "\r\n"
                "    ' Keep it in range\r\n"
                "    If Y > 1000 Then\r\n"
                "        Y = Y - 1000\r\n"
                "    End If\r\n"
                "\r\n"
                "    ' One more call\r\n"
                "    Calls" +
                M + " = Calls" + M +
                " + 1\r\n"
                "\r\n"
                "    " +
                Name +
                " = Y\r\n"
                "End Function\r\n"
                "\r\n"
                "\r\n";
        Lines += 20;
    }
    while (Lines < LinesPerModule) {
        Text += "' end of module " + M + "\r\n";
        ++Lines;
    }
    return Text;
}

struct Installation {
    QTemporaryDir Root;
    QString Install;
    QString Project;
    std::unique_ptr<CompilerComponent> Component;
    QString Failure;

    Installation() {
        Install = Root.filePath(QStringLiteral("install"));
        const QString Work = Root.filePath(QStringLiteral("work"));
        QByteArray ProjectText;
        for (const QString& Dir :
             {Install + QStringLiteral("/BinKV10"), Install + QStringLiteral("/BinKV20"), Work}) {
            QDir().mkpath(Dir);
        }
        for (const QString& Library :
             {QStringLiteral("BinKV10/SymbolKV10.sym"), QStringLiteral("BinKV20/SymbolKV20.sym")}) {
            QFile::copy(QStringLiteral(KAVLIN_SYMBOL_FILES "/") + Library,
                        Install + QLatin1Char('/') + Library);
        }
        for (int Module = 0; Module < ModuleCount; ++Module) {
            const QString Name = QStringLiteral("module%1.bas").arg(Module);
            QFile File(Work + QLatin1Char('/') + Name);
            File.open(QIODevice::WriteOnly);
            File.write(ModuleText(Module));
            ProjectText += Name.toUtf8() + "\r\n";
        }
        Project = Work + QStringLiteral("/big.kvp");
        QFile File(Project);
        File.open(QIODevice::WriteOnly);
        File.write(ProjectText);
        File.close();
        Component =
            CompilerComponent::Load({QFileInfo(QStringLiteral(KVCOMP_BUNDLED)).absolutePath()});
    }

    // One compile as the compile sequence makes it for a KV-20.
    bool Compile() {
        bool Ok = false;
        Component->SetCodeBoundaries(0, 32767, Ok);
        Component->SetChipType(2);
        Component->SetRamBoundaries(207, 607, Ok);
        Component->SetStrictSyntax(true);
        Component->SetPersistentBoundaries(32, 511, Ok);
        Component->SetOptimize(false);
        Component->SetStringSize(20, Ok);
        Component->SetLibraryPath(Install, Ok);
        Component->SetChipFamilyFlag(true);
        Component->SetWindowCenter(true, 4000, 6000);
        CompilerComponent::CompileResult Result;
        Component->RunCompile(Project, Result);
        Failure = Result.ErrorDescription;
        return Result.Success;
    }
};

void CompileTenModulesOf1000Lines(benchmark::State& State) {
    for (int Module = 0; Module < ModuleCount; ++Module) {
        if (ModuleText(Module).count("\r\n") != LinesPerModule) {
            State.SkipWithError("a module of the wrong length");
            return;
        }
    }
    Installation Setup;
    if (!Setup.Compile()) {
        State.SkipWithError(("the compile failed: " + Setup.Failure.toStdString()).c_str());
        return;
    }
    for (auto _ : State) {
        if (!Setup.Compile()) {
            State.SkipWithError("a compile failed");
            return;
        }
    }
    int32_t CodeSize = 0;
    Setup.Component->GetCodeSize(CodeSize);
    State.counters["code_bytes"] = CodeSize;
    State.counters["lines"] = ModuleCount * LinesPerModule;
}
BENCHMARK(CompileTenModulesOf1000Lines)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
