// Layout (RFC 4180, section 2):
//
//   text    = [EF BB BF] record *(line-end record) [line-end]
//   record  = field *(separator field)
//   field   = quoted / plain
//   quoted  = DQUOTE *(any byte but DQUOTE / DQUOTE DQUOTE) DQUOTE
//   plain   = bytes without separator and line end; DQUOTE is literal except at the beginning
//   line-end = LF / CR LF             CR too if Dialect::endsLinesWithCr
#include "codecs/csv/record_reader.h"

#include "base/text/binary_kind.h"
#include "codecs/csv/find_first_of.h"

#include <algorithm>
#include <cstring>

namespace corvanta::csv {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kMark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Marks[] = {"\xFF\xFE", "\xFE\xFF"};

bool startsWithAny(std::string_view text, std::span<const std::string_view> beginnings)
{
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&](std::string_view one) { return text.starts_with(one); });
}

} // namespace

RecordReader::RecordReader(ByteSource &source, Dialect dialect, Limits limits)
    : m_source(&source)
    , m_dialect(std::move(dialect))
    , m_separator(m_dialect.separator)
    , m_lineEnd(m_dialect.endsLinesWithCr ? '\r' : '\n')
    , m_skipsLines(m_dialect.skippedLines > 0 || !m_dialect.comment.empty())
    , m_recordBytes(limits.recordBytes)
    , m_firstBlockBytes(limits.blockBytes)
    , m_block(limits.blockBytes)
    , m_bytes(m_block.data())
{
}

RecordReader::RecordReader(ByteSource &source, Dialect dialect, Limits limits, qint64 line)
    : RecordReader(source, std::move(dialect), limits)
{
    m_hasBegun = true;
    m_nextLine = line;
}

RecordReader::RecordReader(std::string_view rest, Dialect dialect)
    : m_source(nullptr)
    , m_dialect(std::move(dialect))
    , m_separator(m_dialect.separator)
    , m_lineEnd(m_dialect.endsLinesWithCr ? '\r' : '\n')
    , m_skipsLines(m_dialect.skippedLines > 0 || !m_dialect.comment.empty())
    , m_recordBytes(rest.size())
    , m_bytes(rest.data())
    , m_fill(rest.size())
    , m_hasBegun(true)
    , m_isEnded(true)
{
}

qint64 RecordReader::readRest(void *buffer, qint64 n)
{
    if (m_at == m_fill) {
        return m_source->read(buffer, n);
    }
    const size_t take = std::min(m_fill - m_at, static_cast<size_t>(n));
    std::memcpy(buffer, m_bytes + m_at, take);
    m_at += take;
    return static_cast<qint64>(take);
}

Fault<Error> RecordReader::faultOf(Error code) const
{
    return {code, {}, m_blockOffset + static_cast<qint64>(m_at)};
}

/// A record must be in one block; its limit keeps a missing quote from reading the whole file.
Result<void, Error> RecordReader::growBlock()
{
    if (m_block.size() >= m_recordBytes) {
        return faultOf(Error::RecordTooLong);
    }
    m_block.resize(std::min(m_block.size() * 2, m_recordBytes));
    m_bytes = m_block.data();
    return {};
}

/// Moves the bytes of the current record to the front of the block and reads more after them. A
/// record that is longer than a block doubles before it is scanned again: otherwise the time would
/// grow with the square of its size.
Result<void, Error> RecordReader::refill()
{
    const size_t held = m_fill - m_at;
    const size_t enough = held < m_firstBlockBytes ? held + 1 : std::min(held * 2, m_recordBytes);
    do {
        if (const auto read = readMore(); !read) {
            return read.fault();
        }
    } while (m_fill < enough && !m_isEnded);
    return {};
}

