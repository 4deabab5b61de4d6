#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// The component's writes of the files it makes (image, symbol map, object
// files), with the program's own rule for a user's files, in standard C++
// and POSIX since the component has no Qt: the bytes go to a new file beside
// the old one, are synced with every step checked, and only then take the
// old one's place. On failure the old file stays and Error tells why.
namespace OutputFile {

// Durable: synced to the disk before it takes the old file's place (the
// user's image and symbol map); the object files in Temp are only replaced.
enum class Durability { Synced, Replaced };

bool Write(const std::filesystem::path& File, std::string_view Bytes, Durability How,
           std::string& Error);

}  // namespace OutputFile
