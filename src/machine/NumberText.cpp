#include "machine/NumberText.h"

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
