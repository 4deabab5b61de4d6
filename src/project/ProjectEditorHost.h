#pragma once

#include <QString>
#include <cstdint>

// What the project model asks of the editor's main window and of the
// downloader: the tab strip, the menus' enable state, the recent list, the
// image name. Nothing is asked while none is installed or in a batch.
class ProjectEditorHost {
  public:
    virtual ~ProjectEditorHost() = default;
    virtual void AddNewTab(const QString& Name) = 0;
    virtual void ClearAllTabs() = 0;
    virtual void ConfigureMenus(bool ProjectIsOpen) = 0;
    virtual void ActivateTab(int16_t ModuleNumber) = 0;
    virtual int16_t ActiveModuleNumber() = 0;
    virtual void InitializeRecentProjectList() = 0;
    virtual void DisplayKVBfilename(const QString& Filename) = 0;

    static ProjectEditorHost* Instance();
    static void Install(ProjectEditorHost* Host);
};
