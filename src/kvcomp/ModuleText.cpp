#include "kvcomp/ModuleText.h"

namespace ModuleText {

namespace {

// Windows-1252 from 0x80 to 0x9F; the other bytes are Latin-1. 0 marks the
// five unassigned codes, which map to the control characters of their value.
constexpr char16_t Cp1252High[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

constexpr char16_t Replacement = 0xFFFD;

// One UTF-8 sequence at Bytes[At]: its code point and length, or a length of
// 0 when it is ill-formed.
struct Sequence {
    char32_t Code = 0;
    size_t Length = 0;
};

Sequence ReadSequence(std::string_view Bytes, size_t At) {
    const auto Byte = [&](size_t Index) { return static_cast<uint8_t>(Bytes[Index]); };
    const uint8_t Lead = Byte(At);
    if (Lead < 0x80) {
        return {Lead, 1};
    }
    size_t Length = 0;
    char32_t Code = 0;
    char32_t Least = 0;
    if (Lead >= 0xC2 && Lead <= 0xDF) {
        Length = 2;
        Code = Lead & 0x1F;
        Least = 0x80;
    } else if (Lead >= 0xE0 && Lead <= 0xEF) {
        Length = 3;
        Code = Lead & 0x0F;
        Least = 0x800;
    } else if (Lead >= 0xF0 && Lead <= 0xF4) {
        Length = 4;
        Code = Lead & 0x07;
        Least = 0x10000;
    } else {
        return {};
    }
    if (At + Length > Bytes.size()) {
        return {};
    }
    for (size_t Index = 1; Index < Length; ++Index) {
        const uint8_t Next = Byte(At + Index);
        if ((Next & 0xC0) != 0x80) {
            return {};
        }
        Code = (Code << 6) | (Next & 0x3F);
    }
    if (Code < Least || Code > 0x10FFFF || (Code >= 0xD800 && Code <= 0xDFFF)) {
        return {};
    }
    return {Code, Length};
}

void Append(std::u16string& Text, char32_t Code) {
    if (Code < 0x10000) {
        Text += static_cast<char16_t>(Code);
    } else {
        Code -= 0x10000;
        Text += static_cast<char16_t>(0xD800 + (Code >> 10));
        Text += static_cast<char16_t>(0xDC00 + (Code & 0x3FF));
    }
}

std::u16string FromCp1252(std::string_view Bytes) {
    std::u16string Text;
    Text.reserve(Bytes.size());
    for (const char Byte : Bytes) {
        const uint8_t Code = static_cast<uint8_t>(Byte);
        if (Code >= 0x80 && Code <= 0x9F && Cp1252High[Code - 0x80] != 0) {
            Text += Cp1252High[Code - 0x80];
        } else {
            Text += static_cast<char16_t>(Code);
        }
    }
    return Text;
}

}  // namespace

bool IsValidUtf8(std::string_view Bytes) {
    for (size_t At = 0; At < Bytes.size();) {
        const Sequence Next = ReadSequence(Bytes, At);
        if (Next.Length == 0) {
            return false;
        }
        At += Next.Length;
    }
    return true;
}

std::u16string FromUtf8(std::string_view Text) {
    std::u16string Result;
    Result.reserve(Text.size());
    for (size_t At = 0; At < Text.size();) {
        const Sequence Next = ReadSequence(Text, At);
        if (Next.Length == 0) {
            Result += Replacement;
            ++At;
        } else {
            Append(Result, Next.Code);
            At += Next.Length;
        }
    }
    return Result;
}

std::string ToUtf8(std::u16string_view Text) {
    std::string Result;
    Result.reserve(Text.size());
    for (size_t At = 0; At < Text.size(); ++At) {
        char32_t Code = Text[At];
        if (Code >= 0xD800 && Code <= 0xDBFF && At + 1 < Text.size() && Text[At + 1] >= 0xDC00 &&
            Text[At + 1] <= 0xDFFF) {
            Code = 0x10000 + ((Code - 0xD800) << 10) + (Text[At + 1] - 0xDC00);
            ++At;
        } else if (Code >= 0xD800 && Code <= 0xDFFF) {
            Code = Replacement;
        }
        if (Code < 0x80) {
            Result += static_cast<char>(Code);
        } else if (Code < 0x800) {
            Result += static_cast<char>(0xC0 | (Code >> 6));
            Result += static_cast<char>(0x80 | (Code & 0x3F));
        } else if (Code < 0x10000) {
            Result += static_cast<char>(0xE0 | (Code >> 12));
            Result += static_cast<char>(0x80 | ((Code >> 6) & 0x3F));
            Result += static_cast<char>(0x80 | (Code & 0x3F));
        } else {
            Result += static_cast<char>(0xF0 | (Code >> 18));
            Result += static_cast<char>(0x80 | ((Code >> 12) & 0x3F));
            Result += static_cast<char>(0x80 | ((Code >> 6) & 0x3F));
            Result += static_cast<char>(0x80 | (Code & 0x3F));
        }
    }
    return Result;
}

std::u16string Decode(std::string_view Bytes) {
    std::string_view Body = Bytes;
    if (Body.substr(0, 3) == "\xEF\xBB\xBF") {
        Body.remove_prefix(3);
    }
    // Not UTF-8: the whole file in the old code page, its first bytes too.
    return IsValidUtf8(Body) ? FromUtf8(Body) : FromCp1252(Bytes);
}

}  // namespace ModuleText
