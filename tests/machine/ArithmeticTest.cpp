// The typed arithmetic, comparisons and bit operations, with the overflow
// rule of each type: Byte, Integer and Long stop with an overflow outside
// their range, UnsignedInteger and UnsignedLong wrap around, a Single
// overflows when its result is no finite number.
#include <bit>

#include "MachineFixture.h"

namespace {

constexpr uint32_t True = 0xFFFFFFFFu;
constexpr uint32_t False = 0;

uint32_t SingleSlot(float Value) { return std::bit_cast<uint32_t>(Value); }

class ArithmeticTest : public MachineFixture {};

constexpr RunTimeError Overflow = RunTimeError::Overflow;
constexpr RunTimeError ByZero = RunTimeError::DivisionByZero;

TEST_F(ArithmeticTest, ByteStaysBetweenZeroAnd255OrOverflows) {
    CheckSlots({
        {"pushb 200\npushb 55\nadd.b", 255},
        {"pushb 200\npushb 56\nadd.b", 0, Overflow},
        {"pushb 5\npushb 5\nsub.b", 0},
        {"pushb 5\npushb 6\nsub.b", 0, Overflow},
        {"pushb 15\npushb 17\nmul.b", 255},
        {"pushb 16\npushb 16\nmul.b", 0, Overflow},
        {"pushb 255\npushb 2\ndiv.b", 127},
        {"pushb 1\npushb 0\ndiv.b", 0, ByZero},
        {"pushb 255\npushb 7\nmod.b", 3},
        {"pushb 1\npushb 0\nmod.b", 0, ByZero},
        {"pushb 0\nneg.b", 0},
        {"pushb 1\nneg.b", 0, Overflow},
        {"pushb 0x0F\nnot.b", 0xF0},
    });
}

TEST_F(ArithmeticTest, IntegerStaysInSixteenSignedBitsOrOverflows) {
    CheckSlots({
        {"pushi 32767\npushi 0\nadd.i", 32767},
        {"pushi 32767\npushi 1\nadd.i", 0, Overflow},
        {"pushi -32768\npushi -1\nadd.i", 0, Overflow},
        {"pushi -5\npushi 3\nadd.i", static_cast<uint32_t>(-2)},
        {"pushi -32767\npushi 1\nsub.i", static_cast<uint32_t>(-32768)},
        {"pushi -32768\npushi 1\nsub.i", 0, Overflow},
        {"pushi 181\npushi 181\nmul.i", 32761},
        {"pushi 182\npushi 181\nmul.i", 0, Overflow},
        {"pushi -256\npushi 128\nmul.i", static_cast<uint32_t>(-32768)},
        {"pushi -7\npushi 2\ndiv.i", static_cast<uint32_t>(-3)},
        {"pushi -32768\npushi -1\ndiv.i", 0, Overflow},
        {"pushi 1\npushi 0\ndiv.i", 0, ByZero},
        {"pushi -7\npushi 2\nmod.i", static_cast<uint32_t>(-1)},
        {"pushi 7\npushi -2\nmod.i", 1},
        {"pushi 1\npushi 0\nmod.i", 0, ByZero},
        {"pushi -32768\nneg.i", 0, Overflow},
        {"pushi 5\nneg.i", static_cast<uint32_t>(-5)},
        {"pushi 0\nnot.i", True},
    });
}

TEST_F(ArithmeticTest, UnsignedIntegerWrapsAroundAt65536) {
    CheckSlots({
        {"pushw 65535\npushw 1\nadd.u", 0},
        {"pushw 0\npushw 1\nsub.u", 65535},
        {"pushw 256\npushw 256\nmul.u", 0},
        {"pushw 300\npushw 300\nmul.u", 90000 & 0xFFFF},
        {"pushw 65535\npushw 2\ndiv.u", 32767},
        {"pushw 1\npushw 0\ndiv.u", 0, ByZero},
        {"pushw 65535\npushw 10\nmod.u", 5},
        {"pushw 1\npushw 0\nmod.u", 0, ByZero},
        {"pushw 1\nneg.u", 65535},
        {"pushw 0\nnot.u", 65535},
    });
}

TEST_F(ArithmeticTest, LongStaysInThirtyTwoSignedBitsOrOverflows) {
    CheckSlots({
        {"pushw 2147483646\npushw 1\nadd.l", 2147483647},
        {"pushw 2147483647\npushw 1\nadd.l", 0, Overflow},
        {"pushw -2147483648\npushw -1\nadd.l", 0, Overflow},
        {"pushw -2147483648\npushw 1\nsub.l", 0, Overflow},
        {"pushw 10\npushw 25\nsub.l", static_cast<uint32_t>(-15)},
        {"pushw 65536\npushw 32768\nmul.l", 0, Overflow},
        {"pushw 65536\npushw -32768\nmul.l", 0x80000000u},
        {"pushw -2147483648\npushw -1\ndiv.l", 0, Overflow},
        {"pushw 7\npushw -2\ndiv.l", static_cast<uint32_t>(-3)},
        {"pushw 5\npushw 0\ndiv.l", 0, ByZero},
        {"pushw -2147483648\npushw -1\nmod.l", 0},
        {"pushw -7\npushw 3\nmod.l", static_cast<uint32_t>(-1)},
        {"pushw 5\npushw 0\nmod.l", 0, ByZero},
        {"pushw -2147483648\nneg.l", 0, Overflow},
        {"pushw 5\nneg.l", static_cast<uint32_t>(-5)},
        {"pushw 0\nnot.l", True},
    });
}

TEST_F(ArithmeticTest, UnsignedLongWrapsAroundAtTwoToThe32) {
    CheckSlots({
        {"pushw 4294967295\npushw 1\nadd.ul", 0},
        {"pushw 0\npushw 1\nsub.ul", 4294967295u},
        {"pushw 65536\npushw 65536\nmul.ul", 0},
        {"pushw 4294967295\npushw 2\ndiv.ul", 2147483647},
        {"pushw 1\npushw 0\ndiv.ul", 0, ByZero},
        {"pushw 4294967295\npushw 10\nmod.ul", 5},
        {"pushw 1\npushw 0\nmod.ul", 0, ByZero},
        {"pushw 1\nneg.ul", 4294967295u},
        {"pushw 0x0F0F0F0F\nnot.ul", 0xF0F0F0F0u},
    });
}

TEST_F(ArithmeticTest, SingleOverflowsWhenItsResultIsNoFiniteNumber) {
    CheckSlots({
        {"pushf 1.5\npushf 2.25\nadd.f", SingleSlot(3.75f)},
        {"pushf 1.5\npushf 2.25\nsub.f", SingleSlot(-0.75f)},
        {"pushf 1.5\npushf 4\nmul.f", SingleSlot(6.0f)},
        {"pushf 3e38\npushf 10\nmul.f", 0, Overflow},
        {"pushf -3e38\npushf 3e38\nsub.f", 0, Overflow},
        {"pushf 1\npushf 4\ndiv.f", SingleSlot(0.25f)},
        {"pushf 1\npushf 0\ndiv.f", 0, ByZero},
        {"pushf 2\npushf 10\npow.f", SingleSlot(1024.0f)},
        {"pushf 10\npushf 39\npow.f", 0, Overflow},
        {"pushf -8\npushf 0.5\npow.f", 0, Overflow},
        {"pushf 1.5\nneg.f", SingleSlot(-1.5f)},
        // An erased EEPROM's bytes as a Single are not a number.
        {"pushw 0xFFFFFFFF\npushf 1\nadd.f", 0, Overflow},
    });
}

TEST_F(ArithmeticTest, ComparisonsGiveTrueAsMinusOneAndFollowTheirType) {
    CheckSlots({
        {"pushb 1\npushb 2\nlt.b", True},
        {"pushi -1\npushi 1\nlt.i", True},
        {"pushw 65535\npushw 1\nlt.u", False},
        {"pushw -1\npushw 1\nlt.l", True},
        {"pushw 4294967295\npushw 1\nlt.ul", False},
        {"pushf -1.5\npushf 1\nlt.f", True},
        {"pushf 0\npushf -0\neq.f", True},
        {"pushw 5\npushw 5\nge.l", True},
        {"pushi 5\npushi 5\ngt.i", False},
        {"pushw 1\npushw 2\nne.ul", True},
        {"pushw 3\npushw 3\nle.u", True},
        {"pushw 3\npushw 3\neq.b", True},
        {"pushi 4\npushi 3\ngt.i", True},
        {"pushf 2\npushf 2\nle.f", True},
        {"pushf 2\npushf 1\nge.f", True},
        {"pushf 2\npushf 1\nne.f", True},
    });
}

TEST_F(ArithmeticTest, AndOrXorWorkOnTheBitsOfAnyType) {
    CheckSlots({
        {"pushb 12\npushb 10\nand", 8},
        {"pushb 12\npushb 10\nor", 14},
        {"pushb 12\npushb 10\nxor", 6},
        {"pushi -1\npushi 0\nand", False},
        {"pushi -1\npushi 0\nor", True},
        // Integers stay sign-extended: -2 Xor 1 is -1.
        {"pushi -2\npushi 1\nxor", True},
    });
}

TEST_F(ArithmeticTest, StackInstructionsMoveSlots) {
    CheckSlots({
        {"pushb 1\ndup\nadd.b", 2},
        {"pushb 1\npushb 2\ndrop", 1},
        {"pushb 1\npushb 3\nswap\nsub.b", 2},
        {"pushb 7\npushb 3\nover\nadd.b\nswap\nsub.b", 3},
        {"pushi -1", True},
        {"nop\npushb 255", 255},
    });
}

TEST_F(ArithmeticTest, ForLoopIncrementOverflowsAtTheEndOfLong) {
    CheckSlots({
        {"pushw 2147483640\nstg.w V\nincg.l V, 7\nldg.w V", 2147483647},
        {"pushw 2147483640\nstg.w V\nincg.l V, 8\nldg.w V", 0, Overflow},
        {"pushw -5\nstg.w V\nincg.l V, -3\nldg.w V", static_cast<uint32_t>(-8)},
    });
}

TEST_F(ArithmeticTest, LoadsExtendByTypeAndBooleansStoreAs255) {
    CheckSlots({
        {"pushi -1\nstg.h V\nldg.u V", 65535},
        {"pushi -1\nstg.h V\nldg.i V", True},
        {"pushw 0x1FF\nstg.b V\nldg.b V", 255},
        {"pushw 0x12345678\nstg.w V\nldg.b V+3", 0x12},
        {"pushb 5\nstg.z V\nldg.b V", 255},
        {"pushb 5\nstg.z V\nldg.z V", True},
        {"pushb 0\nstg.z V\nldg.z V", False},
        {"pushb 2\nstg.b V\nldg.z V", True},
        {"addrg V\npushi -2\nsti.h\naddrg V\nldi.u", 65534},
        {"addrg V\npushi -2\nsti.h\naddrg V\nldi.i", static_cast<uint32_t>(-2)},
        {"addrg V\npushb 9\nsti.z\naddrg V\nldi.b", 255},
        {"addrg V\npushb 0\nsti.z\naddrg V\nldi.z", False},
        {"addrg V\npushw 0xFFFFFF80\nsti.b\naddrg V\nldi.b", 0x80},
        {"addrg V\npushf 2.5\nsti.w\naddrg V\nldi.w", SingleSlot(2.5f)},
    });
}

TEST_F(ArithmeticTest, LocalsLoadAndStoreByType) {
    CheckSlots({
        {"enter 4\npushi -3\nstl.h 0\nldl.u 0", 65533},
        {"enter 4\npushi -3\nstl.h 2\nldl.i 2", static_cast<uint32_t>(-3)},
        {"enter 4\npushb 7\nstl.z 3\nldl.b 3", 255},
        {"enter 4\npushb 7\nstl.b 3\nldl.z 3", True},
        {"enter 4\npushw 123456\nstl.w 0\nldl.w 0", 123456},
        {"enter 4\naddrl 2\npushb 1\nsti.b\nldl.w 0", 0x10000},
        {"enter 4\nldl.w 1", 0, RunTimeError::AddressOutOfRange},
        {"enter 4\naddrl 4", 0, RunTimeError::AddressOutOfRange},
    });
}

}  // namespace
