#include "frame/CommandLineInterpreter.h"

#include "frame/DirectoryCentral.h"
#include "frame/ErrorDisplay.h"
#include "frame/UtilitiesFilename.h"
#include "platform/ClockService.h"

namespace CommandLineInterpreter {

namespace {
bool CommandLineMode = false;
QString ProcessCommandLine;
CommandLineHost* Host = nullptr;

// Step 13: the end of a batch or of a failed interactive opening.
void EndRun() {
    ErrorDisplay::CloseLogFile();
    if (Host != nullptr) {
        Host->UnloadDownloader();
    }
}

void ProjectNotFound(const QString& ProjectFile) {
    ErrorDisplay::ShowErrorMessage(QStringLiteral("Project not found:  ") + ProjectFile,
                                   QStringLiteral("Project Not Found"));
}

// The two files a command needs: each missing one is reported by its own
// text and title; False when the batch must end.
bool BothFilesExist(const QString& FirstFile, const QString& FirstText, const QString& FirstTitle,
                    const QString& PrefFile) {
    if (!UtilitiesFilename::FileExists(FirstFile)) {
        ErrorDisplay::ShowErrorMessage(FirstText + FirstFile, FirstTitle);
        return false;
    }
    if (!UtilitiesFilename::FileExists(PrefFile)) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("PRF file not found:  ") + PrefFile,
                                       QStringLiteral("PRF File Not Found"));
        return false;
    }
    return true;
}
}  // namespace

void SetHost(CommandLineHost* NewHost) { Host = NewHost; }

void Initialize() { CommandLineMode = false; }

bool GetCommandLineMode() { return CommandLineMode; }

QString GetCommandLine() { return ProcessCommandLine; }

void SetCommandLine(const QString& CommandLine) { ProcessCommandLine = CommandLine; }

QString JoinArguments(const QStringList& Arguments) {
    QStringList Parts;
    for (const QString& Argument : Arguments) {
        const bool Quoted = Argument.size() >= 2 && Argument.front() == QLatin1Char('"') &&
                            Argument.back() == QLatin1Char('"');
        if (!Quoted &&
            (Argument.contains(QLatin1Char(' ')) || Argument.contains(QLatin1Char('\t')))) {
            Parts << QLatin1Char('"') + Argument + QLatin1Char('"');
        } else {
            Parts << Argument;
        }
    }
    return Parts.join(QLatin1Char(' '));
}

QStringList ParseCommandLine(const QString& CommandLine, int MaxArguments, int16_t& ArgumentCount) {
    QStringList Arguments;
    ArgumentCount = 0;
    bool InsideArgument = false;
    for (QChar C : CommandLine) {
        if (C == QLatin1Char(' ') || C == QLatin1Char('\t')) {
            InsideArgument = false;
            continue;
        }
        if (!InsideArgument) {
            if (ArgumentCount == MaxArguments) {
                break;
            }
            Arguments << QString();
            ++ArgumentCount;
            InsideArgument = true;
        }
        Arguments.back().append(C);
    }
    return Arguments;
}

void Run() {
    using UtilitiesFilename::MakeFilename;
    QString Path;
    QString Name;
    QString Extension = QStringLiteral("kvp");
    CommandLineMode = false;

    const QString CommandLine = GetCommandLine();
    ErrorDisplay::ProbeDebug(QStringLiteral("Command line: [") + CommandLine + QStringLiteral("]"));
    int16_t ArgumentCount = 0;
    QStringList Arguments = ParseCommandLine(CommandLine, MaxArguments, ArgumentCount);

    if (ArgumentCount > 0) {
        Path = DirectoryCentral::GetWorkPath();
        Name = Arguments[0];
    }
    if (ArgumentCount == 1 && Arguments[0].size() >= 3 &&
        Arguments[0].front() == QLatin1Char('"') && Arguments[0].back() == QLatin1Char('"')) {
        const QString Unquoted = Arguments[0].mid(1, Arguments[0].size() - 2);
        UtilitiesFilename::SplitFilename(Unquoted, Path, Name, Extension);
    }
    for (int Index = 1; Index < ArgumentCount; ++Index) {
        Arguments[Index] = Arguments[Index].toLower();
    }
    if (ArgumentCount <= 0) {
        return;
    }

    const QString ProjectFile = MakeFilename(Path, Name, Extension);
    const QString ImageFile = MakeFilename(Path, Name, QStringLiteral("kvb"));
    const QString PrefFile = MakeFilename(Path, Name, QStringLiteral("prf"));

    if (ArgumentCount == 1) {
        if (UtilitiesFilename::FileExists(ProjectFile)) {
            ClockService::Instance().DoEvents();
            if (Host != nullptr) {
                Host->ClearComError();
                Host->ShowEditorAndOpenProject(Path, Name, Extension);
            }
            return;
        }
        ProjectNotFound(ProjectFile);
        EndRun();
        return;
    }

    CommandLineMode = true;
    ErrorDisplay::OpenLogFile();
    ErrorDisplay::LogMessage(QStringLiteral("Command line:  ") + CommandLine);
    ErrorDisplay::LogMessage(QString());

    if (ArgumentCount > 3) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Error -- too many commands"), QString());
        EndRun();
        return;
    }
    for (int Index = 1; Index < ArgumentCount; ++Index) {
        const QString& Command = Arguments[Index];
        bool Legal = Command == QStringLiteral("/c") || Command == QStringLiteral("/d");
        // Of three words, only "/c /d" stands.
        if (ArgumentCount == 3) {
            Legal = Command == (Index == 1 ? QStringLiteral("/c") : QStringLiteral("/d"));
        }
        if (!Legal) {
            ErrorDisplay::ShowErrorMessage(QStringLiteral("Error -- illegal command:  ") + Command,
                                           QString());
            EndRun();
            return;
        }
    }

    for (int Index = 1; Index < ArgumentCount; ++Index) {
        if (ErrorDisplay::GetErrorWasLogged()) {
            continue;
        }
        const QString& Command = Arguments[Index];
        if (Command == QStringLiteral("/c")) {
            if (!BothFilesExist(ProjectFile, QStringLiteral("Project not found:  "),
                                QStringLiteral("Project Not Found"), PrefFile)) {
                EndRun();
                return;
            }
            if (Host != nullptr) {
                Host->OpenProject(Path, Name, Extension);
            }
            ErrorDisplay::LogMessage(QStringLiteral("Compile:  ") + ProjectFile);
            if (Host != nullptr) {
                Host->CompileAll();
            }
        } else if (Command == QStringLiteral("/d")) {
            if (!BothFilesExist(ImageFile, QStringLiteral("KVB file not found:  "),
                                QStringLiteral("KVB File Not Found"), PrefFile)) {
                EndRun();
                return;
            }
            ErrorDisplay::LogMessage(QStringLiteral("Download: ") + ImageFile);
            if (Host != nullptr) {
                Host->OpenKVBfile(ImageFile);
            }
            RunDownload();
        }
    }
    ErrorDisplay::LogMessage(QStringLiteral("Done."));
    EndRun();
}

void RunDownload() {
    const bool PortIsOpen = Host != nullptr && Host->OpenDownloadPort();
    if (!PortIsOpen) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Error -- unable to open download port"),
                                       QString());
        return;
    }
    bool Success = false;
    Host->DownloadProgram(Success);
    if (!Success) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Error downloading program"), QString());
        return;
    }
    ErrorDisplay::LogMessage(QStringLiteral("Program downloaded OK"));
    Host->ExecuteProgram();
}

}  // namespace CommandLineInterpreter
