#include <QElapsedTimer>

#include "LinkFixture.h"

namespace {

class KavlinControlExternalEEprom : public LinkFixture {
  protected:
    static KavlinControl::ByteBlock Pattern(int Size) {
        KavlinControl::ByteBlock Block(Size);
        for (int Index = 0; Index < Size; ++Index) {
            Block[Index] = static_cast<uint8_t>((Index * 7 + Index / 256) & 0xFF);
        }
        return Block;
    }

    static QByteArray PageWrite(int Address, const KavlinControl::ByteBlock& Block, int Count) {
        QByteArray Frame = Hex("80");
        Frame.append(static_cast<char>(Count + 3));
        Frame.append('\x02');
        Frame.append(static_cast<char>(Address >> 8));
        Frame.append(static_cast<char>(Address & 0xFF));
        for (int Index = 0; Index < Count; ++Index) {
            Frame.append(static_cast<char>(Block[Address + Index]));
        }
        Frame.append('\0');
        return Frame;
    }

    // The frames a write sends before the read-back begins.
    static QList<QByteArray> WriteFrames(const QList<QByteArray>& Pages) {
        QList<QByteArray> Frames = {Hex("80010600"), Hex("8002010000"), Zeros(116)};
        for (const QByteArray& Page : Pages) {
            Frames << Hex("80010600") << Page << Zeros(116);
        }
        Frames << Hex("80010600") << Hex("8002010c00") << Zeros(116);
        return Frames;
    }

    static QByteArray ReadTail(int Count) {
        QByteArray Frame = Hex("80");
        Frame.append(static_cast<char>(Count));
        return Frame + Zeros(Count) + Zeros(2);
    }

    QByteArray EepromBytes(int Address, int Count) {
        const auto& Memory = Line->Chip().ExternalEeprom.Memory;
        return QByteArray(reinterpret_cast<const char*>(Memory.data()) + Address, Count);
    }

    static QByteArray BlockBytes(const KavlinControl::ByteBlock& Block, int Address, int Count) {
        return QByteArray(reinterpret_cast<const char*>(Block.data()) + Address, Count);
    }
};

TEST_F(KavlinControlExternalEEprom, ReadOfLengthZeroStillSendsBeginReadAndCompletes) {
    OpenAndHalt();
    KavlinControl::ByteBlock Block(300, 0x33);
    Control->ReadExternalEEprom(300, 0, Block);
    EXPECT_EQ(Line->Outputs(), QList<QByteArray>({Hex("8003030"
                                                      "12c"),
                                                  Hex("1000")}));
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("EEprom Read Complete"));
    EXPECT_EQ(Block, KavlinControl::ByteBlock(300, 0x33));
    EXPECT_FALSE(Control->PBar->isVisibleTo(Control.get()));
}

TEST_F(KavlinControlExternalEEprom, ReadStreamsBlocksAndATailAndLeavesTheMonitor) {
    OpenAndHalt();
    auto& Memory = Line->Chip().ExternalEeprom.Memory;
    for (int Index = 0; Index < 400; ++Index) {
        Memory[0x0105 + Index] = static_cast<uint8_t>(Index * 3);
    }
    KavlinControl::ByteBlock Block(0x0105 + 300, 0);
    Control->ReadExternalEEprom(0x0105, 300, Block);
    const QByteArray ReadBlock = Hex("8080") + Zeros(128);
    EXPECT_EQ(Line->Outputs(), QList<QByteArray>({Hex("8003030105"), ReadBlock, ReadBlock,
                                                  ReadTail(44), Hex("1000")}));
    EXPECT_EQ(BlockBytes(Block, 0x0105, 300), EepromBytes(0x0105, 300));
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("EEprom Read Complete"));
    // Told to leave the monitor, and yet still counted as halted.
    EXPECT_TRUE(Control->ChipIsHalted());
    LetTheLineSettle();
    EXPECT_FALSE(Line->Chip().InMonitor());
    EXPECT_EQ(Control->PBar->minimum(), 0x0105);
    EXPECT_EQ(Control->PBar->maximum(), 0x0105 + 300 + 1);
    EXPECT_EQ(Control->PBar->value(), 0x0105);
}

