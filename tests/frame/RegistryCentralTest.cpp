#include <gtest/gtest.h>

#include <ostream>

#include "FrameTestSupport.h"
#include "frame/RegistryCentral.h"
#include "support/FrameFixture.h"

using namespace RegistryCentral;

namespace {

class RegistryCentralTest : public FrameFixture {
  protected:
    // The number of keys in the store: a check that a setter wrote nothing.
    qsizetype KeyCount() const { return Settings->Values().size(); }
    bool HasKey(const QString& Key) const {
        return Settings->Values().contains(QStringLiteral("Kavlin/Config/") + Key);
    }
};

// ---- An empty store ---------------------------------------------------------

TEST_F(RegistryCentralTest, EmptyStoreYieldsTheDefaults) {
    EXPECT_EQ(RegistryGetChipType(), 2);
    EXPECT_TRUE(RegistryGetSaveFile());
    EXPECT_EQ(RegistryGetTabWidth(), 4);
    QString FontName;
    int32_t FontSize = 0;
    RegistryGetEditorFont(FontName, FontSize);
    EXPECT_EQ(FontName, QStringLiteral("Courier New"));
    EXPECT_EQ(FontSize, 9);
    int32_t Text = -1, String = -1, Comment = -1, Background = -1;
    RegistryGetEditorColors(Text, String, Comment, Background);
    EXPECT_EQ(Text, 1);
    EXPECT_EQ(String, 8);
    EXPECT_EQ(Comment, 2);
    EXPECT_EQ(Background, 15);
    EXPECT_EQ(RegistryGetMaxVstr(), 16);
    EXPECT_TRUE(RegistryGetOptimizeEnable());
    EXPECT_TRUE(RegistryGetStrictSyntaxRules());
    EXPECT_FALSE(RegistryGetChildWindowsMaximized());
    EXPECT_TRUE(RegistryGetInstallDir().isEmpty());
    EXPECT_TRUE(RegistryGetWorkDir().isEmpty());
    for (int32_t Index = 1; Index <= 4; ++Index) {
        EXPECT_TRUE(RegistryGetLastProject(Index).isEmpty()) << Index;
    }
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_EQ(KeyCount(), 0) << "reading must not write";
}

TEST_F(RegistryCentralTest, EmptyStoreYieldsDefaultGeometries) {
    FormGeometry Main;
    RegistryGetMainGeometry(Main);
    EXPECT_EQ(Main.Top, 200);
    EXPECT_EQ(Main.Left, 200);
    EXPECT_EQ(Main.Width, 6950);
    EXPECT_EQ(Main.Height, 6500);
    FormGeometry Editor;
    RegistryGetEditorGeometry(Editor);
    EXPECT_EQ(Editor.Top, 600);
    EXPECT_EQ(Editor.Left, 600);
    EXPECT_EQ(Editor.Width, 8595);
    EXPECT_EQ(Editor.Height, 6660);
}

// ---- Chip type --------------------------------------------------------------

struct ChipCase {
    const char* Stored;
    int32_t Expected;
};

std::ostream& operator<<(std::ostream& Stream, const ChipCase& Case) {
    return Stream << '"' << Case.Stored << "\" -> " << Case.Expected;
}

class ChipTypeReads : public RegistryCentralTest, public ::testing::WithParamInterface<ChipCase> {};

TEST_P(ChipTypeReads, TheStoredText) {
    SetSetting(QStringLiteral("Chip_Type"), QString::fromUtf8(GetParam().Stored));
    EXPECT_EQ(RegistryGetChipType(), GetParam().Expected);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Cases, ChipTypeReads,
                         ::testing::Values(ChipCase{"KV10", 1}, ChipCase{"KV20", 2},
                                           ChipCase{"KV30", 3}, ChipCase{"", 2},
                                           ChipCase{"KV99", 2}, ChipCase{"kv10", 2},
                                           ChipCase{"KV30 ", 2}, ChipCase{"3", 2}));

TEST_F(RegistryCentralTest, SaveChipTypeWritesTheKnownTexts) {
    RegistrySaveChipType(1);
    EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV10"));
    RegistrySaveChipType(3);
    EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV30"));
    RegistrySaveChipType(2);
    EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV20"));
}

TEST_F(RegistryCentralTest, SaveChipTypeOfAnUnknownValueWritesKV20) {
    RegistrySaveChipType(1);
    RegistrySaveChipType(7);
    EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV20"));
    RegistrySaveChipType(3);
    RegistrySaveChipType(0);
    EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV20"));
    RegistrySaveChipType(-1);
    EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV20"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

// ---- Directories ------------------------------------------------------------

TEST_F(RegistryCentralTest, InstallDirIsRunDir) {
    SetSetting(QStringLiteral("Run_Dir"), QStringLiteral("C:\\Kavlin"));
    EXPECT_EQ(RegistryGetInstallDir(), QStringLiteral("C:\\Kavlin"));
    EXPECT_FALSE(HasKey(QStringLiteral("Install_Directory")));
}

TEST_F(RegistryCentralTest, WorkDirRoundTrip) {
    RegistrySaveWorkDir(QStringLiteral("/home/user/projects"));
    EXPECT_EQ(Setting(QStringLiteral("Work_Dir")), QStringLiteral("/home/user/projects"));
    EXPECT_EQ(RegistryGetWorkDir(), QStringLiteral("/home/user/projects"));
}

// ---- Save_File and the True-only booleans -----------------------------------

struct TextBoolCase {
    const char* Stored;
    bool Expected;
};

std::ostream& operator<<(std::ostream& Stream, const TextBoolCase& Case) {
    return Stream << '"' << Case.Stored << "\" -> " << Case.Expected;
}

class SaveFileReads : public RegistryCentralTest,
                      public ::testing::WithParamInterface<TextBoolCase> {};

TEST_P(SaveFileReads, AnythingButFalseAsTrue) {
    SetSetting(QStringLiteral("Save_File"), QString::fromUtf8(GetParam().Stored));
    EXPECT_EQ(RegistryGetSaveFile(), GetParam().Expected);
}

INSTANTIATE_TEST_SUITE_P(Cases, SaveFileReads,
                         ::testing::Values(TextBoolCase{"False", false}, TextBoolCase{"True", true},
                                           TextBoolCase{"", true}, TextBoolCase{"false", true},
                                           TextBoolCase{"FALSE", true}, TextBoolCase{"0", true},
                                           TextBoolCase{"False ", true}));

class OnlyTrueReads : public RegistryCentralTest,
                      public ::testing::WithParamInterface<TextBoolCase> {};

TEST_P(OnlyTrueReads, ForEveryTrueOnlySetting) {
    const QString Stored = QString::fromUtf8(GetParam().Stored);
    SetSetting(QStringLiteral("Child_Windows_Maximized"), Stored);
    SetSetting(QStringLiteral("Optimize_Enable"), Stored);
    SetSetting(QStringLiteral("Strict_Syntax_Rules"), Stored);
    EXPECT_EQ(RegistryGetChildWindowsMaximized(), GetParam().Expected);
    EXPECT_EQ(RegistryGetOptimizeEnable(), GetParam().Expected);
    EXPECT_EQ(RegistryGetStrictSyntaxRules(), GetParam().Expected);
}

INSTANTIATE_TEST_SUITE_P(Cases, OnlyTrueReads,
                         ::testing::Values(TextBoolCase{"True", true}, TextBoolCase{"False", false},
                                           TextBoolCase{"true", false}, TextBoolCase{"1", false},
                                           TextBoolCase{"Yes", false}));

TEST_F(RegistryCentralTest, BooleansAreWrittenTrueAndFalse) {
    RegistrySaveSaveFile(false);
    RegistrySaveChildWindowsMaximized(true);
    RegistrySaveOptimizeEnable(false);
    RegistrySaveStrictSyntaxRules(true);
    EXPECT_EQ(Setting(QStringLiteral("Save_File")), QStringLiteral("False"));
    EXPECT_EQ(Setting(QStringLiteral("Child_Windows_Maximized")), QStringLiteral("True"));
    EXPECT_EQ(Setting(QStringLiteral("Optimize_Enable")), QStringLiteral("False"));
    EXPECT_EQ(Setting(QStringLiteral("Strict_Syntax_Rules")), QStringLiteral("True"));
    EXPECT_FALSE(RegistryGetSaveFile());
    EXPECT_TRUE(RegistryGetChildWindowsMaximized());
    EXPECT_FALSE(RegistryGetOptimizeEnable());
    EXPECT_TRUE(RegistryGetStrictSyntaxRules());

    RegistrySaveSaveFile(true);
    RegistrySaveChildWindowsMaximized(false);
    RegistrySaveOptimizeEnable(true);
    RegistrySaveStrictSyntaxRules(false);
    EXPECT_EQ(Setting(QStringLiteral("Save_File")), QStringLiteral("True"));
    EXPECT_EQ(Setting(QStringLiteral("Child_Windows_Maximized")), QStringLiteral("False"));
    EXPECT_EQ(Setting(QStringLiteral("Optimize_Enable")), QStringLiteral("True"));
    EXPECT_EQ(Setting(QStringLiteral("Strict_Syntax_Rules")), QStringLiteral("False"));
}

// ---- Clamped numbers --------------------------------------------------------

struct NumberCase {
    const char* Stored;
    int32_t Expected;
};

std::ostream& operator<<(std::ostream& Stream, const NumberCase& Case) {
    return Stream << '"' << Case.Stored << "\" -> " << Case.Expected;
}

class TabWidthReads : public RegistryCentralTest,
                      public ::testing::WithParamInterface<NumberCase> {};

TEST_P(TabWidthReads, HeldToTwoToEight) {
    SetSetting(QStringLiteral("Tab_Width"), QString::fromUtf8(GetParam().Stored));
    EXPECT_EQ(RegistryGetTabWidth(), GetParam().Expected);
}

INSTANTIATE_TEST_SUITE_P(Cases, TabWidthReads,
                         ::testing::Values(NumberCase{"1", 2}, NumberCase{"9", 8},
                                           NumberCase{"abc", 2}, NumberCase{"", 4},
                                           NumberCase{"2", 2}, NumberCase{"8", 8},
                                           NumberCase{"3", 3}, NumberCase{"-4", 2},
                                           NumberCase{"&H6", 6}, NumberCase{"5abc", 5},
                                           NumberCase{"6.5", 6}));

class TextColorReads : public RegistryCentralTest,
                       public ::testing::WithParamInterface<NumberCase> {};

TEST_P(TextColorReads, HeldToZeroToFifteen) {
    SetSetting(QStringLiteral("Text_Color"), QString::fromUtf8(GetParam().Stored));
    int32_t Text = -1, String = -1, Comment = -1, Background = -1;
    RegistryGetEditorColors(Text, String, Comment, Background);
    EXPECT_EQ(Text, GetParam().Expected);
}

INSTANTIATE_TEST_SUITE_P(Cases, TextColorReads,
                         ::testing::Values(NumberCase{"99", 15}, NumberCase{"-1", 0},
                                           NumberCase{"0", 0}, NumberCase{"15", 15},
                                           NumberCase{"7", 7}, NumberCase{"", 1},
                                           NumberCase{"abc", 0}));

TEST_F(RegistryCentralTest, EveryColourIsHeldToZeroToFifteen) {
    SetSetting(QStringLiteral("Text_Color"), QStringLiteral("3"));
    SetSetting(QStringLiteral("String_Literal_Color"), QStringLiteral("16"));
    SetSetting(QStringLiteral("Comment_Color"), QStringLiteral("-5"));
    SetSetting(QStringLiteral("Background_Color"), QStringLiteral("12"));
    int32_t Text = -1, String = -1, Comment = -1, Background = -1;
    RegistryGetEditorColors(Text, String, Comment, Background);
    EXPECT_EQ(Text, 3);
    EXPECT_EQ(String, 15);
    EXPECT_EQ(Comment, 0);
    EXPECT_EQ(Background, 12);
}

TEST_F(RegistryCentralTest, ColoursRoundTrip) {
    RegistrySaveEditorColors(4, 5, 6, 7);
    EXPECT_EQ(Setting(QStringLiteral("Text_Color")), QStringLiteral("4"));
    EXPECT_EQ(Setting(QStringLiteral("String_Literal_Color")), QStringLiteral("5"));
    EXPECT_EQ(Setting(QStringLiteral("Comment_Color")), QStringLiteral("6"));
    EXPECT_EQ(Setting(QStringLiteral("Background_Color")), QStringLiteral("7"));
    int32_t Text = -1, String = -1, Comment = -1, Background = -1;
    RegistryGetEditorColors(Text, String, Comment, Background);
    EXPECT_EQ(Text, 4);
    EXPECT_EQ(String, 5);
    EXPECT_EQ(Comment, 6);
    EXPECT_EQ(Background, 7);
}

TEST_F(RegistryCentralTest, TabWidthIsWrittenAsADecimal) {
    RegistrySaveTabWidth(6);
    EXPECT_EQ(Setting(QStringLiteral("Tab_Width")), QStringLiteral("6"));
    EXPECT_EQ(RegistryGetTabWidth(), 6);
}

TEST_F(RegistryCentralTest, FontNameIsTrimmedAndSizeHeldToEightToTwenty) {
    SetSetting(QStringLiteral("Editor_Font_Name"), QStringLiteral("  Lucida Console  "));
    SetSetting(QStringLiteral("Editor_Font_Size"), QStringLiteral("4"));
    QString Name;
    int32_t Size = 0;
    RegistryGetEditorFont(Name, Size);
    EXPECT_EQ(Name, QStringLiteral("Lucida Console"));
    EXPECT_EQ(Size, 8);

    SetSetting(QStringLiteral("Editor_Font_Size"), QStringLiteral("30"));
    RegistryGetEditorFont(Name, Size);
    EXPECT_EQ(Size, 20);

    SetSetting(QStringLiteral("Editor_Font_Size"), QStringLiteral("12"));
    RegistryGetEditorFont(Name, Size);
    EXPECT_EQ(Size, 12);
}

TEST_F(RegistryCentralTest, FontRoundTrip) {
    RegistrySaveEditorFont(QStringLiteral("Monospace"), 11);
    EXPECT_EQ(Setting(QStringLiteral("Editor_Font_Name")), QStringLiteral("Monospace"));
    EXPECT_EQ(Setting(QStringLiteral("Editor_Font_Size")), QStringLiteral("11"));
    QString Name;
    int32_t Size = 0;
    RegistryGetEditorFont(Name, Size);
    EXPECT_EQ(Name, QStringLiteral("Monospace"));
    EXPECT_EQ(Size, 11);
}

TEST_F(RegistryCentralTest, MaxVstrIsNotClamped) {
    SetSetting(QStringLiteral("MaxVstr"), QStringLiteral("200"));
    EXPECT_EQ(RegistryGetMaxVstr(), 200);
    RegistrySaveMaxVstr(32);
    EXPECT_EQ(Setting(QStringLiteral("MaxVstr")), QStringLiteral("32"));
    EXPECT_EQ(RegistryGetMaxVstr(), 32);
}

// ---- Geometry ---------------------------------------------------------------

TEST_F(RegistryCentralTest, MainGeometryWithHeightEmptyGivesAllFourDefaults) {
    SetSetting(QStringLiteral("Main_Top"), QStringLiteral("10"));
    SetSetting(QStringLiteral("Main_Left"), QStringLiteral("20"));
    SetSetting(QStringLiteral("Main_Width"), QStringLiteral("3000"));
    FormGeometry Geometry;
    Geometry.Top = Geometry.Left = Geometry.Width = Geometry.Height = -7;
    RegistryGetMainGeometry(Geometry);
    EXPECT_EQ(Geometry.Top, 200);
    EXPECT_EQ(Geometry.Left, 200);
    EXPECT_EQ(Geometry.Width, 6950);
    EXPECT_EQ(Geometry.Height, 6500);
}

TEST_F(RegistryCentralTest, EditorGeometryWithTopEmptyGivesAllFourDefaults) {
    SetSetting(QStringLiteral("Editor_Left"), QStringLiteral("20"));
    SetSetting(QStringLiteral("Editor_Width"), QStringLiteral("3000"));
    SetSetting(QStringLiteral("Editor_Height"), QStringLiteral("4000"));
    FormGeometry Geometry;
    RegistryGetEditorGeometry(Geometry);
    EXPECT_EQ(Geometry.Top, 600);
    EXPECT_EQ(Geometry.Left, 600);
    EXPECT_EQ(Geometry.Width, 8595);
    EXPECT_EQ(Geometry.Height, 6660);
}

TEST_F(RegistryCentralTest, FourStoredGeometryKeysAreUsedAsTheyStand) {
    SetSetting(QStringLiteral("Main_Top"), QStringLiteral("-10"));
    SetSetting(QStringLiteral("Main_Left"), QStringLiteral("-10"));
    SetSetting(QStringLiteral("Main_Width"), QStringLiteral("100000"));
    SetSetting(QStringLiteral("Main_Height"), QStringLiteral("1"));
    FormGeometry Geometry;
    RegistryGetMainGeometry(Geometry);
    EXPECT_EQ(Geometry.Top, -10);
    EXPECT_EQ(Geometry.Left, -10);
    EXPECT_EQ(Geometry.Width, 100000);
    EXPECT_EQ(Geometry.Height, 1);
}

TEST_F(RegistryCentralTest, GeometryRoundTripKeepsTheWindowsApart) {
    FormGeometry Main;
    Main.Top = 1;
    Main.Left = 2;
    Main.Width = 3003;
    Main.Height = 4004;
    FormGeometry Editor;
    Editor.Top = 11;
    Editor.Left = -12;
    Editor.Width = 5005;
    Editor.Height = 6006;
    RegistrySaveMainGeometry(Main);
    RegistrySaveEditorGeometry(Editor);
    EXPECT_EQ(Setting(QStringLiteral("Main_Top")), QStringLiteral("1"));
    EXPECT_EQ(Setting(QStringLiteral("Main_Left")), QStringLiteral("2"));
    EXPECT_EQ(Setting(QStringLiteral("Main_Width")), QStringLiteral("3003"));
    EXPECT_EQ(Setting(QStringLiteral("Main_Height")), QStringLiteral("4004"));
    EXPECT_EQ(Setting(QStringLiteral("Editor_Left")), QStringLiteral("-12"));

    FormGeometry ReadMain;
    FormGeometry ReadEditor;
    RegistryGetMainGeometry(ReadMain);
    RegistryGetEditorGeometry(ReadEditor);
    EXPECT_EQ(ReadMain.Top, 1);
    EXPECT_EQ(ReadMain.Left, 2);
    EXPECT_EQ(ReadMain.Width, 3003);
    EXPECT_EQ(ReadMain.Height, 4004);
    EXPECT_EQ(ReadEditor.Top, 11);
    EXPECT_EQ(ReadEditor.Left, -12);
    EXPECT_EQ(ReadEditor.Width, 5005);
    EXPECT_EQ(ReadEditor.Height, 6006);
}

// ---- Recent projects --------------------------------------------------------

TEST_F(RegistryCentralTest, LastProjectRoundTripForIndexOneToFour) {
    for (int32_t Index = 1; Index <= 4; ++Index) {
        RegistrySaveLastProject(Index, QStringLiteral("C:\\p\\project%1.kvp").arg(Index));
    }
    for (int32_t Index = 1; Index <= 4; ++Index) {
        EXPECT_EQ(Setting(QStringLiteral("Last_Project_%1").arg(Index)),
                  QStringLiteral("C:\\p\\project%1.kvp").arg(Index));
        EXPECT_EQ(RegistryGetLastProject(Index), QStringLiteral("C:\\p\\project%1.kvp").arg(Index));
    }
}

TEST_F(RegistryCentralTest, LastProjectOfAnotherIndexReadsEmpty) {
    SetSetting(QStringLiteral("Last_Project_0"), QStringLiteral("zero.kvp"));
    SetSetting(QStringLiteral("Last_Project_5"), QStringLiteral("five.kvp"));
    SetSetting(QStringLiteral("Last_Project_-1"), QStringLiteral("minus.kvp"));
    EXPECT_TRUE(RegistryGetLastProject(0).isEmpty());
    EXPECT_TRUE(RegistryGetLastProject(5).isEmpty());
    EXPECT_TRUE(RegistryGetLastProject(-1).isEmpty());
}

TEST_F(RegistryCentralTest, LastProjectOfAnotherIndexWritesNothing) {
    RegistrySaveLastProject(0, QStringLiteral("zero.kvp"));
    RegistrySaveLastProject(5, QStringLiteral("five.kvp"));
    RegistrySaveLastProject(-1, QStringLiteral("minus.kvp"));
    EXPECT_EQ(KeyCount(), 0);
}

// ---- Download port ----------------------------------------------------------

TEST_F(RegistryCentralTest, DownloadPortWithEmptyNumberIsUndefinedAndKeepsTheAddress) {
    SetSetting(QStringLiteral("Port_Mode"), QStringLiteral("Parallel"));
    SetSetting(QStringLiteral("Port_Address"), QStringLiteral("&H278"));
    SetSetting(QStringLiteral("Port_Reserve"), QStringLiteral("True"));
    DownloadPortInfoType Port;
    Port.SetIsDefined(true);
    Port.SetIsParallel(true);
    Port.SetPortNumber(3);
    Port.SetAddress(123);
    Port.SetReserve(true);
    RegistryGetDownloadPort(Port);
    EXPECT_FALSE(Port.IsDefined());
    EXPECT_FALSE(Port.IsParallel());
    EXPECT_EQ(Port.PortNumber(), 0);
    EXPECT_FALSE(Port.Reserve());
    EXPECT_EQ(Port.Address(), 123);
}

TEST_F(RegistryCentralTest, DownloadPortReadsAParallelPort) {
    SetSetting(QStringLiteral("Port_Number"), QStringLiteral("1"));
    SetSetting(QStringLiteral("Port_Mode"), QStringLiteral("Parallel"));
    SetSetting(QStringLiteral("Port_Address"), QStringLiteral("&H378"));
    SetSetting(QStringLiteral("Port_Reserve"), QStringLiteral("True"));
    DownloadPortInfoType Port;
    RegistryGetDownloadPort(Port);
    EXPECT_TRUE(Port.IsDefined());
    EXPECT_TRUE(Port.IsParallel());
    EXPECT_EQ(Port.PortNumber(), 1);
    EXPECT_EQ(Port.Address(), 888);
    EXPECT_TRUE(Port.Reserve());
}

TEST_F(RegistryCentralTest, DownloadPortModeAndReserveAreExact) {
    SetSetting(QStringLiteral("Port_Number"), QStringLiteral("2"));
    SetSetting(QStringLiteral("Port_Mode"), QStringLiteral("parallel"));
    SetSetting(QStringLiteral("Port_Address"), QStringLiteral("0"));
    SetSetting(QStringLiteral("Port_Reserve"), QStringLiteral("true"));
    DownloadPortInfoType Port;
    Port.SetIsParallel(true);
    Port.SetReserve(true);
    RegistryGetDownloadPort(Port);
    EXPECT_TRUE(Port.IsDefined());
    EXPECT_FALSE(Port.IsParallel());
    EXPECT_EQ(Port.PortNumber(), 2);
    EXPECT_EQ(Port.Address(), 0);
    EXPECT_FALSE(Port.Reserve());

    SetSetting(QStringLiteral("Port_Mode"), QStringLiteral("Serial"));
    RegistryGetDownloadPort(Port);
    EXPECT_FALSE(Port.IsParallel());
}

TEST_F(RegistryCentralTest, DownloadPortSaveOfADefinedPort) {
    DownloadPortInfoType Port;
    Port.SetIsDefined(true);
    Port.SetIsParallel(true);
    Port.SetPortNumber(2);
    Port.SetAddress(888);
    Port.SetReserve(true);
    RegistrySaveDownloadPort(Port);
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("2"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Mode")), QStringLiteral("Parallel"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Address")), QStringLiteral("888"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Reserve")), QStringLiteral("True"));

    Port.SetIsParallel(false);
    Port.SetPortNumber(4);
    Port.SetAddress(0);
    Port.SetReserve(false);
    RegistrySaveDownloadPort(Port);
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("4"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Mode")), QStringLiteral("Serial"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Address")), QStringLiteral("0"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Reserve")), QStringLiteral("False"));
}

TEST_F(RegistryCentralTest, DownloadPortSaveOfAnUndefinedPortWritesTheBlankSetUp) {
    SetSetting(QStringLiteral("Port_Number"), QStringLiteral("3"));
    SetSetting(QStringLiteral("Port_Mode"), QStringLiteral("Parallel"));
    SetSetting(QStringLiteral("Port_Address"), QStringLiteral("632"));
    SetSetting(QStringLiteral("Port_Reserve"), QStringLiteral("True"));
    DownloadPortInfoType Port;
    Port.SetIsDefined(false);
    Port.SetIsParallel(true);
    Port.SetPortNumber(3);
    Port.SetAddress(632);
    Port.SetReserve(true);
    RegistrySaveDownloadPort(Port);
    EXPECT_TRUE(HasKey(QStringLiteral("Port_Number")));
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QString());
    EXPECT_EQ(Setting(QStringLiteral("Port_Mode")), QStringLiteral("Serial"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Address")), QStringLiteral("&H378"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Reserve")), QStringLiteral("False"));
}

