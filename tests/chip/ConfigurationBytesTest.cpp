#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <cerrno>

#include "PrfImageBuilder.h"
#include "chip/ConfigurationBytes.h"
#include "chip/FileExecutivePRF.h"
#include "frame/GlobalData.h"
#include "platform/Global.h"
#include "support/FrameFixture.h"

namespace {

using namespace ConfigurationBytes;

ConfigurationBlock Block(std::initializer_list<std::pair<int, int>> NonZero) {
    ConfigurationBlock Result{};
    for (const auto& [Address, Value] : NonZero) {
        Result[Address] = static_cast<uint8_t>(Value);
    }
    return Result;
}

// While it lives, the process can open no more files: it takes the lowest
// free descriptor and lowers the limit to just above it, so every open()
// fails with EMFILE, whoever the user is. The limit and the descriptor are
// given back when it goes.
class NoFreeDescriptors {
  public:
    NoFreeDescriptors() {
        if (getrlimit(RLIMIT_NOFILE, &Saved_) != 0) {
            return;
        }
        Lowest_ = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (Lowest_ < 0) {
            return;
        }
        rlimit Lowered = Saved_;
        Lowered.rlim_cur = static_cast<rlim_t>(Lowest_) + 1;
        Lowered_ = setrlimit(RLIMIT_NOFILE, &Lowered) == 0;
    }
    ~NoFreeDescriptors() {
        if (Lowered_) {
            setrlimit(RLIMIT_NOFILE, &Saved_);
        }
        if (Lowest_ >= 0) {
            ::close(Lowest_);
        }
    }
    NoFreeDescriptors(const NoFreeDescriptors&) = delete;
    NoFreeDescriptors& operator=(const NoFreeDescriptors&) = delete;

    // True when an open() now fails for want of a descriptor.
    bool Holds() const {
        if (!Lowered_) {
            return false;
        }
        const int Probe = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (Probe >= 0) {
            ::close(Probe);
            return false;
        }
        return errno == EMFILE;
    }

  private:
    rlimit Saved_{};
    int Lowest_ = -1;
    bool Lowered_ = false;
};

class ConfigurationTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        GlobalData::ProjectFilename = TempPath() + QStringLiteral("/blink.kvp");
        GlobalData::MemorySize = 0;
        Registers.fill(0xEE);
    }
    void TearDown() override {
        GlobalData::ProjectFilename.clear();
        Global<FileExecutivePRF>::Unload();
        FrameFixture::TearDown();
    }
    void Save(const PrfImageBuilder& Image) {
        ASSERT_TRUE(Image.Save(TempPath() + QStringLiteral("/blink.prf")));
    }
    RegisterArray Registers{};
};

// ---- KV-20 ---------------------------------------------------------------

TEST_F(ConfigurationTest, Kv20DefaultPinsGiveTheFixedPortDAndBBytes) {
    Save(PrfImageBuilder().AllPins(kvInputTristate).DefaultValues(2));
    ConfigureKV20(Registers);
    EXPECT_EQ(BlockKV20(Registers), Block({{0, 2}, {1, 6}, {6, 176}, {7, 176}, {31, 255}}));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ConfigurationTest, Kv20EveryPinInAnotherStateGivesItsBits) {
    PrfImageBuilder Image;
    Image.AllPins(kvOutputHigh).DefaultValues(2);  // pins the KV-20 doesn't use stay high
    // Port A, bit 0 up: pins 20 down to 13.
    Image.Pin(20, kvOutputHigh)
        .Pin(19, kvOutputLow)
        .Pin(18, kvInputPullup)
        .Pin(17, kvInputTristate);
    Image.Pin(16, kvOutputHigh)
        .Pin(15, kvOutputLow)
        .Pin(14, kvInputPullup)
        .Pin(13, kvInputTristate);
    // Port C, bit 0 up: pins 12 down to 5.
    Image.Pin(12, kvOutputLow).Pin(11, kvOutputHigh).Pin(10, kvInputTristate).Pin(9, kvInputPullup);
    Image.Pin(8, kvOutputLow).Pin(7, kvOutputHigh).Pin(6, kvInputTristate).Pin(5, kvInputPullup);
    // Port D: pin 25 bit 7, 26 bit 5, 27 bit 4.
    Image.Pin(25, kvOutputHigh).Pin(26, kvInputPullup).Pin(27, kvOutputLow);
    Save(Image);
    ConfigureKV20(Registers);
    EXPECT_EQ(Registers[0], 85);   // A data
    EXPECT_EQ(Registers[1], 51);   // A direction
    EXPECT_EQ(Registers[4], 170);  // C data
    EXPECT_EQ(Registers[5], 51);   // C direction
    EXPECT_EQ(Registers[6], 160);  // D data
    EXPECT_EQ(Registers[7], 144);  // D direction
    EXPECT_EQ(BlockKV20(Registers), Block({{0, 146},
                                           {1, 166},
                                           {3, 51},
                                           {4, 170},
                                           {6, 176},
                                           {7, 176},
                                           {9, 51},
                                           {10, 85},
                                           {31, 255}}));
}

