// Reads the characters of a document as well-formed UTF-8, whatever encoding its bytes are in.
//
// UTF-8 is checked and not converted; UTF-16 and UTF-32 of both byte orders and every encoding that
// iconv knows are converted. A byte-order mark at the start is dropped. The output does not depend
// on the sizes of the reads from the source.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"
#include "codecs/encoding/iconv_handle.h"
#include "codecs/markup/text/encoding.h"
#include "codecs/markup/text/error.h"

#include <memory>
#include <optional>
#include <vector>

namespace corvanta::markup {

/// What happens to bytes that are not a character of the encoding.
enum class InvalidBytes : quint8 {
    /// Reading ends with CannotConvert after the characters before them.
    Fail,
    /// They are dropped; hasDiscarded() reports it.
    Discard,
};

/// Threads: one at a time.
class CharSource
{
public:
    /// Read from the current position of `source`, which must outlive this object.
    explicit CharSource(ByteSource &source);
    ~CharSource();
    CharSource(const CharSource &) = delete;
    CharSource &operator=(const CharSource &) = delete;

    /// Start another document; keeps the memory and forgets everything else.
    void restart(ByteSource &source);

    /// The first kGuessBytes of the document, or all of a shorter one. Does not consume them; the
    /// view is valid until the next call. Errors: CannotRead, when there is not even one byte.
    Result<QByteArrayView, MarkupError> peek();

    /// Set how the bytes are encoded, before the first read(). `name` is used by CodePage:
    /// "UTF-16LE" and the like are UTF-16 and UTF-32 of that byte order; iconv converts all others.
    /// Errors: CannotConvert for a name that iconv does not know; CannotRead.
    Result<void, MarkupError> setEncoding(CharMode mode, const QByteArray &name,
                                          InvalidBytes invalid);

    /// Write up to `room` bytes of UTF-8 (at least kMinRoom) to `out`; returns their number, 0 at
    /// the end. A failure is returned after all bytes before it. Errors: CannotRead, CannotConvert.
    Result<qsizetype, MarkupError> read(char *out, qsizetype room);

    /// After read() failed with CannotConvert in UTF-8: drop the invalid byte, so that read() can
    /// continue. Returns false after any other failure.
    bool skipInvalid();

    /// True when invalid bytes were dropped (InvalidBytes::Discard).
    bool hasDiscarded() const { return m_discarded; }

    /// The least room that read() needs.
    static constexpr qsizetype kMinRoom = 64;

private:
    // Functions that return a size return 0 when they deliver nothing: at the end, or with m_error
    // set.

    Result<void, MarkupError> status() const;
    qint64 readSource(char *out, qsizetype n);
    bool fillRaw();
    bool dropInvalid();
    void dropTruncatedEnd();
    qsizetype readUtf8(char *out, qsizetype room);
    qsizetype keepWellFormed(char *out, qsizetype n);
    void putBack(const char *bytes, qsizetype n);
    qsizetype readUtf16(char *out, qsizetype room);
    qsizetype completeUnits(qsizetype most) const;
    qsizetype readUtf32(char *out, qsizetype room);
    qsizetype readCodePage(char *out, qsizetype room);
    int runIconv(char **out, size_t *room);
    bool isWideName(const QByteArray &name);
    void skipMark();
    void findByteOrder(QByteArrayView bytes);
    char *rawAt() { return m_raw.data() + m_rawAt; }
    const char *rawAt() const { return m_raw.data() + m_rawAt; }
    qsizetype rawLeft() const { return static_cast<qsizetype>(m_rawEnd - m_rawAt); }

    ByteSource *m_source;
    /// Bytes m_rawAt to m_rawEnd were read and not yet converted.
    std::vector<char> m_raw;
    size_t m_rawAt = 0;
    size_t m_rawEnd = 0;
    bool m_sourceEnded = false;
    /// How the bytes are converted.
    CharMode m_mode = CharMode::Utf8;
    bool m_bigEndian = false;
    /// From the encoding's name.
    bool m_orderIsKnown = false;
    /// InvalidBytes::Discard was set.
    bool m_discard = false;
    bool m_discarded = false;
    /// Reported after the bytes before it.
    std::optional<MarkupError> m_error;
    encoding::IconvHandle m_converter;
};

} // namespace corvanta::markup
