#include "render/DialogGallery.h"

#include <QApplication>
#include <QImage>

#include "chip/frmChipDialogKV10.h"
#include "chip/frmChipDialogKV20.h"
#include "chip/frmChipDialogKV30.h"
#include "chip/frmProcessorOptions.h"
#include "editor/frmSearchAndReplace.h"
#include "link/frmDownloadPortParallel.h"
#include "link/frmDownloadPortSerial.h"
#include "link/frmTestProbe.h"
#include "monitor/frmDiagnosticATN.h"
#include "platform/Global.h"

namespace {

template <typename Form>
DialogGalleryEntry GlobalForm(const QString& Name) {
    return {Name,
            [] {
                Form& Window = Global<Form>::Get();
                Window.show();
                return static_cast<QWidget*>(&Window);
            },
            [] { Global<Form>::Unload(); }};
}

}  // namespace

std::vector<DialogGalleryEntry> DialogGallery() {
    return {
        GlobalForm<frmSearchAndReplace>(QStringLiteral("frmSearchAndReplace")),
        GlobalForm<frmDownloadPortSerial>(QStringLiteral("frmDownloadPortSerial")),
        GlobalForm<frmDownloadPortParallel>(QStringLiteral("frmDownloadPortParallel")),
        GlobalForm<frmChipDialogKV20>(QStringLiteral("frmChipDialogKV20")),
        GlobalForm<frmChipDialogKV10>(QStringLiteral("frmChipDialogKV10")),
        GlobalForm<frmChipDialogKV30>(QStringLiteral("frmChipDialogKV30")),
        GlobalForm<frmProcessorOptions>(QStringLiteral("frmProcessorOptions")),
        GlobalForm<frmDiagnosticATN>(QStringLiteral("frmDiagnosticATN")),
        GlobalForm<frmTestProbe>(QStringLiteral("frmTestProbe")),
    };
}

QImage RenderDialog(QWidget& Dialog) {
    Dialog.adjustSize();
    QApplication::processEvents();
    return Dialog.grab().toImage();
}
