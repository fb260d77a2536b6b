// Keeps what a sample has read from a pipe, because a pipe gives its bytes only once.
//
// convert, head and schema look at the beginning of their input, or at all of it, before the run.
// The run then reads the same bytes again and continues where the sample ended.
#pragma once
#include "base/platform/files.h"
#include "corvanta/input_source.h"

#include <QByteArray>

#include <memory>

namespace corvanta::input {

/// Whether `path` is a pipe or a device: something that can be read only once.
bool isPipe(const QString &path);

/// A source with the bytes that were read from it before: in memory up to a limit, and after it in
/// a temporary file without a name, which is gone with the source, also after a kill.
class ReplayedSource final : public InputSource
{
public:
    static constexpr qsizetype kMemoryBytes = qsizetype(64) << 20;

    explicit ReplayedSource(std::unique_ptr<InputSource> source,
                            qsizetype memoryBytes = kMemoryBytes)
        : m_source(std::move(source))
        , m_memoryBytes(memoryBytes)
    {
    }
    qint64 read(void *buffer, qint64 n) override;
    qint64 size() override { return -1; }
    /// Only within the bytes that are kept.
    bool seek(qint64 offset) override;
    qint64 progressPosition() const override { return m_source->progressPosition(); }

    /// Begin again with the kept bytes. `records`: also keep the bytes that are read after them.
    void rewind(bool records);

private:
    qint64 keptBytes() const { return m_bytes.size() + m_fileBytes; }
    qint64 readKept(char *buffer, qint64 n);
    qint64 readFile(char *buffer, qint64 n);
    bool keep(const char *bytes, qint64 n);
    bool keepInFile(const char *bytes, qint64 n);
    bool seekFile(qint64 offset);
    void setLost();

    std::unique_ptr<InputSource> m_source; // continues after the kept bytes
    qsizetype m_memoryBytes;
    QByteArray m_bytes;          // the first of the kept bytes
    platform::FileHandle m_file; // those after them
    qint64 m_fileBytes = 0;
    qint64 m_fileAt = 0; // the position of m_file
    qint64 m_at = 0;     // in the kept bytes
    bool m_records = false;
    QString m_lost; // why bytes after the kept ones are lost; empty: they are not
};

/// Keep `source` for the next take() of `path`. Threads: any.
void keepPipe(const QString &path, std::unique_ptr<ReplayedSource> source);
/// The source kept for `path`; null if there is none. Threads: any.
std::unique_ptr<ReplayedSource> takePipe(const QString &path);

} // namespace corvanta::input
