#include "compiler/CodeGenerator.h"

#include <algorithm>
#include <bit>
#include <map>
#include <memory>
#include <set>

#include "compiler/ConstantValue.h"
#include "compiler/TypeNames.h"
#include "machine/BytecodeImage.h"
#include "machine/LibraryCalls.h"

namespace KavlinCompiler {

namespace {

using namespace Opcodes;
using TypeNames::IsNumeric;
using TypeNames::IsWhole;

struct Failure {};

struct Variable {
    enum class Where : uint8_t { Global, Local, Reference, Persistent };
    std::string Name;
    Span At;
    int Module = -1;
    bool Public = false;
    Where Place = Where::Global;
    int32_t Address = 0;  // RAM address, frame offset or EEPROM address
    ValueKind Type = ValueKind::Integer;
    int Dimensions = 0;
    int32_t Low[2] = {0, 0};
    int32_t High[2] = {0, 0};
    bool Used = false;
    bool Hidden = false;  // a parameter, a result or a temporary: never warned about
    int ElementSize = 0;
    int TotalSize = 0;
};

struct Constant {
    std::string Name;
    Span At;
    int Module = -1;
    bool Public = false;
    const ConstantDeclaration* Tree = nullptr;
    bool Known = false;
    bool Working = false;
    ConstantValue Value;
};

struct ProcedureEntry {
    std::string Name;
    int Module = -1;
    bool Public = true;
    const Procedure* Tree = nullptr;
    const LibraryProcedure* Library = nullptr;
    int Label = -1;
    bool IsFunction = false;
    ValueKind Result = ValueKind::None;
    std::vector<ValueKind> Types;
    std::vector<bool> ByRef;
};

enum class Builtin : uint8_t { None, Convert, Text, Absolute, Root };

struct BuiltinInfo {
    const char* Name;
    Builtin Kind;
    ValueKind To;
};

constexpr BuiltinInfo Builtins[] = {
    {"CByte", Builtin::Convert, ValueKind::Byte},
    {"CInt", Builtin::Convert, ValueKind::Integer},
    {"CUInt", Builtin::Convert, ValueKind::UnsignedInteger},
    {"CLng", Builtin::Convert, ValueKind::Long},
    {"CULng", Builtin::Convert, ValueKind::UnsignedLong},
    {"CSng", Builtin::Convert, ValueKind::Single},
    {"CBool", Builtin::Convert, ValueKind::Boolean},
    {"CStr", Builtin::Text, ValueKind::String},
    {"Abs", Builtin::Absolute, ValueKind::None},
    {"Sqr", Builtin::Root, ValueKind::Single},
};

const BuiltinInfo* FindBuiltin(const std::string& Upper) {
    for (const BuiltinInfo& Each : Builtins) {
        if (Upper == UpperCase(Each.Name)) {
            return &Each;
        }
    }
    return nullptr;
}

// The function that converts to a type, for messages.
std::string ConversionName(ValueKind To) {
    for (const BuiltinInfo& Each : Builtins) {
        if (Each.To == To) {
            return Each.Name;
        }
    }
    return "CStr";
}

std::string Article(ValueKind Type) {
    const std::string Name = TypeNames::Name(Type);
    return (Name[0] == 'I' || Name[0] == 'U' ? "an " : "a ") + Name;
}

bool Widens(ValueKind From, ValueKind To) {
    switch (From) {
        case ValueKind::Byte:
            return IsNumeric(To);
        case ValueKind::Integer:
            return To == ValueKind::Long || To == ValueKind::Single;
        case ValueKind::UnsignedInteger:
            return To == ValueKind::Long || To == ValueKind::UnsignedLong ||
                   To == ValueKind::Single;
        case ValueKind::Long:
        case ValueKind::UnsignedLong:
            return To == ValueKind::Single;
        default:
            return false;
    }
}

// The smallest whole type that holds both; Long where none does.
ValueKind WiderWhole(ValueKind A, ValueKind B) {
    if (A == B) {
        return A;
    }
    for (const ValueKind Each : {ValueKind::Byte, ValueKind::Integer, ValueKind::UnsignedInteger,
                                 ValueKind::Long, ValueKind::UnsignedLong}) {
        if ((A == Each || Widens(A, Each)) && (B == Each || Widens(B, Each))) {
            return Each;
        }
    }
    return ValueKind::Long;
}

// The machine's load and store variants by type: b z i u w, and b z h w.
int LoadVariant(ValueKind Type) {
    switch (Type) {
        case ValueKind::Byte:
            return 0;
        case ValueKind::Boolean:
            return 1;
        case ValueKind::Integer:
            return 2;
        case ValueKind::UnsignedInteger:
            return 3;
        default:
            return 4;
    }
}
int StoreVariant(ValueKind Type) {
    switch (Type) {
        case ValueKind::Byte:
            return 0;
        case ValueKind::Boolean:
            return 1;
        case ValueKind::Integer:
        case ValueKind::UnsignedInteger:
            return 2;
        default:
            return 3;
    }
}

uint8_t ConditionOperand(const std::string& Op) {
    if (Op == "=") return ConditionEqual;
    if (Op == "<>") return ConditionNotEqual;
    if (Op == "<") return ConditionLess;
    if (Op == "<=") return ConditionLessOrEqual;
    if (Op == ">") return ConditionGreater;
    return ConditionGreaterOrEqual;
}

bool IsComparison(const std::string& Op) {
    return Op == "=" || Op == "<>" || Op == "<" || Op == "<=" || Op == ">" || Op == ">=";
}

uint8_t CompareOpcode(const std::string& Op, ValueKind Type) {
    const int Index = static_cast<int>(Type);
    const uint8_t Base = Op == "="    ? EQ_B
                         : Op == "<>" ? NE_B
                         : Op == "<"  ? LT_B
                         : Op == "<=" ? LE_B
                         : Op == ">"  ? GT_B
                                      : GE_B;
    return static_cast<uint8_t>(Base + Index);
}

struct LoopContext {
    bool IsFor;
    int ExitLabel;
};

class Generator {
  public:
    Generator(const std::vector<ModuleTree>& Modules, const LibraryDeclarations& Library,
              const CompileOptions& Options, GeneratedProgram& Program, Diagnostic& Error)
        : Modules_(Modules),
          Library_(Library),
          Options_(Options),
          P_(Program),
          Error_(Error),
          Code_(Program.Code) {}

    void Run() {
        Declare();
        for (size_t M = 0; M < Modules_.size(); ++M) {
            Module_ = static_cast<int>(M);
            const size_t From = Code_.Bytes.size();
            for (const Procedure& Each : Modules_[M].Procedures) {
                GenerateProcedure(Each);
            }
            P_.ModuleCode.emplace_back(From, Code_.Bytes.size());
        }
        Module_ = -1;
        if (!Code_.Resolve()) {
            Fail(Span(), 399, "Internal error: a jump to a place that was never made");
        }
        for (const auto& Each : AllVariables_) {
            if (!Each->Used && !Each->Hidden) {
                Warn(Each->Module, Each->At, 901,
                     "The variable " + Each->Name +
                         " is declared but never used: remove it or use it");
            }
        }
        std::stable_sort(
            P_.Warnings.begin(), P_.Warnings.end(), [](const Diagnostic& A, const Diagnostic& B) {
                return A.ModuleIndex != B.ModuleIndex ? A.ModuleIndex < B.ModuleIndex
                                                      : A.StartPosition < B.StartPosition;
            });
        Symbols();
    }

  private:
    // Diagnostics
    [[noreturn]] void Fail(const Span& At, int Number, const std::string& Message) {
        Error_ = MakeDiagnostic(Module_, At, Number, Message);
        throw Failure();
    }
    void Warn(int Module, const Span& At, int Number, const std::string& Message) {
        P_.Warnings.push_back(MakeDiagnostic(Module, At, Number, Message));
    }

