// Persistent variables live in the internal EEPROM behind its 32-byte
// configuration block and keep their values across starts; module-level
// RAM starts cleared.
#include "MachineFixture.h"

namespace {

class PersistentTest : public MachineFixture {};

constexpr const char* Counter = R"(
.persistent Boots 2
.var Runs 2
Main:
    enter 0
    addrp Boots
    addrp Boots
    ldi.u
    pushw 1
    add.u
    sti.h
    ldg.u Runs
    pushw 1
    add.u
    stg.h Runs
    end
)";

TEST_F(PersistentTest, PersistentVariablesLandBehindTheConfigurationBlock) {
    InternalEeprom[32] = 0;
    InternalEeprom[33] = 0;
    ASSERT_TRUE(Load(Counter));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_EQ(InternalEeprom[32], 1);
    EXPECT_EQ(InternalEeprom[33], 0);
    for (int Address = 0; Address < 32; ++Address) {
        EXPECT_EQ(InternalEeprom[Address], 0xFF) << "configuration byte " << Address;
    }
    EXPECT_EQ(InternalEeprom[34], 0xFF);
}

TEST_F(PersistentTest, PersistentValuesSurviveARestartWhileRamStartsAtZero) {
    InternalEeprom[32] = 0;
    InternalEeprom[33] = 0;
    ASSERT_TRUE(Load(Counter));
    RunFor();
    ASSERT_TRUE(Machine->Start(0));
    RunFor();
    ASSERT_TRUE(Machine->Start(0));
    RunFor();
    EXPECT_EQ(InternalEeprom[32], 3);
    EXPECT_EQ(HalfWord(207), 1);
}

TEST_F(PersistentTest, ProgramRamIsClearedAndTheRestLeftAlone) {
    ASSERT_TRUE(Load(Program("", ".var Unused 2")));
    EXPECT_EQ(Ram[206], 0xA5);
    for (int Address = 207; Address <= 607; ++Address) {
        ASSERT_EQ(Ram[Address], 0) << Address;
    }
    EXPECT_EQ(Ram[608], 0xA5);
}

TEST_F(PersistentTest, TheConfigurationBlockCannotBeReached) {
    // A reference made by hand to EEPROM address 31, just below the variables.
    ASSERT_TRUE(Load(Program("pushw 0x1001F\nldi.b", ".persistent P 1")));
    ExpectError(RunTimeError::AddressOutOfRange);
    ASSERT_TRUE(Load(Program("pushw 0x10021\npushb 1\nsti.b", ".persistent P 1")));
    ExpectError(RunTimeError::AddressOutOfRange);
}

}  // namespace
