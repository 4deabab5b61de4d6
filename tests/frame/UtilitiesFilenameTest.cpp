#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <ostream>

#include "FrameTestSupport.h"
#include "frame/UtilitiesFilename.h"
#include "support/FrameFixture.h"

using namespace UtilitiesFilename;

namespace {

// ---- MakeFilename -----------------------------------------------------------

struct MakeCase {
    const char* Path;
    const char* Name;
    const char* Extension;
    const char* Expected;
};

std::ostream& operator<<(std::ostream& Stream, const MakeCase& Case) {
    return Stream << "(\"" << Case.Path << "\", \"" << Case.Name << "\", \"" << Case.Extension
                  << "\") -> \"" << Case.Expected << '"';
}

class MakeFilenameJoins : public ::testing::TestWithParam<MakeCase> {};

TEST_P(MakeFilenameJoins, PathNameAndExtension) {
    const MakeCase& Case = GetParam();
    EXPECT_EQ(MakeFilename(QString::fromUtf8(Case.Path), QString::fromUtf8(Case.Name),
                           QString::fromUtf8(Case.Extension)),
              QString::fromUtf8(Case.Expected));
}

INSTANTIATE_TEST_SUITE_P(
    Backslash, MakeFilenameJoins,
    ::testing::Values(MakeCase{"C:\\dir\\", "a", "bas", "C:\\dir\\a.bas"},
                      MakeCase{"C:\\dir", "a", "bas", "C:\\dir\\a.bas"},
                      MakeCase{"C:\\", "a", "bas", "C:\\a.bas"},
                      MakeCase{"C:", "a", "bas", "C:\\a.bas"},
                      MakeCase{"C:\\my dir\\sub", "blink", "kvp", "C:\\my dir\\sub\\blink.kvp"},
                      MakeCase{"\\\\server\\share", "a", "prf", "\\\\server\\share\\a.prf"}));

INSTANTIATE_TEST_SUITE_P(EmptyParts, MakeFilenameJoins,
                         ::testing::Values(MakeCase{"", "a", "", "a"},
                                           MakeCase{"", "a", "bas", "a.bas"},
                                           MakeCase{"C:\\dir", "a", "", "C:\\dir\\a"},
                                           MakeCase{"C:\\dir", "", "", "C:\\dir\\"},
                                           MakeCase{"", "", "kvb", ".kvb"},
                                           MakeCase{"", "", "", ""}));

INSTANTIATE_TEST_SUITE_P(
    BlanksTrimmed, MakeFilenameJoins,
    ::testing::Values(MakeCase{"  C:\\dir  ", " a ", " bas ", "C:\\dir\\a.bas"},
                      MakeCase{"   ", "  a", "   ", "a"}, MakeCase{"", "a b", "", "a b"},
                      MakeCase{" C:\\dir\\ ", "a", "bas", "C:\\dir\\a.bas"}));

INSTANTIATE_TEST_SUITE_P(
    ForwardSlash, MakeFilenameJoins,
    ::testing::Values(MakeCase{"/tmp/x", "a", "kvp", "/tmp/x/a.kvp"},
                      MakeCase{"/tmp/x/", "a", "kvp", "/tmp/x/a.kvp"},
                      MakeCase{"/", "a", "kvp", "/a.kvp"}, MakeCase{"dir", "a", "bas", "dir/a.bas"},
                      MakeCase{"BinKV10", "SymbolKV10", "sym", "BinKV10/SymbolKV10.sym"}));

// ---- SplitFilename ----------------------------------------------------------

struct SplitCase {
    const char* LongFilename;
    const char* Path;
    const char* Name;
    const char* Extension;
};

std::ostream& operator<<(std::ostream& Stream, const SplitCase& Case) {
    return Stream << '"' << Case.LongFilename << "\" -> \"" << Case.Path << "\", \"" << Case.Name
                  << "\", \"" << Case.Extension << '"';
}

class SplitFilenameSplits : public ::testing::TestWithParam<SplitCase> {};

TEST_P(SplitFilenameSplits, IntoPathNameAndExtension) {
    const SplitCase& Case = GetParam();
    QString Path = QStringLiteral("old path");
    QString Name = QStringLiteral("old name");
    QString Extension = QStringLiteral("old extension");
    SplitFilename(QString::fromUtf8(Case.LongFilename), Path, Name, Extension);
    EXPECT_EQ(Path, QString::fromUtf8(Case.Path));
    EXPECT_EQ(Name, QString::fromUtf8(Case.Name));
    EXPECT_EQ(Extension, QString::fromUtf8(Case.Extension));
}

INSTANTIATE_TEST_SUITE_P(Backslash, SplitFilenameSplits,
                         ::testing::Values(SplitCase{"C:\\a.bas", "C:\\", "a", "bas"},
                                           SplitCase{"a.bas", "", "a", "bas"},
                                           SplitCase{"C:\\dir\\a", "C:\\dir", "a", ""},
                                           SplitCase{"C:\\dir\\a.bas", "C:\\dir", "a", "bas"},
                                           SplitCase{"C:\\dir\\sub\\blink.kvp", "C:\\dir\\sub",
                                                     "blink", "kvp"},
                                           SplitCase{"C:\\my dir\\a.kvp", "C:\\my dir", "a", "kvp"},
                                           SplitCase{"C:\\dir\\a.b.c", "C:\\dir", "a.b", "c"},
                                           SplitCase{"C:\\dir\\a.", "C:\\dir", "a", ""},
                                           SplitCase{"\\a.bas", "", "a", "bas"}));

INSTANTIATE_TEST_SUITE_P(PointInDirectory, SplitFilenameSplits,
                         ::testing::Values(SplitCase{"C:\\v1.2\\main", "C:\\v1.2", "", "2\\main"},
                                           SplitCase{"C:\\v1.2\\main.kvp", "C:\\v1.2", "main",
                                                     "kvp"}));

INSTANTIATE_TEST_SUITE_P(Empty, SplitFilenameSplits,
                         ::testing::Values(SplitCase{"", "", "", ""},
                                           SplitCase{"    ", "", "", ""}));

INSTANTIATE_TEST_SUITE_P(BlanksTrimmed, SplitFilenameSplits,
                         ::testing::Values(SplitCase{"  C:\\dir\\a.bas  ", "C:\\dir", "a", "bas"},
                                           SplitCase{" a.bas", "", "a", "bas"}));

INSTANTIATE_TEST_SUITE_P(ForwardSlash, SplitFilenameSplits,
                         ::testing::Values(SplitCase{"/tmp/x/a.kvp", "/tmp/x", "a", "kvp"},
                                           SplitCase{"/a.kvp", "/", "a", "kvp"},
                                           SplitCase{"dir/a", "dir", "a", ""},
                                           SplitCase{"/tmp/v1.2/main", "/tmp/v1.2", "", "2/main"},
                                           SplitCase{"C:\\dir/a.bas", "C:\\dir", "a", "bas"}));

// ---- GetPathPart and GetExtensionPart --------------------------------------

struct PartCase {
    const char* LongFilename;
    const char* Expected;
};

std::ostream& operator<<(std::ostream& Stream, const PartCase& Case) {
    return Stream << '"' << Case.LongFilename << "\" -> \"" << Case.Expected << '"';
}

class GetPathPartGives : public ::testing::TestWithParam<PartCase> {};

TEST_P(GetPathPartGives, ThePartBeforeTheLastSeparator) {
    EXPECT_EQ(GetPathPart(QString::fromUtf8(GetParam().LongFilename)),
              QString::fromUtf8(GetParam().Expected));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GetPathPartGives,
    ::testing::Values(PartCase{"C:\\a.kvp", "C:\\"}, PartCase{"C:\\dir\\a.kvp", "C:\\dir"},
                      PartCase{"a.kvp", ""}, PartCase{"\\a.kvp", ""}, PartCase{"", ""},
                      PartCase{"  C:\\dir\\a.kvp  ", "C:\\dir"}, PartCase{"C:\\dir\\", "C:\\dir"},
                      PartCase{"/a.kvp", "/"}, PartCase{"/tmp/x/a.kvp", "/tmp/x"},
                      PartCase{"x/a", "x"}, PartCase{"C:/a.kvp", "C:\\"}));

class GetExtensionPartGives : public ::testing::TestWithParam<PartCase> {};

TEST_P(GetExtensionPartGives, TheTextAfterTheLastPoint) {
    EXPECT_EQ(GetExtensionPart(QString::fromUtf8(GetParam().LongFilename)),
              QString::fromUtf8(GetParam().Expected));
}

INSTANTIATE_TEST_SUITE_P(Cases, GetExtensionPartGives,
                         ::testing::Values(PartCase{"a.bas", "bas"}, PartCase{"a", ""},
                                           PartCase{"a.", ""}, PartCase{"a.b.c", "c"},
                                           PartCase{"C:\\v1.2\\main", "2\\main"},
                                           PartCase{"  a.kvp  ", "kvp"}, PartCase{"", ""},
                                           PartCase{".prf", "prf"}));

// ---- IsLegalFilename --------------------------------------------------------

TEST(IsLegalFilename, WildcardsAreIllegal) {
    EXPECT_FALSE(IsLegalFilename(QStringLiteral("*.kvp")));
    EXPECT_FALSE(IsLegalFilename(QStringLiteral("a?.kvp")));
    EXPECT_FALSE(IsLegalFilename(QStringLiteral("C:\\dir\\*")));
    EXPECT_FALSE(IsLegalFilename(QStringLiteral("?")));
}

TEST(IsLegalFilename, EverythingElseIsLegalAlsoEmpty) {
    EXPECT_TRUE(IsLegalFilename(QString()));
    EXPECT_TRUE(IsLegalFilename(QStringLiteral("C:\\dir\\a.kvp")));
    EXPECT_TRUE(IsLegalFilename(QStringLiteral("/tmp/a b.kvp")));
    EXPECT_TRUE(IsLegalFilename(QStringLiteral("<>|\"")));
}

// ---- LocalFilename and TrimBlanks -------------------------------------------

TEST(LocalFilename, TurnsBackslashesIntoSlashes) {
    EXPECT_EQ(LocalFilename(QStringLiteral("dir\\sub\\a.bas")), QStringLiteral("dir/sub/a.bas"));
    EXPECT_EQ(LocalFilename(QStringLiteral("/tmp/a.bas")), QStringLiteral("/tmp/a.bas"));
}

TEST(TrimBlanks, TakesOnlyBlanksOffBothEnds) {
    EXPECT_EQ(TrimBlanks(QStringLiteral("  a b  ")), QStringLiteral("a b"));
    EXPECT_EQ(TrimBlanks(QStringLiteral("\ta\t")), QStringLiteral("\ta\t"));
    EXPECT_EQ(TrimBlanks(QStringLiteral("   ")), QString());
}

// ---- File system: FileExists, DirectoryExists, DeleteFile, GetAbsolutePath --

class UtilitiesFilenameFiles : public FrameFixture {};

TEST_F(UtilitiesFilenameFiles, FileExistsFindsAFile) {
    const QString Name = WriteFile(QStringLiteral("a.kvp"));
    EXPECT_TRUE(FileExists(Name));
    EXPECT_TRUE(FileExists(MakeFilename(TempPath(), QStringLiteral("a"), QStringLiteral("kvp"))));
}

TEST_F(UtilitiesFilenameFiles, FileExistsIsFalseForAMissingFile) {
    EXPECT_FALSE(FileExists(TempPath() + QStringLiteral("/missing.kvp")));
    EXPECT_FALSE(FileExists(TempPath() + QStringLiteral("/nodir/missing.kvp")));
}

TEST_F(UtilitiesFilenameFiles, FileExistsIsFalseForWildcardsEvenIfSuchFilesExist) {
    WriteFile(QStringLiteral("a.kvp"));
    WriteFile(QStringLiteral("b.kvp"));
    // This file system even allows files named by the wildcards themselves.
    WriteFile(QStringLiteral("*.kvp"));
    WriteFile(QStringLiteral("?.kvp"));
    ASSERT_TRUE(QFileInfo(TempPath() + QStringLiteral("/*.kvp")).isFile());
    ASSERT_TRUE(QDir::setCurrent(TempPath()));
    EXPECT_FALSE(FileExists(QStringLiteral("*.kvp")));
    EXPECT_FALSE(FileExists(TempPath() + QStringLiteral("/*.kvp")));
    EXPECT_FALSE(FileExists(TempPath() + QStringLiteral("/?.kvp")));
}

TEST_F(UtilitiesFilenameFiles, FileExistsIsFalseForADirectory) {
    ASSERT_TRUE(QDir(TempPath()).mkdir(QStringLiteral("sub")));
    EXPECT_FALSE(FileExists(TempPath() + QStringLiteral("/sub")));
}

TEST_F(UtilitiesFilenameFiles, FileExistsTakesBackslashSeparators) {
    const QString Name = WriteFile(QStringLiteral("sub/a.kvp"));
    QString Windows = Name;
    Windows.replace(QLatin1Char('/'), QLatin1Char('\\'));
    EXPECT_TRUE(FileExists(Windows));
}

TEST_F(UtilitiesFilenameFiles, FileExistsTakesANameRelativeToTheCurrentDirectory) {
    WriteFile(QStringLiteral("sub/a.kvp"));
    ASSERT_TRUE(QDir::setCurrent(TempPath()));
    EXPECT_TRUE(FileExists(QStringLiteral("sub/a.kvp")));
    EXPECT_TRUE(FileExists(QStringLiteral("sub\\a.kvp")));
    EXPECT_FALSE(FileExists(QStringLiteral("a.kvp")));
}

TEST_F(UtilitiesFilenameFiles, DirectoryExistsOnlyForADirectory) {
    ASSERT_TRUE(QDir(TempPath()).mkdir(QStringLiteral("sub")));
    const QString File = WriteFile(QStringLiteral("a.kvp"));
    EXPECT_TRUE(DirectoryExists(TempPath()));
    EXPECT_TRUE(DirectoryExists(TempPath() + QStringLiteral("/sub")));
    EXPECT_TRUE(DirectoryExists(TempPath() + QStringLiteral("/sub/")));
    EXPECT_FALSE(DirectoryExists(File));
    EXPECT_FALSE(DirectoryExists(TempPath() + QStringLiteral("/gone")));
    EXPECT_FALSE(DirectoryExists(QString()));
}

TEST_F(UtilitiesFilenameFiles, DirectoryExistsTakesBackslashSeparators) {
    ASSERT_TRUE(QDir(TempPath()).mkpath(QStringLiteral("sub/deeper")));
    QString Windows = TempPath() + QStringLiteral("/sub/deeper");
    Windows.replace(QLatin1Char('/'), QLatin1Char('\\'));
    EXPECT_TRUE(DirectoryExists(Windows));
}

TEST_F(UtilitiesFilenameFiles, DeleteFileRemovesTheFile) {
    const QString Name = WriteFile(QStringLiteral("a.kvb"));
    ASSERT_TRUE(QFile::exists(Name));
    DeleteFile(Name);
    EXPECT_FALSE(QFile::exists(Name));
}

TEST_F(UtilitiesFilenameFiles, DeleteFileTakesBackslashSeparators) {
    const QString Name = WriteFile(QStringLiteral("sub/a.kvb"));
    QString Windows = Name;
    Windows.replace(QLatin1Char('/'), QLatin1Char('\\'));
    DeleteFile(Windows);
    EXPECT_FALSE(QFile::exists(Name));
}

TEST_F(UtilitiesFilenameFiles, DeleteFileLeavesAFileWithAnIllegalName) {
    // A name with a wildcard is never acted on, even where the file system
    // allows such a file to exist.
    const QString Name = WriteFile(QStringLiteral("a*.kvb"));
    ASSERT_TRUE(QFile::exists(Name));
    DeleteFile(Name);
    EXPECT_TRUE(QFile::exists(Name));
}

TEST_F(UtilitiesFilenameFiles, DeleteFileSwallowsAMissingFileAndAnEmptyName) {
    const QString Keep = WriteFile(QStringLiteral("keep.kvb"));
    ASSERT_TRUE(QDir::setCurrent(TempPath()));
    DeleteFile(TempPath() + QStringLiteral("/missing.kvb"));
    DeleteFile(QString());
    EXPECT_TRUE(QFile::exists(Keep));
    EXPECT_TRUE(QFileInfo(TempPath()).isDir());
}

TEST_F(UtilitiesFilenameFiles, GetAbsolutePathResolvesAgainstTheCurrentDirectory) {
    ASSERT_TRUE(QDir::setCurrent(TempPath()));
    const QString Current = QDir::currentPath();
    EXPECT_EQ(GetAbsolutePath(QStringLiteral("sub")), Current + QStringLiteral("/sub"));
    EXPECT_EQ(GetAbsolutePath(QStringLiteral("sub\\deeper")),
              Current + QStringLiteral("/sub/deeper"));
    EXPECT_EQ(GetAbsolutePath(QStringLiteral("sub/../other")), Current + QStringLiteral("/other"));
    EXPECT_EQ(GetAbsolutePath(QStringLiteral(".")), Current);
    EXPECT_EQ(GetAbsolutePath(QString()), Current);
}

TEST_F(UtilitiesFilenameFiles, GetAbsolutePathKeepsAnAbsolutePath) {
    EXPECT_EQ(GetAbsolutePath(QStringLiteral("/tmp/x/y")), QStringLiteral("/tmp/x/y"));
    EXPECT_EQ(GetAbsolutePath(QStringLiteral("  /tmp/x/y/  ")), QStringLiteral("/tmp/x/y"));
    EXPECT_EQ(GetAbsolutePath(QStringLiteral("/tmp/x/../y")), QStringLiteral("/tmp/y"));
}

}  // namespace
