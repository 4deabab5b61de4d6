#include "editor/frmSourceEditor.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QStatusBar>
#include <QStyle>
#include <QVBoxLayout>
#include <cstdio>

#include "chip/frmChipDialogKV10.h"
#include "chip/frmChipDialogKV20.h"
#include "chip/frmChipDialogKV30.h"
#include "chip/frmProcessorOptions.h"
#include "compile/CompilerCentral.h"
#include "compile/frmCompileStatus.h"
#include "editor/frmEditBoxType.h"
#include "editor/frmEnvironmentOptions.h"
#include "editor/frmSearchAndReplace.h"
#include "frame/CommandLineInterpreter.h"
#include "frame/DirectoryCentral.h"
#include "frame/ErrorDisplay.h"
#include "frame/ExceptionTypes.h"
#include "frame/GlobalData.h"
#include "frame/KeyedToolBar.h"
#include "frame/RegistryCentral.h"
#include "frame/TwipsConversion.h"
#include "frame/UtilitiesFilename.h"
#include "frame/frmAbout.h"
#include "frame/frmWorkPathDefinition.h"
#include "link/DownloadPortExecutive.h"
#include "link/frmDownloader.h"
#include "monitor/MonitorPortExecutive.h"
#include "monitor/frmWatchWindow.h"
#include "platform/FileDialogService.h"
#include "platform/Global.h"
#include "project/ProjectType.h"
#include "project/RecentProjects.h"
#include "project/frmNewProject.h"
#include "project/frmProjectFiles.h"

namespace {
constexpr int MinimumToolBarTwips = 4410;
}  // namespace

frmSourceEditor::frmSourceEditor() {
    setObjectName(QStringLiteral("frmSourceEditor"));
    auto* Central = new QWidget(this);
    auto* Layout = new QVBoxLayout(Central);
    Layout->setContentsMargins(0, 0, 0, 0);
    Layout->setSpacing(0);
    tabEditTabStrip = new QTabBar(Central);
    tabEditTabStrip->setObjectName(QStringLiteral("tabEditTabStrip"));
    tabEditTabStrip->setExpanding(false);
    mdiArea = new QMdiArea(Central);
    mdiArea->setObjectName(QStringLiteral("mdiArea"));
    Layout->addWidget(tabEditTabStrip);
    Layout->addWidget(mdiArea, 1);
    setCentralWidget(Central);
    BuildMenus();
    BuildToolBar();
    connect(tabEditTabStrip, &QTabBar::currentChanged, this,
            &frmSourceEditor::tabEditTabStrip_Click);
    SourceEditorHost::Install(this);
    ProjectEditorHost::Install(this);
    CompilerHost::Install(this);
    // MDIForm_Load.
    InitializeEditor();
    InitializeRecentProjectList();
}

frmSourceEditor::~frmSourceEditor() {
    if (SourceEditorHost::Instance() == this) {
        SourceEditorHost::Install(nullptr);
    }
    if (ProjectEditorHost::Instance() == this) {
        ProjectEditorHost::Install(nullptr);
    }
    CompilerHost::Uninstall(this);
    GlobalData::SetEditorIsOpen(false);
}

