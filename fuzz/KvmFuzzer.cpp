// Feeds arbitrary bytes to the symbol map reader as the file of a project,
// shows every entry it lists from a RAM image made of the same bytes, and
// checks what must always hold.
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

#include "frame/UtilitiesNumeric.h"
#include "monitor/KvmFile.h"
#include "monitor/WatchValues.h"

namespace {

void Require(bool Condition) {
    if (!Condition) {
        std::abort();
    }
}

QTemporaryDir& Folder() {
    static QTemporaryDir Instance;
    Require(Instance.isValid());
    return Instance;
}

void RequireWellFormed(const KvmFileContents& Contents) {
    // Bytes end in one of two ways: a good list, or the reading error. Not
    // found is for a file that isn't there.
    if (Contents.IsLoaded) {
        Require(Contents.ErrorText.isEmpty());
    } else {
        Require(Contents.ErrorText == QStringLiteral("Error reading KVM file"));
    }
    Require(Contents.Entries.size() <= KvmFile::MaxEntryCount);
    Require(Contents.Rows.size() == Contents.Entries.size());
    for (qsizetype Row = 0; Row < Contents.Entries.size(); ++Row) {
        const KvmEntry& Entry = Contents.Entries[Row];
        Require(!Entry.IsExcluded && Entry.VariableType != KvmFile::StringType);
        Require(Entry.Name.size() <= KvmFile::NameLength);
        Require(!Entry.Name.startsWith(QLatin1Char(' ')) && !Entry.Name.endsWith(QLatin1Char(' ')));
        Require(Contents.Rows[Row] ==
                Entry.Name + KvmFile::TypeSuffix(Entry.VariableType, Entry.DimensionCount));
    }
}

// A number's text has no blank and no zero before its point.
void RequireNumberText(const QString& Text) {
    Require(!Text.isEmpty() && !Text.contains(QLatin1Char(' ')));
    Require(!Text.startsWith(QLatin1String("0.")) && !Text.startsWith(QLatin1String("-0.")));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size) {
    const QByteArray Input(reinterpret_cast<const char*>(Data), static_cast<qsizetype>(Size));
    const QString Filename = Folder().path() + QStringLiteral("/fuzz.kvm");
    {
        QFile File(Filename);
        Require(File.open(QIODevice::WriteOnly | QIODevice::Truncate));
        Require(File.write(Input) == Input.size());
    }
    const KvmFileContents Contents = KvmFile::Read(Filename);
    RequireWellFormed(Contents);
    // Reading the file is reading its bytes.
    const KvmFileContents Again = KvmFile::Parse(Input);
    Require(Again.Entries == Contents.Entries && Again.Rows == Contents.Rows &&
            Again.IsLoaded == Contents.IsLoaded && Again.ErrorText == Contents.ErrorText);

    // One sample of all the listed entries over a RAM image of the input.
    std::vector<uint8_t> Ram(65536);
    for (size_t Index = 0; Index < Ram.size() && Size > 0; ++Index) {
        Ram[Index] = Data[Index % Size];
    }
    const WatchValues::RamRange Range = WatchValues::ReadRange(Contents.Entries);
    const QString Text = WatchValues::WatchText(Contents.Entries, Ram);
    if (Contents.Entries.isEmpty()) {
        Require(Range.Length < 0 && Text.isEmpty());
    } else if (Range.Fits) {
        Require(Range.Length >= WatchValues::ReadSlack);
        Require(Text.startsWith(Contents.Entries[0].Name + QStringLiteral(": ")));
    }

    // The first bytes as numbers of every kind.
    if (Size >= 8) {
        const std::span<const uint8_t, 4> Four(Data, 4);
        RequireNumberText(UtilitiesNumeric::NumberToText(UtilitiesNumeric::BytesToSingle(Four)));
        RequireNumberText(UtilitiesNumeric::NumberToText(UtilitiesNumeric::BytesToLong(Four)));
        double Double = 0;
        std::memcpy(&Double, Data, sizeof Double);
        RequireNumberText(UtilitiesNumeric::NumberToText(Double));
    }
    return 0;
}
