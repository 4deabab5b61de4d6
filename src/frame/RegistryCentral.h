#pragma once

#include <QString>
#include <cstdint>

#include "frame/DownloadPortInfoType.h"
#include "frame/FormGeometry.h"
#include "frame/MonitorPortInfoType.h"

// The one module that touches the per-user settings store. Every setting has
// a getter that supplies its default and clamps it, and a setter that writes
// text, under the application "Kavlin" and the section "Config".
namespace RegistryCentral {

int32_t RegistryGetChipType();
void RegistrySaveChipType(int32_t ChipType);

QString RegistryGetInstallDir();

QString RegistryGetWorkDir();
void RegistrySaveWorkDir(const QString& WorkDir);

bool RegistryGetSaveFile();
void RegistrySaveSaveFile(bool SaveFile);

void RegistryGetEditorColors(int32_t& TextColor, int32_t& StringLiteralColor, int32_t& CommentColor,
                             int32_t& BackgroundColor);
void RegistrySaveEditorColors(int32_t TextColor, int32_t StringLiteralColor, int32_t CommentColor,
                              int32_t BackgroundColor);

int32_t RegistryGetTabWidth();
void RegistrySaveTabWidth(int32_t TabWidth);

void RegistryGetEditorFont(QString& FontName, int32_t& FontSize);
void RegistrySaveEditorFont(const QString& FontName, int32_t FontSize);

void RegistryGetMainGeometry(FormGeometry& Geometry);
void RegistrySaveMainGeometry(const FormGeometry& Geometry);
void RegistryGetEditorGeometry(FormGeometry& Geometry);
void RegistrySaveEditorGeometry(const FormGeometry& Geometry);

bool RegistryGetChildWindowsMaximized();
void RegistrySaveChildWindowsMaximized(bool Maximized);

// Index 1 to 4; any other index reads empty and writes nothing.
QString RegistryGetLastProject(int32_t Index);
void RegistrySaveLastProject(int32_t Index, const QString& Filename);

int32_t RegistryGetMaxVstr();
void RegistrySaveMaxVstr(int32_t MaxVstr);

bool RegistryGetOptimizeEnable();
void RegistrySaveOptimizeEnable(bool Enable);

bool RegistryGetStrictSyntaxRules();
void RegistrySaveStrictSyntaxRules(bool Strict);

void RegistryGetDownloadPort(DownloadPortInfoType& PortInfo);
void RegistrySaveDownloadPort(const DownloadPortInfoType& PortInfo);

void RegistryGetMonitorPort(MonitorPortInfoType& PortInfo);
void RegistrySaveMonitorPort(const MonitorPortInfoType& PortInfo);

}  // namespace RegistryCentral
