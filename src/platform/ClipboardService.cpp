#include "platform/ClipboardService.h"

#include "platform/ServiceSlot.h"

ClipboardService& ClipboardService::Instance() {
    return ServiceSlot<ClipboardService, MemoryClipboardService>::Instance();
}

std::unique_ptr<ClipboardService> ClipboardService::Install(
    std::unique_ptr<ClipboardService> Service) {
    return ServiceSlot<ClipboardService, MemoryClipboardService>::Install(std::move(Service));
}
