#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

#include "chip/PrfRecordType.h"

// The preference file named by XFileExecutivePRF::PRFfilename as the KV-10
// and KV-20 chip dialogs reach it: record by record. Open reads the file's
// bytes, records are read and written in memory, and Close puts the changed
// file on disk in one step through UserFile::Write, so that a save that fails
// half way leaves the file as it stood. A file not there yet opens empty and
// comes into being with the records written to it.
class PrfRecordFile {
  public:
    // False for no name, a folder or another non-regular file in its place,
    // or a file that can't be read.
    bool Open();
    bool IsOpen() const { return IsOpen_; }
    // Zeros past the end of the file, and while it is closed.
    PrfRecordType Get(int32_t RecordNumber) const;
    // Does nothing while the file is closed.
    void Put(int32_t RecordNumber, const PrfRecordType& Record);
    // False when the changes could not be put on disk (a read-only file, for
    // one); the file then stays byte for byte as it was.
    bool Close();

  private:
    QString Filename_;
    QByteArray Image_;
    bool IsOpen_ = false;
    bool Changed_ = false;
};
