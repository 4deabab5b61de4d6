#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <new>
#include <stdexcept>

#include "CompileFixture.h"
#include "compile/CompilerCentral.h"
#include "frame/CommandLineInterpreter.h"
#include "frame/DirectoryCentral.h"
#include "frame/ErrorDisplay.h"
#include "frame/FrameTestSupport.h"
#include "frame/GlobalData.h"
#include "project/ProjectType.h"
#include "project/TextModuleWindow.h"
#include "support/ModelEditWindow.h"
#include "support/QtPrinters.h"

namespace {

class CompilerCentralTest : public CompileFixture {
  protected:
    void TearDown() override {
        DirectoryCentral::SetCompilerVersionCheck(nullptr);
        CompileFixture::TearDown();
    }
    void MakeBlink() {
        MakeProject(QStringLiteral("blink"),
                    {{QStringLiteral("main"), "Option Explicit\r\nDim x As Integer\r\n"},
                     {QStringLiteral("led"), "Sub Led()\r\n  x = 1\r\nEnd Sub\r\n"}});
    }
    bool Compile() {
        bool Success = false;
        CompilerCentral::CompileAll(Success);
        return Success;
    }
    bool CheckVersion() {
        bool Success = false;
        CompilerCentral::CheckCompilerVersion(Success);
        return Success;
    }
    QStringList CallsNamed(const QString& Prefix) const {
        QStringList Found;
        for (const QString& Call : Calls()) {
            if (Call.startsWith(Prefix)) {
                Found << Call;
            }
        }
        return Found;
    }
    ModelEditWindow* WindowOf(int16_t Number) {
        return static_cast<ModelEditWindow*>(
            Project().ModuleList().GetModule(Number)->EditWindow());
    }
};

// ---- The version check ----------------------------------------------------

TEST_F(CompilerCentralTest, TheSystemsOwnVersionPasses) {
    EXPECT_TRUE(CheckVersion());
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(Calls(), (QStringList{QStringLiteral("KvCompCreate"), QStringLiteral("GetVersion")}));
}

TEST_F(CompilerCentralTest, AnyOtherVersionIsAMismatchWithBothVersionsAndTheFile) {
    Script("version=2.0.23\n");
    EXPECT_FALSE(CheckVersion());
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral("Installation Error|"
                                                     "Compiler DLL version mismatch:\n\n"
                                                     "Expected version:  2.0.24\n"
                                                     "Actual version:  2.0.23\n"
                                                     "Filename:  ") +
                                      Install + QStringLiteral("/libKvComp141.so")});
    for (const char* Version : {"version=3.0.24\n", "version=2.1.24\n", "version=2.0.25\n"}) {
        Script(Version);
        EXPECT_FALSE(CheckVersion()) << Version;
    }
}

TEST_F(CompilerCentralTest, WithoutAComponentTheCheckSaysItCantFindIt) {
    QFile::remove(Install + QStringLiteral("/libKvComp141.so"));
    EXPECT_FALSE(CheckVersion());
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Installation Error"));
    EXPECT_TRUE(Boxes->Boxes[0].Text.startsWith(
        QStringLiteral("Can't find compiler DLL:  libKvComp141.so\n")))
        << Boxes->Boxes[0].Text.toStdString();
}

TEST_F(CompilerCentralTest, TheComponentIsMadeOnceAndAFailedCreationIsTriedAgain) {
    QFile::rename(Install + QStringLiteral("/libKvComp141.so"),
                  Install + QStringLiteral("/away.so"));
    EXPECT_FALSE(CheckVersion());
    QFile::rename(Install + QStringLiteral("/away.so"),
                  Install + QStringLiteral("/libKvComp141.so"));
    EXPECT_TRUE(CheckVersion());
    EXPECT_TRUE(CheckVersion());
    MakeBlink();
    EXPECT_TRUE(Compile());
    EXPECT_EQ(CallsNamed(QStringLiteral("KvCompCreate")).size(), 1);
}

TEST_F(CompilerCentralTest, TheInstallationCheckAsksTheComponentOnceRegistered) {
    bool Success = true;
    Script("version=1.0.0\n");
    DirectoryCentral::CheckInstallation(Success);
    EXPECT_TRUE(Success) << "nothing registered: the component is not looked at";
    EXPECT_EQ(Calls(), QStringList());

    CompilerCentral::RegisterWithFrame();
    DirectoryCentral::CheckInstallation(Success);
    EXPECT_FALSE(Success);
    EXPECT_EQ(CallsNamed(QStringLiteral("GetVersion")).size(), 1);
    Script("");
    DirectoryCentral::CheckInstallation(Success);
    EXPECT_TRUE(Success);
}

