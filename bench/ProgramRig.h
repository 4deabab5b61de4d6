#pragma once

#include <QDir>
#include <QFile>
#include <QStringList>

#include "chip/PrfImageBuilder.h"
#include "platform/MessageBoxService.h"
#include "platform/SettingsStore.h"

// What the benchmarks that start the program's windows on a project of their
// own share: the boxes the user would see, the settings in memory, and the
// files and folders of the project and its installation.
namespace ProgramRig {

// Every box is answered at once with its default button, and kept as
// "Title|Text": what the user saw.
class RecordingMessageBoxService : public MessageBoxService {
  public:
    int Show(const QString& Text, const QString& Title, MsgBoxButtons Buttons,
             MsgBoxIcon) override {
        Shown << Title + QLatin1Char('|') + Text;
        return DefaultAnswer(Buttons);
    }
    QStringList Shown;
};

inline void Setting(const QString& Key, const QString& Value) {
    SettingsStore::Instance().SaveSetting(QStringLiteral("Kavlin"), QStringLiteral("Config"), Key,
                                          Value);
}

inline bool WriteFile(const QString& Name, const QByteArray& Content) {
    QFile File(Name);
    return File.open(QIODevice::WriteOnly) && File.write(Content) == Content.size();
}

// The install directory's folders (Temp, BinKV10, BinKV20) and the others.
inline bool MakeFolders(const QString& Install, const QStringList& Others) {
    QStringList Folders{Install + QStringLiteral("/Temp"), Install + QStringLiteral("/BinKV10"),
                        Install + QStringLiteral("/BinKV20")};
    Folders << Others;
    for (const QString& Folder : Folders) {
        if (!QDir().mkpath(Folder)) {
            return false;
        }
    }
    return true;
}

// The KV-20 project "blink" of one module, main.bas, in the folder Work, with
// the preference file of a chip whose pins are all inputs.
inline bool WriteBlinkProject(const QString& Work, const QByteArray& MainModule) {
    return WriteFile(Work + QStringLiteral("/blink.kvp"), "main.bas\r\n") &&
           WriteFile(Work + QStringLiteral("/main.bas"), MainModule) &&
           PrfImageBuilder()
               .AllPins(kvInputTristate)
               .DefaultValues(2)
               .Save(Work + QStringLiteral("/blink.prf"));
}

}  // namespace ProgramRig
