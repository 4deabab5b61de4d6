#include <gtest/gtest.h>

#include <QByteArray>
#include <string>
#include <vector>

#include "kvcomp/SymbolMapWriter.h"
#include "monitor/KvmFile.h"
#include "support/QtPrinters.h"

namespace {

KavlinCompiler::SymbolEntry Symbol(const std::string& Name, int32_t Address, int TypeCode,
                                   bool Excluded = false, int Dimensions = 0) {
    KavlinCompiler::SymbolEntry Entry;
    Entry.Name = Name;
    Entry.Address = Address;
    Entry.TypeCode = TypeCode;
    Entry.Excluded = Excluded;
    Entry.Dimensions = Dimensions;
    return Entry;
}

KvmFileContents ReadBack(const std::vector<KavlinCompiler::SymbolEntry>& Symbols) {
    return KvmFile::Parse(QByteArray::fromStdString(SymbolMapWriter::Text(Symbols)));
}

TEST(SymbolMapWriterTest, ARecordIsOneLineOf21Items) {
    KavlinCompiler::SymbolEntry Buffer = Symbol("Buffer", 300, 18, false, 1);
    Buffer.Bounds[0] = 0;
    Buffer.Bounds[1] = 9;
    EXPECT_EQ(SymbolMapWriter::Text({Symbol("Counter", 210, 19), Buffer}),
              "\"Counter\",210,19,#FALSE#,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\r\n"
              "\"Buffer\",300,18,#FALSE#,1,0,9,0,0,0,0,0,0,0,0,0,0,0,0,0,0\r\n");
}

TEST(SymbolMapWriterTest, TheWatchWindowReadsWhatIsWritten) {
    const KvmFileContents Contents =
        ReadBack({Symbol("Count", 207, 19), Symbol("Name", 209, 61, true), Symbol("Total", 230, 20),
                  Symbol("Ünïcødé", 234, 50)});
    EXPECT_TRUE(Contents.IsLoaded) << Contents.ErrorText.toStdString();
    EXPECT_EQ(Contents.Rows,
              (QStringList{QStringLiteral("Count.Integer"), QStringLiteral("Total.Long"),
                           QStringLiteral("Ünïcødé.Boolean")}));
    ASSERT_EQ(Contents.Entries.size(), 3);
    EXPECT_EQ(Contents.Entries[1].Address, 230);
}

TEST(SymbolMapWriterTest, AtMost255RecordsTheWatchableOnesFirst) {
    std::vector<KavlinCompiler::SymbolEntry> Symbols;
    for (int Index = 0; Index < 100; ++Index) {
        Symbols.push_back(Symbol("Local" + std::to_string(Index), 400, 19, true));
    }
    for (int Index = 0; Index < 300; ++Index) {
        Symbols.push_back(Symbol("V" + std::to_string(Index), 207 + Index, 18));
    }
    const std::string Text = SymbolMapWriter::Text(Symbols);
    EXPECT_EQ(std::count(Text.begin(), Text.end(), '\n'), 255);
    EXPECT_EQ(Text.find("Local"), std::string::npos);
    const KvmFileContents Contents = KvmFile::Parse(QByteArray::fromStdString(Text));
    EXPECT_TRUE(Contents.IsLoaded) << Contents.ErrorText.toStdString();
    ASSERT_EQ(Contents.Entries.size(), 255);
    EXPECT_EQ(Contents.Entries[0].Name, QStringLiteral("V0"));
    EXPECT_EQ(Contents.Entries[254].Name, QStringLiteral("V254"));
}

TEST(SymbolMapWriterTest, NamesAndBoundsAreKeptWithinWhatTheFileHolds) {
    KavlinCompiler::SymbolEntry Long = Symbol(std::string(70, 'x') + "\"", 207, 19, false, 1);
    Long.Bounds[1] = 100000;
    Long.Bounds[2] = -100000;
    const KvmFileContents Contents = ReadBack({Long});
    EXPECT_TRUE(Contents.IsLoaded) << Contents.ErrorText.toStdString();
    ASSERT_EQ(Contents.Entries.size(), 1);
    EXPECT_EQ(Contents.Entries[0].Name, QString(64, QLatin1Char('x')));
    EXPECT_NE(SymbolMapWriter::Text({Long}).find(",32767,-32768,"), std::string::npos);
}

}  // namespace
