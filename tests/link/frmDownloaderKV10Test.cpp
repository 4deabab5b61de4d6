#include <QProgressBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include "chip/ConfigurationBytes.h"
#include "chip/PrfImageBuilder.h"
#include "frame/GlobalData.h"
#include "frame/frmSplash.h"
#include "link/DownloaderWindowFixture.h"
#include "link/KV10Fixture.h"
#include "link/PPort.h"
#include "link/ParallelDownloader.h"
#include "link/frmDownloadPortParallel.h"
#include "link/frmDownloader.h"
#include "platform/Global.h"
#include "platform/ParallelDevices.h"
#include "project/ProjectType.h"
#include "sim/SimulatedParallelPort.h"

namespace {

// The downloader window as a KV-10 user meets it: the chip model KV-10 and
// the simulated board (LPT 99) as download port, a program image with its
// preference file beside it. A yield of the programmer's waits takes 100 us
// of virtual time; the window's own timer is its watchdog, in real time.
class KV10WindowTest : public DownloaderWindowFixture {
  protected:
    void SetUp() override {
        DownloaderWindowFixture::SetUp();
        MakeGoodInstallation();
        SetSetting(QStringLiteral("Chip_Type"), QStringLiteral("KV10"));
        StoreParallelPort(ParallelDevices::SimulatedBoardPort, QStringLiteral("888"), false);
        Board = std::make_shared<SimulatedParallelPort>();
        SimulatedParallelPort::InstallAsSimulatedBoard(Board);
        Clock->DoEventsMicroseconds = 100;
    }
    void TearDown() override {
        Global<frmDownloadPortParallel>::Unload();
        UnloadWindows();
        DownloadPortExecutive::ClosePorts();
        SimulatedParallelPort::UninstallSimulatedBoard();
        PPort::SetPortNumber(1);
        GlobalData::CodeSize = 0;
        GlobalData::PersistentSize = 0;
        DownloaderWindowFixture::TearDown();
    }
    // The window as start-up leaves it, with the progress bar's values kept.
    frmDownloader& Load() {
        frmDownloader& Window = DownloaderWindowFixture::Load();
        QObject::connect(Window.ProgressBar1, &QProgressBar::valueChanged,
                         [this](int Value) { ProgressValues << Value; });
        return Window;
    }
    // DownloadProgram as the batch and the editor call it; its Success.
    static bool DownloadProgram(frmDownloader& Window) {
        bool Success = true;
        Window.DownloadProgram(Success);
        return Success;
    }
    // An image of Size bytes (byte n is n * 5 + 1) with a KV-10 preference
    // file beside it; record 609 holds CodeLocation. The window has it open.
    QByteArray Open(frmDownloader& Window, int Size, int CodeLocation = 0) {
        QByteArray Image(Size, '\0');
        for (int Address = 0; Address < Size; ++Address) {
            Image[Address] = static_cast<char>(Address * 5 + 1);
        }
        PrfImageBuilder Prf;
        Prf.AllPins(kvInputTristate)
            .DefaultValues(1)
            .Value(609, CodeLocation)
            .Pin(10, kvOutputHigh);
        EXPECT_TRUE(Prf.Save(TempPath() + QStringLiteral("/blink.prf")));
        ImageName = WriteFile(QStringLiteral("blink.kvb"), Image);
        int32_t FileSizeKVB = 0;
        Window.OpenKVBfile(ImageName, FileSizeKVB);
        EXPECT_EQ(FileSizeKVB, Size);
        return Image;
    }
    QByteArray ExpectedBlock() const { return KV10Check::ExpectedWrittenBlock(); }
    QByteArray WrittenBlock() const { return KV10Check::WrittenBlock(Board->Board()); }
    QByteArray Spi(int Size) const { return KV10Check::Spi(Board->Board(), 0, Size); }
    QStringList BoxTexts() const { return KV10Check::BoxTexts(*Boxes); }
    static bool CommandsEnabled(frmDownloader& Window) {
        for (const char* Key : {"Stop", "Run", "Reset", "Download"}) {
            if (!Window.ToolBarButton(QString::fromLatin1(Key))->isEnabled()) {
                return false;
            }
        }
        return true;
    }

