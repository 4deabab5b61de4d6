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
