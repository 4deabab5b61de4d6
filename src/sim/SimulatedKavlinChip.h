#pragma once

#include <QByteArray>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "sim/SimulatedChipStore.h"
#include "sim/SimulatedSpiEeprom.h"

// What can be made to go wrong with the simulated chip's answers. A count
// acts on that many of the next replies and then stops; -1 acts on every one.
struct SimulatedChipFaults {
    // The chip answers nothing at all.
    bool Silent = false;
    // Every reply starts this much later.
    int64_t LateNs = 0;
    // Replies that carry a checksum get it wrong by one.
    int WrongChecksum = 0;
    // Replies whose last byte the chip never sends.
    int ShortReply = 0;
    // Replies that lose their first byte on the line.
    int DroppedByte = 0;
    // Replies with one byte (0x55) too many behind them.
    int ExtraByte = 0;
};

// A KV-20 or KV-30 as its resident monitor shows it on the serial line: RAM,
// the 512-byte internal EEPROM and the 32 KB SPI EEPROM, caught by ATN or,
// with a PC-link program, by the sync byte alone. The line hands it every
// byte at the moment its stop bit ends and takes its replies.
class SimulatedKavlinChip {
  public:
    static constexpr int RamSize = 65536;
    static constexpr int InternalEepromSize = 512;
    static constexpr uint8_t Acknowledge = 0x6C;

    using ReplySink = std::function<void(const QByteArray& Bytes, int64_t StartNs)>;

    SimulatedKavlinChip();
    // What is not yet in the store's files is written now.
    ~SimulatedKavlinChip();
    SimulatedKavlinChip(const SimulatedKavlinChip&) = delete;
    SimulatedKavlinChip& operator=(const SimulatedKavlinChip&) = delete;

    // From now on the two EEPROMs are kept in the store's files: they take
    // what the files hold (the program of an earlier run), and their changes
    // are written back as the store's rule says. Without a store they live in
    // memory alone and start erased.
    void KeepEepromsIn(std::unique_ptr<SimulatedChipStore> Store);
    const SimulatedChipStore* Store() const { return Store_.get(); }
    // The line's time has come to Ns: a change left unsaved long enough is
    // written now.
    void LineTimeIs(int64_t Ns);
    // Every change of the EEPROMs not yet in the store's files is written
    // now; the line calls it when the host's port closes.
    void SaveEeproms(int64_t Ns);

    void SetReplySink(ReplySink Sink) { Sink_ = std::move(Sink); }
    void Receive(uint8_t Byte, int64_t Ns);
    // The ATN line, driven by the host's DTR.
    void SetAtn(bool Level, int64_t Ns);
    // The board's reset button: the program starts again.
    void PressReset(int64_t Ns);

    // The running program prints: the bytes go out one after another from
    // Ns on, as a program's serial output does. The resident monitor prints
    // nothing of the program's, so nothing goes out while it has the chip.
    void Print(const QByteArray& Text, int64_t Ns);

    bool InMonitor() const { return InMonitor_; }
    bool AtnLevel() const { return AtnLevel_; }

    std::vector<uint8_t> Ram;
    std::vector<uint8_t> InternalEeprom;
    SimulatedSpiEeprom ExternalEeprom;
    SimulatedChipFaults Faults;

    // The user program answers the sync byte itself, so no ATN is needed.
    bool PcLinkProgram = false;
    // The user program keeps ATN from catching the monitor; only ATN moving
    // while the chip starts up gets in then.
    bool ProgramHoldsOffAtn = false;
    // From a byte's end to the start of the answer.
    int64_t ReplyLatencyNs = 20'000;
    // How long after a reset the start-up code looks at ATN.
    int64_t StartupWindowNs = 100'000'000;

    int ContinueCount = 0;
    int ResetCount = 0;
    int CatchCount = 0;
    // Bytes the running program was sent; the monitor never saw them.
    QByteArray ProgramInput;
    // The running program prints back every byte it is sent, as a terminal
    // program does.
    bool ProgramEchoes = false;

  private:
    enum class Expect {
        Command,
        BlockHeader,
        WriteRamData,
        WriteEepromData,
        SpiCount,
        SpiData,
        LeaveCode,
        ResetEnd
    };

    void Reply(QByteArray Bytes, int64_t Ns, bool HasChecksum);
    void CommandByte(uint8_t Byte, int64_t Ns);
    void BlockHeaderDone(int64_t Ns);
    void EnterMonitor();
    void LeaveMonitor(int64_t Ns);
    void DeselectExternalEeprom(int64_t Ns);
    void Changed(SimulatedChipStore::Eeprom Which, int64_t Ns);

    ReplySink Sink_;
    std::unique_ptr<SimulatedChipStore> Store_;
    bool InMonitor_ = false;
    bool AtnLevel_ = false;
    int64_t StartupUntilNs = -1;
    Expect State = Expect::Command;
    uint8_t Command = 0;
    QByteArray Header;
    uint16_t Length = 0;
    uint16_t Address = 0;
    uint16_t Remaining = 0;
    uint8_t Sum = 0;
};
