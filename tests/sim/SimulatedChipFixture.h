#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "kvasm/BytecodeAssembler.h"
#include "sim/SimulatedSerialLine.h"
#include "support/VirtualClockService.h"

// A simulated chip on its line, opened by the host at the link's rate, on a
// virtual clock; programs go into its external EEPROM from assembler text.
class SimulatedChipFixture : public ::testing::Test {
  protected:
    void SetUp() override {
        auto Virtual = std::make_unique<VirtualClockService>();
        Clock = Virtual.get();
        ClockService::Install(std::move(Virtual));
        Line = std::make_shared<SimulatedSerialLine>();
        Line->SetInBufferSize(32767);
        Line->SetSettings(QStringLiteral("115200,N,8,1"));
        Line->SetPortOpen(true);
    }
    void TearDown() override {
        Line.reset();
        ClockService::Install(std::make_unique<VirtualClockService>());
    }

    SimulatedKavlinChip& Chip() { return Line->Chip(); }

    // Puts an image into the external EEPROM, as a download leaves it.
    void Flash(const char* Source) {
        const BytecodeAssembler::Result Assembled = BytecodeAssembler::Assemble(Source);
        ASSERT_TRUE(Assembled.Ok) << Assembled.Error;
        std::copy(Assembled.Image.begin(), Assembled.Image.end(),
                  Chip().ExternalEeprom.Memory.begin());
        Symbols = Assembled.Symbols;
    }
    // The configuration block of a KV-20 with every pin at its default.
    void DefaultBlock() {
        const uint8_t Block[32] = {2, 6, 0, 0, 0, 0, 176, 176};
        std::copy(std::begin(Block), std::end(Block), Chip().InternalEeprom.begin());
        Chip().InternalEeprom[31] = 255;
    }

    VirtualClockService* Clock = nullptr;
    std::shared_ptr<SimulatedSerialLine> Line;
    std::map<std::string, int64_t> Symbols;
};
