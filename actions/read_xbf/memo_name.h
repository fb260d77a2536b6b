// The memo file that goes with a table, whatever the letter case of its name.
#pragma once
#include "io/input/input_file.h"

namespace corvanta {

/// The names under which the memo file of the table `file` may be opened, most likely first: beside
/// a plain, gzip or .Z file those that exist, in a zip archive the members beside the table's.
QStringList memoFileNames(const QString &file, const InputFile &table);

} // namespace corvanta