    // Declarations of the whole program, before any code.
    void Declare() {
        for (const LibraryConstant& Each : Library_.Constants) {
            auto C = std::make_unique<Constant>();
            C->Name = Each.Name;
            C->Public = true;
            C->Known = true;
            C->Value = ConstantValue::OfWhole(Each.Type, Each.Value);
            LibraryConstants_[UpperCase(Each.Name)] = C.get();
            AllConstants_.push_back(std::move(C));
        }
        for (const LibraryProcedure& Each : Library_.Procedures) {
            ProcedureEntry Entry;
            Entry.Name = Each.Name;
            Entry.Library = &Each;
            Entry.IsFunction = Each.Result != ValueKind::None;
            Entry.Result = Each.Result;
            for (const LibraryParameter& Parameter : Each.Parameters) {
                Entry.Types.push_back(Parameter.Type);
                Entry.ByRef.push_back(false);
            }
            LibraryProcedures_[UpperCase(Each.Name)] = Entry;
        }
        ModuleNames_.resize(Modules_.size());
        uint32_t RamNext = static_cast<uint32_t>(Options_.RamLow);
        uint32_t PersistentNext = ImageHeader::PersistentBase;
        for (size_t M = 0; M < Modules_.size(); ++M) {
            Module_ = static_cast<int>(M);
            const ModuleTree& Tree = Modules_[M];
            if (Options_.StrictSyntax && !Tree.OptionExplicit) {
                Fail(Span(), 305,
                     "Expected Option Explicit at the top of the module: strict syntax asks "
                     "every module to declare its variables");
            }
            for (const ConstantDeclaration& Each : Tree.Constants) {
                auto C = std::make_unique<Constant>();
                C->Name = Each.Name;
                C->At = Each.At;
                C->Module = Module_;
                C->Public = Each.Public;
                C->Tree = &Each;
                DeclareModuleName(Each.Name, Each.At, Each.Public);
                ModuleConstants_[{Module_, Each.Upper}] = C.get();
                AllConstants_.push_back(std::move(C));
            }
            for (const Procedure& Each : Tree.Procedures) {
                DeclareModuleName(Each.Name, Each.At, Each.Public);
                ProcedureEntry Entry;
                Entry.Name = Each.Name;
                Entry.Module = Module_;
                Entry.Public = Each.Public;
                Entry.Tree = &Each;
                Entry.Label = Code_.NewLabel();
                Entry.IsFunction = Each.IsFunction;
                Entry.Result = Each.Result;
                for (const Declarator& Parameter : Each.Parameters) {
                    Entry.Types.push_back(Parameter.Type);
                    Entry.ByRef.push_back(Parameter.ByRef);
                }
                ModuleProcedures_[{Module_, Each.Upper}] = Entry;
                if (Each.Upper == "MAIN") {
                    if (MainFound_) {
                        Fail(Each.At, 304,
                             "The project has a second Main here: a program starts at one Main "
                             "only");
                    }
                    if (Each.IsFunction || !Each.Parameters.empty()) {
                        Fail(Each.At, 304,
                             "Main must be a Sub with no parameters, as in \"Sub Main()\"");
                    }
                    MainFound_ = true;
                    MainLabel_ = Entry.Label;
                }
            }
        }
        // Constants next, as variables' bounds may use them.
        for (const auto& Each : AllConstants_) {
            if (Each->Tree != nullptr) {
                Module_ = Each->Module;
                Evaluate(*Each);
            }
        }
        for (size_t M = 0; M < Modules_.size(); ++M) {
            Module_ = static_cast<int>(M);
            for (const Declarator& Each : Modules_[M].Variables) {
                DeclareModuleName(Each.Name, Each.At, Each.Public);
                auto V = MakeVariable(Each);
                V->Public = Each.Public;
                if (Each.Persistent) {
                    V->Place = Variable::Where::Persistent;
                    V->Address = static_cast<int32_t>(PersistentNext);
                    PersistentNext += static_cast<uint32_t>(V->TotalSize);
                    if (static_cast<int64_t>(PersistentNext) - 1 > Options_.PersistentHigh) {
                        Fail(Each.At, 503,
                             "Not enough persistent memory for " + Each.Name +
                                 ": the persistent "
                                 "variables need " +
                                 std::to_string(PersistentNext - 32) + " bytes, but the chip has " +
                                 std::to_string(Options_.PersistentHigh - 32 + 1));
                    }
                } else {
                    V->Place = Variable::Where::Global;
                    V->Address = static_cast<int32_t>(RamNext);
                    RamNext += static_cast<uint32_t>(V->TotalSize);
                    if (static_cast<int64_t>(RamNext) - 1 > Options_.RamHigh) {
                        Fail(Each.At, 501,
                             "Not enough RAM for " + Each.Name +
                                 ": the module-level variables need " +
                                 std::to_string(RamNext - static_cast<uint32_t>(Options_.RamLow)) +
                                 " bytes, but the chip has " +
                                 std::to_string(Options_.RamHigh - Options_.RamLow + 1) +
                                 " bytes of RAM for them (" + std::to_string(Options_.RamLow) +
                                 " to " + std::to_string(Options_.RamHigh) + ")");
                    }
                }
                ModuleVariables_[{Module_, Each.Upper}] = V.get();
                Globals_.push_back(V.get());
                AllVariables_.push_back(std::move(V));
            }
        }
        Module_ = -1;
        if (!MainFound_) {
            Fail(Span(), 301,
                 "The project has no Main: expected a \"Sub Main()\" in one module, where the "
                 "program starts");
        }
        PrepareColumn(RamNext);
        if (static_cast<int64_t>(RamNext) - 1 > Options_.RamHigh) {
            Fail(Span(), 501,
                 "Not enough RAM: the module-level variables and the print column of Debug.Print "
                 "need " +
                     std::to_string(RamNext - static_cast<uint32_t>(Options_.RamLow)) +
                     " bytes, but the chip has " +
                     std::to_string(Options_.RamHigh - Options_.RamLow + 1));
        }
        P_.GlobalsEnd = RamNext;
        P_.PersistentSize = static_cast<int32_t>(PersistentNext - ImageHeader::PersistentBase);
    }

    void DeclareModuleName(const std::string& Name, const Span& At, bool Public) {
        const std::string Upper = UpperCase(Name);
        if (ModuleNames_[static_cast<size_t>(Module_)].count(Upper) != 0) {
            Fail(At, 302, "The name " + Name + " is already declared in this module");
        }
        ModuleNames_[static_cast<size_t>(Module_)].insert(Upper);
        if (Public) {
            if (PublicNames_.count(Upper) != 0) {
                Fail(At, 302, "The public name " + Name + " is already declared in another module");
            }
            PublicNames_.insert(Upper);
        }
    }

    std::unique_ptr<Variable> MakeVariable(const Declarator& Each) {
        auto V = std::make_unique<Variable>();
        V->Name = Each.Name;
        V->At = Each.At;
        V->Module = Module_;
        V->Type = Each.Type;
        V->Dimensions = static_cast<int>(Each.Bounds.size());
        V->ElementSize = TypeNames::Size(Each.Type, Options_.StringSize);
        int64_t Count = 1;
        for (size_t D = 0; D < Each.Bounds.size(); ++D) {
            const int64_t Low = BoundValue(*Each.Bounds[D].first);
            const int64_t High = BoundValue(*Each.Bounds[D].second);
            if (Low > High) {
                Fail(Each.Bounds[D].first->At, 308,
                     "The array " + Each.Name + " has its lower bound " + std::to_string(Low) +
                         " above its upper bound " + std::to_string(High));
            }
            V->Low[D] = static_cast<int32_t>(Low);
            V->High[D] = static_cast<int32_t>(High);
            Count *= High - Low + 1;
            if (Count * V->ElementSize > 65535) {
                Fail(Each.At, 501, "The array " + Each.Name + " is larger than any chip's memory");
            }
        }
        V->TotalSize = static_cast<int>(Count * V->ElementSize);
        return V;
    }

    int64_t BoundValue(const Expr& E) {
        ConstantValue Value;
        if (!ConstantOf(E, Value) || !IsWhole(Value.Type) || Value.Whole < -32768 ||
            Value.Whole > 32767) {
            Fail(E.At, 308,
                 "Expected a whole number from -32768 to 32767 known when compiling as an "
                 "array bound (a number or a Const)");
        }
        return Value.Whole;
    }

    void Evaluate(Constant& C) {
        if (C.Known) {
            return;
        }
        if (C.Working || ++ConstantDepth_ > 40) {
            Fail(C.At, 307,
                 "The constant " + C.Name +
                     " is defined through itself, or through too long a "
                     "chain of other constants");
        }
        C.Working = true;
        const int SavedModule = Module_;
        Module_ = C.Module;
        ConstantValue Value;
        if (!ConstantOf(*C.Tree->Value, Value)) {
            Fail(C.Tree->Value->At, 306,
                 "Expected a value known when compiling for the constant " + C.Name +
                     ": numbers, texts, other constants and operators on them");
        }
        if (C.Tree->HasType && Value.Type != C.Tree->Type) {
            ConstantValue Converted;
            if (!Value.FitsExactly(C.Tree->Type) || !Value.ConvertTo(C.Tree->Type, Converted)) {
                Fail(C.Tree->Value->At, 401,
                     "The constant " + C.Name + " is declared " + Article(C.Tree->Type) +
                         ", but its value " + Value.ToText(64) + " is not one");
            }
            Value = Converted;
        }
        Module_ = SavedModule;
        C.Value = Value;
        C.Known = true;
        C.Working = false;
        --ConstantDepth_;
    }

    // Names
    struct Found {
        Variable* Var = nullptr;
        Constant* Const = nullptr;
        const ProcedureEntry* Proc = nullptr;
        const BuiltinInfo* Builtin = nullptr;
    };

