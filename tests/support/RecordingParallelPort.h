#pragma once

#include <QList>
#include <QString>
#include <cstdint>
#include <deque>

#include "platform/ParallelPort.h"

// A parallel port that records every register access in order and answers
// status reads from a script (then from Status), for tests of what a host
// puts on the lines. Nothing is behind it.
class RecordingParallelPort : public ParallelPort {
  public:
    enum Register { Data, Status, Control };
    struct Access {
        Register Which;
        bool IsWrite;
        uint8_t Value;
        bool operator==(const Access&) const = default;
    };

    QString DeviceName() const override { return QStringLiteral("recording port"); }
    void Claim() override { Claimed_ = true; }
    void Release() override { Claimed_ = false; }
    bool Claimed() const override { return Claimed_; }
    void WriteData(uint8_t Value) override { Accesses << Access{Data, true, Value}; }
    uint8_t ReadData() override { return Read(Data, 0); }
    uint8_t ReadStatus() override {
        uint8_t Value = StatusValue;
        if (!StatusScript.empty()) {
            Value = StatusScript.front();
            StatusScript.pop_front();
        }
        return Read(Status, Value);
    }
    void WriteControl(uint8_t Value) override { Accesses << Access{Control, true, Value}; }
    uint8_t ReadControl() override { return Read(Control, 0); }

    // The values written to one register, in order.
    QList<uint8_t> Written(Register Which) const {
        QList<uint8_t> Values;
        for (const Access& Made : Accesses) {
            if (Made.Which == Which && Made.IsWrite) {
                Values << Made.Value;
            }
        }
        return Values;
    }

    QList<Access> Accesses;
    std::deque<uint8_t> StatusScript;
    uint8_t StatusValue = 0;

  private:
    uint8_t Read(Register Which, uint8_t Value) {
        Accesses << Access{Which, false, Value};
        return Value;
    }
    bool Claimed_ = false;
};
