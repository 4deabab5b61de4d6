#include "compiler/Lexer.h"

#include <cmath>

namespace KavlinCompiler {

namespace {

bool IsLetter(char16_t C) { return (C >= 'A' && C <= 'Z') || (C >= 'a' && C <= 'z'); }
bool IsDigit(char16_t C) { return C >= '0' && C <= '9'; }
bool IsBlank(char16_t C) { return C == ' ' || C == '\t'; }
bool IsBreak(char16_t C) { return C == '\r' || C == '\n'; }

class Scanner {
  public:
    explicit Scanner(const std::u16string& Text) : Text_(Text) {}

    std::vector<Token> Run(LexError& Error) {
        std::vector<Token> Tokens;
        while (I_ < Text_.size()) {
            const char16_t C = Text_[I_];
            if (IsBlank(C) || C == 0xFEFF) {
                Advance();
            } else if (IsBreak(C)) {
                Token T = Begin(TokenKind::LineEnd);
                Advance();
                T.End = Pos_;
                Tokens.push_back(T);
            } else if (C == '\'') {
                SkipComment();
            } else if (C == '_' && ContinuesLine()) {
                Advance();
                while (I_ < Text_.size() && IsBlank(Text_[I_])) {
                    Advance();
                }
                if (I_ < Text_.size()) {
                    Advance();  // the line break the mark continues over
                }
            } else if (IsLetter(C)) {
                Token T = Begin(TokenKind::Word);
                while (I_ < Text_.size() &&
                       (IsLetter(Text_[I_]) || IsDigit(Text_[I_]) || Text_[I_] == '_')) {
                    T.Spelling += static_cast<char>(Text_[I_]);
                    Advance();
                }
                T.Upper = UpperCase(T.Spelling);
                T.End = Pos_;
                if (T.Upper == "REM") {
                    SkipComment();
                    continue;
                }
                Tokens.push_back(T);
            } else if (IsDigit(C) ||
                       (C == '.' && I_ + 1 < Text_.size() && IsDigit(Text_[I_ + 1]))) {
                if (!Number(Tokens, Error)) {
                    return Tokens;
                }
            } else if (C == '&' && I_ + 1 < Text_.size() &&
                       (Text_[I_ + 1] == 'H' || Text_[I_ + 1] == 'h')) {
                if (!HexNumber(Tokens, Error)) {
                    return Tokens;
                }
            } else if (C == '"') {
                if (!TextLiteral(Tokens, Error)) {
                    return Tokens;
                }
            } else if (std::u16string(u"+-*/\\^&=<>(),;.:").find(C) != std::u16string::npos) {
                Token T = Begin(TokenKind::Symbol);
                T.Spelling = static_cast<char>(C);
                Advance();
                if (I_ < Text_.size() && C == '<' && (Text_[I_] == '>' || Text_[I_] == '=')) {
                    T.Spelling += static_cast<char>(Text_[I_]);
                    Advance();
                } else if (I_ < Text_.size() && C == '>' && Text_[I_] == '=') {
                    T.Spelling += '=';
                    Advance();
                }
                T.Upper = T.Spelling;
                T.End = Pos_;
                Tokens.push_back(T);
            } else {
                Token T = Begin(TokenKind::Symbol);
                Advance();
                T.End = Pos_;
                Fail(Error, T, 101,
                     "Unexpected character '" + ToUtf8(std::u16string(1, C)) +
                         "': expected a name, a number, a text in double quotes or an operator");
                return Tokens;
            }
        }
        Token Last = Begin(TokenKind::LineEnd);
        Tokens.push_back(Last);
        Last.Kind = TokenKind::End;
        Tokens.push_back(Last);
        return Tokens;
    }

  private:
    Token Begin(TokenKind Kind) const {
        Token T;
        T.Kind = Kind;
        T.Line = Line_;
        T.Column = static_cast<int>(I_ - LineStart_) + 1;
        T.Start = Pos_;
        T.End = Pos_;
        return T;
    }

