#include "codecs/markup/text/char_source.h"

#include "base/bytes.h"

#include <emmintrin.h>

#include <algorithm>
#include <cerrno>

namespace corvanta::markup {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isContinuation(uchar byte)
{
    return (byte & 0xC0) == 0x80;
}

/// Bytes of ASCII at the front of `in`.
qsizetype asciiPrefix(const char *in, qsizetype n)
{
    qsizetype i = 0;
    for (; i + 16 <= n; i += 16) {
        const int mask =
            _mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(in + i)));
        if (mask != 0) {
            return i + __builtin_ctz(static_cast<unsigned>(mask));
        }
    }
    while (i < n && static_cast<uchar>(in[i]) < 0x80) {
        ++i;
    }
    return i;
}

enum class Sequence : quint8 { Good, Cut, Bad };

/// Look at one sequence that does not begin with ASCII (Unicode standard, table 3-7). `*length` is
/// what a good one takes.
Sequence checkSequence(const uchar *in, qsizetype n, int *length)
{
    const uchar lead = in[0];
    if (lead < 0xC2 || lead > 0xF4) {
        return Sequence::Bad;
    }
    *length = lead < 0xE0 ? 2 : (lead < 0xF0 ? 3 : 4);
    if (n >= 2) {
        const uchar second = in[1];
        const bool tooLow = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
        const bool tooHigh = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
        if (!isContinuation(second) || tooLow || tooHigh) {
            return Sequence::Bad;
        }
    }
    for (int i = 2; i < *length && i < n; ++i) {
        if (!isContinuation(in[i])) {
            return Sequence::Bad;
        }
    }
    return n < *length ? Sequence::Cut : Sequence::Good;
}

/// Bytes at the front of `in` that are whole characters; `*stop` says what comes then.
qsizetype wellFormedPrefix(const char *in, qsizetype n, Sequence *stop)
{
    const auto *const bytes = reinterpret_cast<const uchar *>(in);
    *stop = Sequence::Good;
    qsizetype i = 0;
    while (i < n) {
        i += asciiPrefix(in + i, n - i);
        while (i < n && bytes[i] >= 0x80) {
            int length = 0;
            *stop = checkSequence(bytes + i, n - i, &length);
            if (*stop != Sequence::Good) {
                return i;
            }
            i += length;
        }
    }
    return i;
}

char *putUtf8(char32_t c, char *out)
{
    if (c < 0x80) {
        *out++ = static_cast<char>(c);
    } else if (c < 0x800) {
        *out++ = static_cast<char>(0xC0 | c >> 6);
        *out++ = static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        *out++ = static_cast<char>(0xE0 | c >> 12);
        *out++ = static_cast<char>(0x80 | (c >> 6 & 0x3F));
        *out++ = static_cast<char>(0x80 | (c & 0x3F));
    } else {
        *out++ = static_cast<char>(0xF0 | c >> 18);
        *out++ = static_cast<char>(0x80 | (c >> 12 & 0x3F));
        *out++ = static_cast<char>(0x80 | (c >> 6 & 0x3F));
        *out++ = static_cast<char>(0x80 | (c & 0x3F));
    }
    return out;
}

const char *iconvName(CharMode mode, const QByteArray &name)
{
    switch (mode) {
    case CharMode::ShiftJis:
        return "CP932";
    case CharMode::Gb2312:
        return "GB2312";
    case CharMode::Big5:
        return "BIG5";
    case CharMode::Gbk:
        return "GBK";
    default:
        // What declares itself so comes from Windows: iconv's own Shift_JIS has no room for half of
        // it and makes a yen sign of every backslash.
        return name.compare("shift_jis", Qt::CaseInsensitive) == 0 ? "CP932" : name.constData();
    }
}

} // namespace

CharSource::CharSource(ByteSource &source)
    : m_source(&source)
    , m_raw(static_cast<size_t>(kGuessBytes))
{
}

CharSource::~CharSource() = default;

