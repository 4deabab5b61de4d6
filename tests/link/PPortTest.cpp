#include <gtest/gtest.h>

#include "link/PPort.h"
#include "link/ParallelDownloader.h"
#include "platform/ErrObject.h"
#include "support/FrameFixture.h"
#include "support/QtPrinters.h"

namespace {

// PPort over ppdev, with a fake kernel: two ports, the first at &H378 and
// the second at &H278.
class PPortTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        Kernel.AddDevice(0, 0x378);
        Kernel.AddDevice(1, 0x278);
        ParallelDownloader::Initialize();
        PPort::SetPortNumber(1);
    }
    void TearDown() override {
        while (PPort::IsReserved()) {
            PPort::Unreserve(Handle);
        }
        ParallelDownloader::SetPortBase(888);
        FrameFixture::TearDown();
    }
    template <class Call>
    static QString ErrorOf(Call&& Action) {
        try {
            Action();
        } catch (const RuntimeError& Error) {
            return Error.Description();
        }
        return QString();
    }

    int Handle = 0;
};

TEST_F(PPortTest, ATransferClaimsTheDeviceAtItsBaseAndReleasesAndClosesItAfter) {
    {
        PPort::Transfer Claimed(0x278);
        EXPECT_TRUE(Kernel.Devices[1].Claimed);
        EXPECT_FALSE(Kernel.Devices[0].Claimed);
    }
    EXPECT_FALSE(Kernel.Devices[1].Claimed);
    EXPECT_EQ(Kernel.Kinds(), (QStringList{QStringLiteral("open"), QStringLiteral("PPCLAIM"),
                                           QStringLiteral("PPDATADIR"), QStringLiteral("PPRELEASE"),
                                           QStringLiteral("close")}));
    EXPECT_EQ(Kernel.Calls.first().Device, QStringLiteral("/dev/parport1"));
}

TEST_F(PPortTest, BaseAndTheNextTwoRegistersAreDataStatusAndControl) {
    Kernel.Devices[0].Status = 0x5F;
    PPort::Transfer Claimed(0x378);
    PPort::DlPortWritePortUchar(0x378, 0x8F);
    PPort::DlPortWritePortUchar(0x37A, 4);
    PPort::DlPortWritePortUchar(0x379, 0x55);  // the status register is read only
    EXPECT_EQ(PPort::DlPortReadPortUchar(0x379), 0x5F);
    EXPECT_EQ(PPort::DlPortReadPortUchar(0x378), 0x8F);
    EXPECT_EQ(PPort::DlPortReadPortUchar(0x37A), 4);
    EXPECT_EQ(Kernel.ValuesOf(QStringLiteral("PPWDATA")), QList<int>({0x8F}));
    EXPECT_EQ(Kernel.ValuesOf(QStringLiteral("PPWCONTROL")), QList<int>({4}));
}

TEST_F(PPortTest, ARegisterOutsideThePortsThreeReachesNothing) {
    PPort::Transfer Claimed(0x378);
    PPort::DlPortWritePortUchar(0x37B, 1);
    PPort::DlPortWritePortUchar(0x377, 1);
    EXPECT_EQ(PPort::DlPortReadPortUchar(0x278), 0xFF);
    EXPECT_TRUE(Kernel.ValuesOf(QStringLiteral("PPWDATA")).isEmpty());
    EXPECT_TRUE(Kernel.ValuesOf(QStringLiteral("PPWCONTROL")).isEmpty());
}

TEST_F(PPortTest, NothingIsWrittenOutsideATransfer) {
    PPort::DlPortWritePortUchar(0x378, 0x8F);
    EXPECT_EQ(PPort::DlPortReadPortUchar(0x379), 0xFF);
    EXPECT_TRUE(Kernel.Calls.isEmpty());
}

TEST_F(PPortTest, ACommandThatCannotClaimItsPortNamesTheCauseAndWritesNothing) {
    Kernel.Devices[0].OpenErrno = EACCES;
    EXPECT_EQ(ErrorOf([] { ParallelDownloader::ResetKV10(); }),
              QStringLiteral("Permission denied: /dev/parport0; add the user to the lp group"));
    Kernel.Devices[0].OpenErrno = 0;
    Kernel.Procs[QStringLiteral("parport0/devices/active")] = "lp0\n";
    EXPECT_EQ(ErrorOf([] { ParallelDownloader::ExecuteKV10(); }),
              QStringLiteral("In use by another driver: /dev/parport0 (held by lp0)"));
    EXPECT_TRUE(Kernel.ValuesOf(QStringLiteral("PPWDATA")).isEmpty());
    EXPECT_TRUE(Kernel.ValuesOf(QStringLiteral("PPWCONTROL")).isEmpty());
}

