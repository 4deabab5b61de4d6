#include "kvasm/BytecodeAssembler.h"

#include <bit>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <optional>

#include "machine/BytecodeImage.h"
#include "machine/LibraryCalls.h"
#include "machine/Opcodes.h"

namespace BytecodeAssembler {

namespace {

using Opcodes::OperandKind;

struct Token {
    std::string Text;
    bool Quoted = false;
};

struct Fixup {
    size_t At;
    int Size;
    std::string Symbol;
    int64_t Addend;
    int64_t Low;
    int64_t High;
    int Line;
};

std::string Lower(std::string_view Text) {
    std::string Result(Text);
    for (char& Character : Result) {
        Character = static_cast<char>(std::tolower(static_cast<unsigned char>(Character)));
    }
    return Result;
}

class Assembler {
  public:
    Result Run(std::string_view Source);

  private:
    bool Fail(const std::string& Message) {
        if (Error.empty()) {
            Error = "line " + std::to_string(Line) + ": " + Message;
        }
        return false;
    }
    bool Tokenize(std::string_view Text, std::vector<Token>& Tokens);
    bool Statement(std::vector<Token>& Tokens);
    bool Directive(const std::string& Name, const std::vector<Token>& Operands);
    bool Instruction(const std::string& Mnemonic, const std::vector<Token>& Operands);
    bool Define(const std::string& Name, int64_t Value);
    std::optional<int64_t> Number(const std::string& Text);
    // A number, or a symbol with an optional +N or -N, now or at the end.
    bool Value(const Token& Operand, int Size, int64_t Low, int64_t High);
    bool Emit(int64_t Value, int Size);
    bool Named(const Token& Operand, int Size, std::optional<int64_t> Known, int64_t Low,
               int64_t High);
    uint16_t Literal(const std::string& Text);