TEST_F(RegistryCentralTest, DownloadPortRoundTrip) {
    DownloadPortInfoType Saved;
    Saved.SetIsDefined(true);
    Saved.SetIsParallel(true);
    Saved.SetPortNumber(1);
    Saved.SetAddress(632);
    Saved.SetReserve(false);
    RegistrySaveDownloadPort(Saved);
    DownloadPortInfoType Read;
    RegistryGetDownloadPort(Read);
    EXPECT_TRUE(Read.IsDefined());
    EXPECT_TRUE(Read.IsParallel());
    EXPECT_EQ(Read.PortNumber(), 1);
    EXPECT_EQ(Read.Address(), 632);
    EXPECT_FALSE(Read.Reserve());
}

// ---- Monitor port -----------------------------------------------------------

MonitorPortInfoType MakeMonitorPort(uint8_t Number, int32_t Baud, int32_t Parity, uint8_t Data,
                                    int32_t Stop) {
    MonitorPortInfoType Port;
    Port.IsDefined = true;
    Port.SetPortNumber(Number);
    Port.BaudRate = Baud;
    Port.Parity = Parity;
    Port.SetDataBits(Data);
    Port.SetStopBits(Stop);
    return Port;
}

struct RecordCase {
    uint8_t Number;
    int32_t Baud;
    int32_t Parity;
    uint8_t Data;
    int32_t Stop;
    const char* Record;
};

