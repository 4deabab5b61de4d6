// Reads a symbol file: the system library's declarations, one a line, in the
// language's own words, each procedure naming the machine's call behind it:
//
//     Const kvOutputHigh As Byte = 1
//     Sub PutPin(Pin As Integer, State As Byte) = PinSet
//     Function GetPin(Pin As Integer) As Byte = PinRead
//
// A `'` starts a comment. Parameters are always passed by value.
#include "compiler/Compiler.h"
#include "compiler/Lexer.h"
#include "compiler/TypeNames.h"
#include "machine/LibraryCalls.h"

namespace KavlinCompiler {

namespace {

class LineReader {
  public:
    LineReader(const std::vector<Token>& Tokens, size_t& I) : Tokens_(Tokens), I_(I) {}

    const Token& Peek() const { return Tokens_[I_]; }
    bool Accept(const char* Upper) {
        if (Peek().Upper == Upper && Peek().Kind != TokenKind::Text) {
            ++I_;
            return true;
        }
        return false;
    }
    bool Word(std::string& Name) {
        if (Peek().Kind != TokenKind::Word) {
            return false;
        }
        Name = Peek().Spelling;
        ++I_;
        return true;
    }
    bool Type(ValueKind& Kind) {
        std::string Name;
        return Word(Name) && TypeNames::Find(UpperCase(Name), Kind);
    }

  private:
    const std::vector<Token>& Tokens_;
    size_t& I_;
};

}  // namespace

bool ParseLibrary(const std::string& Text, LibraryDeclarations& Library, std::string& Error) {
    Library = LibraryDeclarations();
    LexError Lex;
    const std::vector<Token> Tokens = Tokenize(Widen(Text), Lex);
    if (Lex.Failed) {
        Error = "Line " + std::to_string(Lex.At.Line) + ": " + Lex.Message;
        return false;
    }
    size_t I = 0;
    while (Tokens[I].Kind != TokenKind::End) {
        if (Tokens[I].Kind == TokenKind::LineEnd) {
            ++I;
            continue;
        }
        const int Line = Tokens[I].Line;
        LineReader Read(Tokens, I);
        bool Ok = false;
        if (Read.Accept("CONST")) {
            LibraryConstant Constant;
            bool Negative = false;
            Ok = Read.Word(Constant.Name) && Read.Accept("AS") && Read.Type(Constant.Type) &&
                 Read.Accept("=");
            Negative = Ok && Read.Accept("-");
            if (Ok && Read.Peek().Kind == TokenKind::WholeNumber) {
                Constant.Value = Negative ? -Read.Peek().Whole : Read.Peek().Whole;
                ++I;
                Library.Constants.push_back(Constant);
            } else {
                Ok = false;
            }
        } else {
            LibraryProcedure Procedure;
            const bool IsFunction = Read.Accept("FUNCTION");
            Ok =
                (IsFunction || Read.Accept("SUB")) && Read.Word(Procedure.Name) && Read.Accept("(");
            if (Ok && !Read.Accept(")")) {
                do {
                    LibraryParameter Parameter;
                    Read.Accept("BYVAL");
                    Ok =
                        Read.Word(Parameter.Name) && Read.Accept("AS") && Read.Type(Parameter.Type);
                    Procedure.Parameters.push_back(Parameter);
                } while (Ok && Read.Accept(","));
                Ok = Ok && Read.Accept(")");
            }
            if (Ok && IsFunction) {
                Ok = Read.Accept("AS") && Read.Type(Procedure.Result);
            }
            std::string Call;
            Ok = Ok && Read.Accept("=") && Read.Word(Call);
            if (Ok) {
                const auto Number = LibraryCalls::Find(Call);
                if (!Number) {
                    Error = "Line " + std::to_string(Line) + ": the machine has no library call " +
                            Call;
                    return false;
                }
                Procedure.Call = *Number;
                Library.Procedures.push_back(Procedure);
            }
        }
        if (!Ok || Tokens[I].Kind != TokenKind::LineEnd) {
            Error = "Line " + std::to_string(Line) +
                    ": expected a declaration of the form \"Const Name As Type = Number\", "
                    "\"Sub Name(Parameter As Type, ...) = Call\" or \"Function Name(...) As Type "
                    "= Call\"";
            return false;
        }
    }
    return true;
}

}  // namespace KavlinCompiler
