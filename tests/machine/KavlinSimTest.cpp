// kavlin-sim run as a build script runs it: exit codes, --expect, --fail,
// --seconds, standard input to the program and chip time that runs fast.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "kvasm/BytecodeAssembler.h"

namespace {

struct Outcome {
    int ExitCode = -1;
    QByteArray Output;
    QByteArray Errors;
    qint64 Milliseconds = 0;
};

class KavlinSimTest : public ::testing::Test {
  protected:
    QString Image(const std::string& Source, const QString& Name = QStringLiteral("program.kvb")) {
        const BytecodeAssembler::Result Result = BytecodeAssembler::Assemble(Source);
        EXPECT_TRUE(Result.Ok) << Result.Error;
        const QString Path = Folder.filePath(Name);
        QFile File(Path);
        EXPECT_TRUE(File.open(QIODevice::WriteOnly));
        File.write(reinterpret_cast<const char*>(Result.Image.data()),
                   static_cast<qint64>(Result.Image.size()));
        return Path;
    }

    Outcome Run(const QStringList& Arguments, const QByteArray& Input = QByteArray(),
                bool CloseInput = true) {
        QProcess Process;
        QElapsedTimer Timer;
        Timer.start();
        Process.start(QStringLiteral(KAVLIN_SIM), Arguments);
        EXPECT_TRUE(Process.waitForStarted(10000));
        if (!Input.isEmpty()) {
            Process.write(Input);
        }
        if (CloseInput) {
            Process.closeWriteChannel();
        }
        EXPECT_TRUE(Process.waitForFinished(60000));
        Outcome Result;
        Result.Milliseconds = Timer.elapsed();
        Result.ExitCode = Process.exitStatus() == QProcess::NormalExit ? Process.exitCode() : -1;
        Result.Output = Process.readAllStandardOutput();
        Result.Errors = Process.readAllStandardError();
        return Result;
    }

    QTemporaryDir Folder;
};

const std::string Hello = R"(
Main:
    enter 0
    pushs "Hello\r\n"
    sys PrintString
    end
)";

const std::string ReadyThenForever = R"(
Main:
    enter 0
    pushs "READY"
    sys PrintString
Forever:
    pushw 100
    sys WaitMilliseconds
    jmp Forever
)";

TEST_F(KavlinSimTest, ProgramThatEndsExitsWithZeroAndItsOutput) {
    const Outcome Result = Run({Image(Hello)});
    EXPECT_EQ(Result.ExitCode, 0);
    EXPECT_EQ(Result.Output, "Hello\r\n");
    EXPECT_TRUE(Result.Errors.isEmpty()) << Result.Errors.toStdString();
}

TEST_F(KavlinSimTest, ExpectedTextEndsTheRunAtOnceWithSuccess) {
    const Outcome Result = Run({Image(ReadyThenForever), "--expect", "READY"});
    EXPECT_EQ(Result.ExitCode, 0);
    EXPECT_EQ(Result.Output, "READY");
}

TEST_F(KavlinSimTest, ExpectedTextThatNeverComesIsAFailure) {
    const Outcome Result = Run({Image(Hello), "--expect", "Goodbye"});
    EXPECT_EQ(Result.ExitCode, 1);
    EXPECT_TRUE(Result.Errors.contains("ended without printing \"Goodbye\""))
        << Result.Errors.toStdString();
}

TEST_F(KavlinSimTest, FailTextEndsTheRunWithFailure) {
    const Outcome Result = Run({Image(ReadyThenForever), "--fail", "EAD", "--expect", "nothing"});
    EXPECT_EQ(Result.ExitCode, 1);
    EXPECT_EQ(Result.Output, "READ");
    EXPECT_TRUE(Result.Errors.contains("printed \"EAD\"")) << Result.Errors.toStdString();
}

TEST_F(KavlinSimTest, SecondsOfChipTimeEndTheRunAsATimeOut) {
    const Outcome Result = Run({Image(ReadyThenForever), "--seconds", "30"});
    EXPECT_EQ(Result.ExitCode, 4);
    EXPECT_EQ(Result.Output, "READY");
    EXPECT_TRUE(Result.Errors.contains("time-out after 30 s")) << Result.Errors.toStdString();
    // Thirty seconds of chip time in fast time.
    EXPECT_LT(Result.Milliseconds, 5000);
}

TEST_F(KavlinSimTest, BusyLoopTimesOutToo) {
    const QString Busy = Image("Main:\n  enter 0\nAgain:\n  jmp Again\n");
    EXPECT_EQ(Run({Busy, "--seconds", "0.5"}).ExitCode, 4);
    // Less time than one instruction takes.
    EXPECT_EQ(Run({Busy, "--seconds", "0.0000005"}).ExitCode, 4);
    EXPECT_EQ(Run({Busy, "--seconds", "0"}).ExitCode, 4);
}