// ---- The compile sequence -------------------------------------------------

TEST_F(CompilerCentralTest, AGoodKv20CompileMakesTheCallsInTheirOrder) {
    MakeBlink();
    Host.Geometry = FormGeometry{1000, 2000, 9000, 6000};
    EXPECT_TRUE(Compile());
    // Everything the component was asked, from its making on.
    EXPECT_EQ(
        Calls(),
        (QStringList{QStringLiteral("KvCompCreate"), QStringLiteral("SetCodeBoundaries(0, 32767)"),
                     QStringLiteral("SetChipType(2)"), QStringLiteral("SetRamBoundaries(207, 607)"),
                     QStringLiteral("SetStrictSyntax(-1)"),
                     QStringLiteral("SetPersistentBoundaries(32, 511)"),
                     QStringLiteral("SetOptimize(-1)"), QStringLiteral("SetStringSize(16)"),
                     QStringLiteral("SetLibraryPath(") + Install + QStringLiteral(")"),
                     QStringLiteral("SetChipFamilyFlag(-1)"),
                     QStringLiteral("SetWindowCenter(-1, 4000, 6500)"),
                     QStringLiteral("RunCompile(") + Work + QStringLiteral("/blink.kvp)"),
                     QStringLiteral("GetCodeSize"), QStringLiteral("GetRamSize"),
                     QStringLiteral("GetPersistentSize"), QStringLiteral("GetCodeSize"),
                     QStringLiteral("GetPersistentSize")}));
    EXPECT_EQ(BoxTexts(), QStringList());
}

TEST_F(CompilerCentralTest, AGoodCompileStoresTheSizesAndShowsTheCompiledOkLine) {
    MakeBlink();
    Script("sizes=1024,40,0\n");
    GlobalData::CodeSize = 5;
    EXPECT_TRUE(Compile());
    EXPECT_EQ(Host.CompileStatus,
              QStringLiteral("Compiled OK, Code: 1024 bytes, RAM: 40 bytes, PRS: 0 bytes"));
    EXPECT_EQ(Host.PanelWrites,
              (QStringList{
                  QStringLiteral("3:Compiling..."), QStringLiteral("3:Ok"),
                  QStringLiteral("4:Compiled OK, Code: 1024 bytes, RAM: 40 bytes, PRS: 0 bytes")}));
    EXPECT_EQ(GlobalData::CodeSize, 1024);
    EXPECT_EQ(GlobalData::PersistentSize, 0);
    EXPECT_EQ(GlobalData::MemorySize, 32768);
    EXPECT_EQ(Host.WarningDescription, QString());
    // The component wrote the image beside the project.
    EXPECT_EQ(WorkFile(QStringLiteral("blink.kvb")).size(), 1024);
    EXPECT_TRUE(QFile::exists(Work + QStringLiteral("/blink.kvm")));
}

TEST_F(CompilerCentralTest, AKv30IsChipThreeOfTheFamily) {
    GlobalData::ChipType = 3;
    MakeBlink();
    EXPECT_TRUE(Compile());
    EXPECT_EQ(CallsNamed(QStringLiteral("SetChipType")),
              QStringList{QStringLiteral("SetChipType(3)")});
    EXPECT_EQ(CallsNamed(QStringLiteral("SetChipFamilyFlag")),
              QStringList{QStringLiteral("SetChipFamilyFlag(-1)")});
    EXPECT_EQ(CallsNamed(QStringLiteral("SetRamBoundaries")),
              QStringList{QStringLiteral("SetRamBoundaries(207, 607)")});
}

