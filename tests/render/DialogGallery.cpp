#include "render/DialogGallery.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <memory>

#include "chip/frmChipDialogKV10.h"
#include "chip/frmChipDialogKV20.h"
#include "chip/frmChipDialogKV30.h"
#include "chip/frmProcessorOptions.h"
#include "editor/frmEnvironmentOptions.h"
#include "editor/frmSearchAndReplace.h"
#include "link/frmDownloadPortParallel.h"
#include "link/frmDownloadPortSerial.h"
#include "link/frmTestProbe.h"
#include "monitor/frmDiagnosticATN.h"
#include "platform/Global.h"
#include "project/ProjectType.h"
#include "project/frmNewProject.h"
#include "project/frmProjectFiles.h"
#include "sim/SimulatedSerialLine.h"
#include "sim/frmSimulatedChip.h"

namespace {

template <typename Form>
DialogGalleryEntry GlobalForm(const QString& Name) {
    return {Name,
            [] {
                Form& Window = Global<Form>::Get();
                Window.show();
                return static_cast<QWidget*>(&Window);
            },
            [] { Global<Form>::Unload(); }};
}

// The simulated chip with its red LED lit, pin 5 driven high by the program
// and pin 10 switched high from outside.
DialogGalleryEntry SimulatedChipWindow() {
    static std::shared_ptr<SimulatedSerialLine> Line;
    return {QStringLiteral("frmSimulatedChip"),
            [] {
                Line = std::make_shared<SimulatedSerialLine>();
                SimulatedChipBoard& Board = Line->Chip().Board;
                Board.SetPinState(SimulatedChipBoard::RedLedPin, MachinePinState::OutputLow, 0);
                Board.SetPinState(5, MachinePinState::OutputHigh, 0);
                Board.SetPinState(6, MachinePinState::InputPullup, 0);
                Board.Drive(10, true);
                frmSimulatedChip::Attach(Line);
                frmSimulatedChip& Window = Global<frmSimulatedChip>::Get();
                Window.show();
                return static_cast<QWidget*>(&Window);
            },
            [] {
                Global<frmSimulatedChip>::Unload();
                frmSimulatedChip::Attach({});
                Line.reset();
            }};
}

// The project files dialog lists the open project's modules: a project of
// three, one of them in another folder, made in a folder of its own.
DialogGalleryEntry ProjectFilesForm() {
    auto Folder = std::make_shared<QTemporaryDir>();
    return {QStringLiteral("frmProjectFiles"),
            [Folder] {
                const QString Path = Folder->path();
                const auto Write = [&Path](const QString& Name, const QByteArray& Bytes) {
                    QFile File(Path + QLatin1Char('/') + Name);
                    if (File.open(QIODevice::WriteOnly)) {
                        File.write(Bytes);
                    }
                };
                Write(QStringLiteral("blink.kvp"),
                      "main.bas\r\nled.bas\r\n" + Path.toUtf8() + "/lib/serial.bas\r\n");
                Write(QStringLiteral("blink.prf"), QByteArray(8610, '\0'));
                Write(QStringLiteral("main.bas"), "Option Explicit\r\n");
                Write(QStringLiteral("led.bas"), "Option Explicit\r\n");
                QDir(Path).mkpath(QStringLiteral("lib"));
                Write(QStringLiteral("lib/serial.bas"), "Option Explicit\r\n");
                Project().OpenProject(Path, QStringLiteral("blink"), QStringLiteral("kvp"), false);
                frmProjectFiles& Window = Global<frmProjectFiles>::Get();
                Window.show();
                return static_cast<QWidget*>(&Window);
            },
            [] {
                Global<frmProjectFiles>::Unload();
                Global<ProjectType>::Unload();
            }};
}

}  // namespace

std::vector<DialogGalleryEntry> DialogGallery() {
    return {
        GlobalForm<frmSearchAndReplace>(QStringLiteral("frmSearchAndReplace")),
        GlobalForm<frmDownloadPortSerial>(QStringLiteral("frmDownloadPortSerial")),
        GlobalForm<frmDownloadPortParallel>(QStringLiteral("frmDownloadPortParallel")),
        GlobalForm<frmChipDialogKV20>(QStringLiteral("frmChipDialogKV20")),
        GlobalForm<frmChipDialogKV10>(QStringLiteral("frmChipDialogKV10")),
        GlobalForm<frmChipDialogKV30>(QStringLiteral("frmChipDialogKV30")),
        GlobalForm<frmProcessorOptions>(QStringLiteral("frmProcessorOptions")),
        GlobalForm<frmDiagnosticATN>(QStringLiteral("frmDiagnosticATN")),
        GlobalForm<frmTestProbe>(QStringLiteral("frmTestProbe")),
        GlobalForm<frmEnvironmentOptions>(QStringLiteral("frmEnvironmentOptions")),
        {QStringLiteral("frmEnvironmentOptions.EditorOptions"),
         [] {
             frmEnvironmentOptions& Window = Global<frmEnvironmentOptions>::Get();
             Window.SSTab1->setCurrentIndex(1);
             Window.show();
             return static_cast<QWidget*>(&Window);
         },
         [] { Global<frmEnvironmentOptions>::Unload(); }},
        GlobalForm<frmNewProject>(QStringLiteral("frmNewProject")),
        ProjectFilesForm(),
        SimulatedChipWindow(),
    };
}

QImage RenderDialog(QWidget& Dialog) {
    Dialog.adjustSize();
    QApplication::processEvents();
    return Dialog.grab().toImage();
}
