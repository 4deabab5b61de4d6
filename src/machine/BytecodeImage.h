#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

// The program image as the chip's external EEPROM holds it: a 32-byte header,
// the code and the constant data (docs/bytecode.md). Everything the machine
// relies on is checked here once, before a program may run: a refused image
// never starts, and the check's reason says why in words.
struct ImageHeader {
    static constexpr size_t Size = 32;
    static constexpr uint8_t Signature[4] = {'K', 'V', 'B', 'C'};
    static constexpr uint8_t FormatVersion = 1;
    static constexpr int MaxStringSize = 64;
    // The first 32 bytes of the internal EEPROM are the configuration block;
    // persistent variables lie behind it.
    static constexpr uint16_t PersistentBase = 32;

    uint8_t Version = FormatVersion;
    uint8_t ChipType = 2;
    uint8_t StringSize = 16;
    uint8_t Flags = 0;
    uint16_t Length = 0;
    uint16_t CodeOffset = Size;
    uint16_t CodeSize = 0;
    uint16_t DataSize = 0;
    uint16_t Entry = Size;
    uint16_t RamLow = 207;
    uint16_t RamHigh = 607;
    uint16_t GlobalsEnd = 207;
    uint16_t PersistentSize = 0;
    uint16_t Reserved = 0;
    uint32_t Checksum = 0;

    // Null when fewer than Size bytes are given; the signature is not looked at.
    static bool Read(std::span<const uint8_t> Bytes, ImageHeader& Header);
    // Writes the fields into the first Size bytes.
    void Write(std::span<uint8_t> Bytes) const;
};

namespace BytecodeImage {

// CRC-32 (the polynomial of zip and Ethernet) of the image's first Length
// bytes, its own field counted as zeros.
uint32_t Checksum(std::span<const uint8_t> Image, size_t Length);
// Puts the checksum of the Length its header gives into the header.
void Seal(std::span<uint8_t> Image);
// The length a compiler writes for an image of Length bytes: one byte more
// when Length is a whole number of 128-byte blocks, which the chip link
// could not verify.
size_t PaddedLength(size_t Length);

// The chip's memories, as far as the check needs their sizes.
struct ChipLimits {
    // 1, 2 or 3 for the chip the image must be made for, 0 for any.
    int ChipType = 0;
    size_t RamSize = 65536;
    size_t InternalEepromSize = 512;
};

struct CheckResult {
    bool Accepted = false;
    std::string Reason;
    ImageHeader Header;
    // One flag per byte of the image: an instruction starts there.
    std::vector<bool> InstructionStarts;
};

// Bytes past the header's length (a compiler's padding, or what an EEPROM
// held before) are not looked at.
CheckResult Check(std::span<const uint8_t> Bytes, const ChipLimits& Limits);

}  // namespace BytecodeImage
