#include "chip/FileExecutivePRF.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "chip/PrfRecordType.h"
#include "chip/UtilitiesKGUI.h"
#include "frame/ErrorDisplay.h"
#include "frame/UtilitiesFilename.h"
#include "platform/Global.h"

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
    const QString Local = UtilitiesFilename::LocalFilename(FullFilename_);
    const QFileInfo Info(Local);
    QByteArray Image;
    bool Missing = false;
    if (Info.exists()) {
        QFile File(Local);
        if (Info.isDir() || !File.open(QIODevice::ReadOnly)) {
            Reset();
            return;
        }
        Image = File.readAll();
        if (File.error() != QFileDevice::NoError) {
            Reset();
            return;
        }
    } else {
        // A file yet to be made: it comes into being when the image is put
        // on disk at CloseFile. Its folder must be there.
        if (FullFilename_.isEmpty() || !QFileInfo(Info.absolutePath()).isDir()) {
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
        QSaveFile File(OpenFilename_);
        Written =
            File.open(QIODevice::WriteOnly) && File.write(Image_) == Image_.size() && File.commit();
    }
    if (IsOpen_) {
        ErrorDisplay::ProbeDebug(QStringLiteral("PRF file closed: ") + Name_);
    }
    Reset();
    return Written;
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
