#include <QComboBox>
#include <QFile>
#include <QListWidget>
#include <QPalette>
#include <QTest>

#include "chip/PrfImageBuilder.h"
#include "editor/frmSourceEditor.h"
#include "frame/GlobalData.h"
#include "frame/TwipsConversion.h"
#include "frame/frmSplash.h"
#include "link/DownloadPortFixture.h"
#include "link/XSerialDownloader.h"
#include "link/frmDownloader.h"
#include "monitor/MonitorPortExecutive.h"
#include "monitor/frmWatchWindow.h"
#include "platform/Global.h"
#include "project/ProjectType.h"

namespace {

// One record of a symbol map as the compiler writes it.
QByteArray Record(const QByteArray& Name, int32_t Address, int32_t VariableType,
                  bool IsExcluded = false, int16_t DimensionCount = 0) {
    QByteArray Line = '"' + Name + "\"," + QByteArray::number(Address) + ',' +
                      QByteArray::number(VariableType) + ',' +
                      (IsExcluded ? "#TRUE#" : "#FALSE#") + ',' +
                      QByteArray::number(DimensionCount);
    for (int Bound = 0; Bound < 8; ++Bound) {
        Line += ",0,0";
    }
    return Line + "\r\n";
}

// A KV-20 project "blink" whose program runs in the simulated chip (port 99),
// the downloader started as the program starts it, the monitor port stored
// open on the same line, the editor open on the project.
class WatchWindowTest : public DownloadPortFixture {
  protected:
    void SetUp() override {
        DownloadPortFixture::SetUp();
        StoreSimulatedChipForBothPorts();
        XSerialDownloader::ResetState();
        frmDownloader::ResetProcessEnded();
        WriteFile(QStringLiteral("blink.kvp"), "blink.bas\r\n");
        WriteFile(QStringLiteral("blink.bas"), "Option Explicit\r\n");
        ASSERT_TRUE(PrfImageBuilder().AllPins(kvInputTristate).DefaultValues(2).Save(
            TempPath() + QStringLiteral("/blink.prf")));
        Line->Chip().PcLinkProgram = true;
    }
    void TearDown() override {
        Global<frmWatchWindow>::Unload();
        Global<frmSourceEditor>::Unload();
        Global<frmSplash>::Unload();
        Global<frmDownloader>::Unload();
        Global<ProjectType>::Unload();
        XSerialDownloader::ResetState();
        frmDownloader::ResetProcessEnded();
        DownloadPortFixture::TearDown();
    }
    frmDownloader& StartProgram() {
        frmDownloader& Downloader = Global<frmDownloader>::Get();
        Downloader.Form_Load();
        Downloader.show();
        Downloader.ToolBarButton(QStringLiteral("Editor"))->trigger();
        frmSourceEditor& Editor = Global<frmSourceEditor>::Get();
        Editor.OpenProject(TempPath(), QStringLiteral("blink"), QStringLiteral("kvp"), false);
        QCoreApplication::processEvents();
        return Downloader;
    }
    void WriteSymbols(const QByteArray& Records) { WriteFile(QStringLiteral("blink.kvm"), Records); }
    // The editor's Watch Window entry, with the monitor port's question
    // answered Answer if it comes.
    frmWatchWindow& OpenWatch(int Answer = 6) {
        Boxes->QueueAnswer(Answer);
        Global<frmSourceEditor>::Get().mnuWatchWindow->trigger();
        frmWatchWindow& Watch = Global<frmWatchWindow>::Get();
        Watch.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Watch));
        return Watch;
    }
    static QStringList Rows(frmWatchWindow& Watch) {
        QStringList Texts;
        for (int Row = 0; Row < Watch.lstWatchList->count(); ++Row) {
            Texts << Watch.lstWatchList->item(Row)->text();
        }
        return Texts;
    }
    // A user's click on the row: it toggles the row's selection.
    static void ClickRow(frmWatchWindow& Watch, int Row) {
        QListWidget* List = Watch.lstWatchList;
        const QRect Place = List->visualItemRect(List->item(Row));
        QTest::mouseClick(List->viewport(), Qt::LeftButton, {}, Place.center());
    }
    static void Tick(frmWatchWindow& Watch) {
        ASSERT_TRUE(Watch.WatchTimer->isActive()) << "the window samples only while active";
        ASSERT_TRUE(QMetaObject::invokeMethod(Watch.WatchTimer, "timeout"));
    }
    void PutRam(int Address, const QByteArray& Bytes) {
        for (int Index = 0; Index < Bytes.size(); ++Index) {
            Line->Chip().Ram[Address + Index] = static_cast<uint8_t>(Bytes[Index]);
        }
    }
};

