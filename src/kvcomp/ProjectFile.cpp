#include "kvcomp/ProjectFile.h"

#include <algorithm>

#include "kvcomp/ModuleText.h"

namespace ProjectFile {

namespace {

// Blanks are spaces, as the program trims the project's lines.
std::u16string TrimBlanks(const std::u16string& Text) {
    const size_t First = Text.find_first_not_of(u' ');
    if (First == std::u16string::npos) {
        return {};
    }
    return Text.substr(First, Text.find_last_not_of(u' ') - First + 1);
}

}  // namespace

std::vector<ModuleName> ModuleNames(const std::u16string& Text,
                                    const std::filesystem::path& ProjectDirectory) {
    std::vector<ModuleName> Names;
    size_t Start = 0;
    while (Start <= Text.size()) {
        size_t End = Text.find_first_of(u"\r\n", Start);
        if (End == std::u16string::npos) {
            End = Text.size();
        }
        const std::u16string Line = TrimBlanks(Text.substr(Start, End - Start));
        if (!Line.empty()) {
            std::string Name = ModuleText::ToUtf8(Line);
            std::string Local = Name;
            std::replace(Local.begin(), Local.end(), '\\', '/');
            const std::filesystem::path File(Local);
            Names.push_back({Name, File.is_absolute() ? File : ProjectDirectory / File});
        }
        if (End < Text.size() && Text[End] == u'\r' && End + 1 < Text.size() &&
            Text[End + 1] == u'\n') {
            ++End;
        }
        Start = End + 1;
    }
    return Names;
}

}  // namespace ProjectFile
