#include "sim/SimulatedChipStore.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "platform/UserFileWriter.h"
#include "sim/SimulatedKavlinChip.h"
#include "sim/SimulatedSpiEeprom.h"

namespace {
void Tell(const QString& Text) { qWarning().noquote() << QStringLiteral("kavlin: ") + Text; }

QString DataFolder(const QString& Name) {
    QString Base = qEnvironmentVariable("XDG_DATA_HOME");
    if (Base.isEmpty() || QDir::isRelativePath(Base)) {
        Base = QDir::homePath() + QStringLiteral("/.local/share");
    }
    return Base + QStringLiteral("/Kavlin/") + Name;
}
}  // namespace

SimulatedChipStore::SimulatedChipStore(QString Folder, QString ExternalName, QString Device)
    : Folder_(std::move(Folder)),
      ExternalName_(std::move(ExternalName)),
      Device_(std::move(Device)) {}

QString SimulatedChipStore::DefaultFolder() { return DataFolder(QStringLiteral("SimulatedChip")); }

QString SimulatedChipStore::DefaultBoardFolder() {
    return DataFolder(QStringLiteral("SimulatedBoard"));
}

std::unique_ptr<SimulatedChipStore> SimulatedChipStore::ForBoard(QString Folder) {
    return std::make_unique<SimulatedChipStore>(std::move(Folder), QStringLiteral("spi-eeprom.bin"),
                                                QStringLiteral("board"));
}

QString SimulatedChipStore::FileOf(Eeprom Which) const {
    return Folder_ + QLatin1Char('/') +
           (Which == Internal ? QStringLiteral("internal-eeprom.bin") : ExternalName_);
}

int SimulatedChipStore::SizeOf(Eeprom Which) {
    return Which == Internal ? SimulatedKavlinChip::InternalEepromSize : SimulatedSpiEeprom::Size;
}

QByteArray SimulatedChipStore::Load(Eeprom Which) {
    const QString Filename = FileOf(Which);
    const int Size = SizeOf(Which);
    const QByteArray Erased(Size, static_cast<char>(0xFF));
    const QFileInfo Info(Filename);
    if (!Info.exists() && !Info.isSymLink()) {
        // First use: an erased chip. Where the folder cannot be made the
        // writer names the cause.
        QDir().mkpath(Folder_);
        Write(Which, Erased);
        return Erased;
    }
    // This run goes on with an erased memory, and the file stays as it is
    // until the memory changes.
    const auto StartErased = [this, &Filename, &Erased](const QString& Why) {
        Tell(TheFile(Filename) + Why + QStringLiteral("; the ") + Device_ +
             QStringLiteral(" starts with that EEPROM erased, and the file is written "
                            "again at its next change"));
        return Erased;
    };
    const auto CannotBeRead = [&StartErased](const QString& Cause) {
        return StartErased(QStringLiteral(" cannot be read (") + Cause + QLatin1Char(')'));
    };
    if (!Info.isFile()) {
        return CannotBeRead(QStringLiteral("not a regular file"));
    }
    QFile File(Filename);
    if (!File.open(QIODevice::ReadOnly)) {
        return CannotBeRead(File.errorString());
    }
    // One byte more than the memory tells a file that is too long.
    const QByteArray Bytes = File.read(Size + 1);
    if (File.error() != QFileDevice::NoError) {
        return CannotBeRead(File.errorString());
    }
    if (Bytes.size() != Size) {
        return StartErased(QStringLiteral(" holds ") + QString::number(File.size()) +
                           (File.size() == 1 ? QStringLiteral(" byte") : QStringLiteral(" bytes")) +
                           QStringLiteral(", not ") + QString::number(Size));
    }
    return Bytes;
}

void SimulatedChipStore::Changed(Eeprom Which, int64_t Ns) {
    if (!AnyUnsaved()) {
        DueNs_ = Ns + SaveAfterNs;
    }
    Unsaved_[Which] = true;
}

bool SimulatedChipStore::SaveDue(int64_t Ns) const { return AnyUnsaved() && Ns >= DueNs_; }

void SimulatedChipStore::Save(Eeprom Which, QByteArrayView Bytes, int64_t Ns) {
    if (!Unsaved_[Which]) {
        return;
    }
    if (Write(Which, Bytes)) {
        Unsaved_[Which] = false;
    } else {
        DueNs_ = Ns + SaveAfterNs;
    }
}

QString SimulatedChipStore::TheFile(const QString& Filename) const {
    return QStringLiteral("the simulated ") + Device_ + QStringLiteral("'s EEPROM file ") +
           Filename;
}

bool SimulatedChipStore::Write(Eeprom Which, QByteArrayView Bytes) {
    UserFileFailure Failure;
    if (UserFile::Write(FileOf(Which), Bytes.toByteArray(), Failure)) {
        ++FilesWritten_;
        FailureTold_[Which] = false;
        return true;
    }
    if (!FailureTold_[Which]) {
        FailureTold_[Which] = true;
        Tell(TheFile(FileOf(Which)) + QStringLiteral(" could not be written: ") +
             UserFile::ErrorLine(Failure) + QStringLiteral("; the ") + Device_ +
             QStringLiteral(" goes on with its EEPROMs in memory"));
    }
    return false;
}