void frmSourceEditor::BuildMenus() {
    auto Entry = [this](QMenu* Menu, QAction*& Action, const char* Name, const char* Caption,
                        const char* Shortcut = nullptr) {
        Action = Menu->addAction(QString::fromLatin1(Caption));
        Action->setObjectName(QString::fromLatin1(Name));
        if (Shortcut != nullptr) {
            Action->setShortcut(QKeySequence(QString::fromLatin1(Shortcut)));
        }
        return Action;
    };
    mnuFile = menuBar()->addMenu(QStringLiteral("&File"));
    mnuFile->setObjectName(QStringLiteral("File"));
    Entry(mnuFile, mnuNewProject, "mnuNewProject", "&New Project");
    Entry(mnuFile, mnuOpenProject, "mnuOpenProject", "&Open Project");
    Entry(mnuFile, mnuSaveProject, "mnuSaveProject", "Sa&ve Project");
    Entry(mnuFile, mnuSaveProjectAs, "mnuSaveProjectAs", "Sav&e Project As...");
    Entry(mnuFile, mnuCloseProject, "mnuCloseProject", "&Close Project");
    mnuFile->addSeparator();
    Entry(mnuFile, mnuSaveModule, "mnuSaveModule", "&Save Module");
    Entry(mnuFile, mnuSaveModuleAs, "mnuSaveModuleAs", "Save Module &As...");
    mnuFile->addSeparator();
    Entry(mnuFile, mnuSetWorkingDirectory, "mnuSetWorkingDirectory", "Set Starting &Directory");
    mnuFile->addSeparator();
    for (int Index = 1; Index <= 4; ++Index) {
        QAction* Recent = mnuFile->addAction(QString());
        Recent->setObjectName(QStringLiteral("mnuOpenRecentProject%1").arg(Index));
        Recent->setVisible(false);
        connect(Recent, &QAction::triggered, this,
                [this, Index] { mnuOpenRecentProject_Click(Index); });
        mnuOpenRecentProject << Recent;
    }
    mnuLine4 = mnuFile->addSeparator();
    mnuLine4->setObjectName(QStringLiteral("mnuLine4"));
    Entry(mnuFile, mnuExit, "mnuExit", "E&xit");

    mnuEdit = menuBar()->addMenu(QStringLiteral("&Edit"));
    mnuEdit->setObjectName(QStringLiteral("mnuEdit"));
    Entry(mnuEdit, mnuEditCut, "mnuEditCut", "Cu&t", "Ctrl+X");
    Entry(mnuEdit, mnuEditCopy, "mnuEditCopy", "&Copy", "Ctrl+C");
    Entry(mnuEdit, mnuEditPaste, "mnuEditPaste", "&Paste", "Ctrl+V");
    Entry(mnuEdit, mnuEditDelete, "mnuEditDelete", "&Delete", "Del");
    Entry(mnuEdit, mnuEditSelectAll, "mnuEditSelectAll", "Select &All", "Ctrl+A");
    mnuEdit->addSeparator();
    Entry(mnuEdit, mnuFindFirst, "mnuFindFirst", "&Find...", "Ctrl+F");
    Entry(mnuEdit, mnuFindNext, "mnuFindNext", "Find &Next", "F3");
    Entry(mnuEdit, mnuSearchAndReplace, "mnuSearchAndReplace", "R&eplace...", "Ctrl+H");
    // The edit box's own keys act first; the menu's shortcuts stay for show,
    // but for the search's, which the edit box leaves alone.
    for (QAction* Action : mnuEdit->actions()) {
        Action->setShortcutContext(Qt::WidgetShortcut);
    }
    for (QAction* Action : {mnuFindFirst, mnuFindNext, mnuSearchAndReplace}) {
        Action->setShortcutContext(Qt::WindowShortcut);
    }

    mnuCompileMenu = menuBar()->addMenu(QStringLiteral("&Compile"));
    mnuCompileMenu->setObjectName(QStringLiteral("Compile"));
    Entry(mnuCompileMenu, mnuCompile, "mnuCompile", "&Compile", "F4");
    Entry(mnuCompileMenu, mnuCompileAndRun, "mnuCompileAndRun", "Compile and &Run", "F5");
    Entry(mnuCompileMenu, mnuCompileStatus, "mnuCompileStatus", "Compile &Status");
    mnuOptions = menuBar()->addMenu(QStringLiteral("&Options"));
    mnuOptions->setObjectName(QStringLiteral("mnuOptions"));
    Entry(mnuOptions, mnuProcessorOptions, "mnuProcessorOptions", "&Processor");
    Entry(mnuOptions, mnuEnvironmentOptions, "mnuEnvironmentOptions", "&Environment");
    mnuProject = menuBar()->addMenu(QStringLiteral("&Project"));
    mnuProject->setObjectName(QStringLiteral("mnuProject"));
    Entry(mnuProject, mnuChipDialog, "mnuChipDialog", "&Chip");
    Entry(mnuProject, mnuProjectFiles, "mnuProjectFiles", "&Files");
    Entry(mnuProject, mnuWatchWindow, "mnuWatchWindow", "&Watch Window");
    mnuWindow = menuBar()->addMenu(QStringLiteral("&Window"));
    mnuWindow->setObjectName(QStringLiteral("mnuWindow"));
    Entry(mnuWindow, mnuWindowCascade, "mnuWindowCascade", "&Cascade");
    Entry(mnuWindow, mnuWindowTileHorizontal, "mnuWindowTileHorizontal", "Tile &Horizontal");
    Entry(mnuWindow, mnuWindowTileVertical, "mnuWindowTileVertical", "Tile &Vertical");
    mnuAbout = menuBar()->addAction(QStringLiteral("&About"));
    mnuAbout->setObjectName(QStringLiteral("mnuAbout"));

    connect(mnuNewProject, &QAction::triggered, this, &frmSourceEditor::mnuNewProject_Click);
    connect(mnuOpenProject, &QAction::triggered, this, &frmSourceEditor::mnuOpenProject_Click);
    connect(mnuSaveProject, &QAction::triggered, this, &frmSourceEditor::mnuSaveProject_Click);
    connect(mnuSaveProjectAs, &QAction::triggered, this, &frmSourceEditor::mnuSaveProjectAs_Click);
    connect(mnuCloseProject, &QAction::triggered, this, &frmSourceEditor::mnuCloseProject_Click);
    connect(mnuSaveModule, &QAction::triggered, this, &frmSourceEditor::mnuSaveModule_Click);
    connect(mnuSaveModuleAs, &QAction::triggered, this, &frmSourceEditor::mnuSaveModuleAs_Click);
    connect(mnuSetWorkingDirectory, &QAction::triggered, this,
            &frmSourceEditor::mnuSetWorkingDirectory_Click);
    connect(mnuExit, &QAction::triggered, this, &frmSourceEditor::mnuExit_Click);
    connect(mnuEditCut, &QAction::triggered, this, &frmSourceEditor::mnuEditCut_Click);
    connect(mnuEditCopy, &QAction::triggered, this, &frmSourceEditor::mnuEditCopy_Click);
    connect(mnuEditPaste, &QAction::triggered, this, &frmSourceEditor::mnuEditPaste_Click);
    connect(mnuEditDelete, &QAction::triggered, this, &frmSourceEditor::mnuEditDelete_Click);
    connect(mnuEditSelectAll, &QAction::triggered, this, &frmSourceEditor::mnuEditSelectAll_Click);
    connect(mnuFindFirst, &QAction::triggered, this, &frmSourceEditor::mnuFindFirst_Click);
    connect(mnuFindNext, &QAction::triggered, this, &frmSourceEditor::mnuFindNext_Click);
    connect(mnuSearchAndReplace, &QAction::triggered, this,
            &frmSourceEditor::mnuSearchAndReplace_Click);
    connect(mnuCompile, &QAction::triggered, this, &frmSourceEditor::mnuCompile_Click);
    connect(mnuCompileAndRun, &QAction::triggered, this, &frmSourceEditor::mnuCompileAndRun_Click);
    connect(mnuCompileStatus, &QAction::triggered, this, &frmSourceEditor::mnuCompileStatus_Click);
    connect(mnuWatchWindow, &QAction::triggered, this, &frmSourceEditor::mnuWatchWindow_Click);
    connect(mnuChipDialog, &QAction::triggered, this, &frmSourceEditor::mnuChipDialog_Click);
    connect(mnuProcessorOptions, &QAction::triggered, this,
            &frmSourceEditor::mnuProcessorOptions_Click);
    connect(mnuWindowCascade, &QAction::triggered, mdiArea, &QMdiArea::cascadeSubWindows);
    connect(mnuWindowTileHorizontal, &QAction::triggered, this,
            [this] { TileModuleWindows(Tiling::TopToBottom); });
    connect(mnuWindowTileVertical, &QAction::triggered, this,
            [this] { TileModuleWindows(Tiling::SideBySide); });
    connect(mnuAbout, &QAction::triggered, this, &frmSourceEditor::mnuAbout_Click);
    connect(mnuEnvironmentOptions, &QAction::triggered, this,
            &frmSourceEditor::mnuEnvironmentOptions_Click);
    connect(mnuProjectFiles, &QAction::triggered, this, &frmSourceEditor::mnuProjectFiles_Click);
}

