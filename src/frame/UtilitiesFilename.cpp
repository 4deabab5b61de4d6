#include "frame/UtilitiesFilename.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace UtilitiesFilename {

namespace {
bool IsSeparator(QChar C) { return C == QLatin1Char('\\') || C == QLatin1Char('/'); }

qsizetype LastSeparator(const QString& Text) {
    return std::max(Text.lastIndexOf(QLatin1Char('\\')), Text.lastIndexOf(QLatin1Char('/')));
}

QChar SeparatorFor(const QString& Path) {
    const qsizetype Pos = LastSeparator(Path);
    if (Pos >= 0) {
        return Path[Pos];
    }
    if (Path.endsWith(QLatin1Char(':'))) {
        return QLatin1Char('\\');
    }
    return QLatin1Char('/');
}
}  // namespace

QString TrimBlanks(const QString& Text) {
    qsizetype Start = 0;
    qsizetype End = Text.size();
    while (Start < End && Text[Start] == QLatin1Char(' ')) {
        ++Start;
    }
    while (End > Start && Text[End - 1] == QLatin1Char(' ')) {
        --End;
    }
    return Text.mid(Start, End - Start);
}

QChar LastSeparatorOf(const QString& LongFilename) {
    const qsizetype Pos = LastSeparator(LongFilename);
    return Pos >= 0 ? LongFilename[Pos] : QChar();
}

QString MakeFilename(const QString& Path, const QString& Name, const QString& Extension,
                     QChar Separator) {
    const QString P = TrimBlanks(Path);
    const QString N = TrimBlanks(Name);
    const QString E = TrimBlanks(Extension);
    QString Result = P;
    if (!P.isEmpty() && !IsSeparator(P.back())) {
        Result += Separator.isNull() ? SeparatorFor(P) : Separator;
    }
    Result += N;
    if (!E.isEmpty()) {
        Result += QLatin1Char('.') + E;
    }
    return Result;
}

QString GetPathPart(const QString& LongFilename) {
    const QString Text = TrimBlanks(LongFilename);
    const qsizetype Pos = LastSeparator(Text);
    if (Pos < 0) {
        return QString();
    }
    if (Pos == 0) {
        // A "\" in first place has no path before it; a "/" there is the
        // root of this file system, the counterpart of "C:\".
        return Text[0] == QLatin1Char('/') ? QStringLiteral("/") : QString();
    }
    QString Path = Text.left(Pos);
    if (Path.endsWith(QLatin1Char(':'))) {
        Path += QLatin1Char('\\');
    }
    return Path;
}

QString GetExtensionPart(const QString& LongFilename) {
    const QString Text = TrimBlanks(LongFilename);
    const qsizetype Pos = Text.lastIndexOf(QLatin1Char('.'));
    if (Pos < 0) {
        return QString();
    }
    return Text.mid(Pos + 1);
}

void SplitFilename(const QString& LongFilename, QString& Path, QString& Name, QString& Extension) {
    const QString Text = TrimBlanks(LongFilename);
    if (Text.isEmpty()) {
        Path.clear();
        Name.clear();
        Extension.clear();
        return;
    }
    Path = GetPathPart(Text);
    Extension = GetExtensionPart(Text);
    QString Rest = Text.mid(Path.size());
    if (!Rest.isEmpty() && IsSeparator(Rest.front())) {
        Rest.remove(0, 1);
    }
    // An extension found in a directory can be longer than what is left.
    const qsizetype Keep = Rest.size() - Extension.size();
    Rest = Keep > 0 ? Rest.left(Keep) : QString();
    if (Rest.endsWith(QLatin1Char('.'))) {
        Rest.chop(1);
    }
    Name = Rest;
}

bool IsLegalFilename(const QString& Filename) {
    return !Filename.contains(QLatin1Char('?')) && !Filename.contains(QLatin1Char('*'));
}

QString LocalFilename(const QString& Filename) {
    QString Local = Filename;
    Local.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return Local;
}

bool FileExists(const QString& Filename) {
    if (!IsLegalFilename(Filename) || TrimBlanks(Filename).isEmpty()) {
        return false;
    }
    return QFileInfo(LocalFilename(Filename)).isFile();
}

bool DirectoryExists(const QString& Path) {
    if (Path.isEmpty()) {
        return false;
    }
    return QFileInfo(LocalFilename(Path)).isDir();
}

QString GetAbsolutePath(const QString& Path) {
    const QString Local = LocalFilename(TrimBlanks(Path));
    if (Local.isEmpty()) {
        return QDir::currentPath();
    }
    return QDir::cleanPath(QDir::current().absoluteFilePath(Local));
}

void DeleteFile(const QString& Filename) {
    if (Filename.isEmpty() || !IsLegalFilename(Filename)) {
        return;
    }
    QFile::remove(LocalFilename(Filename));
}

}  // namespace UtilitiesFilename