std::ostream& operator<<(std::ostream& Stream, const RecordCase& Case) {
    return Stream << int(Case.Number) << ',' << Case.Baud << ',' << Case.Parity << ','
                  << int(Case.Data) << ',' << Case.Stop << " -> \"" << Case.Record << '"';
}

class MonitorPortRecord : public RegistryCentralTest,
                          public ::testing::WithParamInterface<RecordCase> {};

TEST_P(MonitorPortRecord, IsWrittenByteExact) {
    const RecordCase& Case = GetParam();
    RegistrySaveMonitorPort(
        MakeMonitorPort(Case.Number, Case.Baud, Case.Parity, Case.Data, Case.Stop));
    const QString Record = Setting(QStringLiteral("KV20port_Number"));
    EXPECT_EQ(Record, QString::fromLatin1(Case.Record));
    EXPECT_EQ(Record.size(), 18);
}

// Records of fields in range.
INSTANTIATE_TEST_SUITE_P(InRange, MonitorPortRecord,
                         ::testing::Values(RecordCase{1, 19200, 0, 8, 0, "  1,  19200,N,8,10"},
                                           RecordCase{2, 9600, 1, 7, 1, "  2,   9600,E,7,15"},
                                           RecordCase{12, 115200, 2, 8, 2, " 12, 115200,O,8,20"},
                                           RecordCase{255, 1200, 3, 5, 0, "255,   1200,S,5,10"},
                                           RecordCase{3, 300, 4, 6, 2, "  3,    300,M,6,20"}));

