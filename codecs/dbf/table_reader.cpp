// Records: a deletion flag ('*': deleted) and the fields, all of fixed length. An end mark, 1A,
// stands behind the last record.
//
// Binary fields: I and + 32-bit little-endian; B, O and 0 double, little-endian; T and @ Julian day
// and milliseconds since midnight, 32-bit little-endian. dBase 7 itself writes I and + big-endian
// with the top bit inverted, so that they sort as bytes.
#include "codecs/dbf/table_reader.h"

#include "base/bytes.h"
#include "base/number.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

namespace corvanta::dbf {

namespace {

constexpr char kDeleted = '*';
constexpr char kNotDeleted = ' ';
constexpr char kEndMark = 0x1A;
constexpr quint32 kSignBit = 0x80000000U;
/// Records that tell the form of a dBase 7 table's integers: always as many, whatever the buffer's
/// size.
constexpr qint64 kVotingRecords = 64;

bool isPadding(char c)
{
    return c == ' ' || c == '\0';
}

/// Length without the padding at the end, 16 bytes at a time: most of a table is padding.
int lengthWithoutPadding(const char *bytes, int n)
{
    const __m128i blanks = _mm_set1_epi8(' ');
    const __m128i zeros = _mm_setzero_si128();
    while (n >= 16) {
        const __m128i piece = _mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes + n - 16));
        const __m128i padding =
            _mm_or_si128(_mm_cmpeq_epi8(piece, blanks), _mm_cmpeq_epi8(piece, zeros));
        const unsigned text = ~static_cast<unsigned>(_mm_movemask_epi8(padding)) & 0xFFFFU;
        if (text != 0) {
            return n - 16 + (32 - __builtin_clz(text));
        }
        n -= 16;
    }
    while (n > 0 && isPadding(bytes[n - 1])) {
        --n;
    }
    return n;
}

char *putDigits(char *out, int value, int digits)
{
    for (int i = digits - 1; i >= 0; --i) {
        out[i] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    return out + digits;
}

struct Date
{
    int year;
    int month;
    int day;
};

/// The Gregorian date of a Julian day number (Fliegel and Van Flandern, 1968).
Date dateOfJulianDay(int julianDay)
{
    int l = julianDay + 68569;
    const int n = 4 * l / 146097;
    l -= (146097 * n + 3) / 4;
    const int i = 4000 * (l + 1) / 1461001;
    l = l - 1461 * i / 4 + 31;
    const int j = 80 * l / 2447;
    return {100 * (n - 49) + i + j / 11, j + 2 - 12 * (j / 11), l - 2447 * j / 80};
}

} // namespace

TableReader::TableReader(ByteSource &source, const TextDecoder &decoder, TableHeader header,
                         qint64 bufferBytes)
    : m_source(source)
    , m_decoder(decoder)
    , m_header(std::move(header))
{
    // Not more than there is, whatever the header and the parameter say.
    qint64 useful = static_cast<qint64>(m_header.recordCount) * m_header.recordBytes + 1;
    if (m_source.size() >= 0) {
        useful = std::min(useful, m_source.size());
    }
    useful = std::min(useful, bufferBytes);
    const qint64 least = m_header.recordBytes * (m_header.isLevel7 ? kVotingRecords : 1) + 1;
    m_buffer.resize(static_cast<size_t>(std::max(useful, least)));
}

Result<std::unique_ptr<TableReader>, Error>
TableReader::open(ByteSource &source, const TextDecoder &decoder, bool isLevel7, qint64 bufferBytes)
{
    auto header = readTableHeader(source, isLevel7);
    if (!header) {
        return header.fault();
    }
    std::unique_ptr<TableReader> reader(
        new TableReader(source, decoder, *std::move(header), bufferBytes));
    if (isLevel7) {
        auto filled = reader->fill();
        if (!filled) {
            return filled.fault();
        }
        reader->chooseByteOrder();
    }
    return reader;
}

/// Read until a record is in the buffer or the file ends; the unread bytes there.
Result<qint64, Error> TableReader::fill()
{
    const auto recordBytes = static_cast<size_t>(m_header.recordBytes);
    if (m_end - m_at >= recordBytes) {
        return static_cast<qint64>(m_end - m_at);
    }
    std::memmove(m_buffer.data(), m_buffer.data() + m_at, m_end - m_at);
    m_end -= m_at;
    m_at = 0;
    const qint64 got =
        readFully(m_source, m_buffer.data() + m_end, static_cast<qint64>(m_buffer.size() - m_end));
    if (got < 0) {
        return Fault<Error>{Error::Unreadable};
    }
    m_end += static_cast<size_t>(got);
    return static_cast<qint64>(m_end);
}

/// Tell by the first records which form the 32-bit integers of a dBase 7 table have. Numbers are
/// mostly small: in dBase's own form they start with 80 or 7F, in the other they end with 00 or FF.
void TableReader::chooseByteOrder()
{
    int bigEndian = 0;
    int littleEndian = 0;
    const auto recordBytes = static_cast<size_t>(m_header.recordBytes);
    const size_t records = std::min({m_end / recordBytes, static_cast<size_t>(kVotingRecords),
                                     static_cast<size_t>(m_header.recordCount)});
    for (size_t at = 0; at < records * recordBytes; at += recordBytes) {
        for (const Field &field : m_header.fields) {
            const bool isInteger =
                field.conversion == Conversion::Integer || field.conversion == Conversion::Key;
            if (isInteger && field.length >= 4) {
                const auto *const bytes =
                    reinterpret_cast<const uchar *>(m_buffer.data() + at) + field.offset;
                bigEndian += bytes[0] == 0x80 || bytes[0] == 0x7F ? 1 : 0;
                littleEndian += bytes[3] == 0x00 || bytes[3] == 0xFF ? 1 : 0;
            }
        }
    }
    m_isBigEndian = bigEndian > littleEndian;
}

