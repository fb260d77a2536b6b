// A record is 1 byte deletion flag ('*': deleted) and the fields, all of fixed length. The byte 1A
// follows the last record. Text fields are characters; binary fields are:
//
//   type   bytes  little-endian form          form of dBase 7: big-endian, sorts as bytes; all
//                                             zeros is an empty field
//   I +        4  integer                     integer with the top bit inverted
//   B O 0      8  double                      double; positive: top bit inverted, negative: all
//                                             bits inverted
//   T @        8  u32 Julian day, u32         double: milliseconds since the day before
//                 milliseconds since midnight 0001-01-01
//   Y          8  integer, ten-thousandths    (never)
//   M          4  number of a memo block      (never)
#include "codecs/dbf/table_reader.h"

#include "base/bytes.h"
#include "base/counted.h"
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
/// Number of records that determine the form of the numbers in a dBase 7 table. Independent of the
/// size of the buffer, so that the result is too.
constexpr qint64 kVotingRecords = 64;

// Julian days of the years 1 to 9999.
constexpr quint32 kFirstDay = 1721426; // 0001-01-01
constexpr quint32 kLastDay = 5373484;  // 9999-12-31
constexpr quint32 kDayMs = 24 * 60 * 60 * 1000;

/// Most programs fill fields with spaces, some with zeros.
bool isPadding(char c)
{
    return c == ' ' || c == '\0';
}

/// Length without trailing padding. Compares 16 bytes at a time, because most of a table is
/// padding.
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