// A parity code outside 0 to 4 writes "N"; a stop code outside 0 to 2 writes "10".
INSTANTIATE_TEST_SUITE_P(OutOfRange, MonitorPortRecord,
                         ::testing::Values(RecordCase{1, 19200, 5, 8, 0, "  1,  19200,N,8,10"},
                                           RecordCase{1, 19200, -1, 8, 0, "  1,  19200,N,8,10"},
                                           RecordCase{1, 19200, 0, 8, 3, "  1,  19200,N,8,10"},
                                           RecordCase{1, 19200, 1, 8, -1, "  1,  19200,E,8,10"},
                                           RecordCase{4, 4800, 9, 7, 7, "  4,   4800,N,7,10"}));

TEST_F(RegistryCentralTest, MonitorPortRoundTripOfEveryParityAndStopCode) {
    for (int32_t Parity = 0; Parity <= 4; ++Parity) {
        for (int32_t Stop = 0; Stop <= 2; ++Stop) {
            RegistrySaveMonitorPort(MakeMonitorPort(7, 57600, Parity, 7, Stop));
            MonitorPortInfoType Read;
            RegistryGetMonitorPort(Read);
            EXPECT_TRUE(Read.IsDefined);
            EXPECT_EQ(Read.PortNumber(), 7);
            EXPECT_EQ(Read.BaudRate, 57600);
            EXPECT_EQ(Read.Parity, Parity);
            EXPECT_EQ(Read.DataBits(), 7);
            EXPECT_EQ(Read.StopBits(), Stop);
        }
    }
}

