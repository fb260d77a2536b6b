// Finds the memo file of a table by its name, in any letter case.
#pragma once
#include "io/input/input_file.h"

namespace corvanta {

/// The names under which the memo file of the table `file` may be opened, most likely first. For a
/// plain, gzip or .Z file: the existing files in the same folder. For a member of a zip archive:
/// the members in the same folder of the archive, whether they exist or not. For a RAR archive:
/// none. `table` is the table's open input.
QStringList memoFileNames(const QString &file, const InputFile &table);

} // namespace corvanta
