#include "LinkFixture.h"

namespace {

class KavlinControlRescue : public LinkFixture {
  protected:
    void SetUp() override {
        LinkFixture::SetUp();
        Control->SetDebugWindow([this](const QString& Text) { DebugTexts << Text; });
    }
    QStringList DebugTexts;
};

TEST_F(KavlinControlRescue, RescuePulsesAtnForTenSecondsCountingDownAndSendsNoByte) {
    OpenPort();
    Line->ForgetHostEvents();
    const int64_t Start = Clock->NowMs;
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->Rescue(Status);
    EXPECT_EQ(Status, dlOK);
    const int64_t Elapsed = Clock->NowMs - Start;
    EXPECT_GE(Elapsed, 10000);
    EXPECT_LT(Elapsed, 10010);
    EXPECT_TRUE(Line->SentBytes().isEmpty());
    // Every 8 ms one pulse: 4 ms high, 4 ms low.
    EXPECT_EQ(DtrRises(), 1250);
    QStringList Counts;
    for (int Count = 10; Count >= 0; --Count) {
        Counts << QStringLiteral("ATN %1").arg(Count);
    }
    EXPECT_EQ(ShownTexts(), Counts);
    EXPECT_EQ(
        DebugTexts,
        QStringList({QStringLiteral("\r\n*** RESCUE ***\r\n\r\nQuickly press and release "
                                    "chip's hardware\r\nreset button, then wait for prompt\r\n"),
                     QStringLiteral("\r\nPress the download or reset button now.\r\n\r\nIf "
                                    "system doesn't respond, try the\r\nrescue process again.")}));
    EXPECT_FALSE(Control->ChipIsHalted());
}

TEST_F(KavlinControlRescue, ResetAfterRescueAloneGivesNotHalted) {
    OpenPort();
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->Rescue(Status);
    ASSERT_EQ(Status, dlOK);
    Line->ForgetHostEvents();
    Control->ResetKavlin(Status);
    EXPECT_EQ(Status, dlNotHalted);
    EXPECT_TRUE(Line->HostEvents().empty());
}

TEST_F(KavlinControlRescue, RescueLeavesAHaltedFlagAsItWas) {
    OpenPort();
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->HaltKavlin(Status);
    ASSERT_TRUE(Control->ChipIsHalted());
    Control->Rescue(Status);
    EXPECT_EQ(Status, dlOK);
    EXPECT_TRUE(Control->ChipIsHalted());
}

TEST_F(KavlinControlRescue, RescueCatchesAChipWhoseProgramHoldsOffAtn) {
    OpenPort();
    Line->Chip().ProgramHoldsOffAtn = true;
    DownloaderStatusTypes Status = dlOK;
    Control->HaltKavlin(Status);
    ASSERT_EQ(Status, dlNoCommunications);
    ASSERT_FALSE(Line->Chip().InMonitor());

    // The user presses the reset button three seconds into the rescue.
    const int64_t PressAt = Clock->NowMs + 3000;
    bool Pressed = false;
    Clock->OnSleep = [&](int64_t NowMs) {
        if (!Pressed && NowMs >= PressAt) {
            Pressed = true;
            Line->PressResetButton();
        }
    };
    Control->Rescue(Status);
    Clock->OnSleep = nullptr;
    EXPECT_EQ(Status, dlOK);
    ASSERT_TRUE(Pressed);
    EXPECT_TRUE(Line->Chip().InMonitor());

    Control->HaltKavlin(Status);
    EXPECT_EQ(Status, dlOK);
}

TEST_F(KavlinControlRescue, ErrorDuringRescueGivesTwo) {
    OpenPort();
    Control->SetDebugWindow(
        [](const QString&) { RaiseError(5, QStringLiteral("Invalid procedure call")); });
    DownloaderStatusTypes Status = dlOK;
    Control->Rescue(Status);
    EXPECT_EQ(Status, dlNoCommunications);
    EXPECT_EQ(Err().Number, 5);
}

}  // namespace