void CharSource::restart(ByteSource &source)
{
    m_source = &source;
    m_rawAt = m_rawEnd = 0;
    m_sourceEnded = m_bigEndian = m_orderIsKnown = m_discard = m_discarded = false;
    m_mode = CharMode::Utf8;
    m_error = MarkupError::None;
    m_iconv.reset();
}

qsizetype CharSource::fail(MarkupError error, qsizetype delivered)
{
    m_error = error;
    return delivered;
}

/// A source that fails does so behind the bytes that it gave.
MarkupError CharSource::errorAtHand() const
{
    return m_error == MarkupError::CannotRead && rawLeft() > 0 ? MarkupError::None : m_error;
}

/// Move what is left to the front and read more behind it; false at the end and after a failure.
bool CharSource::fillRaw()
{
    std::copy(m_raw.begin() + static_cast<qsizetype>(m_rawAt),
              m_raw.begin() + static_cast<qsizetype>(m_rawEnd), m_raw.begin());
    m_rawEnd -= m_rawAt;
    m_rawAt = 0;
    if (m_sourceEnded || m_rawEnd == m_raw.size()) {
        return false;
    }
    const qint64 got =
        m_source->read(m_raw.data() + m_rawEnd, static_cast<qint64>(m_raw.size() - m_rawEnd));
    m_sourceEnded = got <= 0;
    if (got < 0) {
        m_error = MarkupError::CannotRead;
    }
    m_rawEnd += static_cast<size_t>(std::max<qint64>(got, 0));
    return got > 0;
}

MarkupError CharSource::peek(QByteArrayView *first)
{
    while (fillRaw()) {
    }
    *first = QByteArrayView(m_raw.data() + m_rawAt, rawLeft());
    return errorAtHand();
}

MarkupError CharSource::setEncoding(CharMode mode, const QByteArray &name, InvalidBytes invalid)
{
    m_mode = mode;
    m_discard = invalid == InvalidBytes::Discard;
    const bool isWide = mode == CharMode::CodePage && isWideName(name);
    while (rawLeft() < 4 && fillRaw()) {
    }
    skipMark();
    if (isWide || mode == CharMode::Utf8 || mode == CharMode::Utf16 || mode == CharMode::Utf32) {
        return errorAtHand();
    }
    const iconv_t handle = iconv_open("UTF-8", iconvName(mode, name));
    if (handle == reinterpret_cast<iconv_t>(-1)) {
        m_error = MarkupError::CannotConvert;
        return m_error;
    }
    m_iconv.reset(handle);
    return errorAtHand();
}

/// Take the names of UTF-16 and UTF-32 with a byte order for what they are: iconv is much slower.
bool CharSource::isWideName(const QByteArray &name)
{
    const QByteArray lower = name.toLower();
    const bool is16 = lower == "utf-16le" || lower == "utf-16be";
    const bool is32 = lower == "utf-32le" || lower == "utf-32be";
    if (is16 || is32) {
        m_mode = is16 ? CharMode::Utf16 : CharMode::Utf32;
        m_bigEndian = lower.endsWith("be");
        m_orderIsKnown = true;
    }
    return is16 || is32;
}

/// Drop the byte-order mark and learn the byte order.
void CharSource::skipMark()
{
    const QByteArrayView bytes(m_raw.data() + m_rawAt, rawLeft());
    const auto startsWithEither = [&](QByteArrayView little, QByteArrayView big) {
        return bytes.startsWith(little) || bytes.startsWith(big);
    };
    if (m_mode == CharMode::Utf8) {
        m_rawAt += bytes.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    } else if (m_mode == CharMode::Utf16) {
        findByteOrder(bytes);
        m_rawAt += startsWithEither("\xFF\xFE", "\xFE\xFF") ? 2 : 0;
    } else if (m_mode == CharMode::Utf32) {
        findByteOrder(bytes);
        m_rawAt += startsWithEither({"\xFF\xFE\0\0", 4}, {"\0\0\xFE\xFF", 4}) ? 4 : 0;
    }
}

