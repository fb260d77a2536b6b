// Reads lines of limited length: after a power cut, a file system may have filled a file with
// gigabytes of zeros, which are one line.
#include "cli/batch/line_file.h"

LineFile::LineFile(const QString &name, qint64 offset)
    : m_file(name)
{
    if (m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) && !m_file.seek(offset)) {
        m_file.close();
    }
}

bool LineFile::next()
{
    constexpr qint64 kMaxBytes = 64 << 20; // a run that writes half a million files
    m_line.resize(0);
    m_bytes = 0;
    m_isComplete = false;
    while (!m_isComplete && (m_used < m_block.size() || readBlock())) {
        const QByteArrayView rest = QByteArrayView(m_block).sliced(m_used);
        const qsizetype lineFeed = rest.indexOf('\n');
        m_isComplete = lineFeed >= 0;
        const QByteArrayView piece = m_isComplete ? rest.first(lineFeed + 1) : rest;
        m_used += piece.size();
        m_bytes += piece.size();
        // Everything after a piece that is left out is left out too, so that no line is shortened.
        m_line += m_bytes <= kMaxBytes ? piece : QByteArrayView();
    }
    return m_bytes > 0;
}

bool LineFile::readBlock()
{
    constexpr qint64 kBlockBytes = 64 << 10;
    m_block = m_file.isOpen() ? m_file.read(kBlockBytes) : QByteArray();
    m_used = 0;
    return !m_block.isEmpty();
}
