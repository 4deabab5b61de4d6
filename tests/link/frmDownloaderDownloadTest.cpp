#include <QFile>
#include <QProgressBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include "chip/ConfigurationBytes.h"
#include "chip/PrfImageBuilder.h"
#include "frame/GlobalData.h"
#include "frame/TwipsConversion.h"
#include "frame/frmSplash.h"
#include "link/DownloadPortExecutive.h"
#include "link/DownloaderWindowFixture.h"
#include "link/XSerialDownloader.h"
#include "link/frmDownloader.h"
#include "monitor/MonitorPortExecutive.h"
#include "platform/Global.h"
#include "project/ProjectType.h"
#include "support/ScriptedFileDialogService.h"

namespace {

// The downloader window as a user meets it after start-up: a KV-20 on the
// simulated chip (port 99) as download port, the monitor port open on the
// same line, a program image with its preference file beside it.
class DownloadWindowTest : public DownloaderWindowFixture {
  protected:
    void SetUp() override {
        DownloaderWindowFixture::SetUp();
        StoreSimulatedChipForBothPorts();
        auto Dialogs = std::make_unique<ScriptedFileDialogService>();
        FileDialogs = Dialogs.get();
        FileDialogService::Install(std::move(Dialogs));
        XSerialDownloader::ResetState();
    }
    void TearDown() override {
        UnloadWindows();
        XSerialDownloader::ResetState();
        FileDialogService::Install(std::make_unique<CancellingFileDialogService>());
        DownloaderWindowFixture::TearDown();
    }
    // A program image of Size bytes, each byte its address times 7 plus 3,
    // with a KV-20 preference file of some output pins beside it.
    QString WriteProgram(int Size, const QString& Name = QStringLiteral("blink")) {
        QByteArray Image(Size, '\0');
        for (int Address = 0; Address < Size; ++Address) {
            Image[Address] = static_cast<char>(Address * 7 + 3);
        }
        PrfImageBuilder Prf;
        Prf.AllPins(kvInputTristate).DefaultValues(2);
        Prf.Pin(20, kvOutputHigh).Pin(19, kvOutputLow).Pin(12, kvInputPullup);
        EXPECT_TRUE(Prf.Save(TempPath() + QLatin1Char('/') + Name + QStringLiteral(".prf")));
        return WriteFile(Name + QStringLiteral(".kvb"), Image);
    }
    // The block the chip must hold for the preference file beside Image.
    ConfigurationBytes::ConfigurationBlock ExpectedBlock(const QString& Image) {
        const QString Saved = GlobalData::ProjectFilename;
        GlobalData::ProjectFilename = Image.left(Image.size() - 3) + QStringLiteral("kvp");
        ConfigurationBytes::RegisterArray Registers{};
        ConfigurationBytes::ConfigureKV20(Registers);
        GlobalData::ProjectFilename = Saved;
        return ConfigurationBytes::BlockKV20(Registers);
    }
    QByteArray External(int Size) const {
        const auto& Memory = Line->Chip().ExternalEeprom.Memory;
        return QByteArray(reinterpret_cast<const char*>(Memory.data()), Size);
    }
    QByteArray Internal(int Size) const {
        const auto& Memory = Line->Chip().InternalEeprom;
        return QByteArray(reinterpret_cast<const char*>(Memory.data()), Size);
    }
    QStringList BoxTexts() const {
        QStringList Texts;
        for (const auto& Box : Boxes->Boxes) {
            Texts << Box.Text;
        }
        return Texts;
    }

