#include "render/DialogGallery.h"

#include <QApplication>
#include <QImage>

#include "chip/frmChipDialogKV10.h"
#include "chip/frmChipDialogKV20.h"
#include "editor/frmSearchAndReplace.h"
#include "link/frmDownloadPortParallel.h"
#include "link/frmDownloadPortSerial.h"
#include "platform/Global.h"
#include "sim/SimulatedSerialLine.h"
#include "sim/frmSimulatedChip.h"

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

// The simulated chip with its red LED lit, pin 5 driven high by the program
// and pin 10 switched high from outside.
DialogGalleryEntry SimulatedChipWindow() {
    static std::shared_ptr<SimulatedSerialLine> Line;
    return {QStringLiteral("frmSimulatedChip"),
            [] {
                Line = std::make_shared<SimulatedSerialLine>();
                SimulatedChipBoard& Board = Line->Chip().Board;
                Board.SetPinState(SimulatedChipBoard::RedLedPin, MachinePinState::OutputLow, 0);
                Board.SetPinState(5, MachinePinState::OutputHigh, 0);
                Board.SetPinState(6, MachinePinState::InputPullup, 0);
                Board.Drive(10, true);
                frmSimulatedChip::Attach(Line);
                frmSimulatedChip& Window = Global<frmSimulatedChip>::Get();
                Window.show();
                return static_cast<QWidget*>(&Window);
            },
            [] {
                Global<frmSimulatedChip>::Unload();
                frmSimulatedChip::Attach({});
                Line.reset();
            }};
}

}  // namespace

std::vector<DialogGalleryEntry> DialogGallery() {
    return {
        GlobalForm<frmSearchAndReplace>(QStringLiteral("frmSearchAndReplace")),
        GlobalForm<frmDownloadPortSerial>(QStringLiteral("frmDownloadPortSerial")),
        GlobalForm<frmDownloadPortParallel>(QStringLiteral("frmDownloadPortParallel")),
        GlobalForm<frmChipDialogKV20>(QStringLiteral("frmChipDialogKV20")),
        GlobalForm<frmChipDialogKV10>(QStringLiteral("frmChipDialogKV10")),
        SimulatedChipWindow(),
    };
}

QImage RenderDialog(QWidget& Dialog) {
    Dialog.adjustSize();
    QApplication::processEvents();
    return Dialog.grab().toImage();
}
