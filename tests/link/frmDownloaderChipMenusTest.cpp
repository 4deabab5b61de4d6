#include <QApplication>
#include <QTest>

#include "chip/frmProcessorOptions.h"
#include "frame/RegistryCentral.h"
#include "link/DownloaderWindowFixture.h"
#include "link/frmTestProbe.h"
#include "monitor/MonitorPortExecutive.h"
#include "monitor/frmDiagnosticATN.h"
#include "support/ModalDialogWatcher.h"
#include "support/QtPrinters.h"

namespace {

// The downloader's Processor menu and its diagnostics, as a user reaches
// them: the menu entry, then clicks in the modal dialog that comes up.
class DownloaderChipMenusTest : public DownloaderWindowFixture {
  protected:
    void SetUp() override {
        DownloaderWindowFixture::SetUp();
        MakeGoodInstallation();
        ClearPendingQuit();
    }
    void TearDown() override {
        Global<frmTestProbe>::Unload();
        DownloaderWindowFixture::TearDown();
    }
    static void Click(QWidget& Dialog, const char* Name) {
        auto* Button = Dialog.findChild<QAbstractButton*>(QString::fromLatin1(Name));
        ASSERT_NE(Button, nullptr) << Name;
        QTest::mouseClick(Button, Qt::LeftButton);
    }
    // Chooses the model in the Processor dialog and leaves by Button.
    QStringList ChooseProcessor(frmDownloader& Window, const char* Option, const char* Button) {
        ModalDialogWatcher Person([&](QWidget& Dialog) {
            OwnedByDownloader = Dialog.parentWidget() == &Window;
            Click(Dialog, Option);
            Click(Dialog, Button);
        });
        Window.mnuProcessorOptions->trigger();
        return Person.Seen;
    }
    QStringList BoxTexts() const { return Boxes->Texts(); }
    bool OwnedByDownloader = false;
};

TEST_F(DownloaderChipMenusTest, ChoosingTheKv10StoresItAndDisablesRescueAndAtnDiagnostic) {
    frmDownloader& Window = Load();
    ASSERT_TRUE(Window.mnuRescue->isEnabled());
    EXPECT_EQ(ChooseProcessor(Window, "optKV10", "cmdOK"),
              QStringList{QStringLiteral("frmProcessorOptions")});
    EXPECT_TRUE(OwnedByDownloader);
    EXPECT_FALSE(Global<frmProcessorOptions>::IsLoaded()) << "OK unloads the dialog";
    EXPECT_EQ(GlobalData::ChipType, 1);
    EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV10"));
    EXPECT_FALSE(Window.mnuRescue->isEnabled());
    EXPECT_FALSE(Window.mnuDiagnosticATN->isEnabled());
    ChooseProcessor(Window, "optKV30", "cmdOK");
    EXPECT_EQ(GlobalData::ChipType, 3);
    EXPECT_TRUE(Window.mnuRescue->isEnabled());
    EXPECT_TRUE(Window.mnuDiagnosticATN->isEnabled());
}

TEST_F(DownloaderChipMenusTest, CancelLeavesTheSettingAndTheMenusAlone) {
    SetSetting(QStringLiteral("Chip_Type"), QStringLiteral("KV10"));
    frmDownloader& Window = Load();
    ChooseProcessor(Window, "optKV20", "cmdCancel");
    EXPECT_EQ(GlobalData::ChipType, 1);
    EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV10"));
    EXPECT_FALSE(Window.mnuRescue->isEnabled());
    EXPECT_FALSE(Window.mnuDiagnosticATN->isEnabled());
}

TEST_F(DownloaderChipMenusTest, ASerialPortIsClosedWhenTheKv10IsChosenAndKeptForTheKv30) {
    StoreSerialPort(SerialDevices::SimulatedChipPort);
    frmDownloader& Window = Load();
    ASSERT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    ChooseProcessor(Window, "optKV30", "cmdOK");
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen()) << "a serial chip keeps its port";
    ChooseProcessor(Window, "optKV10", "cmdOK");
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Setting(QStringLiteral("Port_Mode")), QStringLiteral("Serial"))
        << "the port stays saved as it was";
    EXPECT_EQ(BoxTexts(), QStringList());
}

