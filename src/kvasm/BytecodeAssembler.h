#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// A small assembler for the machine's bytecode, so that images can be written
// as readable text before there is a compiler (docs/bytecode.md, "The
// assembler"). It lays out the header, the code, the literals and the
// variables and seals the image as a compiler would.
namespace BytecodeAssembler {

struct Result {
    bool Ok = false;
    std::vector<uint8_t> Image;
    // "line 3: unknown instruction ldx.b"
    std::string Error;
    // Labels as code addresses, variables as RAM or EEPROM addresses,
    // literals as data offsets.
    std::map<std::string, int64_t> Symbols;
};

Result Assemble(std::string_view Source);

}  // namespace BytecodeAssembler
