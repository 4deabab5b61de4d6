#include "MachineFixture.h"

#include "kvasm/BytecodeAssembler.h"

MachineFixture::MachineFixture() : Ram(65536, 0xA5), InternalEeprom(512, 0xFF) {}

bool MachineFixture::Load(std::string_view Source) {
    const BytecodeAssembler::Result Assembled = BytecodeAssembler::Assemble(Source);
    EXPECT_TRUE(Assembled.Ok) << Assembled.Error;
    if (!Assembled.Ok) {
        return false;
    }
    const bool Started = Start(Assembled.Image);
    EXPECT_TRUE(Started) << Machine->RefusalReason();
    return Started;
}

bool MachineFixture::Start(const std::vector<uint8_t>& Bytes) {
    Image = Bytes;
    Machine = std::make_unique<BytecodeMachine>(
        BytecodeMachine::Memories{Ram, InternalEeprom, Image}, Board, Board, ChipType);
    return Machine->Start(0);
}

BytecodeMachine::State MachineFixture::RunFor(double Seconds) {
    return Machine->RunUntil(Machine->Now() + static_cast<int64_t>(Seconds * 1e9));
}

std::string MachineFixture::Run(std::string_view Source, double Seconds) {
    if (!Load(Source)) {
        return "(not loaded)";
    }
    RunFor(Seconds);
    return Board.Output;
}

void MachineFixture::ExpectError(RunTimeError Error, double Seconds) {
    EXPECT_EQ(RunFor(Seconds), BytecodeMachine::State::Failed);
    EXPECT_EQ(Machine->Error(), Error) << Machine->ErrorMessage();
}

void MachineFixture::CheckSlots(const std::vector<SlotCase>& Cases) {
    for (const SlotCase& Each : Cases) {
        SCOPED_TRACE(Each.Body);
        ASSERT_TRUE(Load(Program(Each.Body, ".var V 4")));
        if (Each.Error != RunTimeError::None) {
            ExpectError(Each.Error, 1);
            continue;
        }
        ASSERT_EQ(RunFor(1), BytecodeMachine::State::Ended) << Machine->ErrorMessage();
        ASSERT_EQ(Machine->Values().size(), 1u);
        EXPECT_EQ(Machine->Values()[0], Each.Slot);
    }
}

std::vector<int64_t> MachineFixture::Stack() const {
    std::vector<int64_t> Values;
    for (const uint32_t Slot : Machine->Values()) {
        Values.push_back(static_cast<int32_t>(Slot));
    }
    return Values;
}

int64_t MachineFixture::Word(int Address) const {
    return static_cast<int32_t>(Ram[Address] | (Ram[Address + 1] << 8) | (Ram[Address + 2] << 16) |
                                (static_cast<uint32_t>(Ram[Address + 3]) << 24));
}

int16_t MachineFixture::HalfWord(int Address) const {
    return static_cast<int16_t>(Ram[Address] | (Ram[Address + 1] << 8));
}

std::string Program(std::string_view Body, std::string_view Header) {
    std::string Text(Header);
    Text += "\nMain:\n    enter 0\n";
    Text += Body;
    Text += "\n    end\n";
    return Text;
}
