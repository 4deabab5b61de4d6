#pragma once

#include <QString>
#include <QStringList>

// Decides from the command line whether the system stays interactive, opens
// one project in the editor, or runs a batch ("NAME /c", "NAME /d",
// "NAME /c /d") that logs every outcome to Kavlin.err and ends the process.
namespace CommandLineInterpreter {

constexpr int MaxArguments = 10;

// What the batch asks of the windows and subsystems above the frame. The
// downloader window provides it.
class CommandLineHost {
  public:
    virtual ~CommandLineHost() = default;
    virtual void ClearComError() = 0;
    // frmSourceEditor shown and its OpenProject called.
    virtual void ShowEditorAndOpenProject(const QString& Path, const QString& Name,
                                          const QString& Extension) = 0;
    // Project.OpenProject, directly, for a batch compile.
    virtual void OpenProject(const QString& Path, const QString& Name,
                             const QString& Extension) = 0;
    virtual void CompileAll() = 0;
    virtual void OpenKVBfile(const QString& Filename) = 0;
    // Opens the download port as configured; tells whether it is open then.
    virtual bool OpenDownloadPort() = 0;
    virtual void DownloadProgram(bool& Success) = 0;
    virtual void ExecuteProgram() = 0;
    // Unloads frmDownloader, which ends the process.
    virtual void UnloadDownloader() = 0;
};

void SetHost(CommandLineHost* Host);

void Initialize();
bool GetCommandLineMode();

// The process's command line, the text after the program's own name.
QString GetCommandLine();
void SetCommandLine(const QString& CommandLine);
// The command line as the other platform's shell handed it over: the
// arguments joined by blanks, one that holds a blank or a tab in double
// quotes unless it already stands in them.
QString JoinArguments(const QStringList& Arguments);

// Blanks and tabs separate; quotes mean nothing; words after MaxArguments
// are dropped.
QStringList ParseCommandLine(const QString& CommandLine, int MaxArguments, int16_t& ArgumentCount);

void Run();
void RunDownload();

}  // namespace CommandLineInterpreter
