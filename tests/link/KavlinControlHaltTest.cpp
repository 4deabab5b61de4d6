#include <QProgressBar>

#include "LinkFixture.h"

namespace {

using Event = SimulatedSerialLine::HostEvent;

class KavlinControlHalt : public LinkFixture {};

TEST_F(KavlinControlHalt, NewControlShowsChipStatusWindowAndIsNotHalted) {
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("Chip Status Window"));
    EXPECT_FALSE(Control->ChipIsHalted());
    EXPECT_EQ(Control->AckCount(), 0);
    EXPECT_FALSE(Control->PCLinkActive());
    EXPECT_FALSE(Control->PBar->isVisibleTo(Control.get()));
    EXPECT_EQ(Control->findChild<QLineEdit*>(QStringLiteral("txtStatus")), Control->txtStatus);
    EXPECT_EQ(Control->findChild<QProgressBar*>(QStringLiteral("PBar")), Control->PBar);
}

TEST_F(KavlinControlHalt, PortIsOpenedAtTheFixedLineSettingsWithDtrLow) {
    OpenPort();
    EXPECT_TRUE(Control->PortOpen());
    EXPECT_EQ(Line->Settings(), QStringLiteral("115200,N,8,1"));
    EXPECT_EQ(Line->Handshaking(), 0);
    EXPECT_EQ(Line->InBufferSize(), 4096);
    EXPECT_EQ(Line->OutBufferSize(), 4096);
    EXPECT_EQ(Line->InputLen(), 0);
    EXPECT_EQ(Line->ParityReplace(), QStringLiteral("?"));
    EXPECT_FALSE(Line->Chip().AtnLevel());
    EXPECT_EQ(DtrRises(), 0);
}

TEST_F(KavlinControlHalt, SettingCommPortMarksThePropertyChanged) {
    QSignalSpy Changes(Control.get(), &KavlinControl::PropertyChanged);
    Control->SetCommPort(3);
    EXPECT_EQ(Control->CommPort(), 3);
    ASSERT_EQ(Changes.size(), 1);
    EXPECT_EQ(Changes.at(0).at(0).toString(), QStringLiteral("CommPort"));
}

TEST_F(KavlinControlHalt, HaltPulsesAtnThriceThenSendsTwoSyncBytesAndCountsTheAck) {
    OpenPort();
    Line->ForgetHostEvents();
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->HaltKavlin(Status);
    EXPECT_EQ(Status, dlOK);
    EXPECT_TRUE(Control->ChipIsHalted());
    EXPECT_EQ(Control->AckCount(), 1);
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("ACK Received 1"));
    EXPECT_EQ(ShownTexts().first(), QStringLiteral("Stopping Kavlin"));
    EXPECT_TRUE(Line->Chip().InMonitor());

    const auto& Events = Line->HostEvents();
    std::vector<Event::Kind> Kinds;
    for (const auto& E : Events) {
        Kinds.push_back(E.What);
    }
    const std::vector<Event::Kind> Expected = {Event::DtrHigh, Event::DtrLow,     Event::DtrHigh,
                                               Event::DtrLow,  Event::DtrHigh,    Event::DtrLow,
                                               Event::Output,  Event::ClearInput, Event::Output};
    ASSERT_EQ(Kinds, Expected);
    // Each pulse is 4 ms high and 4 ms low.
    EXPECT_EQ(Events[1].Ns - Events[0].Ns, 4'000'000);
    EXPECT_EQ(Events[2].Ns - Events[1].Ns, 4'000'000);
    EXPECT_EQ(Events[6].Bytes, Hex("01"));
    EXPECT_EQ(Events[8].Bytes, Hex("01"));
    // The first sync byte drains and 4 ms pass before the input is cleared.
    EXPECT_GE(Events[7].Ns - Events[6].Ns, 4'000'000);
    EXPECT_EQ(Line->SentBytes(), Hex("0101"));
}

TEST_F(KavlinControlHalt, SecondAcknowledgedHaltShowsAckCountTwo) {
    OpenPort();
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->HaltKavlin(Status);
    ASSERT_EQ(Status, dlOK);
    Control->HaltKavlin(Status);
    EXPECT_EQ(Status, dlOK);
    EXPECT_EQ(Control->AckCount(), 2);
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("ACK Received 2"));
}