TEST_F(RegistryCentralTest, MonitorPortReadsTheFieldsAtTheirPlaces) {
    SetSetting(QStringLiteral("KV20port_Number"), QStringLiteral(" 12, 115200,O,7,15"));
    MonitorPortInfoType Read;
    RegistryGetMonitorPort(Read);
    EXPECT_TRUE(Read.IsDefined);
    EXPECT_EQ(Read.PortNumber(), 12);
    EXPECT_EQ(Read.BaudRate, 115200);
    EXPECT_EQ(Read.Parity, 2);
    EXPECT_EQ(Read.DataBits(), 7);
    EXPECT_EQ(Read.StopBits(), 1);
}

MonitorPortInfoType OddMonitorPort() {
    MonitorPortInfoType Port = MakeMonitorPort(9, 300, 3, 5, 2);
    return Port;
}

TEST_F(RegistryCentralTest, MonitorPortOfSeventeenCharactersGivesTheDefaults) {
    SetSetting(QStringLiteral("KV20port_Number"), QStringLiteral("  1,  19200,E,7,1"));
    MonitorPortInfoType Read = OddMonitorPort();
    RegistryGetMonitorPort(Read);
    EXPECT_FALSE(Read.IsDefined);
    EXPECT_EQ(Read.PortNumber(), 1);
    EXPECT_EQ(Read.BaudRate, 19200);
    EXPECT_EQ(Read.Parity, 0);
    EXPECT_EQ(Read.DataBits(), 8);
    EXPECT_EQ(Read.StopBits(), 0);
}

