#include "compiler/ConstantValue.h"

#include <bit>
#include <cmath>

#include "compiler/TypeNames.h"
#include "machine/NumberText.h"

namespace KavlinCompiler {

ConstantValue ConstantValue::OfWhole(ValueKind Type, int64_t Value) {
    ConstantValue C;
    C.Type = Type;
    C.Whole = Value;
    return C;
}

ConstantValue ConstantValue::OfSingle(float Value) {
    ConstantValue C;
    C.Type = ValueKind::Single;
    C.Single = Value;
    return C;
}

ConstantValue ConstantValue::OfText(std::string Value) {
    ConstantValue C;
    C.Type = ValueKind::String;
    C.Text = std::move(Value);
    return C;
}

ConstantValue ConstantValue::OfBoolean(bool Value) {
    return OfWhole(ValueKind::Boolean, Value ? -1 : 0);
}

bool ConstantValue::ConvertTo(ValueKind To, ConstantValue& Result) const {
    if (Type == To) {
        Result = *this;
        return true;
    }
    if (Type == ValueKind::String || To == ValueKind::String || To == ValueKind::None) {
        return false;
    }
    if (To == ValueKind::Boolean) {
        Result = OfBoolean(Type == ValueKind::Single ? Single != 0.0f : Whole != 0);
        return true;
    }
    if (To == ValueKind::Single) {
        Result = OfSingle(Type == ValueKind::Single ? Single : static_cast<float>(Whole));
        return true;
    }
    int64_t Low = 0;
    int64_t High = 0;
    TypeNames::Range(To, Low, High);
    int64_t Value = Whole;
    if (Type == ValueKind::Single) {
        // To the nearest, a half to the even neighbour, as the machine does.
        const double Rounded = std::nearbyint(static_cast<double>(Single));
        if (!(Rounded >= static_cast<double>(Low) && Rounded <= static_cast<double>(High))) {
            return false;
        }
        Value = static_cast<int64_t>(Rounded);
    }
    if (Value < Low || Value > High) {
        return false;
    }
    Result = OfWhole(To, Value);
    return true;
}

bool ConstantValue::FitsExactly(ValueKind To) const {
    ConstantValue Converted;
    if (!ConvertTo(To, Converted)) {
        return false;
    }
    if (To == ValueKind::Boolean || Type == ValueKind::Boolean) {
        return Type == To;
    }
    if (Type == ValueKind::Single && To != ValueKind::Single) {
        return static_cast<double>(Converted.Whole) == static_cast<double>(Single);
    }
    if (To == ValueKind::Single && Type != ValueKind::Single) {
        return static_cast<int64_t>(static_cast<double>(Converted.Single)) == Whole;
    }
    return true;
}

std::string ConstantValue::ToText(int StringSize) const {
    std::string Out;
    switch (Type) {
        case ValueKind::String:
            Out = Text;
            break;
        case ValueKind::Single:
            Out = NumberText::Single(Single);
            break;
        case ValueKind::Boolean:
            Out = NumberText::Boolean(Whole != 0);
            break;
        default:
            Out = NumberText::Whole(Whole);
            break;
    }
    if (Out.size() > static_cast<size_t>(StringSize)) {
        Out.resize(static_cast<size_t>(StringSize));
    }
    return Out;
}

uint32_t ConstantValue::Slot() const {
    if (Type == ValueKind::Single) {
        return std::bit_cast<uint32_t>(Single);
    }
    return static_cast<uint32_t>(Whole);
}

namespace {

// A whole result in the type's rule: wrapping for the unsigned types of 16 and
// 32 bits, an overflow (false) outside the range for the others.
bool WholeResult(ValueKind Type, int64_t Value, ConstantValue& Result) {
    if (Type == ValueKind::UnsignedInteger) {
        Value &= 0xFFFF;
    } else if (Type == ValueKind::UnsignedLong) {
        Value &= 0xFFFFFFFFLL;
    }
    int64_t Low = 0;
    int64_t High = 0;
    TypeNames::Range(Type, Low, High);
    if (Value < Low || Value > High) {
        return false;
    }
    Result = ConstantValue::OfWhole(Type, Value);
    return true;
}

bool SingleResult(double Value, ConstantValue& Result) {
    const float Narrow = static_cast<float>(Value);
    if (!std::isfinite(Narrow)) {
        return false;
    }
    Result = ConstantValue::OfSingle(Narrow);
    return true;
}

template <typename T>
bool Compare(const std::string& Op, const T& A, const T& B, ConstantValue& Result) {
    bool Outcome = false;
    if (Op == "=") {
        Outcome = A == B;
    } else if (Op == "<>") {
        Outcome = A != B;
    } else if (Op == "<") {
        Outcome = A < B;
    } else if (Op == "<=") {
        Outcome = A <= B;
    } else if (Op == ">") {
        Outcome = A > B;
    } else if (Op == ">=") {
        Outcome = A >= B;
    } else {
        return false;
    }
    Result = ConstantValue::OfBoolean(Outcome);
    return true;
}

// The bits of a whole value as the machine's slot keeps them, back to the
// number they mean in the type.
int64_t FromBits(ValueKind Type, uint32_t Bits) {
    switch (Type) {
        case ValueKind::Byte:
            return Bits & 0xFF;
        case ValueKind::Integer:
            return static_cast<int16_t>(Bits);
        case ValueKind::UnsignedInteger:
            return Bits & 0xFFFF;
        case ValueKind::UnsignedLong:
            return Bits;
        default:
            return static_cast<int32_t>(Bits);
    }
}

}  // namespace

bool FoldBinary(const std::string& Op, const ConstantValue& A, const ConstantValue& B,
                int StringSize, ConstantValue& Result) {
    const ValueKind Type = A.Type;
    if (B.Type != Type) {
        return false;
    }
    if (Type == ValueKind::String) {
        if (Op == "&" || Op == "+") {
            std::string Joined = A.Text + B.Text;
            if (Joined.size() > static_cast<size_t>(StringSize)) {
                Joined.resize(static_cast<size_t>(StringSize));
            }
            Result = ConstantValue::OfText(Joined);
            return true;
        }
        // The machine compares byte by byte, unsigned.
        return Compare(Op, A.Text, B.Text, Result);
    }
    if (Op == "AND" || Op == "OR" || Op == "XOR") {
        if (Type == ValueKind::Single) {
            return false;
        }
        const uint32_t X = A.Slot();
        const uint32_t Y = B.Slot();
        const uint32_t Bits = Op == "AND" ? (X & Y) : Op == "OR" ? (X | Y) : (X ^ Y);
        Result = ConstantValue::OfWhole(Type, FromBits(Type, Bits));
        return true;
    }
    if (Type == ValueKind::Boolean) {
        if (Op == "=" || Op == "<>") {
            return Compare(Op, A.Whole, B.Whole, Result);
        }
        return false;
    }
    if (Type == ValueKind::Single) {
        const double X = A.Single;
        const double Y = B.Single;
        if (Op == "+") {
            return SingleResult(A.Single + B.Single, Result);
        }
        if (Op == "-") {
            return SingleResult(A.Single - B.Single, Result);
        }
        if (Op == "*") {
            return SingleResult(A.Single * B.Single, Result);
        }
        if (Op == "/") {
            return B.Single != 0.0f && SingleResult(A.Single / B.Single, Result);
        }
        if (Op == "^") {
            return SingleResult(static_cast<float>(std::pow(X, Y)), Result);
        }
        return Compare(Op, A.Single, B.Single, Result);
    }
    const int64_t X = A.Whole;
    const int64_t Y = B.Whole;
    if (Op == "+") {
        return WholeResult(Type, X + Y, Result);
    }
    if (Op == "-") {
        return WholeResult(Type, X - Y, Result);
    }
    if (Op == "*") {
        // Unsigned Longs wrap: keep the product inside 64 bits first.
        if (Type == ValueKind::UnsignedLong) {
            return WholeResult(
                Type, static_cast<int64_t>(static_cast<uint32_t>(X) * static_cast<uint32_t>(Y)),
                Result);
        }
        return WholeResult(Type, X * Y, Result);
    }
    if (Op == "\\") {
        return Y != 0 && WholeResult(Type, X / Y, Result);
    }
    if (Op == "MOD") {
        return Y != 0 && WholeResult(Type, X % Y, Result);
    }
    return Compare(Op, X, Y, Result);
}

bool FoldUnary(const std::string& Op, const ConstantValue& A, ConstantValue& Result) {
    if (Op == "-") {
        if (A.Type == ValueKind::Single) {
            Result = ConstantValue::OfSingle(-A.Single);
            return true;
        }
        if (!TypeNames::IsWhole(A.Type)) {
            return false;
        }
        if (A.Type == ValueKind::Byte) {
            return A.Whole == 0 && WholeResult(A.Type, 0, Result);
        }
        return WholeResult(A.Type, -A.Whole, Result);
    }
    if (Op == "NOT") {
        if (A.Type == ValueKind::Single || A.Type == ValueKind::String) {
            return false;
        }
        Result = ConstantValue::OfWhole(A.Type, FromBits(A.Type, ~A.Slot()));
        if (A.Type == ValueKind::Boolean) {
            Result = ConstantValue::OfBoolean(A.Whole == 0);
        }
        return true;
    }
    return false;
}

}  // namespace KavlinCompiler
