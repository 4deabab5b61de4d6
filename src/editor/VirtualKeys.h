#pragma once

#include <Qt>
#include <cstdint>

// The key codes the edit box's key table is written in: the classic virtual
// key numbers of the keyboards the table was made for. Qt names a key by the
// character it makes, so a Qt key is turned into one of these through an
// explicit table; Qt's own numbers must never be taken for them (Qt's "-" is
// 45, which is the Insert key here).
namespace VirtualKeys {

constexpr int32_t Backspace = 8;
constexpr int32_t Tab = 9;
constexpr int32_t Clear = 12;
constexpr int32_t Return = 13;
constexpr int32_t ShiftKey = 16;
constexpr int32_t ControlKey = 17;
constexpr int32_t Menu = 18;
constexpr int32_t Pause = 19;
constexpr int32_t CapsLock = 20;
constexpr int32_t Escape = 27;
constexpr int32_t Space = 32;
constexpr int32_t PageUp = 33;
constexpr int32_t PageDown = 34;
constexpr int32_t End = 35;
constexpr int32_t Home = 36;
constexpr int32_t Left = 37;
constexpr int32_t Up = 38;
constexpr int32_t Right = 39;
constexpr int32_t Down = 40;
constexpr int32_t Print = 42;
constexpr int32_t Snapshot = 44;
constexpr int32_t Insert = 45;
constexpr int32_t Delete = 46;
constexpr int32_t Help = 47;
constexpr int32_t Digit0 = 48;  // to 57
constexpr int32_t A = 65;       // to 90
constexpr int32_t C = 67;
constexpr int32_t V = 86;
constexpr int32_t X = 88;
constexpr int32_t LeftWindows = 91;
constexpr int32_t Apps = 93;
constexpr int32_t Numpad0 = 96;  // to 105
constexpr int32_t Multiply = 106;
constexpr int32_t Add = 107;
constexpr int32_t Subtract = 109;
constexpr int32_t Decimal = 110;
constexpr int32_t Divide = 111;
constexpr int32_t F1 = 112;  // to F24, 135
constexpr int32_t NumLock = 144;
constexpr int32_t ScrollLock = 145;
constexpr int32_t Semicolon = 186;     // ; :
constexpr int32_t Plus = 187;          // = +
constexpr int32_t Comma = 188;         // , <
constexpr int32_t Minus = 189;         // - _
constexpr int32_t Period = 190;        // . >
constexpr int32_t Slash = 191;         // / ?
constexpr int32_t Grave = 192;         // ` ~
constexpr int32_t BracketLeft = 219;   // [ {
constexpr int32_t Backslash = 220;     // \ |
constexpr int32_t BracketRight = 221;  // ] }
constexpr int32_t Quote = 222;         // ' "
// A key the table has no number for; the key table never acts on it.
constexpr int32_t Unknown = 255;

// The code of a Qt key; keypad keys (KeypadModifier) get the keypad's codes.
// Never 0: a code of 0 after the key table means the table handled the key.
int32_t Of(int QtKey, Qt::KeyboardModifiers Modifiers);

// The shift bits of the key table: 1 shift, 2 control, 4 alt.
int32_t ShiftOf(Qt::KeyboardModifiers Modifiers);

}  // namespace VirtualKeys
