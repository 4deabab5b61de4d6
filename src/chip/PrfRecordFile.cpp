#include "chip/PrfRecordFile.h"

#include <QFile>
#include <QFileInfo>

#include "chip/XFileExecutivePRF.h"
#include "frame/UtilitiesFilename.h"
#include "platform/UserFileWriter.h"

bool PrfRecordFile::Open() {
    Close();
    if (XFileExecutivePRF::PRFfilename.isEmpty()) {
        return false;
    }
    const QString Local = UtilitiesFilename::LocalFilename(XFileExecutivePRF::PRFfilename);
    const QFileInfo Info(Local);
    QByteArray Image;
    if (Info.exists()) {
        // Only a regular file: a pipe in its place would block the read.
        QFile File(Local);
        if (!Info.isFile() || !File.open(QIODevice::ReadOnly)) {
            return false;
        }
        Image = File.readAll();
        if (File.error() != QFileDevice::NoError) {
            return false;
        }
    } else if (!QFileInfo(Info.absolutePath()).isDir()) {
        return false;
    }
    Filename_ = Local;
    Image_ = Image;
    Changed_ = false;
    IsOpen_ = true;
    return true;
}

PrfRecordType PrfRecordFile::Get(int32_t RecordNumber) const {
    if (!IsOpen_ || RecordNumber < 1) {
        return PrfRecordType();
    }
    return PrfRecordType::Decode(Image_, PrfRecordType::OffsetOf(RecordNumber));
}

void PrfRecordFile::Put(int32_t RecordNumber, const PrfRecordType& Record) {
    if (!IsOpen_ || RecordNumber < 1) {
        return;
    }
    Record.Encode(Image_, PrfRecordType::OffsetOf(RecordNumber));
    Changed_ = true;
}

bool PrfRecordFile::Close() {
    bool Written = true;
    if (IsOpen_ && Changed_) {
        UserFileFailure Failure;
        Written = UserFile::Write(Filename_, Image_, Failure);
    }
    Filename_.clear();
    Image_.clear();
    IsOpen_ = false;
    Changed_ = false;
    return Written;
}
