#include "chip/ConfigurationBytes.h"

#include <QFile>
#include <cmath>

#include "chip/FileExecutivePRF.h"
#include "chip/XFileExecutivePRF.h"
#include "frame/ErrorDisplay.h"
#include "frame/GlobalData.h"
#include "frame/UtilitiesFilename.h"

namespace ConfigurationBytes {

namespace {
struct PinBit {
    int32_t Pin;
    uint8_t Mask;
};

PortBitXRef MakePort(const std::array<uint8_t, 8>& Pins) {
    PortBitXRef Port;
    for (int Bit = 0; Bit < 8; ++Bit) {
        Port.SetValue(Bit, Pins[Bit]);
    }
    return Port;
}

PrfRecordType ReadRecord(const QByteArray& Image, int32_t RecordNumber) {
    // Past the end of a short file a record reads as zeros.
    return PrfRecordType::Decode(Image, PrfRecordType::OffsetOf(RecordNumber));
}

// Pins Low to High of a port from bit 0 up, or High down to Low.
void PutPort(const QByteArray& File, int32_t RegisterIndex, int32_t FirstPin, int32_t Step,
             RegisterArray& Registers) {
    for (int Bit = 0; Bit < 8; ++Bit) {
        PutPinBits(ReadRecord(File, FirstPin + Step * Bit), RegisterIndex,
                   static_cast<uint8_t>(1u << Bit), Registers);
    }
}

// The value records shared by the KV-10 and KV-20 arrays.
void PutValues(const QByteArray& File, RegisterArray& Registers) {
    const int32_t NodeAddress = ReadRecord(File, 600).Value;
    Registers[9] = static_cast<uint8_t>(NodeAddress & 0xFF);
    Registers[10] = static_cast<uint8_t>((NodeAddress >> 8) & 0xFF);
    Registers[11] = static_cast<uint8_t>(ReadRecord(File, 601).Value & 0xFF);
    uint8_t Options = 0;
    for (int32_t Record = 602; Record <= 606; ++Record) {
        if (ReadRecord(File, Record).Value != 0) {
            Options |= static_cast<uint8_t>(1u << (Record - 602));
        }
    }
    Registers[12] = Options;
    Registers[13] = static_cast<uint8_t>(ReadRecord(File, 609).Value & 0xFF);
    Registers[14] = NetworkRateDivisor(ReadRecord(File, 610).Value);
}

// The two routines that read the file themselves; the KV-10's also takes the
// code EEPROM's size (record 611) into MemorySize.
template <class PortsFunction>
void ConfigureFromRecords(RegisterArray& Registers, const QString& MissingText, bool IsKV10,
                          PortsFunction Ports) {
    ClearRegisters(Registers);
    XFileExecutivePRF::PRFfilename = GlobalData::ProjectFilename;
    if (XFileExecutivePRF::PRFfilename.isEmpty()) {
        return;
    }
    XFileExecutivePRF::PRFfilename = XFileExecutivePRF::PRFfilenameOf(GlobalData::ProjectFilename);
    if (!UtilitiesFilename::FileExists(XFileExecutivePRF::PRFfilename)) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("Error -- PRF file ") +
                                           XFileExecutivePRF::PRFfilename +
                                           QStringLiteral(" not found"),
                                       QStringLiteral("PRF File Not Found"));
        return;
    }
    QFile Opened;
    if (!XFileExecutivePRF::OpenPRFfile(Opened)) {
        ErrorDisplay::ShowErrorMessage(MissingText, QStringLiteral("Missing PRF File"));
        return;
    }
    // The records come from one read of the bytes they stand in.
    const QByteArray File = Opened.read(PrfRecordType::UsedLength);
    Opened.close();
    Ports(File);
    PutValues(File, Registers);
    if (IsKV10) {
        GlobalData::MemorySize = ReadRecord(File, 611).Value;
    }
}
}  // namespace

void ClearRegisters(RegisterArray& Registers) { Registers.fill(0); }

uint8_t NetworkRateDivisor(int32_t NetBaud) {
    const double Rate = NetBaud == 0 ? 460800.0 : static_cast<double>(NetBaud);
    // Rounded half to even, as the default rounding mode does.
    const double Divisor = std::nearbyint(7372800.0 / Rate / 16.0 - 1.0);
    return static_cast<uint8_t>(static_cast<int64_t>(Divisor) & 0xFF);
}

void PutPinBits(const PrfRecordType& Record, int32_t RegisterIndex, uint8_t BitMask,
                RegisterArray& Registers) {
    uint8_t& Data = Registers[RegisterIndex];
    uint8_t& Direction = Registers[RegisterIndex + 1];
    if (Record.Flags[1] != 0) {
        Data &= static_cast<uint8_t>(~BitMask);
        Direction &= static_cast<uint8_t>(~BitMask);
    } else if (Record.Flags[2] != 0) {
        Data |= BitMask;
        Direction &= static_cast<uint8_t>(~BitMask);
    } else if (Record.Flags[3] != 0) {
        Data &= static_cast<uint8_t>(~BitMask);
        Direction |= BitMask;
    } else if (Record.Flags[4] != 0) {
        Data |= BitMask;
        Direction |= BitMask;
    }
}

void ConfigureKV10(RegisterArray& Registers) {
    ConfigureFromRecords(Registers, QStringLiteral("Missing preference file"), true,
                         [&](const QByteArray& File) {
                             PutPort(File, 0, 39, -1, Registers);
                             PutPort(File, 2, 1, 1, Registers);
                             PutPort(File, 4, 21, 1, Registers);
                             PutPort(File, 6, 10, 1, Registers);
                         });
}

