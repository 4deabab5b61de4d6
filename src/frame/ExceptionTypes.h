#pragma once

#include <cstdint>

// The last resort of the few top-level error traps.
namespace ExceptionTypes {

// Call inside a catch block: the exception becomes the current Err(), its
// location is set, and the numbered report is shown (in a batch, logged).
void ProcessException(int16_t ErrorMajor, int16_t ErrorMinor);

}  // namespace ExceptionTypes
