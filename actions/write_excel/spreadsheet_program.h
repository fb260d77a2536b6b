// writers/spreadsheet_program.h
// Have a spreadsheet program calculate a written workbook and save it.
#pragma once
#include <QString>

#include <functional>

namespace corvanta {

/// Let the program that is installed open and save `file`: MS-Excel on Windows (by a script that is
/// made in `scriptFolder`), LibreOffice elsewhere. `mayGoOn` is asked about twenty times a second.
/// False when there is no program, it failed or took longer than three minutes, or `mayGoOn` said
/// no; LibreOffice writes beside the file, which is then as it was. `action` is the caller's
/// number.
bool recalculateWorkbook(const QString &file, const QString &scriptFolder, int action,
                         const std::function<bool()> &mayGoOn);

} // namespace corvanta
