#include "chip/FileStatusTypes.h"

QString CStrFileStatus(int32_t Status) {
    switch (Status) {
        case fstOK:
            return QStringLiteral("fstOK");
        case fstIllegalName:
            return QStringLiteral("fstIllegalName");
        case fstNonexistant:
            return QStringLiteral("fstNonexistant");
        case fstWrongSize:
            return QStringLiteral("fstWrongSize");
        case fstReadOnly:
            return QStringLiteral("fstReadOnly");
        case fstUndefined:
            return QStringLiteral("fstUndefined");
        default:
            return QStringLiteral("*** Illegal type ***");
    }
}
