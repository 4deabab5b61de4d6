#include "machine/BytecodeMachine.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include "machine/LibraryCalls.h"
#include "machine/NumberText.h"
#include "machine/Opcodes.h"

namespace {

inline uint16_t Get16(const uint8_t* Bytes) {
    return static_cast<uint16_t>(Bytes[0] | (Bytes[1] << 8));
}

inline int16_t GetI16(const uint8_t* Bytes) { return static_cast<int16_t>(Get16(Bytes)); }

inline uint32_t Get32(const uint8_t* Bytes) {
    uint32_t Value;
    std::memcpy(&Value, Bytes, sizeof Value);
    if constexpr (std::endian::native == std::endian::big) {
        Value =
            (Value >> 24) | ((Value >> 8) & 0xFF00u) | ((Value << 8) & 0xFF0000u) | (Value << 24);
    }
    return Value;
}

inline void Put16(uint8_t* Bytes, uint32_t Value) {
    Bytes[0] = static_cast<uint8_t>(Value);
    Bytes[1] = static_cast<uint8_t>(Value >> 8);
}

inline void Put32(uint8_t* Bytes, uint32_t Value) {
    Put16(Bytes, Value);
    Put16(Bytes + 2, Value >> 16);
}

inline float AsSingle(uint32_t Slot) { return std::bit_cast<float>(Slot); }
inline uint32_t FromSingle(float Value) { return std::bit_cast<uint32_t>(Value); }
inline uint32_t FromBoolean(bool Value) { return Value ? 0xFFFFFFFFu : 0u; }

// A slot made from a value of a memory load: sign- or zero-extended.
inline uint32_t FromInteger(int32_t Value) { return static_cast<uint32_t>(Value); }

constexpr uint32_t SpaceRam = 0;
constexpr uint32_t SpacePersistent = 1;

// The pins a chip's program can set, by chip type: those the chip's ports
// bring out.
bool PinOfChip(int ChipType, int Pin) {
    switch (ChipType) {
        case 1:
            return (Pin >= 1 && Pin <= 8) || (Pin >= 10 && Pin <= 17) || (Pin >= 21 && Pin <= 28) ||
                   (Pin >= 32 && Pin <= 39);
        case 2:
            return (Pin >= 5 && Pin <= 20) || (Pin >= 25 && Pin <= 27);
        case 3:
            return (Pin >= 1 && Pin <= 8) || (Pin >= 14 && Pin <= 29) || (Pin >= 33 && Pin <= 40);
        default:
            return false;
    }
}

// A value of one type as a wider whole number, or as a Single.
struct Number {
    bool IsSingle;
    int64_t Whole;
    float Single;
};

Number FromSlot(uint32_t Slot, int Type) {
    switch (Type) {
        case Opcodes::TypeByte:
            return {false, Slot & 0xFF, 0};
        case Opcodes::TypeInteger:
            return {false, static_cast<int16_t>(Slot), 0};
        case Opcodes::TypeUnsignedInteger:
            return {false, Slot & 0xFFFF, 0};
        case Opcodes::TypeLong:
        case Opcodes::TypeBoolean:
            return {false, static_cast<int32_t>(Slot), 0};
        case Opcodes::TypeUnsignedLong:
            return {false, Slot, 0};
        default:
            return {true, 0, AsSingle(Slot)};
    }
}

// The range of a whole-number type.
void Range(int Type, int64_t& Low, int64_t& High) {
    switch (Type) {
        case Opcodes::TypeByte:
            Low = 0, High = 255;
            return;
        case Opcodes::TypeInteger:
            Low = -32768, High = 32767;
            return;
        case Opcodes::TypeUnsignedInteger:
            Low = 0, High = 65535;
            return;
        case Opcodes::TypeLong:
            Low = std::numeric_limits<int32_t>::min(), High = std::numeric_limits<int32_t>::max();
            return;
        default:
            Low = 0, High = std::numeric_limits<uint32_t>::max();
            return;
    }
}

// CONV: false on overflow.
bool Convert(uint32_t Slot, int From, int To, uint32_t& Result) {
    const Number Value = FromSlot(Slot, From);
    if (To == Opcodes::TypeBoolean) {
        Result = FromBoolean(Value.IsSingle ? Value.Single != 0.0f : Value.Whole != 0);
        return true;
    }
    if (To == Opcodes::TypeSingle) {
        Result = FromSingle(Value.IsSingle ? Value.Single : static_cast<float>(Value.Whole));
        return true;
    }
    int64_t Low = 0;
    int64_t High = 0;
    Range(To, Low, High);
    int64_t Whole = Value.Whole;
    if (Value.IsSingle) {
        // To the nearest, a half to the even neighbour, as the family's CInt.
        const double Rounded = std::nearbyint(static_cast<double>(Value.Single));
        if (!(Rounded >= static_cast<double>(Low) && Rounded <= static_cast<double>(High))) {
            return false;
        }
        Whole = static_cast<int64_t>(Rounded);
    }
    if (Whole < Low || Whole > High) {
        return false;
    }
    Result = static_cast<uint32_t>(Whole);
    return true;
}

}  // namespace

BytecodeMachine::BytecodeMachine(Memories Memory, MachineSerialLine& Serial, MachinePins& Pins,
                                 int ChipType)
    : Memory_(Memory), Serial_(Serial), Pins_(Pins), ChipType_(ChipType) {}

