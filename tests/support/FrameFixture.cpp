#include "support/FrameFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "frame/CommandLineInterpreter.h"
#include "frame/DirectoryCentral.h"
#include "frame/DumpManager.h"
#include "frame/ErrorDisplay.h"
#include "frame/GlobalData.h"
#include "platform/ErrObject.h"
#include "platform/ParallelDevices.h"
#include "platform/SerialDevices.h"

void FrameFixture::SetUp() {
    ASSERT_TRUE(Temp.isValid());
    SavedCurrentDirectory = QDir::currentPath();
    auto Store = std::make_unique<MemorySettingsStore>();
    Settings = Store.get();
    SettingsStore::Install(std::move(Store));
    auto Scripted = std::make_unique<ScriptedMessageBoxService>();
    Boxes = Scripted.get();
    MessageBoxService::Install(std::move(Scripted));
    auto Virtual = std::make_unique<VirtualClockService>();
    Clock = Virtual.get();
    ClockService::Install(std::move(Virtual));

    ErrorDisplay::CloseLogFile();
    ErrorDisplay::InitializeErrorDisplay();
    ErrorDisplay::SetProbeErrorListener([this](const QString& Text) { ProbeErrors << Text; });
    DumpManager::InitializeDumpManager();
    CommandLineInterpreter::Initialize();
    CommandLineInterpreter::SetCommandLine(QString());
    CommandLineInterpreter::SetHost(nullptr);
    GlobalData::InitializeGlobalData();
    DirectoryCentral::SetWorkPath(Temp.path());
    // No test reaches the machine's serial devices: a stored port number
    // names nothing unless the test lists devices of its own.
    SerialDevices::SetDeviceLister([] { return QStringList(); });
    // Nor a parallel port of the machine.
    ParallelDevices::SetPpdevCalls(&Kernel);
    Err().Clear();
}

void FrameFixture::TearDown() {
    ErrorDisplay::CloseLogFile();
    ErrorDisplay::SetProbeErrorListener(nullptr);
    CommandLineInterpreter::Initialize();
    CommandLineInterpreter::SetHost(nullptr);
    QDir::setCurrent(SavedCurrentDirectory);
    SettingsStore::Install(std::make_unique<MemorySettingsStore>());
    MessageBoxService::Install(std::make_unique<ScriptedMessageBoxService>());
    ClockService::Install(std::make_unique<VirtualClockService>());
    SerialDevices::SetDeviceLister([] { return QStringList(); });
    ParallelDevices::SetPpdevCalls(nullptr);
}

void FrameFixture::MakeGoodInstallation() {
    WriteFile(QStringLiteral("inst/Temp/.keep"));
    WriteFile(QStringLiteral("inst/BinKV10/SymbolKV10.sym"));
    WriteFile(QStringLiteral("inst/BinKV20/SymbolKV20.sym"));
    SetSetting(QStringLiteral("Run_Dir"), TempPath() + QStringLiteral("/inst"));
    SetSetting(QStringLiteral("Work_Dir"), TempPath());
}

void FrameFixture::SetSetting(const QString& Key, const QString& Value) {
    Settings->SaveSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"), Key, Value);
}

QString FrameFixture::Setting(const QString& Key) {
    return Settings->GetSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"), Key);
}

QString FrameFixture::TempFile(const QString& RelativeName) const {
    return QDir(Temp.path()).filePath(RelativeName);
}

QByteArray FrameFixture::TempFileBytes(const QString& RelativeName) const {
    QFile File(TempFile(RelativeName));
    return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray("<none>");
}

QStringList FrameFixture::BoxMessages() const {
    QStringList Messages;
    for (const auto& Shown : Boxes->Boxes) {
        Messages << Shown.Title + QLatin1Char('|') + Shown.Text;
    }
    return Messages;
}

QString FrameFixture::WriteFile(const QString& RelativeName, const QByteArray& Content) {
    const QString Name = QDir(Temp.path()).filePath(RelativeName);
    QDir().mkpath(QFileInfo(Name).path());
    QFile File(Name);
    EXPECT_TRUE(File.open(QIODevice::WriteOnly));
    File.write(Content);
    return Name;
}
