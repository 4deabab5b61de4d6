#include "monitor/MonitorCapture.h"

#include <QFile>
#include <cerrno>
#include <memory>

#include "frame/ErrorDisplay.h"
#include "platform/UserFileWriter.h"

namespace MonitorCapture {

namespace {
bool WindowIsOpen = false;
bool CaptureFileIsOpen = false;
QString CaptureFilename;
QString OpenFailure;
std::unique_ptr<QFile> CaptureFile;

int ErrnoOf(const QFile& File, int Saved) {
    if (Saved != 0) {
        return Saved;
    }
    return File.error() == QFileDevice::ResourceError ? ENOSPC : EIO;
}
}  // namespace

void InitializeCapture() {
    CloseCaptureFile();
    WindowIsOpen = false;
    CaptureFileIsOpen = false;
    CaptureFilename.clear();
}

void CloseCaptureFile() {
    if (CaptureFileIsOpen) {
        if (CaptureFile) {
            CaptureFile->close();
            CaptureFile.reset();
        }
        CaptureFileIsOpen = false;
    }
    CaptureFilename.clear();
}

QString GetCaptureFilename() { return CaptureFilename; }

void OpenCaptureFile(const QString& Filename, bool& Success) {
    if (CaptureFileIsOpen) {
        CloseCaptureFile();
    }
    OpenFailure.clear();
    CaptureFilename = Filename;
    // Unbuffered: each poll's bytes are on their way to the disk before the
    // poll ends, so a crash loses nothing that was already shown.
    auto File = std::make_unique<QFile>(Filename);
    errno = 0;
    if (!File->open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        OpenFailure = UserFile::ErrorLine(UserFile::FailureOfErrno(ErrnoOf(*File, errno)));
        return;
    }
    CaptureFile = std::move(File);
    CaptureFileIsOpen = true;
    Success = true;
}

bool IsCaptureFileOpen() { return CaptureFileIsOpen; }
bool GetCaptureFileIsOpen() { return CaptureFileIsOpen; }

void WriteCaptureBytes(const QByteArray& Bytes) {
    if (!CaptureFileIsOpen || !CaptureFile) {
        return;
    }
    const char* Data = Bytes.constData();
    qint64 Left = Bytes.size();
    while (Left > 0) {
        errno = 0;
        const qint64 Written = CaptureFile->write(Data, Left);
        if (Written <= 0) {
            const int Cause = ErrnoOf(*CaptureFile, errno);
            const QString Name = CaptureFilename;
            // Closed before the box comes up, so that a poll running under
            // the box writes nothing more and says nothing more.
            CloseCaptureFile();
            ErrorDisplay::ShowErrorMessage(
                QStringLiteral("Capture stopped: error writing file ") + Name + QLatin1Char('\n') +
                    UserFile::ErrorLine(UserFile::FailureOfErrno(Cause)) +
                    QStringLiteral("\nThe file keeps what was captured before."),
                QStringLiteral("File Write Error"));
            return;
        }
        Data += Written;
        Left -= Written;
    }
}

int64_t GetCaptureFileSize() {
    if (!CaptureFileIsOpen || !CaptureFile) {
        return 0;
    }
    const qint64 Size = CaptureFile->size();
    return Size < 0 ? 0 : Size;
}

bool CaptureWindowIsOpen() { return WindowIsOpen; }
void SetCaptureWindowIsOpen(bool Value) { WindowIsOpen = Value; }

QString LastOpenFailure() { return OpenFailure; }

}  // namespace MonitorCapture
