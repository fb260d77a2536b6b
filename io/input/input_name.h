// io/input/input_name.h
// What the name of an input says about its kind.
#pragma once
#include <QString>

namespace corvanta::input {

enum class Kind : quint8 { Rar = 0, Gzip = 1, Zip = 2, Compress = 3, Plain = 4 };

struct InputName
{
    Kind kind = Kind::Plain;
    QString path;   ///< of the file to open
    QString member; ///< of a zip archive; empty: its first entry
};

/// Take the name of an input apart. Endings and markers are compared with regard to letter case.
InputName parseInputName(const QString &name);

} // namespace corvanta::input
