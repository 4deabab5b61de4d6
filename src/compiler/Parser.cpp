// The parser: recursive descent over a module's tokens. Nesting is bounded
// (blocks and expressions alike), so no input can run it out of stack.
#include <algorithm>
#include <set>

#include "compiler/SyntaxTree.h"
#include "compiler/TypeNames.h"

namespace KavlinCompiler {

namespace {

constexpr int MaxDepth = 60;
constexpr int MaxHeight = 120;

const std::set<std::string> ReservedWords = {
    "AND",      "AS",         "BYREF",   "BYVAL",  "CALL",   "CASE", "CONST", "DEBUG",
    "DIM",      "DO",         "ELSE",    "ELSEIF", "END",    "EXIT", "FALSE", "FOR",
    "FUNCTION", "IF",         "IS",      "LOOP",   "MOD",    "NEXT", "NOT",   "OPTION",
    "OR",       "PERSISTENT", "PRIVATE", "PUBLIC", "SELECT", "STEP", "SUB",   "THEN",
    "TO",       "TRUE",       "UNTIL",   "WEND",   "WHILE",  "XOR",  "REM",
};

struct Failure {};

class Parser {
  public:
    Parser(const std::vector<Token>& Tokens, SyntaxError& Error) : T_(Tokens), Error_(Error) {}

    void Module(ModuleTree& Module) {
        while (Peek().Kind != TokenKind::End) {
            if (Skip(TokenKind::LineEnd) || AcceptSymbol(":")) {
                continue;
            }
            ModuleLine(Module);
        }
    }

  private:
    // Tokens
    const Token& Peek(size_t Ahead = 0) const { return T_[std::min(I_ + Ahead, T_.size() - 1)]; }
    const Token& Next() {
        const Token& Current = Peek();
        if (I_ + 1 < T_.size()) {
            ++I_;
        }
        return Current;
    }
    bool Skip(TokenKind Kind) {
        if (Peek().Kind == Kind) {
            Next();
            return true;
        }
        return false;
    }
    bool IsWord(const char* Upper, size_t Ahead = 0) const {
        return Peek(Ahead).Kind == TokenKind::Word && Peek(Ahead).Upper == Upper;
    }
    bool IsSymbol(const char* Text) const {
        return Peek().Kind == TokenKind::Symbol && Peek().Upper == Text;
    }
    bool AcceptWord(const char* Upper) {
        if (IsWord(Upper)) {
            Next();
            return true;
        }
        return false;
    }
    bool AcceptSymbol(const char* Text) {
        if (IsSymbol(Text)) {
            Next();
            return true;
        }
        return false;
    }
    bool AtStatementEnd() const {
        return Peek().Kind == TokenKind::LineEnd || Peek().Kind == TokenKind::End ||
               IsSymbol(":") || IsWord("ELSE");
    }

    static Span SpanOf(const Token& T) { return Span{T.Line, T.Column, T.Start, T.End}; }
    static std::string Describe(const Token& T) {
        switch (T.Kind) {
            case TokenKind::LineEnd:
                return "the end of the line";
            case TokenKind::End:
                return "the end of the module";
            case TokenKind::Text:
                return "the text \"" + T.Spelling + "\"";
            default:
                return "'" + T.Spelling + "'";
        }
    }

    [[noreturn]] void Fail(const Span& At, int Number, std::string Message) {
        Error_.Failed = true;
        Error_.At = At;
        Error_.Number = Number;
        Error_.Message = std::move(Message);
        throw Failure();
    }
    [[noreturn]] void Expected(const std::string& What, int Number = 201) {
        Fail(SpanOf(Peek()), Number, "Expected " + What + ", found " + Describe(Peek()));
    }
    void ExpectWord(const char* Upper, const std::string& What) {
        if (!AcceptWord(Upper)) {
            Expected(What);
        }
    }
    void ExpectSymbol(const char* Text, const std::string& What) {
        if (!AcceptSymbol(Text)) {
            Expected(What);
        }
    }
    void EndStatement() {
        if (Peek().Kind == TokenKind::LineEnd || Peek().Kind == TokenKind::End) {
            Next();
        } else if (!AcceptSymbol(":")) {
            Expected("the end of the statement (a new line or ':')", 202);
        }
    }

