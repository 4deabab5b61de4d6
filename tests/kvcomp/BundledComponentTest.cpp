// The bundled compiler component, libKvComp141.so as it is built beside the
// program: loaded through the program's own loader and driven through the
// compile sequence as the editor and a batch drive it.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <span>

#include "CompileFixture.h"
#include "compile/CompilerCentral.h"
#include "compile/CompilerComponent.h"
#include "frame/GlobalData.h"
#include "kvcomp/BundledCompiler.h"
#include "machine/BytecodeImage.h"
#include "machine/BytecodeMachine.h"
#include "machine/MachineBoard.h"
#include "monitor/KvmFile.h"
#include "monitor/WatchValues.h"
#include "platform/ErrObject.h"
#include "project/ProjectType.h"
#include "support/QtPrinters.h"

namespace {

const QByteArray HelloProgram =
    "Option Explicit\r\nSub Main()\r\n    Debug.Print \"ready\"\r\nEnd Sub\r\n";

struct SimRun {
    int ExitCode = -1;
    QByteArray Output;
    QByteArray Errors;
};

class BundledComponentTest : public CompileFixture {
  protected:
    void SetUp() override {
        CompileFixture::SetUp();
        // The install directory holds the system libraries and no component:
        // the bundled one beside the program is the one loaded.
        QFile::remove(Install + QStringLiteral("/libKvComp141.so"));
        ASSERT_TRUE(QFile::link(QStringLiteral(KVCOMP_BUNDLED),
                                Program + QStringLiteral("/libKvComp141.so")));
        for (const QString& Library :
             {QStringLiteral("BinKV10/SymbolKV10.sym"), QStringLiteral("BinKV20/SymbolKV20.sym")}) {
            QFile::remove(Install + QLatin1Char('/') + Library);
            ASSERT_TRUE(QFile::copy(QStringLiteral(KAVLIN_SYMBOL_FILES "/") + Library,
                                    Install + QLatin1Char('/') + Library));
        }
    }
    bool Compile() {
        bool Success = false;
        CompilerCentral::CompileAll(Success);
        return Success;
    }
    // The component as the program loaded it.
    CompilerComponent& Component() { return CompilerCentral::Component(); }

    // The component's settings for a KV-20, as the compile sequence makes them.
    void ConfigureKv20(CompilerComponent& Compiler, int16_t StringSize = 20) {
        bool Ok = false;
        Compiler.SetCodeBoundaries(0, 32767, Ok);
        Compiler.SetChipType(2);
        Compiler.SetRamBoundaries(207, 607, Ok);
        Compiler.SetStrictSyntax(true);
        Compiler.SetPersistentBoundaries(32, 511, Ok);
        Compiler.SetOptimize(false);
        Compiler.SetStringSize(StringSize, Ok);
        Compiler.SetLibraryPath(Install, Ok);
        EXPECT_TRUE(Ok);
        Compiler.SetChipFamilyFlag(true);
        Compiler.SetWindowCenter(true, 0, 0);
    }
    // A project file of the work path with the given text.
    QString ProjectFile(const QString& Name, const QByteArray& Text) {
        return WriteFile(QStringLiteral("work/") + Name, Text);
    }
    CompilerComponent::CompileResult RunCompile(const QString& ProjectFilename) {
        CompilerComponent::CompileResult Result;
        Component().RunCompile(ProjectFilename, Result);
        return Result;
    }

    // The image's header as the machine reads it.
    ImageHeader Header(const QString& Name) {
        const QByteArray Image = WorkFile(Name);
        ImageHeader Result;
        EXPECT_TRUE(ImageHeader::Read(
            std::span(reinterpret_cast<const uint8_t*>(Image.constData()), Image.size()), Result));
        return Result;
    }

