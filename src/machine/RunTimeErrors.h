#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// What stops a running program. The number and the text go out on the
// chip's serial line as the program's last words.
enum class RunTimeError : uint8_t {
    None = 0,
    DivisionByZero = 1,
    Overflow = 2,
    IndexOutOfBounds = 3,
    StackOverflow = 4,
    StackUnderflow = 5,
    AddressOutOfRange = 6,
    InvalidPin = 7,
    InvalidLed = 8,
    InvalidArgument = 9,
};

namespace RunTimeErrors {

std::string_view Text(RunTimeError Error);
// "Run-time error 1: Division by zero (code address 40)", without line breaks.
std::string Message(RunTimeError Error, uint32_t CodeAddress);

}  // namespace RunTimeErrors
