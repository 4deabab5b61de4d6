#pragma once

#include <QByteArray>
#include <QString>

#include "platform/UserFileWriter.h"

// A module's text file: read as UTF-8 when it is valid UTF-8, else as
// Windows-1252, and written back the way it came (encoding, byte order mark,
// line ends), so a module saved without an edit is the same bytes as before.
struct ModuleFileFormat {
    bool Utf8 = true;
    bool ByteOrderMark = false;
    // Lines ended by LF alone; the editor counts CR LF either way.
    bool LineFeedOnly = false;
};

namespace ModuleFile {

// The text with CR LF line ends, and the file's format.
QString Decode(const QByteArray& Bytes, ModuleFileFormat& Format);
QByteArray Encode(const QString& Text, const ModuleFileFormat& Format);
// Reads the whole file; False when it can't be read.
bool Read(const QString& Filename, QString& Text, ModuleFileFormat& Format);
// Writes the whole file in one step; on failure the old file stays and
// Failure tells why.
bool Write(const QString& Filename, const QString& Text, const ModuleFileFormat& Format,
           UserFileFailure& Failure);
// The same for bytes already encoded (the project file).
bool WriteBytes(const QString& Filename, const QByteArray& Bytes, UserFileFailure& Failure);

}  // namespace ModuleFile
