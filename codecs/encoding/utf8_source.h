// Reads text in any encoding as UTF-8.
//
// UTF-8 is checked and passed on unchanged; every other encoding is converted with iconv. The
// encoding can be found out from the text:
//
//   a byte-order mark                                  UTF-8, UTF-16, UTF-32
//   zeros in the same half of most 2-byte units of the first 64 KiB   UTF-16
//   the first 64 KiB from the first byte that is not ASCII on are valid UTF-8, or there is none
//                                                      UTF-8
//   otherwise                                          an encoding that the caller names
//
// So only the part that decides is read ahead, and a file of many gigabytes with its first umlaut
// at the end is decoded correctly. What is delivered does not depend on the sizes of the reads.
// Threads: one at a time per object.
#pragma once
#include "base/byte_source.h"
#include "base/occurrences.h"
#include "codecs/encoding/iconv_handle.h"

#include <QByteArray>

#include <string>
#include <string_view>
#include <vector>

namespace corvanta::encoding {

class Utf8Source final : public ByteSource
{
public:
    /// The name of the encoding that is found out from the text, in any letter case.
    static bool isAuto(const QByteArray &encoding);

    /// Read `source`, which must outlive this object, from its position. `encoding` is a name that
    /// iconv knows, or "auto"; then `fallback` is the encoding of text that is neither UTF-8 nor
    /// UTF-16. Check isKnown() before the first read.
    Utf8Source(ByteSource &source, QByteArray encoding, QByteArray fallback = {});

    /// Whether iconv knows the encoding. The first read of "auto" may change it.
    bool isKnown() const { return m_isKnown; }

    /// A failure of the source is a failure here. Invalid UTF-8 is passed on.
    qint64 read(void *buffer, qint64 n) override;
    qint64 size() override { return -1; }
    bool seek(qint64) override { return false; }

    /// The name of the encoding that is read. With "auto" it is UTF-8 until something else is
    /// found.
    const QByteArray &encoding() const { return m_encoding; }
    /// Whether nothing in the text names the encoding: it is a guess.
    bool isAssumed() const { return m_isAssumed; }
    /// Whether invalid UTF-8 has been passed on.
    bool hasInvalidUtf8() const { return m_hasInvalidUtf8; }
    /// Bytes that are not characters of the encoding and were replaced by U+FFFD, with the line of
    /// the first one. Not counted for UTF-8.
    const Occurrences &replaced() const { return m_replaced; }

private:
    void begin();
    bool openConverter(const QByteArray &encoding);
    qint64 readSource(char *buffer, size_t n);
    qint64 readBytes(char *buffer, size_t n);
    void putBack(std::string_view bytes);
    bool fill();
    void fillProbe();
    std::string_view unread() const { return {m_raw.data() + m_at, m_end - m_at}; }
    void findEncoding();
    void chooseFallback();
    // The three ways to read().
    qint64 readUndecided(char *buffer, size_t n);
    qint64 readUtf8(char *buffer, size_t n);
    qint64 readConverted(char *buffer, size_t n);
    void checkUtf8(std::string_view bytes);
    /// Sets m_ready to the next bytes to deliver, which may be none.
    void convert();
    void replace(size_t n, char **out);
    void countLines(const char *begin, const char *end);

    ByteSource &m_source;
    QByteArray m_encoding;
    QByteArray m_fallback;
    IconvHandle m_converter; // not open: UTF-8
    size_t m_unitBytes = 1;  // of the encoding
    bool m_isKnown = true;
    bool m_hasBegun = false;
    bool m_isUndecided = false; // all bytes so far are ASCII
    bool m_isAssumed = false;
    bool m_hasInvalidUtf8 = false;
    bool m_isEnded = false;   // the source has no more bytes
    bool m_hasFailed = false; // the source failed
    bool m_isFlushed = false; // the converter holds no characters back
    // Bytes m_at to m_end have been read ahead and not yet converted or delivered. UTF-8 is read
    // into the buffer of the caller instead.
    std::vector<char> m_raw;
    size_t m_at = 0;
    size_t m_end = 0;
    std::string m_cut;        // the beginning of a UTF-8 character, not checked yet
    std::vector<char> m_text; // converted
    std::string_view m_ready; // in m_text: to be delivered
    Occurrences m_replaced;
    qint64 m_lines = 0; // complete ones that are converted, until the first replacement
};

} // namespace corvanta::encoding
