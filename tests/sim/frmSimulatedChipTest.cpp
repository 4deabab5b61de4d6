// The Simulated Chip window as a person uses it: open it from the
// downloader's I/O Ports menu, watch the LEDs of a running program, and throw
// a switch on a pin that the program reads.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QRadioButton>
#include <QTest>

#include "SimulatedChipFixture.h"
#include "link/frmDownloader.h"
#include "platform/Global.h"
#include "sim/SimulatedChipDrawing.h"
#include "sim/SimulatedLed.h"
#include "sim/frmSimulatedChip.h"

namespace {

// Lights the green LED while pin 10 is high, the red one every other 100 ms.
constexpr const char* ButtonAndBlink = R"(
.var Phase 4
Main:
    enter 0
Again:
    pushb 2
    pushb 10
    sys PinRead
    sys LedSet
    ldg.w Phase
    pushw 1
    xor
    stg.w Phase
    pushb 1
    ldg.w Phase
    sys LedSet
    pushw 100
    sys WaitMilliseconds
    jmp Again
)";

class SimulatedChipWindowTest : public SimulatedChipFixture {
  protected:
    void SetUp() override {
        SimulatedChipFixture::SetUp();
        frmSimulatedChip::Attach(Line);
    }
    void TearDown() override {
        Global<frmSimulatedChip>::Unload();
        frmSimulatedChip::Attach({});
        SimulatedChipFixture::TearDown();
    }

    void RunProgram(const char* Source) {
        Flash(Source);
        DefaultBlock();
        Line->PressResetButton();
    }
    // Lets chip time pass and the window's timer show it.
    void Pass(int Milliseconds, frmSimulatedChip& Window) {
        Clock->SleepMicroseconds(Milliseconds * 1000);
        QMetaObject::invokeMethod(Window.tmrRefresh, "timeout", Qt::DirectConnection);
    }
    // A person clicks an option on its round button, at its left end: the
    // rest of a wide row is not the button's to take.
    static void Choose(QRadioButton* Option) {
        QTest::mouseClick(Option, Qt::LeftButton, {}, QPoint(6, Option->height() / 2));
    }
    frmSimulatedChip& Open() {
        frmSimulatedChip& Window = Global<frmSimulatedChip>::Get();
        Window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&Window));
        return Window;
    }
};

TEST_F(SimulatedChipWindowTest, TheDownloadersIOPortsMenuOpensTheWindow) {
    frmDownloader::SetSimulatedChipWindow([] { Global<frmSimulatedChip>::Get().show(); });
    {
        frmDownloader Downloader;
        ASSERT_TRUE(Downloader.mnuSimulatedChip->isVisible());
        EXPECT_EQ(Downloader.mnuSimulatedChip->text(), QStringLiteral("&Simulated Chip"));
        EXPECT_TRUE(Downloader.mnuDownloadPort->actions().contains(Downloader.mnuSimulatedChip));
        Downloader.mnuSimulatedChip->trigger();
        ASSERT_TRUE(Global<frmSimulatedChip>::IsLoaded());
        EXPECT_TRUE(Global<frmSimulatedChip>::Get().isVisible());
        EXPECT_EQ(Global<frmSimulatedChip>::Get().windowTitle(), QStringLiteral("Simulated Chip"));
    }
    frmDownloader::SetSimulatedChipWindow({});
    frmDownloader Without;
    EXPECT_FALSE(Without.mnuSimulatedChip->isVisible());
}

TEST_F(SimulatedChipWindowTest, TheLedsBlinkAsTheProgramDrivesThem) {
    frmSimulatedChip& Window = Open();
    RunProgram(ButtonAndBlink);
    Pass(50, Window);
    EXPECT_EQ(Window.lblProgram->text(), QStringLiteral("Running"));
    EXPECT_TRUE(Window.ledRed->Lit());
    // What a person sees at the lamp's centre is the lit red.
    const QImage Lamp = Window.ledRed->grab().toImage();
    const QColor Centre = Lamp.pixelColor(Lamp.width() / 2, Lamp.height() / 2);
    EXPECT_GT(Centre.red(), 200);
    EXPECT_LT(Centre.green(), 80);
    Pass(100, Window);
    EXPECT_FALSE(Window.ledRed->Lit());
    const QImage Dark = Window.ledRed->grab().toImage();
    EXPECT_LT(Dark.pixelColor(Dark.width() / 2, Dark.height() / 2).red(), 100);
    Pass(100, Window);
    EXPECT_TRUE(Window.ledRed->Lit());
}

