#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Texts as the component meets them: module files on disk, UTF-8 messages of
// the compiler, UTF-16 texts of the interface. Standard C++ only.
namespace ModuleText {

// A module file's text, decoded as the program decodes the modules it edits:
// UTF-8 when the bytes are valid UTF-8 (a byte order mark dropped), else
// Windows-1252. Line breaks stay as they are in the file.
std::u16string Decode(std::string_view Bytes);

// True when the bytes are well-formed UTF-8: no overlong forms, no encoded
// surrogates, nothing above U+10FFFF, no sequence cut off.
bool IsValidUtf8(std::string_view Bytes);

// Conversions between the interface's UTF-16 and UTF-8. Ill-formed input
// becomes U+FFFD rather than failing: these carry names and messages.
std::u16string FromUtf8(std::string_view Text);
std::string ToUtf8(std::u16string_view Text);

}  // namespace ModuleText
