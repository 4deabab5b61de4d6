#include "platform/Val.h"

#include <cmath>
#include <limits>

namespace {
bool IsSkipped(QChar C) {
    return C == QLatin1Char(' ') || C == QLatin1Char('\t') || C == QLatin1Char('\n') ||
           C == QLatin1Char('\r');
}

double RadixValue(const QString& Digits, int Radix, int BitsPerDigit) {
    uint64_t Value = 0;
    int Count = 0;
    for (QChar C : Digits) {
        const char L = C.toLatin1();
        int Digit = -1;
        if (L >= '0' && L <= '9') {
            Digit = L - '0';
        } else if (L >= 'a' && L <= 'f') {
            Digit = L - 'a' + 10;
        } else if (L >= 'A' && L <= 'F') {
            Digit = L - 'A' + 10;
        }
        if (Digit < 0 || Digit >= Radix) {
            break;
        }
        Value = (Value * Radix + Digit) & 0xFFFFFFFFull;
        ++Count;
    }
    if (Count == 0) {
        return 0;
    }
    if (Count * BitsPerDigit <= 16 && Value <= 0xFFFF) {
        return static_cast<int16_t>(static_cast<uint16_t>(Value));
    }
    return static_cast<int32_t>(static_cast<uint32_t>(Value));
}
}  // namespace

double Val(const QString& Text) {
    QString Packed;
    Packed.reserve(Text.size());
    for (QChar C : Text) {
        if (!IsSkipped(C)) {
            Packed.append(C);
        }
    }
    if (Packed.startsWith(QLatin1Char('&'))) {
        const QString Rest = Packed.mid(1);
        if (Rest.startsWith(QLatin1Char('H'), Qt::CaseInsensitive)) {
            return RadixValue(Rest.mid(1), 16, 4);
        }
        if (Rest.startsWith(QLatin1Char('O'), Qt::CaseInsensitive)) {
            return RadixValue(Rest.mid(1), 8, 3);
        }
        return RadixValue(Rest, 8, 3);
    }
    // Longest leading decimal number: [sign] digits [. digits] [E|D [sign] digits]
    qsizetype Pos = 0;
    const qsizetype Size = Packed.size();
    QString Number;
    if (Pos < Size && (Packed[Pos] == QLatin1Char('+') || Packed[Pos] == QLatin1Char('-'))) {
        Number.append(Packed[Pos++]);
    }
    bool HasDigits = false;
    while (Pos < Size && Packed[Pos].isDigit() && Packed[Pos].unicode() < 128) {
        Number.append(Packed[Pos++]);
        HasDigits = true;
    }
    if (Pos < Size && Packed[Pos] == QLatin1Char('.')) {
        Number.append(Packed[Pos++]);
        while (Pos < Size && Packed[Pos].isDigit() && Packed[Pos].unicode() < 128) {
            Number.append(Packed[Pos++]);
            HasDigits = true;
        }
    }
    if (!HasDigits) {
        return 0;
    }
    if (Pos < Size && (Packed[Pos] == QLatin1Char('E') || Packed[Pos] == QLatin1Char('e') ||
                       Packed[Pos] == QLatin1Char('D') || Packed[Pos] == QLatin1Char('d'))) {
        QString Exponent = QStringLiteral("e");
        qsizetype ExpPos = Pos + 1;
        if (ExpPos < Size &&
            (Packed[ExpPos] == QLatin1Char('+') || Packed[ExpPos] == QLatin1Char('-'))) {
            Exponent.append(Packed[ExpPos++]);
        }
        bool ExpDigits = false;
        while (ExpPos < Size && Packed[ExpPos].isDigit() && Packed[ExpPos].unicode() < 128) {
            Exponent.append(Packed[ExpPos++]);
            ExpDigits = true;
        }
        if (ExpDigits) {
            Number.append(Exponent);
        }
    }
    bool Ok = false;
    const double Value = Number.toDouble(&Ok);
    return Ok ? Value : 0;
}

int32_t ValToLong(const QString& Text) {
    const double Value = std::nearbyint(Val(Text));  // default rounding: half to even
    if (!(Value == Value)) {
        return 0;
    }
    if (Value >= static_cast<double>(std::numeric_limits<int32_t>::max())) {
        return std::numeric_limits<int32_t>::max();
    }
    if (Value <= static_cast<double>(std::numeric_limits<int32_t>::min())) {
        return std::numeric_limits<int32_t>::min();
    }
    return static_cast<int32_t>(Value);
}

bool TextToLong(const QString& Text, int32_t& Value) {
    const QString Trimmed = Text.trimmed();
    qsizetype Pos = 0;
    const qsizetype Size = Trimmed.size();
    bool Negative = false;
    if (Pos < Size && (Trimmed[Pos] == QLatin1Char('+') || Trimmed[Pos] == QLatin1Char('-'))) {
        Negative = Trimmed[Pos++] == QLatin1Char('-');
    }
    const auto IsDigitAt = [&](qsizetype At) {
        return At < Size && Trimmed[At] >= QLatin1Char('0') && Trimmed[At] <= QLatin1Char('9');
    };
    QString Digits;
    while (IsDigitAt(Pos)) {
        Digits.append(Trimmed[Pos++]);
        // A comma stands only between two digits.
        if (Pos + 1 < Size && Trimmed[Pos] == QLatin1Char(',') && IsDigitAt(Pos + 1)) {
            ++Pos;
        }
    }
    QString Fraction;
    if (Pos < Size && Trimmed[Pos] == QLatin1Char('.')) {
        ++Pos;
        while (IsDigitAt(Pos)) {
            Fraction.append(Trimmed[Pos++]);
        }
    }
    if (Pos != Size || (Digits.isEmpty() && Fraction.isEmpty())) {
        return false;
    }
    bool Converted = true;
    const QString Number = (Digits.isEmpty() ? QStringLiteral("0") : Digits) +
                           (Fraction.isEmpty() ? QString() : QStringLiteral(".") + Fraction);
    double Magnitude = Number.toDouble(&Converted);
    if (!Converted) {
        return false;
    }
    const double Rounded = std::nearbyint(Negative ? -Magnitude : Magnitude);
    if (Rounded < std::numeric_limits<int32_t>::min() ||
        Rounded > std::numeric_limits<int32_t>::max()) {
        return false;
    }
    Value = static_cast<int32_t>(Rounded);
    return true;
}
