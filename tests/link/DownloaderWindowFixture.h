#pragma once

#include <gtest/gtest.h>

#include <QTest>
#include <QToolBar>

#include "frame/GlobalData.h"
#include "frame/frmSplash.h"
#include "link/DownloadPortFixture.h"
#include "link/frmDownloader.h"
#include "platform/Global.h"
#include "project/ProjectType.h"

// The downloader window in a test, on the download port's fixture: loaded
// as at start-up and shown, its tool bar's buttons pressed with the mouse,
// its status panels read, and unloaded with the project at the end.
class DownloaderWindowFixture : public DownloadPortFixture {
  protected:
    void SetUp() override {
        DownloadPortFixture::SetUp();
        frmDownloader::ResetProcessEnded();
    }
    void TearDown() override {
        UnloadWindows();
        frmDownloader::ResetProcessEnded();
        DownloadPortFixture::TearDown();
    }
    static void UnloadWindows() {
        Global<frmSplash>::Unload();
        Global<frmDownloader>::Unload();
        Global<ProjectType>::Unload();
        GlobalData::DownloadFilename.clear();
        GlobalData::ProjectFilename.clear();
    }
    static frmDownloader& Load() {
        frmDownloader& Window = Global<frmDownloader>::Get();
        Window.Form_Load();
        Window.show();
        return Window;
    }
    static void Click(frmDownloader& Window, const QString& Key) {
        QWidget* Button = Window.ToolBar->widgetForAction(Window.ToolBarButton(Key));
        ASSERT_NE(Button, nullptr) << Key.toStdString();
        QTest::mouseClick(Button, Qt::LeftButton);
    }
    static QString Panel(frmDownloader& Window, int Number) {
        return Window.StatusBarPanels[Number - 1]->text();
    }
};