    ScriptedFileDialogService* FileDialogs = nullptr;
};

QByteArray AsBytes(const ConfigurationBytes::ConfigurationBlock& Block) {
    return QByteArray(reinterpret_cast<const char*>(Block.data()), static_cast<int>(Block.size()));
}

TEST_F(DownloadWindowTest, DownloadButtonPutsTheImageAndTheBlockIntoTheChipAndGivesTheMonitorBack) {
    const QString Image = WriteProgram(1000);
    frmDownloader& Window = Load();
    ASSERT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
    int32_t Size = 0;
    Window.OpenKVBfile(Image, Size);
    ASSERT_EQ(Size, 1000);
    QByteArray Expected(1000, '\0');
    for (int Address = 0; Address < 1000; ++Address) {
        Expected[Address] = static_cast<char>(Address * 7 + 3);
    }

    Click(Window, QStringLiteral("Download"));

    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(External(1000), Expected);
    EXPECT_EQ(Internal(32), AsBytes(ExpectedBlock(Image)));
    EXPECT_TRUE(Line->Chip().InMonitor()) << "a download leaves the chip halted";
    EXPECT_TRUE(Window.comMonitorPort->PortOpen()) << "the monitor port has the line again";
    EXPECT_FALSE(Window.KavlinControl1->PortOpen());
    EXPECT_FALSE(XSerialDownloader::GetMonitorWasOpen());
    EXPECT_TRUE(
        Window.DebugWindowText().startsWith(QStringLiteral("\r\n*** Opening file: ") + Image +
                                            QStringLiteral("\r\n\r\n*** Downloading File\r\n")))
        << Window.DebugWindowText().toStdString();
    EXPECT_TRUE(Window.DebugWindowText().endsWith(QStringLiteral("*** Finished Downloading\r\n")));
    EXPECT_EQ(Panel(Window, 1), QStringLiteral("Power is ON"));
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RESET"));
    EXPECT_EQ(Panel(Window, 4), QStringLiteral(" 1000 bytes"));
    EXPECT_EQ(Panel(Window, 5), Image);
    EXPECT_EQ(Window.ProgressBar1->maximum(), 1000);
    EXPECT_EQ(Window.ProgressBar1->value(), 0);
    EXPECT_EQ(GlobalData::ProjectFilename, TempPath() + QStringLiteral("/blink.kvp"));
}

TEST_F(DownloadWindowTest, TheConfigurationSentIsTheOneBesideTheImageWhateverProjectIsOpen) {
    const QString Image = WriteProgram(64, QStringLiteral("other"));
    PrfImageBuilder Elsewhere;
    Elsewhere.AllPins(kvOutputHigh).DefaultValues(2);
    ASSERT_TRUE(Elsewhere.Save(TempPath() + QStringLiteral("/open.prf")));
    GlobalData::ProjectFilename = TempPath() + QStringLiteral("/open.kvp");
    frmDownloader& Window = Load();
    int32_t Size = 0;
    Window.OpenKVBfile(Image, Size);
    Click(Window, QStringLiteral("Download"));
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(Internal(32), AsBytes(ExpectedBlock(Image)));
    EXPECT_NE(ExpectedBlock(Image), ExpectedBlock(TempPath() + QStringLiteral("/open.kvb")));
}

TEST_F(DownloadWindowTest, DownloadAndExecuteStartsTheChipAndTheMonitorShowsWhatItPrints) {
    const QString Image = WriteProgram(300);
    frmDownloader& Window = Load();
    int32_t Size = 0;
    Window.OpenKVBfile(Image, Size);
    const int ResetsBefore = Line->Chip().ResetCount;
    Window.DownloadAndExecute();
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_FALSE(Line->Chip().InMonitor()) << "the chip runs";
    EXPECT_EQ(Line->Chip().ResetCount, ResetsBefore + 1);
    EXPECT_EQ(Panel(Window, 1), QStringLiteral("Power is ON"));
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RUNNING"));
    ASSERT_TRUE(Window.comMonitorPort->PortOpen());
    Line->ProgramPrints("LED on\r");
    Clock->NowMs += 5;
    ASSERT_TRUE(QMetaObject::invokeMethod(Window.tmrSerialInputPoller, "timeout"));
    EXPECT_TRUE(Window.DebugWindowText().endsWith(QStringLiteral("LED on\r\n")));
}

TEST_F(DownloadWindowTest, ZeroByteImageShowsZeroBytesAndSendsNothing) {
    const QString Image = WriteProgram(0);
    frmDownloader& Window = Load();
    GlobalData::DownloadFilename = Image;
    Line->ForgetHostEvents();
    bool Success = true;
    Window.DownloadProgram(Success);
    EXPECT_EQ(Panel(Window, 4), QStringLiteral(" 0 bytes"));
    EXPECT_EQ(Line->SentBytes(), QByteArray());
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(Window.DebugWindowText(),
              QStringLiteral("\r\n*** Opening file: ") + Image + QStringLiteral("\r\n"));
    EXPECT_TRUE(Success) << "nothing decided the result: it stays as the caller had it";
}

TEST_F(DownloadWindowTest, EmptyDownloadFilenameSaysTheFileIsNotOpen) {
    frmDownloader& Window = Load();
    GlobalData::DownloadFilename.clear();
    Click(Window, QStringLiteral("Download"));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Download file not open"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("File Not Open"));
    EXPECT_EQ(Panel(Window, 1), QStringLiteral("Power is ON"));
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RESET"));
}

TEST_F(DownloadWindowTest, MissingImageIsNamedAndNothingElseHappens) {
    frmDownloader& Window = Load();
    GlobalData::DownloadFilename = TempPath() + QStringLiteral("/gone.kvb");
    Window.SetDebugWindowText(QStringLiteral("kept"));
    Click(Window, QStringLiteral("Download"));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("Missing download file:  ") + GlobalData::DownloadFilename);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Missing File"));
    EXPECT_EQ(Window.DebugWindowText(), QStringLiteral("kept"));
}

