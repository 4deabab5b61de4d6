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

// One module of LinesPerModule lines: procedures of ten lines each, the first
// module's first one Main.
QByteArray ModuleText(int Module) {
    QByteArray Text;
    int Lines = 0;
    for (int Procedure = 0; Lines < LinesPerModule; ++Procedure) {
        const QByteArray Name =
            Module == 0 && Procedure == 0
                ? QByteArray("Main")
                : "M" + QByteArray::number(Module) + "P" + QByteArray::number(Procedure);
        Text += "Sub " + Name + "()\r\n";
        Text += "    ' The procedure's own line of output, and a few lines of comment\r\n";
        Text += "    Debug.Print \"" + Name + "\"\r\n";
        for (int Line = 0; Line < 6; ++Line) {
            Text += "    ' " + QByteArray::number(Line) + " of the procedure's body\r\n";
        }
        Text += "End Sub\r\n";
        Lines += 10;
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
