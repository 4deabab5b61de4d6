#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStringList>
#include <memory>

#include "chip/PrfImageBuilder.h"
#include "compile/CompilerCentral.h"
#include "editor/EditBoxModuleWindow.h"
#include "editor/frmSourceEditor.h"
#include "link/DownloadPortExecutive.h"
#include "link/frmDownloader.h"
#include "platform/ClockService.h"
#include "platform/Global.h"
#include "platform/HeadlessMessageBoxService.h"
#include "platform/MessageBoxService.h"
#include "platform/SerialDevices.h"
#include "platform/SettingsStore.h"
#include "project/ProjectType.h"
#include "sim/SimulatedSerialLine.h"

// What the benchmarks that start the program's windows on a project of their
// own share: the boxes the user would see, the settings in memory, and the
// files and folders of the project and its installation.
namespace ProgramRig {

// Every box is answered at once with its default button, and kept as
// "Title|Text": what the user saw.
class RecordingMessageBoxService : public MessageBoxService {
  public:
    int Show(const QString& Text, const QString& Title, MsgBoxButtons Buttons,
             MsgBoxIcon) override {
        Shown << Title + QLatin1Char('|') + Text;
        return DefaultAnswer(Buttons);
    }
    QStringList Shown;
};

inline void Setting(const QString& Key, const QString& Value) {
    SettingsStore::Instance().SaveSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"), Key,
                                          Value);
}

inline bool WriteFile(const QString& Name, const QByteArray& Content) {
    QFile File(Name);
    return File.open(QIODevice::WriteOnly) && File.write(Content) == Content.size();
}

// The install directory's folders (Temp, BinKV10, BinKV20) and the others.
inline bool MakeFolders(const QString& Install, const QStringList& Others) {
    QStringList Folders{Install + QStringLiteral("/Temp"), Install + QStringLiteral("/BinKV10"),
                        Install + QStringLiteral("/BinKV20")};
    Folders << Others;
    for (const QString& Folder : Folders) {
        if (!QDir().mkpath(Folder)) {
            return false;
        }
    }
    return true;
}

// The KV-20 project "blink" of one module, main.bas, in the folder Work, with
// the preference file of a chip whose pins are all inputs.
inline bool WriteBlinkProject(const QString& Work, const QByteArray& MainModule) {
    return WriteFile(Work + QStringLiteral("/blink.kvp"), "main.bas\r\n") &&
           WriteFile(Work + QStringLiteral("/main.bas"), MainModule) &&
           PrfImageBuilder()
               .AllPins(kvInputTristate)
               .DefaultValues(2)
               .Save(Work + QStringLiteral("/blink.prf"));
}

// The services as the program installs them at start, with the settings in
// memory, boxes recorded, the real clock, no serial device of the machine's
// and Line as the simulated chip. The recorder is returned.
inline RecordingMessageBoxService* InstallServices(
    const std::shared_ptr<SimulatedSerialLine>& Line) {
    SettingsStore::Install(std::make_unique<MemorySettingsStore>());
    auto Recording = std::make_unique<RecordingMessageBoxService>();
    RecordingMessageBoxService* Boxes = Recording.get();
    MessageBoxService::Install(std::move(Recording));
    ClockService::Install(std::make_unique<RealClockService>());
    SerialDevices::SetDeviceLister([] { return QStringList(); });
    SimulatedSerialLine::InstallAsSimulatedChip(Line);
    ModuleEditWindow::SetFactory([] { return std::make_unique<EditBoxModuleWindow>(); });
    CompilerCentral::RegisterWithFrame();
    ProjectModel::RegisterWithFrame();
    return Boxes;
}

// The simulated chip as the KV-20's download port; the downloader started as
// the program starts it, then the editor from its tool bar with the project
// blink of the folder Work open.
inline frmSourceEditor& StartProgram(const QString& Work) {
    Setting(QStringLiteral("Port_Number"), QStringLiteral("99"));
    Setting(QStringLiteral("Port_Mode"), QStringLiteral("Serial"));
    Setting(QStringLiteral("Chip_Type"), QStringLiteral("KV20"));
    frmDownloader& Downloader = Global<frmDownloader>::Get();
    Downloader.Form_Load();
    Downloader.show();
    Downloader.ToolBarButton(QStringLiteral("Editor"))->trigger();
    frmSourceEditor& Editor = Global<frmSourceEditor>::Get();
    Editor.OpenProject(Work, QStringLiteral("blink"), QStringLiteral("kvp"), false);
    return Editor;
}

// Closes what StartProgram opened and takes back what InstallServices put in.
inline void StopProgram() {
    DownloadPortExecutive::ClosePorts();
    Global<ProjectType>::Unload();
    Global<frmSourceEditor>::Unload();
    Global<frmDownloader>::Unload();
    frmDownloader::ResetProcessEnded();
    CompilerCentral::ReleaseComponent();
    ModuleEditWindow::SetFactory(nullptr);
    SimulatedSerialLine::UninstallSimulatedChip();
    SerialDevices::SetDeviceLister(nullptr);
    MessageBoxService::Install(std::make_unique<HeadlessMessageBoxService>(nullptr));
}

}  // namespace ProgramRig