TEST_F(DownloadWindowTest, ChipThatDoesNotAnswerGivesBothBoxesAndTheMonitorStaysClosed) {
    const QString Image = WriteProgram(200);
    frmDownloader& Window = Load();
    int32_t Size = 0;
    Window.OpenKVBfile(Image, Size);
    Line->Chip().Faults.Silent = true;
    bool Success = true;
    Window.DownloadProgram(Success);
    EXPECT_FALSE(Success);
    ASSERT_EQ(Boxes->Boxes.size(), 2);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Error halting processor"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Halt Error"));
    EXPECT_EQ(Boxes->Boxes[1].Text, QStringLiteral("Download error:\n"));
    EXPECT_EQ(Boxes->Boxes[1].Title, QStringLiteral("Download Error"));
    EXPECT_TRUE(XSerialDownloader::GetMonitorWasOpen());
    EXPECT_FALSE(Window.comMonitorPort->PortOpen()) << "the monitor port stays closed";
    EXPECT_TRUE(Window.KavlinControl1->PortOpen()) << "the download port stays open";
    EXPECT_TRUE(Window.ToolBarButton(QStringLiteral("Download"))->isEnabled());
    // The chip answers again: the next download goes on from there and gives
    // the monitor port back.
    Line->Chip().Faults.Silent = false;
    Boxes->Boxes.clear();
    Window.DownloadProgram(Success);
    EXPECT_TRUE(Success);
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_TRUE(Window.comMonitorPort->PortOpen());
    EXPECT_FALSE(XSerialDownloader::GetMonitorWasOpen());
}

TEST_F(DownloadWindowTest, WatchSampleDoesNothingWhileAFailedTransferHoldsTheLine) {
    const QString Image = WriteProgram(100);
    frmDownloader& Window = Load();
    int32_t Size = 0;
    Window.OpenKVBfile(Image, Size);
    Line->Chip().Faults.Silent = true;
    bool Success = false;
    Window.DownloadProgram(Success);
    ASSERT_TRUE(XSerialDownloader::GetMonitorWasOpen());
    Line->Chip().Faults.Silent = false;
    Line->ForgetHostEvents();
    KavlinControl::ByteBlock Block(16, 0xAA);
    XSerialDownloader::ReadChipRam(0, 16, Block);
    EXPECT_EQ(Line->SentBytes(), QByteArray());
    EXPECT_EQ(Block, KavlinControl::ByteBlock(16, 0xAA));
}