TEST_F(KavlinControlHalt, HaltReplyOfTwoBytesStartingWithAckIsAFailedAttemptCosting150Ms) {
    OpenPort();
    // Measure a clean Halt first, on a chip already caught.
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->HaltKavlin(Status);
    ASSERT_EQ(Status, dlOK);
    const int64_t CleanStart = Clock->MicroTicks();
    Control->HaltKavlin(Status);
    const int64_t CleanUs = Clock->MicroTicks() - CleanStart;
    ASSERT_EQ(Status, dlOK);

    // Both sync bytes of the first attempt get a byte behind their 0x6C.
    Line->Chip().Faults.ExtraByte = 2;
    Line->ForgetHostEvents();
    Texts->clear();
    const int64_t Start = Clock->MicroTicks();
    Control->HaltKavlin(Status);
    const int64_t FaultyUs = Clock->MicroTicks() - Start;
    EXPECT_EQ(Status, dlOK);
    EXPECT_EQ(Control->AckCount(), 3);
    EXPECT_EQ(ShownTexts(),
              QStringList({QStringLiteral("Stopping Kavlin"), QStringLiteral("Retry 1"),
                           QStringLiteral("ACK Received 3")}));
    EXPECT_EQ(DtrRises(), 6);
    // Two attempts and the 150 ms of the failed one.
    EXPECT_GE(FaultyUs, 2 * CleanUs + 150'000 - 2'000);
    EXPECT_LE(FaultyUs, 2 * CleanUs + 150'000 + 2'000);
}

TEST_F(KavlinControlHalt, SilentChipGivesNoCommunicationsAfterTwentyAttempts) {
    OpenPort();
    Line->Chip().Faults.Silent = true;
    Line->ForgetHostEvents();
    const int64_t Start = Clock->NowMs;
    DownloaderStatusTypes Status = dlOK;
    Control->HaltKavlin(Status);
    EXPECT_EQ(Status, dlNoCommunications);
    EXPECT_TRUE(Control->ChipIsHalted());
    EXPECT_EQ(Control->LastErrorCode(), 4301);
    EXPECT_EQ(Err().Number, static_cast<int32_t>(0x80040000u + 4301u));
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("No Communications"));
    // "Retry 1" to "Retry 20", each once and in order, and then the verdict.
    QStringList Retries;
    for (const QString& Text : ShownTexts()) {
        if (Text.startsWith(QStringLiteral("Retry"))) {
            Retries << Text;
        }
    }
    QStringList Expected;
    for (int Attempt = 1; Attempt <= 20; ++Attempt) {
        Expected << QStringLiteral("Retry %1").arg(Attempt);
    }
    EXPECT_EQ(Retries, Expected);
    EXPECT_EQ(ShownTexts().last(), QStringLiteral("No Communications"));
    EXPECT_EQ(DtrRises(), 60);
    EXPECT_EQ(Line->SentBytes(), QByteArray(40, '\x01'));
    // Each attempt waits out its 0.195 s, pulses and sync bytes included.
    const int64_t Elapsed = Clock->NowMs - Start;
    EXPECT_GE(Elapsed, 20 * 195);
    EXPECT_LE(Elapsed, 20 * 200);
}

TEST_F(KavlinControlHalt, LostChipIsHaltedAgainByTheNextHalt) {
    OpenPort();
    Line->Chip().Faults.Silent = true;
    DownloaderStatusTypes Status = dlOK;
    Control->HaltKavlin(Status);
    ASSERT_EQ(Status, dlNoCommunications);
    Line->Chip().Faults.Silent = false;
    Control->HaltKavlin(Status);
    EXPECT_EQ(Status, dlOK);
    EXPECT_EQ(Control->AckCount(), 1);
}

TEST_F(KavlinControlHalt, PcLinkHaltSendsOnlyTheSyncBytes) {
    OpenPort();
    Line->Chip().PcLinkProgram = true;
    Control->PCLink(true);
    Line->ForgetHostEvents();
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->HaltKavlin(Status);
    EXPECT_EQ(Status, dlOK);
    EXPECT_EQ(DtrRises(), 0);
    EXPECT_EQ(Line->SentBytes(), Hex("0101"));
    EXPECT_TRUE(Line->Chip().InMonitor());
}

