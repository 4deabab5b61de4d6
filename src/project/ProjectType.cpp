#include "project/ProjectType.h"

#include "frame/DumpManager.h"

namespace ProjectModel {

void RegisterWithFrame() {
    DumpManager::SetProjectNameSource([] {
        const ProjectType& Current = Project();
        return Current.IsDefined() ? Current.Name() : QString();
    });
}

}  // namespace ProjectModel