bool BytecodeMachine::Start(int64_t Ns) {
    State_ = State::Stopped;
    Error_ = RunTimeError::None;
    ErrorAddress_ = 0;
    Now_ = Ns;
    StartNs_ = Ns;
    WakeNs_ = Ns;
    Executed_ = 0;
    ValueCount_ = 0;
    StringCount_ = 0;
    Calls_.clear();

    BytecodeImage::ChipLimits Limits;
    Limits.ChipType = ChipType_;
    Limits.RamSize = Memory_.Ram.size();
    Limits.InternalEepromSize = Memory_.InternalEeprom.size();
    const BytecodeImage::CheckResult Check = BytecodeImage::Check(Memory_.Image, Limits);
    Header_ = Check.Header;
    if (!Check.Accepted) {
        RefusalReason_ = Check.Reason;
        return false;
    }
    RefusalReason_.clear();

    std::fill(Memory_.Ram.begin() + Header_.RamLow, Memory_.Ram.begin() + Header_.RamHigh + 1,
              uint8_t{0});
    PersistentEnd_ = ImageHeader::PersistentBase + Header_.PersistentSize;
    DataStart_ = static_cast<uint32_t>(Header_.CodeOffset) + Header_.CodeSize;
    FramePointer_ = Header_.GlobalsEnd;
    FrameTop_ = Header_.GlobalsEnd;
    MaxCalls_ = (static_cast<size_t>(Header_.RamHigh) + 1 - Header_.RamLow) / CallRamBytes + 1;
    Calls_.reserve(MaxCalls_);
    Pc_ = Header_.Entry;
    State_ = State::Running;
    return true;
}

std::string BytecodeMachine::ErrorMessage() const {
    if (Error_ == RunTimeError::None) {
        return std::string();
    }
    return RunTimeErrors::Message(Error_, ErrorAddress_);
}

BytecodeMachine::State BytecodeMachine::RunUntil(int64_t UntilNs) {
    while (true) {
        switch (State_) {
            case State::Stopped:
            case State::Ended:
            case State::Failed:
                return State_;
            case State::Sleeping:
                if (WakeNs_ > UntilNs) {
                    Now_ = std::max(Now_, UntilNs);
                    return State_;
                }
                Now_ = std::max(Now_, WakeNs_);
                State_ = State::Running;
                break;
            case State::WaitingForInput: {
                const std::optional<uint8_t> Byte = Serial_.Read(Now_);
                if (!Byte) {
                    Now_ = std::max(Now_, UntilNs);
                    return State_;
                }
                // Room for it was made sure of before the wait began.
                Values_[ValueCount_++] = *Byte;
                State_ = State::Running;
                break;
            }
            case State::Running: {
                const int64_t Step = std::max<int64_t>(InstructionNs, 1);
                if (UntilNs - Now_ < Step) {
                    return State_;
                }
                const uint64_t Budget = static_cast<uint64_t>((UntilNs - Now_) / Step);
                Execute(Budget);
                if (State_ == State::Running) {
                    return State_;
                }
                break;
            }
        }
    }
}

uint8_t* BytecodeMachine::Resolve(uint32_t Reference, uint32_t Size) {
    const uint32_t Address = Reference & 0xFFFF;
    const uint32_t Space = Reference >> 16;
    if (Space == SpaceRam) {
        if (Address < Header_.RamLow || Address + Size - 1 > Header_.RamHigh) {
            return nullptr;
        }
        return Memory_.Ram.data() + Address;
    }
    if (Space == SpacePersistent) {
        if (Address < ImageHeader::PersistentBase || Address + Size > PersistentEnd_) {
            return nullptr;
        }
        return Memory_.InternalEeprom.data() + Address;
    }
    return nullptr;
}

bool BytecodeMachine::PinExists(int Pin) const { return PinOfChip(Header_.ChipType, Pin); }

void BytecodeMachine::PushText(const uint8_t* Bytes, size_t Length) {
    Text& Top = Strings_[StringCount_++];
    Top.Length = static_cast<uint8_t>(std::min<size_t>(Length, Header_.StringSize));
    std::memcpy(Top.Bytes.data(), Bytes, Top.Length);
}

void BytecodeMachine::Fail(RunTimeError Error, uint32_t CodeAddress, int64_t Ns) {
    Error_ = Error;
    ErrorAddress_ = CodeAddress;
    State_ = State::Failed;
    const std::string Message = "\r\n" + RunTimeErrors::Message(Error, CodeAddress) + "\r\n";
    Serial_.Write(
        std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(Message.data()), Message.size()),
        Ns);
}

