#include <gtest/gtest.h>

#include <ostream>

#include "frame/FormGeometry.h"

namespace {

FormGeometry Make(int32_t Top, int32_t Left) {
    FormGeometry Geometry;
    Geometry.Top = Top;
    Geometry.Left = Left;
    Geometry.Width = 6950;
    Geometry.Height = 6500;
    return Geometry;
}

struct ClampCase {
    int32_t Top;
    int32_t Left;
    int32_t ExpectedTop;
    int32_t ExpectedLeft;
};

std::ostream& operator<<(std::ostream& Stream, const ClampCase& Case) {
    return Stream << '(' << Case.Top << ", " << Case.Left << ") -> (" << Case.ExpectedTop << ", "
                  << Case.ExpectedLeft << ')';
}

class ClampNegativeGives : public ::testing::TestWithParam<ClampCase> {};

TEST_P(ClampNegativeGives, TopFirstAndLeftOnlyWhenTopWasNotNegative) {
    FormGeometry Geometry = Make(GetParam().Top, GetParam().Left);
    Geometry.ClampNegative();
    EXPECT_EQ(Geometry.Top, GetParam().ExpectedTop);
    EXPECT_EQ(Geometry.Left, GetParam().ExpectedLeft);
    EXPECT_EQ(Geometry.Width, 6950);
    EXPECT_EQ(Geometry.Height, 6500);
}

INSTANTIATE_TEST_SUITE_P(Cases, ClampNegativeGives,
                         ::testing::Values(ClampCase{-10, -10, 0, -10}, ClampCase{-10, 50, 0, 50},
                                           ClampCase{10, -10, 10, 0}, ClampCase{0, -1, 0, 0},
                                           ClampCase{10, 20, 10, 20}));

struct ScreenCase {
    int32_t Top;
    int32_t Left;
    int32_t ScreenWidth;
    int32_t ScreenHeight;
    int32_t ExpectedTop;
    int32_t ExpectedLeft;
};

std::ostream& operator<<(std::ostream& Stream, const ScreenCase& Case) {
    return Stream << '(' << Case.Top << ", " << Case.Left << ") on " << Case.ScreenWidth << 'x'
                  << Case.ScreenHeight << " -> (" << Case.ExpectedTop << ", " << Case.ExpectedLeft
                  << ')';
}

class ClampToScreenGives : public ::testing::TestWithParam<ScreenCase> {};

TEST_P(ClampToScreenGives, ZeroBeyondTheScreenLess567Twips) {
    const ScreenCase& Case = GetParam();
    FormGeometry Geometry = Make(Case.Top, Case.Left);
    Geometry.ClampToScreen(Case.ScreenWidth, Case.ScreenHeight);
    EXPECT_EQ(Geometry.Top, Case.ExpectedTop);
    EXPECT_EQ(Geometry.Left, Case.ExpectedLeft);
}

INSTANTIATE_TEST_SUITE_P(Cases, ClampToScreenGives,
                         ::testing::Values(ScreenCase{30000, 100, 16000, 12000, 0, 100},
                                           ScreenCase{11433, 100, 16000, 12000, 11433, 100},
                                           ScreenCase{11434, 100, 16000, 12000, 0, 100},
                                           ScreenCase{100, 15433, 16000, 12000, 100, 15433},
                                           ScreenCase{100, 15434, 16000, 12000, 100, 0},
                                           ScreenCase{20000, 20000, 16000, 12000, 0, 0},
                                           ScreenCase{-10, -10, 16000, 12000, -10, -10}));

}  // namespace
