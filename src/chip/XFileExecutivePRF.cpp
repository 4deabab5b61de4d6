#include "chip/XFileExecutivePRF.h"

#include <QFileInfo>

#include "frame/UtilitiesFilename.h"

namespace XFileExecutivePRF {

QString PRFfilename;

QString PRFfilenameOf(const QString& ProjectFilename) {
    QString Name = ProjectFilename;
    Name.replace(std::max<qsizetype>(0, Name.size() - 3), 3, QStringLiteral("prf"));
    return Name;
}

bool OpenPRFfile(QFile& File) {
    File.setFileName(UtilitiesFilename::LocalFilename(PRFfilename));
    // Only a regular file: a pipe in its place would block the open.
    return QFileInfo(File.fileName()).isFile() && File.open(QIODevice::ReadOnly);
}

bool PRFfileExists() {
    QFile File;
    if (!OpenPRFfile(File)) {
        return false;
    }
    return File.size() > 0 && UtilitiesFilename::FileExists(PRFfilename);
}

}  // namespace XFileExecutivePRF
