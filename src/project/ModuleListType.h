#pragma once

#include <QHash>
#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

#include "project/ModuleType.h"

// The project's modules in order, numbered from 1, each under its name as a
// key that is unique without regard to case.
class ModuleListType {
  public:
    ModuleListType();
    ~ModuleListType();

    // Appends the module under its name; IsDuplicate when the name is taken
    // (the module then stays with the caller).
    void Add(std::unique_ptr<ModuleType>& Module, bool& IsDuplicate);
    // Saves a module under a new file name by rebuilding it; the number stays.
    void Rename(int16_t ModuleNumber, const QString& NewFilename, bool& Success);
    // None for a bad number.
    ModuleType* GetModule(int16_t ModuleNumber) const;
    ModuleType* GetNamedModule(const QString& Name) const;
    int16_t Count() const { return static_cast<int16_t>(Modules_.size()); }
    void Remove(int16_t ModuleNumber);

  private:
    void RenumberModules();
    void Clear();
    // The module of a name, without regard to case.
    ModuleType* FindName(const QString& Name) const;
    static QString KeyOf(const QString& Name) { return Name.toCaseFolded(); }

    std::vector<std::unique_ptr<ModuleType>> Modules_;
    // The keys, so that a project of many modules loads in linear time.
    QHash<QString, ModuleType*> ByKey_;
};