TEST_F(DownloaderChipMenusTest, TheAtnDiagnosticOfAKv10IsRefused) {
    frmDownloader& Window = Load();
    GlobalData::ChipType = 1;
    ModalDialogWatcher Person([](QWidget& Dialog) { Dialog.close(); });
    Window.mnuDiagnosticATN->trigger();
    EXPECT_EQ(
        BoxTexts(),
        QStringList{QStringLiteral("Processor Type Error|ATN diagnostic requires KV-20 or KV-30")});
    EXPECT_EQ(Person.Seen, QStringList());
}

TEST_F(DownloaderChipMenusTest, TheAtnDiagnosticShowsThePictureOfTheChipModelAndItsSteps) {
    frmDownloader& Window = Load();
    // What the start-up reported is not the diagnostic's.
    ProbeErrors.clear();
    for (const int Chip : {2, 3}) {
        GlobalData::ChipType = Chip;
        bool Kv20Shown = false;
        bool Kv30Shown = false;
        bool Owned = false;
        QString Steps;
        ModalDialogWatcher Person([&](QWidget& Dialog) {
            auto& Diagnostic = static_cast<frmDiagnosticATN&>(Dialog);
            Kv20Shown = Diagnostic.picKV20->isVisible();
            Kv30Shown = Diagnostic.picKV30->isVisible();
            Owned = Dialog.parentWidget() == &Window;
            Steps = Diagnostic.lblProcedure->text();
            Click(Dialog, "cmdOK");
        });
        Window.mnuDiagnosticATN->trigger();
        EXPECT_EQ(Person.Seen, QStringList{QStringLiteral("frmDiagnosticATN")});
        EXPECT_EQ(Kv20Shown, Chip == 2);
        EXPECT_EQ(Kv30Shown, Chip == 3);
        EXPECT_TRUE(Owned);
        EXPECT_EQ(Steps, QStringLiteral("1.  Verify monitor port is open, and is the same\n"
                                        "      as the downloader port.\n"
                                        "2.  Connect voltmeter between ATN and ground.\n"
                                        "3.  Set ATN high (see below).\n"
                                        "4.  Verify voltage is +3 V to +15 V.\n"
                                        "5.  Set ATN low (see below).\n"
                                        "6.  Verify voltage is 0 V to -15 V."));
        EXPECT_FALSE(Global<frmDiagnosticATN>::IsLoaded());
    }
    EXPECT_EQ(ProbeErrors, QStringList());
}

TEST_F(DownloaderChipMenusTest, TheAtnDiagnosticForAnotherChipShowsNoPictureAndReports) {
    GlobalData::ChipType = 1;
    frmDiagnosticATN& Diagnostic = Global<frmDiagnosticATN>::Get();
    Diagnostic.show();
    EXPECT_FALSE(Diagnostic.picKV20->isVisible());
    EXPECT_FALSE(Diagnostic.picKV30->isVisible());
    EXPECT_EQ(ProbeErrors, QStringList{QStringLiteral("Error_1 in frmDiagnosticATN.Form_Load")});
    Global<frmDiagnosticATN>::Unload();
}

TEST_F(DownloaderChipMenusTest, WithTheMonitorPortClosedRaiseShowsTheBoxAndNoState) {
    frmDownloader& Window = Load();
    ASSERT_FALSE(MonitorPortExecutive::IsMonitorPortOpen());
    QString State = QStringLiteral("<not seen>");
    ModalDialogWatcher Person([&](QWidget& Dialog) {
        Click(Dialog, "cmdRaiseATN");
        State = static_cast<frmDiagnosticATN&>(Dialog).lblStateATN->text();
        Click(Dialog, "cmdOK");
    });
    Window.mnuDiagnosticATN->trigger();
    EXPECT_EQ(BoxTexts(), QStringList{QStringLiteral("Port Error|Monitor port must be open")});
    EXPECT_EQ(State, QString());
}

