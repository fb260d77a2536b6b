// Finds the files that belong to a table by its name, in any letter case.
#pragma once
#include "io/input/input_file.h"

#include <vector>

namespace corvanta {

/// A name under which a memo file may be opened.
struct MemoName
{
    QString name;
    bool isFpt; ///< the extension is .fpt, FoxPro's; otherwise .dbt
};

/// The names of the file `file` with another extension, which begins with its dot, in the
/// folder of the table: as memoFileNames() finds them.
QStringList companionNames(const QString &extension, const QString &file, const InputFile &table);

/// The names under which the memo file of the table `file` may be opened, most likely first: .fpt
/// before .dbt if the table is FoxPro's. For a plain, gzip or .Z file: the existing files in the
/// same folder. For a member of a zip archive: the members in the same folder of the archive,
/// whether they exist or not. For a RAR archive: none. `table` is the table's open input.
std::vector<MemoName> memoFileNames(const QString &file, const InputFile &table, bool isFoxPro);

} // namespace corvanta
