#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include "PrfImageBuilder.h"
#include "chip/FileExecutivePRF.h"
#include "chip/PRFfileType.h"
#include "frame/CommandLineInterpreter.h"
#include "platform/Global.h"
#include "support/FaultyDisk.h"
#include "support/FrameFixture.h"

namespace {

class PrfFileTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        Mirror.Path = TempPath();
        Mirror.Name = QStringLiteral("blink");
    }
    void TearDown() override {
        Global<FileExecutivePRF>::Unload();
        FrameFixture::TearDown();
    }
    QString PrfName() const { return TempPath() + QStringLiteral("/blink.prf"); }
    QByteArray FileBytes() const {
        QFile File(PrfName());
        return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray("<none>");
    }
    static QByteArray Le32(int32_t Value) {
        QByteArray Bytes;
        for (int Byte = 0; Byte < 4; ++Byte) {
            Bytes.append(static_cast<char>((static_cast<uint32_t>(Value) >> (8 * Byte)) & 0xFF));
        }
        return Bytes;
    }
    // The 14 bytes of record RecordNumber in Image.
    static QByteArray RecordAt(const QByteArray& Image, int32_t RecordNumber) {
        return Image.mid((RecordNumber - 1) * 14, 14);
    }
    static QByteArray ValueRecord(int32_t Value) { return Le32(Value) + QByteArray(10, '\0'); }

    PRFfileType Mirror;
};

TEST_F(PrfFileTest, NewMirrorHoldsTheDefaults) {
    EXPECT_EQ(Mirror.Processor(), 2);
    EXPECT_EQ(Mirror.NodeAddress, 65279);
    EXPECT_EQ(Mirror.GroupAddress, 254);
    EXPECT_FALSE(Mirror.NetEnable);
    EXPECT_FALSE(Mirror.RamEnable);
    EXPECT_FALSE(Mirror.CodeCache);
    EXPECT_FALSE(Mirror.Com1Enable);
    EXPECT_FALSE(Mirror.Com2Enable);
    EXPECT_TRUE(Mirror.OptimizeEnable);
    EXPECT_EQ(Mirror.UseInternalEEPROM, 0);
    EXPECT_EQ(Mirror.NetBaud, 460800);
    EXPECT_EQ(Mirror.SpiSize, 32768);
    EXPECT_TRUE(Mirror.StrictSyntaxRules);
    EXPECT_TRUE(Mirror.PCLink);
    EXPECT_EQ(Mirror.MaxVstr, 16);
    for (int32_t Pin = 1; Pin <= 40; ++Pin) {
        EXPECT_EQ(Mirror.GetPinState(Pin), kvInputTristate);
    }
}

TEST_F(PrfFileTest, DefaultsTakeTheUsersPresentCompilerSettings) {
    SetSetting(QStringLiteral("Optimize_Enable"), QStringLiteral("False"));
    SetSetting(QStringLiteral("Strict_Syntax_Rules"), QStringLiteral("False"));
    SetSetting(QStringLiteral("MaxVstr"), QStringLiteral("40"));
    Mirror.DefaultProfile(2);
    EXPECT_FALSE(Mirror.OptimizeEnable);
    EXPECT_FALSE(Mirror.StrictSyntaxRules);
    EXPECT_EQ(Mirror.MaxVstr, 40);
}

TEST_F(PrfFileTest, DefaultProfileSetsProcessorAndPcLink) {
    Mirror.DefaultProfile(1);
    EXPECT_EQ(Mirror.Processor(), 1);
    EXPECT_FALSE(Mirror.PCLink);
    Mirror.DefaultProfile(3);
    EXPECT_EQ(Mirror.Processor(), 3);
    EXPECT_TRUE(Mirror.PCLink);
    Mirror.DefaultProfile(7);
    EXPECT_EQ(Mirror.Processor(), 7);
    EXPECT_TRUE(Mirror.PCLink) << "an unknown model keeps the default";
}

TEST_F(PrfFileTest, ChangeProcessorChangesOnlyTheProcessor) {
    Mirror.NodeAddress = 12;
    Mirror.ChangeProcessor(3);
    EXPECT_EQ(Mirror.Processor(), 3);
    EXPECT_EQ(Mirror.NodeAddress, 12);
    EXPECT_TRUE(Mirror.PCLink);
}