    Found Lookup(const std::string& Upper) {
        Found F;
        if (auto It = Locals_.find(Upper); It != Locals_.end()) {
            F.Var = It->second;
            return F;
        }
        if (auto It = LocalConstants_.find(Upper); It != LocalConstants_.end()) {
            F.Const = It->second;
            return F;
        }
        for (int Pass = 0; Pass < 2; ++Pass) {
            for (size_t M = 0; M < Modules_.size(); ++M) {
                const int Module = static_cast<int>(M);
                if ((Pass == 0) != (Module == Module_)) {
                    continue;
                }
                const bool Own = Module == Module_;
                if (auto It = ModuleVariables_.find({Module, Upper});
                    It != ModuleVariables_.end() && (Own || It->second->Public)) {
                    F.Var = It->second;
                    return F;
                }
                if (auto It = ModuleConstants_.find({Module, Upper});
                    It != ModuleConstants_.end() && (Own || It->second->Public)) {
                    F.Const = It->second;
                    Evaluate(*F.Const);
                    return F;
                }
                if (auto It = ModuleProcedures_.find({Module, Upper});
                    It != ModuleProcedures_.end() && (Own || It->second.Public)) {
                    F.Proc = &It->second;
                    return F;
                }
            }
        }
        if ((F.Builtin = FindBuiltin(Upper)) != nullptr) {
            return F;
        }
        if (auto It = LibraryConstants_.find(Upper); It != LibraryConstants_.end()) {
            F.Const = It->second;
            return F;
        }
        if (auto It = LibraryProcedures_.find(Upper); It != LibraryProcedures_.end()) {
            F.Proc = &It->second;
        }
        return F;
    }

    Found Resolve(const Expr& E) {
        // Inside a Function, its own name without arguments is its result.
        if (Procedure_ != nullptr && Procedure_->IsFunction && E.Upper == Procedure_->Upper &&
            !E.HasParentheses) {
            Found F;
            F.Var = Result_;
            return F;
        }
        Found F = Lookup(E.Upper);
        if (F.Var == nullptr && F.Const == nullptr && F.Proc == nullptr && F.Builtin == nullptr) {
            Fail(E.At, 303,
                 "The name " + E.Text +
                     " is not declared: expected a variable, constant or procedure of that "
                     "name; declare variables with Dim");
        }
        if (F.Var != nullptr) {
            F.Var->Used = true;
        }
        return F;
    }

    // Constants: the value of an expression known when compiling.
    bool ConstantOf(const Expr& E, ConstantValue& Value) {
        switch (E.What) {
            case Expr::Kind::Whole:
                Value = ConstantValue::OfWhole(LiteralType(E), E.Whole);
                return true;
            case Expr::Kind::Real:
                Value = ConstantValue::OfSingle(static_cast<float>(E.Real));
                return true;
            case Expr::Kind::Text:
                if (E.Text.size() > static_cast<size_t>(Options_.StringSize)) {
                    return false;
                }
                Value = ConstantValue::OfText(E.Text);
                return true;
            case Expr::Kind::Name: {
                if (E.HasParentheses || !E.Arguments.empty()) {
                    if (const BuiltinInfo* B = FindBuiltin(E.Upper);
                        B != nullptr && B->Kind == Builtin::Convert && E.Arguments.size() == 1 &&
                        Lookup(E.Upper).Builtin != nullptr) {
                        ConstantValue Argument;
                        return ConstantOf(*E.Arguments[0], Argument) &&
                               Argument.ConvertTo(B->To, Value);
                    }
                    return false;
                }
                if (Procedure_ != nullptr && Procedure_->IsFunction &&
                    E.Upper == Procedure_->Upper) {
                    return false;
                }
                const Found F = Lookup(E.Upper);
                if (F.Const == nullptr) {
                    return false;
                }
                Value = F.Const->Value;
                return true;
            }
            case Expr::Kind::Unary: {
                ConstantValue Operand;
                if (!ConstantOf(*E.Right, Operand)) {
                    return false;
                }
                const ValueKind Type = UnaryType(E, Operand.Type, false);
                return Operand.ConvertTo(Type, Operand) && FoldUnary(E.Upper, Operand, Value);
            }
            case Expr::Kind::Binary: {
                ConstantValue Left, Right;
                if (!ConstantOf(*E.Left, Left) || !ConstantOf(*E.Right, Right)) {
                    return false;
                }
                ValueKind Type;
                if (!OperandType(E, Left.Type, Right.Type, &Left, &Right, Type, false)) {
                    return false;
                }
                if (Type == ValueKind::String) {
                    Left = ConstantValue::OfText(Left.ToText(Options_.StringSize));
                    Right = ConstantValue::OfText(Right.ToText(Options_.StringSize));
                } else if (!Left.ConvertTo(Type, Left) || !Right.ConvertTo(Type, Right)) {
                    return false;
                }
                return FoldBinary(E.Upper, Left, Right, Options_.StringSize, Value);
            }
        }
        return false;
    }

    static ValueKind LiteralType(const Expr& E) {
        if (!E.Upper.empty()) {
            return ValueKind::Boolean;  // True, False
        }
        if (E.Whole >= -32768 && E.Whole <= 32767) {
            return ValueKind::Integer;
        }
        if (E.Whole <= 2147483647LL) {
            return ValueKind::Long;
        }
        return ValueKind::UnsignedLong;
    }

    // Types. The checks of the language's rules live here, so that an
    // expression is judged once, before any code for it.
    ValueKind UnaryType(const Expr& E, ValueKind Operand, bool Report) {
        if (E.Upper == "-") {
            if (Operand == ValueKind::Byte) return ValueKind::Integer;
            if (Operand == ValueKind::UnsignedInteger || Operand == ValueKind::UnsignedLong)
                return ValueKind::Long;
            if (IsNumeric(Operand)) return Operand;
            if (Operand == ValueKind::Boolean && !Options_.StrictSyntax) return ValueKind::Integer;
            if (Report) {
                Fail(E.At, 404,
                     "Expected a number after '-', found " + Article(Operand) + " value");
            }
            return ValueKind::None;
        }
        if (IsWhole(Operand) || Operand == ValueKind::Boolean) {
            return Operand;
        }
        if (Report) {
            Fail(E.At, 404,
                 "Expected a Boolean or a whole number after Not, found " + Article(Operand) +
                     " value");
        }
        return ValueKind::None;
    }

    bool IsConstantFitting(const Expr& E, ValueKind To) {
        ConstantValue Value;
        return ConstantOf(E, Value) && Value.Type != ValueKind::Boolean &&
               Value.Type != ValueKind::String && Value.FitsExactly(To);
    }

    // The type both operands of a binary operator are brought to (String for &,
    // the compared type for a comparison). False (or a failure when Report)
    // where the operator does not apply.
    bool OperandType(const Expr& E, ValueKind L, ValueKind R, const ConstantValue* LeftValue,
                     const ConstantValue* RightValue, ValueKind& Type, bool Report) {
        const std::string& Op = E.Upper;
        auto Refuse = [&](const std::string& Message) {
            if (Report) {
                Fail(E.At, 404, Message);
            }
            return false;
        };
        if (Op == "&") {
            if (L == ValueKind::None || R == ValueKind::None) {
                return Refuse("Expected values on both sides of '&'");
            }
            Type = ValueKind::String;
            return true;
        }
        if (L == ValueKind::String || R == ValueKind::String) {
            if (L == R && (Op == "+" || IsComparison(Op))) {
                Type = ValueKind::String;
                return true;
            }
            return Refuse("The operator " + Op + " does not join " + Article(L) + " and " +
                          Article(R) + ": join texts with '&', turn numbers into text with CStr");
        }
        if (L == ValueKind::Boolean || R == ValueKind::Boolean) {
            if (L == R && (Op == "AND" || Op == "OR" || Op == "XOR" || Op == "=" || Op == "<>")) {
                Type = ValueKind::Boolean;
                return true;
            }
            if (L == R) {
                return Refuse("The operator " + Op +
                              " does not apply to Booleans: they join with And, Or and Xor and "
                              "compare with = and <>");
            }
            if (Options_.StrictSyntax) {
                return Refuse("The operator " + Op + " mixes " + Article(L) + " and " + Article(R) +
                              ": convert the Boolean with CInt or compare the "
                              "number, as in X <> 0");
            }
            L = L == ValueKind::Boolean ? ValueKind::Integer : L;
            R = R == ValueKind::Boolean ? ValueKind::Integer : R;
        }
        if (!IsNumeric(L) || !IsNumeric(R)) {
            return Refuse("Expected values on both sides of " + Op);
        }
        if (Op == "/" || Op == "^") {
            Type = ValueKind::Single;
            return true;
        }
        // A constant takes the other side's type when it fits it.
        auto Fits = [&](const Expr& Side, const ConstantValue* Known, ValueKind To) {
            if (Known != nullptr) {
                return Known->Type != ValueKind::Boolean && Known->FitsExactly(To);
            }
            return IsConstantFitting(Side, To);
        };
        if (L == R) {
            Type = L;
        } else if (Fits(*E.Right, RightValue, L)) {
            Type = L;
        } else if (Fits(*E.Left, LeftValue, R)) {
            Type = R;
        } else if (L == ValueKind::Single || R == ValueKind::Single) {
            Type = ValueKind::Single;
        } else {
            Type = WiderWhole(L, R);
        }
        if (Op == "\\" || Op == "MOD" || Op == "AND" || Op == "OR" || Op == "XOR") {
            if (Type == ValueKind::Single) {
                if (Op != "\\" && Op != "MOD") {
                    return Refuse("The operator " + Op +
                                  " works on whole numbers and Booleans, not on Singles");
                }
                Type = ValueKind::Long;
            }
        }
        return true;
    }

