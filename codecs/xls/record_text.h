// Reads the texts of records, which may continue in the records after them.
#pragma once
#include "codecs/encoding/text_decoder.h"
#include "codecs/xls/record_reader.h"
#include "codecs/xls/records.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <string>

namespace corvanta::xls {

/// The data of a record and of the CONTINUE records after it, as one sequence of bytes. Numbers
/// beyond the end are 0. Using it moves the reader past the records that it takes, and the record
/// given to it is no longer valid. Threads: one at a time.
class ContinuedBytes
{
public:
    /// `record` was read last from `reader`, which must outlive this object. The first `skipped`
    /// bytes are skipped; if there are fewer, the data ends.
    ContinuedBytes(RecordReader &reader, const Record &record, qint64 skipped = 0);

    /// Whether all bytes are read.
    bool atEnd();
    /// Whether something was read beyond the end.
    bool isShort() const { return m_isShort; }

    quint8 u8();
    quint16 u16();
    quint32 u32();
    void skip(qint64 n);
    /// The next `n` bytes, or fewer at the end. Valid until the next call; in `kept`, which is
    /// empty before, if they are in several records.
    QByteArrayView bytes(qint64 n, QByteArray *kept);
    /// Append `n` units of a BIFF 8 text, or fewer at the end. Each record that continues it says
    /// again whether its units are wide (2 bytes) or compressed (1).
    void units(qint64 n, bool isWide, std::u16string *out);

private:
    qint64 left() const { return m_end - m_at; }
    /// Continue in the next CONTINUE record.
    bool nextPiece();

    RecordReader &m_reader;
    const uchar *m_at;
    const uchar *m_end;
    bool m_isShort = false;
};

/// How a workbook stores texts. Threads: one at a time.
class TextReader
{
public:
    /// `codePage` is the number in the CODEPAGE record; it decides up to BIFF 5. For an unknown one
    /// and 0, Windows-1252.
    TextReader(Biff biff, int codePage);

    Biff biff() const { return m_biff; }
    /// Append a text of `n` characters, for which a length was read. In BIFF 8 a byte with flags
    /// precedes the characters; rich formats and phonetic texts after them are skipped.
    /// Returns false when bytes are missing or invalid in the code page.
    bool append(ContinuedBytes &in, qint64 n, std::u16string *out) const;

    /// The same for a name whose length is one byte.
    QString shortName(ContinuedBytes &in) const;

private:
    // append() up to BIFF 5 and in BIFF 8. Same result.

    /// `n` bytes in the code page of the workbook.
    bool appendBytes(ContinuedBytes &in, qint64 n, std::u16string *out) const;
    /// The flags, and `n` units in the width that they give.
    static bool appendUnits(ContinuedBytes &in, qint64 n, std::u16string *out);
    /// Returns false when bytes are invalid in the code page; U+FFFD replaces them.
    bool appendDecoded(QByteArrayView bytes, std::u16string *out) const;

    Biff m_biff;
    encoding::TextDecoder m_decoder;
};

} // namespace corvanta::xls
