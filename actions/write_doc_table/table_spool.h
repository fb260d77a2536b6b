// The text of a table until its document is written: in memory, and beyond a limit in a temporary
// file without a name.
#pragma once
#include "base/platform/files.h"
#include "base/system_error.h"

#include <QByteArray>
#include <QByteArrayView>

#include <functional>

namespace corvanta {

/// Threads: one at a time.
class TableSpool
{
public:
    /// Append to the text. Returns false when the temporary file cannot be written; see error().
    bool append(QByteArrayView bytes);
    /// Pass the whole text to `take` in pieces; may be called again. Returns false when `take` does
    /// or when the temporary file cannot be read.
    bool read(const std::function<bool(QByteArrayView)> &take);
    /// Why the last call failed; no error when `take` failed.
    SystemError error() const { return m_error; }

private:
    bool spill();

    /// What is kept in memory, of each table.
    static constexpr qsizetype kMaxBytes = qsizetype(16) << 20;
    platform::FileHandle m_file;
    qint64 m_inFile = 0; // bytes at the beginning of the text
    QByteArray m_bytes;  // those after them
    SystemError m_error;
};

} // namespace corvanta
