#pragma once

#include <QString>
#include <cstdint>
#include <span>

// Numbers as the system shows and stores them, and the chip's little-endian
// bytes made into numbers.
namespace UtilitiesNumeric {

// The text of a number as the old platform printed it, with no blank before
// or behind it: no "0" before the point of a fraction below 1 (".5", "-.5"),
// "-" for a negative number and nothing for a positive one.
//
// Whole numbers print all their digits.
//
// A Single prints at most 7 significant digits and a Double at most 15, each
// rounded to the nearest from the exact binary value (a tie to even): 0.1f is
// ".1", 16777216 as a Single is "1.677722E+07". Trailing zeros of a fraction
// and a point with nothing behind it are left off. The exponent form is used
// when the decimal exponent of the rounded value is below -4 or reaches the
// digit count: 1234567 and ".0001" as they are, 1E+07 and 1E-05 as "1E+07" and
// "1E-05". Its exponent has a sign and at least two digits ("3.402823E+38",
// "1.401298E-45", "1E+300"). A zero is "0" whatever its sign. Infinities and
// NaNs print as the old run time printed them: "1.#INF", "-1.#INF", "-1.#IND"
// for the NaN that the processor makes of an invalid operation (sign set,
// quiet, no payload), and "1.#QNAN" or "-1.#QNAN" for any other NaN.
QString NumberToText(uint8_t Value);
QString NumberToText(int16_t Value);
QString NumberToText(int32_t Value);
// Also the whole numbers that the old platform kept in its decimal type.
QString NumberToText(int64_t Value);
QString NumberToText(float Value);
QString NumberToText(double Value);

// The old code took these bytes as elements 1 to 2 (or 1 to 4) of a byte
// array; here they are Bytes[0] to Bytes[1] (or Bytes[3]), the lowest address
// first, which is also the least significant byte.
int16_t BytesToInteger(std::span<const uint8_t, 2> Bytes);
int32_t BytesToLong(std::span<const uint8_t, 4> Bytes);
// The bits as they stand, NaN payloads and negative zero included.
float BytesToSingle(std::span<const uint8_t, 4> Bytes);

}  // namespace UtilitiesNumeric
