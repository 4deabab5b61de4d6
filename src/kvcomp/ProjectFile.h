#pragma once

#include <filesystem>
#include <string>
#include <vector>

// The project file as the component reads it: one module file name a line.
namespace ProjectFile {

struct ModuleName {
    // As the line names it, blanks trimmed: for messages.
    std::string Line;
    // Where the file is: a short or relative name lies beside the project file.
    std::filesystem::path File;
};

// The module names of the project file's text. Lines end in CR LF, LF or CR;
// blank lines name nothing; "\" in a name (a project written on Windows) is a
// directory separator.
std::vector<ModuleName> ModuleNames(const std::u16string& Text,
                                    const std::filesystem::path& ProjectDirectory);

}  // namespace ProjectFile
