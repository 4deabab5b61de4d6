#include "link/KavlinControlSerialLink.h"

#include <memory>

#include "link/KavlinControl.h"

namespace {
std::unique_ptr<KavlinControlSerialLink> Installed;
}  // namespace

void KavlinControlSerialLink::SetCommPort(int16_t PortNumber) { Control.SetCommPort(PortNumber); }

void KavlinControlSerialLink::OpenPort(bool OpenThePort, DownloaderStatusTypes& Status) {
    Control.OpenPort(OpenThePort, Status);
}

void KavlinControlSerialLink::Install(KavlinControl& Control) {
    Installed = std::make_unique<KavlinControlSerialLink>(Control);
    KavlinControlSerialLink* Link = Installed.get();
    DownloadPortExecutive::SetSerialLink(Link);
    QObject::connect(&Control, &QObject::destroyed, [Link] {
        // A later control may have taken the place meanwhile.
        if (Installed.get() == Link) {
            DownloadPortExecutive::SetSerialLink(nullptr);
            Installed.reset();
        }
    });
}
