#include "machine/LibraryCalls.h"

#include <array>

namespace LibraryCalls {

namespace {

constexpr std::array<std::string_view, Count + 1> Names = {
    "",
    "PinSet",
    "PinRead",
    "LedSet",
    "WaitSeconds",
    "WaitMilliseconds",
    "TimerSeconds",
    "TimerMilliseconds",
    "PrintString",
    "PrintNewLine",
    "PrintByte",
    "SerialAvailable",
    "SerialRead",
    "SerialTryRead",
    "StringLength",
    "StringFromByte",
    "StringFirstByte",
    "StringLeft",
    "StringRight",
    "StringMiddle",
    "StringToNumber",
};

}  // namespace

bool IsKnown(uint8_t Call) { return Call >= 1 && Call <= Count; }

std::string_view Name(uint8_t Call) { return IsKnown(Call) ? Names[Call] : std::string_view(); }

std::optional<uint8_t> Find(std::string_view Wanted) {
    for (int Call = 1; Call <= Count; ++Call) {
        if (Names[Call] == Wanted) {
            return static_cast<uint8_t>(Call);
        }
    }
    return std::nullopt;
}

}  // namespace LibraryCalls
