#include "render/DialogGallery.h"

#include <QApplication>
#include <QImage>

#include "chip/frmChipDialogKV10.h"
#include "chip/frmChipDialogKV20.h"
#include "editor/frmSearchAndReplace.h"
#include "link/frmDownloadPortParallel.h"
#include "link/frmDownloadPortSerial.h"
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
    };
}

QImage RenderDialog(QWidget& Dialog) {
    Dialog.adjustSize();
    QApplication::processEvents();
    return Dialog.grab().toImage();
}