TEST_F(ConfigurationTest, Kv20OptionsFillTheArrayButNeverReachTheBlock) {
    PrfImageBuilder Image;
    Image.AllPins(kvInputTristate).DefaultValues(2);
    Image.Value(600, 0x12345).Value(601, 7).Value(602, 1).Value(603, 1).Value(604, 1);
    Image.Value(605, 1).Value(606, 1).Value(609, 1).Value(610, 19200);
    Image.PinFlags(20, 0, 1, 1, 0);  // two flags: the first one, P, counts
    Image.PinFlags(13, 0, 0, 0, 5);  // a flag of 5 counts as set
    Save(Image);
    ConfigureKV20(Registers);
    EXPECT_EQ(Registers[9], 0x45);
    EXPECT_EQ(Registers[10], 0x23);
    EXPECT_EQ(Registers[11], 7);
    EXPECT_EQ(Registers[12], 31);
    EXPECT_EQ(Registers[13], 1);
    EXPECT_EQ(Registers[14], 23);
    EXPECT_EQ(BlockKV20(Registers),
              Block({{0, 2}, {1, 6}, {6, 176}, {7, 176}, {9, 128}, {10, 129}, {31, 255}}));
}

// Each pin alone: with both high the byte is 129 whichever end each one maps to.
TEST_F(ConfigurationTest, Kv20Pin5HighSetsBit7OfPortC) {
    Save(PrfImageBuilder().AllPins(kvInputTristate).Pin(5, kvOutputHigh));
    ConfigureKV20(Registers);
    const ConfigurationBlock Result = BlockKV20(Registers);
    EXPECT_EQ(Result[3], 128) << "port C direction";
    EXPECT_EQ(Result[4], 128) << "port C data";
}

TEST_F(ConfigurationTest, Kv20Pin12HighSetsBit0OfPortC) {
    Save(PrfImageBuilder().AllPins(kvInputTristate).Pin(12, kvOutputHigh));
    ConfigureKV20(Registers);
    const ConfigurationBlock Result = BlockKV20(Registers);
    EXPECT_EQ(Result[3], 1) << "port C direction";
    EXPECT_EQ(Result[4], 1) << "port C data";
}

TEST_F(ConfigurationTest, Kv20Pin25LowLightsTheRedLed) {
    Save(PrfImageBuilder().AllPins(kvInputTristate).Pin(25, kvOutputLow));
    ConfigureKV20(Registers);
    const ConfigurationBlock Result = BlockKV20(Registers);
    EXPECT_EQ(Result[0], 128 | 2);
    EXPECT_EQ(Result[1], 6);
}