TEST_F(CompilerCentralTest, AKv10UsesItsEepromSizeAndTheSmallRam) {
    GlobalData::ChipType = 1;
    MakeBlink();
    Project().PRFfile().SpiSize = 8192;
    Project().PRFfile().RamEnable = false;
    Project().PRFfile().StrictSyntaxRules = false;
    Project().PRFfile().OptimizeEnable = false;
    Project().PRFfile().MaxVstr = 32;
    EXPECT_TRUE(Compile());
    EXPECT_EQ(
        CompileCalls().mid(0, 10),
        (QStringList{
            QStringLiteral("SetCodeBoundaries(0, 8191)"), QStringLiteral("SetChipType(1)"),
            QStringLiteral("SetRamBoundaries(350, 600)"), QStringLiteral("SetStrictSyntax(0)"),
            QStringLiteral("SetPersistentBoundaries(32, 511)"), QStringLiteral("SetOptimize(0)"),
            QStringLiteral("SetStringSize(32)"),
            QStringLiteral("SetLibraryPath(") + Install + QStringLiteral(")"),
            QStringLiteral("SetChipFamilyFlag(0)"), QStringLiteral("SetWindowCenter(-1, 0, 0)")}));
    EXPECT_EQ(GlobalData::MemorySize, 8192);
}

TEST_F(CompilerCentralTest, AKv10WithExternalRamMayUseItUpTo65535) {
    GlobalData::ChipType = 1;
    MakeBlink();
    Project().PRFfile().RamEnable = true;
    EXPECT_TRUE(Compile());
    EXPECT_EQ(CallsNamed(QStringLiteral("SetRamBoundaries")),
              QStringList{QStringLiteral("SetRamBoundaries(350, 65535)")});
    EXPECT_EQ(ObjectFile(QStringLiteral("blink")).section(QLatin1Char(' '), 5, 5),
              QStringLiteral("ram=350-65535"));
}

TEST_F(CompilerCentralTest, AKv10WithoutEepromSizeOpensTheChipDialogAndCompilesNothing) {
    GlobalData::ChipType = 1;
    MakeBlink();
    GlobalData::MemorySize = 77;
    for (const int32_t Size : {0, -1}) {
        Boxes->Boxes.clear();
        Host.ChipDialogs = 0;
        Project().PRFfile().SpiSize = Size;
        EXPECT_FALSE(Compile());
        EXPECT_EQ(BoxTexts(),
                  QStringList{QStringLiteral(
                      "EEPROM Memory Size Error|Error -- EEPROM memory size is zero or negative")});
        EXPECT_EQ(Host.ChipDialogs, 1);
    }
    EXPECT_EQ(Calls(), QStringList()) << "not even made: nothing was asked of the component";
    EXPECT_EQ(GlobalData::MemorySize, 77);
}

TEST_F(CompilerCentralTest, AKv20IgnoresAnEepromSizeOfZero) {
    MakeBlink();
    Project().PRFfile().SpiSize = 0;
    EXPECT_TRUE(Compile());
    EXPECT_EQ(CallsNamed(QStringLiteral("SetCodeBoundaries")),
              QStringList{QStringLiteral("SetCodeBoundaries(0, 32767)")});
    EXPECT_EQ(GlobalData::MemorySize, 32768);
}

TEST_F(CompilerCentralTest, APreferenceFileOfAnotherChipAsksForTheChipDialog) {
    MakeBlink();  // the preferences of a KV-20
    GlobalData::ChipType = 3;
    EXPECT_FALSE(Compile());
    EXPECT_EQ(BoxTexts(),
              QStringList{QStringLiteral("Chip Preferences|Chip preferences have not been set")});
    EXPECT_EQ(Host.ChipDialogs, 1);
    EXPECT_EQ(CallsNamed(QStringLiteral("RunCompile")), QStringList());
    EXPECT_EQ(Host.PanelWrites, QStringList{QStringLiteral("3:Compiling...")});
}

TEST_F(CompilerCentralTest, NothingHappensWithoutAProjectOrWithoutModules) {
    EXPECT_FALSE(Compile());
    MakeProject(QStringLiteral("empty"), {});
    EXPECT_FALSE(Compile());
    EXPECT_EQ(Host.PanelWrites, QStringList());
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(Calls(), QStringList());
}

TEST_F(CompilerCentralTest, ASucceedingCompileWithWarningsShowsWarningsAndTheOkLine) {
    MakeBlink();
    Script("sizes=10,2,1\nwarnings=Variable y unused\\nLine 3 too long\n");
    EXPECT_TRUE(Compile());
    EXPECT_EQ(Host.Panels[3], QStringLiteral("Warnings"));
    EXPECT_EQ(Host.Panels[4],
              QStringLiteral("Compiled OK, Code: 10 bytes, RAM: 2 bytes, PRS: 1 bytes"));
    EXPECT_EQ(Host.WarningDescription, QStringLiteral("Variable y unused\r\nLine 3 too long"));
}

