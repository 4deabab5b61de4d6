#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "machine/BytecodeImage.h"
#include "machine/MachineDevices.h"
#include "machine/RunTimeErrors.h"

// The stack machine that runs a program image (docs/bytecode.md). It owns no
// memory of the chip: the host hands it the RAM, the internal EEPROM and the
// image, and stands behind its serial line and pins. Chip time is the host's
// to give: RunUntil runs the program until the chip's clock reaches a time,
// each instruction taking InstructionNs of it and a wait skipping ahead, so a
// host may run it as fast as it can or pace it against a real clock.
//
// Nothing a program or an image does can reach outside the memories it was
// given: the image is checked before it runs, and every computed address,
// stack depth and index is checked as it is used. A run-time error stops the
// program with its message on the serial line.
class BytecodeMachine {
  public:
    struct Memories {
        std::span<uint8_t> Ram;
        std::span<uint8_t> InternalEeprom;
        // The program image: the whole external EEPROM, or a file's bytes.
        std::span<const uint8_t> Image;
    };

    enum class State {
        // Not started, or the image was refused.
        Stopped,
        Running,
        // A wait: the program goes on at WakeNs().
        Sleeping,
        // A read of the serial line that waits for a byte to come in.
        WaitingForInput,
        // The program ran to its end.
        Ended,
        // A run-time error stopped it.
        Failed,
    };

    static constexpr int ValueStackSize = 256;
    static constexpr int StringStackSize = 16;
    // The RAM that a call takes for its return, besides the callee's frame.
    static constexpr int CallRamBytes = 4;
    // A nominal million instructions a second.
    static constexpr int64_t DefaultInstructionNs = 1000;

    // ChipType 1 to 3 is the chip the machine is in: an image for another is
    // refused. 0 takes the image's own.
    BytecodeMachine(Memories Memory, MachineSerialLine& Serial, MachinePins& Pins,
                    int ChipType = 0);

    // Checks the image and, when it is accepted, starts the program at its
    // entry point at chip time Ns, with the program's RAM cleared and the
    // persistent variables as the internal EEPROM holds them. Refused, the
    // machine stays stopped and RefusalReason() says why.
    bool Start(int64_t Ns = 0);
    // Runs until the chip's clock reaches UntilNs or the program stops.
    State RunUntil(int64_t UntilNs);

    State CurrentState() const { return State_; }
    bool Stopped() const {
        return State_ == State::Stopped || State_ == State::Ended || State_ == State::Failed;
    }
    const std::string& RefusalReason() const { return RefusalReason_; }
    RunTimeError Error() const { return Error_; }
    uint32_t ErrorAddress() const { return ErrorAddress_; }
    // "Run-time error 1: Division by zero (code address 40)", empty when none.
    std::string ErrorMessage() const;

    int64_t Now() const { return Now_; }
    int64_t WakeNs() const { return WakeNs_; }
    uint64_t Executed() const { return Executed_; }
    const ImageHeader& Header() const { return Header_; }
    // The value stack from the bottom, and the text on top of the string stack.
    std::span<const uint32_t> Values() const {
        return std::span<const uint32_t>(Values_.data(), static_cast<size_t>(ValueCount_));
    }
    int StringCount() const { return StringCount_; }

    int64_t InstructionNs = DefaultInstructionNs;

  private:
    struct Frame {
        uint32_t ReturnAddress;
        uint32_t FramePointer;
        uint32_t FrameTop;
    };
    struct Text {
        uint8_t Length;
        std::array<uint8_t, ImageHeader::MaxStringSize> Bytes;
    };
    enum class LibraryOutcome { Continue, Sleep, WaitForInput, Fault };

    void Execute(uint64_t Budget);
    LibraryOutcome Library(uint8_t Call, int64_t Ns);
    void Fail(RunTimeError Error, uint32_t CodeAddress, int64_t Ns);
    // Where Size bytes at a reference lie, or null if they are not all inside
    // the program's RAM or its persistent variables.
    uint8_t* Resolve(uint32_t Reference, uint32_t Size);
    bool PinExists(int Pin) const;
    void PushText(const uint8_t* Bytes, size_t Length);

    Memories Memory_;
    MachineSerialLine& Serial_;
    MachinePins& Pins_;
    int ChipType_;

    State State_ = State::Stopped;
    std::string RefusalReason_;
    ImageHeader Header_;
    RunTimeError Error_ = RunTimeError::None;
    uint32_t ErrorAddress_ = 0;
    int64_t Now_ = 0;
    int64_t StartNs_ = 0;
    int64_t WakeNs_ = 0;
    uint64_t Executed_ = 0;
    RunTimeError LibraryFault_ = RunTimeError::None;

    uint32_t Pc_ = 0;
    uint32_t FramePointer_ = 0;
    uint32_t FrameTop_ = 0;
    uint32_t PersistentEnd_ = 0;
    uint32_t DataStart_ = 0;
    std::vector<Frame> Calls_;
    size_t MaxCalls_ = 0;
    std::array<uint32_t, ValueStackSize> Values_{};
    int ValueCount_ = 0;
    std::array<Text, StringStackSize> Strings_{};
    int StringCount_ = 0;
};
