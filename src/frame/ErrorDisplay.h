#pragma once

#include <QString>
#include <functional>

// All messages to the user. In a batch nobody is there to read a box, and
// ShowErrorMessage writes to the log file Kavlin.err in the work path instead.
namespace ErrorDisplay {

// The switch of the trace hooks; off in this build and not changeable at run time.
constexpr bool ProbeDebugIsOn = false;

void InitializeErrorDisplay();
void OpenLogFile();
void CloseLogFile();
void LogMessage(const QString& Text);
void LogError(const QString& Text);
void ShowErrorMessage(const QString& Text, const QString& Title);
void ShowWarningMessage(const QString& Text, const QString& Title);
// A box in every case, also in a batch. 6 Yes, 7 No, 2 Cancel.
int AskYesNo(const QString& Text, const QString& Title);
int AskYesNoCancel(const QString& Text, const QString& Title);
void ProbeError(const QString& Text);
// Where a test hears the internal reports; the user never sees them, and
// without a listener they are dropped as before.
void SetProbeErrorListener(std::function<void(const QString&)> Listener);
void ProbeDebug(const QString& Text);

bool GetLogFileIsOpen();
bool GetErrorWasLogged();
// The log of this batch could not be opened or written; its lines went to
// standard error, and the process ends with LogFailedExitCode.
bool GetLogFailed();
constexpr int LogFailedExitCode = 3;
// Full name of the log file: Kavlin.err in the work path.
QString LogFilename();

}  // namespace ErrorDisplay
