#include <gtest/gtest.h>

#include "chip/FileStatusTypes.h"
#include "chip/UtilitiesKGUI.h"
#include "support/VirtualClockService.h"

namespace {

using namespace UtilitiesKGUI;

TEST(PinStateConversions, RightOffsetFollowsTheFileFlagOrder) {
    EXPECT_EQ(ToRightOffset(kvOutputLow), 2);
    EXPECT_EQ(ToRightOffset(kvOutputHigh), 3);
    EXPECT_EQ(ToRightOffset(kvInputTristate), 0);
    EXPECT_EQ(ToRightOffset(kvInputPullup), 1);
}

TEST(PinStateConversions, UnknownPinStateHasOffsetZero) {
    EXPECT_EQ(ToRightOffset(4), 0);
    EXPECT_EQ(ToRightOffset(-1), 0);
}

TEST(PinStateConversions, PinStateIsTheInverseOfTheOffset) {
    for (int32_t State : {kvOutputLow, kvOutputHigh, kvInputTristate, kvInputPullup}) {
        EXPECT_EQ(ToPinState(ToRightOffset(State)), State);
    }
    EXPECT_EQ(ToPinState(0), kvInputTristate);
    EXPECT_EQ(ToPinState(1), kvInputPullup);
    EXPECT_EQ(ToPinState(2), kvOutputLow);
    EXPECT_EQ(ToPinState(3), kvOutputHigh);
}

TEST(PinStateConversions, UnknownOffsetGivesTristate) {
    EXPECT_EQ(ToPinState(4), kvInputTristate);
    EXPECT_EQ(ToPinState(-1), kvInputTristate);
}

TEST(PinStateConversions, PinStateTextIsTheConstantsName) {
    EXPECT_EQ(CStrPinState(kvOutputLow), QStringLiteral("kvOutputLow"));
    EXPECT_EQ(CStrPinState(kvOutputHigh), QStringLiteral("kvOutputHigh"));
    EXPECT_EQ(CStrPinState(kvInputTristate), QStringLiteral("kvInputTristate"));
    EXPECT_EQ(CStrPinState(kvInputPullup), QStringLiteral("kvInputPullup"));
    EXPECT_EQ(CStrPinState(9), QStringLiteral("Illegal_Type"));
}

TEST(FileStatusText, IsTheStatusNameOrIllegalType) {
    EXPECT_EQ(CStrFileStatus(fstOK), QStringLiteral("fstOK"));
    EXPECT_EQ(CStrFileStatus(fstIllegalName), QStringLiteral("fstIllegalName"));
    EXPECT_EQ(CStrFileStatus(fstNonexistant), QStringLiteral("fstNonexistant"));
    EXPECT_EQ(CStrFileStatus(fstWrongSize), QStringLiteral("fstWrongSize"));
    EXPECT_EQ(CStrFileStatus(fstReadOnly), QStringLiteral("fstReadOnly"));
    EXPECT_EQ(CStrFileStatus(fstUndefined), QStringLiteral("fstUndefined"));
    EXPECT_EQ(CStrFileStatus(6), QStringLiteral("*** Illegal type ***"));
    EXPECT_EQ(static_cast<int>(fstOK), 0);
    EXPECT_EQ(static_cast<int>(fstUndefined), 5);
}

TEST(KGUIHelpers, AnyNonZeroNumberIsTrue) {
    EXPECT_FALSE(IntegerToBoolean(0));
    EXPECT_TRUE(IntegerToBoolean(1));
    EXPECT_TRUE(IntegerToBoolean(-1));
    EXPECT_TRUE(IntegerToBoolean(-32768));
}

TEST(KGUIHelpers, SleepGoesThroughTheClockService) {
    auto Virtual = std::make_unique<VirtualClockService>();
    VirtualClockService* Clock = Virtual.get();
    ClockService::Install(std::move(Virtual));
    UtilitiesKGUI::Sleep(150);
    EXPECT_EQ(Clock->NowMs, 150);
    EXPECT_EQ(Clock->SleepCalls, 1);
    ClockService::Install(std::make_unique<VirtualClockService>());
}

}  // namespace