TEST_F(DownloadWindowTest, WatchSampleReadsRamAndLetsTheProgramGoOn) {
    SetSetting(QStringLiteral("KV20port_Number"), QString());
    frmDownloader& Window = Load();
    ASSERT_FALSE(MonitorPortExecutive::IsMonitorPortOpen());
    for (int Address = 0; Address < 8; ++Address) {
        Line->Chip().Ram[0x100 + Address] = static_cast<uint8_t>(0x40 + Address);
    }
    KavlinControl::ByteBlock Block(0x108, 0);
    XSerialDownloader::ReadChipRam(0x100, 8, Block);
    for (int Address = 0; Address < 8; ++Address) {
        EXPECT_EQ(Block[0x100 + Address], 0x40 + Address) << Address;
    }
    EXPECT_FALSE(Line->Chip().InMonitor());
    EXPECT_FALSE(Window.KavlinControl1->PortOpen());
    EXPECT_EQ(BoxTexts(), QStringList());
}

TEST_F(DownloadWindowTest, StopAndResetSendTheSameBytesAndSetTheirPanels) {
    frmDownloader& Window = Load();
    Line->ForgetHostEvents();
    Click(Window, QStringLiteral("Stop"));
    const QByteArray Stop = Line->SentBytes();
    EXPECT_EQ(Panel(Window, 1), QStringLiteral("Power is OFF"));
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RESET"));
    Line->Chip().Faults = SimulatedChipFaults();
    Line->ForgetHostEvents();
    Click(Window, QStringLiteral("Reset"));
    const QByteArray Reset = Line->SentBytes();
    EXPECT_EQ(Panel(Window, 1), QStringLiteral("Power is ON"));
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RESET"));
    EXPECT_FALSE(Stop.isEmpty());
    EXPECT_EQ(Stop, Reset);
    EXPECT_TRUE(Line->Chip().InMonitor());
    EXPECT_EQ(BoxTexts(), QStringList());
}

TEST_F(DownloadWindowTest, StopOnAChipThatDoesNotAnswerTellsItAndStillSaysPowerOff) {
    frmDownloader& Window = Load();
    Line->Chip().Faults.Silent = true;
    Click(Window, QStringLiteral("Stop"));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Error halting processor"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Halt Error"));
    EXPECT_EQ(Panel(Window, 1), QStringLiteral("Power is OFF"));
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RESET"));
}

TEST_F(DownloadWindowTest, ExecuteKeyStartsTheChipAndSaysRunning) {
    frmDownloader& Window = Load();
    Window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Window));
    QTest::keyClick(Window.txtDebugWindow, Qt::Key_E, Qt::AltModifier);
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_FALSE(Line->Chip().InMonitor());
    EXPECT_EQ(Panel(Window, 2), QStringLiteral("RUNNING"));
}

TEST_F(DownloadWindowTest, WithThePortClosedDownloadAndExecuteShowsOneBoxAndDoesNotExecute) {
    SetSetting(QStringLiteral("Port_Number"), QString());
    SetSetting(QStringLiteral("Port_Mode"), QString());
    frmDownloader& Window = Load();
    ASSERT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    Line->ForgetHostEvents();
    Window.DownloadAndExecute();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Download port is not open"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Download Port Error"));
    EXPECT_EQ(Panel(Window, 2), QString());
    EXPECT_EQ(Line->SentBytes(), QByteArray());
}

TEST_F(DownloadWindowTest, AnotherChipModelClosesTheSerialPortAtTheNextCommand) {
    frmDownloader& Window = Load();
    ASSERT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    GlobalData::ChipType = 1;
    Click(Window, QStringLiteral("Run"));
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Download port is not open"));
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
}

TEST_F(DownloadWindowTest, EachOpeningReplacesTheWindowTextAndADownloadAddsToIt) {
    const QString First = WriteProgram(10, QStringLiteral("first"));
    const QString Second = WriteProgram(20, QStringLiteral("second"));
    frmDownloader& Window = Load();
    int32_t Size = 0;
    Window.OpenKVBfile(First, Size);
    EXPECT_EQ(Window.DebugWindowText(),
              QStringLiteral("\r\n*** Opening file: ") + First + QStringLiteral("\r\n"));
    Window.OpenKVBfile(Second, Size);
    EXPECT_EQ(Size, 20);
    EXPECT_EQ(Window.DebugWindowText(),
              QStringLiteral("\r\n*** Opening file: ") + Second + QStringLiteral("\r\n"));
    EXPECT_EQ(Panel(Window, 4), QStringLiteral(" 20 bytes"));
    Click(Window, QStringLiteral("Download"));
    EXPECT_EQ(Window.DebugWindowText(),
              QStringLiteral("\r\n*** Opening file: ") + Second +
                  QStringLiteral("\r\n\r\n*** Downloading File\r\n*** Finished Downloading\r\n"));
}