TEST_F(KavlinControlExternalEEprom, ReadGettingTooFewBytesShowsReadShort) {
    OpenAndHalt();
    Line->Chip().Faults.DroppedByte = -1;
    KavlinControl::ByteBlock Block(200, 0x66);
    Control->ReadExternalEEprom(0, 200, Block);
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("Read Short"));
    EXPECT_EQ(Block, KavlinControl::ByteBlock(200, 0x66));
    EXPECT_TRUE(Control->ChipIsHalted());
    EXPECT_FALSE(Control->PBar->isVisibleTo(Control.get()));
    // No leave bytes after a short read.
    EXPECT_NE(Line->Outputs().last(), Hex("1000"));
}

TEST_F(KavlinControlExternalEEprom, WriteOf64BytesAtZeroIsOnePageFrameOfN67) {
    OpenAndHalt();
    auto Block = Pattern(64);
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->WriteExternalEEprom(0, 64, Block, Status);
    EXPECT_EQ(Status, dlOK);
    QList<QByteArray> Expected = WriteFrames({PageWrite(0, Block, 64)});
    Expected << Hex("8003030000") << ReadTail(64);
    EXPECT_EQ(Line->Outputs(), Expected);
    EXPECT_EQ(static_cast<uint8_t>(Expected[4][1]), 67);
    EXPECT_EQ(EepromBytes(0, 64), BlockBytes(Block, 0, 64));
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("EEprom Write Successful"));
    // The chip stays in its monitor after a write.
    EXPECT_TRUE(Line->Chip().InMonitor());
    EXPECT_EQ(Line->Chip().ExternalEeprom.BlockProtect(), 3);
}

TEST_F(KavlinControlExternalEEprom, WriteOf65BytesIsAFrameOfN67AndOneOfN4) {
    OpenAndHalt();
    auto Block = Pattern(65);
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->WriteExternalEEprom(0, 65, Block, Status);
    EXPECT_EQ(Status, dlOK);
    QList<QByteArray> Expected = WriteFrames({PageWrite(0, Block, 64), PageWrite(64, Block, 1)});
    Expected << Hex("8003030000") << ReadTail(65);
    EXPECT_EQ(Line->Outputs(), Expected);
    EXPECT_EQ(EepromBytes(0, 65), BlockBytes(Block, 0, 65));
}

TEST_F(KavlinControlExternalEEprom, WriteFrom60OfTenBytesSplitsAtThePage) {
    OpenAndHalt();
    auto Block = Pattern(70);
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->WriteExternalEEprom(60, 10, Block, Status);
    EXPECT_EQ(Status, dlOK);
    const QByteArray First = PageWrite(60, Block, 4);
    const QByteArray Second = PageWrite(64, Block, 6);
    EXPECT_EQ(First.left(5), Hex("800702003c"));
    EXPECT_EQ(Second.left(5), Hex("800902"
                                  "0040"));
    QList<QByteArray> Expected = WriteFrames({First, Second});
    Expected << Hex("800303003c") << ReadTail(10);
    EXPECT_EQ(Line->Outputs(), Expected);
    EXPECT_EQ(EepromBytes(60, 10), BlockBytes(Block, 60, 10));
}

TEST_F(KavlinControlExternalEEprom, WriteFrom60OfTwoBytesTakesBothInThePartialPage) {
    OpenAndHalt();
    auto Block = Pattern(62);
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->WriteExternalEEprom(60, 2, Block, Status);
    EXPECT_EQ(Status, dlOK);
    QList<QByteArray> Expected = WriteFrames({PageWrite(60, Block, 2)});
    Expected << Hex("800303003c") << ReadTail(2);
    EXPECT_EQ(Line->Outputs(), Expected);
    EXPECT_EQ(EepromBytes(60, 2), BlockBytes(Block, 60, 2));
}

