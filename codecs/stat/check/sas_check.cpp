// The beginning of a SAS data set (.sas7bdat), as far as it has sizes:
//
//   12  C2 EA 81 60; of a catalogue, whose header is the same, C2 EA 81 63
//   32  '3': a file of 64 bits          35  '3': the offsets from 164 on move by 4
//   37  1: little-endian               196  header size    200  page size
//   204 pages (4 bytes, 8 in a file of 64 bits)
//
// A page begins with 16 bytes (32 in a file of 64 bits); then type, blocks and subheaders (uint16
// each), 2 bytes, and for each subheader its offset, length, and two bytes, padded to 12 (24). In
// the subheader F7F7F7F7, word 6 is the number of rows, and word 7 that of deleted ones.
//
// Public description: "SAS7BDAT Database Binary Format" (M. Shotwell).
#include "base/counted.h"
#include "codecs/stat/check/header_check.h"
#include "codecs/stat/check/sas_header.h"

#include <algorithm>
#include <vector>

namespace corvanta::stat {

namespace {

constexpr qint64 kSmallestPage = 1024;
constexpr qint64 kLargestPage = qint64(16) * 1024 * 1024;

} // namespace

std::optional<SasHeader> readSasHeader(CheckedReader &in)
{
    constexpr QByteArrayView kMagic("\xC2\xEA\x81");
    constexpr qint64 kMagicAt = 12;
    constexpr qint64 kWideAt = 32;
    constexpr qint64 kShiftedAt = 35;
    constexpr qint64 kByteOrderAt = 37;
    constexpr qint64 kHeaderSizeAt = 196;
    const QByteArray start = in.bytes(kHeaderSizeAt);
    if (!in.isGood() || start.mid(kMagicAt, kMagic.size()) != kMagic) {
        return std::nullopt;
    }
    SasHeader header;
    header.isWide = start[kWideAt] == '3';
    header.isBigEndian = start[kByteOrderAt] != 1;
    header.isShifted = start[kShiftedAt] == '3';
    in.setBigEndian(header.isBigEndian);
    in.seek(kHeaderSizeAt + (header.isShifted ? 4 : 0));
    header.bytes = in.number<quint32>();
    header.pageBytes = in.number<quint32>();
    header.pages = header.isWide ? in.number<quint64>() : in.number<quint32>();
    return header;
}

quint64 wordOf(CheckedReader &in, bool isWide)
{
    return isWide ? in.number<quint64>() : in.number<quint32>();
}

namespace {

/// The offsets of the subheaders of a page that begins at `page`.
std::vector<qint64> subheadersOf(CheckedReader &in, const SasHeader &header, qint64 page)
{
    in.seek(page + (header.isWide ? 32 : 16) + 4);
    const auto count = in.number<quint16>();
    in.skip(2);
    std::vector<qint64> offsets;
    for (int i = 0; i < count && in.isGood(); ++i) {
        const quint64 offset = wordOf(in, header.isWide);
        in.skip(header.isWide ? 16 : 8);
        if (offset < static_cast<quint64>(header.pageBytes)) {
            offsets.push_back(page + static_cast<qint64>(offset));
        }
    }
    return offsets;
}

/// The deleted rows that a page announces; nothing if it has no subheader of the rows.
std::optional<quint64> deletedRowsOf(CheckedReader &in, const SasHeader &header, qint64 page)
{
    constexpr quint32 kRowsSignature = 0xF7F7F7F7;
    constexpr int kRowsWord = 6;
    for (const qint64 at : subheadersOf(in, header, page)) {
        in.seek(at);
        if (in.number<quint32>() == kRowsSignature) {
            in.seek(at + kRowsWord * qint64(header.isWide ? 8 : 4));
            const quint64 rows = wordOf(in, header.isWide);
            const quint64 deleted = wordOf(in, header.isWide);
            return in.isGood() && deleted <= rows ? deleted : 0;
        }
    }
    return std::nullopt;
}

} // namespace

Result<void, Error> checkSas(ByteSource &source)
{
    CheckedReader in(source);
    const auto header = readSasHeader(in);
    if (in.hasFailed()) {
        return Fault{Error::Unreadable};
    }
    if (!header) {
        return {};
    }
    const qint64 page = header->pageBytes;
    const qint64 size = source.size();
    if (page < kSmallestPage || page > kLargestPage || header->bytes > size ||
        header->pages > static_cast<quint64>((size - header->bytes) / page)) {
        return Fault{Error::Damaged,
                     QStringLiteral("the header announces %1 of %2 bytes after %3 bytes, but "
                                    "the file has %4 bytes")
                         .arg(counted(static_cast<qint64>(header->pages), QStringLiteral("page")),
                              QString::number(page), QString::number(header->bytes),
                              QString::number(size))};
    }
    return {};
}

qint64 deletedSasRows(ByteSource &source)
{
    constexpr quint64 kMaxPages = 16; // the subheader is on the first page, or soon after it
    CheckedReader in(source);
    const SasHeader header = readSasHeader(in).value_or(SasHeader());
    for (quint64 i = 0; i < std::min(header.pages, kMaxPages); ++i) {
        const qint64 page = header.bytes + static_cast<qint64>(i) * header.pageBytes;
        if (const auto deleted = deletedRowsOf(in, header, page)) {
            return static_cast<qint64>(*deleted);
        }
    }
    return 0;
}

} // namespace corvanta::stat
