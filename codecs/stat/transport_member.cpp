// A SAS transport file (.xpt): records of 80 bytes, padded with blanks; integers are big-endian.
//
//   LIBRARY (LIBV8) header, then two records; MEMBER (MEMBV8) header, at 74 the size of a
//     descriptor; DSCRPTR (DSCPTV8) header, then two records
//   NAMESTR (NAMSTV8) header, at 53 the number of variables (5 digits); their descriptors of 140
//     bytes, of which the bytes 4 and 5 are the width of the values; padding
//   LABELV8 or LABELV9 header and the long labels (version 8, if any)
//   OBS header, or OBSV8 header with the number of rows at 48 (15 digits; some programs write 0)
//   rows of fixed width without gaps, padding; then another MEMBER header, or the end
//
// Public descriptions: SAS technical note TS-140; "Record Layout of a SAS Version 8 or 9 Data Set
// in SAS Transport Format".
#include "codecs/stat/transport_member.h"

#include "base/counted.h"
#include "codecs/stat/check/checked_reader.h"
#include "codecs/stat/check/header_check.h"

#include <algorithm>

namespace corvanta::stat {

namespace {

constexpr qint64 kRecordBytes = 80;
constexpr qint64 kDescriptorBytes = 140;
constexpr char kLibrary[] = "HEADER RECORD*******LIB";
constexpr char kMember[] = "HEADER RECORD*******MEMB";
constexpr char kNames[] = "HEADER RECORD*******NAM";
constexpr char kRows[] = "HEADER RECORD*******OBS";
constexpr char kRowsOfVersion8[] = "HEADER RECORD*******OBSV8";

/// The number in `width` characters at `at`; -1 if there is none.
qint64 numberIn(const QByteArray &record, qsizetype at, qsizetype width)
{
    bool isNumber = false;
    const qint64 number = record.mid(at, width).trimmed().toLongLong(&isNumber);
    return isNumber ? number : -1;
}

Fault<Error> damaged(const QString &reason)
{
    return {Error::Damaged, reason};
}

/// The bytes of a row. The reader is at the first of `variables` descriptors, and then after the
/// last one.
qint64 rowBytesOf(CheckedReader &in, qint64 variables)
{
    constexpr qint64 kWidthAt = 4;
    qint64 bytes = 0;
    for (qint64 i = 0; i < variables && in.isGood(); ++i) {
        in.skip(kWidthAt);
        bytes += in.number<quint16>();
        in.skip(kDescriptorBytes - kWidthAt - 2);
    }
    return bytes;
}

/// Moves after the header of the rows, and returns it; empty without one.
QByteArray findRows(CheckedReader &in)
{
    while (in.isGood()) {
        QByteArray record = in.bytes(kRecordBytes);
        if (record.startsWith(kRows)) {
            return record;
        }
    }
    return {};
}

/// The layout after the NAMESTR header, which has announced `variables`.
Result<TransportLayout, Error> layoutOf(CheckedReader &in, qint64 variables)
{
    constexpr qsizetype kRowsAt = 48;
    constexpr qsizetype kRowsDigits = 15;
    if (variables == 0) {
        return damaged(QStringLiteral("its data set has no variables"));
    }
    if (variables < 0 || variables > in.remaining() / kDescriptorBytes) {
        return damaged(QStringLiteral("the header announces %1, and the file has %2 bytes")
                           .arg(counted(variables, QStringLiteral("variable")),
                                QString::number(in.position() + in.remaining())));
    }
    TransportLayout layout;
    layout.rowBytes = rowBytesOf(in, variables);
    in.skip((kRecordBytes - in.position() % kRecordBytes) % kRecordBytes);
    const QByteArray rows = findRows(in);
    layout.rowsAt = in.position();
    const qint64 count =
        rows.startsWith(kRowsOfVersion8) ? numberIn(rows, kRowsAt, kRowsDigits) : 0;
    // Programs that do not know it, such as the library and haven, write 0.
    layout.rows = count > 0 ? count : -1;
    if (in.hasFailed()) {
        return Fault{Error::Unreadable};
    }
    if (!in.isGood() || layout.rowBytes == 0) {
        return damaged(QStringLiteral("the file ends in the dictionary"));
    }
    return layout;
}

} // namespace

Result<TransportLayout, Error> readTransportLayout(ByteSource &source)
{
    constexpr qint64 kMemberAt = 3 * kRecordBytes;
    constexpr qint64 kNamesAt = 7 * kRecordBytes;
    CheckedReader in(source);
    in.setBigEndian(true);
    const QByteArray library = in.bytes(kRecordBytes);
    in.seek(kMemberAt);
    const QByteArray member = in.bytes(kRecordBytes);
    in.seek(kNamesAt);
    const QByteArray names = in.bytes(kRecordBytes);
    if (in.hasFailed()) {
        return Fault{Error::Unreadable};
    }
    if (!library.startsWith(kLibrary)) {
        return damaged(
            QStringLiteral("it does not begin like %1").arg(nameOf(Format::SasTransport)));
    }
    if (!in.isGood()) {
        return damaged(QStringLiteral("the file ends in the dictionary"));
    }
    if (!member.startsWith(kMember) || !names.startsWith(kNames)) {
        return damaged(QStringLiteral("the file has no data set"));
    }
    if (const qint64 bytes = numberIn(member, 74, 4); bytes != kDescriptorBytes) {
        return damaged(QStringLiteral("the descriptions of its variables have %1 bytes instead of "
                                      "%2, which is not supported")
                           .arg(QString::number(bytes), QString::number(kDescriptorBytes)));
    }
    return layoutOf(in, numberIn(names, 53, 5));
}

/// Ends a read with a record where possible, so that no header is divided between two reads.
qint64 TransportMember::read(void *buffer, qint64 n)
{
    if (m_end >= 0) {
        n = std::min(n, std::max<qint64>(m_end - m_position, 0));
    }
    const qint64 over = (m_position + n) % kRecordBytes;
    const qint64 got = readFully(m_source, buffer, n > over ? n - over : n);
    if (got <= 0) {
        return got;
    }
    const QByteArrayView bytes(static_cast<const char *>(buffer), got);
    const qint64 kept = m_end < 0 ? bytesBeforeNext(bytes) : got;
    m_position += kept;
    return kept;
}

/// The number of bytes before another data set, which then is the end.
qint64 TransportMember::bytesBeforeNext(QByteArrayView bytes)
{
    const qint64 skipped = std::max(m_rowsAt - m_position, qint64(0));
    qint64 at = skipped + (kRecordBytes - (m_position + skipped) % kRecordBytes) % kRecordBytes;
    for (; at < bytes.size(); at += kRecordBytes) {
        if (bytes.sliced(at).startsWith(QByteArrayView(kMember))) {
            m_end = m_position + at;
            return at;
        }
    }
    return bytes.size();
}

bool TransportMember::seek(qint64 offset)
{
    m_position = offset;
    return m_source.seek(offset);
}

// ---- Whether the file is complete.

namespace {

Fault<Error> cutOff(const QString &reason)
{
    return {Error::Damaged, QStringLiteral("the file is truncated: ") + reason};
}

bool isBlank(const QByteArray &bytes)
{
    return std::ranges::all_of(bytes, [](char c) { return c == ' ' || c == '\0'; });
}

/// Whether a data set begins at or after `at`.
bool hasMemberAfter(ByteSource &source, qint64 at)
{
    TransportMember rest(source, at);
    QByteArray buffer(kRecordBytes * 1024, Qt::Uninitialized);
    qint64 got = rest.seek(at) ? 1 : 0;
    while (got > 0) {
        got = rest.read(buffer.data(), buffer.size());
    }
    return rest.hasMore();
}

/// Version 5 does not state the number of rows. The last row must be complete: what follows it is
/// padding, unless it is another data set.
Result<void, Error> checkRows(ByteSource &source, const TransportLayout &layout)
{
    const qint64 bytes = source.size() - layout.rowsAt;
    if (source.size() % kRecordBytes != 0) {
        return cutOff(QStringLiteral("its %1 bytes are not a multiple of %2")
                          .arg(QString::number(source.size()), QString::number(kRecordBytes)));
    }
    if (layout.rows > bytes / layout.rowBytes) {
        return cutOff(QStringLiteral("the header announces %1 of %2, "
                                     "and %3 follow")
                          .arg(counted(layout.rows, QStringLiteral("row")),
                               counted(layout.rowBytes, QStringLiteral("byte")),
                               counted(bytes, QStringLiteral("byte"))));
    }
    constexpr qint64 kMaxPadding = qint64(64) * 1024; // usually less than a record
    CheckedReader in(source);
    const qint64 rest = bytes % layout.rowBytes;
    in.seek(source.size() - rest);
    const bool isPadding = isBlank(in.bytes(std::min(rest, kMaxPadding)));
    if (in.hasFailed()) {
        return Fault{Error::Unreadable};
    }
    if (layout.rows < 0 && !isPadding && !hasMemberAfter(source, layout.rowsAt)) {
        return cutOff(QStringLiteral("its last row is not complete"));
    }
    return {};
}

} // namespace

Result<void, Error> checkTransport(ByteSource &source)
{
    const auto layout = readTransportLayout(source);
    return layout ? checkRows(source, *layout) : Result<void, Error>(layout.fault());
}

} // namespace corvanta::stat