Result<void, Error> RecordReader::readMore()
{
    std::memmove(m_block.data(), m_block.data() + m_at, m_fill - m_at);
    m_blockOffset += static_cast<qint64>(m_at);
    m_fill -= m_at;
    m_at = 0;
    if (m_fill == m_block.size()) {
        if (const auto grown = growBlock(); !grown) {
            return grown.fault();
        }
    }
    const qint64 wanted = static_cast<qint64>(m_block.size() - m_fill);
    const qint64 got = m_source->read(m_block.data() + m_fill, wanted);
    if (got < 0) {
        return faultOf(Error::Unreadable);
    }
    m_isEnded = got == 0;
    m_fill += static_cast<size_t>(got);
    return {};
}

/// Skips a byte-order mark, and recognises files that are not UTF-8 text.
Result<void, Error> RecordReader::begin()
{
    m_hasBegun = true;
    while (m_fill < kBinaryKindBytes && !m_isEnded) {
        if (const auto refilled = refill(); !refilled) {
            return refilled.fault();
        }
    }
    const std::string_view beginning(m_block.data(), m_fill);
    if (startsWithAny(beginning, kUtf16Marks)) {
        return faultOf(Error::Utf16);
    }
    if (const BinaryKind kind = binaryKind(beginning); kind != BinaryKind::None) {
        return Fault<Error>{Error::NotText, QString::fromLatin1(describe(kind)), 0};
    }
    m_at = beginning.starts_with(kMark) ? kMark.size() : 0;
    return {};
}

/// Sets the members one by one: a copy of a whole field waits for the stores of its parts.
inline void RecordReader::addField(const char *text, qsizetype size, bool isQuoted)
{
    if (m_fieldCount == m_fields.size()) [[unlikely]] {
        m_fields.emplace_back();
    }
    Field &field = m_fields[m_fieldCount++];
    field.text = text;
    field.size = size;
    field.isQuoted = isQuoted;
}

/// Scans a quoted field from the byte after its opening quote; returns the place after the closing
/// quote, or null if the bytes end before it is certain.
const char *RecordReader::scanQuoted(const char *at, const char *end)
{
    const char *const begin = at;
    const size_t scratchBegin = m_scratch.size();
    for (;;) {
        const auto *const quote = static_cast<const char *>(
            std::memchr(at, m_dialect.quote, static_cast<size_t>(end - at)));
        if (quote == nullptr || (quote + 1 == end && !m_isEnded)) {
            return nullptr;
        }
        const bool isDoubled = quote + 1 < end && quote[1] == *quote;
        if (isDoubled || at != begin) {
            // Of a doubled quote the first one belongs to the text.
            m_scratch.insert(m_scratch.end(), at, quote + (isDoubled ? 1 : 0));
        }
        if (!isDoubled) {
            if (findFirstOf(begin, quote, m_lineEnd) != quote) { // rare, and faster than to count
                m_nextLine += std::count(begin, quote, m_lineEnd);
            }
            const bool isCopied = at != begin;
            // A copied text gets its address in placeCopiedFields(): m_scratch may still move.
            addField(isCopied ? nullptr : begin,
                     isCopied ? static_cast<qsizetype>(m_scratch.size() - scratchBegin)
                              : quote - begin,
                     true);
            return quote + 1;
        }
        at = quote + 2;
    }
}

/// Scans a field without quotes; returns its end.
inline const char *RecordReader::scanPlain(const char *begin, const char *end)
{
    const char *at = findFirstOf(begin, end, m_separator, '\n', '\r');
    while (at < end && *at == '\r' && m_lineEnd == '\n' && at + 1 < end && at[1] != '\n') {
        at = findFirstOf(at + 1, end, m_separator, '\n', '\r'); // a lone CR belongs to the field
    }
    addField(begin, at - begin, false);
    return at;
}

/// Ends the record at `at`, the end of its last field.
inline RecordReader::Scan RecordReader::endRecord(const char *at, const char *end)
{
    if (at + 1 == end && *at == '\r' && m_lineEnd == '\n' && !fields().back().isQuoted) {
        ++m_fields[m_fieldCount - 1].size; // the text ends with a lone CR
    }
    at += at < end && *at == '\r' ? 1 : 0;
    at += at < end && *at == '\n' ? 1 : 0;
    m_at = static_cast<size_t>(at - m_bytes);
    ++m_nextLine;
    return Scan::Record;
}