TEST_F(CompilerCentralTest, AFailingCompileWithWarningsShowsErrorsAndKeepsTheWarnings) {
    MakeBlink();
    Script("warnings=Variable y unused\nfail_at=x = 1\ndescription=Type mismatch\n");
    GlobalData::CodeSize = 300;
    GlobalData::PersistentSize = 12;
    GlobalData::MemorySize = 0;
    EXPECT_FALSE(Compile());
    EXPECT_EQ(Host.PanelWrites,
              (QStringList{QStringLiteral("3:Compiling..."), QStringLiteral("3:Warnings"),
                           QStringLiteral("4:Type mismatch"), QStringLiteral("3:Errors")}));
    EXPECT_EQ(Host.WarningDescription, QStringLiteral("Variable y unused"));
    EXPECT_EQ(Host.CompileStatus, QStringLiteral("Type mismatch"));
    // "x = 1" stands in module 2 from position 13: "Sub Led()", a line break
    // counted as two, two blanks.
    EXPECT_EQ(Host.Highlights, QStringList{QStringLiteral("18,13,2,Type mismatch")});
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral("Compile Error|Type mismatch")});
    EXPECT_EQ(GlobalData::CodeSize, 300);
    EXPECT_EQ(GlobalData::PersistentSize, 12);
    EXPECT_EQ(GlobalData::MemorySize, 32768) << "set before the compile, kept when it fails";
    EXPECT_EQ(CallsNamed(QStringLiteral("Get")), QStringList());
    EXPECT_EQ(WorkFile(QStringLiteral("blink.kvb")), QByteArray("<none>"));
}

TEST_F(CompilerCentralTest, AnErrorInTheSecondModuleSelectsItsTextBeforeAndAfterTheBox) {
    MakeBlink();
    Script("fail_at=x = 1\ndescription=Type mismatch\n");
    QString SelectedWhileShown;
    Boxes->WhileShown = [&](const ScriptedMessageBoxService::Box&) {
        SelectedWhileShown = WindowOf(2)->Box.SelText();
        // The user clicks into the text behind the box: the selection goes.
        WindowOf(2)->Box.SetSelStart(0);
        WindowOf(2)->Box.SetSelLength(0);
    };
    EXPECT_FALSE(Compile());
    EXPECT_EQ(SelectedWhileShown, QStringLiteral("x = 1"));
    EXPECT_EQ(WindowOf(2)->Box.SelText(), QStringLiteral("x = 1"));
    EXPECT_GE(WindowOf(2)->Focused, 2);
    EXPECT_EQ(WindowOf(1)->Box.SelLength(), 0);
}

TEST_F(CompilerCentralTest, AnErrorAtTheVeryEndSelectsWhatIsLeftAndStillShowsTheBox) {
    MakeBlink();
    const int32_t Length = WindowOf(1)->TextLength();
    Script(QStringLiteral("error=1,3,1,%1,%2,7\ndescription=Missing End\n")
               .arg(Length)
               .arg(Length + 3)
               .toUtf8());
    EXPECT_FALSE(Compile());
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral("Compile Error|Missing End")});
    EXPECT_EQ(WindowOf(1)->Box.SelText(), QString());
}

TEST_F(CompilerCentralTest, AnErrorNearTheEndSelectsLessThanThreeCharacters) {
    MakeProject(QStringLiteral("tail"), {{QStringLiteral("main"), "Dim ab"}});
    // From position 4 the selection may reach the length less one: one character.
    Script("error=1,1,5,4,7,3\ndescription=Name expected\n");
    EXPECT_FALSE(Compile());
    EXPECT_EQ(WindowOf(1)->Box.SelText(), QStringLiteral("a"));
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral("Compile Error|Name expected")});
}

TEST_F(CompilerCentralTest, AnErrorInNoModuleIsShownAndSelectsNothing) {
    MakeBlink();
    Script("error=0,0,0,0,0,5\ndescription=Project file damaged\n");
    EXPECT_FALSE(Compile());
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral("Compile Error|Project file damaged")});
    EXPECT_EQ(WindowOf(1)->Box.SelLength(), 0);
    EXPECT_EQ(WindowOf(2)->Box.SelLength(), 0);
    EXPECT_EQ(Host.Panels[3], QStringLiteral("Errors"));
}

