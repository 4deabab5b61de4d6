#include "frame/UtilitiesCommon.h"

#include "frame/UtilitiesFilename.h"

namespace UtilitiesCommon {

QString CopyrightSign() { return QString(QChar(169)); }

bool IsLegalIdentifier(const QString& Name) {
    const QString Trimmed = UtilitiesFilename::TrimBlanks(Name);
    // Checked before lowering: some non-ASCII letters lower to ASCII ones.
    for (QChar C : Trimmed) {
        if (C.unicode() > 127) {
            return false;
        }
    }
    const QString Text = Trimmed.toLower();
    if (Text.isEmpty()) {
        return false;
    }
    for (qsizetype Index = 0; Index < Text.size(); ++Index) {
        const char16_t C = Text[Index].unicode();
        const bool IsLetter = C >= u'a' && C <= u'z';
        const bool IsDigit = C >= u'0' && C <= u'9';
        if (Index == 0 ? !IsLetter : !(IsLetter || IsDigit || C == u'_')) {
            return false;
        }
    }
    return true;
}

}  // namespace UtilitiesCommon
