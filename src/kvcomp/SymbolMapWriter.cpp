#include "kvcomp/SymbolMapWriter.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace SymbolMapWriter {

namespace {

constexpr int StringType = 61;

bool IsListed(const KavlinCompiler::SymbolEntry& Symbol) {
    return !Symbol.Excluded && Symbol.TypeCode != StringType;
}

// A name is a quoted item: a quote inside would end it early, and the
// reader takes at most 64 characters.
std::string QuotedName(const std::string& Name) {
    std::string Clean;
    for (const char C : Name) {
        if (C != '"' && C != '\r' && C != '\n') {
            Clean += C;
        }
    }
    size_t Characters = 0;
    size_t End = 0;
    while (End < Clean.size() && Characters < MaxNameLength) {
        // A character is its lead byte and the continuation bytes after it.
        ++End;
        while (End < Clean.size() && (static_cast<uint8_t>(Clean[End]) & 0xC0) == 0x80) {
            ++End;
        }
        ++Characters;
    }
    return '"' + Clean.substr(0, End) + '"';
}

// Bounds and the dimension count are 16-bit items of the file.
int32_t Int16(int32_t Value) {
    return std::clamp<int32_t>(Value, std::numeric_limits<int16_t>::min(),
                               std::numeric_limits<int16_t>::max());
}

void AppendRecord(std::string& Text, const KavlinCompiler::SymbolEntry& Symbol) {
    Text += QuotedName(Symbol.Name);
    Text += ',' + std::to_string(Symbol.Address);
    Text += ',' + std::to_string(Symbol.TypeCode);
    Text += Symbol.Excluded ? ",#TRUE#" : ",#FALSE#";
    Text += ',' + std::to_string(Int16(Symbol.Dimensions));
    for (const int32_t Bound : Symbol.Bounds) {
        Text += ',' + std::to_string(Int16(Bound));
    }
    Text += "\r\n";
}

}  // namespace

std::string Text(const std::vector<KavlinCompiler::SymbolEntry>& Symbols) {
    std::string Result;
    size_t Written = 0;
    for (const bool Listed : {true, false}) {
        for (const KavlinCompiler::SymbolEntry& Symbol : Symbols) {
            if (IsListed(Symbol) == Listed && Written < MaxRecords) {
                AppendRecord(Result, Symbol);
                ++Written;
            }
        }
    }
    return Result;
}

}  // namespace SymbolMapWriter
