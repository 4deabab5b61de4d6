#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QStatusBar>

#include "editor/SourceEditorHost.h"

// A small multi-document window standing in for the editor's main window:
// it shows the caret's position and the insert mode, and records the tabs
// and context menu commands it is asked for.
class EditorTestHost : public QMainWindow, public SourceEditorHost {
  public:
    EditorTestHost() {
        Area = new QMdiArea(this);
        setCentralWidget(Area);
        Position = new QLabel(this);
        Mode = new QLabel(this);
        statusBar()->addWidget(Position);
        statusBar()->addWidget(Mode);
        resize(800, 600);
        SourceEditorHost::Install(this);
    }
    ~EditorTestHost() override { SourceEditorHost::Install(nullptr); }

    void InsertMode(bool IsInsertMode) override {
        Mode->setText(IsInsertMode ? QStringLiteral("INS") : QStringLiteral("OVR"));
    }
    void ActivateTab(int16_t ModuleNumber) override { Tabs.append(ModuleNumber); }
    void DisplayCursor(int32_t LineNumber, int32_t ColumnNumber) override {
        Position->setText(QStringLiteral("Ln %1, Col %2").arg(LineNumber).arg(ColumnNumber));
    }
    void mnuEditCut_Click() override { Commands << QStringLiteral("Cut"); }
    void mnuEditCopy_Click() override { Commands << QStringLiteral("Copy"); }
    void mnuEditPaste_Click() override { Commands << QStringLiteral("Paste"); }
    void mnuEditDelete_Click() override { Commands << QStringLiteral("Delete"); }

    QMdiArea* Area;
    QLabel* Position;
    QLabel* Mode;
    QList<int16_t> Tabs;
    QStringList Commands;
};
