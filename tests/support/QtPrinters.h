#pragma once

#include <QString>
#include <ostream>

// Readable QString values in the failure messages of gtest.
inline void PrintTo(const QString& Text, std::ostream* Stream) {
    *Stream << '"' << Text.toStdString() << '"';
}