    struct DepthGuard {
        DepthGuard(Parser& P, const Token& At) : P_(P) {
            if (++P_.Depth_ > MaxDepth) {
                P_.Fail(SpanOf(At), 205,
                        "The program nests too deeply here: more than " + std::to_string(MaxDepth) +
                            " blocks or parentheses inside each other; split it into procedures");
            }
        }
        ~DepthGuard() { --P_.Depth_; }
        Parser& P_;
    };

    std::string Name(const std::string& What, Span& At) {
        const Token& T = Peek();
        if (T.Kind != TokenKind::Word) {
            Expected(What);
        }
        if (ReservedWords.count(T.Upper) != 0) {
            Fail(SpanOf(T), 203,
                 "Expected " + What + ", found the keyword '" + T.Spelling +
                     "', which cannot be a name");
        }
        At = SpanOf(T);
        Next();
        return T.Spelling;
    }

    ValueKind TypeClause(const std::string& Of) {
        if (!AcceptWord("AS")) {
            Expected("As and a type after " + Of, 204);
        }
        ValueKind Kind;
        if (Peek().Kind != TokenKind::Word || !TypeNames::Find(Peek().Upper, Kind)) {
            Expected(
                "a type (Byte, Integer, UnsignedInteger, Long, UnsignedLong, Single, Boolean or "
                "String)",
                204);
        }
        Next();
        return Kind;
    }

    // Module level
    void ModuleLine(ModuleTree& Module) {
        if (AcceptWord("OPTION")) {
            ExpectWord("EXPLICIT", "Explicit after Option");
            Module.OptionExplicit = true;
            EndStatement();
            return;
        }
        bool Public = false;
        bool Scoped = false;
        if (AcceptWord("PUBLIC")) {
            Public = Scoped = true;
        } else if (AcceptWord("PRIVATE")) {
            Scoped = true;
        }
        if (IsWord("SUB") || IsWord("FUNCTION")) {
            Procedure& Each = Module.Procedures.emplace_back();
            Each.Public = !Scoped || Public;
            ProcedureBody(Each);
            return;
        }
        if (IsWord("CONST")) {
            Next();
            ConstantDeclaration Constant = ConstantLine();
            Constant.Public = Public;
            Module.Constants.push_back(std::move(Constant));
            EndStatement();
            return;
        }
        bool Persistent = false;
        if (AcceptWord("PERSISTENT")) {
            Persistent = true;
        } else if (!AcceptWord("DIM") && !Scoped) {
            Expected(
                "a declaration at module level (Option Explicit, Dim, Public, Private, "
                "Const, Persistent, Sub or Function); statements belong inside a Sub or "
                "Function");
        }
        for (Declarator& Each : DeclaratorList(false)) {
            Each.Public = Public;
            Each.Persistent = Persistent;
            Module.Variables.push_back(std::move(Each));
        }
        EndStatement();
    }

    ConstantDeclaration ConstantLine() {
        ConstantDeclaration Constant;
        Constant.Name = Name("the constant's name", Constant.At);
        Constant.Upper = UpperCase(Constant.Name);
        if (IsWord("AS")) {
            Constant.HasType = true;
            Constant.Type = TypeClause("the constant's name");
        }
        ExpectSymbol("=", "'=' and the constant's value");
        Constant.Value = Expression();
        return Constant;
    }

    std::vector<Declarator> DeclaratorList(bool Parameters) {
        std::vector<Declarator> List;
        do {
            Declarator Each;
            if (Parameters) {
                if (AcceptWord("BYVAL")) {
                    Each.ByRef = false;
                } else {
                    AcceptWord("BYREF");
                }
            }
            Each.Name = Name(Parameters ? "a parameter's name" : "a variable's name", Each.At);
            Each.Upper = UpperCase(Each.Name);
            if (!Parameters && AcceptSymbol("(")) {
                do {
                    if (Each.Bounds.size() == 2) {
                        Fail(SpanOf(Peek()), 206,
                             "An array has one or two dimensions; found a third after '" +
                                 Each.Name + "'");
                    }
                    ExprPtr Low = Expression();
                    ExprPtr High;
                    if (AcceptWord("TO")) {
                        High = Expression();
                    } else {
                        // (N) stands for (0 To N), as in the family.
                        High = std::move(Low);
                        Low = std::make_unique<Expr>();
                        Low->At = High->At;
                    }
                    Each.Bounds.emplace_back(std::move(Low), std::move(High));
                } while (AcceptSymbol(","));
                ExpectSymbol(")", "')' after the array's bounds");
            }
            Each.Type = TypeClause("'" + Each.Name + "'");
            List.push_back(std::move(Each));
        } while (AcceptSymbol(","));
        return List;
    }

