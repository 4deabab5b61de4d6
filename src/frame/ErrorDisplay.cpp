#include "frame/ErrorDisplay.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QStringList>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "frame/CommandLineInterpreter.h"
#include "frame/DirectoryCentral.h"
#include "frame/UtilitiesFilename.h"
#include "platform/MessageBoxService.h"
#include "platform/UserFileWriter.h"

namespace ErrorDisplay {

namespace {
std::unique_ptr<QFile> LogFile;
bool LogFileIsOpen = false;
bool ErrorWasLogged = false;
// The log could not be opened or written: its lines go to standard error.
bool LogFailed = false;
std::function<void(const QString&)> ProbeErrorListener;
// The lines of this batch, so that standard error gets them all when the
// file fails half way.
QList<QByteArray> LinesSoFar;

void ToStandardError(const QByteArray& Line) {
    std::fwrite(Line.constData(), 1, static_cast<size_t>(Line.size()), stderr);
    std::fflush(stderr);
}

void FailLog(const QString& Cause) {
    if (LogFailed) {
        return;
    }
    LogFailed = true;
    ToStandardError((QStringLiteral("kavlin: the log ") + LogFilename() +
                     QStringLiteral(" cannot be written (") + Cause +
                     QStringLiteral("); its lines follow here\n"))
                        .toLocal8Bit());
    for (const QByteArray& Line : LinesSoFar) {
        ToStandardError(Line);
    }
}

// Opens the log for output without ever blocking: a pipe, a folder or any
// other file that is not a regular one is refused at once.
int OpenRegularFile(const QString& Filename, QString& Cause) {
    const QByteArray Name = QFile::encodeName(Filename);
    const QString NotAFile = QStringLiteral("Path/File access error (not a regular file)");
    struct stat Status {};
    if (::stat(Name.constData(), &Status) == 0 && !S_ISREG(Status.st_mode)) {
        Cause = NotAFile;
        return -1;
    }
    const int Handle =
        ::open(Name.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, 0644);
    if (Handle < 0) {
        Cause = UserFile::FailureOfErrno(errno).Description;
        return -1;
    }
    // Something other than a file slipped in between the look and the open.
    if (::fstat(Handle, &Status) != 0 || !S_ISREG(Status.st_mode)) {
        ::close(Handle);
        Cause = NotAFile;
        return -1;
    }
    return Handle;
}
}  // namespace

void InitializeErrorDisplay() {
    if (LogFile) {
        LogFile->close();
        LogFile.reset();
    }
    LogFileIsOpen = false;
    ErrorWasLogged = false;
    LogFailed = false;
    LinesSoFar.clear();
}

QString LogFilename() {
    return UtilitiesFilename::MakeFilename(DirectoryCentral::GetWorkPath(),
                                           QStringLiteral("Kavlin"), QStringLiteral("err"));
}

void OpenLogFile() {
    if (LogFileIsOpen) {
        return;
    }
    // Each batch replaces the log of the one before.
    QString Cause;
    const int Handle = OpenRegularFile(UtilitiesFilename::LocalFilename(LogFilename()), Cause);
    if (Handle < 0) {
        FailLog(Cause);
        return;
    }
    auto File = std::make_unique<QFile>();
    if (!File->open(Handle, QIODevice::WriteOnly | QIODevice::Unbuffered,
                    QFileDevice::AutoCloseHandle)) {
        ::close(Handle);
        FailLog(File->errorString());
        return;
    }
    LogFile = std::move(File);
    LogFileIsOpen = true;
}

void CloseLogFile() {
    if (!LogFileIsOpen) {
        return;
    }
    if (LogFile) {
        LogFile->close();
        LogFile.reset();
    }
    LogFileIsOpen = false;
}

void LogMessage(const QString& Text) {
    // A message of several lines keeps the log's CR LF line ends throughout.
    QString Lines = Text;
    Lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"))
        .replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    const QByteArray Line = Lines.toUtf8() + "\r\n";
    if (LogFailed) {
        ToStandardError(Line);
        return;
    }
    if (!LogFileIsOpen || !LogFile) {
        return;
    }
    LinesSoFar << Line;
    // Written unbuffered, line by line: a batch that dies still leaves what
    // it got to, and a full disk is seen at the line it hit.
    errno = 0;
    if (LogFile->write(Line) != Line.size()) {
        const int Error = errno;
        ProbeDebug(QStringLiteral("Error_1 in ErrorDisplay.LogMessage"));
        FailLog(Error != 0 ? UserFile::FailureOfErrno(Error).Description : LogFile->errorString());
    }
}

void LogError(const QString& Text) {
    LogMessage(Text);
    ErrorWasLogged = true;
}

void ShowErrorMessage(const QString& Text, const QString& Title) {
    if (CommandLineInterpreter::GetCommandLineMode()) {
        LogError(Text);
        return;
    }
    MessageBoxService::Instance().Show(Text, Title, MsgBoxButtons::OKOnly, MsgBoxIcon::Exclamation);
}

void ShowWarningMessage(const QString& Text, const QString& Title) {
    ShowErrorMessage(Text, Title);
}

int AskYesNo(const QString& Text, const QString& Title) {
    return MessageBoxService::Instance().Show(Text, Title, MsgBoxButtons::YesNo,
                                              MsgBoxIcon::Exclamation);
}

int AskYesNoCancel(const QString& Text, const QString& Title) {
    return MessageBoxService::Instance().Show(Text, Title, MsgBoxButtons::YesNoCancel,
                                              MsgBoxIcon::Exclamation);
}

// The trace texts stay at their call sites so that a debug build can turn
// them on with ProbeDebugIsOn; this build drops them.
void ProbeError(const QString& Text) {
    if (ProbeErrorListener) {
        ProbeErrorListener(Text);
    }
    if constexpr (ProbeDebugIsOn) {
        qDebug("%s", qPrintable(Text));
    }
}

void ProbeDebug(const QString& Text) {
    if constexpr (ProbeDebugIsOn) {
        qDebug("%s", qPrintable(Text));
    }
}

void SetProbeErrorListener(std::function<void(const QString&)> Listener) {
    ProbeErrorListener = std::move(Listener);
}

bool GetLogFileIsOpen() { return LogFileIsOpen; }

bool GetErrorWasLogged() { return ErrorWasLogged; }

bool GetLogFailed() { return LogFailed; }

}  // namespace ErrorDisplay