    ValueKind TypeOf(const Expr& E) {
        if (E.CachedType >= 0) {
            return static_cast<ValueKind>(E.CachedType);
        }
        ValueKind Type = ValueKind::None;
        switch (E.What) {
            case Expr::Kind::Whole:
                Type = LiteralType(E);
                break;
            case Expr::Kind::Real:
                Type = ValueKind::Single;
                break;
            case Expr::Kind::Text:
                if (E.Text.size() > static_cast<size_t>(Options_.StringSize)) {
                    Fail(E.At, 406,
                         "This text has " + std::to_string(E.Text.size()) +
                             " characters, but a String holds at most " +
                             std::to_string(Options_.StringSize) + " (the project's string size)");
                }
                Type = ValueKind::String;
                break;
            case Expr::Kind::Name:
                Type = NameType(E);
                break;
            case Expr::Kind::Unary:
                Type = UnaryType(E, TypeOf(*E.Right), true);
                if (E.Upper == "NOT") {
                    Type = TypeOf(*E.Right);
                }
                break;
            case Expr::Kind::Binary: {
                ValueKind Operands;
                OperandType(E, TypeOf(*E.Left), TypeOf(*E.Right), nullptr, nullptr, Operands, true);
                Type = IsComparison(E.Upper) ? ValueKind::Boolean : Operands;
                break;
            }
        }
        E.CachedType = static_cast<int>(Type);
        return Type;
    }

    ValueKind NameType(const Expr& E) {
        const Found F = Resolve(E);
        if (F.Var != nullptr) {
            CheckIndexes(E, *F.Var);
            return F.Var->Type;
        }
        if (F.Const != nullptr) {
            if (E.HasParentheses) {
                Fail(E.At, 310, E.Text + " is a constant and takes no arguments");
            }
            return F.Const->Value.Type;
        }
        if (F.Builtin != nullptr) {
            if (E.Arguments.size() != 1) {
                Fail(E.At, 312,
                     E.Text + " takes one argument, in parentheses: found " +
                         std::to_string(E.Arguments.size()));
            }
            const ValueKind Argument = TypeOf(*E.Arguments[0]);
            if (F.Builtin->Kind == Builtin::Text) {
                if (Argument == ValueKind::None) {
                    Fail(E.Arguments[0]->At, 401, "Expected a value to turn into text");
                }
                return ValueKind::String;
            }
            if (!IsNumeric(Argument) && Argument != ValueKind::Boolean) {
                Fail(E.Arguments[0]->At, 401,
                     "Expected a number or a Boolean for " + E.Text + ", found " +
                         Article(Argument) + " value");
            }
            if (F.Builtin->Kind == Builtin::Absolute || F.Builtin->Kind == Builtin::Root) {
                if (!IsNumeric(Argument)) {
                    Fail(E.Arguments[0]->At, 401,
                         std::string("Expected a number for ") + F.Builtin->Name + ", found " +
                             Article(Argument) + " value");
                }
            }
            if (F.Builtin->Kind == Builtin::Absolute) {
                return Argument;
            }
            return F.Builtin->To;
        }
        if (!F.Proc->IsFunction) {
            Fail(E.At, 313,
                 E.Text +
                     " is a Sub and gives no value: only a Function can be used in an "
                     "expression");
        }
        CheckArgumentCount(E, *F.Proc);
        return F.Proc->Result;
    }

    void CheckIndexes(const Expr& E, const Variable& V) {
        if (V.Dimensions == 0 && E.HasParentheses) {
            Fail(E.At, 310, V.Name + " is not an array and takes no index in parentheses");
        }
        if (V.Dimensions != 0 && static_cast<int>(E.Arguments.size()) != V.Dimensions) {
            Fail(E.At, 310,
                 V.Name + " is an array of " + std::to_string(V.Dimensions) +
                     (V.Dimensions == 1 ? " dimension" : " dimensions") + ": expected " +
                     std::to_string(V.Dimensions) + (V.Dimensions == 1 ? " index" : " indexes") +
                     " in parentheses, as " + V.Name + (V.Dimensions == 1 ? "(1)" : "(1, 2)") +
                     ", found " + std::to_string(E.Arguments.size()));
        }
        for (const ExprPtr& Index : E.Arguments) {
            const ValueKind Type = TypeOf(*Index);
            if (!IsWhole(Type)) {
                Fail(Index->At, 401,
                     "Expected a whole number as an index of " + V.Name + ", found " +
                         Article(Type) + " value");
            }
        }
    }

    void CheckArgumentCount(const Expr& E, const ProcedureEntry& Proc) {
        if (E.Arguments.size() != Proc.Types.size()) {
            Fail(E.At, 312,
                 Proc.Name + " takes " + std::to_string(Proc.Types.size()) +
                     (Proc.Types.size() == 1 ? " argument" : " arguments") + ", found " +
                     std::to_string(E.Arguments.size()));
        }
    }

    // Implicit conversions: the check, then the code.
    void CheckConversion(const Expr& E, ValueKind From, ValueKind To) {
        if (From == To) {
            return;
        }
        if (From == ValueKind::None) {
            Fail(E.At, 313, "Expected a value here, found a Sub, which gives none");
        }
        if (From == ValueKind::String || To == ValueKind::String) {
            Fail(E.At, 401,
                 "Expected " + Article(To) + " value here, found " + Article(From) +
                     (To == ValueKind::String ? ": turn a number into text with CStr"
                                              : ": a text does not turn into a number"));
        }
        if (Widens(From, To) || IsConstantFitting(E, To)) {
            return;
        }
        const std::string Message = "Converting " + Article(From) + " to " + Article(To) +
                                    " can lose data: write " + ConversionName(To) +
                                    "(...) to convert it on purpose";
        if (Options_.StrictSyntax) {
            Fail(E.At, 402, Message);
        }
        Warn(Module_, E.At, 902, Message);
    }

    void Convert(ValueKind From, ValueKind To) {
        if (From == To) {
            return;
        }
        // These widenings keep the slot's bits as they are.
        const bool Same =
            (From == ValueKind::Byte && To != ValueKind::Single && To != ValueKind::Boolean) ||
            ((From == ValueKind::Integer || From == ValueKind::UnsignedInteger) &&
             To == ValueKind::Long) ||
            (From == ValueKind::UnsignedInteger && To == ValueKind::UnsignedLong);
        if (Same && Options_.Optimize) {
            return;
        }
        Code_.Op(CONV);
        Code_.U8(static_cast<uint8_t>((static_cast<int>(From) << 4) | static_cast<int>(To)));
    }

    // Pushes a value of a type.
    void PushConstant(const ConstantValue& Value) {
        if (Value.Type == ValueKind::String) {
            PushText(Value.Text);
            return;
        }
        if (Value.Type == ValueKind::Single) {
            Code_.Op(PUSHW);
            Code_.W32(Value.Slot());
            return;
        }
        const int64_t N = Value.Whole;
        if (N >= 0 && N <= 255) {
            Code_.Op(PUSHB);
            Code_.U8(static_cast<uint8_t>(N));
        } else if (N >= -32768 && N <= 32767 && Value.Type != ValueKind::UnsignedInteger &&
                   Value.Type != ValueKind::UnsignedLong) {
            Code_.Op(PUSHI);
            Code_.U16(static_cast<uint32_t>(N));
        } else {
            Code_.Op(PUSHW);
            Code_.W32(Value.Slot());
        }
    }

    void PushZero(ValueKind Type) {
        ConstantValue Zero;
        ConstantValue::OfWhole(ValueKind::Byte, 0).ConvertTo(Type, Zero);
        PushConstant(Zero);
    }

    void PushText(const std::string& Text) {
        auto It = Literals_.find(Text);
        uint32_t Offset;
        if (It != Literals_.end()) {
            Offset = It->second;
        } else {
            Offset = static_cast<uint32_t>(P_.Data.size());
            if (Offset > 65535) {
                Fail(Span(), 502, "The program's texts do not fit into the image");
            }
            P_.Data.push_back(static_cast<uint8_t>(Text.size()));
            P_.Data.insert(P_.Data.end(), Text.begin(), Text.end());
            Literals_[Text] = Offset;
        }
        Code_.Op(PUSHS);
        Code_.U16(Offset);
    }

    // Emits E converted to Type, after checking the conversion is allowed.
    void EmitAs(const Expr& E, ValueKind Type) {
        const ValueKind From = TypeOf(E);
        CheckConversion(E, From, Type);
        EmitConverted(E, From, Type);
    }

    // Emits E and converts it, no questions asked (the operands of an operator).
    void EmitConverted(const Expr& E, ValueKind From, ValueKind Type) {
        if (Options_.Optimize) {
            ConstantValue Value;
            ConstantValue Converted;
            if (ConstantOf(E, Value) && Value.ConvertTo(Type, Converted)) {
                PushConstant(Converted);
                return;
            }
        }
        Emit(E);
        if (Type == ValueKind::String && From != ValueKind::String) {
            Code_.Op(STR);
            Code_.U8(static_cast<uint8_t>(From));
            return;
        }
        Convert(From, Type);
    }

