#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QXmlStreamReader>

#include "support/ProgramEnvironment.h"

namespace {

QByteArray FileBytes(const QString& Name) {
    QFile File(Name);
    return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray("<none>");
}

// The system installed with `cmake --install` into a prefix of its own, and
// a user of it: settings, data and projects in folders of their own.
class InstallTree : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(Root.isValid());
        Prefix = Root.filePath(QStringLiteral("prefix"));
        Work = Root.filePath(QStringLiteral("Kavlin"));
        Config = Root.filePath(QStringLiteral("config"));
        Data = Root.filePath(QStringLiteral("data"));
        ASSERT_NO_FATAL_FAILURE(InstallInto(Prefix));
        RunDir = Prefix + QStringLiteral("/share/kavlin");
    }

    // `cmake --install` of the build folder as it stands, under DESTDIR when one is given.
    static void InstallInto(const QString& InstallPrefix, const QString& DestDir = QString()) {
        QProcess Install;
        QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
        if (!DestDir.isEmpty()) {
            Environment.insert(QStringLiteral("DESTDIR"), DestDir);
        }
        Install.setProcessEnvironment(Environment);
        Install.setProcessChannelMode(QProcess::MergedChannels);
        Install.start(QStringLiteral(KAVLIN_CMAKE),
                      {QStringLiteral("--install"), QStringLiteral(KAVLIN_BUILD_DIR),
                       QStringLiteral("--prefix"), InstallPrefix});
        ASSERT_TRUE(Install.waitForFinished(120000));
        ASSERT_EQ(Install.exitCode(), 0) << Install.readAll().toStdString();
    }

    QProcessEnvironment UserEnvironment() const { return NoDisplayEnvironment(Config, Data); }

    // Runs an installed program to its end; its exit code.
    int Run(const QString& Program, const QStringList& Arguments) {
        QProcess Process;
        Process.setProcessEnvironment(UserEnvironment());
        Process.setWorkingDirectory(Root.path());
        Process.start(Prefix + QStringLiteral("/bin/") + Program, Arguments);
        EXPECT_TRUE(Process.waitForFinished(60000)) << Program.toStdString();
        StandardError = QString::fromUtf8(Process.readAllStandardError());
        return Process.exitStatus() == QProcess::NormalExit ? Process.exitCode() : -1;
    }

    // What an installer does for a new user: the settings, and the examples
    // in the user's project folder.
    void SetUpUser() {
        ASSERT_EQ(Run(QStringLiteral("kavlin-setup"),
                      {QStringLiteral("--run-dir"), RunDir, QStringLiteral("--work-dir"), Work,
                       QStringLiteral("--simulated-chip")}),
                  0)
            << StandardError.toStdString();
        const QString Examples = RunDir + QStringLiteral("/examples");
        for (const QString& File : QDir(Examples).entryList(QDir::Files)) {
            ASSERT_TRUE(
                QFile::copy(Examples + QLatin1Char('/') + File, Work + QLatin1Char('/') + File));
        }
    }

    // Starts the installed program as a person would, on the offscreen
    // platform, and ends it after a few seconds; what it wrote on standard error.
    QString FirstStart(const QStringList& Arguments) {
        QProcess Program;
        QProcessEnvironment Environment = UserEnvironment();
        Environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        Program.setProcessEnvironment(Environment);
        Program.start(Prefix + QStringLiteral("/bin/kavlin"), Arguments);
        EXPECT_TRUE(Program.waitForStarted(10000));
        EXPECT_FALSE(Program.waitForFinished(4000)) << "the program ended by itself";
        Program.kill();
        Program.waitForFinished(10000);
        return QString::fromUtf8(Program.readAllStandardError());
    }

    QTemporaryDir Root;
    QString Prefix;
    QString RunDir;
    QString Work;
    QString Config;
    QString Data;
    QString StandardError;
};