TEST_F(ConfigurationTest, Kv20PortDBitsZeroAndOneAreFixedWhateverTheArraySays) {
    RegisterArray Array{};
    Array[6] = 0xFF;
    Array[7] = 0xFF;
    Array[2] = 0xFF;
    Array[3] = 0xFF;
    const ConfigurationBlock Result = BlockKV20(Array);
    EXPECT_EQ(Result[0], 0xFE);
    EXPECT_EQ(Result[1], 0xFE);
    EXPECT_EQ(Result[6], 176 | 13);
    EXPECT_EQ(Result[7], 176 | 13);
}

// ---- KV-30 ---------------------------------------------------------------

TEST_F(ConfigurationTest, Kv30DefaultPinsGiveZerosAnd255) {
    Save(PrfImageBuilder().AllPins(kvInputTristate).DefaultValues(3));
    ConfigureKV30(Registers);
    EXPECT_EQ(BlockKV30(Registers), Block({{31, 255}}));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ConfigurationTest, Kv30EveryPortInMixedStates) {
    PrfImageBuilder Image;
    Image.AllPins(kvInputTristate).DefaultValues(3);
    // Pins on no port are ignored.
    for (int32_t Pin : {9, 10, 11, 12, 13, 30, 31, 32}) {
        Image.Pin(Pin, kvOutputHigh);
    }
    // Port A, bit 0 up: pins 40 down to 33.
    Image.Pin(40, kvOutputHigh)
        .Pin(39, kvOutputLow)
        .Pin(38, kvInputPullup)
        .Pin(37, kvInputTristate);
    Image.Pin(36, kvOutputHigh).Pin(35, kvOutputHigh).Pin(34, kvOutputLow).Pin(33, kvInputPullup);
    // Port B: pins 1 to 8.
    Image.Pin(1, kvOutputLow).Pin(2, kvOutputLow).Pin(3, kvOutputHigh).Pin(6, kvInputPullup);
    Image.Pin(7, kvOutputHigh).Pin(8, kvOutputLow);
    // Port C: pins 22 to 29.
    Image.Pin(22, kvInputPullup).Pin(23, kvInputPullup);
    // Port D: pins 14 to 21.
    for (int32_t Pin = 14; Pin <= 21; ++Pin) {
        Image.Pin(Pin, kvOutputHigh);
    }
    Save(Image);
    ConfigureKV30(Registers);
    EXPECT_EQ(
        BlockKV30(Registers),
        Block({{0, 255}, {1, 255}, {4, 3}, {6, 199}, {7, 100}, {9, 115}, {10, 181}, {31, 255}}));
    for (int Index = 12; Index <= 32; ++Index) {
        EXPECT_EQ(Registers[Index], 0) << Index;
    }
}

TEST_F(ConfigurationTest, Kv30OptionsOnChangeNothingAndOddRecordsReadAsTheirFirstFlag) {
    PrfImageBuilder Image;
    Image.AllPins(kvInputTristate).DefaultValues(3);
    for (int32_t Record = 602; Record <= 606; ++Record) {
        Image.Value(Record, 1);
    }
    Image.Value(609, 1).Value(610, 19200).Value(600, 1).Value(601, 1);
    Image.Pin(33, kvOutputLow).Pin(21, kvInputPullup);
    Image.PinFlags(14, 0, 0, 0, 0);  // no flag: tristate
    Image.PinFlags(15, 0, 1, 1, 0);  // P before 0: pull-up
    Save(Image);
    ConfigureKV30(Registers);
    EXPECT_EQ(BlockKV30(Registers), Block({{1, 130}, {9, 128}, {31, 255}}));
}

TEST_F(ConfigurationTest, Kv30MissingFileIsReportedAndTheArrayStaysZero) {
    ConfigureKV30(Registers);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Error -- PRF file ") + TempPath() +
                                        QStringLiteral("/blink.prf not found"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("PRF File Error"));
    EXPECT_EQ(Registers, RegisterArray{});
}

TEST_F(ConfigurationTest, Kv30WrongSizedFileIsReported) {
    Save(PrfImageBuilder(600).AllPins(kvOutputHigh));
    ConfigureKV30(Registers);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Error -- PRF file ") + TempPath() +
                                        QStringLiteral("/blink.prf has wrong size"));
    EXPECT_EQ(Registers, RegisterArray{});
}