TEST_F(WatchWindowTest, OnAKv10TheEditorRefusesTheWatchWindow) {
    StartProgram();
    GlobalData::ChipType = 1;
    Global<frmSourceEditor>::Get().mnuWatchWindow->trigger();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Watch Window requires KV-20 or KV-30"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Processor Type Error"));
    EXPECT_FALSE(Global<frmWatchWindow>::IsLoaded());
}

TEST_F(WatchWindowTest, AnOpenMonitorPortIsAskedForAndNoLeavesEverythingAsItWas) {
    StartProgram();
    WriteSymbols(Record("Count", 0x100, 19));
    ASSERT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
    Boxes->QueueAnswer(7);
    Global<frmSourceEditor>::Get().mnuWatchWindow->trigger();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("Monitor port must be closed\nto use the watch window.\nClose port now?"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Monitor port"));
    EXPECT_TRUE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_FALSE(Global<frmWatchWindow>::IsLoaded());
}

TEST_F(WatchWindowTest, YesClosesTheMonitorPortKeepsItsSettingAndTheWindowTakesTheLink) {
    frmDownloader& Downloader = StartProgram();
    WriteSymbols(Record("Count", 0x100, 19) + Record("Buffer", 0x200, 18, false, 1));
    frmWatchWindow& Watch = OpenWatch(6);
    EXPECT_FALSE(MonitorPortExecutive::IsMonitorPortOpen());
    EXPECT_EQ(Setting(QStringLiteral("KV20port_Number")).trimmed().left(3), QStringLiteral("99,"))
        << "the stored set-up still says open";
    EXPECT_EQ(Watch.windowTitle(), QStringLiteral("Watch List"));
    EXPECT_EQ(Rows(Watch), QStringList({QStringLiteral("Count.Integer"),
                                        QStringLiteral("Buffer().Byte")}));
    EXPECT_TRUE(Watch.KvmIsLoaded());
    EXPECT_FALSE(Downloader.mnuMonitorPortSetup->isEnabled());
    EXPECT_TRUE(Downloader.KavlinControl1->PCLinkActive());
    EXPECT_TRUE(Watch.WatchTimer->isActive());
    EXPECT_EQ(Watch.WatchTimer->interval(), 1000);
    EXPECT_TRUE(Watch.txtWatchText->isEnabled());
}

TEST_F(WatchWindowTest, EveryTypeShowsItsValueFromTheChipsRamAndTheNextTickShowsAChange) {
    StartProgram();
    WriteSymbols(Record("Count", 0x100, 17) + Record("Small", 0x102, 18) +
                 Record("Delta", 0x104, 19) + Record("Total", 0x106, 20) +
                 Record("Big", 0x10A, 21) + Record("Ratio", 0x10E, 32) +
                 Record("Flag", 0x112, 50) + Record("Odd", 0x113, 99));
    PutRam(0x100, QByteArray::fromHex("FFFF"));
    PutRam(0x102, QByteArray::fromHex("07"));
    PutRam(0x104, QByteArray::fromHex("FFFF"));
    PutRam(0x106, QByteArray::fromHex("FFFFFFFF"));
    PutRam(0x10A, QByteArray::fromHex("FFFFFFFF"));
    PutRam(0x10E, QByteArray::fromHex("0000C03F"));
    PutRam(0x112, QByteArray::fromHex("FF"));
    frmWatchWindow& Watch = OpenWatch();
    for (int Row = 0; Row < 8; ++Row) {
        ClickRow(Watch, Row);
    }
    Tick(Watch);
    EXPECT_EQ(Watch.txtWatchText->toPlainText().toStdString(),
              "Count: 65535\nSmall: 7\nDelta: -1\nTotal: -1\nBig: 4294967295\n"
              "Ratio: 1.5\nFlag: True\nOdd: \n");
    EXPECT_EQ(Rows(Watch).last(), QStringLiteral("Odd.*** ILLEGAL TYPE ***"));
    // The program changes its variables; the next sample shows them.
    PutRam(0x100, QByteArray::fromHex("3412"));
    PutRam(0x112, QByteArray::fromHex("00"));
    Tick(Watch);
    EXPECT_TRUE(Watch.txtWatchText->toPlainText().startsWith(QStringLiteral("Count: 4660\n")));
    EXPECT_TRUE(Watch.txtWatchText->toPlainText().contains(QStringLiteral("Flag: False\n")));
}

TEST_F(WatchWindowTest, EachSampleLetsTheLinkGoAndTheProgramRunOn) {
    frmDownloader& Downloader = StartProgram();
    WriteSymbols(Record("Count", 0x100, 19));
    frmWatchWindow& Watch = OpenWatch();
    ClickRow(Watch, 0);
    const int ContinuesBefore = Line->Chip().ContinueCount;
    Tick(Watch);
    Tick(Watch);
    EXPECT_EQ(Line->Chip().ContinueCount, ContinuesBefore + 2);
    EXPECT_FALSE(Line->Chip().InMonitor());
    EXPECT_FALSE(Downloader.KavlinControl1->PortOpen()) << "the line is free between samples";
    EXPECT_EQ(Line->Chip().CatchCount, 2) << "caught by the sync byte, no reset";
    EXPECT_EQ(Line->Chip().ResetCount, 0);
}

TEST_F(WatchWindowTest, ASampleHaltsTheChipForOneRamReadExchangeOnly) {
    StartProgram();
    WriteSymbols(Record("Count", 0x100, 19) + Record("Total", 0x140, 20));
    frmWatchWindow& Watch = OpenWatch();
    ClickRow(Watch, 0);
    ClickRow(Watch, 1);
    // The chip is in its monitor from the moment its sync byte has come in
    // until the continue's last byte has: time it on the line's clock.
    int64_t HaltedFromNs = -1;
    int64_t HaltedNs = 0;
    bool WasInMonitor = false;
    Clock->OnSleep = [&](int64_t) {
        const bool InMonitor = Line->Chip().InMonitor();
        const int64_t Now = Clock->MicroTicks() * 1000;
        if (InMonitor && !WasInMonitor) {
            HaltedFromNs = Now;
        } else if (!InMonitor && WasInMonitor && HaltedFromNs >= 0) {
            HaltedNs += Now - HaltedFromNs;
        }
        WasInMonitor = InMonitor;
    };
    Line->ForgetHostEvents();
    Tick(Watch);
    Clock->OnSleep = nullptr;
    if (WasInMonitor && HaltedFromNs >= 0) {
        HaltedNs += Clock->MicroTicks() * 1000 - HaltedFromNs;
    }
    // The exchange while halted: the read's frame and its answer of the
    // 0x40 + 4 + 30 bytes and a checksum, then the continue.
    const int64_t Read = 0x140 - 0x100 + 30;
    const int64_t ExchangeNs = (5 + Read + 1 + 2) * SimulatedSerialLine::ByteNs;
    EXPECT_GT(HaltedNs, 0);
    EXPECT_LE(HaltedNs, ExchangeNs + 10'000'000) << "halted " << HaltedNs / 1000 << " us";
    RecordProperty("HaltedMicroseconds", static_cast<int>(HaltedNs / 1000));
}

TEST_F(WatchWindowTest, NoRowSelectedLeavesTheTextEmptyAndTheChipUntouched) {
    StartProgram();
    WriteSymbols(Record("Count", 0x100, 19));
    frmWatchWindow& Watch = OpenWatch();
    Line->ForgetHostEvents();
    Tick(Watch);
    EXPECT_EQ(Watch.txtWatchText->toPlainText(), QString());
    EXPECT_EQ(Line->SentBytes(), QByteArray());
}

TEST_F(WatchWindowTest, ASampleNeverCutsIntoATransferThatHoldsTheLine) {
    frmDownloader& Downloader = StartProgram();
    WriteSymbols(Record("Count", 0x100, 19));
    frmWatchWindow& Watch = OpenWatch();
    ClickRow(Watch, 0);
    // A download that failed halfway keeps the line with the monitor port
    // taken; the watch must not talk to the chip until it is given back.
    Downloader.comMonitorPort->SetPortOpen(true);
    XSerialDownloader::AcquireDownloadPort();
    ASSERT_TRUE(XSerialDownloader::GetMonitorWasOpen());
    Line->ForgetHostEvents();
    Tick(Watch);
    EXPECT_EQ(Line->SentBytes(), QByteArray());
}

TEST_F(WatchWindowTest, OnlyAStringVariableGivesAnEmptyList) {
    StartProgram();
    WriteSymbols(Record("Greeting", 0x100, 61));
    frmWatchWindow& Watch = OpenWatch();
    EXPECT_EQ(Rows(Watch), QStringList());
    EXPECT_TRUE(Watch.KvmIsLoaded());
}

TEST_F(WatchWindowTest, MissingSymbolMapIsToldAndNothingIsWatched) {
    frmDownloader& Downloader = StartProgram();
    frmWatchWindow& Watch = OpenWatch();
    EXPECT_EQ(Watch.txtWatchText->toPlainText(), QStringLiteral("Error -- KVM file not found"));
    EXPECT_FALSE(Watch.txtWatchText->isEnabled());
    EXPECT_FALSE(Watch.KvmIsLoaded());
    EXPECT_FALSE(Watch.WatchTimer->isActive());
    EXPECT_FALSE(Downloader.mnuMonitorPortSetup->isEnabled());
    EXPECT_EQ(Watch.txtWatchText->palette().color(QPalette::Base), QColor(0xE0E0E0));
}

TEST_F(WatchWindowTest, ChoosingTwoAndAHalfSecondsSetsTheTimerTo2500) {
    StartProgram();
    WriteSymbols(Record("Count", 0x100, 19));
    frmWatchWindow& Watch = OpenWatch();
    Watch.WatchTimeCombo->setFocus();
    for (int Step = 0; Step < 3; ++Step) {
        QTest::keyClick(Watch.WatchTimeCombo, Qt::Key_Down);
    }
    EXPECT_EQ(Watch.WatchTimeCombo->currentText(), QStringLiteral("2.5 second"));
    EXPECT_EQ(Watch.WatchTimer->interval(), 2500);
    QStringList Items;
    for (int Index = 0; Index < Watch.WatchTimeCombo->count(); ++Index) {
        Items << Watch.WatchTimeCombo->itemText(Index);
    }
    EXPECT_EQ(Items, QStringList({"1.0 second", "1.5 second", "2.0 second", "2.5 second",
                                  "3.0 second", "3.5 second", "4.0 second", "4.5 second",
                                  "5.0 second"}));
}

TEST_F(WatchWindowTest, LeavingTheWindowStopsSamplingAndComingBackGoesOn) {
    frmDownloader& Downloader = StartProgram();
    WriteSymbols(Record("Count", 0x100, 19));
    frmWatchWindow& Watch = OpenWatch();
    Downloader.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Downloader));
    EXPECT_FALSE(Watch.WatchTimer->isActive());
    EXPECT_FALSE(Watch.txtWatchText->isEnabled());
    EXPECT_TRUE(Downloader.KavlinControl1->PCLinkActive()) << "the link stays the window's";
    EXPECT_FALSE(Downloader.mnuMonitorPortSetup->isEnabled());
    Watch.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Watch));
    EXPECT_TRUE(Watch.WatchTimer->isActive());
    EXPECT_EQ(Rows(Watch), QStringList({QStringLiteral("Count.Integer")}));
}

