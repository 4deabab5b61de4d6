#include "frame/RegistryCentral.h"

#include <algorithm>
#include <cstdio>

#include "frame/CommandLineInterpreter.h"
#include "frame/ErrorDisplay.h"
#include "frame/UtilitiesFilename.h"
#include "platform/SettingsStore.h"
#include "platform/Val.h"

namespace RegistryCentral {

namespace {
const QString AppName = QStringLiteral("Kavlin");
const QString Section = QStringLiteral("Config");

QString Get(const QString& Key) {
    return SettingsStore::Instance().GetSetting(AppName, Section, Key);
}

void Save(const QString& Key, const QString& Value) {
    SettingsStore& Store = SettingsStore::Instance();
    if (Store.SaveSetting(AppName, Section, Key, Value)) {
        return;
    }
    // The value holds for this run; the user learns that it will not outlive it.
    const QString Text = QStringLiteral("Unable to save the setting ") + Key +
                         QStringLiteral(" in ") + Store.FailureText();
    if (CommandLineInterpreter::GetCommandLineMode()) {
        // Not an error of the batch's commands: it goes beside the log.
        std::fprintf(stderr, "kavlin: %s\n",
                     qPrintable(QString(Text).replace(QLatin1Char('\n'), QLatin1Char(' '))));
        return;
    }
    ErrorDisplay::ShowErrorMessage(Text, QStringLiteral("Settings Write Error"));
}

QString BoolText(bool Value) { return Value ? QStringLiteral("True") : QStringLiteral("False"); }

int32_t GetClampedNumber(const QString& Key, int32_t Default, int32_t Low, int32_t High) {
    const QString Text = Get(Key);
    if (Text.isEmpty()) {
        return Default;
    }
    return std::clamp(ValToLong(Text), Low, High);
}

// Only the exact text "True" is True.
bool GetOnlyTrue(const QString& Key, bool Default) {
    const QString Text = Get(Key);
    if (Text.isEmpty()) {
        return Default;
    }
    return Text == QStringLiteral("True");
}

void GetGeometry(const char* Prefix, const FormGeometry& Defaults, FormGeometry& Geometry) {
    const QString P = QString::fromLatin1(Prefix);
    int32_t* Fields[] = {&Geometry.Top, &Geometry.Left, &Geometry.Width, &Geometry.Height};
    const char* Names[] = {"Top", "Left", "Width", "Height"};
    for (int Index = 0; Index < 4; ++Index) {
        const QString Text = Get(P + QString::fromLatin1(Names[Index]));
        if (Text.isEmpty()) {
            // One gap and the whole window takes its defaults.
            Geometry = Defaults;
            return;
        }
        *Fields[Index] = ValToLong(Text);
    }
}

void SaveGeometry(const char* Prefix, const FormGeometry& Geometry) {
    const QString P = QString::fromLatin1(Prefix);
    Save(P + QStringLiteral("Top"), QString::number(Geometry.Top));
    Save(P + QStringLiteral("Left"), QString::number(Geometry.Left));
    Save(P + QStringLiteral("Width"), QString::number(Geometry.Width));
    Save(P + QStringLiteral("Height"), QString::number(Geometry.Height));
}

FormGeometry MakeGeometry(int32_t Top, int32_t Left, int32_t Width, int32_t Height) {
    FormGeometry G;
    G.Top = Top;
    G.Left = Left;
    G.Width = Width;
    G.Height = Height;
    return G;
}

QString RightAligned(const QString& Text, int Width) {
    return Text.rightJustified(Width, QLatin1Char(' '), true);
}

const char ParityLetters[] = {'N', 'E', 'O', 'S', 'M'};
const char* const StopTexts[] = {"10", "15", "20"};
}  // namespace

int32_t RegistryGetChipType() {
    const QString Text = Get(QStringLiteral("Chip_Type"));
    if (Text == QStringLiteral("KV10")) {
        return 1;
    }
    if (Text == QStringLiteral("KV20")) {
        return 2;
    }
    if (Text == QStringLiteral("KV30")) {
        return 3;
    }
    if (!Text.isEmpty()) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in RegistryGetChipType"));
    }
    return 2;
}

void RegistrySaveChipType(int32_t ChipType) {
    QString Text;
    switch (ChipType) {
        case 1:
            Text = QStringLiteral("KV10");
            break;
        case 2:
            Text = QStringLiteral("KV20");
            break;
        case 3:
            Text = QStringLiteral("KV30");
            break;
        default:
            ErrorDisplay::ProbeError(QStringLiteral("Error_1 in RegistrySaveChipType"));
            Text = QStringLiteral("KV20");
            break;
    }
    Save(QStringLiteral("Chip_Type"), Text);
}

QString RegistryGetInstallDir() { return Get(QStringLiteral("Run_Dir")); }

