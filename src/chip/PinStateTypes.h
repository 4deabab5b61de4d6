#pragma once

#include <cstdint>

// The start-up state of a chip pin. Every pin defaults to kvInputTristate.
enum PinStateTypes : int32_t {
    kvOutputLow = 0,
    kvOutputHigh = 1,
    kvInputTristate = 2,
    kvInputPullup = 3,
};
