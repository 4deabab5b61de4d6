#include "project/ModuleEditWindow.h"

#include "frame/CommandLineInterpreter.h"
#include "project/TextModuleWindow.h"

namespace {
ModuleEditWindow::Factory& Installed() {
    static ModuleEditWindow::Factory Maker;
    return Maker;
}
}  // namespace

void ModuleEditWindow::SetFactory(Factory NewFactory) { Installed() = std::move(NewFactory); }

std::unique_ptr<ModuleEditWindow> ModuleEditWindow::Create() {
    // A batch shows no window: its modules hold their text uncoloured.
    if (CommandLineInterpreter::GetCommandLineMode()) {
        return std::make_unique<TextModuleWindow>();
    }
    return Installed() ? Installed()() : nullptr;
}