    std::shared_ptr<SimulatedParallelPort> Board;
    QString ImageName;
    QList<int> ProgressValues;
};

TEST_F(KV10WindowTest, DownloadButtonProgramsTheBoardAndMovesTheProgressBar) {
    frmDownloader& Window = Load();
    ASSERT_EQ(GlobalData::ChipType, 1);
    ASSERT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    const QByteArray Image = Open(Window, 100);
    Click(Window, QStringLiteral("Download"));
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(Spi(100), Image);
    EXPECT_EQ(Spi(128).mid(100), QByteArray(28, ' '));
    EXPECT_EQ(WrittenBlock(), ExpectedBlock());
    EXPECT_EQ(Board->Board().Chip(), SimulatedKV10Board::ChipState::InReset);
    EXPECT_EQ(Window.ProgressBar1->maximum(), 100);
    EXPECT_EQ(ProgressValues, (QList<int>{1, 33, 65, 97, 0}));
    EXPECT_EQ(Panel(Window, 1), QStringLiteral("Power is ON"));
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RESET"));
    EXPECT_EQ(Panel(Window, 4), QStringLiteral(" 100 bytes"));
    EXPECT_EQ(Window.DebugWindowText(),
              QStringLiteral("\r\n*** Opening file: ") + ImageName +
                  QStringLiteral("\r\n\r\n*** Downloading File\r\nLocked, Status: 0C\r\n"
                                 "*** Finished Downloading\r\n"));
    EXPECT_TRUE(CommandsEnabled(Window));
    EXPECT_FALSE(Board->Claimed()) << "the port is given back after the download";
}

TEST_F(KV10WindowTest, TheWindowsTimerIsTheWatchdogOfTheEepromWaits) {
    frmDownloader& Window = Load();
    EXPECT_FALSE(Window.tmrEEPROMtimeout->isActive()) << "off at design";
    Open(Window, 40);
    Click(Window, QStringLiteral("Download"));
    // The lock's wait leaves it running at 500 ms; the next user restarts it.
    EXPECT_TRUE(Window.tmrEEPROMtimeout->isActive());
    EXPECT_EQ(Window.tmrEEPROMtimeout->interval(), 500);
    ASSERT_TRUE(QMetaObject::invokeMethod(Window.tmrEEPROMtimeout, "timeout"));
    EXPECT_TRUE(ParallelDownloader::GetEEPROMTimedOut());
    EXPECT_FALSE(Window.tmrEEPROMtimeout->isActive()) << "it stops itself";
}

TEST_F(KV10WindowTest, AnEepromThatStaysBusyIsCaughtByTheWindowsTimer) {
    frmDownloader& Window = Load();
    Board->Board().SpiEeprom.WriteCycleNs = INT64_MAX / 4;
    Open(Window, 40);
    Click(Window, QStringLiteral("Download"));
    EXPECT_EQ(BoxTexts(), (QStringList{QStringLiteral("SPI EEPROM not ready | EEPROM Error"),
                                       QStringLiteral("Bad verify at  0 | Bad Verify")}));
    EXPECT_TRUE(Window.DebugWindowText().endsWith(QStringLiteral("*** Finished Downloading\r\n")));
    EXPECT_EQ(WrittenBlock(), ExpectedBlock());
}

TEST_F(KV10WindowTest, RunLetsTheChipGoAndThePanelsSayRunning) {
    frmDownloader& Window = Load();
    Click(Window, QStringLiteral("Run"));
    EXPECT_EQ(Board->Board().Chip(), SimulatedKV10Board::ChipState::Running);
    EXPECT_EQ(Board->Board().ProgramStarts, 1);
    EXPECT_EQ(Board->Data(), 0x9F);
    EXPECT_EQ(Board->Control(), 4);
    EXPECT_EQ(Panel(Window, 1), QStringLiteral("Power is ON"));
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RUNNING"));
    EXPECT_EQ(BoxTexts(), QStringList());
}

TEST_F(KV10WindowTest, StopTakesTheBoardsPowerAway) {
    frmDownloader& Window = Load();
    Click(Window, QStringLiteral("Run"));
    Click(Window, QStringLiteral("Stop"));
    EXPECT_FALSE(Board->Board().Powered());
    EXPECT_EQ(Board->Data(), 0);
    EXPECT_EQ(Board->Control(), 11);
    EXPECT_EQ(Panel(Window, 1), QStringLiteral("Power is OFF"));
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RESET"));
    EXPECT_TRUE(CommandsEnabled(Window));
}

TEST_F(KV10WindowTest, ResetHoldsTheChipWithItsPowerOn) {
    frmDownloader& Window = Load();
    Click(Window, QStringLiteral("Stop"));
    Click(Window, QStringLiteral("Reset"));
    EXPECT_TRUE(Board->Board().Powered());
    EXPECT_EQ(Board->Board().Chip(), SimulatedKV10Board::ChipState::InReset);
    EXPECT_EQ(Board->Data(), 0x8F);
    EXPECT_EQ(Panel(Window, 1), QStringLiteral("Power is ON"));
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RESET"));
}

TEST_F(KV10WindowTest, DownloadAndExecuteProgramsTheBoardAndStartsTheProgram) {
    frmDownloader& Window = Load();
    const QByteArray Image = Open(Window, 300);
    Window.DownloadAndExecute();
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(Spi(300), Image);
    EXPECT_EQ(Board->Board().Chip(), SimulatedKV10Board::ChipState::Running);
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RUNNING"));
}

TEST_F(KV10WindowTest, CodeTooLargeForTheInternalEepromFailsWithTheDownloadsSecondBox) {
    frmDownloader& Window = Load();
    GlobalData::CodeSize = 500;
    Open(Window, 500, 1);
    EXPECT_FALSE(DownloadProgram(Window));
    EXPECT_EQ(BoxTexts(),
              (QStringList{QStringLiteral("Code larger than 512 bytes | Code Size Error"),
                           QStringLiteral("Download error:\n | Download Error")}));
    EXPECT_TRUE(CommandsEnabled(Window));
    EXPECT_EQ(Board->Board().Chip(), SimulatedKV10Board::ChipState::Programming);
}

TEST_F(KV10WindowTest, ARunTimeErrorOfTheDownloadIsToldByTheWindowsTrap) {
    frmDownloader& Window = Load();
    GlobalData::CodeSize = 100;
    GlobalData::PersistentSize = 300;
    Open(Window, 100, 1);
    EXPECT_FALSE(DownloadProgram(Window));
    EXPECT_EQ(BoxTexts(),
              QStringList({QStringLiteral("Download error:\nOverflow | Download Error")}));
    EXPECT_TRUE(Board->Board().InternalWrites.empty());
    EXPECT_FALSE(Board->Claimed());
}

TEST_F(KV10WindowTest, APortThatCannotBeHadIsToldByEachCommandInItsOwnWay) {
    frmDownloader& Window = Load();
    Open(Window, 40);
    Board->RefuseClaim = QStringLiteral("In use by another driver: simulated board");
    Click(Window, QStringLiteral("Download"));
    Click(Window, QStringLiteral("Run"));
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RUNNING")) << "the panels say what was asked";
    Click(Window, QStringLiteral("Stop"));
    Click(Window, QStringLiteral("Reset"));
    EXPECT_EQ(
        BoxTexts(),
        (QStringList{
            QStringLiteral(
                "Download error:\nIn use by another driver: simulated board | Download Error"),
            QStringLiteral("In use by another driver: simulated board | Download Port Error"),
            QStringLiteral("In use by another driver: simulated board | Download Port Error"),
            QStringLiteral("70, In use by another driver: simulated board | Reset Error")}));
    EXPECT_EQ(Board->Writes, 0) << "nothing reached the board";
    EXPECT_TRUE(CommandsEnabled(Window));
}

TEST_F(KV10WindowTest, ASerialPortIsClosedForTheKV10AndTheCommandsSaySo) {
    StoreSerialPort(SerialDevices::SimulatedChipPort);
    frmDownloader& Window = Load();
    Click(Window, QStringLiteral("Run"));
    EXPECT_EQ(BoxTexts(),
              QStringList({QStringLiteral("Download port is not open | Download Port Error")}));
    EXPECT_EQ(Board->Writes, 0);
}

TEST_F(KV10WindowTest, TheParallelPortDialogOffersTheSimulatedBoardAsLpt99) {
    StoreParallelPort(1, QStringLiteral("888"), false);
    Load();
    frmDownloadPortParallel& Dialog = Global<frmDownloadPortParallel>::Get();
    const int Entry =
        Dialog.cboParallelPortNumber->findText(QStringLiteral("99 - simulated board"));
    ASSERT_EQ(Entry, 16) << "behind LPT 1 to 16";
    EXPECT_EQ(Dialog.cboParallelPortNumber->currentIndex(), 0);
    Dialog.cboParallelPortNumber->setCurrentIndex(Entry);
    QTest::mouseClick(Dialog.cmdOpenPort, Qt::LeftButton);
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("99"));
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    Global<frmDownloadPortParallel>::Unload();
    EXPECT_EQ(Global<frmDownloadPortParallel>::Get().cboParallelPortNumber->currentIndex(), Entry);
}

TEST_F(KV10WindowTest, AReservedSimulatedBoardStaysClaimedBetweenCommands) {
    StoreParallelPort(ParallelDevices::SimulatedBoardPort, QStringLiteral("888"), true);
    // The reservation the program makes, not the fixture's stand-in.
    DownloadPortExecutive::SetLptReservation(nullptr);
    frmDownloader& Window = Load();
    ASSERT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_TRUE(Board->Claimed());
    Click(Window, QStringLiteral("Run"));
    Click(Window, QStringLiteral("Reset"));
    EXPECT_TRUE(Board->Claimed());
    EXPECT_EQ(Board->Claims, 1);
    DownloadPortExecutive::ClosePorts();
    EXPECT_FALSE(Board->Claimed());
}

}  // namespace
