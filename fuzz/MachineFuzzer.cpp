// Feeds arbitrary bytes to the bytecode machine as a program image, with
// arbitrary bytes on its serial input, and checks that it refuses or runs the
// image without ever reaching outside the memories it was given, and that a
// bounded stretch of chip time ends.
//
// The first byte of the input tells how many of its last bytes (0 to 63) are
// the serial input; the bytes between are the image. The image runs twice:
// as it is, and sealed with its right checksum, so that mutations get past
// the checksum into the checks of the code and into the machine itself.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

#include "machine/BytecodeImage.h"
#include "machine/BytecodeMachine.h"
#include "machine/MachineBoard.h"

namespace {

void Require(bool Condition) {
    if (!Condition) {
        std::abort();
    }
}

constexpr uint8_t RamFill = 0xA5;
constexpr uint8_t EepromFill = 0x5A;
// 20,000 instructions at the machine's nominal speed.
constexpr int64_t ChipTimeNs = 20'000'000;

void RunOnce(std::vector<uint8_t> Image, std::span<const uint8_t> Input, bool Seal) {
    if (Seal) {
        BytecodeImage::Seal(Image);
    }
    std::vector<uint8_t> Ram(65536, RamFill);
    std::vector<uint8_t> Eeprom(512, EepromFill);
    MachineBoard Board;
    Board.Input.assign(Input.begin(), Input.end());
    BytecodeMachine Machine({Ram, Eeprom, Image}, Board, Board, 2);
    if (!Machine.Start(0)) {
        Require(!Machine.RefusalReason().empty());
        Require(Machine.RunUntil(ChipTimeNs) == BytecodeMachine::State::Stopped);
        Require(Machine.Executed() == 0 && Board.Output.empty());
        return;
    }
    const ImageHeader& Header = Machine.Header();
    // In three steps, so that a wait, a read and time running on are all met.
    Machine.RunUntil(ChipTimeNs / 3);
    Board.Input.push_back('x');
    Machine.RunUntil(2 * ChipTimeNs / 3);
    const BytecodeMachine::State State = Machine.RunUntil(ChipTimeNs);
    Require(Machine.Now() <= ChipTimeNs || State == BytecodeMachine::State::Ended ||
            State == BytecodeMachine::State::Failed);
    Require(Machine.Executed() <= static_cast<uint64_t>(ChipTimeNs / Machine.InstructionNs));
    if (State == BytecodeMachine::State::Failed) {
        Require(Machine.Error() != RunTimeError::None);
        const std::string Message = "\r\n" + Machine.ErrorMessage() + "\r\n";
        Require(Board.Output.size() >= Message.size() &&
                Board.Output.compare(Board.Output.size() - Message.size(), Message.size(),
                                     Message) == 0);
    } else {
        Require(Machine.Error() == RunTimeError::None);
    }
    // Nothing outside the program's RAM and its persistent variables changed.
    for (size_t Address = 0; Address < Ram.size(); ++Address) {
        if (Address < Header.RamLow || Address > Header.RamHigh) {
            Require(Ram[Address] == RamFill);
        }
    }
    for (size_t Address = 0; Address < Eeprom.size(); ++Address) {
        if (Address < ImageHeader::PersistentBase ||
            Address >= ImageHeader::PersistentBase + Header.PersistentSize) {
            Require(Eeprom[Address] == EepromFill);
        }
    }
    Require(Machine.Values().size() <= BytecodeMachine::ValueStackSize);
    Require(Machine.StringCount() >= 0 &&
            Machine.StringCount() <= BytecodeMachine::StringStackSize);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size) {
    if (Size == 0) {
        return 0;
    }
    const size_t InputLength = std::min<size_t>(Data[0] % 64, Size - 1);
    const std::vector<uint8_t> Image(Data + 1, Data + Size - InputLength);
    const std::span<const uint8_t> Input(Data + Size - InputLength, InputLength);
    RunOnce(Image, Input, false);
    RunOnce(Image, Input, true);
    return 0;
}
