#include "project/RecentProjects.h"

#include <algorithm>
#include <array>

#include "frame/RegistryCentral.h"
#include "frame/UtilitiesFilename.h"

namespace RecentProjects {

namespace {
std::array<QString, MaxProjects> ProjectList;
int16_t Count = 0;
}  // namespace

int16_t ProjectCount() { return Count; }

QString GetProject(int16_t Index) {
    if (Index < 1 || Index > Count) {
        return QString();
    }
    return ProjectList[Index - 1];
}

void RemoveProject(int16_t Index) {
    if (Index < 1 || Index > Count) {
        return;
    }
    for (int16_t Place = Index; Place < Count; ++Place) {
        ProjectList[Place - 1] = ProjectList[Place];
    }
    ProjectList[Count - 1].clear();
    --Count;
}

void AddProject(const QString& Filename) {
    for (int16_t Index = 1; Index <= Count; ++Index) {
        if (ProjectList[Index - 1] == Filename) {
            RemoveProject(Index);
            break;
        }
    }
    for (int16_t Place = std::min<int16_t>(Count, MaxProjects - 1); Place >= 1; --Place) {
        ProjectList[Place] = ProjectList[Place - 1];
    }
    ProjectList[0] = Filename;
    if (Count < MaxProjects) {
        ++Count;
    }
}

void LoadList() {
    ProjectList.fill(QString());
    Count = 0;
    for (int16_t Index = MaxProjects; Index >= 1; --Index) {
        const QString Stored =
            UtilitiesFilename::TrimBlanks(RegistryCentral::RegistryGetLastProject(Index));
        if (!Stored.isEmpty()) {
            AddProject(Stored);
        }
    }
}

void SaveList() {
    for (int16_t Index = 1; Index <= MaxProjects; ++Index) {
        RegistryCentral::RegistrySaveLastProject(
            Index, Index <= Count ? ProjectList[Index - 1] : QString());
    }
}

}  // namespace RecentProjects
