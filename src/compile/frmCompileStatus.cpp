#include "compile/frmCompileStatus.h"

#include <QResizeEvent>

#include "frame/TwipsConversion.h"

namespace {
// The window's first inner size and the button's fixed place and size, in twips.
constexpr int32_t InitialWidth = 6000;
constexpr int32_t InitialHeight = 3000;
constexpr int32_t ButtonLeft = 2460;
constexpr int32_t ButtonWidth = 1095;
constexpr int32_t ButtonHeight = 375;
}  // namespace

frmCompileStatus::frmCompileStatus() {
    using namespace TwipsConversion;
    setObjectName(QStringLiteral("frmCompileStatus"));
    setWindowTitle(QStringLiteral("Compile Status"));
    txtCompileStatus = new QPlainTextEdit(this);
    txtCompileStatus->setObjectName(QStringLiteral("txtCompileStatus"));
    txtCompileStatus->setReadOnly(true);
    txtCompileStatus->setLineWrapMode(QPlainTextEdit::NoWrap);
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    connect(cmdOK, &QPushButton::clicked, this, &frmCompileStatus::cmdOK_Click);
    PlaceControls();
    resize(TwipsToPixelsX(InitialWidth), TwipsToPixelsY(InitialHeight));
}

void frmCompileStatus::Resize(int32_t FormWidth, int32_t FormHeight) {
    if (FormWidth > 4000) {
        TextWidth = FormWidth - 20;
    }
    if (FormHeight > 1200) {
        TextHeight = FormHeight - 500;
        ButtonTop = FormHeight - 400;
    }
    PlaceControls();
}

void frmCompileStatus::PlaceControls() {
    using namespace TwipsConversion;
    txtCompileStatus->setGeometry(0, 0, TwipsToPixelsX(TextWidth), TwipsToPixelsY(TextHeight));
    cmdOK->setGeometry(TwipsToPixelsX(ButtonLeft), TwipsToPixelsY(ButtonTop),
                       TwipsToPixelsX(ButtonWidth), TwipsToPixelsY(ButtonHeight));
}

void frmCompileStatus::resizeEvent(QResizeEvent* Event) {
    QDialog::resizeEvent(Event);
    Resize(TwipsConversion::PixelsToTwipsX(Event->size().width()),
           TwipsConversion::PixelsToTwipsY(Event->size().height()));
}

void frmCompileStatus::cmdOK_Click() { accept(); }
