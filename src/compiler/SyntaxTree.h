#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "compiler/Compiler.h"
#include "compiler/Lexer.h"

// What the parser makes of a module and the code generator walks.
namespace KavlinCompiler {

// Where a piece of source lies, for messages.
struct Span {
    int Line = 1;
    int Column = 1;
    int32_t Start = 0;
    int32_t End = 0;
};

inline Diagnostic MakeDiagnostic(int Module, const Span& At, int Number, std::string Message) {
    Diagnostic D;
    D.ModuleIndex = Module;
    D.Line = At.Line;
    D.Column = At.Column;
    D.StartPosition = At.Start;
    D.EndPosition = At.End;
    D.Number = Number;
    D.Message = std::move(Message);
    return D;
}

struct Expr;
using ExprPtr = std::unique_ptr<Expr>;

struct Expr {
    enum class Kind : uint8_t { Whole, Real, Text, Name, Unary, Binary };
    Kind What = Kind::Whole;
    Span At;
    int64_t Whole = 0;
    double Real = 0;
    std::string Text;   // a Text's bytes; a Name's spelling
    std::string Upper;  // a Name's or an operator's upper-case spelling
    // A Name's arguments (an array's indexes or a call's arguments).
    std::vector<ExprPtr> Arguments;
    bool HasParentheses = false;
    ExprPtr Left, Right;  // operands; Unary has Right only
    // The longest way down to a leaf, kept small so that walking a tree
    // never runs deep.
    int Height = 1;
    // Filled in by the code generator: the type the expression has.
    mutable int CachedType = -1;
};

struct Declarator {
    Span At;
    std::string Name;
    std::string Upper;
    ValueKind Type = ValueKind::Integer;
    // Up to two dimensions, bounds as constant expressions.
    std::vector<std::pair<ExprPtr, ExprPtr>> Bounds;
    bool Persistent = false;
    bool Public = false;
    bool ByRef = true;  // parameters
};

struct ConstantDeclaration {
    Span At;
    std::string Name;
    std::string Upper;
    bool HasType = false;
    ValueKind Type = ValueKind::Integer;
    ExprPtr Value;
    bool Public = false;
};

struct Stmt;
using StmtPtr = std::unique_ptr<Stmt>;
using Block = std::vector<StmtPtr>;

struct PrintItem {
    ExprPtr Value;       // null for a separator alone
    char Separator = 0;  // ';' ',' or 0 for none after it
};

struct CaseItem {
    enum class Kind : uint8_t { Value, Range, Is };
    Kind What = Kind::Value;
    std::string Operator;  // for Is
    ExprPtr First, Last;
};

struct CaseClause {
    Span At;
    bool IsElse = false;
    std::vector<CaseItem> Items;
    Block Body;
};

struct Stmt {
    enum class Kind : uint8_t {
        Dim,
        Const,
        Assign,
        Call,
        Print,
        If,
        For,
        Do,
        While,
        Select,
        ExitFor,
        ExitDo,
        ExitSub,
        ExitFunction,
        End,
    };
    Kind What = Kind::End;
    Span At;
    std::vector<Declarator> Variables;
    std::unique_ptr<ConstantDeclaration> Constant;
    ExprPtr Target;  // Assign, Call, For's variable
    ExprPtr Value;   // Assign's value, For's start, a loop's condition, Select's selector
    ExprPtr Limit, Step;
    std::vector<PrintItem> Items;
    // If: one condition and body per If/ElseIf, and Else's body.
    std::vector<std::pair<ExprPtr, Block>> Branches;
    Block Body;  // loops, If's Else
    bool HasElse = false;
    bool ConditionAtTop = true;  // Do
    bool Until = false;          // Do
    std::vector<CaseClause> Cases;
};

struct Procedure {
    Span At;
    std::string Name;
    std::string Upper;
    bool IsFunction = false;
    bool Public = true;
    ValueKind Result = ValueKind::None;
    std::vector<Declarator> Parameters;
    Block Body;
};

struct ModuleTree {
    bool OptionExplicit = false;
    std::vector<Declarator> Variables;
    std::vector<ConstantDeclaration> Constants;
    std::vector<Procedure> Procedures;
};

struct SyntaxError {
    bool Failed = false;
    Span At;
    int Number = 0;
    std::string Message;
};

// Parses one module's tokens; the first error stops it.
bool ParseModule(const std::vector<Token>& Tokens, ModuleTree& Module, SyntaxError& Error);

}  // namespace KavlinCompiler
