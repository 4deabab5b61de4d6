// The edit box with its real control, shown offscreen: opening and colouring a
// module, a keystroke on the neutral line, the caret leaving an edited line, a
// paste, and the memory of recolouring one line again and again.
#include <benchmark/benchmark.h>

#include <QFile>
#include <QTest>
#include <memory>

#include "WindowBench.h"
#include "editor/frmEditBoxType.h"
#include "platform/ClipboardService.h"
#include "platform/SettingsStore.h"

namespace {

QString Module(int Lines) {
    QString Text;
    Text.reserve(Lines * 40);
    for (int Line = 0; Line < Lines; ++Line) {
        Text += QStringLiteral("x%1 = \"text %1\" ' note %1\r\n").arg(Line);
    }
    return Text;
}

std::unique_ptr<frmEditBoxType> OpenModule(int Lines) {
    auto Box = std::make_unique<frmEditBoxType>();
    Box->resize(800, 600);
    Box->show();
    Box->Initialize(QStringLiteral("bench"), 1, Module(Lines));
    QCoreApplication::processEvents();
    return Box;
}

void Settle() { QCoreApplication::processEvents(); }

void BM_OpenAndColour(benchmark::State& State) {
    const QString Text = Module(static_cast<int>(State.range(0)));
    for (auto _ : State) {
        frmEditBoxType Box;
        Box.resize(800, 600);
        Box.show();
        Box.Initialize(QStringLiteral("bench"), 1, Text);
        Settle();
        benchmark::DoNotOptimize(Box.RichText().TextLength());
    }
    State.SetComplexityN(State.range(0));
}
BENCHMARK(BM_OpenAndColour)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

// A keystroke on the line already neutral: at line 10 and at line 99,000 of 100,000.
void BM_KeystrokeOnNeutralLine(benchmark::State& State) {
    auto Box = OpenModule(100000);
    const int Line = static_cast<int>(State.range(0));
    QTextCursor Cursor(Box->rtfEditBox->document()->findBlockByNumber(Line - 1));
    Cursor.movePosition(QTextCursor::EndOfBlock);
    Box->rtfEditBox->setTextCursor(Cursor);
    Box->rtfEditBox->setFocus();
    QTest::keyClick(Box->rtfEditBox, Qt::Key_A);
    Settle();
    const bool WithRepaint = State.range(1) != 0;
    for (auto _ : State) {
        QTest::keyClick(Box->rtfEditBox, Qt::Key_B);
        if (!WithRepaint) {
            State.PauseTiming();
        }
        Settle();
        if (!WithRepaint) {
            State.ResumeTiming();
        }
    }
}
// Second argument: 0 the handling of the key alone, 1 with the repaint of the window.
BENCHMARK(BM_KeystrokeOnNeutralLine)
    ->Args({10, 0})
    ->Args({99000, 0})
    ->Args({10, 1})
    ->Args({99000, 1})
    ->Unit(benchmark::kMicrosecond);

// The same keystroke into a bare QPlainTextEdit holding the same text, with
// no colours and no edit box: what the toolkit itself costs.
void BM_KeystrokeBareControl(benchmark::State& State) {
    QPlainTextEdit Editor;
    Editor.setLineWrapMode(QPlainTextEdit::NoWrap);
    Editor.resize(800, 600);
    Editor.show();
    QString Text = Module(100000);
    Text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    Editor.setPlainText(Text);
    QTextCursor Cursor(Editor.document()->findBlockByNumber(static_cast<int>(State.range(0)) - 1));
    Cursor.movePosition(QTextCursor::EndOfBlock);
    Editor.setTextCursor(Cursor);
    Editor.setFocus();
    Settle();
    const bool WithRepaint = State.range(1) != 0;
    for (auto _ : State) {
        QTest::keyClick(&Editor, Qt::Key_B);
        if (!WithRepaint) {
            State.PauseTiming();
        }
        Settle();
        if (!WithRepaint) {
            State.ResumeTiming();
        }
    }
}
BENCHMARK(BM_KeystrokeBareControl)
    ->Args({10, 0})
    ->Args({99000, 0})
    ->Args({10, 1})
    ->Args({99000, 1})
    ->Unit(benchmark::kMicrosecond);

// The caret leaves an edited line: that one line is scanned and coloured.
void BM_CaretLeavesEditedLine(benchmark::State& State) {
    auto Box = OpenModule(100000);
    const int Line = static_cast<int>(State.range(0));
    QTextCursor Cursor(Box->rtfEditBox->document()->findBlockByNumber(Line - 1));
    Box->rtfEditBox->setTextCursor(Cursor);
    Box->rtfEditBox->setFocus();
    bool Down = true;
    for (auto _ : State) {
        State.PauseTiming();
        QTest::keyClick(Box->rtfEditBox, Qt::Key_C);
        Settle();
        State.ResumeTiming();
        QTest::keyClick(Box->rtfEditBox, Down ? Qt::Key_Down : Qt::Key_Up);
        if (State.range(1) == 0) {
            State.PauseTiming();
        }
        Settle();
        if (State.range(1) == 0) {
            State.ResumeTiming();
        }
        Down = !Down;
    }
}
BENCHMARK(BM_CaretLeavesEditedLine)
    ->Args({10, 0})
    ->Args({99000, 0})
    ->Args({10, 1})
    ->Args({99000, 1})
    ->Unit(benchmark::kMicrosecond);

void BM_Paste1000Lines(benchmark::State& State) {
    const QString Pasted = Module(1000);
    for (auto _ : State) {
        State.PauseTiming();
        auto Box = OpenModule(10000);
        ClipboardService::Instance().SetText(Pasted);
        Box->RichText().SetSelStart(Box->RichText().TextLength() / 2);
        State.ResumeTiming();
        Box->Model().EditPaste();
        Settle();
        State.PauseTiming();
        Box.reset();
        State.ResumeTiming();
    }
}
BENCHMARK(BM_Paste1000Lines)->Unit(benchmark::kMillisecond)->Iterations(10);

using WindowBench::ResidentKilobytes;

// Recolouring one line 10,000 times: the resident memory before and after.
void BM_RecolourOneLineMemory(benchmark::State& State) {
    auto Box = OpenModule(10000);
    SyntaxHighlighterType* Highlighter = Box->Model().SyntaxHighlighter();
    Box->RichText().SetSelStart(5000 * 40);
    for (int Round = 0; Round < 500; ++Round) {
        Highlighter->NeutralizeLine(2);
        Highlighter->CancelNeutralLine();
    }
    Settle();
    const long Before = ResidentKilobytes();
    for (auto _ : State) {
        for (int Round = 0; Round < 10000; ++Round) {
            Highlighter->NeutralizeLine(2);
            Highlighter->CancelNeutralLine();
        }
        Settle();
    }
    State.counters["rss_growth_kB"] = static_cast<double>(ResidentKilobytes() - Before);
}
BENCHMARK(BM_RecolourOneLineMemory)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) { return WindowBench::RunBenchmarks(argc, argv); }