    // Emits E in its own type.
    void Emit(const Expr& E) {
        const ValueKind Type = TypeOf(E);
        switch (E.What) {
            case Expr::Kind::Whole:
                PushConstant(ConstantValue::OfWhole(Type, E.Whole));
                return;
            case Expr::Kind::Real:
                PushConstant(ConstantValue::OfSingle(static_cast<float>(E.Real)));
                return;
            case Expr::Kind::Text:
                PushText(E.Text);
                return;
            case Expr::Kind::Name:
                EmitName(E);
                return;
            case Expr::Kind::Unary: {
                const ValueKind Operand = TypeOf(*E.Right);
                EmitConverted(*E.Right, Operand, Type);
                if (E.Upper == "-") {
                    Code_.Op(static_cast<uint8_t>(NEG_B + static_cast<int>(Type)));
                } else if (Type == ValueKind::Boolean) {
                    Code_.Op(NOT_L);
                } else {
                    Code_.Op(static_cast<uint8_t>(NOT_B + static_cast<int>(Type)));
                }
                return;
            }
            case Expr::Kind::Binary:
                EmitBinary(E);
                return;
        }
    }

    void EmitBinary(const Expr& E) {
        const std::string& Op = E.Upper;
        ValueKind Operands;
        OperandType(E, TypeOf(*E.Left), TypeOf(*E.Right), nullptr, nullptr, Operands, true);
        EmitConverted(*E.Left, TypeOf(*E.Left), Operands);
        EmitConverted(*E.Right, TypeOf(*E.Right), Operands);
        const int T = static_cast<int>(Operands);
        if (Operands == ValueKind::String) {
            if (IsComparison(Op)) {
                Code_.Op(SCMP);
                Code_.U8(ConditionOperand(Op));
            } else {
                Code_.Op(CAT);
            }
            return;
        }
        if (Operands == ValueKind::Boolean) {
            if (Op == "=" || Op == "<>") {
                Code_.Op(Op == "=" ? EQ_L : NE_L);
            } else {
                Code_.Op(Op == "AND" ? AND : Op == "OR" ? OR : XOR);
            }
            return;
        }
        if (IsComparison(Op)) {
            Code_.Op(CompareOpcode(Op, Operands));
        } else if (Op == "+") {
            Code_.Op(static_cast<uint8_t>(ADD_B + T));
        } else if (Op == "-") {
            Code_.Op(static_cast<uint8_t>(SUB_B + T));
        } else if (Op == "*") {
            Code_.Op(static_cast<uint8_t>(MUL_B + T));
        } else if (Op == "/" || Op == "\\") {
            Code_.Op(static_cast<uint8_t>(DIV_B + T));
        } else if (Op == "MOD") {
            Code_.Op(static_cast<uint8_t>(MOD_B + T));
        } else if (Op == "^") {
            Code_.Op(POW_F);
        } else if (Op == "AND") {
            Code_.Op(AND);
        } else if (Op == "OR") {
            Code_.Op(OR);
        } else {
            Code_.Op(XOR);
        }
    }

    void EmitName(const Expr& E) {
        const Found F = Resolve(E);
        if (F.Var != nullptr) {
            if (F.Var->Dimensions != 0 && E.Arguments.empty()) {
                Fail(E.At, 310,
                     F.Var->Name + " is an array: expected an index in parentheses, as " +
                         F.Var->Name + "(1)");
            }
            Load(*F.Var, E);
            return;
        }
        if (F.Const != nullptr) {
            PushConstant(F.Const->Value);
            return;
        }
        if (F.Builtin != nullptr) {
            EmitBuiltin(E, *F.Builtin);
            return;
        }
        EmitCall(E, *F.Proc);
    }

    void EmitBuiltin(const Expr& E, const BuiltinInfo& B) {
        const Expr& Argument = *E.Arguments[0];
        const ValueKind From = TypeOf(Argument);
        if (B.Kind == Builtin::Text) {
            EmitConverted(Argument, From, ValueKind::String);
            return;
        }
        if (B.Kind == Builtin::Convert) {
            EmitConverted(Argument, From, B.To);
            return;
        }
        if (B.Kind == Builtin::Root) {
            // A negative number has no root: the power is no number, an overflow.
            EmitConverted(Argument, From, ValueKind::Single);
            PushConstant(ConstantValue::OfSingle(0.5f));
            Code_.Op(POW_F);
            return;
        }
        // Abs: negate a negative number; the unsigned types are their own.
        Emit(Argument);
        if (!TypeNames::IsSigned(From)) {
            return;
        }
        const int Done = Code_.NewLabel();
        Code_.Op(DUP);
        PushZero(From);
        Code_.Op(CompareOpcode(">=", From));
        Code_.Jump(JT, Done);
        Code_.Op(static_cast<uint8_t>(NEG_B + static_cast<int>(From)));
        Code_.Place(Done);
    }

    // Variables
    void PushBase(const Variable& V) {
        switch (V.Place) {
            case Variable::Where::Global:
                Code_.Op(ADDRG);
                Code_.U16(static_cast<uint32_t>(V.Address));
                break;
            case Variable::Where::Local:
                Code_.Op(ADDRL);
                Code_.U16(static_cast<uint32_t>(V.Address));
                break;
            case Variable::Where::Reference:
                Code_.Op(LDL_W);
                Code_.U16(static_cast<uint32_t>(V.Address));
                break;
            case Variable::Where::Persistent:
                Code_.Op(ADDRP);
                Code_.U16(static_cast<uint32_t>(V.Address));
                break;
        }
    }

    // Pushes the reference of a variable or of its element.
    void PushReference(const Variable& V, const Expr* Indexed) {
        PushBase(V);
        if (V.Dimensions == 0 || Indexed == nullptr) {
            return;
        }
        for (const ExprPtr& Index : Indexed->Arguments) {
            EmitConverted(*Index, TypeOf(*Index), ValueKind::Integer);
        }
        if (V.Dimensions == 1) {
            Code_.Op(AREF1);
            Code_.U16(static_cast<uint32_t>(V.Low[0]));
            Code_.U16(static_cast<uint32_t>(V.High[0]));
        } else {
            Code_.Op(AREF2);
            Code_.U16(static_cast<uint32_t>(V.Low[0]));
            Code_.U16(static_cast<uint32_t>(V.High[0]));
            Code_.U16(static_cast<uint32_t>(V.Low[1]));
            Code_.U16(static_cast<uint32_t>(V.High[1]));
        }
        Code_.U16(static_cast<uint32_t>(V.ElementSize));
    }

    void Load(const Variable& V, const Expr& E) {
        if (V.Type == ValueKind::String) {
            PushReference(V, &E);
            Code_.Op(LDS);
            return;
        }
        const int Variant = LoadVariant(V.Type);
        if (V.Dimensions == 0 && V.Place == Variable::Where::Global) {
            Code_.Op(static_cast<uint8_t>(LDG_B + Variant));
            Code_.U16(static_cast<uint32_t>(V.Address));
        } else if (V.Dimensions == 0 && V.Place == Variable::Where::Local) {
            Code_.Op(static_cast<uint8_t>(LDL_B + Variant));
            Code_.U16(static_cast<uint32_t>(V.Address));
        } else {
            PushReference(V, &E);
            Code_.Op(static_cast<uint8_t>(LDI_B + Variant));
        }
    }

    // Stores Value (checked and converted) into the variable or element
    // that Target names.
    void Store(const Variable& V, const Expr* Target, const Expr& Value) {
        if (V.Type == ValueKind::String) {
            EmitAs(Value, ValueKind::String);
            PushReference(V, Target);
            Code_.Op(STS);
            return;
        }
        const int Variant = StoreVariant(V.Type);
        if (V.Dimensions == 0 && V.Place == Variable::Where::Global) {
            EmitAs(Value, V.Type);
            Code_.Op(static_cast<uint8_t>(STG_B + Variant));
            Code_.U16(static_cast<uint32_t>(V.Address));
        } else if (V.Dimensions == 0 && V.Place == Variable::Where::Local) {
            EmitAs(Value, V.Type);
            Code_.Op(static_cast<uint8_t>(STL_B + Variant));
            Code_.U16(static_cast<uint32_t>(V.Address));
        } else {
            PushReference(V, Target);
            EmitAs(Value, V.Type);
            Code_.Op(static_cast<uint8_t>(STI_B + Variant));
        }
    }

    // Stores the value on top of the stack (of the variable's type) into a
    // scalar local.
    void StoreTop(const Variable& V) {
        if (V.Type == ValueKind::String) {
            PushBase(V);
            Code_.Op(STS);
            return;
        }
        Code_.Op(static_cast<uint8_t>(STL_B + StoreVariant(V.Type)));
        Code_.U16(static_cast<uint32_t>(V.Address));
    }

    Variable* Temporary(ValueKind Type, const std::string& Name = "") {
        auto V = std::make_unique<Variable>();
        V->Name = Name;
        V->Module = Module_;
        V->Place = Variable::Where::Local;
        V->Type = Type;
        V->ElementSize = V->TotalSize = TypeNames::Size(Type, Options_.StringSize);
        V->Address = Allocate(V->TotalSize);
        V->Hidden = true;
        V->Used = true;
        Variable* Raw = V.get();
        AllVariables_.push_back(std::move(V));
        return Raw;
    }

