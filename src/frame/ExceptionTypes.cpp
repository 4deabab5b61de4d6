#include "frame/ExceptionTypes.h"

#include <exception>

#include "frame/DumpManager.h"
#include "frame/ErrorDisplay.h"
#include "platform/ErrObject.h"

namespace ExceptionTypes {

void ProcessException(int16_t ErrorMajor, int16_t ErrorMinor) {
    if (std::current_exception()) {
        TakeCurrentException();
    }
    DumpManager::SetErrorLocation(ErrorMajor, ErrorMinor);
    const QString Report = DumpManager::BuildErrorReport();
    ErrorDisplay::ShowErrorMessage(Report, QStringLiteral("Unexpected Error"));
}

}  // namespace ExceptionTypes
