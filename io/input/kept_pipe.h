// Keeps what a sample has read from a pipe, because a pipe gives its bytes only once.
//
// convert, head and schema look at the beginning of their input before the run. The run then reads
// the same bytes again and continues where the sample ended.
#pragma once
#include "corvanta/input_source.h"

#include <QByteArray>

#include <memory>

namespace corvanta::input {

/// Whether `path` is a pipe or a device: something that can be read only once.
bool isPipe(const QString &path);

/// A source with the bytes that were read from it before.
class ReplayedSource final : public InputSource
{
public:
    explicit ReplayedSource(std::unique_ptr<InputSource> source)
        : m_source(std::move(source))
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
    std::unique_ptr<InputSource> m_source; // continues after m_bytes
    QByteArray m_bytes;
    qsizetype m_at = 0; // in m_bytes
    bool m_records = false;
};

/// Keep `source` for the next take() of `path`. Threads: any.
void keepPipe(const QString &path, std::unique_ptr<ReplayedSource> source);
/// The source kept for `path`; null if there is none. Threads: any.
std::unique_ptr<ReplayedSource> takePipe(const QString &path);

} // namespace corvanta::input