TEST_F(DownloadWindowTest, OpenDownloadMenuTakesTheChosenFileFromTheWorkPath) {
    const QString Image = WriteProgram(40);
    frmDownloader& Window = Load();
    FileDialogs->Answers.push_back(Image);
    Window.mnuOpenDownload->trigger();
    ASSERT_EQ(FileDialogs->Requests.size(), 1);
    EXPECT_EQ(FileDialogs->Requests[0].Filter,
              QStringLiteral("Kavlin Studio Binary Files (*.kvb) | *.kvb"));
    EXPECT_EQ(FileDialogs->Requests[0].FilterIndex, 1);
    EXPECT_FALSE(FileDialogs->Requests[0].Save);
    EXPECT_EQ(GlobalData::DownloadFilename, Image);
    EXPECT_EQ(Panel(Window, 4), QStringLiteral(" 40 bytes"));
    EXPECT_EQ(Panel(Window, 5), Image);
}

TEST_F(DownloadWindowTest, CancelledOpenDialogChangesNothing) {
    frmDownloader& Window = Load();
    GlobalData::DownloadFilename = QStringLiteral("/before.kvb");
    Window.SetDebugWindowText(QStringLiteral("kept"));
    int32_t Size = 99;
    Window.OpenKVBfile(QString(), Size);
    EXPECT_EQ(Size, 0);
    EXPECT_EQ(GlobalData::DownloadFilename, QStringLiteral("/before.kvb"));
    EXPECT_EQ(Window.DebugWindowText(), QStringLiteral("kept"));
}

TEST_F(DownloadWindowTest, CommandButtonsAreOffWhileTheDownloadRunsAndOpenStaysOn) {
    const QString Image = WriteProgram(128);
    frmDownloader& Window = Load();
    int32_t Size = 0;
    Window.OpenKVBfile(Image, Size);
    // Looked at while the transfer waits on the line, once the chip is
    // caught.
    QMap<QString, bool> During;
    Clock->OnSleep = [&](int64_t) {
        if (During.isEmpty() && Line->Chip().InMonitor()) {
            for (const char* Key :
                 {"Open", "Editor", "Stop", "Run", "Reset", "Download", "ClearSerial"}) {
                During[QString::fromLatin1(Key)] =
                    Window.ToolBarButton(QString::fromLatin1(Key))->isEnabled();
            }
            During[QStringLiteral("cursor")] = Window.cursor().shape() == Qt::WaitCursor;
        }
    };
    Click(Window, QStringLiteral("Download"));
    Clock->OnSleep = nullptr;
    ASSERT_FALSE(During.isEmpty());
    EXPECT_FALSE(During[QStringLiteral("Stop")]);
    EXPECT_FALSE(During[QStringLiteral("Run")]);
    EXPECT_FALSE(During[QStringLiteral("Reset")]);
    EXPECT_FALSE(During[QStringLiteral("Download")]);
    EXPECT_TRUE(During[QStringLiteral("Open")]);
    EXPECT_TRUE(During[QStringLiteral("Editor")]);
    EXPECT_TRUE(During[QStringLiteral("ClearSerial")]);
    EXPECT_TRUE(During[QStringLiteral("cursor")]);
    for (const char* Key : {"Stop", "Run", "Reset", "Download"}) {
        EXPECT_TRUE(Window.ToolBarButton(QString::fromLatin1(Key))->isEnabled()) << Key;
    }
    EXPECT_NE(Window.cursor().shape(), Qt::WaitCursor);
}

