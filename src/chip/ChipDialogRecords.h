#pragma once

#include <QString>
#include <cstdint>
#include <vector>

#include "chip/PinBoxGroup.h"
#include "chip/PrfRecordFile.h"
#include "chip/PrfRecordType.h"

// The record-by-record load and save that the KV-10 and KV-20 chip dialogs
// share. Pins holds the dialog's pin rows, pin 1 first.
namespace ChipDialogRecords {

// PRFfilename from ProjectFilename. True, with File open, when there are
// records to show; with no project name or no file the dialog shows its
// defaults.
bool OpenForLoad(PrfRecordFile& File);
// Every row whose box 1 is enabled shows its record's flags; a fixed row
// stays as it is.
void LoadPins(const PrfRecordFile& File, const std::vector<PinBoxGroup*>& Pins);
// Opens the file and writes records 41 to 599 cleared and the pin records.
// Nothing clears Buffer between two pins: a disabled row is written with the
// flags of the row before it, a copy that ConfigurationBytes then reads as
// that pin's state. Buffer is left with the last pin's flags, which the
// value records written after it carry.
void SavePins(PrfRecordFile& File, const std::vector<PinBoxGroup*>& Pins, PrfRecordType& Buffer);
// Writes record RecordNumber with Text taken as a number, held between
// Lowest and Highest. A text that is no number leaves the buffer's Value as
// it was (the value of the record written before), with no message.
void PutNumber(PrfRecordFile& File, int32_t RecordNumber, const QString& Text,
               PrfRecordType& Buffer, int32_t Lowest = INT32_MIN, int32_t Highest = INT32_MAX);
void PutValue(PrfRecordFile& File, int32_t RecordNumber, int32_t Value, PrfRecordType& Buffer);

}  // namespace ChipDialogRecords
