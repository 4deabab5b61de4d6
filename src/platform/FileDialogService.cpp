#include "platform/FileDialogService.h"

#include "platform/ServiceSlot.h"

FileDialogService& FileDialogService::Instance() {
    return ServiceSlot<FileDialogService, CancellingFileDialogService>::Instance();
}

std::unique_ptr<FileDialogService> FileDialogService::Install(
    std::unique_ptr<FileDialogService> Service) {
    return ServiceSlot<FileDialogService, CancellingFileDialogService>::Install(std::move(Service));
}
