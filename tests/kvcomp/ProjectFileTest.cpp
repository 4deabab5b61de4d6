#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kvcomp/ProjectFile.h"

namespace {

struct ProjectCase {
    const char16_t* Text;
    std::vector<std::pair<std::string, std::string>> Modules;  // line, file
};

TEST(ProjectFileTest, NamesTheModulesOfEveryLineBesideTheProjectOrWhereTheyAre) {
    const ProjectCase Cases[] = {
        {u"", {}},
        {u"\r\n", {}},
        {u"main.bas\r\nled.bas\r\n", {{"main.bas", "/p/main.bas"}, {"led.bas", "/p/led.bas"}}},
        {u"main.bas\nled.bas", {{"main.bas", "/p/main.bas"}, {"led.bas", "/p/led.bas"}}},
        {u"main.bas\rled.bas\r", {{"main.bas", "/p/main.bas"}, {"led.bas", "/p/led.bas"}}},
        {u"  main.bas  \r\n\r\n   \r\nled.bas",
         {{"main.bas", "/p/main.bas"}, {"led.bas", "/p/led.bas"}}},
        {u"sub\\util.bas", {{"sub\\util.bas", "/p/sub/util.bas"}}},
        {u"sub/util.bas", {{"sub/util.bas", "/p/sub/util.bas"}}},
        {u"/elsewhere/x.bas\r\n", {{"/elsewhere/x.bas", "/elsewhere/x.bas"}}},
        {u"\\elsewhere\\x.bas", {{"\\elsewhere\\x.bas", "/elsewhere/x.bas"}}},
        {u"Ünïcødé.bas", {{"Ünïcødé.bas", "/p/Ünïcødé.bas"}}},
    };
    for (const ProjectCase& Case : Cases) {
        const std::vector<ProjectFile::ModuleName> Names =
            ProjectFile::ModuleNames(Case.Text, "/p");
        std::vector<std::pair<std::string, std::string>> Found;
        for (const ProjectFile::ModuleName& Name : Names) {
            Found.emplace_back(Name.Line, Name.File.string());
        }
        EXPECT_EQ(Found, Case.Modules) << std::u16string_view(Case.Text).size();
    }
}

}  // namespace
