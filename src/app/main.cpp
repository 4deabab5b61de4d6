#include <QApplication>
#include <cstdlib>
#include <memory>

#include "frame/CommandLineInterpreter.h"
#include "link/frmDownloader.h"
#include "platform/Global.h"
#include "platform/HeadlessMessageBoxService.h"
#include "platform/QtMessageBoxService.h"
#include "project/ProjectType.h"

namespace {
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
    // A batch must run where there is no display: it never shows a window.
    int16_t ArgumentCount = 0;
    CommandLineInterpreter::ParseCommandLine(CommandLineOf(argc, argv),
                                             CommandLineInterpreter::MaxArguments, ArgumentCount);
    if (ArgumentCount >= 2 && !HasDisplay() && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
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
    }
    ProjectModel::RegisterWithFrame();

    frmDownloader& Downloader = Global<frmDownloader>::Get();
    Downloader.Form_Load();
    int ExitCode = 0;
    if (!frmDownloader::ProcessHasEnded()) {
        Downloader.show();
        ExitCode = QApplication::exec();
    }
    Global<frmDownloader>::Unload();
    return ExitCode;
}