void frmSourceEditor::BuildToolBar() {
    barEditorToolbar = addToolBar(QStringLiteral("barEditorToolbar"));
    barEditorToolbar->setObjectName(QStringLiteral("barEditorToolbar"));
    barEditorToolbar->setMovable(false);
    ToolBarButtons = KeyedToolBar::AddButtons(
        *barEditorToolbar,
        {
            {"NewProject", "New Project", "document-new", QStyle::SP_FileIcon},
            {"OpenProject", "Open Project", "document-open", QStyle::SP_DialogOpenButton},
            {"CloseProject", "Close Project", "document-close", QStyle::SP_DialogCloseButton},
            {"SaveProject", "Save Project", "document-save", QStyle::SP_DialogSaveButton},
            {nullptr, nullptr, nullptr, QStyle::SP_CustomBase},
            {"Cut", "Cut", "edit-cut", QStyle::SP_ArrowRight},
            {"Copy", "Copy", "edit-copy", QStyle::SP_FileDialogNewFolder},
            {"Paste", "Paste", "edit-paste", QStyle::SP_FileDialogContentsView},
            {"Find", "Find", "edit-find", QStyle::SP_FileDialogDetailedView},
            {nullptr, nullptr, nullptr, QStyle::SP_CustomBase},
            {"CompileAndRun", "Compile and Run", "media-playback-start", QStyle::SP_MediaPlay},
            {nullptr, nullptr, nullptr, QStyle::SP_CustomBase},
            {"ChipDialog", "Chip Dialog", "preferences-system", QStyle::SP_ComputerIcon},
            {"ProjectFiles", "Project Files", "folder", QStyle::SP_DirIcon},
        },
        QStringLiteral("barEditorToolbar_"),
        [this](const QString& Key) { barEditorToolbar_ButtonClick(Key); });
}

void frmSourceEditor::TileModuleWindows(Tiling Arrangement) {
    // Qt's own tiling makes a grid for both commands; these are bands, in
    // the modules' order, over the whole area. Minimized windows keep their
    // places; a maximized one comes back to be tiled with the rest.
    QList<QMdiSubWindow*> Windows;
    for (QMdiSubWindow* Sub : mdiArea->subWindowList(QMdiArea::CreationOrder)) {
        if (Sub->isVisible() && !Sub->isMinimized()) {
            Windows << Sub;
        }
    }
    const QRect Area = mdiArea->viewport()->rect();
    const int Count = static_cast<int>(Windows.size());
    for (int Index = 0; Index < Count; ++Index) {
        QMdiSubWindow* Sub = Windows[Index];
        if (Sub->isMaximized()) {
            Sub->showNormal();
        }
        // The bands share out the pixels that don't divide evenly.
        if (Arrangement == Tiling::TopToBottom) {
            const int Top = Area.top() + Area.height() * Index / Count;
            const int Bottom = Area.top() + Area.height() * (Index + 1) / Count;
            Sub->setGeometry(Area.left(), Top, Area.width(), Bottom - Top);
        } else {
            const int Left = Area.left() + Area.width() * Index / Count;
            const int Right = Area.left() + Area.width() * (Index + 1) / Count;
            Sub->setGeometry(Left, Area.top(), Right - Left, Area.height());
        }
    }
}

QAction* frmSourceEditor::ToolBarButton(const QString& Key) const {
    return KeyedToolBar::Find(ToolBarButtons, Key);
}