TEST_F(InstallTree, EveryFileOfTheSystemIsInPlace) {
    for (const QString& File :
         {QStringLiteral("bin/kavlin"), QStringLiteral("bin/kavlin-sim"),
          QStringLiteral("bin/kavlin-setup"), QStringLiteral("bin/libKvComp141.so"),
          QStringLiteral("share/kavlin/BinKV10/SymbolKV10.sym"),
          QStringLiteral("share/kavlin/BinKV20/SymbolKV20.sym"),
          QStringLiteral("share/applications/kavlin.desktop"),
          QStringLiteral("share/icons/hicolor/scalable/apps/kavlin.svg")}) {
        EXPECT_TRUE(QFileInfo(Prefix + QLatin1Char('/') + File).isFile()) << File.toStdString();
    }
    for (const QString& Program :
         {QStringLiteral("kavlin"), QStringLiteral("kavlin-sim"), QStringLiteral("kavlin-setup")}) {
        EXPECT_TRUE(QFileInfo(Prefix + QStringLiteral("/bin/") + Program).isExecutable());
    }
    EXPECT_TRUE(QFileInfo(RunDir + QStringLiteral("/Temp")).isDir());
    for (const QString& Name :
         {QStringLiteral("blink"), QStringLiteral("counter"), QStringLiteral("echo")}) {
        for (const QString& Extension :
             {QStringLiteral(".kvp"), QStringLiteral(".bas"), QStringLiteral(".prf")}) {
            EXPECT_TRUE(QFile::exists(RunDir + QStringLiteral("/examples/") + Name + Extension))
                << Name.toStdString() << Extension.toStdString();
        }
    }
    EXPECT_TRUE(QFile::exists(RunDir + QStringLiteral("/examples/starts.bas")));
    // A per-user prefix gets no system-wide files.
    EXPECT_FALSE(QFile::exists(Prefix + QStringLiteral("/etc")));
    EXPECT_FALSE(QFile::exists(Prefix + QStringLiteral("/var")));
}

TEST_F(InstallTree, TheDesktopEntryStartsTheInstalledProgramWithItsIcon) {
    const QString Entry =
        QString::fromUtf8(FileBytes(Prefix + QStringLiteral("/share/applications/kavlin.desktop")));
    EXPECT_TRUE(Entry.startsWith(QStringLiteral("[Desktop Entry]\n")));
    EXPECT_TRUE(
        Entry.contains(QStringLiteral("\nExec=") + Prefix + QStringLiteral("/bin/kavlin\n")))
        << Entry.toStdString();
    EXPECT_TRUE(Entry.contains(QStringLiteral("\nIcon=kavlin\n")));
    EXPECT_TRUE(Entry.contains(QStringLiteral("\nType=Application\n")));
    QXmlStreamReader Icon(
        FileBytes(Prefix + QStringLiteral("/share/icons/hicolor/scalable/apps/kavlin.svg")));
    ASSERT_TRUE(Icon.readNextStartElement());
    EXPECT_EQ(Icon.name(), QStringLiteral("svg"));
    while (!Icon.atEnd()) {
        Icon.readNext();
    }
    EXPECT_FALSE(Icon.hasError()) << Icon.errorString().toStdString();
}

TEST_F(InstallTree, TheInstalledProgramCompilesAnExampleAndDownloadsItToTheSimulatedChip) {
    ASSERT_NO_FATAL_FAILURE(SetUpUser());
    EXPECT_EQ(Run(QStringLiteral("kavlin"),
                  {QStringLiteral("blink"), QStringLiteral("/c"), QStringLiteral("/d")}),
              0);
    EXPECT_FALSE(StandardError.contains(QStringLiteral("Installation Error")))
        << StandardError.toStdString();
    const QString Log = QString::fromUtf8(FileBytes(Work + QStringLiteral("/Kavlin.err")));
    EXPECT_EQ(Log, QStringLiteral("Command line:  blink /c /d\r\n\r\nCompile:  ") + Work +
                       QStringLiteral("/blink.kvp\r\nDownload: ") + Work +
                       QStringLiteral("/blink.kvb\r\nProgram downloaded OK\r\nDone.\r\n"));
    // The object files went to the install directory's Temp.
    EXPECT_TRUE(QFile::exists(RunDir + QStringLiteral("/Temp/blink.kvo")));
    // The chip keeps what it was given: the image, and the KV-20 block of
    // the example's preference file with every pin an input.
    const QByteArray Program = FileBytes(Work + QStringLiteral("/blink.kvb"));
    ASSERT_GT(Program.size(), 0);
    const QByteArray External =
        FileBytes(Data + QStringLiteral("/Kavlin/SimulatedChip/external-eeprom.bin"));
    ASSERT_EQ(External.size(), 32768);
    EXPECT_EQ(External.left(Program.size()), Program);
    const QByteArray Internal =
        FileBytes(Data + QStringLiteral("/Kavlin/SimulatedChip/internal-eeprom.bin"));
    ASSERT_EQ(Internal.size(), 512);
    QByteArray Block(32, '\0');
    Block[0] = 2;
    Block[1] = 6;
    Block[6] = static_cast<char>(176);
    Block[7] = static_cast<char>(176);
    Block[31] = static_cast<char>(255);
    EXPECT_EQ(Internal.left(32), Block);
}

