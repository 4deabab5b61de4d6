#pragma once

#include <array>
#include <cstdint>

// A 32 KB SPI EEPROM as a KV-20/KV-30 carries its program in (64-byte
// pages) and a KV-10 board beside its chip (32-byte pages): the status
// register with its write enable latch and block protect bits, pages whose
// writes wrap inside the page, a write cycle during which only the status
// can be read, and a read that streams on for as long as it is clocked.
// Times are nanoseconds of the line.
class SimulatedSpiEeprom {
  public:
    static constexpr int Size = 32768;
    static constexpr int LargestPageSize = 64;
    static constexpr uint8_t StatusWriteInProgress = 0x01;
    static constexpr uint8_t StatusWriteEnableLatch = 0x02;

    explicit SimulatedSpiEeprom(int PageSize = LargestPageSize);
    int PageSize() const { return PageSize_; }

    void Select(int64_t Ns);
    // One byte each way, as SPI clocks it.
    uint8_t Exchange(uint8_t Mosi, int64_t Ns);
    // Chip select rises: a write or a status write starts its cycle here.
    void Deselect(int64_t Ns);
    bool Selected() const { return Selected_; }
    // The byte the device shifts out while the next byte is clocked in, as a
    // host that samples bit by bit reads it; -1 while its output is off.
    int Pending(int64_t Ns) const;
    // The supply goes: a frame under way is lost and the latch is cleared.
    void PowerLost();

    uint8_t Status(int64_t Ns) const;
    bool Busy(int64_t Ns) const { return Ns < BusyUntilNs; }
    // 0 none, 1 the upper quarter, 2 the upper half, 3 all.
    uint8_t BlockProtect() const { return BlockProtect_; }
    bool WriteEnableLatch() const { return WriteEnableLatch_; }

    std::array<uint8_t, Size> Memory;
    // How long a page or status write keeps the device busy.
    int64_t WriteCycleNs = 5'000'000;
    // Writes that the device refused (latch clear, protected or busy), and
    // those it carried out.
    int RefusedWrites = 0;
    int CompletedWrites = 0;
    // Completed page writes that changed at least one byte of Memory; a page
    // written with the bytes it already held leaves this as it was.
    int ChangingWrites = 0;
    // Completed page writes, changing or not.
    int CompletedPageWrites = 0;
    // Page writes whose bytes ran past the end of their page and wrapped.
    int WrappedWrites = 0;
    // Where the last completed page write began (its first byte's address).
    uint16_t LastWriteAddress = 0;

  private:
    bool Protected(uint16_t Address) const;

    int PageSize_;

    bool Selected_ = false;
    bool WriteEnableLatch_ = false;
    uint8_t BlockProtect_ = 0;
    int64_t BusyUntilNs = 0;
    // The instruction of this selection and how many bytes have been clocked.
    int Instruction = -1;
    bool IgnoredWhileBusy = false;
    int Clocked = 0;
    uint16_t Address = 0;
    uint8_t NewStatus = 0;
    bool HaveNewStatus = false;
    // The page buffer of a write: the bytes land at their page offsets.
    std::array<int16_t, LargestPageSize> PageBuffer{};
    uint16_t PageBase = 0;
    uint16_t WriteStart = 0;
    int PageBytes = 0;
};
