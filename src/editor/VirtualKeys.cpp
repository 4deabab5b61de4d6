#include "editor/VirtualKeys.h"

namespace VirtualKeys {

namespace {
// The keypad's digit and operator keys have codes of their own; its other
// keys (Insert, Delete, the arrows with Num Lock off) are the main ones.
int32_t KeypadCodeOf(int QtKey) {
    if (QtKey >= Qt::Key_0 && QtKey <= Qt::Key_9) {
        return Numpad0 + (QtKey - Qt::Key_0);
    }
    switch (QtKey) {
        case Qt::Key_Asterisk:
            return Multiply;
        case Qt::Key_Plus:
            return Add;
        case Qt::Key_Minus:
            return Subtract;
        case Qt::Key_Period:
        case Qt::Key_Comma:
            return Decimal;
        case Qt::Key_Slash:
            return Divide;
        default:
            return 0;
    }
}
}  // namespace

int32_t Of(int QtKey, Qt::KeyboardModifiers Modifiers) {
    if ((Modifiers & Qt::KeypadModifier) != 0) {
        if (const int32_t Code = KeypadCodeOf(QtKey); Code != 0) {
            return Code;
        }
    }
    if (QtKey >= Qt::Key_A && QtKey <= Qt::Key_Z) {
        return A + (QtKey - Qt::Key_A);
    }
    if (QtKey >= Qt::Key_0 && QtKey <= Qt::Key_9) {
        return Digit0 + (QtKey - Qt::Key_0);
    }
    if (QtKey >= Qt::Key_F1 && QtKey <= Qt::Key_F24) {
        return F1 + (QtKey - Qt::Key_F1);
    }
    switch (QtKey) {
        case Qt::Key_Backspace:
            return Backspace;
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            return Tab;
        case Qt::Key_Clear:
            return Clear;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return Return;
        case Qt::Key_Shift:
            return ShiftKey;
        case Qt::Key_Control:
            return ControlKey;
        case Qt::Key_Alt:
        case Qt::Key_AltGr:
            return Menu;
        case Qt::Key_Pause:
            return Pause;
        case Qt::Key_CapsLock:
            return CapsLock;
        case Qt::Key_Escape:
            return Escape;
        case Qt::Key_Space:
            return Space;
        case Qt::Key_PageUp:
            return PageUp;
        case Qt::Key_PageDown:
            return PageDown;
        case Qt::Key_End:
            return End;
        case Qt::Key_Home:
            return Home;
        case Qt::Key_Left:
            return Left;
        case Qt::Key_Up:
            return Up;
        case Qt::Key_Right:
            return Right;
        case Qt::Key_Down:
            return Down;
        case Qt::Key_Print:
            return Snapshot;
        case Qt::Key_Insert:
            return Insert;
        case Qt::Key_Delete:
            return Delete;
        case Qt::Key_Help:
            return Help;
        case Qt::Key_Meta:
            return LeftWindows;
        case Qt::Key_Menu:
            return Apps;
        case Qt::Key_NumLock:
            return NumLock;
        case Qt::Key_ScrollLock:
            return ScrollLock;
        // A shifted digit is its digit's key, as on the keyboards the table knows.
        case Qt::Key_ParenRight:
            return Digit0;
        case Qt::Key_Exclam:
            return Digit0 + 1;
        case Qt::Key_At:
            return Digit0 + 2;
        case Qt::Key_NumberSign:
            return Digit0 + 3;
        case Qt::Key_Dollar:
            return Digit0 + 4;
        case Qt::Key_Percent:
            return Digit0 + 5;
        case Qt::Key_AsciiCircum:
            return Digit0 + 6;
        case Qt::Key_Ampersand:
            return Digit0 + 7;
        case Qt::Key_Asterisk:
            return Digit0 + 8;
        case Qt::Key_ParenLeft:
            return Digit0 + 9;
        case Qt::Key_Semicolon:
        case Qt::Key_Colon:
            return Semicolon;
        case Qt::Key_Equal:
        case Qt::Key_Plus:
            return Plus;
        case Qt::Key_Comma:
        case Qt::Key_Less:
            return Comma;
        case Qt::Key_Minus:
        case Qt::Key_Underscore:
            return Minus;
        case Qt::Key_Period:
        case Qt::Key_Greater:
            return Period;
        case Qt::Key_Slash:
        case Qt::Key_Question:
            return Slash;
        case Qt::Key_QuoteLeft:
        case Qt::Key_AsciiTilde:
            return Grave;
        case Qt::Key_BracketLeft:
        case Qt::Key_BraceLeft:
            return BracketLeft;
        case Qt::Key_Backslash:
        case Qt::Key_Bar:
            return Backslash;
        case Qt::Key_BracketRight:
        case Qt::Key_BraceRight:
            return BracketRight;
        case Qt::Key_Apostrophe:
        case Qt::Key_QuoteDbl:
            return Quote;
        default:
            return Unknown;
    }
}

int32_t ShiftOf(Qt::KeyboardModifiers Modifiers) {
    return ((Modifiers & Qt::ShiftModifier) ? 1 : 0) | ((Modifiers & Qt::ControlModifier) ? 2 : 0) |
           ((Modifiers & Qt::AltModifier) ? 4 : 0);
}

}  // namespace VirtualKeys
