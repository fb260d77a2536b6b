// The buffer (m_data), whose offsets are all relative to its first byte:
//
//     0 <= m_pin <= m_keep <= m_pos <= m_end <= m_capacity
//     |    |        |         |        |        kPadding zeros follow m_end
//     |    |        |         |        end of the data that was read
//     |    |        |         next character
//     |    |        start of the current token
//     |    start of the pinned record (kNoPin: none)
//     bytes before min(m_pin, m_keep) are discarded by the next refill()
#include "codecs/markup/tokens/tokenizer.h"

#include "base/limits.h"
#include "codecs/markup/text/char_class.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace corvanta::markup {

namespace {

/// Zeros after the data: scans stop at the first one and may load a whole block from any place.
constexpr size_t kPadding = kReadAhead;
/// Bytes per read: few enough to stay in the cache until they are parsed.
constexpr size_t kFillBytes = size_t(256) * 1024;

} // namespace

MarkupTokenizer::MarkupTokenizer(ByteSource &source, qint64 bufferChars)
    : m_source(source)
    , m_capacity(static_cast<size_t>(std::max(bufferChars, kMinBufferChars)))
{
}

MarkupTokenizer::~MarkupTokenizer() = default;

// Only before the first read: the buffer is allocated then.
bool MarkupTokenizer::setBufferSize(qint64 characters)
{
    if (m_begun) {
        return false;
    }
    m_capacity = static_cast<size_t>(std::max(characters, kMinBufferChars));
    return true;
}

Result<void, MarkupError> MarkupTokenizer::setEncoding(CharMode mode, const QByteArray &name,
                                                       InvalidBytes invalid)
{
    m_encodingGiven = true;
    auto set = m_source.setEncoding(mode, name, invalid);
    m_pendingError = set ? std::nullopt : std::optional(set.fault().code);
    return set;
}

// The buffer and its capacity are kept: the next document is probably as large.
void MarkupTokenizer::restart(ByteSource &source)
{
    m_source.restart(source);
    m_pos = m_keep = m_end = m_mark = 0;
    m_text = {};
    m_depth = 0;
    m_begun = m_ended = m_encodingGiven = false;
    m_pin = kNoPin;
    m_token = Token::None;
    m_error = MarkupError::None;
    m_pendingError.reset();
    m_discarded = {};
}

/// Move the data to a new buffer; false, with NoMemory pending, when there is no memory. The
/// capacity stops a little beyond the largest limit of what a buffer may hold.
bool MarkupTokenizer::allocate(size_t capacity)
{
    constexpr size_t kMaxBytes = static_cast<size_t>(limits::kTreeArenaBytes) + 2 * kFillBytes;
    capacity = std::min(capacity, kMaxBytes);
    std::unique_ptr<char[]> larger(new (std::nothrow) char[capacity + kPadding]);
    if (!larger) {
        m_pendingError = MarkupError::NoMemory;
        return false;
    }
    if (m_data) {
        std::memcpy(larger.get(), m_data.get(), m_end);
    }
    m_data = std::move(larger);
    m_capacity = capacity;
    return true;
}

/// Guess the encoding, unless it was given.
Result<void, MarkupError> MarkupTokenizer::findEncoding()
{
    if (m_encodingGiven) {
        return {};
    }
    const auto first = m_source.peek();
    if (!first) {
        return first.fault();
    }
    return detectEncoding(m_source, *first);
}

// A source whose first read fails has no data, but the scans still need the zeros at its end.
bool MarkupTokenizer::begin()
{
    m_begun = true;
    bool canRead = m_data || allocate(m_capacity);
    if (canRead) {
        std::memset(m_data.get(), 0, kPadding);
        if (const auto found = findEncoding(); !found) {
            m_pendingError = found.fault().code;
        }
        canRead = !m_pendingError;
    }
    if (!canRead) {
        m_ended = true;
        fail(*m_pendingError);
        return false;
    }
    refill();
    return true;
}

/// Whether the current token and the pinned record may grow further.
bool MarkupTokenizer::isWithinLimits()
{
    if (static_cast<qint64>(m_end - m_keep) > limits::kTokenChars) {
        m_pendingError = MarkupError::NoMemory;
    } else if (m_pin != kNoPin && static_cast<qint64>(m_end - m_pin) > limits::kTreeArenaBytes) {
        m_pendingError = MarkupError::TreeTooLarge;
    }
    return !m_pendingError;
}