void frmSourceEditor::InitializeEditor() {
    TabClickArmed = true;
    GlobalData::SetEditorIsOpen(true);
    DisplayProjectName(QString());
    RestoreGeometry();
    InitializeStatusBar();
    WarningDescription.clear();
    CompileStatus.clear();
    ConfigureMenus(false);
}

void frmSourceEditor::InitializeStatusBar() {
    statusBar()->setObjectName(QStringLiteral("sbrStatus"));
    for (int Index = 1; Index <= 4; ++Index) {
        auto* Panel = new QLabel(this);
        Panel->setObjectName(QStringLiteral("sbrStatus_Panel%1").arg(Index));
        Panel->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        Panel->installEventFilter(this);
        statusBar()->addWidget(Panel, Index == 4 ? 1 : 0);
        sbrStatus << Panel;
    }
    sbrStatus[2]->setMinimumWidth(80);
    DisplayCursor(1, 1);
    InsertMode(true);
}

void frmSourceEditor::RestoreGeometry() {
    FormGeometry Geometry;
    RegistryCentral::RegistryGetEditorGeometry(Geometry);
    Placement.Restore(*this, Geometry);
}

FormGeometry frmSourceEditor::CurrentGeometry() const { return Placement.Current(*this); }

void frmSourceEditor::DisplayProjectName(const QString& Name) {
    setWindowTitle(Name.isEmpty() ? QStringLiteral("Kavlin Editor")
                                  : QStringLiteral("Kavlin Editor - ") + Name);
}

void frmSourceEditor::ConfigureMenus(bool ProjectIsOpen) {
    const QList<QAction*> ProjectEntries = {
        mnuSaveProject,      mnuSaveProjectAs, mnuCloseProject,  mnuSaveModule, mnuSaveModuleAs,
        mnuCompile,          mnuCompileAndRun, mnuCompileStatus, mnuEditCut,    mnuEditCopy,
        mnuEditPaste,        mnuEditDelete,    mnuEditSelectAll, mnuFindFirst,  mnuFindNext,
        mnuSearchAndReplace, mnuChipDialog,    mnuProjectFiles,  mnuWatchWindow};
    for (QAction* Action : ProjectEntries) {
        Action->setEnabled(ProjectIsOpen);
    }
    for (int Place : {3, 4, 6, 7, 8, 9, 11, 13, 14}) {
        ToolBarButtons[Place - 1]->setEnabled(ProjectIsOpen);
    }
    if (!ProjectIsOpen) {
        mnuOpenProject->setEnabled(true);
        mnuExit->setEnabled(true);
        ClearAllTabs();
    }
}

// ---- Tabs, caret, mode -------------------------------------------------------

void frmSourceEditor::ClearAllTabs() {
    TabClickArmed = false;
    while (tabEditTabStrip->count() > 0) {
        tabEditTabStrip->removeTab(0);
    }
    TabClickArmed = true;
}

void frmSourceEditor::AddNewTab(const QString& ModuleName) {
    TabClickArmed = false;
    tabEditTabStrip->addTab(ModuleName);
    TabClickArmed = true;
    // A new module comes to the front.
    Project().ActivateModule(static_cast<int16_t>(tabEditTabStrip->count()));
}

void frmSourceEditor::ActivateTab(int16_t ModuleNumber) {
    TabClickArmed = false;
    if (ModuleNumber >= 1 && ModuleNumber <= tabEditTabStrip->count()) {
        tabEditTabStrip->setCurrentIndex(ModuleNumber - 1);
    } else {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in frmSourceEditor.ActivateTab"));
    }
    TabClickArmed = true;
}

void frmSourceEditor::tabEditTabStrip_Click(int Index) {
    if (!TabClickArmed || Index < 0) {
        return;
    }
    Project().ActivateModule(static_cast<int16_t>(Index + 1));
}

void frmSourceEditor::DisplayCursor(int32_t LineNumber, int32_t ColumnNumber) {
    if (LineNumber == ShownLine && ColumnNumber == ShownColumn) {
        return;
    }
    ShownLine = LineNumber;
    ShownColumn = ColumnNumber;
    if (sbrStatus.size() > 0) {
        // Shown after every move of the caret, a Replace All's many among
        // them: put together in one piece.
        char Text[48];
        const int Length =
            std::snprintf(Text, sizeof Text, "Line: %d, Col: %d", LineNumber, ColumnNumber);
        sbrStatus[0]->setText(QString::fromLatin1(Text, Length));
    }
}

void frmSourceEditor::InsertMode(bool NewMode) {
    if (sbrStatus.size() > 1) {
        sbrStatus[1]->setText(NewMode ? QStringLiteral("INS") : QStringLiteral("OVR"));
    }
}

void frmSourceEditor::DisplayKVBfilename(const QString& Filename) {
    if (DisplayKvbHook) {
        DisplayKvbHook(Filename);
    }
}

// ---- Active child -------------------------------------------------------------

frmEditBoxType* frmSourceEditor::ActiveForm() const {
    QMdiSubWindow* Sub = mdiArea->activeSubWindow();
    return Sub != nullptr ? qobject_cast<frmEditBoxType*>(Sub->widget()) : nullptr;
}

int16_t frmSourceEditor::ActiveModuleNumber() {
    frmEditBoxType* Box = ActiveForm();
    return Box != nullptr ? Box->Model().ModuleNumber() : 0;
}

