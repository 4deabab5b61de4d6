// A program image is checked whole before it runs: a malformed one is refused
// with its reason and nothing of it runs.
#include <random>

#include "MachineFixture.h"
#include "kvasm/BytecodeAssembler.h"
#include "machine/BytecodeImage.h"

namespace {

class ImageCheckTest : public MachineFixture {
  protected:
    std::vector<uint8_t> Assembled(std::string_view Source) {
        const BytecodeAssembler::Result Result = BytecodeAssembler::Assemble(Source);
        EXPECT_TRUE(Result.Ok) << Result.Error;
        return Result.Image;
    }
    // Refused, with a reason that holds Words, and no instruction run.
    void ExpectRefused(const std::vector<uint8_t>& Bytes, const std::string& Words) {
        Board.Output.clear();
        EXPECT_FALSE(Start(Bytes));
        EXPECT_NE(Machine->RefusalReason().find(Words), std::string::npos)
            << Machine->RefusalReason();
        EXPECT_EQ(Machine->RunUntil(1'000'000'000), BytecodeMachine::State::Stopped);
        EXPECT_EQ(Machine->Executed(), 0u);
        EXPECT_TRUE(Board.Output.empty());
    }
    static void Put16(std::vector<uint8_t>& Bytes, size_t At, uint16_t Value) {
        Bytes[At] = static_cast<uint8_t>(Value);
        Bytes[At + 1] = static_cast<uint8_t>(Value >> 8);
    }
    // Changes a header field and seals the image again.
    std::vector<uint8_t> WithField(std::string_view Source, size_t At, uint16_t Value,
                                   bool Wide = true) {
        std::vector<uint8_t> Bytes = Assembled(Source);
        if (Wide) {
            Put16(Bytes, At, Value);
        } else {
            Bytes[At] = static_cast<uint8_t>(Value);
        }
        BytecodeImage::Seal(Bytes);
        return Bytes;
    }
};

const std::string Good = Program("pushs \"ok\"\nsys PrintString", ".var X 4");

TEST_F(ImageCheckTest, AGoodImageRuns) {
    ASSERT_TRUE(Start(Assembled(Good)));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_EQ(Board.Output, "ok");
}

TEST_F(ImageCheckTest, ShortImageIsRefused) {
    ExpectRefused(std::vector<uint8_t>(10, 0), "shorter than its header");
    ExpectRefused({}, "shorter than its header");
}

TEST_F(ImageCheckTest, ForeignFileIsRefused) {
    std::vector<uint8_t> Bytes = Assembled(Good);
    Bytes[0] = 'X';
    ExpectRefused(Bytes, "does not begin with KVBC");
}

TEST_F(ImageCheckTest, OtherFormatVersionIsRefused) {
    ExpectRefused(WithField(Good, 4, 2, false), "format version 2");
}

TEST_F(ImageCheckTest, ImageForAnotherChipIsRefused) {
    ExpectRefused(Assembled(Program("", ".chip 3")), "made for the KV-30, not for this KV-20");
    ExpectRefused(WithField(Good, 5, 7, false), "chip type 7");
}

TEST_F(ImageCheckTest, ImageShorterThanItsHeaderSaysIsRefused) {
    std::vector<uint8_t> Bytes = Assembled(Good);
    Bytes.resize(Bytes.size() - 1);
    ExpectRefused(Bytes, "bytes are there");
}

TEST_F(ImageCheckTest, DamagedImageFailsItsChecksum) {
    std::vector<uint8_t> Bytes = Assembled(Good);
    Bytes[ImageHeader::Size + 3] ^= 0x01;
    ExpectRefused(Bytes, "checksum");
}

TEST_F(ImageCheckTest, StringSizeOutsideOneTo64IsRefused) {
    ExpectRefused(WithField(Good, 6, 0, false), "string size 0");
    ExpectRefused(WithField(Good, 6, 65, false), "string size 65");
}

TEST_F(ImageCheckTest, UnknownHeaderFieldsAreRefused) {
    ExpectRefused(WithField(Good, 7, 1, false), "header fields");
    ExpectRefused(WithField(Good, 26, 1), "header fields");
}

TEST_F(ImageCheckTest, SizesThatDoNotAddUpAreRefused) {
    const std::vector<uint8_t> Bytes = Assembled(Good);
    const uint16_t CodeSize = static_cast<uint16_t>(Bytes[12] | (Bytes[13] << 8));
    ExpectRefused(WithField(Good, 12, CodeSize - 1), "do not add up");
    ExpectRefused(WithField(Good, 10, 33), "do not add up");
}

TEST_F(ImageCheckTest, ProgramRamOutsideTheChipIsRefused) {
    Ram.resize(600);
    ExpectRefused(Assembled(Good), "not a range inside the chip's RAM");
    Ram.resize(65536);
    ExpectRefused(Assembled(Program("", ".ram 300 200")), "not a range");
}

TEST_F(ImageCheckTest, VariablesBeyondTheProgramRamAreRefused) {
    ExpectRefused(Assembled(Program("", ".var Big 402")), "module-level variables end at 609");
}

TEST_F(ImageCheckTest, PersistentVariablesBeyondTheEepromAreRefused) {
    ExpectRefused(Assembled(Program("", ".persistent Big 481")), "do not fit the internal EEPROM");
}

TEST_F(ImageCheckTest, UnknownInstructionIsRefused) {
    ExpectRefused(Assembled(Program(".byte 0xFF")), "Unknown instruction 255 at code address 35");
}

TEST_F(ImageCheckTest, InstructionCutOffByTheEndOfTheCodeIsRefused) {
    ExpectRefused(Assembled("Main:\n  enter 0\n  .byte 4, 1, 2"), "runs past the end of the code");
}

TEST_F(ImageCheckTest, CodeThatRunsOffItsEndIsRefused) {
    ExpectRefused(Assembled("Main:\n  enter 0\n  nop"), "ends with nop");
    ExpectRefused(Assembled("Main:\n  enter 0\n  call Main"), "ends with call");
}

TEST_F(ImageCheckTest, JumpIntoTheMiddleOfAnInstructionIsRefused) {
    ExpectRefused(Assembled(Program("jmp Main+1")), "goes to 33, where no instruction starts");
    ExpectRefused(Assembled(Program("call 5")), "goes to 5");
    ExpectRefused(Assembled(Program("jt 60000")), "goes to 60000");
}

TEST_F(ImageCheckTest, EntryOutsideTheCodeIsRefused) {
    ExpectRefused(WithField(Good, 16, 33), "entry point 33");
    ExpectRefused(WithField(Good, 16, 10), "entry point 10");
}

TEST_F(ImageCheckTest, UnknownOperandsAreRefused) {
    ExpectRefused(Assembled(Program("sys 99")), "Unknown library call 99");
    ExpectRefused(Assembled(Program("sys 0")), "Unknown library call 0");
    ExpectRefused(Assembled(Program("pushb 1\nstr 9")), "Unknown value type 9");
    ExpectRefused(Assembled(Program("pushb 1\nconv 0x37")), "Unknown conversion");
    ExpectRefused(Assembled(Program("pushs \"a\"\npushs \"b\"\nscmp 6")), "Unknown comparison 6");
}

TEST_F(ImageCheckTest, ModuleAddressesOutsideTheProgramRamAreRefused) {
    ExpectRefused(Assembled(Program("ldg.w 605")), "RAM address 605");
    ExpectRefused(Assembled(Program("pushb 1\nstg.b 206")), "RAM address 206");
    ExpectRefused(Assembled(Program("incg.l 700, 1")), "RAM address 700");
    ExpectRefused(Assembled(Program("addrp 40", ".persistent P 8")), "persistent address 40");
    ExpectRefused(Assembled(Program("addrp 31", ".persistent P 8")), "persistent address 31");
}

TEST_F(ImageCheckTest, LiteralsLongerThanTheStringSizeAreRefused) {
    ExpectRefused(Assembled(Program("pushs \"abc\"", ".stringsize 2")),
                  "more than the string size");
}

TEST_F(ImageCheckTest, LiteralOutsideTheDataIsRefused) {
    ExpectRefused(Assembled(Program("pushs 0")), "outside the image's data");
}

TEST_F(ImageCheckTest, ArrayBoundsTheWrongWayRoundAreRefused) {
    ExpectRefused(Assembled(Program("aref1 5, 1, 2")), "lower above the upper");
    ExpectRefused(Assembled(Program("aref2 1, 2, 3, 2, 2")), "lower above the upper");
}

TEST_F(ImageCheckTest, PaddingAndOldEepromBytesBehindTheImageAreIgnored) {
    std::vector<uint8_t> Bytes = Assembled(Good);
    Bytes.resize(32768, 0xFF);
    ASSERT_TRUE(Start(Bytes));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_EQ(Board.Output, "ok");
}

TEST_F(ImageCheckTest, AssemblerPadsAnImageOfWholeBlocks) {
    // 32 bytes of header and 96 of code: 128 in all, padded to 129.
    std::string Body;
    for (int Index = 0; Index < 92; ++Index) {
        Body += "nop\n";
    }
    const std::vector<uint8_t> Bytes = Assembled("Main:\n  enter 0\n" + Body + "end\n");
    EXPECT_EQ(Bytes.size(), 129u);
    EXPECT_EQ(Bytes[8] | (Bytes[9] << 8), 128);
    ASSERT_TRUE(Start(Bytes));
    EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
    EXPECT_EQ(BytecodeImage::PaddedLength(127), 127u);
    EXPECT_EQ(BytecodeImage::PaddedLength(256), 257u);
}

TEST_F(ImageCheckTest, CorruptedImagesAreRefusedOrRunSafely) {
    const std::vector<uint8_t> Original = Assembled(R"(
.var A 8
.persistent P 4
Main:
    enter 4
    addrg A
    pushb 2
    aref1 0, 7, 1
    pushb 9
    sti.b
    addrp P
    ldi.w
    stl.w 0
    pushs "x"
    sys PrintString
    call Sub
    end
Sub:
    enter 2
    pushw 5
    sys WaitMilliseconds
    ret
)");
    std::mt19937 Random(19);
    for (int Round = 0; Round < 3000; ++Round) {
        std::vector<uint8_t> Bytes = Original;
        const int Changes = 1 + static_cast<int>(Random() % 4);
        for (int Change = 0; Change < Changes; ++Change) {
            Bytes[Random() % Bytes.size()] = static_cast<uint8_t>(Random());
        }
        if (Round % 2 == 0) {
            BytecodeImage::Seal(Bytes);
        }
        if (Start(Bytes)) {
            Machine->RunUntil(50'000'000);
        } else {
            EXPECT_FALSE(Machine->RefusalReason().empty());
        }
    }
    for (size_t Length = 0; Length < Original.size(); ++Length) {
        EXPECT_FALSE(Start(std::vector<uint8_t>(Original.begin(), Original.begin() + Length)));
    }
}

}  // namespace
