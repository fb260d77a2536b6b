// Reads the records of a text in any encoding, with a separator that may have to be found.
#pragma once
#include "codecs/csv/record_reader.h"
#include "codecs/encoding/utf8_source.h"

#include <memory>

namespace corvanta::csv {

/// What is known about a text.
struct TextForm
{
    QByteArray encoding = "UTF-8"; ///< see Utf8Source
    QByteArray fallback = {};      ///< as for Utf8Source
    Dialect dialect = {};
    /// Ignore the separator of `dialect`, and use that of findSeparator() for the first 64 KiB, or
    /// that of a first line "sep=;". Empty lines before the first record are skipped then, unless
    /// `dialect` has lines to skip.
    bool findsSeparator = false;
    /// Lines end with CR alone if the first 64 KiB have CR but no LF.
    bool findsLineEnd = false;
};

/// Threads: one at a time.
class TextReader
{
public:
    /// Number of bytes of UTF-8 in which the separator and the line end are found.
    static constexpr qint64 kSampleBytes = qint64(64) * 1024;

    /// Read from the current position of `source`, which must outlive the reader. iconv must know
    /// the encoding. Reads the sample if it is needed.
    TextReader(ByteSource &source, const TextForm &form, RecordReader::Limits limits = {});

    /// The records are UTF-8, apart from the bytes that Utf8Source passes on.
    RecordReader &records() { return *m_records; }
    const RecordReader &records() const { return *m_records; }
    /// What was found out about the encoding so far.
    const encoding::Utf8Source &text() const { return m_text; }
    char separator() const { return m_dialect.separator; }
    bool endsLinesWithCr() const { return m_dialect.endsLinesWithCr; }

private:
    /// Bytes that were read before, and the text after them.
    class Replay final : public ByteSource
    {
    public:
        explicit Replay(ByteSource &source)
            : m_source(source)
        {
        }
        /// Read the first kSampleBytes; a failure shows in read().
        void fill();
        QByteArrayView bytes() const { return m_bytes; }
        qint64 read(void *buffer, qint64 n) override;
        qint64 size() override { return -1; }
        bool seek(qint64) override { return false; }

    private:
        ByteSource &m_source;
        QByteArray m_bytes;
        qsizetype m_at = 0;
    };

    encoding::Utf8Source m_text;
    Replay m_replay{m_text};
    Dialect m_dialect;
    std::unique_ptr<RecordReader> m_records; // null only during construction
};

} // namespace corvanta::csv