/// Write the last `digits` decimal digits of a number; returns the place after them.
char *putDigits(char *out, int value, int digits)
{
    for (int i = digits - 1; i >= 0; --i) {
        out[i] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    return out + digits;
}

char *putSign(char *out, char sign)
{
    *out = sign;
    return out + 1;
}

/// In the fields with sorting numbers, a value of zero bytes was never entered.
bool isZero(const char *bytes, int n)
{
    return std::all_of(bytes, bytes + n, [](char c) { return c == '\0'; });
}

/// Number of fields whose bytes indicate each form.
struct Votes
{
    int sorting = 0; ///< The big-endian form of dBase 7.
    int plain = 0;   ///< The little-endian form.
};

/// The votes of one field. Most numbers are small and most times recent, so that the first and the
/// last byte show the byte order.
Votes votesOf(Conversion conversion, const char *bytes, int length)
{
    const auto byte = [bytes](int at) { return static_cast<uchar>(bytes[at]); };
    const auto isCommonExponent = [](int top) {
        return (top & 0x7F) >= 0x3F && (top & 0x7F) <= 0x41;
    };
    switch (conversion) {
    case Conversion::Integer:
    case Conversion::Key:
        if (length >= 4 && !isZero(bytes, 4)) {
            return {byte(0) == 0x80 || byte(0) == 0x7F, byte(3) == 0x00 || byte(3) == 0xFF};
        }
        break;
    case Conversion::Double:
        if (length >= 8 && !isZero(bytes, 8)) {
            return {isCommonExponent(byte(0) >= 0x80 ? byte(0) : ~byte(0)),
                    isCommonExponent(byte(7))};
        }
        break;
    case Conversion::Timestamp:
    case Conversion::IsoTimestamp:
        if (length >= 8 && !isZero(bytes, 8)) {
            return {byte(0) == 0x42, byte(3) == 0x00};
        }
        break;
    case Conversion::Text:
    case Conversion::Varying:
    case Conversion::Digits:
    case Conversion::Number:
    case Conversion::Memo:
    case Conversion::Logical:
    case Conversion::Currency:
    case Conversion::IsoDate:
    case Conversion::Truth:
        break;
    }
    return {};
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
    , m_decoder(&decoder)
    , m_header(std::move(header))
{
    // Allocate no more than the table needs, whatever the header and the parameter claim.
    qint64 useful = static_cast<qint64>(m_header.recordCount) * m_header.recordBytes + 1;
    if (m_source.size() >= 0) {
        useful = std::min(useful, m_source.size());
    }
    useful = std::min(useful, bufferBytes);
    const qint64 least = m_header.recordBytes * (m_header.isLevel7 ? kVotingRecords : 1) + 1;
    m_buffer.resize(static_cast<size_t>(std::max(useful, least)));
}

Result<std::unique_ptr<TableReader>, Error> TableReader::open(ByteSource &source,
                                                              const TextDecoder &decoder,
                                                              const TableOptions &options,
                                                              qint64 bufferBytes)
{
    auto header = readTableHeader(source, options);
    if (!header) {
        return header.fault();
    }
    std::unique_ptr<TableReader> reader(
        new TableReader(source, decoder, *std::move(header), bufferBytes));
    if (reader->header().isLevel7) {
        auto filled = reader->fill();
        if (!filled) {
            return filled.fault();
        }
        reader->chooseNumberForm();
    }
    return reader;
}

/// Read until a record is in the buffer or the file ends. Returns the number of unread bytes.
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

/// Determine the form of the binary numbers of a dBase 7 table from its first records.
void TableReader::chooseNumberForm()
{
    Votes votes;
    const auto recordBytes = static_cast<size_t>(m_header.recordBytes);
    const size_t records = std::min({m_end / recordBytes, static_cast<size_t>(kVotingRecords),
                                     static_cast<size_t>(m_header.recordCount)});
    for (size_t at = 0; at < records * recordBytes; at += recordBytes) {
        for (const Field &field : m_header.fields) {
            const Votes one =
                votesOf(field.conversion, m_buffer.data() + at + field.offset, field.length);
            votes.sorting += one.sorting;
            votes.plain += one.plain;
        }
    }
    // dBase 7 itself wrote most tables of this layout: 0 is 80 00 00 00, which votes for both.
    m_hasSortingNumbers = votes.sorting >= votes.plain;
}

Fault<Error> TableReader::shortTable() const
{
    const auto offset =
        static_cast<qint64>(m_findings.records) * m_header.recordBytes + m_header.headerBytes;
    return {Error::ShortTable,
            QStringLiteral("it ends after %1 of %2")
                .arg(QString::number(m_findings.records),
                     counted(m_header.recordCount, QStringLiteral("record"))),
            offset};
}

Result<TableReader::Item, Error> TableReader::next()
{
    auto available = fill();
    if (!available) {
        return available.fault();
    }
    if (m_findings.records == m_header.recordCount) {
        endOfCount();
        return Item::End;
    }
    if (*available > 0 && m_buffer[m_at] == kEndMark) {
        m_findings.endsBeforeCount = true;
        return Item::End;
    }
    if (*available < m_header.recordBytes) {
        return shortTable();
    }
    m_record = m_buffer.data() + m_at;
    m_at += static_cast<size_t>(m_header.recordBytes);
    ++m_findings.records;
    return *m_record == kDeleted ? Item::DeletedRecord : Item::Record;
}

/// Look for a record after the last one that the header counts.
void TableReader::endOfCount()
{
    const bool isRecord = m_end - m_at >= static_cast<size_t>(m_header.recordBytes);
    m_findings.hasRecordsAfterCount =
        isRecord && (m_buffer[m_at] == kDeleted || m_buffer[m_at] == kNotDeleted);
}

// Leading spaces belong to a text; only zeros before it are padding.
QByteArrayView TableReader::trimmedText(const char *bytes, int n)
{
    n = lengthWithoutPadding(bytes, n);
    while (n > 0 && *bytes == '\0') {
        ++bytes;
        --n;
    }
    return {bytes, n};
}

bool TableReader::hasNullBit(int bit) const
{
    const int at = bit / 8;
    return at < m_header.nullFlagsBytes &&
           (static_cast<uchar>(m_record[m_header.nullFlagsAt + at]) >> bit % 8 & 1) != 0;
}

/// A text that fills its field has no byte for the length.
QByteArrayView TableReader::varyingText(const Field &field) const
{
    const char *const bytes = bytesOf(field);
    const int room = field.length - 1;
    const bool isShort = room >= 0 && hasNullBit(field.lengthBit);
    return {bytes, isShort ? std::min<int>(static_cast<uchar>(bytes[room]), room) : field.length};
}

std::optional<QByteArrayView> TableReader::text(size_t column)
{
    const Field &field = m_header.fields[column];
    if (field.cell == CellType::Text && isNull(field)) {
        return QByteArrayView();
    }
    switch (field.conversion) {
    case Conversion::Text:
        return trimmedText(bytesOf(field), field.length);
    case Conversion::Varying:
        return varyingText(field);
    case Conversion::Number:
        return numberText(field);
    case Conversion::Digits:
        return trimmedDigits(bytesOf(field), field.length);
    case Conversion::Timestamp:
    case Conversion::IsoTimestamp:
        return putTimestamp(field);
    case Conversion::IsoDate:
        return putIsoDate(field);
    case Conversion::Truth:
        return truthText(field);
    default:
        return std::nullopt;
    }
}

// Numbers are aligned to the right, so padding is on both sides.
QByteArrayView TableReader::trimmedDigits(const char *bytes, int n)
{
    n = lengthWithoutPadding(bytes, n);
    while (n > 0 && isPadding(*bytes)) {
        ++bytes;
        --n;
    }
    return {bytes, n};
}

/// Other programs fill a field with asterisks for a number that it cannot hold, and for none.
QByteArrayView TableReader::numberText(const Field &field)
{
    const QByteArrayView digits = trimmedDigits(bytesOf(field), field.length);
    if (digits.isEmpty() ||
        !std::all_of(digits.begin(), digits.end(), [](char c) { return c == '*'; })) {
        return digits;
    }
    m_findings.badValues.add([&] { return placeOf(field); });
    return {};
}

/// Record and column, for people.
QString TableReader::placeOf(const Field &field) const
{
    return QStringLiteral("record %1, column '%2'")
        .arg(QString::number(m_findings.records), m_decoder->decode(field.name));
}

quint32 TableReader::logicalKey(const Field &field)
{
    switch (field.length > 0 ? *bytesOf(field) : ' ') {
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
    case '?': // not yet entered
    case ' ':
    case '\0':
        return cell::kMissingKey;
    default:
        m_findings.badValues.add([&] { return placeOf(field); });
        return cell::kMissingKey;
    }
}

// Sorting numbers: big-endian with an inverted sign bit, so that bytes compare as numbers do.
std::optional<quint32> TableReader::integerOf(const Field &field) const
{
    const char *const bytes = bytesOf(field);
    if (field.length < 4 || (m_hasSortingNumbers && isZero(bytes, 4))) {
        return std::nullopt;
    }
    return m_hasSortingNumbers ? loadBE<quint32>(bytes) ^ kSignBit : loadLE<quint32>(bytes);
}

// Sorting numbers: big-endian; the sign bit is inverted in positive numbers, and every bit in
// negative ones.
double TableReader::doubleOf(const Field &field) const
{
    const char *const bytes = bytesOf(field);
    if (field.length < 8 || (m_hasSortingNumbers && isZero(bytes, 8))) {
        return cell::missingDouble();
    }
    if (!m_hasSortingNumbers) {
        return std::bit_cast<double>(loadLE<quint64>(bytes));
    }
    const auto stored = loadBE<quint64>(bytes);
    constexpr quint64 kTopBit = quint64(1) << 63;
    return std::bit_cast<double>((stored & kTopBit) != 0 ? stored ^ kTopBit : ~stored);
}

double TableReader::currencyOf(const Field &field) const
{
    constexpr double kUnitsPerWhole = 10'000;
    return field.length < 8 ? cell::missingDouble()
                            : static_cast<double>(loadLE<qint64>(bytesOf(field))) / kUnitsPerWhole;
}

/// The Julian day and the millisecond of a stored time, unchecked.
TableReader::Moment TableReader::momentOf(const char *bytes) const
{
    if (!m_hasSortingNumbers) {
        return {loadLE<quint32>(bytes), loadLE<quint32>(bytes + 4)};
    }
    constexpr double kEndMs = double(kDayMs) * (kLastDay - kFirstDay + 2);
    const auto stored = std::bit_cast<double>(loadBE<quint64>(bytes));
    const quint64 whole = stored >= kDayMs && stored < kEndMs ? static_cast<quint64>(stored) : 0;
    return {kFirstDay - 1 + static_cast<quint32>(whole / kDayMs),
            static_cast<quint32>(whole % kDayMs)};
}

/// The text of a date in m_text, "yyyy-MM-dd". Other bytes are the text that they are.
QByteArrayView TableReader::putIsoDate(const Field &field)
{
    const QByteArrayView digits = trimmedDigits(bytesOf(field), field.length);
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (digits.size() != 8 || !std::all_of(digits.begin(), digits.end(), isDigit)) {
        return digits;
    }
    // Some programs store zeros for no date.
    if (std::all_of(digits.begin(), digits.end(), [](char c) { return c == '0'; })) {
        return {};
    }
    char *at = std::copy_n(digits.data(), 4, m_text.data());
    *at++ = '-';
    at = std::copy_n(digits.data() + 4, 2, at);
    *at++ = '-';
    at = std::copy_n(digits.data() + 6, 2, at);
    return {m_text.data(), at - m_text.data()};
}

QByteArrayView TableReader::truthText(const Field &field)
{
    const quint32 key = logicalKey(field);
    return cell::isMissingKey(key) ? QByteArrayView() : key != 0 ? "true" : "false";
}

/// The text of a time in m_text, "yyyyMMdd hh:mm:ss" or "yyyy-MM-ddThh:mm:ss". Returns an empty
/// view if the field holds no valid time.
QByteArrayView TableReader::putTimestamp(const Field &field)
{
    if (field.length < 8) {
        return {};
    }
    auto [julianDay, ms] = momentOf(bytesOf(field));
    if (julianDay < kFirstDay || julianDay > kLastDay || ms >= kDayMs) {
        if (!std::all_of(bytesOf(field), bytesOf(field) + 8, isPadding)) {
            m_findings.badValues.add([&] { return placeOf(field); });
        }
        return {};
    }
    // FoxPro computes with fractions of a day and often stores a full second one millisecond short.
    ms = std::min(ms + 1, kDayMs - 1);
    const Date date = dateOfJulianDay(static_cast<int>(julianDay));
    const int seconds = static_cast<int>(ms / 1000);
    const bool isIso = field.conversion == Conversion::IsoTimestamp;
    char *at = putDigits(m_text.data(), date.year, 4);
    at = isIso ? putSign(at, '-') : at;
    at = putDigits(at, date.month, 2);
    at = isIso ? putSign(at, '-') : at;
    at = putDigits(at, date.day, 2);
    *at++ = isIso ? 'T' : ' ';
    at = putDigits(at, seconds / 3600, 2);
    *at++ = ':';
    at = putDigits(at, seconds / 60 % 60, 2);
    *at++ = ':';
    at = putDigits(at, seconds % 60, 2);
    return {m_text.data(), at - m_text.data()};
}

/// The block number of a memo field; 0 if it is empty. Counts invalid numbers.
quint32 TableReader::memoBlock(const Field &field)
{
    constexpr int kBinaryBytes = 4;
    if (field.length == kBinaryBytes) {
        return loadLE<quint32>(bytesOf(field));
    }
    const QByteArrayView digits = trimmedDigits(bytesOf(field), field.length);
    const std::string_view text(digits.data(), static_cast<size_t>(digits.size()));
    quint64 block = 0;
    if (!text.empty() && !parseUInt(text, 0xFFFFFFFFU, &block)) {
        m_findings.unreadableMemos.add([&] { return placeOf(field); });
    }
    return static_cast<quint32>(block);
}

/// The text of a memo field. Empty if there is none, or after a fault.
QByteArrayView TableReader::memoText(const Field &field)
{
    const quint32 block = memoBlock(field);
    if (block != 0 && m_memo == nullptr) {
        m_findings.memosWithoutFile.add([&] { return placeOf(field); });
    }
    if (block == 0 || m_memo == nullptr) {
        return {};
    }
    auto text = m_memo->text(block);
    if (!text) {
        m_fault = text.fault();
        return {};
    }
    if (!text->has_value()) {
        m_findings.unreadableMemos.add([&] { return placeOf(field); });
    }
    return text->value_or(QByteArrayView());
}

} // namespace corvanta::dbf
