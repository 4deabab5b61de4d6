#pragma once

#include <cstdint>

// The results the serial chip link hands back in its Status arguments.
enum DownloaderStatusTypes : int16_t {
    dlOK = 1,
    dlNoCommunications = 2,
    dlCannotOpenPort = 3,
    dlCannotClosePort = 4,
    dlNotHalted = 5,
    dlResetFailed = 6,
    dlWriteFailed = 7,
    dlVerifyFailed = 8,
    dlChecksumFailed = 9,
};