/// Whether the line at `at` is not a record. `*isCertain` becomes false if that needs more bytes.
bool RecordReader::isSkippedLine(const char *at, const char *end, bool *isCertain) const
{
    if (m_nextLine <= m_dialect.skippedLines) {
        return true;
    }
    const std::string &comment = m_dialect.comment;
    const auto available = static_cast<size_t>(end - at);
    const bool isEqual = std::equal(at, at + std::min(available, comment.size()), comment.begin());
    *isCertain = !isEqual || m_isEnded || available >= comment.size();
    return !comment.empty() && isEqual && available >= comment.size();
}

/// A skipped line ends at its line end, also inside quotes: it is not a record.
RecordReader::Scan RecordReader::skipLine(const char *at, const char *end)
{
    const auto *const lineEnd =
        static_cast<const char *>(std::memchr(at, m_lineEnd, static_cast<size_t>(end - at)));
    if (lineEnd == nullptr && !m_isEnded) {
        return Scan::NeedMore;
    }
    m_at = static_cast<size_t>((lineEnd != nullptr ? lineEnd + 1 : end) - m_bytes);
    ++m_nextLine;
    return Scan::Skipped;
}

RecordReader::Scan RecordReader::scanRecord()
{
    const char *at = m_bytes + m_at;
    const char *const end = m_bytes + m_fill;
    m_fieldCount = 0;
    m_scratch.clear();
    m_line = m_nextLine;
    m_recordAt = m_at;
    if (at == end) {
        return m_isEnded ? Scan::End : Scan::NeedMore;
    }
    if (m_skipsLines) {
        bool isCertain = true;
        if (isSkippedLine(at, end, &isCertain)) {
            return skipLine(at, end);
        }
        if (!isCertain) {
            return Scan::NeedMore;
        }
    }
    const int quote = m_dialect.quote;
    for (;; ++at) {
        if (at < end && *at == quote) {
            at = scanQuoted(at + 1, end);
            if (at == nullptr) {
                return m_isEnded ? Scan::BadQuotes : Scan::NeedMore;
            }
            if (at < end && *at != m_separator && *at != '\n' && *at != '\r') {
                return Scan::BadQuotes;
            }
        } else {
            at = scanPlain(at, end);
        }
        // A CR at the end of the block may be the first half of CR LF.
        const bool isCut = at == end || (at + 1 == end && *at == '\r');
        if (isCut && !m_isEnded) {
            return Scan::NeedMore;
        }
        if (at == end || *at != m_separator) {
            return endRecord(at, end);
        }
    }
}

/// Sets the texts of copied fields, after m_scratch has its final address.
inline void RecordReader::placeCopiedFields()
{
    const char *scratch = m_scratch.data();
    for (Field &field : std::span(m_fields.data(), m_scratch.empty() ? 0 : m_fieldCount)) {
        if (field.text == nullptr) {
            field.text = scratch;
            scratch += field.size;
        }
    }
}

Result<bool, Error> RecordReader::next()
{
    if (!m_hasBegun) {
        if (const auto begun = begin(); !begun) {
            return begun.fault();
        }
    }
    for (;;) {
        switch (scanRecord()) {
        case Scan::Record:
            placeCopiedFields();
            return true;
        case Scan::Skipped:
            break;
        case Scan::End:
            return false;
        case Scan::BadQuotes:
            return faultOf(Error::BadQuotes);
        case Scan::NeedMore:
            // The record is scanned again from its start, so its line ends count again.
            m_nextLine = m_line;
            if (const auto refilled = refill(); !refilled) {
                return refilled.fault();
            }
            break;
        }
    }
}

} // namespace corvanta::csv
