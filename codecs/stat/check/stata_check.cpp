// The header of a Stata file (.dta) before version 117, and the map of the newer ones:
//
//   until 116  version (uint8), byte order (1 big, 2 little), file type, unused,
//              variables (uint16), rows (uint32), label, time; then a type code per variable
//   from 117   "<stata_dta><header><release>117</release><byteorder>LSF</byteorder><K>...</K>
//              <N>...</N><label>...</label><timestamp>...</timestamp></header><map>"; variables
//              uint16 (119: uint32), rows uint32 (from 118: uint64), sizes of the label uint16
//              (117: uint8) and of the time uint8; the map has 14 offsets (uint64): the third is
//              that of "<variable_types>" with a uint16 per variable, 32768 for a strL, the 11th
//              that of the texts of strL, the 12th that of the value labels, before "</stata_dta>"
//
// Public description: "help dta" of Stata.
#include "base/counted.h"
#include "codecs/stat/check/header_check.h"
#include "codecs/stat/long_texts.h"

#include <algorithm>

namespace corvanta::stat {

namespace {

/// A row has at least one byte per variable, and a file all of its rows.
Result<void, Error> checkCounts(const CheckedReader &in, qint64 fileBytes, qint64 variables,
                                quint64 rows)
{
    if (in.hasFailed()) {
        return Fault{Error::Unreadable};
    }
    const auto size = static_cast<quint64>(fileBytes);
    // Each variable also has a name, a format and a label in the dictionary.
    if (static_cast<quint64>(variables) > size || (variables > 0 && rows > size)) {
        return Fault{Error::Damaged,
                     QStringLiteral("the header announces %1 and %2, which the file "
                                    "is too small for")
                         .arg(counted(static_cast<qint64>(variables), QStringLiteral("variable")),
                              counted(static_cast<qint64>(rows), QStringLiteral("row")))};
    }
    return {};
}

/// Files until version 116. The library reports what does not begin like one.
Result<void, Error> checkOld(ByteSource &source)
{
    CheckedReader in(source);
    const QByteArray start = in.bytes(4);
    if (!in.isGood() || (start[1] != 1 && start[1] != 2)) {
        return {};
    }
    in.setBigEndian(start[1] == 1);
    const qint64 variables = in.number<quint16>();
    const quint64 rows = in.number<quint32>();
    return checkCounts(in, source.size(), variables, rows);
}

} // namespace

std::optional<StataHeader> readStataHeader(CheckedReader &in)
{
    constexpr char kStart[] = "<stata_dta><header><release>";
    constexpr int kFirstLong = 118;
    constexpr int kFirstManyVariables = 119;
    if (in.bytes(sizeof kStart - 1) != kStart) {
        return std::nullopt;
    }
    StataHeader header;
    header.release = in.bytes(3).toInt();
    const bool isLong = header.release >= kFirstLong;
    in.skip(static_cast<qint64>(sizeof("</release><byteorder>") - 1));
    header.isBigEndian = in.bytes(3) == "MSF";
    in.setBigEndian(header.isBigEndian);
    in.skip(static_cast<qint64>(sizeof("</byteorder><K>") - 1));
    header.variables =
        header.release >= kFirstManyVariables ? in.number<quint32>() : in.number<quint16>();
    in.skip(static_cast<qint64>(sizeof("</K><N>") - 1));
    header.rows = isLong ? in.number<quint64>() : in.number<quint32>();
    in.skip(static_cast<qint64>(sizeof("</N><label>") - 1));
    in.skip(isLong ? in.number<quint16>() : in.number<quint8>());
    in.skip(static_cast<qint64>(sizeof("</label><timestamp>") - 1));
    in.skip(in.number<quint8>());
    in.skip(static_cast<qint64>(sizeof("</timestamp></header><map>") - 1));
    for (quint64 &offset : header.map) {
        offset = in.number<quint64>();
    }
    return header;
}

/// Newer files begin with a tag, and older ones with the number of their version.
Result<void, Error> checkStata(ByteSource &source)
{
    CheckedReader in(source);
    const auto header = readStataHeader(in);
    if (!header) {
        return checkOld(source);
    }
    if (auto checked = checkCounts(in, source.size(), header->variables, header->rows); !checked) {
        return checked;
    }
    const auto longTexts = LongTexts::of(source);
    return longTexts ? longTexts->check() : Result<void, Error>();
}

/// Bytes may follow the end, and some programs leave its place in the map empty.
bool lacksStataEnd(ByteSource &source)
{
    constexpr char kEnd[] = "</stata_dta>";
    constexpr qint64 kLastBytes = 64;
    CheckedReader in(source);
    const auto header = readStataHeader(in);
    if (!header) {
        return false;
    }
    in.seek(static_cast<qint64>(header->map[StataHeader::kEnd]));
    if (in.bytes(sizeof kEnd - 1) == kEnd) {
        return false;
    }
    CheckedReader last(source);
    last.seek(std::max(source.size() - kLastBytes, qint64(0)));
    return !last.bytes(last.remaining()).contains(kEnd);
}

} // namespace corvanta::stat
