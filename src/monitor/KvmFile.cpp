#include "monitor/KvmFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <limits>

#include "frame/UtilitiesFilename.h"
#include "project/ModuleFile.h"

namespace KvmFile {

namespace {

// Name, Address, VariableType, IsExcluded, DimensionCount, and eight pairs
// of bounds.
constexpr int ItemsPerRecord = 21;

struct TypeText {
    int32_t VariableType;
    const char* Text;
};

const TypeText TypeTexts[] = {
    {17, ".UnsignedInteger"}, {18, ".Byte"},   {19, ".Integer"}, {20, ".Long"},
    {21, ".UnsignedLong"},    {32, ".Single"}, {50, ".Boolean"}, {StringType, ".String"},
};

QString NotFoundText() { return QStringLiteral("Error -- KVM file not found"); }
QString ReadErrorText() { return QStringLiteral("Error reading KVM file"); }

bool IsBlank(QChar C) { return C == QLatin1Char(' ') || C == QLatin1Char('\t'); }
bool IsLineEnd(QChar C) { return C == QLatin1Char('\r') || C == QLatin1Char('\n'); }

struct Item {
    QString Text;
    bool Quoted = false;
};

enum class ItemStatus {
    Read,
    // The file ended before the item began, or inside its quotes.
    PastEnd,
    Malformed,
};

// The old run time's sequential input, one item at a time.
class ItemReader {
  public:
    explicit ItemReader(const QString& Text) : Text_(Text) {}

    ItemStatus Next(Item& Out) {
        SkipBlanks();
        if (AtEnd()) {
            return ItemStatus::PastEnd;
        }
        if (Text_[Pos_] == QLatin1Char('"')) {
            return NextQuoted(Out);
        }
        const qsizetype Start = Pos_;
        while (!AtEnd() && Text_[Pos_] != QLatin1Char(',') && !IsLineEnd(Text_[Pos_])) {
            if (Text_[Pos_] == QLatin1Char('"')) {
                return ItemStatus::Malformed;
            }
            ++Pos_;
        }
        qsizetype End = Pos_;
        while (End > Start && IsBlank(Text_[End - 1])) {
            --End;
        }
        Out.Text = Text_.mid(Start, End - Start);
        Out.Quoted = false;
        TakeSeparator();
        return ItemStatus::Read;
    }

  private:
    ItemStatus NextQuoted(Item& Out) {
        const qsizetype Start = ++Pos_;
        while (!AtEnd() && Text_[Pos_] != QLatin1Char('"')) {
            if (IsLineEnd(Text_[Pos_])) {
                return ItemStatus::Malformed;
            }
            ++Pos_;
        }
        if (AtEnd()) {
            return ItemStatus::PastEnd;
        }
        Out.Text = Text_.mid(Start, Pos_ - Start);
        Out.Quoted = true;
        ++Pos_;
        SkipBlanks();
        return TakeSeparator() ? ItemStatus::Read : ItemStatus::Malformed;
    }

    bool AtEnd() const { return Pos_ >= Text_.size(); }

    void SkipBlanks() {
        while (!AtEnd() && IsBlank(Text_[Pos_])) {
            ++Pos_;
        }
    }

    // A comma, a line end (CR LF counts once) or the end of the file.
    bool TakeSeparator() {
        if (AtEnd()) {
            return true;
        }
        if (Text_[Pos_] == QLatin1Char(',') || Text_[Pos_] == QLatin1Char('\n')) {
            ++Pos_;
            return true;
        }
        if (Text_[Pos_] == QLatin1Char('\r')) {
            ++Pos_;
            if (!AtEnd() && Text_[Pos_] == QLatin1Char('\n')) {
                ++Pos_;
            }
            return true;
        }
        return false;
    }

