// The header of a Stata file (.dta) before version 117, and the map of the newer ones:
//
//   until 116  version (uint8), byte order (1 big, 2 little), file type, unused,
//              variables (uint16), rows (uint32), label, time; then a type code per variable
//   from 117   "<stata_dta><header><release>117</release><byteorder>LSF</byteorder><K>...</K>
//              <N>...</N>"; variables uint16 (119: uint32), rows uint32 (from 118: uint64)
//
// Public description: "help dta" of Stata.
#include "codecs/stat/checked_reader.h"
#include "codecs/stat/header_check.h"

namespace corvanta::stat {

namespace {

/// A row has at least one byte per variable, and a file all of its rows.
Result<void, Error> checkCounts(const CheckedReader &in, qint64 variables, quint64 rows)
{
    if (in.hasFailed()) {
        return Fault{Error::Unreadable};
    }
    const auto size = static_cast<quint64>(in.remaining());
    // Each variable also has a name, a format and a label in the dictionary.
    if (static_cast<quint64>(variables) > size || (variables > 0 && rows > size)) {
        return Fault{Error::Damaged,
                     QStringLiteral("the header announces %1 variables and %2 rows, which the file "
                                    "is too small for")
                         .arg(QString::number(variables), QString::number(rows))};
    }
    return {};
}

/// `release` is that of the file; the reader is after "<byteorder>".
Result<void, Error> checkTagged(CheckedReader &in, int release)
{
    in.setBigEndian(in.bytes(3) == "MSF");
    in.skip(static_cast<qint64>(sizeof("</byteorder><K>") - 1));
    const qint64 variables = release >= 119 ? in.number<quint32>() : in.number<quint16>();
    in.skip(static_cast<qint64>(sizeof("</K><N>") - 1));
    const quint64 rows = release >= 118 ? in.number<quint64>() : in.number<quint32>();
    return checkCounts(in, variables, rows);
}

} // namespace

/// Newer files begin with a tag, and older ones with the number of their version.
Result<void, Error> checkStata(ByteSource &source)
{
    constexpr char kStart[] = "<stata_dta><header><release>";
    constexpr qint64 kStartBytes = sizeof kStart - 1;
    CheckedReader in(source);
    if (in.bytes(kStartBytes) == kStart) {
        const int release = in.bytes(3).toInt();
        in.skip(static_cast<qint64>(sizeof("</release><byteorder>") - 1));
        return checkTagged(in, release);
    }
    CheckedReader old(source);
    const QByteArray start = old.bytes(4);
    if (!old.isGood()) { // the library reports that it is not a data set
        return {};
    }
    old.setBigEndian(start[1] == 1);
    const qint64 variables = old.number<quint16>();
    return checkCounts(old, variables, old.number<quint32>());
}

} // namespace corvanta::stat
