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

QString TheFile(const QString& Filename) {
    return QStringLiteral("the simulated chip's EEPROM file ") + Filename;
}
}  // namespace

SimulatedChipStore::SimulatedChipStore(QString Folder) : Folder_(std::move(Folder)) {}

QString SimulatedChipStore::DefaultFolder() {
    QString Base = qEnvironmentVariable("XDG_DATA_HOME");
    if (Base.isEmpty() || QDir::isRelativePath(Base)) {
        Base = QDir::homePath() + QStringLiteral("/.local/share");
    }
    return Base + QStringLiteral("/Kavlin/SimulatedChip");
}

QString SimulatedChipStore::FileOf(Eeprom Which) const {
    return Folder_ + (Which == Internal ? QStringLiteral("/internal-eeprom.bin")
                                        : QStringLiteral("/external-eeprom.bin"));
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
    const auto StartErased = [&Filename, &Erased](const QString& Why) {
        Tell(TheFile(Filename) + Why +
             QStringLiteral("; the chip starts with that EEPROM erased, and the file is written "
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
             UserFile::ErrorLine(Failure) +
             QStringLiteral("; the chip goes on with its EEPROMs in memory"));
    }
    return false;
}
