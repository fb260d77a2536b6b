#include "codecs/markup/tokens/tokenizer.h"

#include "base/limits.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace corvanta::markup {

namespace {

/// Zeros behind the data: scans stop at the first and may load a whole block from anywhere.
constexpr size_t kPadding = kReadAhead;
/// Bytes asked for at a time: small enough to stay in the cache until they are parsed.
constexpr size_t kFillBytes = 256 * 1024;

} // namespace

MarkupTokenizer::MarkupTokenizer(ByteSource &source, qint64 bufferChars)
    : m_source(source)
    , m_capacity(static_cast<size_t>(std::max(bufferChars, kMinBufferChars)))
{
}

MarkupTokenizer::~MarkupTokenizer() = default;

bool MarkupTokenizer::setBufferSize(qint64 characters)
{
    if (m_begun) {
        return false;
    }
    m_capacity = static_cast<size_t>(std::max(characters, kMinBufferChars));
    return true;
}

MarkupError MarkupTokenizer::setEncoding(CharMode mode, const QByteArray &name,
                                         InvalidBytes invalid)
{
    m_encodingGiven = true;
    m_pendingError = m_source.setEncoding(mode, name, invalid);
    return m_pendingError;
}

void MarkupTokenizer::restart(ByteSource &source)
{
    m_source.restart(source);
    m_pos = m_keep = m_end = 0;
    m_text = {};
    m_depth = 0;
    m_begun = m_ended = m_encodingGiven = false;
    m_pin = kNoPin;
    m_token = Token::None;
    m_error = m_pendingError = MarkupError::None;
    m_discarded = {};
}

bool MarkupTokenizer::allocate(size_t capacity)
{
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

bool MarkupTokenizer::begin()
{
    m_begun = true;
    if (!m_data && !allocate(m_capacity)) {
        m_ended = true;
        fail(m_pendingError);
        return false;
    }
    std::memset(m_data.get(), 0, kPadding);
    if (!m_encodingGiven) {
        QByteArrayView first;
        m_pendingError = m_source.peek(&first);
        if (m_pendingError == MarkupError::None) {
            m_pendingError = detectEncoding(m_source, first);
        }
    }
    if (m_pendingError != MarkupError::None) {
        m_ended = true;
        fail(m_pendingError);
        return false;
    }
    refill();
    return true;
}

/// Whether a token or record of the present size may grow further.
bool MarkupTokenizer::isWithinLimits()
{
    if (static_cast<qint64>(m_end - m_keep) > limits::kTokenChars) {
        m_pendingError = MarkupError::NoMemory;
    } else if (m_pin != kNoPin && static_cast<qint64>(m_end - m_pin) > limits::kTreeArenaBytes) {
        m_pendingError = MarkupError::TreeTooLarge;
    }
    return m_pendingError == MarkupError::None;
}

bool MarkupTokenizer::refill()
{
    if (m_ended) {
        return false;
    }
    const size_t from = std::min(m_pin, m_keep);
    if (from > 0) {
        m_discarded.advance(m_data.get(), static_cast<qsizetype>(from));
        std::memmove(m_data.get(), m_data.get() + from, m_end - from);
        m_end -= from;
        m_pos -= from;
        m_keep -= from;
        m_pin -= m_pin == kNoPin ? 0 : from;
    }
    const bool isFull = m_capacity - m_end < static_cast<size_t>(CharSource::kMinRoom);
    if (!isWithinLimits() || (isFull && !allocate(m_capacity * 2))) {
        m_ended = true;
        return false;
    }
    const qsizetype got = m_source.read(
        m_data.get() + m_end, static_cast<qsizetype>(std::min(m_capacity - m_end, kFillBytes)));
    m_end += static_cast<size_t>(got);
    std::memset(m_data.get() + m_end, 0, kPadding);
    if (got == 0) {
        m_ended = true;
        m_pendingError = m_source.error();
    }
    return got > 0;
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
    m_error = isBrokenAt(here()) ? m_pendingError : code;
    m_text = {};
    return finish(Token::Error);
}

Token MarkupTokenizer::endOfData()
{
    if (isBrokenAt(here())) {
        return fail(m_pendingError);
    }
    m_text = {};
    return finish(Token::EndOfData);
}

RawText MarkupTokenizer::resolve(TextSpan span) const
{
    if (span.isExternal()) {
        return externalText(span.offset());
    }
    return {m_data.get() + m_keep + span.offset(), span.size(), span.form()};
}

std::u16string_view MarkupTokenizer::text()
{
    const RawText raw = m_data ? rawText() : RawText{};
    m_decoded.resize(raw.size);
    m_decoded.resize(static_cast<size_t>(decode(raw, m_decoded.data())));
    return m_decoded;
}

LineCounter MarkupTokenizer::position() const
{
    LineCounter counter = m_discarded;
    counter.advance(m_data.get(), static_cast<qsizetype>(m_pos));
    return counter;
}

// Kept as required: the numbers 8 and 1, and no token for the end of the data.
int MarkupTokenizer::skipCharacter()
{
    constexpr int kAtEnd = 1;
    if (!m_begun && !begin()) {
        return static_cast<int>(token());
    }
    m_keep = m_pos;
    if (here() == end() && !refill()) {
        return m_pendingError == MarkupError::None ? kAtEnd
                                                   : static_cast<int>(fail(m_pendingError));
    }
    do {
        ++m_pos;
    } while ((*here() & 0xC0) == 0x80);
    return 0;
}

} // namespace corvanta::markup
