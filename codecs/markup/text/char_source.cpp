// Byte order marks (The Unicode Standard, section 23.8) and units of the encodings that are
// converted here; all others are iconv's:
//
//     encoding    mark         one character
//     UTF-8       EF BB BF     1 to 4 bytes
//     UTF-16LE    FF FE        2 bytes, low byte first; beyond U+FFFF two units (surrogates)
//     UTF-16BE    FE FF        the same, high byte first
//     UTF-32LE    FF FE 00 00  4 bytes, low byte first
//     UTF-32BE    00 00 FE FF  4 bytes, high byte first
#include "codecs/markup/text/char_source.h"

#include "base/bytes.h"
#include "base/utf.h"

#include <QChar>

#include <algorithm>
#include <cerrno>

namespace corvanta::markup {

namespace {

const char *iconvName(CharMode mode, const QByteArray &name)
{
    switch (mode) {
    case CharMode::ShiftJis:
        return "CP932";
    case CharMode::Gb2312:
        // Documents that declare GB2312 also have the characters that its successors added.
        return "GB18030";
    case CharMode::Big5:
        return "BIG5";
    case CharMode::Gbk:
        return "GBK";
    default:
        // Documents that declare Shift_JIS come from Windows. iconv's own Shift_JIS lacks half of
        // their characters and turns every backslash into a yen sign.
        return name.compare("shift_jis", Qt::CaseInsensitive) == 0 ? "CP932" : name.constData();
    }
}

/// Whether two bytes of UTF-16 are the first half of a pair.
bool isHighSurrogate(const char *bytes, bool bigEndian)
{
    const auto unit = bigEndian ? loadBE<quint16>(bytes) : loadLE<quint16>(bytes);
    return QChar::isHighSurrogate(unit);
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
    m_raw.resize(static_cast<size_t>(kGuessBytes)); // putBack() may have enlarged it
    m_rawAt = m_rawEnd = 0;
    m_sourceEnded = m_bigEndian = m_orderIsKnown = m_discard = m_discarded = false;
    m_mode = CharMode::Utf8;
    m_error.reset();
    m_converter = {};
}

/// The failure to report now. A source fails after the bytes that it delivered, so its failure
/// waits until they are read.
Result<void, MarkupError> CharSource::status() const
{
    const bool isLater = m_error == MarkupError::CannotRead && rawLeft() > 0;
    return m_error && !isLater ? Fault{*m_error} : Result<void, MarkupError>();
}

/// Read up to `n` bytes; returns how many, 0 at the end and after a failure.
qint64 CharSource::readSource(char *out, qsizetype n)
{
    const qint64 got = m_source->read(out, n);
    m_sourceEnded = got <= 0;
    if (got < 0) {
        m_error = MarkupError::CannotRead;
    }
    return std::max<qint64>(got, 0);
}

/// Move the unread bytes to the start of m_raw and read more after them; false at the end and after
/// a failure.
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
        readSource(m_raw.data() + m_rawEnd, static_cast<qsizetype>(m_raw.size() - m_rawEnd));
    m_rawEnd += static_cast<size_t>(got);
    return got > 0;
}

/// Count bytes that are not a character as dropped; false, with the error set, when they must not
/// be dropped.
bool CharSource::dropInvalid()
{
    if (m_discard) {
        m_discarded = true;
    } else {
        m_error = MarkupError::CannotConvert;
    }
    return m_discard;
}

/// Drop the bytes at the end that are only a part of a character. After a failure of the source
/// they are not invalid.
void CharSource::dropTruncatedEnd()
{
    const bool isInvalid = rawLeft() > 0 && !m_error;
    m_rawAt = m_rawEnd;
    if (isInvalid) {
        dropInvalid();
    }
}

Result<QByteArrayView, MarkupError> CharSource::peek()
{
    while (fillRaw()) {
    }
    if (const auto good = status(); !good) {
        return good.fault();
    }
    return QByteArrayView(rawAt(), rawLeft());
}

Result<void, MarkupError> CharSource::setEncoding(CharMode mode, const QByteArray &name,
                                                  InvalidBytes invalid)
{
    m_mode = mode;
    m_discard = invalid == InvalidBytes::Discard;
    const bool isWide = mode == CharMode::CodePage && isWideName(name);
    while (rawLeft() < 4 && fillRaw()) {
    }
    skipMark();
    if (isWide || mode == CharMode::Utf8 || mode == CharMode::Utf16 || mode == CharMode::Utf32) {
        return status();
    }
    m_converter = encoding::IconvHandle("UTF-8", iconvName(mode, name));
    if (!m_converter.isOpen()) {
        m_error = MarkupError::CannotConvert;
        return Fault{*m_error};
    }
    return status();
}

/// Recognize the names of UTF-16 and UTF-32 with a byte order, because iconv is much slower.
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

/// Drop the byte-order mark and find the byte order.
void CharSource::skipMark()
{
    const QByteArrayView bytes(rawAt(), rawLeft());
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

/// Without a mark, a zero in the first byte means big-endian, because documents begin with ASCII.
void CharSource::findByteOrder(QByteArrayView bytes)
{
    if (!m_orderIsKnown) {
        m_bigEndian = bytes.startsWith("\xFE\xFF") || (!bytes.isEmpty() && bytes[0] == 0);
    }
}

Result<qsizetype, MarkupError> CharSource::read(char *out, qsizetype room)
{
    if (const auto good = status(); !good) {
        return good.fault();
    }
    const auto readMode = m_mode == CharMode::Utf8    ? &CharSource::readUtf8
                          : m_mode == CharMode::Utf16 ? &CharSource::readUtf16
                          : m_mode == CharMode::Utf32 ? &CharSource::readUtf32
                                                      : &CharSource::readCodePage;
    const qsizetype n = (this->*readMode)(out, room);
    if (n == 0 && m_error) {
        return Fault{*m_error};
    }
    return n;
}

qsizetype CharSource::readUtf8(char *out, qsizetype room)
{
    // First the bytes that peek() read or the last call put back, then bytes of the source. It is
    // not read again before the buffered bytes are delivered: a read may advance it to another
    // row.
    for (bool asks = rawLeft() == 0;; asks = true) {
        qsizetype n = std::min(rawLeft(), room);
        std::copy_n(rawAt(), n, out);
        m_rawAt += static_cast<size_t>(n);
        if (asks && !m_sourceEnded && n < room) {
            n += readSource(out + n, room - n);
        }
        const bool atEnd = m_sourceEnded && rawLeft() == 0;
        const qsizetype kept = keepWellFormed(out, n);
        if (kept > 0 || atEnd || m_error) {
            return kept;
        }
    }
}

/// Check `n` new bytes at `out`; returns how many remain. A truncated sequence at their end is put
/// back; an invalid one is an error, or is dropped.
qsizetype CharSource::keepWellFormed(char *out, qsizetype n)
{
    qsizetype good = 0;
    for (qsizetype at = 0; at < n;) {
        Utf8Stop stop = Utf8Stop::End;
        const qsizetype run = wellFormedUtf8(out + at, n - at, &stop);
        if (good != at) {
            std::copy_n(out + at, run, out + good);
        }
        good += run;
        at += run;
        if (stop == Utf8Stop::Truncated && !(m_sourceEnded && rawLeft() == 0)) {
            putBack(out + at, n - at);
            return good;
        }
        if (stop != Utf8Stop::End) {
            const bool endsHere = !m_discard && m_error; // the source failed inside the sequence
            if (endsHere || !dropInvalid()) {
                putBack(out + at, n - at);
                return good;
            }
            ++at;
        }
    }
    return good;
}

bool CharSource::skipInvalid()
{
    const bool isSkipped =
        m_mode == CharMode::Utf8 && m_error == MarkupError::CannotConvert && rawLeft() > 0;
    if (isSkipped) {
        m_error.reset();
        ++m_rawAt;
    }
    return isSkipped;
}

/// Put `n` bytes before the unread ones. They came out of m_raw, or it is empty.
void CharSource::putBack(const char *bytes, qsizetype n)
{
    if (rawLeft() == 0) {
        m_raw.resize(std::max(m_raw.size(), static_cast<size_t>(n)));
        m_rawAt = m_rawEnd = static_cast<size_t>(n);
    }
    m_rawAt -= static_cast<size_t>(n);
    std::copy_n(bytes, n, rawAt());
}

/// UTF-16 units, at most `most`, that can be converted: not the first half of a pair whose second
/// half is not yet read.
qsizetype CharSource::completeUnits(qsizetype most) const
{
    const qsizetype all = rawLeft() / 2;
    const qsizetype n = std::min(all, most);
    const bool isWhole = n == 0 || (m_sourceEnded && n == all);
    return isWhole || !isHighSurrogate(rawAt() + 2 * (n - 1), m_bigEndian) ? n : n - 1;
}

qsizetype CharSource::readUtf16(char *out, qsizetype room)
{
    char *at = out;
    while (out + room - at >= 2 * kUtf8BytesPerUnit) {
        const qsizetype n = completeUnits((out + room - at) / kUtf8BytesPerUnit);
        if (n == 0) {
            // Once the end is known, the first half of a pair is complete.
            if (fillRaw() || rawLeft() >= 2) {
                continue;
            }
            dropTruncatedEnd();
            break;
        }
        auto *const units = reinterpret_cast<char16_t *>(rawAt()); // m_rawAt is even in UTF-16
        if (m_bigEndian) {
            qFromBigEndian<quint16>(units, n, units);
        }
        at += utf16ToUtf8(units, n, at);
        m_rawAt += static_cast<size_t>(2 * n);
    }
    return at - out;
}

qsizetype CharSource::readUtf32(char *out, qsizetype room)
{
    char *at = out;
    while (out + room - at >= 4) {
        if (rawLeft() < 4) {
            if (fillRaw()) {
                continue;
            }
            dropTruncatedEnd();
            break;
        }
        const char32_t c = m_bigEndian ? loadBE<quint32>(rawAt()) : loadLE<quint32>(rawAt());
        m_rawAt += 4;
        if (c <= QChar::LastValidCodePoint && !QChar::isSurrogate(c)) {
            at = putUtf8(c, at);
        } else if (!dropInvalid()) {
            break;
        }
    }
    return at - out;
}

/// Run iconv on the buffered bytes; returns its errno, or 0.
int CharSource::runIconv(char **out, size_t *room)
{
    const char *in = rawAt();
    auto inLeft = static_cast<size_t>(rawLeft());
    const int reason = m_converter.convert(&in, &inLeft, out, room);
    m_rawAt = m_rawEnd - inLeft;
    return reason;
}

qsizetype CharSource::readCodePage(char *out, qsizetype room)
{
    char *at = out;
    auto left = static_cast<size_t>(room);
    for (;;) {
        const int reason = runIconv(&at, &left);
        if (reason == E2BIG || (reason == EILSEQ && !dropInvalid())) {
            return at - out;
        }
        if (reason == EILSEQ) {
            ++m_rawAt;
            continue;
        }
        if (!fillRaw()) {
            // Some encodings keep a letter back, to join it with an accent that may follow.
            m_converter.finish(&at, &left);
            dropTruncatedEnd();
            return at - out;
        }
        if (at != out) {
            return at - out;
        }
    }
}

} // namespace corvanta::markup
