#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The dialect's tokens. Keywords are plain words: the parser compares a
// word's upper-case spelling, since the language is case-blind.
namespace KavlinCompiler {

enum class TokenKind : uint8_t {
    Word,
    WholeNumber,
    RealNumber,
    Text,
    Symbol,   // an operator or a mark: + - * / \ ^ & = <> < <= > >= ( ) , ; . :
    LineEnd,  // the end of a line that no " _" continued
    End,
};

struct Token {
    TokenKind Kind = TokenKind::End;
    std::string Spelling;  // as written (UTF-8); for a Text, the bytes it holds
    std::string Upper;     // a Word's or Symbol's spelling in upper case
    int64_t Whole = 0;
    double Real = 0;
    int Line = 1;
    int Column = 1;
    int32_t Start = 0;  // positions with a line break counted as 2
    int32_t End = 0;
};

struct LexError {
    bool Failed = false;
    Token At;
    int Number = 0;
    std::string Message;
};

// Splits a module's text; stops at the first character it cannot read.
std::vector<Token> Tokenize(const std::u16string& Text, LexError& Error);

std::string ToUtf8(const std::u16string& Text);
// Each byte as the character of that number (Latin-1), as the symbol files are read.
std::u16string Widen(const std::string& Text);
std::string UpperCase(const std::string& Text);

}  // namespace KavlinCompiler