void frmSourceEditor::OnActiveEditBox(void (EditBoxModel::*Command)()) {
    // No active child is a legal state: the command then does nothing.
    if (frmEditBoxType* Box = ActiveForm()) {
        (Box->Model().*Command)();
    }
}

void frmSourceEditor::mnuEditCut_Click() { OnActiveEditBox(&EditBoxModel::EditCut); }
void frmSourceEditor::mnuEditCopy_Click() { OnActiveEditBox(&EditBoxModel::EditCopy); }
void frmSourceEditor::mnuEditPaste_Click() { OnActiveEditBox(&EditBoxModel::EditPaste); }
void frmSourceEditor::mnuEditDelete_Click() { OnActiveEditBox(&EditBoxModel::EditDelete); }
void frmSourceEditor::mnuEditSelectAll_Click() { OnActiveEditBox(&EditBoxModel::EditSelectAll); }

// ---- Search ------------------------------------------------------------------

frmSearchAndReplace& frmSourceEditor::SearchDialog() {
    frmSearchAndReplace& Dialog = Global<frmSearchAndReplace>::Get();
    if (Dialog.parentWidget() != this) {
        Dialog.setParent(this, Dialog.windowFlags());
    }
    return Dialog;
}

frmSearchAndReplace* frmSourceEditor::ShowSearchDialog() {
    if (ActiveForm() == nullptr) {
        return nullptr;
    }
    frmSearchAndReplace& Dialog = SearchDialog();
    Dialog.show();
    Dialog.raise();
    Dialog.activateWindow();
    return &Dialog;
}

void frmSourceEditor::mnuFindFirst_Click() { ShowSearchDialog(); }

void frmSourceEditor::mnuFindNext_Click() {
    if (ActiveForm() == nullptr) {
        return;
    }
    if (Global<frmSearchAndReplace>::IsLoaded() && Global<frmSearchAndReplace>::Get().isVisible()) {
        Global<frmSearchAndReplace>::Get().cmdFindNext_Click();
        return;
    }
    // Loaded for the one search and unloaded again, never shown: it takes
    // the text to find from the active module, which remembers its last one.
    SearchDialog().cmdFindNext_Click();
    Global<frmSearchAndReplace>::Unload();
}

void frmSourceEditor::mnuSearchAndReplace_Click() {
    if (frmSearchAndReplace* Dialog = ShowSearchDialog()) {
        // Into the replace mode.
        Dialog->cmdReplaceOnce_Click();
    }
}

// ---- Recent projects ---------------------------------------------------------

void frmSourceEditor::InitializeRecentProjectList() {
    for (QAction* Recent : mnuOpenRecentProject) {
        Recent->setVisible(false);
    }
    mnuLine4->setVisible(false);
    RecentProjects::LoadList();
    for (int16_t Index = 1; Index <= 4 && !RecentProjects::GetProject(Index).isEmpty(); ++Index) {
        mnuLine4->setVisible(true);
        QString Path;
        QString Name;
        QString Extension;
        UtilitiesFilename::SplitFilename(RecentProjects::GetProject(Index), Path, Name, Extension);
        QString Caption = QStringLiteral("..\\") + Name;
        if (Caption.size() > 25) {
            Caption = Caption.left(25) + QStringLiteral("...");
        }
        mnuOpenRecentProject[Index - 1]->setText(QStringLiteral("&%1 ").arg(Index) + Caption);
        mnuOpenRecentProject[Index - 1]->setVisible(true);
    }
}

// ---- Prompts and exit --------------------------------------------------------

void frmSourceEditor::PromptToSaveModules(bool AutoSave, bool& Success) {
    Success = true;
    ProjectType& Current = Project();
    if (!Current.IsDefined()) {
        return;
    }
    if (AutoSave && RegistryCentral::RegistryGetSaveFile()) {
        Current.SaveAll();
        return;
    }
    for (int Number = 1; Number <= Current.ModuleCount(); ++Number) {
        if (!Current.HasChanged(Number)) {
            continue;
        }
        const int Answer = AskToSaveModule(Number);
        if (Answer == 2) {
            Success = false;
            return;
        }
        if (Answer == 6) {
            Current.SaveModule(Number);
        }
    }
}

int frmSourceEditor::AskToSaveModule(int16_t Number) {
    const QString Name = Project().ModuleList().GetModule(Number)->Name();
    return ErrorDisplay::AskYesNoCancel(
        QStringLiteral("Save changes to ") + Name + QStringLiteral("?"),
        QStringLiteral("Save Module"));
}

void frmSourceEditor::ProcessExit(bool& CancelUnload) {
    bool Success = false;
    PromptToSaveModules(false, Success);
    CancelUnload = !Success;
    if (CancelUnload) {
        return;
    }
    SaveGeometry();
    Global<ProjectType>::Unload();
}

void frmSourceEditor::SaveGeometry() {
    RegistryCentral::RegistrySaveEditorGeometry(CurrentGeometry());
    if (Project().ModuleCount() > 0) {
        bool Maximized = false;
        Project().AreWindowsMaximized(Maximized);
        RegistryCentral::RegistrySaveChildWindowsMaximized(Maximized);
    }
    RecentProjects::SaveList();
}

void frmSourceEditor::mnuExit_Click() {
    bool CancelUnload = false;
    ProcessExit(CancelUnload);
    if (!CancelUnload) {
        ExitConfirmed = true;
        close();
    }
}

