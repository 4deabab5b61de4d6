// A test double of the compiler component: a library with the component's
// interface that compiles nothing. It reads the project file and the module
// files from disk as a compiler would, records every call it receives with
// its arguments, and answers as the running test tells it.
//
// The test names two files in the environment:
//   KVCOMP_TEST_SCRIPT  read at every call; lines of "key=value":
//     version=2.0.24              what GetVersion reports
//     refuse=SetStringSize,...    operations that answer Success False
//     sizes=CODE,RAM,PERSISTENT   the sizes of a good compile (default: the
//                                 modules' total length, 0, 0)
//     warnings=TEXT               "\n" in TEXT stands for a line break
//     error=MODULE,LINE,COLUMN,START,END,NUMBER   the compile fails there
//     fail_at=TEXT                the compile fails at the first module that
//                                 holds TEXT, with its line, column and extent
//     description=TEXT            the error's text
//     symbol=NAME,ADDRESS,TYPE,EXCLUDED,DIMENSIONS  a record of the symbol map
//   KVCOMP_TEST_RECORD  every call is appended as one line, e.g.
//                       "SetRamBoundaries(207, 607)"; Booleans as they
//                       crossed: -1 or 0.
//   KVCOMP_TEST_CREATE  "null": the creation function makes no object;
//                       "incomplete": the object's table lacks RunCompile.
// Without a script the compile succeeds if every module file can be read.
// The program image and the symbol map are written only on success.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <optional>

#include "compile/KvCompInterface.h"

