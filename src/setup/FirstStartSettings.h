#pragma once

#include <QString>
#include <QStringList>

// The settings a new user needs for the program to start without an
// installation message and to run a project on the simulated chip. Each is
// written only where the user has not set it: a value the user chose, even
// a closed port, stays as it is.
namespace FirstStartSettings {

struct Choices {
    // Run_Dir; empty leaves it alone.
    QString RunDir;
    // Work_Dir; empty leaves it alone.
    QString WorkDir;
    // Port 99 as the download port and as the monitor port.
    bool SimulatedChip = false;
};

// Writes what is missing through the settings store and returns the keys it
// wrote, in the order written. False in Success when a write failed.
QStringList WriteMissing(const Choices& What, bool& Success);

}  // namespace FirstStartSettings
