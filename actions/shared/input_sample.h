// Reads the beginning of a reader's input before a run, to find the tables in it.
//
// Used outside runs: nothing here fails one. Messages go to the log only.
#pragma once
#include "codecs/markup/sample/sample_levels.h"
#include "corvanta/action_item.h"
#include "corvanta/action_parameters.h"
#include "io/input/input_file.h"

namespace corvanta {

/// A source that ends early, as if the file were cut there. Threads: one at a time.
class InputSample final : public ByteSource
{
public:
    /// Open the first file that `pattern` matches, after expansion for `action`.
    InputSample(const ActionItem &action, const QString &pattern);

    /// False when there is no such file or it cannot be read; the caller reports it.
    bool isOpen() { return m_file.isOpen(); }
    /// Why it is not open, or why a read failed, in words.
    QString reason() const { return m_file.reason(); }
    /// The message for a failed read; empty if none failed.
    QString failure() const { return m_file.failure(); }
    /// The file's name, expanded.
    const QString &name() const { return m_name; }

    /// Ends after 64 MiB, so that the sample of a huge file takes no longer.
    qint64 read(void *buffer, qint64 n) override;
    /// Unknown, because the end of the sample is not the end of the file.
    qint64 size() override { return -1; }
    bool seek(qint64) override { return false; }

private:
    QString m_name;
    InputFile m_file;
};

/// Table `table` (from 0; negative: the largest one) of the document. Logs which repeated parts its
/// levels leave out. Returns null, after a message, when there is no such table. The result is
/// valid as long as `document`.
const markup::SampledTable *chooseTable(const markup::SampledDocument &document, int table);

/// The tables in the form that users see; the one that `levels` read is marked.
QVector<InputTable> listedTables(const markup::SampledDocument &document,
                                 const std::vector<markup::Level> &levels);

/// Log that the document has only `count` tables. `table` counts from 0, the message from 1.
void logNoSuchTable(int table, size_t count);

} // namespace corvanta
