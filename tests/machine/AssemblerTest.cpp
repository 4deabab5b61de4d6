// The bytecode assembler that the tests and the benchmark write images with.
#include <gtest/gtest.h>

#include "kvasm/BytecodeAssembler.h"
#include "machine/BytecodeImage.h"

namespace {

TEST(AssemblerTest, LaysOutHeaderVariablesCodeAndData) {
    const BytecodeAssembler::Result Result = BytecodeAssembler::Assemble(R"(
.chip 3
.stringsize 20
.ram 300 500
.var A 4
.var B 2
.persistent P 6
.persistent Q 1
.text Hello "hi"
Start:
    jmp Later
Later:
    pushs Hello
    end
.entry Later
)");
    ASSERT_TRUE(Result.Ok) << Result.Error;
    ImageHeader Header;
    ASSERT_TRUE(ImageHeader::Read(Result.Image, Header));
    EXPECT_EQ(Header.ChipType, 3);
    EXPECT_EQ(Header.StringSize, 20);
    EXPECT_EQ(Header.RamLow, 300);
    EXPECT_EQ(Header.RamHigh, 500);
    EXPECT_EQ(Header.GlobalsEnd, 306);
    EXPECT_EQ(Header.PersistentSize, 7);
    EXPECT_EQ(Header.CodeSize, 7);
    EXPECT_EQ(Header.DataSize, 3);
    EXPECT_EQ(Header.Length, 42);
    EXPECT_EQ(Header.Entry, 35);
    EXPECT_EQ(Result.Symbols.at("A"), 300);
    EXPECT_EQ(Result.Symbols.at("B"), 304);
    EXPECT_EQ(Result.Symbols.at("P"), 32);
    EXPECT_EQ(Result.Symbols.at("Q"), 38);
    EXPECT_EQ(Header.Checksum, BytecodeImage::Checksum(Result.Image, Header.Length));
    // jmp to the label that follows it.
    EXPECT_EQ(Result.Image[32], 0x09);
    EXPECT_EQ(Result.Image[33], 35);
    EXPECT_EQ(Result.Image[39], 2);
    EXPECT_EQ(Result.Image[40], 'h');
}

TEST(AssemblerTest, ErrorsNameTheirLine) {
    EXPECT_EQ(BytecodeAssembler::Assemble("Main:\n  enter 0\n  ldx.b 3\n").Error,
              "line 3: unknown instruction ldx.b");
    EXPECT_EQ(BytecodeAssembler::Assemble("Main:\n  jmp Nowhere\n").Error,
              "line 2: \"Nowhere\" is not defined");
    EXPECT_EQ(BytecodeAssembler::Assemble("  pushb 300\n").Error,
              "line 1: 300 is out of range for this operand");
    EXPECT_EQ(BytecodeAssembler::Assemble("A:\nA:\n").Error, "line 2: \"A\" is defined twice");
    EXPECT_EQ(BytecodeAssembler::Assemble("  pushs \"open\n").Error,
              "line 1: a text without its closing quote");
    EXPECT_FALSE(BytecodeAssembler::Assemble("  add.l 1\n").Ok);
}

TEST(AssemblerTest, TextEscapesBecomeTheirBytes) {
    const BytecodeAssembler::Result Result =
        BytecodeAssembler::Assemble("Main:\n  pushs \"a\\r\\n\\x41\\\"\" ; comment\n  end\n");
    ASSERT_TRUE(Result.Ok) << Result.Error;
    const std::string Data(Result.Image.end() - 6, Result.Image.end());
    EXPECT_EQ(Data, std::string("\x05"
                                "a\r\nA\""));
}

}  // namespace
