// Replace All through a project of 10 modules of 10,000 lines each, in the
// editor's main window shown offscreen, pressed in the search dialog as a
// user presses it. Timed: the press, to the editor's next repaint. Checked
// after each run, outside the time: the text, one step of undo per module
// that gives the old text back, and every character of every module in the
// colour that a fresh highlighting of the same text gives it.
#include <benchmark/benchmark.h>

#include <QFile>
#include <QMdiSubWindow>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "WindowBench.h"
#include "editor/EditBoxModuleWindow.h"
#include "editor/SyntaxHighlighterType.h"
#include "editor/frmEditBoxType.h"
#include "editor/frmSearchAndReplace.h"
#include "editor/frmSourceEditor.h"
#include "platform/ClipboardService.h"
#include "platform/Global.h"
#include "platform/QtClipboardService.h"
#include "project/ProjectType.h"
#include "support/MemoryRichTextBox.h"

namespace {

constexpr int ModuleCount = 10;
constexpr int LinesPerModule = 10000;

// Code, strings and comments; every Every-th line uses the name Counter once.
QByteArray ModuleText(int Module, int Every) {
    QString Text;
    Text.reserve(LinesPerModule * 40);
    for (int Line = 0; Line < LinesPerModule; ++Line) {
        if (Line % Every == 0) {
            switch (Line % 3) {
                case 0:
                    Text +=
                        QStringLiteral("Counter = x%1 + %2 ' step %1\r\n").arg(Line).arg(Module);
                    break;
                case 1:
                    Text += QStringLiteral("Print \"at %1: \"; Counter ' shown\r\n").arg(Line);
                    break;
                default:
                    Text += QStringLiteral("  If Counter > %1 Then x%1 = \"it's\"\r\n").arg(Line);
                    break;
            }
        } else {
            Text += QStringLiteral("x%1 = \"text %1\" ' note %1\r\n").arg(Line);
        }
    }
    return Text.toUtf8();
}

// Characters of the module whose colour differs from a fresh highlighting.
int64_t WrongColours(frmEditBoxType& Box) {
    const QString Text = Box.Text();
    MemoryRichTextBox Fresh;
    SyntaxHighlighterType Highlighter;
    Highlighter.Connect(&Fresh);
    const EditBoxModel& Model = Box.Model();
    Highlighter.SetEditorColors(Model.CodeColor(), Model.StringLiteralColor(), Model.CommentColor(),
                                Model.BackgroundColor());
    Fresh.SetText(Text);
    Highlighter.HighlightEntireFile();
    int64_t Wrong = 0;
    for (int32_t At = 0; At < Text.size(); ++At) {
        if (Text[At] != QLatin1Char('\r') && Text[At] != QLatin1Char('\n') &&
            Box.RichText().ColorAt(At) != Fresh.ColorAt(At)) {
            ++Wrong;
        }
    }
    return Wrong;
}

class ProjectRig {
  public:
    explicit ProjectRig(int Every) {
        ModuleEditWindow::SetFactory([] { return std::make_unique<EditBoxModuleWindow>(); });
        QByteArray List;
        for (int Module = 1; Module <= ModuleCount; ++Module) {
            const QString Name = QStringLiteral("m%1.bas").arg(Module);
            List += Name.toUtf8() + "\r\n";
            Write(Name, ModuleText(Module, Every));
        }
        Write(QStringLiteral("big.kvp"), List);
        Write(QStringLiteral("big.prf"), QByteArray(8610, '\0'));
        Editor = &Global<frmSourceEditor>::Get();
        Editor->resize(1000, 700);
        Editor->show();
        Editor->activateWindow();
        if (!QTest::qWaitForWindowActive(Editor, 2000)) {
            std::abort();
        }
        Editor->OpenProject(Folder.path(), QStringLiteral("big"), QStringLiteral("kvp"), false);
        QCoreApplication::processEvents();
        for (int Module = 1; Module <= ModuleCount; ++Module) {
            Original << Box(Module)->Text();
        }
        // Module 1 in front, its caret at the top, as after a click on its tab.
        Editor->tabEditTabStrip->setCurrentIndex(0);
        QCoreApplication::processEvents();
    }
    ~ProjectRig() {
        Global<frmSearchAndReplace>::Unload();
        Global<ProjectType>::Unload();
        Global<frmSourceEditor>::Unload();
        ModuleEditWindow::SetFactory(nullptr);
        QCoreApplication::processEvents();
    }
    ProjectRig(const ProjectRig&) = delete;
    ProjectRig& operator=(const ProjectRig&) = delete;