    int Line = 0;
    std::string Error;
    std::vector<uint8_t> Code;
    std::vector<uint8_t> Data;
    std::vector<Fixup> Fixups;
    std::map<std::string, int64_t> Symbols;
    ImageHeader Header;
    uint32_t NextRam = 0;
    bool RamSet = false;
    uint32_t NextPersistent = ImageHeader::PersistentBase;
    std::string EntryLabel;
};

bool Assembler::Tokenize(std::string_view Text, std::vector<Token>& Tokens) {
    size_t At = 0;
    while (At < Text.size()) {
        const char Character = Text[At];
        if (Character == ';') {
            break;
        }
        if (std::isspace(static_cast<unsigned char>(Character)) || Character == ',') {
            ++At;
            continue;
        }
        if (Character == '"') {
            Token Quoted;
            Quoted.Quoted = true;
            ++At;
            while (true) {
                if (At >= Text.size()) {
                    return Fail("a text without its closing quote");
                }
                char Next = Text[At++];
                if (Next == '"') {
                    break;
                }
                if (Next == '\\' && At < Text.size()) {
                    const char Escape = Text[At++];
                    switch (Escape) {
                        case 'r':
                            Next = '\r';
                            break;
                        case 'n':
                            Next = '\n';
                            break;
                        case 't':
                            Next = '\t';
                            break;
                        case '0':
                            Next = '\0';
                            break;
                        case 'x': {
                            if (At + 2 > Text.size()) {
                                return Fail("\\x needs two hexadecimal digits");
                            }
                            unsigned Byte = 0;
                            const auto Parsed =
                                std::from_chars(Text.data() + At, Text.data() + At + 2, Byte, 16);
                            if (Parsed.ptr != Text.data() + At + 2) {
                                return Fail("\\x needs two hexadecimal digits");
                            }
                            Next = static_cast<char>(Byte);
                            At += 2;
                            break;
                        }
                        default:
                            Next = Escape;
                            break;
                    }
                }
                Quoted.Text.push_back(Next);
            }
            Tokens.push_back(std::move(Quoted));
            continue;
        }
        Token Plain;
        while (At < Text.size() && !std::isspace(static_cast<unsigned char>(Text[At])) &&
               Text[At] != ',' && Text[At] != ';' && Text[At] != '"') {
            Plain.Text.push_back(Text[At++]);
        }
        Tokens.push_back(std::move(Plain));
    }
    return true;
}

std::optional<int64_t> Assembler::Number(const std::string& Text) {
    if (Text.size() == 3 && Text.front() == '\'' && Text.back() == '\'') {
        return static_cast<unsigned char>(Text[1]);
    }
    std::string_view Digits = Text;
    bool Negative = false;
    if (!Digits.empty() && (Digits[0] == '-' || Digits[0] == '+')) {
        Negative = Digits[0] == '-';
        Digits.remove_prefix(1);
    }
    int Base = 10;
    if (Digits.size() > 2 && Digits[0] == '0' && (Digits[1] == 'x' || Digits[1] == 'X')) {
        Base = 16;
        Digits.remove_prefix(2);
    }
    if (Digits.empty()) {
        return std::nullopt;
    }
    int64_t Value = 0;
    const auto Parsed = std::from_chars(Digits.data(), Digits.data() + Digits.size(), Value, Base);
    if (Parsed.ec != std::errc() || Parsed.ptr != Digits.data() + Digits.size()) {
        return std::nullopt;
    }
    return Negative ? -Value : Value;
}

bool Assembler::Emit(int64_t Value, int Size) {
    for (int Index = 0; Index < Size; ++Index) {
        Code.push_back(static_cast<uint8_t>(static_cast<uint64_t>(Value) >> (8 * Index)));
    }
    return true;
}

bool Assembler::Named(const Token& Operand, int Size, std::optional<int64_t> Known, int64_t Low,
                      int64_t High) {
    if (!Known) {
        return Fail("\"" + Operand.Text + "\" is not a value this operand takes");
    }
    if (*Known < Low || *Known > High) {
        return Fail(std::to_string(*Known) + " is out of range for this operand");
    }
    return Emit(*Known, Size);
}

bool Assembler::Value(const Token& Operand, int Size, int64_t Low, int64_t High) {
    if (Operand.Quoted) {
        return Fail("a text where a number belongs");
    }
    if (const std::optional<int64_t> Plain = Number(Operand.Text)) {
        return Named(Operand, Size, Plain, Low, High);
    }
    std::string Symbol = Operand.Text;
    int64_t Addend = 0;
    const size_t Sign = Symbol.find_first_of("+-", 1);
    if (Sign != std::string::npos) {
        const std::optional<int64_t> Offset = Number(Symbol.substr(Sign));
        if (!Offset) {
            return Fail("\"" + Operand.Text + "\" is no symbol with an offset");
        }
        Addend = *Offset;
        Symbol.resize(Sign);
    }
    if (Symbol.empty() ||
        !(std::isalpha(static_cast<unsigned char>(Symbol[0])) || Symbol[0] == '_')) {
        return Fail("\"" + Operand.Text + "\" is neither a number nor a symbol");
    }
    const auto Found = Symbols.find(Symbol);
    if (Found != Symbols.end()) {
        return Named(Operand, Size, Found->second + Addend, Low, High);
    }
    Fixups.push_back({Code.size(), Size, Symbol, Addend, Low, High, Line});
    return Emit(0, Size);
}

bool Assembler::Define(const std::string& Name, int64_t Value) {
    if (Symbols.contains(Name)) {
        return Fail("\"" + Name + "\" is defined twice");
    }
    Symbols[Name] = Value;
    return true;
}

uint16_t Assembler::Literal(const std::string& Text) {
    const size_t Offset = Data.size();
    Data.push_back(static_cast<uint8_t>(Text.size()));
    Data.insert(Data.end(), Text.begin(), Text.end());
    return static_cast<uint16_t>(Offset);
}

bool Assembler::Directive(const std::string& Name, const std::vector<Token>& Operands) {
    auto Count = [&](size_t Wanted) {
        return Operands.size() == Wanted ? true
                                         : Fail(Name + " takes " + std::to_string(Wanted) +
                                                " operand" + (Wanted == 1 ? "" : "s"));
    };
    auto Whole = [&](size_t Index, int64_t Low, int64_t High, int64_t& Result) {
        const std::optional<int64_t> Parsed =
            Operands[Index].Quoted ? std::nullopt : Number(Operands[Index].Text);
        if (!Parsed) {
            auto Found = Symbols.find(Operands[Index].Text);
            if (Found == Symbols.end()) {
                return Fail("\"" + Operands[Index].Text + "\" is not a number");
            }
            Result = Found->second;
        } else {
            Result = *Parsed;
        }
        if (Result < Low || Result > High) {
            return Fail(std::to_string(Result) + " is out of range for " + Name);
        }
        return true;
    };
    int64_t A = 0;
    int64_t B = 0;
    if (Name == ".chip") {
        if (!Count(1) || !Whole(0, 0, 255, A)) return false;
        Header.ChipType = static_cast<uint8_t>(A);
        return true;
    }
    if (Name == ".stringsize") {
        if (!Count(1) || !Whole(0, 0, 255, A)) return false;
        Header.StringSize = static_cast<uint8_t>(A);
        return true;
    }
    if (Name == ".ram") {
        if (!Count(2) || !Whole(0, 0, 65535, A) || !Whole(1, 0, 65535, B)) return false;
        if (RamSet && NextRam != Header.RamLow) {
            return Fail(".ram must come before the first .var");
        }
        Header.RamLow = static_cast<uint16_t>(A);
        Header.RamHigh = static_cast<uint16_t>(B);
        NextRam = Header.RamLow;
        RamSet = true;
        return true;
    }
    if (Name == ".var") {
        if (!Count(2) || Operands[0].Quoted || !Whole(1, 1, 65535, B)) return false;
        if (!RamSet) {
            NextRam = Header.RamLow;
            RamSet = true;
        }
        if (!Define(Operands[0].Text, NextRam)) return false;
        NextRam += static_cast<uint32_t>(B);
        return true;
    }
    if (Name == ".persistent") {
        if (!Count(2) || Operands[0].Quoted || !Whole(1, 1, 65535, B)) return false;
        if (!Define(Operands[0].Text, NextPersistent)) return false;
        NextPersistent += static_cast<uint32_t>(B);
        return true;
    }
    if (Name == ".equ") {
        if (!Count(2) || Operands[0].Quoted || !Whole(1, INT32_MIN, UINT32_MAX, B)) return false;
        return Define(Operands[0].Text, B);
    }
    if (Name == ".entry") {
        if (!Count(1)) return false;
        EntryLabel = Operands[0].Text;
        return true;
    }
    if (Name == ".text") {
        if (!Count(2) || Operands[0].Quoted || !Operands[1].Quoted) {
            return Fail(".text takes a name and a quoted text");
        }
        if (Operands[1].Text.size() > 255) {
            return Fail("a literal is at most 255 bytes");
        }
        return Define(Operands[0].Text, Literal(Operands[1].Text));
    }
    if (Name == ".byte") {
        for (size_t Index = 0; Index < Operands.size(); ++Index) {
            if (!Whole(Index, -128, 255, A)) return false;
            Emit(A, 1);
        }
        return true;
    }
    return Fail("unknown directive " + Name);
}

std::optional<int64_t> TypeNumber(const std::string& Text) {
    static const char* const Names[] = {"byte",         "integer", "unsignedinteger", "long",
                                        "unsignedlong", "single",  "boolean"};
    const std::string Wanted = Lower(Text);
    for (int Index = 0; Index < Opcodes::ValueTypeCount; ++Index) {
        if (Wanted == Names[Index]) {
            return Index;
        }
    }
    return std::nullopt;
}

bool Assembler::Instruction(const std::string& Written, const std::vector<Token>& Operands) {
    std::string Mnemonic = Lower(Written);
    if (Mnemonic == "pushf") {
        if (Operands.size() != 1 || Operands[0].Quoted) {
            return Fail("pushf takes one number");
        }
        char* End = nullptr;
        const float Value = std::strtof(Operands[0].Text.c_str(), &End);
        if (End == Operands[0].Text.c_str() || *End != '\0') {
            return Fail("\"" + Operands[0].Text + "\" is not a number");
        }
        Code.push_back(Opcodes::PUSHW);
        return Emit(std::bit_cast<uint32_t>(Value), 4);
    }
    if (Mnemonic == "conv" && Operands.size() == 2) {
        const std::optional<int64_t> From = TypeNumber(Operands[0].Text);
        const std::optional<int64_t> To = TypeNumber(Operands[1].Text);
        if (!From || !To) {
            return Fail("conv takes two type names");
        }
        Code.push_back(Opcodes::CONV);
        return Emit((*From << 4) | *To, 1);
    }
    if (Mnemonic == "pushs" && Operands.size() == 1 && Operands[0].Quoted) {
        if (Operands[0].Text.size() > 255) {
            return Fail("a literal is at most 255 bytes");
        }
        Code.push_back(Opcodes::PUSHS);
        return Emit(Literal(Operands[0].Text), 2);
    }
    const std::optional<uint8_t> Opcode = Opcodes::FindMnemonic(Mnemonic);
    if (!Opcode) {
        return Fail("unknown instruction " + Written);
    }
    const Opcodes::OpcodeInfo& Info = *Opcodes::Info(*Opcode);
    if (Operands.size() != Info.OperandCount) {
        return Fail(Mnemonic + " takes " + std::to_string(Info.OperandCount) + " operand" +
                    (Info.OperandCount == 1 ? "" : "s"));
    }
    Code.push_back(*Opcode);
    for (int Index = 0; Index < Info.OperandCount; ++Index) {
        const Token& Operand = Operands[Index];
        const int Size = Opcodes::OperandLength(Info.Operands[Index]);
        switch (Info.Operands[Index]) {
            case OperandKind::U8:
                if (!Value(Operand, Size, -128, 255)) return false;
                break;
            case OperandKind::I16:
                if (!Value(Operand, Size, -32768, 32767)) return false;
                break;
            case OperandKind::W32:
                if (!Value(Operand, Size, INT32_MIN, UINT32_MAX)) return false;
                break;
            case OperandKind::LibraryCall: {
                std::optional<int64_t> Call = Number(Operand.Text);
                if (!Call) {
                    if (const std::optional<uint8_t> Found = LibraryCalls::Find(Operand.Text)) {
                        Call = *Found;
                    }
                }
                if (!Named(Operand, Size, Call, 0, 255)) return false;
                break;
            }
            case OperandKind::TypeCode:
            case OperandKind::ConversionPair: {
                std::optional<int64_t> Type = Number(Operand.Text);
                if (!Type) {
                    Type = TypeNumber(Operand.Text);
                }
                if (!Named(Operand, Size, Type, 0, 255)) return false;
                break;
            }
            case OperandKind::Condition: {
                static const char* const Names[] = {"eq", "ne", "lt", "le", "gt", "ge"};
                std::optional<int64_t> Condition = Number(Operand.Text);
                for (int Name = 0; Name < 6 && !Condition; ++Name) {
                    if (Lower(Operand.Text) == Names[Name]) {
                        Condition = Name;
                    }
                }
                if (!Named(Operand, Size, Condition, 0, 255)) return false;
                break;
            }
            default:
                if (!Value(Operand, Size, 0, 65535)) return false;
                break;
        }
    }
    return true;
}

bool Assembler::Statement(std::vector<Token>& Tokens) {
    size_t First = 0;
    while (First < Tokens.size() && !Tokens[First].Quoted && Tokens[First].Text.size() > 1 &&
           Tokens[First].Text.back() == ':') {
        const std::string Label = Tokens[First].Text.substr(0, Tokens[First].Text.size() - 1);
        if (!Define(Label, static_cast<int64_t>(ImageHeader::Size + Code.size()))) {
            return false;
        }
        ++First;
    }
    if (First >= Tokens.size()) {
        return true;
    }
    if (Tokens[First].Quoted) {
        return Fail("a text where an instruction belongs");
    }
    const std::string Name = Tokens[First].Text;
    const std::vector<Token> Operands(Tokens.begin() + static_cast<std::ptrdiff_t>(First) + 1,
                                      Tokens.end());
    if (Name[0] == '.') {
        return Directive(Lower(Name), Operands);
    }
    return Instruction(Name, Operands);
}

Result Assembler::Run(std::string_view Source) {
    Result Output;
    size_t Start = 0;
    while (Start <= Source.size() && Error.empty()) {
        size_t End = Source.find('\n', Start);
        if (End == std::string_view::npos) {
            End = Source.size();
        }
        ++Line;
        std::string_view Text = Source.substr(Start, End - Start);
        if (!Text.empty() && Text.back() == '\r') {
            Text.remove_suffix(1);
        }
        std::vector<Token> Tokens;
        if (Tokenize(Text, Tokens)) {
            Statement(Tokens);
        }
        Start = End + 1;
    }
    for (const Fixup& Pending : Fixups) {
        if (!Error.empty()) {
            break;
        }
        Line = Pending.Line;
        const auto Found = Symbols.find(Pending.Symbol);
        if (Found == Symbols.end()) {
            Fail("\"" + Pending.Symbol + "\" is not defined");
            break;
        }
        const int64_t Value = Found->second + Pending.Addend;
        if (Value < Pending.Low || Value > Pending.High) {
            Fail(std::to_string(Value) + " is out of range for this operand");
            break;
        }
        for (int Index = 0; Index < Pending.Size; ++Index) {
            Code[Pending.At + Index] =
                static_cast<uint8_t>(static_cast<uint64_t>(Value) >> (8 * Index));
        }
    }
    if (Error.empty()) {
        const size_t Length = ImageHeader::Size + Code.size() + Data.size();
        if (Length > 32768) {
            Line = 0;
            Fail("the image is " + std::to_string(Length) + " bytes, more than 32768");
        } else {
            if (!RamSet) {
                NextRam = Header.RamLow;
            }
            Header.Length = static_cast<uint16_t>(Length);
            Header.CodeSize = static_cast<uint16_t>(Code.size());
            Header.DataSize = static_cast<uint16_t>(Data.size());
            Header.GlobalsEnd = static_cast<uint16_t>(NextRam);
            Header.PersistentSize =
                static_cast<uint16_t>(NextPersistent - ImageHeader::PersistentBase);
            Header.Entry = ImageHeader::Size;
            const std::string Entry = EntryLabel.empty() ? "Main" : EntryLabel;
            const auto Found = Symbols.find(Entry);
            if (Found != Symbols.end()) {
                Header.Entry = static_cast<uint16_t>(Found->second);
            } else if (!EntryLabel.empty()) {
                Line = 0;
                Fail("the entry \"" + EntryLabel + "\" is not defined");
            }
            Output.Image.resize(BytecodeImage::PaddedLength(Length), 0);
            Header.Write(Output.Image);
            std::copy(Code.begin(), Code.end(), Output.Image.begin() + ImageHeader::Size);
            std::copy(Data.begin(), Data.end(),
                      Output.Image.begin() +
                          static_cast<std::ptrdiff_t>(ImageHeader::Size + Code.size()));
            BytecodeImage::Seal(Output.Image);
        }
    }
    Output.Ok = Error.empty();
    Output.Error = Error;
    Output.Symbols = Symbols;
    if (!Output.Ok) {
        Output.Image.clear();
    }
    return Output;
}

}  // namespace

Result Assemble(std::string_view Source) { return Assembler().Run(Source); }

}  // namespace BytecodeAssembler
