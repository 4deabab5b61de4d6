#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "CompileFixture.h"
#include "compile/CompilerCentral.h"
#include "compile/CompilerComponent.h"
#include "platform/ErrObject.h"
#include "support/QtPrinters.h"

namespace {

class CompilerComponentTest : public CompileFixture {
  protected:
    // The run-time error that Load raised, or 0 and an empty text if none.
    ErrObject LoadFailure(const QStringList& Directories) {
        ErrObject Failure;
        try {
            Loaded = CompilerComponent::Load(Directories);
        } catch (const RuntimeError& Error) {
            Failure.Number = Error.Number();
            Failure.Description = Error.Description();
        }
        return Failure;
    }
    QString MakeDirectory(const QString& Name) {
        const QString Dir = TempPath() + QLatin1Char('/') + Name;
        EXPECT_TRUE(QDir().mkpath(Dir));
        return Dir;
    }
    std::unique_ptr<CompilerComponent> Loaded;
};

TEST_F(CompilerComponentTest, FindsTheComponentInTheInstallDirectoryAndMakesItsObject) {
    const ErrObject Failure = LoadFailure(CompilerCentral::ComponentDirectories());
    ASSERT_EQ(Failure.Number, 0) << Failure.Description.toStdString();
    EXPECT_EQ(Loaded->Filename(), Install + QStringLiteral("/libKvComp141.so"));
    EXPECT_EQ(Calls(), QStringList{QStringLiteral("KvCompCreate")});
}

TEST_F(CompilerComponentTest, AComponentInTheInstallDirectoryTakesThePlaceOfTheBundledOne) {
    ASSERT_TRUE(QFile::link(QStringLiteral(KVCOMP_MINIMAL_C),
                            Program + QStringLiteral("/libKvComp141.so")));
    const ErrObject Failure = LoadFailure(CompilerCentral::ComponentDirectories());
    ASSERT_EQ(Failure.Number, 0) << Failure.Description.toStdString();
    EXPECT_EQ(Loaded->Filename(), Install + QStringLiteral("/libKvComp141.so"));
    EXPECT_EQ(Calls(), QStringList{QStringLiteral("KvCompCreate")});
}

TEST_F(CompilerComponentTest, WithoutOneInTheInstallDirectoryTheBundledComponentIsLoaded) {
    QFile::remove(Install + QStringLiteral("/libKvComp141.so"));
    ASSERT_TRUE(QFile::link(QStringLiteral(KVCOMP_MINIMAL_C),
                            Program + QStringLiteral("/libKvComp141.so")));
    const ErrObject Failure = LoadFailure(CompilerCentral::ComponentDirectories());
    ASSERT_EQ(Failure.Number, 0) << Failure.Description.toStdString();
    EXPECT_EQ(Loaded->Filename(), Program + QStringLiteral("/libKvComp141.so"));
    EXPECT_EQ(Calls(), QStringList()) << "the test double was not the one loaded";
}

TEST_F(CompilerComponentTest, ABrokenComponentInTheInstallDirectoryIsRefusedNotPassedOver) {
    InstallComponent(QStringLiteral(KVCOMP_WITHOUT_CREATE));
    ASSERT_TRUE(QFile::link(QStringLiteral(KVCOMP_MINIMAL_C),
                            Program + QStringLiteral("/libKvComp141.so")));
    const ErrObject Failure = LoadFailure(CompilerCentral::ComponentDirectories());
    EXPECT_EQ(Failure.Number, 429);
    EXPECT_TRUE(
        Failure.Description.startsWith(QStringLiteral("Can't find compiler DLL:  ") + Install))
        << Failure.Description.toStdString();
}

TEST_F(CompilerComponentTest, AMissingComponentNamesTheFileAndWhereItWasLookedFor) {
    QFile::remove(Install + QStringLiteral("/libKvComp141.so"));
    const ErrObject Failure = LoadFailure(CompilerCentral::ComponentDirectories());
    EXPECT_EQ(Failure.Number, 429);
    EXPECT_EQ(Failure.Description, QStringLiteral("Can't find compiler DLL:  libKvComp141.so\n"
                                                  "Not found in ") +
                                       Install + QStringLiteral(" nor in ") + Program +
                                       QStringLiteral("."));
}

TEST_F(CompilerComponentTest, EmptyDirectoriesAreNotLookedIn) {
    const ErrObject Failure = LoadFailure({QString(), QStringLiteral("  ")});
    EXPECT_EQ(
        Failure.Description,
        QStringLiteral("Can't find compiler DLL:  libKvComp141.so\nNo directory to look in."));
}

TEST_F(CompilerComponentTest, AFileThatIsNoLibraryIsReportedWithTheLoadersReason) {
    QFile::remove(Install + QStringLiteral("/libKvComp141.so"));
    WriteFile(QStringLiteral("install/libKvComp141.so"), "not a library");
    const ErrObject Failure = LoadFailure({Install});
    EXPECT_EQ(Failure.Number, 429);
    const QStringList Lines = Failure.Description.split(QLatin1Char('\n'));
    ASSERT_EQ(Lines.size(), 2);
    EXPECT_EQ(Lines[0], QStringLiteral("Can't find compiler DLL:  ") + Install +
                            QStringLiteral("/libKvComp141.so"));
    EXPECT_FALSE(Lines[1].isEmpty());
}

TEST_F(CompilerComponentTest, ALibraryWithoutTheCreationFunctionIsRefused) {
    InstallComponent(QStringLiteral(KVCOMP_WITHOUT_CREATE));
    const ErrObject Failure = LoadFailure({Install});
    EXPECT_EQ(Failure.Description, QStringLiteral("Can't find compiler DLL:  ") + Install +
                                       QStringLiteral("/libKvComp141.so\n"
                                                      "The library has no function KvCompCreate."));
}

TEST_F(CompilerComponentTest, AfterARefusedLibraryTheNextLoadReadsTheFileAfresh) {
    InstallComponent(QStringLiteral(KVCOMP_WITHOUT_CREATE));
    EXPECT_EQ(LoadFailure({Install}).Number, 429);
    // The same name now stands for a good component.
    InstallComponent(QStringLiteral(KVCOMP_TEST_DOUBLE));
    const ErrObject Failure = LoadFailure({Install});
    EXPECT_EQ(Failure.Number, 0) << Failure.Description.toStdString();
}

TEST_F(CompilerComponentTest, ACreationFunctionThatMakesNoObjectIsRefused) {
    qputenv("KVCOMP_TEST_CREATE", "null");
    const ErrObject Failure = LoadFailure({Install});
    EXPECT_TRUE(
        Failure.Description.endsWith(QStringLiteral("\nThe component made no compiler object.")))
        << Failure.Description.toStdString();
}

TEST_F(CompilerComponentTest, AnObjectWithAHoleInItsTableIsRefused) {
    qputenv("KVCOMP_TEST_CREATE", "incomplete");
    const ErrObject Failure = LoadFailure({Install});
    EXPECT_TRUE(
        Failure.Description.endsWith(QStringLiteral("\nThe compiler object lacks operations.")))
        << Failure.Description.toStdString();
}

TEST_F(CompilerComponentTest, BooleansCrossAsMinusOneAndZero) {
    ASSERT_EQ(LoadFailure({Install}).Number, 0);
    Loaded->SetStrictSyntax(true);
    Loaded->SetOptimize(false);
    Loaded->SetChipFamilyFlag(true);
    Loaded->SetWindowCenter(true, 5, 7);
    EXPECT_EQ(Calls().mid(1),
              (QStringList{QStringLiteral("SetStrictSyntax(-1)"), QStringLiteral("SetOptimize(0)"),
                           QStringLiteral("SetChipFamilyFlag(-1)"),
                           QStringLiteral("SetWindowCenter(-1, 5, 7)")}));
}

TEST_F(CompilerComponentTest, AnswersComeBackThroughTheOutParameters) {
    ASSERT_EQ(LoadFailure({Install}).Number, 0);
    Script("version=3.1.7\nrefuse=SetRamBoundaries\n");
    int16_t Major = 0;
    int16_t Minor = 0;
    int16_t Revision = 0;
    Loaded->GetVersion(Major, Minor, Revision);
    EXPECT_EQ((QList<int>{Major, Minor, Revision}), (QList<int>{3, 1, 7}));
    bool Ok = true;
    Loaded->SetRamBoundaries(207, 607, Ok);
    EXPECT_FALSE(Ok);
    Loaded->SetCodeBoundaries(0, 32767, Ok);
    EXPECT_TRUE(Ok);
    Loaded->SetStringSize(65, Ok);
    EXPECT_FALSE(Ok);
}

TEST_F(CompilerComponentTest, TextsCrossAsUtf16BothWays) {
    ASSERT_EQ(LoadFailure({Install}).Number, 0);
    const QString Directory = MakeDirectory(QStringLiteral("Ünïcødé €"));
    QDir().mkpath(Directory + QStringLiteral("/BinKV10"));
    QDir().mkpath(Directory + QStringLiteral("/BinKV20"));
    bool Ok = false;
    Loaded->SetLibraryPath(Directory, Ok);
    EXPECT_TRUE(Ok);
    EXPECT_EQ(Calls().last(), QStringLiteral("SetLibraryPath(") + Directory + QStringLiteral(")"));

    Script("error=2,3,4,10,14,101\ndescription=Ungültiger Ausdruck – “x”\nwarnings=a\\nb\n");
    WriteFile(QStringLiteral("work/p.kvp"), "");
    CompilerComponent::CompileResult Result;
    Result.Success = true;
    Loaded->RunCompile(Work + QStringLiteral("/p.kvp"), Result);
    EXPECT_FALSE(Result.Success);
    EXPECT_EQ((QList<int>{Result.ModuleNumber, Result.LineNumber, Result.ColumnNumber,
                          Result.EndPosition, Result.StartPosition, Result.ErrorNumber}),
              (QList<int>{2, 3, 4, 14, 10, 101}));
    EXPECT_EQ(Result.ErrorDescription, QStringLiteral("Ungültiger Ausdruck – “x”"));
    EXPECT_EQ(Result.WarningDescription, QStringLiteral("a\r\nb"));
}

}  // namespace
