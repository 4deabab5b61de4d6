#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

#include "chip/FileStatusTypes.h"
#include "chip/PinStateTypes.h"
#include "platform/UserFileWriter.h"

// Record access to one preference file at a time; one instance for the
// process (FileExecutive()). An open file is held as its whole image; records
// are read and written in that image, and CloseFile puts a changed image on
// disk in one step, so a write that fails half way never leaves a truncated
// file where a good one stood.
class FileExecutivePRF {
  public:
    FileExecutivePRF();
    ~FileExecutivePRF();
    FileExecutivePRF(const FileExecutivePRF&) = delete;
    FileExecutivePRF& operator=(const FileExecutivePRF&) = delete;

    int64_t FileLength() const { return Length_; }
    // Looks at the file of Path, Name and "prf"; opens nothing.
    void Initialize(const QString& Path, const QString& Name, FileStatusTypes& Status);
    void OpenFile();
    // Returns False when a changed image could not be put on disk; the file
    // that stood there is then left as it was, and LastFailure() tells why.
    bool CloseFile();
    const UserFileFailure& LastFailure() const { return LastFailure_; }
    bool IsOpen() const { return IsOpen_; }
    // A closed file yields 0, kvOutputLow.
    void ReadPinState(int32_t PinNumber, PinStateTypes& PinState);
    void WritePinState(int32_t PinNumber, PinStateTypes PinState);
    void ReadRecord(int32_t RecordNumber, int32_t& Value);
    void WriteRecord(int32_t RecordNumber, int32_t Value);

    FileStatusTypes Status() const { return Status_; }
    int32_t RecordCount() const { return RecordCount_; }
    QString FullFilename() const { return FullFilename_; }
    // The open found no file on disk (it had gone, or is yet to be made).
    bool OpenedWithoutFile() const { return OpenedWithoutFile_; }

  private:
    void Reset();
    bool WriteImage();

    QString Path_;
    QString Name_;
    QString Extension_;
    QString FullFilename_;
    // The file the open image came from and goes back to.
    QString OpenFilename_;
    bool IsOpen_ = false;
    int64_t Length_ = 0;
    int32_t RecordCount_ = 0;
    FileStatusTypes Status_ = fstUndefined;
    QByteArray Image_;
    bool Changed_ = false;
    bool OpenedWithoutFile_ = false;
    UserFileFailure LastFailure_;
};

// The process-wide instance, created at its first use.
FileExecutivePRF& FileExecutive();
