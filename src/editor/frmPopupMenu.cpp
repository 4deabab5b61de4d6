#include "editor/frmPopupMenu.h"

#include "editor/SourceEditorHost.h"

frmPopupMenu::frmPopupMenu() {
    setObjectName(QStringLiteral("frmPopupMenu"));
    mnuEdit = new QMenu(QStringLiteral("Edit"));
    mnuEdit->setObjectName(QStringLiteral("mnuEdit"));
    auto Entry = [this](const char* Name, const char* Caption,
                        void (SourceEditorHost::*Handler)()) {
        QAction* Action = mnuEdit->addAction(QString::fromLatin1(Caption));
        Action->setObjectName(QString::fromLatin1(Name));
        connect(Action, &QAction::triggered, this, [Handler] {
            // Each entry runs the main window's command of the same name.
            if (SourceEditorHost* Host = SourceEditorHost::Instance()) {
                (Host->*Handler)();
            }
        });
        return Action;
    };
    mnuCut = Entry("mnuCut", "Cut", &SourceEditorHost::mnuEditCut_Click);
    mnuCopy = Entry("mnuCopy", "Copy", &SourceEditorHost::mnuEditCopy_Click);
    mnuPaste = Entry("mnuPaste", "Paste", &SourceEditorHost::mnuEditPaste_Click);
    mnuDelete = Entry("mnuDelete", "Delete", &SourceEditorHost::mnuEditDelete_Click);
}

frmPopupMenu::~frmPopupMenu() { delete mnuEdit; }
