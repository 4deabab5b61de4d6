// Strings: literals, variables of the program's string size, joining,
// comparing and the library's string helpers.
#include <bit>

#include "MachineFixture.h"

namespace {

class StringTest : public MachineFixture {};

TEST_F(StringTest, LiteralsPrintAsTheyAre) {
    EXPECT_EQ(Run(Program("pushs \"Hello, chip\"\nsys PrintString\nsys PrintNewLine")),
              "Hello, chip\r\n");
}

TEST_F(StringTest, VariableHoldsLengthThenBytes) {
    ASSERT_TRUE(Load(Program(R"(
        pushs "abc"
        addrg Name
        sts
        addrg Name
        lds
        addrg Name
        lds
        cat
        sys PrintString
    )",
                             ".stringsize 8\n.var Name 9")));
    RunFor();
    EXPECT_EQ(Board.Output, "abcabc");
    const int Name = 207;
    EXPECT_EQ(Ram[Name], 3);
    EXPECT_EQ(std::string(Ram.begin() + Name + 1, Ram.begin() + Name + 4), "abc");
}

TEST_F(StringTest, JoiningIsCutAtTheStringSize) {
    EXPECT_EQ(Run(Program(R"(
        pushs "abcd"
        pushs "efgh"
        cat
        sdup
        sys StringLength
        str Long
        sys PrintString
        pushs ":"
        sys PrintString
        sys PrintString
    )",
                          ".stringsize 6")),
              "6:abcdef");
}

TEST_F(StringTest, AnEmptyVariableIsAnEmptyString) {
    EXPECT_EQ(Run(Program(R"(
        addrg Name
        lds
        sys StringLength
        str Long
        sys PrintString
    )",
                          ".var Name 17")),
              "0");
}

TEST_F(StringTest, ComparisonIsByByteValuesThenLength) {
    ASSERT_TRUE(Load(Program(R"(
        pushs "abc"
        pushs "abd"
        scmp lt
        pushs "abc"
        pushs "abc"
        scmp eq
        pushs "ab"
        pushs "abc"
        scmp lt
        pushs "b"
        pushs "abc"
        scmp gt
        pushs "B"
        pushs "b"
        scmp ge
        pushs "x"
        pushs "y"
        scmp ne
        pushs "x"
        pushs "x"
        scmp le
    )")));
    RunFor();
    EXPECT_EQ(Stack(), (std::vector<int64_t>{-1, -1, -1, -1, 0, -1, -1}));
    EXPECT_EQ(Machine->StringCount(), 0);
}

TEST_F(StringTest, HelpersGiveLengthCharacterAndFirstByte) {
    ASSERT_TRUE(Load(Program(R"(
        pushb 65
        sys StringFromByte
        pushs "BC"
        cat
        sdup
        sys PrintString
        sdup
        sys StringLength
        sys StringFirstByte
    )")));
    RunFor();
    EXPECT_EQ(Board.Output, "ABC");
    EXPECT_EQ(Stack(), (std::vector<int64_t>{3, 65}));
}

TEST_F(StringTest, SdropDiscardsTheTopString) {
    EXPECT_EQ(Run(Program("pushs \"kept\"\npushs \"gone\"\nsdrop\nsys PrintString")), "kept");
    EXPECT_EQ(Machine->StringCount(), 0);
}

TEST_F(StringTest, FirstByteOfAnEmptyStringIsAnError) {
    Run(Program("pushs \"\"\nsys StringFirstByte"));
    EXPECT_EQ(Machine->Error(), RunTimeError::InvalidArgument);
}

TEST_F(StringTest, TooManyPendingStringsOverflowTheStringStack) {
    std::string Body;
    for (int Index = 0; Index <= BytecodeMachine::StringStackSize; ++Index) {
        Body += "pushs \"x\"\n";
    }
    Run(Program(Body));
    EXPECT_EQ(Machine->Error(), RunTimeError::StackOverflow);
}

TEST_F(StringTest, AStoredLengthAboveTheStringSizeIsCut) {
    // A persistent string of an erased EEPROM says 255 bytes long.
    EXPECT_EQ(Run(Program(R"(
        addrp Saved
        lds
        sys StringLength
        str Long
        sys PrintString
    )",
                          ".stringsize 4\n.persistent Saved 5")),
              "4");
}

}  // namespace

namespace {

TEST_F(StringTest, LeftRightAndMiddleCutAText) {
    EXPECT_EQ(Run(Program(R"(
        pushs "abcdef"
        pushb 2
        sys StringLeft
        sys PrintString
        pushs "abcdef"
        pushb 9
        sys StringLeft
        sys PrintString
        pushs "abcdef"
        pushb 3
        sys StringRight
        sys PrintString
        pushs "abcdef"
        pushb 2
        pushb 3
        sys StringMiddle
        sys PrintString
        pushs "abcdef"
        pushb 5
        pushb 9
        sys StringMiddle
        sys PrintString
        pushs "abc"
        pushb 7
        pushb 1
        sys StringMiddle
        sys StringLength
        pushs "abc"
        pushb 0
        sys StringRight
        sys StringLength
    )")),
              "ababcdefdefbcdef");
    EXPECT_EQ(Stack(), (std::vector<int64_t>{0, 0}));
}

TEST_F(StringTest, ANegativeCountOrAStartBelowOneIsRefused) {
    ASSERT_TRUE(Load(Program("pushs \"abc\"\npushi -1\nsys StringLeft")));
    ExpectError(RunTimeError::InvalidArgument);
    ASSERT_TRUE(Load(Program("pushs \"abc\"\npushb 0\npushb 1\nsys StringMiddle")));
    ExpectError(RunTimeError::InvalidArgument);
}

TEST_F(StringTest, StringToNumberReadsTheNumberATextStartsWith) {
    const std::vector<std::pair<const char*, float>> Cases = {
        {"42", 42.0f},    {"  -3.5kg", -3.5f},
        {"+.25", 0.25f},  {"1E3", 1000.0f},
        {"2e-2x", 0.02f}, {"7E", 7.0f},
        {"abc", 0.0f},    {"", 0.0f},
        {"-", 0.0f},      {"1e99", 3.4028234663852886e38f},
    };
    for (const auto& [Text, Value] : Cases) {
        SCOPED_TRACE(Text);
        ASSERT_TRUE(Load(Program(std::string("pushs \"") + Text + "\"\nsys StringToNumber")));
        EXPECT_EQ(RunFor(), BytecodeMachine::State::Ended);
        ASSERT_EQ(Machine->Values().size(), 1u);
        EXPECT_EQ(std::bit_cast<float>(Machine->Values()[0]), Value);
    }
}

}  // namespace