TEST_F(DownloaderChipMenusTest, RaiseAndLowerMoveTheAtnLineOfTheOpenMonitorPort) {
    StoreSimulatedChipForBothPorts();
    frmDownloader& Window = Load();
    ASSERT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
    QStringList States;
    QList<bool> Levels;
    ModalDialogWatcher Person([&](QWidget& Dialog) {
        QLabel* State = static_cast<frmDiagnosticATN&>(Dialog).lblStateATN;
        States << State->text();
        Click(Dialog, "cmdRaiseATN");
        States << State->text();
        Levels << Line->Chip().AtnLevel();
        Click(Dialog, "cmdLowerATN");
        States << State->text();
        Levels << Line->Chip().AtnLevel();
        Click(Dialog, "cmdOK");
    });
    Window.mnuDiagnosticATN->trigger();
    EXPECT_EQ(States,
              (QStringList{QStringLiteral("Low"), QStringLiteral("High"), QStringLiteral("Low")}));
    EXPECT_EQ(Levels, (QList<bool>{true, false}));
    EXPECT_EQ(BoxTexts(), QStringList());
}

TEST_F(DownloaderChipMenusTest, ClosingTheAtnDiagnosticWithAtnHighLeavesTheLineLow) {
    StoreSimulatedChipForBothPorts();
    frmDownloader& Window = Load();
    for (const char* Leave : {"cmdOK", "close"}) {
        bool HighWhileShown = false;
        ModalDialogWatcher Person([&](QWidget& Dialog) {
            Click(Dialog, "cmdRaiseATN");
            HighWhileShown = Line->Chip().AtnLevel();
            if (QString::fromLatin1(Leave) == QStringLiteral("close")) {
                Dialog.close();
            } else {
                Click(Dialog, Leave);
            }
        });
        Window.mnuDiagnosticATN->trigger();
        EXPECT_TRUE(HighWhileShown) << Leave;
        EXPECT_FALSE(Line->Chip().AtnLevel()) << Leave;
        EXPECT_EQ(MonitorPortExecutive::GetAtnState(), 2) << Leave;
    }
    EXPECT_TRUE(MonitorPortExecutive::IsMonitorPortOpen()) << "the port stays open";
}

// ---- The probe log ---------------------------------------------------------

TEST_F(DownloaderChipMenusTest, TheProbeLogListsMessagesPassesAndFailsAndClearEmptiesIt) {
    frmTestProbe& Probe = Global<frmTestProbe>::Get();
    Probe.show();
    Probe.Message(QStringLiteral("PRF file open: blink.prf"));
    Probe.Pass(3);
    Probe.Fail(12);
    ASSERT_EQ(Probe.lstMessageLog->count(), 3);
    EXPECT_EQ(Probe.lstMessageLog->item(0)->text(), QStringLiteral("PRF file open: blink.prf"));
    EXPECT_EQ(Probe.lstMessageLog->item(1)->text(), QStringLiteral("pass 3"));
    EXPECT_EQ(Probe.lstMessageLog->item(2)->text(), QStringLiteral("*** FAIL *** 12"));
    EXPECT_EQ(BoxTexts(), QStringList());
    QTest::mouseClick(Probe.cmdClear, Qt::LeftButton);
    EXPECT_EQ(Probe.lstMessageLog->count(), 0);
    QTest::mouseClick(Probe.cmdTest, Qt::LeftButton);
    EXPECT_EQ(Probe.lstMessageLog->count(), 0);
}

TEST_F(DownloaderChipMenusTest, AfterYesInTheErrorBoxLaterErrorsOnlyGoToTheList) {
    frmTestProbe& Probe = Global<frmTestProbe>::Get();
    EXPECT_FALSE(Probe.CancelErrorBoxes);
    Boxes->QueueAnswer(vbNo);
    Probe.ErrorMessage(QStringLiteral("Error_1 in One"));
    Boxes->QueueAnswer(vbYes);
    Probe.ErrorMessage(QStringLiteral("Error_1 in Two"));
    Probe.ErrorMessage(QStringLiteral("Error_1 in Three"));
    EXPECT_EQ(BoxTexts(), (QStringList{QStringLiteral("Internal Error Detected|Error_1 in One\n\n"
                                                      "Cancel future error message boxes?"),
                                       QStringLiteral("Internal Error Detected|Error_1 in Two\n\n"
                                                      "Cancel future error message boxes?")}));
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::YesNo);
    EXPECT_TRUE(Probe.CancelErrorBoxes);
    ASSERT_EQ(Probe.lstMessageLog->count(), 3);
    EXPECT_EQ(Probe.lstMessageLog->item(2)->text(), QStringLiteral("Error_1 in Three"));
}

}  // namespace
