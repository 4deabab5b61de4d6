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
    while (!Modules_.empty()) {
        Modules_.erase(Modules_.begin());
    }
    ClearAllTabs();
}

int ModuleListType::IndexOfName(const QString& Name) const {
    for (size_t Index = 0; Index < Modules_.size(); ++Index) {
        if (Modules_[Index]->Name().compare(Name, Qt::CaseInsensitive) == 0) {
            return static_cast<int>(Index);
        }
    }
    return -1;
}

void ModuleListType::Add(std::unique_ptr<ModuleType>& Module, bool& IsDuplicate) {
    if (IndexOfName(Module->Name()) >= 0) {
        IsDuplicate = true;
        return;
    }
    const QString Name = Module->Name();
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
    const int Index = IndexOfName(Name);
    if (Index < 0) {
        ErrorDisplay::ProbeError(
            QStringLiteral("Error_1 in ModuleListType.GetNamedModule\nCan't find module [") + Name +
            QStringLiteral("]"));
        return nullptr;
    }
    return Modules_[Index].get();
}

void ModuleListType::Remove(int16_t ModuleNumber) {
    if (ModuleNumber < 1 || ModuleNumber > Count()) {
        return;
    }
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
        if (IndexOfName(NewName) >= 0) {
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
