#pragma once

#include <QString>

#include "platform/Global.h"

// The one open project. An empty, undefined project stands for "no project
// open". The module list, the project file and the preference file mirror
// join this class with the project model.
class ProjectType {
  public:
    bool IsDefined() const { return IsDefined_; }
    const QString& Name() const { return Name_; }

  private:
    bool IsDefined_ = false;
    QString Name_;
};

// GlobalData's Project: created empty at its first use; Global<ProjectType>::Unload()
// sets it to nothing.
inline ProjectType& Project() { return Global<ProjectType>::Get(); }

namespace ProjectModel {
// Tells the error report the open project's name (empty for none).
void RegisterWithFrame();
}  // namespace ProjectModel
