#include "project/ProjectEditorHost.h"

namespace {
ProjectEditorHost* Installed = nullptr;
}  // namespace

ProjectEditorHost* ProjectEditorHost::Instance() { return Installed; }

void ProjectEditorHost::Install(ProjectEditorHost* Host) { Installed = Host; }