    // kavlin-sim runs the image as a build script runs it.
    SimRun RunOnSim(const QString& Image, const QStringList& More = {}) {
        QProcess Process;
        Process.start(QStringLiteral(KAVLIN_SIM),
                      QStringList{Image, QStringLiteral("--seconds"), QStringLiteral("10")} + More);
        EXPECT_TRUE(Process.waitForStarted(10000));
        Process.closeWriteChannel();
        EXPECT_TRUE(Process.waitForFinished(60000));
        SimRun Result;
        Result.ExitCode = Process.exitStatus() == QProcess::NormalExit ? Process.exitCode() : -1;
        Result.Output = Process.readAllStandardOutput();
        Result.Errors = Process.readAllStandardError();
        return Result;
    }
};

// ---- Loaded and driven as the program does -----------------------------------

TEST_F(BundledComponentTest, TheProgramLoadsTheBundledComponentWithTheSystemsVersion) {
    bool Success = false;
    CompilerCentral::CheckCompilerVersion(Success);
    EXPECT_TRUE(Success);
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(Component().Filename(), Program + QStringLiteral("/libKvComp141.so"));
    EXPECT_EQ(Calls(), QStringList()) << "the test double was not the one loaded";
}

TEST_F(BundledComponentTest, AGoodCompileWritesTheImageAndSymbolMapBesideTheProject) {
    MakeProject(QStringLiteral("blink"), {{QStringLiteral("main"), HelloProgram}});
    ASSERT_TRUE(Compile()) << BoxTexts().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(BoxTexts(), QStringList());
    const QByteArray Image = WorkFile(QStringLiteral("blink.kvb"));
    ASSERT_TRUE(Image.startsWith("KVBC")) << Image.left(16).toHex(' ').toStdString();
    const ImageHeader Read = Header(QStringLiteral("blink.kvb"));
    // The header's length, and one byte more where the chip link needs it.
    EXPECT_EQ(static_cast<size_t>(Image.size()), BytecodeImage::PaddedLength(Read.Length));
    const BytecodeImage::CheckResult Check = BytecodeImage::Check(
        std::span(reinterpret_cast<const uint8_t*>(Image.constData()), Image.size()),
        BytecodeImage::ChipLimits{2});
    EXPECT_TRUE(Check.Accepted) << Check.Reason;
    EXPECT_EQ(Read.ChipType, 2);
    EXPECT_EQ(Read.StringSize, 16) << "the preference file's string size";
    EXPECT_EQ(Read.RamLow, 207);
    EXPECT_EQ(Read.RamHigh, 607);
    EXPECT_TRUE(QFile::exists(Work + QStringLiteral("/blink.kvm")));

    // The sizes the status bar shows are the component's answers for this compile.
    int32_t CodeSize = 0;
    int32_t RamSize = 0;
    int32_t PersistentSize = 0;
    Component().GetCodeSize(CodeSize);
    Component().GetRamSize(RamSize);
    Component().GetPersistentSize(PersistentSize);
    EXPECT_GT(CodeSize, 0);
    EXPECT_LE(CodeSize, Image.size());
    EXPECT_EQ(GlobalData::CodeSize, CodeSize);
    EXPECT_EQ(PersistentSize, Read.PersistentSize);
    EXPECT_EQ(Host.CompileStatus, QStringLiteral("Compiled OK, Code: %1 bytes, RAM: %2 bytes, "
                                                 "PRS: %3 bytes")
                                      .arg(CodeSize)
                                      .arg(RamSize)
                                      .arg(PersistentSize));
    EXPECT_EQ(Host.Panels.value(3), QStringLiteral("Ok"));
}

TEST_F(BundledComponentTest, TheImageRunsOnKavlinSimAndPrintsWhatTheProgramSays) {
    MakeProject(QStringLiteral("blink"), {{QStringLiteral("main"), HelloProgram}});
    ASSERT_TRUE(Compile()) << BoxTexts().join(QLatin1Char('\n')).toStdString();
    const SimRun Run = RunOnSim(Work + QStringLiteral("/blink.kvb"));
    EXPECT_EQ(Run.ExitCode, 0) << Run.Errors.toStdString();
    EXPECT_EQ(Run.Output, QByteArray("ready\r\n"));
    EXPECT_EQ(RunOnSim(Work + QStringLiteral("/blink.kvb"),
                       {QStringLiteral("--expect"), QStringLiteral("ready")})
                  .ExitCode,
              0);
}

TEST_F(BundledComponentTest, AProgramOfTwoModulesComputesAndPrintsOnKavlinSim) {
    MakeProject(QStringLiteral("squares"),
                {{QStringLiteral("main"),
                  "Option Explicit\r\n"
                  "Sub Main()\r\n"
                  "    Dim I As Integer, Total As Long\r\n"
                  "    For I = 1 To 10\r\n"
                  "        Total = Total + Square(I)\r\n"
                  "    Next\r\n"
                  "    Debug.Print \"sum of squares:\"; Total\r\n"
                  "    Debug.Print Describe(Total)\r\n"
                  "End Sub\r\n"},
                 {QStringLiteral("maths"),
                  "Option Explicit\n"
                  "Public Function Square(ByVal N As Integer) As Long\n"
                  "    Square = N * N\n"
                  "End Function\n"
                  "\n"
                  "Public Function Describe(ByVal Value As Long) As String\n"
                  "    Select Case Value\n"
                  "        Case 385\n"
                  "            Describe = \"right\"\n"
                  "        Case Else\n"
                  "            Describe = \"wrong\"\n"
                  "    End Select\n"
                  "End Function\n"}});
    ASSERT_TRUE(Compile()) << BoxTexts().join(QLatin1Char('\n')).toStdString();
    const SimRun Run = RunOnSim(Work + QStringLiteral("/squares.kvb"));
    EXPECT_EQ(Run.ExitCode, 0) << Run.Errors.toStdString();
    EXPECT_EQ(Run.Output, QByteArray("sum of squares: 385\r\nright\r\n"));
}

TEST_F(BundledComponentTest, TempGetsTheObjectFilesOfTheModules) {
    MakeProject(QStringLiteral("blink"),
                {{QStringLiteral("main"), HelloProgram},
                 {QStringLiteral("led"), "Option Explicit\r\nSub Led()\r\nEnd Sub\r\n"}});
    ASSERT_TRUE(Compile()) << BoxTexts().join(QLatin1Char('\n')).toStdString();
    const QStringList Objects =
        QDir(Install + QStringLiteral("/Temp")).entryList(QDir::Files | QDir::NoDotAndDotDot);
    EXPECT_EQ(Objects.size(), 2) << Objects.join(QLatin1Char(' ')).toStdString();
    for (const QString& Object : Objects) {
        EXPECT_GT(QFileInfo(Install + QStringLiteral("/Temp/") + Object).size(), 0)
            << Object.toStdString();
    }
}

TEST_F(BundledComponentTest, ASharedStickyTempGivesEachUserAFolderOfHisOwn) {
    // A system-wide installation's Temp, writable by all as /tmp is.
    const QString Temp = Install + QStringLiteral("/Temp");
    ASSERT_EQ(::chmod(QFile::encodeName(Temp).constData(), 01777), 0);
    MakeProject(QStringLiteral("blink"), {{QStringLiteral("main"), HelloProgram}});
    ASSERT_TRUE(Compile()) << BoxTexts().join(QLatin1Char('\n')).toStdString();
    const QString Own = Temp + QStringLiteral("/user-") + QString::number(::getuid());
    EXPECT_EQ(QDir(Temp).entryList(QDir::Files | QDir::NoDotAndDotDot), QStringList());
    EXPECT_EQ(QDir(Own).entryList(QDir::Files | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("main.kvo")});
    EXPECT_EQ(QFileInfo(Own).permissions() &
                  (QFile::ReadOther | QFile::WriteOther | QFile::ReadGroup | QFile::WriteGroup),
              QFile::Permissions());
}

TEST_F(BundledComponentTest, ATempDirectoryThatIsMissingIsMade) {
    ASSERT_TRUE(QDir(Install + QStringLiteral("/Temp")).removeRecursively());
    MakeProject(QStringLiteral("blink"), {{QStringLiteral("main"), HelloProgram}});
    ASSERT_TRUE(Compile()) << BoxTexts().join(QLatin1Char('\n')).toStdString();
    EXPECT_FALSE(QDir(Install + QStringLiteral("/Temp")).isEmpty());
}

TEST_F(BundledComponentTest, TheSymbolMapNamesEveryVariableWhereTheProgramKeepsIt) {
    MakeProject(QStringLiteral("blink"), {{QStringLiteral("main"),
                                           "Option Explicit\r\n"
                                           "Dim Count As Integer\r\n"
                                           "Dim Total As Long\r\n"
                                           "Dim Ready As Boolean\r\n"
                                           "Dim Title As String\r\n"
                                           "\r\n"
                                           "Sub Main()\r\n"
                                           "    Count = -12\r\n"
                                           "    Total = 100000\r\n"
                                           "    Ready = True\r\n"
                                           "    Title = \"x\"\r\n"
                                           "End Sub\r\n"}});
    ASSERT_TRUE(Compile()) << BoxTexts().join(QLatin1Char('\n')).toStdString();
    // The watch window's reading of the map: the string is not offered.
    const KvmFileContents Map = KvmFile::Read(Work + QStringLiteral("/blink.kvm"));
    EXPECT_TRUE(Map.IsLoaded) << Map.ErrorText.toStdString();
    QStringList Rows = Map.Rows;
    Rows.sort();
    EXPECT_EQ(Rows, (QStringList{QStringLiteral("Count.Integer"), QStringLiteral("Ready.Boolean"),
                                 QStringLiteral("Total.Long")}));
    for (const KvmEntry& Entry : Map.Entries) {
        EXPECT_GE(Entry.Address, 207) << Entry.Name.toStdString();
        EXPECT_LE(Entry.Address, 607) << Entry.Name.toStdString();
    }

    // The program run to its end on the machine; the watch window's values
    // read from its RAM at the map's addresses.
    const QByteArray Bytes = WorkFile(QStringLiteral("blink.kvb"));
    const std::vector<uint8_t> Image(Bytes.begin(), Bytes.end());
    std::vector<uint8_t> Ram(65536, 0);
    std::vector<uint8_t> Eeprom(512, 0xFF);
    MachineBoard Board;
    BytecodeMachine Machine({Ram, Eeprom, Image}, Board, Board, 2);
    ASSERT_TRUE(Machine.Start(0)) << Machine.RefusalReason();
    EXPECT_EQ(Machine.RunUntil(1'000'000'000), BytecodeMachine::State::Ended)
        << Machine.ErrorMessage();
    QStringList Values =
        WatchValues::WatchText(Map.Entries, Ram).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    Values.sort();
    EXPECT_EQ(Values, (QStringList{QStringLiteral("Count: -12"), QStringLiteral("Ready: True"),
                                   QStringLiteral("Total: 100000")}));
}

TEST_F(BundledComponentTest, WarningsComeOneALineWithTheirModuleLineAndColumn) {
    MakeProject(QStringLiteral("blink"),
                {{QStringLiteral("main"), HelloProgram},
                 {QStringLiteral("led"),
                  "Option Explicit\r\nDim Unused As Integer\r\nSub Led()\r\n"
                  "    Dim Spare As Long\r\nEnd Sub\r\n"}});
    ASSERT_TRUE(Compile()) << BoxTexts().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(Host.Panels.value(3), QStringLiteral("Warnings"));
    QStringList Lines = Host.WarningDescription.split(QStringLiteral("\r\n"));
    ASSERT_EQ(Lines.size(), 2) << Host.WarningDescription.toStdString();
    Lines.sort();
    EXPECT_TRUE(Lines[0].startsWith(QStringLiteral("led.bas(2,5): "))) << Lines[0].toStdString();
    EXPECT_TRUE(Lines[0].contains(QStringLiteral("Unused"))) << Lines[0].toStdString();
    EXPECT_TRUE(Lines[1].startsWith(QStringLiteral("led.bas(4,9): "))) << Lines[1].toStdString();
    EXPECT_TRUE(Lines[1].contains(QStringLiteral("Spare"))) << Lines[1].toStdString();
}

// ---- Errors and their places --------------------------------------------------

// A module whose fourth line holds a character that is no part of the
// language, with the given line end.
QByteArray FaultyModule(const QByteArray& LineEnd) {
    return "Option Explicit" + LineEnd + "Sub Main()" + LineEnd + "    Debug.Print \"a\"" +
           LineEnd + "    `" + LineEnd + "End Sub" + LineEnd;
}

// Where the fault stands, a line break counted as CR LF.
const int32_t FaultStart = static_cast<int32_t>(
    QByteArray("Option Explicit\r\nSub Main()\r\n    Debug.Print \"a\"\r\n    ").size());

TEST_F(BundledComponentTest, AnErrorIsShownInItsModuleWithPositionsCountedWithCrLf) {
    for (const QByteArray& LineEnd : {QByteArray("\r\n"), QByteArray("\n"), QByteArray("\r")}) {
        SCOPED_TRACE(LineEnd.toHex().toStdString());
        Host.Highlights.clear();
        MakeProject(QStringLiteral("blink"), {{QStringLiteral("main"), HelloProgram},
                                              {QStringLiteral("led"), FaultyModule(LineEnd)}});
        EXPECT_FALSE(Compile());
        ASSERT_EQ(Host.Highlights.size(), 1);
        const QStringList Parts = Host.Highlights[0].split(QLatin1Char(','));
        // End, start, module, text.
        ASSERT_GE(Parts.size(), 4);
        EXPECT_EQ(Parts[1].toInt(), FaultStart);
        EXPECT_EQ(Parts[0].toInt(), FaultStart + 1);
        EXPECT_EQ(Parts[2], QStringLiteral("2"));
        EXPECT_TRUE(Parts.mid(3).join(QLatin1Char(',')).contains(QStringLiteral("'`'")))
            << Host.Highlights[0].toStdString();
        EXPECT_EQ(Host.Panels.value(3), QStringLiteral("Errors"));
        EXPECT_FALSE(QFile::exists(Work + QStringLiteral("/blink.kvb")));
    }
}

TEST_F(BundledComponentTest, AnErrorGivesItsModuleLineAndColumnWhateverTheLineEnds) {
    for (const QByteArray& LineEnd : {QByteArray("\r\n"), QByteArray("\n"), QByteArray("\r")}) {
        SCOPED_TRACE(LineEnd.toHex().toStdString());
        WriteFile(QStringLiteral("work/main.bas"), HelloProgram);
        WriteFile(QStringLiteral("work/led.bas"), FaultyModule(LineEnd));
        const QString Project =
            ProjectFile(QStringLiteral("p.kvp"), "main.bas" + LineEnd + "led.bas" + LineEnd);
        ConfigureKv20(Component());
        const CompilerComponent::CompileResult Result = RunCompile(Project);
        EXPECT_FALSE(Result.Success);
        EXPECT_EQ((QList<int>{Result.ModuleNumber, Result.LineNumber, Result.ColumnNumber,
                              Result.StartPosition, Result.EndPosition}),
                  (QList<int>{2, 4, 5, FaultStart, FaultStart + 1}));
        EXPECT_NE(Result.ErrorNumber, 0);
    }
}

TEST_F(BundledComponentTest, AWindows1252ModuleIsReadAsTheProgramReadsIt) {
    // The same text in the old code page and in UTF-8: one character before
    // the fault either way.
    for (const QByteArray& Comment :
         {QByteArray("' caf\xE9\r\n"), QByteArray("' caf\xC3\xA9\r\n")}) {
        Host.Highlights.clear();
        MakeProject(QStringLiteral("blink"),
                    {{QStringLiteral("main"), Comment + FaultyModule("\r\n")}});
        EXPECT_FALSE(Compile());
        ASSERT_EQ(Host.Highlights.size(), 1);
        EXPECT_EQ(Host.Highlights[0].section(QLatin1Char(','), 1, 1).toInt(),
                  FaultStart + static_cast<int32_t>(QStringLiteral("' café\r\n").size()))
            << Host.Highlights[0].toStdString();
    }
}

TEST_F(BundledComponentTest, AWindows1252StringIsPrintedAsItsCharacters) {
    for (const QByteArray& Module :
         {QByteArray("Option Explicit\r\nSub Main()\r\n    Debug.Print \"caf\xE9\"\r\nEnd Sub\r\n"),
          QByteArray(
              "Option Explicit\r\nSub Main()\r\n    Debug.Print \"caf\xC3\xA9\"\r\nEnd Sub\r\n")}) {
        MakeProject(QStringLiteral("blink"), {{QStringLiteral("main"), Module}});
        ASSERT_TRUE(Compile()) << BoxTexts().join(QLatin1Char('\n')).toStdString();
        const SimRun Run = RunOnSim(Work + QStringLiteral("/blink.kvb"));
        EXPECT_EQ(Run.ExitCode, 0) << Run.Errors.toStdString();
        // The chip's characters are the code page's bytes.
        EXPECT_EQ(Run.Output, QByteArray("caf\xE9\r\n"));
    }
}

TEST_F(BundledComponentTest, SizesOfTheLastGoodCompileStayAfterAFailedOne) {
    MakeProject(QStringLiteral("blink"), {{QStringLiteral("main"), HelloProgram}});
    ASSERT_TRUE(Compile());
    int32_t Before[3] = {};
    Component().GetCodeSize(Before[0]);
    Component().GetRamSize(Before[1]);
    Component().GetPersistentSize(Before[2]);
    ASSERT_GT(Before[0], 0);
    const QByteArray GoodImage = WorkFile(QStringLiteral("blink.kvb"));

    MakeProject(QStringLiteral("blink"), {{QStringLiteral("main"), FaultyModule("\r\n")}});
    EXPECT_FALSE(Compile());
    int32_t After[3] = {};
    Component().GetCodeSize(After[0]);
    Component().GetRamSize(After[1]);
    Component().GetPersistentSize(After[2]);
    EXPECT_EQ(std::vector<int32_t>(After, After + 3), std::vector<int32_t>(Before, Before + 3));
    EXPECT_EQ(GlobalData::CodeSize, Before[0]);
    EXPECT_EQ(WorkFile(QStringLiteral("blink.kvb")), GoodImage)
        << "a failed compile writes no image";
}

// ---- Settings -------------------------------------------------------------------

TEST_F(BundledComponentTest, AStringSizeOutsideOneTo64IsRefusedAndThePreviousOneStays) {
    MakeProject(QStringLiteral("blink"), {{QStringLiteral("main"), HelloProgram}});
    Project().PRFfile().MaxVstr = 65;
    EXPECT_TRUE(Compile()) << "the refusal does not end the compile";
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral(
                              "String Length Error|Error defining variable length string size")});
    EXPECT_EQ(Header(QStringLiteral("blink.kvb")).StringSize, 20) << "the component's own size";

    bool Ok = true;
    Component().SetStringSize(0, Ok);
    EXPECT_FALSE(Ok);
    Component().SetStringSize(64, Ok);
    EXPECT_TRUE(Ok);
    Component().SetStringSize(-1, Ok);
    EXPECT_FALSE(Ok);
    Component().SetStringSize(1, Ok);
    EXPECT_TRUE(Ok);
}

TEST_F(BundledComponentTest, EverySettingIsMadeAgainForEachCompile) {
    const QString Project = ProjectFile(QStringLiteral("p.kvp"), "main.bas\r\n");
    WriteFile(QStringLiteral("work/main.bas"), HelloProgram);
    ConfigureKv20(Component(), 40);
    ASSERT_TRUE(RunCompile(Project).Success);
    EXPECT_EQ(Header(QStringLiteral("p.kvb")).StringSize, 40);

    // Nothing of the last compile's settings is kept: not the string size...
    bool Ok = false;
    Component().SetLibraryPath(Install, Ok);
    ASSERT_TRUE(RunCompile(Project).Success);
    EXPECT_EQ(Header(QStringLiteral("p.kvb")).StringSize, 20);
    // ...nor the system libraries.
    const CompilerComponent::CompileResult Result = RunCompile(Project);
    EXPECT_FALSE(Result.Success);
    EXPECT_EQ(Result.ErrorNumber, BundledCompiler::NoSystemLibrary);
    EXPECT_TRUE(Result.ErrorDescription.contains(QStringLiteral("BinKV20/SymbolKV20.sym")))
        << Result.ErrorDescription.toStdString();
}

TEST_F(BundledComponentTest, BoundariesOutsideTheAddressSpaceAreRefused) {
    bool Ok = true;
    Component().SetRamBoundaries(600, 207, Ok);
    EXPECT_FALSE(Ok);
    Component().SetCodeBoundaries(-1, 100, Ok);
    EXPECT_FALSE(Ok);
    Component().SetPersistentBoundaries(32, 65536, Ok);
    EXPECT_FALSE(Ok);
    Component().SetRamBoundaries(350, 65535, Ok);
    EXPECT_TRUE(Ok);
}

TEST_F(BundledComponentTest, MissingSymbolFilesAreMissingSystemLibraries) {
    for (const QString& Library :
         {QStringLiteral("BinKV10/SymbolKV10.sym"), QStringLiteral("BinKV20/SymbolKV20.sym")}) {
        SCOPED_TRACE(Library.toStdString());
        const QString File = Install + QLatin1Char('/') + Library;
        ASSERT_TRUE(QFile::rename(File, File + QStringLiteral(".away")));
        MakeProject(QStringLiteral("blink"), {{QStringLiteral("main"), HelloProgram}});
        EXPECT_FALSE(Compile());
        EXPECT_EQ(BoxTexts(),
                  QStringList{QStringLiteral("System Library Error|Missing System Libraries")});
        ASSERT_TRUE(QFile::rename(File + QStringLiteral(".away"), File));
    }
    EXPECT_FALSE(QFile::exists(Work + QStringLiteral("/blink.kvb")));
}

TEST_F(BundledComponentTest, ASymbolFileThatCantBeReadIsAMissingLibrary) {
    bool Ok = true;
    const QString File = Install + QStringLiteral("/BinKV20/SymbolKV20.sym");
    ASSERT_TRUE(QFile::remove(File));
    ASSERT_TRUE(QDir().mkpath(File));
    Component().SetLibraryPath(Install, Ok);
    EXPECT_FALSE(Ok) << "a folder in the file's place";
    ASSERT_TRUE(QDir(File).removeRecursively());
    WriteFile(QStringLiteral("install/BinKV20/SymbolKV20.sym"), "\x01\x02 this is no library (");
    Component().SetLibraryPath(Install, Ok);
    EXPECT_FALSE(Ok) << "a file the library reader refuses";
    Component().SetLibraryPath(TempPath() + QStringLiteral("/nowhere"), Ok);
    EXPECT_FALSE(Ok);
}

TEST_F(BundledComponentTest, TheFamilyFlagPicksTheKv10OrTheKv20Library) {
    // The KV-10 board has no LEDs: its library has no PutLed.
    const QString Project = ProjectFile(QStringLiteral("p.kvp"), "main.bas\r\n");
    WriteFile(QStringLiteral("work/main.bas"),
              "Option Explicit\r\nSub Main()\r\n    PutLed 1, True\r\nEnd Sub\r\n");
    ConfigureKv20(Component());
    const CompilerComponent::CompileResult Kv20 = RunCompile(Project);
    EXPECT_TRUE(Kv20.Success) << Kv20.ErrorDescription.toStdString();

    bool Ok = false;
    Component().SetCodeBoundaries(0, 8191, Ok);
    Component().SetChipType(1);
    Component().SetRamBoundaries(350, 600, Ok);
    Component().SetLibraryPath(Install, Ok);
    Component().SetChipFamilyFlag(false);
    const CompilerComponent::CompileResult Kv10 = RunCompile(Project);
    EXPECT_FALSE(Kv10.Success);
    EXPECT_EQ(Kv10.ModuleNumber, 1);
    EXPECT_EQ(Kv10.LineNumber, 3);
    EXPECT_TRUE(Kv10.ErrorDescription.contains(QStringLiteral("PutLed")))
        << Kv10.ErrorDescription.toStdString();
}

// ---- The project's files on disk ---------------------------------------------------

TEST_F(BundledComponentTest, ModulesNamedWithBackslashesOrInFullAreFound) {
    WriteFile(QStringLiteral("work/sub/main.bas"), HelloProgram);
    WriteFile(QStringLiteral("elsewhere/led.bas"), "Option Explicit\nSub Led()\nEnd Sub\n");
    const QString Project = ProjectFile(
        QStringLiteral("p.kvp"),
        "sub\\main.bas\n" + (TempPath() + QStringLiteral("/elsewhere/led.bas")).toUtf8() + "\n");
    ConfigureKv20(Component());
    const CompilerComponent::CompileResult Result = RunCompile(Project);
    EXPECT_TRUE(Result.Success) << Result.ErrorDescription.toStdString();
    EXPECT_EQ(RunOnSim(Work + QStringLiteral("/p.kvb")).Output, QByteArray("ready\r\n"));
}

TEST_F(BundledComponentTest, AMissingProjectFileIsAnErrorWithItsName) {
    ConfigureKv20(Component());
    const CompilerComponent::CompileResult Result = RunCompile(Work + QStringLiteral("/none.kvp"));
    EXPECT_FALSE(Result.Success);
    EXPECT_EQ(Result.ModuleNumber, 0);
    EXPECT_EQ(Result.ErrorNumber, BundledCompiler::FileNotFound);
    EXPECT_EQ(Result.ErrorDescription,
              QStringLiteral("Can't open project file ") + Work + QStringLiteral("/none.kvp"));
}

TEST_F(BundledComponentTest, AMissingModuleFileIsAnErrorInThatModule) {
    WriteFile(QStringLiteral("work/main.bas"), HelloProgram);
    const QString Project = ProjectFile(QStringLiteral("p.kvp"), "main.bas\r\nled.bas\r\n");
    ConfigureKv20(Component());
    const CompilerComponent::CompileResult Result = RunCompile(Project);
    EXPECT_FALSE(Result.Success);
    EXPECT_EQ(Result.ModuleNumber, 2);
    EXPECT_EQ(Result.ErrorDescription,
              QStringLiteral("Can't read module file ") + Work + QStringLiteral("/led.bas"));
    EXPECT_FALSE(QFile::exists(Work + QStringLiteral("/p.kvb")));
}

TEST_F(BundledComponentTest, AProjectWithoutModulesIsAnError) {
    const QString Project = ProjectFile(QStringLiteral("p.kvp"), "\r\n");
    ConfigureKv20(Component());
    const CompilerComponent::CompileResult Result = RunCompile(Project);
    EXPECT_FALSE(Result.Success);
    EXPECT_TRUE(Result.ErrorDescription.contains(QStringLiteral("names no module")))
        << Result.ErrorDescription.toStdString();
}

TEST_F(BundledComponentTest, AnImageThatCantBeWrittenIsAnErrorAndTheOldOneStays) {
    WriteFile(QStringLiteral("work/main.bas"), HelloProgram);
    const QString Project = ProjectFile(QStringLiteral("p.kvp"), "main.bas\r\n");
    // A folder where the image would go.
    ASSERT_TRUE(QDir().mkpath(Work + QStringLiteral("/p.kvb")));
    ConfigureKv20(Component());
    const CompilerComponent::CompileResult Result = RunCompile(Project);
    EXPECT_FALSE(Result.Success);
    EXPECT_EQ(Result.ErrorNumber, BundledCompiler::CannotWriteFile);
    EXPECT_TRUE(Result.ErrorDescription.contains(Work + QStringLiteral("/p.kvb")))
        << Result.ErrorDescription.toStdString();
    EXPECT_TRUE(QFileInfo(Work + QStringLiteral("/p.kvb")).isDir());
    int32_t CodeSize = -1;
    Component().GetCodeSize(CodeSize);
    EXPECT_EQ(CodeSize, 0) << "no good compile yet";
}

TEST_F(BundledComponentTest, TheComponentExportsOnlyItsCreationFunction) {
    QProcess Nm;
    Nm.start(QStringLiteral("nm"), {QStringLiteral("-D"), QStringLiteral("--defined-only"),
                                    QStringLiteral(KVCOMP_BUNDLED)});
    if (!Nm.waitForStarted(10000)) {
        GTEST_SKIP() << "nm is not there";
    }
    ASSERT_TRUE(Nm.waitForFinished(30000));
    QStringList Names;
    for (const QString& Line : QString::fromUtf8(Nm.readAllStandardOutput())
                                   .split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        Names << Line.section(QLatin1Char(' '), -1);
    }
    Names.removeAll(QStringLiteral("KVCOMP_1.0"));
    EXPECT_EQ(Names, QStringList{QStringLiteral("KvCompCreate")});
}

}  // namespace