Result<bool, Error> TableReader::next()
{
    const auto recordBytes = static_cast<size_t>(m_header.recordBytes);
    while (true) {
        auto available = fill();
        if (!available) {
            return available.fault();
        }
        if (m_findings.records == m_header.recordCount) {
            endOfCount();
            return false;
        }
        if (*available > 0 && m_buffer[m_at] == kEndMark) {
            m_findings.endsBeforeCount = true;
            return false;
        }
        if (*available < m_header.recordBytes) {
            const auto offset = static_cast<qint64>(m_findings.records) * m_header.recordBytes +
                                m_header.headerBytes;
            return Fault<Error>{Error::ShortTable,
                                QStringLiteral("it ends after %1 of %2 records")
                                    .arg(QString::number(m_findings.records),
                                         QString::number(m_header.recordCount)),
                                offset};
        }
        m_record = m_buffer.data() + m_at;
        m_at += recordBytes;
        ++m_findings.records;
        if (*m_record != kDeleted) {
            return true;
        }
        ++m_findings.deleted;
    }
}

void TableReader::endOfCount()
{
    const bool isRecord = m_end - m_at >= static_cast<size_t>(m_header.recordBytes);
    m_findings.goesOnBehindCount =
        isRecord && (m_buffer[m_at] == kDeleted || m_buffer[m_at] == kNotDeleted);
}

QByteArrayView TableReader::trimmedText(const char *bytes, int n)
{
    n = lengthWithoutPadding(bytes, n);
    while (n > 0 && *bytes == '\0') {
        ++bytes;
        --n;
    }
    return {bytes, n};
}

QByteArrayView TableReader::trimmedDigits(const char *bytes, int n)
{
    n = lengthWithoutPadding(bytes, n);
    while (n > 0 && isPadding(*bytes)) {
        ++bytes;
        --n;
    }
    return {bytes, n};
}

quint32 TableReader::logicalKey(const char *bytes, int n)
{
    switch (n > 0 ? *bytes : ' ') {
    case 'T':
    case 't':
    case 'Y':
    case 'y':
        return 1;
    case 'F':
    case 'f':
    case 'N':
    case 'n':
        return 0;
    default:
        return cell::kMissingKey;
    }
}

double TableReader::doubleOf(const char *bytes, int n)
{
    return n < cell::kDoubleBytes ? cell::missingDouble()
                                  : std::bit_cast<double>(loadLE<quint64>(bytes));
}

quint32 TableReader::integerOf(const Field &field) const
{
    const char *const bytes = bytesOf(field);
    return m_isBigEndian ? loadBE<quint32>(bytes) ^ kSignBit : loadLE<quint32>(bytes);
}

/// "yyyyMMdd hh:mm:ss" into `out`; empty when the field holds no point in time.
QByteArrayView TableReader::putTimestamp(const char *bytes, int n, std::array<char, 17> *out)
{
    constexpr quint32 kFirstDay = 1721426; // 0001-01-01
    constexpr quint32 kLastDay = 5373484;  // 9999-12-31
    constexpr quint32 kDayMs = 24 * 60 * 60 * 1000;
    if (n < 8) {
        return {};
    }
    const quint32 julianDay = loadLE<quint32>(bytes);
    quint32 ms = loadLE<quint32>(bytes + 4);
    if (julianDay < kFirstDay || julianDay > kLastDay || ms >= kDayMs) {
        return {};
    }
    // FoxPro computes with fractions of a day, so that whole seconds are often one millisecond
    // short.
    ms = std::min(ms + 1, kDayMs - 1);
    const Date date = dateOfJulianDay(static_cast<int>(julianDay));
    const int seconds = static_cast<int>(ms / 1000);
    char *at = out->data();
    at = putDigits(at, date.year, 4);
    at = putDigits(at, date.month, 2);
    at = putDigits(at, date.day, 2);
    *at++ = ' ';
    at = putDigits(at, seconds / 3600, 2);
    *at++ = ':';
    at = putDigits(at, seconds / 60 % 60, 2);
    *at++ = ':';
    putDigits(at, seconds % 60, 2);
    return {out->data(), static_cast<qsizetype>(out->size())};
}

/// The text of a memo field; empty when there is none, or after a fault.
QByteArrayView TableReader::memoText(const Field &field)
{
    constexpr int kBinaryBytes = 4;
    quint64 block = 0;
    if (field.length == kBinaryBytes) {
        block = loadLE<quint32>(bytesOf(field));
    } else {
        const QByteArrayView digits = trimmedDigits(bytesOf(field), field.length);
        const std::string_view text(digits.data(), static_cast<size_t>(digits.size()));
        if (!text.empty() && !parseUInt(text, 0xFFFFFFFFU, &block)) {
            ++m_findings.unreadableMemos;
            return {};
        }
    }
    if (block == 0 || m_memo == nullptr) {
        return {};
    }
    auto text = m_memo->text(static_cast<quint32>(block));
    if (!text) {
        m_fault = text.fault();
        return {};
    }
    m_findings.unreadableMemos += text->has_value() ? 0 : 1;
    return text->value_or(QByteArrayView());
}

} // namespace corvanta::dbf
