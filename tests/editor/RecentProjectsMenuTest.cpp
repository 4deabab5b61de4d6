#include <QFile>

#include "project/RecentProjects.h"
#include "support/QtPrinters.h"
#include "support/SourceEditorFixture.h"

namespace {

// The four last projects in the editor's File menu, as a user opens them.
class RecentProjectsMenuTest : public SourceEditorFixture {
  protected:
    // A project of one module, opened through File, Open Project.
    void OpenThroughTheMenu(const QString& Name) {
        if (!QFile::exists(TempFile(Name + QStringLiteral(".kvp")))) {
            WriteFile(Name + QStringLiteral(".kvp"), Name.toUtf8() + "m.bas\r\n");
            WriteFile(Name + QStringLiteral("m.bas"), "x = 1");
            WriteFile(Name + QStringLiteral(".prf"), QByteArray(8610, '\0'));
        }
        Dialogs->Answers.push_back(TempFile(Name + QStringLiteral(".kvp")));
        Editor->mnuOpenProject->trigger();
        Settle();
    }
    // The visible recent entries' captions.
    QStringList Entries() const {
        QStringList List;
        for (QAction* Recent : Editor->mnuOpenRecentProject) {
            if (Recent->isVisible()) {
                List << Recent->text();
            }
        }
        return List;
    }
    QStringList Stored() {
        QStringList List;
        for (int Index = 1; Index <= 4; ++Index) {
            List << Setting(QStringLiteral("Last_Project_%1").arg(Index));
        }
        return List;
    }
};

TEST_F(RecentProjectsMenuTest, WithNoRecentProjectsTheEntriesAndTheirLineAreHidden) {
    EXPECT_TRUE(Entries().isEmpty());
    EXPECT_FALSE(Editor->mnuLine4->isVisible());
}

TEST_F(RecentProjectsMenuTest, OpeningAFifthProjectPushesTheOldestOut) {
    for (const char* Name : {"alpha", "bravo", "charlie", "delta", "echo"}) {
        OpenThroughTheMenu(QString::fromLatin1(Name));
    }
    EXPECT_EQ(Entries(),
              (QStringList{QStringLiteral("&1 ..\\echo"), QStringLiteral("&2 ..\\delta"),
                           QStringLiteral("&3 ..\\charlie"), QStringLiteral("&4 ..\\bravo")}));
    EXPECT_TRUE(Editor->mnuLine4->isVisible());
    EXPECT_EQ(Stored(),
              (QStringList{
                  TempFile(QStringLiteral("echo.kvp")), TempFile(QStringLiteral("delta.kvp")),
                  TempFile(QStringLiteral("charlie.kvp")), TempFile(QStringLiteral("bravo.kvp"))}));
}

TEST_F(RecentProjectsMenuTest,
       OpeningTheThirdFromTheMenuMovesItToTheTopAndTheOthersKeepTheirOrder) {
    for (const char* Name : {"alpha", "bravo", "charlie", "delta"}) {
        OpenThroughTheMenu(QString::fromLatin1(Name));
    }
    ASSERT_EQ(Editor->mnuOpenRecentProject[2]->text(), QStringLiteral("&3 ..\\bravo"));
    Editor->mnuOpenRecentProject[2]->trigger();
    Settle();
    EXPECT_EQ(Editor->windowTitle(), QStringLiteral("Kavlin Editor - bravo"));
    EXPECT_EQ(Entries(),
              (QStringList{QStringLiteral("&1 ..\\bravo"), QStringLiteral("&2 ..\\delta"),
                           QStringLiteral("&3 ..\\charlie"), QStringLiteral("&4 ..\\alpha")}));
    EXPECT_EQ(Stored().first(), TempFile(QStringLiteral("bravo.kvp")));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(RecentProjectsMenuTest, ReopeningTheNewestKeepsTheListAsItIs) {
    for (const char* Name : {"alpha", "bravo"}) {
        OpenThroughTheMenu(QString::fromLatin1(Name));
    }
    Editor->mnuOpenRecentProject[0]->trigger();
    Settle();
    EXPECT_EQ(Entries(),
              (QStringList{QStringLiteral("&1 ..\\bravo"), QStringLiteral("&2 ..\\alpha")}));
}

TEST_F(RecentProjectsMenuTest, AGapInTheStoredListGivesOneEntryStoredAtPlaceOneOnExit) {
    SetSetting(QStringLiteral("Last_Project_3"), TempFile(QStringLiteral("only.kvp")));
    Editor->InitializeRecentProjectList();
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("&1 ..\\only")});
    Editor->mnuExit->trigger();
    Settle();
    EXPECT_EQ(Stored(),
              (QStringList{TempFile(QStringLiteral("only.kvp")), QString(), QString(), QString()}));
}

TEST_F(RecentProjectsMenuTest, ANewProjectMadeThroughOpenProjectComesFirst) {
    OpenThroughTheMenu(QStringLiteral("alpha"));
    Dialogs->Answers.push_back(TempFile(QStringLiteral("fresh.kvp")));
    Editor->mnuOpenProject->trigger();
    Settle();
    EXPECT_EQ(Entries(),
              (QStringList{QStringLiteral("&1 ..\\fresh"), QStringLiteral("&2 ..\\alpha")}));
}

}  // namespace