TEST_F(WatchWindowTest, CloseGivesTheLinkAndTheMonitorSetUpBack) {
    frmDownloader& Downloader = StartProgram();
    WriteSymbols(Record("Count", 0x100, 19));
    frmWatchWindow& Watch = OpenWatch();
    EXPECT_EQ(Watch.CloseWatch->text(), QStringLiteral("&Close"));
    QTest::mouseClick(Watch.CloseWatch, Qt::LeftButton);
    QCoreApplication::processEvents();
    EXPECT_FALSE(Global<frmWatchWindow>::IsLoaded());
    EXPECT_TRUE(Downloader.mnuMonitorPortSetup->isEnabled());
    EXPECT_FALSE(Downloader.KavlinControl1->PCLinkActive());
}

TEST_F(WatchWindowTest, ClosingTheWindowItselfAlsoStopsWatching) {
    frmDownloader& Downloader = StartProgram();
    WriteSymbols(Record("Count", 0x100, 19));
    frmWatchWindow& Watch = OpenWatch();
    Watch.close();
    QCoreApplication::processEvents();
    EXPECT_FALSE(Global<frmWatchWindow>::IsLoaded());
    EXPECT_TRUE(Downloader.mnuMonitorPortSetup->isEnabled());
    EXPECT_FALSE(Downloader.KavlinControl1->PCLinkActive());
}

