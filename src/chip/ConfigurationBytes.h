#pragma once

#include <array>
#include <cstdint>

#include "chip/PortBitXRef.h"
#include "chip/PrfRecordType.h"

// The preference file, as found on disk beside ProjectFilename, turned into
// the chip's port register bytes and its 32-byte configuration block.
namespace ConfigurationBytes {

// The configuration array, indexed 0 to 32, owned by the caller.
using RegisterArray = std::array<uint8_t, 33>;
// The block at address 0 of the chip's internal EEPROM.
using ConfigurationBlock = std::array<uint8_t, 32>;

void ConfigureKV10(RegisterArray& Registers);
void ConfigureKV20(RegisterArray& Registers);
void ConfigureKV30(RegisterArray& Registers);

// ORs one port's eight pins, read through FileExecutivePRF, into the
// direction byte at RegisterIndex and the data byte after it.
void PutRegister(int32_t RegisterIndex, const PortBitXRef& PortBits, RegisterArray& Registers);
// Applies a pin record to one bit of the data byte at RegisterIndex and the
// direction byte after it.
void PutPinBits(const PrfRecordType& Record, int32_t RegisterIndex, uint8_t BitMask,
                RegisterArray& Registers);
void ClearRegisters(RegisterArray& Registers);

// The network rate divisor of a record 610 value (0 means 460800).
uint8_t NetworkRateDivisor(int32_t NetBaud);

// The block each downloader builds from the array. The KV-10's bytes 19 to
// 30 are not written by its programmer; they are 0 here.
ConfigurationBlock BlockKV10(const RegisterArray& Registers, int32_t PersistentSize);
ConfigurationBlock BlockKV20(const RegisterArray& Registers);
ConfigurationBlock BlockKV30(const RegisterArray& Registers);

}  // namespace ConfigurationBytes
