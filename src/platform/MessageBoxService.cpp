#include "platform/MessageBoxService.h"

#include "platform/HeadlessMessageBoxService.h"
#include "platform/ServiceSlot.h"

MessageBoxService& MessageBoxService::Instance() {
    return ServiceSlot<MessageBoxService, HeadlessMessageBoxService>::Instance();
}

std::unique_ptr<MessageBoxService> MessageBoxService::Install(
    std::unique_ptr<MessageBoxService> Service) {
    return ServiceSlot<MessageBoxService, HeadlessMessageBoxService>::Install(std::move(Service));
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