    // Moves past one character, counting a line break of any kind as two
    // positions and one line.
    void Advance() {
        const char16_t C = Text_[I_];
        if (C == '\r') {
            ++I_;
            if (I_ < Text_.size() && Text_[I_] == '\n') {
                ++I_;
            }
            NewLine();
        } else if (C == '\n') {
            ++I_;
            NewLine();
        } else {
            ++I_;
            ++Pos_;
        }
    }
    void NewLine() {
        Pos_ += 2;
        ++Line_;
        LineStart_ = I_;
    }

    bool ContinuesLine() const {
        if (I_ == 0 || !IsBlank(Text_[I_ - 1])) {
            return false;
        }
        size_t J = I_ + 1;
        while (J < Text_.size() && IsBlank(Text_[J])) {
            ++J;
        }
        return J < Text_.size() && IsBreak(Text_[J]);
    }

    void SkipComment() {
        while (I_ < Text_.size() && !IsBreak(Text_[I_])) {
            Advance();
        }
    }

    static void Fail(LexError& Error, const Token& At, int Number, std::string Message) {
        Error.Failed = true;
        Error.At = At;
        Error.Number = Number;
        Error.Message = std::move(Message);
    }

    bool Number(std::vector<Token>& Tokens, LexError& Error) {
        Token T = Begin(TokenKind::WholeNumber);
        std::string Digits;
        bool Real = false;
        while (I_ < Text_.size() && IsDigit(Text_[I_])) {
            Digits += static_cast<char>(Text_[I_]);
            Advance();
        }
        if (I_ < Text_.size() && Text_[I_] == '.') {
            Real = true;
            Digits += '.';
            Advance();
            while (I_ < Text_.size() && IsDigit(Text_[I_])) {
                Digits += static_cast<char>(Text_[I_]);
                Advance();
            }
        }
        if (I_ + 1 < Text_.size() && (Text_[I_] == 'E' || Text_[I_] == 'e') &&
            (IsDigit(Text_[I_ + 1]) || ((Text_[I_ + 1] == '+' || Text_[I_ + 1] == '-') &&
                                        I_ + 2 < Text_.size() && IsDigit(Text_[I_ + 2])))) {
            Real = true;
            Digits += 'E';
            Advance();
            Digits += static_cast<char>(Text_[I_]);
            Advance();
            while (I_ < Text_.size() && IsDigit(Text_[I_])) {
                Digits += static_cast<char>(Text_[I_]);
                Advance();
            }
        }
        T.Spelling = Digits;
        T.End = Pos_;
        if (I_ < Text_.size() && (IsLetter(Text_[I_]) || Text_[I_] == '_')) {
            Fail(Error, T, 102,
                 "The number " + Digits +
                     " runs into a name: put a blank or an operator between "
                     "them");
            return false;
        }
        if (Real) {
            T.Kind = TokenKind::RealNumber;
            T.Real = std::strtod(Digits.c_str(), nullptr);
            if (!std::isfinite(T.Real) || std::fabs(T.Real) > 3.4028234663852886e38) {
                Fail(Error, T, 103, "The number " + Digits + " is too large even for a Single");
                return false;
            }
        } else {
            int64_t Value = 0;
            for (const char D : Digits) {
                Value = Value * 10 + (D - '0');
                if (Value > 4294967295LL) {
                    Fail(Error, T, 103,
                         "The number " + Digits +
                             " is too large: whole numbers go up to 4294967295; write a Single "
                             "with a decimal point for more");
                    return false;
                }
            }
            T.Whole = Value;
        }
        Tokens.push_back(T);
        return true;
    }

