// corvanta/target_file.h
// A file that is replaced only when its new content is complete.
#pragma once
#include "corvanta/export.h"
#include "corvanta/files.h"

#include <QString>

#include <functional>
#include <memory>

/// Writes beside the target under a name of its own and moves the result over it in commit().
/// Without commit() the target stays as it was and nothing is left behind. Threads: one at a time.
///
/// A target that is not an ordinary file (a pipe, a device) is written directly.
class CORVANTA_EXPORT TargetFile
{
public:
    TargetFile() = default;
    ~TargetFile() { discard(); }
    TargetFile(const TargetFile &) = delete;
    TargetFile &operator=(const TargetFile &) = delete;

    /// Open the temporary file, named `name` + "_tmp_" + `action` + "_" + a random number. False
    /// when it cannot be created, or when the target is there and may not be written.
    bool open(const QString &name, int action);
    bool isOpen() const { return m_file != nullptr; }
    const QString &name() const { return m_name; }
    const QString &temporaryName() const { return m_temporary; }
    /// Where to write; owned by this object.
    MyWriteFile &file() { return *m_file; }

    /// Close the file and move it over the target. False when that failed; the target is then as it
    /// was. The bytes are flushed to the device first when a file is replaced; a new one is before
    /// the run ends.
    bool commit();
    /// commit() with `move` in place of the plain renaming: it answers whether the target was
    /// replaced. The bytes are always flushed to the device before.
    using Move = std::function<bool(const QString &temporary, const QString &target)>;
    bool commit(const Move &move);
    /// Remove what was written.
    void discard();

private:
    bool commit(bool syncs, const Move &move);

    QString m_name;
    QString m_temporary; // empty: the target is written directly
    std::unique_ptr<MyWriteFile> m_file;
};
