// Rows in a temporary file: the cells of each batch, one after another, without lengths or padding.
//
// The size of a cell follows from its type and, for texts, its length code. Schema and row count of
// each batch stay in memory.
#include "engine/spill_file.h"

#include "base/cell.h"

#include <QDir>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace corvanta {

namespace {

/// Where the file is. QDir names no folder that does not exist, so that a message could not name
/// it.
QString folderOfFile()
{
    const QString given = qEnvironmentVariable("TMPDIR");
    return given.isEmpty() ? QDir::tempPath() : given;
}

/// The failure of the last system call; `action` is "create", "write" or "read".
[[noreturn]] void throwFailure(const char *action)
{
    const std::string reason = std::generic_category().message(errno);
    throw std::runtime_error(std::string("cannot ") + action +
                             " a temporary file for waiting rows in the folder '" +
                             folderOfFile().toStdString() + "': " + reason);
}

/// Writes all bytes at an offset.
bool writeAt(platform::FileHandle &file, qint64 offset, const QByteArray &bytes)
{
    qint64 done = 0;
    while (file.seek(offset + done) && done < bytes.size()) {
        const qint64 n = file.write(bytes.constData() + done, bytes.size() - done);
        if (n <= 0) {
            return false;
        }
        done += n;
    }
    return done == bytes.size();
}

/// Fills `bytes` with those at an offset.
bool readAt(platform::FileHandle &file, qint64 offset, QByteArray *bytes)
{
    qint64 done = 0;
    while (file.seek(offset + done) && done < bytes->size()) {
        const qint64 n = file.read(bytes->data() + done, bytes->size() - done);
        if (n <= 0) {
            return false;
        }
        done += n;
    }
    return done == bytes->size();
}

} // namespace

void SpillFile::put(const BatchSlice &slice)
{
    if (!m_file.isOpen()) {
        m_file = platform::FileHandle::openTemporary(folderOfFile());
        if (!m_file.isOpen()) {
            throwFailure("create");
        }
    }
    // Collect the cells first, so that the file needs one write.
    QByteArray bytes;
    const TableSchema &schema = *slice.batch->schema;
    for (int r = slice.first; r < slice.first + slice.count; ++r) {
        const uchar *const *const cells = slice.batch->row(r);
        for (int c = 0; c < slice.batch->columns; ++c) {
            bytes.append(reinterpret_cast<const char *>(cells[c]),
                         cell::bytesOf(schema.types[c].cellType(), cells[c]));
        }
    }
    if (!writeAt(m_file, m_writeAt, bytes)) {
        throwFailure("write");
    }
    m_writeAt += bytes.size();
    m_entries.push_back({slice.batch->schema, slice.count, bytes.size()});
}

std::optional<BatchSlice> SpillFile::take()
{
    if (m_entries.empty()) {
        return std::nullopt;
    }
    const Entry entry = std::move(m_entries.front());
    m_entries.pop_front();
    QByteArray bytes(entry.bytes, Qt::Uninitialized);
    if (!readAt(m_file, m_readAt, &bytes)) {
        throwFailure("read");
    }
    m_readAt += entry.bytes;

    // A batch of its own, not one of the pool: the pool belongs to the producer's pin.
    auto batch = std::make_shared<RowBatch>();
    batch->schema = entry.schema;
    batch->columns = static_cast<int>(entry.schema->names.size());
    batch->rows = entry.rows;
    const auto *at = reinterpret_cast<const uchar *>(bytes.constData());
    for (int i = 0; i < entry.rows * batch->columns; ++i) {
        const qsizetype n = cell::bytesOf(entry.schema->types[i % batch->columns].cellType(), at);
        uchar *const cell = batch->arena.alloc(static_cast<int>(n));
        std::memcpy(cell, at, static_cast<size_t>(n));
        batch->cells.push_back(cell);
        at += n;
    }
    // Free the disk space as soon as possible. The space of rows that were taken is not reused
    // before: a file that grows only is simple, and spilling ends when the action reads this pin.
    if (m_entries.empty()) {
        clear();
    }
    return BatchSlice{std::move(batch), 0, entry.rows};
}

void SpillFile::clear()
{
    m_entries.clear();
    m_file = {};
    m_readAt = 0;
    m_writeAt = 0;
}

} // namespace corvanta
