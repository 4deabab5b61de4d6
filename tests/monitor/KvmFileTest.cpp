#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <chrono>
#include <future>
#include <ostream>
#include <thread>

#include "monitor/KvmFile.h"
#include "support/QtPrinters.h"

void PrintTo(const KvmEntry& Entry, std::ostream* Stream) {
    *Stream << '"' << Entry.Name.toStdString() << "\" " << Entry.Address << ' '
            << Entry.VariableType << (Entry.IsExcluded ? " excluded " : " ")
            << Entry.DimensionCount;
}

namespace {

const QString ReadError = QStringLiteral("Error reading KVM file");
const QString NotFound = QStringLiteral("Error -- KVM file not found");

// One record as the compiler writes it: the five fields, eight pairs of
// bounds, CR LF.
QByteArray Record(const QByteArray& Name, int32_t Address, int32_t VariableType,
                  bool IsExcluded = false, int16_t DimensionCount = 0) {
    QByteArray Line = '"' + Name + "\"," + QByteArray::number(Address) + ',' +
                      QByteArray::number(VariableType) + ',' + (IsExcluded ? "#TRUE#" : "#FALSE#") +
                      ',' + QByteArray::number(DimensionCount);
    for (int Bound = 0; Bound < 8; ++Bound) {
        Line += DimensionCount > Bound ? ",0,9" : ",0,0";
    }
    return Line + "\r\n";
}

QByteArray Usable(int Count) {
    QByteArray File;
    for (int Index = 0; Index < Count; ++Index) {
        File += Record("V" + QByteArray::number(Index), Index, 18);
    }
    return File;
}

// Sixteen bounds behind the first five items.
QByteArray Bounds() { return QByteArray(",0").repeated(16); }

TEST(KvmFileTypeSuffix, GivesTheTextOfEachTypeCode) {
    EXPECT_EQ(KvmFile::TypeSuffix(17, 0), QStringLiteral(".UnsignedInteger"));
    EXPECT_EQ(KvmFile::TypeSuffix(18, 0), QStringLiteral(".Byte"));
    EXPECT_EQ(KvmFile::TypeSuffix(19, 0), QStringLiteral(".Integer"));
    EXPECT_EQ(KvmFile::TypeSuffix(20, 0), QStringLiteral(".Long"));
    EXPECT_EQ(KvmFile::TypeSuffix(21, 0), QStringLiteral(".UnsignedLong"));
    EXPECT_EQ(KvmFile::TypeSuffix(32, 0), QStringLiteral(".Single"));
    EXPECT_EQ(KvmFile::TypeSuffix(50, 0), QStringLiteral(".Boolean"));
    EXPECT_EQ(KvmFile::TypeSuffix(61, 0), QStringLiteral(".String"));
    EXPECT_EQ(KvmFile::TypeSuffix(99, 0), QStringLiteral(".*** ILLEGAL TYPE ***"));
    EXPECT_EQ(KvmFile::TypeSuffix(0, 0), QStringLiteral(".*** ILLEGAL TYPE ***"));
    EXPECT_EQ(KvmFile::TypeSuffix(-17, 0), QStringLiteral(".*** ILLEGAL TYPE ***"));
}

TEST(KvmFileTypeSuffix, PutsBracketsBeforeTheTypeOfAnArray) {
    EXPECT_EQ(KvmFile::TypeSuffix(18, 1), QStringLiteral("().Byte"));
    EXPECT_EQ(KvmFile::TypeSuffix(19, 8), QStringLiteral("().Integer"));
    EXPECT_EQ(KvmFile::TypeSuffix(99, 2), QStringLiteral("().*** ILLEGAL TYPE ***"));
    EXPECT_EQ(KvmFile::TypeSuffix(32, -1), QStringLiteral("().Single"));
}

TEST(KvmFileParse, ListsTheEntriesInFileOrderWithTheirRowTexts) {
    const KvmFileContents Contents = KvmFile::Parse(
        Record("Count", 40, 19) + Record("Buffer", 42, 18, false, 1) + Record("Ratio", 90, 32));
    EXPECT_TRUE(Contents.IsLoaded);
    EXPECT_EQ(Contents.ErrorText, QString());
    EXPECT_EQ(Contents.Rows,
              (QStringList{QStringLiteral("Count.Integer"), QStringLiteral("Buffer().Byte"),
                           QStringLiteral("Ratio.Single")}));
    ASSERT_EQ(Contents.Entries.size(), 3);
    EXPECT_EQ(Contents.Entries[0], (KvmEntry{QStringLiteral("Count"), 40, 19, false, 0}));
    EXPECT_EQ(Contents.Entries[1], (KvmEntry{QStringLiteral("Buffer"), 42, 18, false, 1}));
    EXPECT_EQ(Contents.Entries[2], (KvmEntry{QStringLiteral("Ratio"), 90, 32, false, 0}));
}

TEST(KvmFileParse, AnEmptyFileIsAnEmptyListThatIsLoaded) {
    const KvmFileContents Contents = KvmFile::Parse(QByteArray());
    EXPECT_TRUE(Contents.IsLoaded);
    EXPECT_TRUE(Contents.Entries.isEmpty());
    EXPECT_TRUE(Contents.Rows.isEmpty());
    EXPECT_EQ(Contents.ErrorText, QString());
}

TEST(KvmFileParse, OnlyAStringVariableGivesAnEmptyList) {
    const KvmFileContents Contents = KvmFile::Parse(Record("Message", 10, 61));
    EXPECT_TRUE(Contents.IsLoaded);
    EXPECT_TRUE(Contents.Entries.isEmpty());
    EXPECT_TRUE(Contents.Rows.isEmpty());
}

TEST(KvmFileParse, ExcludedEntriesAndStringsAreOverwrittenByTheNextRecord) {
    const KvmFileContents Contents = KvmFile::Parse(
        Record("Hidden", 1, 19, true) + Record("Count", 2, 19) + Record("Text", 3, 61) +
        Record("Hidden2", 4, 20, true, 2) + Record("Flag", 5, 50) + Record("Last", 6, 18, true));
    EXPECT_TRUE(Contents.IsLoaded);
    EXPECT_EQ(Contents.Rows,
              (QStringList{QStringLiteral("Count.Integer"), QStringLiteral("Flag.Boolean")}));
    ASSERT_EQ(Contents.Entries.size(), 2);
    EXPECT_EQ(Contents.Entries[1], (KvmEntry{QStringLiteral("Flag"), 5, 50, false, 0}));
}

TEST(KvmFileParse, AnUnknownTypeIsListedAsIllegal) {
    const KvmFileContents Contents = KvmFile::Parse(Record("Name", 7, 99));
    EXPECT_TRUE(Contents.IsLoaded);
    EXPECT_EQ(Contents.Rows, QStringList{QStringLiteral("Name.*** ILLEGAL TYPE ***")});
    EXPECT_EQ(Contents.Entries.value(0).VariableType, 99);
}

TEST(KvmFileParse, NamesAreCutTo64CharactersAndTrimmedOfBlanks) {
    const QByteArray Long = QByteArray(70, 'x');
    const KvmFileContents Contents =
        KvmFile::Parse(Record("  Count  ", 1, 19) + Record(Long, 2, 19) +
                       Record("   " + QByteArray(63, 'y'), 3, 19) + Record("\tTab", 4, 19));
    ASSERT_EQ(Contents.Entries.size(), 4);
    EXPECT_EQ(Contents.Entries[0].Name, QStringLiteral("Count"));
    EXPECT_EQ(Contents.Entries[1].Name, QString(64, QLatin1Char('x')));
    // The blanks in front take their place in the 64 characters.
    EXPECT_EQ(Contents.Entries[2].Name, QString(61, QLatin1Char('y')));
    // Only blanks are trimmed, as the old run time's Trim did.
    EXPECT_EQ(Contents.Entries[3].Name, QStringLiteral("\tTab"));
    EXPECT_EQ(Contents.Rows.value(0), QStringLiteral("Count.Integer"));
}

TEST(KvmFileParse, ARecordCutOffByTheEndOfTheFileIsDropped) {
    const QByteArray Whole = Record("Whole", 1, 19);
    const QByteArray Cut = Record("Cut", 2, 20);
    const qsizetype Flag = Cut.indexOf('#');
    // Cut at every place before its last item is whole: inside the quoted
    // name, behind a separator, inside a number.
    for (qsizetype Length = 0; Length < Cut.size() - 3; ++Length) {
        const QByteArray Prefix = Cut.left(Length);
        const KvmFileContents Contents = KvmFile::Parse(Whole + Prefix);
        // "#FAL" is a whole item at the end of the file, and no boolean.
        const bool InsideTheFlag = Length > Flag && Length < Flag + 7;
        EXPECT_EQ(Contents.IsLoaded, !InsideTheFlag) << Prefix.constData();
        EXPECT_EQ(Contents.Rows, QStringList{QStringLiteral("Whole.Integer")})
            << Prefix.constData();
    }
    // Its last digit, with or without the line end, makes it whole.
    EXPECT_EQ(KvmFile::Parse(Whole + Cut.left(Cut.size() - 2)).Rows.size(), 2);
    EXPECT_EQ(KvmFile::Parse(Whole + Cut.left(Cut.size() - 1)).Rows.size(), 2);
}

TEST(KvmFileParse, TheLastRecordNeedsNoLineEnd) {
    QByteArray File = Record("A", 1, 19) + Record("B", 2, 18);
    File.chop(2);
    const KvmFileContents Contents = KvmFile::Parse(File);
    EXPECT_TRUE(Contents.IsLoaded);
    EXPECT_EQ(Contents.Rows.size(), 2);
}

TEST(KvmFileParse, HoldsUpTo255UsableEntries) {
    const KvmFileContents Contents = KvmFile::Parse(Usable(255));
    EXPECT_TRUE(Contents.IsLoaded);
    EXPECT_EQ(Contents.Entries.size(), 255);
    EXPECT_EQ(Contents.Rows.value(254), QStringLiteral("V254.Byte"));
}

TEST(KvmFileParse, The256thUsableEntryIsAnErrorAndTheRowsBeforeItStay) {
    const KvmFileContents Contents = KvmFile::Parse(Usable(300));
    EXPECT_FALSE(Contents.IsLoaded);
    EXPECT_EQ(Contents.ErrorText, ReadError);
    EXPECT_EQ(Contents.Entries.size(), 255);
    EXPECT_EQ(Contents.Rows.size(), 255);
    EXPECT_EQ(Contents.Rows.value(254), QStringLiteral("V254.Byte"));
}

TEST(KvmFileParse, AnyRecordAfterTheFullTableIsAnError) {
    // Its items are stored before anything tells that it is excluded.
    const KvmFileContents Excluded = KvmFile::Parse(Usable(255) + Record("Hidden", 1, 19, true));
    EXPECT_FALSE(Excluded.IsLoaded);
    EXPECT_EQ(Excluded.ErrorText, ReadError);
    EXPECT_EQ(Excluded.Rows.size(), 255);
    // A quoted name that the end of the file cuts off is the normal end.
    const KvmFileContents CutName = KvmFile::Parse(Usable(255) + "\"Na");
    EXPECT_TRUE(CutName.IsLoaded);
    EXPECT_EQ(CutName.Rows.size(), 255);
}

TEST(KvmFileParse, ExcludedEntriesDoNotCountTowardsTheTable) {
    QByteArray File;
    for (int Index = 0; Index < 300; ++Index) {
        File += Record("Hidden", Index, 19, true) + Record("Text", Index, 61);
    }
    File += Usable(255);
    const KvmFileContents Contents = KvmFile::Parse(File);
    EXPECT_TRUE(Contents.IsLoaded);
    EXPECT_EQ(Contents.Entries.size(), 255);
}

TEST(KvmFileParse, AnErrorKeepsTheRowsReadBeforeIt) {
    const KvmFileContents Contents =
        KvmFile::Parse(Record("A", 1, 19) + Record("B", 2, 18) + "\"C\",x,19" + Bounds());
    EXPECT_FALSE(Contents.IsLoaded);
    EXPECT_EQ(Contents.ErrorText, ReadError);
    EXPECT_EQ(Contents.Rows, (QStringList{QStringLiteral("A.Integer"), QStringLiteral("B.Byte")}));
}

TEST(KvmFileParse, ReadsNamesAsUtf8WhenValidElseAsWindows1252) {
    const KvmFileContents Utf8 = KvmFile::Parse(Record("Z\xC3\xA4hler", 1, 19));
    EXPECT_EQ(Utf8.Entries.value(0).Name, QStringLiteral("Z") + QChar(0xE4) + "hler");
    const KvmFileContents Cp1252 = KvmFile::Parse(Record("Z\xE4hler\x80", 1, 19));
    EXPECT_EQ(Cp1252.Entries.value(0).Name,
              QStringLiteral("Z") + QChar(0xE4) + "hler" + QChar(0x20AC));
}

// One record with its first five items given as they stand in the file.
struct ItemCase {
    const char* Items;
    // The one entry listed, or an excluded one for none.
    KvmEntry Entry;
};

std::ostream& operator<<(std::ostream& Stream, const ItemCase& Case) {
    return Stream << '[' << Case.Items << ']';
}

class KvmFileItems : public ::testing::TestWithParam<ItemCase> {};

TEST_P(KvmFileItems, AreReadAsTheOldRunTimeReadThem) {
    const KvmFileContents Contents = KvmFile::Parse(QByteArray(GetParam().Items) + Bounds());
    EXPECT_TRUE(Contents.IsLoaded);
    EXPECT_EQ(Contents.ErrorText, QString());
    if (GetParam().Entry.IsExcluded) {
        EXPECT_TRUE(Contents.Entries.isEmpty());
        return;
    }
    ASSERT_EQ(Contents.Entries.size(), 1);
    EXPECT_EQ(Contents.Entries[0], GetParam().Entry);
}

KvmEntry Entry(const char* Name, int32_t Address, int32_t Type = 19, int16_t Dims = 0) {
    return KvmEntry{QString::fromUtf8(Name), Address, Type, false, Dims};
}

KvmEntry Excluded() { return KvmEntry{QStringLiteral("A"), 5, 19, true, 0}; }

INSTANTIATE_TEST_SUITE_P(
    Accepted, KvmFileItems,
    ::testing::Values(
        ItemCase{"\"A\",5,19,#FALSE#,0", Entry("A", 5)},
        ItemCase{" \"A\" , 5 ,\t19\t, #FALSE# ,  0 ", Entry("A", 5)},
        ItemCase{"\"A\",+5,19,#FALSE#,+0", Entry("A", 5)},
        ItemCase{"\"A\",-5,19,#FALSE#,-1", Entry("A", -5, 19, -1)},
        ItemCase{"\"A\",007,19,#FALSE#,0", Entry("A", 7)},
        ItemCase{"\"A\",2147483647,19,#FALSE#,32767", Entry("A", 2147483647, 19, 32767)},
        ItemCase{"\"A\",-2147483648,-2147483648,#FALSE#,-32768",
                 Entry("A", -2147483647 - 1, -2147483647 - 1, -32768)},
        ItemCase{"\"a,b\",5,19,#FALSE#,0", Entry("a,b", 5)},
        ItemCase{"\"\",5,19,#FALSE#,0", Entry("", 5)},
        ItemCase{"A B ,5,19,#FALSE#,0", Entry("A B", 5)},
        ItemCase{"\"A\"\n5\n19\n#FALSE#\n0", Entry("A", 5)},
        ItemCase{"\"A\"\r5\r19\r#FALSE#\r0", Entry("A", 5)},
        ItemCase{"\"A\"\r\n5\r\n19\r\n#FALSE#\r\n0", Entry("A", 5)},
        ItemCase{"\"A\",5,19,#false#,0", Entry("A", 5)},
        ItemCase{"\"A\",5,19,False,0", Entry("A", 5)}, ItemCase{"\"A\",5,19,0,0", Entry("A", 5)},
        ItemCase{"\"A\",,,,", Entry("A", 0, 0)}, ItemCase{"\"A\",5,19,,0", Entry("A", 5)}));

// An entry excluded in any of the forms is read and not listed.
INSTANTIATE_TEST_SUITE_P(ExcludedForms, KvmFileItems,
                         ::testing::Values(ItemCase{"\"A\",5,19,#TRUE#,0", Excluded()},
                                           ItemCase{"\"A\",5,19,true,0", Excluded()},
                                           ItemCase{"\"A\",5,19,-1,0", Excluded()},
                                           ItemCase{"\"A\",5,19,1,0", Excluded()}));

// The first five items of a record that the reader refuses.
const char* const RefusedItems[] = {
    "\"A\",2147483648,19,#FALSE#,0",
    "\"A\",-2147483649,19,#FALSE#,0",
    "\"A\",5,99999999999999999999999,#FALSE#,0",
    "\"A\",5,19,#FALSE#,32768",
    "\"A\",5,19,#FALSE#,-32769",
    "\"A\",1.5,19,#FALSE#,0",
    "\"A\",1E3,19,#FALSE#,0",
    "\"A\",&H10,19,#FALSE#,0",
    "\"A\",\"5\",19,#FALSE#,0",
    "\"A\",5 6,19,#FALSE#,0",
    "\"A\",- 5,19,#FALSE#,0",
    "\"A\",-,19,#FALSE#,0",
    "\"A\",5x,19,#FALSE#,0",
    "\"A\",\xD9\xA3,19,#FALSE#,0",  // an Arabic three
    "\"A\",5,19,yes,0",
    "\"A\",5,19,\"True\",0",
    "\"A\",5,19,#TRUE,0",
    "\"A\",5,19,FAL\xC5\xBF\x45,0",  // a long s, which upper-cases to S
    "\"A\",5,19,2147483648,0",
    "A\"B,5,19,#FALSE#,0",
    "\"A\"x,5,19,#FALSE#,0",
    "\"A\" 5,19,#FALSE#,0,0",  // would read on as the next item
    "\"A\r\nB\",5,19,#FALSE#,0",
};

class KvmFileRefusedItems : public ::testing::TestWithParam<const char*> {};

TEST_P(KvmFileRefusedItems, AreAReadError) {
    const KvmFileContents Contents = KvmFile::Parse(QByteArray(GetParam()) + Bounds());
    EXPECT_FALSE(Contents.IsLoaded);
    EXPECT_EQ(Contents.ErrorText, ReadError);
    EXPECT_TRUE(Contents.Entries.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, KvmFileRefusedItems, ::testing::ValuesIn(RefusedItems));

// The first bound pair of a record is read and checked like the rest.
TEST(KvmFileParse, BoundsOutsideSixteenBitsAreAnError) {
    const QByteArray Head = "\"A\",5,19,#FALSE#,1,";
    const QByteArray Rest = ",0,0,0,0,0,0,0,0,0,0,0,0,0,0\r\n";
    EXPECT_TRUE(KvmFile::Parse(Head + "-32768,32767" + Rest).IsLoaded);
    EXPECT_FALSE(KvmFile::Parse(Head + "0,32768" + Rest).IsLoaded);
    EXPECT_FALSE(KvmFile::Parse(Head + "-32769,0" + Rest).IsLoaded);
    EXPECT_FALSE(
        KvmFile::Parse(QByteArray("\"A\",5,19,#FALSE#,0") + Bounds().replace(31, 1, "x")).IsLoaded);
}

TEST(KvmFileParse, ABlankLineBetweenRecordsIsAnEmptyItemThatShiftsTheRecord) {
    const KvmFileContents Contents =
        KvmFile::Parse(Record("A", 1, 19) + "\r\n" + Record("B", 2, 19));
    EXPECT_FALSE(Contents.IsLoaded);
    EXPECT_EQ(Contents.Rows, QStringList{QStringLiteral("A.Integer")});
}

TEST(KvmFileParse, BlankLinesAndBlanksAtTheEndAreTheNormalEnd) {
    EXPECT_TRUE(KvmFile::Parse(Record("A", 1, 19) + "   ").IsLoaded);
    const KvmFileContents Contents = KvmFile::Parse(Record("A", 1, 19) + "\r\n\r\n");
    EXPECT_TRUE(Contents.IsLoaded);
    EXPECT_EQ(Contents.Rows.size(), 1);
}

class KvmFileRead : public ::testing::Test {
  protected:
    QString Write(const QString& Name, const QByteArray& Bytes) {
        const QString Filename = Folder.path() + QLatin1Char('/') + Name;
        QFile File(Filename);
        EXPECT_TRUE(File.open(QIODevice::WriteOnly));
        File.write(Bytes);
        return Filename;
    }
    QTemporaryDir Folder;
};

TEST_F(KvmFileRead, ReadsTheFileOnDisk) {
    const QString Filename = Write(QStringLiteral("blink.kvm"), Record("Count", 4, 19));
    const KvmFileContents Contents = KvmFile::Read(Filename);
    EXPECT_TRUE(Contents.IsLoaded);
    EXPECT_EQ(Contents.Rows, QStringList{QStringLiteral("Count.Integer")});
}

TEST_F(KvmFileRead, AMissingFileIsNotFound) {
    const KvmFileContents Contents = KvmFile::Read(Folder.path() + QStringLiteral("/none.kvm"));
    EXPECT_FALSE(Contents.IsLoaded);
    EXPECT_EQ(Contents.ErrorText, NotFound);
    EXPECT_TRUE(Contents.Rows.isEmpty());
}

TEST_F(KvmFileRead, AMissingFolderIsAReadError) {
    const KvmFileContents Contents =
        KvmFile::Read(Folder.path() + QStringLiteral("/gone/none.kvm"));
    EXPECT_FALSE(Contents.IsLoaded);
    EXPECT_EQ(Contents.ErrorText, ReadError);
}

TEST_F(KvmFileRead, AFolderInItsPlaceIsAReadError) {
    ASSERT_TRUE(QDir(Folder.path()).mkdir(QStringLiteral("dir.kvm")));
    const KvmFileContents Contents = KvmFile::Read(Folder.path() + QStringLiteral("/dir.kvm"));
    EXPECT_FALSE(Contents.IsLoaded);
    EXPECT_EQ(Contents.ErrorText, ReadError);
}

TEST_F(KvmFileRead, APipeInItsPlaceIsAReadErrorAtOnce) {
    const QString Pipe = Folder.path() + QStringLiteral("/pipe.kvm");
    const QByteArray PipeName = QFile::encodeName(Pipe);
    ASSERT_EQ(::mkfifo(PipeName.constData(), 0600), 0);
    // Opening the pipe to read it would wait for a writer. If the reader does
    // wait, a writer that comes and goes at once lets it go.
    std::promise<KvmFileContents> Done;
    std::future<KvmFileContents> Result = Done.get_future();
    std::thread Reader([&] { Done.set_value(KvmFile::Read(Pipe)); });
    const bool Waited = Result.wait_for(std::chrono::seconds(5)) != std::future_status::ready;
    while (Result.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready) {
        const int Writer = ::open(PipeName.constData(), O_WRONLY | O_NONBLOCK);
        if (Writer >= 0) {
            ::close(Writer);
        }
    }
    Reader.join();
    EXPECT_FALSE(Waited) << "the reader waited on the pipe";
    const KvmFileContents Contents = Result.get();
    EXPECT_FALSE(Contents.IsLoaded);
    EXPECT_EQ(Contents.ErrorText, ReadError);
}

TEST_F(KvmFileRead, TakesBackslashesInTheNameAsSeparators) {
    ASSERT_TRUE(QDir(Folder.path()).mkdir(QStringLiteral("sub")));
    Write(QStringLiteral("sub/blink.kvm"), Record("Count", 4, 19));
    EXPECT_TRUE(KvmFile::Read(Folder.path() + QStringLiteral("/sub\\blink.kvm")).IsLoaded);
}

TEST(KvmFilename, IsTheProjectsPathAndNameWithTheExtensionKvm) {
    EXPECT_EQ(KvmFile::KvmFilename(QStringLiteral("/home/u/work"), QStringLiteral("blink")),
              QStringLiteral("/home/u/work/blink.kvm"));
    EXPECT_EQ(KvmFile::KvmFilename(QStringLiteral("C:\\work\\"), QStringLiteral("blink")),
              QStringLiteral("C:\\work\\blink.kvm"));
}

}  // namespace
