#pragma once

#include <QList>
#include <QString>
#include <cstdint>
#include <span>

#include "monitor/KvmFile.h"

// One sample of the watch window: which part of the chip's RAM it reads for
// the selected variables, and the text it shows of them. The window passes
// the selected entries in list order and its RAM image, indexed by address
// (65536 bytes).
namespace WatchValues {

// The fixed slack read above the highest selected address.
constexpr int32_t ReadSlack = 30;

struct RamRange {
    // The lowest selected address; 65535 with nothing selected.
    int32_t StartingAddress = 65535;
    // Highest address - lowest + 30; negative with nothing selected (the
    // highest stays -1), and then the chip is not read.
    int32_t Length = -1 - 65535 + ReadSlack;
    // False when the length doesn't fit 32 bits (addresses far apart outside
    // RAM): the sample fails there, reading nothing and showing no line.
    bool Fits = true;
};

RamRange ReadRange(const QList<KvmEntry>& Selected);

// The value's text as the window shows it, from the entry's Address on:
// 17 unsigned 16-bit, 18 a byte, 19 signed 16-bit, 20 signed 32-bit, 21
// unsigned 32-bit, 32 a Single (through UtilitiesNumeric), 50 "True" for any
// byte but 0, else "False"; any other type is empty and reads nothing. False
// when a byte it needs lies outside RamImage (a negative address, or one at
// 65536 or beyond).
bool ValueText(const KvmEntry& Entry, std::span<const uint8_t> RamImage, QString& Text);

// The text of the window's value box: for each selected entry a line
// "Name: value" ending in CR LF. A value that lies outside RamImage ends the
// sample where it had come: the text stops behind that entry's ": ". Empty
// with nothing selected, and when the range doesn't fit.
QString WatchText(const QList<KvmEntry>& Selected, std::span<const uint8_t> RamImage);

}  // namespace WatchValues
