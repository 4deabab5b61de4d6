#include <gtest/gtest.h>

#include "PlatformTestSupport.h"
#include "platform/ErrObject.h"
#include "platform/PpdevParallelPort.h"
#include "support/FakePpdevCalls.h"

namespace {

class PpdevParallelPortTest : public ::testing::Test {
  protected:
    // The run-time error a call raises; number 0 when it raises none.
    template <class Call>
    static RuntimeError ErrorOf(Call&& Action) {
        try {
            Action();
        } catch (const RuntimeError& Error) {
            return Error;
        }
        return RuntimeError(0, QString());
    }

    FakePpdevCalls Kernel;
};

TEST_F(PpdevParallelPortTest, ClaimOpensTheDeviceClaimsItAndTurnsTheDataLinesToOutput) {
    Kernel.AddDevice(0, 0x378);
    PpdevParallelPort Port(0, Kernel);
    EXPECT_FALSE(Port.Claimed());
    Port.Claim();
    EXPECT_TRUE(Port.Claimed());
    EXPECT_EQ(Kernel.Kinds(), (QStringList{QStringLiteral("open"), QStringLiteral("PPCLAIM"),
                                           QStringLiteral("PPDATADIR")}));
    EXPECT_EQ(Kernel.Calls.at(0).Device, QStringLiteral("/dev/parport0"));
    EXPECT_EQ(Kernel.ValuesOf(QStringLiteral("PPDATADIR")), QList<int>({0}));
}

TEST_F(PpdevParallelPortTest, RegistersAreReachedThroughTheirRequests) {
    FakePpdevCalls::Device& Device = Kernel.AddDevice(1, 0x278);
    Device.Status = 0x5F;
    PpdevParallelPort Port(1, Kernel);
    Port.Claim();
    Port.WriteData(0x8F);
    Port.WriteControl(4);
    EXPECT_EQ(Port.ReadStatus(), 0x5F);
    EXPECT_EQ(Port.ReadData(), 0x8F);
    EXPECT_EQ(Port.ReadControl(), 4);
    EXPECT_EQ(Kernel.ValuesOf(QStringLiteral("PPWDATA")), QList<int>({0x8F}));
    EXPECT_EQ(Kernel.ValuesOf(QStringLiteral("PPWCONTROL")), QList<int>({4}));
    EXPECT_EQ(Kernel.Devices[1].Data, 0x8F);
}

TEST_F(PpdevParallelPortTest, ReleaseGivesThePortBackAndTheEndClosesTheDevice) {
    Kernel.AddDevice(0, 0x378);
    {
        PpdevParallelPort Port(0, Kernel);
        Port.Claim();
        Port.Release();
        EXPECT_FALSE(Port.Claimed());
        EXPECT_EQ(Kernel.Kinds().last(), QStringLiteral("PPRELEASE"));
        EXPECT_EQ(Kernel.OpenDescriptors(), 1) << "released, the device may stay open";
    }
    EXPECT_EQ(Kernel.OpenDescriptors(), 0);
    EXPECT_EQ(Kernel.Kinds().count(QStringLiteral("PPRELEASE")), 1) << "released once";
}

TEST_F(PpdevParallelPortTest, AnUnclaimedPortWritesNothingAndReads0xFF) {
    Kernel.AddDevice(0, 0x378);
    PpdevParallelPort Port(0, Kernel);
    Port.WriteData(0x12);
    Port.WriteControl(11);
    EXPECT_EQ(Port.ReadStatus(), 0xFF);
    Port.Claim();
    Port.Release();
    Port.WriteData(0x34);
    EXPECT_TRUE(Kernel.ValuesOf(QStringLiteral("PPWDATA")).isEmpty());
    EXPECT_TRUE(Kernel.ValuesOf(QStringLiteral("PPWCONTROL")).isEmpty());
}

TEST_F(PpdevParallelPortTest, AMissingDeviceNamesItselfAndNothingIsWritten) {
    PpdevParallelPort Port(2, Kernel);
    const RuntimeError Error = ErrorOf([&] { Port.Claim(); });
    EXPECT_EQ(Error.Number(), 68);
    EXPECT_EQ(Error.Description(), QStringLiteral("No such device: /dev/parport2"));
    EXPECT_FALSE(Port.Claimed());
    Port.WriteData(1);
    EXPECT_EQ(Kernel.Kinds(), QStringList({QStringLiteral("open")}));
}

TEST_F(PpdevParallelPortTest, ADeviceTheUserMayNotOpenAsksForTheLpGroup) {
    Kernel.AddDevice(0, 0x378).OpenErrno = EACCES;
    PpdevParallelPort Port(0, Kernel);
    const RuntimeError Error = ErrorOf([&] { Port.Claim(); });
    EXPECT_EQ(Error.Number(), 70);
    EXPECT_EQ(Error.Description(),
              QStringLiteral("Permission denied: /dev/parport0; add the user to the lp group"));
    Port.WriteData(1);
    EXPECT_TRUE(Kernel.ValuesOf(QStringLiteral("PPWDATA")).isEmpty());
}

TEST_F(PpdevParallelPortTest, APortAnotherDriverHoldsIsNotWaitedForAndNamesTheDriver) {
    Kernel.AddDevice(0, 0x378);
    Kernel.Procs[QStringLiteral("parport0/devices/active")] = "lp0\n";
    PpdevParallelPort Port(0, Kernel);
    const RuntimeError Error = ErrorOf([&] { Port.Claim(); });
    EXPECT_EQ(Error.Number(), 70);
    EXPECT_EQ(Error.Description(),
              QStringLiteral("In use by another driver: /dev/parport0 (held by lp0)"));
    EXPECT_TRUE(Kernel.Calls.isEmpty()) << "the device is not even opened";
}

TEST_F(PpdevParallelPortTest, AClaimTheKernelRefusesClosesTheDeviceAndWritesNothing) {
    Kernel.AddDevice(0, 0x378).ClaimErrno = EBUSY;
    PpdevParallelPort Port(0, Kernel);
    const RuntimeError Error = ErrorOf([&] { Port.Claim(); });
    EXPECT_EQ(Error.Description(), QStringLiteral("In use by another driver: /dev/parport0"));
    EXPECT_EQ(Kernel.OpenDescriptors(), 0);
    Port.WriteData(1);
    EXPECT_EQ(Kernel.Kinds(), (QStringList{QStringLiteral("open"), QStringLiteral("PPCLAIM"),
                                           QStringLiteral("close")}));
}

TEST_F(PpdevParallelPortTest, ADeviceNodeWithNoPortBehindItIsAMissingDevice) {
    // ppdev registers with the port at the claim: a node without one fails there.
    Kernel.AddDevice(3, 0x3E8).ClaimErrno = ENXIO;
    PpdevParallelPort Port(3, Kernel);
    EXPECT_EQ(ErrorOf([&] { Port.Claim(); }).Description(),
              QStringLiteral("No such device: /dev/parport3"));
}

TEST_F(PpdevParallelPortTest, ADeviceLostUnderAClaimIsARunTimeErrorNamingIt) {
    Kernel.AddDevice(0, 0x378).WriteErrno = EIO;
    PpdevParallelPort Port(0, Kernel);
    Port.Claim();
    const RuntimeError Error = ErrorOf([&] { Port.WriteData(7); });
    EXPECT_EQ(Error.Number(), 57);
    EXPECT_TRUE(Error.Description().startsWith(QStringLiteral("/dev/parport0: ")))
        << Error.Description().toStdString();
}

}  // namespace
