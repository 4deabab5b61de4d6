#include "frame/frmSplash.h"

#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

#include "frame/GlobalData.h"
#include "frame/UtilitiesCommon.h"
#include "platform/Global.h"

namespace {
// The logo is drawn here rather than loaded, so that the program carries no
// image it did not make.
QPixmap MakeLogo() {
    QPixmap Logo(360, 120);
    Logo.fill(QColor(0, 64, 128));
    QPainter Painter(&Logo);
    Painter.setPen(Qt::white);
    QFont Font = Painter.font();
    Font.setPointSize(40);
    Font.setBold(true);
    Painter.setFont(Font);
    Painter.drawText(Logo.rect(), Qt::AlignCenter, QStringLiteral("Kavlin"));
    return Logo;
}
}  // namespace

QString CopyrightLine() {
    return QStringLiteral("Copyright ") + UtilitiesCommon::CopyrightSign() +
           QStringLiteral(" 2026 Kavlin Studio");
}

frmSplash::frmSplash() : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint) {
    setObjectName(QStringLiteral("frmSplash"));
    imgKavlinlogo = new QLabel(this);
    imgKavlinlogo->setObjectName(QStringLiteral("imgKavlinlogo"));
    imgKavlinlogo->setPixmap(MakeLogo());
    lblProductName = new QLabel(GlobalData::ApplicationCaption(), this);
    lblProductName->setObjectName(QStringLiteral("lblProductName"));
    lblCopyright = new QLabel(CopyrightLine(), this);
    lblCopyright->setObjectName(QStringLiteral("lblCopyright"));

    // The logo fixes the layout: the labels beneath it, as wide as it is.
    auto* Layout = new QVBoxLayout(this);
    Layout->setSpacing(0);
    Layout->addWidget(imgKavlinlogo);
    Layout->addWidget(lblProductName);
    Layout->addWidget(lblCopyright);
    const int LogoWidth = imgKavlinlogo->pixmap().width();
    lblProductName->setFixedWidth(LogoWidth);
    lblCopyright->setFixedWidth(LogoWidth);
    Layout->setSizeConstraint(QLayout::SetFixedSize);

    for (QLabel* Label : {imgKavlinlogo, lblProductName, lblCopyright}) {
        Label->installEventFilter(this);
    }
    adjustSize();
    if (const QScreen* Screen = QGuiApplication::primaryScreen()) {
        move(Screen->availableGeometry().center() - rect().center());
    }
}

void frmSplash::keyPressEvent(QKeyEvent* /*Event*/) { UnloadSelf(); }

bool frmSplash::eventFilter(QObject* Watched, QEvent* Event) {
    if (Event->type() == QEvent::MouseButtonPress &&
        (Watched == imgKavlinlogo || Watched == lblProductName || Watched == lblCopyright)) {
        UnloadSelf();
        return true;
    }
    return QWidget::eventFilter(Watched, Event);
}

void frmSplash::UnloadSelf() {
    // Called from the splash's own event: give up the global at once, delete later.
    if (Global<frmSplash>::IsLoaded() && &Global<frmSplash>::Get() == this) {
        Global<frmSplash>::Release();
    }
    hide();
    deleteLater();
}