TEST_F(CompilerCentralTest, ARefusedStringSizeIsReportedAndTheCompileGoesOnWithTheOldSize) {
    MakeBlink();
    Project().PRFfile().MaxVstr = 20;
    EXPECT_TRUE(Compile());
    EXPECT_EQ(ObjectFile(QStringLiteral("blink")).section(QLatin1Char(' '), 4, 4),
              QStringLiteral("strings=20"));
    Project().PRFfile().MaxVstr = 65;
    EXPECT_TRUE(Compile());
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral(
                              "String Length Error|Error defining variable length string size")});
    EXPECT_EQ(CallsNamed(QStringLiteral("RunCompile")).size(), 2);
    EXPECT_EQ(ObjectFile(QStringLiteral("blink")).section(QLatin1Char(' '), 4, 4),
              QStringLiteral("strings=20"));
}

struct Refusal {
    const char* Operation;
    const char* Box;
    const char* LastCall;
};

class CompilerRefusalTest : public CompilerCentralTest,
                            public ::testing::WithParamInterface<Refusal> {};

TEST_P(CompilerRefusalTest, ARefusedSettingEndsTheCompileWithItsMessage) {
    MakeBlink();
    Script(QByteArray("refuse=") + GetParam().Operation + "\n");
    EXPECT_FALSE(Compile());
    EXPECT_EQ(BoxTexts(), QStringList{QString::fromUtf8(GetParam().Box)});
    EXPECT_TRUE(CompileCalls().last().startsWith(QString::fromLatin1(GetParam().LastCall)))
        << CompileCalls().join(QLatin1Char('|')).toStdString();
    EXPECT_EQ(Host.CompileStatus, QString());
}

INSTANTIATE_TEST_SUITE_P(
    EachBoundary, CompilerRefusalTest,
    ::testing::Values(
        Refusal{"SetCodeBoundaries",
                "EEPROM Memory Size Error|Error -- EEPROM memory size is zero or negative",
                "SetCodeBoundaries"},
        Refusal{"SetRamBoundaries", "RAM Boundary Error|Error defining RAM boundaries",
                "SetRamBoundaries"},
        Refusal{"SetPersistentBoundaries",
                "Persistent Memory|Error defining persistent memory boundaries",
                "SetPersistentBoundaries"},
        Refusal{"SetLibraryPath", "System Library Error|Missing System Libraries",
                "SetLibraryPath"}));

TEST_F(CompilerCentralTest, AnInstallDirectoryWithoutItsLibrariesIsRefusedByTheComponent) {
    MakeBlink();
    ASSERT_TRUE(QDir(Install + QStringLiteral("/BinKV20")).removeRecursively());
    EXPECT_FALSE(Compile());
    EXPECT_EQ(BoxTexts(),
              QStringList{QStringLiteral("System Library Error|Missing System Libraries")});
    EXPECT_EQ(CallsNamed(QStringLiteral("RunCompile")), QStringList());
}

TEST_F(CompilerCentralTest, AnUnknownChipTypeSetsNoChipAndEmptyRamBoundaries) {
    GlobalData::ChipType = 9;
    MakeBlink();
    Project().PRFfile().ChangeProcessor(9);
    Project().PRFfile().SpiSize = 4096;
    Compile();
    EXPECT_EQ(CallsNamed(QStringLiteral("SetChipType")), QStringList());
    EXPECT_EQ(CallsNamed(QStringLiteral("SetRamBoundaries")),
              QStringList{QStringLiteral("SetRamBoundaries(0, 0)")});
    EXPECT_EQ(CallsNamed(QStringLiteral("SetChipFamilyFlag")),
              QStringList{QStringLiteral("SetChipFamilyFlag(0)")});
    EXPECT_EQ(GlobalData::MemorySize, 4096);
}

TEST_F(CompilerCentralTest, TheWindowsMiddleIsRoundedHalfToEven) {
    MakeBlink();
    Host.Geometry = FormGeometry{1, 100, 4001, 3};  // Top, Left, Width, Height
    Compile();
    Host.Geometry = FormGeometry{2, 101, 4001, 3};
    Compile();
    EXPECT_EQ(CallsNamed(QStringLiteral("SetWindowCenter")),
              (QStringList{QStringLiteral("SetWindowCenter(-1, 2, 2100)"),
                           QStringLiteral("SetWindowCenter(-1, 4, 2102)")}));
}

