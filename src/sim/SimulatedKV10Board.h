#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "sim/SimulatedChipStore.h"
#include "sim/SimulatedSpiEeprom.h"

// What can be made to go wrong on the simulated KV-10 board.
struct SimulatedKV10BoardFaults {
    // A cell of the SPI EEPROM that reads 0x00 whatever is written to it; -1
    // none. A page holding it fails its read-back.
    int32_t WornCell = -1;
    // The chip never takes up the programming entry sequence (a chip that is
    // missing from its socket): the data line from the board floats high.
    bool NoProgrammingMode = false;
};

// A KV-10 board on the PC's parallel port, decoded from the port's lines as
// the programmer drives them:
//  - data bits 0 to 3 power the board, all on or all off;
//  - data bit 4 is the chip's reset, 0 holding it;
//  - data bit 7 selects the 32 KB SPI EEPROM (low active), bit 6 is the SPI
//    data to the devices and bit 5 the SPI clock; status bit 5 is the data
//    from them, read as it is (the port's other status inputs float high);
//  - the chip enters its programming mode when its reset is let go with the
//    select line low and the select line then goes high and low again, each
//    phase long enough for its start-up code (EntryLowNs, EntryHighNs,
//    ListenAfterNs); in that mode it echoes every bit on the data line at the
//    clock's rising edge, and takes 0x96, address low, address high, value
//    as the write of one byte of its 512-byte internal EEPROM, which is
//    then busy for InternalWriteNs and hears no other write.
// The SPI EEPROM has 32-byte pages. Times are nanoseconds of the port.
class SimulatedKV10Board {
  public:
    static constexpr int InternalEepromSize = 512;
    static constexpr int SpiPageSize = 32;
    static constexpr uint8_t PowerLines = 0x0F;
    static constexpr uint8_t ResetLine = 0x10;
    static constexpr uint8_t ClockLine = 0x20;
    static constexpr uint8_t DataToBoardLine = 0x40;
    static constexpr uint8_t SelectLine = 0x80;
    static constexpr uint8_t DataFromBoardLine = 0x20;
    static constexpr uint8_t InternalWriteCommand = 0x96;

    enum class ChipState { Off, InReset, Running, EntryLow, EntryHigh, EntryLowAgain, Programming };

    SimulatedKV10Board();
    // What is not yet in the store's files is written now.
    ~SimulatedKV10Board();
    SimulatedKV10Board(const SimulatedKV10Board&) = delete;
    SimulatedKV10Board& operator=(const SimulatedKV10Board&) = delete;

    // From now on the two EEPROMs are kept in the store's files, as the
    // simulated chip keeps its own (see SimulatedChipStore).
    void KeepEepromsIn(std::unique_ptr<SimulatedChipStore> Store);
    const SimulatedChipStore* Store() const { return Store_.get(); }
    // Every change not yet in the files is written now; the port calls it
    // when the host lets the port go.
    void SaveEeproms(int64_t Ns);

    // The host wrote the data or the control register at Ns.
    void DataLines(uint8_t Value, int64_t Ns);
    void ControlLines(uint8_t Value, int64_t Ns);
    // What the status register reads at Ns.
    uint8_t StatusLines(int64_t Ns) const;

    bool Powered() const { return State != ChipState::Off; }
    ChipState Chip() const { return State; }
    bool Programming() const { return State == ChipState::Programming; }
    uint8_t ControlValue() const { return Control; }

    SimulatedSpiEeprom SpiEeprom;
    std::vector<uint8_t> InternalEeprom;
    SimulatedKV10BoardFaults Faults;

    // The chip's start-up code: how long each phase of the entry sequence
    // must last before it goes on.
    int64_t EntryLowNs = 50'000'000;
    int64_t EntryHighNs = 10'000'000;
    int64_t ListenAfterNs = 50'000'000;
    // One byte of the internal EEPROM takes this long to program.
    int64_t InternalWriteNs = 5'000'000;

    // What the board went through, for a test to read back.
    // Addresses at which SPI EEPROM page writes began, in order.
    std::vector<uint16_t> PageWrites;
    // Internal EEPROM writes as the chip carried them out (address, value).
    std::vector<std::pair<uint16_t, uint8_t>> InternalWrites;
    // Internal writes that came while the last one was still programming.
    int InternalWritesLost = 0;
    // Times the chip's program was started: reset let go with select high.
    int ProgramStarts = 0;
    // Times the programming mode was entered.
    int ProgrammingEntries = 0;
    int PowerUps = 0;
    int PowerDowns = 0;

  private:
    void Clock(bool Rising, int64_t Ns);
    void SelectChanged(bool SelectLow, int64_t Ns);
    void ResetChanged(bool Released, bool SelectLow, int64_t Ns);
    void EntrySelectChanged(bool SelectLow, int64_t Ns);
    void ChipByte(uint8_t Byte, int64_t Ns);
    void ChangedEeprom(SimulatedChipStore::Eeprom Which, int64_t Ns);

    std::unique_ptr<SimulatedChipStore> Store_;
    uint8_t Data = 0;
    uint8_t Control = 0;
    ChipState State = ChipState::Off;
    int64_t PhaseSinceNs = 0;

    // The SPI EEPROM's side of the bus.
    int EepromBits = 0;
    uint8_t EepromIn = 0;
    int EepromOut = -1;
    bool EepromDrives = false;
    bool EepromBit = true;

    // The chip's side.
    int ChipBits = 0;
    uint8_t ChipIn = 0;
    bool ChipBit = true;
    int CommandBytes = 0;
    uint8_t Command[3] = {};
    int64_t InternalBusyUntilNs = 0;
};
