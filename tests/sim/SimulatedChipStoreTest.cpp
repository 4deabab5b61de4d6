#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>

#include "link/LinkFixture.h"
#include "sim/SimulatedChipStore.h"
#include "sim/SimulatedSerialLine.h"
#include "support/FaultyDisk.h"
#include "support/VirtualClockService.h"

namespace {

// Catches what goes to standard error through qWarning while it lives.
class CaughtWarnings {
  public:
    CaughtWarnings() {
        Caught().clear();
        Previous_ = qInstallMessageHandler(
            [](QtMsgType Type, const QMessageLogContext&, const QString& Text) {
                if (Type == QtWarningMsg) {
                    Caught() << Text;
                }
            });
    }
    ~CaughtWarnings() { qInstallMessageHandler(Previous_); }
    CaughtWarnings(const CaughtWarnings&) = delete;
    CaughtWarnings& operator=(const CaughtWarnings&) = delete;
    const QStringList& Texts() const { return Caught(); }

  private:
    static QStringList& Caught() {
        static QStringList Instance;
        return Instance;
    }
    QtMessageHandler Previous_ = nullptr;
};

QByteArray ReadFile(const QString& Filename) {
    QFile File(Filename);
    return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray();
}

void PutFile(const QString& Filename, const QByteArray& Bytes) {
    QFile File(Filename);
    ASSERT_TRUE(File.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(File.write(Bytes), Bytes.size());
}

// The file as the disk has it: a file written anew is another inode.
struct FileStamp {
    ino_t Inode = 0;
    int64_t ModifiedNs = 0;
    bool operator==(const FileStamp&) const = default;
};

FileStamp StampOf(const QString& Filename) {
    struct stat Info {};
    if (::stat(QFile::encodeName(Filename).constData(), &Info) != 0) {
        return {};
    }
    return {Info.st_ino, Info.st_mtim.tv_sec * 1'000'000'000LL + Info.st_mtim.tv_nsec};
}

QByteArray MemoryOf(const SimulatedKavlinChip& Chip, SimulatedChipStore::Eeprom Which) {
    if (Which == SimulatedChipStore::Internal) {
        return QByteArray(reinterpret_cast<const char*>(Chip.InternalEeprom.data()),
                          static_cast<qsizetype>(Chip.InternalEeprom.size()));
    }
    return QByteArray(reinterpret_cast<const char*>(Chip.ExternalEeprom.Memory.data()),
                      static_cast<qsizetype>(Chip.ExternalEeprom.Memory.size()));
}

QByteArray Erased(SimulatedChipStore::Eeprom Which) {
    return QByteArray(SimulatedChipStore::SizeOf(Which), static_cast<char>(0xFF));
}

QByteArray Hex(const char* Text) { return QByteArray::fromHex(Text); }

// A chip that keeps its EEPROMs in a temporary folder, driven through its
// serial line by the monitor's own byte protocol, in virtual time.
class SimulatedChipStoreTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(Root.isValid());
        Folder = Root.filePath(QStringLiteral("data/Kavlin/SimulatedChip"));
        auto Virtual = std::make_unique<VirtualClockService>();
        Clock = Virtual.get();
        ClockService::Install(std::move(Virtual));
    }
    void TearDown() override {
        Line.reset();
        ClockService::Install(std::make_unique<VirtualClockService>());
    }

    // A chip of the folder on a line whose port is open.
    void PowerUp() {
        auto Chip = std::make_shared<SimulatedKavlinChip>();
        Chip->KeepEepromsIn(std::make_unique<SimulatedChipStore>(Folder));
        Line = std::make_shared<SimulatedSerialLine>(Chip);
        Line->SetInBufferSize(4096);
        // The host opens the line at the link's rate.
        Line->SetSettings(QStringLiteral("115200,N,8,1"));
        Line->SetPortOpen(true);
    }
    SimulatedKavlinChip& Chip() { return Line->Chip(); }
    QString FileOf(SimulatedChipStore::Eeprom Which) const {
        return SimulatedChipStore(Folder).FileOf(Which);
    }
    QByteArray FileBytes(SimulatedChipStore::Eeprom Which) const { return ReadFile(FileOf(Which)); }
    bool FileEqualsMemory(SimulatedChipStore::Eeprom Which) {
        return FileBytes(Which) == MemoryOf(Chip(), Which);
    }

    void Catch() {
        Line->SetDTREnable(true);
        Line->SetDTREnable(false);
        ASSERT_TRUE(Chip().InMonitor());
    }
    // The bytes go out and are taken in, with the SPI EEPROM's write cycle
    // waited out behind them; the chip's answers are dropped.
    void Send(const QByteArray& Bytes) {
        Line->Output(Bytes);
        Clock->SleepMicroseconds((Bytes.size() + 4) * SimulatedSerialLine::ByteNs / 1000 +
                                 Chip().ExternalEeprom.WriteCycleNs / 1000 + 1000);
        Line->Input();
    }
    void WriteInternal(int Address, const QByteArray& Bytes) {
        QByteArray Frame = Hex("44");
        for (const int Word : {static_cast<int>(Bytes.size()), Address}) {
            Frame.append(static_cast<char>(Word & 0xFF));
            Frame.append(static_cast<char>(Word >> 8));
        }
        Send(Frame + Bytes);
    }
    // A write enable and a page write, each ended by a byte in command position.
    void WritePage(int Address, const QByteArray& Bytes) {
        Send(Hex("8001060000"));
        QByteArray Frame = Hex("80");
        Frame.append(static_cast<char>(Bytes.size() + 3));
        Frame.append('\x02');
        Frame.append(static_cast<char>(Address >> 8));
        Frame.append(static_cast<char>(Address & 0xFF));
        Send(Frame + Bytes + Hex("00"));
    }
    static QByteArray Pattern(int Size, int Seed) {
        QByteArray Bytes;
        for (int Index = 0; Index < Size; ++Index) {
            Bytes.append(static_cast<char>((Index * 7 + Seed) & 0xFF));
        }
        return Bytes;
    }

    QTemporaryDir Root;
    QString Folder;
    VirtualClockService* Clock = nullptr;
    std::shared_ptr<SimulatedSerialLine> Line;
};

TEST_F(SimulatedChipStoreTest, FirstUseMakesTheFolderAndBothFilesErased) {
    CaughtWarnings Warnings;
    ASSERT_FALSE(QDir(Folder).exists());
    PowerUp();
    for (const auto Which : {SimulatedChipStore::Internal, SimulatedChipStore::External}) {
        EXPECT_EQ(FileBytes(Which), Erased(Which)) << FileOf(Which).toStdString();
        EXPECT_EQ(MemoryOf(Chip(), Which), Erased(Which));
    }
    EXPECT_EQ(QFile(FileOf(SimulatedChipStore::Internal)).size(), 512);
    EXPECT_EQ(QFile(FileOf(SimulatedChipStore::External)).size(), 32768);
    EXPECT_EQ(Chip().Store()->FilesWritten(), 2);
    EXPECT_TRUE(Warnings.Texts().isEmpty()) << Warnings.Texts().join('\n').toStdString();
}

TEST_F(SimulatedChipStoreTest, WritesThroughTheMonitorReachTheFilesWhenTheHostContinues) {
    PowerUp();
    Catch();
    WriteInternal(0x1F0, Pattern(32, 1));
    WritePage(0x0040, Pattern(64, 2));
    // Four bytes from 0x7E wrap inside their page.
    WritePage(0x7E7E, Pattern(4, 3));
    EXPECT_EQ(Chip().InternalEeprom[0x1F0], 1);
    EXPECT_EQ(Chip().ExternalEeprom.Memory[0x7E40], 3 + 14);
    // Still in the monitor and well within a second: nothing written yet.
    EXPECT_EQ(FileBytes(SimulatedChipStore::Internal), Erased(SimulatedChipStore::Internal));
    EXPECT_EQ(FileBytes(SimulatedChipStore::External), Erased(SimulatedChipStore::External));
    Send(Hex("1000"));
    ASSERT_FALSE(Chip().InMonitor());
    QByteArray Internal = Erased(SimulatedChipStore::Internal);
    Internal.replace(0x1F0, 16, Pattern(16, 1));
    // The internal EEPROM wraps at 512 bytes too.
    Internal.replace(0, 16, Pattern(32, 1).mid(16));
    QByteArray External = Erased(SimulatedChipStore::External);
    External.replace(0x0040, 64, Pattern(64, 2));
    External.replace(0x7E7E, 2, Pattern(2, 3));
    External.replace(0x7E40, 2, Pattern(4, 3).mid(2));
    EXPECT_EQ(FileBytes(SimulatedChipStore::Internal), Internal);
    EXPECT_EQ(FileBytes(SimulatedChipStore::External), External);
    EXPECT_TRUE(FileEqualsMemory(SimulatedChipStore::Internal));
    EXPECT_TRUE(FileEqualsMemory(SimulatedChipStore::External));
}

TEST_F(SimulatedChipStoreTest, EveryWayOfLettingTheChipGoLeavesTheFilesEqualToMemory) {
    const std::vector<std::pair<const char*, std::function<void()>>> Ways = {
        {"continue", [this] { Send(Hex("1000")); }},
        {"reset command", [this] { Send(Hex("10d600")); }},
        {"reset button", [this] { Line->PressResetButton(); }},
        {"port closed", [this] { Line->SetPortOpen(false); }},
    };
    int Seed = 0;
    for (const auto& [Name, LetGo] : Ways) {
        SCOPED_TRACE(Name);
        PowerUp();
        Catch();
        ++Seed;
        WriteInternal(Seed * 8, Pattern(8, Seed));
        WritePage(Seed * 64, Pattern(64, Seed));
        ASSERT_FALSE(FileEqualsMemory(SimulatedChipStore::Internal));
        ASSERT_FALSE(FileEqualsMemory(SimulatedChipStore::External));
        LetGo();
        EXPECT_TRUE(FileEqualsMemory(SimulatedChipStore::Internal));
        EXPECT_TRUE(FileEqualsMemory(SimulatedChipStore::External));
    }
    // The chip's end is the last way: nothing else is left to write the files.
    PowerUp();
    Catch();
    WritePage(0x2000, Pattern(64, 99));
    const QByteArray Expected = MemoryOf(Chip(), SimulatedChipStore::External);
    ASSERT_NE(FileBytes(SimulatedChipStore::External), Expected);
    Line.reset();
    EXPECT_EQ(FileBytes(SimulatedChipStore::External), Expected);
}

TEST_F(SimulatedChipStoreTest, ChangeKeptInTheMonitorIsWrittenOnceTheLineMovesASecondLater) {
    PowerUp();
    Catch();
    WriteInternal(0, Hex("a5"));
    // The byte landed as its stop bit ended.
    const int64_t DueUs = (Line->LastByteEndsNs() + SimulatedChipStore::SaveAfterNs) / 1000;
    Clock->SleepMicroseconds(DueUs - 1000 - Clock->MicroTicks());
    Line->InBufferCount();
    EXPECT_EQ(FileBytes(SimulatedChipStore::Internal), Erased(SimulatedChipStore::Internal));
    Clock->SleepMicroseconds(1001);
    // The host's next look at the port is enough; no byte needs to move.
    Line->InBufferCount();
    EXPECT_EQ(static_cast<uint8_t>(FileBytes(SimulatedChipStore::Internal).at(0)), 0xA5);
    EXPECT_TRUE(Chip().InMonitor());
}

TEST_F(SimulatedChipStoreTest, WriteThatChangesNothingWritesNothing) {
    PowerUp();
    FaultyDisk Disk({});
    const FileStamp Internal = StampOf(FileOf(SimulatedChipStore::Internal));
    const FileStamp External = StampOf(FileOf(SimulatedChipStore::External));
    ASSERT_NE(Internal.Inode, 0u);
    Catch();
    // Erased bytes written over erased bytes.
    WriteInternal(0x20, Erased(SimulatedChipStore::Internal).left(16));
    WritePage(0x0100, Erased(SimulatedChipStore::External).left(64));
    EXPECT_EQ(Chip().ExternalEeprom.CompletedWrites, 1);
    Send(Hex("1000"));
    Clock->SleepMicroseconds(2 * SimulatedChipStore::SaveAfterNs / 1000);
    Line->SetPortOpen(false);
    EXPECT_EQ(Disk.Commits, 0);
    EXPECT_EQ(Chip().Store()->FilesWritten(), 2);
    EXPECT_EQ(StampOf(FileOf(SimulatedChipStore::Internal)), Internal);
    EXPECT_EQ(StampOf(FileOf(SimulatedChipStore::External)), External);
    // A real change of the external EEPROM writes its file alone.
    Line->SetPortOpen(true);
    Catch();
    WritePage(0x0100, Hex("00"));
    Send(Hex("1000"));
    EXPECT_EQ(Disk.Commits, 1);
    EXPECT_EQ(StampOf(FileOf(SimulatedChipStore::Internal)), Internal);
    EXPECT_NE(StampOf(FileOf(SimulatedChipStore::External)), External);
}

TEST_F(SimulatedChipStoreTest, FailedSaveKeepsTheOldFileAndTheChipWorksOnFromMemory) {
    PowerUp();
    Catch();
    WritePage(0, Pattern(64, 5));
    Send(Hex("1000"));
    const QByteArray Before = FileBytes(SimulatedChipStore::External);
    ASSERT_EQ(Before.mid(0, 64), Pattern(64, 5));
    CaughtWarnings Warnings;
    {
        FaultyDisk Full({.Room = 1000});
        Catch();
        WritePage(64, Pattern(64, 6));
        Send(Hex("1000"));
        EXPECT_EQ(FileBytes(SimulatedChipStore::External), Before);
        ASSERT_EQ(Warnings.Texts().size(), 1);
        EXPECT_TRUE(Warnings.Texts()[0].contains(FileOf(SimulatedChipStore::External)));
        EXPECT_TRUE(Warnings.Texts()[0].contains(QStringLiteral("Error 61, Disk full")))
            << Warnings.Texts()[0].toStdString();
        // The chip still has the new page, and a second failure is not told again.
        Catch();
        Send(Hex("8003030040"));
        Line->Output(Hex("800100"));
        Line->WaitForInput(1, 100'000);
        EXPECT_EQ(Line->Input(), Pattern(1, 6));
        Send(Hex("00"));
        WritePage(128, Pattern(64, 7));
        Send(Hex("1000"));
        EXPECT_EQ(FileBytes(SimulatedChipStore::External), Before);
        EXPECT_EQ(Warnings.Texts().size(), 1);
    }
    // With room again the next letting go writes everything.
    Catch();
    Send(Hex("1000"));
    EXPECT_TRUE(FileEqualsMemory(SimulatedChipStore::External));
    EXPECT_EQ(FileBytes(SimulatedChipStore::External).mid(64, 128),
              Pattern(64, 6) + Pattern(64, 7));
    EXPECT_EQ(Warnings.Texts().size(), 1);
}

TEST_F(SimulatedChipStoreTest, FailedSaveIsTriedAgainNoSoonerThanASecondLater) {
    PowerUp();
    int Attempts = 0;
    SaveFileDevice::SetFactory([&Attempts](const QString& Filename) {
        ++Attempts;
        return std::make_unique<FaultyDiskDevice>(
            Filename, FaultyDiskDevice::Plan{.SyncErrno = EIO}, nullptr);
    });
    CaughtWarnings Warnings;
    Catch();
    WriteInternal(0, Hex("11"));
    // The change waits nearly a second; letting the chip go tries it at once.
    Clock->SleepMicroseconds(SimulatedChipStore::SaveAfterNs / 1000 - 100'000);
    Send(Hex("1000"));
    EXPECT_EQ(Attempts, 1);
    const int64_t FailedUs = Clock->MicroTicks();
    // The host keeps the line busy; no attempt for every byte.
    Catch();
    while (Clock->MicroTicks() < FailedUs + SimulatedChipStore::SaveAfterNs / 1000 - 20'000) {
        Send(Hex("01"));
    }
    EXPECT_EQ(Attempts, 1);
    Clock->SleepMicroseconds(30'000);
    Line->InBufferCount();
    EXPECT_EQ(Attempts, 2);
    EXPECT_EQ(Warnings.Texts().size(), 1);
    SaveFileDevice::SetFactory(nullptr);
    Line->SetPortOpen(false);
    EXPECT_EQ(static_cast<uint8_t>(FileBytes(SimulatedChipStore::Internal).at(0)), 0x11);
}

TEST_F(SimulatedChipStoreTest, FileOfTheWrongSizeIsAnErasedMemoryUntilItsNextChange) {
    ASSERT_TRUE(QDir().mkpath(Folder));
    const QByteArray Short(100, '\0');
    PutFile(FileOf(SimulatedChipStore::Internal), Short);
    PutFile(FileOf(SimulatedChipStore::External), Pattern(32768, 9));
    CaughtWarnings Warnings;
    PowerUp();
    EXPECT_EQ(MemoryOf(Chip(), SimulatedChipStore::Internal), Erased(SimulatedChipStore::Internal));
    EXPECT_EQ(MemoryOf(Chip(), SimulatedChipStore::External), Pattern(32768, 9));
    ASSERT_EQ(Warnings.Texts().size(), 1);
    EXPECT_TRUE(Warnings.Texts()[0].contains(FileOf(SimulatedChipStore::Internal)))
        << Warnings.Texts()[0].toStdString();
    EXPECT_TRUE(Warnings.Texts()[0].contains(QStringLiteral("100 bytes")));
    // Left as it is while nothing changes.
    Catch();
    Send(Hex("1000"));
    EXPECT_EQ(FileBytes(SimulatedChipStore::Internal), Short);
    Catch();
    WriteInternal(3, Hex("42"));
    Send(Hex("1000"));
    QByteArray Expected = Erased(SimulatedChipStore::Internal);
    Expected[3] = 0x42;
    EXPECT_EQ(FileBytes(SimulatedChipStore::Internal), Expected);
    EXPECT_EQ(Warnings.Texts().size(), 1);
    // A byte too many is as wrong as too few.
    PutFile(FileOf(SimulatedChipStore::External), Pattern(32769, 9));
    PowerUp();
    EXPECT_EQ(MemoryOf(Chip(), SimulatedChipStore::External), Erased(SimulatedChipStore::External));
    EXPECT_EQ(MemoryOf(Chip(), SimulatedChipStore::Internal), Expected);
    ASSERT_EQ(Warnings.Texts().size(), 2);
    EXPECT_TRUE(Warnings.Texts()[1].contains(FileOf(SimulatedChipStore::External)));
    EXPECT_TRUE(Warnings.Texts()[1].contains(QStringLiteral("32769 bytes, not 32768")))
        << Warnings.Texts()[1].toStdString();
}

TEST_F(SimulatedChipStoreTest, FileThatCannotBeReadIsAnErasedMemoryToldOnce) {
    ASSERT_TRUE(QDir().mkpath(FileOf(SimulatedChipStore::External)));
    CaughtWarnings Warnings;
    PowerUp();
    EXPECT_EQ(MemoryOf(Chip(), SimulatedChipStore::External), Erased(SimulatedChipStore::External));
    EXPECT_EQ(FileBytes(SimulatedChipStore::Internal), Erased(SimulatedChipStore::Internal));
    ASSERT_EQ(Warnings.Texts().size(), 1);
    EXPECT_TRUE(Warnings.Texts()[0].contains(FileOf(SimulatedChipStore::External)));
    // A folder in its place cannot be written either: told once, and the chip
    // answers from memory.
    Catch();
    WritePage(0, Hex("0102"));
    Send(Hex("1000"));
    Catch();
    WritePage(0, Hex("0304"));
    Send(Hex("1000"));
    EXPECT_EQ(Warnings.Texts().size(), 2);
    EXPECT_EQ(Chip().ExternalEeprom.Memory[1], 0x04);
}

TEST_F(SimulatedChipStoreTest, DefaultFolderIsUnderXdgDataHomeOrTheHomesLocalShare) {
    const bool HadData = qEnvironmentVariableIsSet("XDG_DATA_HOME");
    const QByteArray SavedData = qgetenv("XDG_DATA_HOME");
    const QByteArray SavedHome = qgetenv("HOME");
    const QString Home = Root.filePath(QStringLiteral("home"));
    qputenv("HOME", QFile::encodeName(Home));
    qputenv("XDG_DATA_HOME", "/srv/data");
    EXPECT_EQ(SimulatedChipStore::DefaultFolder(),
              QStringLiteral("/srv/data/Kavlin/SimulatedChip"));
    const QString Fallback = Home + QStringLiteral("/.local/share/Kavlin/SimulatedChip");
    qputenv("XDG_DATA_HOME", "");
    EXPECT_EQ(SimulatedChipStore::DefaultFolder(), Fallback);
    qunsetenv("XDG_DATA_HOME");
    EXPECT_EQ(SimulatedChipStore::DefaultFolder(), Fallback);
    // A relative path is no base folder at all.
    qputenv("XDG_DATA_HOME", "data");
    EXPECT_EQ(SimulatedChipStore::DefaultFolder(), Fallback);
    if (HadData) {
        qputenv("XDG_DATA_HOME", SavedData);
    } else {
        qunsetenv("XDG_DATA_HOME");
    }
    qputenv("HOME", SavedHome);
    EXPECT_FALSE(QDir(Home).exists()) << "naming the folder makes nothing";
}

// The host's own link on a chip that keeps its EEPROMs in a temporary folder.
class SimulatedChipStoreLink : public LinkFixture {
  protected:
    void SetUp() override {
        LinkFixture::SetUp();
        ASSERT_TRUE(Root.isValid());
        Folder = Root.path();
        PowerUp();
    }

    // A new chip of the folder behind the simulated chip's port, and a new
    // control to reach it, as at a start of the program.
    void PowerUp() {
        Texts.reset();
        Control.reset();
        Line.reset();
        auto Chip = std::make_shared<SimulatedKavlinChip>();
        Chip->KeepEepromsIn(std::make_unique<SimulatedChipStore>(Folder));
        Line = std::make_shared<SimulatedSerialLine>(Chip);
        SimulatedSerialLine::InstallAsSimulatedChip(Line);
        Control = std::make_unique<KavlinControl>();
        Control->SetCommPort(SerialDevices::SimulatedChipPortNumber());
        Texts = std::make_unique<QSignalSpy>(Control->txtStatus, &QLineEdit::textChanged);
    }

    static KavlinControl::ByteBlock Program(int Size, int Seed) {
        KavlinControl::ByteBlock Block(Size);
        for (int Index = 0; Index < Size; ++Index) {
            Block[Index] = static_cast<uint8_t>((Index * 13 + Index / 256 + Seed) & 0xFF);
        }
        return Block;
    }
    QByteArray FileBytes(SimulatedChipStore::Eeprom Which) const {
        return ReadFile(SimulatedChipStore(Folder).FileOf(Which));
    }
    static QByteArray Bytes(const KavlinControl::ByteBlock& Block) {
        return QByteArray(reinterpret_cast<const char*>(Block.data()),
                          static_cast<qsizetype>(Block.size()));
    }

    QTemporaryDir Root;
    QString Folder;
};

TEST_F(SimulatedChipStoreLink, ProgramDownloadedYesterdayIsStillThereAfterAReset) {
    // The host's verify wants a length that is no whole number of its read
    // blocks: the last byte stays erased.
    auto External = Program(32768, 1);
    External.back() = 0xFF;
    const auto Internal = Program(512, 2);
    OpenAndHalt();
    auto Block = External;
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->WriteExternalEEprom(0, 32767, Block, Status);
    ASSERT_EQ(Status, dlOK);
    Block = Internal;
    Control->WriteInternalEEprom(0, 512, Block, Status);
    ASSERT_EQ(Status, dlOK);
    Control->ResetKavlin(Status);
    ASSERT_EQ(Status, dlOK);
    LetTheLineSettle();
    EXPECT_EQ(FileBytes(SimulatedChipStore::External), Bytes(External));
    EXPECT_EQ(FileBytes(SimulatedChipStore::Internal), Bytes(Internal));
    Control->OpenPort(false, Status);

    // The next day: a new run of the program, a new chip of the same folder.
    PowerUp();
    OpenAndHalt();
    KavlinControl::ByteBlock ReadInternal(512, 0);
    Control->ReadInternalEEprom(0, 512, ReadInternal);
    EXPECT_EQ(ReadInternal, Internal);
    KavlinControl::ByteBlock Read(32768, 0);
    Control->ReadExternalEEprom(0, 32768, Read);
    EXPECT_EQ(Control->txtStatus->text(), QStringLiteral("EEprom Read Complete"));
    EXPECT_EQ(Read, External);
}

TEST_F(SimulatedChipStoreLink, DownloadRewritesTheFileAboutOnceASecondNotAtEveryPage) {
    FaultyDisk Disk({});
    OpenAndHalt();
    const int64_t StartUs = Clock->MicroTicks();
    auto Block = Program(32768, 3);
    Block.back() = 0xFF;
    DownloaderStatusTypes Status = dlWriteFailed;
    Control->WriteExternalEEprom(0, 32767, Block, Status);
    ASSERT_EQ(Status, dlOK);
    const int64_t Seconds = (Clock->MicroTicks() - StartUs) / 1'000'000;
    ASSERT_GE(Line->Chip().ExternalEeprom.ChangingWrites, 512);
    // While the chip stays in the monitor: once a second of line time at most.
    EXPECT_GE(Disk.Commits, 1);
    EXPECT_LE(Disk.Commits, Seconds + 1);
    Control->ResetKavlin(Status);
    LetTheLineSettle();
    EXPECT_EQ(FileBytes(SimulatedChipStore::External), Bytes(Block));
    EXPECT_LE(Disk.Commits, Seconds + 2);
}

}  // namespace