    void ProcedureBody(Procedure& Each) {
        Each.IsFunction = IsWord("FUNCTION");
        Next();
        const char* Kind = Each.IsFunction ? "FUNCTION" : "SUB";
        Each.Name = Name(Each.IsFunction ? "the function's name" : "the sub's name", Each.At);
        Each.Upper = UpperCase(Each.Name);
        if (AcceptSymbol("(")) {
            if (!AcceptSymbol(")")) {
                Each.Parameters = DeclaratorList(true);
                ExpectSymbol(")", "',' or ')' in the parameter list");
            }
        }
        if (Each.IsFunction) {
            Each.Result = TypeClause("the function's parameters");
        }
        EndStatement();
        Each.Body = StatementBlock();
        if (!(IsWord("END") && IsWord(Kind, 1))) {
            Expected(std::string(Each.IsFunction ? "End Function" : "End Sub") + " to close " +
                     Each.Name);
        }
        Next();
        Next();
        EndStatement();
    }

    // Statements
    bool AtBlockEnd() const {
        if (Peek().Kind == TokenKind::End) {
            return true;
        }
        if (IsWord("END")) {
            return IsWord("SUB", 1) || IsWord("FUNCTION", 1) || IsWord("IF", 1) ||
                   IsWord("SELECT", 1);
        }
        return IsWord("ELSE") || IsWord("ELSEIF") || IsWord("NEXT") || IsWord("LOOP") ||
               IsWord("WEND") || IsWord("CASE") || IsWord("SUB") || IsWord("FUNCTION");
    }

    Block StatementBlock() {
        Block Body;
        for (;;) {
            while (Skip(TokenKind::LineEnd) || AcceptSymbol(":")) {
            }
            if (AtBlockEnd()) {
                return Body;
            }
            Body.push_back(Statement());
            EndStatement();
        }
    }

    StmtPtr Make(Stmt::Kind Kind, const Token& At) {
        auto S = std::make_unique<Stmt>();
        S->What = Kind;
        S->At = SpanOf(At);
        return S;
    }

    StmtPtr Statement() {
        const Token& First = Peek();
        DepthGuard Guard(*this, First);
        if (First.Kind != TokenKind::Word) {
            Expected("a statement");
        }
        const std::string& W = First.Upper;
        if (W == "DIM") {
            Next();
            StmtPtr S = Make(Stmt::Kind::Dim, First);
            S->Variables = DeclaratorList(false);
            return S;
        }
        if (W == "CONST") {
            Next();
            StmtPtr S = Make(Stmt::Kind::Const, First);
            S->Constant = std::make_unique<ConstantDeclaration>(ConstantLine());
            return S;
        }
        if (W == "IF") {
            return IfStatement();
        }
        if (W == "FOR") {
            return ForStatement();
        }
        if (W == "DO") {
            return DoStatement();
        }
        if (W == "WHILE") {
            Next();
            StmtPtr S = Make(Stmt::Kind::While, First);
            S->Value = Expression();
            EndStatement();
            S->Body = StatementBlock();
            ExpectWord("WEND", "Wend to close the While");
            return S;
        }
        if (W == "SELECT") {
            return SelectStatement();
        }
        if (W == "EXIT") {
            Next();
            static const std::pair<const char*, Stmt::Kind> Exits[] = {
                {"FOR", Stmt::Kind::ExitFor},
                {"DO", Stmt::Kind::ExitDo},
                {"SUB", Stmt::Kind::ExitSub},
                {"FUNCTION", Stmt::Kind::ExitFunction}};
            for (const auto& [Word, Kind] : Exits) {
                if (AcceptWord(Word)) {
                    return Make(Kind, First);
                }
            }
            Expected("For, Do, Sub or Function after Exit");
        }
        if (W == "END") {
            Next();
            return Make(Stmt::Kind::End, First);
        }
        if (W == "DEBUG") {
            return PrintStatement();
        }
        const bool ExplicitCall = AcceptWord("CALL");
        ExprPtr Target = NamePrimary();
        if (!ExplicitCall && AcceptSymbol("=")) {
            StmtPtr S = Make(Stmt::Kind::Assign, First);
            S->Target = std::move(Target);
            S->Value = Expression();
            return S;
        }
        StmtPtr S = Make(Stmt::Kind::Call, First);
        if (!AtStatementEnd()) {
            if (Target->HasParentheses || ExplicitCall) {
                Expected("the end of the statement after the call");
            }
            do {
                Target->Arguments.push_back(Expression());
            } while (AcceptSymbol(","));
        }
        S->Target = std::move(Target);
        return S;
    }

