#include "project/RecentProjects.h"
#include "support/FrameFixture.h"
#include "support/QtPrinters.h"

namespace {

using namespace RecentProjects;

class RecentProjectsTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        LoadList();  // from the empty store: an empty list
    }
    QStringList Entries() const {
        QStringList List;
        for (int16_t Index = 1; Index <= ProjectCount(); ++Index) {
            List << GetProject(Index);
        }
        return List;
    }
};

TEST_F(RecentProjectsTest, EmptyStoreGivesAnEmptyList) {
    EXPECT_EQ(ProjectCount(), 0);
    EXPECT_TRUE(GetProject(1).isEmpty());
}

TEST_F(RecentProjectsTest, FifthProjectPushesTheOldestOut) {
    for (const char* Name : {"/p/a.kvp", "/p/b.kvp", "/p/c.kvp", "/p/d.kvp", "/p/e.kvp"}) {
        AddProject(QString::fromLatin1(Name));
    }
    EXPECT_EQ(Entries(), (QStringList{QStringLiteral("/p/e.kvp"), QStringLiteral("/p/d.kvp"),
                                      QStringLiteral("/p/c.kvp"), QStringLiteral("/p/b.kvp")}));
}

TEST_F(RecentProjectsTest, OpeningTheThirdMovesItToTheTopAndTheOthersKeepTheirOrder) {
    for (const char* Name : {"/p/d.kvp", "/p/c.kvp", "/p/b.kvp", "/p/a.kvp"}) {
        AddProject(QString::fromLatin1(Name));
    }
    AddProject(QStringLiteral("/p/c.kvp"));
    EXPECT_EQ(Entries(), (QStringList{QStringLiteral("/p/c.kvp"), QStringLiteral("/p/a.kvp"),
                                      QStringLiteral("/p/b.kvp"), QStringLiteral("/p/d.kvp")}));
}

TEST_F(RecentProjectsTest, ComparisonIsExact) {
    AddProject(QStringLiteral("/p/A.kvp"));
    AddProject(QStringLiteral("/p/a.kvp"));
    EXPECT_EQ(ProjectCount(), 2);
}

TEST_F(RecentProjectsTest, GapsInTheStoredListCloseAndSaveAtPlaceOne) {
    SetSetting(QStringLiteral("Last_Project_3"), QStringLiteral("  /p/only.kvp  "));
    LoadList();
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("/p/only.kvp")});
    SaveList();
    EXPECT_EQ(Setting(QStringLiteral("Last_Project_1")), QStringLiteral("/p/only.kvp"));
    EXPECT_TRUE(Setting(QStringLiteral("Last_Project_3")).isEmpty());
}

TEST_F(RecentProjectsTest, LoadKeepsTheStoredOrder) {
    SetSetting(QStringLiteral("Last_Project_1"), QStringLiteral("/p/1.kvp"));
    SetSetting(QStringLiteral("Last_Project_2"), QStringLiteral("/p/2.kvp"));
    SetSetting(QStringLiteral("Last_Project_4"), QStringLiteral("/p/4.kvp"));
    LoadList();
    EXPECT_EQ(Entries(), (QStringList{QStringLiteral("/p/1.kvp"), QStringLiteral("/p/2.kvp"),
                                      QStringLiteral("/p/4.kvp")}));
}

TEST_F(RecentProjectsTest, RemoveMovesLaterEntriesUpAndIgnoresBadIndices) {
    for (const char* Name : {"/p/c.kvp", "/p/b.kvp", "/p/a.kvp"}) {
        AddProject(QString::fromLatin1(Name));
    }
    RemoveProject(0);
    RemoveProject(4);
    EXPECT_EQ(ProjectCount(), 3);
    RemoveProject(1);
    EXPECT_EQ(Entries(), (QStringList{QStringLiteral("/p/b.kvp"), QStringLiteral("/p/c.kvp")}));
    SaveList();
    EXPECT_EQ(Setting(QStringLiteral("Last_Project_2")), QStringLiteral("/p/c.kvp"));
    EXPECT_TRUE(Setting(QStringLiteral("Last_Project_3")).isEmpty());
}

TEST_F(RecentProjectsTest, GetProjectOutsideTheListIsEmpty) {
    AddProject(QStringLiteral("/p/a.kvp"));
    EXPECT_TRUE(GetProject(0).isEmpty());
    EXPECT_TRUE(GetProject(2).isEmpty());
    EXPECT_TRUE(GetProject(-1).isEmpty());
}

}  // namespace
