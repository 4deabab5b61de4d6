#include "project/ModuleEditWindow.h"

namespace {
ModuleEditWindow::Factory& Installed() {
    static ModuleEditWindow::Factory Maker;
    return Maker;
}
}  // namespace

void ModuleEditWindow::SetFactory(Factory NewFactory) { Installed() = std::move(NewFactory); }

std::unique_ptr<ModuleEditWindow> ModuleEditWindow::Create() {
    return Installed() ? Installed()() : nullptr;
}
