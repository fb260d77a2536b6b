// Determines the kind of an input from its name.
#pragma once
#include <QString>

namespace corvanta::input {

/// The kinds of input; see docs/formats/input-files.md.
enum class Kind : quint8 { Rar = 0, Gzip = 1, Zip = 2, Compress = 3, Plain = 4 };

struct InputName
{
    Kind kind = Kind::Plain;
    QString path;   ///< The file to open.
    QString member; ///< The member of a zip archive; empty means its first entry.
};

/// Split the name of an input into its parts. Endings and markers are case-sensitive.
InputName parseInputName(const QString &name);

} // namespace corvanta::input
