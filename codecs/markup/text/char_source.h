// codecs/markup/text/char_source.h
// The characters of a document, as well-formed UTF-8, whatever encoding its bytes are in.
//
// UTF-8 passes through after a check; UTF-16 and UTF-32 of both byte orders and everything that
// iconv knows are converted. A byte-order mark at the start is dropped. Where the bytes are cut
// into reads does not show in what comes out.
#pragma once
#include "base/byte_source.h"
#include "codecs/markup/text/encoding.h"
#include "codecs/markup/text/error.h"

#include <iconv.h>

#include <memory>
#include <vector>

namespace corvanta::markup {

/// What to do with bytes that are no character.
enum class InvalidBytes : quint8 { Fail, Discard };

/// Threads: one at a time.
class CharSource
{
public:
    /// Read from the current position of `source`, which must outlive this object.
    explicit CharSource(ByteSource &source);
    ~CharSource();
    CharSource(const CharSource &) = delete;
    CharSource &operator=(const CharSource &) = delete;

    /// Go on with another document; the memory is kept.
    void restart(ByteSource &source);

    /// The first kGuessBytes of the document, or all of a shorter one; they are not consumed.
    /// Errors: CannotRead.
    MarkupError peek(QByteArrayView *first);

    /// Say how the bytes are encoded, before the first read(). `name` is used by CodePage:
    /// "UTF-16LE" and its like are UTF-16 and UTF-32 of that byte order, everything else is left to
    /// iconv. Errors: CannotConvert for a name that iconv does not know.
    MarkupError setEncoding(CharMode mode, const QByteArray &name, InvalidBytes invalid);

    /// Put up to `room` bytes of UTF-8 (at least kMinRoom must be offered) at `out`: the count, 0
    /// at the end or at a failure, which error() tells apart. Bytes before the failure were
    /// delivered.
    qsizetype read(char *out, qsizetype room);

    MarkupError error() const { return m_error; }

    /// True when bytes were dropped that are no character (InvalidBytes::Discard).
    bool hasDiscarded() const { return m_discarded; }

    static constexpr qsizetype kMinRoom = 64;

private:
    struct CloseIconv
    {
        using pointer = iconv_t;
        void operator()(iconv_t handle) const { iconv_close(handle); }
    };

    MarkupError errorAtHand() const;
    bool fillRaw();
    qsizetype readUtf8(char *out, qsizetype room);
    qsizetype keepWellFormed(char *out, qsizetype n);
    qsizetype readWide(char *out, qsizetype room);
    char *takeAsciiUnits(char *out, const char *stop);
    qsizetype readCodePage(char *out, qsizetype room);
    char32_t nextWide(qsizetype unitBytes, qsizetype *taken) const;
    bool isWideName(const QByteArray &name);
    void skipMark();
    void findByteOrder(QByteArrayView bytes);
    qsizetype fail(MarkupError error, qsizetype delivered);
    qsizetype rawLeft() const { return static_cast<qsizetype>(m_rawEnd - m_rawAt); }

    ByteSource *m_source;
    std::vector<char> m_raw;
    size_t m_rawAt = 0;
    size_t m_rawEnd = 0;
    bool m_sourceEnded = false;
    CharMode m_mode = CharMode::Utf8;
    bool m_bigEndian = false;
    bool m_orderIsKnown = false; ///< from the encoding's name
    bool m_discard = false;
    bool m_discarded = false;
    MarkupError m_error = MarkupError::None;
    std::unique_ptr<void, CloseIconv> m_iconv;
};

} // namespace corvanta::markup
