#pragma once

#include <QByteArray>
#include <array>
#include <cstdint>

// One 14-byte record of the preference file, little-endian: a signed 32-bit
// Value, then five signed 16-bit Flags. Flags(1) to Flags(4) of a pin record
// are its columns IN, P, 0 and 1; Flags(0) is always written 0.
struct PrfRecordType {
    static constexpr int RecordLength = 14;
    static constexpr int CompleteRecordCount = 615;
    // The bytes of the records the system reads and writes; a longer file's
    // rest is never read into memory and is kept as it is on a save.
    static constexpr int UsedLength = CompleteRecordCount * RecordLength;

    int32_t Value = 0;
    std::array<int16_t, 5> Flags{};

    // Decodes the record at Offset of Image; bytes past its end read as 0.
    static PrfRecordType Decode(const QByteArray& Image, qsizetype Offset);
    // Writes the record at Offset of Image, which grows (zero-filled) as needed.
    void Encode(QByteArray& Image, qsizetype Offset) const;
    // Byte offset of record RecordNumber (from 1).
    static qsizetype OffsetOf(int32_t RecordNumber) {
        return static_cast<qsizetype>(RecordNumber - 1) * RecordLength;
    }
};
