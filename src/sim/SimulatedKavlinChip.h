#pragma once

#include <QByteArray>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "sim/SimulatedChipBoard.h"
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

class BytecodeMachine;

// A KV-20 or KV-30 as its resident monitor shows it on the serial line: RAM,
// the 512-byte internal EEPROM and the 32 KB SPI EEPROM, caught by ATN or,
// with a PC-link program, by the sync byte alone. The line hands it every
// byte at the moment its stop bit ends and takes its replies.
//
// When the host lets it go with a reset, the chip runs the program image in
// its external EEPROM on the bytecode machine, with its pins as the
// configuration block sets them; a Continue resumes the program where ATN
// caught it. The program's time stands still while the monitor has the chip
// and while a full transmit FIFO holds its print back, as a program waits for
// its UART.
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

    // Runs the program up to line time Ns, unless the monitor has the chip.
    void RunProgram(int64_t Ns);
    // Whether a program is running (or waiting, or sleeping) on the chip.
    bool ProgramRunning() const;
    // Whether the program ran to its end.
    bool ProgramEnded() const;
    // Why the image was refused, or the run-time error that stopped the
    // program; empty while it runs well.
    std::string ProgramTrouble() const;

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
    // The pins and LEDs as the program drives them.
    SimulatedChipBoard Board;

    // The user program answers the sync byte itself, so no ATN is needed,
    // even with no image running; a program running on the bytecode machine
    // always answers it.
    bool PcLinkProgram = false;
    // The user program keeps ATN from catching the monitor; only ATN moving
    // while the chip starts up gets in then.
    bool ProgramHoldsOffAtn = false;
    // The program's bytes go out at this pace; the line sets it from the
    // settings the host opens the port with (10 bits at 115200 baud until then).
    int64_t TransmitByteNs = 86'806;
    // Bytes the chip's UART holds before a print must wait.
    int TransmitFifoBytes = 16;
    // Bytes the chip's UART holds for the program to read; beyond them bytes
    // are lost, as in an overrun.
    int ReceiveBufferBytes = 64;
    // From a byte's end to the start of the answer.
    int64_t ReplyLatencyNs = 20'000;
    // From a reset to the program's first instruction: the start-up code
    // sets the pins from the configuration block and clears RAM. A host that
    // hands the line from the download link to the monitor port meanwhile
    // misses nothing of what the program prints.
    int64_t StartupCodeNs = 2'000'000;
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
    class ProgramSerial;

    void EnterMonitor(int64_t Ns);
    void LeaveMonitor(int64_t Ns);
    void StartProgram(int64_t Ns);
    void ResumeProgram(int64_t Ns);
    void ProgramWrites(const uint8_t* Bytes, size_t Count, int64_t ProgramNs);
    void KeepPersistentChanges(int64_t Ns);
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

    std::unique_ptr<ProgramSerial> ProgramSerial_;
    std::unique_ptr<BytecodeMachine> Machine_;
    // Line time minus the program's own time: the start-up code, the monitor
    // and a full transmit FIFO held the program back this long.
    int64_t HeldNs_ = 0;
    int64_t HaltedAtNs_ = 0;
    // When the UART has sent every byte the program printed.
    int64_t TransmitFreeNs_ = 0;
    std::deque<uint8_t> ReceiveBuffer_;
    std::vector<uint8_t> PersistentSeen_;
};
