#pragma once

#include <QString>
#include <cstdint>
#include <memory>

#include "platform/ParallelPort.h"
#include "sim/SimulatedKV10Board.h"

// The parallel port with the simulated KV-10 board on its cable, as the
// device of LPT 99. It runs as fast as the host writes. Its time, in which
// the board's delays pass, is the clock service's: the host's watchdog and
// sleeps and the board's write cycles all run on the one clock, real in the
// program and virtual in a test.
class SimulatedParallelPort : public ParallelPort {
  public:
    explicit SimulatedParallelPort(
        std::shared_ptr<SimulatedKV10Board> Board = std::make_shared<SimulatedKV10Board>());

    // Makes this port the device of LPT 99.
    static void InstallAsSimulatedBoard(const std::shared_ptr<SimulatedParallelPort>& Port);
    static void UninstallSimulatedBoard();

    QString DeviceName() const override;
    void Claim() override;
    // The board's EEPROMs are written to its files when the host lets go.
    void Release() override;
    bool Claimed() const override { return Claimed_; }

    void WriteData(uint8_t Value) override;
    uint8_t ReadData() override;
    uint8_t ReadStatus() override;
    void WriteControl(uint8_t Value) override;
    uint8_t ReadControl() override;

    SimulatedKV10Board& Board() { return *Board_; }
    int64_t NowNs() const;

    // The claim fails with this cause, as when another driver holds the port.
    QString RefuseClaim;

    // What the host did, for a test or a benchmark to read back.
    int64_t Writes = 0;
    int64_t Reads = 0;
    // Accesses while the port was not claimed: they reach nothing.
    int64_t DroppedAccesses = 0;
    int Claims = 0;
    int Releases = 0;
    uint8_t Data() const { return Data_; }
    uint8_t Control() const { return Control_; }

  private:
    // Counts the access in Count when the port is claimed, else as dropped.
    bool Reachable(int64_t& Count);

    std::shared_ptr<SimulatedKV10Board> Board_;
    bool Claimed_ = false;
    uint8_t Data_ = 0;
    uint8_t Control_ = 0;
};
