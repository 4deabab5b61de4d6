#pragma once

#include <array>
#include <cstdint>

// The KV-10's programmer on a PC parallel port.
namespace ParallelDownloader {

// Fills the bit masks and sets the register numbers of the first port.
void Initialize();
void SetPortBase(int16_t Address);
int16_t GetDataPort();
int16_t GetStatusPort();
int16_t GetControlPort();
// BitMask(i) = 2 to the power i.
const std::array<uint8_t, 8>& GetBitMask();

}  // namespace ParallelDownloader
