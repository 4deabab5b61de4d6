#pragma once

#include <QString>
#include <array>
#include <cstdint>
#include <functional>

#include "chip/FileStatusTypes.h"
#include "chip/PinStateTypes.h"
#include "chip/ProcessorTypes.h"

// The project's in-memory mirror of its chip preference file.
class PRFfileType {
  public:
    PRFfileType();

    // Directory and base name of the file, set by the project.
    QString Path;
    QString Name;
    int32_t UseInternalEEPROM = 0;
    int32_t SpiSize = 32768;
    bool RamEnable = false;
    bool CodeCache = false;
    bool Com1Enable = false;
    bool Com2Enable = false;
    bool NetEnable = false;
    int32_t NetBaud = 460800;
    int32_t NodeAddress = 65279;
    uint8_t GroupAddress = 254;
    bool OptimizeEnable = true;
    bool StrictSyntaxRules = true;
    bool PCLink = true;
    uint8_t MaxVstr = 16;

    int32_t Processor() const { return Processor_; }
    void ChangeProcessor(int32_t NewProcessor) { Processor_ = NewProcessor; }
    // Saves the mirror over the project's file.
    void WriteFile();
    // As WriteFile, for a file expected to be new.
    void WriteNewFile();
    // Loads the mirror from the project's file, offering to make a missing one.
    void ReadExistingFile();
    // PinNumber 1 to 40.
    PinStateTypes GetPinState(int32_t PinNumber) const;
    // Test and dialog access to a pin of the mirror; PinNumber 1 to 40.
    void SetPinState(int32_t PinNumber, PinStateTypes PinState);
    // The defaults of a chip model.
    void DefaultProfile(int32_t NewProcessor);

    // Where the file operations find the project's directory and base name.
    // The project model registers its own; without one the mirror's Path and
    // Name are used.
    static void SetProjectLocationSource(std::function<void(QString& Path, QString& Name)> Source);

  private:
    void LoadDefaults();
    void ReadAll();
    bool WriteAll();
    QString ProjectPrfFilename(QString& Path, QString& Name) const;
    // Looks at the project's file; its full name comes back in Filename.
    FileStatusTypes InitializeProjectFile(QString& Filename) const;
    // WriteFile and WriteNewFile, which differ only in their messages.
    void SaveOver(const QString& ReadOnlyTitle, const QString& UnableText,
                  const QString& UnableTitle);

    QString Extension_ = QStringLiteral("prf");
    int32_t Processor_ = 2;
    std::array<PinStateTypes, 41> PinStates_{};
};
