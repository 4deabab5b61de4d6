#include "monitor/WatchValues.h"

#include <algorithm>
#include <array>
#include <limits>

#include "frame/UtilitiesFilename.h"
#include "frame/UtilitiesNumeric.h"

namespace WatchValues {

namespace {

// How many bytes a value of the type takes; 0 for a type that shows nothing.
int32_t ValueSize(int32_t VariableType) {
    switch (VariableType) {
        case 17:
        case 19:
            return 2;
        case 18:
        case 50:
            return 1;
        case 20:
        case 21:
        case 32:
            return 4;
        default:
            return 0;
    }
}

}  // namespace

RamRange ReadRange(const QList<KvmEntry>& Selected) {
    int64_t Lowest = 65535;
    int64_t Highest = -1;
    for (const KvmEntry& Entry : Selected) {
        Lowest = std::min<int64_t>(Lowest, Entry.Address);
        Highest = std::max<int64_t>(Highest, Entry.Address);
    }
    const int64_t Length = Highest - Lowest + ReadSlack;
    RamRange Range;
    Range.StartingAddress = static_cast<int32_t>(Lowest);
    Range.Fits = Length <= std::numeric_limits<int32_t>::max();
    Range.Length = Range.Fits ? static_cast<int32_t>(Length) : 0;
    return Range;
}

bool ValueText(const KvmEntry& Entry, std::span<const uint8_t> RamImage, QString& Text) {
    using namespace UtilitiesNumeric;
    Text.clear();
    const int32_t Size = ValueSize(Entry.VariableType);
    if (Size == 0) {
        return true;
    }
    const int64_t First = Entry.Address;
    if (First < 0 || First + Size > static_cast<int64_t>(RamImage.size())) {
        return false;
    }
    std::array<uint8_t, 4> Bytes{};
    std::copy_n(RamImage.begin() + First, Size, Bytes.begin());
    switch (Entry.VariableType) {
        case 17:  // the upper two bytes stay 0
        case 20:
            Text = NumberToText(BytesToLong(Bytes));
            break;
        case 18:
            Text = NumberToText(Bytes[0]);
            break;
        case 19:
            Text = NumberToText(BytesToInteger(std::span<const uint8_t, 2>(Bytes.data(), 2)));
            break;
        case 21:
            Text = NumberToText(static_cast<int64_t>(static_cast<uint32_t>(BytesToLong(Bytes))));
            break;
        case 32:
            Text = NumberToText(BytesToSingle(Bytes));
            break;
        case 50:
            Text = Bytes[0] != 0 ? QStringLiteral("True") : QStringLiteral("False");
            break;
    }
    return true;
}

QString WatchText(const QList<KvmEntry>& Selected, std::span<const uint8_t> RamImage) {
    QString Text;
    if (!ReadRange(Selected).Fits) {
        return Text;
    }
    for (const KvmEntry& Entry : Selected) {
        Text += UtilitiesFilename::TrimBlanks(Entry.Name) + QStringLiteral(": ");
        QString Value;
        if (!ValueText(Entry, RamImage, Value)) {
            return Text;
        }
        Text += Value + QStringLiteral("\r\n");
    }
    return Text;
}

}  // namespace WatchValues