TEST_F(ConfigurationTest, Kv30ReadOnlyFileIsRead) {
    Save(PrfImageBuilder().AllPins(kvOutputHigh));
    QFile::setPermissions(TempPath() + QStringLiteral("/blink.prf"), QFile::ReadOwner);
    ConfigureKV30(Registers);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_EQ(BlockKV30(Registers), Block({{0, 255},
                                           {1, 255},
                                           {3, 255},
                                           {4, 255},
                                           {6, 255},
                                           {7, 255},
                                           {9, 255},
                                           {10, 255},
                                           {31, 255}}));
}

// ---- KV-10 ---------------------------------------------------------------

TEST_F(ConfigurationTest, Kv10DefaultsGiveTheNetworkBytesAndNothingElse) {
    Save(PrfImageBuilder().AllPins(kvInputTristate).DefaultValues(1));
    ConfigureKV10(Registers);
    EXPECT_EQ(BlockKV10(Registers, 0),
              Block({{1, 4}, {11, 255}, {12, 254}, {13, 254}, {14, 0}, {31, 255}}));
    EXPECT_EQ(GlobalData::MemorySize, 32768);
}

TEST_F(ConfigurationTest, Kv10PinsOnEveryPortAndItsOptions) {
    PrfImageBuilder Image;
    Image.AllPins(kvInputTristate).DefaultValues(1);
    // Port A, bit 0 up: pins 39 down to 32.
    Image.Pin(39, kvOutputHigh).Pin(38, kvOutputLow).Pin(32, kvInputPullup);
    // Port B: pins 1 to 8. Port C: 21 to 28. Port D: 10 to 17.
    Image.Pin(1, kvInputPullup).Pin(2, kvOutputHigh);
    Image.Pin(28, kvOutputLow);
    Image.Pin(10, kvOutputHigh).Pin(17, kvOutputHigh);
    // Pins on no port are ignored.
    Image.Pin(9, kvOutputHigh).Pin(18, kvOutputHigh).Pin(29, kvOutputHigh).Pin(40, kvOutputHigh);
    Image.Value(600, 0x1ABCD).Value(601, 0x1F7).Value(602, 1).Value(605, 1);
    Image.Value(610, 19200).Value(611, 8192);
    Save(Image);
    ConfigureKV10(Registers);
    EXPECT_EQ(BlockKV10(Registers, 0), Block({{0, 129},
                                              {1, 133},
                                              {3, 128},
                                              {6, 2},
                                              {7, 3},
                                              {9, 3},
                                              {10, 129},
                                              {11, 205},
                                              {12, 171},
                                              {13, 247},
                                              {14, 23},
                                              {18, 9},
                                              {31, 255}}));
    EXPECT_EQ(GlobalData::MemorySize, 8192);
}

TEST_F(ConfigurationTest, Kv10CodeInTheInternalEepromStartsBehindPersistentMemory) {
    PrfImageBuilder Image;
    Image.AllPins(kvInputTristate).DefaultValues(1);
    Image.Value(609, 1).Value(604, 1).Value(603, 1).Value(610, 115200);
    Save(Image);
    ConfigureKV10(Registers);
    EXPECT_EQ(BlockKV10(Registers, 100), Block({{1, 4},
                                                {11, 255},
                                                {12, 254},
                                                {13, 254},
                                                {14, 3},
                                                {15, 132},
                                                {16, 0},
                                                {17, 255},
                                                {18, 6},
                                                {31, 255}}));
    EXPECT_EQ(BlockKV10(Registers, 480)[15], (480 + 32) & 0xFF);
    EXPECT_EQ(BlockKV10(Registers, 480)[16], (480 + 32) >> 8);
}