    int32_t Allocate(int Size) {
        const int32_t Offset = FrameSize_;
        FrameSize_ += Size;
        if (FrameSize_ > 60000) {
            Fail(Procedure_->At, 501,
                 "The local variables of " + Procedure_->Name + " are larger than any RAM");
        }
        return Offset;
    }

    // Calls
    void EmitCall(const Expr& E, const ProcedureEntry& Proc) {
        CheckArgumentCount(E, Proc);
        for (size_t I = 0; I < E.Arguments.size(); ++I) {
            const Expr& Argument = *E.Arguments[I];
            const ValueKind Type = Proc.Types[I];
            if (!Proc.ByRef[I]) {
                EmitAs(Argument, Type);
                continue;
            }
            // ByRef: a variable of the very type goes by reference; any other
            // value goes through a temporary, as the family does.
            if (Argument.What == Expr::Kind::Name) {
                const Found F = Lookup(Argument.Upper);
                Variable* V = F.Var;
                if (Procedure_ != nullptr && Procedure_->IsFunction &&
                    Argument.Upper == Procedure_->Upper && !Argument.HasParentheses) {
                    V = Result_;
                }
                if (V != nullptr) {
                    V->Used = true;
                    CheckIndexes(Argument, *V);
                    if (V->Dimensions != 0 && Argument.Arguments.empty()) {
                        Fail(Argument.At, 310,
                             "An array cannot be passed as a whole: pass one element, as " +
                                 V->Name + "(1)");
                    }
                    if (V->Type != Type) {
                        Fail(Argument.At, 405,
                             "ByRef argument type mismatch: " + V->Name + " is " +
                                 Article(V->Type) + ", but " + Proc.Name +
                                 " takes its parameter ByRef as " + Article(Type) +
                                 "; pass a variable of that type");
                    }
                    PushReference(*V, &Argument);
                    continue;
                }
            }
            Variable* Temp = Temporary(Type);
            EmitAs(Argument, Type);
            StoreTop(*Temp);
            PushBase(*Temp);
        }
        if (Proc.Library != nullptr) {
            Code_.Op(SYS);
            Code_.U8(Proc.Library->Call);
        } else {
            Code_.Jump(CALL, Proc.Label);
        }
    }

    // Procedures
    void GenerateProcedure(const Procedure& Tree) {
        Procedure_ = &Tree;
        ProcedureEntry& Entry = ModuleProcedures_[{Module_, Tree.Upper}];
        Locals_.clear();
        LocalConstants_.clear();
        LocalConstantStore_.clear();
        FrameSize_ = 0;
        Result_ = nullptr;
        Code_.Place(Entry.Label);
        if (Entry.Label == MainLabel_) {
            P_.Entry = Code_.Here();
        }
        Code_.Op(ENTER);
        const size_t FrameOperand = Code_.Bytes.size();
        Code_.U16(0);
        std::vector<Variable*> Parameters;
        for (const Declarator& Each : Tree.Parameters) {
            Variable* V = DeclareLocal(Each);
            V->Hidden = true;
            if (Each.ByRef) {
                V->Place = Variable::Where::Reference;
                FrameSize_ -= V->TotalSize;
                V->Address = Allocate(4);
            }
            Parameters.push_back(V);
        }
        for (size_t I = Parameters.size(); I-- > 0;) {
            Variable& V = *Parameters[I];
            if (V.Place == Variable::Where::Reference) {
                Code_.Op(STL_W);
                Code_.U16(static_cast<uint32_t>(V.Address));
            } else {
                StoreTop(V);
            }
        }
        if (Tree.IsFunction) {
            Result_ = Temporary(Tree.Result, Tree.Name);
        }
        ExitLabel_ = Code_.NewLabel();
        Loops_.clear();
        GenerateBlock(Tree.Body);
        Code_.Place(ExitLabel_);
        if (Result_ != nullptr) {
            if (Result_->Type == ValueKind::String) {
                PushBase(*Result_);
                Code_.Op(LDS);
            } else {
                Code_.Op(static_cast<uint8_t>(LDL_B + LoadVariant(Result_->Type)));
                Code_.U16(static_cast<uint32_t>(Result_->Address));
            }
        }
        Code_.Op(RET);
        Code_.PatchU16(FrameOperand, static_cast<uint32_t>(FrameSize_));
        // A frame that cannot fit even alone could never run.
        const int64_t Needed = FrameSize_ + (Entry.Label == MainLabel_ ? 0 : 4);
        const int64_t Left = static_cast<int64_t>(Options_.RamHigh) + 1 - P_.GlobalsEnd;
        if (Needed > Left) {
            Fail(Tree.At, 501,
                 "Not enough RAM for the local variables of " + Tree.Name +
                     ": a call of it needs " + std::to_string(Needed) + " bytes, but only " +
                     std::to_string(Left) + " are left behind the module-level variables");
        }
        Procedure_ = nullptr;
        Result_ = nullptr;
    }

    Variable* DeclareLocal(const Declarator& Each) {
        if (Locals_.count(Each.Upper) != 0 || LocalConstants_.count(Each.Upper) != 0 ||
            (Procedure_->IsFunction && Each.Upper == Procedure_->Upper)) {
            Fail(Each.At, 302,
                 "The name " + Each.Name + " is already declared in " + Procedure_->Name);
        }
        auto V = MakeVariable(Each);
        V->Place = Variable::Where::Local;
        V->Address = Allocate(V->TotalSize);
        Variable* Raw = V.get();
        Locals_[Each.Upper] = Raw;
        LocalVariables_.push_back(Raw);
        AllVariables_.push_back(std::move(V));
        return Raw;
    }

    void GenerateBlock(const Block& Body) {
        bool Ended = false;
        bool Warned = false;
        for (const StmtPtr& Each : Body) {
            if (Ended && !Warned && Each->What != Stmt::Kind::Dim &&
                Each->What != Stmt::Kind::Const) {
                Warn(Module_, Each->At, 903,
                     "Unreachable code: this statement comes after an Exit or End and never "
                     "runs");
                Warned = true;
            }
            GenerateStatement(*Each);
            const Stmt::Kind K = Each->What;
            if (K == Stmt::Kind::ExitFor || K == Stmt::Kind::ExitDo || K == Stmt::Kind::ExitSub ||
                K == Stmt::Kind::ExitFunction || K == Stmt::Kind::End) {
                Ended = true;
            }
        }
    }

    void GenerateStatement(const Stmt& S) {
        switch (S.What) {
            case Stmt::Kind::Dim:
                for (const Declarator& Each : S.Variables) {
                    DeclareLocal(Each);
                }
                return;
            case Stmt::Kind::Const: {
                const ConstantDeclaration& Tree = *S.Constant;
                if (Locals_.count(Tree.Upper) != 0 || LocalConstants_.count(Tree.Upper) != 0) {
                    Fail(Tree.At, 302,
                         "The name " + Tree.Name + " is already declared in " + Procedure_->Name);
                }
                auto C = std::make_unique<Constant>();
                C->Name = Tree.Name;
                C->At = Tree.At;
                C->Module = Module_;
                C->Tree = &Tree;
                Evaluate(*C);
                LocalConstants_[Tree.Upper] = C.get();
                LocalConstantStore_.push_back(std::move(C));
                return;
            }
            case Stmt::Kind::Assign:
                Assign(S);
                return;
            case Stmt::Kind::Call:
                CallStatement(S);
                return;
            case Stmt::Kind::Print:
                Print(S);
                return;
            case Stmt::Kind::If:
                If(S);
                return;
            case Stmt::Kind::For:
                For(S);
                return;
            case Stmt::Kind::Do:
                Do(S);
                return;
            case Stmt::Kind::While: {
                const int Top = Code_.NewLabel();
                const int Done = Code_.NewLabel();
                Code_.Place(Top);
                Condition(*S.Value);
                Code_.Jump(JF, Done);
                Loops_.push_back({false, -1});
                GenerateBlock(S.Body);
                Loops_.pop_back();
                Code_.Jump(JMP, Top);
                Code_.Place(Done);
                return;
            }
            case Stmt::Kind::Select:
                Select(S);
                return;
            case Stmt::Kind::ExitFor:
            case Stmt::Kind::ExitDo: {
                const bool IsFor = S.What == Stmt::Kind::ExitFor;
                for (size_t I = Loops_.size(); I-- > 0;) {
                    if (Loops_[I].IsFor == IsFor && Loops_[I].ExitLabel >= 0) {
                        Code_.Jump(JMP, Loops_[I].ExitLabel);
                        return;
                    }
                }
                Fail(S.At, 311,
                     std::string(IsFor ? "Exit For" : "Exit Do") + " must be inside a " +
                         (IsFor ? "For loop" : "Do loop"));
            }
            case Stmt::Kind::ExitSub:
            case Stmt::Kind::ExitFunction: {
                const bool Function = S.What == Stmt::Kind::ExitFunction;
                if (Function != Procedure_->IsFunction) {
                    Fail(S.At, 311,
                         std::string(Function ? "Exit Function" : "Exit Sub") + " is inside " +
                             (Procedure_->IsFunction ? "a Function: write Exit Function"
                                                     : "a Sub: write Exit Sub"));
                }
                Code_.Jump(JMP, ExitLabel_);
                return;
            }
            case Stmt::Kind::End:
                Code_.Op(END);
                return;
        }
    }

