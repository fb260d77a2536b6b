// writers/composed_file.h
// The file that composed text goes to: replaced at the end, or appended to and cut back on failure.
#pragma once
#include "corvanta/target_file.h"

#include <memory>

namespace corvanta {

/// Threads: one at a time.
class ComposedFile
{
public:
    /// Replace: the target stays as it was until commit(). Append: written in place.
    enum class Mode { Replace, Append };

    ~ComposedFile() { discard(); }

    /// False when the file cannot be opened. `action` is the number that temporary names hold.
    bool open(const QString &name, Mode mode, int action);
    bool isOpen() const { return m_appended != nullptr || m_target.isOpen(); }
    /// False when not everything could be written; nothing counts as written then, and it may be
    /// repeated.
    bool write(const void *bytes, qint64 n) { return file().write(bytes, n); }
    /// Complete the file. False when that failed; the target is then as it was.
    bool commit();
    /// Leave the target as it was before open().
    void discard();

private:
    MyWriteFile &file() { return m_appended ? *m_appended : m_target.file(); }

    TargetFile m_target;
    std::unique_ptr<MyWriteFile> m_appended;
    QString m_name;          // of the appended file
    bool m_wasThere = false; // whether it existed
    qint64 m_oldSize = 0;
};

} // namespace corvanta