TEST_F(PPortTest, ABaseWithNoPortBehindItNamesTheAddress) {
    ParallelDownloader::SetPortBase(0x268);
    EXPECT_EQ(ErrorOf([] { ParallelDownloader::PowerDownKV10(); }),
              QStringLiteral("No parallel port at address &H268"));
    EXPECT_TRUE(Kernel.Calls.isEmpty());
}

TEST_F(PPortTest, TheLineStatesEachClaimThePortForTheirWritesOnly) {
    ParallelDownloader::ExecuteKV10();
    EXPECT_EQ(Kernel.ValuesOf(QStringLiteral("PPWDATA")), QList<int>(6, 0x9F));
    EXPECT_EQ(Kernel.ValuesOf(QStringLiteral("PPWCONTROL")), QList<int>(6, 4));
    EXPECT_FALSE(Kernel.Devices[0].Claimed);
    EXPECT_EQ(Kernel.OpenDescriptors(), 0);
    EXPECT_EQ(Kernel.Devices[0].Data, 0x9F) << "the register keeps its value after the release";
}

TEST_F(PPortTest, TransfersInsideATransferShareItsClaim) {
    {
        PPort::Transfer Outer(0x378);
        ParallelDownloader::ResetKV10();
        ParallelDownloader::ExecuteKV10();
        EXPECT_TRUE(Kernel.Devices[0].Claimed);
    }
    EXPECT_EQ(Kernel.Kinds().count(QStringLiteral("PPCLAIM")), 1);
    EXPECT_EQ(Kernel.Kinds().count(QStringLiteral("PPRELEASE")), 1);
}

TEST_F(PPortTest, AReservedDeviceStaysClaimedBetweenTransfers) {
    Handle = PPort::Reserve(QStringLiteral("/dev/parport0"));
    EXPECT_TRUE(Kernel.Devices[0].Claimed);
    ParallelDownloader::ResetKV10();
    ParallelDownloader::ExecuteKV10();
    EXPECT_TRUE(Kernel.Devices[0].Claimed);
    EXPECT_EQ(Kernel.Kinds().count(QStringLiteral("PPCLAIM")), 1);
    EXPECT_EQ(Kernel.Kinds().count(QStringLiteral("open")), 1);
    EXPECT_EQ(Kernel.ValuesOf(QStringLiteral("PPWDATA")).size(), 12);
    PPort::Unreserve(Handle);
    EXPECT_FALSE(PPort::IsReserved());
    EXPECT_FALSE(Kernel.Devices[0].Claimed);
    EXPECT_EQ(Kernel.OpenDescriptors(), 0);
}

TEST_F(PPortTest, AReservationOfAnotherDeviceLeavesTheBasesDeviceToTheTransfer) {
    Handle = PPort::Reserve(QStringLiteral("/dev/parport1"));
    ParallelDownloader::ResetKV10();
    EXPECT_TRUE(Kernel.Devices[1].Claimed) << "the reserved one is held";
    EXPECT_FALSE(Kernel.Devices[0].Claimed) << "the base's one was claimed and given back";
    EXPECT_EQ(Kernel.Devices[0].Data, 0x8F);
    EXPECT_EQ(Kernel.Devices[1].Data, 0);
}

TEST_F(PPortTest, ReservingADeviceThatCannotBeHadNamesItAndReservesNothing) {
    EXPECT_EQ(ErrorOf([] { PPort::Reserve(QStringLiteral("/dev/parport5")); }),
              QStringLiteral("No such device: /dev/parport5"));
    EXPECT_FALSE(PPort::IsReserved());
}

TEST_F(PPortTest, LettingAReservationGoDuringATransferKeepsThePortUntilItEnds) {
    Handle = PPort::Reserve(QStringLiteral("/dev/parport0"));
    {
        PPort::Transfer Claimed(0x378);
        PPort::Unreserve(Handle);
        EXPECT_TRUE(Kernel.Devices[0].Claimed);
        PPort::DlPortWritePortUchar(0x378, 7);
    }
    EXPECT_FALSE(Kernel.Devices[0].Claimed);
    EXPECT_EQ(Kernel.Devices[0].Data, 7);
}

}  // namespace
