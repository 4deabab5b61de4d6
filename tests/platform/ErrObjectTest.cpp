#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "PlatformTestSupport.h"
#include "platform/ErrObject.h"

namespace {

class ErrObjectTest : public ::testing::Test {
  protected:
    void SetUp() override { Err().Clear(); }
    void TearDown() override { Err().Clear(); }
};

TEST_F(ErrObjectTest, ClearEmptiesNumberAndDescription) {
    Err().Number = 5;
    Err().Description = QStringLiteral("Bad call");
    Err().Clear();
    EXPECT_EQ(Err().Number, 0);
    EXPECT_TRUE(Err().Description.isEmpty());
}

TEST_F(ErrObjectTest, RaiseErrorSetsTheCurrentErrorAndThrows) {
    try {
        RaiseError(5, QStringLiteral("Bad call"));
        FAIL() << "RaiseError returned";
    } catch (const RuntimeError& Error) {
        EXPECT_EQ(Error.Number(), 5);
        EXPECT_EQ(Error.Description(), QStringLiteral("Bad call"));
        EXPECT_STREQ(Error.what(), "Bad call");
    }
    EXPECT_EQ(Err().Number, 5);
    EXPECT_EQ(Err().Description, QStringLiteral("Bad call"));
}

TEST_F(ErrObjectTest, TakeCurrentExceptionReadsARuntimeError) {
    try {
        throw RuntimeError(53, QStringLiteral("File not found"));
    } catch (...) {
        TakeCurrentException();
    }
    EXPECT_EQ(Err().Number, 53);
    EXPECT_EQ(Err().Description, QStringLiteral("File not found"));
}

TEST_F(ErrObjectTest, TakeCurrentExceptionGivesOutOfMemoryNumberSeven) {
    try {
        throw std::bad_alloc();
    } catch (...) {
        TakeCurrentException();
    }
    EXPECT_EQ(Err().Number, 7);
    EXPECT_EQ(Err().Description, QStringLiteral("Out of memory"));
}

TEST_F(ErrObjectTest, TakeCurrentExceptionGivesSubscriptOutOfRangeNumberNine) {
    try {
        throw std::out_of_range("index");
    } catch (...) {
        TakeCurrentException();
    }
    EXPECT_EQ(Err().Number, 9);
    EXPECT_EQ(Err().Description, QStringLiteral("Subscript out of range"));
}

TEST_F(ErrObjectTest, TakeCurrentExceptionOfAnUnknownKindHasNoText) {
    Err().Number = 5;
    Err().Description = QStringLiteral("left over");
    try {
        throw 42;
    } catch (...) {
        TakeCurrentException();
    }
    EXPECT_EQ(Err().Number, 0);
    EXPECT_TRUE(Err().Description.isEmpty());
}

}  // namespace
