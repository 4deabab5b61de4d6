#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <cstdint>

// The symbol map file (kvm) that the compiler writes beside the project: the
// program's variables with their RAM addresses and types, for the watch
// window.
//
// The file is a sequence of items with no header and no count. Items are
// separated by commas or line ends (CR LF, LF or CR alone); 21 items make a
// record: Name, Address, VariableType, IsExcluded, DimensionCount and the
// lower and upper bound of eight dimensions, which are read and thrown away.
// What the old run time's item reader accepted, and so this one:
// - Spaces and tabs before and behind an item are skipped.
// - A text item stands in double quotes and may hold commas; a line end inside
//   the quotes, or anything but blanks between the closing quote and the next
//   separator, is an error. A text without quotes runs to the next separator
//   and may not hold a double quote.
// - A number is a whole decimal number with an optional "+" or "-" right
//   before its digits. A fraction, an exponent, a hexadecimal "&H" form, a
//   quoted number or a value outside its field (32 bits for Address and
//   VariableType, 16 for DimensionCount and the bounds) is an error.
// - IsExcluded is #TRUE# or #FALSE# (as the old run time's Write put them),
//   True or False, in any case, or a whole number as above (not 0 is true).
// - An empty item (two separators in a row, a blank line) is the old run
//   time's Empty: an empty name, 0, False.
// - The file is read as UTF-8 when it is valid UTF-8, else as Windows-1252,
//   as the modules the names come from.
// An item that would start at the end of the file, or a quoted text that the
// end of the file cuts off, is the normal end: a record cut off there is
// dropped and those before it stand.
struct KvmEntry {
    // At most 64 characters, with the blanks (spaces) trimmed off both ends.
    QString Name;
    int32_t Address = 0;
    int32_t VariableType = 0;
    bool IsExcluded = false;
    // 0 for a scalar; an array otherwise.
    int16_t DimensionCount = 0;

    bool operator==(const KvmEntry&) const = default;
};

// One reading of the file, as the watch window lists it.
struct KvmFileContents {
    // The entries in list order: row r of the list is Entries[r]. Excluded
    // entries and strings (type 61) are not among them.
    QList<KvmEntry> Entries;
    // The list's row texts: Name and TypeSuffix, one per entry.
    QStringList Rows;
    // True when the file was read to its end.
    bool IsLoaded = false;
    // Empty when loaded; else "Error -- KVM file not found" or
    // "Error reading KVM file". The rows read before an error stay.
    QString ErrorText;
};

namespace KvmFile {

constexpr int32_t StringType = 61;
// The window holds 255 entries; a record read after the 255th usable entry
// (even an excluded one, whose items are stored before that is known) is an
// error, but the end of the file right after it is not.
constexpr int MaxEntryCount = 255;
constexpr int NameLength = 64;

// The row text behind the name: "()" for an array, then the type's text
// (".Integer", ".*** ILLEGAL TYPE ***" for an unknown code).
QString TypeSuffix(int32_t VariableType, int16_t DimensionCount);

// The file's name: the project's path and name with the extension kvm.
QString KvmFilename(const QString& ProjectPath, const QString& ProjectName);

// Reads the file. A file missing from an existing folder is "Error -- KVM
// file not found"; a missing folder, an unreadable file or anything in the
// file that can't be read is "Error reading KVM file".
KvmFileContents Read(const QString& Filename);
// The same from the file's bytes.
KvmFileContents Parse(const QByteArray& Bytes);

}  // namespace KvmFile
