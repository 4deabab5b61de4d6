#pragma once

#include <QString>
#include <cstdint>
#include <functional>

// The location and the text of the report of an error that no procedure expected.
namespace DumpManager {

void InitializeDumpManager();
// Each number is held to 0..99 and kept so.
void SetErrorLocation(int16_t ErrorMajor, int16_t ErrorMinor);
int16_t GetErrorMajor();
int16_t GetErrorMinor();
// ErrorMajor x 100 + ErrorMinor.
int32_t GetErrorCode();
// The numbered report, lines ended by CR LF, from the current Err() and location.
QString BuildErrorReport();

// The project model tells the report the open project's name: empty when no
// project is defined. Without a source the report names none.
void SetProjectNameSource(std::function<QString()> Source);

}  // namespace DumpManager
