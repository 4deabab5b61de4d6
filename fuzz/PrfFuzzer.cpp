// Feeds arbitrary bytes to the preference file reader and the configuration
// byte routines as the file of a project, and checks what must always hold.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "chip/ConfigurationBytes.h"
#include "chip/FileExecutivePRF.h"
#include "chip/PRFfileType.h"
#include "chip/PrfRecordType.h"
#include "frame/GlobalData.h"
#include "platform/HeadlessMessageBoxService.h"
#include "platform/SettingsStore.h"

namespace {

void Require(bool Condition) {
    if (!Condition) {
        std::abort();
    }
}

struct Workspace {
    Workspace() {
        SettingsStore::Install(std::make_unique<MemorySettingsStore>());
        MessageBoxService::Install(std::make_unique<HeadlessMessageBoxService>(nullptr));
        Require(Folder.isValid());
    }
    QString Path() const { return Folder.path(); }
    QTemporaryDir Folder;
};

Workspace& Shared() {
    static Workspace Instance;
    return Instance;
}

PRFfileType MirrorOf(const QString& Name) {
    PRFfileType Mirror;
    Mirror.Path = Shared().Path();
    Mirror.Name = Name;
    return Mirror;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size) {
    const QString Folder = Shared().Path();
    const QByteArray Input(reinterpret_cast<const char*>(Data), static_cast<qsizetype>(Size));
    {
        QFile File(Folder + QStringLiteral("/fuzz.prf"));
        Require(File.open(QIODevice::WriteOnly | QIODevice::Truncate));
        Require(File.write(Input) == Input.size());
    }

    // Every record decodes, also past the end.
    for (qsizetype Offset = 0; Offset <= Input.size() + 14; Offset += 7) {
        (void)PrfRecordType::Decode(Input, Offset);
    }

    // The mirror takes only values that pass its checks.
    PRFfileType Mirror = MirrorOf(QStringLiteral("fuzz"));
    Mirror.ReadExistingFile();
    Require(Mirror.Processor() >= 0 && Mirror.Processor() <= 4);
    Require(Mirror.UseInternalEEPROM >= 0 && Mirror.UseInternalEEPROM <= 2);
    Require(Mirror.SpiSize >= 0 && Mirror.NetBaud >= 0);
    Require(Mirror.MaxVstr >= 1 && Mirror.MaxVstr <= 64);
    for (int32_t Pin = 1; Pin <= 40; ++Pin) {
        const int32_t State = Mirror.GetPinState(Pin);
        Require(State >= kvOutputLow && State <= kvInputPullup);
    }

    // What was read, written and read again, writes the same bytes.
    Mirror.Name = QStringLiteral("copy");
    QFile::remove(Folder + QStringLiteral("/copy.prf"));
    Mirror.WriteNewFile();
    QFile First(Folder + QStringLiteral("/copy.prf"));
    Require(First.open(QIODevice::ReadOnly));
    const QByteArray Written = First.readAll();
    First.close();
    Require(Written.size() == 8610);
    PRFfileType Again = MirrorOf(QStringLiteral("copy"));
    Again.ReadExistingFile();
    Again.WriteFile();
    Require(First.open(QIODevice::ReadOnly));
    Require(First.readAll() == Written);
    First.close();

    // The input file itself is never written by reading it.
    QFile Check(Folder + QStringLiteral("/fuzz.prf"));
    Require(Check.open(QIODevice::ReadOnly));
    Require(Check.readAll() == Input);
    Check.close();

    // The three routines and their blocks.
    GlobalData::ProjectFilename = Folder + QStringLiteral("/fuzz.kvp");
    ConfigurationBytes::RegisterArray Registers{};
    ConfigurationBytes::ConfigureKV10(Registers);
    Require(ConfigurationBytes::BlockKV10(Registers, static_cast<int32_t>(Size))[31] == 255);
    ConfigurationBytes::ConfigureKV20(Registers);
    const auto Kv20 = ConfigurationBytes::BlockKV20(Registers);
    Require(Kv20[31] == 255 && (Kv20[0] & 3) == 2 && (Kv20[6] & 176) == 176);
    ConfigurationBytes::ConfigureKV30(Registers);
    Require(ConfigurationBytes::BlockKV30(Registers)[31] == 255);
    for (int Index = 12; Index <= 32; ++Index) {
        Require(Registers[Index] == 0);
    }
    Require(!FileExecutive().IsOpen());
    return 0;
}