TEST_F(CompilerCentralTest, TheWatchWindowRereadsTheSymbolMapAfterAGoodCompileOnly) {
    MakeBlink();
    int Rereads = 0;
    CompilerCentral::SetKvmFileHandler([&] { ++Rereads; });
    Compile();
    EXPECT_EQ(Rereads, 1);
    Script("fail_at=Dim\n");
    Compile();
    EXPECT_EQ(Rereads, 1);
}

TEST_F(CompilerCentralTest, RunningOutOfMemoryHasItsOwnMessage) {
    MakeBlink();
    CompilerCentral::SetKvmFileHandler([] { throw std::bad_alloc(); });
    EXPECT_FALSE(Compile());
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral("Out of Memory|Kavlin IDE is out of memory")});
}

TEST_F(CompilerCentralTest, AnyOtherRunTimeErrorIsReportedAsError606) {
    MakeBlink();
    CompilerCentral::SetKvmFileHandler([] { throw std::runtime_error("broken map"); });
    EXPECT_FALSE(Compile());
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Unexpected Error"));
    EXPECT_TRUE(Boxes->Boxes[0].Text.contains(QStringLiteral("606")))
        << Boxes->Boxes[0].Text.toStdString();
}

TEST_F(CompilerCentralTest, AMissingComponentAtCompileTimeIsError606) {
    MakeBlink();
    QFile::remove(Install + QStringLiteral("/libKvComp141.so"));
    EXPECT_FALSE(Compile());
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_TRUE(Boxes->Boxes[0].Text.contains(QStringLiteral("606")));
    EXPECT_TRUE(
        Boxes->Boxes[0].Text.contains(QStringLiteral("Can't find compiler DLL:  libKvComp141.so")));
}

TEST_F(CompilerCentralTest, AComponentWrittenInPlainCFromTheHeaderAloneCompiles) {
    InstallComponent(QStringLiteral(KVCOMP_MINIMAL_C));
    MakeBlink();
    EXPECT_TRUE(CheckVersion());
    EXPECT_TRUE(Compile());
    EXPECT_EQ(Host.CompileStatus,
              QStringLiteral("Compiled OK, Code: 0 bytes, RAM: 0 bytes, PRS: 0 bytes"));
    EXPECT_EQ(WorkFile(QStringLiteral("blink.kvb")), QByteArray());
    EXPECT_EQ(Calls(), QStringList()) << "the test double was not the one loaded";
}

// ---- In a batch ------------------------------------------------------------

class BatchCompileTest : public CompilerCentralTest {
  protected:
    // Runs "NAME /c" on the project made by the test, as a build script would.
    void RunBatch(const QString& Name) {
        Project().PRFfile().WriteNewFile();
        Global<ProjectType>::Unload();
        Boxes->Boxes.clear();
        CommandLineInterpreter::SetHost(&Batch);
        CommandLineInterpreter::SetCommandLine(Name + QStringLiteral(" /c"));
        CommandLineInterpreter::Run();
    }
    BatchCompileHost Batch;
};

TEST_F(BatchCompileTest, AGoodCompileLeavesCompileAndDoneInTheLog) {
    MakeBlink();
    RunBatch(QStringLiteral("blink"));
    EXPECT_EQ(Batch.Results, QList<bool>{true});
    EXPECT_EQ(ReadLogLines(),
              (QStringList{QStringLiteral("Command line:  blink /c"), QString(),
                           QStringLiteral("Compile:  ") + Work + QStringLiteral("/blink.kvp"),
                           QStringLiteral("Done.")}));
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(
        WorkFile(QStringLiteral("blink.kvb")).size(),
        WorkFile(QStringLiteral("main.bas")).size() + WorkFile(QStringLiteral("led.bas")).size());
}

TEST_F(BatchCompileTest, ABatchHoldsItsModulesTextWithoutWindowsOrColour) {
    MakeBlink();
    RunBatch(QStringLiteral("blink"));
    ASSERT_EQ(Project().ModuleCount(), 2);
    for (int Number = 1; Number <= 2; ++Number) {
        const ModuleType* Module = Project().ModuleList().GetModule(static_cast<int16_t>(Number));
        EXPECT_NE(dynamic_cast<TextModuleWindow*>(Module->EditWindow()), nullptr)
            << "module " << Number << " was given an edit window nobody sees";
    }
    EXPECT_EQ(Project().ModuleList().GetModule(2)->SourceCode().toUtf8(),
              WorkFile(QStringLiteral("led.bas")));
}

