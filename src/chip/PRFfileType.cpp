#include "chip/PRFfileType.h"

#include <algorithm>

#include "chip/FileExecutivePRF.h"
#include "frame/ErrorDisplay.h"
#include "frame/RegistryCentral.h"
#include "frame/UtilitiesFilename.h"

namespace {
std::function<void(QString&, QString&)> ProjectLocationSource;

bool AsBoolean(int32_t Value) { return Value != 0; }
int32_t AsRecord(bool Value) { return Value ? 1 : 0; }

// Why the last write of the file failed, as a second line of the message.
QString CauseLine() {
    const UserFileFailure& Failure = FileExecutive().LastFailure();
    return Failure.Number != 0 ? QLatin1Char('\n') + UserFile::ErrorLine(Failure) : QString();
}
}  // namespace

void PRFfileType::SetProjectLocationSource(std::function<void(QString&, QString&)> Source) {
    ProjectLocationSource = std::move(Source);
}

PRFfileType::PRFfileType() {
    Path.clear();
    Name.clear();
    LoadDefaults();
}

QString PRFfileType::ProjectPrfFilename(QString& ProjectPath, QString& ProjectName) const {
    ProjectPath = Path;
    ProjectName = Name;
    if (ProjectLocationSource) {
        ProjectLocationSource(ProjectPath, ProjectName);
    }
    return UtilitiesFilename::MakeFilename(ProjectPath, ProjectName, Extension_);
}

void PRFfileType::LoadDefaults() {
    UseInternalEEPROM = 0;
    SpiSize = 32768;
    RamEnable = false;
    CodeCache = false;
    Com1Enable = false;
    Com2Enable = false;
    NetEnable = false;
    NetBaud = 460800;
    NodeAddress = 65279;
    GroupAddress = 254;
    // A new project takes the user's present defaults.
    OptimizeEnable = RegistryCentral::RegistryGetOptimizeEnable();
    StrictSyntaxRules = RegistryCentral::RegistryGetStrictSyntaxRules();
    PCLink = true;
    MaxVstr = static_cast<uint8_t>(RegistryCentral::RegistryGetMaxVstr());
    Processor_ = 2;
    PinStates_.fill(kvInputTristate);
}

void PRFfileType::DefaultProfile(int32_t NewProcessor) {
    LoadDefaults();
    Processor_ = NewProcessor;
    switch (NewProcessor) {
        case 1:
            PCLink = false;
            break;
        case 2:
        case 3:
            PCLink = true;
            break;
        default:
            ErrorDisplay::ProbeError(QStringLiteral("Error_1 in PRFfileType.DefaultProfile"));
            break;
    }
}

PinStateTypes PRFfileType::GetPinState(int32_t PinNumber) const {
    if (PinNumber < 1 || PinNumber > 40) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in PRFfileType.GetPinState"));
        return kvInputTristate;
    }
    return PinStates_[PinNumber];
}

void PRFfileType::SetPinState(int32_t PinNumber, PinStateTypes PinState) {
    if (PinNumber < 1 || PinNumber > 40) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in PRFfileType.SetPinState"));
        return;
    }
    PinStates_[PinNumber] = PinState;
}

bool PRFfileType::WriteAll() {
    FileExecutivePRF& File = FileExecutive();
    File.OpenFile();
    for (int32_t Record = 1; Record <= 615; ++Record) {
        File.WriteRecord(Record, 0);
    }
    File.WriteRecord(613, Processor_);
    File.WriteRecord(609, UseInternalEEPROM);
    File.WriteRecord(611, SpiSize);
    File.WriteRecord(603, AsRecord(RamEnable));
    File.WriteRecord(604, AsRecord(CodeCache));
    File.WriteRecord(605, AsRecord(Com1Enable));
    File.WriteRecord(606, AsRecord(Com2Enable));
    for (int32_t Pin = 1; Pin <= 40; ++Pin) {
        File.WritePinState(Pin, PinStates_[Pin]);
    }
    File.WriteRecord(602, AsRecord(NetEnable));
    File.WriteRecord(610, NetBaud);
    File.WriteRecord(600, NodeAddress);
    File.WriteRecord(601, GroupAddress);
    File.WriteRecord(607, AsRecord(OptimizeEnable));
    File.WriteRecord(612, AsRecord(StrictSyntaxRules));
    File.WriteRecord(614, AsRecord(PCLink));
    File.WriteRecord(615, MaxVstr);
    const bool WasOpen = File.IsOpen();
    return File.CloseFile() && WasOpen;
}

