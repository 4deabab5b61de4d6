#include "setup/FirstStartSettings.h"

#include "frame/DownloadPortInfoType.h"
#include "frame/MonitorPortInfoType.h"
#include "frame/RegistryCentral.h"
#include "platform/IniSettingsStore.h"
#include "platform/SerialDevices.h"
#include "platform/SettingsStore.h"

namespace FirstStartSettings {

namespace {
const QString AppName = QStringLiteral("Kavlin");
const QString Section = QStringLiteral("Config");

// Whether the user's own settings hold the key; a system-wide default does
// not count, since it is only a default.
bool UserHolds(const QString& Key) {
    SettingsStore& Store = SettingsStore::Instance();
    if (auto* File = dynamic_cast<IniSettingsStore*>(&Store)) {
        return File->UserFileHolds(AppName, Section, Key);
    }
    return !Store.GetSetting(AppName, Section, Key).isEmpty();
}

// A path the user has set: an empty one is as good as none.
bool UserHasPath(const QString& Key) {
    return UserHolds(Key) && !SettingsStore::Instance().GetSetting(AppName, Section, Key).isEmpty();
}

// A port the user has set up or closed: the program writes these keys only
// when the user opens or closes the port, an empty number meaning closed.
bool UserHasAnyOf(const QStringList& Keys) {
    for (const QString& Key : Keys) {
        if (UserHolds(Key)) {
            return true;
        }
    }
    return false;
}

bool Saved(QStringList& Written, const QStringList& Keys) {
    const QString Failure = SettingsStore::Instance().FailureText();
    if (!Failure.isEmpty()) {
        return false;
    }
    Written << Keys;
    return true;
}
}  // namespace

QStringList WriteMissing(const Choices& What, bool& Success) {
    Success = true;
    QStringList Written;
    SettingsStore& Store = SettingsStore::Instance();
    if (!What.RunDir.isEmpty() && !UserHasPath(QStringLiteral("Run_Dir"))) {
        // There is no setter in the program: it only reads the install directory.
        Success = Store.SaveSetting(AppName, Section, QStringLiteral("Run_Dir"), What.RunDir) &&
                  Saved(Written, {QStringLiteral("Run_Dir")}) && Success;
    }
    if (!What.WorkDir.isEmpty() && !UserHasPath(QStringLiteral("Work_Dir"))) {
        RegistryCentral::RegistrySaveWorkDir(What.WorkDir);
        Success = Saved(Written, {QStringLiteral("Work_Dir")}) && Success;
    }
    if (!What.SimulatedChip) {
        return Written;
    }
    const QStringList DownloadKeys = {QStringLiteral("Port_Number"), QStringLiteral("Port_Mode"),
                                      QStringLiteral("Port_Address"),
                                      QStringLiteral("Port_Reserve")};
    if (!UserHasAnyOf(DownloadKeys)) {
        DownloadPortInfoType Port;
        Port.SetIsDefined(true);
        Port.SetIsParallel(false);
        Port.SetPortNumber(SerialDevices::SimulatedChipPort);
        RegistryCentral::RegistrySaveDownloadPort(Port);
        Success = Saved(Written, DownloadKeys) && Success;
    }
    if (!UserHasAnyOf({QStringLiteral("KV20port_Number")})) {
        // The line of the chip link, which the monitor shares with it.
        MonitorPortInfoType Monitor;
        Monitor.IsDefined = true;
        Monitor.SetPortNumber(static_cast<uint8_t>(SerialDevices::SimulatedChipPort));
        Monitor.BaudRate = 115200;
        RegistryCentral::RegistrySaveMonitorPort(Monitor);
        Success = Saved(Written, {QStringLiteral("KV20port_Number")}) && Success;
    }
    return Written;
}

}  // namespace FirstStartSettings