void BytecodeMachine::Execute(uint64_t Budget) {
    using namespace Opcodes;
    const uint8_t* const Code = Memory_.Image.data();
    uint8_t* const Ram = Memory_.Ram.data();
    const uint32_t StringSize = Header_.StringSize;
    const int64_t Step = std::max<int64_t>(InstructionNs, 1);
    uint32_t* const Bottom = Values_.data();
    uint32_t* const Top = Bottom + ValueStackSize;
    uint32_t* Sp = Bottom + ValueCount_;
    const uint8_t* Ip = Code + Pc_;
    const uint8_t* At = Ip;
    uint64_t Count = 0;
    RunTimeError Fault = RunTimeError::None;

// The stack's depth before an instruction takes N values or leaves N more.
#define KV_NEED(N)                            \
    if (Sp - Bottom < (N)) {                  \
        Fault = RunTimeError::StackUnderflow; \
        goto Stop;                            \
    }
#define KV_ROOM(N)                           \
    if (Top - Sp < (N)) {                    \
        Fault = RunTimeError::StackOverflow; \
        goto Stop;                           \
    }
#define KV_FAIL(E)   \
    {                \
        Fault = (E); \
        goto Stop;   \
    }
#define KV_NEED_TEXTS(N) \
    if (StringCount_ < (N)) KV_FAIL(RunTimeError::StackUnderflow)
#define KV_ROOM_TEXTS(N) \
    if (StringCount_ + (N) > StringStackSize) KV_FAIL(RunTimeError::StackOverflow)

// Binary operations on the two top slots A (below) and B (top).
#define KV_BINARY(BODY)            \
    {                              \
        KV_NEED(2);                \
        const uint32_t B = Sp[-1]; \
        const uint32_t A = Sp[-2]; \
        uint32_t R;                \
        BODY;                      \
        Sp[-2] = R;                \
        --Sp;                      \
        Ip += 1;                   \
        break;                     \
    }
#define KV_CHECKED(LOW, HIGH, EXPRESSION)                                   \
    {                                                                       \
        const int64_t Wide = (EXPRESSION);                                  \
        if (Wide < (LOW) || Wide > (HIGH)) KV_FAIL(RunTimeError::Overflow); \
        R = static_cast<uint32_t>(Wide);                                    \
    }
#define KV_SINGLE(EXPRESSION)                                        \
    {                                                                \
        const float Result = (EXPRESSION);                           \
        if (!std::isfinite(Result)) KV_FAIL(RunTimeError::Overflow); \
        R = FromSingle(Result);                                      \
    }
#define KV_NONZERO(VALUE) \
    if ((VALUE) == 0) KV_FAIL(RunTimeError::DivisionByZero)
#define KV_COMPARE(OP, TYPE) \
    KV_BINARY(R = FromBoolean(static_cast<TYPE>(A) OP static_cast<TYPE>(B)))
#define KV_COMPARE_SINGLE(OP) KV_BINARY(R = FromBoolean(AsSingle(A) OP AsSingle(B)))
#define KV_COMPARE_FAMILY(NAME, OP) \
    case NAME##_B:                  \
    case NAME##_U:                  \
        KV_COMPARE(OP, uint32_t)    \
    case NAME##_I:                  \
    case NAME##_L:                  \
        KV_COMPARE(OP, int32_t)     \
    case NAME##_UL:                 \
        KV_COMPARE(OP, uint32_t)    \
    case NAME##_F:                  \
        KV_COMPARE_SINGLE(OP)

    while (Count < Budget) {
        ++Count;
        At = Ip;
        switch (*Ip) {
            case NOP:
                Ip += 1;
                break;
            case END:
                Ip += 1;
                State_ = State::Ended;
                goto Stop;
            case PUSHB:
                KV_ROOM(1);
                *Sp++ = Ip[1];
                Ip += 2;
                break;
            case PUSHI:
                KV_ROOM(1);
                *Sp++ = FromInteger(GetI16(Ip + 1));
                Ip += 3;
                break;
            case PUSHW:
                KV_ROOM(1);
                *Sp++ = Get32(Ip + 1);
                Ip += 5;
                break;
            case DUP:
                KV_NEED(1);
                KV_ROOM(1);
                *Sp = Sp[-1];
                ++Sp;
                Ip += 1;
                break;
            case DROP:
                KV_NEED(1);
                --Sp;
                Ip += 1;
                break;
            case SWAP:
                KV_NEED(2);
                std::swap(Sp[-1], Sp[-2]);
                Ip += 1;
                break;
            case OVER:
                KV_NEED(2);
                KV_ROOM(1);
                *Sp = Sp[-2];
                ++Sp;
                Ip += 1;
                break;
            case JMP:
                Ip = Code + Get16(Ip + 1);
                break;
            case JT:
                KV_NEED(1);
                --Sp;
                Ip = *Sp != 0 ? Code + Get16(Ip + 1) : Ip + 3;
                break;
            case JF:
                KV_NEED(1);
                --Sp;
                Ip = *Sp == 0 ? Code + Get16(Ip + 1) : Ip + 3;
                break;
            case JLE_L:
                KV_NEED(2);
                Sp -= 2;
                Ip = static_cast<int32_t>(Sp[0]) <= static_cast<int32_t>(Sp[1])
                         ? Code + Get16(Ip + 1)
                         : Ip + 3;
                break;
            case JGE_L:
                KV_NEED(2);
                Sp -= 2;
                Ip = static_cast<int32_t>(Sp[0]) >= static_cast<int32_t>(Sp[1])
                         ? Code + Get16(Ip + 1)
                         : Ip + 3;
                break;
            case CALL:
                if (Calls_.size() >= MaxCalls_ ||
                    FrameTop_ + CallRamBytes > static_cast<uint32_t>(Header_.RamHigh) + 1) {
                    KV_FAIL(RunTimeError::StackOverflow);
                }
                Calls_.push_back({static_cast<uint32_t>(Ip + 3 - Code), FramePointer_, FrameTop_});
                FrameTop_ += CallRamBytes;
                Ip = Code + Get16(Ip + 1);
                break;
            case ENTER: {
                const uint32_t Size = Get16(Ip + 1);
                if (FrameTop_ + Size > static_cast<uint32_t>(Header_.RamHigh) + 1) {
                    KV_FAIL(RunTimeError::StackOverflow);
                }
                FramePointer_ = FrameTop_;
                std::memset(Ram + FrameTop_, 0, Size);
                FrameTop_ += Size;
                Ip += 3;
                break;
            }
            case RET:
                if (Calls_.empty()) {
                    Ip += 1;
                    State_ = State::Ended;
                    goto Stop;
                }
                Ip = Code + Calls_.back().ReturnAddress;
                FramePointer_ = Calls_.back().FramePointer;
                FrameTop_ = Calls_.back().FrameTop;
                Calls_.pop_back();
                break;
            case SYS: {
                ValueCount_ = static_cast<int>(Sp - Bottom);
                const int64_t Ns = Now_ + static_cast<int64_t>(Count) * Step;
                const LibraryOutcome Outcome = Library(Ip[1], Ns);
                Sp = Bottom + ValueCount_;
                if (Outcome == LibraryOutcome::Fault) {
                    KV_FAIL(LibraryFault_);
                }
                Ip += 2;
                if (Outcome == LibraryOutcome::Sleep) {
                    State_ = State::Sleeping;
                    goto Stop;
                }
                if (Outcome == LibraryOutcome::WaitForInput) {
                    State_ = State::WaitingForInput;
                    goto Stop;
                }
                break;
            }

            // Module-level variables: their addresses were checked with the image.
            case LDG_B:
                KV_ROOM(1);
                *Sp++ = Ram[Get16(Ip + 1)];
                Ip += 3;
                break;
            case LDG_Z:
                KV_ROOM(1);
                *Sp++ = FromBoolean(Ram[Get16(Ip + 1)] != 0);
                Ip += 3;
                break;
            case LDG_I:
                KV_ROOM(1);
                *Sp++ = FromInteger(GetI16(Ram + Get16(Ip + 1)));
                Ip += 3;
                break;
            case LDG_U:
                KV_ROOM(1);
                *Sp++ = Get16(Ram + Get16(Ip + 1));
                Ip += 3;
                break;
            case LDG_W:
                KV_ROOM(1);
                *Sp++ = Get32(Ram + Get16(Ip + 1));
                Ip += 3;
                break;
            case STG_B:
                KV_NEED(1);
                Ram[Get16(Ip + 1)] = static_cast<uint8_t>(*--Sp);
                Ip += 3;
                break;
            case STG_Z:
                KV_NEED(1);
                Ram[Get16(Ip + 1)] = *--Sp != 0 ? 0xFF : 0;
                Ip += 3;
                break;
            case STG_H:
                KV_NEED(1);
                Put16(Ram + Get16(Ip + 1), *--Sp);
                Ip += 3;
                break;
            case STG_W:
                KV_NEED(1);
                Put32(Ram + Get16(Ip + 1), *--Sp);
                Ip += 3;
                break;
            case INCG_L: {
                uint8_t* const Variable = Ram + Get16(Ip + 1);
                const int64_t Sum =
                    static_cast<int64_t>(static_cast<int32_t>(Get32(Variable))) + GetI16(Ip + 3);
                if (Sum < std::numeric_limits<int32_t>::min() ||
                    Sum > std::numeric_limits<int32_t>::max()) {
                    KV_FAIL(RunTimeError::Overflow);
                }
                Put32(Variable, static_cast<uint32_t>(Sum));
                Ip += 5;
                break;
            }

            // Locals: inside the frame of the running procedure.
#define KV_LOCAL(SIZE)                                      \
    const uint32_t Address = FramePointer_ + Get16(Ip + 1); \
    if (Address + (SIZE) > FrameTop_) KV_FAIL(RunTimeError::AddressOutOfRange)
            case LDL_B: {
                KV_LOCAL(1);
                KV_ROOM(1);
                *Sp++ = Ram[Address];
                Ip += 3;
                break;
            }
            case LDL_Z: {
                KV_LOCAL(1);
                KV_ROOM(1);
                *Sp++ = FromBoolean(Ram[Address] != 0);
                Ip += 3;
                break;
            }
            case LDL_I: {
                KV_LOCAL(2);
                KV_ROOM(1);
                *Sp++ = FromInteger(GetI16(Ram + Address));
                Ip += 3;
                break;
            }
            case LDL_U: {
                KV_LOCAL(2);
                KV_ROOM(1);
                *Sp++ = Get16(Ram + Address);
                Ip += 3;
                break;
            }
            case LDL_W: {
                KV_LOCAL(4);
                KV_ROOM(1);
                *Sp++ = Get32(Ram + Address);
                Ip += 3;
                break;
            }
            case STL_B: {
                KV_LOCAL(1);
                KV_NEED(1);
                Ram[Address] = static_cast<uint8_t>(*--Sp);
                Ip += 3;
                break;
            }
            case STL_Z: {
                KV_LOCAL(1);
                KV_NEED(1);
                Ram[Address] = *--Sp != 0 ? 0xFF : 0;
                Ip += 3;
                break;
            }
            case STL_H: {
                KV_LOCAL(2);
                KV_NEED(1);
                Put16(Ram + Address, *--Sp);
                Ip += 3;
                break;
            }
            case STL_W: {
                KV_LOCAL(4);
                KV_NEED(1);
                Put32(Ram + Address, *--Sp);
                Ip += 3;
                break;
            }
#undef KV_LOCAL

            // Through a reference on the stack.
#define KV_LOAD(SIZE, EXPRESSION)                                   \
    {                                                               \
        KV_NEED(1);                                                 \
        const uint8_t* const P = Resolve(Sp[-1], SIZE);             \
        if (P == nullptr) KV_FAIL(RunTimeError::AddressOutOfRange); \
        Sp[-1] = (EXPRESSION);                                      \
        Ip += 1;                                                    \
        break;                                                      \
    }
#define KV_STORE(SIZE, STATEMENT)                                   \
    {                                                               \
        KV_NEED(2);                                                 \
        uint8_t* const P = Resolve(Sp[-2], SIZE);                   \
        if (P == nullptr) KV_FAIL(RunTimeError::AddressOutOfRange); \
        const uint32_t V = Sp[-1];                                  \
        STATEMENT;                                                  \
        Sp -= 2;                                                    \
        Ip += 1;                                                    \
        break;                                                      \
    }
            case LDI_B:
                KV_LOAD(1, P[0])
            case LDI_Z:
                KV_LOAD(1, FromBoolean(P[0] != 0))
            case LDI_I:
                KV_LOAD(2, FromInteger(GetI16(P)))
            case LDI_U:
                KV_LOAD(2, Get16(P))
            case LDI_W:
                KV_LOAD(4, Get32(P))
            case STI_B:
                KV_STORE(1, P[0] = static_cast<uint8_t>(V))
            case STI_Z:
                KV_STORE(1, P[0] = V != 0 ? 0xFF : 0)
            case STI_H:
                KV_STORE(2, Put16(P, V))
            case STI_W:
                KV_STORE(4, Put32(P, V))
#undef KV_LOAD
#undef KV_STORE

            case ADDRG:
                KV_ROOM(1);
                *Sp++ = (SpaceRam << 16) | Get16(Ip + 1);
                Ip += 3;
                break;
            case ADDRL: {
                const uint32_t Address = FramePointer_ + Get16(Ip + 1);
                if (Address >= FrameTop_) KV_FAIL(RunTimeError::AddressOutOfRange);
                KV_ROOM(1);
                *Sp++ = (SpaceRam << 16) | Address;
                Ip += 3;
                break;
            }
            case ADDRP:
                KV_ROOM(1);
                *Sp++ = (SpacePersistent << 16) | Get16(Ip + 1);
                Ip += 3;
                break;
            case AREF1: {
                KV_NEED(2);
                const int64_t Index = static_cast<int32_t>(Sp[-1]);
                const int64_t Low = GetI16(Ip + 1);
                const int64_t High = GetI16(Ip + 3);
                if (Index < Low || Index > High) KV_FAIL(RunTimeError::IndexOutOfBounds);
                const int64_t Address = (Sp[-2] & 0xFFFF) + (Index - Low) * Get16(Ip + 5);
                if (Address > 0xFFFF) KV_FAIL(RunTimeError::AddressOutOfRange);
                Sp[-2] = (Sp[-2] & 0xFFFF0000u) | static_cast<uint32_t>(Address);
                --Sp;
                Ip += 7;
                break;
            }
            case AREF2: {
                KV_NEED(3);
                const int64_t First = static_cast<int32_t>(Sp[-2]);
                const int64_t Second = static_cast<int32_t>(Sp[-1]);
                const int64_t Low1 = GetI16(Ip + 1);
                const int64_t High1 = GetI16(Ip + 3);
                const int64_t Low2 = GetI16(Ip + 5);
                const int64_t High2 = GetI16(Ip + 7);
                if (First < Low1 || First > High1 || Second < Low2 || Second > High2) {
                    KV_FAIL(RunTimeError::IndexOutOfBounds);
                }
                const int64_t Element = (First - Low1) * (High2 - Low2 + 1) + (Second - Low2);
                const int64_t Address = (Sp[-3] & 0xFFFF) + Element * Get16(Ip + 9);
                if (Address > 0xFFFF) KV_FAIL(RunTimeError::AddressOutOfRange);
                Sp[-3] = (Sp[-3] & 0xFFFF0000u) | static_cast<uint32_t>(Address);
                Sp -= 2;
                Ip += 11;
                break;
            }

            // Strings.
            case PUSHS: {
                KV_ROOM_TEXTS(1);
                const uint8_t* const Literal = Code + DataStart_ + Get16(Ip + 1);
                PushText(Literal + 1, Literal[0]);
                Ip += 3;
                break;
            }
            case LDS: {
                KV_NEED(1);
                KV_ROOM_TEXTS(1);
                const uint8_t* const P = Resolve(Sp[-1], 1 + StringSize);
                if (P == nullptr) KV_FAIL(RunTimeError::AddressOutOfRange);
                PushText(P + 1, std::min<uint32_t>(P[0], StringSize));
                --Sp;
                Ip += 1;
                break;
            }
            case STS: {
                KV_NEED(1);
                KV_NEED_TEXTS(1);
                uint8_t* const P = Resolve(Sp[-1], 1 + StringSize);
                if (P == nullptr) KV_FAIL(RunTimeError::AddressOutOfRange);
                const Text& Value = Strings_[--StringCount_];
                P[0] = Value.Length;
                std::memcpy(P + 1, Value.Bytes.data(), Value.Length);
                --Sp;
                Ip += 1;
                break;
            }
            case CAT: {
                KV_NEED_TEXTS(2);
                Text& Left = Strings_[StringCount_ - 2];
                const Text& Right = Strings_[StringCount_ - 1];
                const uint32_t Length = std::min<uint32_t>(Left.Length + Right.Length, StringSize);
                std::memcpy(Left.Bytes.data() + Left.Length, Right.Bytes.data(),
                            Length - Left.Length);
                Left.Length = static_cast<uint8_t>(Length);
                --StringCount_;
                Ip += 1;
                break;
            }
            case SCMP: {
                KV_NEED_TEXTS(2);
                KV_ROOM(1);
                const Text& Left = Strings_[StringCount_ - 2];
                const Text& Right = Strings_[StringCount_ - 1];
                int Order = std::memcmp(Left.Bytes.data(), Right.Bytes.data(),
                                        std::min(Left.Length, Right.Length));
                if (Order == 0) {
                    Order = static_cast<int>(Left.Length) - static_cast<int>(Right.Length);
                }
                bool Result = false;
                switch (Ip[1]) {
                    case ConditionEqual:
                        Result = Order == 0;
                        break;
                    case ConditionNotEqual:
                        Result = Order != 0;
                        break;
                    case ConditionLess:
                        Result = Order < 0;
                        break;
                    case ConditionLessOrEqual:
                        Result = Order <= 0;
                        break;
                    case ConditionGreater:
                        Result = Order > 0;
                        break;
                    default:
                        Result = Order >= 0;
                        break;
                }
                StringCount_ -= 2;
                *Sp++ = FromBoolean(Result);
                Ip += 2;
                break;
            }
            case SDROP:
                KV_NEED_TEXTS(1);
                --StringCount_;
                Ip += 1;
                break;
            case SDUP:
                KV_NEED_TEXTS(1);
                KV_ROOM_TEXTS(1);
                Strings_[StringCount_] = Strings_[StringCount_ - 1];
                ++StringCount_;
                Ip += 1;
                break;
            case STR: {
                KV_NEED(1);
                KV_ROOM_TEXTS(1);
                const uint32_t Slot = *--Sp;
                const int Type = Ip[1];
                std::string Digits;
                if (Type == TypeSingle) {
                    Digits = NumberText::Single(AsSingle(Slot));
                } else if (Type == TypeBoolean) {
                    Digits = NumberText::Boolean(Slot != 0);
                } else {
                    Digits = NumberText::Whole(FromSlot(Slot, Type).Whole);
                }
                PushText(reinterpret_cast<const uint8_t*>(Digits.data()), Digits.size());
                Ip += 2;
                break;
            }
            case CONV: {
                KV_NEED(1);
                uint32_t Result = 0;
                if (!Convert(Sp[-1], Ip[1] >> 4, Ip[1] & 0x0F, Result)) {
                    KV_FAIL(RunTimeError::Overflow);
                }
                Sp[-1] = Result;
                Ip += 2;
                break;
            }

            // Whole-number bits: the slots of every type are kept extended, so
            // one operation serves them all.
            case AND:
                KV_BINARY(R = A & B)
            case OR:
                KV_BINARY(R = A | B)
            case XOR:
                KV_BINARY(R = A ^ B)
            case NOT_B:
                KV_NEED(1);
                Sp[-1] ^= 0xFFu;
                Ip += 1;
                break;
            case NOT_U:
                KV_NEED(1);
                Sp[-1] ^= 0xFFFFu;
                Ip += 1;
                break;
            case NOT_I:
            case NOT_L:
            case NOT_UL:
                KV_NEED(1);
                Sp[-1] = ~Sp[-1];
                Ip += 1;
                break;

            // Byte: 0 to 255, an overflow otherwise.
            case ADD_B:
                KV_BINARY(KV_CHECKED(0, 255, int64_t{A} + B))
            case SUB_B:
                KV_BINARY(KV_CHECKED(0, 255, int64_t{A} - B))
            case MUL_B:
                KV_BINARY(KV_CHECKED(0, 255, int64_t{A} * B))
            case DIV_B:
                KV_BINARY(KV_NONZERO(B); R = A / B)
            case MOD_B:
                KV_BINARY(KV_NONZERO(B); R = A % B)
            case NEG_B: {
                KV_NEED(1);
                if (Sp[-1] != 0) KV_FAIL(RunTimeError::Overflow);
                Ip += 1;
                break;
            }

            // Integer: -32768 to 32767, an overflow otherwise.
            case ADD_I:
                KV_BINARY(KV_CHECKED(-32768, 32767, int64_t{int32_t(A)} + int32_t(B)))
            case SUB_I:
                KV_BINARY(KV_CHECKED(-32768, 32767, int64_t{int32_t(A)} - int32_t(B)))
            case MUL_I:
                KV_BINARY(KV_CHECKED(-32768, 32767, int64_t{int32_t(A)} * int32_t(B)))
            case DIV_I:
                KV_BINARY(KV_NONZERO(B);
                          KV_CHECKED(-32768, 32767, int64_t{int32_t(A)} / int32_t(B)))
            case MOD_I:
                KV_BINARY(KV_NONZERO(B); R = FromInteger(int32_t(A) % int32_t(B)))
            case NEG_I: {
                KV_NEED(1);
                const int32_t Value = -static_cast<int32_t>(Sp[-1]);
                if (Value > 32767) KV_FAIL(RunTimeError::Overflow);
                Sp[-1] = FromInteger(Value);
                Ip += 1;
                break;
            }

            // UnsignedInteger: modulo 65536.
            case ADD_U:
                KV_BINARY(R = (A + B) & 0xFFFFu)
            case SUB_U:
                KV_BINARY(R = (A - B) & 0xFFFFu)
            case MUL_U:
                KV_BINARY(R = (A * B) & 0xFFFFu)
            case DIV_U:
                KV_BINARY(KV_NONZERO(B); R = A / B)
            case MOD_U:
                KV_BINARY(KV_NONZERO(B); R = A % B)
            case NEG_U:
                KV_NEED(1);
                Sp[-1] = (0u - Sp[-1]) & 0xFFFFu;
                Ip += 1;
                break;

            // Long: the 32-bit signed range, an overflow otherwise.
            case ADD_L:
                KV_BINARY(KV_CHECKED(INT32_MIN, INT32_MAX, int64_t{int32_t(A)} + int32_t(B)))
            case SUB_L:
                KV_BINARY(KV_CHECKED(INT32_MIN, INT32_MAX, int64_t{int32_t(A)} - int32_t(B)))
            case MUL_L:
                KV_BINARY(KV_CHECKED(INT32_MIN, INT32_MAX, int64_t{int32_t(A)} * int32_t(B)))
            case DIV_L:
                KV_BINARY(KV_NONZERO(B);
                          KV_CHECKED(INT32_MIN, INT32_MAX, int64_t{int32_t(A)} / int32_t(B)))
            case MOD_L:
                KV_BINARY(KV_NONZERO(B);
                          R = static_cast<uint32_t>(int64_t{int32_t(A)} % int32_t(B)))
            case NEG_L:
                KV_NEED(1);
                if (Sp[-1] == 0x80000000u) KV_FAIL(RunTimeError::Overflow);
                Sp[-1] = 0u - Sp[-1];
                Ip += 1;
                break;

            // UnsignedLong: modulo 2^32.
            case ADD_UL:
                KV_BINARY(R = A + B)
            case SUB_UL:
                KV_BINARY(R = A - B)
            case MUL_UL:
                KV_BINARY(R = A * B)
            case DIV_UL:
                KV_BINARY(KV_NONZERO(B); R = A / B)
            case MOD_UL:
                KV_BINARY(KV_NONZERO(B); R = A % B)
            case NEG_UL:
                KV_NEED(1);
                Sp[-1] = 0u - Sp[-1];
                Ip += 1;
                break;

            // Single: a result that is no finite number is an overflow.
            case ADD_F:
                KV_BINARY(KV_SINGLE(AsSingle(A) + AsSingle(B)))
            case SUB_F:
                KV_BINARY(KV_SINGLE(AsSingle(A) - AsSingle(B)))
            case MUL_F:
                KV_BINARY(KV_SINGLE(AsSingle(A) * AsSingle(B)))
            case DIV_F:
                KV_BINARY(if (AsSingle(B) == 0.0f) KV_FAIL(RunTimeError::DivisionByZero);
                          KV_SINGLE(AsSingle(A) / AsSingle(B)))
            case POW_F:
                KV_BINARY(KV_SINGLE(static_cast<float>(
                    std::pow(static_cast<double>(AsSingle(A)), static_cast<double>(AsSingle(B))))))
            case NEG_F:
                KV_NEED(1);
                Sp[-1] ^= 0x80000000u;
                Ip += 1;
                break;

                KV_COMPARE_FAMILY(EQ, ==)
                KV_COMPARE_FAMILY(NE, !=)
                KV_COMPARE_FAMILY(LT, <)
                KV_COMPARE_FAMILY(LE, <=)
                KV_COMPARE_FAMILY(GT, >)
                KV_COMPARE_FAMILY(GE, >=)

            default:
                // The image check lets no other byte through; should one
                // appear all the same, the program stops here.
                KV_FAIL(RunTimeError::InvalidArgument);
        }
    }

Stop:
    Pc_ = static_cast<uint32_t>(Ip - Code);
    ValueCount_ = static_cast<int>(Sp - Bottom);
    Executed_ += Count;
    Now_ += static_cast<int64_t>(Count) * Step;
    if (Fault != RunTimeError::None) {
        Pc_ = static_cast<uint32_t>(At - Code);
        Fail(Fault, Pc_, Now_);
    }
#undef KV_NEED
#undef KV_ROOM
#undef KV_FAIL
#undef KV_NEED_TEXTS
#undef KV_ROOM_TEXTS
#undef KV_BINARY
#undef KV_CHECKED
#undef KV_SINGLE
#undef KV_NONZERO
#undef KV_COMPARE
#undef KV_COMPARE_SINGLE
#undef KV_COMPARE_FAMILY
}

