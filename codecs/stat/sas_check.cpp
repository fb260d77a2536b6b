// The beginning of a SAS data set (.sas7bdat), as far as it has sizes:
//
//   32  '3': a file of 64 bits          35  '3': the offsets from 164 on move by 4
//   37  1: little-endian               196  header size    200  page size
//   204 pages (4 bytes, 8 in a file of 64 bits)
//
// Public description: "SAS7BDAT Database Binary Format" (M. Shotwell).
#include "codecs/stat/checked_reader.h"
#include "codecs/stat/header_check.h"

namespace corvanta::stat {

namespace {

constexpr qint64 kSmallestPage = 1024;
constexpr qint64 kLargestPage = 16 * 1024 * 1024;

} // namespace

Result<void, Error> checkSas(ByteSource &source)
{
    constexpr qint64 kWideAt = 32;
    constexpr qint64 kShiftedAt = 35;
    constexpr qint64 kByteOrderAt = 37;
    constexpr qint64 kHeaderSizeAt = 196;
    CheckedReader in(source);
    const QByteArray start = in.bytes(kHeaderSizeAt);
    if (in.hasFailed()) {
        return Fault{Error::Unreadable};
    }
    if (!in.isGood()) { // the library says that it is no data set
        return {};
    }
    in.setBigEndian(start[kByteOrderAt] != 1);
    in.seek(kHeaderSizeAt + (start[kShiftedAt] == '3' ? 4 : 0));
    const qint64 header = in.number<quint32>();
    const qint64 page = in.number<quint32>();
    const quint64 pages = start[kWideAt] == '3' ? in.number<quint64>() : in.number<quint32>();
    const qint64 size = source.size();
    if (page < kSmallestPage || page > kLargestPage || header > size ||
        pages > static_cast<quint64>((size - header) / page)) {
        return Fault{Error::Damaged,
                     QStringLiteral("the header announces %1 pages of %2 bytes after %3 bytes, but "
                                    "the file has %4 bytes")
                         .arg(QString::number(pages), QString::number(page),
                              QString::number(header), QString::number(size))};
    }
    return {};
}

} // namespace corvanta::stat