TEST_F(DownloadWindowTest, FullSizeImageMeetsTheUnreadLastBlockAndIsReportedAsAVerifyError) {
    // The read-back takes whole 128-byte blocks while one is left, each
    // block's answer still on its way when the next is asked for, and then
    // has a last look only when a shorter rest is left. An image of whole
    // blocks, as one that fills the EEPROM, never gets its last block read
    // back: the chip holds the image, and the user is told it does not.
    const QString Image = WriteProgram(32768);
    frmDownloader& Window = Load();
    int32_t Size = 0;
    Window.OpenKVBfile(Image, Size);
    bool Success = true;
    Window.DownloadProgram(Success);
    EXPECT_FALSE(Success);
    QStringList Expected{QStringLiteral("Verify error, external EEPROM"),
                         QStringLiteral("Download error:\n")};
    EXPECT_EQ(BoxTexts(), Expected);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Verify Error"));
    EXPECT_EQ(Window.KavlinControl1->txtStatus->text(), QStringLiteral("Verify Error"));
    QFile Written(Image);
    ASSERT_TRUE(Written.open(QIODevice::ReadOnly));
    EXPECT_EQ(External(32768), Written.readAll());
    EXPECT_FALSE(Window.comMonitorPort->PortOpen()) << "a failed download keeps it closed";
}

TEST_F(DownloadWindowTest, ImageOneByteShortOfFullHasItsLastLookAndVerifies) {
    const QString Image = WriteProgram(32767);
    frmDownloader& Window = Load();
    int32_t Size = 0;
    Window.OpenKVBfile(Image, Size);
    bool Success = false;
    Window.DownloadProgram(Success);
    EXPECT_TRUE(Success);
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_EQ(Window.KavlinControl1->txtStatus->text(), QStringLiteral("EEprom Write Successful"));
}

TEST_F(DownloadWindowTest, RescueMenuRunsTheRescueThroughThePortGuard) {
    frmDownloader& Window = Load();
    Window.mnuRescue->trigger();
    EXPECT_EQ(BoxTexts(), QStringList());
    EXPECT_TRUE(Window.DebugWindowText().contains(
        QStringLiteral("Press the download or reset button now.")));
    EXPECT_EQ(Panel(Window, 2), QString()) << "the rescue leaves the panels alone";
}

