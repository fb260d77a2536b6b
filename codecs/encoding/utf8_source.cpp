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
#include <cstring>

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

/// The number of bytes before what is not UTF-8, or not complete.
size_t wellFormed(std::string_view text, Utf8Stop *stop)
{
    return static_cast<size_t>(
        wellFormedUtf8(text.data(), static_cast<qsizetype>(text.size()), stop));
}

/// Whether the text, cut anywhere, is UTF-8.
bool isUtf8(std::string_view text)
{
    Utf8Stop stop = Utf8Stop::End;
    wellFormed(text, &stop);
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

qint64 Utf8Source::readSource(char *buffer, size_t n)
{
    const qint64 got = m_source.read(buffer, static_cast<qint64>(n));
    m_hasFailed = got < 0;
    m_isEnded = got <= 0;
    return got;
}

/// Moves the unread bytes to the front and reads more after them. Returns false at the end.
bool Utf8Source::fill()
{
    m_raw.resize(kRawBytes); // not before: most UTF-8 is never read ahead
    std::memmove(m_raw.data(), m_raw.data() + m_at, m_end - m_at);
    m_end -= m_at;
    m_at = 0;
    if (m_isEnded || m_end == m_raw.size()) {
        return false;
    }
    const qint64 got = readSource(m_raw.data() + m_end, m_raw.size() - m_end);
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

/// Bytes of the source: those read ahead, then the others without a copy.
qint64 Utf8Source::readBytes(char *buffer, size_t n)
{
    const size_t take = std::min(n, m_end - m_at);
    if (take != 0) {
        std::memcpy(buffer, m_raw.data() + m_at, take);
        m_at += take;
        return static_cast<qint64>(take);
    }
    if (m_isEnded) {
        return m_hasFailed ? -1 : 0;
    }
    return readSource(buffer, n);
}

/// Takes back bytes that readBytes() delivered last, and which m_raw has room for.
void Utf8Source::putBack(std::string_view bytes)
{
    if (m_at < m_end) {
        m_at -= bytes.size(); // they are still there
        return;
    }
    m_raw.resize(kRawBytes);
    std::copy(bytes.begin(), bytes.end(), m_raw.begin());
    m_at = 0;
    m_end = bytes.size();
}

/// Reads ASCII, which is the same in all encodings that may be chosen. The first byte that is
/// something else makes the choice.
qint64 Utf8Source::readUndecided(char *buffer, size_t n)
{
    const qint64 got = readBytes(buffer, std::min(n, kRawBytes));
    if (got <= 0) {
        return got;
    }
    const std::string_view bytes(buffer, static_cast<size_t>(got));
    const size_t ascii = findNonAscii(bytes);
    countLines(buffer, buffer + ascii);
    putBack(bytes.substr(ascii));
    if (ascii == 0) {
        chooseFallback();
    }
    return static_cast<qint64>(ascii);
}

qint64 Utf8Source::readUtf8(char *buffer, size_t n)
{
    const qint64 got = readBytes(buffer, n);
    if (got > 0) {
        checkUtf8({buffer, static_cast<size_t>(got)});
    } else {
        m_hasInvalidUtf8 |= !m_cut.empty();
    }
    return got;
}

/// A character that is cut at the end of `bytes` is checked with those that follow.
void Utf8Source::checkUtf8(std::string_view bytes)
{
    constexpr size_t kMissing = 3; // bytes of a character at most
    if (m_hasInvalidUtf8) {
        return;
    }
    Utf8Stop stop = Utf8Stop::End;
    if (!m_cut.empty()) {
        const size_t held = m_cut.size();
        m_cut += bytes.substr(0, kMissing);
        const size_t whole = wellFormed(m_cut, &stop);
        if (whole == 0) {
            m_hasInvalidUtf8 = stop == Utf8Stop::Invalid;
            return;
        }
        bytes.remove_prefix(whole - held);
    }
    const size_t whole = wellFormed(bytes, &stop);
    m_hasInvalidUtf8 = stop == Utf8Stop::Invalid;
    m_cut = bytes.substr(whole);
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

qint64 Utf8Source::readConverted(char *buffer, size_t n)
{
    while (m_ready.empty()) {
        // The bytes before a failure of the source are delivered first.
        if (m_isEnded && m_at == m_end && m_isFlushed) {
            return m_hasFailed ? -1 : 0;
        }
        convert();
        if (m_ready.empty()) {
            fill();
        }
    }
    const size_t take = std::min(m_ready.size(), n);
    std::memcpy(buffer, m_ready.data(), take);
    m_ready.remove_prefix(take);
    return static_cast<qint64>(take);
}

qint64 Utf8Source::read(void *buffer, qint64 n)
{
    if (!m_hasBegun) {
        begin();
    }
    auto *const out = static_cast<char *>(buffer);
    const auto room = static_cast<size_t>(n);
    if (m_isUndecided) {
        const qint64 got = readUndecided(out, room);
        if (m_isUndecided) {
            return got;
        }
    }
    return m_converter.isOpen() ? readConverted(out, room) : readUtf8(out, room);
}

} // namespace corvanta::encoding