void frmSourceEditor::closeEvent(QCloseEvent* Event) {
    if (!ExitConfirmed) {
        bool CancelUnload = false;
        ProcessExit(CancelUnload);
        if (CancelUnload) {
            Event->ignore();
            return;
        }
    }
    ExitConfirmed = false;
    Event->accept();
    GlobalData::SetEditorIsOpen(false);
    // Unloaded: the next use makes a fresh editor.
    if (Global<frmSourceEditor>::IsLoaded() && &Global<frmSourceEditor>::Get() == this) {
        Global<frmSourceEditor>::Release();
        deleteLater();
    }
}

void frmSourceEditor::resizeEvent(QResizeEvent* Event) {
    QMainWindow::resizeEvent(Event);
    // However narrow the window is made, the tool bar keeps its 4410 twips
    // (and so holds the window at that width). Set at each resize, the first
    // of which comes before the window shows.
    barEditorToolbar->setMinimumWidth(TwipsConversion::TwipsToPixelsX(MinimumToolBarTwips));
}

// ---- Project commands --------------------------------------------------------

void frmSourceEditor::OpenProject(const QString& Path, const QString& Name,
                                  const QString& Extension, bool IsNewProject) {
    Global<ProjectType>::Unload();
    Project().OpenProject(Path, Name, Extension, IsNewProject);
    DisplayProjectName(Project().Name());
}

namespace {
// One dialog: the chosen name, whether it is new, whether the user cancelled.
// An error in a save dialog gives the numbered report of its location (minor
// number 4 or 5); in the open dialog it counts as a cancel.
void RunFileDialog(const FileDialogRequest& Request, int16_t ErrorMinor, QString& LongFilename,
                   bool& IsNewFile, bool& UserCancelled) {
    try {
        UserCancelled = !FileDialogService::Instance().Show(Request, LongFilename);
        IsNewFile = !UserCancelled && !UtilitiesFilename::FileExists(LongFilename);
    } catch (...) {
        UserCancelled = true;
        if (ErrorMinor > 0) {
            ExceptionTypes::ProcessException(6, ErrorMinor);
        }
    }
}

FileDialogRequest MakeRequest(const char* Title, const QString& InitDir, const QString& FileName,
                              const char* Filter, bool Save) {
    FileDialogRequest Request;
    Request.Title = QString::fromLatin1(Title);
    Request.InitDir = InitDir;
    Request.FileName = FileName;
    Request.Filter = QString::fromLatin1(Filter);
    Request.FilterIndex = 2;
    Request.Save = Save;
    return Request;
}
}  // namespace

void frmSourceEditor::OpenProjectDialog(QString& LongFilename, bool& IsNewFile,
                                        bool& UserCancelled) {
    // Opening may name a project that doesn't exist: that makes a new one.
    RunFileDialog(MakeRequest("Open Project", DirectoryCentral::GetWorkPath(), QString(),
                              "Kavlin Studio Projects (*.kvp)|*.kvp", false),
                  0, LongFilename, IsNewFile, UserCancelled);
}

void frmSourceEditor::SaveProjectAsDialog(const QString& Path, const QString& Filename,
                                          QString& LongFilename, bool& IsNewFile,
                                          bool& UserCancelled) {
    RunFileDialog(
        MakeRequest("Save Project As", Path, Filename, "Kavlin Studio Project (*.kvp)|*.kvp", true),
        4, LongFilename, IsNewFile, UserCancelled);
}

void frmSourceEditor::SaveModuleAsDialog(const QString& Path, const QString& Filename,
                                         QString& LongFilename, bool& IsNewFile,
                                         bool& UserCancelled) {
    RunFileDialog(
        MakeRequest("Save Module As", Path, Filename, "Kavlin Studio Module (*.bas)|*.bas", true),
        5, LongFilename, IsNewFile, UserCancelled);
}

namespace {
// A dialog that the editor owns and shows, not modally, in front.
template <class Dialog>
Dialog& ShowOwned(QWidget* Owner) {
    Dialog& Shown = Global<Dialog>::Get();
    if (Shown.parentWidget() != Owner) {
        Shown.setParent(Owner, Shown.windowFlags() | Qt::Dialog);
    }
    Shown.show();
    Shown.raise();
    Shown.activateWindow();
    return Shown;
}
}  // namespace

void frmSourceEditor::mnuNewProject_Click() {
    bool Success = false;
    PromptToSaveModules(false, Success);
    if (!Success) {
        return;
    }
    frmNewProject& Dialog = ShowOwned<frmNewProject>(this);
    // Opened here, the project's name comes into the caption.
    Dialog.OpenProject = [this](const QString& Path, const QString& Name, const QString& Extension,
                                bool IsNewProject) {
        OpenProject(Path, Name, Extension, IsNewProject);
    };
}

void frmSourceEditor::mnuProjectFiles_Click() { ShowOwned<frmProjectFiles>(this); }

void frmSourceEditor::mnuEnvironmentOptions_Click() {
    frmEnvironmentOptions& Options = Global<frmEnvironmentOptions>::Get();
    Options.setParent(this, Options.windowFlags() | Qt::Dialog);
    Options.exec();
    Global<frmEnvironmentOptions>::Unload();
}

