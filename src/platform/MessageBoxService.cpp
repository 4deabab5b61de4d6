#include "platform/MessageBoxService.h"

#include "platform/HeadlessMessageBoxService.h"

namespace {
std::unique_ptr<MessageBoxService>& Current() {
    static std::unique_ptr<MessageBoxService> Service;
    return Service;
}
}  // namespace

MessageBoxService& MessageBoxService::Instance() {
    auto& Service = Current();
    if (!Service) {
        Service = std::make_unique<HeadlessMessageBoxService>();
    }
    return *Service;
}

std::unique_ptr<MessageBoxService> MessageBoxService::Install(
    std::unique_ptr<MessageBoxService> Service) {
    auto Old = std::move(Current());
    Current() = std::move(Service);
    return Old;
}

int DefaultAnswer(MsgBoxButtons Buttons) {
    switch (Buttons) {
        case MsgBoxButtons::YesNo:
        case MsgBoxButtons::YesNoCancel:
            // No: the answer that neither creates nor keeps anything waiting,
            // so an unattended run always goes on to its end.
            return vbNo;
        case MsgBoxButtons::OKOnly:
            break;
    }
    return vbOK;
}
