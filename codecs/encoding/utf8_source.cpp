// Byte-order marks (The Unicode Standard, section 23.8):
//
//   EF BB BF      UTF-8; passed on, because readers of UTF-8 skip it themselves
//   FF FE         UTF-16LE, unless 00 00 follows: UTF-32LE
//   FE FF         UTF-16BE
//   00 00 FE FF   UTF-32BE
#include "codecs/encoding/utf8_source.h"

#include "base/bytes.h"
#include "base/text/unmarked_utf16.h"
#include "base/utf.h"

#include <algorithm>
#include <cerrno>

namespace corvanta::encoding {

namespace {

using namespace std::string_view_literals;

constexpr size_t kRawBytes = size_t(256) * 1024;
constexpr size_t kProbeBytes = size_t(64) * 1024;
/// Room for the longest result of one character, and for what flushing may add.
constexpr size_t kCharacterBytes = 64;

struct Mark
{
    std::string_view bytes;
    const char *encoding;
};
// UTF-32LE first: its mark begins like that of UTF-16LE.
constexpr Mark kMarks[] = {{"\xFF\xFE\0\0"sv, "UTF-32LE"},
                           {"\0\0\xFE\xFF"sv, "UTF-32BE"},
                           {"\xFF\xFE"sv, "UTF-16LE"},
                           {"\xFE\xFF"sv, "UTF-16BE"}};

/// The index of the first byte that is not ASCII; the size without one.
size_t findNonAscii(std::string_view text)
{
    size_t at = 0;
    for (; at + 8 <= text.size(); at += 8) {
        if ((loadNative<quint64>(text.data() + at) & 0x8080808080808080U) != 0) {
            break;
        }
    }
    while (at < text.size() && static_cast<uchar>(text[at]) < 0x80) {
        ++at;
    }
    return at;
}

/// Whether the text, cut anywhere, is UTF-8.
bool isUtf8(std::string_view text)
{
    Utf8Stop stop = Utf8Stop::End;
    wellFormedUtf8(text.data(), static_cast<qsizetype>(text.size()), &stop);
    return stop != Utf8Stop::Invalid;
}

/// Bytes of the smallest part that characters of an encoding consist of.
size_t unitBytesOf(const QByteArray &encoding)
{
    const QByteArray upper = encoding.toUpper();
    if (upper.startsWith("UTF-16") || upper.startsWith("UTF16") || upper.startsWith("UCS-2")) {
        return 2;
    }
    const bool isWide =
        upper.startsWith("UTF-32") || upper.startsWith("UTF32") || upper.startsWith("UCS-4");
    return isWide ? 4 : 1;
}

bool isNameOfUtf8(const QByteArray &encoding)
{
    return encoding.compare("UTF-8", Qt::CaseInsensitive) == 0 ||
           encoding.compare("UTF8", Qt::CaseInsensitive) == 0;
}

} // namespace

bool Utf8Source::isAuto(const QByteArray &encoding)
{
    return encoding.compare("auto", Qt::CaseInsensitive) == 0;
}

Utf8Source::Utf8Source(ByteSource &source, QByteArray encoding, QByteArray fallback)
    : m_source(source)
    , m_encoding(std::move(encoding))
    , m_fallback(std::move(fallback))
    , m_isUndecided(isAuto(m_encoding))
    , m_raw(kRawBytes)
{
    if (m_isUndecided) {
        m_encoding = "UTF-8";
    } else if (!isNameOfUtf8(m_encoding)) {
        m_isKnown = openConverter(m_encoding);
    }
}

bool Utf8Source::openConverter(const QByteArray &encoding)
{
    IconvHandle converter("UTF-8", encoding);
    if (!converter.isOpen()) {
        return false;
    }
    m_encoding = encoding;
    m_converter = std::move(converter);
    m_unitBytes = unitBytesOf(encoding);
    m_text.resize(kRawBytes);
    return true;
}

/// Moves the unread bytes to the front and reads more after them. Returns false at the end.
bool Utf8Source::fill()
{
    std::memmove(m_raw.data(), m_raw.data() + m_at, m_end - m_at);
    m_end -= m_at;
    m_at = 0;
    if (m_isEnded || m_end == m_raw.size()) {
        return false;
    }
    const qint64 got =
        m_source.read(m_raw.data() + m_end, static_cast<qint64>(m_raw.size() - m_end));
    m_hasFailed = got < 0;
    m_isEnded = got <= 0;
    m_end += static_cast<size_t>(std::max<qint64>(got, 0));
    return !m_isEnded;
}

/// Reads until kProbeBytes are unread or the text ends.
void Utf8Source::fillProbe()
{
    while (m_end - m_at < kProbeBytes && fill()) {
    }
}

void Utf8Source::findEncoding()
{
    fillProbe();
    const std::string_view probe = unread().substr(0, kProbeBytes);
    if (probe.starts_with("\xEF\xBB\xBF")) {
        m_isUndecided = false;
        return;
    }
    const auto *const mark =
        std::find_if(std::begin(kMarks), std::end(kMarks),
                     [&](const Mark &one) { return probe.starts_with(one.bytes); });
    if (mark != std::end(kMarks)) {
        m_at += mark->bytes.size();
        openConverter(mark->encoding);
    } else if (const char *const utf16 = unmarkedUtf16(probe)) {
        m_isAssumed = openConverter(utf16);
    }
    m_isUndecided = !m_converter.isOpen();
}

/// The first byte that is not ASCII is the next one: whether it begins UTF-8 or not.
void Utf8Source::chooseFallback()
{
    fillProbe();
    m_isUndecided = false;
    if (!isUtf8(unread().substr(0, kProbeBytes)) && !m_hasFailed) {
        m_isAssumed = openConverter(m_fallback);
    }
}

void Utf8Source::pass(size_t n)
{
    m_ready = unread().substr(0, n);
    m_at += n;
}

/// A character that is not complete yet is held back, so that it is checked as a whole.
void Utf8Source::prepareUtf8()
{
    if (m_isUndecided) {
        const size_t ascii = findNonAscii(unread());
        if (ascii == 0 && m_at < m_end) {
            chooseFallback();
            return;
        }
        pass(ascii);
        countLines(m_ready.data(), m_ready.data() + m_ready.size());
        return;
    }
    size_t checked = 0;
    const std::string_view bytes = unread();
    while (checked < bytes.size()) {
        Utf8Stop stop = Utf8Stop::End;
        checked += static_cast<size_t>(wellFormedUtf8(
            bytes.data() + checked, static_cast<qsizetype>(bytes.size() - checked), &stop));
        if (stop == Utf8Stop::End || (stop == Utf8Stop::Truncated && !m_isEnded)) {
            break;
        }
        m_hasInvalidUtf8 = true;
        ++checked;
    }
    pass(checked);
}

/// Counts the lines before the first replacement, whose place is its line.
void Utf8Source::countLines(const char *begin, const char *end)
{
    if (!m_replaced.any()) {
        m_lines += std::count(begin, end, '\n');
    }
}

/// Replaces `n` bytes that are not a character.
void Utf8Source::replace(size_t n, char **out)
{
    m_at += n;
    m_replaced.add(static_cast<qint64>(n),
                   [&] { return QStringLiteral("line %1").arg(m_lines + 1); });
    *out = putUtf8(kReplacementCharacter, *out);
}

/// Converts the unread bytes until they or the room end.
void Utf8Source::convert()
{
    char *out = m_text.data();
    char *const end = m_text.data() + m_text.size() - kCharacterBytes;
    while (m_at < m_end && out < end) {
        const char *in = m_raw.data() + m_at;
        size_t inLeft = m_end - m_at;
        auto room = static_cast<size_t>(end - out);
        const char *const begin = out;
        const int error = m_converter.convert(&in, &inLeft, &out, &room);
        m_at = m_end - inLeft;
        countLines(begin, out);
        const bool isCut = error == EINVAL && !m_isEnded;
        if (isCut || error == E2BIG) {
            break;
        }
        if (error != 0) {
            replace(std::min(inLeft, error == EINVAL ? inLeft : m_unitBytes), &out);
        }
    }
    if (m_at == m_end && m_isEnded && !m_isFlushed) {
        m_isFlushed = true; // some encodings hold a letter back, to join it with an accent
        auto room = static_cast<size_t>(m_text.data() + m_text.size() - out);
        m_converter.finish(&out, &room);
    }
    m_ready = {m_text.data(), static_cast<size_t>(out - m_text.data())};
}

void Utf8Source::begin()
{
    m_hasBegun = true;
    if (m_isUndecided) {
        findEncoding();
    }
}

qint64 Utf8Source::read(void *buffer, qint64 n)
{
    if (!m_hasBegun) {
        begin();
    }
    while (m_ready.empty()) {
        // The bytes before a failure of the source are delivered first.
        const bool isDone = m_isEnded && m_at == m_end && (m_isFlushed || !m_converter.isOpen());
        if (isDone) {
            return m_hasFailed ? -1 : 0;
        }
        m_converter.isOpen() ? convert() : prepareUtf8();
        if (m_ready.empty()) {
            fill();
        }
    }
    const size_t take = std::min(m_ready.size(), static_cast<size_t>(n));
    std::memcpy(buffer, m_ready.data(), take);
    m_ready.remove_prefix(take);
    return static_cast<qint64>(take);
}

} // namespace corvanta::encoding
