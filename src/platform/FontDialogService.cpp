#include "platform/FontDialogService.h"

#include "platform/ServiceSlot.h"

FontDialogService& FontDialogService::Instance() {
    return ServiceSlot<FontDialogService, CancellingFontDialogService>::Instance();
}

std::unique_ptr<FontDialogService> FontDialogService::Install(
    std::unique_ptr<FontDialogService> Service) {
    return ServiceSlot<FontDialogService, CancellingFontDialogService>::Install(std::move(Service));
}
