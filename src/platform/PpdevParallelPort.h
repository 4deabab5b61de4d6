#pragma once

#include "platform/ParallelPort.h"
#include "platform/PpdevCalls.h"

// A parallel port of the machine through Linux's ppdev driver: the device
// /dev/parport<Index>, opened and claimed for this process (PPCLAIM), its
// registers written and read with PPWDATA, PPRSTATUS, PPWCONTROL and their
// kin. The port is given back (PPRELEASE) by Release and by the destructor,
// which also closes the device.
class PpdevParallelPort : public ParallelPort {
  public:
    explicit PpdevParallelPort(int Index, PpdevCalls& Calls = PpdevCalls::System());
    ~PpdevParallelPort() override;
    PpdevParallelPort(const PpdevParallelPort&) = delete;
    PpdevParallelPort& operator=(const PpdevParallelPort&) = delete;

    static QString DeviceOf(int Index);
    // Why the device cannot be had, from the errno of its opening or claim.
    static QString CauseOf(int Errno, const QString& Device);

    QString DeviceName() const override { return DeviceOf(Index_); }
    // Refuses a port that another driver holds (the kernel names it in
    // parport<Index>/devices/active), then opens and claims the device.
    void Claim() override;
    void Release() override;
    bool Claimed() const override { return Claimed_; }

    void WriteData(uint8_t Value) override;
    uint8_t ReadData() override;
    uint8_t ReadStatus() override;
    void WriteControl(uint8_t Value) override;
    uint8_t ReadControl() override;

  private:
    [[noreturn]] void Fail(int Errno);
    void Access(unsigned long Request, uint8_t& Value);
    void Write(unsigned long Request, uint8_t Value);
    uint8_t Read(unsigned long Request);

    int Index_;
    PpdevCalls& Calls_;
    int FileDescriptor_ = -1;
    bool Claimed_ = false;
};
