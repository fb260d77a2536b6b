// Reads the memo file of a table, which holds its long texts. Layouts: docs/formats/dbf.md.
//
// Threads: one thread at a time per object.
#pragma once
#include "base/byte_source.h"
#include "codecs/dbf/table_header.h"

#include <QByteArrayView>

#include <memory>
#include <optional>
#include <vector>

namespace corvanta::dbf {

enum class MemoFormat : quint8 {
    /// dBase III (.dbt): blocks of 512 bytes; a text ends with the byte 1A.
    Dbase3,
    /// dBase IV (.dbt): the header has the block size, and each text its length, little-endian.
    Dbase4,
    /// FoxPro (.fpt): like Dbase4 with other headers, big-endian.
    FoxPro,
    /// Dbase4 if the first text has its header, else Dbase3: the version of the table says neither.
    Dbase3Or4,
};

/// The format of the table's memo file if its name ends with .dbt. An .fpt file is always FoxPro.
MemoFormat memoFormatOf(const TableHeader &header);

/// Finds texts by the number of their first block. Validates every offset and length against the
/// size of the file, because tables often refer to texts that do not exist.
class MemoFile
{
public:
    /// Whether the file is read through a buffer or completely into memory.
    enum class Access : quint8 { Buffered, InMemory };

    /// `source` must outlive the memo file. Buffered access needs a source that knows its size and
    /// can seek at no cost; a source of unknown size is read into memory. Reads nothing before the
    /// first call of text(). `bufferBytes` is the size of the buffer.
    MemoFile(ByteSource &source, MemoFormat format, Access access, qint64 bufferBytes);

    /// The text that starts in block `block`, valid until the next call. Returns std::nullopt if
    /// there is no valid text: the block is outside the file, the length exceeds the file, or the
    /// text has no end. Errors: MemoUnreadable, MemoTooLarge.
    Result<std::optional<QByteArrayView>, Error> text(quint32 block);

private:
    using View = Result<QByteArrayView, Error>;

    // prepare() runs once, at the first text. bytesAt() returns a view of m_window, valid until the
    // next call; the caller checks that the bytes are inside the file.
    Result<void, Error> prepare();
    Result<void, Error> load();
    void readBlockSize(QByteArrayView head);
    Result<void, Error> chooseFormat(quint32 block);
    View bytesAt(qint64 offset, qint64 n);
    Result<std::optional<QByteArrayView>, Error> endedText(qint64 offset);
    Result<std::optional<QByteArrayView>, Error> countedText(qint64 offset);
    std::optional<qint64> textLength(QByteArrayView header, qint64 offset) const;

    ByteSource &m_source;
    MemoFormat m_format; // Dbase3Or4 until the first text
    const Access m_access;
    const qint64 m_bufferBytes;
    bool m_isPrepared = false;
    qint64 m_size = 0;
    qint64 m_blockBytes = 512;
    std::vector<char> m_window; // m_windowFill bytes of the file, starting at offset m_windowAt
    qint64 m_windowAt = 0;
    qint64 m_windowFill = 0;
};

} // namespace corvanta::dbf