    Variable* TargetVariable(const Expr& Target, const char* What) {
        if (Target.What != Expr::Kind::Name) {
            Fail(Target.At, 309, std::string("Expected a variable ") + What);
        }
        const Found F = Resolve(Target);
        if (F.Var == nullptr) {
            Fail(Target.At, 309,
                 std::string("Expected a variable ") + What + ", found " + Target.Text +
                     (F.Const != nullptr ? ", a constant" : ", a procedure"));
        }
        if (F.Var->Dimensions != 0 && Target.Arguments.empty()) {
            Fail(Target.At, 310,
                 F.Var->Name + " is an array: assign to one element at a time, as " + F.Var->Name +
                     "(1) = ...");
        }
        CheckIndexes(Target, *F.Var);
        return F.Var;
    }

    void Assign(const Stmt& S) {
        Variable* V = TargetVariable(*S.Target, "before '='");
        Store(*V, S.Target.get(), *S.Value);
    }

    void CallStatement(const Stmt& S) {
        const Expr& Target = *S.Target;
        const Found F = Resolve(Target);
        if (F.Proc == nullptr) {
            Fail(Target.At, 313,
                 "Expected a Sub to call, or '=' to assign to " + Target.Text + ", found " +
                     (F.Var != nullptr     ? "a variable"
                      : F.Const != nullptr ? "a constant"
                                           : "a conversion") +
                     " with nothing done to it");
        }
        EmitCall(Target, *F.Proc);
        if (F.Proc->IsFunction) {
            Code_.Op(F.Proc->Result == ValueKind::String ? SDROP : DROP);
        }
    }

    // A condition: a Boolean; with strict syntax off, a number is True when
    // it is not 0.
    void Condition(const Expr& E) {
        const ValueKind Type = TypeOf(E);
        if (Type != ValueKind::Boolean) {
            if (Options_.StrictSyntax || !IsNumeric(Type)) {
                Fail(E.At, 401,
                     "Expected a condition (a Boolean), found " + Article(Type) +
                         " value: compare it, as in X <> 0");
            }
        }
        EmitConverted(E, Type, ValueKind::Boolean);
    }

    void If(const Stmt& S) {
        const int Done = Code_.NewLabel();
        for (size_t I = 0; I < S.Branches.size(); ++I) {
            const int Next = Code_.NewLabel();
            Condition(*S.Branches[I].first);
            Code_.Jump(JF, Next);
            GenerateBlock(S.Branches[I].second);
            // The last branch without an Else would jump to where it is.
            if (!Options_.Optimize || S.HasElse || I + 1 < S.Branches.size()) {
                Code_.Jump(JMP, Done);
            }
            Code_.Place(Next);
        }
        if (S.HasElse) {
            GenerateBlock(S.Body);
        }
        Code_.Place(Done);
    }

    void Do(const Stmt& S) {
        const int Top = Code_.NewLabel();
        const int Done = Code_.NewLabel();
        Code_.Place(Top);
        if (S.Value && S.ConditionAtTop) {
            Condition(*S.Value);
            Code_.Jump(S.Until ? JT : JF, Done);
        }
        Loops_.push_back({false, Done});
        GenerateBlock(S.Body);
        Loops_.pop_back();
        if (S.Value && !S.ConditionAtTop) {
            Condition(*S.Value);
            Code_.Jump(S.Until ? JF : JT, Top);
        } else {
            Code_.Jump(JMP, Top);
        }
        Code_.Place(Done);
    }

    void For(const Stmt& S) {
        Variable* V = TargetVariable(*S.Target, "after For");
        if (!IsNumeric(V->Type)) {
            Fail(S.Target->At, 314,
                 "The variable of a For must be a number, found " + Article(V->Type));
        }
        const ValueKind Type = V->Type;
        Store(*V, S.Target.get(), *S.Value);
        // The last value and the step are worked out once, before the loop.
        ConstantValue LimitValue;
        Variable* Limit = nullptr;
        const bool LimitKnown = ConstantOf(*S.Limit, LimitValue) &&
                                LimitValue.ConvertTo(Type, LimitValue) &&
                                IsConstantFitting(*S.Limit, Type);
        if (!LimitKnown) {
            Limit = Temporary(Type);
            EmitAs(*S.Limit, Type);
            StoreTop(*Limit);
        } else {
            CheckConversion(*S.Limit, TypeOf(*S.Limit), Type);
        }
        int StepSign = 1;
        ConstantValue StepValue = ConstantValue::OfWhole(ValueKind::Byte, 1);
        Variable* Step = nullptr;
        if (S.Step) {
            ConstantValue Known;
            if (ConstantOf(*S.Step, Known) && Known.Type != ValueKind::String &&
                Known.Type != ValueKind::Boolean) {
                const bool Negative =
                    Known.Type == ValueKind::Single ? Known.Single < 0 : Known.Whole < 0;
                ConstantValue Size;
                if (Negative &&
                    !FoldUnary("-",
                               Known.Type == ValueKind::Single
                                   ? Known
                                   : ConstantValue::OfWhole(ValueKind::Long, Known.Whole),
                               Size)) {
                    Fail(S.Step->At, 402, "This step is too large");
                }
                StepValue = Negative ? Size : Known;
                StepSign = Negative ? -1 : 1;
                if (!StepValue.FitsExactly(Type)) {
                    Fail(S.Step->At, 402,
                         "The step " + Known.ToText(64) + " does not fit the For's variable, " +
                             Article(Type));
                }
                StepValue.ConvertTo(Type, StepValue);
            } else {
                StepSign = 0;
                Step = Temporary(Type);
                EmitAs(*S.Step, Type);
                StoreTop(*Step);
            }
        } else {
            StepValue.ConvertTo(Type, StepValue);
        }
        const int Test = Code_.NewLabel();
        const int Body = Code_.NewLabel();
        const int Done = Code_.NewLabel();
        Code_.Place(Test);
        auto LoadLimit = [&]() {
            if (Limit != nullptr) {
                Load(*Limit, *S.Limit);
            } else {
                PushConstant(LimitValue);
            }
        };
        auto Beyond = [&](const char* Op) {
            Load(*V, *S.Target);
            LoadLimit();
            Code_.Op(CompareOpcode(Op, Type));
            Code_.Jump(JT, Done);
        };
        if (StepSign > 0) {
            Beyond(">");
        } else if (StepSign < 0) {
            Beyond("<");
        } else {
            const int Downward = Code_.NewLabel();
            Load(*Step, *S.Step);
            PushZero(Type);
            Code_.Op(CompareOpcode("<", Type));
            Code_.Jump(JT, Downward);
            Beyond(">");
            Code_.Jump(JMP, Body);
            Code_.Place(Downward);
            Beyond("<");
        }
        Code_.Place(Body);
        Loops_.push_back({true, Done});
        GenerateBlock(S.Body);
        Loops_.pop_back();
        // The next value.
        const int T = static_cast<int>(Type);
        if (Options_.Optimize && Type == ValueKind::Long && Step == nullptr &&
            V->Place == Variable::Where::Global && V->Dimensions == 0 && StepValue.Whole <= 32767) {
            Code_.Op(INCG_L);
            Code_.U16(static_cast<uint32_t>(V->Address));
            Code_.U16(static_cast<uint32_t>(StepSign * StepValue.Whole));
        } else {
            const bool Indirect = V->Dimensions != 0 || (V->Place != Variable::Where::Global &&
                                                         V->Place != Variable::Where::Local);
            if (Indirect) {
                PushReference(*V, S.Target.get());
                Code_.Op(DUP);
                Code_.Op(static_cast<uint8_t>(LDI_B + LoadVariant(Type)));
            } else {
                Load(*V, *S.Target);
            }
            if (Step != nullptr) {
                Load(*Step, *S.Step);
                Code_.Op(static_cast<uint8_t>(ADD_B + T));
            } else {
                PushConstant(StepValue);
                Code_.Op(static_cast<uint8_t>((StepSign < 0 ? SUB_B : ADD_B) + T));
            }
            if (Indirect) {
                Code_.Op(static_cast<uint8_t>(STI_B + StoreVariant(Type)));
            } else if (V->Place == Variable::Where::Global) {
                Code_.Op(static_cast<uint8_t>(STG_B + StoreVariant(Type)));
                Code_.U16(static_cast<uint32_t>(V->Address));
            } else {
                Code_.Op(static_cast<uint8_t>(STL_B + StoreVariant(Type)));
                Code_.U16(static_cast<uint32_t>(V->Address));
            }
        }
        Code_.Jump(JMP, Test);
        Code_.Place(Done);
    }

