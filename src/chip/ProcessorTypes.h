#pragma once

#include <cstdint>

// The chip models, as GlobalData's ChipType and the preference file's
// Processor record hold them.
enum ProcessorTypes : int32_t {
    kvProcessorKV10 = 1,
    kvProcessorKV20 = 2,
    kvProcessorKV30 = 3,
};
