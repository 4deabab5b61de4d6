#include "chip/PRFfileType.h"

#include "chip/FileExecutivePRF.h"
#include "frame/ErrorDisplay.h"
#include "frame/RegistryCentral.h"
#include "frame/UtilitiesFilename.h"

namespace {
std::function<void(QString&, QString&)> ProjectLocationSource;

bool AsBoolean(int32_t Value) { return Value != 0; }
int32_t AsRecord(bool Value) { return Value ? 1 : 0; }
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
        int32_t Value = 0;
        File.ReadRecord(613, Value);
        Processor_ = Value >= 0 && Value <= 4 ? Value : 2;
        File.ReadRecord(609, Value);
        UseInternalEEPROM = Value >= 0 && Value <= 2 ? Value : 0;
        File.ReadRecord(611, Value);
        SpiSize = Value < 0 ? 0 : Value;
        File.ReadRecord(603, Value);
        RamEnable = AsBoolean(Value);
        File.ReadRecord(604, Value);
        CodeCache = AsBoolean(Value);
        File.ReadRecord(605, Value);
        Com1Enable = AsBoolean(Value);
        File.ReadRecord(606, Value);
        Com2Enable = AsBoolean(Value);
        for (int32_t Pin = 1; Pin <= 40; ++Pin) {
            File.ReadPinState(Pin, PinStates_[Pin]);
        }
        File.ReadRecord(602, Value);
        NetEnable = AsBoolean(Value);
        File.ReadRecord(610, Value);
        NetBaud = Value < 0 ? 0 : Value;
        File.ReadRecord(600, Value);
        NodeAddress = Value;
        File.ReadRecord(601, Value);
        GroupAddress = static_cast<uint8_t>(Value >= 0 && Value <= 255 ? Value : 254);
        File.ReadRecord(607, Value);
        OptimizeEnable = AsBoolean(Value);
        File.ReadRecord(612, Value);
        StrictSyntaxRules = AsBoolean(Value);
        File.ReadRecord(614, Value);
        PCLink = AsBoolean(Value);
        File.ReadRecord(615, Value);
        MaxVstr = static_cast<uint8_t>(Value >= 1 && Value <= 64 ? Value : 16);
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
            // A failed save leaves the file that stood there; say so.
            if (!WriteAll()) {
                ErrorDisplay::ShowErrorMessage(UnableText + Filename, UnableTitle);
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
                        QStringLiteral("Unable to create new PRF file ") + Filename,
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
