// writers/parquet_output.h
// One Parquet file on its way to its target.
#pragma once
#include "codecs/parquet/file_writer.h"
#include "corvanta/files.h"

#include <functional>
#include <memory>

namespace corvanta {

/// Writes TARGET_TMP and moves it over TARGET when it is complete; on a network drive, and where
/// the target is no ordinary file, TARGET itself. Threads: one at a time.
class ParquetOutput
{
public:
    /// `askRetry` is asked when a write fails, whether to try again.
    ParquetOutput(QString target, std::function<bool()> askRetry);

    /// Create the file and write its beginning. An empty text, or the message of what went wrong.
    QString open(const std::vector<parquet::WriterColumn> &columns,
                 const parquet::WriteOptions &options, parquet::PageCompressor &compressor);

    QString addRow(const uchar *const *cells);
    qint64 bytesWritten() const { return m_writer->bytesWritten(); }

    /// Complete the file and move it over the target. An empty text, or the message.
    QString commit();
    /// Close the file where it is and remove it, unless it was written directly.
    void discard();

    const QString &target() const { return m_target; }

private:
    /// Repeats failed writes for as long as the user wants to.
    class Sink final : public ByteSink
    {
    public:
        Sink(std::unique_ptr<MyWriteFile> file, const std::function<bool()> &askRetry)
            : m_file(std::move(file))
            , m_askRetry(askRetry)
        {
        }
        bool write(const void *bytes, qint64 n) override;
        bool seek(qint64) override { return false; }
        qint64 position() const override { return m_file->position(); }
        bool flush() override { return m_file->flush(); }
        MyWriteFile &file() { return *m_file; }

    private:
        std::unique_ptr<MyWriteFile> m_file;
        const std::function<bool()> &m_askRetry;
    };
    QString makeWay();
    QString describe(const Fault<parquet::Error> &fault) const;

    const QString m_target;
    const std::function<bool()> m_askRetry;
    QString m_temporary; // empty: the target is written directly
    int m_pageSizeKiB = 0;
    std::unique_ptr<Sink> m_sink;
    std::unique_ptr<parquet::FileWriter> m_writer;
};

} // namespace corvanta
