#include <gtest/gtest.h>

#include <QKeySequence>
#include <QMetaEnum>

#include "editor/VirtualKeys.h"

namespace {

struct KeyCase {
    Qt::Key Key;
    Qt::KeyboardModifiers Modifiers;
    int32_t Code;
};

TEST(VirtualKeys, KeysAreGivenTheCodesOfTheEditBoxsTable) {
    const KeyCase Cases[] = {
        {Qt::Key_A, Qt::NoModifier, 65},
        {Qt::Key_Z, Qt::ShiftModifier, 90},
        {Qt::Key_0, Qt::NoModifier, 48},
        {Qt::Key_9, Qt::NoModifier, 57},
        {Qt::Key_Backspace, Qt::NoModifier, 8},
        {Qt::Key_Tab, Qt::NoModifier, 9},
        {Qt::Key_Backtab, Qt::ShiftModifier, 9},
        {Qt::Key_Return, Qt::NoModifier, 13},
        {Qt::Key_Enter, Qt::KeypadModifier, 13},
        {Qt::Key_Escape, Qt::NoModifier, 27},
        {Qt::Key_Space, Qt::NoModifier, 32},
        {Qt::Key_PageUp, Qt::NoModifier, 33},
        {Qt::Key_PageDown, Qt::NoModifier, 34},
        {Qt::Key_End, Qt::NoModifier, 35},
        {Qt::Key_Home, Qt::NoModifier, 36},
        {Qt::Key_Left, Qt::NoModifier, 37},
        {Qt::Key_Up, Qt::NoModifier, 38},
        {Qt::Key_Right, Qt::NoModifier, 39},
        {Qt::Key_Down, Qt::NoModifier, 40},
        {Qt::Key_Insert, Qt::NoModifier, 45},
        {Qt::Key_Insert, Qt::KeypadModifier, 45},
        {Qt::Key_Delete, Qt::NoModifier, 46},
        {Qt::Key_Delete, Qt::KeypadModifier, 46},
        {Qt::Key_0, Qt::KeypadModifier, 96},
        {Qt::Key_9, Qt::KeypadModifier, 105},
        {Qt::Key_Asterisk, Qt::KeypadModifier, 106},
        {Qt::Key_Plus, Qt::KeypadModifier, 107},
        {Qt::Key_Minus, Qt::KeypadModifier, 109},
        {Qt::Key_Period, Qt::KeypadModifier, 110},
        {Qt::Key_Slash, Qt::KeypadModifier, 111},
        {Qt::Key_F1, Qt::NoModifier, 112},
        {Qt::Key_F12, Qt::NoModifier, 123},
        {Qt::Key_Semicolon, Qt::NoModifier, 186},
        {Qt::Key_Equal, Qt::NoModifier, 187},
        {Qt::Key_Plus, Qt::ShiftModifier, 187},
        {Qt::Key_Comma, Qt::NoModifier, 188},
        {Qt::Key_Minus, Qt::NoModifier, 189},
        {Qt::Key_Underscore, Qt::ShiftModifier, 189},
        {Qt::Key_Period, Qt::NoModifier, 190},
        {Qt::Key_Period, Qt::ShiftModifier, 190},
        {Qt::Key_Slash, Qt::NoModifier, 191},
        {Qt::Key_QuoteLeft, Qt::NoModifier, 192},
        {Qt::Key_BracketLeft, Qt::NoModifier, 219},
        {Qt::Key_Backslash, Qt::NoModifier, 220},
        {Qt::Key_BracketRight, Qt::NoModifier, 221},
        {Qt::Key_Apostrophe, Qt::NoModifier, 222},
        {Qt::Key_QuoteDbl, Qt::ShiftModifier, 222},
        {Qt::Key_ParenLeft, Qt::ShiftModifier, 57},
    };
    for (const KeyCase& Case : Cases) {
        EXPECT_EQ(VirtualKeys::Of(Case.Key, Case.Modifiers), Case.Code)
            << QKeySequence(Case.Key).toString().toStdString();
    }
}

TEST(VirtualKeys, OnlyInsertAndDeleteGetTheirCodesAndNoKeyGetsZero) {
    const QMetaEnum Keys = QMetaEnum::fromType<Qt::Key>();
    ASSERT_GT(Keys.keyCount(), 100);
    for (int Index = 0; Index < Keys.keyCount(); ++Index) {
        const int Key = Keys.value(Index);
        for (const Qt::KeyboardModifiers Modifiers :
             {Qt::KeyboardModifiers(Qt::NoModifier), Qt::KeyboardModifiers(Qt::ShiftModifier),
              Qt::KeyboardModifiers(Qt::KeypadModifier)}) {
            const int32_t Code = VirtualKeys::Of(Key, Modifiers);
            EXPECT_NE(Code, 0) << Keys.key(Index);
            if (Key != Qt::Key_Insert) {
                EXPECT_NE(Code, VirtualKeys::Insert) << Keys.key(Index);
            }
            if (Key != Qt::Key_Delete) {
                EXPECT_NE(Code, VirtualKeys::Delete) << Keys.key(Index);
            }
            // The letters the table acts on with Control come from those letters alone.
            for (const Qt::Key Letter : {Qt::Key_A, Qt::Key_C, Qt::Key_V, Qt::Key_X}) {
                if (Key != Letter) {
                    EXPECT_NE(Code, VirtualKeys::Of(Letter, Qt::NoModifier)) << Keys.key(Index);
                }
            }
        }
    }
}

TEST(VirtualKeys, ShiftBitsAreShiftControlAndAlt) {
    EXPECT_EQ(VirtualKeys::ShiftOf(Qt::NoModifier), 0);
    EXPECT_EQ(VirtualKeys::ShiftOf(Qt::ShiftModifier), 1);
    EXPECT_EQ(VirtualKeys::ShiftOf(Qt::ControlModifier), 2);
    EXPECT_EQ(VirtualKeys::ShiftOf(Qt::AltModifier), 4);
    EXPECT_EQ(VirtualKeys::ShiftOf(Qt::ShiftModifier | Qt::ControlModifier | Qt::KeypadModifier),
              3);
}

}  // namespace