TEST_F(RegistryCentralTest, MonitorPortOfNineteenCharactersOrEmptyGivesTheDefaults) {
    for (const QString& Stored : {QStringLiteral("  2,   9600,E,7,15 "), QString()}) {
        SetSetting(QStringLiteral("KV20port_Number"), Stored);
        MonitorPortInfoType Read = OddMonitorPort();
        RegistryGetMonitorPort(Read);
        EXPECT_FALSE(Read.IsDefined) << Stored.toStdString();
        EXPECT_EQ(Read.PortNumber(), 1);
        EXPECT_EQ(Read.BaudRate, 19200);
        EXPECT_EQ(Read.Parity, 0);
        EXPECT_EQ(Read.DataBits(), 8);
        EXPECT_EQ(Read.StopBits(), 0);
    }
}

TEST_F(RegistryCentralTest, MonitorPortWithAnUnknownParityLetterReadsCodeZero) {
    SetSetting(QStringLiteral("KV20port_Number"), QStringLiteral("  2,   9600,X,7,15"));
    MonitorPortInfoType Read = OddMonitorPort();
    RegistryGetMonitorPort(Read);
    EXPECT_TRUE(Read.IsDefined);
    EXPECT_EQ(Read.Parity, 0);
    EXPECT_EQ(Read.PortNumber(), 2);
    EXPECT_EQ(Read.BaudRate, 9600);
    EXPECT_EQ(Read.DataBits(), 7);
    EXPECT_EQ(Read.StopBits(), 1);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(RegistryCentralTest, MonitorPortWithALowerCaseParityLetterReadsCodeZero) {
    SetSetting(QStringLiteral("KV20port_Number"), QStringLiteral("  2,   9600,e,7,10"));
    MonitorPortInfoType Read = OddMonitorPort();
    RegistryGetMonitorPort(Read);
    EXPECT_TRUE(Read.IsDefined);
    EXPECT_EQ(Read.Parity, 0);
}

TEST_F(RegistryCentralTest, MonitorPortWithAnUnknownStopTextReadsCodeZero) {
    SetSetting(QStringLiteral("KV20port_Number"), QStringLiteral("  2,   9600,E,7,12"));
    MonitorPortInfoType Read = OddMonitorPort();
    RegistryGetMonitorPort(Read);
    EXPECT_TRUE(Read.IsDefined);
    EXPECT_EQ(Read.StopBits(), 0);
    EXPECT_EQ(Read.Parity, 1);
}

TEST_F(RegistryCentralTest, MonitorPortSaveOfAnUndefinedPortWritesAnEmptyKey) {
    SetSetting(QStringLiteral("KV20port_Number"), QStringLiteral("  1,  19200,N,8,10"));
    MonitorPortInfoType Port = MakeMonitorPort(2, 9600, 1, 7, 1);
    Port.IsDefined = false;
    RegistrySaveMonitorPort(Port);
    EXPECT_TRUE(HasKey(QStringLiteral("KV20port_Number")));
    EXPECT_EQ(Setting(QStringLiteral("KV20port_Number")), QString());
    MonitorPortInfoType Read = OddMonitorPort();
    RegistryGetMonitorPort(Read);
    EXPECT_FALSE(Read.IsDefined);
}

}  // namespace
