// Renders every dialog of the gallery to OUTPUT/NAME.png, for a person to
// look at. scripts/render-dialogs.sh runs it offscreen at 100% and 200%.
#include <QApplication>
#include <QDir>
#include <QImage>
#include <QSettings>
#include <QTemporaryDir>
#include <cstdio>

#include "platform/ClockService.h"
#include "platform/MessageBoxService.h"
#include "platform/SettingsStore.h"
#include "render/DialogGallery.h"
#include "support/ScriptedMessageBoxService.h"
#include "support/VirtualClockService.h"

int main(int argc, char** argv) {
    QApplication Application(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: render_dialogs OUTPUT-FOLDER [NAME...]\n");
        return 2;
    }
    // Nothing a dialog reads or writes reaches the user's own settings, and
    // no box waits for a person.
    QTemporaryDir SettingsFolder;
    if (!SettingsFolder.isValid()) {
        return 2;
    }
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, SettingsFolder.path());
    SettingsStore::Install(std::make_unique<MemorySettingsStore>());
    MessageBoxService::Install(std::make_unique<ScriptedMessageBoxService>());
    ClockService::Install(std::make_unique<VirtualClockService>());

    const QDir Output(QString::fromLocal8Bit(argv[1]));
    if (!Output.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "cannot make %s\n", argv[1]);
        return 2;
    }
    QStringList Wanted;
    for (int Index = 2; Index < argc; ++Index) {
        Wanted << QString::fromLocal8Bit(argv[Index]);
    }
    int Failures = 0;
    for (const DialogGalleryEntry& Entry : DialogGallery()) {
        if (!Wanted.isEmpty() && !Wanted.contains(Entry.Name)) {
            continue;
        }
        QWidget* Dialog = Entry.Open();
        const QImage Picture = RenderDialog(*Dialog);
        const QString File = Output.filePath(Entry.Name + QStringLiteral(".png"));
        if (Picture.isNull() || !Picture.save(File)) {
            std::fprintf(stderr, "could not render %s\n", qPrintable(Entry.Name));
            ++Failures;
        } else {
            std::printf("%s\n", qPrintable(File));
        }
        Entry.Close();
    }
    return Failures == 0 ? 0 : 1;
}