    bool HexNumber(std::vector<Token>& Tokens, LexError& Error) {
        Token T = Begin(TokenKind::WholeNumber);
        Advance();
        Advance();
        int64_t Value = 0;
        int Count = 0;
        T.Spelling = "&H";
        while (I_ < Text_.size()) {
            const char16_t C = Text_[I_];
            int Digit = -1;
            if (IsDigit(C)) {
                Digit = C - '0';
            } else if (C >= 'A' && C <= 'F') {
                Digit = C - 'A' + 10;
            } else if (C >= 'a' && C <= 'f') {
                Digit = C - 'a' + 10;
            } else {
                break;
            }
            T.Spelling += static_cast<char>(C);
            Value = Value * 16 + Digit;
            ++Count;
            Advance();
            if (Count > 8) {
                break;
            }
        }
        T.End = Pos_;
        if (Count == 0 || Count > 8) {
            Fail(Error, T, 104,
                 "Expected one to eight hexadecimal digits after &H, found " +
                     (Count == 0 ? std::string("none") : std::string("more")));
            return false;
        }
        T.Whole = Value;
        Tokens.push_back(T);
        return true;
    }

    bool TextLiteral(std::vector<Token>& Tokens, LexError& Error) {
        Token T = Begin(TokenKind::Text);
        Advance();
        for (;;) {
            if (I_ >= Text_.size() || IsBreak(Text_[I_])) {
                T.End = Pos_;
                Fail(Error, T, 105,
                     "This text has no closing double quote: expected \" before the end of the "
                     "line");
                return false;
            }
            const char16_t C = Text_[I_];
            if (C == '"') {
                Advance();
                if (I_ < Text_.size() && Text_[I_] == '"') {
                    T.Spelling += '"';
                    Advance();
                    continue;
                }
                break;
            }
            if (C > 255) {
                Token At = Begin(TokenKind::Text);
                Advance();
                At.End = Pos_;
                Fail(Error, At, 106,
                     "The character '" + ToUtf8(std::u16string(1, C)) +
                         "' has no byte on the chip: a text holds characters 0 to 255 only");
                return false;
            }
            T.Spelling += static_cast<char>(static_cast<uint8_t>(C));
            Advance();
        }
        T.End = Pos_;
        Tokens.push_back(T);
        return true;
    }

    const std::u16string& Text_;
    size_t I_ = 0;
    size_t LineStart_ = 0;
    int Line_ = 1;
    int32_t Pos_ = 0;
};

}  // namespace

std::vector<Token> Tokenize(const std::u16string& Text, LexError& Error) {
    Scanner Scan(Text);
    return Scan.Run(Error);
}

std::string ToUtf8(const std::u16string& Text) {
    std::string Out;
    for (size_t I = 0; I < Text.size(); ++I) {
        uint32_t C = Text[I];
        if (C >= 0xD800 && C <= 0xDBFF && I + 1 < Text.size() && Text[I + 1] >= 0xDC00 &&
            Text[I + 1] <= 0xDFFF) {
            C = 0x10000 + ((C - 0xD800) << 10) + (Text[I + 1] - 0xDC00);
            ++I;
        }
        if (C < 0x80) {
            Out += static_cast<char>(C);
        } else if (C < 0x800) {
            Out += static_cast<char>(0xC0 | (C >> 6));
            Out += static_cast<char>(0x80 | (C & 0x3F));
        } else if (C < 0x10000) {
            Out += static_cast<char>(0xE0 | (C >> 12));
            Out += static_cast<char>(0x80 | ((C >> 6) & 0x3F));
            Out += static_cast<char>(0x80 | (C & 0x3F));
        } else {
            Out += static_cast<char>(0xF0 | (C >> 18));
            Out += static_cast<char>(0x80 | ((C >> 12) & 0x3F));
            Out += static_cast<char>(0x80 | ((C >> 6) & 0x3F));
            Out += static_cast<char>(0x80 | (C & 0x3F));
        }
    }
    return Out;
}

std::u16string Widen(const std::string& Text) {
    std::u16string Out;
    for (const char C : Text) {
        Out += static_cast<char16_t>(static_cast<uint8_t>(C));
    }
    return Out;
}

std::string UpperCase(const std::string& Text) {
    std::string Out = Text;
    for (char& C : Out) {
        if (C >= 'a' && C <= 'z') {
            C = static_cast<char>(C - 'a' + 'A');
        }
    }
    return Out;
}

}  // namespace KavlinCompiler
