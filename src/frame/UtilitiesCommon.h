#pragma once

#include <QString>

namespace UtilitiesCommon {

// The copyright sign, the character with the code 169.
QString CopyrightSign();

// Trimmed and in lower case: a letter a to z, then letters, digits 0 to 9 or
// "_". Anything else, also any character outside ASCII, is illegal.
bool IsLegalIdentifier(const QString& Name);

}  // namespace UtilitiesCommon
