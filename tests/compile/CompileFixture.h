#pragma once

#include <QMap>
#include <QStringList>

#include "compile/CompilerCentral.h"
#include "compile/CompilerHost.h"
#include "frame/CommandLineInterpreter.h"
#include "project/ProjectType.h"
#include "support/FrameFixture.h"

// The editor's side of a compile, recorded: the texts, every status panel
// write, the chip dialogs asked for, the errors shown.
class RecordingCompilerHost : public CompilerHost {
  public:
    void SetWarningDescription(const QString& Text) override { WarningDescription = Text; }
    void SetCompileStatus(const QString& Text) override { CompileStatus = Text; }
    void ShowStatusPanel(int Panel, const QString& Text) override {
        Panels[Panel] = Text;
        PanelWrites << QStringLiteral("%1:%2").arg(Panel).arg(Text);
    }
    void mnuChipDialog_Click() override { ++ChipDialogs; }
    FormGeometry CurrentGeometry() const override { return Geometry; }
    void HighlightSourceError(int32_t EndPosition, int32_t StartPosition, int16_t ModuleNumber,
                              const QString& ErrorDescription) override {
        Highlights << QStringLiteral("%1,%2,%3,%4")
                          .arg(EndPosition)
                          .arg(StartPosition)
                          .arg(ModuleNumber)
                          .arg(ErrorDescription);
        CompilerHost::HighlightSourceError(EndPosition, StartPosition, ModuleNumber,
                                           ErrorDescription);
    }
    void DisplayCommandLineError(int16_t ModuleNumber, int16_t LineNumber, int16_t ColumnNumber,
                                 int32_t ErrorNumber, const QString& ErrorDescription) override {
        CommandLineErrors << QStringLiteral("%1,%2,%3,%4,%5")
                                 .arg(ModuleNumber)
                                 .arg(LineNumber)
                                 .arg(ColumnNumber)
                                 .arg(ErrorNumber)
                                 .arg(ErrorDescription);
        CompilerHost::DisplayCommandLineError(ModuleNumber, LineNumber, ColumnNumber, ErrorNumber,
                                              ErrorDescription);
    }

    QString WarningDescription;
    QString CompileStatus;
    QMap<int, QString> Panels;
    QStringList PanelWrites;
    int ChipDialogs = 0;
    FormGeometry Geometry;
    QStringList Highlights;
    QStringList CommandLineErrors;
};

// The downloader's part of a batch: open the project, compile it.
class BatchCompileHost : public CommandLineInterpreter::CommandLineHost {
  public:
    void ClearComError() override {}
    void ShowEditorAndOpenProject(const QString&, const QString&, const QString&) override {}
    void OpenProject(const QString& Path, const QString& Name, const QString& Extension) override {
        Project().OpenProject(Path, Name, Extension, false);
    }
    void CompileAll() override {
        bool Success = false;
        CompilerCentral::CompileAll(Success);
        Results << Success;
    }
    void OpenKVBfile(const QString&) override {}
    bool OpenDownloadPort() override { return false; }
    void DownloadProgram(bool& Success) override { Success = false; }
    void ExecuteProgram() override {}
    void UnloadDownloader() override {}
    QList<bool> Results;
};

// A compile's world: an install directory with the test double of the
// compiler component, a project in the work path, the editor's side
// recorded. The double's script and record are files of this test.
class CompileFixture : public FrameFixture {
  protected:
    void SetUp() override;
    void TearDown() override;

    // The test double's instructions for the calls that follow.
    void Script(const QByteArray& Lines);
    // The calls the double received, one a line, since the test began.
    QStringList Calls() const;
    // The calls from the first configuration call on: one compile's sequence.
    QStringList CompileCalls() const;
    // Writes NAME.kvp naming the modules (name, text) and the module files,
    // then opens the project for the current chip type.
    void MakeProject(const QString& Name, const QList<QPair<QString, QByteArray>>& Modules);
    // What the double wrote into its object file for the project NAME.
    QString ObjectFile(const QString& Name) const;
    // Every box's title and text, "Title|Text".
    QStringList BoxTexts() const;
    // The raw bytes of a file in the work path, "<none>" if it can't be read.
    QByteArray WorkFile(const QString& Name) const;
    // Links the library File into the install directory under the component's name.
    void InstallComponent(const QString& File);

    QString Install;
    QString Work;
    // The program's directory, where the bundled component lies.
    QString Program;
    RecordingCompilerHost Host;
};
