#include "platform/ErrObject.h"

#include <new>
#include <stdexcept>

ErrObject& Err() {
    static ErrObject Current;
    return Current;
}

void TakeCurrentException() {
    ErrObject& E = Err();
    try {
        throw;
    } catch (const RuntimeError& Error) {
        E.Number = Error.Number();
        E.Description = Error.Description();
    } catch (const std::bad_alloc&) {
        E.Number = 7;
        E.Description = QStringLiteral("Out of memory");
    } catch (const std::out_of_range&) {
        E.Number = 9;
        E.Description = QStringLiteral("Subscript out of range");
    } catch (const std::exception& Error) {
        E.Number = 51;
        E.Description = QString::fromUtf8(Error.what());
    } catch (...) {
        E.Number = 0;
        E.Description.clear();
    }
}

void RaiseError(int32_t Number, const QString& Description) {
    Err().Number = Number;
    Err().Description = Description;
    throw RuntimeError(Number, Description);
}
