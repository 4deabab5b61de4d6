#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QLabel>

#include "render/DialogGallery.h"
#include "support/QtPrinters.h"

namespace {

// What a person would see as a broken layout: a control that sticks out of
// its dialog, or one squeezed below the size its text needs.
QStringList LayoutFaults(QWidget& Dialog) {
    QStringList Faults;
    const QRect Inside = Dialog.rect();
    for (QWidget* Child : Dialog.findChildren<QWidget*>()) {
        if (!Child->isVisibleTo(&Dialog) || Child->isWindow()) {
            continue;
        }
        const QRect Place(Child->mapTo(&Dialog, QPoint(0, 0)), Child->size());
        const QString Name = Child->objectName().isEmpty()
                                 ? QString::fromLatin1(Child->metaObject()->className())
                                 : Child->objectName();
        if (!Inside.contains(Place)) {
            Faults << Name + QStringLiteral(" lies outside the dialog");
        }
        const bool CarriesText =
            qobject_cast<QAbstractButton*>(Child) != nullptr || qobject_cast<QLabel*>(Child);
        if (CarriesText && Child->width() < Child->minimumSizeHint().width()) {
            Faults << Name + QStringLiteral(" is narrower than its text");
        }
    }
    return Faults;
}

bool ShowsMoreThanOneColour(const QImage& Picture) {
    const QRgb First = Picture.pixel(0, 0);
    for (int Y = 0; Y < Picture.height(); Y += 3) {
        for (int X = 0; X < Picture.width(); X += 3) {
            if (Picture.pixel(X, Y) != First) {
                return true;
            }
        }
    }
    return false;
}

void CheckEveryDialog() {
    for (const DialogGalleryEntry& Entry : DialogGallery()) {
        SCOPED_TRACE(Entry.Name.toStdString());
        QWidget* Dialog = Entry.Open();
        ASSERT_NE(Dialog, nullptr);
        const QImage Picture = RenderDialog(*Dialog);
        EXPECT_FALSE(Picture.isNull());
        EXPECT_TRUE(ShowsMoreThanOneColour(Picture));
        EXPECT_EQ(LayoutFaults(*Dialog), QStringList());
        Entry.Close();
    }
}

TEST(DialogGalleryTest, EveryDialogRendersWithAllItsControlsInside) { CheckEveryDialog(); }

TEST(DialogGalleryTest, EveryDialogKeepsItsControlsWholeWithALargerFont) {
    const QFont Usual = QApplication::font();
    QFont Large = Usual;
    Large.setPointSizeF(Usual.pointSizeF() * 1.6);
    QApplication::setFont(Large);
    CheckEveryDialog();
    QApplication::setFont(Usual);
}

}  // namespace