    void Select(const Stmt& S) {
        const ValueKind Type = TypeOf(*S.Value);
        if (Type == ValueKind::None) {
            Fail(S.Value->At, 313, "Expected a value after Select Case, found a Sub");
        }
        Variable* Selector = Temporary(Type);
        Emit(*S.Value);
        StoreTop(*Selector);
        const int Done = Code_.NewLabel();
        for (const CaseClause& Clause : S.Cases) {
            if (Clause.IsElse) {
                GenerateBlock(Clause.Body);
                continue;
            }
            const int Matched = Code_.NewLabel();
            const int Next = Code_.NewLabel();
            for (const CaseItem& Item : Clause.Items) {
                auto Compare = [&](const std::string& Op, const Expr& Value) {
                    Load(*Selector, Value);
                    const ValueKind ValueType = TypeOf(Value);
                    ValueKind Common = Type;
                    if (IsNumeric(Type) && IsNumeric(ValueType) && ValueType != Type &&
                        !Widens(ValueType, Type) && !IsConstantFitting(Value, Type)) {
                        Common = Type == ValueKind::Single || ValueType == ValueKind::Single
                                     ? ValueKind::Single
                                     : WiderWhole(Type, ValueType);
                        Convert(Type, Common);
                        EmitConverted(Value, ValueType, Common);
                    } else {
                        EmitAs(Value, Type);
                    }
                    if (Common == ValueKind::String) {
                        Code_.Op(SCMP);
                        Code_.U8(ConditionOperand(Op));
                    } else if (Common == ValueKind::Boolean) {
                        if (Op != "=" && Op != "<>") {
                            Fail(Value.At, 404, "Booleans compare only with = and <>");
                        }
                        Code_.Op(Op == "=" ? EQ_L : NE_L);
                    } else {
                        Code_.Op(CompareOpcode(Op, Common));
                    }
                };
                if (Item.What == CaseItem::Kind::Value) {
                    Compare("=", *Item.First);
                } else if (Item.What == CaseItem::Kind::Is) {
                    Compare(Item.Operator, *Item.First);
                } else {
                    Compare(">=", *Item.First);
                    Compare("<=", *Item.Last);
                    Code_.Op(AND);
                }
                Code_.Jump(JT, Matched);
            }
            Code_.Jump(JMP, Next);
            Code_.Place(Matched);
            GenerateBlock(Clause.Body);
            Code_.Jump(JMP, Done);
            Code_.Place(Next);
        }
        Code_.Place(Done);
    }

    // Debug.Print: texts as they are, numbers with a blank before them when
    // not negative, ';' joins, ',' moves to the next zone of 14 columns, and
    // a line break ends the line unless a separator ends the statement.
    void Print(const Stmt& S) {
        char Last = 0;
        for (const PrintItem& Item : S.Items) {
            if (Item.Value) {
                PrintValue(*Item.Value);
            }
            if (Item.Separator == ',') {
                NextZone();
            }
            Last = Item.Separator;
        }
        if (Last == 0) {
            Code_.Op(SYS);
            Code_.U8(LibraryCalls::PrintNewLine);
            if (Column_ != nullptr) {
                Code_.Op(PUSHB);
                Code_.U8(0);
                Code_.Op(STG_H);
                Code_.U16(static_cast<uint32_t>(Column_->Address));
            }
        }
    }

    void PrintTop() {
        if (Column_ != nullptr) {
            Code_.Op(SDUP);
            Code_.Op(SYS);
            Code_.U8(LibraryCalls::StringLength);
            Code_.Op(LDG_U);
            Code_.U16(static_cast<uint32_t>(Column_->Address));
            Code_.Op(ADD_U);
            Code_.Op(STG_H);
            Code_.U16(static_cast<uint32_t>(Column_->Address));
        }
        Code_.Op(SYS);
        Code_.U8(LibraryCalls::PrintString);
    }

    void PrintValue(const Expr& E) {
        const ValueKind Type = TypeOf(E);
        if (Type == ValueKind::None) {
            Fail(E.At, 313, "Expected a value to print, found a Sub, which gives none");
        }
        if (Type == ValueKind::String || Type == ValueKind::Boolean) {
            EmitConverted(E, Type, ValueKind::String);
            PrintTop();
            return;
        }
        Emit(E);
        if (TypeNames::IsSigned(Type)) {
            const int Negative = Code_.NewLabel();
            Code_.Op(DUP);
            PushZero(Type);
            Code_.Op(CompareOpcode("<", Type));
            Code_.Jump(JT, Negative);
            PushText(" ");
            PrintTop();
            Code_.Place(Negative);
        } else {
            PushText(" ");
            PrintTop();
        }
        Code_.Op(STR);
        Code_.U8(static_cast<uint8_t>(Type));
        PrintTop();
    }

    void NextZone() {
        if (Column_ == nullptr) {
            return;
        }
        const int Again = Code_.NewLabel();
        Code_.Place(Again);
        PushText(" ");
        PrintTop();
        Code_.Op(LDG_U);
        Code_.U16(static_cast<uint32_t>(Column_->Address));
        Code_.Op(PUSHB);
        Code_.U8(14);
        Code_.Op(MOD_U);
        Code_.Op(PUSHB);
        Code_.U8(0);
        Code_.Op(NE_U);
        Code_.Jump(JT, Again);
    }

    void Symbols() {
        for (const Variable* V : Globals_) {
            if (V->Place != Variable::Where::Global) {
                continue;
            }
            SymbolEntry Entry;
            Entry.Name = V->Name;
            Entry.Address = V->Address;
            Entry.TypeCode = TypeNames::SymbolCode(V->Type);
            Entry.Excluded = V->Type == ValueKind::String;
            Entry.Dimensions = V->Dimensions;
            for (int D = 0; D < V->Dimensions; ++D) {
                Entry.Bounds[2 * D] = V->Low[D];
                Entry.Bounds[2 * D + 1] = V->High[D];
            }
            P_.Symbols.push_back(Entry);
        }
        for (const Variable* V : LocalVariables_) {
            SymbolEntry Entry;
            Entry.Name = V->Name;
            Entry.Address = V->Address;
            Entry.TypeCode = TypeNames::SymbolCode(V->Type);
            Entry.Excluded = true;
            Entry.Dimensions = V->Dimensions;
            for (int D = 0; D < V->Dimensions; ++D) {
                Entry.Bounds[2 * D] = V->Low[D];
                Entry.Bounds[2 * D + 1] = V->High[D];
            }
            P_.Symbols.push_back(Entry);
        }
    }

    // The hidden print column, made when a Print uses ','.
    void PrepareColumn(uint32_t& RamNext) {
        bool Needed = false;
        for (const ModuleTree& M : Modules_) {
            for (const Procedure& Proc : M.Procedures) {
                Needed = Needed || UsesZones(Proc.Body);
            }
        }
        if (!Needed) {
            return;
        }
        auto V = std::make_unique<Variable>();
        V->Name = "PrintColumn";
        V->Type = ValueKind::UnsignedInteger;
        V->Address = static_cast<int32_t>(RamNext);
        V->Hidden = true;
        V->Used = true;
        RamNext += 2;
        Column_ = V.get();
        AllVariables_.push_back(std::move(V));
    }

    static bool UsesZones(const Block& Body) {
        for (const StmtPtr& S : Body) {
            for (const PrintItem& Item : S->Items) {
                if (Item.Separator == ',') {
                    return true;
                }
            }
            if (UsesZones(S->Body)) {
                return true;
            }
            for (const auto& Branch : S->Branches) {
                if (UsesZones(Branch.second)) {
                    return true;
                }
            }
            for (const CaseClause& Clause : S->Cases) {
                if (UsesZones(Clause.Body)) {
                    return true;
                }
            }
        }
        return false;
    }

    const std::vector<ModuleTree>& Modules_;
    const LibraryDeclarations& Library_;
    const CompileOptions& Options_;
    GeneratedProgram& P_;
    Diagnostic& Error_;
    CodeBuffer& Code_;

    int Module_ = -1;
    std::vector<std::set<std::string>> ModuleNames_;
    std::set<std::string> PublicNames_;
    std::map<std::pair<int, std::string>, Variable*> ModuleVariables_;
    std::map<std::pair<int, std::string>, Constant*> ModuleConstants_;
    std::map<std::pair<int, std::string>, ProcedureEntry> ModuleProcedures_;
    std::map<std::string, Constant*> LibraryConstants_;
    std::map<std::string, ProcedureEntry> LibraryProcedures_;
    std::vector<std::unique_ptr<Variable>> AllVariables_;
    std::vector<std::unique_ptr<Constant>> AllConstants_;
    std::vector<Variable*> Globals_;
    std::vector<Variable*> LocalVariables_;
    std::map<std::string, uint32_t> Literals_;
    bool MainFound_ = false;
    int MainLabel_ = -1;
    int ConstantDepth_ = 0;
    Variable* Column_ = nullptr;

    const Procedure* Procedure_ = nullptr;
    std::map<std::string, Variable*> Locals_;
    std::map<std::string, Constant*> LocalConstants_;
    std::vector<std::unique_ptr<Constant>> LocalConstantStore_;
    int32_t FrameSize_ = 0;
    Variable* Result_ = nullptr;
    int ExitLabel_ = -1;
    std::vector<LoopContext> Loops_;
};

}  // namespace

bool GenerateProgram(const std::vector<ModuleTree>& Modules, const LibraryDeclarations& Library,
                     const CompileOptions& Options, GeneratedProgram& Program, Diagnostic& Error) {
    Generator Each(Modules, Library, Options, Program, Error);
    try {
        Each.Run();
    } catch (const Failure&) {
        return false;
    }
    return true;
}

}  // namespace KavlinCompiler
