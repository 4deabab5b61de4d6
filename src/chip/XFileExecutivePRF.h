#pragma once

#include <QFile>
#include <QString>

// Bare record-level access to the preference file named by PRFfilename, for
// code that reads its records itself.
namespace XFileExecutivePRF {

// The full name of the preference file in use.
extern QString PRFfilename;

// ProjectFilename with its last three characters overwritten by "prf".
QString PRFfilenameOf(const QString& ProjectFilename);
// Opens PRFfilename for reading its records; False if that fails.
bool OpenPRFfile(QFile& File);
// True only if PRFfilename can be opened for reading, is longer than zero
// and is found by a directory look-up.
bool PRFfileExists();

}  // namespace XFileExecutivePRF
