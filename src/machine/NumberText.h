#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The text of a number as the machine's STR makes it, with no blank before or
// behind it: whole numbers with all their digits and a "-" when negative; a
// Single with at most 7 significant digits, rounded to the nearest, trailing
// zeros left off and no "0" before the point of a fraction (".5", "-.25"),
// in exponent form when the decimal exponent is below -4 or reaches 7
// ("1E+07", "1.5E-05"); a Boolean as "True" or "False".
namespace NumberText {

std::string Whole(int64_t Value);
std::string Single(float Value);
std::string Boolean(bool Value);
// The number a text starts with, as the family's Val reads it: blanks, a sign,
// digits with at most one point, an exponent (E and digits); 0 where the text
// starts with none, the largest Single where it is too large for one.
float Read(std::string_view Text);

}  // namespace NumberText
