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
    return !QFileInfo(File.fileName()).isDir() && File.open(QIODevice::ReadOnly);
}

bool PRFfileExists() {
    QFile File;
    if (!OpenPRFfile(File)) {
        return false;
    }
    return File.size() > 0 && UtilitiesFilename::FileExists(PRFfilename);
}

}  // namespace XFileExecutivePRF
