#include "frame/DumpManager.h"

#include <QStringList>
#include <algorithm>

#include "frame/GlobalData.h"
#include "platform/ErrObject.h"

namespace DumpManager {

namespace {
int16_t ErrorMajor = 0;
int16_t ErrorMinor = 0;
std::function<QString()> ProjectNameSource;

const char* const ContactBlock[] = {
    "    Kavlin Studio maintainers",
    "    c/o the Kavlin Studio project",
    "    (postal address on request through the issue tracker)",
    "",
    "    Telephone: none; please write to the issue tracker",
    "",
    "    Issue tracker of the Kavlin Studio project",
};
}  // namespace

void InitializeDumpManager() {
    ErrorMajor = 0;
    ErrorMinor = 0;
}

void SetErrorLocation(int16_t Major, int16_t Minor) {
    ErrorMajor = std::clamp<int16_t>(Major, 0, 99);
    ErrorMinor = std::clamp<int16_t>(Minor, 0, 99);
}

int16_t GetErrorMajor() { return ErrorMajor; }
int16_t GetErrorMinor() { return ErrorMinor; }
int32_t GetErrorCode() { return ErrorMajor * 100 + ErrorMinor; }

void SetProjectNameSource(std::function<QString()> Source) {
    ProjectNameSource = std::move(Source);
}

QString BuildErrorReport() {
    const ErrObject& E = Err();
    const QString Description = E.Description.isEmpty()
                                    ? QStringLiteral("Unknown exception")
                                    : E.Description + QStringLiteral(" (") +
                                          QString::number(E.Number) + QStringLiteral(")");
    QString ProjectName = ProjectNameSource ? ProjectNameSource() : QString();
    if (ProjectName.isEmpty()) {
        ProjectName = QStringLiteral("<none>");
    }
    QStringList Lines;
    Lines << QStringLiteral("An unexpected error has occurred in this application:") << QString()
          << QStringLiteral("    Error code:  ") + QString::number(GetErrorCode())
          << QStringLiteral("    Description:  ") + Description
          << QStringLiteral("    Project name:  ") + ProjectName
          << QStringLiteral("    Software version:  ") + GlobalData::VersionText() << QString()
          << QStringLiteral("We apologize for this inconvenience, and we'd like")
          << QStringLiteral("to provide a fix for this error. Please contact us:") << QString();
    for (const char* Line : ContactBlock) {
        Lines << QString::fromLatin1(Line);
    }
    QString Report;
    for (const QString& Line : Lines) {
        Report += Line + QStringLiteral("\r\n");
    }
    return Report;
}

}  // namespace DumpManager
