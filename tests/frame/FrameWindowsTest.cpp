#include <QDir>
#include <QMouseEvent>
#include <QTest>

#include "frame/DirectoryCentral.h"
#include "frame/frmAbout.h"
#include "frame/frmSplash.h"
#include "frame/frmWorkPathDefinition.h"
#include "platform/Global.h"
#include "support/FrameFixture.h"

namespace {

using FrameWindows = FrameFixture;

TEST_F(FrameWindows, AboutBoxShowsNameDescriptionVersionAndCopyright) {
    frmAbout& About = Global<frmAbout>::Get();
    EXPECT_EQ(About.windowTitle(), QStringLiteral("About"));
    EXPECT_EQ(About.lblTitle->text(), QStringLiteral("Kavlin Studio"));
    EXPECT_EQ(About.lblDescription->text(), QStringLiteral("Development System"));
    EXPECT_EQ(About.lblVersionType->text(), QStringLiteral("Version 2.0.24"));
    const QStringList Notice = About.lblCopyrightNotice->text().split(QLatin1Char('\n'));
    ASSERT_EQ(Notice.size(), 2);
    EXPECT_TRUE(Notice[0].contains(QChar(169)));
    EXPECT_EQ(Notice[1], QStringLiteral("All rights reserved."));
    Global<frmAbout>::Unload();
}

TEST_F(FrameWindows, AboutSystemInfoSaysItIsUnavailable) {
    frmAbout& About = Global<frmAbout>::Get();
    About.cmdSysInfo->click();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("System Information Is Unavailable At This Time"));
    Global<frmAbout>::Unload();
}

TEST_F(FrameWindows, AboutOkClosesTheBox) {
    frmAbout& About = Global<frmAbout>::Get();
    About.show();
    About.cmdOK->click();
    EXPECT_FALSE(About.isVisible());
    EXPECT_EQ(About.result(), QDialog::Accepted);
    Global<frmAbout>::Unload();
}

TEST_F(FrameWindows, SplashShowsTheCaptionUnderTheLogoAtItsWidth) {
    frmSplash& Splash = Global<frmSplash>::Get();
    Splash.show();
    EXPECT_EQ(Splash.lblProductName->text(), QStringLiteral("Kavlin Development System V2.0.24"));
    EXPECT_TRUE(Splash.lblCopyright->text().contains(QChar(169)));
    EXPECT_EQ(Splash.lblProductName->width(), Splash.imgKavlinlogo->pixmap().width());
    EXPECT_GE(Splash.lblProductName->y(),
              Splash.imgKavlinlogo->y() + Splash.imgKavlinlogo->height());
    EXPECT_GE(Splash.lblCopyright->y(),
              Splash.lblProductName->y() + Splash.lblProductName->height());
    Global<frmSplash>::Unload();
}

TEST_F(FrameWindows, ClickOnTheLogoUnloadsTheSplash) {
    frmSplash& Splash = Global<frmSplash>::Get();
    Splash.show();
    QTest::mouseClick(Splash.imgKavlinlogo, Qt::LeftButton);
    EXPECT_FALSE(Global<frmSplash>::IsLoaded());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(FrameWindows, WorkPathDialogStartsFromTheStoredPath) {
    const QString Projects = QDir(TempPath()).filePath(QStringLiteral("projects"));
    QDir().mkpath(Projects + QStringLiteral("/alpha"));
    SetSetting(QStringLiteral("Work_Dir"), Projects);
    frmWorkPathDefinition& Dialog = Global<frmWorkPathDefinition>::Get();
    EXPECT_EQ(Dialog.txtWorkPath->text(), Projects);
    EXPECT_EQ(Dialog.dirWorkPath->Path(), QDir::cleanPath(Projects));
    EXPECT_FALSE(
        Dialog.dirWorkPath->findItems(QStringLiteral("alpha"), Qt::MatchExactly).isEmpty());
    Global<frmWorkPathDefinition>::Unload();
}

TEST_F(FrameWindows, WorkPathDialogClickOnADirectoryCopiesItsPath) {
    const QString Projects = QDir(TempPath()).filePath(QStringLiteral("projects"));
    QDir().mkpath(Projects + QStringLiteral("/alpha"));
    SetSetting(QStringLiteral("Work_Dir"), Projects);
    frmWorkPathDefinition& Dialog = Global<frmWorkPathDefinition>::Get();
    QListWidgetItem* Alpha =
        Dialog.dirWorkPath->findItems(QStringLiteral("alpha"), Qt::MatchExactly).first();
    Dialog.dirWorkPath_Click(Alpha);
    EXPECT_EQ(Dialog.txtWorkPath->text(), QDir::cleanPath(Projects + QStringLiteral("/alpha")));
    Global<frmWorkPathDefinition>::Unload();
}

TEST_F(FrameWindows, WorkPathDialogOkWithAnExistingDirectoryStoresItAsAbsolute) {
    QDir().mkpath(TempPath() + QStringLiteral("/new/work"));
    QDir::setCurrent(TempPath());
    frmWorkPathDefinition& Dialog = Global<frmWorkPathDefinition>::Get();
    Dialog.txtWorkPath->setText(QStringLiteral("new/work"));
    const QString Before = QDir::currentPath();
    Dialog.cmdOK_Click();
    const QString Expected = QDir::cleanPath(TempPath() + QStringLiteral("/new/work"));
    EXPECT_EQ(Dialog.result(), QDialog::Accepted);
    EXPECT_EQ(DirectoryCentral::GetWorkPath(), Expected);
    EXPECT_EQ(Setting(QStringLiteral("Work_Dir")), Expected);
    EXPECT_EQ(QDir::currentPath(), Before) << "the current directory is not changed";
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    Global<frmWorkPathDefinition>::Unload();
}

TEST_F(FrameWindows, WorkPathDialogOkWithAMissingDirectoryComplainsAndStays) {
    frmWorkPathDefinition& Dialog = Global<frmWorkPathDefinition>::Get();
    Dialog.show();
    const QString Missing = TempPath() + QStringLiteral("/not/there");
    Dialog.txtWorkPath->setText(Missing);
    Dialog.cmdOK_Click();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Error -- unable to find path ") + Missing);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Starting Path Error"));
    EXPECT_TRUE(Dialog.isVisible());
    EXPECT_TRUE(Setting(QStringLiteral("Work_Dir")).isEmpty());
    Global<frmWorkPathDefinition>::Unload();
}

TEST_F(FrameWindows, WorkPathDialogCancelChangesNothing) {
    frmWorkPathDefinition& Dialog = Global<frmWorkPathDefinition>::Get();
    Dialog.show();
    Dialog.txtWorkPath->setText(TempPath());
    Dialog.cmdCancel->click();
    EXPECT_EQ(Dialog.result(), QDialog::Rejected);
    EXPECT_TRUE(Setting(QStringLiteral("Work_Dir")).isEmpty());
    Global<frmWorkPathDefinition>::Unload();
}

}  // namespace
