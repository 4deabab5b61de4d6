#include "platform/IniSettingsStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>
#include <cerrno>

#include "platform/UserFileWriter.h"

namespace {
// One line of the file: its text and the line end it had ("" for a last
// line without one).
struct IniLine {
    QByteArray Text;
    QByteArray End;
};

QList<IniLine> SplitLines(const QByteArray& Bytes) {
    QList<IniLine> Lines;
    qsizetype Start = 0;
    while (Start < Bytes.size()) {
        qsizetype End = Start;
        while (End < Bytes.size() && Bytes[End] != '\n' && Bytes[End] != '\r') {
            ++End;
        }
        IniLine Line;
        Line.Text = Bytes.mid(Start, End - Start);
        qsizetype Next = End;
        if (Next < Bytes.size() && Bytes[Next] == '\r') {
            ++Next;
        }
        if (Next < Bytes.size() && Bytes[Next] == '\n') {
            ++Next;
        }
        Line.End = Bytes.mid(End, Next - End);
        Lines << Line;
        Start = Next;
    }
    return Lines;
}

QByteArray JoinLines(const QList<IniLine>& Lines) {
    QByteArray Bytes;
    for (const IniLine& Line : Lines) {
        Bytes += Line.Text + Line.End;
    }
    return Bytes;
}

bool IsHexDigit(char16_t C) {
    return (C >= '0' && C <= '9') || (C >= 'a' && C <= 'f') || (C >= 'A' && C <= 'F');
}

// "%XX" as QSettings writes a byte of a key or group that is not a plain
// letter, digit or one of "-_.".
QString UnescapeKey(const QByteArray& Raw) {
    QByteArray Bytes;
    for (qsizetype Index = 0; Index < Raw.size(); ++Index) {
        if (Raw[Index] == '%' && Index + 2 < Raw.size() && IsHexDigit(Raw[Index + 1]) &&
            IsHexDigit(Raw[Index + 2])) {
            Bytes += static_cast<char>(Raw.mid(Index + 1, 2).toInt(nullptr, 16));
            Index += 2;
        } else if (Raw[Index] == '\\') {
            Bytes += '/';
        } else {
            Bytes += Raw[Index];
        }
    }
    return QString::fromUtf8(Bytes);
}

QByteArray EscapeKey(const QString& Key) {
    QByteArray Result;
    for (char Byte : Key.toUtf8()) {
        const bool Plain = (Byte >= 'a' && Byte <= 'z') || (Byte >= 'A' && Byte <= 'Z') ||
                           (Byte >= '0' && Byte <= '9') || Byte == '_' || Byte == '-' ||
                           Byte == '.';
        if (Plain) {
            Result += Byte;
        } else {
            Result += '%' + QByteArray::number(static_cast<uint8_t>(Byte), 16).toUpper();
        }
    }
    return Result;
}

// The section a line opens, or a null text.
QString SectionOf(const QByteArray& Text) {
    const QByteArray Trimmed = Text.trimmed();
    if (!Trimmed.startsWith('[')) {
        return QString();
    }
    const qsizetype Close = Trimmed.indexOf(']');
    if (Close < 0) {
        return QString();
    }
    return UnescapeKey(Trimmed.mid(1, Close - 1));
}

// The key and the raw value of a "key=value" line; False for any other line.
bool SplitEntry(const QByteArray& Text, QString& Key, QByteArray& Raw) {
    const QByteArray Trimmed = Text.trimmed();
    if (Trimmed.isEmpty() || Trimmed.startsWith(';') || Trimmed.startsWith('#') ||
        Trimmed.startsWith('[')) {
        return false;
    }
    const qsizetype Equals = Text.indexOf('=');
    if (Equals < 0) {
        return false;
    }
    Key = UnescapeKey(Text.left(Equals).trimmed());
    Raw = Text.mid(Equals + 1);
    return true;
}

// Where the key's last entry in the section stands (-1 for none), and after
// which line a new entry of the section goes (-1: the section is missing).
void FindEntry(const QList<IniLine>& Lines, const QString& Section, const QString& Key,
               qsizetype& EntryLine, qsizetype& SectionEnd) {
    EntryLine = -1;
    SectionEnd = -1;
    bool Inside = false;
    for (qsizetype Index = 0; Index < Lines.size(); ++Index) {
        const QString Opened = SectionOf(Lines[Index].Text);
        if (!Opened.isNull()) {
            Inside = Opened == Section;
            if (Inside) {
                SectionEnd = Index;
            }
            continue;
        }
        if (!Inside) {
            continue;
        }
        QString EntryKey;
        QByteArray Raw;
        if (SplitEntry(Lines[Index].Text, EntryKey, Raw)) {
            SectionEnd = Index;
            if (EntryKey == Key) {
                EntryLine = Index;
            }
        }
    }
}

QString StoreKey(const QString& AppName, const QString& Section, const QString& Key) {
    return AppName + QLatin1Char('/') + Section + QLatin1Char('/') + Key;
}

QByteArray ReadWholeFile(const QString& Filename) {
    QFile File(Filename);
    if (!QFileInfo(Filename).isFile() || !File.open(QIODevice::ReadOnly)) {
        return QByteArray();
    }
    return File.readAll();
}

QString ConfFile(const QString& Folder, const QString& AppName) {
    return Folder + QLatin1Char('/') + AppName + QLatin1Char('/') + AppName +
           QStringLiteral(".conf");
}

// The key's value in one file; False when the file does not hold the key.
bool ReadEntry(const QString& Filename, const QString& Section, const QString& Key,
               QString& Value) {
    const QList<IniLine> Lines = SplitLines(ReadWholeFile(Filename));
    qsizetype EntryLine = -1;
    qsizetype SectionEnd = -1;
    FindEntry(Lines, Section, Key, EntryLine, SectionEnd);
    if (EntryLine < 0) {
        return false;
    }
    QString EntryKey;
    QByteArray Raw;
    SplitEntry(Lines[EntryLine].Text, EntryKey, Raw);
    Value = IniSettingsStore::UnescapeValue(Raw);
    return true;
}

// The system's configuration folders: those of $XDG_CONFIG_DIRS, else /etc/xdg,
// the folder where QSettings reads a system-wide file behind the user's.
QStringList SystemConfigFolders() {
    QStringList Folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    Folders.removeAll(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
    return Folders;
}
}  // namespace

IniSettingsStore::IniSettingsStore(const QString& Folder)
    : Folder_(Folder), SystemFolders_(Folder.isEmpty() ? SystemConfigFolders() : QStringList()) {}

IniSettingsStore::IniSettingsStore(const QString& Folder, const QStringList& SystemFolders)
    : Folder_(Folder), SystemFolders_(SystemFolders) {}

QString IniSettingsStore::Filename(const QString& AppName) const {
    return ConfFile(Folder_.isEmpty()
                        ? QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
                        : Folder_,
                    AppName);
}

bool IniSettingsStore::UserFileHolds(const QString& AppName, const QString& Section,
                                     const QString& Key) const {
    QString Value;
    return Unsaved_.contains(StoreKey(AppName, Section, Key)) ||
           ReadEntry(Filename(AppName), Section, Key, Value);
}

QString IniSettingsStore::GetSetting(const QString& AppName, const QString& Section,
                                     const QString& Key) {
    const auto Unsaved = Unsaved_.constFind(StoreKey(AppName, Section, Key));
    if (Unsaved != Unsaved_.constEnd()) {
        return *Unsaved;
    }
    QString Value;
    if (ReadEntry(Filename(AppName), Section, Key, Value)) {
        return Value;
    }
    for (const QString& Folder : SystemFolders_) {
        if (ReadEntry(ConfFile(Folder, AppName), Section, Key, Value)) {
            return Value;
        }
    }
    return QString();
}

bool IniSettingsStore::SaveSetting(const QString& AppName, const QString& Section,
                                   const QString& Key, const QString& Value) {
    // Nothing to write when the user's file says so already, or when an empty
    // value meets a key that nobody has set.
    const QString Stored = GetSetting(AppName, Section, Key);
    if (Stored == Value && (UserFileHolds(AppName, Section, Key) || Value.isEmpty())) {
        return true;
    }
    const QString File = Filename(AppName);
    QList<IniLine> Lines = SplitLines(ReadWholeFile(File));
    // New lines end as the file's lines do.
    QByteArray LineEnd = "\n";
    for (const IniLine& Line : Lines) {
        if (!Line.End.isEmpty()) {
            LineEnd = Line.End;
            break;
        }
    }
    const QByteArray Entry = EscapeKey(Key) + '=' + EscapeValue(Value);
    qsizetype EntryLine = -1;
    qsizetype SectionEnd = -1;
    FindEntry(Lines, Section, Key, EntryLine, SectionEnd);
    if (EntryLine >= 0) {
        Lines[EntryLine].Text = Entry;
    } else if (SectionEnd >= 0) {
        if (Lines[SectionEnd].End.isEmpty()) {
            Lines[SectionEnd].End = LineEnd;
        }
        Lines.insert(SectionEnd + 1, IniLine{Entry, LineEnd});
    } else {
        if (!Lines.isEmpty()) {
            if (Lines.back().End.isEmpty()) {
                Lines.back().End = LineEnd;
            }
            if (!Lines.back().Text.trimmed().isEmpty()) {
                Lines << IniLine{QByteArray(), LineEnd};
            }
        }
        Lines << IniLine{'[' + EscapeKey(Section) + ']', LineEnd};
        Lines << IniLine{Entry, LineEnd};
    }

    UserFileFailure Failure;
    bool Saved = false;
    errno = 0;
    if (QDir().mkpath(QFileInfo(File).absolutePath())) {
        Saved = UserFile::Write(File, JoinLines(Lines), Failure);
    } else {
        Failure = UserFile::FailureOfErrno(errno != 0 ? errno : EACCES);
    }
    const QString Unsaved = StoreKey(AppName, Section, Key);
    if (!Saved) {
        Unsaved_.insert(Unsaved, Value);
        FailureText_ = File + QLatin1Char('\n') + UserFile::ErrorLine(Failure);
        return false;
    }
    Unsaved_.remove(Unsaved);
    FailureText_.clear();
    return true;
}

QString IniSettingsStore::UnescapeValue(const QByteArray& Raw) {
    static const char EscapeCodes[][2] = {{'a', '\a'}, {'b', '\b'},  {'f', '\f'}, {'n', '\n'},
                                          {'r', '\r'}, {'t', '\t'},  {'v', '\v'}, {'"', '"'},
                                          {'?', '?'},  {'\'', '\''}, {'\\', '\\'}};
    QStringList Items;
    QString Current;
    bool IsList = false;
    bool InQuotes = false;
    bool CurrentIsQuoted = false;
    // Trailing blanks of an unquoted part go; those from escapes stay.
    qsizetype ChopLimit = 0;
    auto ChopTrailingBlanks = [&Current, &ChopLimit] {
        while (Current.size() > ChopLimit &&
               (Current.back() == QLatin1Char(' ') || Current.back() == QLatin1Char('\t'))) {
            Current.chop(1);
        }
    };
    qsizetype Index = 0;
    auto SkipBlanks = [&Raw, &Index] {
        while (Index < Raw.size() && (Raw[Index] == ' ' || Raw[Index] == '\t')) {
            ++Index;
        }
    };
    SkipBlanks();
    while (Index < Raw.size()) {
        const char C = Raw[Index];
        if (C == '\\') {
            ++Index;
            if (Index >= Raw.size()) {
                break;
            }
            const char Code = Raw[Index++];
            bool Known = false;
            for (const auto& Escape : EscapeCodes) {
                if (Code == Escape[0]) {
                    Current += QLatin1Char(Escape[1]);
                    Known = true;
                    break;
                }
            }
            if (!Known && Code == 'x') {
                uint32_t Value = 0;
                while (Index < Raw.size() && IsHexDigit(Raw[Index])) {
                    Value = Value * 16 + QByteArray(1, Raw[Index]).toUInt(nullptr, 16);
                    ++Index;
                }
                Current += QChar(static_cast<char16_t>(Value));
            } else if (!Known && Code >= '0' && Code <= '7') {
                uint32_t Value = static_cast<uint32_t>(Code - '0');
                while (Index < Raw.size() && Raw[Index] >= '0' && Raw[Index] <= '7') {
                    Value = Value * 8 + static_cast<uint32_t>(Raw[Index] - '0');
                    ++Index;
                }
                Current += QChar(static_cast<char16_t>(Value));
            }
            ChopLimit = Current.size();
        } else if (C == '"') {
            ++Index;
            CurrentIsQuoted = true;
            InQuotes = !InQuotes;
            if (!InQuotes) {
                SkipBlanks();
            }
        } else if (C == ',' && !InQuotes) {
            if (!CurrentIsQuoted) {
                ChopTrailingBlanks();
            }
            IsList = true;
            Items << Current;
            Current.clear();
            ChopLimit = 0;
            CurrentIsQuoted = false;
            ++Index;
            SkipBlanks();
        } else {
            qsizetype End = Index + 1;
            while (End < Raw.size() && Raw[End] != '\\' && Raw[End] != '"' &&
                   (Raw[End] != ',' || InQuotes)) {
                ++End;
            }
            Current += QString::fromUtf8(Raw.mid(Index, End - Index));
            Index = End;
        }
    }
    if (!CurrentIsQuoted) {
        ChopTrailingBlanks();
    }
    // A text that began with "@" was written with a second one.
    auto Plain = [](const QString& Text) {
        if (Text.startsWith(QStringLiteral("@@"))) {
            return Text.mid(1);
        }
        if (Text == QStringLiteral("@Invalid()")) {
            return QString();
        }
        return Text;
    };
    if (!IsList) {
        return Plain(Current);
    }
    Items << Current;
    for (QString& Item : Items) {
        Item = Plain(Item);
    }
    return Items.join(QLatin1Char(','));
}

QByteArray IniSettingsStore::EscapeValue(const QString& Value) {
    const QString Text = Value.startsWith(QLatin1Char('@')) ? QLatin1Char('@') + Value : Value;
    QByteArray Result;
    bool NeedsQuotes = false;
    bool EscapeNextIfHex = false;
    for (qsizetype Index = 0; Index < Text.size(); ++Index) {
        const QChar Character = Text[Index];
        const char16_t C = Character.unicode();
        if (C == ';' || C == ',' || C == '=') {
            NeedsQuotes = true;
        }
        if (EscapeNextIfHex && IsHexDigit(C)) {
            Result += "\\x" + QByteArray::number(C, 16);
            continue;
        }
        EscapeNextIfHex = false;
        switch (C) {
            case 0:
                Result += "\\0";
                EscapeNextIfHex = true;
                break;
            case '\a':
                Result += "\\a";
                break;
            case '\b':
                Result += "\\b";
                break;
            case '\f':
                Result += "\\f";
                break;
            case '\n':
                Result += "\\n";
                break;
            case '\r':
                Result += "\\r";
                break;
            case '\t':
                Result += "\\t";
                break;
            case '\v':
                Result += "\\v";
                break;
            case '"':
                Result += "\\\"";
                break;
            case '\\':
                Result += "\\\\";
                break;
            default:
                if (C <= 0x1F) {
                    Result += "\\x" + QByteArray::number(C, 16);
                    EscapeNextIfHex = true;
                } else if (Character.isHighSurrogate() && Index + 1 < Text.size() &&
                           Text[Index + 1].isLowSurrogate()) {
                    Result += Text.mid(Index, 2).toUtf8();
                    ++Index;
                } else {
                    Result += QString(Character).toUtf8();
                }
                break;
        }
    }
    if (NeedsQuotes || Result.startsWith(' ') || Result.endsWith(' ')) {
        Result = '"' + Result + '"';
    }
    return Result;
}