void frmSourceEditor::mnuOpenProject_Click() {
    bool Success = false;
    PromptToSaveModules(false, Success);
    if (!Success) {
        return;
    }
    QString LongFilename;
    bool IsNewFile = false;
    bool UserCancelled = false;
    OpenProjectDialog(LongFilename, IsNewFile, UserCancelled);
    if (UserCancelled) {
        return;
    }
    QString Path;
    QString Name;
    QString Extension;
    UtilitiesFilename::SplitFilename(LongFilename, Path, Name, Extension);
    OpenProject(Path, Name, Extension, IsNewFile);
}

void frmSourceEditor::mnuOpenRecentProject_Click(int Index) {
    bool Success = false;
    PromptToSaveModules(false, Success);
    if (!Success) {
        return;
    }
    const QString Filename = RecentProjects::GetProject(static_cast<int16_t>(Index));
    if (!UtilitiesFilename::FileExists(Filename)) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Can't find project ") + Filename,
                                       QStringLiteral("Project Missing"));
        return;
    }
    QString Path;
    QString Name;
    QString Extension;
    UtilitiesFilename::SplitFilename(Filename, Path, Name, Extension);
    OpenProject(Path, Name, Extension, false);
}

void frmSourceEditor::mnuCloseProject_Click() {
    bool Success = false;
    PromptToSaveModules(false, Success);
    if (!Success) {
        return;
    }
    Global<ProjectType>::Unload();
    ConfigureMenus(false);
    DisplayProjectName(QString());
}

void frmSourceEditor::mnuSaveProject_Click() { Project().SaveAll(); }

void frmSourceEditor::mnuSaveProjectAs_Click() {
    if (!Project().IsDefined()) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("No project open"),
                                       QStringLiteral("No Project Open"));
        return;
    }
    QString LongFilename;
    bool IsNewFile = false;
    bool UserCancelled = false;
    SaveProjectAsDialog(
        Project().Path(),
        UtilitiesFilename::MakeFilename(QString(), Project().Name(), Project().Extension()),
        LongFilename, IsNewFile, UserCancelled);
    if (UserCancelled) {
        return;
    }
    QString Path;
    QString Name;
    QString Extension;
    UtilitiesFilename::SplitFilename(LongFilename, Path, Name, Extension);
    Project().SaveProjectAs(Path, Name, Extension);
    DisplayProjectName(Project().Name());
}

void frmSourceEditor::mnuSaveModule_Click() {
    const int16_t Module = ActiveModuleNumber();
    if (!Project().IsDefined() || Project().ModuleCount() < 1 || Module < 1) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("No module open"),
                                       QStringLiteral("No Module Open"));
        return;
    }
    Project().SaveModule(Module);
}

void frmSourceEditor::mnuSaveModuleAs_Click() {
    const int16_t Module = ActiveModuleNumber();
    if (!Project().IsDefined() || Project().ModuleCount() < 1 || Module < 1) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("No module open"),
                                       QStringLiteral("No Module Open"));
        return;
    }
    QString Path;
    QString Name;
    QString Extension;
    Project().GetModuleName(Module, Path, Name, Extension);
    QString LongFilename;
    bool IsNewFile = false;
    bool UserCancelled = false;
    SaveModuleAsDialog(Path, UtilitiesFilename::MakeFilename(Path, Name, Extension), LongFilename,
                       IsNewFile, UserCancelled);
    if (!UserCancelled) {
        Project().SaveModuleAs(Module, LongFilename);
    }
}

void frmSourceEditor::mnuSetWorkingDirectory_Click() {
    Global<frmWorkPathDefinition>::Get().exec();
    Global<frmWorkPathDefinition>::Unload();
}

void frmSourceEditor::mnuCompileAndRun_Click() {
    if (!CommandLineInterpreter::GetCommandLineMode()) {
        DownloadPortExecutive::CheckPortMatchesChip();
    }
    if (!DownloadPortExecutive::DownloadPortIsOpen()) {
        const int Answer =
            ErrorDisplay::AskYesNoCancel(QStringLiteral("Download port is closed\nOpen port now?"),
                                         QStringLiteral("Download port closed"));
        if (Answer != 6) {
            return;
        }
        // The port dialog of the chip model, as the downloader's menu shows it.
        Global<frmDownloader>::Get().mnuDownloadPortSetup_Click();
        if (!DownloadPortExecutive::DownloadPortIsOpen()) {
            return;
        }
    }
    bool Success = false;
    CompileProject(Success);
    if (!Success) {
        return;
    }
    // The image's name has been in DownloadFilename since the project opened.
    frmDownloader& Downloader = Global<frmDownloader>::Get();
    Downloader.activateWindow();
    Downloader.raise();
    Downloader.DownloadAndExecute();
}

void frmSourceEditor::mnuCompile_Click() {
    bool Success = false;
    CompileProject(Success);
}

void frmSourceEditor::CompileProject(bool& Success) {
    Success = false;
    // The compiler reads the modules from disk: whatever is compiled is saved first.
    if (!RegistryCentral::RegistryGetSaveFile()) {
        for (int Number = 1; Number <= Project().ModuleCount(); ++Number) {
            if (!Project().HasChanged(Number)) {
                continue;
            }
            if (AskToSaveModule(Number) != 6) {
                ErrorDisplay::ShowErrorMessage(QStringLiteral("Compile cancelled"),
                                               QStringLiteral("Compile Cancelled"));
                return;
            }
            Project().SaveModule(Number);
        }
    }
    Project().SaveAll();
    bool Installed = false;
    DirectoryCentral::CheckInstallation(Installed);
    if (!Installed) {
        return;
    }
    CompilerCentral::CompileAll(Success);
}