    frmEditBoxType* Box(int Number) const {
        for (QMdiSubWindow* Sub : Editor->mdiArea->subWindowList()) {
            auto* Found = qobject_cast<frmEditBoxType*>(Sub->widget());
            if (Found != nullptr && Found->Model().ModuleNumber() == Number) {
                return Found;
            }
        }
        return nullptr;
    }
    // Replace (Ctrl+H) with the texts typed and Current Project chosen; the
    // dialog stands ready for the press of Replace All.
    frmSearchAndReplace& ReadyToReplace() {
        QTest::keyClick(Box(1)->rtfEditBox, Qt::Key_H, Qt::ControlModifier);
        frmSearchAndReplace& Dialog = Global<frmSearchAndReplace>::Get();
        QTest::keyClicks(Dialog.txtFindText, QStringLiteral("Counter"));
        QTest::keyClicks(Dialog.txtReplaceText, QStringLiteral("Total"));
        Dialog.optCurrentProject->setChecked(true);
        QCoreApplication::processEvents();
        return Dialog;
    }

    frmSourceEditor* Editor = nullptr;
    QStringList Original;

  private:
    void Write(const QString& Name, const QByteArray& Content) {
        QFile File(Folder.path() + QLatin1Char('/') + Name);
        if (!File.open(QIODevice::WriteOnly) || File.write(Content) != Content.size()) {
            std::abort();
        }
    }
    QTemporaryDir Folder;
};

// Arg 0: a use of the name on every line (1) or on every tenth (10).
// Arg 1: the clipboard in memory (0) or Qt's own (1), which every
// replacement goes through.
void BM_ReplaceAllInProject(benchmark::State& State) {
    const int Every = static_cast<int>(State.range(0));
    if (State.range(1) != 0) {
        ClipboardService::Install(std::make_unique<QtClipboardService>());
    }
    int64_t Wrong = 0;
    int64_t UndoFailures = 0;
    int64_t TextFailures = 0;
    int64_t Replaced = 0;
    for (auto _ : State) {
        State.PauseTiming();
        {
            ProjectRig Rig(Every);
            frmSearchAndReplace& Dialog = Rig.ReadyToReplace();
            State.ResumeTiming();
            QTest::mouseClick(Dialog.cmdReplaceAll, Qt::LeftButton);
            QCoreApplication::processEvents();
            State.PauseTiming();
            for (int Module = 1; Module <= ModuleCount; ++Module) {
                frmEditBoxType* Box = Rig.Box(Module);
                const QString Expected =
                    QString(Rig.Original[Module - 1])
                        .replace(QStringLiteral("Counter"), QStringLiteral("Total"));
                Replaced += Rig.Original[Module - 1].count(QStringLiteral("Counter"));
                TextFailures += Box->Text() == Expected ? 0 : 1;
                Wrong += WrongColours(*Box);
                QTextDocument* Document = Box->rtfEditBox->document();
                Document->undo();
                UndoFailures +=
                    (Box->Text() == Rig.Original[Module - 1] && !Document->isUndoAvailable()) ? 0
                                                                                              : 1;
            }
        }
        State.ResumeTiming();
    }
    ClipboardService::Install(std::make_unique<MemoryClipboardService>());
    const double Runs = static_cast<double>(State.iterations());
    State.counters["replacements"] = static_cast<double>(Replaced) / Runs;
    State.counters["wrong_texts"] = static_cast<double>(TextFailures);
    State.counters["wrong_colours"] = static_cast<double>(Wrong);
    State.counters["modules_not_one_undo"] = static_cast<double>(UndoFailures);
}
BENCHMARK(BM_ReplaceAllInProject)
    ->Args({1, 0})
    ->Args({10, 0})
    ->Args({1, 1})
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) { return WindowBench::RunBenchmarks(argc, argv); }
