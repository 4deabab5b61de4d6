#include "editor/SourceEditorHost.h"

namespace {
SourceEditorHost* Installed = nullptr;
}  // namespace

SourceEditorHost* SourceEditorHost::Instance() { return Installed; }

void SourceEditorHost::Install(SourceEditorHost* Host) { Installed = Host; }
