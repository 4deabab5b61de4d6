#include <QFile>

#include "chip/PrfRecordType.h"
#include "editor/EnvironmentOptionsModel.h"
#include "editor/RichTextBox.h"
#include "editor/SyntaxHighlighterType.h"
#include "platform/Val.h"
#include "project/ProjectType.h"
#include "support/FrameFixture.h"
#include "support/ModelProjectFixture.h"
#include "support/QtPrinters.h"

namespace {

using namespace EnvironmentOptionsModel;

class EnvironmentOptionsModelTest : public ModelProjectFixture {
  protected:
    int32_t PrfRecord(int32_t Number) const {
        return PrfRecordType::Decode(TempFileBytes(QStringLiteral("blink.prf")),
                                     PrfRecordType::OffsetOf(Number))
            .Value;
    }
    // A project of two modules whose preference file holds the defaults.
    void OpenBlink() {
        WriteFile(QStringLiteral("blink.kvp"), "main.bas\r\nled.bas\r\n");
        WriteFile(QStringLiteral("main.bas"), "x = \"on\" ' lit\r\n");
        WriteFile(QStringLiteral("led.bas"), "' off\r\ny = 1");
        Project().OpenProject(TempPath(), QStringLiteral("blink"), QStringLiteral("kvp"), true);
        Global<ProjectType>::Unload();
        WriteFile(QStringLiteral("blink.kvp"), "main.bas\r\nled.bas\r\n");
        Project().OpenProject(TempPath(), QStringLiteral("blink"), QStringLiteral("kvp"), false);
        ASSERT_EQ(Project().ModuleCount(), 2);
    }
    static QString RangeMessage(const QString& Typed) {
        return QStringLiteral("String Length Overflow|Variable length string size ") + Typed +
               QStringLiteral(" is out of range\nRange is 1 to 64 characters");
    }
};

TEST_F(EnvironmentOptionsModelTest, AnEmptyStoreShowsTheDefaults) {
    const EnvironmentOptionsValues Values = Load();
    EXPECT_TRUE(Values.SaveChanges);
    EXPECT_TRUE(Values.StrictSyntaxRules);
    EXPECT_TRUE(Values.OptimizeEnable);
    EXPECT_EQ(Values.MaxVstr, QStringLiteral("16"));
    EXPECT_EQ(Values.TabWidthIndex, 2);
    EXPECT_EQ(Values.CodeColorItem, 2);
    EXPECT_EQ(Values.CommentColorItem, 3);
    EXPECT_EQ(Values.StringLiteralColorItem, 9);
    EXPECT_EQ(Values.BackgroundColorItem, 16);
    EXPECT_EQ(Values.EditorFontName, QStringLiteral("Courier New"));
    EXPECT_EQ(Values.EditorFontSize, 9);
}

TEST_F(EnvironmentOptionsModelTest, StoredSettingsAreShownAsTheyRead) {
    SetSetting(QStringLiteral("Save_File"), QStringLiteral("False"));
    SetSetting(QStringLiteral("Strict_Syntax_Rules"), QStringLiteral("False"));
    SetSetting(QStringLiteral("Optimize_Enable"), QStringLiteral("true"));
    SetSetting(QStringLiteral("MaxVstr"), QStringLiteral("40"));
    SetSetting(QStringLiteral("Tab_Width"), QStringLiteral("9"));
    SetSetting(QStringLiteral("Text_Color"), QStringLiteral("4"));
    SetSetting(QStringLiteral("Comment_Color"), QStringLiteral("0"));
    SetSetting(QStringLiteral("String_Literal_Color"), QStringLiteral("99"));
    SetSetting(QStringLiteral("Background_Color"), QStringLiteral("7"));
    SetSetting(QStringLiteral("Editor_Font_Name"), QStringLiteral("Mono"));
    SetSetting(QStringLiteral("Editor_Font_Size"), QStringLiteral("12"));
    const EnvironmentOptionsValues Values = Load();
    EXPECT_FALSE(Values.SaveChanges);
    EXPECT_FALSE(Values.StrictSyntaxRules);
    EXPECT_FALSE(Values.OptimizeEnable) << "only \"True\" is True";
    EXPECT_EQ(Values.MaxVstr, QStringLiteral("40"));
    EXPECT_EQ(Values.TabWidthIndex, 6);
    EXPECT_EQ(Values.CodeColorItem, 5);
    EXPECT_EQ(Values.CommentColorItem, 1);
    EXPECT_EQ(Values.StringLiteralColorItem, 16);
    EXPECT_EQ(Values.BackgroundColorItem, 8);
    EXPECT_EQ(Values.EditorFontName, QStringLiteral("Mono"));
    EXPECT_EQ(Values.EditorFontSize, 12);
}

TEST_F(EnvironmentOptionsModelTest, WithNoOpenProjectThisProjectIsDisabledEmptyAndUntouched) {
    const EnvironmentOptionsValues Values = Load();
    EXPECT_FALSE(Values.CurrentProjectEnabled);
    EXPECT_FALSE(Values.StrictSyntaxRulesCUR);
    EXPECT_FALSE(Values.OptimizeEnableCUR);
    EXPECT_TRUE(Values.MaxVstrCUR.isEmpty());
    EXPECT_EQ(Accept(Values), AcceptOutcome::Accepted);
    EXPECT_FALSE(Project().IsDefined());
    EXPECT_TRUE(Boxes->Boxes.isEmpty()) << "the empty project length is not checked";
    EXPECT_FALSE(QFile::exists(TempFile(QStringLiteral(".prf"))));
}

TEST_F(EnvironmentOptionsModelTest, OpenProjectShowsItsPreferenceFilesOptions) {
    OpenBlink();
    Project().PRFfile().StrictSyntaxRules = false;
    Project().PRFfile().OptimizeEnable = true;
    Project().PRFfile().MaxVstr = 33;
    const EnvironmentOptionsValues Values = Load();
    EXPECT_TRUE(Values.CurrentProjectEnabled);
    EXPECT_FALSE(Values.StrictSyntaxRulesCUR);
    EXPECT_TRUE(Values.OptimizeEnableCUR);
    EXPECT_EQ(Values.MaxVstrCUR, QStringLiteral("33"));
}

struct MaxVstrCase {
    const char* Typed;
    bool Accepted;
};

class MaxVstrRangeTest : public EnvironmentOptionsModelTest,
                         public ::testing::WithParamInterface<MaxVstrCase> {};

TEST_P(MaxVstrRangeTest, DefaultStringLengthIsCheckedAgainstOneToSixtyFour) {
    EnvironmentOptionsValues Values = Load();
    Values.MaxVstr = QString::fromLatin1(GetParam().Typed);
    const AcceptOutcome Outcome = Accept(Values);
    if (GetParam().Accepted) {
        EXPECT_EQ(Outcome, AcceptOutcome::Accepted);
        EXPECT_TRUE(Boxes->Boxes.isEmpty());
        EXPECT_EQ(Setting(QStringLiteral("MaxVstr")), QString::number(Val(Values.MaxVstr)));
    } else {
        EXPECT_EQ(Outcome, AcceptOutcome::RejectedMaxVstr);
        EXPECT_EQ(BoxMessages(), QStringList{RangeMessage(Values.MaxVstr)});
        EXPECT_TRUE(Setting(QStringLiteral("MaxVstr")).isEmpty());
    }
}

TEST_P(MaxVstrRangeTest, ProjectStringLengthIsCheckedAgainstOneToSixtyFour) {
    OpenBlink();
    EnvironmentOptionsValues Values = Load();
    Values.MaxVstrCUR = QString::fromLatin1(GetParam().Typed);
    const AcceptOutcome Outcome = Accept(Values);
    if (GetParam().Accepted) {
        EXPECT_EQ(Outcome, AcceptOutcome::Accepted);
        EXPECT_TRUE(Boxes->Boxes.isEmpty());
        EXPECT_EQ(PrfRecord(615), static_cast<int32_t>(Val(Values.MaxVstrCUR)));
    } else {
        EXPECT_EQ(Outcome, AcceptOutcome::RejectedMaxVstrCUR);
        EXPECT_EQ(BoxMessages(), QStringList{RangeMessage(Values.MaxVstrCUR)});
        EXPECT_EQ(PrfRecord(615), 16) << "the file is not written";
    }
}

INSTANTIATE_TEST_SUITE_P(Lengths, MaxVstrRangeTest,
                         ::testing::Values(MaxVstrCase{"0", false}, MaxVstrCase{"65", false},
                                           MaxVstrCase{"abc", false}, MaxVstrCase{"", false},
                                           MaxVstrCase{"-3", false}, MaxVstrCase{"1", true},
                                           MaxVstrCase{"64", true}, MaxVstrCase{"32", true},
                                           MaxVstrCase{"&H20", true}));

TEST_F(EnvironmentOptionsModelTest, RejectedStringLengthStillLeavesTheSaveOptionAndDefaultsStored) {
    EnvironmentOptionsValues Values = Load();
    Values.SaveChanges = false;
    Values.StrictSyntaxRules = false;
    Values.OptimizeEnable = false;
    Values.MaxVstr = QStringLiteral("65");
    Values.TabWidthIndex = 0;
    EXPECT_EQ(Accept(Values), AcceptOutcome::RejectedMaxVstr);
    EXPECT_EQ(Setting(QStringLiteral("Save_File")), QStringLiteral("False"));
    EXPECT_EQ(Setting(QStringLiteral("Strict_Syntax_Rules")), QStringLiteral("False"));
    EXPECT_EQ(Setting(QStringLiteral("Optimize_Enable")), QStringLiteral("False"));
    EXPECT_TRUE(Setting(QStringLiteral("Tab_Width")).isEmpty()) << "stored only after the check";
    EXPECT_TRUE(Setting(QStringLiteral("Text_Color")).isEmpty());
}

TEST_F(EnvironmentOptionsModelTest, AcceptStoresTabWidthColoursAndFont) {
    EnvironmentOptionsValues Values = Load();
    Values.TabWidthIndex = 6;
    Values.CodeColorItem = 1;
    Values.CommentColorItem = 5;
    Values.StringLiteralColorItem = 12;
    Values.BackgroundColorItem = 8;
    Values.EditorFontName = QStringLiteral("DejaVu Sans Mono");
    Values.EditorFontSize = 14;
    EXPECT_EQ(Accept(Values), AcceptOutcome::Accepted);
    EXPECT_EQ(Setting(QStringLiteral("Tab_Width")), QStringLiteral("8"));
    EXPECT_EQ(Setting(QStringLiteral("Text_Color")), QStringLiteral("0"));
    EXPECT_EQ(Setting(QStringLiteral("Comment_Color")), QStringLiteral("4"));
    EXPECT_EQ(Setting(QStringLiteral("String_Literal_Color")), QStringLiteral("11"));
    EXPECT_EQ(Setting(QStringLiteral("Background_Color")), QStringLiteral("7"));
    EXPECT_EQ(Setting(QStringLiteral("Editor_Font_Name")), QStringLiteral("DejaVu Sans Mono"));
    EXPECT_EQ(Setting(QStringLiteral("Editor_Font_Size")), QStringLiteral("14"));
    EXPECT_EQ(Setting(QStringLiteral("MaxVstr")), QStringLiteral("16"));
}

TEST_F(EnvironmentOptionsModelTest, ThisProjectsOptionsAreWrittenToItsPreferenceFile) {
    OpenBlink();
    ASSERT_EQ(PrfRecord(607), 1);
    ASSERT_EQ(PrfRecord(612), 1);
    EnvironmentOptionsValues Values = Load();
    Values.StrictSyntaxRulesCUR = false;
    Values.OptimizeEnableCUR = false;
    Values.MaxVstrCUR = QStringLiteral("40");
    EXPECT_EQ(Accept(Values), AcceptOutcome::Accepted);
    EXPECT_EQ(PrfRecord(607), 0);
    EXPECT_EQ(PrfRecord(612), 0);
    EXPECT_EQ(PrfRecord(615), 40);
    EXPECT_EQ(TempFileBytes(QStringLiteral("blink.prf")).size(), 8610);
    // The defaults for new projects are the environment's, not this project's.
    EXPECT_EQ(Setting(QStringLiteral("Strict_Syntax_Rules")), QStringLiteral("True"));
    EXPECT_EQ(Setting(QStringLiteral("MaxVstr")), QStringLiteral("16"));
}

TEST_F(EnvironmentOptionsModelTest,
       RejectedProjectLengthKeepsItsFlagsInMemoryAndTheSettingsStored) {
    OpenBlink();
    EnvironmentOptionsValues Values = Load();
    Values.StrictSyntaxRulesCUR = false;
    Values.MaxVstrCUR = QStringLiteral("100");
    Values.TabWidthIndex = 1;
    EXPECT_EQ(Accept(Values), AcceptOutcome::RejectedMaxVstrCUR);
    EXPECT_FALSE(Project().PRFfile().StrictSyntaxRules);
    EXPECT_EQ(Project().PRFfile().MaxVstr, 16);
    EXPECT_EQ(PrfRecord(612), 1) << "the file is not written";
    EXPECT_EQ(Setting(QStringLiteral("Tab_Width")), QStringLiteral("3"));
}

TEST_F(EnvironmentOptionsModelTest, NewColoursRecolourEveryOpenModuleUnderTheWaitPointer) {
    OpenBlink();
    EnvironmentOptionsValues Values = Load();
    Values.CodeColorItem = 5;            // Red
    Values.CommentColorItem = 11;        // LightGreen
    Values.StringLiteralColorItem = 14;  // LightMagenta
    Values.BackgroundColorItem = 1;      // Black
    for (int16_t Number : {1, 2}) {
        WindowOf(Number)->Box.Pointers.clear();
    }
    EXPECT_EQ(Accept(Values), AcceptOutcome::Accepted);
    const auto Color = [](int Index) {
        return static_cast<uint32_t>(SyntaxHighlighterType::ColorFromIndex(Index));
    };
    const MemoryRichTextBox& Main = WindowOf(1)->Box;
    EXPECT_EQ(Main.ColorAt(0), Color(4));    // x
    EXPECT_EQ(Main.ColorAt(5), Color(13));   // "on"
    EXPECT_EQ(Main.ColorAt(10), Color(10));  // ' lit
    EXPECT_EQ(Main.BackColor, Color(0));
    const MemoryRichTextBox& Led = WindowOf(2)->Box;
    EXPECT_EQ(Led.ColorAt(0), Color(10));
    EXPECT_EQ(Led.ColorAt(7), Color(4));
    EXPECT_EQ(Led.BackColor, Color(0));
    for (int16_t Number : {1, 2}) {
        const MemoryRichTextBox& Box = WindowOf(Number)->Box;
        EXPECT_GT(Box.ColorWritesUnderWaitPointer, 0) << "module " << Number;
        ASSERT_FALSE(Box.Pointers.empty());
        EXPECT_EQ(Box.Pointers.front(), rtfWaitPointer);
        EXPECT_EQ(Box.Pointers.back(), rtfDefaultPointer);
    }
}

}  // namespace