TEST_F(WatchWindowTest, AChipChosenAfterOpeningThatCannotBeWatchedIsToldInTheWindow) {
    StartProgram();
    WriteSymbols(Record("Count", 0x100, 19));
    frmWatchWindow& Watch = Global<frmWatchWindow>::Get();
    GlobalData::ChipType = 1;
    Watch.ProcessKvmFile();
    EXPECT_EQ(Watch.txtWatchText->toPlainText(),
              QStringLiteral("Error -- KV-20 or KV-30 must be selected"));
    EXPECT_FALSE(Watch.txtWatchText->isEnabled());
    EXPECT_FALSE(Watch.KvmIsLoaded());
}

TEST_F(WatchWindowTest, TheWindowKeepsItsHeightAndItsLeastWidth) {
    StartProgram();
    WriteSymbols(Record("Count", 0x100, 19));
    frmWatchWindow& Watch = OpenWatch();
    Watch.resize(100, 100);
    QCoreApplication::processEvents();
    EXPECT_EQ(Watch.height(), TwipsConversion::TwipsToPixelsY(7125));
    EXPECT_GE(Watch.width(), TwipsConversion::TwipsToPixelsX(4680));
    Watch.resize(900, 900);
    QCoreApplication::processEvents();
    EXPECT_EQ(Watch.height(), TwipsConversion::TwipsToPixelsY(7125));
    EXPECT_EQ(Watch.lstWatchList->width(), Watch.txtWatchText->width());
    EXPECT_NEAR(Watch.lstWatchList->width(), 900 - TwipsConversion::TwipsToPixelsX(250), 2);
}

