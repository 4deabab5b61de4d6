#pragma once

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMenu>
#include <QTabBar>
#include <QToolBar>
#include <QVector>
#include <functional>

#include "compile/CompilerHost.h"
#include "editor/EditBoxModel.h"
#include "editor/SourceEditorHost.h"
#include "frame/FormGeometry.h"
#include "frame/WindowGeometry.h"
#include "project/ProjectEditorHost.h"

class frmEditBoxType;
class frmSearchAndReplace;

// The editor's main window: the module windows in a multi-document area, a
// tab per module, the menus and tool bar that turn commands into calls on
// the project, and a status bar. It is the compile's host: HighlightSourceError
// and DisplayCommandLineError are CompilerHost's.
class frmSourceEditor : public QMainWindow,
                        public SourceEditorHost,
                        public ProjectEditorHost,
                        public CompilerHost {
    Q_OBJECT
  public:
    frmSourceEditor();
    ~frmSourceEditor() override;

    QString WarningDescription;
    QString CompileStatus;

    void InitializeRecentProjectList() override;
    void ProcessExit(bool& CancelUnload);
    void SaveGeometry();
    void ConfigureMenus(bool ProjectIsOpen) override;
    int16_t ActiveModuleNumber() override;
    // The active module window; none is a legal state.
    frmEditBoxType* ActiveForm() const;
    void OpenProject(const QString& Path, const QString& Name, const QString& Extension,
                     bool IsNewProject);
    void OpenProjectDialog(QString& LongFilename, bool& IsNewFile, bool& UserCancelled);
    void SaveProjectAsDialog(const QString& Path, const QString& Filename, QString& LongFilename,
                             bool& IsNewFile, bool& UserCancelled);
    void SaveModuleAsDialog(const QString& Path, const QString& Filename, QString& LongFilename,
                            bool& IsNewFile, bool& UserCancelled);
    void PromptToSaveModules(bool AutoSave, bool& Success);
    void DisplayProjectName(const QString& Name);
    FormGeometry CurrentGeometry() const override;
    // Saves what the user agrees to, checks the installation and compiles.
    void CompileProject(bool& Success);
    // The last compile's result and warnings in frmCompileStatus, modally.
    void ShowCompileStatus();
    // Where the image's name is shown: the downloader's status bar.
    std::function<void(const QString&)> DisplayKvbHook;

    // SourceEditorHost and ProjectEditorHost.
    void InsertMode(bool NewMode) override;
    void DisplayCursor(int32_t LineNumber, int32_t ColumnNumber) override;
    void ActivateTab(int16_t ModuleNumber) override;
    void AddNewTab(const QString& ModuleName) override;
    void ClearAllTabs() override;
    void DisplayKVBfilename(const QString& Filename) override;
    void mnuEditCut_Click() override;
    void mnuEditCopy_Click() override;
    void mnuEditPaste_Click() override;
    void mnuEditDelete_Click() override;

    // CompilerHost.
    void SetWarningDescription(const QString& Text) override;
    void SetCompileStatus(const QString& Text) override;
    void ShowStatusPanel(int Panel, const QString& Text) override;
    void mnuChipDialog_Click() override;

    // The module windows' area.
    QMdiArea* mdiArea;
    QTabBar* tabEditTabStrip;
    QToolBar* barEditorToolbar;
    QVector<QAction*> ToolBarButtons;
    QAction* ToolBarButton(const QString& Key) const;
    QVector<QLabel*> sbrStatus;

    QMenu* mnuFile;
    QAction* mnuNewProject;
    QAction* mnuOpenProject;
    QAction* mnuSaveProject;
    QAction* mnuSaveProjectAs;
    QAction* mnuCloseProject;
    QAction* mnuSaveModule;
    QAction* mnuSaveModuleAs;
    QAction* mnuSetWorkingDirectory;
    QVector<QAction*> mnuOpenRecentProject;
    QAction* mnuLine4;
    QAction* mnuExit;
    QMenu* mnuEdit;
    QAction* mnuEditCut;
    QAction* mnuEditCopy;
    QAction* mnuEditPaste;
    QAction* mnuEditDelete;
    QAction* mnuEditSelectAll;
    QAction* mnuFindFirst;
    QAction* mnuFindNext;
    QAction* mnuSearchAndReplace;
    QMenu* mnuCompileMenu;
    QAction* mnuCompile;
    QAction* mnuCompileAndRun;
    QAction* mnuCompileStatus;
    QMenu* mnuOptions;
    QAction* mnuProcessorOptions;
    QAction* mnuEnvironmentOptions;
    QMenu* mnuProject;
    QAction* mnuChipDialog;
    QAction* mnuProjectFiles;
    QAction* mnuWatchWindow;
    QMenu* mnuWindow;
    QAction* mnuWindowCascade;
    QAction* mnuWindowTileHorizontal;
    QAction* mnuWindowTileVertical;
    QAction* mnuAbout;

  public slots:
    void mnuExit_Click();
    void mnuNewProject_Click();
    void mnuOpenProject_Click();
    void mnuOpenRecentProject_Click(int Index);
    void mnuCloseProject_Click();
    void mnuSaveProject_Click();
    void mnuSaveProjectAs_Click();
    void mnuSaveModule_Click();
    void mnuSaveModuleAs_Click();
    void mnuSetWorkingDirectory_Click();
    void mnuEditSelectAll_Click();
    void mnuFindFirst_Click();
    void mnuFindNext_Click();
    void mnuSearchAndReplace_Click();
    void mnuCompile_Click();
    void mnuCompileAndRun_Click();
    void mnuCompileStatus_Click();
    void mnuWatchWindow_Click();
    void mnuProjectFiles_Click();
    void mnuEnvironmentOptions_Click();
    void mnuAbout_Click();
    void mnuProcessorOptions_Click();
    void barEditorToolbar_ButtonClick(const QString& Key);
    void tabEditTabStrip_Click(int Index);

  protected:
    void closeEvent(QCloseEvent* Event) override;
    // A click on any panel of the status bar opens the compile status.
    bool eventFilter(QObject* Watched, QEvent* Event) override;
    void resizeEvent(QResizeEvent* Event) override;

  private:
    void BuildMenus();
    void BuildToolBar();
    void InitializeEditor();
    void InitializeStatusBar();
    void RestoreGeometry();
    // Tile Horizontal stacks the module windows top to bottom, each the area's
    // full width; Tile Vertical sets them side by side, each its full height.
    enum class Tiling { TopToBottom, SideBySide };
    void TileModuleWindows(Tiling Arrangement);
    bool TabClickArmed = true;
    // The caret's place as the status bar shows it.
    int32_t ShownLine = -1;
    int32_t ShownColumn = -1;
    bool ExitConfirmed = false;
    void OnActiveEditBox(void (EditBoxModel::*Command)());
    // The search dialog, loaded if need be and owned by this window.
    frmSearchAndReplace& SearchDialog();
    // With an active module window: the search dialog, shown and in front.
    frmSearchAndReplace* ShowSearchDialog();
    // "Save changes to NAME?" for module Number: 6 Yes, 7 No, 2 Cancel.
    int AskToSaveModule(int16_t Number);
    WindowGeometry Placement;
};