TEST_F(ConfigurationTest, Kv10CodePositionForCacheAndForStorageTwo) {
    Save(PrfImageBuilder().AllPins(kvInputTristate).DefaultValues(1).Value(604, 1));
    ConfigureKV10(Registers);
    ConfigurationBlock Result = BlockKV10(Registers, 100);
    EXPECT_EQ(Result[15], 0);
    EXPECT_EQ(Result[16], 3);
    EXPECT_EQ(Result[17], 254);
    EXPECT_EQ(Result[18], 4);

    Save(PrfImageBuilder().AllPins(kvInputTristate).DefaultValues(1).Value(609, 2));
    ConfigureKV10(Registers);
    Result = BlockKV10(Registers, 100);
    EXPECT_EQ(Result[15], 0);
    EXPECT_EQ(Result[16], 0);
    EXPECT_EQ(Result[17], 1);
}

TEST_F(ConfigurationTest, NoProjectPathEndsSilentlyWithAZeroArray) {
    GlobalData::ProjectFilename.clear();
    ConfigureKV10(Registers);
    EXPECT_EQ(Registers, RegisterArray{});
    Registers.fill(1);
    ConfigureKV20(Registers);
    EXPECT_EQ(Registers, RegisterArray{});
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(ConfigurationTest, MissingFileIsReportedByName) {
    ConfigureKV20(Registers);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Error -- PRF file ") + TempPath() +
                                        QStringLiteral("/blink.prf not found"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("PRF File Not Found"));
    EXPECT_EQ(Registers, RegisterArray{});
}

TEST_F(ConfigurationTest, DirectoryInThePreferenceFilesPlaceIsReportedNotFound) {
    GlobalData::ProjectFilename = TempPath() + QStringLiteral("/dir.kvp");
    QDir().mkpath(TempPath() + QStringLiteral("/dir.prf/x"));
    ConfigureKV10(Registers);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("PRF File Not Found"));
}

TEST_F(ConfigurationTest, FileThatCannotBeOpenedIsAMissingPreferenceFile) {
    Save(PrfImageBuilder().AllPins(kvOutputHigh).DefaultValues(1));
    ASSERT_TRUE(QFileInfo(TempPath() + QStringLiteral("/blink.prf")).isFile());
    {
        // The tests run as root, whom no permission bits keep from reading:
        // the file exists, but the process has no descriptor left to open it.
        NoFreeDescriptors Exhausted;
        ASSERT_TRUE(Exhausted.Holds());
        ConfigureKV10(Registers);
    }
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Missing preference file"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Missing PRF File"));
    EXPECT_EQ(Registers, RegisterArray{}) << "nothing was read";
    Boxes->Boxes.clear();
    {
        NoFreeDescriptors Exhausted;
        ASSERT_TRUE(Exhausted.Holds());
        ConfigureKV20(Registers);
    }
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text, QStringLiteral("Missing PRF file"));
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Missing PRF File"));
}

TEST_F(ConfigurationTest, NodeAddressAbove65535LosesItsUpperBits) {
    Save(PrfImageBuilder().DefaultValues(2).Value(600, 0x7FFF0102));
    ConfigureKV20(Registers);
    EXPECT_EQ(Registers[9], 0x02);
    EXPECT_EQ(Registers[10], 0x01);
}

TEST_F(ConfigurationTest, ShortFileReadsZeroForTheRecordsItLacks) {
    Save(PrfImageBuilder(605).AllPins(kvOutputHigh).Value(600, 3).Value(601, 4));
    ConfigureKV10(Registers);
    EXPECT_EQ(Registers[9], 3);
    EXPECT_EQ(Registers[11], 4);
    EXPECT_EQ(Registers[13], 0);
    EXPECT_EQ(Registers[14], 0) << "record 610 missing reads 0, which is 460800";
    EXPECT_EQ(GlobalData::MemorySize, 0);
}

// ---- Shared pieces -------------------------------------------------------

TEST(NetworkRate, DivisorOfTheCommonRates) {
    EXPECT_EQ(NetworkRateDivisor(0), 0);
    EXPECT_EQ(NetworkRateDivisor(460800), 0);
    EXPECT_EQ(NetworkRateDivisor(19200), 23);
    EXPECT_EQ(NetworkRateDivisor(115200), 3);
    EXPECT_EQ(NetworkRateDivisor(9600), 47);
}