QString RegistryGetWorkDir() { return Get(QStringLiteral("Work_Dir")); }

void RegistrySaveWorkDir(const QString& WorkDir) { Save(QStringLiteral("Work_Dir"), WorkDir); }

bool RegistryGetSaveFile() {
    // Anything but the exact "False" is True.
    return Get(QStringLiteral("Save_File")) != QStringLiteral("False");
}

void RegistrySaveSaveFile(bool SaveFile) { Save(QStringLiteral("Save_File"), BoolText(SaveFile)); }

void RegistryGetEditorColors(int32_t& TextColor, int32_t& StringLiteralColor, int32_t& CommentColor,
                             int32_t& BackgroundColor) {
    TextColor = GetClampedNumber(QStringLiteral("Text_Color"), 1, 0, 15);
    StringLiteralColor = GetClampedNumber(QStringLiteral("String_Literal_Color"), 8, 0, 15);
    CommentColor = GetClampedNumber(QStringLiteral("Comment_Color"), 2, 0, 15);
    BackgroundColor = GetClampedNumber(QStringLiteral("Background_Color"), 15, 0, 15);
}

void RegistrySaveEditorColors(int32_t TextColor, int32_t StringLiteralColor, int32_t CommentColor,
                              int32_t BackgroundColor) {
    Save(QStringLiteral("Text_Color"), QString::number(TextColor));
    Save(QStringLiteral("String_Literal_Color"), QString::number(StringLiteralColor));
    Save(QStringLiteral("Comment_Color"), QString::number(CommentColor));
    Save(QStringLiteral("Background_Color"), QString::number(BackgroundColor));
}

int32_t RegistryGetTabWidth() { return GetClampedNumber(QStringLiteral("Tab_Width"), 4, 2, 8); }

void RegistrySaveTabWidth(int32_t TabWidth) {
    Save(QStringLiteral("Tab_Width"), QString::number(TabWidth));
}

void RegistryGetEditorFont(QString& FontName, int32_t& FontSize) {
    FontName = UtilitiesFilename::TrimBlanks(Get(QStringLiteral("Editor_Font_Name")));
    if (FontName.isEmpty()) {
        FontName = QStringLiteral("Courier New");
    }
    FontSize = GetClampedNumber(QStringLiteral("Editor_Font_Size"), 9, 8, 20);
}

void RegistrySaveEditorFont(const QString& FontName, int32_t FontSize) {
    Save(QStringLiteral("Editor_Font_Name"), FontName);
    Save(QStringLiteral("Editor_Font_Size"), QString::number(FontSize));
}

void RegistryGetMainGeometry(FormGeometry& Geometry) {
    GetGeometry("Main_", MakeGeometry(200, 200, 6950, 6500), Geometry);
}

void RegistrySaveMainGeometry(const FormGeometry& Geometry) { SaveGeometry("Main_", Geometry); }

void RegistryGetEditorGeometry(FormGeometry& Geometry) {
    GetGeometry("Editor_", MakeGeometry(600, 600, 8595, 6660), Geometry);
}

void RegistrySaveEditorGeometry(const FormGeometry& Geometry) { SaveGeometry("Editor_", Geometry); }

bool RegistryGetChildWindowsMaximized() {
    return GetOnlyTrue(QStringLiteral("Child_Windows_Maximized"), false);
}

void RegistrySaveChildWindowsMaximized(bool Maximized) {
    Save(QStringLiteral("Child_Windows_Maximized"), BoolText(Maximized));
}

QString RegistryGetLastProject(int32_t Index) {
    if (Index < 1 || Index > 4) {
        return QString();
    }
    return Get(QStringLiteral("Last_Project_%1").arg(Index));
}

void RegistrySaveLastProject(int32_t Index, const QString& Filename) {
    if (Index < 1 || Index > 4) {
        return;
    }
    Save(QStringLiteral("Last_Project_%1").arg(Index), Filename);
}

int32_t RegistryGetMaxVstr() {
    const QString Text = Get(QStringLiteral("MaxVstr"));
    return Text.isEmpty() ? 16 : ValToLong(Text);
}

void RegistrySaveMaxVstr(int32_t MaxVstr) {
    Save(QStringLiteral("MaxVstr"), QString::number(MaxVstr));
}

bool RegistryGetOptimizeEnable() { return GetOnlyTrue(QStringLiteral("Optimize_Enable"), true); }

void RegistrySaveOptimizeEnable(bool Enable) {
    Save(QStringLiteral("Optimize_Enable"), BoolText(Enable));
}

bool RegistryGetStrictSyntaxRules() {
    return GetOnlyTrue(QStringLiteral("Strict_Syntax_Rules"), true);
}

