#pragma once

#include <QString>
#include <cstdint>

// Numbers as the settings and the old data files hold them: a leading number
// in decimal (sign, fraction and exponent allowed), or "&H" hexadecimal, or
// "&O" octal; blanks, tabs and line feeds anywhere are skipped; reading stops
// at the first character that cannot continue the number; no number gives 0.
// A hexadecimal or octal number of up to 16 bits is signed 16-bit ("&HFFFF"
// is -1), of up to 32 bits signed 32-bit.
double Val(const QString& Text);

// Val rounded half to even into a 32-bit number; values beyond its range are
// held at its ends instead of failing.
int32_t ValToLong(const QString& Text);

// A text converted to a 32-bit number the strict way, as a value typed into
// a box is stored: blanks around it, a sign, decimal digits with commas
// between digit groups ("460,800"), a fraction rounded half to even. Anything
// else, an empty text or a number beyond the range gives False and leaves
// Value as it was.
bool TextToLong(const QString& Text, int32_t& Value);