    StmtPtr PrintStatement() {
        StmtPtr S = Make(Stmt::Kind::Print, Next());
        ExpectSymbol(".", "'.' and Print after Debug");
        ExpectWord("PRINT", "Print after Debug.");
        while (!AtStatementEnd()) {
            PrintItem Item;
            if (!IsSymbol(";") && !IsSymbol(",")) {
                Item.Value = Expression();
            }
            if (AcceptSymbol(";")) {
                Item.Separator = ';';
            } else if (AcceptSymbol(",")) {
                Item.Separator = ',';
            } else if (!AtStatementEnd()) {
                Expected("';' or ',' between the items to print");
            }
            S->Items.push_back(std::move(Item));
        }
        return S;
    }

    StmtPtr IfStatement() {
        StmtPtr S = Make(Stmt::Kind::If, Next());
        ExprPtr Condition = Expression();
        ExpectWord("THEN", "Then after the If's condition");
        if (Peek().Kind != TokenKind::LineEnd && !IsSymbol(":")) {
            // The one-line If: statements up to the end of the line.
            Block Then = LineStatements();
            S->Branches.emplace_back(std::move(Condition), std::move(Then));
            if (AcceptWord("ELSE")) {
                S->HasElse = true;
                S->Body = LineStatements();
            }
            return S;
        }
        EndStatement();
        S->Branches.emplace_back(std::move(Condition), StatementBlock());
        for (;;) {
            if (AcceptWord("ELSEIF")) {
                ExprPtr Next = Expression();
                ExpectWord("THEN", "Then after the ElseIf's condition");
                EndStatement();
                S->Branches.emplace_back(std::move(Next), StatementBlock());
            } else if (AcceptWord("ELSE")) {
                S->HasElse = true;
                EndStatement();
                S->Body = StatementBlock();
            } else {
                break;
            }
        }
        if (!(IsWord("END") && IsWord("IF", 1))) {
            Expected("End If to close the If");
        }
        Next();
        Next();
        return S;
    }

    Block LineStatements() {
        Block Body;
        for (;;) {
            Body.push_back(Statement());
            if (!AcceptSymbol(":") || Peek().Kind == TokenKind::LineEnd || IsWord("ELSE")) {
                return Body;
            }
        }
    }

    StmtPtr ForStatement() {
        StmtPtr S = Make(Stmt::Kind::For, Next());
        S->Target = NamePrimary();
        ExpectSymbol("=", "'=' after the For's variable");
        S->Value = Expression();
        ExpectWord("TO", "To and the last value of the For");
        S->Limit = Expression();
        if (AcceptWord("STEP")) {
            S->Step = Expression();
        }
        EndStatement();
        S->Body = StatementBlock();
        ExpectWord("NEXT", "Next to close the For");
        if (Peek().Kind == TokenKind::Word) {
            Span At;
            const std::string Variable = Name("the For's variable after Next", At);
            if (UpperCase(Variable) != S->Target->Upper) {
                Fail(At, 207,
                     "Expected Next " + S->Target->Text + " to close the For of " +
                         S->Target->Text + ", found Next " + Variable);
            }
        }
        return S;
    }

    StmtPtr DoStatement() {
        StmtPtr S = Make(Stmt::Kind::Do, Next());
        if (IsWord("WHILE") || IsWord("UNTIL")) {
            S->Until = Next().Upper == "UNTIL";
            S->Value = Expression();
        }
        EndStatement();
        S->Body = StatementBlock();
        ExpectWord("LOOP", "Loop to close the Do");
        if (IsWord("WHILE") || IsWord("UNTIL")) {
            if (S->Value) {
                Fail(SpanOf(Peek()), 208,
                     "A Do loop has one condition: found one after Do and another after Loop");
            }
            S->Until = Next().Upper == "UNTIL";
            S->ConditionAtTop = false;
            S->Value = Expression();
        }
        return S;
    }

