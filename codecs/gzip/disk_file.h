// io/unpack/disk_file.h
// A file of the system, read without a buffer of its own: for the packed kinds, which bring theirs.
#pragma once
#include "base/byte_source.h"

#include <QFile>

#include <memory>

namespace corvanta::input {

/// Threads: one at a time.
class DiskFile final : public ByteSource
{
public:
    /// Null when the file cannot be opened.
    static std::unique_ptr<DiskFile> open(const QString &path)
    {
        std::unique_ptr<DiskFile> file(new DiskFile(path));
        if (!file->m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
            return nullptr;
        }
        return file;
    }
    qint64 read(void *buffer, qint64 n) override
    {
        return m_file.read(static_cast<char *>(buffer), n);
    }
    qint64 size() override { return m_file.isSequential() ? -1 : m_file.size(); }
    bool seek(qint64 offset) override { return m_file.seek(offset); }
    qint64 position() const { return m_file.pos(); }

private:
    explicit DiskFile(const QString &path)
        : m_file(path)
    {
    }

    QFile m_file;
};

} // namespace corvanta::input
