// A table is appended once and then read once or several times:
//
//   text    [ temporary file: m_inFile bytes ][ memory: m_bytes, less than kMaxBytes ]
//
// Small tables never touch the disk. The file has no name and goes away with its handle.
#include "actions/write_doc_table/table_spool.h"

#include <QDir>

#include <algorithm>

namespace corvanta {

bool TableSpool::append(QByteArrayView bytes)
{
    m_bytes += bytes;
    return m_bytes.size() < kMaxBytes || spill();
}

/// Move the text in memory to the end of the file.
bool TableSpool::spill()
{
    // Most tables never need the file.
    if (!m_file.isOpen()) {
        m_file = platform::FileHandle::openTemporary(QDir::tempPath());
    }
    bool done = m_file.isOpen() && m_file.seek(m_inFile);
    for (qsizetype at = 0; done && at < m_bytes.size();) {
        const qint64 n = m_file.write(m_bytes.constData() + at, m_bytes.size() - at);
        done = n > 0;
        at += std::max<qint64>(n, 0);
    }
    if (!done) {
        m_error = SystemError::ofLastCall();
        return false;
    }
    m_inFile += m_bytes.size();
    m_bytes.truncate(0); // keeps its memory
    return true;
}

bool TableSpool::read(const std::function<bool(QByteArrayView)> &take)
{
    constexpr qint64 kPiece = qint64(1) << 20;
    // A table without a file needs no buffer: its text is passed on where it is.
    QByteArray piece(m_inFile > 0 ? kPiece : 0, '\0');
    if (m_inFile > 0 && !m_file.seek(0)) {
        m_error = SystemError::ofLastCall();
        return false;
    }
    for (qint64 left = m_inFile; left > 0;) {
        const qint64 n = m_file.read(piece.data(), std::min(left, kPiece));
        if (n <= 0) {
            m_error = SystemError::ofLastCall();
            return false;
        }
        if (!take({piece.constData(), n})) {
            return false;
        }
        left -= n;
    }
    return m_bytes.isEmpty() || take(m_bytes);
}

} // namespace corvanta