    StmtPtr SelectStatement() {
        StmtPtr S = Make(Stmt::Kind::Select, Next());
        ExpectWord("CASE", "Case after Select");
        S->Value = Expression();
        EndStatement();
        while (Skip(TokenKind::LineEnd) || AcceptSymbol(":")) {
        }
        while (IsWord("CASE")) {
            CaseClause& Clause = S->Cases.emplace_back();
            Clause.At = SpanOf(Next());
            if (AcceptWord("ELSE")) {
                Clause.IsElse = true;
            } else {
                do {
                    CaseItem Item;
                    if (AcceptWord("IS")) {
                        Item.What = CaseItem::Kind::Is;
                        static const char* Operators[] = {"=", "<>", "<", "<=", ">", ">="};
                        for (const char* Op : Operators) {
                            if (IsSymbol(Op)) {
                                Item.Operator = Op;
                            }
                        }
                        if (Item.Operator.empty()) {
                            Expected("a comparison (=, <>, <, <=, >, >=) after Is");
                        }
                        Next();
                        Item.First = Expression();
                    } else {
                        Item.First = Expression();
                        if (AcceptWord("TO")) {
                            Item.What = CaseItem::Kind::Range;
                            Item.Last = Expression();
                        }
                    }
                    Clause.Items.push_back(std::move(Item));
                } while (AcceptSymbol(","));
            }
            EndStatement();
            Clause.Body = StatementBlock();
            if (Clause.IsElse && IsWord("CASE")) {
                Fail(SpanOf(Peek()), 209, "Case Else must be the last Case of a Select");
            }
        }
        if (!(IsWord("END") && IsWord("SELECT", 1))) {
            Expected("Case or End Select");
        }
        Next();
        Next();
        return S;
    }

    // Expressions, from the loosest operator to the tightest.
    ExprPtr Binary(std::string Op, ExprPtr Left, ExprPtr Right) {
        auto E = std::make_unique<Expr>();
        E->What = Expr::Kind::Binary;
        E->Upper = std::move(Op);
        E->At = Left->At;
        E->At.End = Right->At.End;
        E->Height = 1 + std::max(Left->Height, Right->Height);
        if (E->Height > MaxHeight) {
            Fail(E->At, 210,
                 "This expression is too long: more than " + std::to_string(MaxHeight) +
                     " operators in a row; split it with variables");
        }
        E->Left = std::move(Left);
        E->Right = std::move(Right);
        return E;
    }
    ExprPtr Unary(const Token& Op, ExprPtr Right) {
        auto E = std::make_unique<Expr>();
        E->What = Expr::Kind::Unary;
        E->Upper = Op.Upper;
        E->At = SpanOf(Op);
        E->At.End = Right->At.End;
        E->Height = 1 + Right->Height;
        if (E->Height > MaxHeight) {
            Fail(E->At, 210, "This expression is too long; split it with variables");
        }
        E->Right = std::move(Right);
        return E;
    }

