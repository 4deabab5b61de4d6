#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <cstdio>

#include "platform/SettingsStore.h"
#include "setup/FirstStartSettings.h"

namespace {
const char* const Usage =
    "usage: kavlin-setup [--run-dir DIR] [--work-dir DIR] [--simulated-chip]\n"
    "Writes each of these settings that the user has not set: the install directory\n"
    "(Run_Dir), the work path (Work_Dir, made if missing), and port 99, the simulated\n"
    "chip, as the download port and the monitor port.\n";
}  // namespace

int main(int argc, char** argv) {
    QCoreApplication Application(argc, argv);
    FirstStartSettings::Choices What;
    const QStringList Arguments = QCoreApplication::arguments().mid(1);
    for (qsizetype Index = 0; Index < Arguments.size(); ++Index) {
        const QString& Argument = Arguments[Index];
        const bool HasValue = Index + 1 < Arguments.size();
        if (Argument == QStringLiteral("--run-dir") && HasValue) {
            What.RunDir = QFileInfo(Arguments[++Index]).absoluteFilePath();
        } else if (Argument == QStringLiteral("--work-dir") && HasValue) {
            What.WorkDir = QFileInfo(Arguments[++Index]).absoluteFilePath();
        } else if (Argument == QStringLiteral("--simulated-chip")) {
            What.SimulatedChip = true;
        } else {
            std::fputs(Usage, stderr);
            return 2;
        }
    }
    if (!What.WorkDir.isEmpty() && !QDir().mkpath(What.WorkDir)) {
        std::fprintf(stderr, "kavlin-setup: cannot make the work path %s\n",
                     qUtf8Printable(What.WorkDir));
        return 1;
    }
    bool Success = false;
    const QStringList Written = FirstStartSettings::WriteMissing(What, Success);
    for (const QString& Key : Written) {
        std::printf("kavlin-setup: wrote %s\n", qUtf8Printable(Key));
    }
    if (!Success) {
        std::fprintf(stderr, "kavlin-setup: %s\n",
                     qUtf8Printable(SettingsStore::Instance().FailureText()));
        return 1;
    }
    return 0;
}
