#include <gtest/gtest.h>

#include <initializer_list>

#include "sim/SimulatedSpiEeprom.h"

namespace {

// One selection: the bytes clocked in, what came back, then select rises.
std::vector<uint8_t> Transfer(SimulatedSpiEeprom& Eeprom, std::initializer_list<uint8_t> Bytes,
                              int64_t Ns) {
    std::vector<uint8_t> Out;
    Eeprom.Select(Ns);
    for (const uint8_t Byte : Bytes) {
        Out.push_back(Eeprom.Exchange(Byte, Ns));
    }
    Eeprom.Deselect(Ns);
    return Out;
}

TEST(SimulatedSpiEeprom, PageWriteNeedsTheWriteEnableLatch) {
    SimulatedSpiEeprom Eeprom;
    Transfer(Eeprom, {0x02, 0x00, 0x10, 0xAB}, 0);
    EXPECT_EQ(Eeprom.Memory[0x10], 0xFF);
    EXPECT_EQ(Eeprom.RefusedWrites, 1);
    Transfer(Eeprom, {0x06}, 0);
    EXPECT_TRUE(Eeprom.WriteEnableLatch());
    Transfer(Eeprom, {0x02, 0x00, 0x10, 0xAB}, 0);
    EXPECT_EQ(Eeprom.Memory[0x10], 0xAB);
    // The latch falls with the write.
    EXPECT_FALSE(Eeprom.WriteEnableLatch());
}

TEST(SimulatedSpiEeprom, PageWriteWrapsInsideItsPage) {
    SimulatedSpiEeprom Eeprom;
    Transfer(Eeprom, {0x06}, 0);
    Transfer(Eeprom, {0x02, 0x00, 0x7E, 1, 2, 3, 4}, 0);
    EXPECT_EQ(Eeprom.Memory[0x7E], 1);
    EXPECT_EQ(Eeprom.Memory[0x7F], 2);
    EXPECT_EQ(Eeprom.Memory[0x40], 3);
    EXPECT_EQ(Eeprom.Memory[0x41], 4);
    EXPECT_EQ(Eeprom.Memory[0x80], 0xFF);
}

TEST(SimulatedSpiEeprom, OnlyAPageWriteThatChangesAByteCountsAsChanging) {
    SimulatedSpiEeprom Eeprom;
    Transfer(Eeprom, {0x06}, 0);
    Transfer(Eeprom, {0x02, 0x00, 0x10, 0xFF, 0xFF}, 0);
    EXPECT_EQ(Eeprom.CompletedWrites, 1);
    EXPECT_EQ(Eeprom.ChangingWrites, 0);
    const int64_t Later = Eeprom.WriteCycleNs;
    Transfer(Eeprom, {0x06}, Later);
    Transfer(Eeprom, {0x02, 0x00, 0x10, 0xFF, 0x5A}, Later);
    EXPECT_EQ(Eeprom.ChangingWrites, 1);
    // Refused writes change nothing.
    Transfer(Eeprom, {0x02, 0x00, 0x10, 0x00}, 2 * Later);
    EXPECT_EQ(Eeprom.RefusedWrites, 1);
    EXPECT_EQ(Eeprom.ChangingWrites, 1);
}

TEST(SimulatedSpiEeprom, DeviceInItsWriteCycleHearsOnlyAStatusRead) {
    SimulatedSpiEeprom Eeprom;
    Transfer(Eeprom, {0x06}, 0);
    Transfer(Eeprom, {0x02, 0x00, 0x00, 0x11}, 1000);
    const int64_t During = 1000 + Eeprom.WriteCycleNs - 1;
    EXPECT_EQ(Transfer(Eeprom, {0x05, 0x00}, During)[1] & SimulatedSpiEeprom::StatusWriteInProgress,
              SimulatedSpiEeprom::StatusWriteInProgress);
    Transfer(Eeprom, {0x06}, During);
    EXPECT_FALSE(Eeprom.WriteEnableLatch());
    const int64_t After = 1000 + Eeprom.WriteCycleNs;
    EXPECT_EQ(Transfer(Eeprom, {0x05, 0x00}, After)[1], 0x00);
    Transfer(Eeprom, {0x06}, After);
    EXPECT_TRUE(Eeprom.WriteEnableLatch());
}

TEST(SimulatedSpiEeprom, BlockProtectBitsGuardTheirPartOfTheMemory) {
    SimulatedSpiEeprom Eeprom;
    Transfer(Eeprom, {0x06}, 0);
    Transfer(Eeprom, {0x01, 0x04}, 0);  // the upper quarter
    EXPECT_EQ(Eeprom.BlockProtect(), 1);
    int64_t Now = Eeprom.WriteCycleNs;
    Transfer(Eeprom, {0x06}, Now);
    Transfer(Eeprom, {0x02, 0x60, 0x00, 0x22}, Now);
    EXPECT_EQ(Eeprom.Memory[0x6000], 0xFF);
    Transfer(Eeprom, {0x06}, Now);
    Transfer(Eeprom, {0x02, 0x5F, 0xFF, 0x33}, Now);
    EXPECT_EQ(Eeprom.Memory[0x5FFF], 0x33);
    Now += Eeprom.WriteCycleNs;
    Transfer(Eeprom, {0x06}, Now);
    Transfer(Eeprom, {0x01, 0x0C}, Now);  // all
    Now += Eeprom.WriteCycleNs;
    Transfer(Eeprom, {0x06}, Now);
    Transfer(Eeprom, {0x02, 0x00, 0x00, 0x44}, Now);
    EXPECT_EQ(Eeprom.Memory[0], 0xFF);
    EXPECT_EQ(Eeprom.Status(Now) & 0x0C, 0x0C);
}

TEST(SimulatedSpiEeprom, StatusWriteWithoutTheLatchIsRefused) {
    SimulatedSpiEeprom Eeprom;
    Transfer(Eeprom, {0x01, 0x0C}, 0);
    EXPECT_EQ(Eeprom.BlockProtect(), 0);
    EXPECT_EQ(Eeprom.RefusedWrites, 1);
}

TEST(SimulatedSpiEeprom, ReadStreamsOnForAsLongAsItIsClocked) {
    SimulatedSpiEeprom Eeprom;
    Eeprom.Memory[0x7FFE] = 0xA1;
    Eeprom.Memory[0x7FFF] = 0xA2;
    Eeprom.Memory[0x0000] = 0xA3;
    const auto Out = Transfer(Eeprom, {0x03, 0x7F, 0xFE, 0, 0, 0}, 0);
    EXPECT_EQ(Out, std::vector<uint8_t>({0xFF, 0xFF, 0xFF, 0xA1, 0xA2, 0xA3}));
}

}  // namespace
