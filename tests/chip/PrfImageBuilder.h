#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <cstdint>

#include "chip/PinStateTypes.h"
#include "chip/PrfRecordType.h"

// Builds a preference file by hand, record by record, the way a file from
// the other platform looks: 615 records of 14 bytes unless told otherwise.
class PrfImageBuilder {
  public:
    explicit PrfImageBuilder(int Records = PrfRecordType::CompleteRecordCount)
        : Image(Records * PrfRecordType::RecordLength, '\0') {}

    // One flag set to 1, in the column of the pin state (IN, P, 0, 1).
    PrfImageBuilder& Pin(int32_t PinNumber, PinStateTypes State) {
        const int Column = State == kvInputTristate ? 1
                           : State == kvInputPullup ? 2
                           : State == kvOutputLow   ? 3
                                                    : 4;
        PrfRecordType Record;
        Record.Flags[Column] = 1;
        Record.Encode(Image, PrfRecordType::OffsetOf(PinNumber));
        return *this;
    }
    PrfImageBuilder& AllPins(PinStateTypes State) {
        for (int32_t PinNumber = 1; PinNumber <= 40; ++PinNumber) {
            Pin(PinNumber, State);
        }
        return *this;
    }
    // The four columns as they stand, for records no dialog would write.
    PrfImageBuilder& PinFlags(int32_t PinNumber, int16_t In, int16_t Pullup, int16_t Low,
                              int16_t High) {
        PrfRecordType Record;
        Record.Flags = {0, In, Pullup, Low, High};
        Record.Encode(Image, PrfRecordType::OffsetOf(PinNumber));
        return *this;
    }
    PrfImageBuilder& Value(int32_t RecordNumber, int32_t Value) {
        PrfRecordType Record;
        Record.Value = Value;
        Record.Encode(Image, PrfRecordType::OffsetOf(RecordNumber));
        return *this;
    }
    // The values a default profile holds, written by hand.
    PrfImageBuilder& DefaultValues(int32_t Processor) {
        return Value(600, 65279)
            .Value(601, 254)
            .Value(607, 1)
            .Value(610, 460800)
            .Value(611, 32768)
            .Value(612, 1)
            .Value(613, Processor)
            .Value(614, Processor == 1 ? 0 : 1)
            .Value(615, 16);
    }
    bool Save(const QString& Filename) const {
        QFile File(Filename);
        return File.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
               File.write(Image) == Image.size();
    }

    QByteArray Image;
};