    const QString& Text_;
    qsizetype Pos_ = 0;
};

// A whole decimal number within Minimum to Maximum; an empty item is 0.
bool ToWholeNumber(const Item& From, int64_t Minimum, int64_t Maximum, int64_t& Value) {
    if (From.Quoted) {
        return false;
    }
    Value = 0;
    const QString& Text = From.Text;
    qsizetype Pos = 0;
    bool Negative = false;
    if (Pos < Text.size() && (Text[Pos] == QLatin1Char('+') || Text[Pos] == QLatin1Char('-'))) {
        Negative = Text[Pos] == QLatin1Char('-');
        ++Pos;
    }
    if (Pos == Text.size()) {
        return Text.isEmpty();
    }
    uint64_t Magnitude = 0;
    for (; Pos < Text.size(); ++Pos) {
        const char16_t C = Text[Pos].unicode();
        if (C < u'0' || C > u'9') {
            return false;
        }
        Magnitude = Magnitude * 10 + (C - u'0');
        if (Magnitude > (uint64_t{1} << 40)) {  // far beyond every field, and no wrap
            return false;
        }
    }
    Value = Negative ? -static_cast<int64_t>(Magnitude) : static_cast<int64_t>(Magnitude);
    return Value >= Minimum && Value <= Maximum;
}

template <typename Integer>
bool ToField(const Item& From, Integer& Field) {
    int64_t Value = 0;
    if (!ToWholeNumber(From, std::numeric_limits<Integer>::min(),
                       std::numeric_limits<Integer>::max(), Value)) {
        return false;
    }
    Field = static_cast<Integer>(Value);
    return true;
}

bool IsAsciiWord(const QString& Text, const char* Word) {
    for (QChar C : Text) {
        if (C.unicode() > 127) {
            return false;
        }
    }
    return Text.compare(QLatin1String(Word), Qt::CaseInsensitive) == 0;
}

bool ToBoolean(const Item& From, bool& Field) {
    if (From.Quoted) {
        return false;
    }
    if (IsAsciiWord(From.Text, "#TRUE#") || IsAsciiWord(From.Text, "TRUE")) {
        Field = true;
        return true;
    }
    if (IsAsciiWord(From.Text, "#FALSE#") || IsAsciiWord(From.Text, "FALSE")) {
        Field = false;
        return true;
    }
    int32_t Number = 0;
    if (!ToField(From, Number)) {
        return false;
    }
    Field = Number != 0;
    return true;
}

// Item Index (1 to 21) of a record into Entry.
bool Store(int Index, const Item& From, KvmEntry& Entry) {
    int16_t Bound = 0;
    switch (Index) {
        case 1:
            // Left-aligned in a fixed field of 64 characters.
            Entry.Name = From.Text.left(NameLength);
            return true;
        case 2:
            return ToField(From, Entry.Address);
        case 3:
            return ToField(From, Entry.VariableType);
        case 4:
            return ToBoolean(From, Entry.IsExcluded);
        case 5:
            return ToField(From, Entry.DimensionCount);
        default:
            return ToField(From, Bound);
    }
}

KvmFileContents Failed(KvmFileContents Result, const QString& Text) {
    Result.IsLoaded = false;
    Result.ErrorText = Text;
    return Result;
}

}  // namespace

QString TypeSuffix(int32_t VariableType, int16_t DimensionCount) {
    QString Suffix = QStringLiteral(".*** ILLEGAL TYPE ***");
    for (const TypeText& Type : TypeTexts) {
        if (Type.VariableType == VariableType) {
            Suffix = QLatin1String(Type.Text);
        }
    }
    return DimensionCount != 0 ? QStringLiteral("()") + Suffix : Suffix;
}

QString KvmFilename(const QString& ProjectPath, const QString& ProjectName) {
    return UtilitiesFilename::MakeFilename(ProjectPath, ProjectName, QStringLiteral("kvm"));
}

KvmFileContents Parse(const QByteArray& Bytes) {
    ModuleFileFormat Format;
    const QString Text = ModuleFile::Decode(Bytes, Format);
    ItemReader Reader(Text);
    KvmFileContents Result;
    // The record being read; an excluded one is overwritten by the next.
    KvmEntry Entry;
    for (;;) {
        for (int Index = 1; Index <= ItemsPerRecord; ++Index) {
            Item Next;
            const ItemStatus Status = Reader.Next(Next);
            if (Status == ItemStatus::PastEnd) {
                Result.IsLoaded = true;
                return Result;
            }
            if (Status == ItemStatus::Malformed) {
                return Failed(Result, ReadErrorText());
            }
            // The window's table of entries is full: there is no place to
            // store this record in.
            if (Index == 1 && Result.Entries.size() >= MaxEntryCount) {
                return Failed(Result, ReadErrorText());
            }
            if (!Store(Index, Next, Entry)) {
                return Failed(Result, ReadErrorText());
            }
        }
        if (Entry.IsExcluded || Entry.VariableType == StringType) {
            continue;
        }
        Entry.Name = UtilitiesFilename::TrimBlanks(Entry.Name);
        Result.Entries.append(Entry);
        Result.Rows.append(Entry.Name + TypeSuffix(Entry.VariableType, Entry.DimensionCount));
    }
}

KvmFileContents Read(const QString& Filename) {
    const QString Local = UtilitiesFilename::LocalFilename(Filename);
    const QFileInfo Info(Local);
    if (!Info.exists()) {
        // As the old run time told them apart: a missing folder is not a
        // missing file.
        return Failed(KvmFileContents(),
                      Info.absoluteDir().exists() ? NotFoundText() : ReadErrorText());
    }
    // Anything but a regular file (a folder, a pipe that would block) can't
    // be a symbol map.
    QFile File(Local);
    if (!Info.isFile() || !File.open(QIODevice::ReadOnly)) {
        return Failed(KvmFileContents(), ReadErrorText());
    }
    const QByteArray Bytes = File.readAll();
    if (File.error() != QFileDevice::NoError) {
        return Failed(KvmFileContents(), ReadErrorText());
    }
    return Parse(Bytes);
}

}  // namespace KvmFile
