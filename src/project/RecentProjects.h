#pragma once

#include <QString>
#include <cstdint>

// The four project files used last, most recent first, for the editor's File
// menu; kept in the settings as Last_Project_1 to Last_Project_4.
namespace RecentProjects {

constexpr int16_t MaxProjects = 4;

// Empties the list, then adds the stored entries from the fourth to the
// first, which keeps their order and closes gaps.
void LoadList();
// Writes entry i to Last_Project_i, an empty text past the count.
void SaveList();
// Entry Index for 1 to ProjectCount, else an empty text.
QString GetProject(int16_t Index);
// Moves an existing entry (exact comparison) or a new one to the top; a
// fifth falls off.
void AddProject(const QString& Filename);
// Takes an entry out, moving later ones up; other indices are ignored.
void RemoveProject(int16_t Index);
int16_t ProjectCount();

}  // namespace RecentProjects
