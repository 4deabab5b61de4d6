#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <array>
#include <cstdint>
#include <memory>

// The folder in which a simulated chip keeps its two EEPROMs from one run of
// the program to the next, as a real chip keeps its program through a power
// cycle: internal-eeprom.bin holds the 512 bytes of the internal EEPROM and
// external-eeprom.bin the 32,768 of the SPI EEPROM, raw. The simulated KV-10
// board keeps the same two memories, its SPI EEPROM as spi-eeprom.bin. At
// first use the folder is made and both files are written erased (every
// byte 0xFF).
//
// When the files are written: a write that changes a memory marks it
// unsaved, and the chip has the store write what is unsaved
//  - when the chip leaves its monitor (the host's continue or reset command,
//    the board's reset button), when the host's port closes, and when the
//    chip is destroyed;
//  - while the host keeps the chip in its monitor, at the first moment the
//    line moves (a byte for the chip, the host's next look at the port) once
//    the oldest unsaved change is SaveAfterNs of line time old.
// A 32 KB download, hundreds of page writes, thus rewrites its file about
// once a second and once at its end instead of at every page, and the rule
// runs on the line's clock alone, which is virtual in a test. A memory that
// no write changed is never written; a failed write leaves the old file as
// it was, and the chip goes on from its memory.
class SimulatedChipStore {
  public:
    enum Eeprom { Internal, External };
    static constexpr int64_t SaveAfterNs = 1'000'000'000;

    // Device is what the messages call the owner ("chip", "board").
    explicit SimulatedChipStore(QString Folder,
                                QString ExternalName = QStringLiteral("external-eeprom.bin"),
                                QString Device = QStringLiteral("chip"));
    // $XDG_DATA_HOME/Kavlin/SimulatedChip, or ~/.local/share/Kavlin/SimulatedChip
    // where the variable is unset, empty or not an absolute path.
    static QString DefaultFolder();
    // The simulated KV-10 board's: .../Kavlin/SimulatedBoard beside it.
    static QString DefaultBoardFolder();
    // The board's store in the folder: spi-eeprom.bin and internal-eeprom.bin.
    static std::unique_ptr<SimulatedChipStore> ForBoard(QString Folder);

    const QString& Folder() const { return Folder_; }
    QString FileOf(Eeprom Which) const;
    static int SizeOf(Eeprom Which);

    // The bytes the memory starts with: what its file holds. A missing file
    // is written erased first. A file of the wrong size or one that cannot be
    // read gives an erased memory for this run, is told once on standard
    // error, and is written anew at the memory's next change.
    QByteArray Load(Eeprom Which);

    // A write changed the memory at line time Ns.
    void Changed(Eeprom Which, int64_t Ns);
    bool Unsaved(Eeprom Which) const { return Unsaved_[Which]; }
    // The oldest unsaved change is SaveAfterNs old at Ns, or a failed write
    // is that old and may be tried again.
    bool SaveDue(int64_t Ns) const;
    // Writes the memory's file if the memory is unsaved. A failure is told
    // once on standard error (with the cause) until a write of the file
    // succeeds again; the memory stays unsaved and is tried again no sooner
    // than SaveAfterNs after Ns.
    void Save(Eeprom Which, QByteArrayView Bytes, int64_t Ns);
    // The files written since the store was made, first-use ones included.
    int FilesWritten() const { return FilesWritten_; }

  private:
    bool Write(Eeprom Which, QByteArrayView Bytes);
    // "the simulated chip's EEPROM file " and the name, for a message.
    QString TheFile(const QString& Filename) const;
    bool AnyUnsaved() const { return Unsaved_[Internal] || Unsaved_[External]; }

    QString Folder_;
    QString ExternalName_;
    QString Device_;
    std::array<bool, 2> Unsaved_{};
    std::array<bool, 2> FailureTold_{};
    int64_t DueNs_ = 0;
    int FilesWritten_ = 0;
};