TEST(NetworkRate, TiesRoundToTheEvenNumber) {
    EXPECT_EQ(NetworkRateDivisor(307200), 0);  // 0.5
    EXPECT_EQ(NetworkRateDivisor(184320), 2);  // 1.5
    EXPECT_EQ(NetworkRateDivisor(102400), 4);  // 3.5
    EXPECT_EQ(NetworkRateDivisor(131658), 2);  // 2.49997...
    EXPECT_EQ(NetworkRateDivisor(131657), 3);  // 2.50000...
}

TEST(NetworkRate, ResultIsTheLowEightBits) {
    EXPECT_EQ(NetworkRateDivisor(1), static_cast<uint8_t>(460799 & 0xFF));
    EXPECT_EQ(NetworkRateDivisor(-1), static_cast<uint8_t>(-460801 & 0xFF));
    EXPECT_EQ(NetworkRateDivisor(2000000000), 255);  // -1
}

TEST(PinBits, EachColumnSetsOrClearsItsBits) {
    RegisterArray Array{};
    Array[2] = 0xFF;
    Array[3] = 0xFF;
    PrfRecordType In;
    In.Flags[1] = 1;
    PutPinBits(In, 2, 1, Array);
    EXPECT_EQ(Array[2], 0xFE);
    EXPECT_EQ(Array[3], 0xFE);
    PrfRecordType Pullup;
    Pullup.Flags[2] = 1;
    PutPinBits(Pullup, 2, 2, Array);
    EXPECT_EQ(Array[2], 0xFE);
    EXPECT_EQ(Array[3], 0xFC);
    PrfRecordType Low;
    Low.Flags[3] = 1;
    PutPinBits(Low, 2, 1, Array);
    EXPECT_EQ(Array[2], 0xFE);
    EXPECT_EQ(Array[3], 0xFD);
    PrfRecordType High;
    High.Flags[4] = 1;
    PutPinBits(High, 2, 2, Array);
    EXPECT_EQ(Array[2], 0xFE);
    EXPECT_EQ(Array[3], 0xFF);
    PrfRecordType None;
    PutPinBits(None, 2, 0xFF, Array);
    EXPECT_EQ(Array[2], 0xFE);
    EXPECT_EQ(Array[3], 0xFF);
}

TEST(PortBitCrossReference, HoldsAPinPerBitAndFoldsBadBitsOntoBitZero) {
    PortBitXRef Port;
    Port.SetValue(3, 17);
    EXPECT_EQ(Port.Value(3), 17);
    Port.SetValue(8, 9);
    EXPECT_EQ(Port.Value(0), 9);
    EXPECT_EQ(Port.Value(-1), 9);
    EXPECT_EQ(Port.Value(7), 0);
}

TEST(ClearRegistersTest, ClearsAll33Bytes) {
    RegisterArray Array;
    Array.fill(7);
    ClearRegisters(Array);
    EXPECT_EQ(Array, RegisterArray{});
    EXPECT_EQ(Array.size(), 33u);
}

}  // namespace

namespace {

TEST_F(ConfigurationTest, HugePreferenceFileGivesItsBlockFromTheRecordsAlone) {
    Save(PrfImageBuilder().AllPins(kvInputTristate).DefaultValues(2));
    {
        // Three gigabytes behind the records, as a hole that costs no disk.
        QFile File(TempPath() + QStringLiteral("/blink.prf"));
        ASSERT_TRUE(File.resize(3LL << 30));
    }
    QElapsedTimer Timer;
    Timer.start();
    ConfigureKV20(Registers);
    EXPECT_LT(Timer.elapsed(), 2000) << "the whole file was read";
    EXPECT_EQ(BlockKV20(Registers), Block({{0, 2}, {1, 6}, {6, 176}, {7, 176}, {31, 255}}));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

}  // namespace
