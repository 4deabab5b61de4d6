#include "machine/BytecodeImage.h"

#include <array>
#include <cstring>

#include "machine/LibraryCalls.h"
#include "machine/Opcodes.h"

namespace {

uint16_t Get16(std::span<const uint8_t> Bytes, size_t At) {
    return static_cast<uint16_t>(Bytes[At] | (Bytes[At + 1] << 8));
}

uint32_t Get32(std::span<const uint8_t> Bytes, size_t At) {
    return static_cast<uint32_t>(Get16(Bytes, At)) |
           (static_cast<uint32_t>(Get16(Bytes, At + 2)) << 16);
}

void Put16(std::span<uint8_t> Bytes, size_t At, uint16_t Value) {
    Bytes[At] = static_cast<uint8_t>(Value);
    Bytes[At + 1] = static_cast<uint8_t>(Value >> 8);
}

void Put32(std::span<uint8_t> Bytes, size_t At, uint32_t Value) {
    Put16(Bytes, At, static_cast<uint16_t>(Value));
    Put16(Bytes, At + 2, static_cast<uint16_t>(Value >> 16));
}

constexpr size_t ChecksumAt = 28;

constexpr std::array<uint32_t, 256> MakeCrcTable() {
    std::array<uint32_t, 256> Table{};
    for (uint32_t Index = 0; Index < 256; ++Index) {
        uint32_t Value = Index;
        for (int Bit = 0; Bit < 8; ++Bit) {
            Value = (Value & 1) ? (Value >> 1) ^ 0xEDB88320u : Value >> 1;
        }
        Table[Index] = Value;
    }
    return Table;
}

constexpr std::array<uint32_t, 256> CrcTable = MakeCrcTable();

std::string Number(long long Value) { return std::to_string(Value); }

const char* ChipName(int ChipType) {
    switch (ChipType) {
        case 1:
            return "KV-10";
        case 2:
            return "KV-20";
        case 3:
            return "KV-30";
        default:
            return "unknown chip";
    }
}

}  // namespace

bool ImageHeader::Read(std::span<const uint8_t> Bytes, ImageHeader& Header) {
    if (Bytes.size() < Size) {
        return false;
    }
    Header.Version = Bytes[4];
    Header.ChipType = Bytes[5];
    Header.StringSize = Bytes[6];
    Header.Flags = Bytes[7];
    Header.Length = Get16(Bytes, 8);
    Header.CodeOffset = Get16(Bytes, 10);
    Header.CodeSize = Get16(Bytes, 12);
    Header.DataSize = Get16(Bytes, 14);
    Header.Entry = Get16(Bytes, 16);
    Header.RamLow = Get16(Bytes, 18);
    Header.RamHigh = Get16(Bytes, 20);
    Header.GlobalsEnd = Get16(Bytes, 22);
    Header.PersistentSize = Get16(Bytes, 24);
    Header.Reserved = Get16(Bytes, 26);
    Header.Checksum = Get32(Bytes, ChecksumAt);
    return true;
}

void ImageHeader::Write(std::span<uint8_t> Bytes) const {
    std::memcpy(Bytes.data(), Signature, sizeof Signature);
    Bytes[4] = Version;
    Bytes[5] = ChipType;
    Bytes[6] = StringSize;
    Bytes[7] = Flags;
    Put16(Bytes, 8, Length);
    Put16(Bytes, 10, CodeOffset);
    Put16(Bytes, 12, CodeSize);
    Put16(Bytes, 14, DataSize);
    Put16(Bytes, 16, Entry);
    Put16(Bytes, 18, RamLow);
    Put16(Bytes, 20, RamHigh);
    Put16(Bytes, 22, GlobalsEnd);
    Put16(Bytes, 24, PersistentSize);
    Put16(Bytes, 26, Reserved);
    Put32(Bytes, ChecksumAt, Checksum);
}

namespace BytecodeImage {

uint32_t Checksum(std::span<const uint8_t> Image, size_t Length) {
    uint32_t Crc = 0xFFFFFFFFu;
    for (size_t Index = 0; Index < Length && Index < Image.size(); ++Index) {
        const bool InField = Index >= ChecksumAt && Index < ChecksumAt + 4;
        const uint8_t Byte = InField ? 0 : Image[Index];
        Crc = CrcTable[(Crc ^ Byte) & 0xFF] ^ (Crc >> 8);
    }
    return Crc ^ 0xFFFFFFFFu;
}

void Seal(std::span<uint8_t> Image) {
    if (Image.size() < ImageHeader::Size) {
        return;
    }
    const size_t Length = Get16(Image, 8);
    Put32(Image, ChecksumAt, Checksum(Image, Length));
}

size_t PaddedLength(size_t Length) { return Length % 128 == 0 ? Length + 1 : Length; }

namespace {

struct Checker {
    std::span<const uint8_t> Bytes;
    const ChipLimits& Limits;
    CheckResult& Result;

    bool Refuse(std::string Reason) {
        Result.Accepted = false;
        Result.Reason = std::move(Reason);
        return false;
    }

