// readers/input_sample.h
// The beginning of a reader's input, for looking at it before a run, and the tables found there.
#pragma once
#include "codecs/markup/sample_levels.h"
#include "corvanta/action_parameters.h"
#include "io/input/input_file.h"

namespace corvanta {

/// Threads: one at a time.
class InputSample final : public ByteSource
{
public:
    /// Open the file `name` (already expanded), or the first one that the pattern matches.
    InputSample(GlobalParameters *parameters, const QString &name);

    bool isOpen() { return m_file.isOpen(); }
    const QString &name() const { return m_name; }

    /// The data end after kSampleBytes, so that looking takes no longer for a file that is huge.
    qint64 read(void *buffer, qint64 n) override;
    qint64 size() override { return -1; }
    bool seek(qint64) override { return false; }

private:
    QString m_name;
    InputFile m_file;
};

/// Table number `table` of the document, the largest one when that is negative, telling what its
/// levels leave out. Null, with a message, when there is none.
const markup::SampledTable *chooseTable(const markup::SampledDocument &document, int table);

/// The tables for people; the one that `levels` read is marked.
QVector<InputTable> listedTables(const markup::SampledDocument &document,
                                 const std::vector<markup::Level> &levels);

/// The message for a table number that is none.
void logNoSuchTable(int table, size_t count);

} // namespace corvanta
