#include "machine/RunTimeErrors.h"

namespace RunTimeErrors {

std::string_view Text(RunTimeError Error) {
    switch (Error) {
        case RunTimeError::None:
            return "No error";
        case RunTimeError::DivisionByZero:
            return "Division by zero";
        case RunTimeError::Overflow:
            return "Overflow";
        case RunTimeError::IndexOutOfBounds:
            return "Index out of bounds";
        case RunTimeError::StackOverflow:
            return "Stack overflow";
        case RunTimeError::StackUnderflow:
            return "Stack underflow";
        case RunTimeError::AddressOutOfRange:
            return "Address out of range";
        case RunTimeError::InvalidPin:
            return "Invalid pin";
        case RunTimeError::InvalidLed:
            return "Invalid LED";
        case RunTimeError::InvalidArgument:
            return "Invalid argument";
    }
    return "Unknown error";
}

std::string Message(RunTimeError Error, uint32_t CodeAddress) {
    return "Run-time error " + std::to_string(static_cast<int>(Error)) + ": " +
           std::string(Text(Error)) + " (code address " + std::to_string(CodeAddress) + ")";
}

}  // namespace RunTimeErrors
