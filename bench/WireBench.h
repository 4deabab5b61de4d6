#pragma once

#include <time.h>

#include <algorithm>
#include <cstdint>

#include "sim/SimulatedSerialLine.h"

// What the benchmarks of the chip link share: the process's CPU time, and the
// least time the protocol needs on the wire to set the wall time against.

inline double ProcessCpuSeconds() {
    timespec Now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &Now);
    return static_cast<double>(Now.tv_sec) + static_cast<double>(Now.tv_nsec) / 1e9;
}

// The least time a sequence of the serial chip link can take on the simulated
// line, 10 bits a byte at 115200 baud, built step by step from what
// KavlinControl does: the bytes it puts on the wire, the sleeps it must take
// and the chip's answers it must wait for. The host is taken as infinitely
// quick, acting the moment it may; whatever a measured run takes beyond this
// is the host's. Two times are followed: when the last byte queued has left
// the wire, and when the host may act next.
class WireMinimum {
  public:
    // FifoBytes: the depth of the line's transmit FIFO. A drain of the host's
    // buffer ends while that many bytes are still going out, so they go on
    // during a sleep that follows. ReplyLatencyNs: the chip's time from the
    // end of a byte to the start of its answer.
    WireMinimum(int64_t FifoBytes, int64_t ReplyLatencyNs)
        : FifoNs_(std::max<int64_t>(0, FifoBytes) * ByteNs), LatencyNs_(ReplyLatencyNs) {}

    // The host queues Count bytes and waits for its buffer to drain; bytes
    // queued behind others follow them without a gap. (An output that is not
    // drained is short enough to fit the FIFO, where the drain ends at once.)
    void Send(int64_t Count) {
        Bytes_ += Count;
        LineFreeNs_ = std::max(LineFreeNs_, HostNs_) + Count * ByteNs;
        HostNs_ = std::max(HostNs_, LineFreeNs_ - FifoNs_);
    }
    void Sleep(int64_t Milliseconds) { HostNs_ += Milliseconds * 1'000'000; }
    // The host waits for the chip's answer of Count bytes to the last byte sent.
    void AwaitReply(int64_t Count) {
        HostNs_ = std::max(HostNs_, LineFreeNs_ + LatencyNs_ + Count * ByteNs);
    }

    // What the host put on the wire.
    int64_t Bytes() const { return Bytes_; }
    // Until the host is done and the last byte has reached the chip.
    double Seconds() const { return static_cast<double>(std::max(HostNs_, LineFreeNs_)) / 1e9; }

    // ---- The steps of KavlinControl ----

    // HaltKavlin answered at its first attempt: ATN pulsed three times (4 ms
    // up, 4 ms down), a sync byte and 4 ms for its answer, which is thrown
    // away, then a second sync byte whose 0x6C is awaited.
    void Halt() {
        Sleep(3 * (4 + 4));
        Send(1);
        Sleep(4);
        Send(1);
        AwaitReply(1);
    }
    // WriteInternalEEprom: the five-byte frame, then the bytes one at a time,
    // each sent once the one before is acknowledged; the last acknowledgement
    // has the checksum behind it.
    void WriteInternalEEprom(int64_t Length) {
        Send(5);
        for (int64_t Index = 0; Index < Length; ++Index) {
            Send(1);
            AwaitReply(Index + 1 == Length ? 2 : 1);
        }
    }
    // WriteExternalEEprom from address 0: write enable and unprotect, each
    // 64-byte page behind a write enable and followed by the filler that
    // times the EEPROM's write cycle, protect again, then the read-back: its
    // first frame and 200 ms, the 128-byte blocks, and a shorter last block
    // with its 100 ms. Without a shorter last block the host waits for
    // nothing after its last frame: that is the verify's known gap.
    void WriteExternalEEprom(int64_t Length) {
        const int64_t WriteEnable = 4, ProtectFrame = 5, Filler = 116, PageFrame = 6;
        Send(WriteEnable + ProtectFrame + Filler);
        for (int64_t Written = 0; Written < Length; Written += 64) {
            Send(WriteEnable + PageFrame + std::min<int64_t>(64, Length - Written) + Filler);
        }
        Send(WriteEnable + ProtectFrame + Filler);
        Send(5);
        Sleep(200);
        for (int64_t Block = 0; Block < Length / 128; ++Block) {
            Send(2 + 128);
        }
        if (Length % 128 > 0) {
            Send(2 + Length % 128 + 2);
            Sleep(100);
        }
    }
    // ResetKavlin: 0x10 0xD6 0x00; the chip starts when the last has arrived.
    void Reset() { Send(3); }

  private:
    static constexpr int64_t ByteNs = SimulatedSerialLine::ByteNs;
    int64_t FifoNs_;
    int64_t LatencyNs_;
    int64_t Bytes_ = 0;
    int64_t LineFreeNs_ = 0;
    int64_t HostNs_ = 0;
};
