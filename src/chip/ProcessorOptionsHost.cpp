#include "chip/ProcessorOptionsHost.h"

namespace {
ProcessorOptionsHost* Installed = nullptr;
}  // namespace

ProcessorOptionsHost* ProcessorOptionsHost::Instance() { return Installed; }

void ProcessorOptionsHost::Install(ProcessorOptionsHost* Host) { Installed = Host; }

void ProcessorOptionsHost::Uninstall(ProcessorOptionsHost* Host) {
    if (Installed == Host) {
        Installed = nullptr;
    }
}