TEST_F(InstallTree, TheFirstStartWithTheWrittenSettingsShowsNoBoxAndOpensTheProject) {
    ASSERT_NO_FATAL_FAILURE(SetUpUser());
    const QString Project = Work + QStringLiteral("/blink.kvp");
    const QString Errors = FirstStart({QLatin1Char('"') + Project + QLatin1Char('"')});
    // The headless message box service prints every box as "[Title] Text (answered ...)".
    EXPECT_FALSE(Errors.contains(QStringLiteral("(answered "))) << Errors.toStdString();
    EXPECT_FALSE(Errors.contains(QStringLiteral("no display"))) << Errors.toStdString();
    // The project was opened: it heads the recent list.
    EXPECT_TRUE(FileBytes(Config + QStringLiteral("/Kavlin/Kavlin.conf"))
                    .contains("Last_Project_1=" + Project.toUtf8()))
        << FileBytes(Config + QStringLiteral("/Kavlin/Kavlin.conf")).toStdString();
}

TEST_F(InstallTree, WithoutTheWrittenSettingsTheFirstStartShowsTheInstallationBoxes) {
    // The check above sees boxes where there are some.
    const QString Errors = FirstStart({});
    EXPECT_TRUE(
        Errors.contains(QStringLiteral("[Installation Error] Can't find program directory")))
        << Errors.toStdString();
}

TEST_F(InstallTree, ASystemWideInstallNamesVarLibAsRunDirInEtcXdgAndTheProgramReadsIt) {
    // As the Debian package installs it: the prefix /usr, staged under DESTDIR.
    const QString Stage = Root.filePath(QStringLiteral("stage"));
    ASSERT_NO_FATAL_FAILURE(InstallInto(QStringLiteral("/usr"), Stage));
    EXPECT_EQ(FileBytes(Stage + QStringLiteral("/etc/xdg/Kavlin/Kavlin.conf")),
              QByteArray("[Config]\nRun_Dir=/var/lib/kavlin\n"));
    for (const QString& Library :
         {QStringLiteral("BinKV10/SymbolKV10.sym"), QStringLiteral("BinKV20/SymbolKV20.sym")}) {
        EXPECT_TRUE(QFileInfo(Stage + QStringLiteral("/var/lib/kavlin/") + Library).isFile());
    }
    struct stat Temp {};
    ASSERT_EQ(::stat(QFile::encodeName(Stage + QStringLiteral("/var/lib/kavlin/Temp")).constData(),
                     &Temp),
              0);
    EXPECT_EQ(Temp.st_mode & 07777, 01777u) << "writable by every user, and sticky";
    EXPECT_TRUE(FileBytes(Stage + QStringLiteral("/usr/share/applications/kavlin.desktop"))
                    .contains("\nExec=/usr/bin/kavlin\n"));

    // A user with no settings of his own gets the package's Run_Dir: the
    // installation check looks there (this machine has not installed it).
    QProcess Program;
    QProcessEnvironment User = UserEnvironment();
    User.insert(QStringLiteral("XDG_CONFIG_DIRS"), Stage + QStringLiteral("/etc/xdg"));
    Program.setProcessEnvironment(User);
    Program.setWorkingDirectory(Root.path());
    Program.start(Stage + QStringLiteral("/usr/bin/kavlin"),
                  {QStringLiteral("nosuch"), QStringLiteral("/c")});
    ASSERT_TRUE(Program.waitForFinished(60000));
    const QString Errors = QString::fromUtf8(Program.readAllStandardError());
    if (QFileInfo(QStringLiteral("/var/lib/kavlin")).isDir()) {
        EXPECT_FALSE(Errors.contains(QStringLiteral("Can't find program directory")))
            << Errors.toStdString();
    } else {
        EXPECT_TRUE(Errors.contains(
            QStringLiteral("[Installation Error] Can't find program directory /var/lib/kavlin ")))
            << Errors.toStdString();
    }
}

}  // namespace