/// Without a mark a zero at the low address says big-endian, because documents begin with ASCII.
void CharSource::findByteOrder(QByteArrayView bytes)
{
    if (!m_orderIsKnown) {
        m_bigEndian = bytes.startsWith("\xFE\xFF") || (!bytes.isEmpty() && bytes[0] == 0);
    }
}

qsizetype CharSource::read(char *out, qsizetype room)
{
    if (errorAtHand() != MarkupError::None) {
        return 0;
    }
    switch (m_mode) {
    case CharMode::Utf8:
        return readUtf8(out, room);
    case CharMode::Utf16:
    case CharMode::Utf32:
        return readWide(out, room);
    default:
        return readCodePage(out, room);
    }
}

qsizetype CharSource::readUtf8(char *out, qsizetype room)
{
    // First what peek() read or the last call kept, then straight from the source: it is not asked
    // for more before what it gave was delivered, because it may go on in another row by then.
    for (bool asks = rawLeft() == 0;; asks = true) {
        qsizetype n = std::min(rawLeft(), room);
        std::copy_n(m_raw.data() + m_rawAt, n, out);
        m_rawAt += static_cast<size_t>(n);
        if (asks && !m_sourceEnded && n < room) {
            const qint64 got = m_source->read(out + n, room - n);
            m_sourceEnded = got <= 0;
            if (got < 0) {
                m_error = MarkupError::CannotRead;
            }
            n += std::max<qint64>(got, 0);
        }
        const bool atEnd = m_sourceEnded && rawLeft() == 0;
        const qsizetype kept = keepWellFormed(out, n);
        if (kept > 0 || atEnd || m_error != MarkupError::None) {
            return kept;
        }
    }
}

/// Check `n` new bytes at `out`. A sequence that is cut goes back into m_raw; one that is wrong is
/// an error, or is dropped.
qsizetype CharSource::keepWellFormed(char *out, qsizetype n)
{
    qsizetype good = 0;
    for (qsizetype at = 0; at < n;) {
        Sequence stop = Sequence::Good;
        const qsizetype run = wellFormedPrefix(out + at, n - at, &stop);
        if (good != at) {
            std::copy_n(out + at, run, out + good);
        }
        good += run;
        at += run;
        if (stop == Sequence::Cut && !(m_sourceEnded && rawLeft() == 0)) {
            // The kept bytes lie before what m_raw still holds.
            const auto cut = static_cast<size_t>(n - at);
            if (rawLeft() == 0) {
                m_rawAt = m_rawEnd = cut;
            }
            m_rawAt -= cut;
            std::copy_n(out + at, cut, m_raw.data() + m_rawAt);
            return good;
        }
        if (stop != Sequence::Good) {
            if (!m_discard) {
                return m_error == MarkupError::None ? fail(MarkupError::CannotConvert, good) : good;
            }
            m_discarded = true;
            ++at;
        }
    }
    return good;
}

/// The character at m_rawAt, of `unitBytes` bytes a unit; *taken is 0 when more bytes are needed.
char32_t CharSource::nextWide(qsizetype unitBytes, qsizetype *taken) const
{
    const char *const at = m_raw.data() + m_rawAt;
    *taken = rawLeft() >= unitBytes ? unitBytes : 0;
    if (*taken == 0) {
        return 0;
    }
    if (unitBytes == 4) {
        const quint32 c = m_bigEndian ? loadBE<quint32>(at) : loadLE<quint32>(at);
        return c;
    }
    const auto unit = [&](qsizetype i) {
        return m_bigEndian ? loadBE<quint16>(at + i * 2) : loadLE<quint16>(at + i * 2);
    };
    const char32_t first = unit(0);
    if ((first & 0xFC00) != 0xD800) {
        return (first & 0xFC00) == 0xDC00 ? kReplacement : first;
    }
    if (rawLeft() < 4) {
        *taken = m_sourceEnded ? 2 : 0;
        return kReplacement;
    }
    if ((unit(1) & 0xFC00) != 0xDC00) {
        return kReplacement;
    }
    *taken = 4;
    return 0x10000 + ((first & 0x3FF) << 10) + (unit(1) & 0x3FFU);
}

