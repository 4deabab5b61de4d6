#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "machine/BytecodeMachine.h"
#include "machine/MachineBoard.h"

// A KV-20's memories around the machine, a plain board on its serial line and
// pins, and a program assembled from text.
class MachineFixture : public ::testing::Test {
  protected:
    MachineFixture();

    // Assembles Source and starts it at chip time 0; false (and a test failure)
    // when it does not assemble or the machine refuses it.
    bool Load(std::string_view Source);
    // Starts the image as it is; false when the machine refuses it.
    bool Start(const std::vector<uint8_t>& Bytes);
    // Runs until the program stops or Seconds of chip time have passed.
    BytecodeMachine::State RunFor(double Seconds = 10.0);
    // Loads and runs; the program's output.
    std::string Run(std::string_view Source, double Seconds = 10.0);
    // Runs and expects the program to stop with Error.
    void ExpectError(RunTimeError Error, double Seconds = 10.0);

    // A program body that leaves one slot on the stack, or stops with Error.
    struct SlotCase {
        const char* Body;
        uint32_t Slot;
        RunTimeError Error = RunTimeError::None;
    };
    // Runs each body inside Main, with a Long variable V, and checks its outcome.
    void CheckSlots(const std::vector<SlotCase>& Cases);

    // The value stack from the bottom, signed.
    std::vector<int64_t> Stack() const;
    int64_t Word(int Address) const;
    int16_t HalfWord(int Address) const;

    std::vector<uint8_t> Ram;
    std::vector<uint8_t> InternalEeprom;
    std::vector<uint8_t> Image;
    MachineBoard Board;
    std::unique_ptr<BytecodeMachine> Machine;
    int ChipType = 2;
};

// A program that runs Body inside Main and ends; Header goes before Main.
std::string Program(std::string_view Body, std::string_view Header = "");
