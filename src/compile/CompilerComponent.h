#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>

#include "compile/KvCompInterface.h"

class QLibrary;

// The compiler component with this system's types: Booleans as bool, texts as
// QString. Load() finds libKvComp141.so, loads it and makes its one object.
class CompilerComponent {
  public:
    // The run-time error number of a component that cannot be made.
    static constexpr int32_t CannotCreateObject = 429;

    ~CompilerComponent();
    CompilerComponent(const CompilerComponent&) = delete;
    CompilerComponent& operator=(const CompilerComponent&) = delete;

    // Looks in each directory in turn and takes the first library found.
    // Raises run-time error 429 with "Can't find compiler DLL:  " and the
    // reason when no object can be made.
    static std::unique_ptr<CompilerComponent> Load(const QStringList& Directories);

    // The full name of the library that was loaded.
    const QString& Filename() const { return Filename_; }

    void SetLibraryPath(const QString& Path, bool& Success);
    void GetVersion(int16_t& Major, int16_t& Minor, int16_t& Revision);
    void SetStringSize(int16_t Size, bool& Success);
    void SetChipFamilyFlag(bool Value);
    void SetStrictSyntax(bool Value);
    void SetWindowCenter(bool Flag, int32_t CenterY, int32_t CenterX);
    void SetChipType(int16_t ChipType);
    void SetOptimize(bool Value);
    void GetRamSize(int32_t& Size);
    void GetCodeSize(int32_t& Size);
    void GetPersistentSize(int32_t& Size);
    void SetRamBoundaries(int32_t Low, int32_t High, bool& Success);
    void SetCodeBoundaries(int32_t Low, int32_t High, bool& Success);
    void SetPersistentBoundaries(int32_t Low, int32_t High, bool& Success);
    // The nine out parameters of the compile, by their names.
    struct CompileResult {
        bool Success = false;
        int16_t ModuleNumber = 0;
        int16_t LineNumber = 0;
        int16_t ColumnNumber = 0;
        int32_t EndPosition = 0;
        int32_t StartPosition = 0;
        int32_t ErrorNumber = 0;
        QString ErrorDescription;
        QString WarningDescription;
    };
    void RunCompile(const QString& ProjectFilename, CompileResult& Result);

  private:
    CompilerComponent(std::unique_ptr<QLibrary> Library, KvCompiler* Object, QString Filename);

    std::unique_ptr<QLibrary> Library_;
    KvCompiler* Object_;
    QString Filename_;
};