    bool Header();
    bool Code();
    bool Operand(Opcodes::OperandKind Kind, const Opcodes::OpcodeInfo& Info, size_t Instruction,
                 size_t At, std::vector<size_t>& Targets);
};

bool Checker::Header() {
    ImageHeader& H = Result.Header;
    if (!ImageHeader::Read(Bytes, H)) {
        return Refuse("The image is " + Number(static_cast<long long>(Bytes.size())) +
                      " bytes long, shorter than its header of 32 bytes");
    }
    if (std::memcmp(Bytes.data(), ImageHeader::Signature, sizeof ImageHeader::Signature) != 0) {
        return Refuse(
            "The file is not a program image of this machine: it does not begin with KVBC");
    }
    if (H.Version != ImageHeader::FormatVersion) {
        return Refuse("The image is of format version " + Number(H.Version) +
                      "; this machine runs version 1");
    }
    if (H.ChipType < 1 || H.ChipType > 3) {
        return Refuse("The image names chip type " + Number(H.ChipType) +
                      ", which is not 1, 2 or 3");
    }
    if (Limits.ChipType != 0 && H.ChipType != Limits.ChipType) {
        return Refuse(std::string("The image is made for the ") + ChipName(H.ChipType) +
                      ", not for this " + ChipName(Limits.ChipType));
    }
    if (H.Length < ImageHeader::Size || H.Length > Bytes.size()) {
        return Refuse("The image's header gives a length of " + Number(H.Length) + " bytes, but " +
                      Number(static_cast<long long>(Bytes.size())) + " bytes are there");
    }
    if (BytecodeImage::Checksum(Bytes, H.Length) != H.Checksum) {
        return Refuse("The image's checksum does not match its bytes: the image is damaged");
    }
    if (H.Flags != 0 || H.Reserved != 0) {
        return Refuse("The image uses header fields that this machine does not know");
    }
    if (H.StringSize < 1 || H.StringSize > ImageHeader::MaxStringSize) {
        return Refuse("The image's string size " + Number(H.StringSize) +
                      " is not between 1 and 64 bytes");
    }
    if (H.CodeOffset != ImageHeader::Size ||
        static_cast<size_t>(H.CodeOffset) + H.CodeSize + H.DataSize != H.Length) {
        return Refuse("The image's header, code (" + Number(H.CodeSize) + " bytes) and data (" +
                      Number(H.DataSize) + " bytes) do not add up to its length of " +
                      Number(H.Length) + " bytes");
    }
    if (H.CodeSize == 0) {
        return Refuse("The image has no code");
    }
    if (H.RamLow > H.RamHigh || H.RamHigh >= Limits.RamSize) {
        return Refuse("The program's RAM, " + Number(H.RamLow) + " to " + Number(H.RamHigh) +
                      ", is not a range inside the chip's RAM of " +
                      Number(static_cast<long long>(Limits.RamSize)) + " bytes");
    }
    if (H.GlobalsEnd < H.RamLow || H.GlobalsEnd > H.RamHigh + 1) {
        return Refuse("The module-level variables end at " + Number(H.GlobalsEnd) +
                      ", outside the program's RAM, " + Number(H.RamLow) + " to " +
                      Number(H.RamHigh));
    }
    if (ImageHeader::PersistentBase + static_cast<size_t>(H.PersistentSize) >
        Limits.InternalEepromSize) {
        return Refuse("The persistent variables, " + Number(H.PersistentSize) +
                      " bytes from address 32, do not fit the internal EEPROM of " +
                      Number(static_cast<long long>(Limits.InternalEepromSize)) + " bytes");
    }
    return true;
}

bool Checker::Operand(Opcodes::OperandKind Kind, const Opcodes::OpcodeInfo& Info,
                      size_t Instruction, size_t At, std::vector<size_t>& Targets) {
    using Opcodes::OperandKind;
    const ImageHeader& H = Result.Header;
    const std::string Where = " at code address " + Number(static_cast<long long>(Instruction));
    switch (Kind) {
        case OperandKind::CodeAddress:
            Targets.push_back(Instruction);
            return true;
        case OperandKind::DataOffset: {
            const size_t Offset = Get16(Bytes, At);
            const size_t DataStart = static_cast<size_t>(H.CodeOffset) + H.CodeSize;
            if (Offset >= H.DataSize) {
                return Refuse("The string literal" + Where + " lies outside the image's data");
            }
            const size_t TextLength = Bytes[DataStart + Offset];
            if (Offset + 1 + TextLength > H.DataSize) {
                return Refuse("The string literal" + Where + " runs past the end of the data");
            }
            if (TextLength > H.StringSize) {
                return Refuse("The string literal" + Where + " is " +
                              Number(static_cast<long long>(TextLength)) +
                              " bytes long, more than the string size of " + Number(H.StringSize));
            }
            return true;
        }
        case OperandKind::RamAddress: {
            const size_t Address = Get16(Bytes, At);
            const size_t Size = Info.AccessSize;
            if (Address < H.RamLow || Address + Size - 1 > H.RamHigh) {
                return Refuse("The RAM address " + Number(static_cast<long long>(Address)) + Where +
                              " is outside the program's RAM, " + Number(H.RamLow) + " to " +
                              Number(H.RamHigh));
            }
            return true;
        }
        case OperandKind::PersistentAddress: {
            const size_t Address = Get16(Bytes, At);
            if (Address < ImageHeader::PersistentBase ||
                Address >= ImageHeader::PersistentBase + static_cast<size_t>(H.PersistentSize)) {
                return Refuse("The persistent address " + Number(static_cast<long long>(Address)) +
                              Where + " is outside the persistent variables");
            }
            return true;
        }
        case OperandKind::LibraryCall:
            if (!LibraryCalls::IsKnown(Bytes[At])) {
                return Refuse("Unknown library call " + Number(Bytes[At]) + Where);
            }
            return true;
        case OperandKind::TypeCode:
            if (Bytes[At] >= Opcodes::ValueTypeCount) {
                return Refuse("Unknown value type " + Number(Bytes[At]) + Where);
            }
            return true;
        case OperandKind::ConversionPair:
            if ((Bytes[At] >> 4) >= Opcodes::ValueTypeCount ||
                (Bytes[At] & 0x0F) >= Opcodes::ValueTypeCount) {
                return Refuse("Unknown conversion " + Number(Bytes[At]) + Where);
            }
            return true;
        case OperandKind::Condition:
            if (Bytes[At] > Opcodes::ConditionGreaterOrEqual) {
                return Refuse("Unknown comparison " + Number(Bytes[At]) + Where);
            }
            return true;
        default:
            return true;
    }
}

bool Checker::Code() {
    const ImageHeader& H = Result.Header;
    const size_t Start = H.CodeOffset;
    const size_t End = Start + H.CodeSize;
    Result.InstructionStarts.assign(End, false);
    std::vector<size_t> Targets;
    size_t At = Start;
    const Opcodes::OpcodeInfo* Last = nullptr;
    while (At < End) {
        const uint8_t Opcode = Bytes[At];
        const Opcodes::OpcodeInfo* Info = Opcodes::Info(Opcode);
        if (Info == nullptr) {
            return Refuse("Unknown instruction " + Number(Opcode) + " at code address " +
                          Number(static_cast<long long>(At)));
        }
        if (At + Info->Length > End) {
            return Refuse("The instruction " + std::string(Info->Mnemonic) + " at code address " +
                          Number(static_cast<long long>(At)) + " runs past the end of the code");
        }
        Result.InstructionStarts[At] = true;
        size_t OperandAt = At + 1;
        for (int Index = 0; Index < Info->OperandCount; ++Index) {
            if (!Operand(Info->Operands[Index], *Info, At, OperandAt, Targets)) {
                return false;
            }
            OperandAt += Opcodes::OperandLength(Info->Operands[Index]);
        }
        if (Opcode == Opcodes::AREF1 && static_cast<int16_t>(Get16(Bytes, At + 1)) >
                                            static_cast<int16_t>(Get16(Bytes, At + 3))) {
            return Refuse("The array bounds at code address " + Number(static_cast<long long>(At)) +
                          " have the lower above the upper");
        }
        if (Opcode == Opcodes::AREF2 && (static_cast<int16_t>(Get16(Bytes, At + 1)) >
                                             static_cast<int16_t>(Get16(Bytes, At + 3)) ||
                                         static_cast<int16_t>(Get16(Bytes, At + 5)) >
                                             static_cast<int16_t>(Get16(Bytes, At + 7)))) {
            return Refuse("The array bounds at code address " + Number(static_cast<long long>(At)) +
                          " have the lower above the upper");
        }
        Last = Info;
        At += Info->Length;
    }
    if (Last->Mnemonic != "jmp" && Last->Mnemonic != "ret" && Last->Mnemonic != "end") {
        return Refuse("The code ends with " + std::string(Last->Mnemonic) +
                      ", which would go on past the end of the code");
    }
    for (const size_t Instruction : Targets) {
        const size_t Target = Get16(Bytes, Instruction + 1);
        if (Target < Start || Target >= End || !Result.InstructionStarts[Target]) {
            return Refuse("The " + std::string(Opcodes::Info(Bytes[Instruction])->Mnemonic) +
                          " at code address " + Number(static_cast<long long>(Instruction)) +
                          " goes to " + Number(static_cast<long long>(Target)) +
                          ", where no instruction starts");
        }
    }
    if (H.Entry < Start || H.Entry >= End || !Result.InstructionStarts[H.Entry]) {
        return Refuse("The entry point " + Number(H.Entry) + " is not the start of an instruction");
    }
    return true;
}

}  // namespace

CheckResult Check(std::span<const uint8_t> Bytes, const ChipLimits& Limits) {
    CheckResult Result;
    Checker Check{Bytes, Limits, Result};
    if (Check.Header() && Check.Code()) {
        Result.Accepted = true;
    }
    return Result;
}

}  // namespace BytecodeImage