TEST_F(KavlinControlHalt, PcLinkHaltOfAChipThatNeedsAtnEndsInNoCommunications) {
    OpenPort();
    Control->PCLink(true);
    DownloaderStatusTypes Status = dlOK;
    Control->HaltKavlin(Status);
    EXPECT_EQ(Status, dlNoCommunications);
    EXPECT_EQ(DtrRises(), 0);
    EXPECT_FALSE(Line->Chip().InMonitor());
    EXPECT_EQ(Line->Chip().ProgramInput, QByteArray(40, '\x01'));
}

TEST_F(KavlinControlHalt, ContinueSendsLeaveBytesAndClearsHalted) {
    OpenAndHalt();
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->ContinueKavlin(Status);
    EXPECT_EQ(Status, dlOK);
    EXPECT_FALSE(Control->ChipIsHalted());
    LetTheLineSettle();
    EXPECT_EQ(Line->SentBytes(), Hex("1000"));
    EXPECT_FALSE(Line->Chip().InMonitor());
    EXPECT_EQ(Line->Chip().ContinueCount, 1);
}

TEST_F(KavlinControlHalt, ResetSendsResetBytesAndClearsHalted) {
    OpenAndHalt();
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->ResetKavlin(Status);
    EXPECT_EQ(Status, dlOK);
    EXPECT_FALSE(Control->ChipIsHalted());
    LetTheLineSettle();
    EXPECT_EQ(Line->SentBytes(), Hex("10d600"));
    EXPECT_EQ(Line->Chip().ResetCount, 1);
    EXPECT_FALSE(Line->Chip().InMonitor());
}

TEST_F(KavlinControlHalt, OperationsOnAChipNotHaltedGiveStatusFiveAndSendNothing) {
    OpenPort();
    Control->Text(QStringLiteral("before"));
    Line->ForgetHostEvents();
    Texts->clear();
    DownloaderStatusTypes Status = dlOK;
    Control->ResetKavlin(Status);
    EXPECT_EQ(Status, dlNotHalted);
    Status = dlOK;
    Control->ContinueKavlin(Status);
    EXPECT_EQ(Status, dlNotHalted);
    Status = dlOK;
    KavlinControl::ByteBlock Block(64, 0x11);
    Control->WriteExternalEEprom(0, 64, Block, Status);
    EXPECT_EQ(Status, dlNotHalted);
    EXPECT_TRUE(Line->HostEvents().empty());
    EXPECT_TRUE(ShownTexts().isEmpty());
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("before"));
}

TEST_F(KavlinControlHalt, ResetOnAClosedPortGivesResetFailed) {
    OpenAndHalt();
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->OpenPort(false, Status);
    ASSERT_EQ(Status, dlOK);
    Control->ResetKavlin(Status);
    EXPECT_EQ(Status, dlResetFailed);
    Control->ContinueKavlin(Status);
    EXPECT_EQ(Status, dlResetFailed);
    EXPECT_TRUE(Control->ChipIsHalted());
}

TEST_F(KavlinControlHalt, PortThatWillNotOpenOrCloseGivesThreeOrFour) {
    Control->Text(QStringLiteral("kept"));
    Line->RefuseOpen = true;
    DownloaderStatusTypes Status = dlOK;
    Control->OpenPort(true, Status);
    EXPECT_EQ(Status, dlCannotOpenPort);
    EXPECT_FALSE(Control->PortOpen());
    Line->RefuseOpen = false;
    OpenPort();
    Line->RefuseClose = true;
    Control->OpenPort(false, Status);
    EXPECT_EQ(Status, dlCannotClosePort);
    EXPECT_TRUE(Control->PortOpen());
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("kept"));
    Line->RefuseClose = false;
}

TEST_F(KavlinControlHalt, PortNumberWithoutADeviceCannotBeOpened) {
    Control->SetCommPort(7);
    DownloaderStatusTypes Status = dlOK;
    Control->OpenPort(true, Status);
    EXPECT_EQ(Status, dlCannotOpenPort);
    EXPECT_EQ(Err().Number, 8002);
}

TEST_F(KavlinControlHalt, DestroyingTheControlClosesThePort) {
    OpenPort();
    ASSERT_TRUE(Line->PortOpen());
    Control.reset();
    EXPECT_FALSE(Line->PortOpen());
}

}  // namespace