/// Discard the bytes before the current token, or before the pinned place.
void MarkupTokenizer::discardRead()
{
    const size_t from = std::min(m_pin, m_keep);
    if (from == 0) {
        return;
    }
    size_t counted = 0;
    if (m_mark < from) {
        counted = std::exchange(m_mark, kNoPin);
        m_discarded.advance(m_data.get(), static_cast<qsizetype>(counted));
        m_markLine = m_discarded.line();
    }
    m_discarded.advance(m_data.get() + counted, static_cast<qsizetype>(from - counted));
    std::memmove(m_data.get(), m_data.get() + from, m_end - from);
    m_end -= from;
    m_pos -= from;
    m_keep -= from;
    m_pin -= m_pin == kNoPin ? 0 : from;
    m_mark -= m_mark == kNoPin ? 0 : from;
}

bool MarkupTokenizer::refill()
{
    if (m_ended) {
        return false;
    }
    discardRead();
    const bool isFull = m_capacity - m_end < static_cast<size_t>(CharSource::kMinRoom);
    if (!isWithinLimits() || (isFull && !allocate(m_capacity * 2))) {
        m_ended = true;
        return false;
    }
    const auto got = m_source.read(
        m_data.get() + m_end, static_cast<qsizetype>(std::min(m_capacity - m_end, kFillBytes)));
    m_end += got ? static_cast<size_t>(*got) : 0;
    std::memset(m_data.get() + m_end, 0, kPadding);
    if (!got) {
        m_pendingError = got.fault().code;
    }
    m_ended = !got || *got == 0;
    return !m_ended;
}

bool MarkupTokenizer::refillAt(const char **at)
{
    m_pos = static_cast<size_t>(*at - m_data.get());
    const bool more = refill();
    *at = m_data.get() + m_pos;
    return more;
}

void MarkupTokenizer::ensure(const char **at, qsizetype n)
{
    while (end() - *at < n && refillAt(at)) {
    }
}

/// The part of skipSpace() for spaces that reach the end of the buffer.
char MarkupTokenizer::skipSpaceSlow(Hold hold)
{
    const char *at = here();
    for (;;) {
        at = skipSpaces(at);
        m_pos = static_cast<size_t>(at - m_data.get());
        if (at != end()) {
            return *at;
        }
        m_keep = hold == Hold::Nothing ? m_pos : m_keep;
        if (!refill()) {
            return 0;
        }
        at = here();
    }
}

Token MarkupTokenizer::fail(MarkupError code)
{
    m_error = isBrokenAt(here()) ? *m_pendingError : code;
    m_text = {};
    return finish(Token::Error);
}

Token MarkupTokenizer::endOfData()
{
    if (isBrokenAt(here())) {
        return fail(*m_pendingError);
    }
    m_text = {};
    return finish(Token::EndOfData);
}

std::u16string_view MarkupTokenizer::text()
{
    const RawText raw = m_data ? rawText() : RawText{};
    m_decoded.resize(raw.size);
    m_decoded.resize(static_cast<size_t>(decode(raw, m_decoded.data())));
    return m_decoded;
}

/// Counts from the start of the buffer, because positions are rarely needed.
LineCounter MarkupTokenizer::positionAt(size_t index) const
{
    LineCounter counter = m_discarded;
    counter.advance(m_data.get(), static_cast<qsizetype>(index));
    return counter;
}

qint64 MarkupTokenizer::discardRest()
{
    ++m_pos; // the NUL
    bool hasData = false;
    qint64 bytes = 0;
    do {
        const char *const from = here();
        bytes += end() - from;
        hasData = hasData || std::any_of(from, end(), [](char c) { return c != 0 && !isSpace(c); });
        m_pos = m_keep = m_end;
    } while (refill());
    return hasData ? bytes : 0;
}

bool MarkupTokenizer::hasBreakSinceMark() const
{
    const auto isBreak = [](char c) { return c == '\n' || c == '\r'; };
    return isMarkKept() ? std::any_of(data() + m_mark, here(), isBreak) : line() > m_markLine;
}

bool MarkupTokenizer::recover()
{
    if (m_token != Token::Error || (m_pendingError && !m_source.skipInvalid())) {
        return false;
    }
    m_ended = m_ended && !m_pendingError;
    m_pendingError.reset();
    m_error = MarkupError::None;
    m_token = Token::None;
    m_text = {};
    m_depth = 0;
    unpin();
    return true;
}

bool MarkupTokenizer::refillSkipped()
{
    while (!refill()) {
        if (!m_pendingError || !m_source.skipInvalid()) {
            return false;
        }
        m_pendingError.reset();
        m_ended = false;
    }
    return true;
}

// Callers test for the numbers 8 and 1; the end of the data is not a token here.
int MarkupTokenizer::skipCharacter()
{
    constexpr int kAtEnd = 1;
    if (!m_begun && !begin()) {
        return static_cast<int>(token());
    }
    m_keep = m_pos;
    if (here() == end() && !refill()) {
        return m_pendingError ? static_cast<int>(fail(*m_pendingError)) : kAtEnd;
    }
    do {
        ++m_pos;
    } while ((*here() & 0xC0) == 0x80);
    return 0;
}

} // namespace corvanta::markup
