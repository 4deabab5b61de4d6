#pragma once

#include <cstdint>
#include <string>

#include "compiler/Compiler.h"

// A value known when compiling: a constant, a literal, or what an expression
// of them gives. The arithmetic follows the machine's rules to the bit, so a
// value worked out here is the value the program would have computed; where
// the machine would stop with an error, nothing is worked out.
namespace KavlinCompiler {

struct ConstantValue {
    ValueKind Type = ValueKind::Integer;
    int64_t Whole = 0;  // whole types and Boolean (-1 or 0), as the number they mean
    float Single = 0;
    std::string Text;

    static ConstantValue OfWhole(ValueKind Type, int64_t Value);
    static ConstantValue OfSingle(float Value);
    static ConstantValue OfText(std::string Value);
    static ConstantValue OfBoolean(bool Value);

    // The machine's conv: false where it would overflow. Numbers do not become
    // texts here (that is CStr's, see ToText).
    bool ConvertTo(ValueKind To, ConstantValue& Result) const;
    // Whether the value is the same after a conversion to the type: no
    // rounding, no overflow.
    bool FitsExactly(ValueKind To) const;
    // The text the machine's str makes, cut at StringSize.
    std::string ToText(int StringSize) const;
    // The 32 bits of the machine's slot for it.
    uint32_t Slot() const;
};

// An operator of the language on two values of the same type (Type); false
// where the machine would stop (overflow, division by zero) or the operator
// does not apply.
bool FoldBinary(const std::string& Operator, const ConstantValue& Left, const ConstantValue& Right,
                int StringSize, ConstantValue& Result);
bool FoldUnary(const std::string& Operator, const ConstantValue& Operand, ConstantValue& Result);

}  // namespace KavlinCompiler
