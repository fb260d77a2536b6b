// codecs/dbf/memo_file.h
// The companion of a table that holds its long texts. Layouts: docs/formats/dbf.md.
//
// Threads: one at a time.
#pragma once
#include "base/byte_source.h"
#include "codecs/dbf/table_header.h"

#include <QByteArrayView>

#include <memory>
#include <optional>
#include <vector>

namespace corvanta::dbf {

enum class MemoFormat : quint8 {
    Dbase3, ///< blocks of 512 bytes, a text ends with 1A
    Dbase4, ///< block size in the header, texts carry their length
    FoxPro, ///< the same with other headers, big-endian
};

/// The format that a table of this version has in a file that ends in .dbt; one in .fpt is FoxPro.
MemoFormat memoFormatOf(const TableHeader &header);

class MemoFile
{
public:
    /// Whether the file is read into memory whole, or through a buffer.
    enum class Access : quint8 { Buffered, InMemory };

    /// `source` must outlive the memo file. Buffered access needs a source that knows its size and
    /// seeks at no cost. Nothing is read before the first text is asked for.
    MemoFile(ByteSource &source, MemoFormat format, Access access, qint64 bufferBytes);

    /// The text that starts in block `block`, valid until the next call; nothing when there is no
    /// text there: a block outside the file, a length that goes beyond it, a text without an end.
    /// Errors: MemoUnreadable, MemoTooLarge.
    Result<std::optional<QByteArrayView>, Error> text(quint32 block);

private:
    using View = Result<QByteArrayView, Error>;

    Result<void, Error> prepare();
    Result<void, Error> load();
    void readBlockSize(QByteArrayView head);
    View bytesAt(qint64 offset, qint64 n);
    Result<std::optional<QByteArrayView>, Error> endedText(qint64 offset);
    Result<std::optional<QByteArrayView>, Error> countedText(qint64 offset);

    ByteSource &m_source;
    const MemoFormat m_format;
    const Access m_access;
    const qint64 m_bufferBytes;
    bool m_isPrepared = false;
    qint64 m_size = 0;
    qint64 m_blockBytes = 512;
    std::vector<char> m_window; // m_windowFill bytes of the file from m_windowAt on
    qint64 m_windowAt = 0;
    qint64 m_windowFill = 0;
};

} // namespace corvanta::dbf
