#include "CompileFixture.h"

#include <QDir>
#include <QFile>

#include "chip/FileExecutivePRF.h"
#include "compile/CompilerCentral.h"
#include "frame/DirectoryCentral.h"
#include "frame/GlobalData.h"
#include "project/ModuleEditWindow.h"
#include "project/ProjectType.h"
#include "support/ModelEditWindow.h"

void CompileFixture::SetUp() {
    FrameFixture::SetUp();
    Install = TempPath() + QStringLiteral("/install");
    Work = TempPath() + QStringLiteral("/work");
    for (const QString& Dir :
         {Install + QStringLiteral("/Temp"), Install + QStringLiteral("/BinKV10"),
          Install + QStringLiteral("/BinKV20"), Work}) {
        ASSERT_TRUE(QDir().mkpath(Dir));
    }
    WriteFile(QStringLiteral("install/BinKV10/SymbolKV10.sym"), "x");
    WriteFile(QStringLiteral("install/BinKV20/SymbolKV20.sym"), "x");
    InstallComponent(QStringLiteral(KVCOMP_TEST_DOUBLE));
    SetSetting(QStringLiteral("Run_Dir"), Install);
    SetSetting(QStringLiteral("Work_Dir"), Work);
    DirectoryCentral::InitializeDirectories();
    // The program's directory is one of the test's own, with no component
    // beside the program unless a test puts one there.
    Program = TempPath() + QStringLiteral("/bin");
    ASSERT_TRUE(QDir().mkpath(Program));
    DirectoryCentral::SetApplicationPath(Program);
    qputenv("KVCOMP_TEST_SCRIPT", (TempPath() + QStringLiteral("/script.txt")).toUtf8());
    qputenv("KVCOMP_TEST_RECORD", (TempPath() + QStringLiteral("/record.txt")).toUtf8());
    qunsetenv("KVCOMP_TEST_CREATE");
    CompilerCentral::ReleaseComponent();
    CompilerHost::Install(&Host);
    ModuleEditWindow::SetFactory([] { return std::make_unique<ModelEditWindow>(); });
    GlobalData::ChipType = 2;
}

void CompileFixture::TearDown() {
    Global<ProjectType>::Unload();
    Global<FileExecutivePRF>::Unload();
    ModuleEditWindow::SetFactory(nullptr);
    CompilerHost::Uninstall(&Host);
    CompilerCentral::ReleaseComponent();
    CompilerCentral::SetKvmFileHandler(nullptr);
    qunsetenv("KVCOMP_TEST_SCRIPT");
    qunsetenv("KVCOMP_TEST_RECORD");
    qunsetenv("KVCOMP_TEST_CREATE");
    GlobalData::ProjectFilename.clear();
    GlobalData::DownloadFilename.clear();
    FrameFixture::TearDown();
}

void CompileFixture::InstallComponent(const QString& File) {
    const QString Link = Install + QStringLiteral("/libKvComp141.so");
    QFile::remove(Link);
    ASSERT_TRUE(QFile::link(File, Link)) << File.toStdString();
}

void CompileFixture::Script(const QByteArray& Lines) {
    WriteFile(QStringLiteral("script.txt"), Lines);
}

QStringList CompileFixture::Calls() const {
    QFile File(TempPath() + QStringLiteral("/record.txt"));
    if (!File.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(File.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QStringList CompileFixture::CompileCalls() const {
    QStringList All = Calls();
    while (!All.isEmpty() && !All.first().startsWith(QStringLiteral("SetCodeBoundaries"))) {
        All.removeFirst();
    }
    return All;
}

void CompileFixture::MakeProject(const QString& Name,
                                 const QList<QPair<QString, QByteArray>>& Modules) {
    QByteArray ProjectFile;
    for (const auto& Module : Modules) {
        ProjectFile += Module.first.toUtf8() + ".bas\r\n";
        WriteFile(QStringLiteral("work/") + Module.first + QStringLiteral(".bas"), Module.second);
    }
    WriteFile(QStringLiteral("work/") + Name + QStringLiteral(".kvp"), ProjectFile);
    Global<ProjectType>::Unload();
    // The preference file is missing; answered No, the mirror keeps the
    // current chip's defaults, which is what the tests start from.
    Boxes->QueueAnswer(7);
    Project().OpenProject(Work, Name, QStringLiteral("kvp"), false);
    Boxes->Boxes.clear();
}

QString CompileFixture::ObjectFile(const QString& Name) const {
    QFile File(Install + QStringLiteral("/Temp/") + Name + QStringLiteral(".obj"));
    return File.open(QIODevice::ReadOnly) ? QString::fromUtf8(File.readAll()).trimmed()
                                          : QStringLiteral("<none>");
}

QStringList CompileFixture::BoxTexts() const { return Boxes->Texts(); }

QByteArray CompileFixture::WorkFile(const QString& Name) const {
    QFile File(Work + QLatin1Char('/') + Name);
    return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray("<none>");
}
