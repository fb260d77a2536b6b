// The lines of a file that another program may be writing, or that a device may have damaged.
#pragma once
#include <QFile>

/// Usage: while (file.next()) ... file.line() ... Threads: one at a time.
class LineFile
{
public:
    /// A file that cannot be opened has no lines. A line begins at `offset`.
    explicit LineFile(const QString &name, qint64 offset = 0);
    /// Read the next line; returns false at the end.
    bool next();
    /// The line with its line feed. Of a line of more than 64 MiB, which no batch writes, only the
    /// beginning.
    const QByteArray &line() const { return m_line; }
    /// Whether the line has ended in the file; the last one may be completed later.
    bool isComplete() const { return m_isComplete; }
    /// How many bytes it has there.
    qint64 bytes() const { return m_bytes; }

private:
    bool readBlock();

    QFile m_file;
    QByteArray m_block;
    qsizetype m_used = 0; // of m_block
    QByteArray m_line;
    qint64 m_bytes = 0;
    bool m_isComplete = false;
};
