#include "frame/ErrorDisplay.h"

#include <QFile>
#include <memory>

#include "frame/CommandLineInterpreter.h"
#include "frame/DirectoryCentral.h"
#include "frame/UtilitiesFilename.h"
#include "platform/MessageBoxService.h"

namespace ErrorDisplay {

namespace {
std::unique_ptr<QFile> LogFile;
bool LogFileIsOpen = false;
bool ErrorWasLogged = false;
}  // namespace

void InitializeErrorDisplay() {
    if (LogFile) {
        LogFile->close();
        LogFile.reset();
    }
    LogFileIsOpen = false;
    ErrorWasLogged = false;
}

QString LogFilename() {
    return UtilitiesFilename::MakeFilename(DirectoryCentral::GetWorkPath(),
                                           QStringLiteral("Kavlin"), QStringLiteral("err"));
}

void OpenLogFile() {
    if (LogFileIsOpen) {
        return;
    }
    auto File = std::make_unique<QFile>(UtilitiesFilename::LocalFilename(LogFilename()));
    // Each batch replaces the log of the one before.
    if (!File->open(QIODevice::WriteOnly | QIODevice::Truncate)) {
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
    if (!LogFileIsOpen || !LogFile) {
        return;
    }
    // A message of several lines keeps the log's CR LF line ends throughout.
    QString Lines = Text;
    Lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"))
        .replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    const QByteArray Line = Lines.toUtf8() + "\r\n";
    // Flushed line by line: a batch that dies still leaves what it got to.
    if (LogFile->write(Line) != Line.size() || !LogFile->flush()) {
        ProbeDebug(QStringLiteral("Error_1 in ErrorDisplay.LogMessage"));
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
    if constexpr (ProbeDebugIsOn) {
        qDebug("%s", qPrintable(Text));
    }
}

void ProbeDebug(const QString& Text) {
    if constexpr (ProbeDebugIsOn) {
        qDebug("%s", qPrintable(Text));
    }
}

bool GetLogFileIsOpen() { return LogFileIsOpen; }

bool GetErrorWasLogged() { return ErrorWasLogged; }

}  // namespace ErrorDisplay
