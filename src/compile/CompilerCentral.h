#pragma once

#include <QStringList>
#include <functional>

class CompilerComponent;

// The driver of the compiler component: one object, made at its first use
// and kept, configured anew for the current chip and project at each compile.
namespace CompilerCentral {

// True when the component's version is exactly the system's own; otherwise,
// or when there is no component, an "Installation Error" message.
void CheckCompilerVersion(bool& Success);

// Compiles the open project as it is on disk.
void CompileAll(bool& Success);

// Joins CheckCompilerVersion to the installation check.
void RegisterWithFrame();

// The watch window tells how it re-reads the symbol map after a good compile.
void SetKvmFileHandler(std::function<void()> Handler);

// Where the component is looked for, in order: the install directory, so
// that a component put there replaces the bundled one, then the program's
// own directory, where the bundled one is installed.
QStringList ComponentDirectories();

// The component, loaded at the first call. Raises run-time error 429 when it
// cannot be made; the next call tries again.
CompilerComponent& Component();

// Lets the component go, so that the next use looks for it anew. The program
// keeps its component for the whole run; tests start each case from none.
void ReleaseComponent();

}  // namespace CompilerCentral
