// Determines the kind of an input from its name.
//
// The content is not examined: a file with a wrong ending fails when it is opened or read.
#pragma once
#include <QString>

namespace corvanta::input {

/// The kinds of input, in the order in which their endings are tested; see
/// docs/formats/input-files.md.
enum class Kind : quint8 { Rar = 0, Gzip = 1, Zip = 2, Compress = 3, Plain = 4 };

/// A name as a graph has it, for example "a.zip@b.csv", in parts.
struct InputName
{
    Kind kind = Kind::Plain;
    QString path;   ///< The file to open.
    QString member; ///< The member of a zip archive; empty means its first entry.
};

/// Split the name of an input into its parts. Endings and markers are case-sensitive.
InputName parseInputName(const QString &name);

} // namespace corvanta::input
