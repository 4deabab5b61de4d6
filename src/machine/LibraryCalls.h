#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// The system library as the machine offers it: SYS n calls entry n. What a
// call takes from the stacks and leaves on them is in docs/bytecode.md; the
// names are the assembler's, the language gives them its own.
namespace LibraryCalls {

enum Number : uint8_t {
    PinSet = 1,
    PinRead = 2,
    LedSet = 3,
    WaitSeconds = 4,
    WaitMilliseconds = 5,
    TimerSeconds = 6,
    TimerMilliseconds = 7,
    PrintString = 8,
    PrintNewLine = 9,
    PrintByte = 10,
    SerialAvailable = 11,
    SerialRead = 12,
    SerialTryRead = 13,
    StringLength = 14,
    StringFromByte = 15,
    StringFirstByte = 16,
    StringLeft = 17,
    StringRight = 18,
    StringMiddle = 19,
    StringToNumber = 20,
};

inline constexpr int Count = 20;

bool IsKnown(uint8_t Call);
// The assembler's name, as "PinSet"; empty for an unknown number.
std::string_view Name(uint8_t Call);
std::optional<uint8_t> Find(std::string_view Name);

}  // namespace LibraryCalls