TEST_F(WatchWindowTest, AVariableAtTheTopOfRamIsReadAndOneReachingPastItEndsTheSample) {
    StartProgram();
    WriteSymbols(Record("Top", 0xFFFC, 20) + Record("Past", 0xFFFE, 20));
    PutRam(0xFFFC, QByteArray::fromHex("78563412"));
    frmWatchWindow& Watch = OpenWatch();
    ClickRow(Watch, 0);
    ClickRow(Watch, 1);
    const int ContinuesBefore = Line->Chip().ContinueCount;
    Tick(Watch);
    // The read's slack runs past the end of RAM; the sample stops at the
    // value that does, and the program runs on.
    EXPECT_EQ(Watch.txtWatchText->toPlainText().toStdString(), "Top: 305419896\nPast: ");
    EXPECT_EQ(Line->Chip().ContinueCount, ContinuesBefore + 1);
    EXPECT_FALSE(Line->Chip().InMonitor());
}

TEST_F(WatchWindowTest, VariablesTooFarApartForOneReadEndTheSampleAndTheProgramRunsOn) {
    frmDownloader& Downloader = StartProgram();
    WriteSymbols(Record("Low", 0x10, 18) + Record("High", 0x9000, 18));
    PutRam(0x10, QByteArray::fromHex("05"));
    frmWatchWindow& Watch = OpenWatch();
    ClickRow(Watch, 0);
    ClickRow(Watch, 1);
    const int ContinuesBefore = Line->Chip().ContinueCount;
    Tick(Watch);
    EXPECT_EQ(Watch.txtWatchText->toPlainText(), QString());
    EXPECT_EQ(Line->Chip().ContinueCount, ContinuesBefore + 1);
    EXPECT_FALSE(Line->Chip().InMonitor());
    EXPECT_FALSE(Downloader.KavlinControl1->PortOpen());
    EXPECT_TRUE(Watch.WatchTimer->isActive()) << "the next tick tries again";
}

}  // namespace
