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
#include "codecs/stat/checked_reader.h"
#include "codecs/stat/header_check.h"

#include <algorithm>
#include <array>

namespace corvanta::stat {

namespace {

constexpr int kNewestRelease = 119;
constexpr int kFirstLongLabel = 118;

/// Entries of the map.
enum : quint8 { kTypes = 2, kLongTexts = 10, kAfterLongTexts = 11, kMapEntries = 14 };

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

Fault<Error> damaged(const QString &reason)
{
    return {Error::Damaged, reason};
}

/// The offsets in the map. The reader is after the number of rows.
std::array<quint64, kMapEntries> readMap(CheckedReader &in, int release)
{
    in.skip(static_cast<qint64>(sizeof("</N><label>") - 1));
    in.skip(release >= kFirstLongLabel ? in.number<quint16>() : in.number<quint8>());
    in.skip(static_cast<qint64>(sizeof("</label><timestamp>") - 1));
    in.skip(in.number<quint8>());
    in.skip(static_cast<qint64>(sizeof("</timestamp></header><map>") - 1));
    std::array<quint64, kMapEntries> map{};
    for (quint64 &offset : map) {
        offset = in.number<quint64>();
    }
    return map;
}

/// The library does not find the texts of strL variables in files of version 119, and would deliver
/// empty ones.
Result<void, Error> checkNoLongTexts(CheckedReader &in, quint64 types, qint64 variables)
{
    constexpr quint16 kLongText = 32768;
    in.seek(static_cast<qint64>(types));
    in.skip(static_cast<qint64>(sizeof("<variable_types>") - 1));
    for (qint64 i = 0; i < variables && in.isGood(); ++i) {
        if (in.number<quint16>() == kLongText) {
            return damaged(QStringLiteral("long texts (strL) in files of version 119 are not "
                                          "supported: save the file as version 118 or older"));
        }
    }
    return in.hasFailed() ? Result<void, Error>(Fault{Error::Unreadable}) : Result<void, Error>();
}

/// The library keeps all long texts of a file in memory. The reader is after the number of rows.
Result<void, Error> checkLongTexts(CheckedReader &in, int release, qint64 variables)
{
    constexpr quint64 kMaxBytes = quint64(1) << 30;
    const auto map = readMap(in, release);
    const quint64 bytes = map[kAfterLongTexts] - map[kLongTexts];
    if (map[kAfterLongTexts] > map[kLongTexts] && bytes > kMaxBytes) {
        return damaged(
            QStringLiteral("its long texts (strL) have %1 bytes, and at most %2 are kept in memory")
                .arg(QString::number(bytes), QString::number(kMaxBytes)));
    }
    if (in.hasFailed()) {
        return Fault{Error::Unreadable};
    }
    return release >= kNewestRelease ? checkNoLongTexts(in, map[kTypes], variables)
                                     : Result<void, Error>();
}

/// `release` is that of the file; the reader is after "<byteorder>".
Result<void, Error> checkTagged(CheckedReader &in, int release)
{
    in.setBigEndian(in.bytes(3) == "MSF");
    in.skip(static_cast<qint64>(sizeof("</byteorder><K>") - 1));
    const qint64 variables = release >= 119 ? in.number<quint32>() : in.number<quint16>();
    in.skip(static_cast<qint64>(sizeof("</K><N>") - 1));
    const quint64 rows = release >= 118 ? in.number<quint64>() : in.number<quint32>();
    auto checked = checkCounts(in, variables, rows);
    return checked ? checkLongTexts(in, release, variables) : checked;
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
    // The library reports that it is not a data set.
    if (!old.isGood() || (start[1] != 1 && start[1] != 2)) {
        return {};
    }
    old.setBigEndian(start[1] == 1);
    const qint64 variables = old.number<quint16>();
    return checkCounts(old, variables, old.number<quint32>());
}

bool lacksStataEnd(ByteSource &source)
{
    constexpr qint64 kEndBytes = 64; // the tag, and bytes that some programs add
    CheckedReader in(source);
    const bool hasTags = in.bytes(sizeof("<stata_dta>") - 1) == "<stata_dta>";
    in.seek(std::max(source.size() - kEndBytes, qint64(0)));
    return hasTags && !in.bytes(in.remaining()).contains("</stata_dta>");
}

} // namespace corvanta::stat