BytecodeMachine::LibraryOutcome BytecodeMachine::Library(uint8_t Call, int64_t Ns) {
    uint32_t* const Bottom = Values_.data();
    auto Need = [&](int Count) { return ValueCount_ >= Count; };
    auto Room = [&](int Count) { return ValueCount_ + Count <= ValueStackSize; };
    auto Pop = [&]() { return Bottom[--ValueCount_]; };
    auto Push = [&](uint32_t Value) { Bottom[ValueCount_++] = Value; };
    auto Fault = [&](RunTimeError Error) {
        LibraryFault_ = Error;
        return LibraryOutcome::Fault;
    };
    const int64_t SinceStart = Ns - StartNs_;

    switch (Call) {
        case LibraryCalls::PinSet: {
            if (!Need(2)) return Fault(RunTimeError::StackUnderflow);
            const uint32_t State = Pop();
            const uint32_t Pin = Pop();
            if (!PinExists(static_cast<int>(Pin & 0xFF)) || Pin > 0xFF) {
                return Fault(RunTimeError::InvalidPin);
            }
            if (State > 3) return Fault(RunTimeError::InvalidArgument);
            Pins_.SetPinState(static_cast<int>(Pin), static_cast<MachinePinState>(State), Ns);
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::PinRead: {
            if (!Need(1)) return Fault(RunTimeError::StackUnderflow);
            const uint32_t Pin = Pop();
            if (Pin > 0xFF || !PinExists(static_cast<int>(Pin)))
                return Fault(RunTimeError::InvalidPin);
            Push(Pins_.PinLevel(static_cast<int>(Pin), Ns) ? 1 : 0);
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::LedSet: {
            if (!Need(2)) return Fault(RunTimeError::StackUnderflow);
            const uint32_t On = Pop();
            const uint32_t Led = Pop();
            if (Led != 1 && Led != 2) return Fault(RunTimeError::InvalidLed);
            Pins_.SetLed(static_cast<int>(Led), On != 0, Ns);
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::WaitSeconds: {
            if (!Need(1)) return Fault(RunTimeError::StackUnderflow);
            const double Seconds = AsSingle(Pop());
            if (std::isnan(Seconds) || Seconds < 0) return Fault(RunTimeError::InvalidArgument);
            // Some thirty years is as long as a wait gets.
            const double Wait = std::min(Seconds * 1e9, 1e18);
            WakeNs_ = Ns + static_cast<int64_t>(Wait);
            return LibraryOutcome::Sleep;
        }
        case LibraryCalls::WaitMilliseconds: {
            if (!Need(1)) return Fault(RunTimeError::StackUnderflow);
            WakeNs_ = Ns + static_cast<int64_t>(Pop()) * 1'000'000;
            return LibraryOutcome::Sleep;
        }
        case LibraryCalls::TimerSeconds:
            if (!Room(1)) return Fault(RunTimeError::StackOverflow);
            Push(FromSingle(static_cast<float>(static_cast<double>(SinceStart) / 1e9)));
            return LibraryOutcome::Continue;
        case LibraryCalls::TimerMilliseconds:
            if (!Room(1)) return Fault(RunTimeError::StackOverflow);
            Push(static_cast<uint32_t>(static_cast<uint64_t>(SinceStart / 1'000'000)));
            return LibraryOutcome::Continue;
        case LibraryCalls::PrintString: {
            if (StringCount_ < 1) return Fault(RunTimeError::StackUnderflow);
            const Text& Value = Strings_[--StringCount_];
            Serial_.Write(std::span<const uint8_t>(Value.Bytes.data(), Value.Length), Ns);
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::PrintNewLine: {
            static constexpr uint8_t LineBreak[2] = {'\r', '\n'};
            Serial_.Write(LineBreak, Ns);
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::PrintByte: {
            if (!Need(1)) return Fault(RunTimeError::StackUnderflow);
            const uint8_t Byte = static_cast<uint8_t>(Pop());
            Serial_.Write(std::span<const uint8_t>(&Byte, 1), Ns);
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::SerialAvailable:
            if (!Room(1)) return Fault(RunTimeError::StackOverflow);
            Push(FromBoolean(Serial_.Available(Ns)));
            return LibraryOutcome::Continue;
        case LibraryCalls::SerialRead: {
            if (!Room(1)) return Fault(RunTimeError::StackOverflow);
            const std::optional<uint8_t> Byte = Serial_.Read(Ns);
            if (!Byte) {
                return LibraryOutcome::WaitForInput;
            }
            Push(*Byte);
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::SerialTryRead: {
            if (!Room(1)) return Fault(RunTimeError::StackOverflow);
            const std::optional<uint8_t> Byte = Serial_.Read(Ns);
            Push(Byte ? *Byte : FromInteger(-1));
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::StringLength: {
            if (StringCount_ < 1) return Fault(RunTimeError::StackUnderflow);
            if (!Room(1)) return Fault(RunTimeError::StackOverflow);
            Push(Strings_[--StringCount_].Length);
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::StringFromByte: {
            if (!Need(1)) return Fault(RunTimeError::StackUnderflow);
            if (StringCount_ >= StringStackSize) return Fault(RunTimeError::StackOverflow);
            const uint8_t Byte = static_cast<uint8_t>(Pop());
            PushText(&Byte, 1);
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::StringFirstByte: {
            if (StringCount_ < 1) return Fault(RunTimeError::StackUnderflow);
            if (!Room(1)) return Fault(RunTimeError::StackOverflow);
            const Text& Value = Strings_[--StringCount_];
            if (Value.Length == 0) return Fault(RunTimeError::InvalidArgument);
            Push(Value.Bytes[0]);
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::StringLeft:
        case LibraryCalls::StringRight: {
            if (!Need(1) || StringCount_ < 1) return Fault(RunTimeError::StackUnderflow);
            const int32_t Count = static_cast<int32_t>(Pop());
            if (Count < 0) return Fault(RunTimeError::InvalidArgument);
            Text& Value = Strings_[StringCount_ - 1];
            const uint8_t Kept = static_cast<uint8_t>(std::min<int32_t>(Count, Value.Length));
            if (Call == LibraryCalls::StringRight) {
                std::memmove(Value.Bytes.data(), Value.Bytes.data() + (Value.Length - Kept), Kept);
            }
            Value.Length = Kept;
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::StringMiddle: {
            if (!Need(2) || StringCount_ < 1) return Fault(RunTimeError::StackUnderflow);
            const int32_t Count = static_cast<int32_t>(Pop());
            const int32_t Start = static_cast<int32_t>(Pop());
            if (Count < 0 || Start < 1) return Fault(RunTimeError::InvalidArgument);
            Text& Value = Strings_[StringCount_ - 1];
            const int32_t From = std::min<int32_t>(Start - 1, Value.Length);
            const int32_t Kept = std::min<int32_t>(Count, Value.Length - From);
            std::memmove(Value.Bytes.data(), Value.Bytes.data() + From, static_cast<size_t>(Kept));
            Value.Length = static_cast<uint8_t>(Kept);
            return LibraryOutcome::Continue;
        }
        case LibraryCalls::StringToNumber: {
            if (StringCount_ < 1) return Fault(RunTimeError::StackUnderflow);
            if (!Room(1)) return Fault(RunTimeError::StackOverflow);
            const Text& Value = Strings_[--StringCount_];
            Push(FromSingle(NumberText::Read(std::string_view(
                reinterpret_cast<const char*>(Value.Bytes.data()), Value.Length))));
            return LibraryOutcome::Continue;
        }
        default:
            return Fault(RunTimeError::InvalidArgument);
    }
}