/// Take ASCII in UTF-16 eight units at a time, up to the first eight that hold something else.
char *CharSource::takeAsciiUnits(char *out, const char *stop)
{
    constexpr qsizetype kUnits = 8;
    const __m128i notAscii = _mm_set1_epi16(static_cast<short>(0xFF80));
    while (stop - out >= kUnits && rawLeft() >= kUnits * 2) {
        __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(m_raw.data() + m_rawAt));
        if (m_bigEndian) {
            units = _mm_or_si128(_mm_slli_epi16(units, 8), _mm_srli_epi16(units, 8));
        }
        const __m128i high = _mm_cmpeq_epi16(_mm_and_si128(units, notAscii), _mm_setzero_si128());
        if (_mm_movemask_epi8(high) != 0xFFFF) {
            break;
        }
        _mm_storel_epi64(reinterpret_cast<__m128i *>(out), _mm_packus_epi16(units, units));
        out += kUnits;
        m_rawAt += kUnits * 2;
    }
    return out;
}

/// UTF-16 and UTF-32. A lone surrogate becomes U+FFFD; a number that is no character or a cut unit
/// at the end is an error, or is dropped.
qsizetype CharSource::readWide(char *out, qsizetype room)
{
    const qsizetype unitBytes = m_mode == CharMode::Utf16 ? 2 : 4;
    char *at = out;
    while (out + room - at >= 4) {
        at = unitBytes == 2 ? takeAsciiUnits(at, out + room - 4) : at;
        qsizetype taken = 0;
        const char32_t c = nextWide(unitBytes, &taken);
        if (taken == 0) {
            if (fillRaw()) {
                continue;
            }
            const bool cut = rawLeft() > 0 && m_error == MarkupError::None;
            m_discarded = m_discarded || (cut && m_discard);
            m_rawAt = m_rawEnd;
            return cut && !m_discard ? fail(MarkupError::CannotConvert, at - out) : at - out;
        }
        m_rawAt += static_cast<size_t>(taken);
        if (c > 0x10FFFF || (c & 0xFFFFF800) == 0xD800) {
            if (!m_discard) {
                return fail(MarkupError::CannotConvert, at - out);
            }
            m_discarded = true;
            continue;
        }
        at = putUtf8(c, at);
    }
    return at - out;
}

qsizetype CharSource::readCodePage(char *out, qsizetype room)
{
    char *at = out;
    auto left = static_cast<size_t>(room);
    for (;;) {
        char *in = m_raw.data() + m_rawAt;
        auto inLeft = static_cast<size_t>(rawLeft());
        const size_t status = iconv(m_iconv.get(), &in, &inLeft, &at, &left);
        const int reason = status == static_cast<size_t>(-1) ? errno : 0;
        m_rawAt = m_rawEnd - inLeft;
        if (reason == E2BIG) {
            return at - out;
        }
        if (reason == EILSEQ) {
            if (!m_discard) {
                return fail(MarkupError::CannotConvert, at - out);
            }
            m_discarded = true;
            ++m_rawAt;
            continue;
        }
        if (!fillRaw()) {
            // Some encodings keep a letter back, to join it with an accent that may follow.
            iconv(m_iconv.get(), nullptr, nullptr, &at, &left);
            const bool cut = rawLeft() > 0 && m_error == MarkupError::None;
            m_rawAt = m_rawEnd;
            m_discarded = m_discarded || (cut && m_discard);
            return cut && !m_discard ? fail(MarkupError::CannotConvert, at - out) : at - out;
        }
        if (at != out) {
            return at - out;
        }
    }
}

} // namespace corvanta::markup
