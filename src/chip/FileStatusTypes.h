#pragma once

#include <QString>
#include <cstdint>

// What FileExecutivePRF::Initialize found out about a preference file.
enum FileStatusTypes : int32_t {
    fstOK = 0,
    fstIllegalName = 1,  // reserved; no check gives it
    fstNonexistant = 2,
    fstWrongSize = 3,
    fstReadOnly = 4,
    fstUndefined = 5,
};

// The status's own name; "*** Illegal type ***" for any other value.
QString CStrFileStatus(int32_t Status);
