#include "project/TextModuleWindow.h"

void TextModuleWindow::Initialize(const QString& Name, int16_t, const QString& SourceCode) {
    Caption_ = Name;
    Text_ = SourceCode;
    HasChanged_ = false;
}