TEST_F(KavlinControlExternalEEprom, WriteWaitsOutTheFillerAfterEveryPage) {
    OpenAndHalt();
    auto Block = Pattern(256);
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->WriteExternalEEprom(0, 200, Block, Status);
    ASSERT_EQ(Status, dlOK);
    // Between a filler's Output and the next write enable the line carried
    // the 116 bytes but the 16 of them left in the transmit FIFO: the host
    // waited for the drain. The chip's side of this is the slow EEPROM's test.
    const auto& Events = Line->HostEvents();
    int Fillers = 0;
    for (size_t Index = 0; Index + 1 < Events.size(); ++Index) {
        if (Events[Index].Bytes == Zeros(116)) {
            ++Fillers;
            size_t Next = Index + 1;
            while (Events[Next].What != SimulatedSerialLine::HostEvent::Output) {
                ++Next;
            }
            EXPECT_GE(Events[Next].Ns - Events[Index].Ns, (116 - 16) * SimulatedSerialLine::ByteNs);
        }
    }
    EXPECT_EQ(Fillers, 2 + 4);
}

TEST_F(KavlinControlExternalEEprom, EepromSlowerThanTheFillerFailsTheVerify) {
    OpenAndHalt();
    Line->Chip().ExternalEeprom.WriteCycleNs = 15'000'000;
    auto Block = Pattern(200);
    DownloaderStatusTypes Status = dlOK;
    Control->WriteExternalEEprom(0, 200, Block, Status);
    EXPECT_EQ(Status, dlVerifyFailed);
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("Verify Error"));
    EXPECT_TRUE(Control->ChipIsHalted());
    EXPECT_GT(Line->Chip().ExternalEeprom.RefusedWrites, 0);
}

TEST_F(KavlinControlExternalEEprom, VerifyOfWholeReadBlocksMissesTheBytesStillOnTheWay) {
    OpenAndHalt();
    auto Block = Pattern(128);
    DownloaderStatusTypes Status = dlOK;
    Control->WriteExternalEEprom(0, 128, Block, Status);
    // The EEPROM holds the bytes, but with no last look after the final
    // block the read-back is short.
    EXPECT_EQ(EepromBytes(0, 128), BlockBytes(Block, 0, 128));
    EXPECT_EQ(Status, dlVerifyFailed);
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("Verify Error"));
    EXPECT_EQ(Line->Outputs().last(), Hex("8080") + Zeros(128));
}

TEST_F(KavlinControlExternalEEprom, WriteOf32KBytesVerifiesInWellUnderASecond) {
    OpenAndHalt();
    auto Block = Pattern(32768);
    DownloaderStatusTypes Status = dlWriteFailed;
    QElapsedTimer RealTime;
    RealTime.start();
    const int64_t VirtualStartUs = Clock->MicroTicks();
    Control->WriteExternalEEprom(0, 32767, Block, Status);
    const qint64 RealMs = RealTime.elapsed();
    EXPECT_EQ(Status, dlOK);
    EXPECT_EQ(EepromBytes(0, 32767), BlockBytes(Block, 0, 32767));
    EXPECT_LT(RealMs, 1000);
    // 512 pages, each 190 bytes on the line, then the read-back.
    const int64_t VirtualUs = Clock->MicroTicks() - VirtualStartUs;
    EXPECT_GT(VirtualUs, 512LL * 190 * SimulatedSerialLine::ByteNs / 1000);
    EXPECT_EQ(Line->Chip().ExternalEeprom.CompletedWrites, 1 + 512 + 1);
}

TEST_F(KavlinControlExternalEEprom, WriteFailingAtRunTimeGivesSeven) {
    OpenAndHalt();
    KavlinControl::ByteBlock Small(10, 0);
    DownloaderStatusTypes Status = dlOK;
    Control->WriteExternalEEprom(0, 64, Small, Status);
    EXPECT_EQ(Status, dlWriteFailed);
    EXPECT_EQ(Err().Number, 9);
}

TEST_F(KavlinControlExternalEEprom, AddressesInExternalFramesAreHighByteFirst) {
    OpenAndHalt();
    KavlinControl::ByteBlock Block(0x1234 + 1, 0);
    Control->ReadExternalEEprom(0x1234, 1, Block);
    EXPECT_EQ(Line->Outputs().first(), Hex("8003031234"));
}

}  // namespace
