#include "chip/ChipDialogRecords.h"

#include <algorithm>

#include "chip/XFileExecutivePRF.h"
#include "frame/GlobalData.h"
#include "platform/Val.h"

namespace ChipDialogRecords {

bool OpenForLoad(PrfRecordFile& File) {
    XFileExecutivePRF::PRFfilename = GlobalData::ProjectFilename;
    if (XFileExecutivePRF::PRFfilename.isEmpty()) {
        return false;
    }
    XFileExecutivePRF::PRFfilename = XFileExecutivePRF::PRFfilenameOf(GlobalData::ProjectFilename);
    if (!XFileExecutivePRF::PRFfileExists()) {
        return false;
    }
    return File.Open();
}

void LoadPins(const PrfRecordFile& File, const std::vector<PinBoxGroup*>& Pins) {
    for (PinBoxGroup* Pin : Pins) {
        if (Pin->IsEnabled(1)) {
            Pin->ShowFlags(File.Get(Pin->PinNumber()));
        }
    }
}

void SavePins(PrfRecordFile& File, const std::vector<PinBoxGroup*>& Pins, PrfRecordType& Buffer) {
    File.Open();
    Buffer = PrfRecordType();
    for (int32_t Record = 41; Record <= 599; ++Record) {
        File.Put(Record, Buffer);
    }
    for (PinBoxGroup* Pin : Pins) {
        if (Pin->IsEnabled(1)) {
            Pin->TakeFlags(Buffer);
        }
        File.Put(Pin->PinNumber(), Buffer);
    }
}

void PutNumber(PrfRecordFile& File, int32_t RecordNumber, const QString& Text,
               PrfRecordType& Buffer, int32_t Lowest, int32_t Highest) {
    int32_t Number = 0;
    if (TextToLong(Text, Number)) {
        Buffer.Value = std::clamp(Number, Lowest, Highest);
    }
    File.Put(RecordNumber, Buffer);
}

void PutValue(PrfRecordFile& File, int32_t RecordNumber, int32_t Value, PrfRecordType& Buffer) {
    Buffer.Value = Value;
    File.Put(RecordNumber, Buffer);
}

}  // namespace ChipDialogRecords