void PRFfileType::ReadAll() {
    FileExecutivePRF& File = FileExecutive();
    try {
        File.OpenFile();
        if (!File.IsOpen() || File.OpenedWithoutFile()) {
            // The file went between the look and the open: keep the mirror.
            const QString Filename = File.FullFilename();
            File.CloseFile();
            ErrorDisplay::ShowErrorMessage(QStringLiteral("Unable to read PRF file ") + Filename,
                                           QStringLiteral("Error Reading PRF File"));
            return;
        }
        const auto Read = [&File](int32_t RecordNumber) {
            int32_t Value = 0;
            File.ReadRecord(RecordNumber, Value);
            return Value;
        };
        // In this order, each value passing its check as it is read.
        const int32_t Stored = Read(613);
        Processor_ = Stored >= 0 && Stored <= 4 ? Stored : 2;
        const int32_t Storage = Read(609);
        UseInternalEEPROM = Storage >= 0 && Storage <= 2 ? Storage : 0;
        SpiSize = std::max(0, Read(611));
        RamEnable = AsBoolean(Read(603));
        CodeCache = AsBoolean(Read(604));
        Com1Enable = AsBoolean(Read(605));
        Com2Enable = AsBoolean(Read(606));
        for (int32_t Pin = 1; Pin <= 40; ++Pin) {
            File.ReadPinState(Pin, PinStates_[Pin]);
        }
        NetEnable = AsBoolean(Read(602));
        NetBaud = std::max(0, Read(610));
        NodeAddress = Read(600);
        const int32_t Group = Read(601);
        GroupAddress = static_cast<uint8_t>(Group >= 0 && Group <= 255 ? Group : 254);
        OptimizeEnable = AsBoolean(Read(607));
        StrictSyntaxRules = AsBoolean(Read(612));
        PCLink = AsBoolean(Read(614));
        const int32_t Strings = Read(615);
        MaxVstr = static_cast<uint8_t>(Strings >= 1 && Strings <= 64 ? Strings : 16);
        File.CloseFile();
    } catch (...) {
        LoadDefaults();
        DefaultProfile(2);
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in PRFfileType.ReadAll"));
    }
}

FileStatusTypes PRFfileType::InitializeProjectFile(QString& Filename) const {
    QString ProjectPath;
    QString ProjectName;
    Filename = ProjectPrfFilename(ProjectPath, ProjectName);
    FileStatusTypes Status = fstUndefined;
    FileExecutive().Initialize(ProjectPath, ProjectName, Status);
    return Status;
}

void PRFfileType::SaveOver(const QString& ReadOnlyTitle, const QString& UnableText,
                           const QString& UnableTitle) {
    QString Filename;
    const FileStatusTypes Status = InitializeProjectFile(Filename);
    switch (Status) {
        case fstOK:
        case fstNonexistant:
            // A failed save leaves the file that stood there; say so, and why.
            if (!WriteAll()) {
                ErrorDisplay::ShowErrorMessage(UnableText + Filename + CauseLine(), UnableTitle);
            }
            break;
        case fstReadOnly:
            ErrorDisplay::ShowErrorMessage(
                QStringLiteral("Existing PRF file ") + Filename + QStringLiteral(" is read-only"),
                ReadOnlyTitle);
            break;
        default:
            ErrorDisplay::ShowErrorMessage(UnableText + Filename, UnableTitle);
            FileExecutive().CloseFile();
            break;
    }
}

void PRFfileType::WriteFile() {
    SaveOver(QStringLiteral("Error writing to PRF File"),
             QStringLiteral("Unable to write PRF file "),
             QStringLiteral("Error Writing to PRF File"));
}

void PRFfileType::WriteNewFile() {
    SaveOver(QStringLiteral("Error Creating PRF File"),
             QStringLiteral("Unable to create new PRF file "),
             QStringLiteral("Error Creating PRF File"));
}

void PRFfileType::ReadExistingFile() {
    QString Filename;
    const FileStatusTypes Status = InitializeProjectFile(Filename);
    switch (Status) {
        case fstOK:
        case fstReadOnly:
            ReadAll();
            break;
        case fstNonexistant:
            if (ErrorDisplay::AskYesNo(QStringLiteral("Can't find PRF file ") + Filename +
                                           QStringLiteral("\nCreate new file?"),
                                       QStringLiteral("Nonexistant PRF File")) == 6) {
                if (!WriteAll()) {
                    ErrorDisplay::ShowErrorMessage(
                        QStringLiteral("Unable to create new PRF file ") + Filename + CauseLine(),
                        QStringLiteral("Error Creating PRF File"));
                }
            }
            break;
        default:
            ErrorDisplay::ShowErrorMessage(QStringLiteral("Unable to read PRF file ") + Filename,
                                           QStringLiteral("Error Reading PRF File"));
            FileExecutive().CloseFile();
            break;
    }
}