void frmSourceEditor::mnuCompileStatus_Click() { ShowCompileStatus(); }

void frmSourceEditor::mnuWatchWindow_Click() {
    if (GlobalData::ChipType != 2 && GlobalData::ChipType != 3) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Watch Window requires KV-20 or KV-30"),
                                       QStringLiteral("Processor Type Error"));
        return;
    }
    // The watch window takes the serial line: the monitor port must let go.
    if (MonitorPortExecutive::IsMonitorPortOpen()) {
        const int Answer = ErrorDisplay::AskYesNoCancel(
            QStringLiteral(
                "Monitor port must be closed\nto use the watch window.\nClose port now?"),
            QStringLiteral("Monitor port"));
        if (Answer != 6) {
            return;
        }
        MonitorPortExecutive::CloseMonitorPort();
    }
    frmWatchWindow& Watch = Global<frmWatchWindow>::Get();
    Watch.show();
    Watch.raise();
    Watch.activateWindow();
}

void frmSourceEditor::ShowCompileStatus() {
    frmCompileStatus& Status = Global<frmCompileStatus>::Get();
    Status.setParent(this, Status.windowFlags());
    QString Text = CompileStatus + QStringLiteral("\r\n\r\n") + WarningDescription;
    Status.txtCompileStatus->setPlainText(
        Text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    Status.exec();
    Global<frmCompileStatus>::Unload();
}

bool frmSourceEditor::eventFilter(QObject* Watched, QEvent* Event) {
    if (Event->type() == QEvent::MouseButtonPress &&
        sbrStatus.contains(qobject_cast<QLabel*>(Watched))) {
        ShowCompileStatus();
        return true;
    }
    return QMainWindow::eventFilter(Watched, Event);
}

void frmSourceEditor::SetWarningDescription(const QString& Text) { WarningDescription = Text; }

void frmSourceEditor::SetCompileStatus(const QString& Text) { CompileStatus = Text; }

void frmSourceEditor::ShowStatusPanel(int Panel, const QString& Text) {
    if (Panel >= 1 && Panel <= sbrStatus.size()) {
        sbrStatus[Panel - 1]->setText(Text);
        // The compile blocks the event loop: "Compiling..." must show now.
        sbrStatus[Panel - 1]->repaint();
    }
}

namespace {
// A dialog of this window, modal, unloaded when it closes.
template <class Dialog>
void ShowOwnedDialog(QWidget* Owner) {
    Dialog& Window = Global<Dialog>::Get();
    Window.setParent(Owner, Window.windowFlags());
    Window.exec();
    Global<Dialog>::Unload();
}
}  // namespace

void frmSourceEditor::mnuChipDialog_Click() {
    // The chip dialogs work on the file itself: the mirror goes there first,
    // with the chip model in use, and takes back what the dialog wrote.
    PRFfileType& Preferences = Project().PRFfile();
    Preferences.ChangeProcessor(GlobalData::ChipType);
    Preferences.WriteFile();
    switch (GlobalData::ChipType) {
        case 1:
            ShowOwnedDialog<frmChipDialogKV10>(this);
            break;
        case 2:
            ShowOwnedDialog<frmChipDialogKV20>(this);
            break;
        case 3:
            ShowOwnedDialog<frmChipDialogKV30>(this);
            break;
        default:
            ShowOwnedDialog<frmChipDialogKV20>(this);
            ErrorDisplay::ProbeError(
                QStringLiteral("Error_1 in frmSourceEditor.mnuChipDialog_Click"));
            break;
    }
    Preferences.ReadExistingFile();
}

void frmSourceEditor::mnuProcessorOptions_Click() { ShowOwnedDialog<frmProcessorOptions>(this); }

void frmSourceEditor::mnuAbout_Click() {
    Global<frmAbout>::Get().exec();
    Global<frmAbout>::Unload();
}

void frmSourceEditor::barEditorToolbar_ButtonClick(const QString& Key) {
    if (Key == QStringLiteral("NewProject")) {
        mnuNewProject_Click();
    } else if (Key == QStringLiteral("OpenProject")) {
        mnuOpenProject_Click();
    } else if (Key == QStringLiteral("CloseProject")) {
        mnuCloseProject_Click();
    } else if (Key == QStringLiteral("SaveProject")) {
        mnuSaveProject_Click();
    } else if (Key == QStringLiteral("Cut")) {
        mnuEditCut_Click();
    } else if (Key == QStringLiteral("Copy")) {
        mnuEditCopy_Click();
    } else if (Key == QStringLiteral("Paste")) {
        mnuEditPaste_Click();
    } else if (Key == QStringLiteral("CompileAndRun")) {
        mnuCompileAndRun_Click();
    } else if (Key == QStringLiteral("Find")) {
        mnuFindFirst_Click();
    } else if (Key == QStringLiteral("ProjectFiles")) {
        mnuProjectFiles_Click();
    } else if (Key == QStringLiteral("ChipDialog")) {
        mnuChipDialog_Click();
    } else {
        ErrorDisplay::ProbeError(
            QStringLiteral("Error1 in frmSourceEditor.barEditorToolbar_ButtonClick"));
    }
}
