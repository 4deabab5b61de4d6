#include "chip/PrfRecordType.h"

namespace {
uint8_t ByteAt(const QByteArray& Image, qsizetype Offset) {
    return Offset >= 0 && Offset < Image.size() ? static_cast<uint8_t>(Image[Offset]) : 0;
}
}  // namespace

PrfRecordType PrfRecordType::Decode(const QByteArray& Image, qsizetype Offset) {
    PrfRecordType Record;
    uint32_t Value = 0;
    for (int Byte = 3; Byte >= 0; --Byte) {
        Value = (Value << 8) | ByteAt(Image, Offset + Byte);
    }
    Record.Value = static_cast<int32_t>(Value);
    for (int Index = 0; Index < 5; ++Index) {
        const qsizetype At = Offset + 4 + 2 * Index;
        Record.Flags[Index] = static_cast<int16_t>(
            static_cast<uint16_t>(ByteAt(Image, At) | (ByteAt(Image, At + 1) << 8)));
    }
    return Record;
}

void PrfRecordType::Encode(QByteArray& Image, qsizetype Offset) const {
    if (Image.size() < Offset + RecordLength) {
        Image.append(QByteArray(Offset + RecordLength - Image.size(), '\0'));
    }
    const uint32_t V = static_cast<uint32_t>(Value);
    for (int Byte = 0; Byte < 4; ++Byte) {
        Image[Offset + Byte] = static_cast<char>((V >> (8 * Byte)) & 0xFF);
    }
    for (int Index = 0; Index < 5; ++Index) {
        const uint16_t F = static_cast<uint16_t>(Flags[Index]);
        Image[Offset + 4 + 2 * Index] = static_cast<char>(F & 0xFF);
        Image[Offset + 5 + 2 * Index] = static_cast<char>(F >> 8);
    }
}
