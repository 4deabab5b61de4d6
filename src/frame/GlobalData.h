#pragma once

#include <QString>
#include <cstdint>
#include <functional>

// The process-wide variables that both top-level windows work on.
namespace GlobalData {

// The version of the system: in the captions, the about box, the error
// report, and what the compiler component must report.
constexpr int Major = 2;
constexpr int Minor = 0;
constexpr int Revision = 24;

// "2.0.24"
QString VersionText();
// "Kavlin Development System V2.0.24"
QString ApplicationCaption();

// 1 = KV-10, 2 = KV-20, 3 = KV-30.
extern int32_t ChipType;
extern QString ProjectFilename;
extern QString DownloadFilename;
extern int32_t CodeSize;
extern int32_t PersistentSize;
extern int32_t MemorySize;

void InitializeGlobalData();
bool GetEditorIsOpen();
// Stores the flag and enables the downloader's "Editor" tool button for a
// closed editor, disables it for an open one.
void SetEditorIsOpen(bool IsOpen);

// The downloader window registers how its "Editor" button is switched.
void SetEditorButtonHandler(std::function<void(bool Enabled)> Handler);

}  // namespace GlobalData
