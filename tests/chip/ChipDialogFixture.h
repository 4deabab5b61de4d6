#pragma once

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTest>
#include <QTimer>
#include <functional>

#include "chip/ChipPackageDrawing.h"
#include "chip/PinBoxGroup.h"
#include "chip/PrfImageBuilder.h"
#include "chip/PrfRecordType.h"
#include "frame/GlobalData.h"
#include "platform/Global.h"
#include "support/FrameFixture.h"

// A project "Chip.kvp" in the temporary folder with its preference file
// beside it, and one chip dialog opened on it as the editor opens it.
template <class Dialog>
class ChipDialogFixture : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        GlobalData::ProjectFilename = QDir(TempPath()).filePath(QStringLiteral("Chip.kvp"));
        PrfFilename = QDir(TempPath()).filePath(QStringLiteral("Chip.prf"));
    }
    void TearDown() override {
        Global<Dialog>::Unload();
        // A dialog that unloaded itself is deleted here.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        FrameFixture::TearDown();
    }

    Dialog& Open() {
        Dialog& Window = Global<Dialog>::Get();
        Window.show();
        // Active, so that a test sees where the dialog puts the focus.
        Window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Window));
        return Window;
    }
    // Opens the dialog as the editor's chip dialog command does, modally,
    // and has User act on it while it is up; the dialog's result.
    int OpenModal(const std::function<void(Dialog&)>& User) {
        bool Shown = false;
        QTimer::singleShot(0, [&] {
            auto* Window = qobject_cast<Dialog*>(QApplication::activeModalWidget());
            if (Window == nullptr) {
                return;
            }
            Shown = true;
            User(*Window);
        });
        const int Result = Global<Dialog>::Get().exec();
        Global<Dialog>::Unload();
        EXPECT_TRUE(Shown);
        return Result;
    }
    void SavePrf(const PrfImageBuilder& Builder) { ASSERT_TRUE(Builder.Save(PrfFilename)); }
    QByteArray PrfBytes() const {
        QFile File(PrfFilename);
        return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray();
    }
    PrfRecordType Record(int32_t RecordNumber) const {
        return PrfRecordType::Decode(PrfBytes(), PrfRecordType::OffsetOf(RecordNumber));
    }
    static std::array<int16_t, 4> Flags(const PrfRecordType& Record) {
        return {Record.Flags[1], Record.Flags[2], Record.Flags[3], Record.Flags[4]};
    }
    // The four boxes of a row as the user sees them.
    static std::array<int16_t, 4> Row(const PinBoxGroup* Pin) {
        return {Pin->Value(1), Pin->Value(2), Pin->Value(3), Pin->Value(4)};
    }
    static bool RowEnabled(const PinBoxGroup* Pin) {
        return Pin->IsEnabled(1) && Pin->IsEnabled(2) && Pin->IsEnabled(3) && Pin->IsEnabled(4);
    }
    static bool RowDisabled(const PinBoxGroup* Pin) {
        return !Pin->IsEnabled(1) && !Pin->IsEnabled(2) && !Pin->IsEnabled(3) && !Pin->IsEnabled(4);
    }
    // On the indicator: a check box takes a click on itself only.
    static void Click(QAbstractButton* Button) {
        QTest::mouseClick(Button, Qt::LeftButton, {}, QPoint(6, Button->height() / 2));
    }
    static void Press(QAbstractButton* Button) { QTest::mouseClick(Button, Qt::LeftButton); }
    // The distance between a row's middle and its pin's stub in the drawing.
    static int RowOffsetFromPin(const PinBoxGroup* Pin, const ChipPackageDrawing* Drawing,
                                QWidget* Window) {
        const QWidget* Box = Pin->Box(1);
        const int RowMiddle = Box->mapTo(Window, QPoint(0, Box->height() / 2)).y();
        const int PinY = Drawing->mapTo(Window, Drawing->PinPosition(Pin->PinNumber())).y();
        return std::abs(RowMiddle - PinY);
    }

    QString PrfFilename;
};

// Rows as arrays of four box values.
using Row4 = std::array<int16_t, 4>;
inline const Row4 RowIN{1, 0, 0, 0};
inline const Row4 RowP{0, 1, 0, 0};
inline const Row4 RowLow{0, 0, 1, 0};
inline const Row4 RowHigh{0, 0, 0, 1};
inline const Row4 RowNone{0, 0, 0, 0};