TEST_F(BatchCompileTest, ACompileErrorWritesTheErrorBlockBeforeDone) {
    MakeBlink();
    Script("fail_at=x = 1\ndescription=Type mismatch\nwarnings=w\n");
    RunBatch(QStringLiteral("blink"));
    EXPECT_EQ(Batch.Results, QList<bool>{false});
    EXPECT_EQ(
        ReadLogLines(),
        (QStringList{QStringLiteral("Command line:  blink /c"), QString(),
                     QStringLiteral("Compile:  ") + Work + QStringLiteral("/blink.kvp"), QString(),
                     QStringLiteral("Error in module ") + Work + QStringLiteral("/led.bas"),
                     QString(), QStringLiteral("Type mismatch"), QStringLiteral("Column 3 :"),
                     QString(), QStringLiteral("Done.")}));
    EXPECT_TRUE(ErrorDisplay::GetErrorWasLogged());
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(Host.Highlights, QStringList()) << "nothing is selected in a batch";
    EXPECT_EQ(Host.CommandLineErrors, QStringList{QStringLiteral("2,2,3,0,Type mismatch")});
}

TEST_F(BatchCompileTest, WithoutAnEditorTheHeadlessHostWritesTheSameBlock) {
    MakeBlink();
    Script("fail_at=x = 1\ndescription=Type mismatch\n");
    CompilerHost::Uninstall(&Host);
    RunBatch(QStringLiteral("blink"));
    EXPECT_EQ(
        ReadLogLines().mid(3, 6),
        (QStringList{
            QString(), QStringLiteral("Error in module ") + Work + QStringLiteral("/led.bas"),
            QString(), QStringLiteral("Type mismatch"), QStringLiteral("Column 3 :"), QString()}));
}

TEST_F(BatchCompileTest, AnErrorInNoModuleStillWritesTheBlock) {
    MakeBlink();
    Script("error=0,0,0,0,0,5\ndescription=Project file damaged\n");
    RunBatch(QStringLiteral("blink"));
    EXPECT_EQ(ReadLogLines().mid(3),
              (QStringList{QString(), QStringLiteral("Error in module "), QString(),
                           QStringLiteral("Project file damaged"), QStringLiteral("Column 0 :"),
                           QString(), QStringLiteral("Done.")}));
}

TEST_F(BatchCompileTest, ChipPreferencesOfAnotherChipAreLoggedWithoutADialog) {
    MakeBlink();
    Project().PRFfile().ChangeProcessor(1);
    RunBatch(QStringLiteral("blink"));
    EXPECT_EQ(ReadLogLines().mid(3),
              (QStringList{QStringLiteral("Chip preferences have not been set"),
                           QStringLiteral("Done.")}));
    EXPECT_EQ(Host.ChipDialogs, 0);
}

TEST_F(BatchCompileTest, AKv10WithoutEepromSizeIsLoggedWithoutADialog) {
    GlobalData::ChipType = 1;
    MakeBlink();
    Project().PRFfile().SpiSize = 0;
    RunBatch(QStringLiteral("blink"));
    EXPECT_EQ(ReadLogLines().mid(3),
              (QStringList{QStringLiteral("Error -- EEPROM memory size is zero or negative"),
                           QStringLiteral("Done.")}));
    EXPECT_EQ(CallsNamed(QStringLiteral("RunCompile")), QStringList());
    EXPECT_EQ(Host.ChipDialogs, 0);
}

TEST_F(BatchCompileTest, TheHeadlessHostCentresOnTheEditorsStoredPlace) {
    MakeBlink();
    CompilerHost::Uninstall(&Host);
    RunBatch(QStringLiteral("blink"));
    SetSetting(QStringLiteral("Editor_Top"), QStringLiteral("100"));
    SetSetting(QStringLiteral("Editor_Left"), QStringLiteral("200"));
    SetSetting(QStringLiteral("Editor_Width"), QStringLiteral("1000"));
    SetSetting(QStringLiteral("Editor_Height"), QStringLiteral("3001"));
    RunBatch(QStringLiteral("blink"));
    // First the defaults (600, 600, 8595 wide, 6660 high), then the stored place.
    EXPECT_EQ(CallsNamed(QStringLiteral("SetWindowCenter")),
              (QStringList{QStringLiteral("SetWindowCenter(-1, 3930, 4898)"),
                           QStringLiteral("SetWindowCenter(-1, 1600, 700)")}));
}

}  // namespace
