#pragma once

#include <QString>

// The one place where file names are joined and split. A name travels as
// Path, Name and Extension. Both "\" (names written by the other platform)
// and "/" separate directories.
namespace UtilitiesFilename {

// Path, a separator unless Path is empty or already ends in one, Name, and
// "." with Extension unless it is empty. The separator is the one Path
// already uses, else "/" ("\" after a bare drive such as "C:").
// A Separator given joins instead (a name read from a file is written back
// with the separator it had).
QString MakeFilename(const QString& Path, const QString& Name, const QString& Extension,
                     QChar Separator = QChar());
// The separator that stands last in LongFilename; none if it has none.
QChar LastSeparatorOf(const QString& LongFilename);
void SplitFilename(const QString& LongFilename, QString& Path, QString& Name, QString& Extension);
QString GetPathPart(const QString& LongFilename);
QString GetExtensionPart(const QString& LongFilename);

bool FileExists(const QString& Filename);
bool DirectoryExists(const QString& Path);
QString GetAbsolutePath(const QString& Path);
void DeleteFile(const QString& Filename);
bool IsLegalFilename(const QString& Filename);

// The name as the local file system takes it: "\" becomes "/".
QString LocalFilename(const QString& Filename);
// Blanks (only) off both ends, as the stored names are trimmed.
QString TrimBlanks(const QString& Text);

}  // namespace UtilitiesFilename
