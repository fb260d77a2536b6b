// Runs a spreadsheet program that calculates a written workbook and saves it.
//
// Threads: waits on the calling thread; calls for different files are independent.
#pragma once
#include <QString>

#include <functional>

namespace corvanta {

/// Open and save `file` with the installed program: MS-Excel on Windows (by a script that is
/// created in `scriptFolder`), LibreOffice elsewhere. `isRunning` is called about twenty times a
/// second; the program is killed when it returns false. `action` is the number of the calling
/// action, for the name of a temporary file.
///
/// Returns false when there is no program, when it failed, took longer than three minutes or was
/// killed. LibreOffice writes to a copy, so the file is then unchanged.
bool recalculateWorkbook(const QString &file, const QString &scriptFolder, int action,
                         const std::function<bool()> &isRunning);

} // namespace corvanta
