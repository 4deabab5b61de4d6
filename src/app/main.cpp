#include <QApplication>
#include <cstdio>
#include <memory>

#include "compile/CompilerCentral.h"
#include "editor/EditBoxModuleWindow.h"
#include "frame/CommandLineInterpreter.h"
#include "frame/ErrorDisplay.h"
#include "link/frmDownloader.h"
#include "platform/Global.h"
#include "platform/HeadlessMessageBoxService.h"
#include "platform/QtClipboardService.h"
#include "platform/QtFileDialogService.h"
#include "platform/QtFontDialogService.h"
#include "platform/QtMessageBoxService.h"
#include "project/ProjectType.h"
#include "sim/SimulatedChipStore.h"
#include "sim/SimulatedParallelPort.h"
#include "sim/SimulatedSerialLine.h"
#include "sim/frmSimulatedChip.h"

namespace {
// The process's exit codes besides 0 (README lists them).
constexpr int NoDisplayExitCode = 1;
constexpr int UsageExitCode = 2;
const char* const NoDisplayText = "kavlin: no display; the windows cannot be shown\n";

bool HasDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

QString CommandLineOf(int argc, char** argv) {
    QStringList Arguments;
    for (int Index = 1; Index < argc; ++Index) {
        Arguments << QString::fromLocal8Bit(argv[Index]);
    }
    return CommandLineInterpreter::JoinArguments(Arguments);
}
}  // namespace

int main(int argc, char** argv) {
    // An empty word first would vanish in the joined line and turn
    // "kavlin '' /c" into an interactive open of "/c".
    if (argc >= 3 && argv[1][0] == '\0') {
        std::fputs("kavlin: the project name is empty; give it before the commands\n", stderr);
        return UsageExitCode;
    }
    // A command line must run where there is no display: a batch never shows
    // a window, and a project that is not found is reported and ends the run.
    int16_t ArgumentCount = 0;
    CommandLineInterpreter::ParseCommandLine(CommandLineOf(argc, argv),
                                             CommandLineInterpreter::MaxArguments, ArgumentCount);
    const bool NoPlatformChosen = !HasDisplay() && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
    if (ArgumentCount == 0 && NoPlatformChosen) {
        // Qt would abort for want of a display; say it as for a project name.
        std::fputs(NoDisplayText, stderr);
        return NoDisplayExitCode;
    }
    const bool ChoseOffscreen = ArgumentCount >= 1 && NoPlatformChosen;
    if (ChoseOffscreen) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }

    QApplication Application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kavlin"));
    QApplication::setOrganizationName(QStringLiteral("Kavlin"));
    CommandLineInterpreter::SetCommandLine(CommandLineOf(argc, argv));

    // Without a display nobody can answer a box: it takes its default button
    // and its text goes to standard error.
    const QString Platform = QGuiApplication::platformName();
    if (Platform == QStringLiteral("offscreen") || Platform == QStringLiteral("minimal")) {
        MessageBoxService::Install(std::make_unique<HeadlessMessageBoxService>());
    } else {
        MessageBoxService::Install(std::make_unique<QtMessageBoxService>());
        FileDialogService::Install(std::make_unique<QtFileDialogService>());
        FontDialogService::Install(std::make_unique<QtFontDialogService>());
    }
    ClipboardService::Install(std::make_unique<QtClipboardService>());
    ProjectModel::RegisterWithFrame();
    CompilerCentral::RegisterWithFrame();
    ModuleEditWindow::SetFactory([] { return std::make_unique<EditBoxModuleWindow>(); });
    // The "simulated chip" port entry: the whole system runs without hardware.
    // Its EEPROMs outlive the run as a real chip's do, in the user's data folder.
    const auto SimulatedChip = std::make_shared<SimulatedSerialLine>();
    SimulatedChip->Chip().KeepEepromsIn(
        std::make_unique<SimulatedChipStore>(SimulatedChipStore::DefaultFolder()));
    SimulatedSerialLine::InstallAsSimulatedChip(SimulatedChip);
    frmSimulatedChip::Attach(SimulatedChip);
    frmDownloader::SetSimulatedChipWindow([] {
        frmSimulatedChip& Window = Global<frmSimulatedChip>::Get();
        Window.show();
        Window.raise();
        Window.activateWindow();
    });
    // LPT 99, the simulated KV-10 board, keeps its EEPROMs beside the chip's.
    const auto SimulatedBoard = std::make_shared<SimulatedParallelPort>();
    SimulatedBoard->Board().KeepEepromsIn(
        SimulatedChipStore::ForBoard(SimulatedChipStore::DefaultBoardFolder()));
    SimulatedParallelPort::InstallAsSimulatedBoard(SimulatedBoard);

    frmDownloader& Downloader = Global<frmDownloader>::Get();
    Downloader.Form_Load();
    int ExitCode = 0;
    if (!frmDownloader::ProcessHasEnded() && ArgumentCount >= 2) {
        // A batch stopped by an unexpected error (reported in its log): nobody
        // is there to close the window, so the run ends here.
        ErrorDisplay::CloseLogFile();
    } else if (!frmDownloader::ProcessHasEnded() && ChoseOffscreen) {
        // Interactive from here on, but there is no display to show it on.
        std::fputs(NoDisplayText, stderr);
        ExitCode = NoDisplayExitCode;
    } else if (!frmDownloader::ProcessHasEnded()) {
        Downloader.show();
        ExitCode = QApplication::exec();
    }
    Global<frmSimulatedChip>::Unload();
    Global<frmDownloader>::Unload();
    // A build script must never read a stale log as this run's result.
    if (ArgumentCount >= 2 && ErrorDisplay::GetLogFailed()) {
        ExitCode = ErrorDisplay::LogFailedExitCode;
    }
    return ExitCode;
}
