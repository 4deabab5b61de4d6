#include "machine/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace NumberText {

std::string Whole(int64_t Value) { return std::to_string(Value); }

std::string Single(float Value) {
    if (std::isnan(Value)) {
        return "NaN";
    }
    if (std::isinf(Value)) {
        return Value < 0 ? "-Infinity" : "Infinity";
    }
    if (Value == 0) {
        return "0";
    }
    // std::to_chars rounds from the exact binary value and knows no locale.
    char Buffer[64];
    const auto Result =
        std::to_chars(Buffer, Buffer + sizeof Buffer, Value, std::chars_format::general, 7);
    std::string Text(Buffer, Result.ptr);
    for (char& Character : Text) {
        if (Character == 'e') {
            Character = 'E';
        }
    }
    if (Text.starts_with("0.")) {
        Text.erase(0, 1);
    } else if (Text.starts_with("-0.")) {
        Text.erase(1, 1);
    }
    return Text;
}

std::string Boolean(bool Value) { return Value ? "True" : "False"; }

}  // namespace NumberText

namespace NumberText {

float Read(std::string_view Text) {
    size_t I = 0;
    auto Digit = [&](size_t At) { return At < Text.size() && Text[At] >= '0' && Text[At] <= '9'; };
    while (I < Text.size() && (Text[I] == ' ' || Text[I] == '\t')) {
        ++I;
    }
    std::string Number;
    if (I < Text.size() && (Text[I] == '-' || Text[I] == '+')) {
        Number += Text[I++];
    }
    bool AnyDigit = false;
    while (Digit(I)) {
        Number += Text[I++];
        AnyDigit = true;
    }
    if (I < Text.size() && Text[I] == '.') {
        Number += Text[I++];
        while (Digit(I)) {
            Number += Text[I++];
            AnyDigit = true;
        }
    }
    if (!AnyDigit) {
        return 0.0f;
    }
    if (I < Text.size() && (Text[I] == 'E' || Text[I] == 'e')) {
        const size_t Sign = (I + 1 < Text.size() && (Text[I + 1] == '-' || Text[I + 1] == '+'));
        if (Digit(I + 1 + Sign)) {
            Number += 'e';
            if (Sign != 0) {
                Number += Text[I + 1];
            }
            I += 1 + Sign;
            while (Digit(I)) {
                Number += Text[I++];
            }
        }
    }
    // from_chars takes no '+', and knows no locale.
    const bool Negative = Number[0] == '-';
    const size_t From = (Number[0] == '-' || Number[0] == '+') ? 1 : 0;
    double Value = 0;
    const auto Outcome =
        std::from_chars(Number.data() + From, Number.data() + Number.size(), Value);
    if (Outcome.ec == std::errc::result_out_of_range) {
        Value = Number.find("e-") != std::string::npos ? 0.0 : 3.4028234663852886e38;
    }
    Value = std::min(Value, 3.4028234663852886e38);
    return static_cast<float>(Negative ? -Value : Value);
}

}  // namespace NumberText