void ConfigureKV20(RegisterArray& Registers) {
    ConfigureFromRecords(Registers, QStringLiteral("Missing PRF file"), false,
                         [&](const QByteArray& File) {
                             PutPort(File, 0, 20, -1, Registers);
                             PutPort(File, 4, 12, -1, Registers);
                             const PinBit PortD[] = {{25, 128}, {26, 32}, {27, 16}};
                             for (const PinBit& Pin : PortD) {
                                 PutPinBits(ReadRecord(File, Pin.Pin), 6, Pin.Mask, Registers);
                             }
                         });
}

void PutRegister(int32_t RegisterIndex, const PortBitXRef& PortBits, RegisterArray& Registers) {
    uint8_t DirectionMask = 0;
    uint8_t DataMask = 0;
    for (int Bit = 0; Bit < 8; ++Bit) {
        PinStateTypes PinState = kvInputTristate;
        FileExecutive().ReadPinState(PortBits.Value(Bit), PinState);
        const uint8_t Mask = static_cast<uint8_t>(1u << Bit);
        switch (PinState) {
            case kvOutputLow:
                DirectionMask = Mask;
                DataMask = 0;
                break;
            case kvOutputHigh:
                DirectionMask = Mask;
                DataMask = Mask;
                break;
            case kvInputTristate:
                DirectionMask = 0;
                DataMask = 0;
                break;
            case kvInputPullup:
                DirectionMask = 0;
                DataMask = Mask;
                break;
            default:
                // The masks of the pin before stay in force.
                ErrorDisplay::ProbeError(
                    QStringLiteral("Error2 in ConfigurationBytes.PutRegister"));
                break;
        }
        Registers[RegisterIndex] |= DirectionMask;
        Registers[RegisterIndex + 1] |= DataMask;
        Registers[RegisterIndex + 2] = 0;
    }
}

void ConfigureKV30(RegisterArray& Registers) {
    ClearRegisters(Registers);
    QString Path;
    QString Name;
    QString Extension;
    UtilitiesFilename::SplitFilename(GlobalData::ProjectFilename, Path, Name, Extension);
    FileExecutivePRF& File = FileExecutive();
    FileStatusTypes Status = fstUndefined;
    File.Initialize(Path, Name, Status);
    const QString Filename = File.FullFilename();
    if (Status == fstOK || Status == fstReadOnly) {
        File.OpenFile();
        if (File.IsOpen()) {
            PutRegister(9, MakePort({40, 39, 38, 37, 36, 35, 34, 33}), Registers);
            PutRegister(6, MakePort({1, 2, 3, 4, 5, 6, 7, 8}), Registers);
            PutRegister(3, MakePort({22, 23, 24, 25, 26, 27, 28, 29}), Registers);
            PutRegister(0, MakePort({14, 15, 16, 17, 18, 19, 20, 21}), Registers);
            File.CloseFile();
            return;
        }
    }
    QString Text;
    if (Status == fstNonexistant) {
        Text = QStringLiteral("Error -- PRF file ") + Filename + QStringLiteral(" not found");
    } else if (Status == fstWrongSize) {
        Text = QStringLiteral("Error -- PRF file ") + Filename + QStringLiteral(" has wrong size");
    } else {
        Text = QStringLiteral("Error accessing PRF file ") + Filename;
    }
    ErrorDisplay::ShowErrorMessage(Text, QStringLiteral("PRF File Error"));
    File.CloseFile();
}

ConfigurationBlock BlockKV10(const RegisterArray& c, int32_t PersistentSize) {
    ConfigurationBlock Block{};
    Block[0] = c[7];
    Block[1] = static_cast<uint8_t>(c[6] | 4);
    Block[3] = c[5];
    Block[4] = c[4];
    Block[6] = c[3];
    Block[7] = c[2];
    Block[9] = c[1];
    Block[10] = c[0];
    Block[11] = c[9];
    Block[12] = c[10];
    Block[13] = c[11];
    Block[14] = c[14];
    if (c[13] == 1) {
        // The code starts behind the block and the persistent memory.
        const int32_t CodeStart = PersistentSize + 32;
        Block[15] = static_cast<uint8_t>(CodeStart & 0xFF);
        Block[16] = static_cast<uint8_t>((CodeStart >> 8) & 0xFF);
        Block[17] = 255;
    } else if ((c[12] & 4) != 0) {
        Block[15] = 0;
        Block[16] = 3;
        Block[17] = 254;
    } else if (c[13] == 2) {
        Block[17] = 1;
    }
    Block[18] = c[12];
    Block[31] = 255;
    return Block;
}

ConfigurationBlock BlockKV20(const RegisterArray& c) {
    ConfigurationBlock Block{};
    Block[0] = static_cast<uint8_t>((c[7] & 254) | 2);
    Block[1] = static_cast<uint8_t>((c[6] & 254) | 6);
    Block[3] = c[5];
    Block[4] = c[4];
    Block[6] = static_cast<uint8_t>((c[3] & 13) | 176);
    Block[7] = static_cast<uint8_t>((c[2] & 13) | 176);
    Block[9] = c[1];
    Block[10] = c[0];
    Block[31] = 255;
    return Block;
}

ConfigurationBlock BlockKV30(const RegisterArray& c) {
    ConfigurationBlock Block{};
    for (int Index = 0; Index <= 11; ++Index) {
        Block[Index] = c[Index];
    }
    Block[31] = 255;
    return Block;
}

}  // namespace ConfigurationBytes
