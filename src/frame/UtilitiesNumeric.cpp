#include "frame/UtilitiesNumeric.h"

#include <bit>
#include <charconv>
#include <cmath>

namespace UtilitiesNumeric {

namespace {

// NaN texts by the sign bit; Indefinite is the processor's own NaN.
QString NaNText(bool Negative, bool Indefinite) {
    if (Indefinite) {
        return QStringLiteral("-1.#IND");
    }
    return Negative ? QStringLiteral("-1.#QNAN") : QStringLiteral("1.#QNAN");
}

// Through std::to_chars, which rounds from the exact binary value and, unlike
// printf, ignores the locale that Qt sets for the process.
template <typename Floating>
QString FloatingText(Floating Value, int SignificantDigits) {
    if (std::isinf(Value)) {
        return Value < 0 ? QStringLiteral("-1.#INF") : QStringLiteral("1.#INF");
    }
    if (Value == 0) {
        return QStringLiteral("0");
    }
    char Buffer[64];
    const auto Result = std::to_chars(Buffer, Buffer + sizeof Buffer, Value,
                                      std::chars_format::general, SignificantDigits);
    QString Text = QString::fromLatin1(Buffer, Result.ptr - Buffer).toUpper();
    if (Text.startsWith(QLatin1String("0."))) {
        Text.remove(0, 1);
    } else if (Text.startsWith(QLatin1String("-0."))) {
        Text.remove(1, 1);
    }
    return Text;
}

}  // namespace

QString NumberToText(uint8_t Value) { return QString::number(Value); }

QString NumberToText(int16_t Value) { return QString::number(Value); }

QString NumberToText(int32_t Value) { return QString::number(Value); }

QString NumberToText(int64_t Value) { return QString::number(Value); }

QString NumberToText(float Value) {
    if (std::isnan(Value)) {
        const uint32_t Bits = std::bit_cast<uint32_t>(Value);
        return NaNText((Bits >> 31) != 0, Bits == 0xFFC00000u);
    }
    return FloatingText(Value, 7);
}

QString NumberToText(double Value) {
    if (std::isnan(Value)) {
        const uint64_t Bits = std::bit_cast<uint64_t>(Value);
        return NaNText((Bits >> 63) != 0, Bits == 0xFFF8000000000000ull);
    }
    return FloatingText(Value, 15);
}

int16_t BytesToInteger(std::span<const uint8_t, 2> Bytes) {
    return static_cast<int16_t>(static_cast<uint16_t>(Bytes[0] | (Bytes[1] << 8)));
}

int32_t BytesToLong(std::span<const uint8_t, 4> Bytes) {
    return static_cast<int32_t>(
        static_cast<uint32_t>(Bytes[0]) | (static_cast<uint32_t>(Bytes[1]) << 8) |
        (static_cast<uint32_t>(Bytes[2]) << 16) | (static_cast<uint32_t>(Bytes[3]) << 24));
}

float BytesToSingle(std::span<const uint8_t, 4> Bytes) {
    return std::bit_cast<float>(static_cast<uint32_t>(BytesToLong(Bytes)));
}

}  // namespace UtilitiesNumeric