void RegistrySaveStrictSyntaxRules(bool Strict) {
    Save(QStringLiteral("Strict_Syntax_Rules"), BoolText(Strict));
}

void RegistryGetDownloadPort(DownloadPortInfoType& PortInfo) {
    const QString Number = Get(QStringLiteral("Port_Number"));
    if (Number.isEmpty()) {
        PortInfo.SetIsDefined(false);
        PortInfo.SetIsParallel(false);
        PortInfo.SetPortNumber(0);
        PortInfo.SetReserve(false);
        return;  // Address stays as it was.
    }
    PortInfo.SetIsDefined(true);
    PortInfo.SetPortNumber(static_cast<int16_t>(ValToLong(Number)));
    PortInfo.SetIsParallel(Get(QStringLiteral("Port_Mode")) == QStringLiteral("Parallel"));
    PortInfo.SetAddress(static_cast<int16_t>(ValToLong(Get(QStringLiteral("Port_Address")))));
    PortInfo.SetReserve(Get(QStringLiteral("Port_Reserve")) == QStringLiteral("True"));
}

void RegistrySaveDownloadPort(const DownloadPortInfoType& PortInfo) {
    if (PortInfo.IsDefined()) {
        Save(QStringLiteral("Port_Number"), QString::number(PortInfo.PortNumber()));
        Save(QStringLiteral("Port_Mode"),
             PortInfo.IsParallel() ? QStringLiteral("Parallel") : QStringLiteral("Serial"));
        Save(QStringLiteral("Port_Address"), QString::number(PortInfo.Address()));
        Save(QStringLiteral("Port_Reserve"), BoolText(PortInfo.Reserve()));
    } else {
        Save(QStringLiteral("Port_Number"), QString());
        Save(QStringLiteral("Port_Mode"), QStringLiteral("Serial"));
        Save(QStringLiteral("Port_Address"), QStringLiteral("&H378"));
        Save(QStringLiteral("Port_Reserve"), QStringLiteral("False"));
    }
}

void RegistryGetMonitorPort(MonitorPortInfoType& PortInfo) {
    const QString Record = Get(QStringLiteral("KV20port_Number"));
    if (Record.size() != 18) {
        PortInfo.IsDefined = false;
        PortInfo.SetPortNumber(1);
        PortInfo.BaudRate = 19200;
        PortInfo.Parity = 0;
        PortInfo.SetDataBits(8);
        PortInfo.SetStopBits(0);
        return;
    }
    PortInfo.IsDefined = true;
    PortInfo.SetPortNumber(static_cast<uint8_t>(ValToLong(Record.mid(0, 3))));
    PortInfo.BaudRate = ValToLong(Record.mid(4, 7));
    const QChar ParityLetter = Record[12];
    PortInfo.Parity = 0;
    bool ParityKnown = false;
    for (int Code = 0; Code < 5; ++Code) {
        if (ParityLetter == QLatin1Char(ParityLetters[Code])) {
            PortInfo.Parity = Code;
            ParityKnown = true;
        }
    }
    if (!ParityKnown) {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in RegistryGetMonitorPort"));
    }
    PortInfo.SetDataBits(static_cast<uint8_t>(ValToLong(Record.mid(14, 1))));
    const QString StopText = Record.mid(16, 2);
    PortInfo.SetStopBits(0);
    for (int Code = 0; Code < 3; ++Code) {
        if (StopText == QLatin1String(StopTexts[Code])) {
            PortInfo.SetStopBits(Code);
        }
    }
}

void RegistrySaveMonitorPort(const MonitorPortInfoType& PortInfo) {
    if (!PortInfo.IsDefined) {
        Save(QStringLiteral("KV20port_Number"), QString());
        return;
    }
    QChar Parity = QLatin1Char('N');
    if (PortInfo.Parity >= 0 && PortInfo.Parity <= 4) {
        Parity = QLatin1Char(ParityLetters[PortInfo.Parity]);
    } else {
        ErrorDisplay::ProbeError(QStringLiteral("Error_1 in RegistrySaveMonitorPort"));
    }
    QString Stop = QStringLiteral("10");
    if (PortInfo.StopBits() >= 0 && PortInfo.StopBits() <= 2) {
        Stop = QLatin1String(StopTexts[PortInfo.StopBits()]);
    }
    const QString Record = RightAligned(QString::number(PortInfo.PortNumber()), 3) +
                           QLatin1Char(',') + RightAligned(QString::number(PortInfo.BaudRate), 7) +
                           QLatin1Char(',') + Parity + QLatin1Char(',') +
                           RightAligned(QString::number(PortInfo.DataBits()), 1) +
                           QLatin1Char(',') + Stop;
    Save(QStringLiteral("KV20port_Number"), Record);
}

}  // namespace RegistryCentral
