#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <memory>

#include "chip/FileExecutivePRF.h"
#include "frame/GlobalData.h"
#include "platform/Global.h"
#include "project/ProjectEditorHost.h"
#include "project/ProjectType.h"
#include "support/FrameFixture.h"
#include "support/ModelEditWindow.h"

// The editor's main window as the project model sees it: it records the
// tabs, menus, recent list and image name it is asked for, and, as the
// editor does, the module whose tab comes forward is the active one.
class RecordingEditor : public ProjectEditorHost {
  public:
    void AddNewTab(const QString& Name) override { Tabs << Name; }
    void ClearAllTabs() override { Tabs.clear(); }
    void ConfigureMenus(bool ProjectIsOpen) override { MenusOpen = ProjectIsOpen; }
    void ActivateTab(int16_t ModuleNumber) override {
        Activated << ModuleNumber;
        Active = ModuleNumber;
    }
    int16_t ActiveModuleNumber() override { return Active; }
    void InitializeRecentProjectList() override { ++RecentRefreshes; }
    void DisplayKVBfilename(const QString& Filename) override { Kvb = Filename; }
    QStringList Tabs;
    bool MenusOpen = false;
    QList<int16_t> Activated;
    int16_t Active = 0;
    int RecentRefreshes = 0;
    QString Kvb;
};

// A project without the editor's windows: the recording editor stands in for
// the main window, and each module's window is an edit box over a control in
// memory.
class ModelProjectFixture : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        ProjectEditorHost::Install(&Editor);
        ModuleEditWindow::SetFactory([] { return std::make_unique<ModelEditWindow>(); });
    }
    void TearDown() override {
        Global<ProjectType>::Unload();
        Global<FileExecutivePRF>::Unload();
        ModuleEditWindow::SetFactory(nullptr);
        ProjectEditorHost::Install(nullptr);
        GlobalData::ProjectFilename.clear();
        GlobalData::DownloadFilename.clear();
        FrameFixture::TearDown();
    }
    ModelEditWindow* WindowOf(int16_t Number) {
        return static_cast<ModelEditWindow*>(
            Project().ModuleList().GetModule(Number)->EditWindow());
    }

    RecordingEditor Editor;
};