    ExprPtr Expression() {
        DepthGuard Guard(*this, Peek());
        ExprPtr Left = OrLevel();
        while (IsWord("XOR")) {
            Next();
            Left = Binary("XOR", std::move(Left), OrLevel());
        }
        return Left;
    }
    ExprPtr OrLevel() {
        ExprPtr Left = AndLevel();
        while (IsWord("OR")) {
            Next();
            Left = Binary("OR", std::move(Left), AndLevel());
        }
        return Left;
    }
    ExprPtr AndLevel() {
        ExprPtr Left = NotLevel();
        while (IsWord("AND")) {
            Next();
            Left = Binary("AND", std::move(Left), NotLevel());
        }
        return Left;
    }
    ExprPtr NotLevel() {
        if (IsWord("NOT")) {
            const Token& Op = Next();
            DepthGuard Guard(*this, Op);
            return Unary(Op, NotLevel());
        }
        return CompareLevel();
    }
    ExprPtr CompareLevel() {
        ExprPtr Left = ConcatLevel();
        for (;;) {
            bool Found = false;
            for (const char* Op : {"=", "<>", "<", "<=", ">", ">="}) {
                if (IsSymbol(Op)) {
                    Next();
                    Left = Binary(Op, std::move(Left), ConcatLevel());
                    Found = true;
                    break;
                }
            }
            if (!Found) {
                return Left;
            }
        }
    }
    ExprPtr ConcatLevel() {
        ExprPtr Left = AddLevel();
        while (IsSymbol("&")) {
            Next();
            Left = Binary("&", std::move(Left), AddLevel());
        }
        return Left;
    }
    ExprPtr AddLevel() {
        ExprPtr Left = ModLevel();
        while (IsSymbol("+") || IsSymbol("-")) {
            const std::string Op = Next().Upper;
            Left = Binary(Op, std::move(Left), ModLevel());
        }
        return Left;
    }
    ExprPtr ModLevel() {
        ExprPtr Left = IntegerDivideLevel();
        while (IsWord("MOD")) {
            Next();
            Left = Binary("MOD", std::move(Left), IntegerDivideLevel());
        }
        return Left;
    }
    ExprPtr IntegerDivideLevel() {
        ExprPtr Left = MultiplyLevel();
        while (IsSymbol("\\")) {
            Next();
            Left = Binary("\\", std::move(Left), MultiplyLevel());
        }
        return Left;
    }
    ExprPtr MultiplyLevel() {
        ExprPtr Left = NegateLevel();
        while (IsSymbol("*") || IsSymbol("/")) {
            const std::string Op = Next().Upper;
            Left = Binary(Op, std::move(Left), NegateLevel());
        }
        return Left;
    }
    ExprPtr NegateLevel() {
        if (IsSymbol("-") || IsSymbol("+")) {
            const Token& Op = Next();
            DepthGuard Guard(*this, Op);
            ExprPtr Right = NegateLevel();
            if (Op.Upper == "+") {
                return Right;
            }
            return Unary(Op, std::move(Right));
        }
        return PowerLevel();
    }
    ExprPtr PowerLevel() {
        ExprPtr Left = Primary();
        while (IsSymbol("^")) {
            Next();
            ExprPtr Right;
            if (IsSymbol("-")) {
                const Token& Op = Next();
                Right = Unary(Op, Primary());
            } else {
                Right = Primary();
            }
            Left = Binary("^", std::move(Left), std::move(Right));
        }
        return Left;
    }

    ExprPtr Primary() {
        const Token& T = Peek();
        auto E = std::make_unique<Expr>();
        E->At = SpanOf(T);
        switch (T.Kind) {
            case TokenKind::WholeNumber:
                E->What = Expr::Kind::Whole;
                E->Whole = T.Whole;
                Next();
                return E;
            case TokenKind::RealNumber:
                E->What = Expr::Kind::Real;
                E->Real = T.Real;
                Next();
                return E;
            case TokenKind::Text:
                E->What = Expr::Kind::Text;
                E->Text = T.Spelling;
                Next();
                return E;
            case TokenKind::Word:
                if (T.Upper == "TRUE" || T.Upper == "FALSE") {
                    E->What = Expr::Kind::Whole;
                    E->Upper = T.Upper;
                    E->Whole = T.Upper == "TRUE" ? -1 : 0;
                    Next();
                    return E;
                }
                return NamePrimary();
            default:
                break;
        }
        if (IsSymbol("(")) {
            Next();
            ExprPtr Inner = Expression();
            ExpectSymbol(")", "')' to close the '('");
            return Inner;
        }
        Expected("a value: a number, a text in double quotes, a name or '('");
    }

    ExprPtr NamePrimary() {
        auto E = std::make_unique<Expr>();
        E->What = Expr::Kind::Name;
        E->Text = Name("a name", E->At);
        E->Upper = UpperCase(E->Text);
        if (AcceptSymbol("(")) {
            E->HasParentheses = true;
            if (!AcceptSymbol(")")) {
                do {
                    E->Arguments.push_back(Expression());
                    E->Height = std::max(E->Height, 1 + E->Arguments.back()->Height);
                } while (AcceptSymbol(","));
                E->At.End = Peek().End;
                ExpectSymbol(")", "',' or ')' after the arguments");
            } else {
                E->At.End = T_[I_ - 1].End;
            }
        }
        return E;
    }

    const std::vector<Token>& T_;
    SyntaxError& Error_;
    size_t I_ = 0;
    int Depth_ = 0;
};

}  // namespace

bool ParseModule(const std::vector<Token>& Tokens, ModuleTree& Module, SyntaxError& Error) {
    if (Tokens.empty()) {
        return true;
    }
    Parser Each(Tokens, Error);
    try {
        Each.Module(Module);
    } catch (const Failure&) {
        return false;
    }
    return true;
}

}  // namespace KavlinCompiler
