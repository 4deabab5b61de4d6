#include <gtest/gtest.h>

#include <QString>
#include <random>
#include <string>

#include "kvcomp/ModuleText.h"
#include "project/ModuleFile.h"
#include "support/QtPrinters.h"

namespace {

QString FromU16(const std::u16string& Text) {
    return QString::fromUtf16(Text.data(), static_cast<qsizetype>(Text.size()));
}

// The component's text of a module file, with the line ends as the program
// shows them: the program turns a file of LF alone into CR LF, the component
// leaves that to the compiler.
QString AsTheProgramShowsIt(const std::string& Bytes) {
    QString Text = FromU16(ModuleText::Decode(Bytes));
    if (Text.contains(QLatin1Char('\n')) && !Text.contains(QStringLiteral("\r\n"))) {
        Text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    }
    return Text;
}

QString AsTheProgramReadsIt(const std::string& Bytes) {
    ModuleFileFormat Format;
    return ModuleFile::Decode(QByteArray(Bytes.data(), static_cast<qsizetype>(Bytes.size())),
                              Format);
}

struct DecodeCase {
    const char* Bytes;
    const char16_t* Text;
};

TEST(ModuleTextTest, DecodesUtf8WhenValidElseWindows1252) {
    const DecodeCase Cases[] = {
        {"", u""},
        {"Dim x\r\nx = 1\n", u"Dim x\r\nx = 1\n"},
        {"' caf\xC3\xA9", u"' café"},
        {"' caf\xE9", u"' café"},
        {"\x93quoted\x94 \x80", u"“quoted” €"},
        {"\xEF\xBB\xBF' caf\xC3\xA9", u"' café"},
        // A byte order mark before bytes that are no UTF-8 is read as the old code page read it.
        {"\xEF\xBB\xBF' caf\xE9", u"ï»¿' café"},
        {"\xC0\xAF", u"À¯"},
        {"\xED\xA0\x80", u"í\u00A0€"},
        {"\xF0\x9F\x98\x80", u"\U0001F600"},
        {"\xE2\x82", u"â‚"},
        {"\xF4\x90\x80\x80", u"ô\u0090€€"},
        {"\x81\x8D\x8F\x90\x9D", u"\u0081\u008D\u008F\u0090\u009D"},
        {"a\rb", u"a\rb"},
    };
    for (const DecodeCase& Case : Cases) {
        EXPECT_EQ(FromU16(ModuleText::Decode(Case.Bytes)), QString::fromUtf16(Case.Text))
            << Case.Bytes;
    }
}

TEST(ModuleTextTest, DecodesEveryFileAsTheProgramDoes) {
    std::mt19937 Random(20261123);
    for (int Round = 0; Round < 20000; ++Round) {
        std::string Bytes(Random() % 12, '\0');
        for (char& Byte : Bytes) {
            // Mostly the bytes of UTF-8 sequences and the code page's upper half.
            const uint32_t Pick = Random() % 8;
            Byte = static_cast<char>(Pick < 2   ? 'a' + Random() % 3
                                     : Pick < 3 ? "\r\n"[Random() % 2]
                                                : 0x80 + Random() % 0x80);
        }
        ASSERT_EQ(AsTheProgramShowsIt(Bytes), AsTheProgramReadsIt(Bytes))
            << QByteArray::fromStdString(Bytes).toHex(' ').toStdString();
    }
}

TEST(ModuleTextTest, Utf16AndUtf8ConvertBothWays) {
    const std::u16string Text = u"Ungültig – “x” \U0001F600";
    EXPECT_EQ(ModuleText::ToUtf8(Text), QString::fromUtf16(Text.c_str()).toStdString());
    EXPECT_EQ(ModuleText::FromUtf8(ModuleText::ToUtf8(Text)), Text);
    // What is no UTF-8 or UTF-16 becomes the replacement character, not a failure.
    EXPECT_EQ(ModuleText::FromUtf8("a\xFF"), u"a\uFFFD");
    EXPECT_EQ(ModuleText::ToUtf8(std::u16string(1, char16_t(0xD800))), "\xEF\xBF\xBD");
}

}  // namespace