TEST_F(SimulatedChipWindowTest, ASwitchThrownOnAPinReachesTheProgram) {
    frmSimulatedChip& Window = Open();
    RunProgram(ButtonAndBlink);
    Pass(50, Window);
    EXPECT_FALSE(Window.ledGreen->Lit());
    Window.cboPin->setFocus();
    Window.cboPin->setCurrentIndex(Window.cboPin->findText(QStringLiteral("Pin 10")));
    ASSERT_TRUE(Window.optNotDriven->isChecked());
    Choose(Window.optDriveHigh);
    EXPECT_TRUE(Line->Chip().Board.Driven(10));
    Pass(150, Window);
    EXPECT_TRUE(Window.ledGreen->Lit());
    Choose(Window.optDriveLow);
    Pass(150, Window);
    EXPECT_FALSE(Window.ledGreen->Lit());
    Choose(Window.optNotDriven);
    EXPECT_FALSE(Line->Chip().Board.Driven(10));
    // Another pin shows its own drive, and choosing it drives nothing.
    Window.cboPin->setCurrentIndex(Window.cboPin->findText(QStringLiteral("Pin 5")));
    EXPECT_TRUE(Window.optNotDriven->isChecked());
    EXPECT_FALSE(Line->Chip().Board.Driven(5));
}

TEST_F(SimulatedChipWindowTest, ThePinsOfTheChipShowTheirStatesInTheDrawing) {
    frmSimulatedChip& Window = Open();
    RunProgram(ButtonAndBlink);
    // Pin 5 (port C bit 7) starts as an output driven high.
    Line->Chip().InternalEeprom[3] = 0x80;
    Line->Chip().InternalEeprom[4] = 0x80;
    Line->PressResetButton();
    Pass(50, Window);
    ASSERT_NE(Window.picChip, nullptr);
    EXPECT_EQ(Window.picChip->PinCount(), 24);
    const QImage Picture = Window.picChip->grab().toImage();
    // Whether the marker beside a pin's stub shows Colour.
    const auto MarkerShows = [&](int Pin, const QColor& Colour) {
        const QPoint Stub = Window.picChip->PinPosition(Pin);
        const bool Left = Pin <= Window.picChip->PinsPerSide();
        for (int Step = 1; Step < 30; ++Step) {
            const QPoint At(Stub.x() + (Left ? -Step : Step), Stub.y());
            if (Picture.valid(At) && Picture.pixelColor(At) == Colour) {
                return true;
            }
        }
        return false;
    };
    const QColor High = SimulatedChipDrawing::StateColour(Line->Chip().Board, 5);
    const QColor Input = SimulatedChipDrawing::StateColour(Line->Chip().Board, 10);
    EXPECT_EQ(Line->Chip().Board.PinState(5), MachinePinState::OutputHigh);
    EXPECT_NE(High, Input);
    EXPECT_TRUE(MarkerShows(5, High));
    EXPECT_FALSE(MarkerShows(5, Input));
    EXPECT_TRUE(MarkerShows(10, Input));
    EXPECT_FALSE(MarkerShows(10, High));
}

TEST_F(SimulatedChipWindowTest, TheProgramLineSaysWhenTheMonitorHasTheChipOrTheProgramFailed) {
    frmSimulatedChip& Window = Open();
    Pass(10, Window);
    EXPECT_EQ(Window.lblProgram->text(),
              QStringLiteral("No program running: download one and run it"));
    RunProgram(ButtonAndBlink);
    Line->SetDTREnable(true);
    Line->SetDTREnable(false);
    Pass(10, Window);
    EXPECT_EQ(Window.lblProgram->text(), QStringLiteral("Stopped: the monitor has the chip"));
    RunProgram("Main:\n    enter 0\n    pushw 1\n    pushw 0\n    div.l\n    end\n");
    Pass(10, Window);
    EXPECT_TRUE(Window.lblProgram->text().contains(QStringLiteral("Division by zero")));
    RunProgram("Main:\n    enter 0\n    end\n");
    Pass(10, Window);
    EXPECT_EQ(Window.lblProgram->text(), QStringLiteral("The program has ended"));
}

}  // namespace