TEST_F(DownloadWindowTest, AtnDiagnosticOnAKv10IsRefusedWithItsBox) {
    frmDownloader& Window = Load();
    GlobalData::ChipType = 1;
    Window.mnuDiagnosticATN->trigger();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("ATN diagnostic requires KV-20 or KV-30"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Processor Type Error"));
}

TEST_F(DownloadWindowTest, TheTextBoxFollowsTheWindowAndTheWindowStopsAt4000TwipsInside) {
    frmDownloader& Window = Load();
    Window.resize(900, 700);
    QTest::qWait(20);
    const int Wide = Window.txtDebugWindow->width();
    EXPECT_EQ(Wide, Window.centralWidget()->width());
    Window.resize(1100, 800);
    QTest::qWait(20);
    EXPECT_EQ(Window.txtDebugWindow->width(), Wide + 200);
    EXPECT_GT(Window.txtDebugWindow->height(), 0);
    // Asked to go very small, the inner area stays 4000 twips each way.
    Window.resize(50, 50);
    QTest::qWait(20);
    EXPECT_GE(Window.centralWidget()->width(), TwipsConversion::TwipsToPixelsX(4000));
    EXPECT_GE(Window.centralWidget()->height(), TwipsConversion::TwipsToPixelsY(4000));
    EXPECT_EQ(Window.txtDebugWindow->width(), Window.centralWidget()->width());
}

TEST_F(DownloadWindowTest, TheChipHoldsTheBlockOfItsModelForEachPreferenceFile) {
    frmDownloader& Window = Load();
    struct Case {
        int Chip;
        PinStateTypes All;
        QList<QPair<int, PinStateTypes>> Pins;
    };
    const QList<Case> Cases{
        {2, kvInputTristate, {}},
        {2, kvOutputHigh, {{20, kvOutputLow}, {13, kvInputPullup}, {25, kvOutputHigh}}},
        {2, kvInputPullup, {{5, kvOutputLow}, {26, kvInputTristate}, {27, kvOutputLow}}},
        {3, kvInputTristate, {}},
        {3, kvOutputLow, {{1, kvOutputHigh}, {17, kvInputPullup}, {33, kvInputTristate}}},
    };
    int Number = 0;
    for (const Case& Each : Cases) {
        const QString Name = QStringLiteral("case%1").arg(++Number);
        PrfImageBuilder Prf;
        Prf.AllPins(Each.All).DefaultValues(Each.Chip);
        for (const auto& [Pin, State] : Each.Pins) {
            Prf.Pin(Pin, State);
        }
        ASSERT_TRUE(Prf.Save(TempPath() + QLatin1Char('/') + Name + QStringLiteral(".prf")));
        QByteArray Image(200 + Number, static_cast<char>(0x30 + Number));
        const QString File = WriteFile(Name + QStringLiteral(".kvb"), Image);
        GlobalData::ChipType = static_cast<int16_t>(Each.Chip);
        int32_t Size = 0;
        Window.OpenKVBfile(File, Size);
        bool Success = false;
        Window.DownloadProgram(Success);
        ASSERT_TRUE(Success) << Name.toStdString();
        ConfigurationBytes::RegisterArray Registers{};
        GlobalData::ProjectFilename = TempPath() + QLatin1Char('/') + Name + QStringLiteral(".kvp");
        if (Each.Chip == 2) {
            ConfigurationBytes::ConfigureKV20(Registers);
        } else {
            ConfigurationBytes::ConfigureKV30(Registers);
        }
        const auto Block = Each.Chip == 2 ? ConfigurationBytes::BlockKV20(Registers)
                                          : ConfigurationBytes::BlockKV30(Registers);
        EXPECT_EQ(Internal(32), AsBytes(Block)) << Name.toStdString();
        EXPECT_EQ(External(Image.size()), Image) << Name.toStdString();
        if (Each.Chip == 2) {
            // What every KV-20 block carries, whatever the pins.
            const QByteArray Held = Internal(32);
            EXPECT_TRUE(Held[0] & 0x02) << Name.toStdString();
            EXPECT_TRUE(Held[1] & 0x02) << Name.toStdString();
            EXPECT_TRUE(Held[1] & 0x04) << Name.toStdString();
            EXPECT_EQ(static_cast<uint8_t>(Held[6]) >> 4, 0xB) << Name.toStdString();
            EXPECT_EQ(static_cast<uint8_t>(Held[7]) >> 4, 0xB) << Name.toStdString();
        }
    }
    EXPECT_EQ(BoxTexts(), QStringList());
}

TEST_F(DownloadWindowTest, TheProgressBarMovesPageByPageAndTheWindowStaysAlive) {
    const QString Image = WriteProgram(4000);
    frmDownloader& Window = Load();
    int32_t Size = 0;
    Window.OpenKVBfile(Image, Size);
    QList<int> Values;
    bool Visible = false;
    int TimerTicks = 0;
    QTimer Alive;
    QObject::connect(&Alive, &QTimer::timeout, [&] { ++TimerTicks; });
    Alive.start(0);
    Clock->OnSleep = [&](int64_t) {
        QProgressBar* Bar = Window.KavlinControl1->PBar;
        Visible = Visible || Bar->isVisible();
        if (Bar->isVisible() && (Values.isEmpty() || Values.last() != Bar->value())) {
            Values << Bar->value();
        }
    };
    Click(Window, QStringLiteral("Download"));
    Clock->OnSleep = nullptr;
    Alive.stop();
    EXPECT_TRUE(Visible);
    // The write goes through the 63 pages and the read-back through its 32
    // blocks: the bar rises through each, twice over.
    EXPECT_GE(Values.size(), 60);
    int Falls = 0;
    for (int Index = 1; Index < Values.size(); ++Index) {
        Falls += Values[Index] < Values[Index - 1] ? 1 : 0;
    }
    EXPECT_LE(Falls, 2) << "from the write to the read-back, and back to the start";
    EXPECT_GT(TimerTicks, 100) << "the window's events ran all through the download";
    EXPECT_FALSE(Window.KavlinControl1->PBar->isVisible());
}

}  // namespace
