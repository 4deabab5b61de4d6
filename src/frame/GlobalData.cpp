#include "frame/GlobalData.h"

namespace GlobalData {

int32_t ChipType = 2;
QString ProjectFilename;
QString DownloadFilename;
int32_t CodeSize = 0;
int32_t PersistentSize = 0;
int32_t MemorySize = 0;

namespace {
bool EditorIsOpen = false;
std::function<void(bool)> EditorButtonHandler;
}  // namespace

QString VersionText() { return QStringLiteral("%1.%2.%3").arg(Major).arg(Minor).arg(Revision); }

QString ApplicationCaption() {
    return QStringLiteral("Kavlin Development System V") + VersionText();
}

void InitializeGlobalData() {
    ChipType = 2;
    EditorIsOpen = false;
}

bool GetEditorIsOpen() { return EditorIsOpen; }

void SetEditorIsOpen(bool IsOpen) {
    EditorIsOpen = IsOpen;
    if (EditorButtonHandler) {
        EditorButtonHandler(!IsOpen);
    }
}

void SetEditorButtonHandler(std::function<void(bool Enabled)> Handler) {
    EditorButtonHandler = std::move(Handler);
}

}  // namespace GlobalData
