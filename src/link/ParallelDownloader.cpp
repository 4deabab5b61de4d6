#include "link/ParallelDownloader.h"

namespace ParallelDownloader {

namespace {
int16_t DataPort = 888;
int16_t StatusPort = 889;
int16_t ControlPort = 890;
std::array<uint8_t, 8> BitMask{};
}  // namespace

void Initialize() {
    for (int Index = 0; Index < 8; ++Index) {
        BitMask[Index] = static_cast<uint8_t>(1u << Index);
    }
    SetPortBase(888);
}

void SetPortBase(int16_t Address) {
    DataPort = Address;
    StatusPort = static_cast<int16_t>(Address + 1);
    ControlPort = static_cast<int16_t>(Address + 2);
}

int16_t GetDataPort() { return DataPort; }
int16_t GetStatusPort() { return StatusPort; }
int16_t GetControlPort() { return ControlPort; }
const std::array<uint8_t, 8>& GetBitMask() { return BitMask; }

}  // namespace ParallelDownloader
