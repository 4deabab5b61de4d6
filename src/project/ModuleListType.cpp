#include "project/ModuleListType.h"

#include "frame/ErrorDisplay.h"
#include "frame/UtilitiesCommon.h"
#include "frame/UtilitiesFilename.h"
#include "project/ProjectEditorHost.h"

namespace {
void ClearAllTabs() {
    if (ProjectEditorHost* Host = ProjectEditorHost::Instance()) {
        Host->ClearAllTabs();
    }
}

void AddNewTab(const QString& Name) {
    if (ProjectEditorHost* Host = ProjectEditorHost::Instance()) {
        Host->AddNewTab(Name);
    }
}
}  // namespace

ModuleListType::ModuleListType() { Clear(); }

ModuleListType::~ModuleListType() { Clear(); }

void ModuleListType::Clear() {
    // Always the first, as the windows have always closed in that order.
    while (!Modules_.empty()) {
        ByKey_.remove(KeyOf(Modules_.front()->Name()));
        Modules_.erase(Modules_.begin());
    }
    ClearAllTabs();
}

ModuleType* ModuleListType::FindName(const QString& Name) const {
    return ByKey_.value(KeyOf(Name), nullptr);
}

void ModuleListType::Add(std::unique_ptr<ModuleType>& Module, bool& IsDuplicate) {
    if (FindName(Module->Name()) != nullptr) {
        IsDuplicate = true;
        return;
    }
    const QString Name = Module->Name();
    ByKey_.insert(KeyOf(Name), Module.get());
    Modules_.push_back(std::move(Module));
    AddNewTab(Name);
    IsDuplicate = false;
}

ModuleType* ModuleListType::GetModule(int16_t ModuleNumber) const {
    if (ModuleNumber < 1 || ModuleNumber > Count()) {
        ErrorDisplay::ProbeError(
            QStringLiteral("Error_1 in ModuleListType.GetModule\nCan't find module #") +
            QString::number(ModuleNumber));
        return nullptr;
    }
    return Modules_[ModuleNumber - 1].get();
}

ModuleType* ModuleListType::GetNamedModule(const QString& Name) const {
    ModuleType* Module = FindName(Name);
    if (Module == nullptr) {
        ErrorDisplay::ProbeError(
            QStringLiteral("Error_1 in ModuleListType.GetNamedModule\nCan't find module [") + Name +
            QStringLiteral("]"));
    }
    return Module;
}

void ModuleListType::Remove(int16_t ModuleNumber) {
    if (ModuleNumber < 1 || ModuleNumber > Count()) {
        return;
    }
    ByKey_.remove(KeyOf(Modules_[ModuleNumber - 1]->Name()));
    Modules_.erase(Modules_.begin() + (ModuleNumber - 1));
    RenumberModules();
}

void ModuleListType::RenumberModules() {
    ClearAllTabs();
    for (size_t Index = 0; Index < Modules_.size(); ++Index) {
        Modules_[Index]->SetNumber(static_cast<int16_t>(Index + 1));
        AddNewTab(Modules_[Index]->Name());
    }
}

void ModuleListType::Rename(int16_t ModuleNumber, const QString& NewFilename, bool& Success) {
    Success = false;
    ModuleType* Old = GetModule(ModuleNumber);
    if (Old == nullptr) {
        return;
    }
    QString NewPath;
    QString NewName;
    QString NewExtension;
    UtilitiesFilename::SplitFilename(NewFilename, NewPath, NewName, NewExtension);
    if (NewName.compare(Old->Name(), Qt::CaseInsensitive) != 0) {
        if (!UtilitiesCommon::IsLegalIdentifier(NewName)) {
            ErrorDisplay::ShowErrorMessage(QStringLiteral("New name ") + NewName +
                                               QStringLiteral(" is not a legal identifier"),
                                           QStringLiteral("Illegal Identifier"));
            return;
        }
        if (FindName(NewName) != nullptr) {
            ErrorDisplay::ShowErrorMessage(QStringLiteral("Unable to rename module as ") + NewName +
                                               QStringLiteral("\nName duplicates an existing name"),
                                           QStringLiteral("Duplicate Name"));
            return;
        }
    }
    try {
        // A key can't change in place: the module is built anew under the new name.
        auto Renamed = std::make_unique<ModuleType>();
        Renamed->SetNumber(ModuleNumber);
        Renamed->Rename(NewPath, NewName, NewExtension);
        Renamed->Format = Old->Format;
        Renamed->SetSourceCode(Old->SourceCode());
        Renamed->IsDefined = true;
        Remove(ModuleNumber);
        ByKey_.insert(KeyOf(NewName), Renamed.get());
        if (Count() >= ModuleNumber) {
            Modules_.insert(Modules_.begin() + (ModuleNumber - 1), std::move(Renamed));
        } else {
            Modules_.push_back(std::move(Renamed));
        }
        RenumberModules();
        Success = true;
    } catch (...) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_2 in ModuleListType.RenameModule"));
    }
}
