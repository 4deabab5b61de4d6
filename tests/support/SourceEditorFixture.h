#pragma once

#include <QCoreApplication>
#include <QMdiSubWindow>
#include <memory>

#include "editor/EditBoxModuleWindow.h"
#include "editor/frmEditBoxType.h"
#include "editor/frmSourceEditor.h"
#include "link/frmDownloader.h"
#include "platform/ClipboardService.h"
#include "platform/Global.h"
#include "project/ProjectType.h"
#include "support/FrameFixture.h"
#include "support/ScriptedFileDialogService.h"

// The window of module Number in the editor's area; none if it has none.
inline frmEditBoxType* ModuleWindow(const frmSourceEditor& Editor, int Number) {
    for (QMdiSubWindow* Sub : Editor.mdiArea->subWindowList()) {
        auto* Box = qobject_cast<frmEditBoxType*>(Sub->widget());
        if (Box != nullptr && Box->Model().ModuleNumber() == Number) {
            return Box;
        }
    }
    return nullptr;
}

// The project with its windows, the editor with the dialogs it owns, and the
// downloader, unloaded.
inline void UnloadEditorWindows() {
    Global<ProjectType>::Unload();
    Global<frmSourceEditor>::Unload();
    Global<frmDownloader>::Unload();
    frmDownloader::ResetProcessEnded();
}

// The editor's main window, shown, with the module windows in its area, the
// file dialogs scripted and a clipboard of the test's own.
class SourceEditorFixture : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        auto Scripted = std::make_unique<ScriptedFileDialogService>();
        Dialogs = Scripted.get();
        FileDialogService::Install(std::move(Scripted));
        ClipboardService::Install(std::make_unique<MemoryClipboardService>());
        ModuleEditWindow::SetFactory([] { return std::make_unique<EditBoxModuleWindow>(); });
        Editor = &Global<frmSourceEditor>::Get();
        Editor->show();
        Settle();
    }
    void TearDown() override {
        UnloadEditorWindows();
        ModuleEditWindow::SetFactory(nullptr);
        FileDialogService::Install(std::make_unique<CancellingFileDialogService>());
        FrameFixture::TearDown();
    }
    static void Settle() { QCoreApplication::processEvents(); }
    frmEditBoxType* Module(int Number) const { return ModuleWindow(*Editor, Number); }
    // The tab strip's captions, in order.
    QStringList TabTexts() const {
        QStringList Texts;
        for (int Index = 0; Index < Editor->tabEditTabStrip->count(); ++Index) {
            Texts << Editor->tabEditTabStrip->tabText(Index);
        }
        return Texts;
    }

    ScriptedFileDialogService* Dialogs = nullptr;
    frmSourceEditor* Editor = nullptr;
};
