#include "chip/FileExecutivePRF.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>

#include "chip/PrfRecordType.h"
#include "chip/UtilitiesKGUI.h"
#include "frame/ErrorDisplay.h"
#include "frame/UtilitiesFilename.h"
#include "platform/Global.h"
#include "platform/UserFileWriter.h"

namespace {
// The counterpart of a read-only attribute: no write permission for the
// owner, or none for us (a root process would otherwise write anything).
bool IsReadOnly(const QFileInfo& Info) {
    return !Info.permission(QFileDevice::WriteOwner) || !Info.isWritable();
}
}  // namespace

FileExecutivePRF& FileExecutive() { return Global<FileExecutivePRF>::Get(); }

FileExecutivePRF::FileExecutivePRF() { Reset(); }

FileExecutivePRF::~FileExecutivePRF() { CloseFile(); }

void FileExecutivePRF::Reset() {
    Path_.clear();
    Name_.clear();
    Extension_ = QStringLiteral("prf");
    FullFilename_.clear();
    OpenFilename_.clear();
    IsOpen_ = false;
    Length_ = 0;
    RecordCount_ = 0;
    Status_ = fstUndefined;
    Image_.clear();
    Changed_ = false;
    OpenedWithoutFile_ = false;
}

void FileExecutivePRF::Initialize(const QString& Path, const QString& Name,
                                  FileStatusTypes& Status) {
    Path_ = Path;
    Name_ = Name;
    Extension_ = QStringLiteral("prf");
    FullFilename_ = UtilitiesFilename::MakeFilename(Path_, Name_, Extension_);
    if (!UtilitiesFilename::FileExists(FullFilename_)) {
        Status_ = fstNonexistant;
        Status = Status_;
        return;
    }
    const QFileInfo Info(UtilitiesFilename::LocalFilename(FullFilename_));
    Length_ = IsOpen_ ? Image_.size() : Info.size();
    RecordCount_ = static_cast<int32_t>(Length_ / PrfRecordType::RecordLength);
    if (RecordCount_ < 611) {
        Status_ = fstWrongSize;
    } else {
        Status_ = IsReadOnly(Info) ? fstReadOnly : fstOK;
    }
    Status = Status_;
}

void FileExecutivePRF::OpenFile() {
    LastFailure_ = UserFileFailure();
    const QString Local = UtilitiesFilename::LocalFilename(FullFilename_);
    const QFileInfo Info(Local);
    QByteArray Image;
    bool Missing = false;
    if (Info.exists()) {
        // Only a regular file: a pipe in the name's place would block the open.
        QFile File(Local);
        if (!Info.isFile() || !File.open(QIODevice::ReadOnly)) {
            LastFailure_ =
                Info.isFile() ? UserFile::FailureOfErrno(EACCES)
                : Info.isDir()
                    ? UserFileFailure{75, QStringLiteral("Path/File access error (a folder has "
                                                         "that name)")}
                    : UserFileFailure{75, QStringLiteral("Path/File access error (not "
                                                         "a regular file)")};
            Reset();
            return;
        }
        Image = File.read(PrfRecordType::UsedLength);
        if (File.error() != QFileDevice::NoError) {
            Reset();
            return;
        }
    } else {
        // A file yet to be made: it comes into being when the image is put
        // on disk at CloseFile. Its folder must be there.
        if (FullFilename_.isEmpty() || !QFileInfo(Info.absolutePath()).isDir()) {
            LastFailure_ = UserFile::FailureOfErrno(ENOENT);
            Reset();
            return;
        }
        Missing = true;
    }
    Image_ = Image;
    OpenFilename_ = Local;
    Changed_ = false;
    OpenedWithoutFile_ = Missing;
    IsOpen_ = true;
    ErrorDisplay::ProbeDebug(QStringLiteral("PRF file open: ") + FullFilename_);
}

bool FileExecutivePRF::CloseFile() {
    bool Written = true;
    if (IsOpen_ && Changed_) {
        Written = WriteImage();
    }
    if (IsOpen_) {
        ErrorDisplay::ProbeDebug(QStringLiteral("PRF file closed: ") + Name_);
    }
    Reset();
    return Written;
}

bool FileExecutivePRF::WriteImage() {
    LastFailure_ = UserFileFailure();
    UserFileWriter Writer(OpenFilename_);
    Writer.Open();
    Writer.Write(Image_);
    // Whatever a longer file holds past the records stays behind them.
    QFile Old(OpenFilename_);
    if (!OpenedWithoutFile_ && Old.open(QIODevice::ReadOnly) && Old.size() > Image_.size() &&
        Old.seek(Image_.size())) {
        Writer.CopyRest(Old);
    }
    if (!Writer.Commit()) {
        LastFailure_ = Writer.Failure();
        return false;
    }
    return true;
}

void FileExecutivePRF::ReadRecord(int32_t RecordNumber, int32_t& Value) {
    Value = 0;
    if (IsOpen_ && RecordNumber >= 1) {
        Value = PrfRecordType::Decode(Image_, PrfRecordType::OffsetOf(RecordNumber)).Value;
    }
    // The records a short file lacks read as these, open or not.
    if (RecordNumber > RecordCount_) {
        switch (RecordNumber) {
            case 611:
                Value = 32768;
                break;
            case 612:
                Value = 1;
                break;
            case 613:
                Value = 2;
                break;
            case 614:
                Value = 1;
                break;
            case 615:
                Value = 64;
                break;
            default:
                break;
        }
    }
}

void FileExecutivePRF::WriteRecord(int32_t RecordNumber, int32_t Value) {
    if (!IsOpen_ || Status_ == fstReadOnly || RecordNumber < 1) {
        return;
    }
    PrfRecordType Record;
    Record.Value = Value;
    Record.Encode(Image_, PrfRecordType::OffsetOf(RecordNumber));
    Changed_ = true;
}

void FileExecutivePRF::ReadPinState(int32_t PinNumber, PinStateTypes& PinState) {
    PinState = kvOutputLow;
    if (!IsOpen_ || PinNumber < 1) {
        return;
    }
    const PrfRecordType Record = PrfRecordType::Decode(Image_, PrfRecordType::OffsetOf(PinNumber));
    for (int Index = 1; Index <= 4; ++Index) {
        if (Record.Flags[Index] != 0) {
            PinState = UtilitiesKGUI::ToPinState(Index - 1);
            return;
        }
    }
    PinState = UtilitiesKGUI::ToPinState(0);
}

void FileExecutivePRF::WritePinState(int32_t PinNumber, PinStateTypes PinState) {
    if (!IsOpen_ || Status_ == fstReadOnly || PinNumber < 1) {
        return;
    }
    PrfRecordType Record;
    Record.Flags[UtilitiesKGUI::ToRightOffset(PinState) + 1] = 1;
    Record.Encode(Image_, PrfRecordType::OffsetOf(PinNumber));
    Changed_ = true;
}