TEST_F(KavlinSimTest, TenSecondWaitEndsInMilliseconds) {
    const Outcome Result = Run({Image(R"(
Main:
    enter 0
    pushw 10000
    sys WaitMilliseconds
    sys TimerSeconds
    str Single
    sys PrintString
    end
)")});
    EXPECT_EQ(Result.ExitCode, 0);
    // 10 s and a few instructions, to the seven digits of a Single.
    EXPECT_EQ(Result.Output, "10");
    EXPECT_LT(Result.Milliseconds, 2000);
}

TEST_F(KavlinSimTest, RealTimeWaitsOnTheWallClock) {
    const Outcome Result = Run({Image(R"(
Main:
    enter 0
    pushw 400
    sys WaitMilliseconds
    end
)"),
                                "--real-time"});
    EXPECT_EQ(Result.ExitCode, 0);
    EXPECT_GE(Result.Milliseconds, 400);
}

TEST_F(KavlinSimTest, RunTimeErrorExitsWithThreeAndTheErrorOnStandardError) {
    const Outcome Result = Run({Image("Main:\n  enter 0\n  pushb 1\n  pushb 0\n  div.b\n  end\n")});
    EXPECT_EQ(Result.ExitCode, 3);
    EXPECT_EQ(Result.Errors, "kavlin-sim: Run-time error 1: Division by zero (code address 39)\n");
    EXPECT_EQ(Result.Output, "\r\nRun-time error 1: Division by zero (code address 39)\r\n");
}

TEST_F(KavlinSimTest, MalformedImageIsRefusedWithItsReason) {
    const QString Path = Folder.filePath(QStringLiteral("bad.kvb"));
    QFile File(Path);
    ASSERT_TRUE(File.open(QIODevice::WriteOnly));
    File.write("not an image at all, but long enough for a header");
    File.close();
    const Outcome Result = Run({Path});
    EXPECT_EQ(Result.ExitCode, 2);
    EXPECT_TRUE(Result.Errors.contains("does not begin with KVBC")) << Result.Errors.toStdString();
    EXPECT_TRUE(Result.Output.isEmpty());
}

TEST_F(KavlinSimTest, MissingImageAndBadCommandLinesExitWithTwo) {
    EXPECT_EQ(Run({Folder.filePath(QStringLiteral("none.kvb"))}).ExitCode, 2);
    EXPECT_EQ(Run({}).ExitCode, 2);
    EXPECT_EQ(Run({Image(Hello), "--seconds", "soon"}).ExitCode, 2);
    EXPECT_EQ(Run({Image(Hello), "--expect"}).ExitCode, 2);
    EXPECT_EQ(Run({Image(Hello), "--colour"}).ExitCode, 2);
}

TEST_F(KavlinSimTest, UnwiredPinsReadTheirPullUpOrTheirOwnLevel) {
    const Outcome Result = Run({Image(R"(
Main:
    enter 0
    pushb 5
    pushb 3
    sys PinSet
    pushb 6
    pushb 2
    sys PinSet
    pushb 7
    pushb 1
    sys PinSet
    pushb 5
    sys PinRead
    str Byte
    sys PrintString
    pushb 6
    sys PinRead
    str Byte
    sys PrintString
    pushb 7
    sys PinRead
    str Byte
    sys PrintString
    end
)")});
    EXPECT_EQ(Result.ExitCode, 0);
    EXPECT_EQ(Result.Output, "101");
}

const std::string Echo = R"(
Main:
    enter 0
Again:
    sys SerialRead
    dup
    pushb 97
    ge.b
    jf Print
    pushb 32
    sub.b
Print:
    dup
    sys PrintByte
    pushb 10
    eq.b
    jf Again
    end
)";

TEST_F(KavlinSimTest, StandardInputReachesTheProgram) {
    const Outcome Result = Run({Image(Echo)}, "chip\n");
    EXPECT_EQ(Result.ExitCode, 0);
    EXPECT_EQ(Result.Output, "CHIP\n");
}

TEST_F(KavlinSimTest, ProgramWaitingForInputThatEndedTimesOut) {
    const Outcome Result = Run({Image(Echo)}, "ab");
    EXPECT_EQ(Result.ExitCode, 4);
    EXPECT_EQ(Result.Output, "AB");
    EXPECT_TRUE(Result.Errors.contains("waits for input after standard input ended"));
}

TEST_F(KavlinSimTest, EepromFileKeepsPersistentVariablesBetweenRuns) {
    const QString Program = Image(R"(
.persistent Runs 1
Main:
    enter 0
    addrp Runs
    addrp Runs
    ldi.b
    pushb 1
    add.b
    sti.b
    addrp Runs
    ldi.b
    str Byte
    sys PrintString
    end
)");
    const QString Eeprom = Folder.filePath(QStringLiteral("eeprom.bin"));
    QFile File(Eeprom);
    ASSERT_TRUE(File.open(QIODevice::WriteOnly));
    File.write(QByteArray(512, '\0'));
    File.close();
    EXPECT_EQ(Run({Program, "--eeprom", Eeprom}).Output, "1");
    EXPECT_EQ(Run({Program, "--eeprom", Eeprom}).Output, "2");
}

}  // namespace