namespace {

struct Script {
    int16_t Major = 2;
    int16_t Minor = 0;
    int16_t Revision = 24;
    QStringList Refused;
    std::optional<QList<int32_t>> Sizes;
    QString Warnings;
    std::optional<QList<int32_t>> Error;
    QString FailAt;
    QString Description = QStringLiteral("Syntax error");
    QStringList Symbols;
};

QString Unescape(QString Text) {
    return Text.replace(QStringLiteral("\\n"), QStringLiteral("\r\n"));
}

QList<int32_t> Numbers(const QString& Text) {
    QList<int32_t> Result;
    for (const QString& Item : Text.split(QLatin1Char(','))) {
        Result << Item.trimmed().toInt();
    }
    return Result;
}

Script ReadScript() {
    Script Result;
    QFile File(qEnvironmentVariable("KVCOMP_TEST_SCRIPT"));
    if (File.fileName().isEmpty() || !File.open(QIODevice::ReadOnly)) {
        return Result;
    }
    for (const QString& Line : QString::fromUtf8(File.readAll()).split(QLatin1Char('\n'))) {
        const qsizetype Equals = Line.indexOf(QLatin1Char('='));
        if (Line.startsWith(QLatin1Char('#')) || Equals < 0) {
            continue;
        }
        const QString Key = Line.left(Equals).trimmed();
        const QString Value = Line.mid(Equals + 1).trimmed();
        if (Key == QStringLiteral("version")) {
            const QStringList Parts = Value.split(QLatin1Char('.'));
            Result.Major = static_cast<int16_t>(Parts.value(0).toInt());
            Result.Minor = static_cast<int16_t>(Parts.value(1).toInt());
            Result.Revision = static_cast<int16_t>(Parts.value(2).toInt());
        } else if (Key == QStringLiteral("refuse")) {
            Result.Refused << Value.split(QLatin1Char(','), Qt::SkipEmptyParts);
        } else if (Key == QStringLiteral("sizes")) {
            Result.Sizes = Numbers(Value);
        } else if (Key == QStringLiteral("warnings")) {
            Result.Warnings = Unescape(Value);
        } else if (Key == QStringLiteral("error")) {
            Result.Error = Numbers(Value);
        } else if (Key == QStringLiteral("fail_at")) {
            Result.FailAt = Value;
        } else if (Key == QStringLiteral("description")) {
            Result.Description = Unescape(Value);
        } else if (Key == QStringLiteral("symbol")) {
            Result.Symbols << Value;
        }
    }
    return Result;
}

void Record(const QString& Line) {
    QFile File(qEnvironmentVariable("KVCOMP_TEST_RECORD"));
    if (!File.fileName().isEmpty() && File.open(QIODevice::Append)) {
        File.write(Line.toUtf8() + "\n");
    }
}

QString FromKv(const KvChar* Text) {
    return Text == nullptr ? QString()
                           : QString::fromUtf16(reinterpret_cast<const char16_t*>(Text));
}

KvBool Answer(const QString& Operation, bool Value) {
    return (Value && !ReadScript().Refused.contains(Operation)) ? KVCOMP_TRUE : KVCOMP_FALSE;
}

// A module line of a project file: short names lie beside the project file;
// names written on the other platform may use "\".
QString ModuleFilename(const QString& ProjectDirectory, QString Line) {
    Line = Line.trimmed().replace(QLatin1Char('\\'), QLatin1Char('/'));
    return QFileInfo(Line).isAbsolute() ? Line : ProjectDirectory + QLatin1Char('/') + Line;
}

struct TestCompiler : KvCompiler {
    int16_t StringSize = 16;
    int16_t ChipType = 0;
    KvBool FamilyFlag = KVCOMP_FALSE;
    KvBool Strict = KVCOMP_FALSE;
    KvBool Optimize = KVCOMP_FALSE;
    int32_t Boundaries[3][2] = {};
    QString LibraryPath;
    int32_t CodeSize = 0;
    int32_t RamSize = 0;
    int32_t PersistentSize = 0;
    std::u16string ErrorText;
    std::u16string WarningText;
};

TestCompiler& Of(KvCompiler* Self) { return *static_cast<TestCompiler*>(Self); }

void SetLibraryPath(KvCompiler* Self, const KvChar* Path, KvBool* Success) {
    const QString Directory = FromKv(Path);
    Record(QStringLiteral("SetLibraryPath(%1)").arg(Directory));
    const bool Found = QFileInfo(Directory + QStringLiteral("/BinKV10")).isDir() &&
                       QFileInfo(Directory + QStringLiteral("/BinKV20")).isDir();
    *Success = Answer(QStringLiteral("SetLibraryPath"), Found);
    if (*Success == KVCOMP_TRUE) {
        Of(Self).LibraryPath = Directory;
    }
}

void GetVersion(KvCompiler*, int16_t* Major, int16_t* Minor, int16_t* Revision) {
    Record(QStringLiteral("GetVersion"));
    const Script Answers = ReadScript();
    *Major = Answers.Major;
    *Minor = Answers.Minor;
    *Revision = Answers.Revision;
}

void SetStringSize(KvCompiler* Self, int16_t Size, KvBool* Success) {
    Record(QStringLiteral("SetStringSize(%1)").arg(Size));
    *Success = Answer(QStringLiteral("SetStringSize"), Size >= 1 && Size <= 64);
    if (*Success == KVCOMP_TRUE) {
        Of(Self).StringSize = Size;
    }
}

void SetChipFamilyFlag(KvCompiler* Self, KvBool Value) {
    Record(QStringLiteral("SetChipFamilyFlag(%1)").arg(Value));
    Of(Self).FamilyFlag = Value;
}

void SetStrictSyntax(KvCompiler* Self, KvBool Value) {
    Record(QStringLiteral("SetStrictSyntax(%1)").arg(Value));
    Of(Self).Strict = Value;
}

void SetWindowCenter(KvCompiler*, KvBool Flag, int32_t CenterY, int32_t CenterX) {
    Record(QStringLiteral("SetWindowCenter(%1, %2, %3)").arg(Flag).arg(CenterY).arg(CenterX));
}

void SetChipType(KvCompiler* Self, int16_t ChipType) {
    Record(QStringLiteral("SetChipType(%1)").arg(ChipType));
    Of(Self).ChipType = ChipType;
}

void SetOptimize(KvCompiler* Self, KvBool Value) {
    Record(QStringLiteral("SetOptimize(%1)").arg(Value));
    Of(Self).Optimize = Value;
}

void GetRamSize(KvCompiler* Self, int32_t* Size) {
    Record(QStringLiteral("GetRamSize"));
    *Size = Of(Self).RamSize;
}

void GetCodeSize(KvCompiler* Self, int32_t* Size) {
    Record(QStringLiteral("GetCodeSize"));
    *Size = Of(Self).CodeSize;
}

void GetPersistentSize(KvCompiler* Self, int32_t* Size) {
    Record(QStringLiteral("GetPersistentSize"));
    *Size = Of(Self).PersistentSize;
}

void Reserved12(KvCompiler*) { Record(QStringLiteral("Reserved12")); }

void SetBoundaries(KvCompiler* Self, int Which, const char* Operation, int32_t Low, int32_t High,
                   KvBool* Success) {
    const QString Name = QString::fromLatin1(Operation);
    Record(QStringLiteral("%1(%2, %3)").arg(Name).arg(Low).arg(High));
    *Success = Answer(Name, Low >= 0 && Low <= High);
    if (*Success == KVCOMP_TRUE) {
        Of(Self).Boundaries[Which][0] = Low;
        Of(Self).Boundaries[Which][1] = High;
    }
}

void SetRamBoundaries(KvCompiler* Self, int32_t Low, int32_t High, KvBool* Success) {
    SetBoundaries(Self, 0, "SetRamBoundaries", Low, High, Success);
}

void SetCodeBoundaries(KvCompiler* Self, int32_t Low, int32_t High, KvBool* Success) {
    SetBoundaries(Self, 1, "SetCodeBoundaries", Low, High, Success);
}

void SetPersistentBoundaries(KvCompiler* Self, int32_t Low, int32_t High, KvBool* Success) {
    SetBoundaries(Self, 2, "SetPersistentBoundaries", Low, High, Success);
}

struct ErrorPlace {
    int16_t Module = 0;
    int16_t Line = 0;
    int16_t Column = 0;
    int32_t Start = 0;
    int32_t End = 0;
    int32_t Number = 0;
    QString Text;
};

// Where Needle first stands in Text, with a line break counted as two
// characters as the editor counts them; line and column from 1.
std::optional<ErrorPlace> Find(const QString& Text, const QString& Needle) {
    const qsizetype Index = Text.indexOf(Needle);
    if (Needle.isEmpty() || Index < 0) {
        return std::nullopt;
    }
    ErrorPlace Place;
    int32_t Position = 0;
    int16_t Line = 1;
    int16_t Column = 1;
    for (qsizetype At = 0; At < Index; ++At) {
        if (Text[At] == QLatin1Char('\r') && At + 1 < Text.size() &&
            Text[At + 1] == QLatin1Char('\n')) {
            continue;
        }
        if (Text[At] == QLatin1Char('\n')) {
            Position += 2;
            ++Line;
            Column = 1;
        } else {
            ++Position;
            ++Column;
        }
    }
    Place.Line = Line;
    Place.Column = Column;
    Place.Start = Position;
    Place.End = Position + static_cast<int32_t>(Needle.size());
    return Place;
}

void WriteFile(const QString& Name, const QByteArray& Content) {
    QFile File(Name);
    if (File.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        File.write(Content);
    }
}

void RunCompile(KvCompiler* Self, const KvChar* ProjectFilename, KvBool* Success,
                int16_t* ModuleNumber, int16_t* LineNumber, int16_t* ColumnNumber,
                int32_t* EndPosition, int32_t* StartPosition, int32_t* ErrorNumber,
                const KvChar** ErrorDescription, const KvChar** WarningDescription) {
    TestCompiler& Compiler = Of(Self);
    const QString Filename = FromKv(ProjectFilename);
    Record(QStringLiteral("RunCompile(%1)").arg(Filename));
    const Script Answers = ReadScript();
    std::optional<ErrorPlace> Failure;

    QFile ProjectFile(Filename);
    QStringList ModuleLines;
    if (!ProjectFile.open(QIODevice::ReadOnly)) {
        Failure = ErrorPlace{};
        Failure->Number = 53;
        Failure->Text = QStringLiteral("Can't open project file ") + Filename;
    } else {
        ModuleLines = QString::fromUtf8(ProjectFile.readAll())
                          .split(QRegularExpression(QStringLiteral("\r?\n")), Qt::SkipEmptyParts);
    }
    const QString Directory = QFileInfo(Filename).absolutePath();
    QByteArray Image;
    for (int Index = 0; Index < ModuleLines.size() && !Failure; ++Index) {
        QFile Module(ModuleFilename(Directory, ModuleLines[Index]));
        if (!Module.open(QIODevice::ReadOnly)) {
            Failure = ErrorPlace{};
            Failure->Number = 53;
            Failure->Text = QStringLiteral("Can't open module file ") + Module.fileName();
        } else {
            const QByteArray Source = Module.readAll();
            Image += Source;
            Failure = Find(QString::fromUtf8(Source), Answers.FailAt);
            if (Failure) {
                Failure->Text = Answers.Description;
            }
        }
        if (Failure) {
            Failure->Module = static_cast<int16_t>(Index + 1);
        }
    }
    if (!Failure && Answers.Error) {
        const QList<int32_t>& E = *Answers.Error;
        Failure = ErrorPlace{static_cast<int16_t>(E.value(0)),
                             static_cast<int16_t>(E.value(1)),
                             static_cast<int16_t>(E.value(2)),
                             E.value(3),
                             E.value(4),
                             E.value(5),
                             Answers.Description};
    }

    // The object file: what this compile was told, for a test to read back.
    const QFileInfo Project(Filename);
    WriteFile(Compiler.LibraryPath + QStringLiteral("/Temp/") + Project.completeBaseName() +
                  QStringLiteral(".obj"),
              QStringLiteral("chip=%1 family=%2 strict=%3 optimize=%4 strings=%5 ram=%6-%7 "
                             "code=%8-%9 persistent=%10-%11\n")
                  .arg(Compiler.ChipType)
                  .arg(Compiler.FamilyFlag)
                  .arg(Compiler.Strict)
                  .arg(Compiler.Optimize)
                  .arg(Compiler.StringSize)
                  .arg(Compiler.Boundaries[0][0])
                  .arg(Compiler.Boundaries[0][1])
                  .arg(Compiler.Boundaries[1][0])
                  .arg(Compiler.Boundaries[1][1])
                  .arg(Compiler.Boundaries[2][0])
                  .arg(Compiler.Boundaries[2][1])
                  .toUtf8());

    Compiler.WarningText = Answers.Warnings.toStdU16String();
    *WarningDescription = reinterpret_cast<const KvChar*>(Compiler.WarningText.c_str());
    if (Failure) {
        *Success = KVCOMP_FALSE;
        *ModuleNumber = Failure->Module;
        *LineNumber = Failure->Line;
        *ColumnNumber = Failure->Column;
        *StartPosition = Failure->Start;
        *EndPosition = Failure->End;
        *ErrorNumber = Failure->Number;
        Compiler.ErrorText = Failure->Text.toStdU16String();
        *ErrorDescription = reinterpret_cast<const KvChar*>(Compiler.ErrorText.c_str());
        return;
    }

    const QList<int32_t> Sizes =
        Answers.Sizes.value_or(QList<int32_t>{static_cast<int32_t>(Image.size()), 0, 0});
    Compiler.CodeSize = Sizes.value(0);
    Compiler.RamSize = Sizes.value(1);
    Compiler.PersistentSize = Sizes.value(2);
    // The image: the sources' bytes over and over, as long as the code.
    QByteArray Code(Compiler.CodeSize, '\0');
    for (int32_t Index = 0; Index < Compiler.CodeSize && !Image.isEmpty(); ++Index) {
        Code[Index] = Image[Index % Image.size()];
    }
    const QString Base = Directory + QLatin1Char('/') + Project.completeBaseName();
    WriteFile(Base + QStringLiteral(".kvb"), Code);
    QByteArray Map;
    for (const QString& Symbol : Answers.Symbols) {
        const QStringList Item = Symbol.split(QLatin1Char(','));
        Map += QStringLiteral("\"%1\",%2,%3,%4,%5")
                   .arg(Item.value(0), Item.value(1), Item.value(2),
                        Item.value(3) == QStringLiteral("1") ? QStringLiteral("#TRUE#")
                                                             : QStringLiteral("#FALSE#"),
                        Item.value(4, QStringLiteral("0")))
                   .toUtf8();
        Map += QByteArray(",0,0").repeated(8) + "\r\n";
    }
    WriteFile(Base + QStringLiteral(".kvm"), Map);
    *Success = KVCOMP_TRUE;
    *ModuleNumber = 0;
    *LineNumber = 0;
    *ColumnNumber = 0;
    *StartPosition = 0;
    *EndPosition = 0;
    *ErrorNumber = 0;
    Compiler.ErrorText.clear();
    *ErrorDescription = reinterpret_cast<const KvChar*>(Compiler.ErrorText.c_str());
}

// A table with a hole, for the loader's check of a broken component.
const KvCompilerOps IncompleteOperations = {
    SetLibraryPath,    GetVersion,  SetStringSize,    SetChipFamilyFlag, SetStrictSyntax,
    SetWindowCenter,   SetChipType, SetOptimize,      GetRamSize,        GetCodeSize,
    GetPersistentSize, Reserved12,  SetRamBoundaries, SetCodeBoundaries, SetPersistentBoundaries,
    nullptr,
};

const KvCompilerOps Operations = {
    SetLibraryPath,    GetVersion,  SetStringSize,    SetChipFamilyFlag, SetStrictSyntax,
    SetWindowCenter,   SetChipType, SetOptimize,      GetRamSize,        GetCodeSize,
    GetPersistentSize, Reserved12,  SetRamBoundaries, SetCodeBoundaries, SetPersistentBoundaries,
    RunCompile,
};

}  // namespace

// KVCOMP_TEST_CREATE=null makes no object; =incomplete one whose table has a hole.
KvCompiler* KvCompCreate(void) {
    Record(QStringLiteral("KvCompCreate"));
    const QString Mode = qEnvironmentVariable("KVCOMP_TEST_CREATE");
    if (Mode == QStringLiteral("null")) {
        return nullptr;
    }
    auto* Compiler = new TestCompiler();
    Compiler->Ops = Mode == QStringLiteral("incomplete") ? &IncompleteOperations : &Operations;
    return Compiler;
}