TEST_F(PrfFileTest, DefaultPinsWriteRecordOneWithTheInFlag) {
    Mirror.WriteFile();
    const QByteArray Image = FileBytes();
    ASSERT_EQ(Image.size(), 8610);
    const char Expected[14] = {0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(RecordAt(Image, 1), QByteArray(Expected, 14));
    EXPECT_EQ(Image.mid(8568, 4), Le32(2)) << "record 613 of a KV-20";
}

TEST_F(PrfFileTest, DefaultKv20FileHoldsEveryRecordWhereItBelongs) {
    Mirror.DefaultProfile(2);
    Mirror.WriteFile();
    const QByteArray Image = FileBytes();
    ASSERT_EQ(Image.size(), 615 * 14);
    for (int32_t Record = 41; Record <= 599; ++Record) {
        ASSERT_EQ(RecordAt(Image, Record), QByteArray(14, '\0')) << Record;
    }
    EXPECT_EQ(RecordAt(Image, 600), ValueRecord(65279));
    EXPECT_EQ(RecordAt(Image, 601), ValueRecord(254));
    for (int32_t Record = 602; Record <= 606; ++Record) {
        EXPECT_EQ(RecordAt(Image, Record), ValueRecord(0)) << Record;
    }
    EXPECT_EQ(RecordAt(Image, 607), ValueRecord(1));
    EXPECT_EQ(RecordAt(Image, 608), ValueRecord(0));
    EXPECT_EQ(RecordAt(Image, 609), ValueRecord(0));
    EXPECT_EQ(RecordAt(Image, 610), ValueRecord(460800));
    EXPECT_EQ(RecordAt(Image, 611), ValueRecord(32768));
    EXPECT_EQ(RecordAt(Image, 612), ValueRecord(1));
    EXPECT_EQ(RecordAt(Image, 613), ValueRecord(2));
    EXPECT_EQ(RecordAt(Image, 614), ValueRecord(1));
    EXPECT_EQ(RecordAt(Image, 615), ValueRecord(16));
    // The whole file is what a hand-made default KV-20 file is.
    EXPECT_EQ(Image, PrfImageBuilder().AllPins(kvInputTristate).DefaultValues(2).Image);
}

TEST_F(PrfFileTest, EveryPinStateIsWrittenInItsColumn) {
    const PinStateTypes States[] = {kvOutputLow, kvOutputHigh, kvInputTristate, kvInputPullup};
    for (int32_t Pin = 1; Pin <= 40; ++Pin) {
        Mirror.SetPinState(Pin, States[Pin % 4]);
    }
    Mirror.WriteFile();
    const QByteArray Image = FileBytes();
    PrfImageBuilder Expected;
    for (int32_t Pin = 1; Pin <= 40; ++Pin) {
        Expected.Pin(Pin, States[Pin % 4]);
    }
    EXPECT_EQ(Image.left(40 * 14), Expected.Image.left(40 * 14));
}

TEST_F(PrfFileTest, RoundTripOfEachModelsDefaultsGivesIdenticalBytes) {
    for (int32_t Processor : {1, 2, 3}) {
        PRFfileType First;
        First.Path = TempPath();
        First.Name = QStringLiteral("blink");
        First.DefaultProfile(Processor);
        First.WriteFile();
        const QByteArray Written = FileBytes();
        ASSERT_EQ(Written.size(), 8610) << Processor;

        PRFfileType Second;
        Second.Path = TempPath();
        Second.Name = QStringLiteral("blink");
        Second.ReadExistingFile();
        EXPECT_EQ(Second.Processor(), Processor);
        EXPECT_EQ(Second.PCLink, Processor != 1);
        Second.WriteFile();
        EXPECT_EQ(FileBytes(), Written) << "model " << Processor;
    }
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(PrfFileTest, RoundTripKeepsEveryFieldAndPin) {
    Mirror.DefaultProfile(1);
    Mirror.UseInternalEEPROM = 2;
    Mirror.SpiSize = 8192;
    Mirror.RamEnable = true;
    Mirror.CodeCache = true;
    Mirror.Com1Enable = true;
    Mirror.Com2Enable = true;
    Mirror.NetEnable = true;
    Mirror.NetBaud = 19200;
    Mirror.NodeAddress = -5;
    Mirror.GroupAddress = 3;
    Mirror.OptimizeEnable = false;
    Mirror.StrictSyntaxRules = false;
    Mirror.PCLink = true;
    Mirror.MaxVstr = 64;
    for (int32_t Pin = 1; Pin <= 40; ++Pin) {
        Mirror.SetPinState(Pin, static_cast<PinStateTypes>((Pin * 7) % 4));
    }
    Mirror.WriteFile();
    PRFfileType Copy;
    Copy.Path = TempPath();
    Copy.Name = QStringLiteral("blink");
    Copy.ReadExistingFile();
    EXPECT_EQ(Copy.Processor(), 1);
    EXPECT_EQ(Copy.UseInternalEEPROM, 2);
    EXPECT_EQ(Copy.SpiSize, 8192);
    EXPECT_TRUE(Copy.RamEnable && Copy.CodeCache && Copy.Com1Enable && Copy.Com2Enable &&
                Copy.NetEnable);
    EXPECT_EQ(Copy.NetBaud, 19200);
    EXPECT_EQ(Copy.NodeAddress, -5);
    EXPECT_EQ(Copy.GroupAddress, 3);
    EXPECT_FALSE(Copy.OptimizeEnable);
    EXPECT_FALSE(Copy.StrictSyntaxRules);
    EXPECT_TRUE(Copy.PCLink);
    EXPECT_EQ(Copy.MaxVstr, 64);
    for (int32_t Pin = 1; Pin <= 40; ++Pin) {
        EXPECT_EQ(Copy.GetPinState(Pin), (Pin * 7) % 4) << Pin;
    }
}

TEST_F(PrfFileTest, ShortFileOf8554BytesLoadsWithTheShortFileValues) {
    ASSERT_TRUE(PrfImageBuilder(611).AllPins(kvInputTristate).Value(611, 4096).Save(PrfName()));
    Mirror.StrictSyntaxRules = false;
    Mirror.PCLink = false;
    Mirror.ReadExistingFile();
    EXPECT_EQ(Mirror.SpiSize, 4096);
    EXPECT_TRUE(Mirror.StrictSyntaxRules);
    EXPECT_EQ(Mirror.Processor(), 2);
    EXPECT_TRUE(Mirror.PCLink);
    EXPECT_EQ(Mirror.MaxVstr, 64);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(PrfFileTest, FileOf8553BytesIsReportedAndTheMirrorKept) {
    PrfImageBuilder Short(611);
    Short.Image.chop(1);
    ASSERT_TRUE(Short.Save(PrfName()));
    Mirror.NodeAddress = 4321;
    Mirror.ReadExistingFile();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Unable to read PRF file ") + PrfName());
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Error Reading PRF File"));
    EXPECT_EQ(Mirror.NodeAddress, 4321);
    EXPECT_EQ(FileBytes(), Short.Image) << "the short file is left as it was";
}

TEST_F(PrfFileTest, EmptyFileIsReportedAsUnreadable) {
    ASSERT_TRUE(PrfImageBuilder(0).Save(PrfName()));
    Mirror.ReadExistingFile();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Unable to read PRF file ") + PrfName());
    EXPECT_EQ(FileBytes(), QByteArray());
}

TEST_F(PrfFileTest, OutOfRangeValuesLoadAsTheirReplacements) {
    PrfImageBuilder Image;
    Image.DefaultValues(2).Value(601, 300).Value(615, 65).Value(609, 3).Value(613, 4).Value(610,
                                                                                            -1);
    ASSERT_TRUE(Image.Save(PrfName()));
    Mirror.ReadExistingFile();
    EXPECT_EQ(Mirror.GroupAddress, 254);
    EXPECT_EQ(Mirror.MaxVstr, 16);
    EXPECT_EQ(Mirror.UseInternalEEPROM, 0);
    EXPECT_EQ(Mirror.Processor(), 4) << "4 passes the check and is kept";
    EXPECT_EQ(Mirror.NetBaud, 0);

    ASSERT_TRUE(Image.Value(615, 0).Value(613, 5).Value(611, -3).Value(601, -1).Save(PrfName()));
    Mirror.ReadExistingFile();
    EXPECT_EQ(Mirror.MaxVstr, 16);
    EXPECT_EQ(Mirror.Processor(), 2);
    EXPECT_EQ(Mirror.SpiSize, 0);
    EXPECT_EQ(Mirror.GroupAddress, 254);

    ASSERT_TRUE(Image.Value(613, 0).Value(615, 1).Value(609, 2).Value(601, 0).Save(PrfName()));
    Mirror.ReadExistingFile();
    EXPECT_EQ(Mirror.Processor(), 0) << "0 passes the check and is kept";
    EXPECT_EQ(Mirror.MaxVstr, 1);
    EXPECT_EQ(Mirror.UseInternalEEPROM, 2);
    EXPECT_EQ(Mirror.GroupAddress, 0);
}

TEST_F(PrfFileTest, AnyNonZeroBooleanRecordIsTrue) {
    ASSERT_TRUE(PrfImageBuilder()
                    .DefaultValues(2)
                    .Value(602, -1)
                    .Value(603, 2)
                    .Value(614, 0)
                    .Value(607, 0)
                    .Save(PrfName()));
    Mirror.ReadExistingFile();
    EXPECT_TRUE(Mirror.NetEnable);
    EXPECT_TRUE(Mirror.RamEnable);
    EXPECT_FALSE(Mirror.PCLink);
    EXPECT_FALSE(Mirror.OptimizeEnable);
}

TEST_F(PrfFileTest, GarbageFileLoadsWithoutHarm) {
    PrfImageBuilder Garbage;
    for (qsizetype Index = 0; Index < Garbage.Image.size(); ++Index) {
        Garbage.Image[Index] = static_cast<char>((Index * 151 + 17) & 0xFF);
    }
    ASSERT_TRUE(Garbage.Save(PrfName()));
    Mirror.ReadExistingFile();
    EXPECT_GE(Mirror.Processor(), 0);
    EXPECT_LE(Mirror.Processor(), 4);
    EXPECT_GE(Mirror.MaxVstr, 1);
    EXPECT_LE(Mirror.MaxVstr, 64);
    EXPECT_GE(Mirror.UseInternalEEPROM, 0);
    EXPECT_LE(Mirror.UseInternalEEPROM, 2);
    EXPECT_GE(Mirror.SpiSize, 0);
    EXPECT_GE(Mirror.NetBaud, 0);
    EXPECT_EQ(FileBytes(), Garbage.Image) << "reading never writes";
}

TEST_F(PrfFileTest, ReadOnlyFileLoadsAndWriteFileLeavesItAlone) {
    const QByteArray Original = PrfImageBuilder().AllPins(kvOutputHigh).DefaultValues(3).Image;
    ASSERT_TRUE(PrfImageBuilder().AllPins(kvOutputHigh).DefaultValues(3).Save(PrfName()));
    QFile::setPermissions(PrfName(), QFile::ReadOwner | QFile::ReadGroup);
    Mirror.ReadExistingFile();
    EXPECT_EQ(Mirror.Processor(), 3);
    EXPECT_EQ(Mirror.GetPinState(40), kvOutputHigh);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());

    Mirror.SetPinState(40, kvOutputLow);
    Mirror.WriteFile();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("Existing PRF file ") + PrfName() + QStringLiteral(" is read-only"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Error writing to PRF File"));
    EXPECT_EQ(FileBytes(), Original);

    Mirror.WriteNewFile();
    ASSERT_EQ(Boxes->Boxes.size(), 2);
    EXPECT_EQ(Boxes->Boxes[1].Title, QStringLiteral("Error Creating PRF File"));
    EXPECT_EQ(FileBytes(), Original);
}

TEST_F(PrfFileTest, SavingAProjectWithoutAFileMakesOneOf615Records) {
    ASSERT_FALSE(QFile::exists(PrfName()));
    Mirror.WriteNewFile();
    EXPECT_EQ(FileBytes().size(), 8610);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(PrfFileTest, WriteFileReplacesAWrongSizedFileNot) {
    PrfImageBuilder Short(100);
    ASSERT_TRUE(Short.Save(PrfName()));
    Mirror.WriteFile();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Unable to write PRF file ") + PrfName());
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Error Writing to PRF File"));
    EXPECT_EQ(FileBytes(), Short.Image);
    Mirror.WriteNewFile();
    ASSERT_EQ(Boxes->Boxes.size(), 2);
    EXPECT_EQ(Boxes->Boxes[1].Text, QStringLiteral("Unable to create new PRF file ") + PrfName());
    EXPECT_EQ(FileBytes(), Short.Image);
}

TEST_F(PrfFileTest, DirectoryWhereTheFileShouldBeIsReportedAndKept) {
    ASSERT_TRUE(QDir().mkpath(PrfName()));
    Mirror.WriteFile();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("Unable to write PRF file ") + PrfName() +
                  QStringLiteral("\nError 75, Path/File access error (a folder has that name)"));
    EXPECT_TRUE(QFileInfo(PrfName()).isDir());
}

TEST_F(PrfFileTest, MissingFileOffersToMakeItAndNoKeepsEverything) {
    Mirror.NodeAddress = 77;
    Boxes->QueueAnswer(7);
    Mirror.ReadExistingFile();
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Can't find PRF file ") + PrfName() +
                                        QStringLiteral("\nCreate new file?"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Nonexistant PRF File"));
    EXPECT_EQ(Boxes->Boxes[0].Buttons, MsgBoxButtons::YesNo);
    EXPECT_FALSE(QFile::exists(PrfName()));
    EXPECT_EQ(Mirror.NodeAddress, 77);
}

TEST_F(PrfFileTest, MissingFileAnsweredYesIsMadeFromTheMirror) {
    Mirror.NodeAddress = 77;
    Boxes->QueueAnswer(6);
    Mirror.ReadExistingFile();
    EXPECT_EQ(RecordAt(FileBytes(), 600), ValueRecord(77));
}

TEST_F(PrfFileTest, MissingFileIsAskedAboutEvenInABatch) {
    CommandLineInterpreter::SetCommandLine(QStringLiteral("x /x"));
    CommandLineInterpreter::Run();
    ASSERT_TRUE(CommandLineInterpreter::GetCommandLineMode());
    const int BoxesBefore = Boxes->Boxes.size();
    Mirror.ReadExistingFile();
    EXPECT_EQ(Boxes->Boxes.size(), BoxesBefore + 1);
}

TEST_F(PrfFileTest, FileOperationsUseTheProjectsLocationWhenOneIsRegistered) {
    QDir().mkpath(TempPath() + QStringLiteral("/other"));
    PRFfileType::SetProjectLocationSource([this](QString& Path, QString& Name) {
        Path = TempPath() + QStringLiteral("/other");
        Name = QStringLiteral("lamp");
    });
    Mirror.WriteNewFile();
    PRFfileType::SetProjectLocationSource({});
    EXPECT_TRUE(QFile::exists(TempPath() + QStringLiteral("/other/lamp.prf")));
    EXPECT_FALSE(QFile::exists(PrfName()));
}

TEST_F(PrfFileTest, GetPinStateOutsideTheChipGivesTristate) {
    Mirror.SetPinState(3, kvOutputHigh);
    EXPECT_EQ(Mirror.GetPinState(3), kvOutputHigh);
    EXPECT_EQ(Mirror.GetPinState(0), kvInputTristate);
    EXPECT_EQ(Mirror.GetPinState(41), kvInputTristate);
}

}  // namespace

namespace {

// The most memory this process has held, from the kernel's account.
int64_t PeakResidentKilobytes() {
    QFile Status(QStringLiteral("/proc/self/status"));
    if (!Status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    for (const QByteArray& Line : Status.readAll().split('\n')) {
        if (Line.startsWith("VmHWM:")) {
            return Line.mid(6).trimmed().split(' ').front().toLongLong();
        }
    }
    return 0;
}

TEST_F(PrfFileTest, SaveOnAFullDiskKeepsTheFileAndTellsTheCause) {
    PrfImageBuilder Stored(615);
    ASSERT_TRUE(Stored.Save(PrfName()));
    Mirror.NodeAddress = 77;
    {
        FaultyDisk Disk({.Room = 4096});
        Mirror.WriteFile();
        EXPECT_EQ(Disk.Commits, 0);
    }
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Unable to write PRF file ") + PrfName() +
                                        QStringLiteral("\nError 61, Disk full"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Error Writing to PRF File"));
    EXPECT_EQ(FileBytes(), Stored.Image);
}

TEST_F(PrfFileTest, HugeFileIsReadOnlyAsFarAsItsRecords) {
    PrfImageBuilder Stored(615);
    Stored.Value(600, 4321);
    ASSERT_TRUE(Stored.Save(PrfName()));
    // Three gigabytes that cost no disk: a hole after the records.
    {
        QFile File(PrfName());
        ASSERT_TRUE(File.resize(3LL << 30));
    }
    const int64_t Before = PeakResidentKilobytes();
    Mirror.ReadExistingFile();
    EXPECT_EQ(Mirror.NodeAddress, 4321);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_LT(PeakResidentKilobytes() - Before, 64 * 1024) << "the whole file was read";
}

TEST_F(PrfFileTest, SaveKeepsWhatALongerFileHoldsBehindTheRecords) {
    PrfImageBuilder Stored(615);
    ASSERT_TRUE(Stored.Save(PrfName()));
    QByteArray Tail(3 * (1 << 20) + 17, '\0');
    for (qsizetype Index = 0; Index < Tail.size(); ++Index) {
        Tail[Index] = static_cast<char>(Index * 13 + 1);
    }
    {
        QFile File(PrfName());
        ASSERT_TRUE(File.open(QIODevice::Append));
        ASSERT_EQ(File.write(Tail), Tail.size());
    }
    Mirror.ReadExistingFile();
    Mirror.NodeAddress = 77;
    Mirror.WriteFile();
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    const QByteArray After = FileBytes();
    ASSERT_EQ(After.size(), 8610 + Tail.size());
    EXPECT_EQ(After.mid(8610), Tail);
    EXPECT_EQ(PrfRecordType::Decode(After, PrfRecordType::OffsetOf(600)).Value, 77);
}

}  // namespace
